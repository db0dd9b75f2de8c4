#include "SimRig.h"

#include <QTest>

using sim::Scenario;
using sim::SimulatedModemLink;

namespace {

const QString kSquelch = QStringLiteral("SQUELCH");
const QString kNetwork = QStringLiteral("NETWORK");

QByteArray banner(int address)
{
    return "\r\nVarnel Q4U Wireless Data Modem\r\nCopyright (c) 1994-2002 Varnel Inc.\r\n"
           "Firmware Version 1.52\r\nUnit Address = " +
           QByteArray::number(address) + "\r\nCMD:";
}

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
        exchange(link, "squelch 60:latch\r");
        QCOMPARE(link.local().value(kSquelch), QStringLiteral("60"));
        QCOMPARE(exchange(link, "reset\r", 2000), "reset\r\n" + banner(1));
        QCOMPARE(link.local().value(kSquelch), QStringLiteral("44"));
        QCOMPARE(link.local().latchedValue(kSquelch), QStringLiteral("44"));
        QCOMPARE(link.truth().resets.size(), 1);
        // The second bank is the factory record.
        exchange(link, "s/n 15000:model Q4Y:save 2:fa\r");
        QCOMPARE(link.local().value(QStringLiteral("S/N")), QStringLiteral("15000"));
        QCOMPARE(link.local().value(QStringLiteral("MODEL")), QStringLiteral("Q4Y"));
    }

    // The banner carries the unit's address: that is how the utility knows the command went through.
    void factoryDefaultRestoresTheWorkingCopyAndKeepsTheAddress()
    {
        Scenario s = Scenario::standard();
        s.modems[0].settings = {{QStringLiteral("ADDRESS"), QStringLiteral("12")},
                                {kNetwork, QStringLiteral("5")},
                                {kSquelch, QStringLiteral("80")}};
        s.modems[0].routes = {QStringLiteral("1,5,")};
        SimulatedModemLink link(s);
        exchange(link, "dq on\r");
        QCOMPARE(exchange(link, "FA\r"), "FA\r\n" + banner(12));
        QVERIFY(!link.local().dataQualityMode());
        QCOMPARE(link.local().value(kNetwork), QStringLiteral("37"));
        QCOMPARE(link.local().latchedValue(kSquelch), QStringLiteral("30"));
        QVERIFY(link.local().routes().isEmpty());
        // Only the working copy changed: a reset brings back what was saved.
        QCOMPARE(link.local().savedValue(kNetwork), QStringLiteral("5"));
        exchange(link, "reset\r", 2000);
        QCOMPARE(link.local().value(kNetwork), QStringLiteral("5"));
        QCOMPARE(link.local().routes(), QStringList{QStringLiteral("1,5,")});
        QCOMPARE(link.truth().factoryDefaults.size(), 1);
    }

    void latchAppliesOnlyTheRadioValues()
    {
        SimulatedModemLink link;
        exchange(link, "sel/a1 4:sel/n1 9600:sel/n2 0:squelch 55:asq 60:rfp 1:network 9\r");
        QCOMPARE(link.local().channel(), QStringLiteral("8,8832,0"));
        QCOMPARE(link.local().latchedValue(kSquelch), QStringLiteral("30"));
        exchange(link, "lat\r");
        QCOMPARE(link.local().channel(), QStringLiteral("4,9600,0"));
        for (const char *command : {"SQUELCH", "ASQUELCH", "RFPOWER"})
            QCOMPARE(link.local().latchedValue(QLatin1String(command)),
                     link.local().value(QLatin1String(command)));
        QCOMPARE(link.local().latchedValue(kNetwork), QStringLiteral("37"));
        QCOMPARE(link.local().savedValue(kSquelch), QStringLiteral("30"));
    }

    void helpChangedListsAProgramThatDownloadsBack()
    {
        SimulatedModemLink link;
        exchange(link, "ADD 5:NET 12:squelch 55:xsf off:s/n 999\r");
        const QByteArray listing = exchange(link, "he ch\r");
        QCOMPARE(listing, QByteArray("he ch\r\nADDRESS 5\r\nNETWORK 12\r\nSQUELCH 55\r\nXSFLOW OFF\r\nCMD:"));
        // Feeding the listing back after a factory default gives the same settings.
        SimulatedModemLink other;
        exchange(other, "FA\r");
        for (const QByteArray &line : listing.split('\n').mid(1, 4))
            QVERIFY(exchange(other, line.trimmed() + '\r').endsWith("\r\nCMD:"));
        for (const char *command : {"ADDRESS", "NETWORK", "SQUELCH", "XSFLOW"})
            QCOMPARE(other.local().value(QLatin1String(command)), link.local().value(QLatin1String(command)));
    }

    void hourMeterRunsWithTime()
    {
        SimulatedModemLink link;
        link.time().advance(2 * 3600 * 1000 - 2000);
        QCOMPARE(exchange(link, "hour\r"), QByteArray("hour\r\nHOURS    = 1235\r\nCMD:"));
        link.time().advance(1000);
        QCOMPARE(exchange(link, "hour\r"), QByteArray("hour\r\nHOURS    = 1236\r\nCMD:"));
    }
};

QTEST_GUILESS_MAIN(SettingsCopiesTest)
#include "SettingsCopiesTest.moc"
