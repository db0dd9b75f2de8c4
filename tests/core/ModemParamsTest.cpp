#include "ModemParams.h"
#include "AppError.h"
#include "MemoryCommControl.h"
#include "ModemSession.h"
#include "ScriptedModem.h"
#include "ScriptedPrompts.h"
#include "SessionRig.h"
#include "SimulatedModemLink.h"
#include "TextRules.h"
#include "TimeSource.h"

#include <QTest>

#include <functional>
#include <map>

namespace {

// Bytes as the transcripts show them, with the carriage return as "\r".
QString shownBytes(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes).replace(QStringLiteral("\r"), QStringLiteral("\\r"));
}

struct Rig : SessionRig
{
    // The screen that calls a reader owns the port.
    Rig() : SessionRig(CommControl::kAutoProcessProgram) {}

    // The writes, each as "ms:bytes" with the carriage return shown as "\r".
    QStringList transcript() const { return SessionRig::transcript(shownBytes); }

    QStringList writes() const
    {
        QStringList list;
        for (const QByteArray &w : port.writes())
            list << shownBytes(w);
        return list;
    }

    QList<qint64> boxTimes() const
    {
        QList<qint64> times;
        for (const auto &shown : prompts.shown())
            times << shown.atMs;
        return times;
    }

    // Expects count standard error boxes for a value that could not be cut.
    void expectCutFailures(int count)
    {
        for (int i = 0; i < count; ++i)
            prompts.expectMsgBox(appErrorText(AppErrors::invalidProcedureCall()))
                .withIcon(MsgIcon::Critical)
                .withButtons(MsgButtons::OkOnly);
    }
};

// A session on the simulated modem, its scenario adjusted before the link comes up.
struct SimRig
{
    sim::SimulatedModemLink link;
    ScriptedPrompts prompts{&link.time()};
    ModemSession session{link.port(), link.time(), prompts};

    explicit SimRig(const sim::Scenario &scenario = sim::Scenario::standard()) : link(scenario)
    {
        link.port().clearEvents();
    }

    QString truth(const char *command) { return link.local().value(QString::fromLatin1(command)); }

    QStringList writes()
    {
        QStringList list;
        for (const QByteArray &w : link.port().writes())
            list << shownBytes(w);
        return list;
    }

    void expectCutFailures(int count)
    {
        for (int i = 0; i < count; ++i)
            prompts.expectMsgBox(appErrorText(AppErrors::invalidProcedureCall())).withIcon(MsgIcon::Critical);
    }
};

sim::Scenario scenarioWith(const QMap<QString, QString> &settings)
{
    sim::Scenario scenario = sim::Scenario::standard();
    scenario.modems[0].settings = settings;
    return scenario;
}

// Each reader run on a session, its results joined by "|" in the order of its arguments.
using Reader = std::function<QString(ModemSession &)>;

const std::map<QString, Reader> &readers()
{
    static const std::map<QString, Reader> all{
        {QStringLiteral("ReadModelInfo"),
         [](ModemSession &s) {
             QString model, version, option;
             ReadModelInfo(s, model, version, option);
             return QStringList{model, version, option}.join(u'|');
         }},
        {QStringLiteral("ReadSquelch"),
         [](ModemSession &s) {
             double value = 0;
             ReadSquelch(s, value);
             return numberText(value);
         }},
        {QStringLiteral("ReadAsquelch"),
         [](ModemSession &s) {
             double value = 0;
             ReadAsquelch(s, value);
             return numberText(value);
         }},
        {QStringLiteral("ReadSerialNumber"),
         [](ModemSession &s) {
             QString value;
             ReadSerialNumber(s, value);
             return value;
         }},
        {QStringLiteral("ReadNetworkId"),
         [](ModemSession &s) {
             QString value;
             ReadNetworkId(s, value);
             return value;
         }},
        {QStringLiteral("ReadRoutes"),
         [](ModemSession &s) {
             QStringList commands;
             ReadRoutes(s, commands);
             return commands.join(u'|');
         }},
        {QStringLiteral("ReadConfiguration"),
         [](ModemSession &s) {
             QString address, setcon, asquelch, rflow, rxmark, comrate, rfpower;
             ReadConfiguration(s, address, setcon, asquelch, rflow, rxmark, comrate, rfpower);
             return QStringList{address, setcon, asquelch, rflow, rxmark, comrate, rfpower}.join(u'|');
         }},
        {QStringLiteral("ReadInout"),
         [](ModemSession &s) { return ReadInout(s) ? QStringLiteral("true") : QStringLiteral("false"); }},
        {QStringLiteral("ReadRadioTiming"),
         [](ModemSession &s) {
             QString datarate, rxdata, txflag, txend, frack;
             ReadRadioTiming(s, datarate, rxdata, txflag, txend, frack);
             return QStringList{datarate, rxdata, txflag, txend, frack}.join(u'|');
         }},
        {QStringLiteral("ReadLatches"),
         [](ModemSession &s) {
             double a1 = 0, n1 = 0, n2 = 0, squelch = 0;
             ReadLatches(s, a1, n1, n2, squelch);
             return QStringList{numberText(a1), numberText(n1), numberText(n2), numberText(squelch)}.join(
                 u'|');
         }},
    };
    return all;
}

QString run(const QString &reader, ModemSession &session)
{
    return readers().at(reader)(session);
}

QStringList split(const char *commands)
{
    return QString::fromLatin1(commands).split(u'|');
}

// The writes SendSlow makes of the commands: one character each.
QStringList slowed(const QStringList &commands)
{
    QStringList characters;
    for (const QString &command : commands) {
        const QString plain = QString(command).replace(QStringLiteral("\\r"), QStringLiteral("\r"));
        for (QChar c : plain)
            characters << (c == u'\r' ? QStringLiteral("\\r") : QString(c));
    }
    return characters;
}

} // namespace

class ModemParamsTest : public QObject
{
    Q_OBJECT
private slots:
    void readersOnAModemThatFailsThem_data();
    void readersOnAModemThatFailsThem();
    void adaptorWayPerReader_data();
    void adaptorWayPerReader();
    void readersCutWellFormedReplies_data();
    void readersCutWellFormedReplies();
    void modelInfoTranscript();
    void modelInfoDrainsOnlyBeforeItsFirstCommand();
    void modelInfoSearchesTheVersionEndFromTheModelPosition_data();
    void modelInfoSearchesTheVersionEndFromTheModelPosition();
    void squelchAnswerWithoutLineEndIsAnError();
    void closedPortShowsTheBoxForTheSendAndForTheCut();
    void inoutReadsBitTwo_data();
    void inoutReadsBitTwo();
    void routeLineWithoutEndKeepsEarlierRoutes();

    void simIdentityOfTheUnit();
    void simFactoryEchoSpoilsTheVersionCut();
    void simConfigurationAndTiming();
    void simSquelchAndLatches();
    void simRoutesBecomeCommands();
    void simQuietChannelReadsClosed();
    void simDeadModem();
    void simOverTheAdaptor();

    void optionsPackAndUnpack();
    void optionBits();
    void optionByteFromText_data();
    void optionByteFromText();
    void hexToDecimal_data();
    void hexToDecimal();
    void testPattern_data();
    void testPattern();
    void baudToSwitches_data();
    void baudToSwitches();
    void baudWithoutCommaIsAnInvalidCall();
    void frameToSwitches_data();
    void frameToSwitches();
};

void ModemParamsTest::readersOnAModemThatFailsThem_data()
{
    QTest::addColumn<QString>("reader");
    QTest::addColumn<bool>("refusing");
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QString>("results");
    QTest::addColumn<int>("boxes");
    QTest::addColumn<int>("refusalMs");

    // A refusal is in at the first look and settles at the second, 200 ms a command; but its 13
    // bytes never pass the 20 awaited after route, append and inout, so those wait the full 5.1 s
    // and then settle.
    struct Row
    {
        const char *reader;
        const char *commands;
        const char *results;
        int boxes;
        int refusalMs;
    };
    const Row rows[] = {
        {"ReadModelInfo", "Model\\r|Option\\r|Version\\r", "||", 3, 200},
        {"ReadSquelch", "Squelch\\r", "0", 1, 200},
        {"ReadAsquelch", "asquelch\\r", "0", 1, 200},
        {"ReadSerialNumber", "s/n\\r", "", 1, 200},
        {"ReadNetworkId", "net\\r", "", 1, 200},
        {"ReadRoutes", "route\\r|append\\r", "", 0, 5200},
        {"ReadConfiguration", "add\\r|setc\\r|asquelch\\r|rflow\\r|rxmark\\r|rfp\\r|comrate\\r", "||||||", 7,
         200},
        {"ReadInout", "inout 0,5\\r", "false", 1, 5200},
        {"ReadRadioTiming", "datarate\\r|rxd\\r|txf\\r|txe\\r|frack\\r", "||||", 5, 200},
        {"ReadLatches", "sel/a1\\r|sel/n1\\r|sel/n2\\r|squelch\\r", "0|0|0|0", 4, 200},
    };
    for (const Row &row : rows) {
        const QStringList commands = split(row.commands);
        QTest::addRow("%s silent", row.reader)
            << row.reader << false << commands << QString::fromLatin1(row.results) << row.boxes
            << row.refusalMs;
        QTest::addRow("%s refusing", row.reader)
            << row.reader << true << commands << QString::fromLatin1(row.results) << row.boxes
            << row.refusalMs;
    }
}

void ModemParamsTest::readersOnAModemThatFailsThem()
{
    QFETCH(QString, reader);
    QFETCH(bool, refusing);
    QFETCH(QStringList, commands);
    QFETCH(QString, results);
    QFETCH(int, boxes);
    QFETCH(int, refusalMs);

    Rig rig;
    if (refusing)
        rig.modem.answer("\r", "INVALID\r\nCMD:");
    rig.expectCutFailures(boxes);

    QCOMPARE(run(reader, rig.session), results);
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.writes(), commands);
    QCOMPARE(rig.port.AutoProcess(), CommControl::kAutoProcessProgram);

    // Each command waits 5.1 seconds on a silent line. The box of a value follows its own reply,
    // before the next command goes out.
    const qint64 perCommand = refusing ? refusalMs : 5100;
    QCOMPARE(rig.time.elapsedMs(), perCommand * commands.size());
    const QList<qint64> times = rig.boxTimes();
    for (int i = 0; i < times.size(); ++i)
        QCOMPARE(times[i], perCommand * (i + 1));
}

void ModemParamsTest::adaptorWayPerReader_data()
{
    QTest::addColumn<QString>("reader");
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<bool>("alwaysOneWrite");
    QTest::newRow("ReadModelInfo") << "ReadModelInfo" << split("Model\\r|Option\\r|Version\\r") << true;
    QTest::newRow("ReadConfiguration")
        << "ReadConfiguration" << split("add\\r|setc\\r|asquelch\\r|rflow\\r|rxmark\\r|rfp\\r|comrate\\r")
        << true;
    QTest::newRow("ReadRadioTiming") << "ReadRadioTiming"
                                     << split("datarate\\r|rxd\\r|txf\\r|txe\\r|frack\\r") << true;
    // Over the adaptor the squelch command goes in small letters.
    QTest::newRow("ReadSquelch") << "ReadSquelch" << split("squelch\\r") << false;
    QTest::newRow("ReadAsquelch") << "ReadAsquelch" << split("asquelch\\r") << false;
    QTest::newRow("ReadSerialNumber") << "ReadSerialNumber" << split("s/n\\r") << false;
    QTest::newRow("ReadNetworkId") << "ReadNetworkId" << split("net\\r") << false;
    QTest::newRow("ReadRoutes") << "ReadRoutes" << split("route\\r|append\\r") << false;
    QTest::newRow("ReadInout") << "ReadInout" << split("inout 0,5\\r") << false;
    QTest::newRow("ReadLatches") << "ReadLatches" << split("sel/a1\\r|sel/n1\\r|sel/n2\\r|squelch\\r")
                                 << false;
}

void ModemParamsTest::adaptorWayPerReader()
{
    QFETCH(QString, reader);
    QFETCH(QStringList, commands);
    QFETCH(bool, alwaysOneWrite);

    Rig rig;
    rig.session.IrDongleActive = true;
    rig.modem.answer("\r", "INVALID\r\nCMD:");
    rig.expectCutFailures(reader == u"ReadRoutes" ? 0 : int(commands.size()));
    run(reader, rig.session);
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.writes(), alwaysOneWrite ? commands : slowed(commands));
}

void ModemParamsTest::readersCutWellFormedReplies_data()
{
    QTest::addColumn<QString>("reader");
    QTest::addColumn<QList<QByteArray>>("exchange"); // command, reply, command, reply...
    QTest::addColumn<QString>("results");

    // The modem echoes each command and its carriage return before the value line and the prompt.
    QTest::newRow("ReadSquelch") << "ReadSquelch"
                                 << QList<QByteArray>{"Squelch\r", "Squelch\r\nSQUELCH  = 30\r\nCMD:"}
                                 << "30";
    QTest::newRow("ReadAsquelch") << "ReadAsquelch"
                                  << QList<QByteArray>{"asquelch\r", "asquelch\r\nASQUELCH = 12\r\nCMD:"}
                                  << "12";
    QTest::newRow("ReadSerialNumber")
        << "ReadSerialNumber" << QList<QByteArray>{"s/n\r", "s/n\r\nS/N      = 12345\r\nCMD:"} << "12345";
    QTest::newRow("ReadNetworkId") << "ReadNetworkId"
                                   << QList<QByteArray>{"net\r", "net\r\nNETWORK  = 37\r\nCMD:"} << "37";
    QTest::newRow("ReadConfiguration")
        << "ReadConfiguration" << QList<QByteArray>{"add\r",      "add\r\nADDRESS  = 12\r\nCMD:",
                                                    "setc\r",     "setc\r\nSETCON   = 40,41,12\r\nCMD:",
                                                    "asquelch\r", "asquelch\r\nASQUELCH = 3\r\nCMD:",
                                                    "rflow\r",    "rflow\r\nRFLOW    = ON\r\nCMD:",
                                                    "rxmark\r",   "rxmark\r\nRXMARK   = 5\r\nCMD:",
                                                    "rfp\r",      "rfp\r\nRFPOWER  = 1\r\nCMD:",
                                                    "comrate\r",  "comrate\r\nCOMRATE  = 41\r\nCMD:"}
        << "12|40,41,12|3|ON|5|41|1";
    QTest::newRow("ReadRadioTiming") << "ReadRadioTiming"
                                     << QList<QByteArray>{"datarate\r", "datarate\r\nDATARATE = 64\r\nCMD:",
                                                          "rxd\r",      "rxd\r\nRXDATA   = 3\r\nCMD:",
                                                          "txf\r",      "txf\r\nTXFLAG   = 2\r\nCMD:",
                                                          "txe\r",      "txe\r\nTXEND    = 2\r\nCMD:",
                                                          "frack\r",    "frack\r\nFRACK    = 60\r\nCMD:"}
                                     << "64|3|2|2|60";
    QTest::newRow("ReadLatches") << "ReadLatches"
                                 << QList<QByteArray>{"sel/a1\r",  "sel/a1\r\nA1   = 56\r\nCMD:",
                                                      "sel/n1\r",  "sel/n1\r\nN1   = 76\r\nCMD:",
                                                      "sel/n2\r",  "sel/n2\r\nN2   = 958\r\nCMD:",
                                                      "squelch\r", "squelch\r\nSQUELCH  = 30\r\nCMD:"}
                                 << "56|76|958|30";
    QTest::newRow("ReadRoutes") << "ReadRoutes"
                                << QList<QByteArray>{"route\r",
                                                     "route\r\n1  40,41,12\r\n2  77\r\n3  50,60\r\nCMD:",
                                                     "append\r", "append\r\n1  90,91\r\nCMD:"}
                                << "ROUTE 1  40,41,12|ROUTE 3  50,60|APPEND 1  90,91";
    QTest::newRow("ReadInout") << "ReadInout"
                               << QList<QByteArray>{"inout 0,5\r", "inout 0,5\r\nINOUT    = 04\r\nCMD:"}
                               << "true";
}

void ModemParamsTest::readersCutWellFormedReplies()
{
    QFETCH(QString, reader);
    QFETCH(QList<QByteArray>, exchange);
    QFETCH(QString, results);

    Rig rig;
    QStringList commands;
    for (int i = 0; i + 1 < exchange.size(); i += 2) {
        rig.modem.answer(exchange[i], exchange[i + 1]);
        commands << shownBytes(exchange[i]);
    }
    QCOMPARE(run(reader, rig.session), results);
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.writes(), commands);
    // Each reply is in at the first look and whole at the second: 200 ms a command.
    QCOMPARE(rig.time.elapsedMs(), 200 * commands.size());
}

void ModemParamsTest::modelInfoTranscript()
{
    Rig rig;
    rig.modem.answer("Model\r", "MODEL    = Q4U\r\nCMD:");
    rig.modem.answer("Option\r", "OPTION   = 34\r\nCMD:");
    rig.modem.answer("Version\r", "VERSION  = 3.10\r\nCMD:");
    QString model, version, option;
    ReadModelInfo(rig.session, model, version, option);
    QCOMPARE(model, QStringLiteral("Q4U"));
    QCOMPARE(version, QStringLiteral("3.10"));
    QCOMPARE(option, QStringLiteral("34"));
    QCOMPARE(rig.transcript(), (QStringList{QStringLiteral("0:Model\\r"), QStringLiteral("200:Option\\r"),
                                            QStringLiteral("400:Version\\r")}));
    QVERIFY(rig.prompts.verify());
}

void ModemParamsTest::modelInfoDrainsOnlyBeforeItsFirstCommand()
{
    Rig rig;
    rig.port.feed("MODEL    = Q4Y\r\nOPTION   = 2\r\n");
    rig.modem.answer("Model\r", "MODEL    = Q4U\r\nCMD:");
    rig.modem.answer("Option\r", "OPTION   = 34\r\nCMD:");
    rig.modem.answer("Version\r", "VERSION  = 3.10\r\nCMD:");
    QString model, version, option;
    ReadModelInfo(rig.session, model, version, option);
    QCOMPARE(model, QStringLiteral("Q4U"));
    QCOMPARE(option, QStringLiteral("34"));
}

void ModemParamsTest::modelInfoSearchesTheVersionEndFromTheModelPosition_data()
{
    QTest::addColumn<QByteArray>("modelReply");
    QTest::addColumn<QByteArray>("versionReply");
    QTest::addColumn<QString>("version");
    QTest::addColumn<int>("boxes");
    QTest::newRow("both without echo")
        << QByteArray("MODEL    = Q4U\r\nCMD:") << QByteArray("VERSION  = 3.10\r\nCMD:") << "3.10" << 0;
    QTest::newRow("same start") << QByteArray("\r\nMODEL    = Q4U\r\nCMD:")
                                << QByteArray("\r\nVERSION  = 3.10\r\nCMD:") << "3.10" << 0;
    // With the echo on, the model's position falls on the return that ends the echo "Version".
    QTest::newRow("echoed") << QByteArray("Model\r\nMODEL    = Q4U\r\nCMD:")
                            << QByteArray("Version\r\nVERSION  = 3.10\r\nCMD:") << "" << 1;
    // A longer start in the model reply runs the version's end on to the next line end.
    QTest::newRow("model reply starts later")
        << QByteArray("\r\n\r\n\r\n\r\n\r\n\r\n\r\n\r\nMODEL    = Q4U\r\nCMD:")
        << QByteArray("VERSION  = 3.10\r\nX\r\nCMD:") << "3.10\r\nX" << 0;
}

void ModemParamsTest::modelInfoSearchesTheVersionEndFromTheModelPosition()
{
    QFETCH(QByteArray, modelReply);
    QFETCH(QByteArray, versionReply);
    QFETCH(QString, version);
    QFETCH(int, boxes);
    Rig rig;
    rig.modem.answer("Model\r", modelReply);
    rig.modem.answer("Option\r", "OPTION   = 34\r\nCMD:");
    rig.modem.answer("Version\r", versionReply);
    rig.expectCutFailures(boxes);
    QString model, readVersion, option;
    ReadModelInfo(rig.session, model, readVersion, option);
    QCOMPARE(model, QStringLiteral("Q4U"));
    QCOMPARE(option, QStringLiteral("34"));
    QCOMPARE(readVersion, version);
    QVERIFY(rig.prompts.verify());
}

void ModemParamsTest::squelchAnswerWithoutLineEndIsAnError()
{
    Rig rig;
    rig.modem.answer("Squelch\r", "SQUELCH  = 30");
    rig.expectCutFailures(1);
    double value = 0;
    ReadSquelch(rig.session, value);
    QCOMPARE(value, 0.0);
    QVERIFY(rig.prompts.verify());
}

void ModemParamsTest::closedPortShowsTheBoxForTheSendAndForTheCut()
{
    Rig rig;
    rig.port.setPortOpen(false);
    rig.prompts
        .expectMsgBox(appErrorText(
            {AppErrors::PortNotOpen, QStringLiteral("Operation valid only when the port is open")}))
        .withIcon(MsgIcon::Critical);
    rig.expectCutFailures(1);
    double value = 0;
    ReadSquelch(rig.session, value);
    QCOMPARE(value, 0.0);
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.boxTimes(), (QList<qint64>{0, 5100}));
}

void ModemParamsTest::inoutReadsBitTwo_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("open");
    QTest::newRow("04") << QByteArray("04") << true;
    QTest::newRow("FB") << QByteArray("FB") << false;
    QTest::newRow("05") << QByteArray("05") << true;
    QTest::newRow("fc, small letters") << QByteArray("fc") << true;
    QTest::newRow("00") << QByteArray("00") << false;
    QTest::newRow("not hexadecimal") << QByteArray("??") << false;
}

void ModemParamsTest::inoutReadsBitTwo()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, open);
    Rig rig;
    rig.modem.answer("inout 0,5\r", "inout 0,5\r\nINOUT    = " + value + "\r\nCMD:");
    QCOMPARE(ReadInout(rig.session), open);
    QVERIFY(rig.prompts.verify());
}

void ModemParamsTest::routeLineWithoutEndKeepsEarlierRoutes()
{
    Rig rig;
    rig.modem.answer("route\r", "route\r\n1  40,12\r\n2  41,13");
    rig.modem.answer("append\r", "append\r\n1  90,91\r\nCMD:");
    rig.expectCutFailures(1);
    QStringList commands{QStringLiteral("DATARATE 64")};
    ReadRoutes(rig.session, commands);
    QCOMPARE(commands, (QStringList{QStringLiteral("DATARATE 64"), QStringLiteral("ROUTE 1  40,12"),
                                    QStringLiteral("APPEND 1  90,91")}));
    QVERIFY(rig.prompts.verify());
}

void ModemParamsTest::optionsPackAndUnpack()
{
    for (int option = 0; option <= 255; ++option)
        QCOMPARE(int(PackOptions(UnpackOptions(quint8(option)))), option);
}

void ModemParamsTest::optionBits()
{
    const OptionBits bits = UnpackOptions(34);
    QCOMPARE(bits, (OptionBits{false, true, false, false, false, true, false, false}));
    QVERIFY(bits[OptionNewSynth]);
    QVERIFY(bits[Option5kHzSpacing]);
    QCOMPARE(int(PackOptions({true, false, false, false, false, false, false, true})), 129);
    QVERIFY(optionBitSet(129, OptionFrequencyLock));
    QVERIFY(optionBitSet(129, OptionCanada));
    QVERIFY(!optionBitSet(129, OptionNoiseSquelch));
    QVERIFY(optionBitSet(64, OptionNoiseSquelch));
}

void ModemParamsTest::optionByteFromText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("byte");
    QTest::addColumn<int>("error");
    QTest::newRow("plain") << "34" << 34 << 0;
    QTest::newRow("top") << "255" << 255 << 0;
    QTest::newRow("empty reads as 0") << "" << 0 << 0;
    QTest::newRow("half to even") << "12.5" << 12 << 0;
    QTest::newRow("beyond a byte") << "256" << 0 << AppErrors::Overflow;
    QTest::newRow("negative") << "-1" << 0 << AppErrors::Overflow;
}

void ModemParamsTest::optionByteFromText()
{
    QFETCH(QString, text);
    QFETCH(int, byte);
    QFETCH(int, error);
    try {
        QCOMPARE(int(optionByte(text)), byte);
        QCOMPARE(error, 0);
    } catch (const AppError &e) {
        QCOMPARE(e.number, error);
    }
}

void ModemParamsTest::hexToDecimal_data()
{
    QTest::addColumn<QString>("hex");
    QTest::addColumn<QString>("decimal");
    QTest::newRow("04") << "04"
                        << "4";
    QTest::newRow("FB") << "FB"
                        << "251";
    QTest::newRow("small letters") << "ff"
                                   << "255";
    QTest::newRow("empty") << ""
                           << "0";
    QTest::newRow("16 bits are signed") << "FFFF"
                                        << "-1";
    QTest::newRow("past 16 bits") << "10000"
                                  << "65536";
    QTest::newRow("32-bit top") << "7FFFFFFF"
                                << "2147483647";
    QTest::newRow("32 bits are signed") << "FFFFFFFF"
                                        << "-1";
}

void ModemParamsTest::hexToDecimal()
{
    QFETCH(QString, hex);
    QFETCH(QString, decimal);
    QCOMPARE(HexToDecimal(hex), decimal);
}

void ModemParamsTest::testPattern_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("pattern");
    QString cycle;
    for (char c = '0'; c <= 'z'; ++c)
        cycle += QLatin1Char(c);
    QTest::newRow("empty") << 0 << "";
    QTest::newRow("one") << 1 << "0";
    QTest::newRow("ten") << 10 << "0123456789";
    QTest::newRow("one cycle") << 75 << cycle;
    QTest::newRow("over again after z") << 77 << cycle + QStringLiteral("01");
    QTest::newRow("three cycles") << 225 << cycle + cycle + cycle;
}

void ModemParamsTest::testPattern()
{
    QFETCH(int, length);
    QFETCH(QString, pattern);
    QCOMPARE(MakeTestPattern(length), pattern);
    QVERIFY(!MakeTestPattern(length).contains(u'{'));
}

void ModemParamsTest::baudToSwitches_data()
{
    QTest::addColumn<QString>("settings");
    QTest::addColumn<bool>("sw1");
    QTest::addColumn<bool>("sw2");
    QTest::addColumn<bool>("sw3");
    QTest::newRow("19200") << "19200,n,8,1" << false << false << false;
    QTest::newRow("9600") << "9600,n,8,1" << true << false << false;
    QTest::newRow("4800") << "4800,e,7,1" << false << true << false;
    QTest::newRow("2400") << "2400,n,8,1" << true << true << false;
    QTest::newRow("1200") << "1200,n,8,1" << false << false << true;
    QTest::newRow("600") << "600,n,8,1" << true << false << true;
    QTest::newRow("300") << "300,n,8,1" << false << true << true;
    QTest::newRow("no row") << "115200,n,8,1" << false << false << false;
    QTest::newRow("blank in front") << " 9600,n,8,1" << false << false << false;
}

void ModemParamsTest::baudToSwitches()
{
    QFETCH(QString, settings);
    QFETCH(bool, sw1);
    QFETCH(bool, sw2);
    QFETCH(bool, sw3);
    QCOMPARE(BaudToSwitches(settings), (std::array<bool, 3>{sw1, sw2, sw3}));
}

void ModemParamsTest::baudWithoutCommaIsAnInvalidCall()
{
    try {
        BaudToSwitches(QStringLiteral("9600"));
        QFAIL("a rate without a comma was taken");
    } catch (const AppError &error) {
        QCOMPARE(error.number, AppErrors::InvalidProcedureCall);
    }
}

void ModemParamsTest::frameToSwitches_data()
{
    QTest::addColumn<QString>("settings");
    QTest::addColumn<bool>("twoStopBits");
    QTest::addColumn<bool>("parity");
    QTest::addColumn<bool>("eightBits");
    QTest::addColumn<bool>("odd");
    QTest::newRow("n,8,1") << "9600,n,8,1" << false << false << true << false;
    QTest::newRow("N,8,1") << "9600,N,8,1" << false << false << true << false;
    QTest::newRow("O,7,2") << "9600,O,7,2" << true << true << false << true;
    QTest::newRow("E,8,1") << "19200,E,8,1" << false << true << true << false;
    QTest::newRow("e,7,1") << "1200,e,7,1" << false << true << false << false;
    QTest::newRow("o,8,2") << "1200,o,8,2" << true << true << true << true;
    QTest::newRow("mark parity") << "1200,m,8,1" << false << false << true << false;
    QTest::newRow("data bits 6 count as 8") << "1200,n,6,1" << false << false << true << false;
}

void ModemParamsTest::frameToSwitches()
{
    QFETCH(QString, settings);
    QFETCH(bool, twoStopBits);
    QFETCH(bool, parity);
    QFETCH(bool, eightBits);
    QFETCH(bool, odd);
    QCOMPARE(FrameToSwitches(settings), (std::array<bool, 4>{twoStopBits, parity, eightBits, odd}));
}

void ModemParamsTest::simIdentityOfTheUnit()
{
    sim::Scenario scenario = scenarioWith({{QStringLiteral("ECHO"), QStringLiteral("OFF")}});
    scenario.modems[0].model = QStringLiteral("Q4Y");
    scenario.modems[0].option = 34;
    scenario.modems[0].serial = 11000;
    scenario.modems[0].version = QStringLiteral("2.07");
    SimRig rig(scenario);
    QString model, version, option, serial, network;
    ReadModelInfo(rig.session, model, version, option);
    ReadSerialNumber(rig.session, serial);
    ReadNetworkId(rig.session, network);
    QCOMPARE(model, QStringLiteral("Q4Y"));
    QCOMPARE(version, QStringLiteral("2.07"));
    QCOMPARE(option, QStringLiteral("34"));
    QCOMPARE(serial, QStringLiteral("11000"));
    QCOMPARE(network, rig.truth("NETWORK"));
    QCOMPARE(rig.writes(), split("Model\\r|Option\\r|Version\\r|s/n\\r|net\\r"));
    QVERIFY(rig.prompts.verify());
}

void ModemParamsTest::simFactoryEchoSpoilsTheVersionCut()
{
    // With the factory echo the version reply begins "Version" and its return, so the line end
    // searched from where "MODEL" stood behind the shorter echo "Model" comes before the value.
    SimRig rig;
    rig.expectCutFailures(1);
    QString model, version, option;
    ReadModelInfo(rig.session, model, version, option);
    QCOMPARE(model, rig.link.local().model());
    QCOMPARE(option, rig.truth("OPTION"));
    QCOMPARE(version, QString());
    QVERIFY(rig.prompts.verify());
}

void ModemParamsTest::simConfigurationAndTiming()
{
    SimRig rig(scenarioWith({{QStringLiteral("ADDRESS"), QStringLiteral("12")},
                             {QStringLiteral("SETCONNECT"), QStringLiteral("40,41,12")},
                             {QStringLiteral("ASQUELCH"), QStringLiteral("20")},
                             {QStringLiteral("RFLOW"), QStringLiteral("ON")},
                             {QStringLiteral("RXMARK"), QStringLiteral("5")},
                             {QStringLiteral("RFPOWER"), QStringLiteral("1")},
                             {QStringLiteral("DATARATE"), QStringLiteral("64")},
                             {QStringLiteral("RXDATA"), QStringLiteral("3")},
                             {QStringLiteral("TXFLAG"), QStringLiteral("2")},
                             {QStringLiteral("TXEND"), QStringLiteral("4")},
                             {QStringLiteral("FRACK"), QStringLiteral("60")}}));
    QString address, setcon, asquelch, rflow, rxmark, comrate, rfpower;
    ReadConfiguration(rig.session, address, setcon, asquelch, rflow, rxmark, comrate, rfpower);
    QCOMPARE(address, QStringLiteral("12"));
    QCOMPARE(setcon, QStringLiteral("40,41,12"));
    QCOMPARE(asquelch, QStringLiteral("20"));
    QCOMPARE(rflow, QStringLiteral("ON"));
    QCOMPARE(rxmark, QStringLiteral("5"));
    QCOMPARE(comrate, rig.truth("COMRATE"));
    QCOMPARE(rfpower, QStringLiteral("1"));

    QString datarate, rxdata, txflag, txend, frack;
    ReadRadioTiming(rig.session, datarate, rxdata, txflag, txend, frack);
    QCOMPARE((QStringList{datarate, rxdata, txflag, txend, frack}),
             (QStringList{QStringLiteral("64"), QStringLiteral("3"), QStringLiteral("2"), QStringLiteral("4"),
                          QStringLiteral("60")}));
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.writes(),
             split("add\\r|setc\\r|asquelch\\r|rflow\\r|rxmark\\r|rfp\\r|comrate\\r|datarate\\r|rxd\\r|"
                   "txf\\r|txe\\r|frack\\r"));
}

void ModemParamsTest::simSquelchAndLatches()
{
    SimRig rig(scenarioWith({{QStringLiteral("SQUELCH"), QStringLiteral("44")},
                             {QStringLiteral("ASQUELCH"), QStringLiteral("9")},
                             {QStringLiteral("SEL/A1"), QStringLiteral("60")},
                             {QStringLiteral("SEL/N1"), QStringLiteral("47616")},
                             {QStringLiteral("SEL/N2"), QStringLiteral("0")}}));
    double squelch = -1, asquelch = -1;
    ReadSquelch(rig.session, squelch);
    ReadAsquelch(rig.session, asquelch);
    QCOMPARE(squelch, 44.0);
    QCOMPARE(asquelch, 9.0);
    double a1 = -1, n1 = -1, n2 = -1, latchSquelch = -1;
    ReadLatches(rig.session, a1, n1, n2, latchSquelch);
    QCOMPARE(a1, 60.0);
    QCOMPARE(n1, 47616.0);
    QCOMPARE(n2, 0.0);
    QCOMPARE(latchSquelch, 44.0);
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.writes(), split("Squelch\\r|asquelch\\r|sel/a1\\r|sel/n1\\r|sel/n2\\r|squelch\\r"));
}

void ModemParamsTest::simRoutesBecomeCommands()
{
    sim::Scenario scenario = sim::Scenario::standard();
    scenario.modems[0].routes = {QStringLiteral("1,5,"), QStringLiteral("2,40,41,12")};
    scenario.modems[0].appends = {QStringLiteral("1,1,25,28,*")};
    SimRig rig(scenario);
    QStringList commands;
    ReadRoutes(rig.session, commands);
    QCOMPARE(commands, (QStringList{QStringLiteral("ROUTE 1,5,"), QStringLiteral("ROUTE 2,40,41,12"),
                                    QStringLiteral("APPEND 1,1,25,28,*")}));
    QVERIFY(rig.prompts.verify());
}

void ModemParamsTest::simQuietChannelReadsClosed()
{
    SimRig rig;
    QVERIFY(!ReadInout(rig.session));
    QCOMPARE(rig.writes(), split("inout 0,5\\r"));
    QVERIFY(rig.prompts.verify());
}

void ModemParamsTest::simDeadModem()
{
    sim::Scenario scenario = sim::Scenario::standard();
    scenario.modems[0].dead = true;
    SimRig rig(scenario);
    rig.expectCutFailures(3);
    QString model, version, option;
    ReadModelInfo(rig.session, model, version, option);
    QCOMPARE((QStringList{model, version, option}), (QStringList{QString(), QString(), QString()}));
    QCOMPARE(rig.link.time().elapsedMs(), 15300);
    QVERIFY(rig.prompts.verify());

    rig.expectCutFailures(4);
    double a1 = 0, n1 = 0, n2 = 0, squelch = 0;
    ReadLatches(rig.session, a1, n1, n2, squelch);
    QCOMPARE((QList<double>{a1, n1, n2, squelch}), (QList<double>{0, 0, 0, 0}));
    QCOMPARE(rig.link.time().elapsedMs(), 15300 + 4 * 5100);
    QVERIFY(rig.prompts.verify());
}

void ModemParamsTest::simOverTheAdaptor()
{
    sim::Scenario scenario = scenarioWith({{QStringLiteral("SQUELCH"), QStringLiteral("44")}});
    scenario.irAdaptor = true;
    SimRig rig(scenario);
    rig.session.InitIrDongle();
    QVERIFY(rig.session.IrDongleActive);
    rig.link.port().clearEvents();

    // One character at a time gets through the adaptor.
    double squelch = 0;
    ReadSquelch(rig.session, squelch);
    QCOMPARE(squelch, 44.0);
    QCOMPARE(rig.writes(), slowed(split("squelch\\r")));
    QVERIFY(rig.prompts.verify());

    // The model information goes in one write all the same, and the adaptor passes only the first
    // character of each: the modem never sees a whole command and stays silent.
    rig.expectCutFailures(3);
    QString model, version, option;
    ReadModelInfo(rig.session, model, version, option);
    QCOMPARE((QStringList{model, version, option}), (QStringList{QString(), QString(), QString()}));
    QVERIFY(rig.prompts.verify());
}

QTEST_GUILESS_MAIN(ModemParamsTest)
#include "ModemParamsTest.moc"
