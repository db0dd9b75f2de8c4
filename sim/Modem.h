#pragma once

#include "CommControl.h"
#include "Scenario.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

class TimeSource;

namespace sim {

class Network;
struct GroundTruth;
struct ParameterDef;

// One modem's firmware: the command interpreter on its serial port, its three copies of the
// settings (factory, saved, working) plus the values the radio runs on since the last latch,
// its operating modes and its flash loader. It knows nothing of the program on the other end of
// the cable: it takes bytes and sends bytes.
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
    QString
    channel() const; // "a1,n1,n2" of the latched synthesizer: two modems hear each other only on the same one
    QString model() const { return m_working.value(QStringLiteral("MODEL")); }
    QString firmwareVersion() const { return m_version; }
    bool hasOperatingSystem() const { return m_hasOs; }
    Mode mode() const { return m_mode; }
    bool signalStreaming() const { return m_rxStream; }
    bool dataQualityMode() const { return m_dqMode; }
    bool transmitterKeyed() const { return m_radioOn; }
    const ModemProfile &profile() const { return m_spec; }
    double hoursRun() const;

    // Faults on demand.
    void setDead(bool dead) { m_spec.dead = dead; }
    bool dead() const { return m_spec.dead; }
    // Extra time before every reply.
    void setReplyDelayMs(int ms) { m_extraDelayMs = ms; }

    // Over the air: a line that a programming link brought from another modem. The modem runs it
    // as its own interpreter would and answers with its text and the "RPG:" prompt; delayMs is
    // the time it takes to do so. Nothing comes back when the modem restarted on the line.
    QByteArray remoteLine(const QString &line, int *delayMs);
    // Data that came over the air from a connected partner, put out on the serial port.
    void airData(const QByteArray &data);

private:
    struct Outcome;

    void loadFactoryDefaults();
    void restart(bool printBanner);
    QByteArray banner() const;
    QByteArray lineEnd() const;
    void send(const QByteArray &bytes);
    void schedule(int ms, std::function<void()> fn);

    // The serial console.
    void consoleByte(char c);
    void commandByte(char c);
    void interrupt();
    void runLine(const QString &line);
    Outcome executeLine(const QString &line, bool remote, int thinkMs);
    void commandDone();

    // Executes one ":"-separated command. Returns false when the line must stop there.
    bool execute(const QString &command, bool overAir, Outcome &out);
    bool executeParameter(const ParameterDef &def, const QString &argument, Outcome &out);
    void setWorking(const QString &command, const QString &value);
    QByteArray listChanged() const;
    QByteArray inoutReply(const QString &argument);
    QByteArray tableReply(const QStringList &table) const;
    bool setTableLine(QStringList &table, const QString &argument);

    // Converse and remote modes.
    void converseByte(char c);
    void remoteByte(char c);
    void openLink(const QList<int> &route, bool programming);
    void sendConversePacket();
    void streamTick(quint64 generation);

    // Flash loader.
    void enterLoader();
    void loaderByte(char c);
    void finishImage();

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
    bool m_hasOs = true;
    qint64 m_hoursBaseMs = 0;

    Mode m_mode = Mode::Command;
    QByteArray m_lineBuffer;
    QByteArray m_pending; // typed while a command runs; taken when the prompt is back
    bool m_busy = false;
    int m_activeComrate = 0;
    quint64 m_generation = 0; // bumped by Ctrl-C and restarts: replies scheduled before it are dropped
    bool m_rxStream = false;
    bool m_dqMode = false;
    bool m_radioOn = false;
    int m_extraDelayMs = 0;
    int m_txPackets = 0;
    int m_txRetries = 0;

    // Converse: the route of the partner; remote: the route of the programming link.
    QList<int> m_connectRoute;
    QList<int> m_remoteRoute;
    QByteArray m_converseBuffer;

    // Loader.
    enum class LoaderState { Prompt, Receiving, Programming, Between };
    LoaderState m_loaderState = LoaderState::Prompt;
    QByteArray m_image;
    QByteArray m_block;
    int m_blocks = 0;
};

} // namespace sim
