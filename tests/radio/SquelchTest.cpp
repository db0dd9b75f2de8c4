#include "Squelch.h"

#include "ChooseFreqType.h"
#include "Golden.h"
#include "SessionRig.h"
#include "SimulatedModemLink.h"
#include "SquelchScreens.h"

#include <QPushButton>
#include <QRegularExpression>
#include <QSlider>

namespace {
// The walk with the user's answers about the RX light in turn; the boxes after the questions, and
// every write.
const char *const kWalks[][5] = {
    {"no at 0 saves 0", "Q4U", "No", "Squelch Saved at 0.", "Squelch 0:Latch\\r | SAVE\\r"},
    {"no at 2 saves 2", "Q4U", "Yes | Yes | No", "Squelch Saved at 2.",
     "Squelch 0:Latch\\r | Squelch 1:Latch\\r | Squelch 2:Latch\\r | SAVE\\r"},
    {"on at every level", "Q4U", "Yes | Yes | Yes | Yes", "highest",
     "Squelch 0:Latch\\r | Squelch 1:Latch\\r | Squelch 2:Latch\\r | Squelch 3:Latch\\r | SAVE\\r"},
    {"spread spectrum, one sentence", "Q4Z", "Yes | Yes | Yes | Yes | Yes | Yes | No",
     "Asquelch Saved at 1 Squelch Saved at 2.",
     "Asquelch 0:Latch\\r | Squelch 0:Latch\\r | Squelch 1:Latch\\r | Squelch 2:Latch\\r | Squelch "
     "3:Latch\\r | "
     "Asquelch 1:Latch\\r | Squelch 0:Latch\\r | Squelch 1:Latch\\r | Squelch 2:Latch\\r | SAVE\\r"},
};

const QString kHighest =
    QStringLiteral("Receiver squelch set to the highest squelch level.  Movement of antenna, "
                   "modem or data cable is necessary until the RX light is off");

// A squelch screen from the hub's third button, the help declined or taken, against the simulated
// unit ("model option"): the position set, the writes from the click on, the box, and the unit's
// saved values afterwards. Interference in microvolts drives the carrier indicator for auto squelch.
struct Screen
{
    const char *name;
    const char *unit;
    MsgAnswer help;
    int position;
    const char *writes;
    const char *report;
    const char *saved;
    double interference = 0;
};

const Screen kScreens[] = {
    {"SetSquelch", "Q4U 0", MsgAnswer::No, 2, "Squelch 2:Latch\\r | Save\\r",
     "Your squelch has been saved at Squelch = 2", "SQUELCH=2"},
    {"SetSquelchHP", "Q4Y 64", MsgAnswer::No, 1, "Squelch 0:Asquelch 140:Latch\\r | Save\\r",
     "Your settings has been saved.\rAsquelch = 140\rSquelch = 0", "SQUELCH=0 ASQUELCH=140"},
    {"SetSquelchHP", "Q4R 64", MsgAnswer::No, 3, "Squelch 0:Asquelch 0:Latch\\r | Save\\r",
     "Your settings has been saved.\rAsquelch = 0\rSquelch = 0", "SQUELCH=0 ASQUELCH=0"},
    {"SetSquelchS", "Q4Z 0", MsgAnswer::No, 3, "Squelch 3:Latch\\r | Asquelch 40:Latch\\r | Save\\r",
     "Your squelch has been saved at Squelch = 3\rYour Asquelch has been saved at Asquelch = 40",
     "SQUELCH=3 ASQUELCH=40"},
    // The noise floor opens the receiver up to 10; quiet at 20, the result is 40.
    {"AutoSquelch", "Q4U 64", MsgAnswer::Yes, 0,
     "Squelch 0:Latch\\r | Asquelch 0:Latch\\r | asq 10:Latch\\r | asq 20:Latch\\r | Squelch 30:Latch\\r | "
     "Asquelch 40:Latch\\r | Save\\r",
     "Your settings has been saved.\rAsquelch = 40\rSquelch = 30", "SQUELCH=30 ASQUELCH=40"},
    {"AutoSquelch", "Q4U 64", MsgAnswer::Yes, 0,
     "asq 70:Latch\\r | asq 80:Latch\\r | Squelch 30:Latch\\r | Asquelch 90:Latch\\r | Save\\r",
     "Your settings has been saved.\rAsquelch = 90\rSquelch = 30", "SQUELCH=30 ASQUELCH=90", 300},
    {"AutoSquelch", "Q4W 64", MsgAnswer::Yes, 0,
     "asq 240:Latch\\r | asq 250:Latch\\r | asq 255:Latch\\r | Squelch 30:Latch\\r | Asquelch 0:Latch\\r | "
     "Save\\r",
     "error | Your settings has been saved.\rAsquelch = 0\rSquelch = 30", "SQUELCH=30 ASQUELCH=0", 1e13},
};

} // namespace

class SquelchTest : public QObject
{
    Q_OBJECT
private slots:
    void walks_data() { addRows(kWalks); }
    void walks()
    {
        const auto &[name, model, answers, report, writesExpected] = fetchRow(kWalks);
        SessionRig rig(CommControl::kAutoProcessProgram);
        const bool spread = QLatin1String(model) == u"Q4Z";
        int s = 0;
        int a = 0;
        for (const QString &answer : items(answers)) {
            rig.prompts
                .expectMsgBox(
                    spread ? QStringLiteral("Receiver squelch set to %1Asquelch = %2.  Is your RX light on?")
                                 .arg(s)
                                 .arg(a)
                           : QStringLiteral("Receiver squelch set to %1.  Is your RX light on?").arg(s),
                    answer == u"Yes" ? MsgAnswer::Yes : MsgAnswer::No)
                .withButtons(MsgButtons::YesNo);
            a += s == 3;
            s = (s + 1) % 4;
        }
        if (QLatin1String(report) == u"highest")
            rig.prompts.expectMsgBox(kHighest).withIcon(MsgIcon::Critical);
        else
            rig.prompts.expectMsgBox(QLatin1String(report)).withTitle(QStringLiteral("Squelch Level Saved"));
        spread ? SpreadSquelchWalk(rig.session) : SquelchWalk(rig.session);
        QVERIFY(rig.prompts.verify());
        QCOMPARE(SessionRig::writes(rig.port), items(writesExpected));
    }

    void screens_data() { addRows(kScreens); }
    void screens()
    {
        const Screen &row = fetchRow(kScreens);
        sim::Scenario scenario = sim::Scenario::standard();
        sim::ModemProfile &unit = scenario.modems[0];
        unit.model = QString::fromLatin1(row.unit).section(u' ', 0, 0);
        unit.option = QString::fromLatin1(row.unit).section(u' ', 1).toInt();
        unit.settings[QStringLiteral("ECHO")] = QStringLiteral("OFF");
        if (row.interference > 0)
            scenario.interference.append({QString(), row.interference, 1.0});
        sim::SimulatedModemLink link(scenario);
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        link.time().advance(1000);
        ChooseFreqType hub(session);
        hub.Load();
        prompts.expectMsgBox(QStringLiteral("Do you need help in setting your squelch level?"), row.help)
            .withButtons(MsgButtons::YesNo)
            .withTitle(QStringLiteral("Need Help?"));
        hub.Command1[3]->click();
        QVERIFY(prompts.verify());
        auto *screen = hub.findChild<FreqScreen *>(QLatin1String(row.name));
        QVERIFY(screen);
        if (row.position == 0 || QLatin1String(row.name) == u"SetSquelchHP")
            QVERIFY(matchesGolden(describeWindow(*screen),
                                  QStringLiteral(VARNEL_GOLDEN "/%1.txt").arg(QLatin1String(row.name))));
        for (const QString &box : items(row.report)) {
            if (box == u"error")
                prompts
                    .expectMsgBox(
                        QStringLiteral("Maximum Squelch Level Set! Other Varnel or Input Causing Error In "
                                       "Calculation.  Remove Noise Source and Try Again."))
                    .withIcon(MsgIcon::Critical)
                    .withTitle(QStringLiteral("Squelch Error"));
            else
                prompts.expectMsgBox(box).withTitle(QLatin1String(row.name).startsWith(u"SetSquelch") &&
                                                            !box.contains(u"settings")
                                                        ? QStringLiteral("Squelch")
                                                        : QStringLiteral("Squelch Saved"));
        }
        link.port().clearEvents();
        if (auto *slider = screen->findChild<QSlider *>(QStringLiteral("sldsrs"))) {
            slider->setValue(row.position);
            static_cast<SquelchSlider *>(screen)->cmdsrs->click();
        } else {
            static_cast<AutoSquelch *>(screen)->cmdSetSquelch->click();
        }
        QVERIFY(prompts.verify());
        // What the search reads stands apart: the writes are compared without the carrier reads.
        const QStringList seen =
            SessionRig::writes(link.port()).filter(QRegularExpression(QStringLiteral("^(?!inout 0,5)")));
        const QStringList expected = items(row.writes);
        QVERIFY2(seen.join(u'|').contains(expected.join(u'|')), qPrintable(seen.join(u'|')));
        link.time().advance(1000);
        QStringList saved;
        for (const QString &key : QString::fromLatin1(row.saved).split(u' '))
            saved << key.section(u'=', 0, 0) + u'=' + link.local().savedValue(key.section(u'=', 0, 0));
        QCOMPARE(saved.join(u' '), QLatin1String(row.saved));
    }
};

QTEST_MAIN(SquelchTest)
#include "SquelchTest.moc"
