#include "Instruments.h"

#include "CommandTable.h"
#include "Modem.h"
#include "Network.h"
#include "TimeSource.h"

#include <optional>

namespace sim {

namespace {

using namespace std::chrono_literals;

constexpr auto kStreamPeriod = 250ms;

std::optional<bool> onOff(const QString &argument)
{
    const QString a = argument.toUpper();
    if (a == QLatin1String("ON"))
        return true;
    if (a == QLatin1String("OFF"))
        return false;
    return std::nullopt;
}

// The meter streams from the next period on, once the prompt is out; only the unit at the cable
// streams or samples.
bool runSignalStream(CommandCall &call)
{
    const std::optional<bool> on = onOff(call.argument);
    if (call.overAir || !on)
        return call.refuse();
    Instruments &instruments = call.modem.instruments();
    if (*on && !instruments.streaming())
        call.reply.then = [&instruments] { instruments.startStream(); };
    else if (!*on)
        instruments.stopStream();
    return true;
}

bool runDataQuality(CommandCall &call)
{
    const std::optional<bool> on = onOff(call.argument);
    if (call.overAir || !on)
        return call.refuse();
    call.modem.instruments().setDataQuality(*on);
    return true;
}

bool runRadio(CommandCall &call)
{
    const std::optional<bool> on = onOff(call.argument);
    if (!on)
        return call.refuse();
    call.modem.instruments().key(*on);
    return true;
}

// Port 0, register 5 is the receiver's status latch, shown in hex after the address.
bool runInOut(CommandCall &call)
{
    const int status = call.modem.instruments().receiverStatus();
    call.answer("INOUT    = " + call.argument.toLatin1() + ' ' + QByteArray::number(status, 16).toUpper());
    return true;
}

// The counts since the last reading: the utility takes them as the retries of the last packet.
bool runTransmitStatus(CommandCall &call)
{
    const Links::Counts counts = call.modem.links().takeCounts();
    call.answer("Packets = " + QByteArray::number(counts.packets));
    call.answer("Retries = " + QByteArray::number(counts.retries));
    return true;
}

} // namespace

const QList<CommandDef> &instrumentCommands()
{
    static const QList<CommandDef> commands{
        {"INOUT", 3, &runInOut},    {"TXSTAT", 3, &runTransmitStatus}, {"RXS", 3, &runSignalStream},
        {"DQ", 2, &runDataQuality}, {"RADIO", 3, &runRadio},
    };
    return commands;
}

void Instruments::startStream()
{
    m_streaming = true;
    m_modem.afterUnlessInterrupted(kStreamPeriod, [this] { streamTick(); });
}

void Instruments::streamTick()
{
    if (!m_streaming || m_modem.mode() != Modem::Mode::Command)
        return;
    const double reading = m_modem.network() ? m_modem.network()->meterReading(m_modem) : 0.0;
    const int shown = qRound(reading);
    if (GroundTruth *truth = m_modem.truth())
        truth->meterReadings.append({m_modem.time().elapsedMs(), m_modem.address(), 0, shown});
    m_modem.send(',' + QByteArray::number(shown));
    m_modem.afterUnlessInterrupted(kStreamPeriod, [this] { streamTick(); });
}

void Instruments::reset()
{
    m_streaming = false;
    m_dataQuality = false;
    m_keyed = false;
}

int Instruments::receiverStatus() const
{
    int status = 0xFB & ~0x04;
    if (m_modem.network() && m_modem.network()->carrierDetect(m_modem))
        status |= 0x04;
    return status;
}

} // namespace sim
