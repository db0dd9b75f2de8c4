#include "CommandLine.h"
#include "IniFile.h"
#include "Program.h"

#include <QApplication>

namespace {
QStringList argumentsOf(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    return arguments;
}
} // namespace

int main(int argc, char *argv[])
{
    // Help, version and mistakes are answered before the window system is touched, so they work
    // without a display; options the program does not know wait for QApplication to take its own.
    const CommandLine early = parseCommandLine(argumentsOf(argc, argv));
    if (early.action != CommandLine::Action::Run && early.unknownOptions.isEmpty())
        return answerCommandLine(early);
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Varnel Utility"));
    // The desktop finds the menu entry, and with it the icon, by this name.
    QApplication::setDesktopFileName(QStringLiteral("com.varnel.utility"));
    const CommandLine line = parseCommandLine(QCoreApplication::arguments());
    if (line.action != CommandLine::Action::Run)
        return answerCommandLine(line);

    Program program(line.settingsFile.isEmpty() ? GetIniFileName() : line.settingsFile);
    program.start();
    return app.exec();
}
