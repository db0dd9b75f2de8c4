#include "PollingRows.h"

#include "AppError.h"
#include "TextRules.h"

namespace {

// The time and date columns: each right-aligned in a field of the given width.
QString stamp(int timeWidth, const QString &time, const QString &date)
{
    return blanks(timeWidth - time.size()) + time + blanks(10 - date.size()) + date;
}

QString numbered(int number)
{
    const QString n = QString::number(number);
    return blanks(6 - n.size()) + n;
}

// Half the address's length, rounded to the even one at a tie: the address stands centred in its column.
int half(const QString &address)
{
    return int(roundHalfEven(address.size() / 2.0));
}

QString centred(const QString &address)
{
    return blanks(16 - address.size() + half(address)) + address;
}

QString twoDigits(int value)
{
    return QString::number(value).rightJustified(2, u'0');
}

QString clockText(int h, int m, int s)
{
    return twoDigits(h) + u':' + twoDigits(m) + u':' + twoDigits(s);
}
} // namespace

QString blanks(qsizetype count)
{
    if (count < 0)
        throw AppErrors::invalidProcedureCall();
    return QString(count, u' ');
}

namespace PollingRows {
QString start(const QString &time, const QString &date)
{
    return QStringLiteral(" Start Test") + stamp(47, time, date);
}

QString stop(const QString &time, const QString &date)
{
    return QStringLiteral(" Stop Test") + stamp(48, time, date);
}

QString pause(const QString &time, const QString &date)
{
    return QStringLiteral("     Pause Test") + blanks(91) + time + blanks(11) + date;
}

QString noResponse(int number, const QString &time, const QString &date)
{
    return numbered(number) + blanks(3) + QStringLiteral("No Response From Modem - RS-232 Error") +
           stamp(12, time, date);
}

QString linkDown(int number, const QString &address, const QString &time, const QString &date)
{
    return numbered(number) + centred(address) + blanks(11 - half(address)) + QStringLiteral("Link Down") +
           stamp(16, time, date);
}

QString linkUp(int number, const QString &address, const QString &time, const QString &date,
               const QString &outage)
{
    return numbered(number) + centred(address) + blanks(12 - half(address)) + QStringLiteral("Link Up") +
           stamp(17, time, date) + blanks(4) + outage;
}

QString retries(int number, const QString &address, const QString &retries, const QString &time,
                const QString &date)
{
    return numbered(number) + centred(address) + blanks(16 - half(address) - retries.size()) + retries +
           stamp(20, time, date);
}
} // namespace PollingRows

QString CalcDownTime(LinkRecord &link, double now)
{
    qint64 secs = roundToLong(now - link.DownStart);
    if (secs < 0) {
        secs = roundToLong(now + kSecondsPerDay - link.DownStart);
        link.DownStart = now;
    }
    const int h = int(secs / 3600);
    link.DownHours += h;
    const int m = int(secs % 3600 / 60);
    link.DownMinutes += m;
    if (link.DownMinutes > 59) {
        link.DownHours += 1;
        link.DownMinutes -= 60;
    }
    const int s = int(secs % 3600 % 60);
    link.DownSeconds += s;
    // The carry of the seconds may leave the minutes at 60; the totals have always stood so.
    if (link.DownSeconds > 59) {
        link.DownMinutes += 1;
        link.DownSeconds -= 60;
    }
    link.DownText = clockText(link.DownHours, link.DownMinutes, link.DownSeconds);
    return clockText(h, m, s);
}

QString totalsRow(const QString &address, const LinkRecord &link)
{
    const QString x = QString::number(link.Transmissions);
    const QString y = QString::number(link.RetryTotal);
    return blanks(6 - address.size() + half(address)) + address + blanks(20 - x.size() - half(address)) + x +
           blanks(16 - y.size()) + y + blanks(16) + link.DownText;
}
