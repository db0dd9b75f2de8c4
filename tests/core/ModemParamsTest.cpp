#include "ModemParams.h"

#include "SessionRig.h"
#include "SimulatedModemLink.h"
#include "Tables.h"
#include "TextRules.h"

namespace {
// Each reader, its results joined by "|" in the order of its arguments: the commands it sends, what
// it leaves from a modem that fails it and the standard boxes that costs, and how it sends ("one
// write" always, adaptor or not) or waits (a "list" awaits more bytes than a refusal holds).
const char *const kReaders[][5] = {
    {"ReadModelInfo", "Model\\r | Option\\r | Version\\r", "||", "3", "one write"},
    {"ReadSquelch", "Squelch\\r", "0", "1", ""},
    {"ReadAsquelch", "asquelch\\r", "0", "1", ""},
    {"ReadSerialNumber", "s/n\\r", "", "1", ""},
    {"ReadNetworkId", "net\\r", "", "1", ""},
    {"ReadRoutes", "route\\r | append\\r", "", "0", "list"},
    {"ReadConfiguration", "add\\r | setc\\r | asquelch\\r | rflow\\r | rxmark\\r | rfp\\r | comrate\\r",
     "||||||", "7", "one write"},
    {"ReadInout", "inout 0,5\\r", "false", "1", "list"},
    {"ReadRadioTiming", "datarate\\r | rxd\\r | txf\\r | txe\\r | frack\\r", "||||", "5", "one write"},
    {"ReadLatches", "sel/a1\\r | sel/n1\\r | sel/n2\\r | squelch\\r", "0|0|0|0", "4", ""},
};

QString run(const QString &reader, ModemSession &s)
{
    QString t[7];
    double d[4] = {};
    const auto texts = [&](int n) { return QStringList(t, t + n).join(u'|'); };
    const auto numbers = [&](int n) {
        QStringList list;
        for (int i = 0; i < n; ++i)
            list << numberText(d[i]);
        return list.join(u'|');
    };
    if (reader == u"ReadModelInfo")
        return ReadModelInfo(s, t[0], t[1], t[2]), texts(3);
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
        return ReadConfiguration(s, t[0], t[1], t[2], t[3], t[4], t[5], t[6]), texts(7);
    if (reader == u"ReadRadioTiming")
        return ReadRadioTiming(s, t[0], t[1], t[2], t[3], t[4]), texts(5);
    if (reader == u"ReadLatches")
        return ReadLatches(s, d[0], d[1], d[2], d[3]), numbers(4);
    // Routes are appended to what the list holds.
    QStringList commands{QStringLiteral("DATARATE 64")};
    ReadRoutes(s, commands);
    return commands.mid(1).join(u'|');
}

const char *const *reader(const QString &name)
{
    return *std::find_if(std::begin(kReaders), std::end(kReaders),
                         [&](auto &r) { return name == QLatin1String(r[0]); });
}

// The writes of a reader against the writes on the port. Over the adaptor the squelch command goes
// in small letters, and one character at a time (SendSlow) unless the reader always sends in one write.
void compareWrites(const MemoryCommControl &port, const char *const *reader, bool adaptor)
{
    QStringList expected;
    for (QString command : items(reader[1])) {
        if (adaptor)
            command.replace(QStringLiteral("Squelch"), QStringLiteral("squelch"));
        if (!adaptor || QByteArray(reader[4]) == "one write")
            expected << command;
        else
            for (const QChar c : command.replace(QStringLiteral("\\r"), QStringLiteral("\r")))
                expected << SessionRig::shown(QByteArray(1, char(c.unicode())));
    }
    QCOMPARE(SessionRig::writes(port), expected);
}

void expectCutFailures(ScriptedPrompts &prompts, int count)
{
    for (int i = 0; i < count; ++i)
        prompts.expectMsgBox(appErrorText(AppErrors::invalidProcedureCall()))
            .withIcon(MsgIcon::Critical)
            .withButtons(MsgButtons::OkOnly);
}

// Exact replies the firmware seldom gives: the bytes waiting before, the answers ("trigger=>reply"),
// a reader and what it gives, the time it takes, and when the standard boxes came.
const char *const kSpecials[][7] = {
    {"model info: only the first command drains", "MODEL    = Q4Y\r\nOPTION   = 2\r\n",
     "Model\r=>MODEL    = Q4U\r\nCMD: | Option\r=>OPTION   = 34\r\nCMD: | Version\r=>VERSION  = 3.10\r\nCMD:",
     "ReadModelInfo", "Q4U|3.10|34", "600", ""},
    // With the echo only on the version, the model's position falls on the return that ends the echo.
    {"model info: echo on the version alone", "",
     "Model\r=>MODEL    = Q4U\r\nCMD: | Option\r=>OPTION   = 34\r\nCMD: | Version\r=>Version\r\nVERSION  = "
     "3.10\r\nCMD:",
     "ReadModelInfo", "Q4U||34", "600", "600"},
    // A longer start in the model reply runs the version's end on to the next line end.
    {"model info: model reply starts later", "",
     "Model\r=>\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\nMODEL    = Q4U\r\nCMD: | Option\r=>OPTION   = 34\r\nCMD: | "
     "Version\r=>VERSION  = 3.10\r\nX\r\nCMD:",
     "ReadModelInfo", "Q4U|3.10\r\nX|34", "600", ""},
    {"squelch without line end", "", "Squelch\r=>SQUELCH  = 30", "ReadSquelch", "0", "200", "200"},
    {"inout 04", "", "inout 0,5\r=>INOUT    = 04\r\nCMD:", "ReadInout", "true", "5200", ""},
    {"inout FB", "", "inout 0,5\r=>INOUT    = FB\r\nCMD:", "ReadInout", "false", "5200", ""},
    {"inout fc, small letters", "", "inout 0,5\r=>INOUT    = fc\r\nCMD:", "ReadInout", "true", "5200", ""},
    {"inout not hexadecimal", "", "inout 0,5\r=>INOUT    = ??\r\nCMD:", "ReadInout", "false", "5200", ""},
    {"route line without end keeps the routes before", "",
     "route\r=>route\r\n1  40,12\r\n2  41,13 | append\r=>append\r\n1  90,91\r\nCMD:", "ReadRoutes",
     "ROUTE 1  40,12|APPEND 1  90,91", "400", "200"},
    // 21 bytes are more than the 20 awaited: the listing is read at the first look.
    {"route reply of 21 bytes", "", "route\r=>1 2,3\r\nCMD:abcdefghij | append\r=>append\r\nCMD:abcdefghi",
     "ReadRoutes", "ROUTE 1 2,3", "400", ""},
};

// The simulated modem of a scenario changed by "NAME=value" items (model, option, serial, version,
// route, append, dead, adaptor, or a setting): a reader gives what the modem holds ("<NAME>" its
// value), with the boxes it costs, in the time it takes (when given).
const char *const kSims[][6] = {
    {"identity", "ECHO=OFF | model=Q4Y | option=34 | version=2.07", "ReadModelInfo", "Q4Y|2.07|34", "0",
     "600"},
    {"serial number", "serial=11000", "ReadSerialNumber", "11000", "0", ""},
    {"network", "", "ReadNetworkId", "37", "0", ""},
    // With the factory echo the version reply begins "Version" and its return, so the line end searched
    // from where "MODEL" stood behind the shorter echo "Model" comes before the value.
    {"factory echo spoils the version", "", "ReadModelInfo", "Q4U||<OPTION>", "1", ""},
    {"configuration", "ADDRESS=12 | SETCONNECT=40,41,12 | ASQUELCH=20 | RFLOW=ON | RXMARK=5 | RFPOWER=1",
     "ReadConfiguration", "12|40,41,12|20|ON|5|<COMRATE>|1", "0", ""},
    {"radio timing", "DATARATE=64 | RXDATA=3 | TXFLAG=2 | TXEND=4 | FRACK=60", "ReadRadioTiming",
     "64|3|2|4|60", "0", ""},
    {"squelch", "SQUELCH=44", "ReadSquelch", "44", "0", ""},
    {"noise squelch", "ASQUELCH=9", "ReadAsquelch", "9", "0", ""},
    {"latches", "SQUELCH=44 | SEL/A1=60 | SEL/N1=47616 | SEL/N2=0", "ReadLatches", "60|47616|0|44", "0", ""},
    {"routes", "route=1,5, | route=2,40,41,12 | append=1,1,25,28,*", "ReadRoutes",
     "ROUTE 1,5,|ROUTE 2,40,41,12|APPEND 1,1,25,28,*", "0", ""},
    {"a quiet channel reads closed", "", "ReadInout", "false", "0", ""},
    {"dead modem, model info", "dead=1", "ReadModelInfo", "||", "3", "15300"},
    {"dead modem, latches", "dead=1", "ReadLatches", "0|0|0|0", "4", "20400"},
    // One character at a time gets through the adaptor.
    {"squelch over the adaptor", "adaptor=1 | SQUELCH=44", "ReadSquelch", "44", "0", ""},
    // The model information goes in one write all the same, and the adaptor passes only the first
    // character of each: the modem never sees a whole command and stays silent.
    {"model info over the adaptor", "adaptor=1", "ReadModelInfo", "||", "3", ""},
};

sim::Scenario scenario(const char *changes)
{
    sim::Scenario s = sim::Scenario::standard();
    sim::ModemProfile &m = s.modems[0];
    for (const QString &change : items(changes)) {
        const QString name = change.section(u'=', 0, 0), value = change.section(u'=', 1);
        if (name == u"model" || name == u"version")
            (name == u"model" ? m.model : m.version) = value;
        else if (name == u"option" || name == u"serial")
            (name == u"option" ? m.option : m.serial) = value.toInt();
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
const char *const kRules[][4] = {
    {"option top", "optionByte", "255", "255"},
    {"option empty reads as 0", "optionByte", "", "0"},
    {"option half to even", "optionByte", "12.5", "12"},
    {"option beyond a byte", "optionByte", "256", "error 6"},
    {"option negative", "optionByte", "-1", "error 6"},
    {"hex FB", "HexToDecimal", "FB", "251"},
    {"hex small letters", "HexToDecimal", "ff", "255"},
    {"hex empty", "HexToDecimal", "", "0"},
    {"hex 16 bits are signed", "HexToDecimal", "FFFF", "-1"},
    {"hex past 16 bits", "HexToDecimal", "10000", "65536"},
    {"hex 32 bits are signed", "HexToDecimal", "FFFFFFFF", "-1"},
    {"pattern empty", "MakeTestPattern", "0", ""},
    {"pattern over again after z", "MakeTestPattern", "77",
     "0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz01"},
    {"rate 9600", "BaudToSwitches", "9600,n,8,1", "100"},
    {"rate 2400", "BaudToSwitches", "2400,e,7,1", "110"},
    {"rate 300", "BaudToSwitches", "300,n,8,1", "011"},
    {"rate without a row", "BaudToSwitches", "115200,n,8,1", "000"},
    {"rate with a blank in front", "BaudToSwitches", " 9600,n,8,1", "000"},
    {"rate without a comma", "BaudToSwitches", "9600", "error 5"},
    {"frame n,8,1", "FrameToSwitches", "9600,n,8,1", "0010"},
    {"frame O,7,2", "FrameToSwitches", "9600,O,7,2", "1101"},
    {"frame E,8,1", "FrameToSwitches", "19200,E,8,1", "0110"},
    {"frame e,7,1", "FrameToSwitches", "1200,e,7,1", "0100"},
    {"frame o,8,2", "FrameToSwitches", "1200,o,8,2", "1111"},
    {"frame mark parity", "FrameToSwitches", "1200,m,8,1", "0010"},
    {"frame 6 data bits count as 8", "FrameToSwitches", "1200,n,6,1", "0010"},
    {"frame 1.5 stop bits read as 1", "FrameToSwitches", "1200,n,8,1.5", "0010"},
};

template <size_t N> QString bits(const std::array<bool, N> &switches)
{
    QString text;
    for (const bool on : switches)
        text += on ? u'1' : u'0';
    return text;
}
} // namespace

class ModemParamsTest : public QObject
{
    Q_OBJECT
private slots:
    // A refusal is in at the first look and settles at the second, 200 ms a command; but its 13 bytes
    // never pass the 20 a list awaits, so those wait the full 5.1 s and then settle. A silent line
    // costs 5.1 s a command. The box of a value follows its own reply, before the next command.
    void failingModems_data()
    {
        QTest::addColumn<QString>("reader");
        QTest::addColumn<QString>("way");
        for (const auto &r : kReaders)
            for (const char *way : {"silent", "refusing", "refusing over the adaptor"})
                QTest::addRow("%s %s", r[0], way) << QString::fromLatin1(r[0]) << QString::fromLatin1(way);
    }
    void failingModems()
    {
        QFETCH(QString, reader);
        QFETCH(QString, way);
        const auto r = ::reader(reader);
        // The screen that calls a reader owns the port.
        SessionRig rig(CommControl::kAutoProcessProgram);
        rig.session.IrDongleActive = way.endsWith(u"adaptor");
        if (way != u"silent")
            rig.modem.answer("\r", "INVALID\r\nCMD:");
        expectCutFailures(rig.prompts, atoi(r[3]));
        QCOMPARE(run(reader, rig.session), QLatin1String(r[2]));
        QVERIFY(rig.prompts.verify());
        compareWrites(rig.port, r, rig.session.IrDongleActive);
        if (rig.session.IrDongleActive)
            return;
        const qint64 each = way == u"silent" ? 5100 : QByteArray(r[4]) == "list" ? 5200 : 200;
        const QStringList commands = items(r[1]);
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
        const auto &[name, stale, answers, reader, result, elapsedMs, boxTimes] = fetchRow(kSpecials);
        SessionRig rig(CommControl::kAutoProcessProgram);
        rig.port.feed(stale);
        for (const QString &answer : items(answers))
            rig.modem.answer(answer.section(QStringLiteral("=>"), 0, 0).toLatin1(),
                             answer.section(QStringLiteral("=>"), 1).toLatin1());
        expectCutFailures(rig.prompts, int(items(boxTimes).size()));
        QCOMPARE(run(QLatin1String(reader), rig.session), QString::fromLatin1(result));
        QVERIFY(rig.prompts.verify());
        QStringList shown;
        for (const auto &s : rig.prompts.shown())
            shown << QString::number(s.atMs);
        QCOMPARE(shown.join(QStringLiteral(" | ")), QLatin1String(boxTimes));
        QCOMPARE(rig.time.elapsedMs(), qint64(atoi(elapsedMs)));
        if (QByteArray(reader) == "ReadModelInfo")
            QCOMPARE(rig.transcript(), items("0:Model\\r | 200:Option\\r | 400:Version\\r"));
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
        const auto &[name, changes, readerName, result, boxes, elapsedMs] = fetchRow(kSims);
        sim::SimulatedModemLink link(scenario(changes));
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        if (QByteArray(changes).contains("adaptor")) {
            session.InitIrDongle();
            QVERIFY(session.IrDongleActive);
        }
        link.port().clearEvents();
        const qint64 start = link.time().elapsedMs();
        expectCutFailures(prompts, atoi(boxes));
        QString expected = QLatin1String(result);
        for (const char *value : {"OPTION", "COMRATE"})
            expected.replace(u'<' + QLatin1String(value) + u'>', link.local().value(QLatin1String(value)));
        QCOMPARE(run(QLatin1String(readerName), session), expected);
        QVERIFY(prompts.verify());
        compareWrites(link.port(), reader(QLatin1String(readerName)), session.IrDongleActive);
        if (*elapsedMs)
            QCOMPARE(link.time().elapsedMs() - start, qint64(atoi(elapsedMs)));
    }

    void options()
    {
        for (int option = 0; option <= 255; ++option)
            QCOMPARE(int(PackOptions(UnpackOptions(quint8(option)))), option);
        QCOMPARE(bits(UnpackOptions(34)), QStringLiteral("01000100"));
        QVERIFY(optionBitSet(129, OptionFrequencyLock) && optionBitSet(129, OptionCanada));
        QVERIFY(!optionBitSet(129, OptionNoiseSquelch) && optionBitSet(64, OptionNoiseSquelch));
    }

    void rules_data() { addRows(kRules); }
    void rules()
    {
        const auto &[name, rule, argument, result] = fetchRow(kRules);
        const QString a = QLatin1String(argument), r = QLatin1String(rule);
        QCOMPARE(outcome([&] {
                     if (r == u"optionByte")
                         return QString::number(optionByte(a));
                     if (r == u"HexToDecimal")
                         return HexToDecimal(a);
                     if (r == u"MakeTestPattern")
                         return MakeTestPattern(a.toInt());
                     return r == u"BaudToSwitches" ? bits(BaudToSwitches(a)) : bits(FrameToSwitches(a));
                 }),
                 QLatin1String(result));
    }
};

QTEST_GUILESS_MAIN(ModemParamsTest)
#include "ModemParamsTest.moc"
