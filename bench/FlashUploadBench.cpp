// What the firmware upload costs the program: an image (256 KB unless a size in KB is given) goes
// through the simulated modem's flash loader on a pseudo-terminal at the loader's 19200 baud. The
// wire and the loader's programming take their time; the program's overhead is the wall time it
// spends outside its waits, and its throughput is the image over that overhead (target: at least
// 200 KB/s, under 1 % of the wire time). Also printed: the bar's repaints, at most 20 a second.

#include "FlashUpdate.h"
#include "ModemSession.h"
#include "Prompts.h"
#include "PtyServer.h"
#include "SerialCommControl.h"
#include "TimeSource.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <map>

namespace {

// Real waits, and the time spent in them.
class MeteredTime : public RealTime
{
public:
    void MsDelay(int ms) override
    {
        QElapsedTimer t;
        t.start();
        RealTime::MsDelay(ms);
        waitedNs += t.nsecsElapsed();
    }
    qint64 waitedNs = 0;
};

class PrintedPrompts : public Prompts
{
public:
    MsgAnswer MsgBox(const MsgBoxRequest &r) override
    {
        std::fprintf(stderr, "box: %s\n", qPrintable(r.text));
        ++boxes;
        return MsgAnswer::Ok;
    }
    std::optional<QString> InputBox(const InputBoxRequest &) override { return std::nullopt; }
    QString FileDialog(const FileDialogRequest &) override { return {}; }
    std::optional<FontChoice> FontDialog(const FontChoice &, const QString &) override
    {
        return std::nullopt;
    }
    void Beep() override {}
    void setBusy(bool) override {}
    int boxes = 0;
};

// Counts the bar's repaints by the second of the upload.
struct CountingView : FlashView
{
    QElapsedTimer clock;
    std::map<qint64, int> perSecond;
    int blocks = 0;
    void showProgress() override {}
    void unloadProgress() override {}
    void setStage(const QString &) override {}
    void setBlocksVisible(bool) override {}
    void setBlock(int block) override { blocks = block; }
    void setTotal(int) override {}
    void setMaximum(qint64) override {}
    void setValue(qint64) override { ++perSecond[clock.elapsed() / 1000]; }
    void setTitle(const QString &) override {}
    void restoreTitle() override {}
    void clearScreen() override {}
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const int kilobytes = argc > 1 ? QByteArray(argv[1]).toInt() : 256;
    RealTime simTime;
    sim::PtyServer server(simTime, sim::Scenario::standard());
    QString error;
    if (!server.start(&error)) {
        std::fprintf(stderr, "no pseudo-terminal: %s\n", qPrintable(error));
        return 1;
    }
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bench.hex"));
    QByteArray image(kilobytes * 1024, '\0');
    for (qsizetype i = 0; i < image.size(); ++i)
        image[i] = char((i * 31 + 7) & 0xff);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(image) != image.size())
        return 1;
    file.close();

    SerialCommControl comm([&](int) { return server.slavePath(); });
    comm.setSettings(QStringLiteral("19200,N,8,1"));
    comm.setPortOpen(true);
    MeteredTime time;
    PrintedPrompts prompts;
    ModemSession session(comm, time, prompts);
    comm.setAutoProcess(CommControl::kAutoProcessProgram);
    comm.Output("flash\r");
    if (!session.WaitForReply("FLASH:", 2000)) {
        std::fprintf(stderr, "the loader did not answer\n");
        return 1;
    }

    CountingView view;
    FlashUpdate update(session, view);
    time.waitedNs = 0;
    QElapsedTimer wall;
    wall.start();
    view.clock.start();
    update.LoadFlash(path);
    const double wallSeconds = double(wall.nsecsElapsed()) / 1e9;
    const double overheadSeconds = wallSeconds - double(time.waitedNs) / 1e9;
    const double wireSeconds = double(image.size()) * 10 / 19200;
    // The loader commits the image once the EOT has crossed the line.
    time.MsDelay(1000);
    int busiest = 0;
    for (const auto &[second, count] : view.perSecond)
        busiest = std::max(busiest, count);
    const bool whole = !server.network().truth().images.isEmpty() &&
                       server.network().truth().images.constLast().bytes == image;
    std::printf("image %d KB in %d blocks, loaded whole: %s, boxes: %d\n", kilobytes, view.blocks,
                whole ? "yes" : "no", prompts.boxes);
    std::printf("wall %.2f s (wire alone %.2f s); program overhead %.3f s = %.1f KB/s (target >= 200 KB/s), "
                "%.2f %% of the wire time\n",
                wallSeconds, wireSeconds, overheadSeconds, kilobytes / std::max(overheadSeconds, 1e-9),
                100 * overheadSeconds / wireSeconds);
    std::printf("bar repaints: at most %d in one second (limit 20)\n", busiest);
    return whole ? 0 : 1;
}
