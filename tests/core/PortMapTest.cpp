#include "PortMap.h"

#include "IniFile.h"
#include "Tables.h"

#include <QTemporaryDir>

namespace {
// Devices as the system lists them, and in the order the numbers reach them.
const char *const kOrders[][3] = {
    {"adapters before built-in ports", "/dev/ttyS0 /dev/ttyUSB0 /dev/ttyS1 /dev/ttyACM0",
     "/dev/ttyACM0 /dev/ttyUSB0 /dev/ttyS0 /dev/ttyS1"},
    {"natural order in each group", "/dev/ttyS10 /dev/ttyUSB10 /dev/ttyS2 /dev/ttyUSB2 /dev/ttyUSB1",
     "/dev/ttyUSB1 /dev/ttyUSB2 /dev/ttyUSB10 /dev/ttyS2 /dev/ttyS10"},
    {"other built-in names", "/dev/ttyAMA0 /dev/ttyS0 /dev/ttyACM1", "/dev/ttyACM1 /dev/ttyAMA0 /dev/ttyS0"},
    {"duplicates once", "/dev/ttyS0 /dev/ttyS0", "/dev/ttyS0"},
    {"none", "", ""},
    // Texts compared one run of letters or digits at a time.
    {"2 before 10", "ttyUSB10 ttyUSB2", "ttyUSB2 ttyUSB10"},
    {"letters in alphabet order", "ttyUSB0 ttyACM5", "ttyACM5 ttyUSB0"},
    {"prefix first", "ttyS0 ttyS", "ttyS ttyS0"},
    {"a number before a letter", "ttySa ttyS1", "ttyS1 ttySa"},
    {"equal numbers, then the shorter", "ttyS009x ttyS9", "ttyS9 ttyS009x"},
    {"leading zeros count for nothing", "ttyS010 ttyS9", "ttyS9 ttyS010"},
    {"leading zeros tie broken plainly", "ttyS1 ttyS01", "ttyS01 ttyS1"},
    {"later run decides", "a1b10 a1b9", "a1b9 a1b10"},
};

// The port map of the settings file, how many devices the system lists, a port number, its device,
// and whether the system's list was needed for it.
const char *const kMapFile = "[Port_Phone]\r\nComm Port=3\r\n[port map]\r\ncom3 = /tmp/varnel/modem-pty \r\n"
                             "COM16=/dev/serial/by-id/usb-Varnel_Q40-if00\r\nCOM2=\r\nCOM17=/dev/never\r\n"
                             "COM0=/dev/zero-port\r\nCOM-1=/dev/minus\r\n";

const char *const kMappings[][6] = {
    {"first system port", "", "3", "1", "/dev/ttyUSB3", "asks"},
    {"second system port", "", "3", "2", "/dev/ttyUSB12", "asks"},
    {"built-in port after the adapters", "", "3", "3", "/dev/ttyS0", "asks"},
    {"beyond the system ports", "", "3", "4", "", "asks"},
    {"16 of twenty", "", "20", "16", "/dev/ttyS13", "asks"},
    {"17 of twenty reaches nothing", "", "20", "17", "", ""},
    {"unmapped is the system port", kMapFile, "3", "1", "/dev/ttyUSB3", "asks"},
    {"an empty key maps nothing", kMapFile, "3", "2", "/dev/ttyUSB12", "asks"},
    {"mapped, names without regard to case", kMapFile, "3", "3", "/tmp/varnel/modem-pty", ""},
    {"mapped 16", kMapFile, "3", "16", "/dev/serial/by-id/usb-Varnel_Q40-if00", ""},
    {"mapped 17 reaches nothing", kMapFile, "20", "17", "", ""},
    {"mapped 0 reaches nothing", kMapFile, "20", "0", "", ""},
    {"mapped -1 reaches nothing", kMapFile, "20", "-1", "", ""},
};

} // namespace

class PortMapTest : public QObject
{
    Q_OBJECT
private slots:
    void orderSystemPorts_data() { addRows(kOrders); }
    void orderSystemPorts()
    {
        const auto &[name, listed, ordered] = fetchRow(kOrders);
        const QStringList system = QString::fromLatin1(listed).split(u' ', Qt::SkipEmptyParts);
        QCOMPARE(::orderSystemPorts(system).join(u' '), QLatin1String(ordered));
        // The order does not depend on how the system happened to list them.
        QCOMPARE(::orderSystemPorts(QStringList(system.rbegin(), system.rend())).join(u' '),
                 QLatin1String(ordered));
        QVERIFY(system.isEmpty() || !naturalLess(system[0], system[0]));
        if (system.size() == 2 && system[0] != system[1])
            QCOMPARE(naturalLess(system[1], system[0]), !naturalLess(system[0], system[1]));
    }

    void devicePathForPort_data() { addRows(kMappings); }
    void devicePathForPort()
    {
        const auto &[name, file, devices, port, expected, asks] = fetchRow(kMappings);
        QTemporaryDir dir;
        const IniFile ini(dir.filePath(QStringLiteral("varnel-utility.INI")));
        QVERIFY(writeBytes(ini.path(), file));
        QStringList system{QStringLiteral("/dev/ttyS0"), QStringLiteral("/dev/ttyUSB3"),
                           QStringLiteral("/dev/ttyUSB12")};
        for (int i = 1; system.size() < atoi(devices); ++i)
            system << QStringLiteral("/dev/ttyS%1").arg(i);
        // Listing the system's devices is slow: a mapped port never asks for the list.
        bool asked = false;
        const auto systemPorts = [&] {
            asked = true;
            return ::orderSystemPorts(system);
        };
        QCOMPARE(::devicePathForPort(ini, atoi(port), systemPorts), QLatin1String(expected));
        QCOMPARE(asked, *asks != 0);
    }
};

QTEST_GUILESS_MAIN(PortMapTest)
#include "PortMapTest.moc"
