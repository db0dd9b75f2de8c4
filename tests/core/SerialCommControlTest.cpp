#include "SerialCommControl.h"

#include "ModemSession.h"
#include "PseudoTerminal.h"
#include "ScriptedPrompts.h"
#include "Tables.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <sys/stat.h>

namespace {
// Makes the program's reads of the device fail as a device does whose driver went away: the
// descriptor the serial port holds is swapped for one open for writing only, so a read gives EBADF,
// which QSerialPort reports as a ResourceError.
void refuseReads(const QString &device)
{
    for (const QFileInfo &fd :
         QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::System | QDir::NoDotAndDotDot)) {
        if (fd.symLinkTarget() != device)
            continue;
        const int writeOnly = ::open("/dev/null", O_WRONLY);
        ::dup2(writeOnly, fd.fileName().toInt());
        ::close(writeOnly);
    }
}

QString openFailure(SerialCommControl &comm)
{
    return outcome([&] { return comm.setPortOpen(true), QString(); });
}

// Paths the port cannot open: what is found there, the port's error, the words ("%1" device and port).
struct Failure
{
    const char *name;
    DeviceFacts facts;
    QSerialPort::SerialPortError error;
    const char *text;
};
using enum DeviceFacts::Kind;
using enum QSerialPort::SerialPortError;
const Failure kFailures[] = {
    {"a regular file", {RegularFile, true, true, {}, {}}, OpenError, "%1 is a regular file"},
    {"a directory", {Directory, true, true, {}, {}}, DeviceNotFoundError, "%1 is a directory"},
    {"a FIFO", {Fifo, false, false, {}, {}}, PermissionError, "%1 is a FIFO"},
    {"the group helps",
     {Device, false, true, {}, QStringLiteral("dialout")},
     PermissionError,
     "Permission denied on %1. Your user must be in the group \"dialout\" that owns the device: run \"sudo "
     "usermod -aG dialout $USER\", then log out and in again."},
    {"only the owner may",
     {Device, false, false, QStringLiteral("root"), {}},
     PermissionError,
     "Permission denied on %1. Only its owner \"root\" may use it, so no group helps: ask the administrator "
     "to let you read and write the device."},
};
} // namespace

// The real serial control over pseudo-terminals: what the program meets with a real device.
class SerialCommControlTest : public QObject
{
    Q_OBJECT
private slots:
    void talksBothWays()
    {
        PseudoTerminal pty;
        QVERIFY(pty.isValid());
        SerialCommControl comm([&](int) { return pty.slavePath(); });
        comm.setSettings(QStringLiteral("9600,n,8,1"));
        comm.setPortOpen(true);
        comm.setAutoProcess(0);
        comm.Output("Model\r");
        QByteArray heard;
        QTRY_COMPARE(heard += pty.readAvailable(), QByteArray("Model\r"));
        pty.write("MODEL     = Q4U\r\nCMD:");
        QTRY_COMPARE(comm.InBufferCount(), 21);
        QCOMPARE(comm.Input(), QByteArray("MODEL     = Q4U\r\nCMD:"));
        // Frame changes while open are taken at once.
        comm.setSettings(QStringLiteral("19200,e,7,2"));
        QVERIFY(comm.PortOpen());
    }

    void lostLineClosesThePortOnce_data()
    {
        QTest::addColumn<bool>("hangUp");
        QTest::newRow("far side hangs up: read error") << true;
        QTest::newRow("device refuses reads: resource error") << false;
    }
    void lostLineClosesThePortOnce()
    {
        QFETCH(bool, hangUp);
        PseudoTerminal pty;
        SerialCommControl comm([&](int) { return pty.slavePath(); });
        comm.setPortOpen(true);
        comm.setAutoProcess(0);
        QSignalSpy lost(&comm, &CommControl::lineLost);
        QSignalSpy open(&comm, &CommControl::portOpenChanged);
        if (hangUp) {
            pty.close();
        } else {
            refuseReads(pty.slavePath());
        }
        // A device that failed keeps failing while it is open: it is closed at once, and told once.
        QTRY_VERIFY(!comm.PortOpen());
        QCOMPARE(lost.count(), 1);
        QCOMPARE(lost.at(0).at(0).toString(), pty.slavePath());
        QCOMPARE(open.count(), 1);
        QCOMPARE(outcome([&] { return comm.Output("x"), QString(); }), QStringLiteral("error 8018"));
    }

    void failuresSayWhatToDo_data() { addRows(kFailures); }
    void failuresSayWhatToDo()
    {
        const Failure &f = fetchRow(kFailures);
        const QString notADevice =
            QStringLiteral(", not a serial device. Name the device of the cable or adapter "
                           "for COM2 in the [Port Map] section of the settings file.");
        QCOMPARE(deviceFailure(QStringLiteral("/dev/x"), 2, f.error, f.facts).description,
                 QString::fromUtf8(f.text).arg(QStringLiteral("/dev/x (COM2)")) +
                     (f.facts.kind == Device ? QString() : notADevice));
    }

    void devicesAsTheyAre()
    {
        QTemporaryDir dir;
        const QString fifo = dir.filePath(QStringLiteral("fifo"));
        QVERIFY(::mkfifo(QFile::encodeName(fifo).constData(), 0600) == 0);
        // A pipe is refused before the serial port tries it; the superuser's group never helps.
        SerialCommControl comm([&](int) { return fifo; });
        QCOMPARE(openFailure(comm), QStringLiteral("error 8002"));
        const DeviceFacts null = deviceFacts(QStringLiteral("/dev/null"));
        QVERIFY(null.kind == Device && null.accessible && !null.groupMayUse && null.owner == u"root");
    }

    void openFailuresSayWhatToDo()
    {
        SerialCommControl unmapped([](int) { return QString(); });
        unmapped.setCommPort(7);
        QCOMPARE(openFailure(unmapped), QStringLiteral("error 8002"));
        QCOMPARE(SerialCommControl::openFailure({}, 7, QSerialPort::DeviceNotFoundError).description,
                 QStringLiteral(
                     "COM7 reaches no serial device on this computer. Plug in the cable or adapter, or name "
                     "the device for COM7 in the [Port Map] section of the settings file."));
        SerialCommControl gone([](int) { return QStringLiteral("/dev/ttyVARNEL-NONE"); });
        QCOMPARE(openFailure(gone), QStringLiteral("error 8002"));
        QCOMPARE(SerialCommControl::openFailure(QStringLiteral("/dev/ttyVARNEL-NONE"), 1,
                                                QSerialPort::PermissionError)
                     .description,
                 QStringLiteral("No such device: /dev/ttyVARNEL-NONE (COM1). Check that the cable or adapter "
                                "is plugged in."));
        QVERIFY(!gone.PortOpen());

        PseudoTerminal pty;
        SerialCommControl first([&](int) { return pty.slavePath(); });
        SerialCommControl second([&](int) { return pty.slavePath(); });
        first.setPortOpen(true);
        QCOMPARE(openFailure(second), QStringLiteral("error 8010"));
        QCOMPARE(
            SerialCommControl::openFailure(pty.slavePath(), 2, QSerialPort::PermissionError).description,
            QStringLiteral("Device busy: %1 (COM2) is in use by another program. Close it and try again.")
                .arg(pty.slavePath()));
        QCOMPARE(SerialCommControl::openFailure(pty.slavePath(), 3, QSerialPort::OpenError).description,
                 QStringLiteral("%1 (COM3) cannot be opened.").arg(pty.slavePath()));
    }

    void sessionReachesPromptOverTty()
    {
        PseudoTerminal pty;
        SerialCommControl comm([&](int) { return pty.slavePath(); });
        comm.setPortOpen(true);
        RealTime time;
        ScriptedPrompts prompts;
        ModemSession session(comm, time, prompts);
        // The far side answers the Ctrl-C when it sees it.
        QTimer answer;
        QObject::connect(&answer, &QTimer::timeout, [&] {
            if (pty.readAvailable().contains('\x03'))
                pty.write("\r\nCMD:");
        });
        answer.start(5);
        QVERIFY(session.EnterCommandMode());
        QVERIFY(prompts.verify());
    }

    void streamIsGatheredAndHandedOverWhole()
    {
        PseudoTerminal pty;
        SerialCommControl comm([&](int) { return pty.slavePath(); });
        comm.setPortOpen(true);
        comm.setAutoProcess(CommControl::kAutoProcessTerminal);
        QByteArray shown;
        int pieces = 0;
        QObject::connect(&comm, &CommControl::screenText, [&](const QByteArray &bytes) {
            shown += bytes;
            ++pieces;
        });
        // A modem printing a line every 5 ms, as at 115200 baud. Right after its last line the program
        // takes the port, while the control is still gathering.
        QByteArray sent;
        int lines = 0;
        QTimer modem;
        QObject::connect(&modem, &QTimer::timeout, [&] {
            const QByteArray line = "LINE " + QByteArray::number(++lines) + " RSSI -71 dBm\r\n";
            pty.write(line);
            sent += line;
            if (lines < 40)
                return;
            modem.stop();
            // Every byte sent is on the screen, in the device, or the one the control holds back.
            const QDeadlineTimer deadline(5000);
            while (shown.size() + pty.unread() + 1 < sent.size() && !deadline.hasExpired())
                ;
            comm.setAutoProcess(CommControl::kAutoProcessProgram);
        });
        modem.start(5);
        QTRY_VERIFY(!modem.isActive());
        QCOMPARE(shown, sent);
        QCOMPARE(comm.InBufferCount(), 0);
        QVERIFY2(pieces < 10, qPrintable(QStringLiteral("40 lines came in %1 pieces").arg(pieces)));
    }
};

QTEST_GUILESS_MAIN(SerialCommControlTest)
#include "SerialCommControlTest.moc"
