#include "IniFile.h"

#include <QCoreApplication>
#include <cstdio>

// A second program saving the settings: IniWriter FILE SECTION COUNT writes the keys K0, K1, ... one
// write a key, and prints what the settings file told it.
int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    IniFile ini(args.value(1));
    ini.onTrouble = [](const QString &message) { std::printf("%s\n", qPrintable(message)); };
    for (int i = 0; i < args.value(3).toInt(); ++i)
        ini.writeString(args.value(2), QStringLiteral("K%1").arg(i), QString::number(i));
}
