#include "CalcFreq.h"

#include "AppError.h"
#include "ModemParams.h"
#include "TextRules.h"

#include <limits>

namespace {

constexpr int kOldCaseSerialLimit = 12000;
// Latch offsets, in the units of each scheme: the 9 MHz and 90 MHz below the radio frequency
// and scheme A's 600 kHz above the rounded loop frequency.
constexpr double kOffsetA = 9000000;
constexpr double kLoopOffsetA = 600000;
constexpr qint32 kOffsetHz = 90000000;

bool isVhf(const QString &model)
{
    return model == u"Q4Y" || model == u"Q4YLX";
}

bool fiveKilohertz(int option)
{
    return optionBitSet(option, Option5kHzSpacing);
}

qint32 checkedSum(qint64 a, qint64 b)
{
    const qint64 sum = a + b;
    if (sum < std::numeric_limits<qint32>::min() || sum > std::numeric_limits<qint32>::max())
        throw AppErrors::overflow();
    return qint32(sum);
}

qint32 shiftedLeft(qint32 value, int count)
{
    ShiftLeftBits(count, value);
    return value;
}

qint32 shiftedRight(qint32 value, int count)
{
    ShiftRightBits(count, value);
    return value;
}

} // namespace

LatchScheme chooseLatchScheme(int option, int serialNumber)
{
    if (optionBitSet(option, OptionNewSynth))
        return LatchScheme::C;
    if (serialNumber < kOldCaseSerialLimit)
        return LatchScheme::A;
    return LatchScheme::B;
}

void FreqToLatchesA(const QString &model, double frequency, int option, double &a1, double &n1, double &n2)
{
    if (model == u"Q4R") {
        n2 = frequency * 100 + 9000;
        a1 = 0;
        n1 = 0;
        return;
    }
    const bool vhf = isVhf(model);
    if (!vhf && model != u"Q4U" && model != u"Q4W")
        return;
    const double f = frequency * 100000;
    const double p = f + kOffsetA;
    const double q = fixValue(p / 10000 + 0.5);
    const double m = q * 10000 + kLoopOffsetA;
    const double d = (m - p) * 20;
    const double t = m / (vhf ? 5000 : 10000);
    n1 = textFix(t / 64);
    a1 = textFix(t - n1 * 64);
    n2 = textFix(d / (vhf && fiveKilohertz(option) ? 10000 : 12500));
}

float LatchesToFreqA(const QString &model, double a1, double n1, double n2, int option)
{
    if (model == u"Q4R")
        return float((n2 - 9000) / 100);
    if (model == u"Q4Z")
        return float(2412 + 5 * (a1 - 1));
    const bool vhf = isVhf(model);
    const double c = vhf ? 5000 : 10000;
    const double s = vhf && fiveKilohertz(option) ? 10000 : 12500;
    // The sum is kept in single precision before the division and after it.
    const float sum = float((64 * n1 + a1) * c - s * n2 / 20 - kOffsetA);
    return float(double(sum) / 100000);
}

void FreqToLatchesB(const QString &frequency, int option, double &a1, double &n1)
{
    const qint32 h = roundToLong(numericValue(frequency) * 1000000);
    const qint32 t = checkedSum(h, kOffsetHz);
    const qint32 fr = (t % 25000) / (fiveKilohertz(option) ? 5000 : 3125);
    const qint32 v = t / 25000 - 128;
    const qint32 a = v % 64;
    const qint32 b = v / 64 - a;
    qint32 w = shiftedLeft(fr, 20) | shiftedLeft(b, 8) | a;
    const qint32 reversed = ReverseBits(w, 24);
    n1 = reversed & 0xFFFF;
    a1 = shiftedRight(reversed, 16);
}

double LatchesToFreqB(double a1, double n1, int option)
{
    qint32 x = checkedSum(shiftedLeft(roundToLong(a1), 16), roundToLong(n1));
    const qint32 w = ReverseBits(x, 24);
    const qint32 a = w & 255;
    const qint32 b = shiftedRight(w, 8) & 4095;
    const qint32 fr = shiftedRight(w, 20);
    const double h = fr * (fiveKilohertz(option) ? 5000.0 : 3125.0);
    const double n = 128 + a + 64.0 * (a + b);
    return (25000 * n + h - kOffsetHz) / 1000000;
}

void FreqToLatchesC(const QString &model, double frequency, int option, double &a1, double &n1)
{
    const qint32 t = roundToLong(frequency * 1000000 + kOffsetHz);
    if (isVhf(model)) {
        n1 = t / 25000.0;
        a1 = (t % 25000) / (fiveKilohertz(option) ? 5000.0 : 3125.0);
    } else {
        n1 = t / 50000.0;
        a1 = (t % 50000) / 6250.0;
    }
}

double LatchesToFreqC(const QString &model, double a1, double n1, int option)
{
    if (isVhf(model))
        return (25000 * n1 + (fiveKilohertz(option) ? 5000 : 3125) * a1 - kOffsetHz) / 1000000;
    return (50000 * n1 + 6250 * a1 - kOffsetHz) / 1000000;
}

void freqToLatches(LatchScheme scheme, const QString &model, const QString &frequency, int option, double &a1,
                   double &n1, double &n2)
{
    switch (scheme) {
    case LatchScheme::A:
        FreqToLatchesA(model, numericValue(frequency), option, a1, n1, n2);
        return;
    case LatchScheme::B:
        FreqToLatchesB(frequency, option, a1, n1);
        break;
    case LatchScheme::C:
        FreqToLatchesC(model, numericValue(frequency), option, a1, n1);
        break;
    }
    n2 = 0;
}

double latchesToFreq(LatchScheme scheme, const QString &model, double a1, double n1, double n2, int option)
{
    switch (scheme) {
    case LatchScheme::A:
        return LatchesToFreqA(model, a1, n1, n2, option);
    case LatchScheme::B:
        return LatchesToFreqB(a1, n1, option);
    case LatchScheme::C:
        return LatchesToFreqC(model, a1, n1, option);
    }
    return 0;
}

void FreqRangeForModel(const QString &model, int option, double &low, double &high)
{
    if (model == u"Q4U" || model == u"Q4ULX") {
        low = 450.1;
        high = 470;
    } else if (model == u"Q4W") {
        low = 400;
        high = 420;
    } else if (isVhf(model)) {
        low = 150;
        high = 174;
    } else if (model == u"Q4R") {
        // The whole option value is compared, not bit 3 alone: any higher bit means the upper band.
        const bool upperBand = option >= 8;
        low = upperBand ? 75 : 72;
        high = upperBand ? 76 : 73;
    }
}

void ShiftLeftBits(int count, qint32 &value)
{
    for (int i = 0; i < count; ++i)
        value = checkedSum(value, value);
}

void ShiftRightBits(int count, qint32 &value)
{
    for (int i = 0; i < count; ++i)
        value /= 2;
}

qint32 ReverseBits(qint32 &value, int count)
{
    qint32 result = 0;
    for (int i = 0; i < count; ++i) {
        result = checkedSum(qint64(result) * 2, value & 1);
        value /= 2;
    }
    return result;
}
