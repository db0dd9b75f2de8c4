#include "SerialLine.h"

#include "Modem.h"
#include "TimeSource.h"

#include <cmath>
#include <vector>

namespace sim {

namespace {
constexpr int kPieceBytes = 16; // the computer's driver hands bytes over in small groups
const LineSettings kAdaptorLine{9600, 'N', 8, 1};

int frameBits(const LineSettings &l)
{
    return 1 + l.dataBits + (l.parity == 'N' ? 0 : 1) + l.stopBits;
}

bool parityBit(unsigned value, int dataBits, char parity)
{
    int ones = 0;
    for (int i = 0; i < dataBits; ++i)
        ones += (value >> i) & 1;
    switch (parity) {
    case 'E':
        return ones % 2 == 1;
    case 'O':
        return ones % 2 == 0;
    case 'M':
        return true;
    default:
        return false;
    }
}
} // namespace

qint64 characterMicroseconds(const LineSettings &line)
{
    return qint64(std::llround(frameBits(line) * 1000000.0 / line.baud));
}

QByteArray reframe(const QByteArray &bytes, const LineSettings &sender, const LineSettings &receiver)
{
    const unsigned mask = receiver.dataBits >= 8 ? 0xff : (1u << receiver.dataBits) - 1;
    if (sender.baud == receiver.baud && sender.parity == receiver.parity &&
        sender.dataBits == receiver.dataBits) {
        QByteArray same = bytes;
        const unsigned sentMask = sender.dataBits >= 8 ? 0xff : (1u << sender.dataBits) - 1;
        for (char &c : same)
            c = char(uchar(c) & sentMask & mask);
        return same;
    }
    // The sender's bit stream, idle (1) between back-to-back frames.
    std::vector<bool> bits;
    for (char c : bytes) {
        const unsigned v = uchar(c);
        bits.push_back(false);
        for (int i = 0; i < sender.dataBits; ++i)
            bits.push_back((v >> i) & 1);
        if (sender.parity != 'N')
            bits.push_back(parityBit(v, sender.dataBits, sender.parity));
        for (int i = 0; i < sender.stopBits; ++i)
            bits.push_back(true);
    }
    const double ts = 1.0 / sender.baud;
    const double tr = 1.0 / receiver.baud;
    auto level = [&](double t) {
        const auto k = std::size_t(t / ts);
        return k >= bits.size() ? true : bool(bits[k]);
    };
    QByteArray out;
    double t = 0;
    const double end = double(bits.size()) * ts;
    while (t < end) {
        // The receiver waits for the line to fall: that edge is a start bit to it.
        auto k = std::size_t(std::ceil(t / ts - 1e-9));
        while (k < bits.size() && bits[k])
            ++k;
        if (k >= bits.size())
            break;
        const double start = std::max(t, double(k) * ts);
        unsigned v = 0;
        for (int i = 0; i < receiver.dataBits; ++i)
            if (level(start + (i + 1.5) * tr))
                v |= 1u << i;
        out.append(char(v & mask));
        // Parity and stop bits are sampled and not acted on: the byte is taken as it came.
        t = start + (1 + receiver.dataBits + (receiver.parity == 'N' ? 0 : 1) + 0.5) * tr;
        // A receiver resynchronises only on a falling edge.
        while (t < end && !level(t))
            t += ts / 4;
    }
    return out;
}

// The infra-red adaptor between the port and the modem. After an RTS pulse and DTR low it takes
// commands: D1 C0 is answered with C2, D0 03 45 sets up the link. DTR high again puts it to work.
// It holds one character: of a burst, only the first gets across.
struct SerialLine::Adaptor
{
    enum class State { Off, Command, Ready };
    State state = State::Off;
    bool rtsLow = false;
    bool rtsPulsed = false;
    bool configured = false;
    QByteArray commandBytes;
};

SerialLine::SerialLine(TimeSource &time, Modem &modem, bool irAdaptor) : m_time(time), m_modem(modem)
{
    if (irAdaptor)
        m_adaptor = std::make_unique<Adaptor>();
    m_modem.setTransmitter([this](const QByteArray &bytes) { fromModem(bytes); });
}

SerialLine::~SerialLine()
{
    m_modem.setTransmitter({});
}

qint64 SerialLine::nowUs() const
{
    return m_time.elapsedMs() * 1000;
}

void SerialLine::schedule(qint64 atUs, std::function<void()> fn)
{
    const qint64 delayMs = std::max<qint64>(0, (atUs - nowUs() + 999) / 1000);
    std::weak_ptr<int> life = m_life;
    m_time.after(int(delayMs), [life, fn = std::move(fn)] {
        if (life.lock())
            fn();
    });
}

bool SerialLine::adaptorReady() const
{
    return m_adaptor && m_adaptor->state == Adaptor::State::Ready;
}

void SerialLine::hostControlLines(bool dtr, bool rts)
{
    if (!m_adaptor)
        return;
    Adaptor &a = *m_adaptor;
    if (!rts)
        a.rtsLow = true;
    else if (a.rtsLow) {
        a.rtsLow = false;
        a.rtsPulsed = true;
    }
    if (!dtr && a.rtsPulsed) {
        a.state = Adaptor::State::Command;
        a.rtsPulsed = false;
        a.commandBytes.clear();
        a.configured = false;
    } else if (dtr && a.state == Adaptor::State::Command) {
        a.state = a.configured ? Adaptor::State::Ready : Adaptor::State::Off;
    }
}

void SerialLine::hostWrote(const QByteArray &bytes, const LineSettings &host)
{
    m_host = host;
    const qint64 charUs = characterMicroseconds(host);
    const qint64 start = std::max(nowUs(), m_toModemFreeUs);
    const qint64 arrival = start + charUs * bytes.size();
    m_toModemFreeUs = arrival;
    if (!m_adaptor) {
        toModem(reframe(bytes, host, m_modem.lineSettings()), arrival);
        return;
    }
    const QByteArray atAdaptor = reframe(bytes, host, kAdaptorLine);
    switch (m_adaptor->state) {
    case Adaptor::State::Off:
        return;
    case Adaptor::State::Command:
        schedule(arrival, [this, atAdaptor] { adaptorCommand(atAdaptor); });
        return;
    case Adaptor::State::Ready:
        // The adaptor's single character buffer: the rest of a burst is overrun and lost.
        if (!atAdaptor.isEmpty())
            toModem(atAdaptor.left(1), arrival);
        return;
    }
}

void SerialLine::adaptorCommand(const QByteArray &bytes)
{
    Adaptor &a = *m_adaptor;
    a.commandBytes += bytes;
    if (a.commandBytes.endsWith("\xD1\xC0")) {
        a.commandBytes.clear();
        toHost(reframe(QByteArray("\xC2"), kAdaptorLine, m_host), characterMicroseconds(kAdaptorLine));
    } else if (a.commandBytes.endsWith(QByteArray("\xD0\x03\x45", 3))) {
        a.commandBytes.clear();
        a.configured = true;
    }
}

void SerialLine::toModem(const QByteArray &bytes, qint64 atUs)
{
    if (bytes.isEmpty())
        return;
    schedule(atUs, [this, bytes] { m_modem.receive(bytes); });
}

void SerialLine::fromModem(const QByteArray &bytes)
{
    if (m_hostSource)
        m_host = m_hostSource();
    const LineSettings modemLine = m_modem.lineSettings();
    if (m_adaptor) {
        if (m_adaptor->state != Adaptor::State::Ready)
            return;
        toHost(reframe(bytes, kAdaptorLine, m_host), characterMicroseconds(kAdaptorLine));
        return;
    }
    // The bytes take the sender's time on the line, however many the receiver makes of them.
    const QByteArray received = reframe(bytes, modemLine, m_host);
    const qint64 totalUs = characterMicroseconds(modemLine) * bytes.size();
    toHost(received, received.isEmpty() ? 0 : totalUs / received.size());
}

void SerialLine::toHost(const QByteArray &bytes, qint64 charUs)
{
    QByteArray out;
    std::uniform_real_distribution<double> u(0.0, 1.0);
    for (char c : bytes) {
        if (m_faults.dropRate > 0 && u(m_random) < m_faults.dropRate)
            continue;
        if (m_faults.garbleRate > 0 && u(m_random) < m_faults.garbleRate)
            c = char(uchar(c) ^ 0xA5);
        out.append(c);
    }
    qint64 at = std::max(nowUs(), m_toHostFreeUs);
    for (qsizetype i = 0; i < out.size(); i += kPieceBytes) {
        const QByteArray piece = out.mid(i, kPieceBytes);
        if (m_faults.splitGapMs > 0 && piece.size() > 1) {
            const QByteArray head = piece.left(piece.size() / 2);
            const QByteArray tail = piece.mid(piece.size() / 2);
            at += charUs * head.size();
            schedule(at, [this, head] {
                if (m_deliver)
                    m_deliver(head);
            });
            at += qint64(m_faults.splitGapMs) * 1000 + charUs * tail.size();
            schedule(at, [this, tail] {
                if (m_deliver)
                    m_deliver(tail);
            });
            continue;
        }
        at += charUs * piece.size();
        schedule(at, [this, piece] {
            if (m_deliver)
                m_deliver(piece);
        });
    }
    m_toHostFreeUs = at;
}

void SerialLine::flood(int durationMs)
{
    const LineSettings line = m_modem.lineSettings();
    const qint64 charUs = characterMicroseconds(line);
    const qint64 count = qint64(durationMs) * 1000 / std::max<qint64>(1, charUs);
    QByteArray junk;
    junk.reserve(count);
    std::uniform_int_distribution<int> byte(0x80, 0xfe);
    for (qint64 i = 0; i < count; ++i)
        junk.append(char(byte(m_random)));
    toHost(junk, charUs);
}

void SerialLine::hangUp()
{
    if (m_hangUp)
        m_hangUp();
}

} // namespace sim
