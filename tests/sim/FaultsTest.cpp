#include "SimExchange.h"
#include "SimulatedModemLink.h"

#include <QSignalSpy>
#include <QTest>

using sim::Scenario;
using sim::SimulatedModemLink;

namespace {

const QByteArray kModelReply("Model\r\nMODEL    = Q4U\r\nCMD:");

} // namespace

class FaultsTest : public QObject
{
    Q_OBJECT
private slots:
    void silentModemAnswersNothing()
    {
        SimulatedModemLink link;
        link.local().setDead(true);
        QCOMPARE(exchange(link, "\x03", 2000), QByteArray());
        QCOMPARE(exchange(link, "FA\r", 2000), QByteArray());
        // Nothing it was asked while silent has changed it.
        QCOMPARE(link.truth().factoryDefaults.size(), 0);
        link.local().setDead(false);
        QVERIFY(exchange(link, "\x03").endsWith("CMD:"));
    }

    void deadModemScenario()
    {
        Scenario s = Scenario::standard();
        s.modems[0].dead = true;
        SimulatedModemLink link(s);
        QCOMPARE(exchange(link,
                          "\x03"
                          "FA\r",
                          3000),
                 QByteArray());
    }

    void droppedBytes()
    {
        SimulatedModemLink link;
        link.line().faults().dropRate = 0.5;
        const QByteArray reply = exchange(link, "Model\r");
        QVERIFY(reply.size() < kModelReply.size());
        QVERIFY(reply.size() > 0);
    }

    void garbledBytes()
    {
        SimulatedModemLink link;
        link.line().faults().garbleRate = 1.0;
        const QByteArray reply = exchange(link, "Model\r");
        QCOMPARE(reply.size(), kModelReply.size());
        QVERIFY(!reply.contains("MODEL"));
        QCOMPARE(uchar(reply[0]), uchar('M' ^ 0xA5));
    }

    void repliesSplitAcrossReads()
    {
        SimulatedModemLink link;
        exchange(link, "echo off\r");
        link.line().faults().splitGapMs = 150;
        link.port().Input();
        link.port().Output("\x03");
        link.time().MsDelay(100);
        const QByteArray first = link.port().Input();
        link.time().MsDelay(200);
        const QByteArray second = link.port().Input();
        QCOMPARE(first + second, QByteArray("\r\nCMD:"));
        QCOMPARE(first, QByteArray("\r\nC"));
    }

    void slowReplies()
    {
        SimulatedModemLink link;
        link.local().setReplyDelay(std::chrono::milliseconds(1500));
        const QByteArray soon = exchange(link, "Model\r", 1000);
        QCOMPARE(soon, QByteArray("Model\r\n")); // the echo only
        link.time().MsDelay(1000);
        QCOMPARE(link.port().Input(), QByteArray("MODEL    = Q4U\r\nCMD:"));
    }

    void floodFillsTheLineAtItsRate()
    {
        SimulatedModemLink link;
        link.port().Input();
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

    void hangUpClosesThePort()
    {
        SimulatedModemLink link;
        QSignalSpy lost(&link.port(), &CommControl::lineLost);
        link.line().hangUp();
        QCOMPARE(lost.count(), 1);
        QVERIFY(!link.port().PortOpen());
    }

    void linkDropAndRecoveryAreRecorded()
    {
        Scenario s = Scenario::standard();
        sim::ModemProfile remote = s.modems[0];
        remote.settings = {{QStringLiteral("ADDRESS"), QStringLiteral("12")}};
        s.modems.append(remote);
        s.links.append({1, 12, 30.0, 0.0, 0.0, {}});
        SimulatedModemLink link(s);
        link.time().advance(1000);
        link.network().setLinkDown(1, 12, true);
        QVERIFY(!exchange(link, "prog 12\r", 5000).contains("RPG:"));
        link.time().advance(9000);
        link.network().setLinkDown(1, 12, false);
        exchange(link, "\x03");
        QVERIFY(exchange(link, "prog 12\r", 1000).contains("RPG:"));
        QCOMPARE(link.truth().outages.size(), 1);
        QCOMPARE(link.truth().outages[0].startMs, 1000);
        QCOMPARE(link.truth().outages[0].endMs, 15000);
    }
};

QTEST_GUILESS_MAIN(FaultsTest)
#include "FaultsTest.moc"
