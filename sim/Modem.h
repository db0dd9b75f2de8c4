#pragma once

#include "CommControl.h"
#include "Console.h"
#include "FlashLoader.h"
#include "Instruments.h"
#include "Links.h"
#include "Scenario.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <chrono>
#include <functional>
#include <memory>

class TimeSource;

namespace sim {

class Network;
struct GroundTruth;

// How long the unit takes from a restart order to its banner.
inline constexpr std::chrono::milliseconds kRestartTime{400};

// One modem's firmware: its three copies of the settings (factory, saved, working) plus the values
// the radio runs on since the last latch, its identity and operating modes, and the parts that
// work on them: the console at "CMD:", the radio links, the instruments and the flash loader. It
// knows nothing of the program on the other end of the cable: it takes bytes and sends bytes.
class Modem
{
public:
    enum class Mode {
        Command,   // at "CMD:"
        Converse,  // connected, data goes over the air
        Remote,    // lines go to a remote modem that answers "RPG:"
        Loader,    // the flash loader at "FLASH:"
        Operating, // powered up with the last setup switch up: data mode, no prompt
    };
    using Settings = QMap<QString, QString>; // full command name -> value text

    Modem(TimeSource &time, const ModemProfile &profile, Network *network = nullptr,
          GroundTruth *truth = nullptr);
    ~Modem();
    Modem(const Modem &) = delete;
    Modem &operator=(const Modem &) = delete;

    // The serial port. Bytes arrive here already decoded by the line; what the modem sends goes
    // to the transmitter one piece at a time, to be paced by the line.
    void receive(const QByteArray &bytes);
    void setTransmitter(std::function<void(const QByteArray &)> transmit)
    {
        m_transmit = std::move(transmit);
    }
    // Rate and frame the serial port runs at now: the loader's fixed rate, the start-up rate the
    // setup switches force, or the comrate byte.
    LineSettings lineSettings() const;

    // Power and the reset button: the unit restarts from its saved copy and prints its banner.
    void powerUp();
    void reset();
    void setSwitchBits(int bits) { m_spec.switchBits = bits; }

    // Ground truth of the settings.
    QString value(const QString &command) const { return m_working.value(command); }
    QString savedValue(const QString &command) const { return m_saved.value(command); }
    QString factoryValue(const QString &command) const { return m_factory.value(command); }
    // What the radio runs on: the latches, squelch and power as of the last latch or restart.
    QString latchedValue(const QString &command) const { return m_latched.value(command); }
    const QStringList &routes() const { return m_routes; }
    const QStringList &appends() const { return m_appends; }
    int address() const;
    // A security value is set: the unit refuses every change until the same value is given again.
    bool locked() const;
    int networkId() const;
    // "a1,n1,n2" of the latched synthesizer: two modems hear each other only on the same one.
    QString channel() const;
    QString model() const { return m_working.value(QStringLiteral("MODEL")); }
    QString firmwareVersion() const { return m_version; }
    bool hasOperatingSystem() const { return m_loader.hasSystem(); }
    Mode mode() const { return m_mode; }
    bool signalStreaming() const { return m_instruments.streaming(); }
    bool dataQualityMode() const { return m_instruments.dataQuality(); }
    bool transmitterKeyed() const { return m_instruments.keyed(); }
    const ModemProfile &profile() const { return m_spec; }
    double hoursRun() const;

    // Faults on demand.
    void setDead(bool dead) { m_spec.dead = dead; }
    bool dead() const { return m_spec.dead; }
    // Extra time before every reply.
    void setReplyDelay(std::chrono::milliseconds delay) { m_replyDelay = delay; }

    // The firmware's own parts and the command handlers work through what follows.
    Console &console() { return m_console; }
    Links &links() { return m_links; }
    Instruments &instruments() { return m_instruments; }
    FlashLoader &loader() { return m_loader; }
    Network *network() const { return m_network; }
    GroundTruth *truth() const { return m_truth; }
    TimeSource &time() const { return m_time; }

    void send(const QByteArray &bytes);
    QByteArray lineEnd() const;
    QByteArray banner() const;
    std::chrono::milliseconds replyDelay() const { return m_replyDelay; }
    // Runs fn after the delay, if the unit still exists.
    void after(std::chrono::milliseconds delay, std::function<void()> fn);
    // The same, unless Ctrl-C or a restart came in between: answers on their way are dropped then.
    void afterUnlessInterrupted(std::chrono::milliseconds delay, std::function<void()> fn);

    // One byte from the serial port, to the part the mode gives it to.
    void takeByte(char c);
    void setMode(Mode mode) { m_mode = mode; }
    // Ctrl-C: whatever was going on ends, and the prompt comes back.
    void interrupt();
    void restart(bool printBanner);

    void setWorking(const QString &command, const QString &value);
    void setRoutes(const QStringList &routes) { m_routes = routes; }
    void setAppends(const QStringList &appends) { m_appends = appends; }
    // Factory values come back into the working copy; the unit keeps its address.
    void factoryDefault();
    // The working copy becomes the saved one; the second bank also takes it as the factory record.
    void save(bool factoryRecord);
    // The radio takes the working latches, squelch and power.
    void latch();
    // A newly loaded system starts from blank settings, identity included.
    void installSystem(const QString &version);

private:
    void loadFactoryDefaults();

    TimeSource &m_time;
    ModemProfile m_spec;
    Network *m_network;
    GroundTruth *m_truth;
    std::function<void(const QByteArray &)> m_transmit;
    std::shared_ptr<int> m_life = std::make_shared<int>(0);

    Settings m_factory;
    Settings m_saved;
    Settings m_working;
    Settings m_latched;
    QStringList m_routes;
    QStringList m_appends;
    QStringList m_savedRoutes;
    QStringList m_savedAppends;
    QString m_version;
    qint64 m_hoursBaseMs = 0;

    Mode m_mode = Mode::Command;
    int m_activeComrate = 0;
    quint64 m_generation = 0; // bumped by Ctrl-C and restarts
    std::chrono::milliseconds m_replyDelay{0};

    Console m_console{*this};
    Links m_links{*this};
    Instruments m_instruments{*this};
    FlashLoader m_loader;
};

} // namespace sim
