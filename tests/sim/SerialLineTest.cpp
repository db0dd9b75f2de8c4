#include "SimExchange.h"
#include "SimulatedModemLink.h"

#include <QTest>

using sim::Scenario;
using sim::SimulatedModemLink;

namespace {

LineSettings line(const QString &text)
{
    return *parseLineSettings(text);
}

} // namespace

class SerialLineTest : public QObject
{
    Q_OBJECT
private slots:
    void reframe_data()
    {
        QTest::addColumn<QString>("sender");
        QTest::addColumn<QString>("receiver");
        QTest::addColumn<QByteArray>("sent");
        QTest::addColumn<QByteArray>("received");
        QTest::newRow("same") << "9600,n,8,1"
                              << "9600,n,8,1" << QByteArray("CMD:") << QByteArray("CMD:");
        QTest::newRow("stop bits differ") << "19200,n,8,2"
                                          << "19200,n,8,1" << QByteArray("Model\r") << QByteArray("Model\r");
        QTest::newRow("seven bits both") << "9600,e,7,1"
                                         << "9600,e,7,1" << QByteArray("AB") << QByteArray("AB");
        // 7E1 and 8N1 frames are the same length: the parity bit becomes the eighth data bit.
        QTest::newRow("7E1 into 8N1") << "9600,e,7,1"
                                      << "9600,n,8,1" << QByteArray("AC") << QByteArray("A\xC3");
        // Twice as fast: the long start bit is read as the first data bit too.
        QTest::newRow("half rate") << "9600,n,8,1"
                                   << "19200,n,8,1" << QByteArray("\xFF") << QByteArray("\xFE");
        // Twice as slow: two characters run into one; the first one's stop bit is data bit 3.
        QTest::newRow("double rate") << "19200,n,8,1"
                                     << "9600,n,8,1" << QByteArray("\x00\x00", 2) << QByteArray("\x08");
    }
    void reframe()
    {
        QFETCH(QString, sender);
        QFETCH(QString, receiver);
        QFETCH(QByteArray, sent);
        QFETCH(QByteArray, received);
        QCOMPARE(sim::reframe(sent, line(sender), line(receiver)), received);
    }

    void rateMismatchTurnsBothDirectionsToGarbage()
    {
        SimulatedModemLink link; // the modem runs at 19200
        link.port().setSettings(QStringLiteral("9600,n,8,1"));
        const QByteArray reply = exchange(link, "\x03", 500);
        QVERIFY2(!reply.contains("CMD:"), reply.toHex().constData());
        const QByteArray model = exchange(link, "Model\r", 500);
        QVERIFY(!model.contains("MODEL"));
        // Back at the modem's rate the prompt is there again.
        link.port().setSettings(QStringLiteral("19200,n,8,1"));
        QVERIFY(exchange(link, "\x03", 500).endsWith("CMD:"));
    }

    void frameMismatchGarbles()
    {
        SimulatedModemLink link;
        link.port().setSettings(QStringLiteral("19200,e,7,1"));
        const QByteArray reply = exchange(link, "Model\r", 500);
        QVERIFY2(!reply.contains("MODEL    = Q4U"), reply.constData());
    }

    void startUpSwitchForcesTheFixedRate()
    {
        Scenario s = Scenario::standard();
        s.modems[0].settings = {{QStringLiteral("COMRATE"), QStringLiteral("25")}}; // 9600,E,7,1
        SimulatedModemLink link(s);
        QCOMPARE(link.port().Settings(), QStringLiteral("9600,e,7,1"));
        QVERIFY(exchange(link, "\x03").endsWith("CMD:"));
        // Switch 1 down and a reset: the unit talks at 19200,N,8,1 whatever its comrate.
        link.local().setSwitchBits(0);
        link.local().reset();
        link.time().MsDelay(500);
        link.port().setSettings(QStringLiteral("19200,N,8,1"));
        QVERIFY(exchange(link, "\x03").endsWith("CMD:"));
        // The rate the utility sends takes effect at the next restart with the switch up.
        exchange(link, "comrate 43:sa\r");
        link.local().setSwitchBits(1);
        link.local().reset();
        link.time().MsDelay(500);
        QCOMPARE(link.local().lineSettings(), line(QStringLiteral("2400,n,8,1")));
    }

    void spreadSpectrumRateCodes()
    {
        Scenario s = Scenario::standard();
        s.modems[0].model = QStringLiteral("Q4Z");
        s.modems[0].settings = {{QStringLiteral("COMRATE"), QStringLiteral("40")}};
        SimulatedModemLink link(s);
        QCOMPARE(link.local().lineSettings(), line(QStringLiteral("115200,n,8,1")));
    }

    void oldCaseRateComesFromTheSwitches()
    {
        Scenario s = Scenario::standard();
        s.modems[0].serial = 9100;
        s.modems[0].switches = 8;
        s.modems[0].switchBits = 0x01 | 0x08 | 0x20; // 9600, one stop bit, eight data bits
        SimulatedModemLink link(s);
        QCOMPARE(link.local().lineSettings(), line(QStringLiteral("9600,n,8,1")));
    }

    void lastSwitchUpStartsInOperatingMode()
    {
        Scenario s = Scenario::standard();
        s.modems[0].switchBits = 0x03;
        SimulatedModemLink link(s);
        link.local().powerUp();
        link.time().MsDelay(500);
        const QByteArray banner = link.port().Input();
        QVERIFY(banner.contains("Unit Address"));
        QVERIFY(!banner.contains("CMD:"));
        QVERIFY(!exchange(link, "model\r").contains("MODEL"));
        QVERIFY(exchange(link, "\x03").endsWith("CMD:"));
    }

    void irAdaptorStartsOnlyAfterItsCommandBytes()
    {
        Scenario s = Scenario::standard();
        s.irAdaptor = true;
        SimulatedModemLink link(s);
        QCOMPARE(link.port().Settings(), QStringLiteral("9600,n,8,1"));
        // Not set up yet: nothing crosses.
        QCOMPARE(exchange(link, "\x03"), QByteArray());
        MemoryCommControl &port = link.port();
        port.setRTSEnable(false);
        link.time().MsDelay(30);
        port.setRTSEnable(true);
        port.setDTREnable(false);
        port.Output("\xD1");
        port.Output("\xC0");
        link.time().MsDelay(200);
        QCOMPARE(port.Input(), QByteArray("\xC2"));
        port.Output("\xD0");
        port.Output("\x03");
        port.Output("\x45");
        link.time().MsDelay(100);
        port.setDTREnable(true);
        QVERIFY(link.line().adaptorReady());
        // The modem behind it runs at 19200; the adaptor takes care of that.
        QVERIFY(exchange(link, "\x03").endsWith("CMD:"));
    }

    void irAdaptorLosesBurstsAndPassesSingleCharacters()
    {
        Scenario s = Scenario::standard();
        s.irAdaptor = true;
        SimulatedModemLink link(s);
        MemoryCommControl &port = link.port();
        port.setRTSEnable(false);
        port.setRTSEnable(true);
        port.setDTREnable(false);
        port.Output("\xD1\xC0");
        link.time().MsDelay(200);
        QCOMPARE(port.Input(), QByteArray("\xC2"));
        port.Output("\xD0\x03\x45");
        link.time().MsDelay(100);
        port.setDTREnable(true);
        // Of the burst only the first letter reaches the modem, which echoes it.
        QCOMPARE(exchange(link, "squelch\r"), QByteArray("s"));
        QCOMPARE(exchange(link, "\x03"), QByteArray("\r\nCMD:"));
        for (char c : QByteArray("squelch\r")) {
            port.Output(QByteArray(1, c));
            link.time().MsDelay(1);
        }
        link.time().MsDelay(500);
        QCOMPARE(port.Input(), QByteArray("squelch\r\nSQUELCH  = 30\r\nCMD:"));
    }

    void irAdaptorSilentWithoutTheControlLinePulse()
    {
        Scenario s = Scenario::standard();
        s.irAdaptor = true;
        SimulatedModemLink link(s);
        link.port().setDTREnable(false);
        link.port().Output("\xD1");
        link.port().Output("\xC0");
        link.time().MsDelay(200);
        QCOMPARE(link.port().Input(), QByteArray());
    }
};

QTEST_GUILESS_MAIN(SerialLineTest)
#include "SerialLineTest.moc"
