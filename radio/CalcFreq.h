#pragma once

#include <QString>
#include <QtGlobal>

// The arithmetic between a frequency in MHz and the three synthesizer latches `sel/a1`, `sel/n1`
// and `sel/n2`. Three hardware generations store the frequency in three unrelated ways, each with a
// forward and a reverse calculation. Nothing here validates: a frequency off the grid or out of
// range gives whatever the arithmetic gives, and the screens test the step and the range first.
// Where the 32-bit arithmetic of the latches overflows, AppError Overflow is thrown for the
// calling screen's handler to show.

// Which calculation a unit uses: option bit 1 ("New SA8026 Synth") is C, an old-case serial number
// below 12000 is A, the rest B.
enum class LatchScheme { A, B, C };
LatchScheme chooseLatchScheme(int option, int serialNumber);

// Scheme A. The modem's loop runs at a tenth of the radio frequency, in steps of 6.25 kHz (5 kHz
// with option bit 5 on the VHF models). The outputs are left as they were for a model without a
// branch here, such as `Q4ULX`, whose units never use this scheme.
void FreqToLatchesA(const QString &model, double frequency, int option, double &a1, double &n1, double &n2);
// The reverse, with the accuracy of a single-precision number, which the screens show formatted.
float LatchesToFreqA(const QString &model, double a1, double n1, double n2, int option);

// Scheme B: the frequency as text, read as a number and taken in whole hertz. n2 is not used.
void FreqToLatchesB(const QString &frequency, int option, double &a1, double &n1);
double LatchesToFreqB(double a1, double n1, int option);

// Scheme C (the SA8026 synthesizer). n1 keeps its fraction and goes to the modem as it is.
void FreqToLatchesC(const QString &model, double frequency, int option, double &a1, double &n1);
double LatchesToFreqC(const QString &model, double a1, double n1, int option);

// The band of a model in MHz. `Q4Z` has none and leaves low and high as they were.
void FreqRangeForModel(const QString &model, int option, double &low, double &high);

// The calculation of a scheme, as the frequency screens choose it. The frequency comes as the
// text the user entered; with schemes B and C, n2 is set to 0.
void freqToLatches(LatchScheme scheme, const QString &model, const QString &frequency, int option, double &a1,
                   double &n1, double &n2);
double latchesToFreq(LatchScheme scheme, const QString &model, double a1, double n1, double n2, int option);

// Doubles value count times, in 32 bits.
void ShiftLeftBits(int count, qint32 &value);
// Halves value count times, dropping the fraction each time.
void ShiftRightBits(int count, qint32 &value);
// The low count bits of value in reversed order. value is halved count times on the way.
qint32 ReverseBits(qint32 &value, int count);
