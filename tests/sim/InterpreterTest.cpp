#include "SimExchange.h"
#include "SimulatedModemLink.h"

#include <QTest>

using sim::Scenario;
using sim::SimulatedModemLink;

namespace {

// The program's fixed-column cut: the value begins 11 characters after the first letter of the
// name and runs to the next carriage return; blanks trimmed.
QString fixedColumn(const QByteArray &reply, const QByteArray &name, int offset = 11)
{
    const qsizetype p = reply.indexOf(name);
    if (p < 0)
        return QStringLiteral("<no name>");
    const qsizetype q = reply.indexOf('\r', p);
    if (q < 0 || q < p + offset)
        return QStringLiteral("<bad cut>");
    return QString::fromLatin1(reply.mid(p + offset, q - p - offset)).trimmed();
}

// The program's equals-sign cut: after the first "=" behind the name, up to the next CR.
QString equalsSign(const QByteArray &reply, const QByteArray &name)
{
    const qsizetype p = reply.indexOf(name);
    if (p < 0)
        return QStringLiteral("<no name>");
    const qsizetype e = reply.indexOf('=', p);
    const qsizetype q = reply.indexOf('\r', e);
    if (e < 0 || q < 0)
        return QStringLiteral("<bad cut>");
    return QString::fromLatin1(reply.mid(e + 1, q - e - 1)).trimmed();
}

} // namespace

class InterpreterTest : public QObject
{
    Q_OBJECT
private slots:
    void ctrlCGivesAFreshPrompt()
    {
        SimulatedModemLink link;
        QCOMPARE(exchange(link, "\x03", 100), QByteArray("\r\nCMD:"));
    }

    void replyStartsAfterTheCarriageReturnAndComesAtTheLineRate()
    {
        SimulatedModemLink link;
        link.port().clearEvents();
        link.port().Output("Model\r");
        link.time().MsDelay(1000);
        const QList<WireEvent> &events = link.port().events();
        QList<qint64> arrivals;
        QByteArray all;
        for (const WireEvent &e : events)
            if (e.kind == WireEvent::Kind::Received) {
                arrivals << e.atMs;
                all += e.bytes;
            }
        QCOMPARE(all, QByteArray("Model\r\nMODEL    = Q4U\r\nCMD:"));
        // The echo comes back as the characters arrive; the answer some tens of milliseconds later.
        QVERIFY(arrivals.first() >= 3);
        QVERIFY(arrivals.last() >= 25);
        QVERIFY(arrivals.last() < 100);
    }

    void valueRepliesSuitBothCuts_data()
    {
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QString>("value");
        QTest::newRow("model") << QByteArray("Model") << QByteArray("MODEL") << "Q4U";
        QTest::newRow("option") << QByteArray("Option") << QByteArray("OPTION") << "0";
        QTest::newRow("version") << QByteArray("Version") << QByteArray("VERSION") << "1.52";
        QTest::newRow("serial") << QByteArray("s/n") << QByteArray("S/N") << "14210";
        QTest::newRow("network") << QByteArray("net") << QByteArray("NETWORK") << "37";
        QTest::newRow("address") << QByteArray("add") << QByteArray("ADDRESS") << "1";
        QTest::newRow("setcon") << QByteArray("setc") << QByteArray("SETCON") << "0";
        QTest::newRow("asquelch") << QByteArray("asquelch") << QByteArray("ASQUELCH") << "40";
        QTest::newRow("squelch") << QByteArray("Squelch") << QByteArray("SQUELCH") << "30";
        QTest::newRow("rflow") << QByteArray("rflow") << QByteArray("RFLOW") << "OFF";
        QTest::newRow("rxmark") << QByteArray("rxmark") << QByteArray("RXMARK") << "0";
        QTest::newRow("rfp") << QByteArray("rfp") << QByteArray("RFPOWER") << "0";
        QTest::newRow("comrate") << QByteArray("comrate") << QByteArray("COMRATE") << "40";
        QTest::newRow("datarate") << QByteArray("datarate") << QByteArray("DATARATE") << "0";
        QTest::newRow("rxd") << QByteArray("rxd") << QByteArray("RXDATA") << "2";
        QTest::newRow("txf") << QByteArray("txf") << QByteArray("TXFLAG") << "3";
        QTest::newRow("txe") << QByteArray("txe") << QByteArray("TXEND") << "1";
        QTest::newRow("frack") << QByteArray("frack") << QByteArray("FRACK") << "50";
        QTest::newRow("hour") << QByteArray("hour") << QByteArray("HOUR") << "1234";
    }
    void valueRepliesSuitBothCuts()
    {
        QFETCH(QByteArray, command);
        QFETCH(QByteArray, name);
        QFETCH(QString, value);
        SimulatedModemLink link;
        const QByteArray reply = exchange(link, command + '\r');
        QCOMPARE(fixedColumn(reply, name), value);
        QCOMPARE(equalsSign(reply, name), value);
        QVERIFY(reply.endsWith("CMD:"));
    }

    void latchRepliesSuitTheSevenColumnCut()
    {
        SimulatedModemLink link;
        QCOMPARE(fixedColumn(exchange(link, "sel/a1\r"), "A1", 7), QStringLiteral("8"));
        QCOMPARE(fixedColumn(exchange(link, "sel/n1\r"), "N1", 7), QStringLiteral("8832"));
        QCOMPARE(fixedColumn(exchange(link, "sel/n2\r"), "N2", 7), QStringLiteral("0"));
    }

    void squelchSetAndLatchedOnOneLine()
    {
        SimulatedModemLink link;
        const QByteArray reply = exchange(link, "Squelch 55:Latch\r");
        QCOMPARE(reply, QByteArray("Squelch 55:Latch\r\nCMD:"));
        QCOMPARE(link.local().value(QStringLiteral("SQUELCH")), QStringLiteral("55"));
        QCOMPARE(link.local().latchedValue(QStringLiteral("SQUELCH")), QStringLiteral("55"));
        QCOMPARE(link.local().savedValue(QStringLiteral("SQUELCH")), QStringLiteral("30"));
        QCOMPARE(exchange(link, "SQUELCH\r"), QByteArray("SQUELCH\r\nSQUELCH  = 55\r\nCMD:"));
    }

    void abbreviationsAndCase_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("value");
        QTest::newRow("ADDress") << QByteArray("ADD 5") << "ADDRESS"
                                 << "5";
        QTest::newRow("address full") << QByteArray("address 6") << "ADDRESS"
                                      << "6";
        QTest::newRow("SETCon") << QByteArray("SETC 40,41,12") << "SETCONNECT"
                                << "40,41,12";
        QTest::newRow("AUtolf") << QByteArray("au off") << "AUTOLF"
                                << "OFF";
        QTest::newRow("XSFlow") << QByteArray("xsf off") << "XSFLOW"
                                << "OFF";
        QTest::newRow("asq") << QByteArray("asq 70") << "ASQUELCH"
                             << "70";
        QTest::newRow("MESSForm") << QByteArray("messform on") << "MESSFORM"
                                  << "ON";
        QTest::newRow("MODEContr") << QByteArray("MODECONT ON") << "MODECONTR"
                                   << "ON";
        QTest::newRow("MULTID") << QByteArray("MULTI ON") << "MULTID"
                                << "ON";
        QTest::newRow("Termt") << QByteArray("Termt 200") << "TERMTIME"
                               << "200";
        QTest::newRow("Termc") << QByteArray("Termc ON") << "TERMC"
                               << "ON";
        QTest::newRow("PACKL") << QByteArray("PACKL 512") << "PACKLEN"
                               << "512";
        QTest::newRow("n1 fraction dropped") << QByteArray("sel/n1 9600.5") << "SEL/N1"
                                             << "9600";
    }
    void abbreviationsAndCase()
    {
        QFETCH(QByteArray, line);
        QFETCH(QString, command);
        QFETCH(QString, value);
        SimulatedModemLink link;
        const QByteArray reply = exchange(link, line + '\r');
        QCOMPARE(reply, line + "\r\nCMD:");
        QCOMPARE(link.local().value(command), value);
    }

    void refusals_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("word");
        QTest::newRow("unknown") << QByteArray("frobnicate") << QByteArray("INVALID");
        QTest::newRow("too short") << QByteArray("MODE") << QByteArray("AMBIGUOUS");
        QTest::newRow("one letter") << QByteArray("S") << QByteArray("AMBIGUOUS");
        QTest::newRow("address out of range") << QByteArray("ADD 300") << QByteArray("INVALID");
        QTest::newRow("not on or off") << QByteArray("echo maybe") << QByteArray("INVALID");
        QTest::newRow("version is read only") << QByteArray("version 9.99") << QByteArray("INVALID");
    }
    void refusals()
    {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, word);
        SimulatedModemLink link;
        QCOMPARE(exchange(link, line + '\r'), line + "\r\n" + word + "\r\nCMD:");
    }

    void aRefusedCommandStopsTheRestOfTheLine()
    {
        SimulatedModemLink link;
        QCOMPARE(exchange(link, "squelch 40:bogus 1:squelch 50\r"),
                 QByteArray("squelch 40:bogus 1:squelch 50\r\nINVALID\r\nCMD:"));
        QCOMPARE(link.local().value(QStringLiteral("SQUELCH")), QStringLiteral("40"));
    }

    void echoAndAutoLineFeedOff()
    {
        SimulatedModemLink link;
        exchange(link, "xsf off:messform on:au off:echo off\r");
        QCOMPARE(exchange(link, "model\r"), QByteArray("MODEL    = Q4U\rCMD:"));
    }

    void backspaceEditsTheLine()
    {
        SimulatedModemLink link;
        exchange(link, "echo off\r");
        QCOMPARE(exchange(link, "modex\bl\r"), QByteArray("MODEL    = Q4U\r\nCMD:"));
    }

    void ctrlCAbandonsAPendingAnswer()
    {
        SimulatedModemLink link;
        link.port().Output("model\r");
        link.time().MsDelay(10);
        link.port().Output("\x03");
        link.time().MsDelay(500);
        const QByteArray all = link.port().Input();
        QVERIFY2(!all.contains("MODEL "), all.constData());
        QVERIFY(all.endsWith("\r\nCMD:"));
    }

    void linesTypedDuringAnAnswerAreTakenAfterIt()
    {
        SimulatedModemLink link;
        exchange(link, "echo off\r");
        link.port().Output("model\r");
        link.port().Output("s/n\r");
        link.time().MsDelay(500);
        QCOMPARE(link.port().Input(), QByteArray("MODEL    = Q4U\r\nCMD:S/N      = 14210\r\nCMD:"));
    }
};

QTEST_GUILESS_MAIN(InterpreterTest)
#include "InterpreterTest.moc"
