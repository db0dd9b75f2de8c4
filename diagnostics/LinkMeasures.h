#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

class ModemSession;

// What a test shows while it runs and where its lines go: the progress dialog's fields, the report,
// and the flag that Cancel clears.
struct TestHooks
{
    std::function<bool()> running;
    std::function<void(const QString &line)> addData;
    std::function<void(const QString &text)> status;
    std::function<void(const QString &row)> address;
    std::function<void(double value)> progress;
};

// The figures one address gave in a run, in the order they were taken.
struct AddressSamples
{
    QString row;
    QList<double> values;
};

// The highest sample of the meter's stream as decimal text: only what stands between two commas
// counts, so fewer than two commas give "0".
QString FindHighestValue(const QString &samples);
// The samples FindHighestValue looks at, each by its numeric value.
QList<double> meterSamples(const QString &samples);
// The band in microvolts that a highest value stands for; a value without a band stays as it is.
QString signalBand(const QString &value);

// The mean of ten quality samples, each the number before a "]", read from the start again when
// the text runs out.
double AverageQualityValue(const QString &raw);
// The ten turns of that mean, each the value it added.
QList<double> qualityTurns(const QString &raw);
// "Good Data Quality" from 53 up, "Poor Data Quality" below.
QString qualityVerdict(int quality);

// Pumps events until the clock (seconds since midnight) stands at its reading now plus seconds.
void WaitSeconds(ModemSession &session, double seconds);

// The received signal strength test over the rows of the address list: each direct address is keyed
// by remote programming, the connected modem listens with its squelch open for 15 seconds, and the
// highest reading goes to the report as a band. Both modems are put back after each address.
class SignalStrengthRun
{
public:
    SignalStrengthRun(ModemSession &session, TestHooks hooks) : m_session(session), m_hooks(std::move(hooks))
    {}
    // From the start line to the stop line of the report's block.
    void run(const QStringList &rows, const QString &modelName);
    const QList<AddressSamples> &samples() const { return m_samples; }

private:
    void measure(const QString &row, const QString &modelName);
    void send(const QByteArray &text);
    bool waitFor(const char *text, int ms);
    void setProgress(double value);

    ModemSession &m_session;
    TestHooks m_hooks;
    double m_progress = 0;
    QString m_savedSquelch, m_savedAsquelch;
    QList<AddressSamples> m_samples;
};

// The data quality test: the connected modem in its data quality mode connects to each direct
// address and sends ten empty lines; the mean of the quality samples it prints grades the link.
class DataQualityRun
{
public:
    DataQualityRun(ModemSession &session, TestHooks hooks) : m_session(session), m_hooks(std::move(hooks)) {}
    void run(const QStringList &rows);
    const QList<AddressSamples> &samples() const { return m_samples; }

private:
    void measure(const QString &row);
    void send(const QByteArray &text);
    void setProgress(double value);

    ModemSession &m_session;
    TestHooks m_hooks;
    double m_progress = 0;
    QList<AddressSamples> m_samples;
};

// The lines of the report's test blocks.
QString testStartLine(const QString &time, const QString &date);
QString testStopLine(const QString &time, const QString &date);
QString failedToConnectLine(const QString &row);
