#pragma once

#include "GroundTruth.h"
#include "Scenario.h"

#include <QList>
#include <chrono>
#include <memory>
#include <random>

class TimeSource;

namespace sim {

class Modem;

// The air between the modems: who hears whom, how strongly, on which channel, and what a packet
// costs in time and retries. Modems ask it to carry their packets; it answers with what happened
// and records the truth.
class Network
{
public:
    Network(TimeSource &time, const Scenario &scenario);
    ~Network();
    Network(const Network &) = delete;
    Network &operator=(const Network &) = delete;

    Modem &local() { return *m_modems.at(m_localIndex); }
    Modem *modemAt(int address);
    QList<Modem *> modems() const;
    GroundTruth &truth() { return m_truth; }
    const GroundTruth &truth() const { return m_truth; }
    TimeSource &time() { return m_time; }

    // What became of one packet sent from a modem along a route (repeaters, then destination).
    struct Delivery
    {
        bool delivered = false;
        int retries = 0; // transmissions beyond the first
        std::chrono::milliseconds duration{
            0}; // from the first transmission to the acknowledgement or the giving up
        Modem *destination = nullptr;
        double microvolts = 0; // signal of the last hop as the destination heard it
        int quality = 0;       // data quality figure of the path, 0 to 100
    };
    Delivery send(Modem &from, const QList<int> &route, int payloadBytes);

    // The receive signal meter of a modem right now: the strongest keyed transmitter it hears on
    // its channel, the interference there, and the noise floor, in microvolts.
    double meterReading(const Modem &receiver);
    // Whether the receiver's carrier indicator is lit at its latched squelch settings.
    bool carrierDetect(const Modem &receiver);

    // Faults and changes during a run.
    void setLinkDown(int a, int b, bool down);
    void scheduleDrop(int a, int b, qint64 atMs, qint64 durationMs);
    void setLinkSignal(int a, int b, double microvolts);

private:
    struct Link;
    Link *linkBetween(int a, int b);
    const Link *linkBetween(int a, int b) const;
    bool linkUp(const Link &link, qint64 atMs) const;
    bool hears(const Modem &a, const Modem &b) const;
    double noise(double spread);
    double interferenceOn(const QString &channel);

    TimeSource &m_time;
    GroundTruth m_truth;
    std::vector<std::unique_ptr<Modem>> m_modems;
    int m_localIndex = 0;
    std::vector<std::unique_ptr<Link>> m_links;
    QList<InterferenceSpec> m_interference;
    std::mt19937 m_random;
};

// The data quality figure (0 to 100) of a packet heard at the signal against the interference on
// the channel, before the spread from one packet to the next: interference above the noise floor
// costs what it raises the floor by.
int dataQualityFigure(double signalMicrovolts, double interferenceMicrovolts);

// Signal level in the receiver's own scale (0 to 255), as squelch settings count it.
int levelFromMicrovolts(double microvolts);

} // namespace sim
