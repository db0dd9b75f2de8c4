#pragma once

#include "IniFile.h"
#include "MemoryCommControl.h"
#include "Modal.h"
#include "ModemSession.h"
#include "ScriptedModem.h"
#include "ScriptedPrompts.h"
#include "SessionRig.h"
#include "Terminal.h"
#include "TerminalScreen.h"
#include "TimeSource.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <functional>

// The writes to the port, each as "ms:bytes", joined by " | ".
inline QString wire(const MemoryCommControl &port)
{
    QStringList lines;
    for (const WireEvent &e : port.events())
        if (e.kind == WireEvent::Kind::Write)
            lines << QStringLiteral("%1:%2").arg(e.atMs).arg(SessionRig::shown(e.bytes));
    return lines.join(QStringLiteral(" | "));
}

// The in-memory port, scripted modem and prompts, and a settings file with a complete port section,
// so that the terminal loads without asking.
struct TerminalRig
{
    QTemporaryDir dir;
    IniFile ini{dir.filePath(QStringLiteral("VarnelUtil.INI"))};
    VirtualTime time;
    MemoryCommControl port;
    ScriptedPrompts prompts{&time};
    ScriptedModem modem{port, time};
    ModemSession session{port, time, prompts};

    explicit TerminalRig(const QByteArray &moreSettings = {})
    {
        QFile file(ini.path());
        if (file.open(QIODevice::WriteOnly))
            file.write("[Port_Phone]\r\nComm Port=2\r\nSettings=9600,N,8,1\r\nDTREnable=True\r\n"
                       "RTSEnable=True\r\nHandshaking=0\r\n" +
                       moreSettings);
    }
};

// The terminal loaded over the rig, the writes of its load forgotten.
struct LoadedTerminal
{
    TerminalRig rig;
    Terminal window{rig.session, rig.ini};

    explicit LoadedTerminal(const QByteArray &moreSettings = {}) : rig(moreSettings)
    {
        window.Load();
        rig.port.clearEvents();
    }
    TerminalScreen &screen() { return *window.Comm1Screen; }
    QString wire() const { return ::wire(rig.port); }
};

// The box of an error the program goes on after, for the error's number and text.
inline QString errorBox(const char *error)
{
    return QStringLiteral(
               "The following error has occured in the application:\r%1\rPress OK to attempt to fix "
               "problem.\rIf problem remains, please exit program and report error to VNL.")
        .arg(QLatin1String(error));
}
