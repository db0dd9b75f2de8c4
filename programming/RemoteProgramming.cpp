#include "RemoteProgramming.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "CommControl.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "PortClaim.h"
#include "Prompts.h"
#include "RepeaterRoute.h"
#include "TextRules.h"

namespace {
const QByteArray kCtrlC = QByteArrayLiteral("\x03");
const QString kFactoryNetwork = QStringLiteral("37");

// Takes out the line that holds word at its first or second character; the walk goes once over the
// indexes the list had when it began and does not look again at an index it has just emptied, so
// of two such lines in a row the second stays, and of several found the last one is kept.
QString takeHeldLine(QStringList &list, const QString &word)
{
    QString held;
    const qsizetype last = list.size() - 1;
    for (qsizetype i = 0; i <= last && i < list.size(); ++i) {
        const qsizetype at = list[i].toUpper().indexOf(word);
        if (at == 0 || at == 1)
            held = list.takeAt(i);
    }
    return held;
}
} // namespace

RemoteRouteCheck checkRemoteRoute(const QString &destination, const std::array<QString, 3> &repeaters)
{
    RemoteRouteCheck check;
    const double address = roundHalfEven(numericValue(destination));
    if (address == 0) {
        check.faultText = kNoDestinationText;
        check.noDestination = true;
        return check;
    }
    if (address < 1 || address > 254) {
        check.faultText = kDestinationRangeText;
        return check;
    }
    const RepeaterWalk walk = walkRepeaters(repeaters, numberText(address));
    check.route = walk.route;
    check.faultText = walk.faultText;
    check.clearRepeaters = walk.clearFields;
    return check;
}

bool PrepareRemoteModem(ModemSession &session)
{
    if (!session.EnterCommandModeKeep())
        return false;
    Prompts &prompts = session.prompts();
    QString network;
    ReadNetworkId(session, network);
    attempt(prompts, [&] { session.sendCommand("FA"); });
    session.WaitForReply("Unit Address", 500);
    // Its own network, so the remote hears it; nothing is saved in the connected modem.
    if (network != kFactoryNetwork) {
        attempt(prompts, [&] { session.sendCommand("NET " + network.toLatin1()); });
        session.WaitForReply("CMD", 500);
    }
    return true;
}

bool LinkToRemote(ModemSession &session, const QString &route)
{
    session.RemoteRoute = route;
    // The link request always goes in one write, adaptor or not.
    attempt(session.prompts(), [&] { session.Comm1().Output("Prog " + route.toLatin1() + '\r'); });
    return session.WaitForReply("RPG:", 3000);
}

bool RemoteDownload(ModemSession &session, QStringList &list, const std::function<void(int)> &selectLine)
{
    Prompts &prompts = session.prompts();
    CommControl &comm = session.Comm1();
    BusyPointer busy(prompts);
    const QString addressLine = takeHeldLine(list, QStringLiteral("ADD"));
    const QString networkLine = takeHeldLine(list, QStringLiteral("NET"));

    // With a network line the remote keeps its settings and the list is laid over them.
    if (networkLine.isEmpty()) {
        PortClaim::takeForProgram(comm);
        attempt(prompts, [&] { session.sendText("FA\r"); });
        session.WaitForReply("Unit Address", 1000);
    }
    for (int i = 0; i < list.size(); ++i) {
        if (selectLine)
            selectLine(i);
        if (list[i].isEmpty())
            continue;
        attempt(prompts, [&] { session.sendText(list[i].toLatin1() + '\r'); });
        if (!session.WaitForReplyChecked("RPG:", 3000)) {
            attempt(prompts, [&] { comm.Output(kCtrlC); });
            prompts.setBusy(false);
            prompts.MsgBox(QStringLiteral("Varnel reported error with this command.  Please verify command "
                                          "spelling and useage."),
                           MsgButtons::OkOnly, MsgIcon::Exclamation);
            return false;
        }
    }
    // The modem takes commands joined by a colon: the held lines go out with the save.
    const QByteArray save =
        addressLine.isEmpty() ? QByteArrayLiteral("save") : addressLine.toLatin1() + ":save";
    attempt(prompts, [&] { session.sendText(save + '\r'); });
    if (!networkLine.isEmpty())
        attempt(prompts, [&] { session.sendText(networkLine.toLatin1() + ":save\r"); });
    session.WaitForReply("RPG:", 3000);
    attempt(prompts, [&] { comm.Output(kCtrlC); });
    session.WaitForReply("CMD:", 1000);
    attempt(prompts, [&] { comm.Output(QByteArrayLiteral("reset\r")); });
    list << addressLine << networkLine;
    prompts.setBusy(false);
    prompts.MsgBox(QStringLiteral("Remote Download Complete"), MsgButtons::OkOnly, MsgIcon::Information);
    return true;
}
