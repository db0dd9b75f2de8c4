#pragma once

#include <QByteArray>
#include <QString>

namespace sim {

class Modem;

// What the unit measures and keys for the diagnostics: the signal meter it streams at the prompt,
// the data-quality samples it adds to converse acknowledgements, its transmitter keyed on demand,
// and the status latch of its receiver.
class Instruments
{
public:
    explicit Instruments(Modem &modem) : m_modem(modem) {}

    bool streaming() const { return m_streaming; }
    bool dataQuality() const { return m_dataQuality; }
    bool keyed() const { return m_keyed; }

    void startStream();
    void stopStream() { m_streaming = false; }
    void setDataQuality(bool on) { m_dataQuality = on; }
    void key(bool on) { m_keyed = on; }
    // A restart turns everything off.
    void reset();
    // The receiver's status latch: bit 2 is the carrier indicator.
    int receiverStatus() const;

private:
    void streamTick();

    Modem &m_modem;
    bool m_streaming = false;
    bool m_dataQuality = false;
    bool m_keyed = false;
};

} // namespace sim
