#include "ModemParams.h"

#include "SessionRig.h"
#include "SimulatedModemLink.h"
#include "Tables.h"
#include "TextRules.h"

#include <functional>

namespace {
// Each reader, its results joined by "|" in the order of its arguments; the commands it sends; what
// it gives from the well-formed replies below and from a modem that fails it, with the standard
// boxes that failure costs; whether it always sends in one write, adaptor or not; whether it awaits
// more bytes than a refusal holds.
struct Reader
{
    const char *name;
    const char *commands;
    const char *wellFormed;
    const char *failed;
    int boxes;
    bool oneWrite;
    bool awaitsList = false;
};

const Reader kReaders[] = {
    {"ReadModelInfo", "Model\\r | Option\\r | Version\\r", "Q4U|3.10|34", "||", 3, true},
    {"ReadSquelch", "Squelch\\r", "30", "0", 1, false},
    {"ReadAsquelch", "asquelch\\r", "12", "0", 1, false},
    {"ReadSerialNumber", "s/n\\r", "12345", "", 1, false},
    {"ReadNetworkId", "net\\r", "37", "", 1, false},
    {"ReadRoutes", "route\\r | append\\r", "ROUTE 1  40,41,12|ROUTE 3  50,60|APPEND 1  90,91", "", 0, false,
     true},
    {"ReadConfiguration", "add\\r | setc\\r | asquelch\\r | rflow\\r | rxmark\\r | rfp\\r | comrate\\r",
     "12|40,41,12|12|ON|5|41|1", "||||||", 7, true},
    {"ReadInout", "inout 0,5\\r", "true", "false", 1, false, true},
    {"ReadRadioTiming", "datarate\\r | rxd\\r | txf\\r | txe\\r | frack\\r", "64|3|2|2|60", "||||", 5, true},
    {"ReadLatches", "sel/a1\\r | sel/n1\\r | sel/n2\\r | squelch\\r", "56|76|958|30", "0|0|0|0", 4, false},
};

// The modem echoes each command and its carriage return before the value line and the prompt. The
// longer command comes first where one holds another ("asquelch" holds "squelch").
const char *const kReplies[][2] = {
    // Without the echo: the version's line end is searched from where "MODEL" stood (see below).
    {"Model\r", "MODEL    = Q4U\r\nCMD:"},
    {"Option\r", "OPTION   = 34\r\nCMD:"},
    {"Version\r", "VERSION  = 3.10\r\nCMD:"},
    {"asquelch\r", "asquelch\r\nASQUELCH = 12\r\nCMD:"},
    {"Squelch\r", "Squelch\r\nSQUELCH  = 30\r\nCMD:"},
    {"squelch\r", "squelch\r\nSQUELCH  = 30\r\nCMD:"},
    {"s/n\r", "s/n\r\nS/N      = 12345\r\nCMD:"},
    {"net\r", "net\r\nNETWORK  = 37\r\nCMD:"},
    {"route\r", "route\r\n1  40,41,12\r\n2  77\r\n3  50,60\r\nCMD:"},
    {"append\r", "append\r\n1  90,91\r\nCMD:"},
    {"add\r", "add\r\nADDRESS  = 12\r\nCMD:"},
    {"setc\r", "setc\r\nSETCON   = 40,41,12\r\nCMD:"},
    {"rflow\r", "rflow\r\nRFLOW    = ON\r\nCMD:"},
    {"rxmark\r", "rxmark\r\nRXMARK   = 5\r\nCMD:"},
    {"rfp\r", "rfp\r\nRFPOWER  = 1\r\nCMD:"},
    {"comrate\r", "comrate\r\nCOMRATE  = 41\r\nCMD:"},
    {"inout 0,5\r", "inout 0,5\r\nINOUT    = 04\r\nCMD:"},
    {"datarate\r", "datarate\r\nDATARATE = 64\r\nCMD:"},
    {"rxd\r", "rxd\r\nRXDATA   = 3\r\nCMD:"},
    {"txf\r", "txf\r\nTXFLAG   = 2\r\nCMD:"},
    {"txe\r", "txe\r\nTXEND    = 2\r\nCMD:"},
    {"frack\r", "frack\r\nFRACK    = 60\r\nCMD:"},
    {"sel/a1\r", "sel/a1\r\nA1   = 56\r\nCMD:"},
    {"sel/n1\r", "sel/n1\r\nN1   = 76\r\nCMD:"},
    {"sel/n2\r", "sel/n2\r\nN2   = 958\r\nCMD:"},
};

QString run(const QString &reader, ModemSession &s)
{
    QString t[7];
    double d[4] = {};
    const auto join = [](std::initializer_list<QString> parts) { return QStringList(parts).join(u'|'); };
    const auto numbers = [&](int n) {
        QStringList list;
        for (int i = 0; i < n; ++i)
            list << numberText(d[i]);
        return list.join(u'|');
    };
    if (reader == u"ReadModelInfo")
        return ReadModelInfo(s, t[0], t[1], t[2]), join({t[0], t[1], t[2]});
    if (reader == u"ReadSquelch")
        return ReadSquelch(s, d[0]), numbers(1);
    if (reader == u"ReadAsquelch")
        return ReadAsquelch(s, d[0]), numbers(1);
    if (reader == u"ReadSerialNumber")
        return ReadSerialNumber(s, t[0]), t[0];
    if (reader == u"ReadNetworkId")
        return ReadNetworkId(s, t[0]), t[0];
    if (reader == u"ReadInout")
        return ReadInout(s) ? QStringLiteral("true") : QStringLiteral("false");
    if (reader == u"ReadConfiguration")
        return ReadConfiguration(s, t[0], t[1], t[2], t[3], t[4], t[5], t[6]),
               join({t[0], t[1], t[2], t[3], t[4], t[5], t[6]});
    if (reader == u"ReadRadioTiming")
        return ReadRadioTiming(s, t[0], t[1], t[2], t[3], t[4]), join({t[0], t[1], t[2], t[3], t[4]});
    if (reader == u"ReadLatches")
        return ReadLatches(s, d[0], d[1], d[2], d[3]), numbers(4);
    QStringList commands{QStringLiteral("DATARATE 64")};
    ReadRoutes(s, commands);
    return commands.mid(1).join(u'|');
}

const Reader &reader(const QString &name)
{
    return *std::find_if(std::begin(kReaders), std::end(kReaders),
                         [&](const Reader &r) { return name == QLatin1String(r.name); });
}

QStringList items(const char *list)
{
    return QString::fromLatin1(list).split(QStringLiteral(" | "), Qt::SkipEmptyParts);
}

// The writes of a reader against the writes on the port. Over the adaptor the squelch command goes
// in small letters, and one character at a time (SendSlow) unless the reader always sends in one write.
void compareWrites(const MemoryCommControl &port, const Reader &r, bool adaptor)
{
    QStringList writes, expected;
    for (const QByteArray &w : port.writes())
        writes << SessionRig::shown(w);
    for (const QString &command : items(r.commands)) {
        const QString sent =
            adaptor ? QString(command).replace(QStringLiteral("Squelch"), QStringLiteral("squelch"))
                    : command;
        if (!adaptor || r.oneWrite)
            expected << sent;
        else
            for (const QChar c : QString(sent).replace(QStringLiteral("\\r"), QStringLiteral("\r")))
                expected << SessionRig::shown(QByteArray(1, char(c.unicode())));
    }
    QCOMPARE(writes, expected);
}

void expectCutFailures(ScriptedPrompts &prompts, int count)
{
    for (int i = 0; i < count; ++i)
        prompts.expectMsgBox(appErrorText(AppErrors::invalidProcedureCall()))
            .withIcon(MsgIcon::Critical)
            .withButtons(MsgButtons::OkOnly);
}

// The ways a scripted modem meets every reader: a refusal is in at the first look and settles at
// the second, 200 ms a command; but its 13 bytes never pass the 20 awaited after route, append and
// inout, so those wait the full 5.1 s and then settle. A silent line costs 5.1 s a command.
const char *const kWays[] = {"well-formed", "silent", "refusing", "refusing over the adaptor"};

// Exact replies the firmware seldom gives: the bytes waiting before, the answers, a reader and what
// it gives, the boxes that cost and when they came.
struct Special
{
    const char *name;
    const char *stale;
    const char *answers;
    const char *reader;
    const char *result;
    qint64 elapsedMs;
    const char *boxTimes = "";
};

const Special kSpecials[] = {
    {"model info: only the first command drains", "MODEL    = Q4Y\r\nOPTION   = 2\r\n",
     "Model\r=>MODEL    = Q4U\r\nCMD: | Option\r=>OPTION   = 34\r\nCMD: | Version\r=>VERSION  = 3.10\r\nCMD:",
     "ReadModelInfo", "Q4U|3.10|34", 600},
    {"model info: both without echo", "",
     "Model\r=>MODEL    = Q4U\r\nCMD: | Option\r=>OPTION   = 34\r\nCMD: | Version\r=>VERSION  = 3.10\r\nCMD:",
     "ReadModelInfo", "Q4U|3.10|34", 600},
    // With the echo only on the version, the model's position falls on the return that ends the echo.
    {"model info: echo on the version alone", "",
     "Model\r=>MODEL    = Q4U\r\nCMD: | Option\r=>OPTION   = 34\r\nCMD: | Version\r=>Version\r\nVERSION  = "
     "3.10\r\nCMD:",
     "ReadModelInfo", "Q4U||34", 600, "600"},
    // A longer start in the model reply runs the version's end on to the next line end.
    {"model info: model reply starts later", "",
     "Model\r=>\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\nMODEL    = Q4U\r\nCMD: | Option\r=>OPTION   = 34\r\nCMD: | "
     "Version\r=>VERSION  = 3.10\r\nX\r\nCMD:",
     "ReadModelInfo", "Q4U|3.10\r\nX|34", 600},
    {"squelch without line end", "", "Squelch\r=>SQUELCH  = 30", "ReadSquelch", "0", 200, "200"},
    {"inout 04", "", "inout 0,5\r=>INOUT    = 04\r\nCMD:", "ReadInout", "true", 5200},
    {"inout FB", "", "inout 0,5\r=>INOUT    = FB\r\nCMD:", "ReadInout", "false", 5200},
    {"inout 05", "", "inout 0,5\r=>INOUT    = 05\r\nCMD:", "ReadInout", "true", 5200},
    {"inout fc, small letters", "", "inout 0,5\r=>INOUT    = fc\r\nCMD:", "ReadInout", "true", 5200},
    {"inout 00", "", "inout 0,5\r=>INOUT    = 00\r\nCMD:", "ReadInout", "false", 5200},
    {"inout not hexadecimal", "", "inout 0,5\r=>INOUT    = ??\r\nCMD:", "ReadInout", "false", 5200},
    {"route line without end keeps the routes before", "",
     "route\r=>route\r\n1  40,12\r\n2  41,13 | append\r=>append\r\n1  90,91\r\nCMD:", "ReadRoutes",
     "ROUTE 1  40,12|APPEND 1  90,91", 400, "200"},
    // 21 bytes are more than the 20 awaited: the listing is read at the first look.
    {"route reply of 21 bytes", "", "route\r=>1 2,3\r\nCMD:abcdefghij | append\r=>append\r\nCMD:abcdefghi",
     "ReadRoutes", "ROUTE 1 2,3", 400},
};

// The simulated modem of a scenario changed by "NAME=value" items (model, option, serial, version,
// route, append, dead, adaptor, or a setting): a reader gives what the modem holds ("<NAME>" its
// value), in the time it takes, with the boxes it costs.
struct SimCase
{
    const char *name;
    const char *scenario;
    const char *reader;
    const char *result;
    int boxes = 0;
    qint64 elapsedMs = -1;
};

const SimCase kSims[] = {
    {"identity", "ECHO=OFF | model=Q4Y | option=34 | version=2.07", "ReadModelInfo", "Q4Y|2.07|34"},
    {"serial number", "serial=11000", "ReadSerialNumber", "11000"},
    {"network", "", "ReadNetworkId", "37"},
    // With the factory echo the version reply begins "Version" and its return, so the line end searched
    // from where "MODEL" stood behind the shorter echo "Model" comes before the value.
    {"factory echo spoils the version", "", "ReadModelInfo", "Q4U||<OPTION>", 1},
    {"configuration", "ADDRESS=12 | SETCONNECT=40,41,12 | ASQUELCH=20 | RFLOW=ON | RXMARK=5 | RFPOWER=1",
     "ReadConfiguration", "12|40,41,12|20|ON|5|<COMRATE>|1"},
    {"radio timing", "DATARATE=64 | RXDATA=3 | TXFLAG=2 | TXEND=4 | FRACK=60", "ReadRadioTiming",
     "64|3|2|4|60"},
    {"squelch", "SQUELCH=44", "ReadSquelch", "44"},
    {"noise squelch", "ASQUELCH=9", "ReadAsquelch", "9"},
    {"latches", "SQUELCH=44 | SEL/A1=60 | SEL/N1=47616 | SEL/N2=0", "ReadLatches", "60|47616|0|44"},
    {"routes", "route=1,5, | route=2,40,41,12 | append=1,1,25,28,*", "ReadRoutes",
     "ROUTE 1,5,|ROUTE 2,40,41,12|APPEND 1,1,25,28,*"},
    {"a quiet channel reads closed", "", "ReadInout", "false"},
    {"dead modem, model info", "dead=1", "ReadModelInfo", "||", 3, 15300},
    {"dead modem, latches", "dead=1", "ReadLatches", "0|0|0|0", 4, 20400},
    // One character at a time gets through the adaptor.
    {"squelch over the adaptor", "adaptor=1 | SQUELCH=44", "ReadSquelch", "44"},
    // The model information goes in one write all the same, and the adaptor passes only the first
    // character of each: the modem never sees a whole command and stays silent.
    {"model info over the adaptor", "adaptor=1", "ReadModelInfo", "||", 3},
};

sim::Scenario scenario(const char *changes)
{
    sim::Scenario s = sim::Scenario::standard();
    sim::ModemProfile &m = s.modems[0];
    for (const QString &change : items(changes)) {
        const QString name = change.section(u'=', 0, 0), value = change.section(u'=', 1);
        if (name == u"model")
            m.model = value;
        else if (name == u"option" || name == u"serial")
            (name == u"option" ? m.option : m.serial) = value.toInt();
        else if (name == u"version")
            m.version = value;
        else if (name == u"route" || name == u"append")
            (name == u"route" ? m.routes : m.appends) << value;
        else if (name == u"dead" || name == u"adaptor")
            (name == u"dead" ? m.dead : s.irAdaptor) = true;
        else
            m.settings.insert(name, value);
    }
    return s;
}

// optionByte, HexToDecimal, MakeTestPattern, and the rate and frame switches ("1" on, "0" off).
struct Rule
{
    const char *name;
    const char *rule;
    const char *argument;
    const char *result;
};

const Rule kRules[] = {
    {"option plain", "optionByte", "34", "34"},
    {"option top", "optionByte", "255", "255"},
    {"option empty reads as 0", "optionByte", "", "0"},
    {"option half to even", "optionByte", "12.5", "12"},
    {"option beyond a byte", "optionByte", "256", "error 6"},
    {"option negative", "optionByte", "-1", "error 6"},
    {"hex 04", "HexToDecimal", "04", "4"},
    {"hex FB", "HexToDecimal", "FB", "251"},
    {"hex small letters", "HexToDecimal", "ff", "255"},
    {"hex empty", "HexToDecimal", "", "0"},
    {"hex 16 bits are signed", "HexToDecimal", "FFFF", "-1"},
    {"hex past 16 bits", "HexToDecimal", "10000", "65536"},
    {"hex 32-bit top", "HexToDecimal", "7FFFFFFF", "2147483647"},
    {"hex 32 bits are signed", "HexToDecimal", "FFFFFFFF", "-1"},
    {"pattern empty", "MakeTestPattern", "0", ""},
    {"pattern of ten", "MakeTestPattern", "10", "0123456789"},
    {"pattern over again after z", "MakeTestPattern", "77",
     "0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz01"},
    {"rate 9600", "BaudToSwitches", "9600,n,8,1", "100"},
    {"rate 2400", "BaudToSwitches", "2400,e,7,1", "110"},
    {"rate 300", "BaudToSwitches", "300,n,8,1", "011"},
    {"rate without a row", "BaudToSwitches", "115200,n,8,1", "000"},
    {"rate with a blank in front", "BaudToSwitches", " 9600,n,8,1", "000"},
    {"rate without a comma", "BaudToSwitches", "9600", "error 5"},
    {"frame n,8,1", "FrameToSwitches", "9600,n,8,1", "0010"},
    {"frame N,8,1", "FrameToSwitches", "9600,N,8,1", "0010"},
    {"frame O,7,2", "FrameToSwitches", "9600,O,7,2", "1101"},
    {"frame E,8,1", "FrameToSwitches", "19200,E,8,1", "0110"},
    {"frame e,7,1", "FrameToSwitches", "1200,e,7,1", "0100"},
    {"frame o,8,2", "FrameToSwitches", "1200,o,8,2", "1111"},
    {"frame mark parity", "FrameToSwitches", "1200,m,8,1", "0010"},
    {"frame 6 data bits count as 8", "FrameToSwitches", "1200,n,6,1", "0010"},
    {"frame 1.5 stop bits read as 1", "FrameToSwitches", "1200,n,8,1.5", "0010"},
};
} // namespace

class ModemParamsTest : public QObject
{
    Q_OBJECT
private slots:
    void readers_data()
    {
        QTest::addColumn<QString>("reader");
        QTest::addColumn<QString>("way");
        for (const Reader &r : kReaders)
            for (const char *way : kWays)
                QTest::addRow("%s %s", r.name, way)
                    << QString::fromLatin1(r.name) << QString::fromLatin1(way);
    }
    void readers()
    {
        QFETCH(QString, reader);
        QFETCH(QString, way);
        const Reader &r = ::reader(reader);
        // The screen that calls a reader owns the port.
        SessionRig rig(CommControl::kAutoProcessProgram);
        rig.session.IrDongleActive = way.endsWith(u"adaptor");
        if (way.startsWith(u"refusing"))
            rig.modem.answer("\r", "INVALID\r\nCMD:");
        for (const auto &[command, reply] : kReplies)
            if (way == u"well-formed")
                rig.modem.answer(command, reply);
        const bool failing = way != u"well-formed";
        expectCutFailures(rig.prompts, failing ? r.boxes : 0);

        QCOMPARE(run(reader, rig.session), QLatin1String(failing ? r.failed : r.wellFormed));
        QVERIFY(rig.prompts.verify());
        compareWrites(rig.port, r, rig.session.IrDongleActive);
        if (rig.session.IrDongleActive)
            return;
        const QStringList commands = items(r.commands);
        // Each command goes out when the reply to the one before has settled; the box of a value
        // follows its own reply, before the next command goes out.
        const qint64 each = way == u"well-formed" ? 200 : way == u"silent" ? 5100 : r.awaitsList ? 5200 : 200;
        QStringList expected;
        for (qsizetype i = 0; i < commands.size(); ++i)
            expected << QStringLiteral("%1:%2").arg(each * i).arg(commands[i]);
        QCOMPARE(rig.transcript(), expected);
        QCOMPARE(rig.time.elapsedMs(), each * commands.size());
        for (qsizetype i = 0; i < rig.prompts.shown().size(); ++i)
            QCOMPARE(rig.prompts.shown()[i].atMs, each * (i + 1));
        QCOMPARE(rig.port.AutoProcess(), CommControl::kAutoProcessProgram);
    }

    void specials_data() { addRows(kSpecials); }
    void specials()
    {
        const Special &c = fetchRow(kSpecials);
        SessionRig rig(CommControl::kAutoProcessProgram);
        rig.port.feed(c.stale);
        for (const QString &answer : items(c.answers))
            rig.modem.answer(answer.section(QStringLiteral("=>"), 0, 0).toLatin1(),
                             answer.section(QStringLiteral("=>"), 1).toLatin1());
        expectCutFailures(rig.prompts,
                          int(QString::fromLatin1(c.boxTimes).split(u' ', Qt::SkipEmptyParts).size()));
        QCOMPARE(run(QLatin1String(c.reader), rig.session), QString::fromLatin1(c.result));
        QVERIFY(rig.prompts.verify());
        QStringList shown;
        for (const auto &s : rig.prompts.shown())
            shown << QString::number(s.atMs);
        QCOMPARE(shown.join(u' '), QLatin1String(c.boxTimes));
        QCOMPARE(rig.time.elapsedMs(), c.elapsedMs);
    }

    void closedPortShowsTheBoxForTheSendAndForTheCut()
    {
        SessionRig rig(CommControl::kAutoProcessProgram);
        rig.port.setPortOpen(false);
        rig.prompts
            .expectMsgBox(appErrorText(
                {AppErrors::PortNotOpen, QStringLiteral("Operation valid only when the port is open")}))
            .withIcon(MsgIcon::Critical);
        expectCutFailures(rig.prompts, 1);
        QCOMPARE(run(QStringLiteral("ReadSquelch"), rig.session), QStringLiteral("0"));
        QVERIFY(rig.prompts.verify());
        QCOMPARE(rig.prompts.shown().constLast().atMs, 5100);
    }

    void simulated_data() { addRows(kSims); }
    void simulated()
    {
        const SimCase &c = fetchRow(kSims);
        sim::SimulatedModemLink link(scenario(c.scenario));
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        if (QByteArray(c.scenario).contains("adaptor")) {
            session.InitIrDongle();
            QVERIFY(session.IrDongleActive);
        }
        link.port().clearEvents();
        const qint64 start = link.time().elapsedMs();
        expectCutFailures(prompts, c.boxes);
        QString expected = QLatin1String(c.result);
        for (const char *name : {"OPTION", "COMRATE"})
            expected.replace(u'<' + QLatin1String(name) + u'>', link.local().value(QLatin1String(name)));
        QCOMPARE(run(QLatin1String(c.reader), session), expected);
        QVERIFY(prompts.verify());
        const Reader &r = reader(QLatin1String(c.reader));
        compareWrites(link.port(), r, session.IrDongleActive);
        if (c.elapsedMs >= 0)
            QCOMPARE(link.time().elapsedMs() - start, c.elapsedMs);
    }

    void options()
    {
        for (int option = 0; option <= 255; ++option)
            QCOMPARE(int(PackOptions(UnpackOptions(quint8(option)))), option);
        QCOMPARE(UnpackOptions(34), (OptionBits{false, true, false, false, false, true, false, false}));
        QVERIFY(optionBitSet(129, OptionFrequencyLock) && optionBitSet(129, OptionCanada));
        QVERIFY(!optionBitSet(129, OptionNoiseSquelch) && optionBitSet(64, OptionNoiseSquelch));
    }

    void rules_data() { addRows(kRules); }
    void rules()
    {
        const Rule &r = fetchRow(kRules);
        const QString a = QString::fromLatin1(r.argument);
        const auto bits = [](const auto &switches) {
            QString text;
            for (const bool on : switches)
                text += on ? u'1' : u'0';
            return text;
        };
        const QString rule = QLatin1String(r.rule);
        QCOMPARE(outcome([&] {
                     if (rule == u"optionByte")
                         return QString::number(optionByte(a));
                     if (rule == u"HexToDecimal")
                         return HexToDecimal(a);
                     if (rule == u"MakeTestPattern")
                         return MakeTestPattern(a.toInt());
                     return rule == u"BaudToSwitches" ? bits(BaudToSwitches(a)) : bits(FrameToSwitches(a));
                 }),
                 QLatin1String(r.result));
    }
};

QTEST_GUILESS_MAIN(ModemParamsTest)
#include "ModemParamsTest.moc"
