#pragma once

#include "MemoryCommControl.h"
#include "ModemSession.h"
#include "ScriptedModem.h"
#include "ScriptedPrompts.h"

// A modem session on virtual time over an in-memory port with canned answers and scripted boxes:
// the bench on which the conversations are tested. The port starts open, with the given AutoProcess.
struct SessionRig
{
    VirtualTime time;
    MemoryCommControl port;
    ScriptedPrompts prompts{&time};
    ScriptedModem modem{port, time};
    ModemSession session{port, time, prompts};

    explicit SessionRig(int autoProcess)
    {
        port.setPortOpen(true);
        port.setAutoProcess(autoProcess);
        port.clearEvents();
    }

    // Bytes as a transcript shows them: a carriage return as "\r", other control bytes in hex ("<03>").
    static QString shown(const QByteArray &bytes)
    {
        QString text;
        for (const char c : bytes)
            text += c == '\r' ? QStringLiteral("\\r")
                    : c >= ' ' && c < 127
                        ? QString(QLatin1Char(c))
                        : QStringLiteral("<%1>").arg(uchar(c), 2, 16, QLatin1Char('0')).toUpper();
        return text;
    }
    // The writes to a port as shown, each as "ms:bytes" when timed.
    static QStringList writes(const MemoryCommControl &port, bool timed = false)
    {
        QStringList lines;
        for (const WireEvent &e : port.events())
            if (e.kind == WireEvent::Kind::Write)
                lines << (timed ? QStringLiteral("%1:").arg(e.atMs) : QString()) + shown(e.bytes);
        return lines;
    }
    QStringList transcript() const { return writes(port, true); }
};
