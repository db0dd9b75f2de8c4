#include "CommandVocabulary.h"

#include "Tables.h"

namespace {
// What a dialog makes of an answer: "setting:KEY" with ON or OFF, "input:entry" with the typed text,
// "demo:KEY" with the address asked for, "termtime:ON|OFF" with the time, "security" with the value.
// The lines it adds (or sends), "refused", or the number of the failure.
struct Case
{
    const char *name;
    const char *dialog;
    const char *answer;
    const char *expected;
};

const Case kCases[] = {
    {"auto line feed on", "setting:AU", "ON", "AU ON"},
    {"dtr off", "setting:DTR", "OFF", "DTR OFF"},
    {"mode control keeps its long prefix", "setting:MO", "ON", "MODECONT ON"},
    {"multi-id", "setting:MULTI", "OFF", "MULTI OFF"},
    {"edit", "setting:Edit", "ON", "EDIT ON"},
    {"hardware flow", "setting:XHFLOW", "OFF", "XHFLOW OFF"},
    {"communication errors, reached by no entry", "setting:EM", "ON", "TYPERR ON"},
    {"system errors, reached by no entry", "setting:SE", "OFF", "TYPSYS OFF"},
    {"broadcast on", "setting:GlobalBroadcast", "ON", "SETC 255"},
    {"broadcast off still connects to all", "setting:GlobalBroadcast", "OFF", "SETC 255"},
    {"address 1", "input:mnuSetAddress", "1", "ADD 1"},
    {"address 254", "input:mnuSetAddress", "254", "ADD 254"},
    {"address 0", "input:mnuSetAddress", "0", "refused"},
    {"address 255", "input:mnuSetAddress", "255", "refused"},
    {"connect address unchecked", "input:mnusetconn", "40,41,x", "SETC 40,41,x"},
    {"network 1", "input:mnuadvnetID", "1", "NET 1"},
    {"network 254.5 passes under 255", "input:mnuadvnetID", "254.5", "NET 254.5"},
    {"network 0 refused though the box names it", "input:mnuadvnetID", "0", "refused"},
    {"network 255 refused", "input:mnuadvnetID", "255", "refused"},
    {"send packet 0.5 passes over 0", "input:mnusendpackadv", "0.5", "SENDPACK 0.5"},
    {"send packet 254", "input:mnusendpackadv", "254", "SENDPACK 254"},
    {"send packet 0", "input:mnusendpackadv", "0", "refused"},
    {"send packet 254.5", "input:mnusendpackadv", "254.5", "refused"},
    {"carrier busy 0", "input:mnucbdadv", "0", "CARBSY 0"},
    {"carrier busy 255", "input:mnucbdadv", "255", "CARBSY 255"},
    {"carrier busy -1", "input:mnucbdadv", "-1", "refused"},
    {"carrier busy 256", "input:mnucbdadv", "256", "refused"},
    {"command key 0", "input:mnucommmodeadv", "0", "COMMand 0"},
    {"command key 255", "input:mnucommmodeadv", "255", "COMMand 255"},
    {"command key -0.5", "input:mnucommmodeadv", "-0.5", "refused"},
    {"command key 255.5", "input:mnucommmodeadv", "255.5", "refused"},
    {"retries 0", "input:mnuretries", "0", "RETRY 0"},
    {"retries 255", "input:mnuretries", "255", "RETRY 255"},
    {"retries -1", "input:mnuretries", "-1", "refused"},
    {"retries 256", "input:mnuretries", "256", "refused"},
    {"packet length 1", "input:mnupacketl", "1", "PACKL 1"},
    {"packet length 2000", "input:mnupacketl", "2000", "PACKL 2000"},
    {"packet length 12abc goes in as typed", "input:mnupacketl", "12abc", "PACKL 12abc"},
    {"packet length 0.5", "input:mnupacketl", "0.5", "refused"},
    {"packet length 2001", "input:mnupacketl", "2001", "refused"},
    {"packet length beyond any number", "input:mnupacketl", "1E999", "error 6"},
    {"demo of command mode restores the factory settings", "demo:Command", "", "fa"},
    {"demo of version", "demo:Version", "", "VER"},
    {"demo of connect", "demo:CONN", "40,12", "Conn 40,12"},
    {"demo of remote programming", "demo:remoteprog", "12", "prog 12"},
    {"termination timer 10", "termtime:ON", "10", "Termc ON | Termt 10"},
    {"termination timer 65535", "termtime:OFF", "65535", "Termc OFF | Termt 65535"},
    {"termination timer 9", "termtime:ON", "9", "refused"},
    {"termination timer 65536", "termtime:ON", "65536", "refused"},
    {"security rounds to even", "security", "2.5", "SECURITY 2"},
    {"security 32767", "security", "32767", "SECURITY 32767"},
    {"security 0", "security", "0", "refused"},
    {"security beyond 16 bits", "security", "32768", "error 6"},
};

QString produce(const QString &dialog, const QString &answer)
{
    const QString kind = dialog.section(u':', 0, 0);
    const QString name = dialog.section(u':', 1);
    const QString refused = QStringLiteral("refused");
    if (kind == u"setting")
        return settingLine(*commandByKey(name), answer == u"ON");
    if (kind == u"input")
        return inputLine(*commandByEntry(name), answer).value_or(refused);
    if (kind == u"demo")
        return demoCommand(*commandByKey(name), answer);
    if (kind == u"termtime") {
        const QStringList lines = termTimeLines(name, answer);
        return lines.isEmpty() ? refused : lines.join(QStringLiteral(" | "));
    }
    return securityLine(answer).value_or(refused);
}
} // namespace

class CommandVocabularyTest : public QObject
{
    Q_OBJECT
private slots:
    void lines_data() { addRows(kCases); }
    void lines()
    {
        const Case &c = fetchRow(kCases);
        QCOMPARE(outcome([&] { return produce(QLatin1String(c.dialog), QLatin1String(c.answer)); }),
                 QLatin1String(c.expected));
    }
};

QTEST_GUILESS_MAIN(CommandVocabularyTest)
#include "CommandVocabularyTest.moc"
