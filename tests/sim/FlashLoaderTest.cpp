#include "SimRig.h"

#include <QTest>

using sim::Modem;
using sim::Scenario;
using sim::SimulatedModemLink;

namespace {

QByteArray image(int blocks, const QByteArray &mark)
{
    QByteArray bytes;
    for (int i = 0; i < blocks * 4096; ++i)
        bytes.append(char((i * 7 + 3) & 0xff));
    bytes.replace(100, mark.size(), mark);
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

    void wholeExchangeInstallsTheImage_data()
    {
        QTest::addColumn<int>("blocks");
        QTest::addColumn<QString>("version");
        QTest::newRow("one block, no version mark") << 1 << "1.52";
        QTest::newRow("two blocks") << 2 << "2.10";
    }
    void wholeExchangeInstallsTheImage()
    {
        QFETCH(int, blocks);
        QFETCH(QString, version);
        SimulatedModemLink link;
        // The loader takes over once the line is done: the rest of the line is not run.
        QCOMPARE(exchange(link, "flash:model\r"), QByteArray("flash:model\r\n\r\nFLASH:"));
        const QByteArray file = image(blocks, blocks > 1 ? "VERSION=2.10" : "x");
        // SOH starts the first block, STX each further one after the loader's ENQ, EOT ends the file.
        for (int b = 0; b < blocks; ++b) {
            link.port().Output(b == 0 ? "\x01" : "\x02");
            QVERIFY(sendBlock(link, file.mid(b * 4096, 4096)));
        }
        link.port().Output("\x04");
        link.time().MsDelay(2000);
        const QByteArray banner = link.port().Input();
        QVERIFY2(banner.endsWith("Firmware Version " + version.toLatin1() + "\r\nUnit Address = 1\r\nCMD:"),
                 banner.constData());
        QCOMPARE(link.local().mode(), Modem::Mode::Command);
        QCOMPARE(link.local().firmwareVersion(), version);
        QCOMPARE(link.truth().images.size(), 1);
        QCOMPARE(link.truth().images[0].blocks, blocks);
        QCOMPARE(link.truth().images[0].bytes, file);
        // A new system starts blank: identity and settings must be written back.
        QCOMPARE(link.local().value(QStringLiteral("S/N")), QStringLiteral("0"));
        exchange(link, "model Q4Y:option 64:s/n 14210\r");
        exchange(link, "save\r");
        exchange(link, "save 2\r");
        exchange(link, "fa\r");
        QCOMPARE(link.local().value(QStringLiteral("MODEL")), QStringLiteral("Q4Y"));
        QCOMPARE(link.local().value(QStringLiteral("OPTION")), QStringLiteral("64"));
    }

    // Between blocks only STX, EOT, CR and Ctrl-C mean anything; CR and Ctrl-C give the prompt.
    void enqComesOnlyAfterAWholeBlock()
    {
        SimulatedModemLink link;
        exchange(link, "flash\r");
        link.port().Output("\x01");
        QVERIFY(!sendBlock(link, image(1, "x").left(4095)));
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
        QVERIFY(sendBlock(link, image(1, "x")));
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
