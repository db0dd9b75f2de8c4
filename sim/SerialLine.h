#pragma once

#include "CommControl.h"

#include <QByteArray>
#include <functional>
#include <memory>
#include <random>

class TimeSource;

namespace sim {

class Modem;

// What a receiver makes of bytes sent at another rate or frame: the sender's bits, sampled with
// the receiver's clock and frame, as a UART would. Equal settings pass the bytes unchanged.
QByteArray reframe(const QByteArray &bytes, const LineSettings &sender, const LineSettings &receiver);

// Time one character occupies the line, in microseconds.
qint64 characterMicroseconds(const LineSettings &line);

// The cable between the computer's port and the modem: it paces the bytes at the line rate, turns
// them into garbage when the two ends disagree on rate or frame, may carry the infra-red adaptor,
// and breaks in the ways a test orders.
class SerialLine
{
public:
    SerialLine(TimeSource &time, Modem &modem, bool irAdaptor);
    ~SerialLine();

    // The computer's side.
    void setHostReceiver(std::function<void(const QByteArray &)> deliver) { m_deliver = std::move(deliver); }
    void setHangUp(std::function<void()> hangUp) { m_hangUp = std::move(hangUp); }
    void hostWrote(const QByteArray &bytes, const LineSettings &host);
    void hostLineSettings(const LineSettings &host) { m_host = host; }
    // Where the computer's settings can be read at any moment (a pseudo-terminal's termios);
    // without it the line knows them from the port's own reports.
    void setHostSettingsSource(std::function<LineSettings()> source) { m_hostSource = std::move(source); }
    void hostControlLines(bool dtr, bool rts);
    LineSettings hostSettings() const { return m_host; }

    // Faults on demand, on the way from the modem to the computer.
    struct Faults
    {
        double dropRate = 0;   // chance that a byte is lost
        double garbleRate = 0; // chance that a byte arrives changed
        int splitGapMs = 0;    // each piece arrives in two parts with this gap between them
    };
    Faults &faults() { return m_faults; }
    // Junk at full line rate for a while, as a babbling unit or a bad cable gives.
    void flood(int durationMs);
    // The far end goes away: the computer's port sees the line drop.
    void hangUp();

    bool adaptorReady() const;

private:
    struct Adaptor;
    void fromModem(const QByteArray &bytes);
    void toHost(const QByteArray &bytes, qint64 charUs);
    void toModem(const QByteArray &bytes, qint64 atUs);
    void adaptorCommand(const QByteArray &bytes);
    void schedule(qint64 atUs, std::function<void()> fn);
    qint64 nowUs() const;

    TimeSource &m_time;
    Modem &m_modem;
    std::unique_ptr<Adaptor> m_adaptor;
    LineSettings m_host{9600, 'N', 8, 1};
    std::function<void(const QByteArray &)> m_deliver;
    std::function<void()> m_hangUp;
    std::function<LineSettings()> m_hostSource;
    qint64 m_toHostFreeUs = 0;
    qint64 m_toModemFreeUs = 0;
    Faults m_faults;
    std::mt19937 m_random{7};
    std::shared_ptr<int> m_life = std::make_shared<int>(0);
};

} // namespace sim
