#pragma once

#include <QString>

class CommandListBox;
class ModemSession;

// The mode word with which remote programming hands a read over to ReadProgram, the link to the
// remote modem already up.
inline const QString kRemoteReadMode = QStringLiteral("RemoteRead");

// Asks the modem for its listing and appends the lines to the command list, then the modem's
// repeater routes. Over a remote link (ProgMode "RemoteRead") it also ends the link and resets
// the local modem. Leaves ProgMode empty, except when the reply held no prompt at all.
void ReadProgram(ModemSession &session, CommandListBox &list);

// Restores the connected modem's factory settings, sends it the command list line by line, each
// awaiting the prompt, and saves. A refused line ends the download before anything is saved.
void DownloadProgram(ModemSession &session, CommandListBox &list);
