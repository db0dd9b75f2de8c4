#include "AppSettings.h"

#include "IniFile.h"
#include "Tables.h"

#include <QCoreApplication>
#include <QTemporaryDir>

namespace {
using Edit = void (*)(AppSettings &);

// The program's own directory, in the form every directory takes.
QString programDirectory()
{
    return QCoreApplication::applicationDirPath().toUpper() + u'\\';
}

// What a load gave, beyond the defaults: "intro diag repeater auto", "zmodem N", "transfer N", the
// directories, and each button as "N caption=tag".
QString described(const AppSettings &s)
{
    QStringList d;
    for (const auto &[on, word] : {std::pair{s.hideIntro, "intro"},
                                   {s.hideDiag, "diag"},
                                   {s.repeaterSetup, "repeater"},
                                   {s.autoZModem, "auto"}})
        if (on)
            d << QLatin1String(word);
    if (s.zmodemOptions || s.transferOptions)
        d << QStringLiteral("zmodem %1 transfer %2").arg(s.zmodemOptions).arg(s.transferOptions);
    if (s.downloadDirectory != programDirectory() || s.uploadDirectory != programDirectory())
        d << QStringLiteral("download %1 upload %2").arg(s.downloadDirectory, s.uploadDirectory);
    for (size_t i = 0; i < s.buttons.size(); ++i)
        if (!s.buttons[i].caption.isEmpty() || !s.buttons[i].tag.isEmpty())
            d << QStringLiteral("%1 %2=%3").arg(i + 1).arg(s.buttons[i].caption, s.buttons[i].tag);
    return d.join(QStringLiteral("; "));
}

// A file (none for a null one), what the settings held before the load, and what the load gave.
struct Load
{
    const char *name;
    const char *file;
    const char *loaded;
    Edit before = nullptr;
};

const Load kLoads[] = {
    {"no file", nullptr, ""},
    {"empty file", "", ""},
    {"True", "[Application]\nHide Intro=True\n", "intro"},
    {"-1", "[Application]\nHide Intro=-1\n", "intro"},
    {"blanks around True", "[Application]\nHide Intro=  True  \n", "intro"},
    {"-1 cut at a buffer of 10", "[Application]\nHide Intro=-1xxxxxxxxx\n", ""},
    {"Hide Diag", "[Application]\nHide Diag=-1\n", "diag"},
    {"Repeater Setup", "[Application]\nRepeater Setup=True\n", "repeater"},
    {"numbers at the front", "[Application]\nZmodem Options=12abc\nTransfer Options=abc\n",
     "zmodem 12 transfer 0"},
    {"transfer options", "[Application]\nTransfer Options=  7\n", "zmodem 0 transfer 7"},
    {"Auto ZModem is not read", "[Application]\nAuto ZModem=True\n", ""},
    {"Auto ZModem stays as it was", "[Application]\nAuto ZModem=False\n", "auto",
     [](AppSettings &s) { s.autoZModem = true; }},
    {"directories", "[Application]\nDownload Directory=c:\\temp\nUpload Directory=d:\\Data\\In\\\n",
     "download C:\\TEMP\\ upload D:\\DATA\\IN\\"},
    {"a forward slash gets a backslash", "[Application]\nDownload Directory=/home/tech/\n",
     "download /HOME/TECH/\\ upload <dir>"},
    {"empty directory", "[Application]\nUpload Directory=\n", "download <dir> upload \\"},
    {"buttons",
     "[Button Assignments]\n3 - Squelch=sq~\n1 - Fast=fa~ignored\n2 - Plain=ver\n10-Ten=~\n5 - a-b=x\n"
     "  4 -   Spaces  =  s  \n0 - Zero=z\n11 - Eleven=e\nNodash=n\nx - Letters=q\n",
     "1 Fast=fa\r; 2 Plain=ver; 3 Squelch=sq\r; 4 Spaces=s; 5 a-b=x; 6 Kept=kept\r; 10 Ten=\r",
     [](AppSettings &s) {
         s.buttons[5] = {QStringLiteral("Kept"), QStringLiteral("kept\r")};
     }},
};

// Loaded from the file before, changed, saved: the file after ("<dir>" the program's directory,
// "<defaults>" the Application section as defaults write it).
struct Save
{
    const char *name;
    const char *before;
    Edit edit;
    const char *after;
};

const char *const kDefaults =
    "[Application]\nDownload Directory=<dir>\nUpload Directory=<dir>\nZmodem Options=0\n"
    "Transfer Options=0\nAuto ZModem=False\nHide Intro=False\nHide Diag=False\n"
    "Repeater Setup=False\n";

const Save kSaves[] = {
    {"defaults into no file", nullptr, nullptr, "<defaults>"},
    {"both sections in order", nullptr,
     [](AppSettings &s) {
         s = {QStringLiteral("C:\\DL\\"), QStringLiteral("C:\\UL\\"), 3, 5, true, true, false, true, {}};
         s.buttons[0] = {QStringLiteral("Model"), QStringLiteral("model\r")};
         s.buttons[2] = {QStringLiteral("Squelch"), QStringLiteral("sq\r")};
         s.buttons[4] = {QStringLiteral("No text"), QString()};
         s.buttons[9] = {QStringLiteral("Ten"), QStringLiteral("t")};
     },
     "[Application]\nDownload Directory=C:\\DL\\\nUpload Directory=C:\\UL\\\nZmodem Options=3\nTransfer "
     "Options=5\n"
     "Auto ZModem=True\nHide Intro=True\nHide Diag=False\nRepeater Setup=True\n\n[Button Assignments]\n"
     "1 - Model=model~\n3 - Squelch=sq~\n10 - Ten=t\n"},
    {"a Windows file as it stands",
     "; written on Windows\r\n[APPLICATION]\r\nHIDE INTRO=-1\r\ndownload "
     "directory=c:\\temp\r\n\r\n[Port_Phone]\r\n"
     "Comm Port=2\r\n\r\n[button assignments]\r\n1 - Model=model~\r\n",
     [](AppSettings &s) {
         s.buttons[1] = {QStringLiteral("Ver"), QStringLiteral("ver\r")};
     },
     "; written on Windows\r\n[APPLICATION]\r\nHIDE INTRO=True\r\ndownload directory=C:\\TEMP\\\r\n"
     "Upload Directory=<dir>\r\nZmodem Options=0\r\nTransfer Options=0\r\nAuto ZModem=False\r\nHide "
     "Diag=False\r\n"
     "Repeater Setup=False\r\n\r\n[Port_Phone]\r\nComm Port=2\r\n\r\n[button assignments]\r\n1 - "
     "Model=model~\r\n"
     "2 - Ver=ver~\r\n"},
    // An emptied button writes nothing: its key stays and comes back at the next load.
    {"emptied button keeps its key", "<defaults>[Button Assignments]\n2 - Old=old~\n",
     [](AppSettings &s) { s.buttons[1] = {}; }, "<defaults>[Button Assignments]\n2 - Old=old~\n"},
    // Both keys select button 3; the one further down the file is read last and stands.
    {"renamed button adds a key", "<defaults>[Button Assignments]\n3 - Old=old~\n",
     [](AppSettings &s) {
         s.buttons[2] = {QStringLiteral("New"), QStringLiteral("new\r")};
     },
     "<defaults>[Button Assignments]\n3 - Old=old~\n3 - New=new~\n"},
};

QByteArray filled(const char *text)
{
    return QString::fromUtf8(text)
        .replace(QStringLiteral("<defaults>"), QLatin1String(kDefaults))
        .replace(QStringLiteral("<dir>"), programDirectory())
        .toUtf8();
}

// The text a button sends, the value stored for it, and the text that value gives back.
const char *const kTags[][4] = {
    {"final carriage return", "model\r", "model~", "model\r"},
    {"only the first one counts", "ab\rcd\r", "ab~", "ab\r"},
    {"typed tilde counts as one", "x~y\r", "x~", "x\r"},
    {"no carriage return", "plain", "plain", "plain"},
    {"carriage return only", "\r", "~", "\r"},
};
} // namespace

class AppSettingsTest : public QObject
{
    Q_OBJECT
private slots:
    void loads_data() { addRows(kLoads); }
    void loads()
    {
        const Load &l = fetchRow(kLoads);
        QTemporaryDir dir;
        const IniFile ini(dir.filePath(QStringLiteral("varnel-utility.INI")));
        if (l.file)
            QVERIFY(writeBytes(ini.path(), l.file));
        AppSettings settings;
        if (l.before)
            l.before(settings);
        LoadAppSettings(ini, settings);
        QCOMPARE(described(settings), QString::fromUtf8(filled(l.loaded)));
        QCOMPARE(QFile::exists(ini.path()), l.file != nullptr);
    }

    void buttonKeysAndValuesCutAt256()
    {
        // Ten keys of 29 or 30 characters: the first eight fit the list buffer with their separators
        // (240 characters), the ninth is cut after 14 and names no key, the tenth is lost.
        QByteArray file("[Button Assignments]\n");
        for (int i = 1; i <= 10; ++i)
            file += QStringLiteral("%1 - %2=tag%1~\n").arg(i).arg(QString(25, u'c')).toUtf8();
        QTemporaryDir dir;
        const IniFile ini(dir.filePath(QStringLiteral("varnel-utility.INI")));
        QVERIFY(writeBytes(ini.path(), file));
        AppSettings settings;
        LoadAppSettings(ini, settings);
        QStringList expected;
        for (int i = 1; i <= 8; ++i)
            expected << QStringLiteral("%1 %2=tag%1\r").arg(i).arg(QString(25, u'c'));
        QCOMPARE(described(settings),
                 (expected << QStringLiteral("9 cccccccccc=")).join(QStringLiteral("; ")));

        QVERIFY(writeBytes(ini.path(), "[Button Assignments]\n1 - Long=" + QByteArray(255, 'a') +
                                           "~\n2 - Fits=" + QByteArray(254, 'b') + "~rest\n"));
        LoadAppSettings(ini, settings);
        QCOMPARE(settings.buttons[0].tag, QString(255, u'a'));
        QCOMPARE(settings.buttons[1].tag, QString(254, u'b') + u'\r');
        QVERIFY(
            writeBytes(ini.path(), "[Application]\nDownload Directory=c:\\" + QByteArray(300, 'a') + "\n"));
        LoadAppSettings(ini, settings);
        QCOMPARE(settings.downloadDirectory, QStringLiteral("C:\\") + QString(252, u'A') + u'\\');
    }

    void saves_data() { addRows(kSaves); }
    void saves()
    {
        const Save &s = fetchRow(kSaves);
        QTemporaryDir dir;
        IniFile ini(dir.filePath(QStringLiteral("varnel-utility.INI")));
        if (s.before)
            QVERIFY(writeBytes(ini.path(), filled(s.before)));
        AppSettings settings;
        LoadAppSettings(ini, settings);
        if (s.edit)
            s.edit(settings);
        SaveAppSettings(ini, settings);
        QCOMPARE(readBytes(ini.path()), filled(s.after));
    }

    void buttonValues_data() { addRows(kTags); }
    void buttonValues()
    {
        const auto &[name, tag, value, back] = fetchRow(kTags);
        QCOMPARE(buttonValueText(QLatin1String(tag)), QLatin1String(value));
        QCOMPARE(buttonTagFromValue(QLatin1String(value)), QLatin1String(back));
    }
};

QTEST_GUILESS_MAIN(AppSettingsTest)
#include "AppSettingsTest.moc"
