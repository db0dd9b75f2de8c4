#include "Network.h"

#include "Modem.h"
#include "TimeSource.h"

#include <cmath>

namespace sim {

namespace {
constexpr double kNoiseFloorMicrovolts = 0.3;
constexpr int kOverheadBytes = 24; // address, control and check bytes of a frame
using namespace std::chrono_literals;

constexpr auto kTurnaround = 30ms; // receive to transmit, per hop
constexpr auto kFrackUnit = 10ms;  // FRACK counts in tens of milliseconds

int airRateBitsPerSecond(const Modem &m)
{
    // Narrow band (datarate 64) halves the air rate.
    return m.value(QStringLiteral("DATARATE")).toInt() >= 64 ? 2400 : 4800;
}

std::chrono::milliseconds airTime(int bytes, int bitsPerSecond)
{
    return std::chrono::milliseconds(
        qint64(std::ceil(double(bytes + kOverheadBytes) * 8000.0 / bitsPerSecond)));
}
} // namespace

int levelFromMicrovolts(double microvolts)
{
    if (microvolts <= 0.1)
        return 0;
    return std::clamp(int(std::lround(20.0 * std::log10(microvolts / 0.1))), 0, 255);
}

int dataQualityFigure(double signalMicrovolts, double interferenceMicrovolts)
{
    const double floorRise = (interferenceMicrovolts + kNoiseFloorMicrovolts) / kNoiseFloorMicrovolts;
    return std::clamp(
        int(std::lround(40.0 + 30.0 * std::log10(signalMicrovolts) - 20.0 * std::log10(floorRise))), 0, 100);
}

struct Network::Link
{
    LinkProfile profile;
    bool forcedDown = false;
};

Network::Network(TimeSource &time, const Scenario &scenario)
    : m_time(time), m_localIndex(scenario.localIndex), m_interference(scenario.interference),
      m_random(scenario.seed)
{
    for (const ModemProfile &profile : scenario.modems)
        m_modems.push_back(std::make_unique<Modem>(time, profile, this, &m_truth));
    if (m_modems.empty())
        m_modems.push_back(std::make_unique<Modem>(time, ModemProfile{}, this, &m_truth));
    m_localIndex = std::clamp(m_localIndex, 0, int(m_modems.size()) - 1);
    for (const LinkProfile &l : scenario.links) {
        m_links.push_back(std::make_unique<Link>(Link{l, false}));
        for (const LinkDrop &d : l.drops)
            m_truth.outages.append({l.from, l.to, d.atMs, d.atMs + d.durationMs});
    }
}

Network::~Network() = default;

Modem *Network::modemAt(int address)
{
    for (auto &m : m_modems)
        if (m->address() == address)
            return m.get();
    return nullptr;
}

QList<Modem *> Network::modems() const
{
    QList<Modem *> list;
    for (const auto &m : m_modems)
        list.append(m.get());
    return list;
}

Network::Link *Network::linkBetween(int a, int b)
{
    for (auto &l : m_links)
        if ((l->profile.from == a && l->profile.to == b) || (l->profile.from == b && l->profile.to == a))
            return l.get();
    return nullptr;
}

const Network::Link *Network::linkBetween(int a, int b) const
{
    for (const auto &l : m_links)
        if ((l->profile.from == a && l->profile.to == b) || (l->profile.from == b && l->profile.to == a))
            return l.get();
    return nullptr;
}

bool Network::linkUp(const Link &link, qint64 atMs) const
{
    if (link.forcedDown)
        return false;
    for (const LinkDrop &d : link.profile.drops)
        if (atMs >= d.atMs && atMs < d.atMs + d.durationMs)
            return false;
    return true;
}

bool Network::hears(const Modem &a, const Modem &b) const
{
    return !a.dead() && !b.dead() && a.hasOperatingSystem() && b.hasOperatingSystem() &&
           a.networkId() == b.networkId() && a.channel() == b.channel();
}

double Network::noise(double spread)
{
    if (spread <= 0)
        return 0;
    std::normal_distribution<double> n(0.0, spread);
    return n(m_random);
}

double Network::interferenceOn(const QString &channel)
{
    double strongest = 0;
    std::uniform_real_distribution<double> u(0.0, 1.0);
    for (const InterferenceSpec &i : std::as_const(m_interference))
        if ((i.channel.isEmpty() || i.channel == channel) && u(m_random) < i.dutyCycle)
            strongest = std::max(strongest, i.microvolts * (1.0 + noise(i.spread)));
    return strongest;
}

Network::Delivery Network::send(Modem &from, const QList<int> &route, int payloadBytes)
{
    Delivery d;
    // The chain of units the packet passes: sender, repeaters, destination.
    QList<Modem *> chain{&from};
    for (int address : route)
        chain.append(modemAt(address));
    const int bitsPerSecond = airRateBitsPerSecond(from);
    const int retriesAllowed = from.value(QStringLiteral("RETRY")).toInt();
    const auto frack = std::max(1, from.value(QStringLiteral("FRACK")).toInt()) * kFrackUnit;
    const int hops = int(route.size());
    const auto attemptTime =
        hops * (airTime(payloadBytes, bitsPerSecond) + airTime(0, bitsPerSecond) + kTurnaround);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    qint64 at = m_time.elapsedMs();
    for (int attempt = 0; attempt <= retriesAllowed; ++attempt) {
        bool ok = true;
        double lastSignal = 0, lastInterference = 0;
        const Link *lastLink = nullptr;
        for (int h = 0; h < hops && ok; ++h) {
            Modem *a = chain[h];
            Modem *b = chain[h + 1];
            const Link *link = (a && b) ? linkBetween(a->address(), b->address()) : nullptr;
            if (!a || !b || !link || !hears(*a, *b) || !linkUp(*link, at)) {
                ok = false;
                break;
            }
            const double signal =
                std::max(0.1, link->profile.microvolts + noise(link->profile.noiseMicrovolts));
            const double interference = interferenceOn(b->channel());
            // A weak signal against the interference loses packets on top of the path's own losses.
            const double margin = signal / (interference + kNoiseFloorMicrovolts);
            const double loss = std::clamp(link->profile.lossRate + (margin < 2.0 ? 0.5 : 0.0), 0.0, 1.0);
            if (u(m_random) < loss)
                ok = false;
            lastSignal = signal;
            lastInterference = interference;
            lastLink = link;
        }
        if (ok) {
            d.delivered = true;
            d.retries = attempt;
            d.duration += attemptTime;
            d.destination = chain.last();
            d.microvolts = lastSignal;
            d.quality = std::clamp(int(std::lround(dataQualityFigure(lastSignal, lastInterference) +
                                                   noise(lastLink->profile.qualitySpread))),
                                   0, 100);
            break;
        }
        d.retries = attempt;
        d.duration += attemptTime + frack;
        at = m_time.elapsedMs() + d.duration.count();
    }
    m_truth.packets.append({m_time.elapsedMs(), from.address(), route.isEmpty() ? 0 : route.last(), d.retries,
                            d.delivered, payloadBytes});
    return d;
}

double Network::meterReading(const Modem &receiver)
{
    double reading = kNoiseFloorMicrovolts * (1.0 + std::abs(noise(0.3)));
    reading = std::max(reading, interferenceOn(receiver.channel()));
    const qint64 now = m_time.elapsedMs();
    for (const auto &m : m_modems) {
        if (m.get() == &receiver || !m->transmitterKeyed() || m->dead() || m->channel() != receiver.channel())
            continue;
        const Link *link = linkBetween(m->address(), receiver.address());
        if (!link || !linkUp(*link, now))
            continue;
        reading =
            std::max(reading, std::max(0.1, link->profile.microvolts + noise(link->profile.noiseMicrovolts)));
    }
    return reading;
}

bool Network::carrierDetect(const Modem &receiver)
{
    const int level = levelFromMicrovolts(meterReading(receiver));
    const int squelch = receiver.latchedValue(QStringLiteral("SQUELCH")).toInt();
    const bool noiseSquelch = receiver.value(QStringLiteral("OPTION")).toInt() & 64;
    const int asquelch = receiver.latchedValue(QStringLiteral("ASQUELCH")).toInt();
    return level > squelch && (!noiseSquelch || level > asquelch);
}

void Network::setLinkDown(int a, int b, bool down)
{
    Link *link = linkBetween(a, b);
    if (!link)
        return;
    const qint64 now = m_time.elapsedMs();
    if (down && !link->forcedDown)
        m_truth.outages.append({a, b, now, -1});
    if (!down && link->forcedDown)
        for (GroundTruth::Outage &o : m_truth.outages)
            if (o.from == a && o.to == b && o.endMs < 0)
                o.endMs = now;
    link->forcedDown = down;
}

void Network::scheduleDrop(int a, int b, qint64 atMs, qint64 durationMs)
{
    if (Link *link = linkBetween(a, b)) {
        link->profile.drops.append({atMs, durationMs});
        m_truth.outages.append({a, b, atMs, atMs + durationMs});
    }
}

void Network::setLinkSignal(int a, int b, double microvolts)
{
    if (Link *link = linkBetween(a, b))
        link->profile.microvolts = microvolts;
}

} // namespace sim
