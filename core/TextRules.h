#pragma once

#include <QString>
#include <QtGlobal>

// The rules for text and numbers that every screen shares: how a text is read as a number, how a
// fraction becomes a whole number, how a number is written for the modem, and the 1-based text
// positions the reply cutters work with. Failures are thrown as AppError with the classic numbers,
// so that a routine's one handler shows the same box the user has always seen.

// The numeric value of a text: the number at its front, 0 when the text does not begin with one.
// Blanks, tabs and line feeds are passed over anywhere in the number ("1 2" reads 12), "&H" and
// "&O" give hexadecimal and octal values (16-bit when they fit in four hex digits, so "&HFFFF" is
// -1), and an exponent may follow with E or D. A value beyond a double throws Overflow.
double numericValue(const QString &text);

// Rounds to the nearest whole number, and at exactly one half to the even one.
double roundHalfEven(double value);
// The same into a 32-bit or a 16-bit integer; out of range throws Overflow.
qint32 roundToLong(double value);
qint16 roundToInteger(double value);
// Cuts the fraction toward zero.
double fixValue(double value);

// Text-fix: writes the number as decimal text with 15 significant digits, reads it back and cuts
// the fraction. The detour drops the rounding noise of a division, so that a quotient that is whole
// in decimal (958 from 957.9999999999999) does not fall to the next lower integer.
double textFix(double value);

// The decimal text of a number as the modem takes it and the screens show it: up to 15 significant
// digits, no trailing zeros, whole values without a point ("958", "9600.5", "0.5", "1E+15").
QString numberText(double value);

// The position (from 1) of find in text, searching from start, exact in case; 0 when it is not
// there or start lies beyond the text. A start below 1 throws "Invalid procedure call or argument".
int findText(int start, const QString &text, const QString &find);
int findText(const QString &text, const QString &find);
// length characters of text from position start (1-based); the rest of the text if fewer remain,
// empty when start lies beyond it. A start below 1 or a negative length throws as above.
QString midText(const QString &text, int start, int length);
QString midText(const QString &text, int start);
// The first or last length characters; a negative length throws as above.
QString leftText(const QString &text, int length);
QString rightText(const QString &text, int length);
// Drops leading and trailing blanks (spaces only: tabs and line ends stay).
QString trimBlanks(const QString &text);
