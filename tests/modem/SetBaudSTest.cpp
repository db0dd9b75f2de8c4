#include "SetBaudS.h"

#include "Golden.h"
#include "SessionRig.h"
#include "Tables.h"

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {
// The switch chart for each rate and frame: switches 1 to 8 as the labels read, the blocks up for ON.
const char *const kCharts[][2] = {
    {"19200,N,8,1", "OFF OFF OFF ON OFF ON OFF OFF"}, {"9600,N,8,1", "ON OFF OFF ON OFF ON OFF OFF"},
    {"4800,E,7,1", "OFF ON OFF ON ON OFF OFF OFF"},   {"2400,O,8,2", "ON ON OFF OFF ON ON ON OFF"},
    {"1200,N,7,2", "OFF OFF ON OFF OFF OFF OFF OFF"}, {"600,n,8,1", "ON OFF ON ON OFF ON OFF OFF"},
    {"300,E,8,1", "OFF ON ON ON ON ON OFF OFF"},      {"57600,N,8,1", "OFF OFF OFF ON OFF ON OFF OFF"},
};
} // namespace

class SetBaudSTest : public QObject
{
    Q_OBJECT
private slots:
    void switchCharts_data() { addRows(kCharts); }
    void switchCharts()
    {
        const auto &[settings, expected] = fetchRow(kCharts);
        Baud baud{QLatin1String(settings)};
        QStringList labels;
        for (int i = 0; i < 8; ++i) {
            labels << baud.lblSwitch[size_t(i)]->text();
            QCOMPARE(baud.blkOnOff[size_t(i)]->y() == 0, labels.constLast() == u"ON");
        }
        QCOMPARE(labels.join(u' '), QLatin1String(expected));
        QCOMPARE(baud.lblBaud->text(), QLatin1String(settings));
    }

    // The wizard holds the port while it is open; an old unit's chart opens beside it, and "Done"
    // closes both. (The adaptor's refusal is seen from the terminal's menu.)
    void wizardAndChart()
    {
        SessionRig rig(CommControl::kAutoProcessTerminal);
        rig.port.setSettings(QStringLiteral("9600,N,8,1"));
        rig.modem.answer("\x03", "\r\nCMD:");
        rig.modem.answer("Model\r", "MODEL    = Q4U\r\nCMD:");
        rig.modem.answer("Option\r", "OPTION   = 0\r\nCMD:");
        rig.modem.answer("Version\r", "VERSION  = 1.52\r\nCMD:");
        rig.modem.answer("s/n\r", "S/N      = 11000\r\nCMD:");
        QPointer<SetBaudS> wizard = mnuSerialS(rig.session, nullptr);
        QVERIFY(matchesGolden(describeWindow(*wizard), QStringLiteral(VARNEL_GOLDEN "/SetBaudS.txt")));
        QCOMPARE(rig.port.AutoProcess(), CommControl::kAutoProcessProgram);
        wizard->cmdDownload->click();
        QPointer<Baud> chart = wizard->baud();
        QVERIFY(chart && chart->isVisible() && wizard->isVisible());
        QVERIFY(matchesGolden(describeWindow(*chart), QStringLiteral(VARNEL_GOLDEN "/Baud.txt")));
        QCOMPARE(wizard->txtStatus->text() + u' ' + wizard->cmdDownload->text(),
                 QStringLiteral("Reset Successful Download  9600,N,8,1"));
        QCOMPARE(rig.port.Settings(), QStringLiteral("9600,N,8,1"));
        chart->Command1->click();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!wizard && !chart);
        QCOMPARE(rig.port.AutoProcess(), CommControl::kAutoProcessTerminal);
    }
};

QTEST_MAIN(SetBaudSTest)
#include "SetBaudSTest.moc"
