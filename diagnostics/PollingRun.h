#pragma once

#include "PollingRows.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

class ModemSession;

// What one poll found: the clock (seconds since midnight) when it ended, the row of the list it
// polled, and whether the link was up then.
struct PollMark
{
    double clock = 0;
    int index = 0;
    QString row;
    bool up = true;
};

// The polling diagnostic without its screen: the connected modem polls each test address in turn,
// for as long as the user lets it run, and the run keeps the list rows, the report text and the
// totals of every address. The screen follows it through the hooks and sets the stop flags.
class PollingRun
{
public:
    // addresses reads the test address list as it stands; the totals are sized for the rows it
    // holds now.
    PollingRun(ModemSession &session, std::function<QStringList()> addresses);

    // Prepares the connected modem once: known state, status messages on, echo off, and the
    // network identifier and frame ack time carried across the factory default.
    void ConfigureVarnel();
    // Polls until StopLoop; called again to resume after a pause.
    void StartPolling();
    void StopPolling();
    // The pause entry: a mark not set pauses, a mark set resumes.
    void pause(bool marked);
    // The report's block, by AddData lines: all rows and the totals, or the totals only. A totals
    // row that cannot be laid out shows the standard box and is left out.
    QStringList reportLines(bool allReports) const;
    // Clears the links left open towards each address and restarts the modem on its stored setup.
    void restoreModems();

    QString TestPacket;
    int ReportNumber = 0;
    QString ReportText;
    bool StopLoop = false;
    bool StopRequested = false;
    bool SkipNextPoll = false;
    QString SavedNetwork, SavedFrack;
    std::vector<LinkRecord> links;
    QStringList rows; // the list lstPolling
    QList<PollMark> marks;

    // What the screen shows.
    std::function<void(const QString &row)> rowAdded;
    std::function<void(int value)> progressChanged;
    std::function<void(const QString &row)> pollingAddress;
    std::function<void(int index, const QString &row, const LinkRecord &link)> linkShown;
    // The loop has ended on a stop: the form unloads itself.
    std::function<void()> stopped;

private:
    enum class Prompt { Answered, Silent, Recovered };
    // Leaves the loop when it returns false.
    bool pollAddress(int index);
    Prompt promptCheck();
    void linkDownActions(LinkRecord &link, const QString &row);
    void recover(LinkRecord &link, const QString &row);
    void readRetries(LinkRecord &link, const QString &row);
    void showState(int index, const QString &row, const LinkRecord &link);
    void addRow(const QString &row);
    void setProgress(double value);
    void send(const QByteArray &text);
    bool waitFor(const char *text, int ms);

    ModemSession &m_session;
    std::function<QStringList()> m_addresses;
    double m_progress = 0;
};

// The test packet's size on the air: the text and its carriage return.
inline int packetSize(const QString &testPacket)
{
    return int(testPacket.size()) + 1;
}
