#include "PollingRun.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "CommControl.h"
#include "DiagnosticReport.h"
#include "ModemSession.h"
#include "ReplyCut.h"
#include "TextRules.h"
#include "TimeSource.h"

#include <cmath>

namespace {
using namespace std::chrono_literals;
constexpr int kAckPasses = 160; // of 100 ms: at most 16 seconds for the acknowledgement
constexpr double kAckPassProgress = 0.875;
constexpr int kSummaryRows = 8;
// A pass over an empty address list still lets events run, so the stop controls are heard.
constexpr auto kEmptyPassWait = 100ms;
const QByteArray kCtrlC(1, '\x03');
} // namespace

PollingRun::PollingRun(ModemSession &session, std::function<QStringList()> addresses)
    : m_session(session), m_addresses(std::move(addresses))
{
    links.resize(size_t(m_addresses().size()));
}

void PollingRun::send(const QByteArray &text)
{
    ignoreErrors([&] { m_session.sendText(text, ModemSession::Way::OneWrite); });
}

bool PollingRun::waitFor(const char *text, int ms)
{
    return m_session.WaitForReply(QByteArray(text), ms);
}

void PollingRun::setProgress(double value)
{
    // The bar refuses a value beyond its end and keeps the one it had.
    if (value > 100)
        return;
    m_progress = value;
    if (progressChanged)
        progressChanged(int(value));
}

void PollingRun::addRow(const QString &row)
{
    rows.append(row);
    ReportText += QStringLiteral("\r\n") + row;
    if (rowAdded)
        rowAdded(row);
}

void PollingRun::ConfigureVarnel()
{
    Prompts &prompts = m_session.prompts();
    const bool ir = m_session.IrDongleActive;
    std::optional<BusyPointer> busy;
    if (ir)
        busy.emplace(prompts);
    const auto slowOrNot = ir ? ModemSession::Way::Auto : ModemSession::Way::OneWrite;
    attempt(prompts, [&] { m_session.sendText(kCtrlC, ModemSession::Way::OneWrite); });
    waitFor("CMD:", 500);
    if (ir)
        m_session.Comm1().Input();
    attempt(prompts, [&] { m_session.sendText("network\r", ModemSession::Way::OneWrite); });
    m_session.WaitForBytes(ir ? 20 : 10);
    attempt(prompts, [&] {
        SavedNetwork =
            cutFixedColumn(QString::fromLatin1(m_session.Comm1().Input()), QStringLiteral("NETWORK"));
    });
    if (!ir) {
        attempt(prompts, [&] { m_session.sendText("frack\r", ModemSession::Way::OneWrite); });
        m_session.WaitForBytes(10);
        // The frame ack time is cut at the same column as the network, though its name is shorter.
        attempt(prompts, [&] {
            SavedFrack =
                cutFixedColumn(QString::fromLatin1(m_session.Comm1().Input()), QStringLiteral("FRACK"));
        });
    }
    attempt(prompts, [&] { m_session.sendText("FA\r", slowOrNot); });
    waitFor("Unit Address", 500);
    attempt(prompts, [&] { m_session.sendText("xsf off:messform on:au off:echo off\r", slowOrNot); });
    waitFor("CMD:", 1000);
    attempt(prompts, [&] { m_session.sendText("network " + SavedNetwork.toLatin1() + '\r', slowOrNot); });
    waitFor("CMD:", ir ? 1000 : 500);
    if (!ir) {
        attempt(prompts, [&] { m_session.sendText("frack " + SavedFrack.toLatin1() + '\r', slowOrNot); });
        waitFor("CMD:", 500);
    }
}

void PollingRun::StartPolling()
{
    if (ReportNumber == 0)
        ReportNumber = 1;
    TimeSource &time = m_session.time();
    // A row that cannot be laid out is left out, as every failure inside the loop is passed over.
    if (ReportNumber == 1)
        ignoreErrors([&] { addRow(PollingRows::start(time.timeText(), time.dateText())); });
    // Every call starts the report again from the first row: a resume drops the rows before it.
    ReportText = rows.value(0);
    send("txs\r");
    waitFor("CMD:", 1000);
    bool left = false;
    do {
        const qsizetype count = m_addresses().size();
        if (count == 0)
            m_session.MsDelay(kEmptyPassWait);
        for (int i = 0; i < count && !left; ++i)
            left = !pollAddress(i);
    } while (!left && !StopLoop);
    if (!StopRequested)
        return;
    for (LinkRecord &link : links)
        if (!link.LinkUp)
            CalcDownTime(link, time.Timer());
    ignoreErrors([&] { addRow(PollingRows::stop(time.timeText(), time.dateText())); });
    StopRequested = false;
    if (stopped)
        stopped();
}

void PollingRun::StopPolling()
{
    StopLoop = true;
    StopRequested = true;
}

void PollingRun::pause(bool marked)
{
    if (marked) {
        StopLoop = false;
        StartPolling();
        return;
    }
    StopLoop = true;
    TimeSource &time = m_session.time();
    ignoreErrors([&] { addRow(PollingRows::pause(time.timeText(), time.dateText())); });
}

PollingRun::Prompt PollingRun::promptCheck()
{
    send(kCtrlC);
    if (!waitFor("CMD:", 3000)) {
        TimeSource &time = m_session.time();
        ignoreErrors(
            [&] { addRow(PollingRows::noResponse(ReportNumber, time.timeText(), time.dateText())); });
        ++ReportNumber;
        SkipNextPoll = true;
        return Prompt::Silent;
    }
    if (SkipNextPoll) {
        // One poll is given up, so that the modem's recovery is not taken for an event of the link.
        SkipNextPoll = false;
        return Prompt::Recovered;
    }
    return Prompt::Answered;
}

bool PollingRun::pollAddress(int index)
{
    const QString row = m_addresses().value(index);
    // A row added while the test runs has no totals: what it would count is lost.
    LinkRecord spare;
    LinkRecord &link = size_t(index) < links.size() ? links[size_t(index)] : spare;
    setProgress(5);
    if (pollingAddress)
        pollingAddress(row);
    setProgress(10);
    if (promptCheck() == Prompt::Recovered)
        return showState(index, row, link), true;
    send("CONN " + row.toLatin1() + '\r');
    setProgress(15);
    const bool connected = waitFor("*", 2000);
    setProgress(20);
    if (!connected) {
        linkDownActions(link, row);
        setProgress(75);
        return showState(index, row, link), true;
    }
    if (StopLoop)
        return false;
    send(TestPacket.toLatin1() + '\r');
    setProgress(25);
    if (StopLoop)
        return false;
    bool acknowledged = false, failed = false;
    for (int pass = 0; pass < kAckPasses && !acknowledged && !failed; ++pass) {
        m_session.WaitForReplyPolled(QByteArrayLiteral("*"), 100, acknowledged, failed);
        if (!acknowledged && !failed)
            setProgress(m_progress + kAckPassProgress);
    }
    if (failed) {
        linkDownActions(link, row);
        setProgress(75);
    } else if (acknowledged && link.LinkUp) {
        setProgress(95);
        if (StopLoop)
            return false;
        if (promptCheck() == Prompt::Recovered)
            return showState(index, row, link), true;
        send("TXS\r");
        bool ok = false;
        m_session.WaitForBytesOk(20, ok);
        setProgress(97);
        if (StopLoop)
            return false;
        readRetries(link, row);
        setProgress(99);
    } else if (acknowledged) {
        recover(link, row);
    } else {
        setProgress(99);
    }
    showState(index, row, link);
    return true;
}

void PollingRun::readRetries(LinkRecord &link, const QString &row)
{
    const QString reply = QString::fromLatin1(m_session.Comm1().Input());
    QString retries;
    ignoreErrors([&] {
        const int start = findText(reply, QStringLiteral("Retries")) + 10;
        retries = trimBlanks(midText(reply, start, findText(start, reply, QStringLiteral("\r")) - start));
    });
    const double value = numericValue(retries);
    ++link.Transmissions;
    if (value > 0) {
        link.RetryTotal += qint64(value);
        TimeSource &time = m_session.time();
        ignoreErrors([&] {
            addRow(PollingRows::retries(ReportNumber, row, retries, time.timeText(), time.dateText()));
        });
        ++ReportNumber;
    }
}

void PollingRun::recover(LinkRecord &link, const QString &row)
{
    TimeSource &time = m_session.time();
    const QString outage = CalcDownTime(link, std::floor(time.Timer()));
    ignoreErrors(
        [&] { addRow(PollingRows::linkUp(ReportNumber, row, time.timeText(), time.dateText(), outage)); });
    ++ReportNumber;
    link.DownStart = 0;
    m_session.prompts().Beep();
    if (promptCheck() == Prompt::Recovered)
        return;
    // The retries of the recovering poll are not counted: the answer is left unread.
    send("TXS\r");
    link.LinkUp = true;
}

void PollingRun::linkDownActions(LinkRecord &link, const QString &row)
{
    if (link.LinkUp) {
        TimeSource &time = m_session.time();
        ignoreErrors(
            [&] { addRow(PollingRows::linkDown(ReportNumber, row, time.timeText(), time.dateText())); });
        ++ReportNumber;
        if (link.DownStart == 0) {
            link.DownStart = time.Timer();
            m_session.prompts().Beep();
        } else {
            CalcDownTime(link, time.Timer());
        }
    }
    link.LinkUp = false;
}

void PollingRun::showState(int index, const QString &row, const LinkRecord &link)
{
    setProgress(100);
    marks.append({m_session.time().Timer(), index, row, link.LinkUp});
    if (!link.LinkUp) {
        send("TXS\r");
        bool ok = false;
        m_session.WaitForBytesOk(20, ok);
    }
    if (linkShown && index < kSummaryRows)
        linkShown(index, row, link);
}

QStringList PollingRun::reportLines(bool allReports) const
{
    const QString stars = QString(10, u'*');
    QStringList lines;
    if (allReports) {
        lines << QStringLiteral(" ") << asterisks()
              << QStringLiteral("Polling Diagnostic Results - Complete\r")
              << stars + QStringLiteral("  Reports  ") + stars
              << QStringLiteral(
                     "Report Number     Address         Retries         Time        Date     Down Time")
              << ReportText;
    } else {
        lines << asterisks() << QStringLiteral("Polling Diagnostic Results - Totals Only\r");
    }
    lines << stars + QStringLiteral("  Totals  ") + stars
          << QStringLiteral("   Address          Transmissions     Retries          Link Down Time");
    const QStringList addresses = m_addresses();
    for (size_t i = 0; i < links.size(); ++i) {
        attempt(m_session.prompts(), [&] { lines << totalsRow(addresses.value(qsizetype(i)), links[i]); });
    }
    lines << QStringLiteral("Test Packet Size = ") + QString::number(packetSize(TestPacket));
    return lines;
}

void PollingRun::restoreModems()
{
    Prompts &prompts = m_session.prompts();
    attempt(prompts, [&] { m_session.sendText(kCtrlC, ModemSession::Way::OneWrite); });
    waitFor("CMD:", 1000);
    for (const QString &row : m_addresses()) {
        attempt(prompts,
                [&] { m_session.sendText("setc " + row.toLatin1() + '\r', ModemSession::Way::OneWrite); });
        waitFor("CMD:", 500);
        attempt(prompts, [&] { m_session.sendText("disc\r", ModemSession::Way::OneWrite); });
        waitFor("CMD:", 500);
    }
    attempt(prompts, [&] { m_session.sendText("reset\r"); });
    waitFor("CMD:", 500);
}
