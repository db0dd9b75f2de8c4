#include "DiagnosticShell.h"
#include "AppError.h"
#include "CalcFreq.h"
#include "DiagnosticReport.h"
#include "ModemSession.h"
#include "ScriptedPrompts.h"
#include "SimulatedModemLink.h"
#include "Tables.h"
#include "TextRules.h"

#include <QTest>

namespace {
// Destination and repeaters as typed, and the row or the box that follows.
struct AddressCase
{
    const char *name, *destination, *repeaters, *outcome;
    bool cleared = false;
};
const AddressCase kAddresses[] = {
    {"direct", "12", ",,", "12"},
    {"two repeaters in front", "12", "5,7,", "5,7,12"},
    {"three repeaters", "40", "1,2,3", "1,2,3,40"},
    {"as typed: zero in front, letters behind", "012", "5x,,", "5x,012"},
    {"two equal repeaters pass", "12", "5,5,", "5,5,12"},
    {"no destination", "", ",,", "!You Must Type In An Address For The Destination Varnel"},
    {"destination of letters", "ab", ",,", "!You Must Type In An Address For The Destination Varnel"},
    {"destination too high", "255", ",,", "Your Destination Address Must Be Between 1 and 254"},
    {"destination below 1", "-3", ",,", "Your Destination Address Must Be Between 1 and 254"},
    {"highest destination", "254", ",,", "254"},
    {"third without second", "12", "5,,7", "Please Fill In Repeaters From First to Third", true},
    {"repeater out of range", "12", "255,,", "Your Repeater Addresses Must Be Between 1 and 254"},
    {"repeater equal to destination", "12", "12,,",
     "Your Repeater Addresses Must Be Different Your Destination Address"},
};

// The size typed and the packet's length, or the box.
const char *const kPackets[][3] = {
    {"smallest", "10", "9"},       {"largest", "2000", "1999"},  {"rounded up into range", "9.6", "9"},
    {"too small", "9", "box"},     {"too large", "2001", "box"}, {"not a number", "abc", "box"},
    {"half to even", "10.5", "9"},
};

// A modem on the cable, the report the load writes, and the tests it can run (rss, inter, dq).
struct LoadCase
{
    const char *name, *model;
    int option, serial;
    const char *report, *available;
};
const LoadCase kLoads[] = {
    {"meter fitted", "Q4U", 4, 14210,
     "Varnel Model Q40U | Serial Number=  Q40U14210 | Firmware Version=  1.52 | Operating Frequency= 457.6 "
     "MHz",
     "1 1 1"},
    {"no meter: two blocks", "Q4ULX", 0, 14210,
     "Varnel Model Q40ULX | Serial Number=  Q40ULX14210 | Firmware Version=  1.52 | Operating Frequency= "
     "457.6 "
     "MHz | * | Receive Signal Strength Meter Not Installed\r\nReceive Signal Strength Measurements Not "
     "Available | * | Receive Signal Strength Meter Not Installed\r\nInterference Test Not Available",
     "0 0 1"},
    {"spread spectrum: no data quality", "Q4Z", 0, 3001,
     "Varnel Model Q40Z | Serial Number=  S- 3001 | Firmware Version=  1.52 | Operating Frequency= 2412 MHz "
     "| *",
     "1 1 0"},
};
} // namespace

class DiagnosticShellTest : public QObject
{
    Q_OBJECT
private slots:
    void addressRows_data() { addRows(kAddresses); }
    void addressRows()
    {
        const AddressCase &c = fetchRow(kAddresses);
        const QStringList r = QString::fromLatin1(c.repeaters).split(u',');
        const AddressEntry e = addressRow(QString::fromLatin1(c.destination), {r[0], r[1], r[2]});
        QCOMPARE(e.faultText.isEmpty() ? e.row
                                       : (e.exclamation ? QStringLiteral("!") : QString()) + e.faultText,
                 QString::fromLatin1(c.outcome));
        QCOMPARE(e.clearRepeaters, c.cleared);
    }

    void packets_data() { addRows(kPackets); }
    void packets()
    {
        const auto &[name, size, length] = fetchRow(kPackets);
        const TestPacketChoice choice = testPacketFor(QString::fromLatin1(size));
        QCOMPARE(choice.faultText.isEmpty() ? QString::number(choice.packet.size()) : QStringLiteral("box"),
                 QString::fromLatin1(length));
        if (choice.packet.isEmpty())
            QCOMPARE(choice.faultText, QStringLiteral("Your Test Packet Must Be Between 10 and 2000"));
        else
            QVERIFY(choice.packet.startsWith(QStringLiteral("012345678")));
    }

    void identity()
    {
        QCOMPARE(diagModelName(QStringLiteral("Q4ULX")), QStringLiteral("Q40ULX"));
        QCOMPARE(diagModelName(QStringLiteral("Q4Uabcdefghij")), QStringLiteral("Q40Uabcdef"));
        QCOMPARE(diagSerialText(QStringLiteral("Q40Z"), QStringLiteral("77")), QStringLiteral("S- 77"));
        QCOMPARE(diagSerialText(QStringLiteral("Q40W"), QStringLiteral("77")), QStringLiteral("Q40W77"));
        // Old case, new case, and the new synthesizer whatever the case.
        QCOMPARE(operatingFrequency(QStringLiteral("Q4U"), 0, QStringLiteral("11999"), 32, 86, 960),
                 QStringLiteral("457.6"));
        QCOMPARE(operatingFrequency(QStringLiteral("Q4U"), 0, QStringLiteral("12000"), 60, 47616, 0),
                 QStringLiteral("159.5"));
        QCOMPARE(operatingFrequency(QStringLiteral("Q4U"), 2, QStringLiteral("11999"), 2, 11064.25, 0),
                 numberText(LatchesToFreqC(QStringLiteral("Q4U"), 2, 11064.25, 2)));
    }

    void load_data() { addRows(kLoads); }
    void load()
    {
        const LoadCase &c = fetchRow(kLoads);
        sim::Scenario s = sim::Scenario::standard();
        s.modems[0].model = QLatin1String(c.model);
        s.modems[0].option = c.option;
        s.modems[0].serial = c.serial;
        s.modems[0].settings.insert(QStringLiteral("ECHO"), QStringLiteral("OFF"));
        sim::SimulatedModemLink link(s);
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        DiagnosticReport report;
        const ModemUnderTest m = readModemUnderTest(session, report);
        const TestAvailability a = testAvailability(m, report);
        QCOMPARE(report.text(),
                 items(c.report).join(QStringLiteral("\r\n")).replace(QStringLiteral("*"), asterisks()) +
                     QStringLiteral("\r\n"));
        QCOMPARE(QStringLiteral("%1 %2 %3").arg(a.rss).arg(a.interference).arg(a.dataQuality),
                 QLatin1String(c.available));
        QCOMPARE(m.SquelchText, QStringLiteral("30"));
    }

    // A silent modem: each reader shows the standard box for its values, and the report shows what
    // little was read.
    void silentModem()
    {
        sim::Scenario s = sim::Scenario::standard();
        s.modems[0].dead = true;
        sim::SimulatedModemLink link(s);
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        for (int box = 0; box < 8; ++box)
            prompts.expectMsgBox(appErrorText(AppErrors::invalidProcedureCall())).withIcon(MsgIcon::Critical);
        DiagnosticReport report;
        const ModemUnderTest m = readModemUnderTest(session, report);
        QVERIFY(prompts.verify());
        QCOMPARE(report.text(),
                 QStringLiteral("Varnel Model Q40\r\nSerial Number=  Q40\r\nFirmware Version=  \r\n"
                                "Operating Frequency= -90 MHz\r\n"));
        QVERIFY(!m.HasRssOption);
        QCOMPARE(m.SquelchText, QStringLiteral("0"));
    }
};

QTEST_GUILESS_MAIN(DiagnosticShellTest)
#include "DiagnosticShellTest.moc"
