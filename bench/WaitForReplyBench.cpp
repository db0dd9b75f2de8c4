// How much the modem session's waits cost on a real pseudo-terminal: the CPU used during a
// 5-second WaitForReply on a silent line, and how soon after a prompt arrives the wait returns.

#include "ModemSession.h"
#include "PseudoTerminal.h"
#include "ScriptedPrompts.h"
#include "SerialCommControl.h"
#include "TimeSource.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <sys/resource.h>

namespace {
double cpuSeconds()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    PseudoTerminal pty;
    if (!pty.isValid()) {
        std::fprintf(stderr, "no pseudo-terminal\n");
        return 1;
    }
    SerialCommControl comm([&](int) { return pty.slavePath(); });
    comm.setPortOpen(true);
    RealTime time;
    ScriptedPrompts prompts;
    ModemSession session(comm, time, prompts);
    comm.setAutoProcess(0);

    QElapsedTimer wall;
    const double cpu0 = cpuSeconds();
    wall.start();
    const bool found = session.WaitForReply("CMD:", 5000);
    const double wallSeconds = wall.elapsed() / 1000.0;
    const double cpu = cpuSeconds() - cpu0;
    std::printf("silent WaitForReply(5000): found=%d wall=%.3f s cpu=%.4f s share=%.3f %% (target < 1 %%)\n",
                found, wallSeconds, cpu, 100.0 * cpu / wallSeconds);

    // The prompt arrives at offsets spread over the 100 ms step; the wait sees it at the next step.
    double worst = 0, total = 0;
    const int trials = 20;
    for (int i = 0; i < trials; ++i) {
        const int offset = 5 + (i * 97) % 300;
        QElapsedTimer sent;
        QTimer::singleShot(offset, Qt::PreciseTimer, [&] {
            pty.write("\r\nCMD:");
            sent.start();
        });
        session.WaitForReply("CMD:", 1000);
        const double delay = sent.nsecsElapsed() / 1e6;
        worst = std::max(worst, delay);
        total += delay;
        pty.readAvailable();
    }
    std::printf("prompt to return: mean=%.1f ms worst=%.1f ms (target <= 105 ms)\n", total / trials, worst);
    return 0;
}
