#pragma once

#include "MemoryCommControl.h"
#include "TimeSource.h"

#include <QList>

// A far end with canned answers, for tests that need exact replies rather than a whole modem:
// when the bytes the host wrote since the last answer contain a trigger, the reply arrives after
// a delay. With no answers it is a silent line that still records everything.
class ScriptedModem : public PortPeer
{
public:
    ScriptedModem(MemoryCommControl &port, TimeSource &time) : m_port(port), m_time(time)
    {
        m_port.setPeer(this);
        m_port.setClock(&m_time);
    }
    ~ScriptedModem() override { m_port.setPeer(nullptr); }

    // Every time the trigger is written, the reply follows after delayMs.
    void answer(const QByteArray &trigger, const QByteArray &reply, int delayMs = 30)
    {
        m_answers.append({trigger, reply, delayMs});
    }
    // Feeds bytes after delayMs, unprompted.
    void sendLater(const QByteArray &bytes, int delayMs)
    {
        m_time.after(delayMs, [this, bytes] { m_port.feed(bytes); });
    }

    void hostWrote(const QByteArray &bytes, const LineSettings &) override
    {
        m_heard += bytes;
        for (const Answer &a : std::as_const(m_answers)) {
            if (m_heard.contains(a.trigger)) {
                m_heard.clear();
                return sendLater(a.reply, a.delayMs);
            }
        }
    }

private:
    struct Answer
    {
        QByteArray trigger;
        QByteArray reply;
        int delayMs;
    };
    MemoryCommControl &m_port;
    TimeSource &m_time;
    QList<Answer> m_answers;
    QByteArray m_heard;
};
