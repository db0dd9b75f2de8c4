#include "CalcFreq.h"
#include "AppError.h"
#include "MemoryCommControl.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "ScriptedPrompts.h"
#include "SimulatedModemLink.h"
#include "TextRules.h"

#include <QTest>

#include <cmath>

Q_DECLARE_METATYPE(LatchScheme)

namespace {
// Latch values as they go to the modem.
QString wire(double value)
{
    return numberText(value);
}

constexpr int kBit5 = 32;
constexpr double kUntouched = -7;
} // namespace

class CalcFreqTest : public QObject
{
    Q_OBJECT
private slots:
    void workedExamplesForward_data();
    void workedExamplesForward();
    void workedExamplesReverse_data();
    void workedExamplesReverse();
    void schemeAKeepsItsGrid_data();
    void schemeAKeepsItsGrid();
    void schemeAOffTheGridReadsBackRounded();
    void schemeALeavesModelsWithoutABranchUntouched_data();
    void schemeALeavesModelsWithoutABranchUntouched();
    void schemeAReverseIsSinglePrecision();
    void schemeAReverseForSpreadSpectrumChannels();
    void schemeBFiveKilohertzStep();
    void schemeBRoundTrips();
    void schemeCKeepsTheFractionOfN1();
    void schemeChoice_data();
    void schemeChoice();
    void chosenSchemeSetsN2ForBAndC();
    void frequencyRanges_data();
    void frequencyRanges();
    void bitReversalPair();
    void reverseBitsLeavesTheValueHalved();
    void shifts();
    void overflowThrows_data();
    void overflowThrows();
    void overflowReachesTheStandardBox();
    void latchesSentToTheModemReadBackAsTheFrequency_data();
    void latchesSentToTheModemReadBackAsTheFrequency();
};

void CalcFreqTest::workedExamplesForward_data()
{
    QTest::addColumn<LatchScheme>("scheme");
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("option");
    QTest::addColumn<QString>("frequency");
    QTest::addColumn<QString>("a1");
    QTest::addColumn<QString>("n1");
    QTest::addColumn<QString>("n2");
    QTest::newRow("A Q4Y 150.0125") << LatchScheme::A << "Q4Y" << 0 << "150.0125"
                                    << "56"
                                    << "76"
                                    << "958";
    QTest::newRow("A Q4Y 159.5") << LatchScheme::A << "Q4Y" << 0 << "159.5"
                                 << "54"
                                 << "79"
                                 << "960";
    QTest::newRow("A Q4Y bit 5 150.005") << LatchScheme::A << "Q4Y" << kBit5 << "150.005"
                                         << "56"
                                         << "76"
                                         << "1199";
    QTest::newRow("A Q4YLX 150.0125") << LatchScheme::A << "Q4YLX" << 0 << "150.0125"
                                      << "56"
                                      << "76"
                                      << "958";
    QTest::newRow("A Q4U 457.6") << LatchScheme::A << "Q4U" << 0 << "457.6"
                                 << "32"
                                 << "86"
                                 << "960";
    QTest::newRow("A Q4U 463.2125") << LatchScheme::A << "Q4U" << 0 << "463.2125"
                                    << "24"
                                    << "87"
                                    << "958";
    QTest::newRow("A Q4U bit 5 ignored") << LatchScheme::A << "Q4U" << kBit5 << "463.2125"
                                         << "24"
                                         << "87"
                                         << "958";
    QTest::newRow("A Q4W 410") << LatchScheme::A << "Q4W" << 0 << "410"
                               << "4"
                               << "79"
                               << "960";
    QTest::newRow("A Q4R 72.02") << LatchScheme::A << "Q4R" << 0 << "72.02"
                                 << "0"
                                 << "0"
                                 << "16202";
    QTest::newRow("B 150.0125") << LatchScheme::B << "Q4Y" << 0 << "150.0125"
                                << "0"
                                << "10498"
                                << "0";
    QTest::newRow("B 159.5") << LatchScheme::B << "Q4U" << 0 << "159.5"
                             << "60"
                             << "47616"
                             << "0";
    QTest::newRow("C Q4Y 150.0125") << LatchScheme::C << "Q4Y" << 2 << "150.0125"
                                    << "4"
                                    << "9600.5"
                                    << "0";
    QTest::newRow("C Q4U 463.2125") << LatchScheme::C << "Q4U" << 2 << "463.2125"
                                    << "2"
                                    << "11064.25"
                                    << "0";
    QTest::newRow("C Q4Y bit 5 150.015") << LatchScheme::C << "Q4Y" << 2 + kBit5 << "150.015"
                                         << "3"
                                         << "9600.6"
                                         << "0";
}

void CalcFreqTest::workedExamplesForward()
{
    QFETCH(LatchScheme, scheme);
    QFETCH(QString, model);
    QFETCH(int, option);
    QFETCH(QString, frequency);
    QFETCH(QString, a1);
    QFETCH(QString, n1);
    QFETCH(QString, n2);

    double outA1 = kUntouched, outN1 = kUntouched, outN2 = kUntouched;
    switch (scheme) {
    case LatchScheme::A:
        FreqToLatchesA(model, numericValue(frequency), option, outA1, outN1, outN2);
        break;
    case LatchScheme::B:
        FreqToLatchesB(frequency, option, outA1, outN1);
        outN2 = 0;
        break;
    case LatchScheme::C:
        FreqToLatchesC(model, numericValue(frequency), option, outA1, outN1);
        outN2 = 0;
        break;
    }
    QCOMPARE(wire(outA1), a1);
    QCOMPARE(wire(outN1), n1);
    QCOMPARE(wire(outN2), n2);

    // The screens reach the same values through the chosen scheme.
    double viaA1 = kUntouched, viaN1 = kUntouched, viaN2 = kUntouched;
    freqToLatches(scheme, model, frequency, option, viaA1, viaN1, viaN2);
    QCOMPARE(wire(viaA1), a1);
    QCOMPARE(wire(viaN1), n1);
    QCOMPARE(wire(viaN2), n2);
}

void CalcFreqTest::workedExamplesReverse_data()
{
    QTest::addColumn<LatchScheme>("scheme");
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("option");
    QTest::addColumn<double>("a1");
    QTest::addColumn<double>("n1");
    QTest::addColumn<double>("n2");
    QTest::addColumn<double>("frequency");
    QTest::newRow("A Q4Y") << LatchScheme::A << "Q4Y" << 0 << 56.0 << 76.0 << 958.0 << double(150.0125f);
    QTest::newRow("A Q4Y 159.5") << LatchScheme::A << "Q4Y" << 0 << 54.0 << 79.0 << 960.0 << double(159.5f);
    QTest::newRow("A Q4Y bit 5") << LatchScheme::A << "Q4Y" << kBit5 << 56.0 << 76.0 << 1199.0
                                 << double(150.005f);
    QTest::newRow("A Q4U") << LatchScheme::A << "Q4U" << 0 << 32.0 << 86.0 << 960.0 << double(457.6f);
    QTest::newRow("A Q4ULX reads as the others")
        << LatchScheme::A << "Q4ULX" << 0 << 24.0 << 87.0 << 958.0 << double(463.2125f);
    QTest::newRow("A Q4W") << LatchScheme::A << "Q4W" << 0 << 4.0 << 79.0 << 960.0 << double(410.0f);
    QTest::newRow("A Q4R") << LatchScheme::A << "Q4R" << 0 << 0.0 << 0.0 << 16202.0 << double(72.02f);
    QTest::newRow("B 150.0125") << LatchScheme::B << "Q4Y" << 0 << 0.0 << 10498.0 << 0.0 << 150.0125;
    QTest::newRow("B 159.5") << LatchScheme::B << "Q4U" << 0 << 60.0 << 47616.0 << 0.0 << 159.5;
    QTest::newRow("C Q4Y") << LatchScheme::C << "Q4Y" << 2 << 4.0 << 9600.0 << 0.0 << 150.0125;
    QTest::newRow("C Q4Y bit 5") << LatchScheme::C << "Q4Y" << 2 + kBit5 << 3.0 << 9600.0 << 0.0 << 150.015;
    QTest::newRow("C Q4U") << LatchScheme::C << "Q4U" << 2 << 2.0 << 11064.0 << 0.0 << 463.2125;
}

void CalcFreqTest::workedExamplesReverse()
{
    QFETCH(LatchScheme, scheme);
    QFETCH(QString, model);
    QFETCH(int, option);
    QFETCH(double, a1);
    QFETCH(double, n1);
    QFETCH(double, n2);
    QFETCH(double, frequency);
    switch (scheme) {
    case LatchScheme::A:
        QCOMPARE(double(LatchesToFreqA(model, a1, n1, n2, option)), frequency);
        break;
    case LatchScheme::B:
        QCOMPARE(LatchesToFreqB(a1, n1, option), frequency);
        break;
    case LatchScheme::C:
        QCOMPARE(LatchesToFreqC(model, a1, n1, option), frequency);
        break;
    }
    QCOMPARE(latchesToFreq(scheme, model, a1, n1, n2, option), frequency);
}

void CalcFreqTest::schemeAKeepsItsGrid_data()
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

void CalcFreqTest::schemeAKeepsItsGrid()
{
    QFETCH(QString, model);
    QFETCH(int, option);
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(double, stepHz);
    const qint64 first = qint64(std::ceil(low * 1e6 / stepHz));
    const qint64 last = qint64(std::floor(high * 1e6 / stepHz));
    QVERIFY(last - first > 3000);
    for (qint64 channel = first; channel <= last; ++channel) {
        // The frequency as the user types it.
        const QString typed = numberText(channel * stepHz / 1e6);
        double a1 = kUntouched, n1 = kUntouched, n2 = kUntouched;
        FreqToLatchesA(model, numericValue(typed), option, a1, n1, n2);
        QVERIFY2(a1 >= 0 && a1 < 64 && n1 >= 0 && n2 >= 0, qPrintable(typed));
        QVERIFY2(a1 == std::trunc(a1) && n1 == std::trunc(n1) && n2 == std::trunc(n2), qPrintable(typed));
        const float back = LatchesToFreqA(model, a1, n1, n2, option);
        // Exactly the frequency in 10 Hz units, as single precision holds it, and so the same channel.
        const float units = float(channel * stepHz / 10);
        QVERIFY2(back == float(double(units) / 100000),
                 qPrintable(typed + QStringLiteral(" read back as ") + numberText(back)));
        QCOMPARE(qint64(roundHalfEven(back * 1e6 / stepHz)), channel);
    }
}

void CalcFreqTest::schemeAOffTheGridReadsBackRounded()
{
    double a1 = kUntouched, n1 = kUntouched, n2 = kUntouched;
    FreqToLatchesA(QStringLiteral("Q4Y"), 173.995, 0, a1, n1, n2);
    QCOMPARE(a1, 24.0);
    QCOMPARE(n1, 84.0);
    QCOMPARE(n2, 960.0);
    QCOMPARE(LatchesToFreqA(QStringLiteral("Q4Y"), a1, n1, n2, 0), 174.0f);
}

void CalcFreqTest::schemeALeavesModelsWithoutABranchUntouched_data()
{
    QTest::addColumn<QString>("model");
    QTest::newRow("Q4ULX") << "Q4ULX";
    QTest::newRow("Q4Z") << "Q4Z";
    QTest::newRow("lower case code") << "q4u";
}

void CalcFreqTest::schemeALeavesModelsWithoutABranchUntouched()
{
    QFETCH(QString, model);
    double a1 = 11, n1 = 22, n2 = 33;
    FreqToLatchesA(model, 463.2125, 0, a1, n1, n2);
    QCOMPARE(a1, 11.0);
    QCOMPARE(n1, 22.0);
    QCOMPARE(n2, 33.0);
}

void CalcFreqTest::schemeAReverseIsSinglePrecision()
{
    const auto result = LatchesToFreqA(QStringLiteral("Q4Y"), 56, 76, 958, 0);
    static_assert(std::is_same_v<decltype(result), const float>);
    QCOMPARE(result, 150.0125f);
    QVERIFY(double(result) != 150.0125);
    // A sum beyond 24 bits is rounded to single precision before the division: 5376 * 5000 less
    // 12500 * 959 / 20 less 9000000 is 17280625, which single precision holds as 17280624.
    QCOMPARE(LatchesToFreqA(QStringLiteral("Q4Y"), 0, 84, 959, 0), float(17280624.0f / 100000.0));
}

void CalcFreqTest::schemeAReverseForSpreadSpectrumChannels()
{
    QCOMPARE(LatchesToFreqA(QStringLiteral("Q4Z"), 1, 0, 0, 0), 2412.0f);
    QCOMPARE(LatchesToFreqA(QStringLiteral("Q4Z"), 6, 0, 0, 0), 2437.0f);
    QCOMPARE(LatchesToFreqA(QStringLiteral("Q4Z"), 11, 0, 0, 0), 2462.0f);
}

void CalcFreqTest::schemeBFiveKilohertzStep()
{
    double a1 = kUntouched, n1 = kUntouched;
    FreqToLatchesB(QStringLiteral("150.015"), kBit5, a1, n1);
    // fr 3 counts 5000 Hz: W 309400 hex reverses to 00290C hex.
    QCOMPARE(a1, 0.0);
    QCOMPARE(n1, double(0x290C));
    QCOMPARE(LatchesToFreqB(a1, n1, kBit5), 150.015);
    // The same latches read with the bit clear count 3125 Hz steps.
    QCOMPARE(LatchesToFreqB(a1, n1, 0), 150.009375);
    // With the bit clear the same frequency truncates to the 3125 Hz step below it.
    FreqToLatchesB(QStringLiteral("150.015"), 0, a1, n1);
    QCOMPARE(LatchesToFreqB(a1, n1, 0), 150.0125);
}

void CalcFreqTest::schemeBRoundTrips()
{
    // Every 12.5 kHz channel of the bands that the new case covers, typed as text.
    const double bands[][2] = {{150, 174}, {400, 420}, {450.1, 470}};
    for (const auto &band : bands) {
        for (qint64 hz = qint64(std::ceil(band[0] * 80)) * 12500; hz <= qint64(band[1] * 1e6); hz += 12500) {
            const QString typed = numberText(hz / 1e6);
            double a1 = kUntouched, n1 = kUntouched;
            FreqToLatchesB(typed, 0, a1, n1);
            QVERIFY2(n1 >= 0 && n1 <= 65535 && a1 >= 0 && a1 <= 255, qPrintable(typed));
            QCOMPARE(numberText(LatchesToFreqB(a1, n1, 0)), typed);
        }
    }
}

void CalcFreqTest::schemeCKeepsTheFractionOfN1()
{
    double a1 = kUntouched, n1 = kUntouched;
    FreqToLatchesC(QStringLiteral("Q4W"), 410.00625, 2, a1, n1);
    // T 500006250: n1 keeps .125 and a1 is a whole 1 of the 6250 Hz step.
    QCOMPARE(n1, 10000.125);
    QCOMPARE(a1, 1.0);
    QCOMPARE(numberText(n1), QStringLiteral("10000.125"));
    // The modem reports the whole part; the reverse reads it as it is.
    QCOMPARE(LatchesToFreqC(QStringLiteral("Q4W"), a1, 10000, 2), 410.00625);
}

void CalcFreqTest::schemeChoice_data()
{
    QTest::addColumn<int>("option");
    QTest::addColumn<int>("serial");
    QTest::addColumn<LatchScheme>("scheme");
    QTest::newRow("new synthesizer, old case") << 2 << 5000 << LatchScheme::C;
    QTest::newRow("new synthesizer, new case") << 2 << 20000 << LatchScheme::C;
    QTest::newRow("new synthesizer among other bits") << 2 + 4 + 64 << 15000 << LatchScheme::C;
    QTest::newRow("old case") << 0 << 11999 << LatchScheme::A;
    QTest::newRow("old case with 5 kHz") << kBit5 << 100 << LatchScheme::A;
    QTest::newRow("first new case") << 0 << 12000 << LatchScheme::B;
    QTest::newRow("new case, other bits") << 255 - 2 << 30000 << LatchScheme::B;
}

void CalcFreqTest::schemeChoice()
{
    QFETCH(int, option);
    QFETCH(int, serial);
    QFETCH(LatchScheme, scheme);
    QCOMPARE(chooseLatchScheme(option, serial), scheme);
}

void CalcFreqTest::chosenSchemeSetsN2ForBAndC()
{
    double a1 = kUntouched, n1 = kUntouched, n2 = kUntouched;
    freqToLatches(LatchScheme::B, QStringLiteral("Q4Y"), QStringLiteral("150.0125"), 0, a1, n1, n2);
    QCOMPARE(n2, 0.0);
    n2 = kUntouched;
    freqToLatches(LatchScheme::C, QStringLiteral("Q4Y"), QStringLiteral("150.0125"), 2, a1, n1, n2);
    QCOMPARE(n2, 0.0);
    // Scheme A for a model without a branch leaves all three as they were.
    a1 = n1 = n2 = kUntouched;
    freqToLatches(LatchScheme::A, QStringLiteral("Q4ULX"), QStringLiteral("463.2125"), 0, a1, n1, n2);
    QCOMPARE(a1, kUntouched);
    QCOMPARE(n1, kUntouched);
    QCOMPARE(n2, kUntouched);
}

void CalcFreqTest::frequencyRanges_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("option");
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::newRow("Q4U") << "Q4U" << 0 << 450.1 << 470.0;
    QTest::newRow("Q4ULX") << "Q4ULX" << 0 << 450.1 << 470.0;
    QTest::newRow("Q4W") << "Q4W" << 0 << 400.0 << 420.0;
    QTest::newRow("Q4Y") << "Q4Y" << 0 << 150.0 << 174.0;
    QTest::newRow("Q4YLX") << "Q4YLX" << 32 << 150.0 << 174.0;
    QTest::newRow("Q4R option 0") << "Q4R" << 0 << 72.0 << 73.0;
    QTest::newRow("Q4R option 7") << "Q4R" << 7 << 72.0 << 73.0;
    QTest::newRow("Q4R option 8") << "Q4R" << 8 << 75.0 << 76.0;
    QTest::newRow("Q4R option 16, bit 3 clear") << "Q4R" << 16 << 75.0 << 76.0;
    QTest::newRow("Q4R option 128") << "Q4R" << 128 << 75.0 << 76.0;
    QTest::newRow("Q4Z has no band") << "Q4Z" << 0 << kUntouched << kUntouched;
}

void CalcFreqTest::frequencyRanges()
{
    QFETCH(QString, model);
    QFETCH(int, option);
    QFETCH(double, low);
    QFETCH(double, high);
    double outLow = kUntouched, outHigh = kUntouched;
    FreqRangeForModel(model, option, outLow, outHigh);
    QCOMPARE(outLow, low);
    QCOMPARE(outHigh, high);
}

void CalcFreqTest::bitReversalPair()
{
    qint32 value = 0x409400;
    QCOMPARE(ReverseBits(value, 24), 0x002902);
    value = 0x002902;
    QCOMPARE(ReverseBits(value, 24), 0x409400);
    value = 0x005D3C;
    QCOMPARE(ReverseBits(value, 24), 0x3CBA00);
    value = 0x3CBA00;
    QCOMPARE(ReverseBits(value, 24), 0x005D3C);
    value = 0b1011;
    QCOMPARE(ReverseBits(value, 4), 0b1101);
}

void CalcFreqTest::reverseBitsLeavesTheValueHalved()
{
    qint32 value = 0b101101;
    QCOMPARE(ReverseBits(value, 2), 0b10);
    QCOMPARE(value, 0b1011);
    value = 0x409400;
    ReverseBits(value, 24);
    QCOMPARE(value, 0);
}

void CalcFreqTest::shifts()
{
    qint32 value = 4;
    ShiftLeftBits(20, value);
    QCOMPARE(value, 0x400000);
    value = 148;
    ShiftLeftBits(8, value);
    QCOMPARE(value, 0x9400);
    value = 0x3CBA00;
    ShiftRightBits(16, value);
    QCOMPARE(value, 0x3C);
    value = -3;
    ShiftRightBits(1, value);
    QCOMPARE(value, -1); // halving drops the fraction toward zero
    value = 5;
    ShiftLeftBits(0, value);
    QCOMPARE(value, 5);
}

void CalcFreqTest::overflowThrows_data()
{
    QTest::addColumn<QString>("what");
    QTest::newRow("B: T past 32 bits") << "B 2100";
    QTest::newRow("B: hertz past 32 bits") << "B 3000";
    QTest::newRow("C: T past 32 bits") << "C 2100";
    QTest::newRow("B reverse: a1 shifted past 32 bits") << "B reverse";
    QTest::newRow("shift past 32 bits") << "shift";
}

void CalcFreqTest::overflowThrows()
{
    QFETCH(QString, what);
    double a1 = kUntouched, n1 = kUntouched;
    try {
        if (what == u"B 2100")
            FreqToLatchesB(QStringLiteral("2100"), 0, a1, n1);
        else if (what == u"B 3000")
            FreqToLatchesB(QStringLiteral("3000"), 0, a1, n1);
        else if (what == u"C 2100")
            FreqToLatchesC(QStringLiteral("Q4U"), 2100, 2, a1, n1);
        else if (what == u"B reverse")
            LatchesToFreqB(40000, 0, 0);
        else {
            qint32 value = 0x40000000;
            ShiftLeftBits(1, value);
        }
        QFAIL("no overflow");
    } catch (const AppError &error) {
        QCOMPARE(error.number, AppErrors::Overflow);
    }
    QCOMPARE(a1, kUntouched);
    QCOMPARE(n1, kUntouched);
}

void CalcFreqTest::overflowReachesTheStandardBox()
{
    ScriptedPrompts prompts;
    prompts.expectMsgBox(appErrorText(AppErrors::overflow())).withIcon(MsgIcon::Critical);
    double a1 = kUntouched, n1 = kUntouched;
    QVERIFY(!attempt(prompts, [&] { FreqToLatchesB(QStringLiteral("2147.4"), 0, a1, n1); }));
    QVERIFY(prompts.verify());
    QVERIFY(prompts.shownTexts().constFirst().contains(QStringLiteral("6 = Overflow")));
    // Just below the limit the arithmetic runs.
    QVERIFY(attempt(prompts, [&] { FreqToLatchesB(QStringLiteral("2057"), 0, a1, n1); }));
}

void CalcFreqTest::latchesSentToTheModemReadBackAsTheFrequency_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("option");
    QTest::addColumn<int>("serial");
    QTest::addColumn<QString>("frequency");
    QTest::addColumn<LatchScheme>("scheme");
    QTest::newRow("old case Q4Y") << "Q4Y" << 0 << 5000 << "150.0125" << LatchScheme::A;
    QTest::newRow("old case Q4U") << "Q4U" << 0 << 9000 << "463.2125" << LatchScheme::A;
    QTest::newRow("new case Q4U") << "Q4U" << 0 << 14210 << "463.2125" << LatchScheme::B;
    QTest::newRow("new case Q4Y, 5 kHz") << "Q4Y" << kBit5 << 14210 << "150.015" << LatchScheme::B;
    QTest::newRow("SA8026 Q4Y, fractional n1") << "Q4Y" << 2 << 14210 << "150.0125" << LatchScheme::C;
    QTest::newRow("SA8026 Q4U, fractional n1") << "Q4U" << 2 << 14210 << "463.2125" << LatchScheme::C;
}

void CalcFreqTest::latchesSentToTheModemReadBackAsTheFrequency()
{
    QFETCH(QString, model);
    QFETCH(int, option);
    QFETCH(int, serial);
    QFETCH(QString, frequency);
    QFETCH(LatchScheme, scheme);

    sim::Scenario scenario = sim::Scenario::standard();
    scenario.modems[0].model = model;
    scenario.modems[0].option = option;
    scenario.modems[0].serial = serial;
    sim::SimulatedModemLink link(scenario);
    ScriptedPrompts prompts(&link.time());
    ModemSession session(link.port(), link.time(), prompts);

    QCOMPARE(chooseLatchScheme(option, serial), scheme);
    double a1 = 0, n1 = 0, n2 = 0;
    freqToLatches(scheme, model, frequency, option, a1, n1, n2);
    const QString line = QStringLiteral("Sel/N1 %1:Sel/A1 %2:Sel/N2 %3:Lat")
                             .arg(numberText(n1), numberText(a1), numberText(n2));
    session.sendCommand(line.toLatin1());
    QVERIFY(session.WaitForReply("CMD:", 1000));

    double readA1 = -1, readN1 = -1, readN2 = -1, squelch = -1;
    ReadLatches(session, readA1, readN1, readN2, squelch);
    QVERIFY(prompts.verify());
    QCOMPARE(readA1, a1);
    QCOMPARE(readN1, std::trunc(n1)); // the modem keeps the whole part of n1
    QCOMPARE(readN2, n2);
    const double back = latchesToFreq(scheme, model, readA1, readN1, readN2, option);
    QCOMPARE(QString::number(back, 'f', 4), QString::number(numericValue(frequency), 'f', 4));
}

QTEST_GUILESS_MAIN(CalcFreqTest)
#include "CalcFreqTest.moc"
