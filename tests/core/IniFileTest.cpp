#include "IniFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <limits>
#include <memory>
#include <unistd.h>

using namespace Qt::StringLiterals;

class IniFileTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void missingFileGivesDefaultsAndCreatesNothing();
    void getString_data();
    void getString();
    void getInt_data();
    void getInt();
    void hasKeySeesOnlyKeyLines();
    void portSectionWithoutSettingsKey();
    void keysListsKeyLinesInOrder();
    void keysCutAtBuffer_data();
    void keysCutAtBuffer();

    void writeCreatesFileAndDirectory();
    void writeReplacesOneValueAndKeepsTheRest();
    void writeAddsKeyBehindLastKeyOfSection();
    void writeAddsSectionAtEnd();
    void writeKeepsCrlf();
    void writeMatchesNamesWithoutRegardToCase();
    void writeKeepsByteOrderMarkAndSingleByteText();
    void valueCannotAddLineOrKey_data();
    void valueCannotAddLineOrKey();
    void keyAndSectionCannotAddLineOrKey();

    void cannotCommitLeavesOldFileWhole();
    void readOnlyDirectoryLeavesOldFileWhole();
    void writeLeavesNoTemporaryFiles();
    void writeToDirectoryPathChangesNothing();

    void iniBool_data();
    void iniBool();
    void iniBoolTextRoundTrips();
    void nextIniKey_data();
    void nextIniKey();
    void nextIniKeyWalksZeroSeparatedList();
    void cleanIniText_data();
    void cleanIniText();
    void iniFileNameFor_data();
    void iniFileNameFor();
    void getIniFileNameFollowsConfigHome();

private:
    QString filePath(const QString &name = QStringLiteral("test.INI")) const { return m_dir->filePath(name); }
    static void writeBytes(const QString &path, const QByteArray &bytes);
    static QByteArray readBytes(const QString &path);

    std::unique_ptr<QTemporaryDir> m_dir;
};

void IniFileTest::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void IniFileTest::writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray IniFileTest::readBytes(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

void IniFileTest::missingFileGivesDefaultsAndCreatesNothing()
{
    const IniFile ini(filePath());
    QCOMPARE(ini.path(), filePath());
    QCOMPARE(ini.getString(u"Application"_s, u"Hide Intro"_s, u"False"_s, 10), u"False"_s);
    QCOMPARE(ini.getInt(u"Application"_s, u"Zmodem Options"_s, 7), 7);
    QVERIFY(!ini.hasKey(u"Application"_s, u"Hide Intro"_s));
    QVERIFY(ini.keys(u"Application"_s).isEmpty());
    QVERIFY(!QFile::exists(filePath()));
}

void IniFileTest::getString_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("defaultValue");
    QTest::addColumn<int>("bufferSize");
    QTest::addColumn<QString>("expected");

    // Every row asks section "Port_Phone".
    QTest::newRow("plain") << QByteArray("[Port_Phone]\nSettings=9600,n,8,1\n") << u"Settings"_s << QString()
                           << 20 << u"9600,n,8,1"_s;
    QTest::newRow("names without regard to case") << QByteArray("[PORT_phone]\nsettings=1200,e,7,1\n")
                                                  << u"SETTINGS"_s << QString() << 20 << u"1200,e,7,1"_s;
    QTest::newRow("blanks around name and value")
        << QByteArray("[ Port_Phone ]\n  Settings  =  4800,n,8,1  \n") << u"Settings"_s << QString() << 20
        << u"4800,n,8,1"_s;
    QTest::newRow("double quotes dropped") << QByteArray("[Port_Phone]\nFontName=\"Courier New\"\n")
                                           << u"FontName"_s << QString() << 256 << u"Courier New"_s;
    QTest::newRow("single quotes dropped") << QByteArray("[Port_Phone]\nFontName='Terminal'\n")
                                           << u"FontName"_s << QString() << 256 << u"Terminal"_s;
    QTest::newRow("unmatched quotes kept") << QByteArray("[Port_Phone]\nFontName=\"Courier'\n")
                                           << u"FontName"_s << QString() << 256 << u"\"Courier'"_s;
    QTest::newRow("value holding =") << QByteArray("[Port_Phone]\nA=b=c\n") << u"A"_s << QString() << 256
                                     << u"b=c"_s;
    QTest::newRow("empty value is no default")
        << QByteArray("[Port_Phone]\nSettings=\n") << u"Settings"_s << u"x"_s << 20 << QString();
    QTest::newRow("missing key") << QByteArray("[Port_Phone]\nComm Port=1\n") << u"Settings"_s << u"dflt"_s
                                 << 20 << u"dflt"_s;
    QTest::newRow("key of another section")
        << QByteArray("[Terminal_Phone]\nSettings=9600,n,8,1\n[Port_Phone]\nComm Port=1\n") << u"Settings"_s
        << u"dflt"_s << 20 << u"dflt"_s;
    QTest::newRow("missing section") << QByteArray("[Application]\nSettings=1\n") << u"Settings"_s
                                     << u"dflt"_s << 20 << u"dflt"_s;
    QTest::newRow("default loses trailing blanks")
        << QByteArray() << u"Settings"_s << u"abc   "_s << 20 << u"abc"_s;
    QTest::newRow("value cut at buffer") << QByteArray("[Port_Phone]\nSettings=115200,n,8,1,extra,extra\n")
                                         << u"Settings"_s << QString() << 20 << u"115200,n,8,1,extra,"_s;
    QTest::newRow("buffer 4 holds 3")
        << QByteArray("[Port_Phone]\nComm Port=1234\n") << u"Comm Port"_s << QString() << 4 << u"123"_s;
    QTest::newRow("default cut at buffer")
        << QByteArray() << u"Settings"_s << u"defaulted"_s << 4 << u"def"_s;
    QTest::newRow("buffer of one holds nothing")
        << QByteArray("[Port_Phone]\nComm Port=1\n") << u"Comm Port"_s << QString() << 1 << QString();
    QTest::newRow("buffer of zero holds nothing")
        << QByteArray("[Port_Phone]\nComm Port=1\n") << u"Comm Port"_s << u"x"_s << 0 << QString();
    QTest::newRow("comment is no key") << QByteArray("[Port_Phone]\n;Settings=2400,n,8,1\n") << u"Settings"_s
                                       << u"dflt"_s << 20 << u"dflt"_s;
    QTest::newRow("line without = is no key")
        << QByteArray("[Port_Phone]\nSettings\n") << u"Settings"_s << u"dflt"_s << 20 << u"dflt"_s;
    QTest::newRow("first of two keys")
        << QByteArray("[Port_Phone]\nSettings=1\nsettings=2\n") << u"Settings"_s << QString() << 20 << u"1"_s;
    QTest::newRow("first of two sections")
        << QByteArray("[Port_Phone]\nSettings=1\n[port_phone]\nSettings=2\n") << u"Settings"_s << QString()
        << 20 << u"1"_s;
    QTest::newRow("crlf") << QByteArray("[Port_Phone]\r\nSettings=9600,n,8,1\r\n") << u"Settings"_s
                          << QString() << 20 << u"9600,n,8,1"_s;
    QTest::newRow("last line without line end") << QByteArray("[Port_Phone]\r\nSettings=9600,n,8,1")
                                                << u"Settings"_s << QString() << 20 << u"9600,n,8,1"_s;
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF[Port_Phone]\nSettings=1\n") << u"Settings"_s
                                     << QString() << 20 << u"1"_s;
    QTest::newRow("utf-8") << QByteArray("[Port_Phone]\nFontName=Caf\xC3\xA9\n") << u"FontName"_s << QString()
                           << 256 << u"Caf\u00e9"_s;
    QTest::newRow("single-byte text") << QByteArray("[Port_Phone]\nFontName=Caf\xE9\n") << u"FontName"_s
                                      << QString() << 256 << u"Caf\u00e9"_s;
}

void IniFileTest::getString()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, key);
    QFETCH(QString, defaultValue);
    QFETCH(int, bufferSize);
    QFETCH(QString, expected);

    if (!file.isEmpty())
        writeBytes(filePath(), file);
    const IniFile ini(filePath());
    QCOMPARE(ini.getString(u"Port_Phone"_s, key, defaultValue, bufferSize), expected);
}

void IniFileTest::getInt_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("expected");

    QTest::newRow("number") << QByteArray("Handshaking=2") << 2;
    QTest::newRow("leading blanks") << QByteArray("Handshaking=   17") << 17;
    QTest::newRow("negative") << QByteArray("Handshaking=-3") << -3;
    QTest::newRow("plus sign") << QByteArray("Handshaking=+5") << 5;
    QTest::newRow("number at front") << QByteArray("Handshaking=12abc") << 12;
    QTest::newRow("no number") << QByteArray("Handshaking=abc") << 0;
    QTest::newRow("empty") << QByteArray("Handshaking=") << 0;
    QTest::newRow("quoted") << QByteArray("Handshaking=\"42\"") << 42;
    QTest::newRow("too large") << QByteArray("Handshaking=99999999999999") << std::numeric_limits<int>::max();
    QTest::newRow("too small") << QByteArray("Handshaking=-99999999999999")
                               << std::numeric_limits<int>::min();
    QTest::newRow("missing") << QByteArray("Comm Port=1") << 99;
}

void IniFileTest::getInt()
{
    QFETCH(QByteArray, line);
    QFETCH(int, expected);

    writeBytes(filePath(), "[Port_Phone]\n" + line + "\n");
    QCOMPARE(IniFile(filePath()).getInt(u"Port_Phone"_s, u"Handshaking"_s, 99), expected);
}

void IniFileTest::hasKeySeesOnlyKeyLines()
{
    writeBytes(filePath(), "[Port_Phone]\nComm Port=\n; Settings=9600\nDTREnable\n[Other]\nRTSEnable=True\n");
    const IniFile ini(filePath());
    QVERIFY(ini.hasKey(u"Port_Phone"_s, u"Comm Port"_s));
    QVERIFY(ini.hasKey(u"port_phone"_s, u"COMM PORT"_s));
    QVERIFY(!ini.hasKey(u"Port_Phone"_s, u"Settings"_s));
    QVERIFY(!ini.hasKey(u"Port_Phone"_s, u"DTREnable"_s));
    QVERIFY(!ini.hasKey(u"Port_Phone"_s, u"RTSEnable"_s));
    QVERIFY(ini.hasKey(u"Other"_s, u"RTSEnable"_s));
}

void IniFileTest::portSectionWithoutSettingsKey()
{
    // The port loader stops at the first missing key: here Settings, although Comm Port is there.
    writeBytes(filePath(), "[Port_Phone]\r\nComm Port=2\r\nDTREnable=True\r\n");
    const IniFile ini(filePath());
    QVERIFY(ini.hasKey(u"Port_Phone"_s, u"Comm Port"_s));
    QVERIFY(!ini.hasKey(u"Port_Phone"_s, u"Settings"_s));
    QVERIFY(ini.hasKey(u"Port_Phone"_s, u"DTREnable"_s));
    QCOMPARE(ini.getString(u"Port_Phone"_s, u"Settings"_s, QString(), 20), QString());

    writeBytes(filePath(), QByteArray());
    QVERIFY(!ini.hasKey(u"Port_Phone"_s, u"Comm Port"_s));
}

void IniFileTest::keysListsKeyLinesInOrder()
{
    writeBytes(filePath(), "[Application]\nx=1\n[Button Assignments]\r\n; note\r\n3 - Squelch=sq~\r\n\r\n"
                           "junk line\r\n  1 - Model = model~\r\n[Port_Phone]\r\nComm Port=1\r\n");
    const IniFile ini(filePath());
    QCOMPARE(ini.keys(u"button assignments"_s), (QStringList{u"3 - Squelch"_s, u"1 - Model"_s}));
    QVERIFY(ini.keys(u"Missing"_s).isEmpty());
}

void IniFileTest::keysCutAtBuffer_data()
{
    QTest::addColumn<int>("bufferSize");
    QTest::addColumn<QStringList>("expected");

    // The list "abc\0defgh\0\0" takes 11 characters.
    QTest::newRow("fits exactly") << 11 << QStringList{u"abc"_s, u"defgh"_s};
    QTest::newRow("one short cuts the last key") << 10 << QStringList{u"abc"_s, u"defg"_s};
    QTest::newRow("room for one character of the last") << 7 << QStringList{u"abc"_s, u"d"_s};
    QTest::newRow("last key gone") << 6 << QStringList{u"abc"_s};
    QTest::newRow("first key cut") << 3 << QStringList{u"a"_s};
    QTest::newRow("no room") << 2 << QStringList();
}

void IniFileTest::keysCutAtBuffer()
{
    QFETCH(int, bufferSize);
    QFETCH(QStringList, expected);

    writeBytes(filePath(), "[S]\nabc=1\ndefgh=2\n");
    QCOMPARE(IniFile(filePath()).keys(u"S"_s, bufferSize), expected);
}

void IniFileTest::writeCreatesFileAndDirectory()
{
    const QString path = m_dir->filePath(u"config/deeper/varnel-utility.INI"_s);
    IniFile ini(path);
    ini.writeString(u"Port_Phone"_s, u"Comm Port"_s, u"2"_s);
    QCOMPARE(readBytes(path), QByteArray("[Port_Phone]\nComm Port=2\n"));
    ini.writeString(u"Port_Phone"_s, u"Settings"_s, u"9600,n,8,1"_s);
    QCOMPARE(readBytes(path), QByteArray("[Port_Phone]\nComm Port=2\nSettings=9600,n,8,1\n"));
    QCOMPARE(ini.getString(u"Port_Phone"_s, u"Settings"_s, QString(), 20), u"9600,n,8,1"_s);
}

void IniFileTest::writeReplacesOneValueAndKeepsTheRest()
{
    const QByteArray before("; settings of the utility\n"
                            "[Application]\n"
                            "Hide Intro = False   ; set by hand\n"
                            "Odd line without equals\n"
                            "\n"
                            "[Port_Phone]\n"
                            "  Comm Port=1\n"
                            "Settings=\"9600,n,8,1\"\n");
    writeBytes(filePath(), before);
    IniFile ini(filePath());
    ini.writeString(u"Port_Phone"_s, u"Comm Port"_s, u"3"_s);
    QCOMPARE(readBytes(filePath()), QByteArray("; settings of the utility\n"
                                               "[Application]\n"
                                               "Hide Intro = False   ; set by hand\n"
                                               "Odd line without equals\n"
                                               "\n"
                                               "[Port_Phone]\n"
                                               "Comm Port=3\n"
                                               "Settings=\"9600,n,8,1\"\n"));
    ini.writeString(u"Application"_s, u"Hide Intro"_s, u"True"_s);
    QCOMPARE(readBytes(filePath()), QByteArray("; settings of the utility\n"
                                               "[Application]\n"
                                               "Hide Intro=True\n"
                                               "Odd line without equals\n"
                                               "\n"
                                               "[Port_Phone]\n"
                                               "Comm Port=3\n"
                                               "Settings=\"9600,n,8,1\"\n"));
}

void IniFileTest::writeAddsKeyBehindLastKeyOfSection()
{
    writeBytes(filePath(), "[Application]\n"
                           "Hide Intro=True\n"
                           "; a note at the end of the section\n"
                           "\n"
                           "; about the port\n"
                           "[Port_Phone]\n"
                           "Comm Port=1\n");
    IniFile ini(filePath());
    ini.writeString(u"Application"_s, u"Hide Diag"_s, u"True"_s);
    ini.writeString(u"Empty"_s, u"First"_s, u"1"_s);
    writeBytes(filePath(), readBytes(filePath()) + "[Bare]\n\n[Last]\n");
    ini.writeString(u"Bare"_s, u"Only"_s, u"x"_s);
    QCOMPARE(readBytes(filePath()), QByteArray("[Application]\n"
                                               "Hide Intro=True\n"
                                               "Hide Diag=True\n"
                                               "; a note at the end of the section\n"
                                               "\n"
                                               "; about the port\n"
                                               "[Port_Phone]\n"
                                               "Comm Port=1\n"
                                               "\n"
                                               "[Empty]\n"
                                               "First=1\n"
                                               "[Bare]\n"
                                               "Only=x\n"
                                               "\n"
                                               "[Last]\n"));
}

void IniFileTest::writeAddsSectionAtEnd()
{
    writeBytes(filePath(), "[Application]\nHide Intro=True");
    IniFile ini(filePath());
    ini.writeString(u"Port_Phone"_s, u"Comm Port"_s, u"1"_s);
    QCOMPARE(readBytes(filePath()),
             QByteArray("[Application]\nHide Intro=True\n\n[Port_Phone]\nComm Port=1\n"));

    writeBytes(filePath(), "[Application]\nHide Intro=True\n\n");
    ini.writeString(u"Port_Phone"_s, u"Comm Port"_s, u"1"_s);
    QCOMPARE(readBytes(filePath()),
             QByteArray("[Application]\nHide Intro=True\n\n[Port_Phone]\nComm Port=1\n"));
}

void IniFileTest::writeKeepsCrlf()
{
    writeBytes(filePath(), "[Application]\r\nHide Intro=False\r\n[Port_Phone]\r\nComm Port=1");
    IniFile ini(filePath());
    ini.writeString(u"Application"_s, u"Hide Intro"_s, u"True"_s);
    ini.writeString(u"Port_Phone"_s, u"Settings"_s, u"9600,n,8,1"_s);
    ini.writeString(u"Terminal_Phone"_s, u"Rows"_s, u"25"_s);
    QCOMPARE(readBytes(filePath()),
             QByteArray("[Application]\r\nHide Intro=True\r\n[Port_Phone]\r\nComm Port=1\r\n"
                        "Settings=9600,n,8,1\r\n\r\n[Terminal_Phone]\r\nRows=25\r\n"));
    QCOMPARE(ini.getString(u"PORT_PHONE"_s, u"comm port"_s, QString(), 4), u"1"_s);
}

void IniFileTest::writeMatchesNamesWithoutRegardToCase()
{
    writeBytes(filePath(), "[application]\r\nhide intro=False\r\n");
    IniFile ini(filePath());
    ini.writeString(u"Application"_s, u"Hide Intro"_s, u"-1"_s);
    QCOMPARE(readBytes(filePath()), QByteArray("[application]\r\nhide intro=-1\r\n"));
    QCOMPARE(ini.keys(u"APPLICATION"_s), QStringList{u"hide intro"_s});
}

void IniFileTest::writeKeepsByteOrderMarkAndSingleByteText()
{
    writeBytes(filePath(), "\xEF\xBB\xBF[Terminal_Phone]\nFontName=Caf\xC3\xA9\n");
    IniFile ini(filePath());
    ini.writeString(u"Terminal_Phone"_s, u"Rows"_s, u"25"_s);
    QCOMPARE(readBytes(filePath()),
             QByteArray("\xEF\xBB\xBF[Terminal_Phone]\nFontName=Caf\xC3\xA9\nRows=25\n"));

    // A file of single bytes that is no UTF-8 goes back in single bytes, so its other lines don't change.
    writeBytes(filePath(), "; r\xE9glages\n[Terminal_Phone]\nFontName=Caf\xE9\n");
    ini.writeString(u"Terminal_Phone"_s, u"Rows"_s, u"25"_s);
    QCOMPARE(readBytes(filePath()),
             QByteArray("; r\xE9glages\n[Terminal_Phone]\nFontName=Caf\xE9\nRows=25\n"));
}

void IniFileTest::valueCannotAddLineOrKey_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("readBack");

    QTest::newRow("line feed") << u"a\nInjected=1"_s << u"aInjected=1"_s;
    QTest::newRow("carriage return and line feed") << u"a\r\nInjected=1\r\n"_s << u"aInjected=1"_s;
    QTest::newRow("carriage return") << u"x\r[Evil]\rEvil=1"_s << u"x[Evil]Evil=1"_s;
    QTest::newRow("other line breaks") << u"p\u2028q\u2029r\u0085s\vt\fu"_s << u"pqrstu"_s;
    QTest::newRow("zero ends the text") << QStringLiteral("ab") + QChar(0) + u"\nInjected=1"_s << u"ab"_s;
}

void IniFileTest::valueCannotAddLineOrKey()
{
    QFETCH(QString, value);
    QFETCH(QString, readBack);

    writeBytes(filePath(), "[Button Assignments]\n1 - Model=model~\n");
    IniFile ini(filePath());
    ini.writeString(u"Button Assignments"_s, u"2 - Test"_s, value);
    QCOMPARE(ini.keys(u"Button Assignments"_s), (QStringList{u"1 - Model"_s, u"2 - Test"_s}));
    QVERIFY(!ini.hasKey(u"Evil"_s, u"Evil"_s));
    QCOMPARE(ini.getString(u"Button Assignments"_s, u"2 - Test"_s, QString()), readBack);
    QCOMPARE(readBytes(filePath()).count('\n'), 3);
}

void IniFileTest::keyAndSectionCannotAddLineOrKey()
{
    IniFile ini(filePath());
    ini.writeString(u"Button Assignments"_s, u"4 - a=b\nInjected"_s, u"x"_s);
    ini.writeString(u"Button Assignments"_s, u"[Evil]"_s, u"y"_s);
    ini.writeString(u"Button Assignments"_s, u";hidden"_s, u"z"_s);
    ini.writeString(u"A\n[B]"_s, u"k"_s, u"v"_s);
    ini.writeString(u"Button Assignments"_s, u"\r\n"_s, u"nothing"_s);
    QCOMPARE(readBytes(filePath()),
             QByteArray("[Button Assignments]\n4 - abInjected=x\nEvil]=y\nhidden=z\n\n[A[B]]\nk=v\n"));
    // Reads clean the names the same way, so what was written is found again.
    QCOMPARE(ini.getString(u"Button Assignments"_s, u"4 - a=b\nInjected"_s, QString()), u"x"_s);
    QCOMPARE(ini.getString(u"Button Assignments"_s, u"[Evil]"_s, QString()), u"y"_s);
    QCOMPARE(ini.getString(u"A\n[B]"_s, u"k"_s, QString()), u"v"_s);
}

void IniFileTest::cannotCommitLeavesOldFileWhole()
{
    // The longest name a directory takes leaves no room for the name of a temporary file beside it, so
    // the new content cannot be put in place.
    const QString path = filePath(QString(251, u'v') + u".INI"_s);
    const QByteArray before("[Application]\r\nHide Intro=False\r\n");
    writeBytes(path, before);
    IniFile ini(path);
    ini.writeString(u"Application"_s, u"Hide Intro"_s, u"True"_s);
    QCOMPARE(readBytes(path), before);
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden),
             QStringList{QFileInfo(path).fileName()});
    QCOMPARE(ini.getString(u"Application"_s, u"Hide Intro"_s, QString(), 10), u"False"_s);
}

void IniFileTest::readOnlyDirectoryLeavesOldFileWhole()
{
    if (geteuid() == 0)
        QSKIP("permissions don't hold the superuser back");
    const QByteArray before("[Application]\nHide Intro=False\n");
    writeBytes(filePath(), before);
    QVERIFY(QFile::setPermissions(m_dir->path(), QFile::ReadOwner | QFile::ExeOwner));
    IniFile ini(filePath());
    ini.writeString(u"Application"_s, u"Hide Intro"_s, u"True"_s);
    const QByteArray after = readBytes(filePath());
    QVERIFY(QFile::setPermissions(m_dir->path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(after, before);
}

void IniFileTest::writeLeavesNoTemporaryFiles()
{
    IniFile ini(filePath());
    for (int i = 0; i < 5; ++i)
        ini.writeString(u"Application"_s, u"Zmodem Options"_s, QString::number(i));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"test.INI"_s});
    QCOMPARE(ini.getInt(u"Application"_s, u"Zmodem Options"_s, -1), 4);
}

void IniFileTest::writeToDirectoryPathChangesNothing()
{
    QVERIFY(QDir(m_dir->path()).mkdir(u"taken.INI"_s));
    IniFile ini(filePath(u"taken.INI"_s));
    ini.writeString(u"Application"_s, u"Hide Intro"_s, u"True"_s);
    QVERIFY(QFileInfo(filePath(u"taken.INI"_s)).isDir());
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
             QStringList{u"taken.INI"_s});
    QCOMPARE(ini.getString(u"Application"_s, u"Hide Intro"_s, u"False"_s, 10), u"False"_s);
}

void IniFileTest::iniBool_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("expected");

    QTest::newRow("True") << u"True"_s << true;
    QTest::newRow("-1") << u"-1"_s << true;
    QTest::newRow("1") << u"1"_s << false;
    QTest::newRow("true") << u"true"_s << false;
    QTest::newRow("TRUE") << u"TRUE"_s << false;
    QTest::newRow("False") << u"False"_s << false;
    QTest::newRow("Yes") << u"Yes"_s << false;
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("blank before") << u" True"_s << false;
    QTest::newRow("-10") << u"-10"_s << false;
}

void IniFileTest::iniBool()
{
    QFETCH(QString, text);
    QFETCH(bool, expected);
    QCOMPARE(::iniBool(text), expected);
}

void IniFileTest::iniBoolTextRoundTrips()
{
    QCOMPARE(iniBoolText(true), u"True"_s);
    QCOMPARE(iniBoolText(false), u"False"_s);
    QVERIFY(::iniBool(iniBoolText(true)));
    QVERIFY(!::iniBool(iniBoolText(false)));
}

void IniFileTest::nextIniKey_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("separator");
    QTest::addColumn<QString>("item");
    QTest::addColumn<int>("positionAfter");

    QTest::newRow("first") << 1 << u"a,b,c"_s << u","_s << u"a"_s << 3;
    QTest::newRow("middle") << 3 << u"a,b,c"_s << u","_s << u"b"_s << 5;
    QTest::newRow("last") << 5 << u"a,b,c"_s << u","_s << u"c"_s << 0;
    QTest::newRow("zero counts as one") << 0 << u"a,b"_s << u","_s << u"a"_s << 3;
    QTest::newRow("negative counts as one") << -5 << u"a,b"_s << u","_s << u"a"_s << 3;
    QTest::newRow("leading blanks removed") << 1 << u"   lead, x"_s << u","_s << u"lead"_s << 9;
    QTest::newRow("leading tab kept") << 1 << u"\tx,y"_s << u","_s << u"\tx"_s << 4;
    QTest::newRow("trailing blanks kept") << 1 << u"x  ,y"_s << u","_s << u"x  "_s << 5;
    QTest::newRow("separator at the end") << 1 << u"a,"_s << u","_s << u"a"_s << 0;
    QTest::newRow("empty item") << 1 << u",b"_s << u","_s << QString() << 2;
    QTest::newRow("no separator") << 1 << u"abc"_s << u","_s << u"abc"_s << 0;
    QTest::newRow("empty list") << 1 << QString() << u","_s << QString() << 0;
    QTest::newRow("beyond the end") << 10 << u"a,b"_s << u","_s << QString() << 0;
    QTest::newRow("long separator 1") << 1 << u"one - two - three"_s << u" - "_s << u"one"_s << 7;
    QTest::newRow("long separator 2") << 7 << u"one - two - three"_s << u" - "_s << u"two"_s << 13;
    QTest::newRow("long separator 3") << 13 << u"one - two - three"_s << u" - "_s << u"three"_s << 0;
    QTest::newRow("separator is exact in case") << 1 << u"aXbxc"_s << u"x"_s << u"aXb"_s << 5;
    QTest::newRow("empty separator") << 2 << u"abc"_s << QString() << u"bc"_s << 0;
}

void IniFileTest::nextIniKey()
{
    QFETCH(int, position);
    QFETCH(QString, list);
    QFETCH(QString, separator);
    QFETCH(QString, item);
    QFETCH(int, positionAfter);

    QCOMPARE(NextIniKey(position, list, separator), item);
    QCOMPARE(position, positionAfter);
}

void IniFileTest::nextIniKeyWalksZeroSeparatedList()
{
    const QString zero(QChar(0));
    const QString list = u"1 - Model"_s + zero + u" 3 - Squelch"_s + zero + u"10 - Ten"_s + zero;
    QStringList items;
    int position = 1;
    do {
        items << NextIniKey(position, list, zero);
    } while (position > 0 && items.size() < 10);
    QCOMPARE(items, (QStringList{u"1 - Model"_s, u"3 - Squelch"_s, u"10 - Ten"_s}));
}

void IniFileTest::cleanIniText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("textAfter");
    QTest::addColumn<QString>("result");

    const QString zero(QChar(0));
    QTest::newRow("clean") << u"abc"_s << u"abc"_s << u"abc"_s;
    QTest::newRow("tail of zeros tabs line ends blanks")
        << u"abc \t\r\n"_s + zero + zero << u"abc"_s << u"abc"_s;
    QTest::newRow("inner zero") << u"a"_s + zero + u"b"_s << u"a b"_s << u"a b"_s;
    QTest::newRow("tilde") << u"a~b~"_s << u"a b "_s << u"a b"_s;
    QTest::newRow("leading blanks") << u"  lead"_s << u"  lead"_s << u"lead"_s;
    QTest::newRow("leading tab stays") << u"\tx"_s << u"\tx"_s << u"\tx"_s;
    QTest::newRow("inner line ends stay") << u"a\r\nb\r\n"_s << u"a\r\nb"_s << u"a\r\nb"_s;
    QTest::newRow("tilde before tail") << u"x~\t"_s << u"x "_s << u"x"_s;
    QTest::newRow("only zeros") << zero + zero << QString() << QString();
    QTest::newRow("empty") << QString() << QString() << QString();
}

void IniFileTest::cleanIniText()
{
    QFETCH(QString, text);
    QFETCH(QString, textAfter);
    QFETCH(QString, result);

    QCOMPARE(CleanIniText(text), result);
    QCOMPARE(text, textAfter);
}

void IniFileTest::iniFileNameFor_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("expected");

    QTest::newRow("with extension") << u"/opt/varnel/VarnelUtil.exe"_s << u"VarnelUtil.INI"_s;
    QTest::newRow("without extension") << u"/usr/bin/varnel-utility"_s << u"varnel-utility.INI"_s;
    QTest::newRow("cut at first point") << u"/usr/bin/varnel.utility.bin"_s << u"varnel.INI"_s;
    QTest::newRow("points in directory") << u"/home/a.b/varnel"_s << u"varnel.INI"_s;
}

void IniFileTest::iniFileNameFor()
{
    QFETCH(QString, program);
    QFETCH(QString, expected);
    QCOMPARE(::iniFileNameFor(program), expected);
}

void IniFileTest::getIniFileNameFollowsConfigHome()
{
    const QByteArray saved = qgetenv("XDG_CONFIG_HOME");
    const QString home = QDir::homePath();

    qputenv("XDG_CONFIG_HOME", m_dir->path().toLocal8Bit());
    const QString inConfigHome = GetIniFileName();
    qputenv("XDG_CONFIG_HOME", "relative/dir");
    const QString relativeIgnored = GetIniFileName();
    qunsetenv("XDG_CONFIG_HOME");
    const QString unset = GetIniFileName();
    qputenv("XDG_CONFIG_HOME", saved);

    QCOMPARE(inConfigHome, m_dir->path() + u"/IniFileTest.INI"_s);
    QCOMPARE(relativeIgnored, home + u"/.config/IniFileTest.INI"_s);
    QCOMPARE(unset, home + u"/.config/IniFileTest.INI"_s);
}

QTEST_GUILESS_MAIN(IniFileTest)
#include "IniFileTest.moc"
