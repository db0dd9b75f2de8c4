#include "OptionsForms.h"

#include "Golden.h"
#include "SessionRig.h"
#include "SimulatedModemLink.h"
#include "Tables.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

namespace {
// The option and power forms against the simulated modem: the model and version, what the user does
// ("set N": boxes ticked to N, then Set Option; "clear N": box N cleared, any question
// answered as the row says; "power N": SetPowerS opened and set to N), then the boxes and the writes after
// the entry.
const char *const kScenes[][5] = {
    {"narrow band models, narrow band ticked", "Q4U 1.52", "set 16", "Varnel Set to Option = 16",
     "<03> | Model\\r | Option\\r | Version\\r | datarate 64:rfwait 2:rxd 3:rxend 1:txf 2:txe 2:frack 60\\r "
     "| option 16:save\\r"},
    {"before 1.45", "Q4U 1.44", "set 80", "Varnel Set to Option = 80",
     "datarate 64:rfwait 3:rxd 3:rxend 1:txf 2:txe 1:frack 60\\r | option 80:save\\r"},
    {"from 1.45", "Q4U 1.45", "set 17", "Varnel Set to Option = 17",
     "datarate 64:rfwait 7:rxd 3:rxend 1:txf 2:txe 1:frack 60\\r | option 17:save\\r"},
    {"without narrow band", "Q4Y 1.45", "set 4", "Varnel Set to Option = 4", "Version\\r | option 4:save\\r"},
    {"spread spectrum: the word alone", "Q4Z 1.45", "set 18", "Varnel Set to Option = 18",
     "<03> | option 18:save\\r"},
    {"back to wide band", "Q4U 1.52", "clear 4", "Return To Wideband?:Yes",
     "Version\\r | datarate 0:rfwait 2:rxd 2:rxend 1:txf 3:txe 1:frack 50\\r"},
    {"back to wide band from 1.45", "Q4U 1.49", "clear 4", "Return To Wideband?:Yes",
     "Version\\r | datarate 0:rfwait 5:rxd 2:rxend 1:txf 3:txe 1:frack 50\\r"},
    {"staying narrow", "Q4U 1.52", "clear 4", "Return To Wideband?:No", ""},
    {"other boxes ask nothing", "Q4U 1.52", "clear 6", "", ""},
    {"a silent modem is still told", "dead", "set 2",
     "The Varnel is not detected on the selected comm port.  Would you like to initialize the IR Dongel?:No"
     " | Not communicating.  Make sure last switch on switch block (#8 or #2) is down.  Then reset.:Abort | "
     "Varnel Set to Option = 2",
     "<03> | FA\\r | FA\\r"},
    {"power: half a watt", "Q4Z 1.52", "power 0", "",
     "<03> | Model\\r | Option\\r | Version\\r | add\\r | setc\\r | "
     "asquelch\\r | rflow\\r | rxmark\\r | rfp\\r | comrate\\r | RFP 0:LAT\\r | SAVE\\r"},
    {"power: not this model", "Q4U 1.52", "power 1", "This Model of Varnel Does Not Support This Option",
     "<03> | Model\\r | Option\\r | Version\\r"},
};

// Runs fn on the modal form as soon as it is up, if it comes up while the watch lives.
std::unique_ptr<QTimer> onModal(std::function<void(QWidget *)> fn)
{
    auto timer = std::make_unique<QTimer>();
    QObject::connect(timer.get(), &QTimer::timeout, [t = timer.get(), fn] {
        if (QWidget *modal = QApplication::activeModalWidget()) {
            t->stop();
            fn(modal);
        }
    });
    timer->start(0);
    return timer;
}
} // namespace

class ModelOptionsTest : public QObject
{
    Q_OBJECT
private slots:
    void scenes_data()
    {
        QTest::addColumn<int>("row");
        for (size_t i = 0; i < std::size(kScenes); ++i)
            QTest::newRow(kScenes[i][0]) << int(i);
    }
    void scenes()
    {
        QFETCH(int, row);
        const auto &[name, modem, action, boxes, writes] = kScenes[row];
        sim::Scenario scenario = sim::Scenario::standard();
        sim::ModemProfile &unit = scenario.modems[0];
        unit.settings = {{QStringLiteral("ECHO"), QStringLiteral("OFF")},
                         {QStringLiteral("RFPOWER"), QStringLiteral("1")}};
        unit.model = QString::fromLatin1(modem).section(u' ', 0, 0);
        unit.version = QString::fromLatin1(modem).section(u' ', 1);
        unit.dead = unit.model == u"dead";
        unit.option = 16;
        sim::SimulatedModemLink link(scenario);
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        link.time().advance(1000);
        link.port().clearEvents();
        for (const QString &box : items(boxes))
            prompts.expectAnswered(box);
        const QString what = QString::fromLatin1(action).section(u' ', 0, 0);
        const QString value = QString::fromLatin1(action).section(u' ', 1);
        if (what == u"power") {
            const auto watch = onModal([&](QWidget *form) {
                auto *power = static_cast<SetPowerS *>(form);
                QVERIFY(power->optPower[1]->isChecked() && power->lblWarn->isVisibleTo(power));
                power->optPower[value.toInt()]->setChecked(true);
                QCOMPARE(power->lblWarn->isVisibleTo(power), value == u"1");
                power->cmdSet->click();
            });
            mnuPowerS(session, nullptr);
        } else {
            std::unique_ptr<Options> form(unit.model == u"Q4Z" ? new OptQ40Z(session) : new Options(session));
            form->setBits(UnpackOptions(quint8(value.toInt())));
            if (what == u"set") {
                link.port().clearEvents();
                form->cmdSet->click();
            } else {
                form->setBits(UnpackOptions(0xff));
                form->chkoptions[size_t(value.toInt())]->click();
            }
        }
        QVERIFY(prompts.verify());
        const QString joined = SessionRig::writes(link.port()).join(QStringLiteral(" | "));
        QVERIFY2(*writes ? joined.endsWith(QLatin1String(writes)) : joined.isEmpty(), qPrintable(joined));
        QCOMPARE(prompts.busy(), false);
        QCOMPARE(link.port().AutoProcess(), what == u"power" ? CommControl::kAutoProcessTerminal : 0);
    }

    // The form by model, its boxes as the option word has them; from the programming menu the options
    // show under the hourglass and cannot be set. The hour meter split up, once the prompt is there.
    void formsAndHourMeter()
    {
        SessionRig rig(CommControl::kAutoProcessProgram);
        rig.modem.answer("\x03", "\r\nCMD:");
        rig.modem.answer("Model\r", "MODEL    = Q4Z\r\nCMD:");
        rig.modem.answer("Option\r", "OPTION   = 130\r\nCMD:");
        rig.modem.answer("Version\r", "VERSION  = 1.52\r\nCMD:");
        rig.modem.answer("hour\r", "hour\r\nHOURS    = 18034.7\r\nCMD:");
        QStringList seen;
        bool settable = false, busy = false;
        const auto look = [&](QWidget *form) {
            seen = describeWindow(*form);
            busy = rig.prompts.busy();
            if (auto *options = qobject_cast<Options *>(form))
                settable = options->cmdSet->isEnabled();
            form->close();
        };
        const auto watch = onModal(look);
        ShowModelOptions(rig.session, nullptr);
        QVERIFY(matchesGolden(seen, QStringLiteral(VARNEL_GOLDEN "/OptQ40Z.txt")) && settable);
        const auto again = onModal(look);
        mnuModemopt(rig.session, nullptr);
        QVERIFY(!settable && busy && !rig.prompts.busy());
        QVERIFY(matchesGolden(describeWindow(Options(rig.session)),
                              QStringLiteral(VARNEL_GOLDEN "/Options.txt")));
        const auto hours = onModal(look);
        mnuHours(rig.session, nullptr);
        QVERIFY(matchesGolden(seen, QStringLiteral(VARNEL_GOLDEN "/Hours.txt")) && busy);
        QVERIFY(rig.prompts.verify());

        // A silent modem: the entry routine's boxes, and no hour meter.
        SessionRig silent(CommControl::kAutoProcessProgram);
        silent.prompts.expectAnswered(QStringLiteral("The Varnel is not detected on the selected comm port.  "
                                                     "Would you like to initialize the IR Dongel?:No"));
        silent.prompts.expectAnswered(QStringLiteral("Not communicating.  Make sure last switch on switch "
                                                     "block (#8 or #2) is down.  Then reset.:Abort"));
        const auto none = onModal([](QWidget *) { QFAIL("a form opened"); });
        mnuHours(silent.session, nullptr);
        QVERIFY(silent.prompts.verify() && !silent.prompts.busy());
    }
};

QTEST_MAIN(ModelOptionsTest)
#include "ModelOptionsTest.moc"
