#include "SimulatedModemLink.h"

namespace sim {

SimulatedModemLink::SimulatedModemLink(const Scenario &scenario) : m_network(m_time, scenario)
{
    m_line = std::make_unique<SerialLine>(m_time, m_network.local(), scenario.irAdaptor);
    m_line->setHostReceiver([this](const QByteArray &bytes) { m_port.feed(bytes); });
    m_line->setHangUp([this] { m_port.hangUp(); });
    m_port.setClock(&m_time);
    m_port.setPeer(this);
    const LineSettings start =
        scenario.irAdaptor ? LineSettings{9600, 'N', 8, 1} : m_network.local().lineSettings();
    m_port.setSettings(lineSettingsText(start));
    m_port.setPortOpen(true);
    m_port.setAutoProcess(CommControl::kAutoProcessProgram);
}

SimulatedModemLink::~SimulatedModemLink()
{
    m_port.setPeer(nullptr);
}

void SimulatedModemLink::hostWrote(const QByteArray &bytes, const LineSettings &line)
{
    m_line->hostWrote(bytes, line);
}

void SimulatedModemLink::hostLineSettings(const LineSettings &line)
{
    m_line->hostLineSettings(line);
}

void SimulatedModemLink::hostControlLines(bool dtr, bool rts)
{
    m_line->hostControlLines(dtr, rts);
}

} // namespace sim
