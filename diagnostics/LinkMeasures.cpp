#include "LinkMeasures.h"

#include "AppError.h"
#include "CommControl.h"
#include "DiagnosticReport.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "TextRules.h"
#include "TimeSource.h"

#include <cmath>

namespace {
const QByteArray kCtrlC(1, '\x03');
constexpr int kMeterSeconds = 15;
constexpr int kQualityLines = 10;
constexpr int kGoodQuality = 53;
const QString kThreeBlanks = QStringLiteral("   ");

// Runs the statement and gives what it returned, or fallback when it failed.
template <typename Statement> auto orElse(Statement &&statement, decltype(statement()) fallback)
{
    try {
        return statement();
    } catch (const AppError &) {
        return fallback;
    }
}

// The samples between commas, as FindHighestValue walks them: each text between a comma and the next.
QStringList betweenCommas(const QString &samples)
{
    QStringList fields;
    int start = 1;
    for (;;) {
        const int first = findText(start, samples, QStringLiteral(","));
        const int second = findText(first + 1, samples, QStringLiteral(","));
        if (second == 0)
            return fields;
        fields << midText(samples, first + 1, second - first - 1);
        start = second;
    }
}

// The value one turn of the quality mean adds, and where the next turn searches from.
double qualityTurn(const QString &raw, int &position)
{
    const int bracket = findText(position, raw, QStringLiteral("]"));
    position = bracket + 1;
    // A missing bracket, or one too near the front, leaves nothing to cut: the turn adds nothing.
    if (bracket < 4)
        return 0;
    QString cut = midText(raw, bracket - 3, 3);
    while (cut.contains(u','))
        cut = cut.mid(1);
    return numericValue(cut);
}
} // namespace

QString FindHighestValue(const QString &samples)
{
    double highest = 0;
    for (const QString &sample : betweenCommas(samples))
        if (const double value = numericValue(sample); value > highest)
            highest = roundHalfEven(value);
    return numberText(highest);
}

QList<double> meterSamples(const QString &samples)
{
    QList<double> values;
    for (const QString &sample : betweenCommas(samples))
        values << orElse([&] { return numericValue(sample); }, 0.0);
    return values;
}

QString signalBand(const QString &value)
{
    // In the order they are compared; no band text equals a later key, so the first match decides.
    static const std::pair<const char *, const char *> bands[] = {
        {"11", "11-17"},
        {"17", "17-23"},
        {"23", "23-25"},
        {"25", "25-28"},
        {"28", "28-32"},
        {"32", "32-40"},
        {"40", "40-50"},
        {"50", "50-70"},
        {"70", "70-90"},
        {"3", "3-6"},
        {"6", "6-10"},
        {"10", "10-20"},
        {"20", "20-35"},
        {"35", "35-50"},
        {"75", "75-100"},
        {"100", "100-200"},
        {"200", "200-400"},
        {"90", "90 or Greater"},
        {"400", "400 or Greater"},
    };
    for (const auto &[key, band] : bands)
        if (value == QLatin1String(key))
            return QLatin1String(band);
    return value;
}

double AverageQualityValue(const QString &raw)
{
    double total = 0;
    for (const double turn : qualityTurns(raw))
        total += turn;
    return total / kQualityLines;
}

QList<double> qualityTurns(const QString &raw)
{
    QList<double> turns;
    int position = 1;
    for (int i = 0; i < kQualityLines; ++i)
        turns << qualityTurn(raw, position);
    return turns;
}

QString qualityVerdict(int quality)
{
    return quality < kGoodQuality ? QStringLiteral("Poor Data Quality") : QStringLiteral("Good Data Quality");
}

void WaitSeconds(ModemSession &session, double seconds)
{
    TimeSource &time = session.time();
    const double until = time.Timer() + seconds;
    // The clock restarts at midnight: a wait across it lasts until the reading comes round again.
    for (double now = time.Timer(); now < until; now = time.Timer())
        time.MsDelay(int(std::ceil((until - now) * 1000)));
}

QString testStartLine(const QString &time, const QString &date)
{
    return QStringLiteral("Test Start=  ") + time + kThreeBlanks + date;
}

QString testStopLine(const QString &time, const QString &date)
{
    return QStringLiteral("Test Stop=  ") + time + kThreeBlanks + date;
}

QString failedToConnectLine(const QString &row)
{
    return QStringLiteral("Address ") + row + QStringLiteral("  = Failed to Connect");
}

void SignalStrengthRun::send(const QByteArray &text)
{
    attempt(m_session.prompts(), [&] { m_session.sendText(text, ModemSession::Way::OneWrite); });
}

bool SignalStrengthRun::waitFor(const char *text, int ms)
{
    return m_session.WaitForReply(QByteArray(text), ms);
}

void SignalStrengthRun::setProgress(double value)
{
    m_progress = value;
    if (m_hooks.progress)
        m_hooks.progress(value);
}

void SignalStrengthRun::run(const QStringList &rows, const QString &modelName)
{
    TimeSource &time = m_session.time();
    m_hooks.addData(asterisks());
    m_hooks.addData(QStringLiteral("Received Signal Strength Testing"));
    m_hooks.addData(testStartLine(time.timeText(), time.dateText()));
    Prompts &prompts = m_session.prompts();
    double squelch = 0, asquelch = 0;
    attempt(prompts, [&] { ReadSquelch(m_session, squelch); });
    attempt(prompts, [&] { ReadAsquelch(m_session, asquelch); });
    m_savedSquelch = numberText(squelch);
    attempt(prompts, [&] { m_savedAsquelch = QString::number(roundToInteger(asquelch)); });
    for (const QString &row : rows) {
        setProgress(1);
        if (!m_hooks.running())
            break;
        setProgress(10);
        measure(row, modelName);
        setProgress(100);
    }
    m_hooks.addData(testStopLine(time.timeText(), time.dateText()));
}

void SignalStrengthRun::measure(const QString &row, const QString &modelName)
{
    setProgress(15);
    if (row.contains(u','))
        return;
    m_hooks.address(row);
    m_hooks.status(QStringLiteral("Remote Programming Destination Varnel..."));
    setProgress(20);
    const QByteArray program = "prog " + row.toLatin1() + '\r';
    send(program);
    if (!waitFor("RPG:", 500)) {
        setProgress(50);
        m_hooks.status(QStringLiteral("Failed to Link"));
        m_hooks.addData(failedToConnectLine(row));
        send(kCtrlC);
        return;
    }
    setProgress(30);
    m_hooks.status(QStringLiteral("Sending Instructions to Remote Varnel..."));
    send("radio on\r");
    setProgress(40);
    waitFor("RPG:", 500);
    send(kCtrlC);
    waitFor("CMD:", 500);
    // The spread-spectrum unit listens with its noise squelch shut; the others with it at 100.
    send(modelName == QLatin1String("Q40Z") ? "asquelch 0:latch\r" : "asquelch 100:latch\r");
    waitFor("CMD:", 500);
    send("squelch 0:latch\r");
    waitFor("CMD:", 500);
    setProgress(50);
    send("RXS ON\r");
    m_hooks.status(QStringLiteral("Measuring Recieve Signal Strength.  Please Stand By..."));
    for (int second = 0; second < kMeterSeconds; ++second) {
        setProgress(m_progress + 1.5);
        WaitSeconds(m_session, 1);
    }
    const QString samples = QString::fromLatin1(m_session.Comm1().Input());
    send("rxs off\r");
    waitFor("CMD:", 500);
    m_hooks.status(QStringLiteral("Analyzing Signal Strength Values..."));
    setProgress(90);
    QString value;
    attempt(m_session.prompts(), [&] { value = FindHighestValue(samples); });
    m_samples.append({row, meterSamples(samples)});
    send("asquelch " + m_savedAsquelch.toLatin1() + ":latch\r");
    waitFor("CMD:", 500);
    send("squelch " + m_savedSquelch.toLatin1() + ":latch\r");
    waitFor("CMD:", 500);
    send(program);
    waitFor("RPG:", 12000);
    send("radio off\r");
    waitFor("RPG:", 1000);
    send(kCtrlC);
    waitFor("CMD:", 500);
    m_hooks.addData(QStringLiteral("Address ") + row + QStringLiteral("  = ") + signalBand(value) +
                    QStringLiteral(" \u00b5V"));
}

void DataQualityRun::send(const QByteArray &text)
{
    ignoreErrors([&] { m_session.sendText(text, ModemSession::Way::OneWrite); });
}

void DataQualityRun::setProgress(double value)
{
    m_progress = value;
    if (m_hooks.progress)
        m_hooks.progress(value);
}

void DataQualityRun::run(const QStringList &rows)
{
    TimeSource &time = m_session.time();
    m_hooks.addData(asterisks());
    m_hooks.addData(QStringLiteral("Data Quality Testing"));
    m_hooks.addData(testStartLine(time.timeText(), time.dateText()));
    m_hooks.addData(QStringLiteral("Average Data Quality By Address"));
    send("FA\r");
    m_session.WaitForReply(QByteArrayLiteral("Unit Address"), 500);
    send("DQ ON\r");
    m_session.WaitForReply(QByteArrayLiteral("CMD:"), 500);
    for (const QString &row : rows) {
        setProgress(1);
        if (!m_hooks.running())
            break;
        setProgress(10);
        if (!row.contains(u','))
            measure(row);
    }
    // The restart ends the factory state and the quality mode alike: nothing was saved.
    send("RESET\r");
    m_session.WaitForReply(QByteArrayLiteral("CMD:"), 500);
    m_hooks.addData(testStopLine(time.timeText(), time.dateText()));
}

void DataQualityRun::measure(const QString &row)
{
    m_hooks.address(row);
    setProgress(30);
    m_hooks.status(QStringLiteral("Connecting to Destination Varnel..."));
    send("conn " + row.toLatin1() + '\r');
    if (!m_session.WaitForReply(QByteArrayLiteral("*"), 500)) {
        setProgress(75);
        m_hooks.status(QStringLiteral("Failed to Link"));
        m_hooks.addData(failedToConnectLine(row));
        send(kCtrlC);
        setProgress(100);
        return;
    }
    setProgress(40);
    m_hooks.status(QStringLiteral("Receiving Data from Remote Varnel..."));
    for (int line = 0; line < kQualityLines; ++line) {
        setProgress(m_progress + 5);
        send("\r");
        m_session.MsDelay(100);
    }
    const QString raw = QString::fromLatin1(m_session.Comm1().Input());
    send(kCtrlC + "Disc\r");
    m_session.WaitForReply(QByteArrayLiteral("CMD:"), 500);
    m_hooks.status(QStringLiteral("Analyzing Signal Quality Values..."));
    qint16 quality = 0;
    ignoreErrors([&] { quality = roundToInteger(AverageQualityValue(raw)); });
    m_samples.append({row, qualityTurns(raw)});
    setProgress(95);
    m_hooks.addData(QStringLiteral("Address ") + row + QStringLiteral("  = ") + QString::number(quality) +
                    QStringLiteral("  (") + qualityVerdict(quality) + u')');
    setProgress(100);
}
