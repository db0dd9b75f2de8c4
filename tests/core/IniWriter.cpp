#include "IniFile.h"
#include <QCoreApplication>
#include <cstdio>

// Another program saving: IniWriter FILE SECTION COUNT writes K0, K1, ... and prints what it is told.
int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    IniFile ini(args.value(1));
    ini.onTrouble = [](const QString &message) { std::printf("%s\n", qPrintable(message)); };
    for (int i = 0; i < args.value(3).toInt(); ++i)
        ini.writeString(args.value(2), QStringLiteral("K%1").arg(i), QString::number(i));
}
