#include "FlashUpdate.h"

#include "SessionRig.h"
#include "SimulatedModemLink.h"
#include "Tables.h"

#include <QDir>
#include <QTemporaryDir>

namespace {
// What the update showed, one entry a call.
struct RecordingView : FlashView
{
    QStringList log;
    void showProgress() override { log << QStringLiteral("show"); }
    void unloadProgress() override { log << QStringLiteral("unload"); }
    void setStage(const QString &text) override { log << text; }
    void setBlocksVisible(bool visible) override
    {
        log << QLatin1String(visible ? "blocks on" : "blocks off");
    }
    void setBlock(int block) override { log << QStringLiteral("block %1").arg(block); }
    void setTotal(int blocks) override { log << QStringLiteral("of %1").arg(blocks); }
    void setMaximum(qint64 maximum) override { log << QStringLiteral("max %1").arg(maximum); }
    void setValue(qint64 value) override { log << QStringLiteral("%1").arg(value); }
    void setTitle(const QString &title) override { log << title; }
    void restoreTitle() override { log << QStringLiteral("title"); }
    void clearScreen() override { log << QStringLiteral("clear"); }
};

const char *const kBoxes[][3] = {
    {"dongle", "Flash Update Not Available Through Dongle!"},
    {"no system",
     "Varnel operating system can not be found.  Unable to save any modem parameters. You will have "
     "to reconfigure the address, frequency and squelch after the flash utility."},
    {"no loader",
     "Can not enter flash mode!\rIf your Varnel has two switches, set both to OFF position and reset "
     "modem.\rIf you Varnel has 8 switches, place switches 1,2,3 & 8 to OFF position and reset Varnel"},
    {"failure", "Failure During Flash Download.  Reset Modem and Try Again."},
    {"dongle?",
     "The Varnel is not detected on the selected comm port.  Would you like to initialize the IR Dongel?"},
    {"switch", "Not communicating.  Make sure last switch on switch block (#8 or #2) is down.  Then reset."},
    {"error 53", "53 = File not found"},
    {"error 75", "75 = Path/File access error"},
    {"error 9", "9 = Subscript out of range"},
};

// The readers' commands, and the standard modem's settings going back.
const QString kGather = QStringLiteral(
    "Model\\r | Option\\r | Version\\r | add\\r | setc\\r | asquelch\\r | rflow\\r | rxmark\\r | rfp\\r | "
    "comrate\\r | sel/a1\\r | sel/n1\\r | sel/n2\\r | squelch\\r | datarate\\r | rxd\\r | txf\\r | txe\\r | "
    "frack\\r | s/n\\r");
const QString kWriteBack =
    QStringLiteral("model Q4U:option 0:add 1:setc 0\\r | sel/a1 8:sel/n1 8832:sel/n2 0:squelch 30\\r | "
                   "s/n 14210:asquelch 40:rflow OFF:comrate 40\\r | rxmark 0:rfp 0\\r | "
                   "datarate 0:rxd 2:txf 3:txe 1:frack 50\\r | save\\r | save 2\\r | reset\\r");
const QString kGatherShown =
    QStringLiteral("show | Gathering Modem Information | max 100 | 10 | 25 | 50 | 75 | 100");
const QString kReprogramShown = QStringLiteral("Reprogramming Varnel | blocks off | max 100 | 20 | 30 | 40 | "
                                               "45 | 50 | 75 | clear | 100 | title | unload");

// An update against the simulated modem: its state ("loader": waiting in its loader; "no system";
// "adaptor": reached through the infra-red adaptor; "dead"), the image's length in bytes and what
// befalls it once chosen, then the boxes, the writes (blocks by their length), what the update
// showed, and the port, pointer and modem afterwards.
struct Case
{
    const char *name;
    const char *modem;
    int imageBytes;
    const char *fault;
    const char *boxes;
    const char *writes;
    const char *shown;
    const char *after;
};

const Case kCases[] = {
    {"one block", "", 4096, "", "file",
     "{enter} | {gather} | \\r | flash\\r | \\r | <01> | <4096> | <04> | \\r | {back}",
     "{gather} | COM1: Flash Mode | show | Uploading Block | blocks on | show | max 4096 | of 1 | block 1 | "
     "4096 | "
     "{reprogram}",
     "3 1 19200,n,8,1 idle Command 2.10"},
    {"two blocks, then STX", "", 8192, "", "file",
     "{enter} | {gather} | \\r | flash\\r | \\r | <01> | <4096> | <02> | <4096> | <04> | \\r | {back}", "",
     "3 1 19200,n,8,1 idle Command 2.10"},
    // Rounded up: the missing bytes are each an error, and the last byte goes out again.
    {"a tail rounded up", "", 8189, "", "file | error 9 | error 9 | error 9",
     "{enter} | {gather} | \\r | flash\\r | \\r | <01> | <4096> | <02> | <4096> | <04> | \\r | {back}", "",
     "3 1 19200,n,8,1 idle Command 2.10"},
    // Shorter than half a block: SOH alone, and the restart never comes.
    {"no whole block", "", 2047, "", "file", "{enter} | {gather} | \\r | flash\\r | \\r | <01> | \\r | \\r",
     "{gather} | COM1: Flash Mode | show | Uploading Block | blocks on | show | max 2047 | of 0 | title | "
     "unload",
     "3 1 19200,n,8,1 idle Loader 1.52"},
    {"waiting in its loader", "loader", 4096, "", "file",
     "\\r | r | <03> | {gather} | \\r | flash\\r | \\r | <01> | <4096> | <04> | \\r | {back}", "",
     "3 1 19200,n,8,1 idle Command 2.10"},
    {"no operating system", "no system", 4096, "", "no system | file",
     "\\r | r | \\r | \\r | <01> | <4096> | <04> | \\r",
     "COM1: Flash Mode | show | Uploading Block | blocks on | show | max 4096 | of 1 | block 1 | 4096 | "
     "title | "
     "unload",
     "3 1 19200,n,8,1 idle Command 2.10"},
    {"cancel in the dialog", "", -1, "", "file", "{enter} | {gather}", "{gather} | unload",
     "3 1 19200,n,8,1 idle Command 1.52"},
    {"already on the adaptor", "adaptor set", 4096, "", "dongle", "", "", "3 1 9600,n,8,1 idle Command 1.52"},
    {"adaptor found by the search", "adaptor", 4096, "", "dongle?:Yes | dongle",
     "\\r | <03> | FA\\r | <D1> | <C0> | <D0> | <03> | E | <03>", "", "3 1 9600,n,8,1 idle Command 1.52"},
    {"no command prompt", "dead", 4096, "", "dongle?:No | switch:Abort", "\\r | <03> | FA\\r | FA\\r", "",
     "3 1 19200,n,8,1 idle Command 1.52"},
    {"no loader", "", 4096, "dead", "file | no loader",
     "{enter} | {gather} | \\r | flash\\r | \\r | flash\\r | \\r | \\r",
     "{gather} | COM1: Flash Mode | show | Uploading Block | blocks on | title | unload",
     "3 1 19200,n,8,1 idle Command 1.52"},
    {"silent during the upload", "", 8192, "dead later", "file | failure",
     "{enter} | {gather} | \\r | flash\\r | \\r | <01> | <4096> | \\r | \\r",
     "{gather} | COM1: Flash Mode | show | Uploading Block | blocks on | show | max 8192 | of 2 | block 1 | "
     "4096 | "
     "unload | title | unload",
     "3 1 19200,n,8,1 idle Loader 1.52"},
    {"a block refused", "", 8192, "refuse", "file | failure",
     "{enter} | {gather} | \\r | flash\\r | \\r | <01> | <4096> | \\r | \\r", "",
     "3 1 19200,n,8,1 idle Loader 1.52"},
    {"the file gone", "", 4096, "remove", "file | error 53",
     "{enter} | {gather} | \\r | flash\\r | \\r | <01> | \\r | \\r", "", "3 1 19200,n,8,1 idle Loader 1.52"},
    {"the file unreadable", "", 4096, "directory", "file | error 75",
     "{enter} | {gather} | \\r | flash\\r | \\r | <01> | \\r | \\r", "", "3 1 19200,n,8,1 idle Loader 1.52"},
    // The line drops while the first block is programmed: the port is closed, nothing more goes out.
    {"the port lost", "", 8192, "hang up", "file | failure",
     "{enter} | {gather} | \\r | flash\\r | \\r | <01> | <4096>", "", "3 1 19200,n,8,1 idle closed"},
};

QByteArray image(int length)
{
    QByteArray bytes(length, '\0');
    for (int i = 0; i < length; ++i)
        bytes[i] = char((i * 7 + 3) & 0xff);
    if (length > 200)
        bytes.replace(100, 12, "VERSION=2.10");
    return bytes;
}

QString expand(QString text)
{
    return text.replace(QStringLiteral("{enter}"), QStringLiteral("\\r | <03>"))
        .replace(QStringLiteral("{gather}"), kGather)
        .replace(QStringLiteral("{back}"), kWriteBack);
}

struct Rig
{
    sim::SimulatedModemLink link;
    ScriptedPrompts prompts{&link.time()};
    ModemSession session{link.port(), link.time(), prompts};
    RecordingView view;

    explicit Rig(const sim::Scenario &scenario) : link(scenario)
    {
        link.time().advance(1000);
        link.port().Input();
        link.port().setAutoProcess(CommControl::kAutoProcessTerminal);
        link.port().setRThreshold(1);
    }
    QStringList writes()
    {
        QStringList shown;
        for (const QByteArray &w : link.port().writes())
            shown << (w.size() > 64 ? QStringLiteral("<%1>").arg(w.size()) : SessionRig::shown(w));
        return shown;
    }
    QString after()
    {
        sim::Modem &m = link.local();
        const char *modes[] = {"Command", "Converse", "Remote", "Loader", "Operating"};
        CommControl &port = link.port();
        return QStringLiteral("%1 %2 %3 %4 %5")
            .arg(port.AutoProcess())
            .arg(port.RThreshold())
            .arg(port.Settings(), QLatin1String(prompts.busy() ? "busy" : "idle"),
                 port.PortOpen() ? QLatin1String(modes[int(m.mode())]) + u' ' + m.firmwareVersion()
                                 : QStringLiteral("closed"));
    }
};
} // namespace

class FlashUpdateTest : public QObject
{
    Q_OBJECT
private slots:
    void updates_data() { addRows(kCases); }
    void updates()
    {
        const Case &c = fetchRow(kCases);
        const QString modem = QLatin1String(c.modem);
        sim::Scenario scenario = sim::Scenario::standard();
        // A unit set up on site: no echo, so the readers get clean replies.
        scenario.modems[0].settings = {{QStringLiteral("ECHO"), QStringLiteral("OFF")}};
        scenario.modems[0].operatingSystem = modem != u"no system";
        scenario.modems[0].dead = modem == u"dead";
        scenario.irAdaptor = modem.startsWith(u"adaptor");
        Rig rig(scenario);
        rig.session.IrDongleActive = modem == u"adaptor set";
        if (modem == u"loader")
            rig.link.local().loader().enter();
        rig.link.time().advance(100);
        rig.link.port().clearEvents();

        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("q40.hex"));
        QVERIFY(writeBytes(path, image(c.imageBytes)));
        const QString fault = QLatin1String(c.fault);
        auto onChoice = [&] {
            sim::Modem &local = rig.link.local();
            if (fault == u"dead")
                local.setDead(true);
            if (fault == u"dead later")
                rig.link.time().after(2500, [&local] { local.setDead(true); });
            if (fault == u"refuse")
                local.loader().refuseBlock(1);
            if (fault == u"remove" || fault == u"directory")
                QFile::remove(path);
            if (fault == u"directory")
                QDir().mkdir(path);
            if (fault == u"hang up")
                rig.link.time().after(3000, [&] { rig.link.line().hangUp(); });
        };
        // Each box by its key and the user's answer; "file" is the file dialog.
        for (const QString &item : items(c.boxes)) {
            const QString key = item.section(u':', 0, 0);
            if (key == u"file") {
                rig.prompts.expectFileDialog(c.imageBytes < 0 ? std::nullopt : std::optional(path))
                    .then(onChoice);
                continue;
            }
            const QString text =
                QLatin1String((*std::find_if(std::begin(kBoxes), std::end(kBoxes),
                                             [&](auto &b) { return key == QLatin1String(b[0]); }))[1]);
            if (key.startsWith(u"error"))
                rig.prompts.expectMsgBox(
                    appErrorText({text.section(u' ', 0, 0).toInt(), text.section(QStringLiteral(" = "), 1)}));
            else
                rig.prompts.expectAnswered(text + item.mid(key.size()));
        }
        FlashUpdate(rig.session, rig.view).mnuFlash();
        QVERIFY(rig.prompts.verify());
        QCOMPARE(rig.writes().join(QStringLiteral(" | ")), expand(QLatin1String(c.writes)));
        if (*c.shown)
            QCOMPARE(rig.view.log.join(QStringLiteral(" | ")),
                     QString(QLatin1String(c.shown))
                         .replace(QStringLiteral("{gather}"), kGatherShown)
                         .replace(QStringLiteral("{reprogram}"), kReprogramShown));
        rig.link.time().advance(2000);
        QCOMPARE(rig.after(), QLatin1String(c.after));
    }

    // Whole blocks by rounding, a half to the even count; the bar repaints at most every 50 ms.
    void blocksAndBar()
    {
        const qint64 lengths[][2] = {{0, 0},    {2047, 0}, {2048, 0}, {2049, 1},
                                     {4096, 1}, {6144, 2}, {10240, 2}};
        for (const auto &[length, blocks] : lengths)
            QCOMPARE(flashBlockCount(length), int(blocks));
        VirtualTime time;
        UpdateLimit bar(time, std::chrono::milliseconds(50));
        QVERIFY(bar.due());
        time.advance(49);
        QVERIFY(!bar.due());
        time.advance(1);
        QVERIFY(bar.due());
        QVERIFY(!bar.due());
    }

    // Every setting gathered goes back as it was, into both banks; the new system's own version stays.
    void settingsSurviveTheUpdate()
    {
        sim::Scenario scenario = sim::Scenario::standard();
        QMap<QString, QString> site;
        for (const QString &pair :
             QStringLiteral("ECHO=OFF MODEL=Q4Y OPTION=80 ADDRESS=17 SETCONNECT=23 ASQUELCH=55 "
                            "RFLOW=ON RXMARK=4 RFPOWER=1 SEL/A1=9 SEL/N1=4410 SEL/N2=12 "
                            "SQUELCH=47 DATARATE=64 RXDATA=3 TXFLAG=2 TXEND=2 FRACK=60 "
                            "S/N=15021 COMRATE=40")
                 .split(u' '))
            site.insert(pair.section(u'=', 0, 0), pair.section(u'=', 1));
        scenario.modems[0].settings = site;
        Rig rig(scenario);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("q40.hex"));
        QVERIFY(writeBytes(path, image(3 * 4096)));
        rig.prompts.expectFileDialog(path);
        FlashUpdate(rig.session, rig.view).mnuFlash();
        QVERIFY(rig.prompts.verify());
        rig.link.time().advance(2000);
        sim::Modem &m = rig.link.local();
        QCOMPARE(m.firmwareVersion(), QStringLiteral("2.10"));
        QCOMPARE(rig.link.truth().images.constLast().bytes, image(3 * 4096));
        for (auto it = site.begin(); it != site.end(); ++it) {
            if (it.key() == u"ECHO")
                continue;
            QCOMPARE(it.key() + u'=' + m.savedValue(it.key()), it.key() + u'=' + it.value());
            QCOMPARE(it.key() + u'=' + m.factoryValue(it.key()), it.key() + u'=' + it.value());
        }
    }
};

QTEST_GUILESS_MAIN(FlashUpdateTest)
#include "FlashUpdateTest.moc"
