#include "RemoteProgramming.h"

#include "CommandListBox.h"
#include "Golden.h"
#include "ProgrammingMenu.h"
#include "RemoteAddress.h"
#include "ScriptedPrompts.h"
#include "SessionRig.h"
#include "SimulatedModemLink.h"

#include <QAction>
#include <QLineEdit>
#include <QPushButton>

namespace {
struct Box
{
    const char *key;
    const char *text;
    MsgIcon icon;
    const char *title;
};

const Box kBoxes[] = {
    {"no destination", "You Must Type In A Destination Address", MsgIcon::Exclamation, ""},
    {"destination range", "Your Address Must Be Between 1 and 254", MsgIcon::Exclamation, ""},
    {"gap", "Please Fill In Repeaters From First to Third", MsgIcon::Exclamation, ""},
    {"repeater range", "Your Repeater Addresses Must Be Between 1 and 254", MsgIcon::Exclamation, ""},
    {"no link", "Failed to Link to That Address", MsgIcon::Critical, "Remote Program Failure"},
    {"refused", "Varnel reported error with this command.  Please verify command spelling and useage.",
     MsgIcon::Exclamation, ""},
    {"empty", "You Cannot Save.  There Are No Commands In The Command List.", MsgIcon::Exclamation, ""},
    {"dongle? no",
     "The Varnel is not detected on the selected comm port.  Would you like to initialize the IR Dongel?",
     MsgIcon::None, ""},
    {"switch: abort",
     "Not communicating.  Make sure last switch on switch block (#8 or #2) is down.  Then reset.",
     MsgIcon::Exclamation, ""},
    {"complete", "Remote Download Complete", MsgIcon::Information, ""},
};

// The checks of the remote address form alone: destination and repeaters 1 to 3 as typed, then the
// route or the box, and whether the repeater fields are emptied.
const char *const kRoutes[][4] = {
    {"destination alone", "12 |  |  | ", "12", ""},
    {"destination 254", "254 |  |  | ", "254", ""},
    {"destination rounded, to even", "12.5 |  |  | ", "12", ""},
    {"destination rounds up to 255", "254.6 |  |  | ", "", "destination range"},
    {"one repeater", "12 | 40 |  | ", "40,12", ""},
    {"three repeaters as typed", "12 |   7 | 7x | 42", "  7,7x,42,12", ""},
    {"no number", "abc | 40 |  | ", "", "no destination"},
    {"destination 0.4", "0.4 |  |  | ", "", "no destination"},
    {"destination 255", "255 |  |  | ", "", "destination range"},
    {"destination -3", "-3 |  |  | ", "", "destination range"},
    {"gap at the second", "12 | 40 |  | 42", "", "gap, cleared"},
    {"only the third", "12 |  |  | 42", "", "gap, cleared"},
    {"repeater 0", "12 | 0 |  | ", "", "repeater range"},
    {"repeater 255", "12 | 40 | 255 | ", "", "repeater range"},
};

// A remote read or download from the programming screen against the simulated site: the local modem
// (at address 1, on network 37 unless given) hears 12 directly and through the repeaters 40, 41, 42.
// Then the list before, the fields typed, the boxes, every write in order, the list after and the
// remote's saved settings named in the last column.
struct Flow
{
    const char *name;
    const char *network;
    const char *entry;
    const char *before;
    const char *fields;
    const char *boxes;
    const char *writes;
    const char *after;
    const char *remote;
    int dropAtMs = 0; // the link from 1 to 12 goes down for good at this time
};

#define PREP "<03> | net\\r | FA\\r"
const Flow kFlows[] = {
    {"read direct", "", "mnureadremote", "", "12", "",
     PREP " | Prog 12\\r | he ch\\r | route\\r | append\\r | <03> | reset\\r",
     "ADDRESS 12 | SQUELCH 60 | ROUTE 1,5,", ""},
    {"read through three repeaters", "", "mnureadremote", "", "12 | 40 | 41 | 42", "",
     PREP " | Prog 40,41,42,12\\r | he ch\\r | route\\r | append\\r | <03> | reset\\r",
     "ADDRESS 12 | SQUELCH 60 | ROUTE 1,5,", ""},
    {"read on network 12", "12", "mnureadremote", "", "12 | 40", "",
     PREP " | NET 12\\r | Prog 40,12\\r | he ch\\r | route\\r | append\\r | <03> | reset\\r",
     "ADDRESS 12 | NETWORK 12 | SQUELCH 60 | ROUTE 1,5,", ""},
    {"read: cancel leaves the local modem prepared", "", "mnureadremote", "", "cancel", "", PREP, "", ""},
    {"read: the connected modem silent", "dead", "mnureadremote", "", "12", "dongle? no | switch: abort",
     "<03> | <03>\\r | <03>", "", ""},
    {"read from an unknown address", "", "mnureadremote", "", "99", "no link", PREP " | Prog 99\\r", "", ""},
    {"read: bad route, nothing goes out", "", "mnureadremote", "", "12 |  |  | 42", "gap", PREP, "", ""},
    // The connected modem gives the link up at its own prompt: the read takes its words for the
    // listing and its own routes, and the reset follows as after any remote read.
    {"read: the link lost before the listing", "", "mnureadremote", "", "12", "",
     PREP " | Prog 12\\r | he ch\\r | route\\r | append\\r | reset\\r", "LINK FAILED", "", 1800},
    {"download with the held lines last", "", "mnuremote", "add 7 | SQUELCH 50 | NET 37", "12 | 40",
     "complete", PREP " | Prog 40,12\\r | SQUELCH 50\\r | add 7:save\\r | NET 37:save\\r | <03> | reset\\r",
     "SQUELCH 50 | add 7 | NET 37", "ADDRESS=7 SQUELCH=50"},
    {"download restores the remote first", "", "mnuremote", "RXMARK 3 | SQUELCH 50", "12", "complete",
     PREP " | Prog 12\\r | FA\\r | RXMARK 3\\r | SQUELCH 50\\r | save\\r | <03> | reset\\r",
     "RXMARK 3 | SQUELCH 50 |  | ", "ADDRESS=12 SQUELCH=50 RXMARK=3"},
    // Over a repeater the remote's answer to the factory default outlasts its wait: every later wait
    // takes the prompt of the line before; the save is on the air before the closing Ctrl-C.
    {"download: a slow path loses the save", "", "mnuremote", "RXMARK 3 | SQUELCH 50", "12 | 40", "complete",
     PREP " | Prog 40,12\\r | FA\\r | RXMARK 3\\r | SQUELCH 50\\r | save\\r | <03> | reset\\r",
     "RXMARK 3 | SQUELCH 50 |  | ", "SQUELCH=50 RXMARK=3"},
    // Of two address lines in a row the second stays in place; the network line ahead keeps its place.
    {"download: the walk skips the line after a taken one", "", "mnuremote",
     "XNET 9 | ADD 7 | ADD 12 | SQUELCH 50", "12", "complete",
     PREP " | Prog 12\\r | ADD 12\\r | SQUELCH 50\\r | ADD 7:save\\r | XNET 9:save\\r | <03> | reset\\r",
     "ADD 12 | SQUELCH 50 | ADD 7 | XNET 9", "ADDRESS=7 SQUELCH=50"},
    {"download: a refused line", "", "mnuremote", "SQUELCH 50 | BOGUS 1 | ADD 7", "12", "refused",
     PREP " | Prog 12\\r | FA\\r | SQUELCH 50\\r | BOGUS 1\\r | <03>", "SQUELCH 50 | BOGUS 1",
     "ADDRESS=12 SQUELCH=60"},
    {"download: the link lost midway", "", "mnuremote", "SQUELCH 50 | RXMARK 3", "12", "refused",
     PREP " | Prog 12\\r | FA\\r | SQUELCH 50\\r | <03>", "SQUELCH 50 | RXMARK 3", "SQUELCH=60", 2500},
    {"download of an empty list", "", "mnuremote", "", "12", "empty", "", "", ""},
    {"download to an unknown address", "", "mnuremote", "SQUELCH 50", "99", "no link", PREP " | Prog 99\\r",
     "SQUELCH 50", ""},
};
#undef PREP

sim::Scenario site(const QString &network)
{
    sim::Scenario s = sim::Scenario::standard();
    for (int address : {40, 41, 42, 12}) {
        sim::ModemProfile remote = s.modems[0];
        remote.name = QStringLiteral("unit %1").arg(address);
        remote.settings = {{QStringLiteral("ADDRESS"), QString::number(address)}};
        if (address == 12) {
            remote.settings[QStringLiteral("SQUELCH")] = QStringLiteral("60");
            remote.routes = {QStringLiteral("1,5,")};
        }
        s.modems << remote;
    }
    s.modems[0].dead = network == u"dead";
    for (sim::ModemProfile &m : s.modems)
        if (!network.isEmpty() && !s.modems[0].dead)
            m.settings[QStringLiteral("NETWORK")] = network;
    for (const auto &[from, to] :
         {std::pair{1, 12}, {1, 40}, {40, 41}, {41, 42}, {42, 12}, {40, 12}, {41, 12}})
        s.links.append({from, to, 30.0, 0, 0, {}});
    return s;
}

void expectBoxes(ScriptedPrompts &prompts, const char *keys)
{
    for (const QString &key : items(keys)) {
        const Box &b = *std::find_if(std::begin(kBoxes), std::end(kBoxes),
                                     [&](const Box &x) { return key.startsWith(QLatin1String(x.key)); });
        const MsgAnswer answer = key.endsWith(u"no")      ? MsgAnswer::No
                                 : key.endsWith(u"abort") ? MsgAnswer::Abort
                                                          : MsgAnswer::Ok;
        prompts.expectMsgBox(QLatin1String(b.text), answer)
            .withIcon(b.icon)
            .withTitle(QLatin1String(b.title))
            .then([&prompts, key] {
                // The pointer is back before the end of a download is told.
                QVERIFY(!prompts.busy() || (key != u"refused" && key != u"complete"));
            });
    }
}

void typeRoute(RemoteAddress &form, const char *fields)
{
    const QStringList typed = items(fields, Qt::KeepEmptyParts);
    form.txtaddrss->setText(typed.value(0));
    for (int i = 0; i < 3; ++i)
        form.txtRep[size_t(i)]->setText(typed.value(i + 1));
}
} // namespace

class RemoteProgrammingTest : public QObject
{
    Q_OBJECT
private slots:
    void captions()
    {
        SessionRig rig(CommControl::kAutoProcessProgram);
        RemoteAddress form(rig.session);
        QVERIFY(matchesGolden(describeWindow(form), QStringLiteral(VARNEL_GOLDEN "/RemoteAddress.txt")));
    }

    void routes_data() { addRows(kRoutes); }
    void routes()
    {
        const auto &[name, fields, route, fault] = fetchRow(kRoutes);
        const QStringList typed = items(fields, Qt::KeepEmptyParts);
        const RemoteRouteCheck check = checkRemoteRoute(typed[0], {typed[1], typed[2], typed[3]});
        QCOMPARE(check.route, QLatin1String(route));
        const auto box = std::find_if(std::begin(kBoxes), std::end(kBoxes),
                                      [&](const Box &b) { return check.faultText == QLatin1String(b.text); });
        const QString seen = box == std::end(kBoxes) ? QString() : QLatin1String(box->key);
        QCOMPARE(seen + (check.clearRepeaters ? QStringLiteral(", cleared") : QString()),
                 QLatin1String(fault));
        QCOMPARE(check.noDestination, seen == u"no destination");
    }

    void flows_data() { addRows(kFlows); }
    void flows()
    {
        const Flow &row = fetchRow(kFlows);
        sim::SimulatedModemLink link(site(QLatin1String(row.network)));
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        link.time().advance(1000);
        link.port().Input();
        link.port().clearEvents();
        if (row.dropAtMs)
            link.network().scheduleDrop(1, 12, row.dropAtMs, 1000000);

        ProgrammingMenu menu(session);
        for (const QString &line : items(row.before))
            menu.AddCommand(line);
        expectBoxes(prompts, row.boxes);
        menu.findChild<QAction *>(QLatin1String(row.entry))->trigger();
        if (auto *form = menu.findChild<RemoteAddress *>()) {
            QVERIFY(form->isVisible());
            typeRoute(*form, row.fields);
            (QByteArray(row.fields) == "cancel" ? form->cmdaddCancel : form->cmdaddOK2)->click();
            // A bad route keeps the form open; whatever the link did, it has closed otherwise.
            QCOMPARE(form->isVisible(), QByteArray(row.boxes).contains("gap"));
            if (QByteArray(row.boxes).contains("gap"))
                QCOMPARE(form->txtRep[0]->text() + form->txtRep[1]->text() + form->txtRep[2]->text(),
                         QString());
            // A finished read clears the mode word; everything else leaves it as it was set.
            const bool readDone =
                QByteArray(row.writes).endsWith("reset\\r") && QByteArray(row.entry) == "mnureadremote";
            QCOMPARE(session.ProgMode, readDone                               ? QString()
                                       : QByteArray(row.entry) == "mnuremote" ? QStringLiteral("RemoteSave")
                                                                              : QStringLiteral("RemoteRead"));
        }
        QVERIFY(prompts.verify());

        QCOMPARE(SessionRig::writes(link.port()), items(row.writes));
        QCOMPARE(menu.cmboedit().lines(), items(row.after, Qt::KeepEmptyParts));
        QVERIFY(!prompts.busy());
        link.time().advance(2000);
        sim::Modem *remote =
            link.network().modemAt(12) ? link.network().modemAt(12) : link.network().modemAt(7);
        QStringList saved;
        for (const QString &key : QString::fromLatin1(row.remote).split(u' ', Qt::SkipEmptyParts))
            saved << key.section(u'=', 0, 0) + u'=' + remote->savedValue(key.section(u'=', 0, 0));
        QCOMPARE(saved.join(u' '), QLatin1String(row.remote));
    }
};

QTEST_MAIN(RemoteProgrammingTest)
#include "RemoteProgrammingTest.moc"
