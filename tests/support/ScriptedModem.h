#pragma once

#include "MemoryCommControl.h"

#include <QList>

class TimeSource;

// A far end with canned answers, for tests that need exact replies rather than a whole modem:
// when the bytes the host wrote since the last answer contain a trigger, the reply arrives after
// a delay. With no answers it is a silent line that still records everything.
class ScriptedModem : public PortPeer
{
public:
    ScriptedModem(MemoryCommControl &port, TimeSource &time);
    ~ScriptedModem() override;

    // Every time the trigger is written, the reply follows after delayMs.
    void answer(const QByteArray &trigger, const QByteArray &reply, int delayMs = 30);
    // Feeds bytes after delayMs, unprompted.
    void sendLater(const QByteArray &bytes, int delayMs);

    void hostWrote(const QByteArray &bytes, const LineSettings &line) override;

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
