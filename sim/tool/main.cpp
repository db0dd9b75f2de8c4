#include "Modem.h"
#include "PtyServer.h"
#include "Scenario.h"
#include "TimeSource.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <sys/socket.h>
#include <unistd.h>

namespace {

const char *kHelpLimits =
    "Serves a simulated Varnel modem (and the radio network behind it) on a pseudo-terminal.\n"
    "Open the printed device, or the --link path, as the program's serial port.\n"
    "\n"
    "To point Varnel Utility at it, map a port number to the link in a settings file of its\n"
    "own and start the program with that file:\n"
    "  varnel-modem-sim --link /tmp/varnel-modem &\n"
    "  printf '[Port Map]\\nCOM1=/tmp/varnel-modem\\n' > /tmp/simulated.INI\n"
    "  varnel-utility --settings /tmp/simulated.INI\n"
    "and choose port 1 when the program asks for its port.\n"
    "\n"
    "Limits of a pseudo-terminal: it carries no modem control lines, so DTR and RTS cannot be\n"
    "set and carrier detect reads false; the infra-red adaptor, which is started by the control\n"
    "lines, cannot be served this way (use the in-process link for it). Rate and frame are read\n"
    "from the terminal settings the program makes, and a mismatch with the modem's own rate\n"
    "turns the traffic into garbage as a cable would. Bytes are paced at the line rate.\n"
    "\n"
    "Scenarios are JSON files; the built-in ones are named by --list.";

int g_signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char c = 1;
    [[maybe_unused]] const auto n = ::write(g_signalPipe[1], &c, 1);
}

QString builtInPath(const QString &name)
{
    return QStringLiteral(":/scenarios/%1.json").arg(name);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("varnel-modem-sim"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(kHelpLimits));
    parser.addHelpOption();
    const QCommandLineOption scenarioOption(
        {QStringLiteral("s"), QStringLiteral("scenario")},
        QStringLiteral("Scenario to serve: a built-in name or a JSON file."), QStringLiteral("name-or-file"),
        QStringLiteral("demo"));
    const QCommandLineOption linkOption(
        {QStringLiteral("l"), QStringLiteral("link")},
        QStringLiteral("Also make a symbolic link at this path to the device."), QStringLiteral("path"));
    const QCommandLineOption listOption(QStringLiteral("list"),
                                        QStringLiteral("List the built-in scenarios and end."));
    const QCommandLineOption traceOption(QStringLiteral("trace"),
                                         QStringLiteral("Show every byte both ways on standard error."));
    parser.addOptions({scenarioOption, linkOption, listOption, traceOption});
    parser.process(app);

    if (parser.isSet(listOption)) {
        QDirIterator it(QStringLiteral(":/scenarios"));
        QStringList lines;
        while (it.hasNext()) {
            const QString path = it.next();
            const auto scenario = sim::Scenario::fromFile(path);
            lines << QStringLiteral("%1  %2")
                         .arg(QFileInfo(path).completeBaseName(), -16)
                         .arg(scenario ? scenario->description : QString());
        }
        lines.sort();
        std::fputs(qPrintable(lines.join(QLatin1Char('\n')) + QLatin1Char('\n')), stdout);
        return 0;
    }

    const QString wanted = parser.value(scenarioOption);
    const QString path = QFile::exists(builtInPath(wanted)) ? builtInPath(wanted) : wanted;
    QString error;
    const auto scenario = sim::Scenario::fromFile(path, &error);
    if (!scenario) {
        std::fprintf(stderr, "varnel-modem-sim: cannot use scenario %s: %s\n", qPrintable(wanted),
                     qPrintable(error));
        return 2;
    }

    RealTime time;
    sim::PtyServer server(time, *scenario);
    if (!server.start(&error)) {
        std::fprintf(stderr, "varnel-modem-sim: no pseudo-terminal: %s\n", qPrintable(error));
        return 1;
    }
    if (parser.isSet(traceOption)) {
        server.setTrace(true);
        QObject::connect(&server, &sim::PtyServer::traced,
                         [](const QString &line) { std::fprintf(stderr, "%s\n", qPrintable(line)); });
    }
    const QString link = parser.value(linkOption);
    if (!link.isEmpty()) {
        QFile::remove(link);
        if (!QFile::link(server.slavePath(), link)) {
            std::fprintf(stderr, "varnel-modem-sim: cannot make the link %s\n", qPrintable(link));
            return 1;
        }
    }
    std::printf("%s\n", qPrintable(server.slavePath()));
    std::fflush(stdout);

    // Ctrl-C or a kill ends the run cleanly and takes the link away.
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, g_signalPipe) == 0) {
        auto *notifier = new QSocketNotifier(g_signalPipe[0], QSocketNotifier::Read, &app);
        QObject::connect(notifier, &QSocketNotifier::activated, &app, &QCoreApplication::quit);
        std::signal(SIGINT, onSignal);
        std::signal(SIGTERM, onSignal);
    }
    const int result = app.exec();
    if (!link.isEmpty())
        QFile::remove(link);
    return result;
}
