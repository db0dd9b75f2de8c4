#include "PortMap.h"
#include "IniFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

using namespace Qt::StringLiterals;

class PortMapTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void naturalLess_data();
    void naturalLess();
    void orderSystemPorts_data();
    void orderSystemPorts();
    void systemPortsByNumber();
    void mapSectionWins();
    void numbersOutsideOneToSixteenReachNothing();

private:
    void writeFile(const QByteArray &bytes);
    QString iniPath() const { return m_dir->filePath(u"varnel-utility.INI"_s); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void PortMapTest::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void PortMapTest::writeFile(const QByteArray &bytes)
{
    QFile file(iniPath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

void PortMapTest::naturalLess_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<bool>("less");

    QTest::newRow("2 before 10") << u"ttyUSB2"_s << u"ttyUSB10"_s << true;
    QTest::newRow("10 after 2") << u"ttyUSB10"_s << u"ttyUSB2"_s << false;
    QTest::newRow("letters in alphabet order") << u"ttyACM5"_s << u"ttyUSB0"_s << true;
    QTest::newRow("equal") << u"ttyS1"_s << u"ttyS1"_s << false;
    QTest::newRow("prefix first") << u"ttyS"_s << u"ttyS0"_s << true;
    QTest::newRow("equal numbers, then the shorter") << u"ttyS9"_s << u"ttyS009x"_s << true;
    QTest::newRow("leading zeros tie broken plainly") << u"ttyS01"_s << u"ttyS1"_s << true;
    QTest::newRow("later run decides") << u"a1b10"_s << u"a1b9"_s << false;
}

void PortMapTest::naturalLess()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(bool, less);
    QCOMPARE(::naturalLess(a, b), less);
}

void PortMapTest::orderSystemPorts_data()
{
    QTest::addColumn<QStringList>("system");
    QTest::addColumn<QStringList>("ordered");

    QTest::newRow("adapters before built-in ports")
        << QStringList{u"/dev/ttyS0"_s, u"/dev/ttyUSB0"_s, u"/dev/ttyS1"_s, u"/dev/ttyACM0"_s}
        << QStringList{u"/dev/ttyACM0"_s, u"/dev/ttyUSB0"_s, u"/dev/ttyS0"_s, u"/dev/ttyS1"_s};
    QTest::newRow("natural order in each group")
        << QStringList{u"/dev/ttyS10"_s, u"/dev/ttyUSB10"_s, u"/dev/ttyS2"_s, u"/dev/ttyUSB2"_s,
                       u"/dev/ttyUSB1"_s}
        << QStringList{u"/dev/ttyUSB1"_s, u"/dev/ttyUSB2"_s, u"/dev/ttyUSB10"_s, u"/dev/ttyS2"_s,
                       u"/dev/ttyS10"_s};
    QTest::newRow("other built-in names")
        << QStringList{u"/dev/ttyAMA0"_s, u"/dev/ttyS0"_s, u"/dev/ttyACM1"_s}
        << QStringList{u"/dev/ttyACM1"_s, u"/dev/ttyAMA0"_s, u"/dev/ttyS0"_s};
    QTest::newRow("duplicates once") << QStringList{u"/dev/ttyS0"_s, u"/dev/ttyS0"_s}
                                     << QStringList{u"/dev/ttyS0"_s};
    QTest::newRow("none") << QStringList() << QStringList();
}

void PortMapTest::orderSystemPorts()
{
    QFETCH(QStringList, system);
    QFETCH(QStringList, ordered);

    QCOMPARE(::orderSystemPorts(system), ordered);
    // The order does not depend on how the system happened to list them.
    QStringList reversed(system.rbegin(), system.rend());
    QCOMPARE(::orderSystemPorts(reversed), ordered);
}

void PortMapTest::systemPortsByNumber()
{
    const IniFile ini(iniPath());
    const QStringList ports = ::orderSystemPorts({u"/dev/ttyS0"_s, u"/dev/ttyUSB3"_s, u"/dev/ttyUSB12"_s});
    QCOMPARE(devicePathForPort(ini, 1, ports), u"/dev/ttyUSB3"_s);
    QCOMPARE(devicePathForPort(ini, 2, ports), u"/dev/ttyUSB12"_s);
    QCOMPARE(devicePathForPort(ini, 3, ports), u"/dev/ttyS0"_s);
    QCOMPARE(devicePathForPort(ini, 4, ports), QString());
    QCOMPARE(devicePathForPort(ini, 16, ports), QString());
}

void PortMapTest::mapSectionWins()
{
    writeFile("[Port_Phone]\r\nComm Port=3\r\n"
              "[port map]\r\n"
              "com3 = /tmp/varnel/modem-pty \r\n"
              "COM16=/dev/serial/by-id/usb-Varnel_Q40-if00\r\n"
              "COM2=\r\n"
              "COM17=/dev/never\r\n");
    const IniFile ini(iniPath());
    const QStringList ports{u"/dev/ttyUSB0"_s, u"/dev/ttyUSB1"_s, u"/dev/ttyS0"_s};
    QCOMPARE(devicePathForPort(ini, 1, ports), u"/dev/ttyUSB0"_s);
    // An empty key maps nothing, so the number keeps its system port.
    QCOMPARE(devicePathForPort(ini, 2, ports), u"/dev/ttyUSB1"_s);
    QCOMPARE(devicePathForPort(ini, 3, ports), u"/tmp/varnel/modem-pty"_s);
    QCOMPARE(devicePathForPort(ini, 4, ports), QString());
    QCOMPARE(devicePathForPort(ini, 16, ports), u"/dev/serial/by-id/usb-Varnel_Q40-if00"_s);
}

void PortMapTest::numbersOutsideOneToSixteenReachNothing()
{
    writeFile("[Port Map]\nCOM0=/dev/zero-port\nCOM17=/dev/seventeen\nCOM-1=/dev/minus\n");
    const IniFile ini(iniPath());
    QStringList ports;
    for (int i = 0; i < 20; ++i)
        ports << QStringLiteral("/dev/ttyUSB%1").arg(i);
    QCOMPARE(devicePathForPort(ini, 0, ports), QString());
    QCOMPARE(devicePathForPort(ini, -1, ports), QString());
    QCOMPARE(devicePathForPort(ini, 17, ports), QString());
    QCOMPARE(devicePathForPort(ini, 16, ports), u"/dev/ttyUSB15"_s);
}

QTEST_GUILESS_MAIN(PortMapTest)
#include "PortMapTest.moc"
