// How the terminal window copes with a fast modem: 10 MB of 60-character lines written to a real
// pseudo-terminal by another process in 4 KB pieces as fast as the pseudo-terminal takes them,
// received by the serial control at AutoProcess 3 and shown on the visible terminal. Prints the
// wall time, the CPU seconds per MB and peak memory of this process (the writer's own time is not
// counted), the worst delay the event loop saw meanwhile, and the CPU share while a writer paces
// the same lines one at a time at 115200 baud. With --paced only the paced measurements run, with
// --flood only the flood. A number after --paced makes the paced runs that many seconds long (5 by
// default): a few paints a second make short runs noisy.

#include "IniFile.h"
#include "ModemSession.h"
#include "ScriptedPrompts.h"
#include "SerialCommControl.h"
#include "Terminal.h"
#include "TerminalScreen.h"
#include "TimeSource.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr qint64 kStreamBytes = 10 * 1024 * 1024;
// What the flood's writer hands the pseudo-terminal in one write.
constexpr qsizetype kFloodPiece = 4096;
constexpr int kDefaultPacedSeconds = 5;
constexpr int kBaud = 115200;
constexpr int kBitsPerByte = 10; // start, eight data bits, stop
// The screen's repaint pace while text scrolls through it.
constexpr int kScrollingTicksPerSecond = 5;

struct Usage
{
    double cpuSeconds = 0;
    long maxRssKb = 0;
};

Usage usage()
{
    rusage u{};
    ::getrusage(RUSAGE_SELF, &u);
    return {double(u.ru_utime.tv_sec + u.ru_stime.tv_sec) +
                double(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6,
            u.ru_maxrss};
}

long currentRssKb()
{
    QFile status(QStringLiteral("/proc/self/statm"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = status.readAll().split(' ');
    return fields.size() > 1 ? fields[1].toLong() * (::sysconf(_SC_PAGESIZE) / 1024) : 0;
}

// The machine's load over the last minute: other programs' work shows in the wall times.
double loadAverage()
{
    double load = 0;
    return ::getloadavg(&load, 1) == 1 ? load : -1;
}

// Line n of the stream: 60 characters and CR LF.
QByteArray streamLine(qint64 n)
{
    QByteArray line = QByteArray::number(n).rightJustified(8, '0') + " RSSI -";
    line += QByteArray::number(40 + n % 60) + " dBm ";
    while (line.size() < 60)
        line += char('A' + line.size() % 26);
    return line + "\r\n";
}

QByteArray stream(qint64 bytes, qint64 &lines)
{
    QByteArray all;
    all.reserve(bytes + 64);
    lines = 0;
    while (all.size() < bytes)
        all += streamLine(++lines);
    return all;
}

bool writeAll(int fd, const char *data, size_t length)
{
    while (length > 0) {
        const ssize_t n = ::write(fd, data, length);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        data += n;
        length -= size_t(n);
    }
    return true;
}

// The modem: writes the stream's first bytes to the pseudo-terminal, as fast as it takes them or
// paced at a baud rate. It runs as a program of its own (this one, started with --write), so that it
// shares no memory with the terminal: a forked copy would make every page the terminal writes to
// cost a copy-on-write fault, which no real modem causes.
int runWriter(int master, qint64 bytes, int paceBaud)
{
    qint64 lines = 0;
    const QByteArray data = stream(bytes, lines);
    const int flags = ::fcntl(master, F_GETFL);
    ::fcntl(master, F_SETFL, flags & ~O_NONBLOCK);
    if (paceBaud <= 0) {
        for (qsizetype offset = 0; offset < data.size(); offset += kFloodPiece)
            if (!writeAll(master, data.constData() + offset,
                          size_t(std::min(kFloodPiece, data.size() - offset))))
                return 1;
        return 0;
    }
    timespec next{};
    ::clock_gettime(CLOCK_MONOTONIC, &next);
    const double bytesPerSecond = double(paceBaud) / kBitsPerByte;
    qsizetype offset = 0;
    while (offset < data.size()) {
        const qsizetype end = std::min(data.indexOf('\n', offset) + 1, data.size());
        if (!writeAll(master, data.constData() + offset, size_t(end - offset)))
            return 1;
        const auto ns = qint64(double(end - offset) / bytesPerSecond * 1e9);
        next.tv_nsec += long(ns % 1000000000);
        next.tv_sec += time_t(ns / 1000000000);
        if (next.tv_nsec >= 1000000000) {
            next.tv_nsec -= 1000000000;
            ++next.tv_sec;
        }
        ::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
        offset = end;
    }
    return 0;
}

pid_t startWriter(int master, qint64 bytes, int paceBaud)
{
    const QByteArray fd = QByteArray::number(master);
    const QByteArray count = QByteArray::number(bytes);
    const QByteArray baud = QByteArray::number(paceBaud);
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::execl("/proc/self/exe", "TerminalStreamBench", "--write", fd.constData(), count.constData(),
                baud.constData(), static_cast<char *>(nullptr));
        ::_exit(127);
    }
    return pid;
}

// Measures the longest gap between the ticks of a 1 ms timer: how long the event loop was held.
class LoopProbe : public QObject
{
public:
    void start()
    {
        m_worstMs = 0;
        m_clock.start();
        m_last = 0;
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, [this] {
            const qint64 now = m_clock.nsecsElapsed();
            m_worstMs = std::max(m_worstMs, double(now - m_last) / 1e6 - 1.0);
            m_last = now;
        });
        m_timer.start(1);
    }
    void stop() { m_timer.stop(); }
    double worstMs() const { return m_worstMs; }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_last = 0;
    double m_worstMs = 0;
};

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 5 && std::strcmp(argv[1], "--write") == 0)
        return runWriter(std::atoi(argv[2]), std::atoll(argv[3]), std::atoi(argv[4]));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0) {
        std::fprintf(stderr, "no pseudo-terminal\n");
        return 1;
    }
    termios tio{};
    ::tcgetattr(master, &tio);
    ::cfmakeraw(&tio);
    ::tcsetattr(master, TCSANOW, &tio);
    const QString slave = QString::fromLocal8Bit(::ptsname(master));

    QTemporaryDir dir;
    {
        QFile ini(dir.filePath(QStringLiteral("VarnelUtil.INI")));
        if (!ini.open(QIODevice::WriteOnly))
            return 1;
        ini.write(
            "[Port_Phone]\r\nComm Port=1\r\nSettings=115200,N,8,1\r\nDTREnable=True\r\nRTSEnable=True\r\n"
            "Handshaking=0\r\n");
    }
    IniFile ini(dir.filePath(QStringLiteral("VarnelUtil.INI")));
    SerialCommControl comm([&](int) { return slave; });
    RealTime time;
    ScriptedPrompts prompts;
    ModemSession session(comm, time, prompts);
    Terminal terminal(session, ini);
    terminal.Load();
    terminal.show();
    comm.setAutoProcess(CommControl::kAutoProcessTerminal);
    if (!comm.PortOpen()) {
        std::fprintf(stderr, "the port did not open\n");
        return 1;
    }
    TerminalScreen &screen = *terminal.Comm1Screen;

    qint64 received = 0;
    // The wall clock of a run starts with its first byte: starting the writer is no part of it.
    QElapsedTimer wall;
    QEventLoop loop;
    qint64 target = 0;
    QObject::connect(&comm, &CommControl::screenText, &app, [&](const QByteArray &bytes) {
        if (received == 0)
            wall.start();
        received += bytes.size();
        if (received >= target)
            loop.quit();
    });
    int paints = 0;
    struct PaintCounter : QObject
    {
        int *count;
        explicit PaintCounter(int *c) : count(c) {}
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint)
                ++*count;
            return false;
        }
    } counter(&paints);
    screen.viewport()->installEventFilter(&counter);
    QApplication::processEvents();

    qint64 lines = 0;
    const QByteArray data = stream(kStreamBytes, lines);
    const long rssBefore = currentRssKb();
    std::printf("stream: %lld bytes in %lld lines of %lld bytes, scroll-back %d lines\n",
                static_cast<long long>(data.size()), static_cast<long long>(lines),
                static_cast<long long>(streamLine(1).size()), screen.ScrollRows());

    const QStringList arguments = app.arguments();
    const qsizetype pacedAt = arguments.indexOf(QStringLiteral("--paced"));
    const bool pacedOnly = pacedAt >= 0;
    const int pacedSeconds =
        pacedAt >= 0 && pacedAt + 1 < arguments.size() && arguments[pacedAt + 1].toInt() > 0
            ? arguments[pacedAt + 1].toInt()
            : kDefaultPacedSeconds;
    const bool floodOnly = arguments.contains(QStringLiteral("--flood"));
    for (int run = 1; run <= (pacedOnly ? 0 : 3); ++run) {
        received = 0;
        target = data.size();
        paints = 0;
        LoopProbe probe;
        const Usage before = usage();
        probe.start();
        const pid_t writer = startWriter(master, data.size(), 0);
        loop.exec();
        // Shown means painted: the last repaint tick and its paint event are part of the time.
        screen.flush();
        screen.viewport()->repaint();
        const double seconds = wall.nsecsElapsed() / 1e9;
        probe.stop();
        const Usage after = usage();
        int status = 0;
        ::waitpid(writer, &status, 0);
        const bool lastLineShown =
            screen.rowText(screen.CursorRow() - 2) == QString::fromLatin1(streamLine(lines).chopped(2));
        const double cpu = after.cpuSeconds - before.cpuSeconds;
        std::printf("run %d: wall %.3f s, %.1f MB/s consumed and shown, cpu %.3f s, %.4f cpu-s per MB "
                    "(target <= 0.018), paints %d, worst event-loop delay %.1f ms (target <= 50), last line "
                    "shown %s, load %.2f\n",
                    run, seconds, data.size() / seconds / 1e6, cpu, cpu / (data.size() / 1e6), paints,
                    probe.worstMs(), lastLineShown ? "yes" : "NO", loadAverage());
        std::printf("        peak RSS %ld KB, RSS now %ld KB (%+ld KB since before the first run)\n",
                    after.maxRssKb, currentRssKb(), currentRssKb() - rssBefore);
    }

    if (floodOnly) {
        terminal.Unload();
        ::close(master);
        return 0;
    }

    // What one repaint of a full screen of text costs.
    {
        const int repaints = 200;
        const Usage before = usage();
        for (int i = 0; i < repaints; ++i)
            screen.viewport()->repaint();
        std::printf("full repaint: %.3f ms of cpu each\n",
                    (usage().cpuSeconds - before.cpuSeconds) * 1000 / repaints);
    }
    // What one repaint tick of a paced stream costs without the port: the lines of 200 ms at
    // 115200 baud interpreted and a screen of new rows painted.
    {
        const int ticks = 500;
        const qint64 linesPerTick =
            qint64(kBaud) / kBitsPerByte / kScrollingTicksPerSecond / streamLine(1).size();
        qint64 next = lines;
        const Usage before = usage();
        for (int i = 0; i < ticks; ++i) {
            QByteArray piece;
            for (qint64 n = 0; n < linesPerTick; ++n)
                piece += streamLine(++next);
            screen.receive(piece);
            screen.flush();
            screen.viewport()->repaint();
        }
        std::printf("scrolling tick of %lld lines: %.3f ms of cpu each, load %.2f\n",
                    static_cast<long long>(linesPerTick),
                    (usage().cpuSeconds - before.cpuSeconds) * 1000 / ticks, loadAverage());
    }

    // The paced runs: a modem talking at full line speed for a few seconds, first to the serial
    // control alone (what reading the port costs whatever shows it), then to the terminal window.
    const qint64 pacedBytes = qint64(kBaud) / kBitsPerByte * pacedSeconds;
    qint64 pacedLines = 0;
    const QByteArray paced = stream(pacedBytes, pacedLines);
    for (const bool shown : {false, true}) {
        screen.attach(shown ? &comm : nullptr);
        received = 0;
        target = paced.size();
        paints = 0;
        const Usage before = usage();
        const pid_t writer = startWriter(master, pacedBytes, kBaud);
        loop.exec();
        const double seconds = wall.nsecsElapsed() / 1e9;
        const Usage after = usage();
        int status = 0;
        ::waitpid(writer, &status, 0);
        const double cpu = after.cpuSeconds - before.cpuSeconds;
        std::printf("paced %d baud, %s: %lld bytes in %lld lines over %.2f s, cpu %.4f s, share %.2f %%%s, "
                    "paints %d, load %.2f\n",
                    kBaud, shown ? "terminal window" : "serial control alone",
                    static_cast<long long>(paced.size()), static_cast<long long>(pacedLines), seconds, cpu,
                    100.0 * cpu / seconds, shown ? " (target <= 0.6)" : "", paints, loadAverage());
    }

    terminal.Unload();
    ::close(master);
    return 0;
}
