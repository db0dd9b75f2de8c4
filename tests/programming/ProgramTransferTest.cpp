#include "ProgramTransfer.h"

#include "CommandListBox.h"
#include "ProgrammingMenu.h"
#include "SessionRig.h"
#include "SimulatedModemLink.h"
#include "Tables.h"

#include <QAction>
#include <QApplication>

namespace {
// The boxes of reading and downloading, by name, with the user's answer.
struct Box
{
    const char *key;
    const char *text;
    MsgIcon icon;
    MsgAnswer answer;
};

const Box kBoxes[] = {
    {"complete",
     "Download Complete.\r\nTo Place Varnel in Operation, Set Last Switch (#2 or #8) on Serial Port "
     "Setup-Switches to "
     "ON (Up) Position and Reset Varnel.",
     MsgIcon::Information, MsgAnswer::Ok},
    {"refused", "Varnel reported error with this command.  Please verify command spelling and useage.",
     MsgIcon::Exclamation, MsgAnswer::Ok},
    {"empty", "You Cannot Save.  There Are No Commands In The Command List.", MsgIcon::Exclamation,
     MsgAnswer::Ok},
    {"lost", "Lost Link to Remote Varnel", MsgIcon::Exclamation, MsgAnswer::Ok},
    {"save?", "Do You Wish to Save The Current Command List?", MsgIcon::Question, MsgAnswer::No},
    {"dongle? no",
     "The Varnel is not detected on the selected comm port.  Would you like to initialize the IR Dongel?",
     MsgIcon::None, MsgAnswer::No},
    {"switch: abort",
     "Not communicating.  Make sure last switch on switch block (#8 or #2) is down.  Then reset.",
     MsgIcon::Exclamation, MsgAnswer::Abort},
};

// A read or download from the screen's menu (or ReadProgram itself) against a far end: the simulated
// modem (configured with a few settings and routes, factory fresh, or dead) or scripted answers
// ("trigger=>reply"). Before it the list and the mode word; after it the writes (with their times
// when given), the boxes, the list, "mode, busy pointer, selected line", and the modem's saved
// values, working values ("now:"), routes and factory defaults.
const char *const kTransfers[][10] = {
    // The listing request goes out as soon as the first look finds the prompt; the routes come last.
    {"read: the listing, then the routes", "configured", "mnureadconn", "", "", "",
     "1000:<03> | 1100:he ch\\r | 1300:route\\r | 1500:append\\r",
     "NETWORK 12 | SQUELCH 40 | ROUTE 1,5, | ROUTE 2,40,41, | APPEND 1,1,25,28,*", ", no, -1",
     "NETWORK=12 defaults=0"},
    {"read: the old list may be saved first", "configured", "mnureadconn", "OLD 1", "", "save?",
     "1000:<03> | 1100:he ch\\r | 1300:route\\r | 1500:append\\r",
     "NETWORK 12 | SQUELCH 40 | ROUTE 1,5, | ROUTE 2,40,41, | APPEND 1,1,25,28,*", ", no, -1"},
    {"read: a listing without prompt is a lost link",
     "\x03=>\r\nCMD: | he ch\r=>he ch\r\nADDRESS 5\r\nNETWORK 37\r\n", "mnureadconn", "", "Command", "lost",
     "0:<03> | 100:he ch\\r", "", "Command, no, -1"},
    {"read: a silent modem", "dead", "mnureadconn", "", "Command", "dongle? no | switch: abort",
     "1000:<03> | 2000:<03>\\r | 3000:<03>", "", ", no, -1"},
    // A mode word left over from a lost link makes a local read skip the entry and end as a remote one.
    {"read: left in remote mode", "configured", "mnureadconn", "", "RemoteRead", "",
     "1000:he ch\\r | 1200:route\\r | 1400:append\\r | 1600:reset\\r",
     "NETWORK 12 | SQUELCH 40 | ROUTE 1,5, | ROUTE 2,40,41, | APPEND 1,1,25,28,*", ", no, -1"},
    {"remote read: the link ends, the local modem resets",
     "he ch\r=>he ch\r\nADDRESS 5\r\nSQUELCH 60\r\nRPG: | route\r=>route\r\n1,7,\r\nRPG: | "
     "append\r=>append\r\nRPG: | "
     "\x03=>\r\nCMD:",
     "ReadProgram", "", "RemoteRead", "", "he ch\\r | route\\r | append\\r | <03> | reset\\r",
     "ADDRESS 5 | SQUELCH 60 | ROUTE 1,7,", ", no, -1"},
    // No Ctrl-C, no reset: the link is taken to be gone.
    {"remote read: no prompt, nothing more", "he ch\r=>he ch\r\nADDRESS 5\r\n", "ReadProgram", "",
     "RemoteRead", "lost", "0:he ch\\r", "", "RemoteRead, no, -1"},
    // Each line waits for the prompt of the one before it, and the factory default comes first.
    {"download: factory default, every line, save", "fresh", "mnuconnected",
     "NETWORK 12 | SQUELCH 40 | ROUTE 1,5,", "", "complete",
     "1000:<03> | 1100:FA\\r | 1500:NETWORK 12\\r | 1600:SQUELCH 40\\r | 1700:ROUTE 1,5,\\r | 1800:save\\r",
     "NETWORK 12 | SQUELCH 40 | ROUTE 1,5,", ", no, 2", "NETWORK=12 SQUELCH=40 routes=1,5, defaults=1"},
    {"download: lines exactly as stored", "fresh", "mnuconnected", "squelch 40 | net 12:squelch 41", "",
     "complete", "1000:<03> | 1100:FA\\r | 1500:squelch 40\\r | 1600:net 12:squelch 41\\r | 1700:save\\r",
     "squelch 40 | net 12:squelch 41", ", no, 1", "NETWORK=12 SQUELCH=41"},
    // The lines before are in force but not saved, the refused one stays selected, the pointer busy.
    {"download: a refused line stops it", "fresh", "mnuconnected",
     "NETWORK 12 | SQUELCH 40 | BOGUS 1 | ECHO OFF", "", "refused",
     "1000:<03> | 1100:FA\\r | 1500:NETWORK 12\\r | 1600:SQUELCH 40\\r | 1700:BOGUS 1\\r",
     "NETWORK 12 | SQUELCH 40 | BOGUS 1 | ECHO OFF", ", yes, 2", "now:NETWORK=12 now:SQUELCH=40 NETWORK=37"},
    {"download: an empty list after the reset", "fresh", "mnuconnected", "", "", "empty",
     "1000:<03> | 1100:FA\\r", "", ", no, -1", "defaults=1"},
    {"download: empty lines passed over", "fresh", "mnuconnected", " | NETWORK 12 | ", "", "complete",
     "1000:<03> | 1100:FA\\r | 1500:NETWORK 12\\r | 1600:save\\r", " | NETWORK 12 | ", ", no, 2"},
    {"download: a silent modem", "dead", "mnuconnected", "NETWORK 12", "", "dongle? no | switch: abort",
     "1000:<03> | 2000:FA\\r | 3000:FA\\r", "NETWORK 12", ", no, -1"},
    // A modem that never says "Unit Address": the wait after "FA" runs its full length, 3 s.
    {"download by cable", "\x03=>\r\nCMD: | NET 12\r=>\r\nCMD:", "mnuconnected", "NET 12", "", "complete",
     "0:<03> | 100:FA\\r | 3100:NET 12\\r | 3200:save\\r", "NET 12", ", no, 0"},
    // Over the adaptor it is 4 s, and every command goes one character at a time, "save" too.
    {"download over the adaptor", "adaptor: \x03=>\r\nCMD: | NET 12\r=>\r\nCMD:", "mnuconnected", "NET 12",
     "", "complete",
     "0:<03> | 100:F | 101:A | 102:\\r | 4103:N | 4104:E | 4105:T | 4106:  | 4107:1 | 4108:2 | 4109:\\r | "
     "4210:s | "
     "4211:a | 4212:v | 4213:e | 4214:\\r",
     "NET 12", ", no, 0"},
};

sim::Scenario scenario(const QString &farEnd)
{
    sim::Scenario s = sim::Scenario::standard();
    sim::ModemProfile &local = s.modems[0];
    local.dead = farEnd == u"dead";
    if (farEnd == u"configured") {
        local.settings = {{QStringLiteral("NETWORK"), QStringLiteral("12")},
                          {QStringLiteral("SQUELCH"), QStringLiteral("40")},
                          {QStringLiteral("ECHO"), QStringLiteral("ON")}};
        local.routes = {QStringLiteral("1,5,"), QStringLiteral("2,40,41,")};
        local.appends = {QStringLiteral("1,1,25,28,*")};
    }
    return s;
}

// The modem after it, for the names the row gives.
QString modemAfter(sim::SimulatedModemLink &link, const char *expected)
{
    QStringList seen;
    for (const QString &item : QString::fromLatin1(expected).split(u' ', Qt::SkipEmptyParts)) {
        const QString name = item.section(u'=', 0, 0);
        const QString key = name.section(u':', -1);
        QString value = name.startsWith(u"now:") ? link.local().value(key) : link.local().savedValue(key);
        if (name == u"routes")
            value = link.local().routes().join(u';');
        else if (name == u"defaults")
            value = QString::number(link.truth().factoryDefaults.size());
        seen << name + u'=' + value;
    }
    return seen.join(u' ');
}
// The session and its prompts over either far end.
struct Bench
{
    std::optional<SessionRig> script;
    std::optional<sim::SimulatedModemLink> link;
    std::optional<ScriptedPrompts> simPrompts;
    std::optional<ModemSession> simSession;

    explicit Bench(QString farEnd)
    {
        if (!farEnd.contains(QStringLiteral("=>"))) {
            link.emplace(scenario(farEnd));
            simPrompts.emplace(&link->time());
            simSession.emplace(link->port(), link->time(), *simPrompts);
            link->time().advance(1000); // the modem has settled after power-up
            link->port().Input();
            link->port().clearEvents();
            return;
        }
        script.emplace(CommControl::kAutoProcessProgram);
        script->session.IrDongleActive = farEnd.startsWith(QStringLiteral("adaptor: "));
        for (const QString &answer : farEnd.remove(QStringLiteral("adaptor: ")).split(QStringLiteral(" | ")))
            script->modem.answer(answer.section(QStringLiteral("=>"), 0, 0).toLatin1(),
                                 answer.section(QStringLiteral("=>"), 1).toLatin1());
    }
    MemoryCommControl &port() { return script ? script->port : link->port(); }
    ModemSession &session() { return script ? script->session : *simSession; }
    ScriptedPrompts &prompts() { return script ? script->prompts : *simPrompts; }
};
} // namespace

class ProgramTransferTest : public QObject
{
    Q_OBJECT
private slots:
    void transfers_data() { addRows(kTransfers); }
    void transfers()
    {
        const auto &[name, farEnd, entry, list, mode, boxes, writesExpected, after, state, modem] =
            fetchRow(kTransfers);
        Bench bench{QLatin1String(farEnd)};
        ModemSession &session = bench.session();
        ScriptedPrompts &prompts = bench.prompts();
        ProgrammingMenu menu(session);
        for (const QString &line : items(list, Qt::KeepEmptyParts))
            menu.AddCommand(line);
        session.ProgMode = QLatin1String(mode);
        for (const QString &key : items(boxes)) {
            const Box &b = *std::find_if(std::begin(kBoxes), std::end(kBoxes),
                                         [&](const Box &x) { return key == QLatin1String(x.key); });
            prompts.expectMsgBox(QLatin1String(b.text), b.answer).withIcon(b.icon).then([&, key] {
                // The question comes before anything goes to the modem; the pointer is back before the
                // lost link is told.
                QVERIFY(key != u"save?" || bench.port().writes().isEmpty());
                QVERIFY(key != u"lost" || !prompts.busy());
            });
        }
        QStringList read;
        if (QByteArray(entry) == "ReadProgram")
            ReadProgram(session, read);
        else
            menu.findChild<QAction *>(QLatin1String(entry))->trigger();
        QVERIFY(prompts.verify());
        // Writes given without times are compared without them.
        QCOMPARE(SessionRig::writes(bench.port(), QByteArray(writesExpected).contains(':')),
                 items(writesExpected));
        QCOMPARE(menu.cmboedit().lines() + read, items(after, Qt::KeepEmptyParts));
        QCOMPARE(QStringLiteral("%1, %2, %3")
                     .arg(session.ProgMode, prompts.busy() ? QStringLiteral("yes") : QStringLiteral("no"))
                     .arg(menu.cmboedit().listIndex()),
                 QLatin1String(state));
        if (bench.link) {
            bench.link->time().advance(1000);
            QCOMPARE(modemAfter(*bench.link, modem), QLatin1String(modem));
        }
        while (QApplication::overrideCursor())
            QApplication::restoreOverrideCursor();
    }

    void aProgramReadDownloadsUnchanged()
    {
        sim::SimulatedModemLink source(scenario(QStringLiteral("configured")));
        ScriptedPrompts prompts(&source.time());
        ModemSession session(source.port(), source.time(), prompts);
        QStringList program;
        ReadProgram(session, program);

        // A factory-fresh unit takes the program that was read, routes included.
        sim::SimulatedModemLink target(scenario(QStringLiteral("fresh")));
        ModemSession fresh(target.port(), target.time(), prompts);
        prompts.expectMsgBox(QLatin1String(kBoxes[0].text));
        QCOMPARE(DownloadProgram(fresh, program), -1);
        QVERIFY(prompts.verify());
        target.time().advance(1000);
        QCOMPARE(target.local().savedValue(QStringLiteral("NETWORK")), QStringLiteral("12"));
        QCOMPARE(target.local().savedValue(QStringLiteral("SQUELCH")), QStringLiteral("40"));
        QCOMPARE(target.local().routes(), (QStringList{QStringLiteral("1,5,"), QStringLiteral("2,40,41,")}));
        QCOMPARE(target.local().appends(), QStringList{QStringLiteral("1,1,25,28,*")});
    }
};

QTEST_MAIN(ProgramTransferTest)
#include "ProgramTransferTest.moc"
