// What the polling test costs the computer.
//   PollingBench            1 000 polls of a remote over a lossy path against the simulated modem in
//                           virtual time: CPU per poll and virtual time per poll; then 5 000 polls
//                           over a clean path, with the memory the process holds after each 1 000
//                           (flat: a clean poll leaves no report row behind).
//   PollingBench --real [S] S seconds (60 unless given) of polling in real time against the
//                           simulator tool on a pseudo-terminal, in its own process: the share of
//                           one core the program used while it waited (target: below 1 %).

#include "ModemParams.h"
#include "ModemSession.h"
#include "PollingRun.h"
#include "ScriptedPrompts.h"
#include "SerialCommControl.h"
#include "SimulatedModemLink.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTimer>
#include <cstdio>
#include <sys/resource.h>
#include <unistd.h>

namespace {
constexpr int kPolls = 1000;

double cpuSeconds()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// Resident memory now, not the peak.
long residentKilobytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return -1;
    return statm.readAll().split(' ').value(1).toLong() * (::sysconf(_SC_PAGESIZE) / 1024);
}

sim::Scenario remoteAt12(double lossRate)
{
    sim::Scenario scenario = sim::Scenario::standard();
    sim::ModemProfile remote;
    remote.settings.insert(QStringLiteral("ADDRESS"), QStringLiteral("12"));
    scenario.modems << remote;
    scenario.links = {{1, 12, 10.0, 0, lossRate, {}}};
    return scenario;
}

// Polls until the count is reached; the counter is reset between runs.
void pollFor(PollingRun &run, int polls)
{
    int done = 0;
    run.linkShown = [&](int, const QString &, const LinkRecord &) {
        if (++done == polls)
            run.StopPolling();
    };
    run.StopLoop = run.StopRequested = false;
    run.StartPolling();
}

int virtualRun()
{
    {
        sim::SimulatedModemLink link(remoteAt12(0.2));
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        PollingRun run(session, [] { return QStringList{QStringLiteral("12")}; });
        run.ConfigureVarnel();
        run.TestPacket = MakeTestPattern(99);
        const qint64 startMs = link.time().elapsedMs();
        const double startCpu = cpuSeconds();
        pollFor(run, kPolls);
        const double cpu = cpuSeconds() - startCpu;
        std::printf("%d polls over a lossy path: %.1f us CPU per poll, %.0f ms of virtual time per poll, "
                    "%lld transmissions, %lld retries, %d rows\n",
                    kPolls, cpu * 1e6 / kPolls, double(link.time().elapsedMs() - startMs) / kPolls,
                    run.links[0].Transmissions, run.links[0].RetryTotal, int(run.rows.size()));
    }
    sim::SimulatedModemLink link(remoteAt12(0));
    ScriptedPrompts prompts(&link.time());
    ModemSession session(link.port(), link.time(), prompts);
    PollingRun run(session, [] { return QStringList{QStringLiteral("12")}; });
    run.ConfigureVarnel();
    run.TestPacket = MakeTestPattern(99);
    std::printf("clean path, resident memory after each %d polls (kB):", kPolls);
    for (int phase = 0; phase < 5; ++phase) {
        pollFor(run, kPolls);
        // The simulator's own records of the air and the port are not the program's.
        link.truth() = {};
        link.port().clearEvents();
        std::printf(" %ld", residentKilobytes());
    }
    std::printf("; %d rows, %lld transmissions\n", int(run.rows.size()), run.links[0].Transmissions);
    return 0;
}

int realRun(int seconds)
{
    QProcess simulator;
    simulator.start(QCoreApplication::applicationDirPath() + QStringLiteral("/varnel-modem-sim"),
                    {QStringLiteral("--scenario"), QStringLiteral("demo")});
    if (!simulator.waitForReadyRead(10000)) {
        std::fprintf(stderr, "the simulator did not start\n");
        return 1;
    }
    const QString device = QString::fromLocal8Bit(simulator.readLine()).trimmed();
    SerialCommControl comm([&](int) { return device; });
    comm.setSettings(QStringLiteral("9600,N,8,1"));
    comm.setPortOpen(true);
    RealTime time;
    ScriptedPrompts prompts;
    ModemSession session(comm, time, prompts);
    comm.setAutoProcess(CommControl::kAutoProcessProgram);
    PollingRun run(session, [] { return QStringList{QStringLiteral("12")}; });
    run.ConfigureVarnel();
    run.TestPacket = MakeTestPattern(99);
    int polls = 0;
    run.linkShown = [&](int, const QString &, const LinkRecord &) { ++polls; };
    QTimer::singleShot(seconds * 1000, [&] { run.StopPolling(); });
    QElapsedTimer wall;
    wall.start();
    const double startCpu = cpuSeconds();
    run.StartPolling();
    const double cpu = cpuSeconds() - startCpu;
    const double wallSeconds = double(wall.elapsed()) / 1000;
    std::printf("%.0f s of real polling: %d polls, %lld transmissions, CPU %.3f s = %.2f %% of one core "
                "(target below 1 %%)\n",
                wallSeconds, polls, run.links[0].Transmissions, cpu, 100 * cpu / wallSeconds);
    simulator.kill();
    simulator.waitForFinished();
    return polls > 0 ? 0 : 1;
}
} // namespace

int main(int argc, char *argv[])
{
    // A short date of ten characters at most, as the report's columns expect.
    qputenv("LC_ALL", "sv_SE.UTF-8");
    QCoreApplication app(argc, argv);
    if (argc > 1 && QByteArray(argv[1]) == "--real")
        return realRun(argc > 2 ? QByteArray(argv[2]).toInt() : 60);
    return virtualRun();
}
