#include "SimRig.h"

#include <QTest>

using sim::Scenario;
using sim::SimulatedModemLink;

namespace {

LineSettings line(const QString &text)
{
    return *parseLineSettings(text);
}

const QByteArray kModelReply("Model\r\nMODEL    = Q4U\r\nCMD:");

} // namespace

class SerialLineTest : public QObject
{
    Q_OBJECT
private slots:
    void reframe_data()
    {
        QTest::addColumn<QString>("ends"); // the sender's settings, then the receiver's
        QTest::addColumn<QByteArray>("sent");
        QTest::addColumn<QByteArray>("received");
        QTest::newRow("same") << "9600,n,8,1 9600,n,8,1" << QByteArray("CMD:") << QByteArray("CMD:");
        QTest::newRow("stop bits differ")
            << "19200,n,8,2 19200,n,8,1" << QByteArray("Model\r") << QByteArray("Model\r");
        QTest::newRow("seven bits both") << "9600,e,7,1 9600,e,7,1" << QByteArray("AB") << QByteArray("AB");
        // 7E1 and 8N1 frames are the same length: the parity bit becomes the eighth data bit.
        QTest::newRow("7E1 into 8N1") << "9600,e,7,1 9600,n,8,1" << QByteArray("AC") << QByteArray("A\xC3");
        QTest::newRow("7O1 into 8N1")
            << "9600,o,7,1 9600,n,8,1" << QByteArray("AC") << QByteArray("\xC1\x43");
        QTest::newRow("7M1 into 8N1")
            << "9600,m,7,1 9600,n,8,1" << QByteArray("AC") << QByteArray("\xC1\xC3");
        QTest::newRow("7S1 into 8N1") << "9600,s,7,1 9600,n,8,1" << QByteArray("AC") << QByteArray("AC");
        // Twice as fast: the long start bit is read as the first data bit too.
        QTest::newRow("half rate") << "9600,n,8,1 19200,n,8,1" << QByteArray("\xFF") << QByteArray("\xFE");
        // Twice as slow: two characters run into one; the first one's stop bit is data bit 3.
        QTest::newRow("double rate") << "19200,n,8,1 9600,n,8,1" << QByteArray("\x00\x00", 2)
                                     << QByteArray("\x08");
    }
    void reframe()
    {
        QFETCH(QString, ends);
        QFETCH(QByteArray, sent);
        QFETCH(QByteArray, received);
        QCOMPARE(sim::reframe(sent, line(ends.section(u' ', 0, 0)), line(ends.section(u' ', 1))), received);
    }

    // Ctrl-C has even parity and crosses a 7E1 frame unchanged; a rate mismatch garbles even it.
    void mismatchGarblesTheAnswer_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<bool>("promptGarbled");
        QTest::newRow("rate") << "9600,n,8,1" << true;
        QTest::newRow("frame") << "19200,e,7,1" << false;
    }
    void mismatchGarblesTheAnswer()
    {
        QFETCH(QString, host);
        QFETCH(bool, promptGarbled);
        SimulatedModemLink link; // the modem runs at 19200,n,8,1
        link.port().setSettings(host);
        const QByteArray prompt = exchange(link, "\x03", 500);
        QVERIFY2(prompt.contains("CMD:") != promptGarbled, prompt.toHex().constData());
        const QByteArray model = exchange(link, "Model\r", 500);
        QVERIFY2(!model.contains("MODEL    = Q4U"), model.toHex().constData());
        link.port().setSettings(QStringLiteral("19200,n,8,1"));
        QVERIFY(exchange(link, "\x03", 500).endsWith("CMD:"));
    }

    void rateAndFrameOfTheUnit_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<int>("switches");
        QTest::addColumn<int>("switchBits");
        QTest::addColumn<int>("comrate");
        QTest::addColumn<QString>("expected");
        QTest::newRow("even parity") << "Q4U" << 2 << 1 << 29 << "600,e,7,1";
        QTest::newRow("odd parity") << "Q4U" << 2 << 1 << 126 << "300,o,8,1";
        QTest::newRow("two stop bits") << "Q4U" << 2 << 1 << 39 << "19200,n,8,2";
        QTest::newRow("switch 1 down") << "Q4U" << 2 << 0 << 25 << "19200,n,8,1";
        QTest::newRow("spread spectrum") << "Q4Z" << 2 << 1 << 45 << "4800,n,8,1";
        // The old case has no rate command: eight switches hold rate and frame.
        QTest::newRow("old case") << "Q4U" << 8 << (0x01 | 0x08 | 0x20) << 25 << "9600,n,8,1";
        QTest::newRow("old case Q4Z") << "Q4Z" << 8 << (0x02 | 0x08 | 0x10 | 0x20) << 40 << "4800,e,8,1";
    }
    void rateAndFrameOfTheUnit()
    {
        QFETCH(QString, model);
        QFETCH(int, switches);
        QFETCH(int, switchBits);
        QFETCH(int, comrate);
        QFETCH(QString, expected);
        Scenario s = Scenario::standard();
        s.modems[0].model = model;
        s.modems[0].switches = switches;
        s.modems[0].switchBits = switchBits;
        s.modems[0].settings = {{QStringLiteral("COMRATE"), QString::number(comrate)}};
        SimulatedModemLink link(s);
        QCOMPARE(link.local().lineSettings(), line(expected));
        QCOMPARE(link.port().Settings(), expected);
    }

    void newRateTakesEffectAtTheNextRestart()
    {
        Scenario s = Scenario::standard();
        s.modems[0].settings = {{QStringLiteral("COMRATE"), QStringLiteral("25")}};
        SimulatedModemLink link(s);
        exchange(link, "comrate 43:sa\r");
        QCOMPARE(link.local().lineSettings(), line(QStringLiteral("9600,e,7,1")));
        link.local().reset();
        QCOMPARE(link.local().lineSettings(), line(QStringLiteral("2400,n,8,1")));
    }

    // The old case has eight switches; the last one up starts the unit in its operating mode.
    void lastSwitchUpStartsInOperatingMode()
    {
        Scenario s = Scenario::standard();
        s.modems[0].switches = 8;
        s.modems[0].switchBits = 0xA9;
        SimulatedModemLink link(s);
        link.local().powerUp();
        link.time().MsDelay(500);
        QVERIFY(link.port().Input().endsWith("Unit Address = 1\r\n"));
        // Without a partner set, what is typed in operating mode goes nowhere.
        QCOMPARE(exchange(link, "model\r"), QByteArray());
        QVERIFY(exchange(link, "\x03").endsWith("CMD:"));
    }

    void droppedAndGarbledBytes()
    {
        SimulatedModemLink link;
        link.line().faults().dropRate = 0.5;
        const QByteArray dropped = exchange(link, "Model\r");
        QVERIFY(dropped.size() < kModelReply.size());
        QVERIFY(dropped.size() > 0);
        link.line().faults() = {0, 1.0, 0};
        const QByteArray garbled = exchange(link, "Model\r");
        QCOMPARE(garbled.size(), kModelReply.size());
        QCOMPARE(uchar(garbled[0]), uchar('M' ^ 0xA5));
    }

    void repliesSplitAcrossReads()
    {
        SimulatedModemLink link;
        link.line().faults().splitGapMs = 150;
        link.port().Output("\x03");
        link.time().MsDelay(100);
        QCOMPARE(link.port().Input(), QByteArray("\r\nC"));
        link.time().MsDelay(200);
        QCOMPARE(link.port().Input(), QByteArray("MD:"));
    }

    void floodFillsTheLineAtItsRate()
    {
        SimulatedModemLink link;
        link.line().flood(1000);
        link.time().MsDelay(500);
        const int half = link.port().InBufferCount();
        link.time().MsDelay(1000);
        const QByteArray all = link.port().Input();
        // 19200 baud: about 1920 characters a second.
        QVERIFY2(half > 800 && half < 1100, QByteArray::number(half).constData());
        QVERIFY(all.size() > 1800 && all.size() < 2000);
        QVERIFY(!all.contains("CMD:"));
        // The modem is still there behind the noise.
        QVERIFY(exchange(link, "\x03").endsWith("CMD:"));
    }
};

QTEST_GUILESS_MAIN(SerialLineTest)
#include "SerialLineTest.moc"
