#include "Modem.h"

#include "Network.h"
#include "Parameters.h"
#include "TimeSource.h"

#include <QRegularExpression>
#include <cmath>

namespace sim {

namespace {

constexpr char kCtrlC = 3;
constexpr char kSoh = 1;
constexpr char kStx = 2;
constexpr char kEot = 4;
constexpr char kEnq = 5;
constexpr int kBlockSize = 4096;
constexpr int kMaxLine = 255;

// How long the firmware takes before it starts to answer, by kind of work.
constexpr int kThinkMs = 25;
constexpr int kLatchMs = 40;
constexpr int kSaveMs = 120;
constexpr int kFactoryMs = 250;
constexpr int kRestartMs = 400;
constexpr int kBlockProgramMs = 180;
constexpr int kImageCommitMs = 600;
constexpr int kStreamPeriodMs = 250;
constexpr int kRemoteThinkMs = 30;

const QStringList kLatchedCommands{QStringLiteral("SEL/A1"),   QStringLiteral("SEL/N1"),
                                   QStringLiteral("SEL/N2"),   QStringLiteral("SQUELCH"),
                                   QStringLiteral("ASQUELCH"), QStringLiteral("RFPOWER")};

// Commands that are not settings. Each has its full name and the shortest abbreviation taken.
struct Action
{
    const char *command;
    int minLength;
};
const QList<Action> kActions{
    {"FACTDEFT", 2},   {"SAVE", 2},    {"LATCH", 3}, {"RESET", 3},   {"HELP", 2},
    {"ROUTE", 3},      {"APPEND", 3},  {"INOUT", 3}, {"HOURS", 3},   {"COPYRIGHT", 3},
    {"TXSTAT", 3},     {"RXS", 3},     {"DQ", 2},    {"CONNECT", 4}, {"CONVERSE", 4},
    {"DISCONNECT", 4}, {"PROGRAM", 4}, {"RADIO", 3}, {"FLASH", 3},
};

enum class Match { Found, Ambiguous, Invalid };

// The interpreter takes a command by its full name or by any abbreviation at least as long as
// the command's shortest form. A word that only starts a longer name is ambiguous.
Match matchCommand(const QString &word, QString *full)
{
    const QString w = word.toUpper();
    QStringList names;
    QList<int> mins;
    for (const ParameterDef &p : parameterDefs()) {
        names << QLatin1String(p.command);
        mins << p.minLength;
    }
    for (const Action &a : kActions) {
        names << QLatin1String(a.command);
        mins << a.minLength;
    }
    for (const QString &n : std::as_const(names))
        if (n == w) {
            *full = n;
            return Match::Found;
        }
    QStringList found;
    bool prefixOfSome = false;
    for (int i = 0; i < names.size(); ++i) {
        if (!names[i].startsWith(w))
            continue;
        prefixOfSome = true;
        if (w.size() >= mins[i])
            found << names[i];
    }
    if (found.size() == 1) {
        *full = found.first();
        return Match::Found;
    }
    return prefixOfSome ? Match::Ambiguous : Match::Invalid;
}

QList<int> parseRoute(const QString &text, bool *ok)
{
    QList<int> route;
    *ok = false;
    const QStringList parts = text.split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (parts.isEmpty() || parts.size() > 4)
        return route;
    for (const QString &p : parts) {
        bool isNumber = false;
        const int v = p.trimmed().toInt(&isNumber);
        if (!isNumber || v < 1 || v > 255)
            return {};
        route << v;
    }
    *ok = true;
    return route;
}

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

struct Modem::Outcome
{
    QByteArray text;
    int delayMs = kThinkMs;
    bool prompt = true;
    std::function<void()> then; // runs when the answer has gone out
};

Modem::Modem(TimeSource &time, const ModemProfile &profile, Network *network, GroundTruth *truth)
    : m_time(time), m_spec(profile), m_network(network), m_truth(truth)
{
    m_version = profile.version;
    m_hasOs = profile.operatingSystem;
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
    m_mode = !m_hasOs ? Mode::Loader : Mode::Command;
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

void Modem::schedule(int ms, std::function<void()> fn)
{
    std::weak_ptr<int> life = m_life;
    m_time.after(ms, [life, fn = std::move(fn)] {
        if (life.lock())
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
    m_lineBuffer.clear();
    m_pending.clear();
    m_busy = false;
    m_rxStream = false;
    m_dqMode = false;
    m_radioOn = false;
    m_connectRoute.clear();
    m_remoteRoute.clear();
    m_converseBuffer.clear();
    if (m_truth)
        m_truth->resets.append({m_time.elapsedMs(), address()});
    if (!m_hasOs) {
        m_mode = Mode::Loader;
        m_loaderState = LoaderState::Prompt;
        send("\r\nFLASH:");
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
        consoleByte(c);
}

void Modem::consoleByte(char c)
{
    switch (m_mode) {
    case Mode::Loader:
        loaderByte(c);
        return;
    case Mode::Remote:
        remoteByte(c);
        return;
    case Mode::Converse:
    case Mode::Operating:
        converseByte(c);
        return;
    case Mode::Command:
        if (c == kCtrlC) {
            interrupt();
            return;
        }
        if (m_busy) {
            m_pending.append(c);
            return;
        }
        commandByte(c);
        return;
    }
}

void Modem::commandByte(char c)
{
    const bool echo = m_working.value(QStringLiteral("ECHO")) == QLatin1String("ON");
    if (c == '\r') {
        if (echo)
            send(lineEnd());
        const QString line = QString::fromLatin1(m_lineBuffer);
        m_lineBuffer.clear();
        runLine(line);
        return;
    }
    if (c == '\n' || c == 0)
        return;
    if (c == 8 || c == 127) {
        if (!m_lineBuffer.isEmpty()) {
            m_lineBuffer.chop(1);
            if (echo)
                send("\b \b");
        }
        return;
    }
    if (m_lineBuffer.size() >= kMaxLine)
        return;
    m_lineBuffer.append(c);
    if (echo)
        send(QByteArray(1, c));
}

void Modem::interrupt()
{
    // Whatever was going on ends here; answers still on their way are dropped.
    ++m_generation;
    m_lineBuffer.clear();
    m_pending.clear();
    m_busy = false;
    m_rxStream = false;
    if (m_mode == Mode::Remote)
        m_remoteRoute.clear();
    m_mode = Mode::Command;
    send(lineEnd() + "CMD:");
}

Modem::Outcome Modem::executeLine(const QString &line, bool remote, int thinkMs)
{
    // Commands joined by ":" run in turn; a refused one stops the rest of the line.
    Outcome out;
    out.delayMs = thinkMs;
    for (const QString &command : line.split(QLatin1Char(':'))) {
        if (command.trimmed().isEmpty())
            continue;
        if (!execute(command.trimmed(), remote, out))
            break;
    }
    return out;
}

void Modem::runLine(const QString &line)
{
    m_busy = true;
    Outcome out = executeLine(line, false, kThinkMs);
    const quint64 generation = m_generation;
    schedule(out.delayMs + m_extraDelayMs, [this, generation, out] {
        if (generation != m_generation)
            return;
        send(out.text);
        if (out.then)
            out.then();
        if (out.prompt) {
            send("CMD:");
            commandDone();
        }
    });
}

void Modem::commandDone()
{
    m_busy = false;
    // What was typed meanwhile sat in the receive buffer; take it now, in order.
    const QByteArray pending = m_pending;
    m_pending.clear();
    for (char c : pending)
        consoleByte(c);
}

void Modem::setWorking(const QString &command, const QString &value)
{
    m_working[command] = value;
    if (m_truth)
        m_truth->changes.append({m_time.elapsedMs(), address(), command, value});
}

bool Modem::execute(const QString &command, bool overAir, Outcome &out)
{
    const QByteArray le = lineEnd();
    const int blank = command.indexOf(QLatin1Char(' '));
    const QString word = blank < 0 ? command : command.left(blank);
    const QString argument = blank < 0 ? QString() : command.mid(blank + 1).trimmed();
    QString full;
    switch (matchCommand(word, &full)) {
    case Match::Ambiguous:
        out.text += "AMBIGUOUS" + le;
        return false;
    case Match::Invalid:
        out.text += "INVALID" + le;
        return false;
    case Match::Found:
        break;
    }
    if (const ParameterDef *def = findParameter(full))
        return executeParameter(*def, argument, out);

    const bool tableWrite =
        (full == QLatin1String("ROUTE") || full == QLatin1String("APPEND")) && !argument.isEmpty();
    if (locked() && (full == QLatin1String("FACTDEFT") || tableWrite)) {
        out.text += "INVALID" + le;
        return false;
    }
    if (full == QLatin1String("FACTDEFT")) {
        // Factory values come back; the unit keeps its address and says so, which is how the
        // utility knows the command went through.
        const QString keepAddress = m_working.value(QStringLiteral("ADDRESS"));
        m_working = m_factory;
        m_working[QStringLiteral("ADDRESS")] = keepAddress;
        m_latched = m_working;
        m_routes.clear();
        m_appends.clear();
        m_rxStream = false;
        m_dqMode = false;
        if (m_truth)
            m_truth->factoryDefaults.append({m_time.elapsedMs(), address()});
        out.delayMs += kFactoryMs;
        out.text += banner();
        return true;
    }
    if (full == QLatin1String("SAVE")) {
        if (argument == QLatin1String("2")) {
            // The second bank is the unit's factory record: identity and defaults.
            m_factory = m_working;
        }
        m_saved = m_working;
        m_savedRoutes = m_routes;
        m_savedAppends = m_appends;
        out.delayMs += kSaveMs;
        return true;
    }
    if (full == QLatin1String("LATCH")) {
        for (const QString &c : kLatchedCommands)
            m_latched[c] = m_working.value(c);
        out.delayMs += kLatchMs;
        return true;
    }
    if (full == QLatin1String("RESET")) {
        out.prompt = false;
        out.delayMs += kRestartMs;
        if (overAir) {
            out.then = [this] { restart(false); };
            return false;
        }
        out.then = [this] { restart(true); };
        return false;
    }
    if (full == QLatin1String("HELP")) {
        const QString topic = argument.toUpper();
        if (!topic.startsWith(QLatin1String("CH"))) {
            out.text += "INVALID" + le;
            return false;
        }
        out.text += listChanged();
        return true;
    }
    if (full == QLatin1String("ROUTE") || full == QLatin1String("APPEND")) {
        QStringList &table = full == QLatin1String("ROUTE") ? m_routes : m_appends;
        if (argument.isEmpty()) {
            out.text += tableReply(table);
            return true;
        }
        if (!setTableLine(table, argument)) {
            out.text += "INVALID" + le;
            return false;
        }
        return true;
    }
    if (full == QLatin1String("INOUT")) {
        out.text += inoutReply(argument);
        return true;
    }
    if (full == QLatin1String("HOURS")) {
        out.text += "HOURS    = " + QByteArray::number(qint64(std::floor(hoursRun()))) + le;
        return true;
    }
    if (full == QLatin1String("COPYRIGHT")) {
        out.text += "Varnel Q40 Series Wireless Data Modem Firmware" + le +
                    "Copyright (c) 1994-2002 Varnel Inc.  All rights reserved." + le;
        return true;
    }
    if (full == QLatin1String("TXSTAT")) {
        // The counts since the last reading: the utility takes them as the retries of the last packet.
        out.text += "Packets = " + QByteArray::number(m_txPackets) + le +
                    "Retries = " + QByteArray::number(m_txRetries) + le;
        m_txPackets = 0;
        m_txRetries = 0;
        return true;
    }
    if (full == QLatin1String("RADIO")) {
        const QString a = argument.toUpper();
        if (a != QLatin1String("ON") && a != QLatin1String("OFF")) {
            out.text += "INVALID" + le;
            return false;
        }
        m_radioOn = a == QLatin1String("ON");
        return true;
    }
    if (full == QLatin1String("RXS") || full == QLatin1String("DQ")) {
        const QString a = argument.toUpper();
        if (overAir || (a != QLatin1String("ON") && a != QLatin1String("OFF"))) {
            out.text += "INVALID" + le;
            return false;
        }
        const bool on = a == QLatin1String("ON");
        if (full == QLatin1String("DQ")) {
            m_dqMode = on;
            return true;
        }
        if (on && !m_rxStream) {
            out.then = [this] {
                m_rxStream = true;
                const quint64 generation = m_generation;
                schedule(kStreamPeriodMs, [this, generation] { streamTick(generation); });
            };
        } else if (!on) {
            m_rxStream = false;
        }
        return true;
    }
    if (full == QLatin1String("FLASH")) {
        if (overAir) {
            out.text += "INVALID" + le;
            return false;
        }
        out.prompt = false;
        out.then = [this] { enterLoader(); };
        return false;
    }
    if (full == QLatin1String("CONNECT") || full == QLatin1String("PROGRAM") ||
        full == QLatin1String("CONVERSE")) {
        if (overAir || !m_network) {
            out.text += "INVALID" + le;
            return false;
        }
        bool ok = false;
        const QString target =
            full == QLatin1String("CONVERSE") ? m_working.value(QStringLiteral("SETCONNECT")) : argument;
        const QList<int> route = parseRoute(target, &ok);
        if (!ok) {
            out.text += "INVALID" + le;
            return false;
        }
        const bool programming = full == QLatin1String("PROGRAM");
        out.prompt = false;
        out.then = [this, route, programming] { openLink(route, programming); };
        return false;
    }
    if (full == QLatin1String("DISCONNECT")) {
        m_connectRoute.clear();
        return true;
    }
    out.text += "INVALID" + le;
    return false;
}

bool Modem::executeParameter(const ParameterDef &def, const QString &argument, Outcome &out)
{
    const QByteArray le = lineEnd();
    const QString command = QLatin1String(def.command);
    const bool oldCase = m_spec.switches == 8;
    // Units of the old case set their rate by switches only: they have no rate command.
    if (command == QLatin1String("COMRATE") && oldCase) {
        out.text += "INVALID" + le;
        return false;
    }
    const bool security = command == QLatin1String("SECURITY");
    if (argument.isEmpty()) {
        // The security value itself is never shown: it is the key that unlocks the unit.
        QString value = command == QLatin1String("VERSION") ? m_version : m_working.value(command);
        if (security)
            value = locked() ? QStringLiteral("ON") : QStringLiteral("OFF");
        out.text += valueLine(def, value) + le;
        return true;
    }
    const auto value = normaliseValue(def, argument);
    if (!def.writable || !value || (locked() && !security)) {
        out.text += "INVALID" + le;
        return false;
    }
    if (security && locked()) {
        // Only the value that locked the unit unlocks it.
        if (*value != m_working.value(command)) {
            out.text += "INVALID" + le;
            return false;
        }
        setWorking(command, QStringLiteral("0"));
        return true;
    }
    setWorking(command, *value);
    return true;
}

QByteArray Modem::listChanged() const
{
    // The listing is a command program: every setting that differs from its factory value, in the
    // form the interpreter takes it back.
    QByteArray text;
    const QByteArray le = lineEnd();
    for (const ParameterDef &def : parameterDefs()) {
        if (!def.listed)
            continue;
        const QString command = QLatin1String(def.command);
        if (m_working.value(command) != m_factory.value(command))
            text += QByteArray(def.command) + ' ' + m_working.value(command).toLatin1() + le;
    }
    return text;
}

QByteArray Modem::tableReply(const QStringList &table) const
{
    QByteArray text;
    for (const QString &line : table)
        text += line.toLatin1() + lineEnd();
    return text;
}

bool Modem::setTableLine(QStringList &table, const QString &argument)
{
    // "n,..." puts line n; "n" alone clears it and the lines after it move up.
    bool ok = false;
    const int comma = argument.indexOf(QLatin1Char(','));
    const int n = (comma < 0 ? argument : argument.left(comma)).trimmed().toInt(&ok);
    if (!ok || n < 1 || n > 30)
        return false;
    if (comma < 0) {
        if (n <= table.size())
            table.removeAt(n - 1);
        for (qsizetype i = n - 1; i < table.size(); ++i)
            table[i] = QString::number(i + 1) + table[i].mid(table[i].indexOf(QLatin1Char(',')));
        return true;
    }
    const QString line = QString::number(n) + argument.mid(comma).remove(QLatin1Char(' '));
    if (n <= table.size()) {
        table[n - 1] = line;
        return true;
    }
    if (n != table.size() + 1)
        return false;
    table.append(line);
    return true;
}

QByteArray Modem::inoutReply(const QString &argument)
{
    // Port 0, register 5 is the receiver's status latch; bit 2 is the carrier indicator.
    const QString a = argument;
    int status = 0xFB & ~0x04;
    if (m_network && m_network->carrierDetect(*this))
        status |= 0x04;
    const QByteArray hex = QByteArray::number(status, 16).rightJustified(2, '0').toUpper();
    return "INOUT    = " + a.toLatin1() + ' ' + hex + lineEnd();
}

void Modem::streamTick(quint64 generation)
{
    if (generation != m_generation || !m_rxStream || m_mode != Mode::Command)
        return;
    const double reading = m_network ? m_network->meterReading(*this) : 0.0;
    send(',' + QByteArray::number(qRound(reading)));
    schedule(kStreamPeriodMs, [this, generation] { streamTick(generation); });
}

QByteArray Modem::remoteLine(const QString &line, int *delayMs)
{
    Outcome out = executeLine(line, true, kRemoteThinkMs);
    *delayMs = out.delayMs + m_extraDelayMs;
    if (out.then) {
        // A restart over the air ends the link: nothing comes back.
        const quint64 generation = m_generation;
        schedule(out.delayMs, [this, generation, then = out.then] {
            if (generation == m_generation)
                then();
        });
        return {};
    }
    return out.text + "RPG:";
}

void Modem::openLink(const QList<int> &route, bool programming)
{
    const Network::Delivery d = m_network->send(*this, route, 16);
    const quint64 generation = m_generation;
    schedule(d.durationMs, [this, generation, d, route, programming] {
        if (generation != m_generation)
            return;
        const QByteArray le = lineEnd();
        const bool messages = m_working.value(QStringLiteral("MESSFORM")) == QLatin1String("ON");
        if (!d.delivered) {
            send(messages ? "SS03" + le : "LINK FAILED" + le);
            send("CMD:");
            commandDone();
            return;
        }
        if (programming) {
            m_mode = Mode::Remote;
            m_remoteRoute = route;
            int delay = 0;
            const QByteArray answer = d.destination->remoteLine(QString(), &delay);
            send(le + answer);
            commandDone();
            return;
        }
        m_mode = Mode::Converse;
        m_connectRoute = route;
        send(messages ? "*" + le : "*** CONNECTED TO " + QByteArray::number(route.last()) + le);
        commandDone();
    });
}

void Modem::remoteByte(char c)
{
    if (c == kCtrlC) {
        interrupt();
        return;
    }
    if (m_busy) {
        m_pending.append(c);
        return;
    }
    const bool echo = m_working.value(QStringLiteral("ECHO")) == QLatin1String("ON");
    if (c == '\n' || c == 0)
        return;
    if (c != '\r') {
        if (m_lineBuffer.size() < kMaxLine)
            m_lineBuffer.append(c);
        if (echo)
            send(QByteArray(1, c));
        return;
    }
    if (echo)
        send(lineEnd());
    const QString line = QString::fromLatin1(m_lineBuffer);
    m_lineBuffer.clear();
    m_busy = true;
    // The line goes out over the air; the remote runs it; its answer comes back the same way.
    const Network::Delivery there = m_network->send(*this, m_remoteRoute, int(line.size()) + 1);
    const quint64 generation = m_generation;
    schedule(there.durationMs, [this, generation, there, line] {
        if (generation != m_generation || m_mode != Mode::Remote)
            return;
        if (!there.delivered) {
            commandDone();
            return;
        }
        int thinkMs = 0;
        const QByteArray answer = there.destination->remoteLine(line, &thinkMs);
        if (answer.isEmpty()) {
            commandDone();
            return;
        }
        schedule(thinkMs, [this, generation, answer] {
            if (generation != m_generation || m_mode != Mode::Remote)
                return;
            QList<int> back = m_remoteRoute;
            Modem *far = m_network->modemAt(back.last());
            if (!far) {
                commandDone();
                return;
            }
            // Back along the same repeaters, in the other order, to this unit.
            back.removeLast();
            std::reverse(back.begin(), back.end());
            back.append(address());
            const Network::Delivery home = m_network->send(*far, back, int(answer.size()));
            schedule(home.durationMs, [this, generation, home, answer] {
                if (generation != m_generation || m_mode != Mode::Remote)
                    return;
                if (home.delivered)
                    send(answer);
                commandDone();
            });
        });
    });
}

void Modem::converseByte(char c)
{
    const int commandChar = m_working.value(QStringLiteral("COMMAND")).toInt();
    if (c == kCtrlC || (commandChar > 0 && c == char(commandChar))) {
        // Back to the prompt; the connection stays up until DISC.
        interrupt();
        return;
    }
    if (m_mode == Mode::Operating && m_connectRoute.isEmpty()) {
        bool ok = false;
        m_connectRoute = parseRoute(m_working.value(QStringLiteral("SETCONNECT")), &ok);
    }
    m_converseBuffer.append(c);
    const int sendChar = m_working.value(QStringLiteral("SENDPACK")).toInt();
    const int packLen = m_working.value(QStringLiteral("PACKLEN")).toInt();
    if (c == char(sendChar) || m_converseBuffer.size() >= packLen)
        sendConversePacket();
}

void Modem::sendConversePacket()
{
    const QByteArray data = m_converseBuffer;
    m_converseBuffer.clear();
    if (!m_network || m_connectRoute.isEmpty())
        return;
    const Network::Delivery d = m_network->send(*this, m_connectRoute, int(data.size()));
    ++m_txPackets;
    m_txRetries += d.retries;
    const quint64 generation = m_generation;
    const QList<int> route = m_connectRoute;
    schedule(d.durationMs, [this, generation, d, data, route] {
        if (generation != m_generation)
            return;
        const QByteArray le = lineEnd();
        const bool messages = m_working.value(QStringLiteral("MESSFORM")) == QLatin1String("ON");
        if (!d.delivered) {
            if (messages)
                send("SS03" + le);
            return;
        }
        if (d.destination)
            d.destination->airData(data);
        if (m_dqMode)
            send('[' + QByteArray::number(route.last()) + ',' + QByteArray::number(qRound(d.microvolts)) +
                 ',' + QByteArray::number(d.quality) + ']' + le);
        else if (messages)
            send("*" + le);
    });
}

void Modem::airData(const QByteArray &data)
{
    if (m_mode == Mode::Converse || m_mode == Mode::Operating)
        send(data);
}

void Modem::enterLoader()
{
    m_mode = Mode::Loader;
    m_loaderState = LoaderState::Prompt;
    m_busy = false;
    m_pending.clear();
    send("\r\nFLASH:");
}

void Modem::loaderByte(char c)
{
    switch (m_loaderState) {
    case LoaderState::Prompt:
        if (c == '\r' || c == kCtrlC) {
            send("\r\nFLASH:");
        } else if (c == 'r' || c == 'R') {
            if (m_hasOs)
                schedule(kRestartMs, [this] { restart(true); });
            else
                send("\r\nFLASH:");
        } else if (c == kSoh) {
            // The old system is erased before the first block lands: from here the unit has none.
            m_hasOs = false;
            m_image.clear();
            m_block.clear();
            m_blocks = 0;
            m_loaderState = LoaderState::Receiving;
        }
        return;
    case LoaderState::Receiving:
        m_block.append(c);
        if (m_block.size() == kBlockSize) {
            m_image += m_block;
            m_block.clear();
            ++m_blocks;
            m_loaderState = LoaderState::Programming;
            const quint64 generation = m_generation;
            schedule(kBlockProgramMs, [this, generation] {
                if (generation != m_generation || m_mode != Mode::Loader)
                    return;
                m_loaderState = LoaderState::Between;
                send(QByteArray(1, kEnq));
            });
        }
        return;
    case LoaderState::Programming:
        return; // bytes sent before the ENQ are lost
    case LoaderState::Between:
        if (c == kStx) {
            m_loaderState = LoaderState::Receiving;
        } else if (c == kEot) {
            finishImage();
        } else if (c == kCtrlC || c == '\r') {
            m_loaderState = LoaderState::Prompt;
            send("\r\nFLASH:");
        }
        return;
    }
}

void Modem::finishImage()
{
    static const QRegularExpression versionMark(QStringLiteral("VERSION\\s*=?\\s*(\\d+\\.\\d+)"),
                                                QRegularExpression::CaseInsensitiveOption);
    const auto match = versionMark.match(QString::fromLatin1(m_image));
    if (match.hasMatch())
        m_version = match.captured(1);
    m_hasOs = true;
    if (m_truth)
        m_truth->images.append({m_time.elapsedMs(), address(), m_blocks, m_image, true, m_version});
    // A new system starts from blank settings: even the unit's identity must be written back.
    loadFactoryDefaults();
    m_factory[QStringLiteral("MODEL")] = QStringLiteral("Q4U");
    m_factory[QStringLiteral("OPTION")] = QStringLiteral("0");
    m_factory[QStringLiteral("S/N")] = QStringLiteral("0");
    m_factory[QStringLiteral("VERSION")] = m_version;
    m_saved = m_factory;
    m_savedRoutes.clear();
    m_savedAppends.clear();
    m_image.clear();
    schedule(kImageCommitMs, [this] { restart(true); });
}

} // namespace sim
