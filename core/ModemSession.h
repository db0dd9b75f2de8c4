#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>
#include <functional>

class CommControl;
class Prompts;
class TimeSource;

// The conversation with the modem's command interpreter: the timed primitives every screen calls,
// over the one serial control Comm1, the one time source and the one set of prompts. It also
// carries the program-wide shared state that the screens read and set.
//
// Primitives let a failure of the control (a write to a closed port) travel to the caller as
// AppError, where the caller's statement-level handler shows the standard box once. The entry
// routines (EnterCommandMode, EnterCommandModeKeep, ProbeCommandPrompt, InitIrDongle) ignore them.
class ModemSession
{
public:
    ModemSession(CommControl &comm1, TimeSource &time, Prompts &prompts);

    CommControl &Comm1() const { return m_comm; }
    TimeSource &time() const { return m_time; }
    Prompts &prompts() const { return m_prompts; }

    // Program-wide shared state.
    bool IrDongleActive = false; // the infra-red adaptor carries the link: commands go out by SendSlow
    QString ProgMode;            // key of the open command dialog, or a remote mode word such as "RemoteRead"
    QString RemoteRoute;         // the route last built for remote work
    bool CaptureActive = false;  // a capture file is open
    bool EscPressed = false;     // Esc was typed in the terminal

    void MsDelay(int ms);
    void MsDelay(std::chrono::milliseconds wait);
    // One character at a time, with MsDelay(1) after each, the last one too.
    void SendSlow(const QByteArray &text);

    enum class Way { Auto, OneWrite };
    // Drains the input, then sends the command and one carriage return: one write, or SendSlow when
    // the adaptor is active and the way is Auto. Readers that always use one write pass OneWrite.
    void sendCommand(const QByteArray &command, Way way = Way::Auto);
    // Sends the text as it stands (no drain, no carriage return added), choosing the way as above.
    void sendText(const QByteArray &text, Way way = Way::Auto);

    void WaitForBytes(int count);
    void WaitForBytesOk(int count, bool &ok);
    bool WaitForReply(const QByteArray &text, int timeoutMs);
    bool WaitForReplyChecked(const QByteArray &text, int timeoutMs);
    void WaitForReplyPolled(const QByteArray &text, int timeoutMs, bool &found, bool &failed);

    bool EnterCommandMode();
    bool EnterCommandModeKeep();
    bool ProbeCommandPrompt();
    void InitIrDongle();

private:
    // The reply loop shared by the three WaitForReply forms: returns what was read, and whether
    // stop() said to end the loop early.
    template <typename Stop> QByteArray collectReply(int timeoutMs, Stop &&stop, bool &stopped);
    void wireWrite(const QByteArray &bytes); // one write, errors ignored (entry routines)

    CommControl &m_comm;
    TimeSource &m_time;
    Prompts &m_prompts;
};
