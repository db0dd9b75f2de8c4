// How long the program takes from its start to a main menu the user can see, on a port that exists
// but stays silent (a pseudo-terminal nobody writes to). Each run starts the program afresh as a
// process of its own (this one, with --run); it reports when each step of the start-up was reached,
// in wall time from the moment before the process was started and in CPU time of the process, and
// ends as soon as the main menu is exposed. Prints every run, the median of each step, and the load
// of the machine, which the wall times depend on. Runs headless unless a display is set.

#include "Program.h"
#include "PseudoTerminal.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kRuns = 7;

double monotonicSeconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

double cpuSeconds()
{
    rusage u{};
    ::getrusage(RUSAGE_SELF, &u);
    return double(u.ru_utime.tv_sec + u.ru_stime.tv_sec) +
           double(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

// The steps of the start-up, in the order they are reached.
const char *const kSteps[] = {"main entered",       "application made", "program built",    "splash exposed",
                              "splash timer fired", "main menu loaded", "main menu exposed"};

// The running program's side: notes each step once, as a line "step<TAB>monotonic<TAB>cpu" on fd.
class StepLog : public QObject
{
public:
    explicit StepLog(int fd) : m_fd(fd) {}

    void note(const char *step)
    {
        if (!m_noted.insert({step, true}).second)
            return;
        const QByteArray line = QByteArray(step) + '\t' + QByteArray::number(monotonicSeconds(), 'f', 6) +
                                '\t' + QByteArray::number(cpuSeconds(), 'f', 6) + '\n';
        [[maybe_unused]] const ssize_t n = ::write(m_fd, line.constData(), size_t(line.size()));
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const QString name = watched->objectName();
        if (event->type() == QEvent::Expose && watched->isWindowType() &&
            static_cast<QWindow *>(watched)->isExposed()) {
            if (name == QLatin1String("frmSplashWindow"))
                note("splash exposed");
            if (name == QLatin1String("MainMenuWindow")) {
                note("main menu exposed");
                ::close(m_fd);
                ::_exit(0);
            }
        }
        if (event->type() == QEvent::Timer && name == QLatin1String("Timer1"))
            note("splash timer fired");
        if (event->type() == QEvent::Show && name == QLatin1String("MainMenu"))
            note("main menu loaded");
        return false;
    }

private:
    int m_fd;
    std::map<std::string, bool> m_noted;
};

int runProgram(int argc, char *argv[], const QString &settingsFile, int fd)
{
    StepLog log(fd);
    log.note("main entered");
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    log.note("application made");
    app.installEventFilter(&log);
    Program program(settingsFile);
    log.note("program built");
    program.start();
    return app.exec();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

double loadAverage()
{
    double load = 0;
    return ::getloadavg(&load, 1) == 1 ? load : -1;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 4 && std::strcmp(argv[1], "--run") == 0)
        return runProgram(argc, argv, QString::fromLocal8Bit(argv[2]), std::atoi(argv[3]));

    PseudoTerminal silentModem;
    QTemporaryDir dir;
    const QString settings = dir.filePath(QStringLiteral("VarnelUtil.INI"));
    {
        QFile ini(settings);
        if (!silentModem.isValid() || !ini.open(QIODevice::WriteOnly)) {
            std::fprintf(stderr, "no pseudo-terminal or no settings file\n");
            return 1;
        }
        ini.write("[Port_Phone]\r\nComm Port=1\r\nSettings=9600,N,8,1\r\nDTREnable=True\r\nRTSEnable=True\r\n"
                  "Handshaking=0\r\n[Port Map]\r\nCOM1=" +
                  silentModem.slavePath().toLocal8Bit() + "\r\n");
    }
    const QByteArray settingsArg = QFile::encodeName(settings);

    std::map<std::string, std::vector<double>> walls;
    std::map<std::string, std::vector<double>> cpus;
    std::printf("%-20s", "run");
    for (const char *step : kSteps)
        std::printf(" %18s", step);
    std::printf("\n%-20s", "");
    for (size_t i = 0; i < std::size(kSteps); ++i)
        std::printf(" %18s", "wall ms / cpu ms");
    std::printf("\n");
    for (int run = 1; run <= kRuns; ++run) {
        int fds[2];
        if (::pipe(fds) != 0)
            return 1;
        const QByteArray fdArg = QByteArray::number(fds[1]);
        const double started = monotonicSeconds();
        const pid_t pid = ::fork();
        if (pid == 0) {
            ::close(fds[0]);
            ::execl("/proc/self/exe", "StartupBench", "--run", settingsArg.constData(), fdArg.constData(),
                    static_cast<char *>(nullptr));
            ::_exit(127);
        }
        ::close(fds[1]);
        QByteArray report;
        char buffer[512];
        for (ssize_t n; (n = ::read(fds[0], buffer, sizeof buffer)) > 0;)
            report.append(buffer, n);
        ::close(fds[0]);
        int status = 0;
        ::waitpid(pid, &status, 0);
        std::map<std::string, std::pair<double, double>> steps;
        for (const QByteArray &line : report.split('\n')) {
            const QList<QByteArray> fields = line.split('\t');
            if (fields.size() == 3)
                steps[fields[0].toStdString()] = {(fields[1].toDouble() - started) * 1000,
                                                  fields[2].toDouble() * 1000};
        }
        std::printf(
            "%-20s",
            ("run " + std::to_string(run) + ", load " + std::to_string(loadAverage()).substr(0, 4)).c_str());
        for (const char *step : kSteps) {
            const auto found = steps.find(step);
            if (found == steps.end()) {
                std::printf(" %18s", "-");
                continue;
            }
            walls[step].push_back(found->second.first);
            cpus[step].push_back(found->second.second);
            std::printf(" %9.1f /%7.1f", found->second.first, found->second.second);
        }
        std::printf("\n");
    }
    std::printf("%-20s", "median");
    for (const char *step : kSteps)
        std::printf(" %9.1f /%7.1f", median(walls[step]), median(cpus[step]));
    std::printf("\nmain menu exposed %.1f ms after the start (target <= 600), %.1f ms of cpu; load %.2f\n",
                median(walls["main menu exposed"]), median(cpus["main menu exposed"]), loadAverage());
    return 0;
}
