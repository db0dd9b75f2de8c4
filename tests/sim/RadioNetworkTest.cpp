#include "SimRig.h"

#include <QTest>

using sim::Modem;
using sim::Scenario;
using sim::SimulatedModemLink;

class RadioNetworkTest : public QObject
{
    Q_OBJECT
private slots:
    void everyReadyScenarioLoads_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("model");
        QTest::addColumn<bool>("oldCase");
        for (const char *m : {"q4u", "q4ulx", "q4w", "q4y", "q4ylx", "q4r", "q4z"})
            for (const char *c : {"old", "new"})
                QTest::addRow("%s-%s", m, c)
                    << QStringLiteral("%1-%2").arg(QLatin1String(m), QLatin1String(c))
                    << QString::fromLatin1(m).toUpper() << (QLatin1String(c) == QLatin1String("old"));
    }
    void everyReadyScenarioLoads()
    {
        QFETCH(QString, name);
        QFETCH(QString, model);
        QFETCH(bool, oldCase);
        SimulatedModemLink link(scenario(name));
        QCOMPARE(link.port().Settings(), QStringLiteral("9600,n,8,1"));
        QVERIFY(exchange(link, "\x03").endsWith("CMD:"));
        QVERIFY(exchange(link, "model\r").contains("MODEL    = " + model.toLatin1() + '\r'));
        const int serial = link.local().value(QStringLiteral("S/N")).toInt();
        QCOMPARE(serial < 12000, oldCase);
        // The remote at 12 shares the channel and is heard.
        QVERIFY(sendLine(link, "prog 12", "RPG:", 3000));
    }

    void brokenScenarioFilesAreRefusedWithAReason()
    {
        QString error;
        QVERIFY(!Scenario::fromJson("{ not json", &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(!Scenario::fromJson(R"({"modems": []})", &error));
        QCOMPARE(error, QStringLiteral("the scenario has no modems"));
        QVERIFY(!Scenario::fromJson(R"({"local": 3, "modems": [{"model": "Q4Y"}]})", &error));
    }

    // The remote keeps what it saved; a restart over the air ends the link and nothing comes back.
    void remoteSaveAndResetChangeTheRemoteOnly()
    {
        SimulatedModemLink link(scenario(QStringLiteral("demo")));
        Modem *remote = link.network().modemAt(12);
        QByteArray atRemote;
        remote->setTransmitter([&](const QByteArray &bytes) { atRemote += bytes; });
        QVERIFY(sendLine(link, "Prog 12", "RPG:", 3000));
        QCOMPARE(link.local().mode(), Modem::Mode::Remote);
        QVERIFY(sendLine(link, "squelch 61:save:squelch 70", "RPG:", 3000));
        QCOMPARE(exchange(link, "reset\r", 3000), QByteArray("reset\r\n"));
        QCOMPARE(remote->value(QStringLiteral("SQUELCH")), QStringLiteral("61"));
        QCOMPARE(link.truth().resets.size(), 1);
        QCOMPARE(atRemote, QByteArray());
        QVERIFY(!remote->transmitterKeyed());
        QCOMPARE(exchange(link, "\x03", 500), QByteArray("\r\nCMD:"));
        QCOMPARE(link.local().mode(), Modem::Mode::Command);
        QCOMPARE(exchange(link, "squelch\r"), QByteArray("squelch\r\nSQUELCH  = 30\r\nCMD:"));
    }

    void remoteReadThroughThreeRepeaters()
    {
        SimulatedModemLink link(scenario(QStringLiteral("repeater-chain")));
        // No direct path: the far site is out of reach without its repeaters.
        QVERIFY(!sendLine(link, "Prog 12", "RPG:", 3000));
        QVERIFY(exchange(link, "\x03", 5000).endsWith("CMD:"));
        link.network().modemAt(12)->reset();
        QVERIFY(sendLine(link, "Prog 40,41,42,12", "RPG:", 3000));
        QByteArray reply;
        link.port().Output("he ch\r");
        QVERIFY(waitFor(link, "RPG:", 5000, &reply));
        QVERIFY2(reply.contains("ADDRESS 12\r"), reply.constData());
        // A repeater that fails breaks the chain.
        link.network().modemAt(41)->setDead(true);
        QVERIFY(!sendLine(link, "add", "RPG:", 3000));
    }

    void remoteLatchToAnotherChannelDropsTheLink()
    {
        SimulatedModemLink link(scenario(QStringLiteral("demo")));
        QVERIFY(sendLine(link, "Prog 12", "RPG:", 3000));
        QVERIFY(!sendLine(link, "sel/a1 9:sel/n1 8832:Lat", "RPG:", 3000));
        QCOMPARE(link.network().modemAt(12)->channel(), QStringLiteral("9,8832,0"));
        QVERIFY(!sendLine(link, "squelch", "RPG:", 3000));
    }

    void linkDropAndRecoveryAreRecorded()
    {
        SimulatedModemLink link(scenario(QStringLiteral("demo")));
        link.time().advance(1000);
        link.network().setLinkDown(1, 12, true);
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

    void connectToNobodyFails()
    {
        SimulatedModemLink link(scenario(QStringLiteral("demo")));
        QByteArray seen;
        link.port().Output("conn 77\r");
        QVERIFY(waitFor(link, "CMD:", 5000, &seen));
        QCOMPARE(seen, QByteArray("conn 77\r\nLINK FAILED\r\nCMD:"));
        QCOMPARE(link.local().mode(), Modem::Mode::Command);
        exchange(link, "messform on\r");
        link.port().Output("conn 77\r");
        QVERIFY(waitFor(link, "CMD:", 5000, &seen));
        QCOMPARE(seen, QByteArray("conn 77\r\nSS03\r\nCMD:"));
        QCOMPARE(exchange(link, "conn 1,2,3,4,5\r"), QByteArray("conn 1,2,3,4,5\r\nINVALID\r\nCMD:"));
        QCOMPARE(exchange(link, "conn 256\r"), QByteArray("conn 256\r\nINVALID\r\nCMD:"));
    }

    void converseCarriesDataBothWays()
    {
        SimulatedModemLink link(scenario(QStringLiteral("demo")));
        Modem *remote = link.network().modemAt(12);
        QByteArray atRemote;
        remote->setTransmitter([&](const QByteArray &bytes) { atRemote += bytes; });
        // The remote is at work in its operating mode, set to talk to address 1.
        remote->setSwitchBits(3);
        exchange(link, "prog 12\r");
        exchange(link, "setc 1:sa\r");
        exchange(link, "\x03");
        remote->reset();
        link.time().MsDelay(500);
        atRemote.clear();
        exchange(link, "command 1:packl 1\r");
        QVERIFY(sendLine(link, "conn 12", "*", 1000));
        QCOMPARE(link.local().mode(), Modem::Mode::Converse);
        exchange(link, "hello remote\r");
        QCOMPARE(atRemote, QByteArray("hello remote\r"));
        remote->receive("hello base\r");
        link.time().MsDelay(1000);
        QCOMPARE(link.port().Input(), QByteArray("hello base\r"));
        // The command character gives the prompt; the counts are of the packets since the last reading.
        QCOMPARE(exchange(link, "\x01", 300), QByteArray("\r\nCMD:"));
        QCOMPARE(exchange(link, "txs\r"), QByteArray("txs\r\nPackets = 13\r\nRetries = 0\r\nCMD:"));
        QCOMPARE(exchange(link, "txs\r"), QByteArray("txs\r\nPackets = 0\r\nRetries = 0\r\nCMD:"));
    }
};

QTEST_GUILESS_MAIN(RadioNetworkTest)
#include "RadioNetworkTest.moc"
