#include "PortSection.h"

#include "IniFile.h"
#include "MemoryCommControl.h"
#include "ScriptedPrompts.h"
#include "Tables.h"

#include <QTemporaryDir>

namespace {
const char *const kComplete =
    "Comm Port=2\nSettings=9600,N,8,1\nDTREnable=True\nRTSEnable=-1\nHandshaking=2\n";

// The port section in the file and whether the port was open (and opens again); the standard boxes
// in order (by the failure's text), and the control after, "asked:" when the port dialog was asked for.
const char *const kLoads[][5] = {
    {"complete, the port opens again", kComplete, "open", "", "COM2 9600,N,8,1 dtr rts 2 open"},
    {"complete, a closed port stays closed", kComplete, "closed", "", "COM2 9600,N,8,1 dtr rts 2 closed"},
    {"a bad port number, the rest applied",
     "Comm Port=abc\nSettings=9600,N,8,1\nDTREnable=True\nRTSEnable=-1\nHandshaking=2\n", "open",
     "Invalid Port Number", "COM1 9600,N,8,1 dtr rts 2 open"},
    {"bad settings, the rest applied",
     "Comm Port=2\nSettings=fast\nDTREnable=False\nRTSEnable=0\nHandshaking=1\n", "open", "Invalid Setting",
     "COM2 19200,n,8,1 - - 1 open"},
    {"two bad keys, two boxes", "Comm Port=0\nSettings=fast\nDTREnable=True\nRTSEnable=True\nHandshaking=0\n",
     "closed", "Invalid Port Number | Invalid Setting", "COM1 19200,n,8,1 dtr rts 0 closed"},
    // The settings key is read into a buffer of 20: blanks and what stands behind them fall away.
    {"settings cut at 19 characters",
     "Comm Port=2\nSettings=9600,n,8,1         junk\nDTREnable=True\n"
     "RTSEnable=True\nHandshaking=0\n",
     "closed", "", "COM2 9600,n,8,1 dtr rts 0 closed"},
    {"a missing key asks, after the keys before it", "Comm Port=2\nDTREnable=False\nHandshaking=2\n", "open",
     "", "asked: COM2 19200,n,8,1 dtr rts 0 closed"},
    {"no section asks at once", "", "open", "", "asked: COM1 19200,n,8,1 dtr rts 0 closed"},
    {"the port fails to open again", kComplete, "failing", "Device busy", "COM2 9600,N,8,1 dtr rts 2 closed"},
};

// The port dialog's choice, on a port open or closed, that opens or fails: what the dialog is told,
// the section written, the boxes, and the control after.
struct Choice
{
    const char *name;
    PortChoice choice;
    const char *before;
    const char *told;
    const char *file;
    const char *boxes;
    const char *after;
};

const Choice kChoices[] = {
    {"opens the chosen port",
     {3, QStringLiteral("9600,N,8,1"), false, true, 1},
     "closed",
     "",
     "Settings=9600,N,8,1\nDTREnable=False\nRTSEnable=True\nHandshaking=1\nComm Port=3\n",
     "",
     "COM3 9600,N,8,1 - rts 1 open"},
    {"an open port moves to the chosen one",
     {4, QStringLiteral("19200,E,7,1"), true, false, 2},
     "open",
     "",
     "Settings=19200,E,7,1\nDTREnable=True\nRTSEnable=False\nHandshaking=2\nComm Port=4\n",
     "",
     "COM4 19200,E,7,1 dtr - 2 open"},
    // The number is written only once the port opens.
    {"a port that fails to open",
     {3, QStringLiteral("9600,N,8,1"), true, true, 0},
     "failing",
     "Device busy",
     "Settings=9600,N,8,1\nDTREnable=True\nRTSEnable=True\nHandshaking=0\n",
     "",
     "COM3 9600,N,8,1 dtr rts 0 closed"},
    {"bad settings show the box and go on",
     {2, QStringLiteral("fast"), false, false, 1},
     "closed",
     "",
     "Settings=fast\nDTREnable=False\nRTSEnable=False\nHandshaking=1\nComm Port=2\n",
     "Invalid Setting",
     "COM2 19200,n,8,1 dtr rts 0 open"},
};

struct Rig
{
    QTemporaryDir dir;
    IniFile ini{dir.filePath(QStringLiteral("varnel-utility.INI"))};
    MemoryCommControl port;
    ScriptedPrompts prompts;

    explicit Rig(const char *boxes, const QString &before)
    {
        for (const QString &text :
             QString::fromLatin1(boxes).split(QStringLiteral(" | "), Qt::SkipEmptyParts))
            prompts
                .expectMsgBox(appErrorText(
                    {text == u"Device busy" ? AppErrors::DeviceBusy : AppErrors::InvalidPropertyValue, text}))
                .withIcon(MsgIcon::Critical);
        port.setPortOpen(before != u"closed");
        if (before == u"failing")
            port.failNextOpen(AppErrors::DeviceBusy, QStringLiteral("Device busy"));
    }
    QString state() const
    {
        return QStringLiteral("COM%1 %2 %3 %4 %5 %6")
            .arg(port.CommPort())
            .arg(port.Settings(), port.DTREnable() ? QStringLiteral("dtr") : QStringLiteral("-"),
                 port.RTSEnable() ? QStringLiteral("rts") : QStringLiteral("-"))
            .arg(port.Handshaking())
            .arg(port.PortOpen() ? QStringLiteral("open") : QStringLiteral("closed"));
    }
};
} // namespace

class PortSectionTest : public QObject
{
    Q_OBJECT
private slots:
    void loads_data() { addRows(kLoads); }
    void loads()
    {
        const auto &[name, section, before, boxes, after] = fetchRow(kLoads);
        Rig rig(boxes, QLatin1String(before));
        QCOMPARE(portSection(rig.port), QStringLiteral("Port_Phone"));
        QVERIFY(writeBytes(rig.ini.path(), QByteArray("[Port_Phone]\n") + section));
        bool asked = false;
        LoadPortSettings(rig.port, rig.ini, rig.prompts, [&] { asked = true; });
        QVERIFY(rig.prompts.verify());
        QCOMPARE((asked ? QStringLiteral("asked: ") : QString()) + rig.state(), QLatin1String(after));
    }

    void choices_data() { addRows(kChoices); }
    void choices()
    {
        const Choice &c = fetchRow(kChoices);
        Rig rig(c.boxes, QLatin1String(c.before));
        rig.port.setInputLen(5);
        rig.port.setInterval(1000);
        QCOMPARE(acceptPortChoice(rig.port, rig.ini, rig.prompts, c.choice).value_or(QString()),
                 QLatin1String(c.told));
        QVERIFY(rig.prompts.verify());
        QCOMPARE(readBytes(rig.ini.path()), QByteArray("[Port_Phone]\n") + c.file);
        QCOMPARE(rig.state(), QLatin1String(c.after));
        QCOMPARE(QStringLiteral("%1 %2").arg(rig.port.InputLen()).arg(rig.port.Interval()),
                 QStringLiteral("0 55"));
    }
};

QTEST_GUILESS_MAIN(PortSectionTest)
#include "PortSectionTest.moc"
