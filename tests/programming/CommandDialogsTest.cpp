#include "CommandDialogs.h"

#include "CommandListBox.h"
#include "CommandVocabulary.h"
#include "Golden.h"
#include "ProgrammingMenu.h"
#include "SessionRig.h"
#include "SimulatedModemLink.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>

namespace {
// Input boxes as the user sees them, for the golden text.
class RecordingPrompts : public ScriptedPrompts
{
public:
    using ScriptedPrompts::ScriptedPrompts;
    std::optional<QString> InputBox(const InputBoxRequest &r) override
    {
        seen << QStringLiteral("  input box %1 preset %2 %3")
                    .arg(golden::quoted(r.title), golden::quoted(r.defaultText), golden::quoted(r.prompt));
        return ScriptedPrompts::InputBox(r);
    }
    using ScriptedPrompts::InputBox;
    QStringList seen;
};

const QString kSecurityPrompt =
    QStringLiteral("Enter a number from 1 to 100000 to enable the security feature or "
                   "type the security value currently set to disable security.");
const QString kSecurityWarning = QStringLiteral(
    "The Security Feature in the Varnel disables the prgramming.\rThis feature can only be turned off the "
    "the "
    "origional security value.\rIf the security value is lost, the Varnel can no longer be programmed.");

// A menu entry chosen against the simulated modem (or a dead one): the boxes in turn ("in:reply" for
// the entry's input box, "cancel" for it cancelled, "icon:title:text" for a message box), what the
// user does then in the window that opened ("set:control=text", a button's name, "type:keys",
// "wait:ms"), and after it the list, the writes, and what the demonstration or copyright window shows.
struct Flow
{
    const char *name;
    const char *entry;
    const char *boxes;
    const char *actions;
    const char *list;
    const char *wire;
    const char *shown;
};

const Flow kFlows[] = {
    {"address out of range", "mnuSetAddress", "in:255 | warn::Your Address Is Out of Range", "", "", "", ""},
    {"network id 0 refused", "mnuadvnetID",
     "in:0 | warn:Invalid Network ID:ERROR:  Invalid ID entry.  Please enter a valid time.  The Network ID "
     "must be between 0 and 255.",
     "", "", "", ""},
    {"network id cancelled", "mnuadvnetID", "cancel", "", "", "", ""},
    {"empty packet length ends", "mnupacketl", "in:", "", "", "", ""},
    {"packet length", "mnupacketl", "in:2000", "", "PACKL 2000", "", ""},
    {"set connect unchecked", "mnusetconn", "in:40,41,12", "", "SETC 40,41,12", "", ""},
    {"retries refused", "mnuretries",
     "in:256 | warn:Invalid Retry Number:ERROR:  Invalid Number of Retries.  The Retries must be between 0 "
     "and 255.",
     "", "", "", ""},
    {"security", "mnusecadv", "info:: | in:100", "", "SECURITY 100", "", ""},
    {"security refused", "mnusecadv",
     "info:: | in:-3 | plain::The Security value is not between 0 and 100000!", "", "", "", ""},
    {"security overflow", "mnusecadv", "info:: | in:40000 | error::", "", "", "", ""},
    {"security cancelled", "mnusecadv", "info:: | cancel", "", "", "", ""},
    {"broadcast off", "mnubc", "", "optOFF | cmdoklf", "SETC 255", "", ""},
    {"dtr preset", "mnuenDTRadv", "", "cmdoklf", "DTR OFF", "", ""},
    {"software flow preset", "mnuxsflow", "", "cmdoklf", "XSFLOW ON", "", ""},
    {"echo off", "mnuechoadv", "", "optOFF | cmdoklf", "ECHO OFF", "", ""},
    {"setting cancelled", "mnumcadv", "", "cmdcanclf", "", "", ""},
    {"termination timer", "mnuadvtimer",
     "plain::Please Select Termination Time From 10 to 65535 | plain::Please Select Termination Time From 10 "
     "to 65535",
     "set:txtTermTime=9 | cmdoklf | set:txtTermTime=65536 | cmdoklf | set:cmboTermt=OFF | "
     "set:txtTermTime=65535 | cmdoklf",
     "Termc OFF | Termt 65535", "", ""},
    {"autotransmit", "mnuautotadv", "", "cmdoklf", "Termc ON | Termt 50", "", ""},
    {"demo of the model", "mnuModelNumber2", "", "cmdDemo | wait:1000", "", "0:<03> | 100:model\\r",
     "model\nMODEL    = Q4U\nCMD:"},
    {"demo of transmit status", "mnuxmitstats", "", "cmdDemo | wait:1000", "", "0:<03> | 100:TXSTAT\\r",
     "TXSTAT\nPackets = 0\nRetries = 0\nCMD:"},
    {"demo, then typing", "mnusoftvers", "", "cmdDemo | wait:1000 | type:model\r | wait:1000", "",
     "0:<03> | 100:VER\\r | 1100:m | 1100:o | 1100:d | 1100:e | 1100:l | 1100:\\r",
     "VER\nVERSION  = 1.52\nCMD:model\nMODEL    = Q4U\nCMD:"},
    {"demo of connect", "mnuconnect", "in:5", "cmdDemo | wait:1000", "", "0:<03> | 100:Conn 5\\r",
     "Conn 5\n"},
    {"demo of connect cancelled", "mnuconnect", "cancel", "cmdDemo | wait:1000", "", "0:<03>", ""},
    {"demo on a silent modem", "dead:mnusa",
     "plain::The Varnel is not detected on the selected comm port.  Would you like to initialize the IR "
     "Dongel?:No | warn::Not communicating.  Make sure last switch on switch block (#8 or #2) is down.  Then "
     "reset.:Abort",
     "cmdDemo", "", "0:<03> | 1000:FA\\r | 2000:FA\\r", ""},
    {"copyright", "mnucopyr", "", "", "", "0:<03> | 100:COP\\r",
     "COP\r\nVarnel Q40 Series Wireless Data Modem Firmware\r\nCopyright (c) 1994-2002 Varnel Inc.  All "
     "rights reserved.\r\nCMD:"},
};

QWidget *openWindow(const QString &name)
{
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->isVisible() && w->objectName() == name)
            return w;
    return nullptr;
}

// A control of whichever window is open on top of the programming screen.
QWidget *control(const QString &name)
{
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->isVisible() && w->objectName() != u"ProgrammingMenu")
            if (auto *c = w->findChild<QWidget *>(name))
                return c;
    return nullptr;
}

// The demonstration first: it gives the port back as it closes.
void closeDialogs()
{
    if (QWidget *demo = openWindow(QStringLiteral("CommandDemo")))
        demo->close();
    for (QWidget *w : QApplication::topLevelWidgets())
        if (qobject_cast<QDialog *>(w) && w->isVisible())
            w->close();
}
} // namespace

class CommandDialogsTest : public QObject
{
    Q_OBJECT
private slots:
    // Every entry of the vocabulary is reached from its menu entry and shows its texts.
    void everyEntry()
    {
        sim::SimulatedModemLink link;
        RecordingPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        ProgrammingMenu menu(session);
        QStringList described;
        const auto choose = [&](const char *name, const QString &opens) {
            session.ProgMode.clear();
            menu.findChild<QAction *>(QLatin1String(name))->trigger();
            described << QLatin1String(name) + u' ' + session.ProgMode;
            described += prompts.seen;
            prompts.seen.clear();
            if (QWidget *w = openWindow(opens))
                described += describeWindow(*w);
            closeDialogs();
        };
        for (const CommandEntry &e : commandEntries()) {
            if (!e.entry) {
                TF unreached(e, [](const QString &) {});
                described << QStringLiteral("no entry") << describeWindow(unreached);
                continue;
            }
            if (e.dialog == CommandDialog::Input)
                prompts.expectInputBox(QLatin1String(e.question), std::nullopt);
            choose(e.entry,
                   e.dialog == CommandDialog::Setting ? QStringLiteral("TF") : QStringLiteral("Demoform"));
        }
        choose("mnuadvtimer", QStringLiteral("TermTime"));
        prompts.expectMsgBox(kSecurityWarning).withIcon(MsgIcon::Information);
        prompts.expectInputBox(kSecurityPrompt, std::nullopt);
        choose("mnusecadv", {});
        QVERIFY(prompts.verify());
        QVERIFY(matchesGolden(described, QStringLiteral(VARNEL_GOLDEN "/CommandDialogs.txt")));
        QCOMPARE(menu.cmboedit().count(), 0);
    }

    void flows_data() { addRows(kFlows); }
    void flows()
    {
        const Flow &f = fetchRow(kFlows);
        const QString entryName = QString::fromLatin1(f.entry).section(u':', -1);
        sim::Scenario scenario = sim::Scenario::standard();
        scenario.modems[0].dead = QLatin1String(f.entry).startsWith(u"dead:");
        sim::SimulatedModemLink link(scenario);
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        ProgrammingMenu menu(session);
        const CommandEntry *entry = commandByEntry(entryName);
        for (const QString &box : items(f.boxes)) {
            const QString kind = box.section(u':', 0, 0);
            if (kind == u"in" || kind == u"cancel") {
                prompts.expectInputBox(entry ? QLatin1String(entry->question) : kSecurityPrompt,
                                       kind == u"in" ? std::optional(box.mid(3)) : std::nullopt);
                continue;
            }
            static const QStringList icons{QStringLiteral("plain"), QStringLiteral("error"), QString(),
                                           QStringLiteral("warn"), QStringLiteral("info")};
            const QString text = kind == u"info"    ? kSecurityWarning
                                 : kind == u"error" ? appErrorText(AppErrors::overflow())
                                                    : box.section(u':', 2);
            prompts.expectAnswered(text)
                .withIcon(MsgIcon(icons.indexOf(kind)))
                .withTitle(box.section(u':', 1, 1));
        }
        link.port().clearEvents();
        const qint64 start = link.time().elapsedMs();
        menu.findChild<QAction *>(entryName)->trigger();
        for (const QString &action : items(f.actions)) {
            const QString what = action.section(u':', 1);
            if (action.startsWith(u"set:")) {
                QWidget *c = control(what.section(u'=', 0, 0));
                if (auto *combo = qobject_cast<QComboBox *>(c))
                    combo->setCurrentText(what.section(u'=', 1));
                else
                    qobject_cast<QLineEdit *>(c)->setText(what.section(u'=', 1));
            } else if (action.startsWith(u"type:")) {
                QTest::keyClicks(control(QStringLiteral("DemoComm")), what);
            } else if (action.startsWith(u"wait:")) {
                link.time().MsDelay(what.toInt());
            } else {
                qobject_cast<QAbstractButton *>(control(action))->click();
            }
        }
        QVERIFY(prompts.verify());
        QCOMPARE(menu.cmboedit().lines(), items(f.list));
        QStringList wire;
        for (const WireEvent &e : link.port().events())
            if (e.kind == WireEvent::Kind::Write)
                wire << QStringLiteral("%1:%2").arg(e.atMs - start).arg(SessionRig::shown(e.bytes));
        QCOMPARE(wire, items(f.wire));
        QWidget *shown = control(QStringLiteral("DemoComm"));
        if (!shown)
            shown = control(QStringLiteral("lblcopyr2"));
        QCOMPARE(shown ? shown->property(shown->inherits("QLabel") ? "text" : "plainText").toString()
                       : QString(),
                 QLatin1String(f.shown));
        // Done gives the port back to the programming screen, open.
        closeDialogs();
        QCOMPARE(QStringLiteral("%1 %2").arg(link.port().AutoProcess()).arg(link.port().PortOpen()),
                 QStringLiteral("0 1"));
        QVERIFY(!prompts.busy());
    }
};

QTEST_MAIN(CommandDialogsTest)
#include "CommandDialogsTest.moc"
