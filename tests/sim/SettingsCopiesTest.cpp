#include "SimExchange.h"
#include "SimulatedModemLink.h"

#include <QTest>

using sim::Scenario;
using sim::SimulatedModemLink;

namespace {

const QString kSquelch = QStringLiteral("SQUELCH");
const QString kAddress = QStringLiteral("ADDRESS");
const QString kNetwork = QStringLiteral("NETWORK");

} // namespace

class SettingsCopiesTest : public QObject
{
    Q_OBJECT
private slots:
    void saveKeepsAndResetRestartsFromTheSavedCopy()
    {
        SimulatedModemLink link;
        exchange(link, "squelch 44\r");
        exchange(link, "sa\r");
        exchange(link, "squelch 60\r");
        QCOMPARE(link.local().value(kSquelch), QStringLiteral("60"));
        const QByteArray banner = exchange(link, "reset\r", 2000);
        QVERIFY2(banner.contains("Unit Address"), banner.constData());
        QVERIFY(banner.endsWith("CMD:"));
        QCOMPARE(link.local().value(kSquelch), QStringLiteral("44"));
        QCOMPARE(link.local().latchedValue(kSquelch), QStringLiteral("44"));
        QCOMPARE(link.truth().resets.size(), 1);
    }

    void bannerThirdLineCarriesTheVersion()
    {
        SimulatedModemLink link;
        const QByteArray banner = exchange(link, "fa\r");
        const QList<QByteArray> lines = banner.split('\n');
        // The echo line, then the blank start of the banner, then its three lines.
        QVERIFY(lines.size() >= 6);
        QCOMPARE(lines[2].trimmed(), QByteArray("Varnel Q4U Wireless Data Modem"));
        QCOMPARE(lines[4].trimmed(), QByteArray("Firmware Version 1.52"));
    }

    void factoryDefaultRestoresFactoryValuesAndShowsTheUnitAddress()
    {
        Scenario s = Scenario::standard();
        s.modems[0].settings = {{kAddress, QStringLiteral("12")},
                                {kNetwork, QStringLiteral("5")},
                                {kSquelch, QStringLiteral("80")}};
        s.modems[0].routes = {QStringLiteral("1,5,")};
        SimulatedModemLink link(s);
        const QByteArray reply = exchange(link, "FA\r");
        QVERIFY2(reply.contains("Unit Address = 12\r\n"), reply.constData());
        QVERIFY(reply.endsWith("CMD:"));
        QCOMPARE(link.local().value(kNetwork), QStringLiteral("37"));
        QCOMPARE(link.local().value(kSquelch), QStringLiteral("30"));
        QCOMPARE(link.local().latchedValue(kSquelch), QStringLiteral("30"));
        QCOMPARE(link.local().value(kAddress), QStringLiteral("12"));
        QVERIFY(link.local().routes().isEmpty());
        // Only the working copy changed: a reset brings back what was saved.
        QCOMPARE(link.local().savedValue(kNetwork), QStringLiteral("5"));
        exchange(link, "reset\r", 2000);
        QCOMPARE(link.local().value(kNetwork), QStringLiteral("5"));
        QCOMPARE(link.truth().factoryDefaults.size(), 1);
    }

    void factoryDefaultAnswersWithinTheWaitOfTheEntryRoutine()
    {
        SimulatedModemLink link;
        link.port().Output("FA\r");
        bool prompt = false;
        QByteArray seen;
        for (int pass = 0; pass < 10 && !prompt; ++pass) {
            link.time().MsDelay(100);
            seen += link.port().Input();
            prompt = seen.contains("CMD:");
        }
        QVERIFY2(prompt, seen.constData());
    }

    void latchAppliesOnlyTheRadioValues()
    {
        SimulatedModemLink link;
        exchange(link, "sel/a1 4:sel/n1 9600:sel/n2 0\r");
        QCOMPARE(link.local().latchedValue(QStringLiteral("SEL/N1")), QStringLiteral("8832"));
        QCOMPARE(link.local().channel(), QStringLiteral("8,8832,0"));
        exchange(link, "lat\r");
        QCOMPARE(link.local().channel(), QStringLiteral("4,9600,0"));
    }

    void secondSaveBankIsTheFactoryRecord()
    {
        SimulatedModemLink link;
        exchange(link, "s/n 15000:model Q4Y\r");
        exchange(link, "save 2\r");
        exchange(link, "fa\r");
        QCOMPARE(link.local().value(QStringLiteral("S/N")), QStringLiteral("15000"));
        QCOMPARE(link.local().value(QStringLiteral("MODEL")), QStringLiteral("Q4Y"));
    }

    void helpChangedListsAProgramThatDownloadsBack()
    {
        SimulatedModemLink link;
        exchange(link, "ADD 5:NET 12:squelch 55:xsf off\r");
        const QByteArray listing = exchange(link, "he ch\r");
        QCOMPARE(listing, QByteArray("he ch\r\nADDRESS 5\r\nNETWORK 12\r\nSQUELCH 55\r\nXSFLOW OFF\r\nCMD:"));
        // Feeding the listing back after a factory default gives the same settings.
        SimulatedModemLink other;
        exchange(other, "FA\r");
        for (const QByteArray &line : {QByteArray("ADDRESS 5"), QByteArray("NETWORK 12"),
                                       QByteArray("SQUELCH 55"), QByteArray("XSFLOW OFF")})
            QVERIFY(exchange(other, line + '\r').endsWith("\r\nCMD:"));
        QCOMPARE(other.local().value(kNetwork), QStringLiteral("12"));
        QCOMPARE(other.local().value(QStringLiteral("XSFLOW")), QStringLiteral("OFF"));
    }

    void helpWithoutTopicIsRefused()
    {
        SimulatedModemLink link;
        QCOMPARE(exchange(link, "he xx\r"), QByteArray("he xx\r\nINVALID\r\nCMD:"));
    }

    void routeAndAppendTables()
    {
        SimulatedModemLink link;
        QCOMPARE(exchange(link, "ROUTE 1,5,\r"), QByteArray("ROUTE 1,5,\r\nCMD:"));
        exchange(link, "ROUTE 2,3,20,\r");
        exchange(link, "APPEND 1,1,25,28,*\r");
        exchange(link, "APPEND 2,2,30,30\r");
        QCOMPARE(exchange(link, "route\r"), QByteArray("route\r\n1,5,\r\n2,3,20,\r\nCMD:"));
        QCOMPARE(exchange(link, "append\r"), QByteArray("append\r\n1,1,25,28,*\r\n2,2,30,30\r\nCMD:"));
        // A line number past the end of the table plus one is refused.
        QCOMPARE(exchange(link, "ROUTE 5,7,\r"), QByteArray("ROUTE 5,7,\r\nINVALID\r\nCMD:"));
        exchange(link, "ROUTE 1\r");
        QCOMPARE(link.local().routes(), QStringList{QStringLiteral("1,3,20,")});
    }

    void emptyRouteTableAnswersWithThePromptOnly()
    {
        SimulatedModemLink link;
        QCOMPARE(exchange(link, "route\r"), QByteArray("route\r\nCMD:"));
    }

    void inoutCarriesTheCarrierIndicatorInBitTwo()
    {
        Scenario s = Scenario::standard();
        s.modems[0].option = 64;
        SimulatedModemLink link(s);
        // Squelch wide open: the receiver's own noise lights the indicator.
        exchange(link, "Squelch 0:Latch\r");
        exchange(link, "Asquelch 0:Latch\r");
        QByteArray reply = exchange(link, "inout 0,5\r");
        qsizetype cr = reply.indexOf('\r', reply.indexOf("INOUT"));
        QCOMPARE(reply.mid(cr - 2, 2), QByteArray("FF"));
        exchange(link, "asq 200:Latch\r");
        reply = exchange(link, "inout 0,5\r");
        cr = reply.indexOf('\r', reply.indexOf("INOUT"));
        QCOMPARE(reply.mid(cr - 2, 2), QByteArray("FB"));
    }

    void hourMeterRunsWithTime()
    {
        SimulatedModemLink link;
        link.time().advance(2 * 3600 * 1000);
        const QByteArray reply = exchange(link, "hour\r");
        const qsizetype p = reply.indexOf("HOUR");
        QCOMPARE(reply.mid(p + 11, reply.indexOf('\r', p) - p - 11), QByteArray("1236"));
    }

    void copyrightIsLongEnoughForItsWait()
    {
        SimulatedModemLink link;
        const QByteArray reply = exchange(link, "COP\r");
        QVERIFY(reply.size() > 40);
        QVERIFY(reply.contains("Copyright"));
    }

    void securityValueLocksTheUnitUntilGivenAgain()
    {
        SimulatedModemLink link;
        exchange(link, "SECURITY 4711\r");
        QVERIFY(link.local().locked());
        QCOMPARE(exchange(link, "squelch 50\r"), QByteArray("squelch 50\r\nINVALID\r\nCMD:"));
        QCOMPARE(exchange(link, "FA\r"), QByteArray("FA\r\nINVALID\r\nCMD:"));
        QCOMPARE(exchange(link, "ROUTE 1,5,\r"), QByteArray("ROUTE 1,5,\r\nINVALID\r\nCMD:"));
        // Reading goes on, and the value is not given away.
        QVERIFY(exchange(link, "squelch\r").contains("SQUELCH  = 30\r"));
        QVERIFY(exchange(link, "security\r").contains("SECURITY = ON\r"));
        QCOMPARE(exchange(link, "SECURITY 1234\r"), QByteArray("SECURITY 1234\r\nINVALID\r\nCMD:"));
        exchange(link, "SECURITY 4711\r");
        QVERIFY(!link.local().locked());
        QCOMPARE(exchange(link, "squelch 50\r"), QByteArray("squelch 50\r\nCMD:"));
    }

    void comrateIsUnknownToTheOldCase()
    {
        Scenario s = Scenario::standard();
        s.modems[0].serial = 9000;
        s.modems[0].switches = 8;
        s.modems[0].switchBits = 0x20;
        SimulatedModemLink link(s);
        QCOMPARE(exchange(link, "comrate\r"), QByteArray("comrate\r\nINVALID\r\nCMD:"));
    }
};

QTEST_GUILESS_MAIN(SettingsCopiesTest)
#include "SettingsCopiesTest.moc"
