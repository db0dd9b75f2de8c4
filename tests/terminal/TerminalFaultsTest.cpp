#include "ButtonDef.h"
#include "Terminal.h"
#include "TerminalFixture.h"
#include "TerminalScreen.h"

#include <QLabel>
#include <QLineEdit>
#include <QTest>

class TerminalFaultsTest : public QObject
{
    Q_OBJECT
private slots:
    // The default of the button editor is the terminal button being edited, so Enter leaves it open.
    void enterKeepsTheButtonEditorOpen()
    {
        QWidget form;
        ButtonRow row{};
        for (TagButton *&button : row)
            button = new TagButton(&form);
        ButtonDef dialog(row, 2);
        dialog.show();
        QTest::keyClick(dialog.BtnText, Qt::Key_Return);
        QVERIFY(dialog.isVisible() && row[2]->isDefault());
    }

    void captureRecordsTheLocalEcho()
    {
        QTemporaryDir dir;
        MemoryCommControl port;
        port.setPortOpen(true);
        TerminalScreen screen;
        screen.attach(&port);
        screen.setEcho(true);
        screen.setCaptureMode(1);
        screen.setCaptureFilename(dir.filePath(QStringLiteral("c.TXT")));
        port.feed("CMD:");
        QTest::keyClicks(&screen, QStringLiteral("ab"));
        screen.setCaptureFilename(QString());
        QCOMPARE(port.written(), QByteArray("ab"));
        QFile file(dir.filePath(QStringLiteral("c.TXT")));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("CMD:ab"));
    }

    // A lost line shows at once in the title and the status line, typing says the port is closed,
    // and the port stays closed until the terminal is entered again.
    void lostLineIsReportedUntilReopened()
    {
        TerminalRig rig;
        Terminal window(rig.session, rig.ini);
        window.Load();
        const QString device = rig.port.deviceFor(2);
        rig.port.hangUp();
        QCOMPARE(window.windowTitle(), QStringLiteral("COM2: Line Lost (%1)").arg(device));
        QCOMPARE(
            window.Status->text(),
            QStringLiteral("Line lost on %1: the port is closed. Open it again with Terminal Setup, Port... ")
                .arg(device));
        QTest::keyClicks(window.Comm1Screen, QStringLiteral("x"));
        QCOMPARE(window.Status->text(), QStringLiteral("The port is closed: keys typed are not sent. "));
        QVERIFY(!rig.port.PortOpen());
        window.reconnect();
        QVERIFY(rig.port.PortOpen());
        QCOMPARE(window.windowTitle(), QStringLiteral("COM2:9600,N,8,1"));
        QCOMPARE(window.Status->text(), QStringLiteral("Port open again: %1 ").arg(device));
    }
};

QTEST_MAIN(TerminalFaultsTest)
#include "TerminalFaultsTest.moc"
