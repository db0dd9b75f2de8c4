#include "Console.h"

#include "CommandTable.h"
#include "Links.h"
#include "Modem.h"

namespace sim {

namespace {

using namespace std::chrono_literals;

constexpr char kBackspace = 8;
constexpr char kDelete = 127;
constexpr int kMaxLine = 255;
// How long the interpreter thinks before it starts to answer.
constexpr auto kThinkTime = 25ms;

} // namespace

void Console::take(char c)
{
    if (c == kCtrlC) {
        m_modem.interrupt();
        return;
    }
    if (m_busy) {
        m_pending.append(c);
        return;
    }
    const std::optional<QString> line = edit(c);
    if (!line)
        return;
    m_busy = true;
    if (m_modem.mode() == Modem::Mode::Remote)
        m_modem.links().sendRemoteLine(*line);
    else
        runLine(*line);
}

std::optional<QString> Console::edit(char c)
{
    const bool echo = m_modem.value(QStringLiteral("ECHO")) == QLatin1String("ON");
    if (c == '\r') {
        if (echo)
            m_modem.send(m_modem.lineEnd());
        const QString line = QString::fromLatin1(m_line);
        m_line.clear();
        return line;
    }
    if (c == '\n' || c == 0)
        return std::nullopt;
    if (c == kBackspace || c == kDelete) {
        if (!m_line.isEmpty()) {
            m_line.chop(1);
            if (echo)
                m_modem.send("\b \b");
        }
        return std::nullopt;
    }
    if (m_line.size() >= kMaxLine)
        return std::nullopt;
    m_line.append(c);
    if (echo)
        m_modem.send(QByteArray(1, c));
    return std::nullopt;
}

void Console::runLine(const QString &line)
{
    const Reply reply = runCommandLine(m_modem, line, false, kThinkTime);
    m_modem.afterUnlessInterrupted(reply.delay + m_modem.replyDelay(), [this, reply] {
        m_modem.send(reply.text);
        if (reply.then)
            reply.then();
        if (reply.prompt) {
            m_modem.send("CMD:");
            done();
        }
    });
}

void Console::done()
{
    m_busy = false;
    const QByteArray pending = m_pending;
    m_pending.clear();
    for (char c : pending)
        m_modem.takeByte(c);
}

void Console::clear()
{
    m_line.clear();
    m_pending.clear();
    m_busy = false;
}

} // namespace sim
