#pragma once

#include <QString>

// count blanks, the gaps of a report row's fixed columns; a negative count throws "Invalid procedure
// call or argument".
QString blanks(qsizetype count);

// The rows of the polling test's list and report, fixed-width texts with the time T and date D as the
// system writes them. N is the report number, A the address row, C the retries text. A column that
// would need a negative count of blanks throws "Invalid procedure call or argument".
namespace PollingRows {
QString start(const QString &time, const QString &date);
QString stop(const QString &time, const QString &date);
QString pause(const QString &time, const QString &date);
QString noResponse(int number, const QString &time, const QString &date);
QString linkDown(int number, const QString &address, const QString &time, const QString &date);
QString linkUp(int number, const QString &address, const QString &time, const QString &date,
               const QString &outage);
QString retries(int number, const QString &address, const QString &retries, const QString &time,
                const QString &date);
} // namespace PollingRows

// The clock, seconds since midnight, starts again after this many.
inline constexpr int kSecondsPerDay = 86400;

// What the test knows of one address's link, and its totals.
struct LinkRecord
{
    bool LinkUp = true;
    double DownStart = 0; // seconds since midnight when the open outage began, 0 when none is open
    int DownHours = 0, DownMinutes = 0, DownSeconds = 0;
    QString DownText = QStringLiteral("00:00:00");
    qint64 Transmissions = 0;
    qint64 RetryTotal = 0;
};

// Adds the outage up to now (seconds since midnight) to the link's totals and gives its length as
// text. An outage across midnight counts from its start to the turn of the day and on, and restarts
// its clock at now.
QString CalcDownTime(LinkRecord &link, double now);

// The totals row of the report for one address.
QString totalsRow(const QString &address, const LinkRecord &link);
