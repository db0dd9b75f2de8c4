#include "InterferenceRun.h"

#include "AppError.h"
#include "CommControl.h"
#include "DiagnosticReport.h"
#include "ModemSession.h"
#include "PollingRows.h"
#include "Prompts.h"
#include "TextRules.h"
#include "TimeSource.h"

namespace {
constexpr int kThresholds[] = {3, 6, 10, 20, 35, 50, 75, 100, 200, 400, 800};

QString stamp(int timeWidth, const QString &time, const QString &date)
{
    return blanks(timeWidth - time.size()) + time + blanks(18 - date.size()) + date;
}
} // namespace

namespace InterferenceRows {
QString start(const QString &time, const QString &date)
{
    return blanks(2) + QStringLiteral("Start Test") + stamp(40, time, date);
}

QString stop(const QString &time, const QString &date)
{
    return blanks(3) + QStringLiteral("Stop Test") + stamp(40, time, date);
}

QString data(int number, const QString &value, const QString &time, const QString &date)
{
    const QString n = QString::number(number);
    return blanks(8 - n.size()) + n + blanks(19 - value.size()) + value + stamp(25, time, date);
}
} // namespace InterferenceRows

QStringList thresholdChoices()
{
    QStringList choices;
    for (const int uv : kThresholds)
        choices << QString::number(uv) + QStringLiteral("uV");
    return choices;
}

qint16 thresholdFromChoice(const QString &choice)
{
    return roundToInteger(numericValue(leftText(choice, int(choice.size()) - 2)));
}

QString interferenceReading(const QString &input)
{
    const int first = findText(input, QStringLiteral(","));
    const int second = findText(first + 1, input, QStringLiteral(","));
    return second ? midText(input, first + 1, second - first - 1) : QString();
}

void InterferenceRun::addRow(const QString &row)
{
    rows << row;
    if (rowAdded)
        rowAdded(row);
}

void InterferenceRun::RunTesting()
{
    try {
        listen();
    } catch (const AppError &) {
        m_session.prompts().MsgBox(QStringLiteral("An Error Has Occured During Testing"));
        StopTest();
        if (ended)
            ended();
    }
}

void InterferenceRun::listen()
{
    if (Restart)
        ReportNumber = 1;
    m_session.sendText("RXS ON\r", ModemSession::Way::OneWrite);
    m_session.WaitForReply(QByteArrayLiteral("CMD:"), 500);
    m_session.sendText("squelch 0:latch\r", ModemSession::Way::OneWrite);
    if (ReportNumber == 0)
        ReportNumber = 1;
    TimeSource &time = m_session.time();
    addRow(InterferenceRows::start(time.timeText(), time.dateText()));
    ReportText = rows.first();
    do {
        if (valueShown)
            valueShown(LastReading);
        const QString reading = interferenceReading(QString::fromLatin1(m_session.Comm1().Input()));
        if (numericValue(reading) >= Threshold) {
            LastReading = reading;
            if (valueShown)
                valueShown(reading);
            const QString row =
                InterferenceRows::data(ReportNumber, reading, time.timeText(), time.dateText());
            addRow(row);
            ReportText += QStringLiteral("\r\n") + row;
            ++ReportNumber;
        }
        m_session.MsDelay(2000);
    } while (!StopLoop);
    TestDone = true;
    if (ended)
        ended();
}

void InterferenceRun::StopTest()
{
    StopRequested = true;
    StopLoop = true;
}

void InterferenceRun::finish(const QString &squelchText)
{
    TimeSource &time = m_session.time();
    const QString row = InterferenceRows::stop(time.timeText(), time.dateText());
    addRow(row);
    ReportText += QStringLiteral("\r\n") + row;
    ignoreErrors([&] { m_session.sendText("RXS OFF\r", ModemSession::Way::OneWrite); });
    m_session.WaitForReply(QByteArrayLiteral("CMD:"), 1000);
    ignoreErrors([&] {
        m_session.sendText("squelch " + squelchText.toLatin1() + ":latch\r", ModemSession::Way::OneWrite);
    });
}

QStringList InterferenceRun::reportLines() const
{
    return {asterisks(), asterisks(5) + QStringLiteral("Interference Testing Results") + asterisks(5) + u'\r',
            blanks(1) + QStringLiteral("Report Number") + blanks(10) + QStringLiteral("Value") + blanks(15) +
                QStringLiteral("Time") + blanks(16) + QStringLiteral("Date"),
            ReportText};
}
