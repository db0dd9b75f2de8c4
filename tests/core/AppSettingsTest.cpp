#include "AppSettings.h"
#include "IniFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

using namespace Qt::StringLiterals;

class AppSettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void emptyOrMissingFileLeavesDefaults();
    void booleans_data();
    void booleans();
    void eachBooleanHasItsOwnKey();
    void integersTakeNumberAtFront();
    void autoZModemIsNeverReadBack();
    void directories_data();
    void directories();
    void directoryWrittenAsReadAtExit();

    void buttonKeys();
    void buttonKeyListCutAt256();
    void buttonValueCutAt256();
    void buttonValueText_data();
    void buttonValueText();
    void emptiedButtonComesBackAtNextLoad();
    void renamedButtonLeavesOldKey();

    void saveWritesBothSectionsInOrder();
    void saveKeepsWindowsFileAsItStands();

private:
    QString iniPath() const { return m_dir->filePath(u"varnel-utility.INI"_s); }
    void writeFile(const QByteArray &bytes);
    QByteArray readFile() const;
    AppSettings load() const;

    std::unique_ptr<QTemporaryDir> m_dir;
};

void AppSettingsTest::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void AppSettingsTest::writeFile(const QByteArray &bytes)
{
    QFile file(iniPath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray AppSettingsTest::readFile() const
{
    QFile file(iniPath());
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

AppSettings AppSettingsTest::load() const
{
    AppSettings settings;
    LoadAppSettings(IniFile(iniPath()), settings);
    return settings;
}

void AppSettingsTest::emptyOrMissingFileLeavesDefaults()
{
    // The program's own directory, in the form every directory takes.
    const QString programDirectory = QCoreApplication::applicationDirPath().toUpper() + u'\\';

    for (const bool fileExists : {false, true}) {
        if (fileExists)
            writeFile(QByteArray());
        const AppSettings settings = load();
        QCOMPARE(settings.downloadDirectory, programDirectory);
        QCOMPARE(settings.uploadDirectory, programDirectory);
        QCOMPARE(settings.zmodemOptions, 0);
        QCOMPARE(settings.transferOptions, 0);
        QVERIFY(!settings.hideIntro);
        QVERIFY(!settings.hideDiag);
        QVERIFY(!settings.repeaterSetup);
        for (const ButtonAssignment &button : settings.buttons) {
            QVERIFY(button.caption.isEmpty());
            QVERIFY(button.tag.isEmpty());
        }
        QCOMPARE(QFile::exists(iniPath()), fileExists);
    }
}

void AppSettingsTest::booleans_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("expected");

    QTest::newRow("True") << QByteArray("True") << true;
    QTest::newRow("-1") << QByteArray("-1") << true;
    QTest::newRow("1") << QByteArray("1") << false;
    QTest::newRow("true") << QByteArray("true") << false;
    QTest::newRow("False") << QByteArray("False") << false;
    QTest::newRow("blanks around") << QByteArray("  True  ") << true;
    QTest::newRow("quoted") << QByteArray("\"-1\"") << true;
    QTest::newRow("cut at buffer of 10") << QByteArray("-1xxxxxxxxx") << false;
}

void AppSettingsTest::booleans()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, expected);

    writeFile("[Application]\nHide Intro=" + value + "\n");
    QCOMPARE(load().hideIntro, expected);
}

void AppSettingsTest::eachBooleanHasItsOwnKey()
{
    writeFile("[Application]\nHide Diag=-1\n");
    AppSettings settings = load();
    QVERIFY(!settings.hideIntro && settings.hideDiag && !settings.repeaterSetup);

    writeFile("[Application]\nRepeater Setup=True\n");
    settings = load();
    QVERIFY(!settings.hideIntro && !settings.hideDiag && settings.repeaterSetup);
}

void AppSettingsTest::integersTakeNumberAtFront()
{
    writeFile("[Application]\nZmodem Options=12abc\nTransfer Options=abc\n");
    AppSettings settings = load();
    QCOMPARE(settings.zmodemOptions, 12);
    QCOMPARE(settings.transferOptions, 0);

    writeFile("[Application]\nTransfer Options=  7\n");
    settings = load();
    QCOMPARE(settings.zmodemOptions, 0);
    QCOMPARE(settings.transferOptions, 7);
}

void AppSettingsTest::autoZModemIsNeverReadBack()
{
    writeFile("[Application]\nAuto ZModem=True\n");
    AppSettings settings;
    LoadAppSettings(IniFile(iniPath()), settings);
    QVERIFY(!settings.autoZModem);

    writeFile("[Application]\nAuto ZModem=False\n");
    settings.autoZModem = true;
    LoadAppSettings(IniFile(iniPath()), settings);
    QVERIFY(settings.autoZModem);

    IniFile ini(iniPath());
    SaveAppSettings(ini, settings);
    QCOMPARE(ini.getString(u"Application"_s, u"Auto ZModem"_s, QString()), u"True"_s);
    settings.autoZModem = false;
    SaveAppSettings(ini, settings);
    QCOMPARE(ini.getString(u"Application"_s, u"Auto ZModem"_s, QString()), u"False"_s);
}

void AppSettingsTest::directories_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("expected");

    QTest::newRow("lower case without backslash") << QByteArray("c:\\temp") << u"C:\\TEMP\\"_s;
    QTest::newRow("backslash already there") << QByteArray("d:\\Data\\In\\") << u"D:\\DATA\\IN\\"_s;
    QTest::newRow("forward slash gets a backslash") << QByteArray("/home/tech/") << u"/HOME/TECH/\\"_s;
    QTest::newRow("empty") << QByteArray() << u"\\"_s;
    QTest::newRow("cut at buffer of 256")
        << QByteArray("c:\\") + QByteArray(300, 'a') << u"C:\\"_s + QString(252, u'A') + u'\\';
}

void AppSettingsTest::directories()
{
    QFETCH(QByteArray, value);
    QFETCH(QString, expected);

    writeFile("[Application]\nDownload Directory=" + value + "\nUpload Directory=" + value + "\n");
    const AppSettings settings = load();
    QCOMPARE(settings.downloadDirectory, expected);
    QCOMPARE(settings.uploadDirectory, expected);
}

void AppSettingsTest::directoryWrittenAsReadAtExit()
{
    writeFile("[Application]\r\nDownload Directory=c:\\temp\r\n");
    IniFile ini(iniPath());
    AppSettings settings;
    LoadAppSettings(ini, settings);
    SaveAppSettings(ini, settings);
    QVERIFY(readFile().startsWith("[Application]\r\nDownload Directory=C:\\TEMP\\\r\nUpload Directory="));
    QCOMPARE(load().downloadDirectory, u"C:\\TEMP\\"_s);
}

void AppSettingsTest::buttonKeys()
{
    writeFile("[Button Assignments]\n"
              "3 - Squelch=sq~\n"
              "1 - Fast=fa~ignored\n"
              "2 - Plain=ver\n"
              "10-Ten=~\n"
              "5 - a-b=x\n"
              "  4 -   Spaces  =  s  \n"
              "0 - Zero=z\n"
              "11 - Eleven=e\n"
              "Nodash=n\n"
              "x - Letters=q\n");
    AppSettings settings;
    settings.buttons[5] = {u"Kept"_s, u"kept\r"_s};
    LoadAppSettings(IniFile(iniPath()), settings);

    QCOMPARE(settings.buttons[0].caption, u"Fast"_s);
    QCOMPARE(settings.buttons[0].tag, u"fa\r"_s);
    QCOMPARE(settings.buttons[1].caption, u"Plain"_s);
    QCOMPARE(settings.buttons[1].tag, u"ver"_s);
    QCOMPARE(settings.buttons[2].caption, u"Squelch"_s);
    QCOMPARE(settings.buttons[2].tag, u"sq\r"_s);
    QCOMPARE(settings.buttons[3].caption, u"Spaces"_s);
    QCOMPARE(settings.buttons[3].tag, u"s"_s);
    QCOMPARE(settings.buttons[4].caption, u"a-b"_s);
    QCOMPARE(settings.buttons[4].tag, u"x"_s);
    QCOMPARE(settings.buttons[5].caption, u"Kept"_s);
    QCOMPARE(settings.buttons[5].tag, u"kept\r"_s);
    for (int i : {6, 7, 8}) {
        QVERIFY(settings.buttons[i].caption.isEmpty());
        QVERIFY(settings.buttons[i].tag.isEmpty());
    }
    QCOMPARE(settings.buttons[9].caption, u"Ten"_s);
    QCOMPARE(settings.buttons[9].tag, u"\r"_s);
}

void AppSettingsTest::buttonKeyListCutAt256()
{
    // Ten keys of 29 or 30 characters don't fit in the list buffer: the first eight do (240 characters
    // with their separators), the ninth is cut after 14 characters and the tenth is lost.
    const QString caption(25, u'c');
    QByteArray file("[Button Assignments]\n");
    for (int i = 1; i <= 10; ++i)
        file += QStringLiteral("%1 - %2=tag%1~\n").arg(i).arg(caption).toUtf8();
    writeFile(file);

    const AppSettings settings = load();
    for (int i = 0; i < 8; ++i) {
        QCOMPARE(settings.buttons[i].caption, caption);
        QCOMPARE(settings.buttons[i].tag, QStringLiteral("tag%1\r").arg(i + 1));
    }
    // The cut key names no key of the file, so its value is the empty default.
    QCOMPARE(settings.buttons[8].caption, QString(10, u'c'));
    QVERIFY(settings.buttons[8].tag.isEmpty());
    QVERIFY(settings.buttons[9].caption.isEmpty());
    QVERIFY(settings.buttons[9].tag.isEmpty());
}

void AppSettingsTest::buttonValueCutAt256()
{
    writeFile("[Button Assignments]\n1 - Long=" + QByteArray(255, 'a') +
              "~\n2 - Fits=" + QByteArray(254, 'b') + "~rest\n");
    const AppSettings settings = load();
    QCOMPARE(settings.buttons[0].tag, QString(255, u'a'));
    QCOMPARE(settings.buttons[1].tag, QString(254, u'b') + u'\r');
}

void AppSettingsTest::buttonValueText_data()
{
    QTest::addColumn<QString>("tag");
    QTest::addColumn<QString>("value");

    QTest::newRow("final carriage return") << u"model\r"_s << u"model~"_s;
    QTest::newRow("only the first one counts") << u"ab\rcd\r"_s << u"ab~"_s;
    QTest::newRow("typed tilde counts as one") << u"x~y\r"_s << u"x~"_s;
    QTest::newRow("no carriage return") << u"plain"_s << u"plain"_s;
    QTest::newRow("carriage return only") << u"\r"_s << u"~"_s;
}

void AppSettingsTest::buttonValueText()
{
    QFETCH(QString, tag);
    QFETCH(QString, value);

    QCOMPARE(::buttonValueText(tag), value);
    AppSettings settings;
    settings.buttons[6] = {u"Seven"_s, tag};
    IniFile ini(iniPath());
    SaveAppSettings(ini, settings);
    QCOMPARE(ini.getString(u"Button Assignments"_s, u"7 - Seven"_s, QString()), value);
    QCOMPARE(load().buttons[6].tag, buttonTagFromValue(value));
}

void AppSettingsTest::emptiedButtonComesBackAtNextLoad()
{
    writeFile("[Button Assignments]\n2 - Old=old~\n");
    IniFile ini(iniPath());
    AppSettings settings;
    LoadAppSettings(ini, settings);
    QCOMPARE(settings.buttons[1].caption, u"Old"_s);
    settings.buttons[1] = {};
    SaveAppSettings(ini, settings);
    QCOMPARE(ini.keys(u"Button Assignments"_s), QStringList{u"2 - Old"_s});

    const AppSettings next = load();
    QCOMPARE(next.buttons[1].caption, u"Old"_s);
    QCOMPARE(next.buttons[1].tag, u"old\r"_s);
}

void AppSettingsTest::renamedButtonLeavesOldKey()
{
    writeFile("[Button Assignments]\n3 - Old=old~\n");
    IniFile ini(iniPath());
    AppSettings settings;
    LoadAppSettings(ini, settings);
    settings.buttons[2] = {u"New"_s, u"new\r"_s};
    SaveAppSettings(ini, settings);
    QCOMPARE(ini.keys(u"Button Assignments"_s), (QStringList{u"3 - Old"_s, u"3 - New"_s}));
    // Both keys select button 3; the one further down the file is read last and stands.
    const AppSettings next = load();
    QCOMPARE(next.buttons[2].caption, u"New"_s);
    QCOMPARE(next.buttons[2].tag, u"new\r"_s);
}

void AppSettingsTest::saveWritesBothSectionsInOrder()
{
    AppSettings settings;
    settings.downloadDirectory = u"C:\\DL\\"_s;
    settings.uploadDirectory = u"C:\\UL\\"_s;
    settings.zmodemOptions = 3;
    settings.transferOptions = 5;
    settings.autoZModem = true;
    settings.hideIntro = true;
    settings.repeaterSetup = true;
    settings.buttons[0] = {u"Model"_s, u"model\r"_s};
    settings.buttons[2] = {u"Squelch"_s, u"sq\r"_s};
    settings.buttons[9] = {u"Ten"_s, u"t"_s};
    settings.buttons[4] = {u"No text"_s, QString()};

    IniFile ini(iniPath());
    SaveAppSettings(ini, settings);
    QCOMPARE(readFile(), QByteArray("[Application]\n"
                                    "Download Directory=C:\\DL\\\n"
                                    "Upload Directory=C:\\UL\\\n"
                                    "Zmodem Options=3\n"
                                    "Transfer Options=5\n"
                                    "Auto ZModem=True\n"
                                    "Hide Intro=True\n"
                                    "Hide Diag=False\n"
                                    "Repeater Setup=True\n"
                                    "\n"
                                    "[Button Assignments]\n"
                                    "1 - Model=model~\n"
                                    "3 - Squelch=sq~\n"
                                    "10 - Ten=t\n"));

    const AppSettings back = load();
    QCOMPARE(back.downloadDirectory, settings.downloadDirectory);
    QCOMPARE(back.uploadDirectory, settings.uploadDirectory);
    QCOMPARE(back.zmodemOptions, 3);
    QCOMPARE(back.transferOptions, 5);
    QVERIFY(back.hideIntro && !back.hideDiag && back.repeaterSetup);
    for (size_t i = 0; i < settings.buttons.size(); ++i) {
        const bool written = !settings.buttons[i].tag.isEmpty();
        QCOMPARE(back.buttons[i].caption, written ? settings.buttons[i].caption : QString());
        QCOMPARE(back.buttons[i].tag, written ? settings.buttons[i].tag : QString());
    }
}

void AppSettingsTest::saveKeepsWindowsFileAsItStands()
{
    const QByteArray before("; written on Windows\r\n"
                            "[APPLICATION]\r\n"
                            "HIDE INTRO=-1\r\n"
                            "download directory=c:\\temp\r\n"
                            "\r\n"
                            "[Port_Phone]\r\n"
                            "Comm Port=2\r\n"
                            "Settings=9600,n,8,1\r\n"
                            "\r\n"
                            "[button assignments]\r\n"
                            "1 - Model=model~\r\n");
    writeFile(before);
    IniFile ini(iniPath());
    AppSettings settings;
    LoadAppSettings(ini, settings);
    QVERIFY(settings.hideIntro);
    QCOMPARE(settings.buttons[0].tag, u"model\r"_s);
    settings.buttons[1] = {u"Ver"_s, u"ver\r"_s};
    SaveAppSettings(ini, settings);

    const QString programDirectory = QCoreApplication::applicationDirPath().toUpper() + u'\\';
    const QByteArray expected = "; written on Windows\r\n"
                                "[APPLICATION]\r\n"
                                "HIDE INTRO=True\r\n"
                                "download directory=C:\\TEMP\\\r\n"
                                "Upload Directory=" +
                                programDirectory.toUtf8() +
                                "\r\n"
                                "Zmodem Options=0\r\n"
                                "Transfer Options=0\r\n"
                                "Auto ZModem=False\r\n"
                                "Hide Diag=False\r\n"
                                "Repeater Setup=False\r\n"
                                "\r\n"
                                "[Port_Phone]\r\n"
                                "Comm Port=2\r\n"
                                "Settings=9600,n,8,1\r\n"
                                "\r\n"
                                "[button assignments]\r\n"
                                "1 - Model=model~\r\n"
                                "2 - Ver=ver~\r\n";
    QCOMPARE(readFile(), expected);
}

QTEST_GUILESS_MAIN(AppSettingsTest)
#include "AppSettingsTest.moc"
