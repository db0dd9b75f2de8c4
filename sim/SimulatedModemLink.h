#pragma once

#include "MemoryCommControl.h"
#include "Modem.h"
#include "Network.h"
#include "Scenario.h"
#include "SerialLine.h"
#include "TimeSource.h"

namespace sim {

// Everything an in-process test needs: virtual time, the in-memory Comm1, and the simulated
// network whose local modem is wired to that port. The port is open at the local modem's line
// settings (9600,n,8,1 with the infra-red adaptor), with AutoProcess 0.
class SimulatedModemLink : private PortPeer
{
public:
    explicit SimulatedModemLink(const Scenario &scenario = Scenario::standard());
    ~SimulatedModemLink() override;

    VirtualTime &time() { return m_time; }
    MemoryCommControl &port() { return m_port; }
    Modem &local() { return m_network.local(); }
    Network &network() { return m_network; }
    SerialLine &line() { return *m_line; }
    GroundTruth &truth() { return m_network.truth(); }

private:
    void hostWrote(const QByteArray &bytes, const LineSettings &line) override;
    void hostLineSettings(const LineSettings &line) override;
    void hostControlLines(bool dtr, bool rts) override;

    VirtualTime m_time;
    Network m_network;
    MemoryCommControl m_port;
    std::unique_ptr<SerialLine> m_line;
};

} // namespace sim
