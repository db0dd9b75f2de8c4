#include "RepeaterSites.h"

#include "AppError.h"
#include "DiagnosticReport.h"
#include "ModemSession.h"
#include "TimeSource.h"

namespace {
const QByteArray kCtrlC(1, '\x03');
const QString kEmptyRowLine = QStringLiteral(":");
} // namespace

QStringList repeaterConfigLines(const RepeaterRows &rows)
{
    QStringList lines;
    for (const RepeaterRow &row : rows)
        lines << row.name + u':' + row.address;
    return lines;
}

QList<RepeaterRow> repeaterRowsFromLines(const QStringList &lines)
{
    QList<RepeaterRow> rows;
    for (const QString &line : lines) {
        const qsizetype colon = line.indexOf(u':');
        if (line == kEmptyRowLine || colon < 0 || rows.size() == kRepeaterRows)
            continue;
        rows.append({line.left(colon), line.mid(colon + 1)});
    }
    return rows;
}

RepeaterSaveCheck checkRepeaterSave(RepeaterRows rows)
{
    if (rows[0].address.isEmpty())
        return {rows, QStringLiteral("Error:  The configuration needs at least one route address to save.")};
    for (int i = 0; i < kRepeaterRows; ++i) {
        RepeaterRow &row = rows[size_t(i)];
        if (row.name.contains(u':'))
            return {rows, QStringLiteral("Repeater Name Can Not Contain A Colon"), true};
        if (!row.address.isEmpty() && row.name.isEmpty())
            row.name = QStringLiteral("Repeater  ") + QString::number(i + 1);
    }
    return {rows, {}};
}

std::array<RepeaterSite, kRepeaterRows> repeaterSites(const RepeaterRows &rows, bool maintenanceKit,
                                                      const QString &base)
{
    std::array<RepeaterSite, kRepeaterRows> sites;
    for (size_t i = 0; i < sites.size(); ++i) {
        const RepeaterRow &row = rows[i];
        sites[i] = {row, !row.address.isEmpty()};
        if (maintenanceKit)
            sites[i].row.address = base + u',' + row.address;
    }
    return sites;
}

void RepeaterSiteRun::send(const QByteArray &text)
{
    ignoreErrors([&] { m_session.sendText(text, ModemSession::Way::OneWrite); });
}

void RepeaterSiteRun::run(const RepeaterRows &rows)
{
    TimeSource &time = m_session.time();
    m_hooks.addData(asterisks());
    m_hooks.addData(QStringLiteral("RTN Repeater Testing"));
    m_hooks.addData(testStartLine(time.timeText(), time.dateText()));
    m_hooks.addData(QStringLiteral("Link Status By Repeater Name and Address"));
    send("FA\r");
    m_session.WaitForReply(QByteArrayLiteral("CMD:"), 1000);
    int index = 0;
    for (const RepeaterRow &row : rows) {
        if (row.address.isEmpty())
            break;
        tryLink(row, index++);
    }
    if (rowsDone)
        rowsDone();
    // The restart ends the factory defaults: nothing of them was saved.
    send("RESET\r");
    m_session.WaitForReply(QByteArrayLiteral("CMD:"), 1000);
    m_hooks.addData(testStopLine(time.timeText(), time.dateText()));
}

void RepeaterSiteRun::tryLink(const RepeaterRow &row, int index)
{
    m_hooks.progress(1);
    m_hooks.progress(10);
    m_hooks.address(row.address);
    m_hooks.progress(30);
    m_hooks.status(QStringLiteral("Connecting to Repeater Site..."));
    send("conn " + row.address.toLatin1() + '\r');
    const bool up = m_session.WaitForReply(QByteArrayLiteral("*"), 500);
    m_hooks.progress(75);
    m_hooks.status(up ? QStringLiteral("Link Established") : QStringLiteral("Failed to Link"));
    m_hooks.addData(row.name + QStringLiteral(" - Add ") + row.address +
                    (up ? QStringLiteral("  = Link Up") : QStringLiteral("  = Link Down")));
    send(kCtrlC);
    if (linkShown)
        linkShown(index, up);
    m_hooks.progress(100);
    if (up) {
        send(kCtrlC + "Disc\r");
        m_session.WaitForReply(QByteArrayLiteral("CMD:"), 1000);
    }
}
