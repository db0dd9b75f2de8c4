#include "ModemParams.h"

#include "AppError.h"
#include "CommControl.h"
#include "ModemSession.h"
#include "ReplyCut.h"
#include "TextRules.h"

namespace {

using Way = ModemSession::Way;

// Whether a reader throws away what is waiting before it sends a command.
enum class Drain { Before, None };

// Bytes awaited before a reply is read: enough to be sure that it has begun.
constexpr int kValueBytes = 10;
constexpr int kShortValueBytes = 5;
constexpr int kListBytes = 20;

// One exchange of a reader: send the command with its carriage return, wait for the reply to
// begin and settle, and take everything that came with one read. A failed send shows the box and
// the reader waits all the same, as the statement after it runs.
QString exchange(ModemSession &session, const QByteArray &command, int count, Way way, Drain drain)
{
    attempt(session.prompts(), [&] {
        if (drain == Drain::Before)
            session.sendCommand(command, way);
        else
            session.sendText(command + '\r', way);
    });
    session.WaitForBytes(count);
    return QString::fromLatin1(session.Comm1().Input());
}

// One cut as one statement: on failure the box is shown and the value keeps what it had.
template <typename Cut> void cutText(ModemSession &session, QString &value, Cut &&cut)
{
    attempt(session.prompts(), [&] { value = cut(); });
}

template <typename Cut> void cutNumber(ModemSession &session, double &value, Cut &&cut)
{
    attempt(session.prompts(), [&] { value = numericValue(cut()); });
}

void readFixed(ModemSession &session, const QByteArray &command, const QString &name, int count, Way way,
               QString &value)
{
    const QString reply = exchange(session, command, count, way, Drain::Before);
    cutText(session, value, [&] { return cutFixedColumn(reply, name); });
}

void readRouteList(ModemSession &session, const QByteArray &command, const QString &prefix,
                   QStringList &commands)
{
    const QString reply = exchange(session, command, kListBytes, Way::Auto, Drain::Before);
    QStringList lines;
    attempt(session.prompts(), [&] { cutNumberedLines(reply, lines); });
    for (const QString &line : std::as_const(lines))
        if (line.contains(u','))
            commands.append(prefix + line);
}

} // namespace

void ReadModelInfo(ModemSession &session, QString &model, QString &version, QString &option)
{
    // Only the first command drains; these three always go out in one write, adaptor or not.
    const QString modelReply = exchange(session, "Model", kValueBytes, Way::OneWrite, Drain::Before);
    cutText(session, model, [&] { return cutFixedColumn(modelReply, QStringLiteral("MODEL")); });

    const QString optionReply = exchange(session, "Option", kValueBytes, Way::OneWrite, Drain::None);
    cutText(session, option, [&] { return cutFixedColumn(optionReply, QStringLiteral("OPTION")); });

    // The version's line end is searched from where "MODEL" stood in the model reply, which the
    // version reply, starting the same way, matches.
    const QString versionReply = exchange(session, "Version", kValueBytes, Way::OneWrite, Drain::None);
    cutText(session, version, [&] {
        return cutFixedColumnEndingFrom(versionReply, QStringLiteral("VERSION"),
                                        findText(modelReply, QStringLiteral("MODEL")));
    });
}

void ReadSquelch(ModemSession &session, double &value)
{
    const QByteArray command = session.IrDongleActive ? "squelch" : "Squelch";
    const QString reply = exchange(session, command, kValueBytes, Way::Auto, Drain::Before);
    cutNumber(session, value, [&] { return cutEqualsSign(reply, QStringLiteral("SQUELCH")); });
}

void ReadAsquelch(ModemSession &session, double &value)
{
    const QString reply = exchange(session, "asquelch", kValueBytes, Way::Auto, Drain::Before);
    cutNumber(session, value, [&] { return cutEqualsSign(reply, QStringLiteral("ASQUELCH")); });
}

void ReadSerialNumber(ModemSession &session, QString &value)
{
    readFixed(session, "s/n", QStringLiteral("S/N"), kShortValueBytes, Way::Auto, value);
}

void ReadNetworkId(ModemSession &session, QString &value)
{
    readFixed(session, "net", QStringLiteral("NETWORK"), kShortValueBytes, Way::Auto, value);
}

void ReadRoutes(ModemSession &session, QStringList &commands)
{
    readRouteList(session, "route", QStringLiteral("ROUTE "), commands);
    readRouteList(session, "append", QStringLiteral("APPEND "), commands);
}

void ReadConfiguration(ModemSession &session, QString &address, QString &setcon, QString &asquelch,
                       QString &rflow, QString &rxmark, QString &comrate, QString &rfpower)
{
    readFixed(session, "add", QStringLiteral("ADDRESS"), kValueBytes, Way::OneWrite, address);
    readFixed(session, "setc", QStringLiteral("SETCON"), kValueBytes, Way::OneWrite, setcon);
    const QString asquelchReply = exchange(session, "asquelch", kValueBytes, Way::OneWrite, Drain::Before);
    cutText(session, asquelch, [&] { return cutEqualsSign(asquelchReply, QStringLiteral("ASQUELCH")); });
    readFixed(session, "rflow", QStringLiteral("RFLOW"), kValueBytes, Way::OneWrite, rflow);
    readFixed(session, "rxmark", QStringLiteral("RXMARK"), kValueBytes, Way::OneWrite, rxmark);
    readFixed(session, "rfp", QStringLiteral("RFPOWER"), kValueBytes, Way::OneWrite, rfpower);
    readFixed(session, "comrate", QStringLiteral("COMRATE"), kValueBytes, Way::OneWrite, comrate);
}

bool ReadInout(ModemSession &session)
{
    const QString reply = exchange(session, "inout 0,5", kListBytes, Way::Auto, Drain::Before);
    QString hex;
    cutText(session, hex, [&] { return cutHexPair(reply, QStringLiteral("INOUT")); });
    OptionBits bits{};
    attempt(session.prompts(), [&] { bits = UnpackOptions(optionByte(HexToDecimal(hex))); });
    return bits[OptionSignalStrength];
}

void ReadRadioTiming(ModemSession &session, QString &datarate, QString &rxdata, QString &txflag,
                     QString &txend, QString &frack)
{
    readFixed(session, "datarate", QStringLiteral("DATARATE"), kValueBytes, Way::OneWrite, datarate);
    readFixed(session, "rxd", QStringLiteral("RXDATA"), kValueBytes, Way::OneWrite, rxdata);
    readFixed(session, "txf", QStringLiteral("TXFLAG"), kValueBytes, Way::OneWrite, txflag);
    readFixed(session, "txe", QStringLiteral("TXEND"), kValueBytes, Way::OneWrite, txend);
    readFixed(session, "frack", QStringLiteral("FRACK"), kValueBytes, Way::OneWrite, frack);
}

void ReadLatches(ModemSession &session, double &a1, double &n1, double &n2, double &squelch)
{
    // One drain before the three latches, none between them.
    const QString a1Reply = exchange(session, "sel/a1", kValueBytes, Way::Auto, Drain::Before);
    cutNumber(session, a1, [&] { return cutLatch(a1Reply, QStringLiteral("A1")); });
    const QString n1Reply = exchange(session, "sel/n1", kValueBytes, Way::Auto, Drain::None);
    cutNumber(session, n1, [&] { return cutLatch(n1Reply, QStringLiteral("N1")); });
    const QString n2Reply = exchange(session, "sel/n2", kValueBytes, Way::Auto, Drain::None);
    cutNumber(session, n2, [&] { return cutLatch(n2Reply, QStringLiteral("N2")); });

    const QString squelchReply = exchange(session, "squelch", kValueBytes, Way::Auto, Drain::Before);
    cutNumber(session, squelch, [&] { return cutEqualsSign(squelchReply, QStringLiteral("SQUELCH")); });
}

OptionBits UnpackOptions(quint8 option)
{
    OptionBits bits{};
    for (int bit = 0; bit < int(bits.size()); ++bit)
        bits[bit] = (option >> bit) & 1;
    return bits;
}

quint8 PackOptions(const OptionBits &bits)
{
    int option = 0;
    for (int bit = 0; bit < int(bits.size()); ++bit)
        if (bits[bit])
            option += 1 << bit;
    return quint8(option);
}

bool optionBitSet(int option, OptionBit bit)
{
    return (option >> int(bit)) & 1;
}

quint8 optionByte(const QString &optionText)
{
    const qint32 value = roundToLong(numericValue(optionText));
    if (value < 0 || value > 255)
        throw AppErrors::overflow();
    return quint8(value);
}

QString HexToDecimal(const QString &hex)
{
    return numberText(roundToLong(numericValue(QStringLiteral("&H") + hex)));
}

QString MakeTestPattern(int length)
{
    constexpr char kFirst = '0';
    constexpr char kLast = 'z';
    QString pattern;
    for (char code = kFirst; pattern.size() < length;) {
        pattern += QLatin1Char(code);
        code = code == kLast ? kFirst : char(code + 1);
    }
    return pattern;
}

std::array<bool, 3> BaudToSwitches(const QString &settings)
{
    struct Row
    {
        const char *rate;
        std::array<bool, 3> switches;
    };
    static constexpr Row kRows[] = {
        {"19200", {false, false, false}}, {"9600", {true, false, false}}, {"4800", {false, true, false}},
        {"2400", {true, true, false}},    {"1200", {false, false, true}}, {"600", {true, false, true}},
        {"300", {false, true, true}},
    };
    const QString rate = leftText(settings, findText(settings, QStringLiteral(",")) - 1);
    for (const Row &row : kRows)
        if (rate == QLatin1String(row.rate))
            return row.switches;
    return {};
}

std::array<bool, 4> FrameToSwitches(const QString &settings)
{
    const int comma = findText(settings, QStringLiteral(","));
    // The control writes its settings with a small parity letter ("9600,n,8,1"), so the letter is
    // taken in either case.
    const QString parity = midText(settings, comma + 1, 1).toUpper();
    const QString dataBits = midText(settings, comma + 3, 1);
    const QString stopBits = midText(settings, comma + 5, 1);
    std::array<bool, 4> switches{};
    switches[0] = stopBits != QLatin1String("1");
    switches[1] = parity == QLatin1String("O") || parity == QLatin1String("E");
    switches[2] = dataBits != QLatin1String("7");
    switches[3] = parity == QLatin1String("O");
    return switches;
}
