#include "SimExchange.h"
#include "SimulatedModemLink.h"

#include <QTest>

using sim::Modem;
using sim::Scenario;
using sim::SimulatedModemLink;

namespace {

// Polls in 100 ms steps, as the program does, until text arrives or time runs out.
bool waitFor(SimulatedModemLink &link, const QByteArray &text, int timeoutMs, QByteArray *seen = nullptr)
{
    QByteArray buffer;
    for (int pass = 0; pass < timeoutMs / 100; ++pass) {
        link.time().MsDelay(100);
        buffer += link.port().Input();
        if (buffer.contains(text)) {
            if (seen)
                *seen = buffer;
            return true;
        }
    }
    if (seen)
        *seen = buffer;
    return false;
}

bool send(SimulatedModemLink &link, const QByteArray &line, const QByteArray &prompt, int timeoutMs)
{
    link.port().Input();
    link.port().Output(line + '\r');
    return waitFor(link, prompt, timeoutMs);
}

Scenario loaded(const QString &name)
{
    QString error;
    const auto s = Scenario::fromFile(QStringLiteral(VARNEL_SCENARIOS "/%1.json").arg(name), &error);
    if (!s)
        qFatal("scenario %s: %s", qPrintable(name), qPrintable(error));
    return *s;
}

} // namespace

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
        SimulatedModemLink link(loaded(name));
        QCOMPARE(link.port().Settings(), QStringLiteral("9600,n,8,1"));
        QVERIFY(exchange(link, "\x03").endsWith("CMD:"));
        QVERIFY(exchange(link, "model\r").contains("MODEL    = " + model.toLatin1() + '\r'));
        const int serial = link.local().value(QStringLiteral("S/N")).toInt();
        QCOMPARE(serial < 12000, oldCase);
        // The remote at 12 shares the channel and is heard.
        QVERIFY(send(link, "prog 12", "RPG:", 3000));
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

    void remoteProgrammingChangesTheRemote()
    {
        SimulatedModemLink link(loaded(QStringLiteral("demo")));
        QVERIFY(send(link, "Prog 12", "RPG:", 3000));
        QCOMPARE(link.local().mode(), Modem::Mode::Remote);
        QVERIFY(send(link, "squelch 61", "RPG:", 3000));
        QVERIFY(send(link, "save", "RPG:", 3000));
        Modem *remote = link.network().modemAt(12);
        QVERIFY(remote);
        QCOMPARE(remote->savedValue(QStringLiteral("SQUELCH")), QStringLiteral("61"));
        QCOMPARE(link.local().value(QStringLiteral("SQUELCH")), QStringLiteral("30"));
        QByteArray reply;
        link.port().Output("squelch\r");
        QVERIFY(waitFor(link, "RPG:", 3000, &reply));
        QVERIFY2(reply.contains("SQUELCH  = 61\r"), reply.constData());
        QVERIFY(exchange(link, "\x03", 500).endsWith("\r\nCMD:"));
        QCOMPARE(link.local().mode(), Modem::Mode::Command);
    }

    void remoteReadThroughThreeRepeaters()
    {
        SimulatedModemLink link(loaded(QStringLiteral("repeater-chain")));
        // No direct path: the far site is out of reach without its repeaters.
        QVERIFY(!send(link, "Prog 12", "RPG:", 3000));
        QVERIFY(exchange(link, "\x03", 5000).endsWith("CMD:"));
        link.network().modemAt(12)->reset();
        QVERIFY(send(link, "Prog 40,41,42,12", "RPG:", 3000));
        QByteArray reply;
        link.port().Output("he ch\r");
        QVERIFY(waitFor(link, "RPG:", 5000, &reply));
        QVERIFY2(reply.contains("ADDRESS 12\r"), reply.constData());
        // A repeater that fails breaks the chain.
        link.network().modemAt(41)->setDead(true);
        QVERIFY(!send(link, "add", "RPG:", 3000));
    }

    void remoteLatchToAnotherChannelDropsTheLink()
    {
        SimulatedModemLink link(loaded(QStringLiteral("demo")));
        QVERIFY(send(link, "Prog 12", "RPG:", 3000));
        QVERIFY(!send(link, "sel/a1 9:sel/n1 8832:Lat", "RPG:", 3000));
        QCOMPARE(link.network().modemAt(12)->channel(), QStringLiteral("9,8832,0"));
        QVERIFY(!send(link, "squelch", "RPG:", 3000));
    }

    void commandsThatOnlyTheConnectedModemTakesAreRefusedOverTheAir()
    {
        SimulatedModemLink link(loaded(QStringLiteral("demo")));
        QVERIFY(send(link, "Prog 12", "RPG:", 3000));
        QByteArray reply;
        link.port().Output("flash\r");
        QVERIFY(waitFor(link, "RPG:", 3000, &reply));
        QVERIFY(reply.contains("INVALID"));
    }

    void signalStrengthOfAKeyedRemote()
    {
        SimulatedModemLink link(loaded(QStringLiteral("demo")));
        QVERIFY(send(link, "prog 12", "RPG:", 500));
        QVERIFY(send(link, "radio on", "RPG:", 500));
        QVERIFY(send(link, "\x03", "CMD:", 500));
        QVERIFY(link.network().modemAt(12)->transmitterKeyed());
        QVERIFY(send(link, "asquelch 100:latch", "CMD:", 500));
        QVERIFY(send(link, "squelch 0:latch", "CMD:", 500));
        link.port().Input();
        link.port().Output("RXS ON\r");
        link.time().MsDelay(15000);
        QVERIFY(link.local().signalStreaming());
        const QByteArray samples = link.port().Input();
        QVERIFY(send(link, "rxs off", "CMD:", 500));
        QVERIFY(!link.local().signalStreaming());
        const QList<QByteArray> fields = samples.split(',');
        QVERIFY2(fields.size() > 40, samples.constData());
        int highest = 0;
        for (qsizetype i = 1; i + 1 < fields.size(); ++i)
            highest = std::max(highest, fields[i].toInt());
        // The path is 35 microvolts with a spread of 3.
        QVERIFY2(highest >= 33 && highest <= 50, samples.constData());
        // The stream has stopped.
        link.time().MsDelay(1000);
        QCOMPARE(link.port().Input(), QByteArray());
    }

    void meterReadsTheNoiseFloorWithNoTransmitter()
    {
        SimulatedModemLink link(loaded(QStringLiteral("demo")));
        exchange(link, "RXS ON\r", 3000);
        const QByteArray samples = exchange(link, "", 3000);
        for (const QByteArray &f : samples.split(','))
            QVERIFY2(f.toInt() <= 1, samples.constData());
    }

    void dataQualitySamples()
    {
        SimulatedModemLink link(loaded(QStringLiteral("demo")));
        send(link, "FA", "Unit Address", 500);
        QVERIFY(send(link, "DQ ON", "CMD:", 500));
        QVERIFY(send(link, "conn 12", "*", 500));
        link.port().Input();
        for (int i = 0; i < 10; ++i) {
            link.port().Output("\r");
            link.time().MsDelay(100);
        }
        link.time().MsDelay(500);
        const QByteArray raw = link.port().Input();
        QCOMPARE(raw.count(']'), 10);
        qsizetype at = 0;
        for (int i = 0; i < 10; ++i) {
            const qsizetype close = raw.indexOf(']', at);
            const qsizetype comma = raw.lastIndexOf(',', close);
            const int quality = raw.mid(comma + 1, close - comma - 1).toInt();
            QVERIFY2(quality >= 53, raw.constData()); // a 35 microvolt path is good
            at = close + 1;
        }
        QVERIFY(send(link,
                     "\x03"
                     "Disc",
                     "CMD:", 500));
        // Only a restart ends the mode.
        QVERIFY(link.local().dataQualityMode());
        QVERIFY(send(link, "RESET", "CMD:", 1000));
        QVERIFY(!link.local().dataQualityMode());
    }

    void connectToNobodyFailsWithoutAStar()
    {
        SimulatedModemLink link(loaded(QStringLiteral("demo")));
        QByteArray seen;
        link.port().Output("conn 77\r");
        QVERIFY(!waitFor(link, "*", 500, &seen));
        QVERIFY(waitFor(link, "CMD:", 5000, &seen));
        QVERIFY(seen.contains("LINK FAILED"));
        exchange(link, "messform on\r");
        link.port().Output("conn 77\r");
        QVERIFY(waitFor(link, "SS03", 5000));
    }

    void pollingCountsRetriesAndOutages()
    {
        SimulatedModemLink link(loaded(QStringLiteral("noisy-site")));
        send(link, "FA", "Unit Address", 500);
        QVERIFY(send(link, "xsf off:messform on:au off:echo off", "CMD:", 1000));
        exchange(link, "txs\r");
        QMap<int, int> reported;
        QMap<int, int> good;
        QMap<int, int> down;
        const QByteArray packet = QByteArray(64, 'x') + '\r';
        // One poll as the polling diagnostic makes it: connect, packet, acknowledgement, TXS.
        auto poll = [&](int address) {
            QVERIFY(send(link, "\x03", "CMD:", 3000));
            if (!send(link, "CONN " + QByteArray::number(address), "*", 2000)) {
                ++down[address];
                return;
            }
            link.port().Input();
            link.port().Output(packet);
            QByteArray seen;
            for (int pass = 0; pass < 160 && !seen.contains('*') && !seen.contains("SS03"); ++pass) {
                link.time().MsDelay(100);
                seen += link.port().Input();
            }
            if (!seen.contains('*')) {
                // The count of a failed poll is read and thrown away, as the diagnostic does.
                ++down[address];
                send(link, "\x03", "CMD:", 3000);
                exchange(link, "TXS\r", 300);
                return;
            }
            ++good[address];
            QVERIFY(send(link, "\x03", "CMD:", 3000));
            link.port().Output("TXS\r");
            link.time().MsDelay(300);
            const QByteArray txs = link.port().Input();
            const qsizetype p = txs.indexOf("Retries");
            QVERIFY2(p >= 0, txs.constData());
            reported[address] += txs.mid(p + 10, txs.indexOf('\r', p) - p - 10).trimmed().toInt();
        };
        // The north path loses packets; the hill site drops out from 60 s to 105 s.
        while (link.time().elapsedMs() < 150000) {
            poll(21);
            poll(23);
        }
        QVERIFY(good[21] > 10);
        QVERIFY(good[23] > 10);
        QVERIFY(down[23] > 0);
        QVERIFY(reported[21] > 0);
        // What the modem reported matches what happened in the air to the test packets.
        const sim::GroundTruth &truth = link.truth();
        QMap<int, int> given;
        for (const sim::GroundTruth::Packet &p : truth.packets)
            if (p.delivered && p.bytes == packet.size())
                given[p.to] += p.retries;
        QCOMPARE(reported[21], given[21]);
        QCOMPARE(reported[23], given[23]);
        QCOMPARE(truth.outages.first().startMs, 60000);
        QCOMPARE(truth.outages.first().endMs, 105000);
        for (const sim::GroundTruth::Packet &p : truth.packets)
            if (p.to == 23 && p.atMs >= 60000 && p.atMs < 100000)
                QVERIFY(!p.delivered);
    }

    void converseCarriesDataBothWays()
    {
        SimulatedModemLink link(loaded(QStringLiteral("demo")));
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
        QVERIFY(send(link, "conn 12", "*", 1000));
        QCOMPARE(link.local().mode(), Modem::Mode::Converse);
        exchange(link, "hello remote\r");
        QCOMPARE(atRemote, QByteArray("hello remote\r"));
        remote->receive("hello base\r");
        link.time().MsDelay(1000);
        QCOMPARE(link.port().Input(), QByteArray("hello base\r"));
        // Ctrl-C gives the prompt and keeps the connection.
        QVERIFY(exchange(link, "\x03", 300).endsWith("CMD:"));
        QVERIFY(send(link, "disc", "CMD:", 500));
    }
};

QTEST_GUILESS_MAIN(RadioNetworkTest)
#include "RadioNetworkTest.moc"
