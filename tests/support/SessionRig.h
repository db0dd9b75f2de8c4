#pragma once

#include "MemoryCommControl.h"
#include "ModemSession.h"
#include "ScriptedModem.h"
#include "ScriptedPrompts.h"
#include "TimeSource.h"

#include <QStringList>

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

    // The writes, each as "ms:bytes" with the bytes shown by show.
    QStringList transcript(QString (*show)(const QByteArray &)) const
    {
        QStringList lines;
        for (const WireEvent &e : port.events())
            if (e.kind == WireEvent::Kind::Write)
                lines << QStringLiteral("%1:%2").arg(e.atMs).arg(show(e.bytes));
        return lines;
    }
};
