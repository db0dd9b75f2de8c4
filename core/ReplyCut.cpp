#include "ReplyCut.h"

#include "TextRules.h"

namespace {

const QString kCr(QChar(13));
constexpr int kValueColumn = 11;
constexpr int kLatchColumn = 7;
constexpr int kNumberedLinesMax = 30;

QString columnCut(const QString &reply, const QString &name, int column, int endFrom)
{
    const int start = findText(reply, name) + column;
    const int end = findText(endFrom, reply, kCr);
    return trimBlanks(midText(reply, start, end - start));
}

} // namespace

QString cutFixedColumn(const QString &reply, const QString &name)
{
    return columnCut(reply, name, kValueColumn, findText(reply, name));
}

QString cutFixedColumnEndingFrom(const QString &reply, const QString &name, int endFrom)
{
    return columnCut(reply, name, kValueColumn, endFrom);
}

QString cutLatch(const QString &reply, const QString &name)
{
    return columnCut(reply, name, kLatchColumn, findText(reply, name));
}

QString cutEqualsSign(const QString &reply, const QString &name)
{
    const int equals = findText(findText(reply, name), reply, QStringLiteral("="));
    const int end = findText(equals, reply, kCr);
    return trimBlanks(midText(reply, equals + 1, end - equals - 1));
}

QString cutHexPair(const QString &reply, const QString &name)
{
    const int end = findText(findText(reply, name), reply, kCr);
    return trimBlanks(midText(reply, end - 2, 2));
}

void cutNumberedLines(const QString &reply, QStringList &lines)
{
    int position = 1;
    for (int number = 1; number <= kNumberedLinesMax; ++number) {
        const int begin = findText(position, reply, QString::number(number));
        if (begin == 0)
            return;
        const int end = findText(begin, reply, kCr);
        lines.append(trimBlanks(midText(reply, begin, end - begin)));
        position = end;
    }
}
