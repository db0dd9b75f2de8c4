#pragma once

#include "LinkMeasures.h"

#include <QString>
#include <QStringList>
#include <array>
#include <functional>

class ModemSession;

// One of the six repeater sites of a network: its name and its address or route.
struct RepeaterRow
{
    QString name;
    QString address;
    bool operator==(const RepeaterRow &) const = default;
};
inline constexpr int kRepeaterRows = 6;
using RepeaterRows = std::array<RepeaterRow, kRepeaterRows>;

// The lines of a repeater configuration file (.nvr): "name:address" for each of the six rows, ":" for
// an empty one. The file is written whole like a program file, so it ends in one more line end.
QStringList repeaterConfigLines(const RepeaterRows &rows);
// The rows a file's lines give, in order: the line ":" is skipped without using up a row, so the rows
// close up; a line is split at its first colon, and a line without one is passed over. A seventh row
// has no place and is passed over too.
QList<RepeaterRow> repeaterRowsFromLines(const QStringList &lines);

// What a save may write: the rows with the unnamed ones named "Repeater " and the row number with its
// leading blank, or the box that refuses the save. The names given before a refusal stay given.
struct RepeaterSaveCheck
{
    RepeaterRows rows;
    QString faultText;
    bool exclamation = false;
};
RepeaterSaveCheck checkRepeaterSave(RepeaterRows rows);

// The rows as the test shows them: with the maintenance kit at the base every address runs through
// the base station, and an empty row becomes the base and a comma, hidden but no longer empty.
struct RepeaterSite
{
    RepeaterRow row;
    bool shown = false; // the address and the link status show
};
std::array<RepeaterSite, kRepeaterRows> repeaterSites(const RepeaterRows &rows, bool maintenanceKit,
                                                      const QString &base);

// The repeater site test: the connected modem, set to its factory defaults, opens a link to each
// site in turn until the first empty row, and a restart undoes the defaults at the end. Cancel of the
// progress dialog is not looked at: every row is tried.
class RepeaterSiteRun
{
public:
    RepeaterSiteRun(ModemSession &session, TestHooks hooks) : m_session(session), m_hooks(std::move(hooks)) {}
    void run(const RepeaterRows &rows);

    // A row's link was tried: up or down.
    std::function<void(int row, bool up)> linkShown;
    // The rows are done; the progress dialog goes before the restart.
    std::function<void()> rowsDone;

private:
    void tryLink(const RepeaterRow &row, int index);
    void send(const QByteArray &text);

    ModemSession &m_session;
    TestHooks m_hooks;
};

inline const QString kRepeaterFileFilter =
    QStringLiteral("Repeater Configurations (*.nvr)|*.nvr|Text (*.txt)|*.txt");
inline const QString kRepeaterSaveFilter = QStringLiteral("Repeater Configurations (*.nvr)|*.nvr|");
