#include "SerialCommControl.h"
#include "AppError.h"
#include "ModemSession.h"
#include "PseudoTerminal.h"
#include "ScriptedPrompts.h"
#include "TimeSource.h"

#include <QDeadlineTimer>
#include <QSignalSpy>
#include <QTest>

// The real serial control over pseudo-terminals: what the program meets with a real device.
class SerialCommControlTest : public QObject
{
    Q_OBJECT
private slots:
    void talksBothWays();
    void farSideGoingAwayClosesThePortOnce();
    void missingDeviceSaysSo();
    void secondOpenIsBusy();
    void sessionReachesPromptOverTty();
    void streamIsGatheredAndHandedOverWhole();
};

void SerialCommControlTest::talksBothWays()
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

void SerialCommControlTest::farSideGoingAwayClosesThePortOnce()
{
    PseudoTerminal pty;
    SerialCommControl comm([&](int) { return pty.slavePath(); });
    comm.setPortOpen(true);
    QSignalSpy lost(&comm, &CommControl::lineLost);
    pty.close();
    QTRY_VERIFY(!comm.PortOpen());
    QCOMPARE(lost.count(), 1);
    try {
        comm.Output("x");
        QFAIL("writing to a lost port must fail");
    } catch (const AppError &error) {
        QCOMPARE(error.number, AppErrors::PortNotOpen);
    }
}

void SerialCommControlTest::missingDeviceSaysSo()
{
    SerialCommControl unmapped([](int) { return QString(); });
    unmapped.setCommPort(7);
    try {
        unmapped.setPortOpen(true);
        QFAIL("opening a port with no device must fail");
    } catch (const AppError &error) {
        QCOMPARE(error.number, AppErrors::NoSuchDevice);
        QVERIFY(error.description.startsWith(QStringLiteral("COM7 reaches no serial device")));
    }
    SerialCommControl gone([](int) { return QStringLiteral("/dev/ttyVARNEL-NONE"); });
    try {
        gone.setPortOpen(true);
        QFAIL("opening a missing device must fail");
    } catch (const AppError &error) {
        QCOMPARE(error.number, AppErrors::NoSuchDevice);
        QCOMPARE(error.description, QStringLiteral("No such device: /dev/ttyVARNEL-NONE (COM1). Check that "
                                                   "the cable or adapter is plugged in."));
    }
    QVERIFY(!gone.PortOpen());
}

void SerialCommControlTest::secondOpenIsBusy()
{
    PseudoTerminal pty;
    SerialCommControl first([&](int) { return pty.slavePath(); });
    SerialCommControl second([&](int) { return pty.slavePath(); });
    first.setPortOpen(true);
    try {
        second.setPortOpen(true);
        QFAIL("a second open of the same device must fail");
    } catch (const AppError &error) {
        QCOMPARE(error.number, AppErrors::DeviceBusy);
        QVERIFY(error.description.startsWith(QStringLiteral("Device busy: ")));
    }
}

void SerialCommControlTest::sessionReachesPromptOverTty()
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

void SerialCommControlTest::streamIsGatheredAndHandedOverWhole()
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

QTEST_GUILESS_MAIN(SerialCommControlTest)
#include "SerialCommControlTest.moc"
