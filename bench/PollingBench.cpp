// What a poll of the polling test costs the computer: 1 000 polls of a remote over a lossy path,
// against the simulated modem in virtual time, with the CPU used per poll, the virtual time a poll
// takes, and the memory the run holds at the start and the end.

#include "ModemParams.h"
#include "ModemSession.h"
#include "PollingRun.h"
#include "ScriptedPrompts.h"
#include "SimulatedModemLink.h"

#include <QCoreApplication>
#include <cstdio>
#include <sys/resource.h>

namespace {
constexpr int kPolls = 1000;

double cpuSeconds()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

long residentKilobytes()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
} // namespace

int main(int argc, char *argv[])
{
    // A short date of ten characters at most, as the report's columns expect.
    qputenv("LC_ALL", "sv_SE.UTF-8");
    QCoreApplication app(argc, argv);
    sim::Scenario scenario = sim::Scenario::standard();
    sim::ModemProfile remote;
    remote.settings.insert(QStringLiteral("ADDRESS"), QStringLiteral("12"));
    scenario.modems << remote;
    scenario.links = {{1, 12, 10.0, 0, 0.2, {{600000, 120000}}}};
    sim::SimulatedModemLink link(scenario);
    ScriptedPrompts prompts(&link.time());
    ModemSession session(link.port(), link.time(), prompts);
    PollingRun run(session, [] { return QStringList{QStringLiteral("12")}; });
    run.ConfigureVarnel();
    run.TestPacket = MakeTestPattern(99);
    int polls = 0;
    run.linkShown = [&](int, const QString &, const LinkRecord &) {
        if (++polls == kPolls)
            run.StopPolling();
    };
    const long startKb = residentKilobytes();
    const qint64 startMs = link.time().elapsedMs();
    const double startCpu = cpuSeconds();
    run.StartPolling();
    const double cpu = cpuSeconds() - startCpu;
    std::printf("%d polls: %.1f us CPU per poll, %.0f ms of virtual time per poll, %lld transmissions, "
                "%lld retries, %d rows; peak memory %ld kB before, %ld kB after\n",
                polls, cpu * 1e6 / polls, double(link.time().elapsedMs() - startMs) / polls,
                run.links[0].Transmissions, run.links[0].RetryTotal, int(run.rows.size()), startKb,
                residentKilobytes());
    return 0;
}
