#include "ModemSession.h"
#include "PtyServer.h"
#include "ScriptedPrompts.h"
#include "SerialCommControl.h"
#include "TimeSource.h"

#include <QFileInfo>
#include <QProcess>
#include <QSerialPort>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

// The simulator on a real pseudo-terminal: the built tool as a user starts it, and the server
// underneath it driven by the program's own serial control.
class ModemSimToolTest : public QObject
{
    Q_OBJECT
private slots:
    void programSessionReachesThePromptThroughTheTool()
    {
        QTemporaryDir dir;
        const QString link = dir.filePath(QStringLiteral("varnel-port"));
        QProcess tool;
        tool.start(QStringLiteral(VARNEL_MODEM_SIM),
                   {QStringLiteral("--scenario"), QStringLiteral("demo"), QStringLiteral("--link"), link});
        QVERIFY(tool.waitForStarted(5000));
        QVERIFY(tool.waitForReadyRead(5000));
        const QString device = QString::fromLocal8Bit(tool.readLine()).trimmed();
        QVERIFY2(device.startsWith(QStringLiteral("/dev/pts/")), qPrintable(device));
        QCOMPARE(QFileInfo(link).symLinkTarget(), device);

        SerialCommControl comm([&](int) { return link; });
        comm.setSettings(QStringLiteral("9600,n,8,1"));
        comm.setPortOpen(true);
        RealTime time;
        ScriptedPrompts prompts;
        ModemSession session(comm, time, prompts);
        QVERIFY(session.EnterCommandMode());
        session.sendCommand("Model");
        session.WaitForBytes(10);
        const QByteArray reply = comm.Input();
        QVERIFY2(reply.contains("MODEL    = Q4U\r"), reply.constData());
        QVERIFY(prompts.verify());
        comm.setPortOpen(false);

        tool.terminate();
        QVERIFY(tool.waitForFinished(5000));
        QCOMPARE(tool.exitCode(), 0);
        QVERIFY(!QFileInfo::exists(link));
    }

    void unknownScenarioIsRefused()
    {
        QProcess tool;
        tool.start(QStringLiteral(VARNEL_MODEM_SIM),
                   {QStringLiteral("--scenario"), QStringLiteral("no-such-site")});
        QVERIFY(tool.waitForFinished(5000));
        QCOMPARE(tool.exitCode(), 2);
        QVERIFY(tool.readAllStandardError().contains("cannot use scenario no-such-site"));
    }

    void serverFollowsTheRateTheProgramSets()
    {
        RealTime time;
        sim::PtyServer server(time, sim::Scenario::standard()); // the modem talks at 19200
        QString error;
        QVERIFY2(server.start(&error), qPrintable(error));
        QSerialPort port(server.slavePath());
        QVERIFY(port.open(QIODevice::ReadWrite));
        port.setBaudRate(9600);
        QCOMPARE(server.hostSettings().baud, 9600);
        port.write("\x03");
        time.MsDelay(300);
        const QByteArray garbage = port.readAll();
        QVERIFY2(!garbage.contains("CMD:"), garbage.toHex().constData());
        port.setBaudRate(19200);
        port.setParity(QSerialPort::NoParity);
        port.write("\x03");
        QByteArray reply;
        QTRY_VERIFY_WITH_TIMEOUT((reply += port.readAll()).endsWith("\r\nCMD:"), 3000);
    }

    void hangUpDropsTheProgramsLine()
    {
        RealTime time;
        sim::PtyServer server(time, sim::Scenario::standard());
        QString error;
        QVERIFY(server.start(&error));
        SerialCommControl comm([&](int) { return server.slavePath(); });
        comm.setPortOpen(true);
        QSignalSpy lost(&comm, &CommControl::lineLost);
        server.line().hangUp();
        QTRY_COMPARE_WITH_TIMEOUT(lost.count(), 1, 3000);
        QVERIFY(!comm.PortOpen());
    }
};

QTEST_GUILESS_MAIN(ModemSimToolTest)
#include "ModemSimToolTest.moc"
