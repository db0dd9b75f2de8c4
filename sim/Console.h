#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace sim {

class Modem;

// Ctrl-C brings the prompt back in every mode of the unit.
inline constexpr char kCtrlC = 3;

// The serial console at "CMD:" and "RPG:": it edits the typed line and echoes it, takes Ctrl-C, and
// keeps what is typed while an answer is on its way until the prompt is back. A finished line runs
// on this unit's interpreter, or goes over the air when a remote programming link is open.
class Console
{
public:
    explicit Console(Modem &modem) : m_modem(modem) {}

    void take(char c);
    // The answer is out: what was typed meanwhile is taken now, in order.
    void done();
    // Forgets the line being typed and everything typed ahead.
    void clear();

private:
    // Returns the line when a carriage return ends it.
    std::optional<QString> edit(char c);
    void runLine(const QString &line);

    Modem &m_modem;
    QByteArray m_line;
    QByteArray m_pending; // typed while a command runs; sits in the receive buffer
    bool m_busy = false;
};

} // namespace sim
