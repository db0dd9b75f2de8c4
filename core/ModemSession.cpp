#include "ModemSession.h"

#include "AppError.h"
#include "CommControl.h"
#include "PortClaim.h"
#include "Prompts.h"
#include "TimeSource.h"

using namespace std::chrono_literals;

namespace {
constexpr char kCtrlC = 3;
constexpr char kCr = 13;
// The wait of every reply loop: no reply can be seen sooner than one step after the command.
constexpr auto kReplyStep = 100ms;
constexpr auto kSettleStepOk = 5ms;
// WaitForBytes gives up after this many steps past the first: 51 steps, 5.1 seconds.
constexpr int kByteWaitSteps = 50;

const QByteArray kPrompt = QByteArrayLiteral("CMD:");
const QByteArray kCrText(1, kCr);

// The two entry routines share their shape; these are the places where they differ.
struct EntryScript
{
    QByteArray secondTry;     // step 2: what goes out after Ctrl-C failed
    QByteArray secondTryWait; // and what is waited for
    QByteArray noFirstTry;    // step 4.1
    QByteArray noRetry;       // step 4.3
    QString noFinalText;      // step 4.4
    QString noFinalTitle;
    QByteArray yesWait;    // step 5.2: what Ctrl-C alone is expected to bring
    QString yesSwitchText; // step 5.3
    QString yesFinalText;  // step 5.5
};

const EntryScript &commandModeScript()
{
    static const EntryScript script{
        QByteArrayLiteral("FA\r"),
        kPrompt,
        QByteArrayLiteral("FA\r"),
        QByteArrayLiteral("\x03"
                          "FA\r"),
        QStringLiteral(
            "No Communication with the connected Varnel.  Verify all cable connections and try again."),
        QStringLiteral("Unable to find Varnel"),
        kPrompt,
        QStringLiteral("Not communicating.  Make sure bit 8 on switch ") +
            QStringLiteral(" block is down.  Then reset."),
        QStringLiteral("No Communication"),
    };
    return script;
}

// The keeping form never sends "FA": a carriage return is its last resort, and any line will do.
const EntryScript &keepScript()
{
    static const EntryScript script{
        QByteArrayLiteral("\x03\r"),
        kCrText,
        QByteArrayLiteral("\x03"),
        QByteArrayLiteral("\x03\r"),
        QStringLiteral("No Communication"),
        QStringLiteral("Unable to find Varnel"),
        kCrText,
        QStringLiteral("Not communicating.  Check all connections, reset modem, ") +
            QStringLiteral(" press the Retry button."),
        QStringLiteral(
            "No Communication with the connected Varnel.  Verify all cable connections and try again."),
    };
    return script;
}
} // namespace

ModemSession::ModemSession(CommControl &comm1, TimeSource &time, Prompts &prompts)
    : m_comm(comm1), m_time(time), m_prompts(prompts)
{}

void ModemSession::MsDelay(int ms)
{
    m_time.MsDelay(ms);
}

void ModemSession::MsDelay(std::chrono::milliseconds wait)
{
    m_time.MsDelay(int(wait.count()));
}

void ModemSession::SendSlow(const QByteArray &text)
{
    for (char c : text) {
        m_comm.Output(QByteArray(1, c));
        MsDelay(1);
    }
}

void ModemSession::sendCommand(const QByteArray &command, Way way)
{
    m_comm.Input();
    sendText(command + kCrText, way);
}

void ModemSession::sendText(const QByteArray &text, Way way)
{
    if (way == Way::Auto && IrDongleActive)
        SendSlow(text);
    else
        m_comm.Output(text);
}

void ModemSession::WaitForBytes(int count)
{
    PortClaim::takeForProgram(m_comm);
    for (int step = 0; m_comm.InBufferCount() <= count; ++step) {
        MsDelay(kReplyStep);
        if (step == kByteWaitSteps)
            break;
    }
    // The reply has begun; it is whole once two looks a step apart agree.
    for (int seen = 0; m_comm.InBufferCount() != seen;) {
        seen = m_comm.InBufferCount();
        MsDelay(kReplyStep);
    }
}

void ModemSession::WaitForBytesOk(int count, bool &ok)
{
    PortClaim::takeForProgram(m_comm);
    // ok stays as the caller set it when the bytes were there at the first look.
    for (int step = 0; m_comm.InBufferCount() <= count; ++step) {
        MsDelay(kReplyStep);
        if (step == kByteWaitSteps) {
            ok = false;
            return;
        }
        ok = true;
    }
    for (int seen = 0; m_comm.InBufferCount() != seen;) {
        seen = m_comm.InBufferCount();
        MsDelay(kSettleStepOk);
    }
}

template <typename Stop> QByteArray ModemSession::collectReply(int timeoutMs, Stop &&stop, bool &stopped)
{
    QByteArray buffer;
    stopped = false;
    const int passes = timeoutMs / int(kReplyStep.count());
    for (int pass = 0; pass < passes; ++pass) {
        MsDelay(kReplyStep);
        buffer += m_comm.Input();
        if (stop(buffer)) {
            stopped = true;
            break;
        }
    }
    return buffer;
}

bool ModemSession::WaitForReply(const QByteArray &text, int timeoutMs)
{
    bool found = false;
    collectReply(
        timeoutMs, [&](const QByteArray &buffer) { return buffer.contains(text); }, found);
    return found;
}

bool ModemSession::WaitForReplyChecked(const QByteArray &text, int timeoutMs)
{
    bool found = false;
    const QByteArray buffer = collectReply(
        timeoutMs, [&](const QByteArray &b) { return b.contains(text); }, found);
    // The refusal words are looked for only once the loop has ended.
    if (buffer.contains("AMBIGUOUS") || buffer.contains("INVALID"))
        return false;
    return found;
}

void ModemSession::WaitForReplyPolled(const QByteArray &text, int timeoutMs, bool &found, bool &failed)
{
    found = false;
    failed = false;
    bool stopped = false;
    collectReply(
        timeoutMs,
        [&](const QByteArray &buffer) {
            if (buffer.contains(text))
                found = true;
            else if (buffer.contains("SS03"))
                failed = true;
            return found || failed;
        },
        stopped);
}

void ModemSession::wireWrite(const QByteArray &bytes)
{
    ignoreErrors([&] { m_comm.Output(bytes); });
}

namespace {
bool enterWith(ModemSession &session, const EntryScript &script,
               const std::function<void(const QByteArray &)> &write)
{
    CommControl &comm = session.Comm1();
    Prompts &prompts = session.prompts();
    PortClaim claim(comm);

    write(QByteArray(1, kCtrlC));
    if (session.WaitForReply(kPrompt, 1000))
        return true;
    write(script.secondTry);
    if (session.WaitForReply(script.secondTryWait, 1000))
        return true;

    const MsgAnswer useDongle =
        prompts.MsgBox(QStringLiteral("The Varnel is not detected on the selected comm port. ") +
                           QStringLiteral(" Would you like to initialize the IR Dongel?"),
                       MsgButtons::YesNo);
    if (useDongle != MsgAnswer::Yes) {
        write(script.noFirstTry);
        if (session.WaitForReply(kPrompt, 2000))
            return true;
        const MsgAnswer answer = prompts.MsgBox(
            QStringLiteral(
                "Not communicating.  Make sure last switch on switch block (#8 or #2) is down.  Then reset."),
            MsgButtons::AbortRetryIgnore, MsgIcon::Exclamation);
        if (answer == MsgAnswer::Abort)
            return false;
        write(script.noRetry);
        if (session.WaitForReply(kPrompt, 2000))
            return true;
        prompts.MsgBox(script.noFinalText, MsgButtons::OkOnly, MsgIcon::Exclamation, script.noFinalTitle);
        // After this box the port stays in the program's hands; screens have come to rely on it.
        claim.keep();
        return false;
    }

    session.InitIrDongle();
    if (!session.IrDongleActive)
        return false;
    write(QByteArray(1, kCtrlC));
    if (session.WaitForReply(script.yesWait, 2000))
        return true;
    if (prompts.MsgBox(script.yesSwitchText, MsgButtons::RetryCancel, MsgIcon::None,
                       QStringLiteral("Unable to get Communication")) == MsgAnswer::Cancel)
        return false;
    write(script.noRetry);
    if (session.WaitForReply(kPrompt, 2000))
        return true;
    prompts.MsgBox(script.yesFinalText, MsgButtons::OkOnly, MsgIcon::Exclamation,
                   QStringLiteral("Unable to get find Varnel."));
    return false;
}
} // namespace

bool ModemSession::EnterCommandMode()
{
    return enterWith(*this, commandModeScript(), [this](const QByteArray &b) { wireWrite(b); });
}

bool ModemSession::EnterCommandModeKeep()
{
    return enterWith(*this, keepScript(), [this](const QByteArray &b) { wireWrite(b); });
}

bool ModemSession::ProbeCommandPrompt()
{
    PortClaim claim(m_comm);
    wireWrite(QByteArray(1, kCtrlC));
    if (WaitForReply(kPrompt, 1000))
        return true;
    wireWrite(QByteArrayLiteral("FA\r"));
    return WaitForReply(kPrompt, 1000);
}

void ModemSession::InitIrDongle()
{
    // Every statement runs with errors ignored: a closed port simply ends in the "not responding" box.
    const QString kept = m_comm.Settings();
    m_comm.Input();
    ignoreErrors([&] { m_comm.setSettings(QStringLiteral("9600,n,8,1")); });
    // The pulse on RTS with DTR low puts the adaptor in its command state.
    m_comm.setRTSEnable(false);
    MsDelay(30);
    m_comm.setRTSEnable(true);
    m_comm.setDTREnable(false);
    wireWrite(QByteArray(1, char(0xD1)));
    wireWrite(QByteArray(1, char(0xC0)));
    if (!WaitForReply(QByteArray(1, char(0xC2)), 200)) {
        m_prompts.MsgBox(QStringLiteral("The Infra-Red Dongle is not responding"));
        IrDongleActive = false;
        ignoreErrors([&] { m_comm.setSettings(kept); });
        m_comm.setRTSEnable(true);
        m_comm.setDTREnable(true);
        return;
    }
    wireWrite(QByteArray(1, char(0xD0)));
    wireWrite(QByteArray(1, char(0x03)));
    wireWrite(QByteArray(1, char(0x45)));
    MsDelay(100);
    m_comm.setDTREnable(true);
    // With the adaptor the link always runs at 9600.
    IrDongleActive = true;
}
