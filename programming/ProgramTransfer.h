#pragma once

#include <QString>
#include <QStringList>
#include <functional>

class ModemSession;

// The mode word with which remote programming hands a read over to ReadProgram, the link to the
// remote modem already up.
inline const QString kRemoteReadMode = QStringLiteral("RemoteRead");

// Asks the modem for its listing and appends the lines to the command list, then the modem's
// repeater routes. Over a remote link (ProgMode "RemoteRead") it also ends the link and resets
// the local modem. Leaves ProgMode empty, except when the reply held no prompt at all.
void ReadProgram(ModemSession &session, QStringList &list);

// Restores the connected modem's factory settings, sends it the command list line by line, each
// awaiting the prompt, and saves. selectLine(i) runs as line i is taken, so the screen can follow.
// A refused line ends the download before anything is saved, with the hourglass left up; its
// index is returned, -1 when none was refused.
int DownloadProgram(ModemSession &session, const QStringList &list,
                    const std::function<void(int)> &selectLine = {});
