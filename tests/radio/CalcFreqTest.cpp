#include "CalcFreq.h"

#include "Tables.h"
#include "TextRules.h"

#include <cmath>

namespace {
constexpr int kBit5 = 32;
constexpr double kUntouched = -7;

LatchScheme schemeOf(char scheme)
{
    return scheme == 'A' ? LatchScheme::A : scheme == 'B' ? LatchScheme::B : LatchScheme::C;
}

// Worked examples: a frequency as typed and the latches "a1 n1 n2" as they go to the modem ("->"),
// latches as the modem reports them (n1 whole) and the frequency they read as ("<-"), or both. Scheme
// A reads back in single precision. Outputs a calculation leaves alone stay at -7.
struct Example
{
    const char *name;
    char scheme;
    const char *model;
    int option;
    const char *way;
    const char *frequency;
    const char *latches;
};

const Example kExamples[] = {
    {"A Q4Y", 'A', "Q4Y", 0, "<->", "150.0125", "56 76 958"},
    {"A Q4Y 159.5", 'A', "Q4Y", 0, "<->", "159.5", "54 79 960"},
    {"A Q4Y 5 kHz", 'A', "Q4Y", kBit5, "<->", "150.005", "56 76 1199"},
    {"A Q4YLX", 'A', "Q4YLX", 0, "<->", "150.0125", "56 76 958"},
    {"A Q4U", 'A', "Q4U", 0, "<->", "457.6", "32 86 960"},
    {"A Q4U 463.2125", 'A', "Q4U", 0, "<->", "463.2125", "24 87 958"},
    {"A Q4U ignores 5 kHz", 'A', "Q4U", kBit5, "<->", "463.2125", "24 87 958"},
    {"A Q4W", 'A', "Q4W", 0, "<->", "410", "4 79 960"},
    {"A Q4R", 'A', "Q4R", 0, "<->", "72.02", "0 0 16202"},
    {"A off the grid", 'A', "Q4Y", 0, "->", "173.995", "24 84 960"},
    {"A off the grid reads back rounded", 'A', "Q4Y", 0, "<-", "174", "24 84 960"},
    {"A Q4ULX has no branch", 'A', "Q4ULX", 0, "->", "463.2125", "-7 -7 -7"},
    {"A Q4ULX reads as the others", 'A', "Q4ULX", 0, "<-", "463.2125", "24 87 958"},
    {"A Q4Z has no branch", 'A', "Q4Z", 0, "->", "2437", "-7 -7 -7"},
    {"A model codes are exact in case", 'A', "q4u", 0, "->", "463.2125", "-7 -7 -7"},
    {"A Q4Z channel 1", 'A', "Q4Z", 0, "<-", "2412", "1 0 0"},
    {"A Q4Z channel 11", 'A', "Q4Z", 0, "<-", "2462", "11 0 0"},
    {"B", 'B', "Q4Y", 0, "<->", "150.0125", "0 10498 0"},
    {"B 159.5", 'B', "Q4U", 0, "<->", "159.5", "60 47616 0"},
    // fr 3 counts 5000 Hz: W 309400 hex reverses to 00290C hex.
    {"B 5 kHz", 'B', "Q4Y", kBit5, "<->", "150.015", "0 10508 0"},
    {"B latches of 5 kHz read in 3125 Hz steps", 'B', "Q4Y", 0, "<-", "150.009375", "0 10508 0"},
    {"B truncates to the 3125 Hz step below", 'B', "Q4Y", 0, "->", "150.015", "0 10498 0"},
    {"B just below the limit", 'B', "Q4Y", 0, "->", "2057", "28 49312 0"},
    {"B T past 32 bits", 'B', "Q4Y", 0, "->", "2147.4", "error 6"},
    {"B hertz past 32 bits", 'B', "Q4Y", 0, "->", "3000", "error 6"},
    {"B a1 shifted past 32 bits", 'B', "Q4Y", 0, "<-", "error 6", "40000 0 0"},
    // The modem keeps the whole part of n1; the reverse reads it as it is.
    {"C Q4Y", 'C', "Q4Y", 2, "<->", "150.0125", "4 9600.5 0"},
    {"C Q4U", 'C', "Q4U", 2, "<->", "463.2125", "2 11064.25 0"},
    {"C Q4Y 5 kHz", 'C', "Q4Y", 2 + kBit5, "<->", "150.015", "3 9600.6 0"},
    {"C Q4W keeps the fraction of n1", 'C', "Q4W", 2, "<->", "410.00625", "1 10000.125 0"},
    {"C T past 32 bits", 'C', "Q4U", 2, "->", "2100", "error 6"},
};

QString latches(double a1, double n1, double n2)
{
    return QStringList{numberText(a1), numberText(n1), numberText(n2)}.join(u' ');
}

// Scheme choice ("option serial"), bands ("model option"), shifts and bit reversal ("value count",
// hexadecimal, then the value as the routine leaves it).
const char *const kRules[][4] = {
    {"new synthesizer, old case", "scheme", "2 5000", "C"},
    {"new synthesizer among other bits", "scheme", "70 15000", "C"},
    {"old case", "scheme", "0 11999", "A"},
    {"old case with 5 kHz", "scheme", "32 100", "A"},
    {"first new case", "scheme", "0 12000", "B"},
    {"new case, other bits", "scheme", "253 30000", "B"},
    {"Q4U", "band", "Q4U 0", "450.1 470"},
    {"Q4ULX", "band", "Q4ULX 0", "450.1 470"},
    {"Q4W", "band", "Q4W 0", "400 420"},
    {"Q4Y", "band", "Q4Y 0", "150 174"},
    {"Q4YLX", "band", "Q4YLX 32", "150 174"},
    {"Q4R option 7", "band", "Q4R 7", "72 73"},
    {"Q4R option 8", "band", "Q4R 8", "75 76"},
    // The whole option value is compared, not bit 3 alone.
    {"Q4R option 16, bit 3 clear", "band", "Q4R 16", "75 76"},
    {"Q4Z has no band", "band", "Q4Z 0", "-7 -7"},
    {"reverse 24 bits", "reverse", "409400 24", "2902 0"},
    {"reverse back", "reverse", "2902 24", "409400 0"},
    {"reverse again", "reverse", "5D3C 24", "3CBA00 0"},
    {"reverse 4 bits", "reverse", "B 4", "D 0"},
    {"reverse leaves the value halved", "reverse", "2D 2", "2 B"},
    {"shift left", "left", "94 8", "9400"},
    {"shift left by none", "left", "5 0", "5"},
    {"shift left past 32 bits", "left", "40000000 1", "error 6"},
    {"shift right", "right", "3CBA00 16", "3C"},
    {"halving drops the fraction toward zero", "right", "-3 1", "-1"},
};

QString apply(const QString &rule, const QString &a, const QString &b)
{
    qint32 value = a.toInt(nullptr, 16);
    const int count = b.toInt();
    const auto hex = [](qint32 v) { return QString::number(v, 16).toUpper(); };
    if (rule == u"scheme")
        return QStringLiteral("ABC").mid(int(chooseLatchScheme(a.toInt(), b.toInt())), 1);
    if (rule == u"band") {
        double low = kUntouched, high = kUntouched;
        FreqRangeForModel(a, b.toInt(), low, high);
        return numberText(low) + u' ' + numberText(high);
    }
    if (rule == u"reverse") {
        const qint32 reversed = ReverseBits(value, count);
        return hex(reversed) + u' ' + hex(value);
    }
    return outcome([&] {
        rule == u"left" ? ShiftLeftBits(count, value) : ShiftRightBits(count, value);
        return hex(value);
    });
}

} // namespace

class CalcFreqTest : public QObject
{
    Q_OBJECT
private slots:
    void workedExamples_data() { addRows(kExamples); }
    void workedExamples()
    {
        const Example &e = fetchRow(kExamples);
        const LatchScheme scheme = schemeOf(e.scheme);
        const QString model = QLatin1String(e.model), frequency = QLatin1String(e.frequency);
        const QStringList l = QString::fromLatin1(e.latches).split(u' ');
        if (QByteArray(e.way).endsWith('>')) {
            double a1 = kUntouched, n1 = kUntouched, n2 = kUntouched;
            const QString direct = outcome([&] {
                if (e.scheme == 'A')
                    FreqToLatchesA(model, numericValue(frequency), e.option, a1, n1, n2);
                else if (e.scheme == 'B')
                    FreqToLatchesB(frequency, e.option, a1, n1);
                else
                    FreqToLatchesC(model, numericValue(frequency), e.option, a1, n1);
                return latches(a1, n1, e.scheme == 'A' ? n2 : 0);
            });
            QCOMPARE(direct, QLatin1String(e.latches));
            // The screens reach the same values through the chosen scheme, which sets n2 to 0 with B and C.
            a1 = n1 = n2 = kUntouched;
            QCOMPARE(outcome([&] {
                         return freqToLatches(scheme, model, frequency, e.option, a1, n1, n2),
                                latches(a1, n1, n2);
                     }),
                     QLatin1String(e.latches));
        }
        if (e.way[0] == '<') {
            const double a1 = l[0].toDouble(), n1 = std::trunc(l.value(1).toDouble()),
                         n2 = l.value(2).toDouble();
            const QString read =
                outcome([&] { return numberText(latchesToFreq(scheme, model, a1, n1, n2, e.option)); });
            const QString expected = e.scheme == 'A' ? numberText(float(frequency.toDouble())) : frequency;
            QCOMPARE(read, expected);
            const QString direct = outcome([&] {
                if (e.scheme == 'A')
                    return numberText(LatchesToFreqA(model, a1, n1, n2, e.option));
                return numberText(e.scheme == 'B' ? LatchesToFreqB(a1, n1, e.option)
                                                  : LatchesToFreqC(model, a1, n1, e.option));
            });
            QCOMPARE(direct, expected);
        }
    }

    void schemeAKeepsItsGrid_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<int>("option");
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("high");
        QTest::addColumn<double>("stepHz");
        QTest::newRow("Q4Y 6.25 kHz") << "Q4Y" << 0 << 150.0 << 174.0 << 6250.0;
        QTest::newRow("Q4YLX 6.25 kHz") << "Q4YLX" << 0 << 150.0 << 174.0 << 6250.0;
        QTest::newRow("Q4Y 5 kHz") << "Q4Y" << kBit5 << 150.0 << 174.0 << 5000.0;
        QTest::newRow("Q4U 6.25 kHz") << "Q4U" << 0 << 450.1 << 470.0 << 6250.0;
        QTest::newRow("Q4W 6.25 kHz") << "Q4W" << 0 << 400.0 << 420.0 << 6250.0;
    }
    void schemeAKeepsItsGrid()
    {
        QFETCH(QString, model);
        QFETCH(int, option);
        QFETCH(double, low);
        QFETCH(double, high);
        QFETCH(double, stepHz);
        for (auto channel = qint64(std::ceil(low * 1e6 / stepHz)); channel <= qint64(high * 1e6 / stepHz);
             ++channel) {
            // The frequency as the user types it.
            const QString typed = numberText(channel * stepHz / 1e6);
            double a1 = kUntouched, n1 = kUntouched, n2 = kUntouched;
            FreqToLatchesA(model, numericValue(typed), option, a1, n1, n2);
            QVERIFY2(a1 >= 0 && a1 < 64 && n1 >= 0 && n2 >= 0, qPrintable(typed));
            QVERIFY2(a1 == std::trunc(a1) && n1 == std::trunc(n1) && n2 == std::trunc(n2), qPrintable(typed));
            // Exactly the frequency in 10 Hz units, as single precision holds it, and so the same channel.
            const float back = LatchesToFreqA(model, a1, n1, n2, option);
            QVERIFY2(back == float(double(float(channel * stepHz / 10)) / 100000), qPrintable(typed));
            QCOMPARE(qint64(roundHalfEven(back * 1e6 / stepHz)), channel);
        }
    }

    void schemeBRoundTrips()
    {
        // Every 12.5 kHz channel of the bands that the new case covers, typed as text.
        for (const auto &[low, high] : {std::pair{150.0, 174.0}, {400.0, 420.0}, {450.1, 470.0}}) {
            for (qint64 hz = qint64(std::ceil(low * 80)) * 12500; hz <= qint64(high * 1e6); hz += 12500) {
                const QString typed = numberText(hz / 1e6);
                double a1 = kUntouched, n1 = kUntouched;
                FreqToLatchesB(typed, 0, a1, n1);
                QVERIFY2(n1 >= 0 && n1 <= 65535 && a1 >= 0 && a1 <= 255, qPrintable(typed));
                QCOMPARE(numberText(LatchesToFreqB(a1, n1, 0)), typed);
            }
        }
    }

    void rules_data() { addRows(kRules); }
    void rules()
    {
        const auto &[name, rule, argument, result] = fetchRow(kRules);
        const QStringList a = QString::fromLatin1(argument).split(u' ');
        QCOMPARE(apply(QLatin1String(rule), a[0], a[1]), QLatin1String(result));
    }
};

QTEST_GUILESS_MAIN(CalcFreqTest)
#include "CalcFreqTest.moc"
