#include "ScriptedModem.h"

#include "TimeSource.h"

ScriptedModem::ScriptedModem(MemoryCommControl &port, TimeSource &time) : m_port(port), m_time(time)
{
    m_port.setPeer(this);
    m_port.setClock(&m_time);
}

ScriptedModem::~ScriptedModem()
{
    m_port.setPeer(nullptr);
}

void ScriptedModem::answer(const QByteArray &trigger, const QByteArray &reply, int delayMs)
{
    m_answers.append({trigger, reply, delayMs});
}

void ScriptedModem::sendLater(const QByteArray &bytes, int delayMs)
{
    m_time.after(delayMs, [this, bytes] { m_port.feed(bytes); });
}

void ScriptedModem::hostWrote(const QByteArray &bytes, const LineSettings &)
{
    m_heard += bytes;
    for (const Answer &a : std::as_const(m_answers)) {
        if (m_heard.contains(a.trigger)) {
            m_heard.clear();
            sendLater(a.reply, a.delayMs);
            return;
        }
    }
}
