#include "CommandLine.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

#include <cstdio>

namespace {

const char *kDescription =
    "Sets up and looks after Varnel Model Q40 packet-radio modems over one serial link.\n"
    "\n"
    "Ports: the program speaks of ports COM1 to COM16. A key COM1 ... COM16 in the section\n"
    "[Port Map] of the settings file names the device a number opens, for example\n"
    "  [Port Map]\n"
    "  COM1=/dev/ttyUSB0\n"
    "  COM2=/dev/serial/by-id/usb-FTDI_FT232R_USB_UART_A9XYZ-if00-port0\n"
    "Without such a key the numbers go to the serial devices the system lists, USB and ACM\n"
    "adapters (/dev/ttyUSB*, /dev/ttyACM*) first, then built-in ports (/dev/ttyS*). The port\n"
    "dialog (Terminal Setup, Port...) shows beside each number the device it reaches.\n"
    "Serial devices belong to the group dialout: join it once with\n"
    "  sudo usermod -aG dialout $USER\n"
    "and log out and in again.\n"
    "\n"
    "Settings file: $XDG_CONFIG_HOME/varnel-utility.INI (~/.config/varnel-utility.INI when\n"
    "XDG_CONFIG_HOME is not set), or the file given with --settings.";

CommandLine mistake(const QString &program, const QString &message)
{
    CommandLine line;
    line.action = CommandLine::Action::Error;
    line.text = QStringLiteral("%1: %2\nTry '%1 --help'.\n").arg(program, message);
    return line;
}

} // namespace

CommandLine parseCommandLine(const QStringList &arguments)
{
    const QString program =
        arguments.isEmpty() ? QStringLiteral("varnel-utility") : QFileInfo(arguments.first()).fileName();
    QCommandLineParser parser;
    // Qt's own options are written with one dash (-platform offscreen); read them as whole words.
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.setApplicationDescription(QString::fromLatin1(kDescription));
    const QCommandLineOption helpOption({QStringLiteral("h"), QStringLiteral("help")},
                                        QStringLiteral("Displays help on commandline options."));
    const QCommandLineOption settingsOption(
        QStringLiteral("settings"),
        QStringLiteral("Use <file> as the settings file instead of the usual one (one file per site, say). "
                       "A file that does not exist yet is made on the first change."),
        QStringLiteral("file"));
    parser.addOption(helpOption);
    const QCommandLineOption versionOption = parser.addVersionOption();
    parser.addOption(settingsOption);
    const bool parsed = parser.parse(arguments);

    CommandLine line;
    if (parser.isSet(helpOption)) {
        // Without an application object the parser cannot name the program in its usage line.
        line.action = CommandLine::Action::Help;
        line.text =
            QStringLiteral("Usage: %1 [options]\n").arg(program) + parser.helpText().section(u'\n', 1);
        return line;
    }
    if (parser.isSet(versionOption)) {
        line.action = CommandLine::Action::Version;
        line.text = QStringLiteral("Varnel Utility %1\n").arg(QStringLiteral(VARNEL_VERSION));
        return line;
    }
    if (!parsed) {
        line = mistake(program, parser.errorText());
        line.unknownOptions = parser.unknownOptionNames();
        return line;
    }
    if (!parser.positionalArguments().isEmpty())
        return mistake(program,
                       QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().first()));
    if (parser.isSet(settingsOption)) {
        const QString given = parser.value(settingsOption);
        if (given.isEmpty())
            return mistake(program, QStringLiteral("--settings needs the name of a file."));
        const QFileInfo file(QDir::cleanPath(QDir::current().absoluteFilePath(given)));
        if (file.isDir())
            return mistake(program,
                           QStringLiteral("The settings file %1 is a directory.").arg(file.filePath()));
        // Every change would be lost without a word if the file could never be written.
        if (!file.dir().exists())
            return mistake(
                program,
                QStringLiteral("The directory of the settings file %1 does not exist.").arg(file.filePath()));
        line.settingsFile = file.filePath();
    }
    return line;
}

int answerCommandLine(const CommandLine &line)
{
    const bool failed = line.action == CommandLine::Action::Error;
    std::fputs(qPrintable(line.text), failed ? stderr : stdout);
    return failed ? 1 : 0;
}
