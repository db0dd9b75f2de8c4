#include "ProgramTransfer.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "CommControl.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "PortClaim.h"
#include "ProgramListing.h"
#include "Prompts.h"

namespace {
constexpr char kCr = '\r';
const QByteArray kCtrlC = QByteArrayLiteral("\x03");
const QByteArray kRemotePrompt = QByteArrayLiteral("RPG:");
} // namespace

void ReadProgram(ModemSession &session, QStringList &list)
{
    CommControl &comm = session.Comm1();
    BusyPointer busy(session.prompts());
    PortClaim::takeForProgram(comm);
    comm.Input();

    // A read that fails on the way is not reported: the failing step is passed over.
    QByteArray prompt;
    if (session.ProgMode == kRemoteReadMode || session.EnterCommandModeKeep()) {
        ignoreErrors([&] { session.sendText(kListingRequest + kCr); });
        session.WaitForBytes(10);
        const ProgramListing listing = parseProgramListing(comm.Input());
        if (listing.prompt.isEmpty()) {
            // Nothing more goes out: the link, if there was one, is gone.
            session.prompts().setBusy(false);
            session.prompts().MsgBox(QStringLiteral("Lost Link to Remote Varnel"), MsgButtons::OkOnly,
                                     MsgIcon::Exclamation);
            return;
        }
        prompt = listing.prompt;
        list += listing.lines;
        // The routes come last, whatever their place in the modem.
        QStringList routes;
        ignoreErrors([&] { ReadRoutes(session, routes); });
        list += routes;
    }

    if (prompt == kRemotePrompt) {
        // Ends the remote session; the adaptor's slow way is never needed for one character.
        ignoreErrors([&] { comm.Output(kCtrlC); });
        session.WaitForReply("CMD:", 1000);
    }
    if (session.ProgMode == kRemoteReadMode)
        ignoreErrors([&] { comm.Output(QByteArrayLiteral("reset\r")); });
    session.ProgMode.clear();
}

int DownloadProgram(ModemSession &session, const QStringList &list,
                    const std::function<void(int)> &selectLine)
{
    Prompts &prompts = session.prompts();
    BusyPointer busy(prompts);
    if (!session.EnterCommandMode())
        return -1;
    PortClaim::takeForProgram(session.Comm1());

    // Silence after the factory default does not stop the download.
    attempt(prompts, [&] { session.sendText(QByteArrayLiteral("FA\r")); });
    session.WaitForReply("Unit Address", session.IrDongleActive ? 4000 : 3000);

    // The check for an empty list comes after the reset, and stays there.
    if (list.isEmpty()) {
        prompts.MsgBox(QStringLiteral("You Cannot Save.  There Are No Commands In The Command List."),
                       MsgButtons::OkOnly, MsgIcon::Exclamation);
        return -1;
    }

    for (int i = 0; i < list.size(); ++i) {
        if (selectLine)
            selectLine(i);
        const QString &line = list[i];
        if (line.isEmpty())
            continue;
        attempt(prompts, [&] { session.sendText(line.toLatin1() + kCr); });
        if (!session.WaitForReplyChecked("CMD:", 1000)) {
            // The refused line stays selected and nothing is saved; the busy pointer stays up.
            busy.keep();
            prompts.MsgBox(QStringLiteral("Varnel reported error with this command.  Please verify command "
                                          "spelling and useage."),
                           MsgButtons::OkOnly, MsgIcon::Exclamation);
            return i;
        }
    }

    attempt(prompts, [&] { session.sendText(QByteArrayLiteral("save\r")); });
    prompts.MsgBox(
        QStringLiteral("Download Complete.\r\nTo Place Varnel in Operation, Set Last Switch (#2 or #8) "
                       "on Serial Port Setup-Switches to ON (Up) Position and Reset Varnel."),
        MsgButtons::OkOnly, MsgIcon::Information);
    return -1;
}
