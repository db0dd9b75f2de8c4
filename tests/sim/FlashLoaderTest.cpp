#include "SimRig.h"

#include <QTest>

using sim::Modem;
using sim::Scenario;
using sim::SimulatedModemLink;

namespace {

QByteArray block()
{
    QByteArray bytes;
    for (int i = 0; i < 4096; ++i)
        bytes.append(char((i * 7 + 3) & 0xff));
    return bytes;
}

// Sends one block a byte at a time, as the utility does, and waits for the loader's ENQ.
bool sendBlock(SimulatedModemLink &link, const QByteArray &block)
{
    for (char c : block)
        link.port().Output(QByteArray(1, c));
    QByteArray seen;
    return waitFor(link, "\x05", 8000, &seen) && seen == "\x05";
}

} // namespace

class FlashLoaderTest : public QObject
{
    Q_OBJECT
private slots:
    void flashCommandEntersTheLoaderAtItsFixedRate()
    {
        SimulatedModemLink link(scenario(QStringLiteral("demo"))); // at 9600,n,8,1
        link.port().setSettings(QStringLiteral("9600,n,8,1"));
        const QByteArray atOldRate = exchange(link, "flash\r");
        QVERIFY2(!atOldRate.contains("FLASH:"), atOldRate.toHex().constData());
        QCOMPARE(link.local().mode(), Modem::Mode::Loader);
        link.port().setSettings(QStringLiteral("19200,N,8,1"));
        QCOMPARE(exchange(link, "\r"), QByteArray("\r\nFLASH:"));
    }

    // Between blocks only STX, EOT, CR and Ctrl-C mean anything; CR and Ctrl-C give the prompt.
    void enqComesOnlyAfterAWholeBlock()
    {
        SimulatedModemLink link;
        exchange(link, "flash\r");
        link.port().Output("\x01");
        QVERIFY(!sendBlock(link, block().left(4095)));
        QVERIFY(sendBlock(link, "x"));
        QCOMPARE(exchange(link, "x"), QByteArray());
        QCOMPARE(exchange(link, "\r"), QByteArray("\r\nFLASH:"));
        QCOMPARE(exchange(link, "\x03"), QByteArray("\r\nFLASH:"));
    }

    void returnToTheSystemWithR()
    {
        SimulatedModemLink link;
        exchange(link, "flash\r");
        QVERIFY(exchange(link, "r", 3000).endsWith("CMD:"));
    }

    void anAbandonedUploadLeavesNoOperatingSystem()
    {
        SimulatedModemLink link;
        exchange(link, "flash\r");
        link.port().Output("\x01");
        QVERIFY(sendBlock(link, block()));
        // The upload stops here; the unit is reset.
        link.local().reset();
        link.time().MsDelay(200);
        QVERIFY(!link.local().hasOperatingSystem());
        QCOMPARE(link.port().Input(), QByteArray("\r\nFLASH:"));
        const QByteArray afterR = exchange(link, "r", 3000);
        QVERIFY2(!afterR.contains("CMD:"), afterR.constData());
        QVERIFY(link.truth().images.isEmpty());
    }

    void aUnitWithoutSystemStartsInItsLoader()
    {
        Scenario s = Scenario::standard();
        s.modems[0].operatingSystem = false;
        SimulatedModemLink link(s);
        QCOMPARE(exchange(link, "\r"), QByteArray("\r\nFLASH:"));
        QVERIFY(!exchange(link, "\x03model\r").contains("MODEL"));
    }
};

QTEST_GUILESS_MAIN(FlashLoaderTest)
#include "FlashLoaderTest.moc"
