#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <functional>

class ModemSession;

// Programming over the air: the connected modem opens a link to a remote one, through up to three
// repeaters, and the remote answers "RPG:" where the connected one says "CMD:".

inline const QString kRemoteSaveMode = QStringLiteral("RemoteSave");

inline const QString kNoDestinationText = QStringLiteral("You Must Type In A Destination Address");
inline const QString kDestinationRangeText = QStringLiteral("Your Address Must Be Between 1 and 254");

// The route typed on the remote address form: the repeaters as typed, then the destination as a
// whole number, comma-separated ("40,41,12"). faultText is the box to show when the fields are bad.
struct RemoteRouteCheck
{
    QString route;
    QString faultText;
    bool clearRepeaters = false; // a gap among the repeaters empties all three fields
    bool noDestination = false;  // nothing that counts as an address was typed
};
RemoteRouteCheck checkRemoteRoute(const QString &destination, const std::array<QString, 3> &repeaters);

// Brings the connected modem to factory settings with its own network identifier, unsaved, ready
// to open a link. False when it could not be brought to its prompt.
bool PrepareRemoteModem(ModemSession &session);

// Sends the link request along the route (stored as RemoteRoute) and waits for the remote's prompt.
bool LinkToRemote(ModemSession &session, const QString &route);

// Sends the command list to the linked remote, the address and network lines held back and sent
// last with the save, then ends the link and resets the connected modem. The list loses the held
// lines and, when the download went through, gets them back at its end (an empty line for one that
// was not there). selectLine(i) runs as line i is taken. Returns whether the download went through.
bool RemoteDownload(ModemSession &session, QStringList &list,
                    const std::function<void(int)> &selectLine = {});
