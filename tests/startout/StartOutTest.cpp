#include "StartOutScreens.h"

#include "Golden.h"
#include "ModemSession.h"
#include "ScriptedPrompts.h"
#include "SessionRig.h"
#include "SimulatedModemLink.h"
#include "Tables.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace {
// A unit on the cable, as the test sets it up: model, serial number, setup switches, saved settings.
sim::Scenario unit(const char *model = "Q4U", int serial = 14210, int switches = 2, int bits = 0,
                   const char *comrate = "40", bool dead = false)
{
    sim::Scenario s = sim::Scenario::standard();
    sim::ModemProfile &m = s.modems.first();
    m.model = QLatin1String(model);
    m.serial = serial;
    m.switches = switches;
    m.switchBits = bits;
    m.dead = dead;
    m.settings.insert(QStringLiteral("comrate"), QLatin1String(comrate));
    // Without the echo the version can be cut from its reply.
    m.settings.insert(QStringLiteral("echo"), QStringLiteral("OFF"));
    return s;
}

// Starting Out opened from the main menu, which leaves the port to the terminal.
struct Guide
{
    sim::SimulatedModemLink link;
    ScriptedPrompts prompts{&link.time()};
    ModemSession session{link.port(), link.time(), prompts};
    QPointer<StartingOutMenu> menu;
    bool unloaded = false;

    explicit Guide(const sim::Scenario &scenario = unit(), const char *hostSettings = "19200,N,8,1")
        : link(scenario)
    {
        link.port().setSettings(QLatin1String(hostSettings));
        link.port().setAutoProcess(CommControl::kAutoProcessTerminal);
        menu = new StartingOutMenu(session);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        QObject::connect(menu, &StartingOutMenu::unloaded, [this] { unloaded = true; });
        menu->show();
        link.port().clearEvents();
    }
    ~Guide() { delete menu; }

    template <typename W = QWidget> static W *find(const QString &name)
    {
        for (QWidget *w : QApplication::allWidgets())
            if (w->objectName() == name)
                return qobject_cast<W *>(w);
        return nullptr;
    }
    // "Form.control" clicks the control, "Form.close" closes the window.
    void press(const QString &step)
    {
        const QStringList parts = step.split(u'.');
        QWidget *form = find(parts[0]);
        QVERIFY2(form, qPrintable(step));
        if (parts[1] == u"close")
            form->close();
        else if (auto *b = form->findChild<QAbstractButton *>(parts[1]))
            b->click();
        else
            QFAIL(qPrintable(step));
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QString visible() const
    {
        QStringList names;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (w->isVisible())
                names << w->objectName();
        names.sort();
        return names.join(u' ');
    }
    QString written() { return SessionRig::writes(link.port()).join(QString()); }
};

struct Screen
{
    const char *name;
    const char *steps;
};
const Screen kScreens[] = {
    {"StartingOutMenu", ""},
    {"Power", "to step 1"},
    {"Familiarization", "to step 2"},
    {"Serial", "to step 3"},
    {"Step4", "to step 4"},
    {"ExpressSetup", "StartingOutMenu.cmdExpress"},
    {"Front", "Familiarization.cmdFront"},
    {"FrontPanelS", "Power=Model Q40U | Familiarization.cmdFront"},
    {"BackPicture", "Familiarization.cmdBackPanel"},
    {"TestingDiag", "Familiarization.cmdTesting"},
    {"TELED", "Familiarization.cmdFront | Front.cmdTELED"},
    {"Connections", "Serial.cmdCable"},
    {"Antenna", "Step4.cmdSquelch"},
    {"FindVarnel", "Power.cmdFind"},
    {"Communications", "StartingOutMenu.cmdTestComm"},
    {"SmallDemo", "Serial.cmdTest"},
};

// Going back, finishing and leaving: who is on screen, and the port's mode, after the steps.
struct Leave
{
    const char *name;
    const char *steps;
    const char *visible;
    int autoProcess;
};
const Leave kLeaves[] = {
    {"quit step 1", "to step 1 | Power.cmdQuit", "StartingOutMenu", 0},
    {"back from step 2", "to step 2 | Familiarization.cmdBack", "Power", 0},
    {"back from step 3", "to step 3 | Serial.cmdBack", "Familiarization", 0},
    {"back from step 4", "to step 4 | Step4.cmdBack", "Serial", 0},
    {"complete setup", "to step 4 | Step4.cmdComplete", "StartingOutMenu", 0},
    {"complete express setup", "StartingOutMenu.cmdExpress | Step4.cmdComplete", "StartingOutMenu", 0},
    {"window of step 3 closed", "to step 3 | Serial.close", "StartingOutMenu", 0},
    {"panel closed, step stays", "to step 2 | Familiarization.cmdBackPanel | BackPicture.close",
     "Familiarization", 0},
    {"exit", "StartingOutMenu.cmdExit", "", 3},
    {"exit after the guide", "to step 1 | Power.cmdQuit | StartingOutMenu.cmdExit", "", 3},
    {"exit with the serial test open", "to step 3 | Serial.cmdTest | StartingOutMenu.cmdExit", "", 3},
    {"menu window closed", "StartingOutMenu.cmdExpress | Step4.cmdComplete | StartingOutMenu.close", "", 3},
};

// The power step: the model, a click on an output choice if any, and what the labels then read.
struct PowerCase
{
    const char *name;
    const char *entry;
    int clicked;        // the choice clicked, -1 for none
    const char *labels; // transmit, receive, converter, input
    const char *solar;
    const char *tag;
};
const PowerCase kPowers[] = {
    {"nothing chosen", nullptr, -1, " |  |  | ", "0 Amp-Hours/Day", ""},
    {"old Q40U", "Model Q40U (Old Case)", -1,
     "2 Amps TX | .75 Amps RX | Varnel Model PS410 (90-264 VAC) | 11-15 VDC", "33 Amp-Hours/Day", "Q40U"},
    {"old Q40W second choice", "Model Q40W (Old Case)", 1,
     "2 Amps TX | .75 Amps RX | Varnel Model PS410 (90-264 VAC) | 11-15 VDC", "33 Amp-Hours/Day", "Q40W"},
    {"Q40Y", "Model Q40Y", 1, "1.76 Amps TX | .366 Amps RX | Varnel Model PS410 (90-264 VAC) | 11-15 VDC",
     "25.512 Amp-Hours/Day", "Q40Combine"},
    {"Q40R listed", "Model Q40R", -1,
     ".85 Amps TX | .49 Amps RX | Varnel Model PS410 (90-264 VAC) | 11-15 VDC", "16.08 Amp-Hours/Day",
     "Q40R"},
    {"Q40R clicked", "Model Q40R", 0,
     ".49 Amps TX | .85 Amps RX | Varnel Model PS410 (90-264 VAC) | 11-15 VDC", "16.08 Amp-Hours/Day",
     "Q40R"},
    {"high power third", "Model Q40ULX (High Power)", 2,
     "8.5 Amp TX | .400 Amps RX | Varnel Model PS420 (100-130 or 200-260 VAC) | 11-15 VDC",
     "106.8 Amp-Hours/Day", "Q40Combine"},
    {"Q40Z", "Model Q40Z", -1, ".70 Amps TX | .29 Amps RX | Varnel Model PS410 (90-264 VAC) | 11-15 VDC",
     "11.88 Amp-Hours/Day", "Q40Z"},
};

// The search for the connected unit from any rate of the computer's port.
struct Detect
{
    const char *name;
    const char *host;
    sim::Scenario (*scenario)();
    bool dongle;
    const char *boxes;
    const char *entry;
    const char *labels; // the output choices shown
};
const Detect kDetects[] = {
    {"new Q4U from 9600", "9600,N,8,1", [] { return unit(); }, false, "", "Model Q40U", "2 Watt | 4 Watt"},
    {"old Q4U from 1200, eight switches", "1200,N,8,1", [] { return unit("Q4U", 11000, 8, 0x20, "41"); },
     false, "", "Model Q40U (Old Case)", "2 Watt | 4 Watt"},
    {"old Q4ULX from 57600", "57600,N,8,1", [] { return unit("Q4ULX", 11000); }, false, "",
     "Model Q40ULX (High Power)", "10 Watts | 20 Watts | 30 Watts"},
    {"new Q4YLX from 4800", "4800,E,7,1", [] { return unit("Q4YLX", 13000); }, false, "",
     "Model Q40YLX (High Power)", "10 Watts | 20 Watts | 30 Watts"},
    {"Q4W at the limit from 2400", "2400,N,8,1", [] { return unit("Q4W", 12000); }, false, "", "Model Q40W",
     "2 Watt | 4 Watt"},
    {"old Q4W below the limit", "19200,N,8,1", [] { return unit("Q4W", 11999); }, false, "",
     "Model Q40W (Old Case)", "4 Watt | 2 Watt"},
    {"old Q4Y", "300,N,8,1", [] { return unit("Q4Y", 500); }, false, "", "Model Q40Y (Old Case)",
     "2 Watt | 4 Watt"},
    {"Q4R", "9600,N,8,1", [] { return unit("Q4R", 11000); }, false, "", "Model Q40R", "1 Watt"},
    {"Q4Z", "38400,N,8,1", [] { return unit("Q4Z", 20000); }, false, "", "Model Q40Z", "1 Watt (Maximum)"},
    {"switches left at 9600", "9600,N,8,1", [] { return unit("Q4U", 14210, 2, 1, "41"); }, false,
     "Unable to automatically detect modem on selected serial port.  Please select your model number "
     "manually "
     "and continue with Starting Out",
     "", ""},
    {"silent unit", "19200,N,8,1", [] { return unit("Q4U", 14210, 2, 0, "40", true); }, false,
     "Unable to automatically detect modem on selected serial port.  Please select your model number "
     "manually "
     "and continue with Starting Out",
     "", ""},
    {"adaptor ticked but absent", "9600,N,8,1", [] { return unit("Q4Y", 15000); }, true,
     "The Infra-Red Dongle is not responding", "Model Q40Y", "2 Watt | 4 Watt"},
};

// Step 4's address, in the guide or the express setup: the dialogue, each answer to the input box
// written "> answer" ("> " alone is an empty answer, ">" a cancel), and what went out after the
// modem's settings were read.
struct Address
{
    const char *name;
    const char *open;
    const char *dialogue;
    const char *sent;
    int address;
};
const Address kAddresses[] = {
    {"guide", "to step 4", "> 12 | Your Address Is Set To 12", "add 12:save\\r", 12},
    {"express", "StartingOutMenu.cmdExpress", "> 254 | Your Address Is Set To 254", "add 254:save\\r", 254},
    {"out of range twice", "StartingOutMenu.cmdExpress",
     "> 0 | Your address must be from 1 to 254 | > 255 | Your address must be from 1 to 254 | > 1 | Your "
     "Address Is Set To 1",
     "add 1:save\\r", 1},
    {"not a number", "StartingOutMenu.cmdExpress", "> abc | Your address must be from 1 to 254 | >", "", 1},
    {"empty answer", "StartingOutMenu.cmdExpress", "> ", "", 1},
};

// The tests on the shared port: which one, whether the modem answers, what was sent on the way in
// (the entry to command mode and the test's own "fa"), what is seen, and what "Done" sends.
struct PortCase
{
    const char *name;
    bool answers;
    const char *steps;
    const char *boxes;
    const char *title; // of the test window; empty when none opened
    const char *sent;
    bool welcomed; // the modem's banner shows in the test window
    const char *done;
};
const char *const kNoModem =
    "The Varnel is not detected on the selected comm port.  Would you like to "
    "initialize the IR Dongel?:No | Not communicating.  Make sure last switch on switch "
    "block (#8 or #2) is down.  Then reset.:Abort";
const PortCase kPorts[] = {
    {"one computer", true, "StartingOutMenu.cmdTestComm | Communications.cmdBegin", "",
     "One PC/Two Varnel Test", "<03>fa\\r", true, "disc\\r<close><open>"},
    {"two computers", true,
     "StartingOutMenu.cmdTestComm | Communications.optcommlink | Communications.cmdBegin", "",
     "Two PC/Two Varnel Test", "<03>fa\\r", true, "disc\\r<close><open>"},
    {"radio test, silent modem", false, "StartingOutMenu.cmdTestComm | Communications.cmdBegin", kNoModem, "",
     "<03>FA\\rFA\\r", false, ""},
    {"serial test", true, "to step 3 | Serial.cmdTest | SmallDemo.cmdTest", "", "Test Serial Communications",
     "fa\\r", true, "<close><open>"},
    {"serial test, silent modem", false, "to step 3 | Serial.cmdTest | SmallDemo.cmdTest", "",
     "Test Serial Communications", "fa\\r", false, "<close><open>"},
};

// The screens of other sections that the guide opens: which one, for which unit, and the boxes on the way.
struct HookCase
{
    const char *name;
    bool answers;
    const char *steps;
    const char *boxes;
    const char *opened;
};
const HookCase kHooks[] = {
    {"frequency", true, "to step 4 | Step4.cmdFreq", "", "frequency Q4Y"},
    {"frequency, express", true, "StartingOutMenu.cmdExpress | Step4.cmdFreq", "", "frequency Q4Y"},
    {"frequency, silent modem", false, "to step 4 | Step4.cmdFreq", kNoModem, ""},
    {"squelch", true, "to step 4 | Step4.cmdSquelch | Antenna.cmdAdjust", "", "squelch Q4Y"},
    {"squelch, silent modem", false, "to step 4 | Step4.cmdSquelch | Antenna.cmdAdjust", kNoModem, ""},
    {"computer's port", true, "to step 3 | Serial.cmdPort", "", "port"},
    {"modem's switches", true, "to step 3 | Serial.cmdSwitches", "", "serial rate"},
};

// The walk through the guide's steps by their buttons, as "to step N" names it.
const char *const kWalk[] = {"StartingOutMenu.cmdGuide", "Power.cmdStep2", "Familiarization.cmdStep3",
                             "Serial.cmdStep4"};

void run(Guide &guide, const char *steps)
{
    for (const QString &step : items(steps)) {
        if (step.startsWith(QStringLiteral("to step ")))
            for (int i = 0; i < step.mid(8).toInt(); ++i)
                guide.press(QLatin1String(kWalk[i]));
        else if (step.startsWith(QStringLiteral("Power=")))
            guide.menu->power()->selectModel(step.mid(6));
        else
            guide.press(step);
    }
}
} // namespace

class StartOutTest : public QObject
{
    Q_OBJECT
private slots:
    void screens_data() { addRows(kScreens); }
    void screens()
    {
        const Screen &row = fetchRow(kScreens);
        Guide guide;
        run(guide, row.steps);
        const QString name =
            QLatin1String(row.name) == u"ExpressSetup" ? QStringLiteral("Step4") : QLatin1String(row.name);
        QWidget *screen = guide.find(name);
        QVERIFY(screen);
        if (auto *step = qobject_cast<Step4 *>(screen))
            QCOMPARE(step->cmdBack->isHidden(), name != QLatin1String(row.name));
        QVERIFY(matchesGolden(describeWindow(*screen),
                              QStringLiteral(VARNEL_GOLDEN "/%1.txt").arg(QLatin1String(row.name))));
    }

    void leaving_data() { addRows(kLeaves); }
    void leaving()
    {
        const Leave &row = fetchRow(kLeaves);
        Guide guide;
        run(guide, row.steps);
        QCOMPARE(guide.visible(), QLatin1String(row.visible));
        QCOMPARE(guide.link.port().AutoProcess(), row.autoProcess);
        QCOMPARE(guide.unloaded, row.autoProcess == 3);
        QCOMPARE(guide.written(), QString());
        for (const WireEvent &e : guide.link.port().events())
            QVERIFY(e.kind != WireEvent::Kind::Close);
    }

    void power_data() { addRows(kPowers); }
    void power()
    {
        const PowerCase &row = fetchRow(kPowers);
        Guide guide;
        Power *step = guide.menu->power();
        if (row.entry)
            step->selectModel(QLatin1String(row.entry));
        if (row.clicked >= 0)
            step->options[size_t(row.clicked)]->click();
        step->cmdSolar->click();
        QCOMPARE(QStringList({step->lblTXA->text(), step->lblRXA->text(), step->lblmodel2->text(),
                              step->lblreqs->text()})
                     .join(QStringLiteral(" | ")),
                 QLatin1String(row.labels));
        QCOMPARE(step->txtsolar->text(), QLatin1String(row.solar));
        QCOMPARE(guide.menu->ModelTag, QLatin1String(row.tag));
    }

    void detection_data() { addRows(kDetects); }
    void detection()
    {
        const Detect &row = fetchRow(kDetects);
        Guide guide(row.scenario(), row.host);
        for (const QString &box : items(row.boxes))
            guide.prompts.expectMsgBox(box);
        Power *step = guide.menu->power();
        step->cmdFind->click();
        QPointer<FindVarnel> find = guide.find<FindVarnel>(QStringLiteral("FindVarnel"));
        find->chkDongle->setChecked(row.dongle);
        find->cmdOK->click();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(guide.prompts.verify());
        QCOMPARE(step->cmboModel->currentText(), QLatin1String(row.entry));
        QCOMPARE(bool(find), !*row.entry);
        QStringList shown;
        for (QRadioButton *option : step->options)
            if (!option->isHidden())
                shown << option->text();
        QCOMPARE(shown, items(row.labels));
        QCOMPARE(guide.link.port().Settings(), QStringLiteral("19200,N,8,1"));
        QCOMPARE(guide.link.port().AutoProcess(), CommControl::kAutoProcessProgram);
    }

    void address_data() { addRows(kAddresses); }
    void address()
    {
        const Address &row = fetchRow(kAddresses);
        Guide guide;
        run(guide, row.open);
        for (const QString &step : items(row.dialogue, Qt::KeepEmptyParts)) {
            if (!step.startsWith(u'>'))
                guide.prompts.expectMsgBox(step).withTitle(step.startsWith(QStringLiteral("Your address"))
                                                               ? QStringLiteral("Incorrect Address")
                                                               : QString());
            else
                guide.prompts
                    .expectInputBox(
                        QStringLiteral("Please Provide a Unique Address For The Varnel.  Adresses "
                                       "1-254 are valid addresses for the Varnel"),
                        step.size() > 1 ? std::optional<QString>(step.mid(2)) : std::nullopt)
                    .withTitle(QStringLiteral("Set Address"));
        }
        guide.press(QStringLiteral("Step4.cmdAddress"));
        QVERIFY(guide.prompts.verify());
        guide.link.time().MsDelay(1000);
        const QString written = guide.written();
        QVERIFY(written.startsWith(QStringLiteral("<03>")));
        QCOMPARE(written.mid(written.lastIndexOf(QStringLiteral("comrate\\r")) + 9), QLatin1String(row.sent));
        QCOMPARE(guide.link.local().address(), row.address);
        QCOMPARE(guide.link.local().savedValue(QStringLiteral("ADDRESS")).toInt(), row.address);
    }

    void hooks_data() { addRows(kHooks); }
    void hooks()
    {
        const HookCase &row = fetchRow(kHooks);
        Guide guide(unit("Q4Y", 15000, 2, 0, "40", !row.answers));
        QString opened;
        guide.menu->openFrequency = [&](ModemRecord &record, QWidget *) {
            opened = QStringLiteral("frequency ") + record.Model;
        };
        guide.menu->openSquelch = [&](ModemRecord &record, QWidget *) {
            opened = QStringLiteral("squelch ") + record.Model;
        };
        guide.menu->configurePort = [&](QWidget *) { opened = QStringLiteral("port"); };
        guide.menu->openSerialRate = [&](QWidget *) { opened = QStringLiteral("serial rate"); };
        for (const QString &box : items(row.boxes))
            guide.prompts.expectAnswered(box);
        run(guide, row.steps);
        QVERIFY(guide.prompts.verify());
        QCOMPARE(opened, QLatin1String(row.opened));
        QVERIFY(!guide.prompts.busy());
    }

    void sharedPort_data() { addRows(kPorts); }
    void sharedPort()
    {
        const PortCase &row = fetchRow(kPorts);
        Guide guide(unit("Q4U", 14210, 2, 0, "40", !row.answers));
        for (const QString &box : items(row.boxes))
            guide.prompts.expectAnswered(box);
        run(guide, row.steps);
        QVERIFY(guide.prompts.verify());
        QCOMPARE(guide.written(), QLatin1String(row.sent));
        auto *test = qobject_cast<PortTest *>(
            guide.find(QLatin1String(row.steps[0] == 't' ? "SmallDemo" : "PCVNLtest")));
        QCOMPARE(test ? test->windowTitle() : QString(), QLatin1String(row.title));
        QString done;
        if (test) {
            guide.link.time().MsDelay(1000);
            QCOMPARE(test->Comm2->toPlainText().contains(QStringLiteral("CMD:")), row.welcomed);
            guide.link.port().clearEvents();
            QTest::keyClicks(test->Comm2, QStringLiteral("x"));
            QCOMPARE(guide.written(), QStringLiteral("x"));
            guide.link.port().clearEvents();
            test->cmdDone->click();
            for (const WireEvent &e : guide.link.port().events())
                done += e.kind == WireEvent::Kind::Write   ? SessionRig::shown(e.bytes)
                        : e.kind == WireEvent::Kind::Close ? QStringLiteral("<close>")
                        : e.kind == WireEvent::Kind::Open  ? QStringLiteral("<open>")
                                                           : QString();
        }
        QCOMPARE(done, QLatin1String(row.done));
        QCOMPARE(guide.link.port().RThreshold(), 0);
        QCOMPARE(guide.link.port().AutoProcess(), CommControl::kAutoProcessProgram);
    }
};

QTEST_MAIN(StartOutTest)
#include "StartOutTest.moc"
