#include "Modem.h"

#include "GroundTruth.h"
#include "Network.h"
#include "TimeSource.h"

namespace sim {

namespace {

const QStringList kLatchedCommands{QStringLiteral("SEL/A1"),   QStringLiteral("SEL/N1"),
                                   QStringLiteral("SEL/N2"),   QStringLiteral("SQUELCH"),
                                   QStringLiteral("ASQUELCH"), QStringLiteral("RFPOWER")};

LineSettings decodeRateByte(int byte, bool spreadSpectrum, bool eightSwitchChart)
{
    static const int zRates[8]{115200, 57600, 38400, 19200, 9600, 4800, 2400, 1200};
    static const int rates[8]{19200, 9600, 4800, 2400, 1200, 600, 300, 19200};
    LineSettings s;
    const int code = byte & 7;
    s.baud = spreadSpectrum && !eightSwitchChart ? zRates[code] : rates[code];
    s.stopBits = (byte & 8) ? 1 : 2;
    s.parity = (byte & 16) ? ((byte & 64) ? 'O' : 'E') : 'N';
    s.dataBits = (byte & 32) ? 8 : 7;
    return s;
}

} // namespace

Modem::Modem(TimeSource &time, const ModemProfile &profile, Network *network, GroundTruth *truth)
    : m_time(time), m_spec(profile), m_network(network), m_truth(truth),
      m_loader(*this, profile.operatingSystem)
{
    m_version = profile.version;
    m_hoursBaseMs = m_time.elapsedMs();
    loadFactoryDefaults();
    for (auto it = profile.factory.begin(); it != profile.factory.end(); ++it)
        m_factory[it.key().toUpper()] = it.value();
    m_saved = m_factory;
    for (auto it = profile.settings.begin(); it != profile.settings.end(); ++it)
        m_saved[it.key().toUpper()] = it.value();
    m_savedRoutes = profile.routes;
    m_savedAppends = profile.appends;
    m_working = m_saved;
    m_latched = m_saved;
    m_activeComrate = m_saved.value(QStringLiteral("COMRATE")).toInt();
    m_routes = m_savedRoutes;
    m_appends = m_savedAppends;
    m_mode = profile.operatingSystem ? Mode::Command : Mode::Loader;
}

Modem::~Modem() = default;

void Modem::loadFactoryDefaults()
{
    const bool z = m_spec.model == QLatin1String("Q4Z");
    m_factory = {
        {QStringLiteral("MODEL"), m_spec.model},
        {QStringLiteral("OPTION"), QString::number(m_spec.option)},
        {QStringLiteral("S/N"), QString::number(m_spec.serial)},
        {QStringLiteral("VERSION"), m_spec.version},
        {QStringLiteral("ADDRESS"), QStringLiteral("1")},
        {QStringLiteral("NETWORK"), QStringLiteral("37")},
        {QStringLiteral("SETCONNECT"), QStringLiteral("0")},
        {QStringLiteral("SEL/A1"), z ? QStringLiteral("1") : QStringLiteral("8")},
        {QStringLiteral("SEL/N1"), z ? QStringLiteral("0") : QStringLiteral("8832")},
        {QStringLiteral("SEL/N2"), QStringLiteral("0")},
        {QStringLiteral("SQUELCH"), QStringLiteral("30")},
        {QStringLiteral("ASQUELCH"), QStringLiteral("40")},
        {QStringLiteral("RFLOW"), QStringLiteral("OFF")},
        {QStringLiteral("RXMARK"), QStringLiteral("0")},
        {QStringLiteral("RFPOWER"), QStringLiteral("0")},
        {QStringLiteral("COMRATE"), z ? QStringLiteral("43") : QStringLiteral("40")},
        {QStringLiteral("DATARATE"), QStringLiteral("0")},
        {QStringLiteral("RFWAIT"), QStringLiteral("2")},
        {QStringLiteral("RXDATA"), QStringLiteral("2")},
        {QStringLiteral("RXEND"), QStringLiteral("1")},
        {QStringLiteral("TXFLAG"), QStringLiteral("3")},
        {QStringLiteral("TXEND"), QStringLiteral("1")},
        {QStringLiteral("FRACK"), QStringLiteral("50")},
        {QStringLiteral("RETRY"), QStringLiteral("6")},
        {QStringLiteral("CARBSY"), QStringLiteral("1")},
        {QStringLiteral("PACKLEN"), QStringLiteral("256")},
        {QStringLiteral("SENDPACK"), QStringLiteral("13")},
        {QStringLiteral("COMMAND"), QStringLiteral("3")},
        {QStringLiteral("TERMC"), QStringLiteral("OFF")},
        {QStringLiteral("TERMTIME"), QStringLiteral("50")},
        {QStringLiteral("AUTOLF"), QStringLiteral("ON")},
        {QStringLiteral("ECHO"), QStringLiteral("ON")},
        {QStringLiteral("EDIT"), QStringLiteral("ON")},
        {QStringLiteral("DTR_ENAB"), QStringLiteral("OFF")},
        {QStringLiteral("MODECONTR"), QStringLiteral("OFF")},
        {QStringLiteral("MESSFORM"), QStringLiteral("OFF")},
        {QStringLiteral("MULTID"), QStringLiteral("OFF")},
        {QStringLiteral("XHFLOW"), QStringLiteral("OFF")},
        {QStringLiteral("XSFLOW"), QStringLiteral("ON")},
        {QStringLiteral("TYPERR"), QStringLiteral("OFF")},
        {QStringLiteral("TYPSYS"), QStringLiteral("ON")},
        {QStringLiteral("SECURITY"), QStringLiteral("0")},
    };
}

bool Modem::locked() const
{
    return m_working.value(QStringLiteral("SECURITY")) != QLatin1String("0");
}

int Modem::address() const
{
    return m_working.value(QStringLiteral("ADDRESS")).toInt();
}

int Modem::networkId() const
{
    return m_working.value(QStringLiteral("NETWORK")).toInt();
}

QString Modem::channel() const
{
    return m_latched.value(QStringLiteral("SEL/A1")) + QLatin1Char(',') +
           m_latched.value(QStringLiteral("SEL/N1")) + QLatin1Char(',') +
           m_latched.value(QStringLiteral("SEL/N2"));
}

double Modem::hoursRun() const
{
    return m_spec.hours + double(m_time.elapsedMs() - m_hoursBaseMs) / 3600000.0;
}

LineSettings Modem::lineSettings() const
{
    const LineSettings loader{19200, 'N', 8, 1};
    if (m_mode == Mode::Loader)
        return loader;
    const bool z = m_spec.model == QLatin1String("Q4Z");
    if (m_spec.switches == 8)
        return decodeRateByte(m_spec.switchBits & 0x7f, z, true);
    // Switch 1 down forces the fixed start-up rate, so that a unit at an unknown rate can be found.
    if ((m_spec.switchBits & 1) == 0)
        return loader;
    return decodeRateByte(m_activeComrate, z, false);
}

void Modem::after(std::chrono::milliseconds delay, std::function<void()> fn)
{
    std::weak_ptr<int> life = m_life;
    m_time.after(int(delay.count()), [life, fn = std::move(fn)] {
        if (life.lock())
            fn();
    });
}

void Modem::afterUnlessInterrupted(std::chrono::milliseconds delay, std::function<void()> fn)
{
    after(delay, [this, generation = m_generation, fn = std::move(fn)] {
        if (generation == m_generation)
            fn();
    });
}

void Modem::send(const QByteArray &bytes)
{
    if (!bytes.isEmpty() && m_transmit && !m_spec.dead)
        m_transmit(bytes);
}

QByteArray Modem::lineEnd() const
{
    return m_working.value(QStringLiteral("AUTOLF")) == QLatin1String("ON") ? QByteArray("\r\n")
                                                                            : QByteArray("\r");
}

QByteArray Modem::banner() const
{
    const QByteArray le = lineEnd();
    return le + "Varnel " + model().toLatin1() + " Wireless Data Modem" + le +
           "Copyright (c) 1994-2002 Varnel Inc." + le + "Firmware Version " + m_version.toLatin1() + le +
           "Unit Address = " + QByteArray::number(address()) + le;
}

void Modem::powerUp()
{
    restart(true);
}

void Modem::reset()
{
    restart(true);
}

void Modem::restart(bool printBanner)
{
    ++m_generation;
    m_working = m_saved;
    m_latched = m_saved;
    m_routes = m_savedRoutes;
    m_appends = m_savedAppends;
    m_activeComrate = m_saved.value(QStringLiteral("COMRATE")).toInt();
    m_console.clear();
    m_instruments.reset();
    m_links.reset();
    if (m_truth)
        m_truth->resets.append({m_time.elapsedMs(), address()});
    if (!m_loader.hasSystem()) {
        m_loader.enter();
        return;
    }
    const int lastSwitch = m_spec.switches == 8 ? 0x80 : 0x02;
    if (m_spec.switchBits & lastSwitch) {
        // Operating mode: straight into converse with the set-connect address, no prompt.
        m_mode = Mode::Operating;
        if (printBanner)
            send(banner());
        return;
    }
    m_mode = Mode::Command;
    if (printBanner)
        send(banner() + "CMD:");
}

void Modem::receive(const QByteArray &bytes)
{
    if (m_spec.dead)
        return;
    for (char c : bytes)
        takeByte(c);
}

void Modem::takeByte(char c)
{
    switch (m_mode) {
    case Mode::Loader:
        m_loader.take(c);
        return;
    case Mode::Converse:
    case Mode::Operating:
        m_links.converseByte(c);
        return;
    case Mode::Command:
    case Mode::Remote:
        m_console.take(c);
        return;
    }
}

void Modem::interrupt()
{
    // Whatever was going on ends here; answers still on their way are dropped.
    ++m_generation;
    m_console.clear();
    m_instruments.stopStream();
    m_mode = Mode::Command;
    send(lineEnd() + "CMD:");
}

void Modem::setWorking(const QString &command, const QString &value)
{
    m_working[command] = value;
    if (m_truth)
        m_truth->changes.append({m_time.elapsedMs(), address(), command, value});
}

void Modem::factoryDefault()
{
    const QString keepAddress = m_working.value(QStringLiteral("ADDRESS"));
    m_working = m_factory;
    m_working[QStringLiteral("ADDRESS")] = keepAddress;
    m_latched = m_working;
    m_routes.clear();
    m_appends.clear();
    m_instruments.stopStream();
    m_instruments.setDataQuality(false);
    if (m_truth)
        m_truth->factoryDefaults.append({m_time.elapsedMs(), address()});
}

void Modem::save(bool factoryRecord)
{
    if (factoryRecord)
        m_factory = m_working;
    m_saved = m_working;
    m_savedRoutes = m_routes;
    m_savedAppends = m_appends;
}

void Modem::latch()
{
    for (const QString &c : kLatchedCommands)
        m_latched[c] = m_working.value(c);
}

void Modem::installSystem(const QString &version)
{
    m_version = version;
    loadFactoryDefaults();
    m_factory[QStringLiteral("MODEL")] = QStringLiteral("Q4U");
    m_factory[QStringLiteral("OPTION")] = QStringLiteral("0");
    m_factory[QStringLiteral("S/N")] = QStringLiteral("0");
    m_factory[QStringLiteral("VERSION")] = m_version;
    m_saved = m_factory;
    m_savedRoutes.clear();
    m_savedAppends.clear();
}

} // namespace sim
