#include "TextRules.h"

#include "AppError.h"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n';
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

int digitValue(QChar c)
{
    if (isDigit(c))
        return c.unicode() - u'0';
    const QChar upper = c.toUpper();
    if (upper >= u'A' && upper <= u'F')
        return upper.unicode() - u'A' + 10;
    return 99;
}

// Reads "&H..." or "&O..." (or "&" and octal digits) from position i, which stands behind the "&".
double radixValue(const QString &text, qsizetype i)
{
    int radix = 8;
    if (i < text.size() && text[i].toUpper() == u'H') {
        radix = 16;
        ++i;
    } else if (i < text.size() && text[i].toUpper() == u'O') {
        ++i;
    } else if (i >= text.size() || !isDigit(text[i])) {
        return 0;
    }
    quint64 value = 0;
    for (; i < text.size(); ++i) {
        if (isBlank(text[i]))
            continue;
        const int digit = digitValue(text[i]);
        if (digit >= radix)
            break;
        value = value * quint64(radix) + quint64(digit);
        if (value > 0xFFFFFFFFu)
            throw AppErrors::overflow();
    }
    // Like the classic literals: what fits in 16 bits is a 16-bit integer, the rest a 32-bit one.
    if (value <= 0xFFFFu)
        return double(qint16(quint16(value)));
    return double(qint32(quint32(value)));
}

} // namespace

double numericValue(const QString &text)
{
    const qsizetype n = text.size();
    qsizetype i = 0;
    auto skipBlanks = [&] {
        while (i < n && isBlank(text[i]))
            ++i;
    };
    skipBlanks();
    if (i < n && text[i] == u'&')
        return radixValue(text, i + 1);

    QByteArray number;
    if (i < n && (text[i] == u'+' || text[i] == u'-')) {
        number += char(text[i].unicode());
        ++i;
    }
    bool anyDigit = false;
    auto takeDigits = [&] {
        for (skipBlanks(); i < n && isDigit(text[i]); skipBlanks()) {
            number += char(text[i].unicode());
            anyDigit = true;
            ++i;
        }
    };
    takeDigits();
    if (i < n && text[i] == u'.') {
        number += '.';
        ++i;
        takeDigits();
    }
    if (!anyDigit)
        return 0;
    if (i < n && (text[i].toUpper() == u'E' || text[i].toUpper() == u'D')) {
        qsizetype j = i + 1;
        QByteArray exponent("e");
        while (j < n && isBlank(text[j]))
            ++j;
        if (j < n && (text[j] == u'+' || text[j] == u'-'))
            exponent += char(text[j++].unicode());
        bool expDigit = false;
        for (; j < n; ++j) {
            if (isBlank(text[j]))
                continue;
            if (!isDigit(text[j]))
                break;
            exponent += char(text[j].unicode());
            expDigit = true;
        }
        if (expDigit)
            number += exponent;
    }
    const double value = std::strtod(number.constData(), nullptr);
    if (std::isinf(value))
        throw AppErrors::overflow();
    return value;
}

double roundHalfEven(double value)
{
    // The default floating-point rounding mode is to the nearest, ties to even.
    return std::nearbyint(value);
}

qint32 roundToLong(double value)
{
    const double r = roundHalfEven(value);
    if (!(r >= double(std::numeric_limits<qint32>::min()) && r <= double(std::numeric_limits<qint32>::max())))
        throw AppErrors::overflow();
    return qint32(r);
}

qint16 roundToInteger(double value)
{
    const double r = roundHalfEven(value);
    if (!(r >= double(std::numeric_limits<qint16>::min()) && r <= double(std::numeric_limits<qint16>::max())))
        throw AppErrors::overflow();
    return qint16(r);
}

double fixValue(double value)
{
    return std::trunc(value);
}

double textFix(double value)
{
    return fixValue(numericValue(numberText(value)));
}

QString numberText(double value)
{
    if (value == 0)
        return QStringLiteral("0"); // no "-0"
    QString text = QString::number(value, 'g', 15);
    return text.replace(u'e', u'E');
}

int findText(int start, const QString &text, const QString &find)
{
    if (start < 1)
        throw AppErrors::invalidProcedureCall();
    if (start > text.size())
        return 0;
    if (find.isEmpty())
        return start;
    return int(text.indexOf(find, start - 1, Qt::CaseSensitive)) + 1;
}

int findText(const QString &text, const QString &find)
{
    return findText(1, text, find);
}

QString midText(const QString &text, int start, int length)
{
    if (start < 1 || length < 0)
        throw AppErrors::invalidProcedureCall();
    if (start > text.size())
        return {};
    return text.mid(start - 1, length);
}

QString midText(const QString &text, int start)
{
    if (start < 1)
        throw AppErrors::invalidProcedureCall();
    if (start > text.size())
        return {};
    return text.mid(start - 1);
}

QString leftText(const QString &text, int length)
{
    if (length < 0)
        throw AppErrors::invalidProcedureCall();
    return text.left(length);
}

QString rightText(const QString &text, int length)
{
    if (length < 0)
        throw AppErrors::invalidProcedureCall();
    return text.right(length);
}

QString trimBlanks(const QString &text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text[begin] == u' ')
        ++begin;
    while (end > begin && text[end - 1] == u' ')
        --end;
    return text.mid(begin, end - begin);
}
