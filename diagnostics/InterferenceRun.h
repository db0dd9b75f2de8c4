#pragma once

#include <QString>
#include <QStringList>
#include <functional>

class ModemSession;

// The rows of the interference test's list and report, with the time T and date D as the system
// writes them and N the report number. The two marker rows start one blank apart on purpose.
namespace InterferenceRows {
QString start(const QString &time, const QString &date);
QString stop(const QString &time, const QString &date);
QString data(int number, const QString &value, const QString &time, const QString &date);
} // namespace InterferenceRows

// The thresholds offered, in microvolts, as the list shows them ("3uV" first), and the level of one.
QStringList thresholdChoices();
qint16 thresholdFromChoice(const QString &choice);
// The one reading of a pass: the text between the first comma of the input and the next; empty
// without a second comma.
QString interferenceReading(const QString &input);

// The listening test without its screen: the connected modem streams its meter with the squelch
// open, and every reading at or above the threshold becomes a row. The screen follows it through the
// hooks and sets the stop flags.
class InterferenceRun
{
public:
    explicit InterferenceRun(ModemSession &session) : m_session(session) {}

    // The listening loop, until StopLoop. A failure inside it shows the box, asks for the stop and
    // ends without TestDone.
    void RunTesting();
    void StopTest();
    // The stop row, the meter off and the squelch of the modem under test back.
    void finish(const QString &squelchText);
    // The report's block, by AddData lines.
    QStringList reportLines() const;

    qint16 Threshold = 0;
    bool StopLoop = false;
    bool StopRequested = false;
    bool Restart = false;
    bool TestDone = false;
    // The number of the next row, kept from one run to the next for the life of the program.
    static inline qint32 ReportNumber = 0;
    QString ReportText;
    QString LastReading = QStringLiteral("0");
    QStringList rows; // the list lstRSS

    std::function<void(const QString &value)> valueShown;
    std::function<void(const QString &row)> rowAdded;
    // The loop has ended: the form unloads itself.
    std::function<void()> ended;

private:
    void listen();
    void addRow(const QString &row);

    ModemSession &m_session;
};
