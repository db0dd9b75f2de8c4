#include "CommandLine.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using Action = CommandLine::Action;

class CommandLineTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void arguments_data();
    void arguments();
    void helpTellsHowPortsAreFound();

private:
    QTemporaryDir m_dir;
    QString m_previous;
    QString m_here;
};

// Relative names are taken from a known current directory holding a folder "site".
void CommandLineTest::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(QDir(m_dir.path()).mkdir(u"site"_s));
    m_previous = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_dir.path()));
    m_here = QDir::currentPath();
}

void CommandLineTest::cleanupTestCase()
{
    QDir::setCurrent(m_previous);
}

void CommandLineTest::arguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<Action>("action");
    QTest::addColumn<QString>("settings");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("unknown");

    const QString here = u"<here>"_s;
    const QString version = u"Varnel Utility " VARNEL_VERSION "\n"_s;
    const auto mistake = [](const QString &message) {
        return u"varnel-utility: "_s + message + u"\nTry 'varnel-utility --help'.\n"_s;
    };
    QTest::newRow("nothing") << QStringList{} << Action::Run << QString() << QString() << QStringList{};
    QTest::newRow("absolute settings") << QStringList{u"--settings"_s, u"/tmp/north.INI"_s} << Action::Run
                                       << u"/tmp/north.INI"_s << QString() << QStringList{};
    QTest::newRow("relative settings, equals sign")
        << QStringList{u"--settings=site/../site/north.INI"_s} << Action::Run << here + u"/site/north.INI"_s
        << QString() << QStringList{};
    QTest::newRow("last settings wins")
        << QStringList{u"--settings"_s, u"a.INI"_s, u"--settings"_s, u"b.INI"_s} << Action::Run
        << here + u"/b.INI"_s << QString() << QStringList{};
    QTest::newRow("settings without a value")
        << QStringList{u"--settings"_s} << Action::Error << QString()
        << mistake(u"Missing value after '--settings'."_s) << QStringList{};
    QTest::newRow("empty settings") << QStringList{u"--settings"_s, QString()} << Action::Error << QString()
                                    << mistake(u"--settings needs the name of a file."_s) << QStringList{};
    QTest::newRow("settings is a directory")
        << QStringList{u"--settings"_s, u"site/"_s} << Action::Error << QString()
        << mistake(u"The settings file <here>/site is a directory."_s) << QStringList{};
    QTest::newRow("settings in a missing directory")
        << QStringList{u"--settings"_s, u"south/a.INI"_s} << Action::Error << QString()
        << mistake(u"The directory of the settings file <here>/south/a.INI does not exist."_s)
        << QStringList{};
    QTest::newRow("stray argument") << QStringList{u"north.INI"_s} << Action::Error << QString()
                                    << mistake(u"Unexpected argument 'north.INI'."_s) << QStringList{};
    QTest::newRow("unknown option") << QStringList{u"--setting"_s, u"a.INI"_s} << Action::Error << QString()
                                    << mistake(u"Unknown option 'setting'."_s) << QStringList{u"setting"_s};
    QTest::newRow("Qt's option is one word")
        << QStringList{u"-platform"_s, u"offscreen"_s} << Action::Error << QString()
        << mistake(u"Unknown option 'platform'."_s) << QStringList{u"platform"_s};
    QTest::newRow("version") << QStringList{u"--version"_s} << Action::Version << QString() << version
                             << QStringList{};
    QTest::newRow("short version beats a mistake")
        << QStringList{u"--settings"_s, u"site"_s, u"-v"_s} << Action::Version << QString() << version
        << QStringList{};
    QTest::newRow("help beats version and an unknown option")
        << QStringList{u"-platform"_s, u"xcb"_s, u"-v"_s, u"-h"_s} << Action::Help << QString()
        << u"Usage: varnel-utility [options]\n"_s << QStringList{};
}

void CommandLineTest::arguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(Action, action);
    QFETCH(QString, settings);
    QFETCH(QString, text);
    QFETCH(QStringList, unknown);

    const CommandLine line = parseCommandLine(QStringList{u"/usr/bin/varnel-utility"_s} + arguments);
    QCOMPARE(line.action, action);
    QCOMPARE(line.settingsFile, QString(settings).replace(u"<here>"_s, m_here));
    const QString expected = QString(text).replace(u"<here>"_s, m_here);
    if (action == Action::Help)
        QVERIFY2(line.text.startsWith(expected), qPrintable(line.text));
    else
        QCOMPARE(line.text, expected);
    QCOMPARE(line.unknownOptions, unknown);
}

void CommandLineTest::helpTellsHowPortsAreFound()
{
    const QString help = parseCommandLine({u"varnel-utility"_s, u"--help"_s}).text;
    for (const QString &needle :
         {u"[Port Map]\n  COM1=/dev/ttyUSB0\n"_s, u"COM1 ... COM16"_s,
          u"/dev/ttyUSB*, /dev/ttyACM*) first, then built-in ports (/dev/ttyS*)"_s, u"group dialout"_s,
          u"~/.config/varnel-utility.INI"_s, u"  --settings <file>  Use <file> as the settings file"_s,
          u"  -v, --version "_s, u"  -h, --help "_s})
        QVERIFY2(help.contains(needle), qPrintable(needle));
}

QTEST_GUILESS_MAIN(CommandLineTest)
#include "CommandLineTest.moc"
