#include "SerialRate.h"

#include "ModemSession.h"
#include "ScriptedPrompts.h"
#include "SessionRig.h"
#include "SimulatedModemLink.h"
#include "Tables.h"

namespace {
// The wizard's texts, by the names the table uses.
const char *const kTexts[][2] = {
    {"step 2",
     "Step 2: The Varnel serial port will now be configured to match the computer's serial port setting "
     "(listed on the button below).  If you do not want to configure for the port setting listed below, "
     "press the Cancel button and re-configure the Terminal Port to the correct serial port settings."},
    {"step 3",
     "Step 3: Place RS-232 Setup Switch #1 in the ON (Up) Position and press the Reset Button.  Press the "
     "Test New Baud Rate button below to confirm operation at the new baud rate."},
    {"not at new rate",
     "Unable to communicate with Varnel at new baud rate.  Verify Switch #1 in ON (Up) position "
     "and press the reset button.  Press the Test New Baud Rate again when ready."},
    {"operating", "Varnel configured and operating at new baud rate"},
    {"no reset", "Varnel Reset Not Detected.  Follow Step 1 Again and Press OK When Completed."},
    {"lost",
     "Lost communication with Varnel during download. Check all serial connections and start again from the "
     "begining."},
    {"too fast",
     "The Maximum Baud Rate of This Varnel is 19200 bps.\r\nPlease reconfigure Comm Port and Press Again"},
};

// A text by its name (from 0) or a name by its text (from 1); unknown ones stand as they are.
QString named(const QString &text, int from = 1)
{
    for (const auto &row : kTexts)
        if (text == QLatin1String(row[from]))
            return QLatin1String(row[1 - from]);
    return text;
}

struct RecordingView : SerialRateView
{
    QStringList log;
    void setStatus(const QString &text, StatusLook look) override
    {
        if (!text.isEmpty())
            log << named(text) + QLatin1String(look == StatusLook::Failed ? " (red)" : " (green)");
    }
    void setInfo(const QString &text) override { log << named(text); }
    void setActionCaption(const QString &text) override { log << u'[' + text + u']'; }
    void disableCancel() override { log << QStringLiteral("no cancel"); }
    void openBaud() override { log << QStringLiteral("Baud"); }
    void unload() override { log << QStringLiteral("unload"); }
};

// The wizard against the simulated modem: the unit, the computer's settings, then what the user does
// ("reset:N" sets the setup switches to N, switch 1 the low bit, and presses Reset; "dies": the unit
// goes silent; "OK" and "Cancel" press the buttons), the boxes, the writes, what the wizard showed
// after its first instruction, and the step, the computer's settings and the modem's saved comrate.
struct Case
{
    const char *name;
    const char *modem;
    const char *settings;
    const char *actions;
    const char *boxes;
    const char *writes;
    const char *shown;
    const char *after;
};

const Case kCases[] = {
    {"9600, even parity, 7 data bits", "Q4U", "9600,E,7,1", "reset:0 | OK | OK | reset:1 | OK | OK", "",
     "<03> | Model\\r | Option\\r | Version\\r | s/n\\r | <03> | comrate 25:sa\\r | <03>",
     "Reset Successful (green) | [Download  9600,E,7,1] | step 2 | Download Successful (green) | step 3 | "
     "[Test New Baud Rate] | operating | Press OK to Continue (green) | [OK] | no cancel | unload",
     "4 9600,E,7,1 25"},
    {"19200 with two stop bits", "Q4U", "19200,N,8,2", "reset:0 | OK | OK | reset:1 | OK", "",
     "<03> | Model\\r | Option\\r | Version\\r | s/n\\r | <03> | comrate 32:sa\\r | <03>", "",
     "4 19200,N,8,2 32"},
    {"19200 on the spread-spectrum model", "Q4Z", "19200,N,8,1", "reset:0 | OK | OK | reset:1 | OK", "",
     "<03> | Model\\r | Option\\r | Version\\r | <03> | comrate 43:sa\\r | <03>", "", "4 19200,N,8,1 43"},
    {"57600 on the spread-spectrum model", "Q4Z", "57600,N,8,1", "reset:0 | OK | OK | reset:1 | OK", "",
     "<03> | Model\\r | Option\\r | Version\\r | <03> | comrate 41:sa\\r | <03>", "", "4 57600,N,8,1 41"},
    // Told, closed, and still taken to step 3 behind the closing form; nothing goes to the modem.
    {"57600 is too fast for the others", "Q4U", "57600,N,8,1", "reset:0 | OK | OK", "too fast",
     "<03> | Model\\r | Option\\r | Version\\r | s/n\\r | <03>",
     "Reset Successful (green) | [Download  57600,N,8,1] | step 2 | unload | Download Successful (green) | "
     "step 3 | [Test New Baud Rate]",
     "3 57600,N,8,1 40"},
    {"115200 sends nothing and closes", "Q4Z", "115200,N,8,1", "reset:0 | OK | OK", "",
     "<03> | Model\\r | Option\\r | Version\\r | <03>",
     "Reset Successful (green) | [Download  115200,N,8,1] | step 2 | unload", "2 115200,N,8,1 43"},
    {"a rate outside the table sends nothing", "Q4U", "600,N,8,1", "reset:0 | OK | OK", "",
     "<03> | Model\\r | Option\\r | Version\\r | s/n\\r | <03>", "", "3 600,N,8,1 40"},
    // An old unit gets its switch chart, and the wizard may go on behind it.
    {"an old unit", "old", "9600,N,8,1", "reset:32 | OK", "",
     "<03> | Model\\r | Option\\r | Version\\r | s/n\\r",
     "Baud | Reset Successful (green) | [Download  9600,N,8,1] | step 2", "2 9600,N,8,1 40"},
    {"no reset, then a reset", "Q4U 9600", "9600,N,8,1", "OK | reset:0 | OK", "",
     "<03> | FA\\r | <03> | Model\\r | Option\\r | Version\\r | s/n\\r",
     "no reset (red) | Reset Successful (green) | [Download  9600,N,8,1] | step 2", "2 19200,N,8,1 41"},
    {"lost in the download", "Q4U", "9600,N,8,1", "reset:0 | OK | dies | OK", "lost",
     "<03> | Model\\r | Option\\r | Version\\r | s/n\\r | <03> | FA\\r",
     "Reset Successful (green) | [Download  9600,N,8,1] | step 2 | unload", "2 9600,N,8,1 40"},
    {"the test fails until switch 1 is up", "Q4U", "9600,N,8,1", "reset:0 | OK | OK | OK | reset:1 | OK", "",
     "<03> | Model\\r | Option\\r | Version\\r | s/n\\r | <03> | comrate 41:sa\\r | <03> | FA\\r | <03>",
     "Reset Successful (green) | [Download  9600,N,8,1] | step 2 | Download Successful (green) | step 3 | "
     "[Test New Baud Rate] | not at new rate | Varnel Not Found (red) | operating | Press OK to Continue "
     "(green) | "
     "[OK] | no cancel",
     "4 9600,N,8,1 41"},
    {"cancel puts the settings back", "Q4U", "9600,N,8,1", "reset:0 | OK | Cancel", "",
     "<03> | Model\\r | Option\\r | Version\\r | s/n\\r",
     "Reset Successful (green) | [Download  9600,N,8,1] | step 2 | unload", "2 9600,N,8,1 40"},
};
} // namespace

class SerialRateTest : public QObject
{
    Q_OBJECT
private slots:
    void wizard_data() { addRows(kCases); }
    void wizard()
    {
        const Case &c = fetchRow(kCases);
        const QString modem = QLatin1String(c.modem);
        sim::Scenario scenario = sim::Scenario::standard();
        sim::ModemProfile &unit = scenario.modems[0];
        unit.settings = {{QStringLiteral("ECHO"), QStringLiteral("OFF")}};
        if (modem == u"Q4U 9600") {
            unit.settings.insert(QStringLiteral("COMRATE"), QStringLiteral("41"));
            unit.serial = 12000; // the first serial number of the new case
        }
        unit.model = modem == u"Q4Z" ? modem : QStringLiteral("Q4U");
        if (modem == u"old") {
            unit.serial = 11000;
            unit.switches = 8;
            unit.switchBits = 0x21;
        }
        sim::SimulatedModemLink link(scenario);
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        link.port().setSettings(QLatin1String(c.settings));
        link.time().advance(1000);
        link.port().clearEvents();
        for (const QString &box : items(c.boxes))
            prompts.expectMsgBox(named(box, 0));
        RecordingView view;
        SerialRateSetup setup(session, view);
        view.log.clear();
        for (const QString &action : items(c.actions)) {
            if (action.startsWith(u"reset:")) {
                link.local().setSwitchBits(action.mid(6).toInt());
                link.local().reset();
            } else if (action == u"dies") {
                link.local().setDead(true);
            } else if (action == u"Cancel") {
                setup.cmdCancel_Click();
            } else {
                setup.cmdDownload_Click();
            }
            link.time().advance(1000);
        }
        QVERIFY(prompts.verify());
        QCOMPARE(SessionRig::writes(link.port()).join(QStringLiteral(" | ")), QLatin1String(c.writes));
        if (*c.shown)
            QCOMPARE(view.log.join(QStringLiteral(" | ")), QLatin1String(c.shown));
        QCOMPARE(QStringLiteral("%1 %2 %3")
                     .arg(setup.Step())
                     .arg(link.port().Settings(), link.local().savedValue(QStringLiteral("COMRATE"))),
                 QLatin1String(c.after));
    }
};

QTEST_GUILESS_MAIN(SerialRateTest)
#include "SerialRateTest.moc"
