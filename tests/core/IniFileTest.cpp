#include "IniFile.h"

#include "Tables.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <sys/stat.h>
#include <unistd.h>

namespace {
// A read of section "Port_Phone" (or the section before a "/" in the key) from a file, as text:
// "string" the value with a default and a buffer, "int" with the default 99, "has" yes or no,
// "keys" the list joined by "|" with a buffer. A null file is no file at all.

const char *const kPort = "[Port_Phone]\nComm Port=1\n";

const char *const kReads[][7] = {
    {"plain", "[Port_Phone]\nSettings=9600,n,8,1\n", "string", "Settings", "", "20", "9600,n,8,1"},
    {"names without regard to case", "[PORT_phone]\nsettings=1200,e,7,1\n", "string", "SETTINGS", "", "20",
     "1200,e,7,1"},
    {"blanks around name and value", "[ Port_Phone ]\n  Settings  =  4800,n,8,1  \n", "string", "Settings",
     "", "20", "4800,n,8,1"},
    {"double quotes dropped", "[Port_Phone]\nFontName=\"Courier New\"\n", "string", "FontName", "", "256",
     "Courier New"},
    {"single quotes dropped", "[Port_Phone]\nFontName='Terminal'\n", "string", "FontName", "", "256",
     "Terminal"},
    {"unmatched quotes kept", "[Port_Phone]\nFontName=\"Courier'\n", "string", "FontName", "", "256",
     "\"Courier'"},
    {"empty quotes", "[Port_Phone]\nFontName=\"\"\n", "string", "FontName", "x", "256", ""},
    {"one quote kept", "[Port_Phone]\nFontName=\"\n", "string", "FontName", "", "256", "\""},
    {"value holding =", "[Port_Phone]\nA=b=c\n", "string", "A", "", "256", "b=c"},
    {"empty value is no default", "[Port_Phone]\nSettings=\n", "string", "Settings", "x", "20", ""},
    {"missing key", kPort, "string", "Settings", "dflt", "20", "dflt"},
    {"key of another section", "[Terminal_Phone]\nSettings=9600,n,8,1\n[Port_Phone]\nComm Port=1\n", "string",
     "Settings", "dflt", "20", "dflt"},
    {"missing section", "[Application]\nSettings=1\n", "string", "Settings", "dflt", "20", "dflt"},
    {"no file, default loses trailing blanks", nullptr, "string", "Settings", "abc   ", "20", "abc"},
    {"value cut at buffer", "[Port_Phone]\nSettings=115200,n,8,1,extra,extra\n", "string", "Settings", "",
     "20", "115200,n,8,1,extra,"},
    {"buffer 4 holds 3", "[Port_Phone]\nComm Port=1234\n", "string", "Comm Port", "", "4", "123"},
    {"default cut at buffer", nullptr, "string", "Settings", "defaulted", "4", "def"},
    {"buffer of one holds nothing", kPort, "string", "Comm Port", "", "1", ""},
    {"buffer of zero holds nothing", kPort, "string", "Comm Port", "x", "0", ""},
    {"comment is no key", "[Port_Phone]\n;Settings=2400,n,8,1\n", "string", "Settings", "dflt", "20", "dflt"},
    {"line without = is no key", "[Port_Phone]\nSettings\n", "string", "Settings", "dflt", "20", "dflt"},
    {"line without a name is no key", "[Port_Phone]\n =2\n", "keys", "", "", "256", ""},
    {"first of two keys", "[Port_Phone]\nSettings=1\nsettings=2\n", "string", "Settings", "", "20", "1"},
    {"first of two sections", "[Port_Phone]\nSettings=1\n[port_phone]\nSettings=2\n", "string", "Settings",
     "", "20", "1"},
    {"crlf", "[Port_Phone]\r\nSettings=9600,n,8,1\r\n", "string", "Settings", "", "20", "9600,n,8,1"},
    {"last line without line end", "[Port_Phone]\r\nSettings=9600", "string", "Settings", "", "20", "9600"},
    {"byte order mark", "\xEF\xBB\xBF[Port_Phone]\nSettings=1\n", "string", "Settings", "", "20", "1"},
    {"utf-8", "[Port_Phone]\nFontName=Caf\xC3\xA9\n", "string", "FontName", "", "256", "Caf\xC3\xA9"},
    {"single-byte text", "[Port_Phone]\nFontName=Caf\xE9\n", "string", "FontName", "", "256", "Caf\xC3\xA9"},
    {"number", "[Port_Phone]\nHandshaking=2\n", "int", "Handshaking", "", "0", "2"},
    {"number with leading blanks", "[Port_Phone]\nHandshaking=   17\n", "int", "Handshaking", "", "0", "17"},
    {"negative number", "[Port_Phone]\nHandshaking=-3\n", "int", "Handshaking", "", "0", "-3"},
    {"number with plus sign", "[Port_Phone]\nHandshaking=+5\n", "int", "Handshaking", "", "0", "5"},
    {"number at front", "[Port_Phone]\nHandshaking=12abc\n", "int", "Handshaking", "", "0", "12"},
    {"no number", "[Port_Phone]\nHandshaking=abc\n", "int", "Handshaking", "", "0", "0"},
    {"quoted number", "[Port_Phone]\nHandshaking=\"42\"\n", "int", "Handshaking", "", "0", "42"},
    {"number too large", "[Port_Phone]\nHandshaking=99999999999999\n", "int", "Handshaking", "", "0",
     "2147483647"},
    {"number too small", "[Port_Phone]\nHandshaking=-99999999999999\n", "int", "Handshaking", "", "0",
     "-2147483648"},
    {"number missing", kPort, "int", "Handshaking", "", "0", "99"},
    {"has a key with an empty value", "[Port_Phone]\nComm Port=\n", "has", "comm port", "", "0", "yes"},
    {"has no commented key", "[Port_Phone]\n; Settings=9600\n", "has", "Settings", "", "0", "no"},
    {"has no line without =", "[Port_Phone]\nDTREnable\n", "has", "DTREnable", "", "0", "no"},
    {"has no key of another section", "[Port_Phone]\n[Other]\nRTSEnable=True\n", "has", "RTSEnable", "", "0",
     "no"},
    {"has the key of that section", "[Port_Phone]\n[Other]\nRTSEnable=True\n", "has", "other/RTSEnable", "",
     "0", "yes"},
    {"has nothing, no file", nullptr, "has", "Comm Port", "", "0", "no"},
    {"keys in order",
     "[Application]\nx=1\n[Button Assignments]\r\n; note\r\n3 - Squelch=sq~\r\n\r\njunk\r\n"
     "  1 - Model = model~\r\n[Port_Phone]\r\n",
     "keys", "button assignments/", "", "256", "3 - Squelch|1 - Model"},
    {"keys of a missing section", kPort, "keys", "Missing/", "", "256", ""},
    {"keys, no file", nullptr, "keys", "", "", "256", ""},
    // The list "abc\0defgh\0\0" takes 11 characters of the buffer.
    {"keys fit exactly", "[S]\nabc=1\ndefgh=2\n", "keys", "S/", "", "11", "abc|defgh"},
    {"keys one short cut the last", "[S]\nabc=1\ndefgh=2\n", "keys", "S/", "", "10", "abc|defg"},
    {"keys without the last", "[S]\nabc=1\ndefgh=2\n", "keys", "S/", "", "6", "abc"},
    {"keys with the first cut", "[S]\nabc=1\ndefgh=2\n", "keys", "S/", "", "3", "a"},
    {"keys without room", "[S]\nabc=1\ndefgh=2\n", "keys", "S/", "", "2", ""},
};

// Writes into a file, and the file's bytes after them. Each write is "Section|Key|Value" (a "^"
// stands for a zero character), separated by " & "; the reads after them give "Section|Key|Value".
const char *const kWrites[][5] = {
    {"new file", nullptr, "Port_Phone|Comm Port|2 & Port_Phone|Settings|9600,n,8,1",
     "[Port_Phone]\nComm Port=2\nSettings=9600,n,8,1\n", "Port_Phone|Settings|9600,n,8,1"},
    {"one value changes, the rest stays",
     "; settings of the utility\n[Application]\nHide Intro = False   ; set by hand\nOdd line without "
     "equals\n\n"
     "[Port_Phone]\n  Comm Port=1\nSettings=\"9600,n,8,1\"\n",
     "Port_Phone|Comm Port|3 & Application|Hide Intro|True",
     "; settings of the utility\n[Application]\nHide Intro=True\nOdd line without equals\n\n[Port_Phone]\n"
     "Comm Port=3\nSettings=\"9600,n,8,1\"\n"},
    {"new key behind the last key of its section",
     "[Application]\nHide Intro=True\n; a note at the end\n\n; about the port\n[Port_Phone]\nComm Port=1\n"
     "[Bare]\n\n[Last]\n",
     "Application|Hide Diag|True & Bare|Only|x",
     "[Application]\nHide Intro=True\nHide Diag=True\n; a note at the end\n\n; about the port\n[Port_Phone]\n"
     "Comm Port=1\n[Bare]\nOnly=x\n\n[Last]\n"},
    {"new section at the end", "[Application]\nHide Intro=True", "Port_Phone|Comm Port|1",
     "[Application]\nHide Intro=True\n\n[Port_Phone]\nComm Port=1\n"},
    {"new section after a blank line", "[Application]\nHide Intro=True\n\n", "Port_Phone|Comm Port|1",
     "[Application]\nHide Intro=True\n\n[Port_Phone]\nComm Port=1\n"},
    {"line ends of a Windows file", "[Application]\r\nHide Intro=False\r\n[Port_Phone]\r\nComm Port=1",
     "Application|Hide Intro|True & Port_Phone|Settings|9600,n,8,1 & Terminal_Phone|Rows|25",
     "[Application]\r\nHide Intro=True\r\n[Port_Phone]\r\nComm Port=1\r\nSettings=9600,n,8,1\r\n\r\n"
     "[Terminal_Phone]\r\nRows=25\r\n",
     "PORT_PHONE|comm port|1"},
    {"names keep their spelling", "[application]\r\nhide intro=False\r\n", "Application|Hide Intro|-1",
     "[application]\r\nhide intro=-1\r\n"},
    {"byte order mark kept", "\xEF\xBB\xBF[Terminal_Phone]\nFontName=Caf\xC3\xA9\n", "Terminal_Phone|Rows|25",
     "\xEF\xBB\xBF[Terminal_Phone]\nFontName=Caf\xC3\xA9\nRows=25\n"},
    // A file of single bytes that is no UTF-8 goes back in single bytes, so its other lines don't change.
    {"single bytes kept", "; r\xE9glages\n[Terminal_Phone]\nFontName=Caf\xE9\n", "Terminal_Phone|Rows|25",
     "; r\xE9glages\n[Terminal_Phone]\nFontName=Caf\xE9\nRows=25\n"},
    {"value without line feed", "[B]\n1 - Model=model~\n", "B|2 - Test|a\nInjected=1",
     "[B]\n1 - Model=model~\n2 - Test=aInjected=1\n", "B|2 - Test|aInjected=1"},
    {"value without line ends", "", "B|2|a\r\nInjected=1\r\n & B|3|x\r[Evil]\rEvil=1",
     "[B]\n2=aInjected=1\n3=x[Evil]Evil=1\n"},
    {"value without other line breaks", "", "B|2|p\u2028q\u2029r\u0085s\vt\fu", "[B]\n2=pqrstu\n"},
    {"value ends at a zero", "", "B|2|ab^\nInjected=1", "[B]\n2=ab\n"},
    {"names that cannot add a line or a key", nullptr,
     "B|4 - a=b\nInjected|x & B|[Evil]|y & B|;hidden|z & A\n[B]|k|v & B|\r\n|nothing & \n|k|nothing",
     "[B]\n4 - abInjected=x\nEvil]=y\nhidden=z\n\n[A[B]]\nk=v\n",
     // Reads clean the names the same way, so what was written is found again.
     "B|4 - a=b\nInjected|x & B|[Evil]|y & A\n[B]|k|v"},
};

QString zeros(const char *text)
{
    return QString::fromUtf8(text).replace(u'^', QChar(0));
}

// iniBool; NextIniKey(position, list, separator) as "item|position after"; CleanIniText as
// "result|text after" ("^" a zero); iniFileNameFor.
const char *const kRules[][4] = {
    {"True", "iniBool", "True", "true"},
    {"-1", "iniBool", "-1", "true"},
    {"1", "iniBool", "1", "false"},
    {"true", "iniBool", "true", "false"},
    {"False", "iniBool", "False", "false"},
    {"empty", "iniBool", "", "false"},
    {"blank before", "iniBool", " True", "false"},
    {"-10", "iniBool", "-10", "false"},
    {"first", "NextIniKey", "1 | a,b,c | ,", "a|3"},
    {"last", "NextIniKey", "5 | a,b,c | ,", "c|0"},
    {"zero counts as one", "NextIniKey", "0 | a,b | ,", "a|3"},
    {"negative counts as one", "NextIniKey", "-5 | a,b | ,", "a|3"},
    {"leading blanks removed", "NextIniKey", "1 |    lead, x | ,", "lead|9"},
    {"leading tab kept", "NextIniKey", "1 | \tx,y | ,", "\tx|4"},
    {"trailing blanks kept", "NextIniKey", "1 | x  ,y | ,", "x  |5"},
    {"separator at the end", "NextIniKey", "1 | a, | ,", "a|0"},
    {"empty item", "NextIniKey", "1 | ,b | ,", "|2"},
    {"no separator", "NextIniKey", "1 | abc | ,", "abc|0"},
    {"empty list", "NextIniKey", "1 |  | ,", "|0"},
    {"beyond the end", "NextIniKey", "10 | a,b | ,", "|0"},
    {"long separator", "NextIniKey", "7 | one - two - three |  - ", "two|13"},
    {"separator is exact in case", "NextIniKey", "1 | aXbxc | x", "aXb|5"},
    {"empty separator", "NextIniKey", "2 | abc | ", "bc|0"},
    {"zero separated", "NextIniKey", "11 | 1 - Model^ 3 - Squelch^10 - Ten^ | ^", "3 - Squelch|24"},
    {"clean", "CleanIniText", "abc", "abc|abc"},
    {"tail of zeros tabs line ends blanks", "CleanIniText", "abc \t\r\n^^", "abc|abc"},
    {"inner zero", "CleanIniText", "a^b", "a b|a b"},
    {"tilde", "CleanIniText", "a~b~", "a b|a b "},
    {"leading blanks", "CleanIniText", "  lead", "lead|  lead"},
    {"leading tab stays", "CleanIniText", "\tx", "\tx|\tx"},
    {"inner line ends stay", "CleanIniText", "a\r\nb\r\n", "a\r\nb|a\r\nb"},
    {"tilde before tail", "CleanIniText", "x~\t", "x|x "},
    {"only zeros", "CleanIniText", "^^", "|"},
    {"with extension", "iniFileNameFor", "/opt/varnel/VarnelUtil.exe", "VarnelUtil.INI"},
    {"without extension", "iniFileNameFor", "/usr/bin/varnel-utility", "varnel-utility.INI"},
    {"cut at first point", "iniFileNameFor", "/usr/bin/varnel.utility.bin", "varnel.INI"},
    {"points in directory", "iniFileNameFor", "/home/a.b/varnel", "varnel.INI"},
};

QString apply(const QString &rule, QStringList a)
{
    if (rule == u"iniBool")
        return iniBool(a[0]) ? QStringLiteral("true") : QStringLiteral("false");
    if (rule == u"NextIniKey") {
        int position = a[0].toInt();
        const QString item = NextIniKey(position, a[1], a[2]);
        return item + u'|' + QString::number(position);
    }
    if (rule == u"CleanIniText")
        return CleanIniText(a[0]) + u'|' + a[0];
    return iniFileNameFor(a[0]);
}
} // namespace

class IniFileTest : public QObject
{
    Q_OBJECT
private slots:
    void reads_data() { addRows(kReads); }
    void reads()
    {
        const auto &[row, file, call, keyName, defaultValue, buffer, expected] = fetchRow(kReads);
        QTemporaryDir dir;
        const IniFile ini(dir.filePath(QStringLiteral("test.INI")));
        QCOMPARE(ini.path(), dir.filePath(QStringLiteral("test.INI")));
        if (file)
            QVERIFY(writeBytes(ini.path(), file));
        const QString key = QString::fromUtf8(keyName);
        const QString section = key.contains(u'/') ? key.section(u'/', 0, 0) : QStringLiteral("Port_Phone");
        const QString name = key.section(u'/', -1);
        const QByteArray how(call);
        QString result;
        if (how == "string")
            result = ini.getString(section, name, QString::fromUtf8(defaultValue), atoi(buffer));
        else if (how == "int")
            result = QString::number(ini.getInt(section, name, 99));
        else if (how == "has")
            result = ini.hasKey(section, name) ? QStringLiteral("yes") : QStringLiteral("no");
        else
            result = ini.keys(section, atoi(buffer)).join(u'|');
        QCOMPARE(result, QString::fromUtf8(expected));
        QCOMPARE(QFile::exists(ini.path()), file != nullptr);
    }

    void writes_data() { addRows(kWrites); }
    void writes()
    {
        const auto &[name, before, writes, after, readBack] = fetchRow(kWrites);
        QTemporaryDir dir;
        // A file in a folder not made yet: the write makes it.
        IniFile ini(dir.filePath(QStringLiteral("config/deeper/test.INI")));
        if (before)
            QVERIFY(QDir().mkpath(dir.filePath(QStringLiteral("config/deeper"))) &&
                    writeBytes(ini.path(), before));
        for (const QString &write : zeros(writes).split(QStringLiteral(" & "))) {
            const QStringList parts = write.split(u'|');
            ini.writeString(parts[0], parts[1], parts[2]);
        }
        QCOMPARE(readBytes(ini.path()), QByteArray(after));
        for (const QString &read :
             QString::fromUtf8(readBack).split(QStringLiteral(" & "), Qt::SkipEmptyParts)) {
            const QStringList parts = read.split(u'|');
            QCOMPARE(ini.getString(parts[0], parts[1], QStringLiteral("?")), parts[2]);
        }
        // The file was replaced whole: nothing is left beside it.
        QCOMPARE(QDir(dir.filePath(QStringLiteral("config/deeper"))).entryList(QDir::Files | QDir::Hidden),
                 QStringList{QStringLiteral("test.INI")});
    }

    void twoProgramsSavingAtOnceKeepEveryKey()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("shared.INI"));
        QProcess writers[2];
        for (int i = 0; i < 2; ++i)
            writers[i].start(QStringLiteral(VARNEL_INI_WRITER),
                             {path, QString::number(i), QStringLiteral("100")});
        for (int i = 0; i < 2; ++i) {
            QVERIFY(writers[i].waitForFinished(60000) && writers[i].readAllStandardOutput().isEmpty());
            QCOMPARE(IniFile(path).keys(QString::number(i), 1 << 20).size(), 100);
        }
    }

    void unreadableFileIsNeverWritten()
    {
        // The superuser reads any file: the writer runs as a user the file refuses.
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("VarnelUtil.INI"));
        const QByteArray before("[Application]\nHide Intro=True\n");
        QVERIFY(writeBytes(path, before) && ::chmod(QFile::encodeName(dir.path()).constData(), 0777) == 0 &&
                ::chmod(QFile::encodeName(path).constData(), 0200) == 0 &&
                ::chown(QFile::encodeName(path).constData(), 65534, 65534) == 0);
        QProcess writer;
        writer.start(QStringLiteral("setpriv"),
                     QStringLiteral("--reuid=65534 --regid=65534 --clear-groups " VARNEL_INI_WRITER
                                    " %1 Application 2")
                         .arg(path)
                         .split(u' '));
        QVERIFY(writer.waitForFinished(60000));
        QCOMPARE(
            QString::fromLocal8Bit(writer.readAllStandardOutput()),
            QStringLiteral("The settings file %1 cannot be read (Permission denied): it is left as it is.\n")
                .arg(path));
        QCOMPARE(readBytes(path), before);
    }

    void rules_data() { addRows(kRules); }
    void rules()
    {
        const auto &[name, rule, args, result] = fetchRow(kRules);
        QCOMPARE(apply(QLatin1String(rule), zeros(args).split(QStringLiteral(" | "))), zeros(result));
    }

    void trueReadsBackAsTrue()
    {
        QVERIFY(iniBool(iniBoolText(true)));
        QCOMPARE(iniBoolText(false), QStringLiteral("False"));
    }

    void fileNameFollowsTheConfigHome()
    {
        QTemporaryDir dir;
        const QByteArray saved = qgetenv("XDG_CONFIG_HOME");
        const QString fallback = QDir::homePath() + QStringLiteral("/.config/IniFileTest.INI");
        qputenv("XDG_CONFIG_HOME", dir.path().toLocal8Bit());
        QCOMPARE(GetIniFileName(), dir.path() + QStringLiteral("/IniFileTest.INI"));
        qputenv("XDG_CONFIG_HOME", "relative/dir");
        QCOMPARE(GetIniFileName(), fallback);
        qunsetenv("XDG_CONFIG_HOME");
        QCOMPARE(GetIniFileName(), fallback);
        qputenv("XDG_CONFIG_HOME", saved);
    }
};

QTEST_GUILESS_MAIN(IniFileTest)
#include "IniFileTest.moc"
