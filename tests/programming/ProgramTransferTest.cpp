#include "ProgramTransfer.h"

#include "CommandListBox.h"
#include "MemoryCommControl.h"
#include "ModemSession.h"
#include "ProgrammingMenu.h"
#include "ScriptedModem.h"
#include "ScriptedPrompts.h"
#include "SimulatedModemLink.h"

#include <QAction>
#include <QApplication>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
const QString kRefused =
    u"Varnel reported error with this command.  Please verify command spelling and useage."_s;
const QString kEmptyList = u"You Cannot Save.  There Are No Commands In The Command List."_s;
const QString kComplete =
    u"Download Complete.\r\nTo Place Varnel in Operation, Set Last Switch (#2 or #8) on "
    "Serial Port Setup-Switches to ON (Up) Position and Reset Varnel."_s;
const QString kLostLink = u"Lost Link to Remote Varnel"_s;

// Every write on the wire, one entry per write, bytes as they went.
QList<QByteArray> writes(const MemoryCommControl &port)
{
    return port.writes();
}

QList<WireEvent> writeEvents(const MemoryCommControl &port)
{
    QList<WireEvent> list;
    for (const WireEvent &e : port.events())
        if (e.kind == WireEvent::Kind::Write)
            list << e;
    return list;
}

qint64 timeOfWrite(const MemoryCommControl &port, const QByteArray &bytes)
{
    for (const WireEvent &e : port.events())
        if (e.kind == WireEvent::Kind::Write && e.bytes == bytes)
            return e.atMs;
    return -1;
}

// The connected modem of a scenario with a few settings away from factory and a route table.
sim::Scenario configuredScenario()
{
    sim::Scenario s = sim::Scenario::standard();
    sim::ModemProfile &local = s.modems[0];
    local.settings = {{u"NETWORK"_s, u"12"_s}, {u"SQUELCH"_s, u"40"_s}, {u"ECHO"_s, u"ON"_s}};
    local.routes = {u"1,5,"_s, u"2,40,41,"_s};
    local.appends = {u"1,1,25,28,*"_s};
    return s;
}

// The simulated modem on the port, the session over it, and the editor screen.
struct SimRig
{
    sim::SimulatedModemLink link;
    ScriptedPrompts prompts{&link.time()};
    ModemSession session{link.port(), link.time(), prompts};
    std::unique_ptr<ProgrammingMenu> menu;

    explicit SimRig(const sim::Scenario &scenario = configuredScenario()) : link(scenario)
    {
        link.time().advance(1000); // the modem has settled after power-up
        link.port().Input();
        link.port().clearEvents();
        menu = std::make_unique<ProgrammingMenu>(session);
    }
    ~SimRig() { RestoreCursors(); }

    MemoryCommControl &port() { return link.port(); }
    CommandListBox &list() { return menu->cmboedit(); }
    void trigger(const char *name) { menu->findChild<QAction *>(QLatin1String(name))->trigger(); }
    static void RestoreCursors()
    {
        while (QApplication::overrideCursor())
            QApplication::restoreOverrideCursor();
    }
};

// A far end with exact canned replies, for replies the firmware never gives.
struct ScriptRig
{
    VirtualTime time;
    MemoryCommControl port;
    ScriptedModem modem{port, time};
    ScriptedPrompts prompts{&time};
    ModemSession session{port, time, prompts};
    QStringList list;

    ScriptRig()
    {
        port.setPortOpen(true);
        port.setAutoProcess(CommControl::kAutoProcessProgram);
        port.clearEvents();
    }
    ~ScriptRig() { SimRig::RestoreCursors(); }
};
} // namespace

class ProgramTransferTest : public QObject
{
    Q_OBJECT
private slots:
    void cleanup();

    void readTakesTheListingThenTheRoutes();
    void readAsksToSaveTheOldListFirst();
    void readProgramDownloadsUnchanged();
    void readOfAReplyWithoutFinalCarriageReturn();
    void readKeepsOneHundredAndOneLines();
    void readWithoutAPromptReportsALostLink();
    void readWhenTheModemDoesNotAnswer();
    void readLeftInRemoteModeSkipsTheEntry();
    void remoteReadEndsTheLinkAndResetsTheLocalModem();
    void remoteReadWithoutAPromptSendsNothingMore();

    void downloadResetsThenSendsEveryLineAndSaves();
    void downloadSendsLinesExactlyAsStored();
    void downloadStopsAtARefusedLine();
    void downloadOfAnEmptyListResetsTheModemFirst();
    void downloadPassesOverEmptyLines();
    void downloadOverTheAdaptor_data();
    void downloadOverTheAdaptor();
    void downloadWhenTheModemDoesNotAnswer();
};

void ProgramTransferTest::cleanup()
{
    SimRig::RestoreCursors();
}

void ProgramTransferTest::readTakesTheListingThenTheRoutes()
{
    SimRig rig;
    const qint64 start = rig.link.time().elapsedMs();
    rig.trigger("mnureadconn");
    QVERIFY(rig.prompts.verify());
    QCOMPARE(writes(rig.port()), (QList<QByteArray>{"\x03", "he ch\r", "route\r", "append\r"}));
    // The listing request goes out as soon as the first look finds the prompt.
    QCOMPARE(timeOfWrite(rig.port(), "\x03"), start);
    QCOMPARE(timeOfWrite(rig.port(), "he ch\r"), start + 100);
    QCOMPARE(rig.list().lines(), (QStringList{u"NETWORK 12"_s, u"SQUELCH 40"_s, u"ROUTE 1,5,"_s,
                                              u"ROUTE 2,40,41,"_s, u"APPEND 1,1,25,28,*"_s}));
    QCOMPARE(rig.session.ProgMode, QString());
    QVERIFY(!rig.prompts.busy());
    // Reading changes nothing in the modem.
    QVERIFY(rig.link.truth().factoryDefaults.isEmpty());
    QCOMPARE(rig.link.local().value(u"NETWORK"_s), u"12"_s);
}

void ProgramTransferTest::readAsksToSaveTheOldListFirst()
{
    SimRig rig;
    rig.menu->AddCommand(u"OLD 1"_s);
    rig.prompts.expectMsgBox(u"Do You Wish to Save The Current Command List?"_s, MsgAnswer::No)
        .withIcon(MsgIcon::Question)
        .withButtons(MsgButtons::YesNo)
        .then([&rig] {
            // The question comes before anything goes to the modem.
            QVERIFY(rig.port().writes().isEmpty());
        });
    rig.trigger("mnureadconn");
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.list().line(0), u"NETWORK 12"_s);
    QVERIFY(!rig.list().lines().contains(u"OLD 1"_s));
}

void ProgramTransferTest::readProgramDownloadsUnchanged()
{
    QStringList program;
    {
        SimRig source;
        source.trigger("mnureadconn");
        program = source.list().lines();
    }
    // A factory-fresh unit takes the program that was read, routes included.
    SimRig target(sim::Scenario::standard());
    for (const QString &line : program)
        target.menu->AddCommand(line);
    target.prompts.expectMsgBox(kComplete).withIcon(MsgIcon::Information);
    target.trigger("mnuconnected");
    QVERIFY(target.prompts.verify());
    target.link.time().advance(1000);
    const sim::Modem &modem = target.link.local();
    QCOMPARE(modem.savedValue(u"NETWORK"_s), u"12"_s);
    QCOMPARE(modem.savedValue(u"SQUELCH"_s), u"40"_s);
    QCOMPARE(modem.routes(), (QStringList{u"1,5,"_s, u"2,40,41,"_s}));
    QCOMPARE(modem.appends(), QStringList{u"1,1,25,28,*"_s});
}

void ProgramTransferTest::readOfAReplyWithoutFinalCarriageReturn()
{
    ScriptRig rig;
    rig.modem.answer("\x03", "\r\nCMD:");
    rig.modem.answer("he ch\r", "CMD:he ch\r\nADDRESS 5\r\nNETWORK 37");
    rig.modem.answer("route\r", "route\r\n1,5,\r\nCMD:");
    rig.modem.answer("append\r", "append\r\nCMD:");
    ReadProgram(rig.session, rig.list);
    QVERIFY(rig.prompts.verify());
    // The tail of the reply is kept as it stands, then the route.
    QCOMPARE(rig.list, (QStringList{u"ADDRESS 5"_s, u"RK 37"_s, u"ROUTE 1,5,"_s}));
    QCOMPARE(rig.port.writes(), (QList<QByteArray>{"\x03", "he ch\r", "route\r", "append\r"}));
}

void ProgramTransferTest::readKeepsOneHundredAndOneLines()
{
    ScriptRig rig;
    QByteArray listing = "he ch\r\n";
    QStringList expected;
    for (int i = 0; i < 110; ++i) {
        const QByteArray line = "MESS L" + QByteArray::number(i);
        listing += line + "\r\n";
        if (i < 101)
            expected << QString::fromLatin1(line);
    }
    rig.modem.answer("\x03", "\r\nCMD:");
    rig.modem.answer("he ch\r", listing + "CMD:");
    rig.modem.answer("route\r", "route\r\n1,5,\r\nCMD:");
    rig.modem.answer("append\r", "append\r\n1,1,25,28,*\r\nCMD:");
    ReadProgram(rig.session, rig.list);
    QVERIFY(rig.prompts.verify());
    expected << u"ROUTE 1,5,"_s << u"APPEND 1,1,25,28,*"_s;
    QCOMPARE(rig.list, expected);
}

void ProgramTransferTest::readWithoutAPromptReportsALostLink()
{
    ScriptRig rig;
    rig.session.ProgMode = u"Command"_s;
    rig.list.append(u"KEPT 1"_s);
    rig.modem.answer("\x03", "\r\nCMD:");
    rig.modem.answer("he ch\r", "he ch\r\nADDRESS 5\r\nNETWORK 37\r\n");
    rig.prompts.expectMsgBox(kLostLink)
        .withIcon(MsgIcon::Exclamation)
        .withButtons(MsgButtons::OkOnly)
        .then([&rig] {
            // The pointer is back before the box shows.
            QVERIFY(!rig.prompts.busy());
        });
    ReadProgram(rig.session, rig.list);
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.port.writes(), (QList<QByteArray>{"\x03", "he ch\r"}));
    QCOMPARE(rig.list, QStringList{u"KEPT 1"_s});
    QCOMPARE(rig.session.ProgMode, u"Command"_s);
}

void ProgramTransferTest::readWhenTheModemDoesNotAnswer()
{
    sim::Scenario dead = sim::Scenario::standard();
    dead.modems[0].dead = true;
    SimRig rig(dead);
    rig.prompts.expectMsgBox(u"The Varnel is not detected on the selected comm port.  Would you like to "
                             "initialize the IR Dongel?"_s,
                             MsgAnswer::No);
    rig.prompts.expectMsgBox(
        u"Not communicating.  Make sure last switch on switch block (#8 or #2) is down.  Then reset."_s,
        MsgAnswer::Abort);
    rig.session.ProgMode = u"Command"_s;
    rig.trigger("mnureadconn");
    QVERIFY(rig.prompts.verify());
    // The entry never reached a prompt: no listing request, nothing else.
    QCOMPARE(writes(rig.port()), (QList<QByteArray>{"\x03", "\x03\r", "\x03"}));
    QCOMPARE(rig.list().count(), 0);
    QCOMPARE(rig.session.ProgMode, QString());
    QVERIFY(!rig.prompts.busy());
}

void ProgramTransferTest::readLeftInRemoteModeSkipsTheEntry()
{
    // A mode word left over from a lost link makes a local read skip the entry routine and end
    // as a remote read does.
    SimRig rig;
    rig.session.ProgMode = kRemoteReadMode;
    rig.trigger("mnureadconn");
    QVERIFY(rig.prompts.verify());
    QCOMPARE(writes(rig.port()), (QList<QByteArray>{"he ch\r", "route\r", "append\r", "reset\r"}));
    QCOMPARE(rig.list().line(0), u"NETWORK 12"_s);
    QCOMPARE(rig.session.ProgMode, QString());
}

void ProgramTransferTest::remoteReadEndsTheLinkAndResetsTheLocalModem()
{
    sim::Scenario s = sim::Scenario::standard();
    sim::ModemProfile remote;
    remote.name = u"remote"_s;
    remote.settings = {{u"ADDRESS"_s, u"5"_s}, {u"SQUELCH"_s, u"60"_s}};
    remote.routes = {u"1,7,"_s};
    s.modems.append(remote);
    sim::LinkProfile air;
    air.from = 1;
    air.to = 5;
    air.microvolts = 40.0;
    s.links.append(air);
    SimRig rig(s);

    // The link as the remote programming form opens it.
    rig.port().Output("Prog 5\r");
    QVERIFY(rig.session.WaitForReply("RPG:", 3000));
    rig.port().clearEvents();
    const int resetsBefore = int(rig.link.truth().resets.size());

    rig.session.ProgMode = kRemoteReadMode;
    QStringList read;
    ReadProgram(rig.session, read);
    QVERIFY(rig.prompts.verify());
    QCOMPARE(writes(rig.port()), (QList<QByteArray>{"he ch\r", "route\r", "append\r", "\x03", "reset\r"}));
    QCOMPARE(read, (QStringList{u"ADDRESS 5"_s, u"SQUELCH 60"_s, u"ROUTE 1,7,"_s}));
    QCOMPARE(rig.session.ProgMode, QString());
    // The reset went to the local modem, after the link had ended.
    rig.link.time().advance(1000);
    QCOMPARE(rig.link.truth().resets.size(), resetsBefore + 1);
    QCOMPARE(rig.link.truth().resets.last().second, 1);
    QVERIFY(!rig.prompts.busy());
}

void ProgramTransferTest::remoteReadWithoutAPromptSendsNothingMore()
{
    ScriptRig rig;
    rig.session.ProgMode = kRemoteReadMode;
    rig.modem.answer("he ch\r", "he ch\r\nADDRESS 5\r\n");
    rig.prompts.expectMsgBox(kLostLink).withIcon(MsgIcon::Exclamation);
    ReadProgram(rig.session, rig.list);
    QVERIFY(rig.prompts.verify());
    // No Ctrl-C, no reset: the link is taken to be gone.
    QCOMPARE(rig.port.writes(), QList<QByteArray>{"he ch\r"});
    QCOMPARE(rig.session.ProgMode, kRemoteReadMode);
    QCOMPARE(rig.list.size(), 0);
}

void ProgramTransferTest::downloadResetsThenSendsEveryLineAndSaves()
{
    SimRig rig(sim::Scenario::standard());
    for (const QString &line : {u"NETWORK 12"_s, u"SQUELCH 40"_s, u"ROUTE 1,5,"_s})
        rig.menu->AddCommand(line);
    rig.prompts.expectMsgBox(kComplete).withIcon(MsgIcon::Information).withButtons(MsgButtons::OkOnly);
    rig.trigger("mnuconnected");
    QVERIFY(rig.prompts.verify());
    QCOMPARE(writes(rig.port()),
             (QList<QByteArray>{"\x03", "FA\r", "NETWORK 12\r", "SQUELCH 40\r", "ROUTE 1,5,\r", "save\r"}));
    // Each line waits for the prompt of the one before it, and the factory default comes first.
    const sim::GroundTruth &truth = rig.link.truth();
    QCOMPARE(truth.factoryDefaults.size(), 1);
    QVERIFY(truth.factoryDefaults.first().first < timeOfWrite(rig.port(), "NETWORK 12\r"));
    QVERIFY(timeOfWrite(rig.port(), "NETWORK 12\r") < timeOfWrite(rig.port(), "SQUELCH 40\r"));
    rig.link.time().advance(1000);
    const sim::Modem &modem = rig.link.local();
    QCOMPARE(modem.savedValue(u"NETWORK"_s), u"12"_s);
    QCOMPARE(modem.savedValue(u"SQUELCH"_s), u"40"_s);
    QCOMPARE(modem.routes(), QStringList{u"1,5,"_s});
    QVERIFY(!rig.prompts.busy());
    // The list stays as it was, its last line selected.
    QCOMPARE(rig.list().count(), 3);
    QCOMPARE(rig.list().listIndex(), 2);
}

void ProgramTransferTest::downloadSendsLinesExactlyAsStored()
{
    SimRig rig(sim::Scenario::standard());
    rig.menu->AddCommand(u"squelch 40"_s);
    rig.menu->AddCommand(u"net 12:squelch 41"_s);
    rig.prompts.expectMsgBox(kComplete);
    rig.trigger("mnuconnected");
    QVERIFY(rig.prompts.verify());
    QCOMPARE(writes(rig.port()).mid(2, 2), (QList<QByteArray>{"squelch 40\r", "net 12:squelch 41\r"}));
    rig.link.time().advance(1000);
    QCOMPARE(rig.link.local().savedValue(u"SQUELCH"_s), u"41"_s);
    QCOMPARE(rig.link.local().savedValue(u"NETWORK"_s), u"12"_s);
}

void ProgramTransferTest::downloadStopsAtARefusedLine()
{
    SimRig rig(sim::Scenario::standard());
    for (const QString &line : {u"NETWORK 12"_s, u"SQUELCH 40"_s, u"BOGUS 1"_s, u"ECHO OFF"_s})
        rig.menu->AddCommand(line);
    rig.prompts.expectMsgBox(kRefused).withIcon(MsgIcon::Exclamation).withButtons(MsgButtons::OkOnly);
    rig.trigger("mnuconnected");
    QVERIFY(rig.prompts.verify());
    QCOMPARE(writes(rig.port()),
             (QList<QByteArray>{"\x03", "FA\r", "NETWORK 12\r", "SQUELCH 40\r", "BOGUS 1\r"}));
    rig.link.time().advance(1000);
    // The first two lines are in force but not saved.
    const sim::Modem &modem = rig.link.local();
    QCOMPARE(modem.value(u"NETWORK"_s), u"12"_s);
    QCOMPARE(modem.value(u"SQUELCH"_s), u"40"_s);
    QVERIFY(modem.savedValue(u"NETWORK"_s) != u"12"_s);
    QCOMPARE(rig.list().listIndex(), 2);
    QCOMPARE(rig.list().text(), u"BOGUS 1"_s);
    // The busy pointer is left up on this path.
    QVERIFY(rig.prompts.busy());
}

void ProgramTransferTest::downloadOfAnEmptyListResetsTheModemFirst()
{
    SimRig rig;
    rig.prompts.expectMsgBox(kEmptyList).withIcon(MsgIcon::Exclamation).withButtons(MsgButtons::OkOnly);
    rig.trigger("mnuconnected");
    QVERIFY(rig.prompts.verify());
    QCOMPARE(writes(rig.port()), (QList<QByteArray>{"\x03", "FA\r"}));
    QCOMPARE(rig.link.truth().factoryDefaults.size(), 1);
    QVERIFY(rig.link.truth().factoryDefaults.first().first < rig.prompts.shown().first().atMs);
    QVERIFY(!rig.prompts.busy());
}

void ProgramTransferTest::downloadPassesOverEmptyLines()
{
    SimRig rig(sim::Scenario::standard());
    for (const QString &line : {u""_s, u"NETWORK 12"_s, u""_s})
        rig.menu->AddCommand(line);
    rig.prompts.expectMsgBox(kComplete);
    rig.trigger("mnuconnected");
    QVERIFY(rig.prompts.verify());
    QCOMPARE(writes(rig.port()), (QList<QByteArray>{"\x03", "FA\r", "NETWORK 12\r", "save\r"}));
}

void ProgramTransferTest::downloadOverTheAdaptor_data()
{
    QTest::addColumn<bool>("adaptor");
    QTest::addColumn<int>("unitAddressWait");
    QTest::newRow("cable") << false << 3000;
    QTest::newRow("infra-red adaptor") << true << 4000;
}

void ProgramTransferTest::downloadOverTheAdaptor()
{
    QFETCH(bool, adaptor);
    QFETCH(int, unitAddressWait);
    ScriptRig rig;
    rig.session.IrDongleActive = adaptor;
    // A modem that never says "Unit Address": the wait after "FA" runs its full length.
    rig.modem.answer("\x03", "\r\nCMD:");
    rig.modem.answer("NET 12\r", "\r\nCMD:");
    rig.prompts.expectMsgBox(kComplete);
    rig.list.append(u"NET 12"_s);
    DownloadProgram(rig.session, rig.list);
    QVERIFY(rig.prompts.verify());

    const QByteArray body = "FA\rNET 12\rsave\r";
    const QList<QByteArray> sent = rig.port.writes();
    QCOMPARE(sent.first(), QByteArray("\x03"));
    if (adaptor) {
        // One character at a time, "save" too.
        QCOMPARE(sent.size(), 1 + body.size());
        for (qsizetype i = 0; i < body.size(); ++i)
            QCOMPARE(sent[1 + i], body.mid(i, 1));
    } else {
        QCOMPARE(sent.mid(1), (QList<QByteArray>{"FA\r", "NET 12\r", "save\r"}));
    }
    // From the end of "FA" to the first character of the line: the wait for "Unit Address".
    const QList<WireEvent> timed = writeEvents(rig.port);
    const qint64 faDone = adaptor ? timed[3].atMs + 1 : timed[1].atMs;
    const qint64 lineAt = adaptor ? timed[4].atMs : timed[2].atMs;
    QCOMPARE(lineAt - faDone, unitAddressWait);
}

void ProgramTransferTest::downloadWhenTheModemDoesNotAnswer()
{
    sim::Scenario dead = sim::Scenario::standard();
    dead.modems[0].dead = true;
    SimRig rig(dead);
    rig.menu->AddCommand(u"NETWORK 12"_s);
    rig.prompts.expectMsgBox(u"The Varnel is not detected on the selected comm port.  Would you like to "
                             "initialize the IR Dongel?"_s,
                             MsgAnswer::No);
    rig.prompts.expectMsgBox(
        u"Not communicating.  Make sure last switch on switch block (#8 or #2) is down.  Then reset."_s,
        MsgAnswer::Abort);
    rig.trigger("mnuconnected");
    QVERIFY(rig.prompts.verify());
    // The factory default of the entry routine's second try, and nothing of the download.
    QCOMPARE(writes(rig.port()), (QList<QByteArray>{"\x03", "FA\r", "FA\r"}));
    QVERIFY(!rig.prompts.busy());
}

QTEST_MAIN(ProgramTransferTest)
#include "ProgramTransferTest.moc"
