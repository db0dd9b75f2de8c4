#include "PollingRows.h"
#include "Tables.h"

#include <QRegularExpression>
#include <QTest>

namespace {
const QString T = QStringLiteral("10:15:30");
const QString D = QStringLiteral("11/23/26");

// A row as laid out, "{n}" standing for n blanks.
QString expand(const char *layout)
{
    QString text = QString::fromLatin1(layout);
    const QRegularExpression blanks(QStringLiteral("\\{(\\d+)\\}"));
    for (auto m = blanks.match(text); m.hasMatch(); m = blanks.match(text))
        text.replace(m.capturedStart(), m.capturedLength(), QString(m.captured(1).toInt(), u' '));
    return text;
}

struct RowCase
{
    const char *name, *kind;
    int number;
    const char *address, *extra, *layout;
};
const RowCase kRows[] = {
    {"start", "start", 0, "", "", " Start Test{39}10:15:30{2}11/23/26"},
    {"stop", "stop", 0, "", "", " Stop Test{40}10:15:30{2}11/23/26"},
    {"pause, not aligned", "pause", 0, "", "", "     Pause Test{91}10:15:30{11}11/23/26"},
    {"no response", "none", 7, "", "", "{5}7{3}No Response From Modem - RS-232 Error{4}10:15:30{2}11/23/26"},
    {"link down, direct", "down", 12, "12", "", "{4}12{15}12{10}Link Down{8}10:15:30{2}11/23/26"},
    {"link down, route of 6", "down", 1, "5,7,12", "", "{5}1{13}5,7,12{8}Link Down{8}10:15:30{2}11/23/26"},
    {"link up, length 5 halves to 2", "up", 3, "1,2,3", "00:01:05",
     "{5}3{13}1,2,3{10}Link Up{9}10:15:30{2}11/23/26{4}00:01:05"},
    {"retries, length 7 halves to 4", "retries", 100, "1,2,3,4", "3",
     "{3}100{13}1,2,3,4{11}3{12}10:15:30{2}11/23/26"},
    {"retries, length 3 halves to 2", "retries", 2, "200", "12", "{5}2{15}200{12}12{12}10:15:30{2}11/23/26"},
    {"number too wide", "none", 1234567, "", "", "error 5"},
    {"totals", "totals", 0, "12", "10 3", "{5}12{17}10{15}3{16}00:01:05"},
    {"totals of a long route", "totals", 0, "40,41,42,254", "0 0", "{0}40,41,42,254{13}0{15}0{16}00:01:05"},
    {"totals of 13 characters", "totals", 0, "1,2,3,4567890", "0 0", "error 5"},
};

QString row(const RowCase &c)
{
    const QString kind = QLatin1String(c.kind), a = QLatin1String(c.address), x = QLatin1String(c.extra);
    if (kind == u"start")
        return PollingRows::start(T, D);
    if (kind == u"stop")
        return PollingRows::stop(T, D);
    if (kind == u"pause")
        return PollingRows::pause(T, D);
    if (kind == u"none")
        return PollingRows::noResponse(c.number, T, D);
    if (kind == u"down")
        return PollingRows::linkDown(c.number, a, T, D);
    if (kind == u"up")
        return PollingRows::linkUp(c.number, a, T, D, x);
    if (kind == u"retries")
        return PollingRows::retries(c.number, a, x, T, D);
    LinkRecord link;
    link.Transmissions = x.section(u' ', 0, 0).toInt();
    link.RetryTotal = x.section(u' ', 1).toInt();
    link.DownText = QStringLiteral("00:01:05");
    return totalsRow(a, link);
}

// Totals before, the outage's start and now in seconds since midnight; the outage, the totals after,
// and where the outage's clock stands afterwards.
struct DownCase
{
    const char *name;
    int hours, minutes, seconds;
    double start, now;
    const char *outage, *totals;
    double startAfter;
};
const DownCase kDowns[] = {
    {"65 seconds", 0, 0, 0, 100, 165, "00:01:05", "00:01:05", 100},
    {"rounded to the second", 0, 0, 0, 100.4, 165, "00:01:05", "00:01:05", 100.4},
    {"half a second to the even one", 0, 0, 0, 100.5, 165, "00:01:04", "00:01:04", 100.5},
    {"across midnight", 0, 0, 0, 86390, 10, "00:00:20", "00:00:20", 10},
    {"hours", 1, 2, 3, 0, 10925, "03:02:05", "04:04:08", 0},
    {"minutes carry into hours", 0, 59, 30, 0, 100, "00:01:40", "01:01:10", 0},
    {"seconds reach a minute", 0, 0, 30, 0, 30, "00:00:30", "00:01:00", 0},
    {"seconds carry leaves 60 minutes", 0, 59, 30, 0, 40, "00:00:40", "00:60:10", 0},
    {"beyond 99 hours", 99, 0, 0, 0, 3600, "01:00:00", "100:00:00", 0},
};
} // namespace

class PollingRowsTest : public QObject
{
    Q_OBJECT
private slots:
    void rows_data() { addRows(kRows); }
    void rows()
    {
        const RowCase &c = fetchRow(kRows);
        QCOMPARE(outcome([&] { return row(c); }), expand(c.layout));
    }

    void downTime_data() { addRows(kDowns); }
    void downTime()
    {
        const DownCase &c = fetchRow(kDowns);
        LinkRecord link;
        link.DownHours = c.hours;
        link.DownMinutes = c.minutes;
        link.DownSeconds = c.seconds;
        link.DownStart = c.start;
        QCOMPARE(CalcDownTime(link, c.now), QLatin1String(c.outage));
        QCOMPARE(link.DownText, QLatin1String(c.totals));
        QCOMPARE(link.DownStart, c.startAfter);
    }
};

QTEST_GUILESS_MAIN(PollingRowsTest)
#include "PollingRowsTest.moc"
