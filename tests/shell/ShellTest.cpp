#include "AppError.h"
#include "CommControl.h"
#include "IniFile.h"
#include "MWPort.h"
#include "MainMenu.h"
#include "MemoryCommControl.h"
#include "ModemSession.h"
#include "ProgrammingMenu.h"
#include "ScriptedModem.h"
#include "ScriptedPrompts.h"
#include "Terminal.h"
#include "TimeSource.h"
#include "WorkingFileOpen.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace {
// Runs fn on the next modal dialog as soon as it is up.
void whenModal(std::function<void(QWidget *)> fn)
{
    auto *timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, [timer, fn] {
        if (QWidget *modal = QApplication::activeModalWidget()) {
            timer->stop();
            timer->deleteLater();
            fn(modal);
        }
    });
    timer->start(0);
}

QString readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromLatin1(f.readAll()) : QString();
}

struct Shell
{
    QTemporaryDir dir;
    IniFile ini{dir.filePath(QStringLiteral("varnel-utility.INI"))};
    VirtualTime time;
    MemoryCommControl port;
    ScriptedPrompts prompts{&time};
    ScriptedModem modem{port, time};
    ModemSession session{port, time, prompts};

    void writeIni(const QString &text)
    {
        QFile f(ini.path());
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(text.toLatin1());
    }
};

const QString kCompletePort =
    QStringLiteral("[Port_Phone]\r\nComm Port=2\r\nSettings=9600,N,8,1\r\nDTREnable=True\r\n"
                   "RTSEnable=-1\r\nHandshaking=0\r\n");
} // namespace

class ShellTest : public QObject
{
    Q_OBJECT
private slots:
    void standardErrorBoxText();
    void firstStartAsksForThePort();
    void missingKeyBringsTheDialogBack();
    void cancelAtFirstStartOffersToEnd();
    void openFailureLeadsBackToTheDialog();
    void completeSectionOpensWithoutAsking();
    void exitClosesPortAndWritesSettings();
    void diagnosticsWithSilentModemStaysOnMainMenu();
    void terminalEmulationHandsThePortToTheScreen();
    void programmingReturnsToMainMenu();
    void productInformation();
};

void ShellTest::standardErrorBoxText()
{
    VirtualTime time;
    ScriptedPrompts prompts;
    prompts
        .expectMsgBox(
            QStringLiteral("The following error has occured in the application:\r8018 = Operation valid only "
                           "when the port is open\rPress OK to attempt to fix problem.\rIf problem remains, "
                           "please exit program and report error to VNL."))
        .withIcon(MsgIcon::Critical)
        .withButtons(MsgButtons::OkOnly)
        .withTitle(QString());
    MemoryCommControl closed;
    int after = 0;
    // The routine goes on with the statement after the one that failed.
    attempt(prompts, [&] { closed.Output("x"); });
    ++after;
    QCOMPARE(after, 1);
    QVERIFY(prompts.verify());
}

void ShellTest::firstStartAsksForThePort()
{
    Shell s;
    Terminal terminal(s.session, s.ini);
    whenModal([](QWidget *w) {
        QCOMPARE(w->objectName(), QStringLiteral("MWPort"));
        QCOMPARE(w->windowTitle(), QStringLiteral("Varnel Setup"));
        w->findChild<QComboBox *>(QStringLiteral("CmbComPort"))->setCurrentIndex(2);
        w->findChild<QComboBox *>(QStringLiteral("CmbBaudRate"))->setCurrentText(QStringLiteral("9600"));
        w->findChild<QComboBox *>(QStringLiteral("CmbParity"))->setCurrentText(QStringLiteral("None"));
        w->findChild<QCheckBox *>(QStringLiteral("ChkHandshakingHardware"))->setChecked(true);
        w->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
    });
    s.session.IrDongleActive = true;
    terminal.Load();
    QVERIFY(s.port.PortOpen());
    QCOMPARE(s.port.CommPort(), 3);
    QCOMPARE(terminal.windowTitle(), QStringLiteral("COM3:9600,N,8,1"));
    QVERIFY(!s.session.IrDongleActive);
    QCOMPARE(s.ini.getString(QStringLiteral("Port_Phone"), QStringLiteral("Comm Port"), {}),
             QStringLiteral("3"));
    QCOMPARE(s.ini.getString(QStringLiteral("Port_Phone"), QStringLiteral("Settings"), {}),
             QStringLiteral("9600,N,8,1"));
    QCOMPARE(s.ini.getString(QStringLiteral("Port_Phone"), QStringLiteral("Handshaking"), {}),
             QStringLiteral("2"));
    QVERIFY(s.prompts.verify());
}

void ShellTest::missingKeyBringsTheDialogBack()
{
    Shell s;
    s.writeIni(QString(kCompletePort).remove(QStringLiteral("Settings=9600,N,8,1\r\n")));
    bool asked = false;
    whenModal([&](QWidget *w) {
        asked = true;
        // The dialog shows what was read before the missing key.
        QCOMPARE(w->findChild<QComboBox *>(QStringLiteral("CmbComPort"))->currentIndex(), 1);
        w->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
    });
    Terminal terminal(s.session, s.ini);
    terminal.Load();
    QVERIFY(asked);
    QVERIFY(s.ini.hasKey(QStringLiteral("Port_Phone"), QStringLiteral("Settings")));
}

void ShellTest::cancelAtFirstStartOffersToEnd()
{
    Shell s;
    int ended = 0;
    MWPort::endProgram() = [&] {
        ++ended;
        QApplication::activeModalWidget()->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
    };
    s.prompts.expectMsgBox(QStringLiteral("This will end your application"), MsgAnswer::Cancel)
        .withTitle(QStringLiteral("Port Setup"))
        .withButtons(MsgButtons::OkCancel)
        .then([] {
            // Cancel returns to the dialog: cancel once more and give up this time.
            whenModal([](QWidget *w) { w->findChild<QPushButton *>(QStringLiteral("cmdCancel"))->click(); });
        });
    s.prompts.expectMsgBox(QStringLiteral("This will end your application"), MsgAnswer::Ok);
    whenModal([](QWidget *w) { w->findChild<QPushButton *>(QStringLiteral("cmdCancel"))->click(); });
    Terminal terminal(s.session, s.ini);
    terminal.Load();
    QCOMPARE(ended, 1);
    QVERIFY(s.prompts.verify());
}

void ShellTest::openFailureLeadsBackToTheDialog()
{
    Shell s;
    s.port.failNextOpen(AppErrors::DeviceBusy,
                        QStringLiteral("Device busy: /dev/ttyUSB0 (COM1) is in use by another program."));
    s.prompts.expectMsgBox(QStringLiteral("Device busy: /dev/ttyUSB0 (COM1) is in use by another program."));
    int shown = 0;
    std::function<void(QWidget *)> accept = [&](QWidget *w) {
        ++shown;
        if (shown == 1)
            whenModal(accept);
        else // the failed opening wrote no port key
            QVERIFY(!s.ini.hasKey(QStringLiteral("Port_Phone"), QStringLiteral("Comm Port")));
        w->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
    };
    whenModal(accept);
    MWPort dialog(s.session, s.ini);
    QVERIFY(dialog.SetPortSettings(s.port));
    QCOMPARE(shown, 2);
    QVERIFY(s.port.PortOpen());
    QVERIFY(s.ini.hasKey(QStringLiteral("Port_Phone"), QStringLiteral("Comm Port")));
    QVERIFY(s.prompts.verify());
}

void ShellTest::completeSectionOpensWithoutAsking()
{
    Shell s;
    s.writeIni(QString(kCompletePort).replace(QStringLiteral("9600,N,8,1"), QStringLiteral("115200,N,8,1")));
    Terminal terminal(s.session, s.ini);
    terminal.Load();
    QVERIFY(s.port.PortOpen());
    QCOMPARE(s.port.CommPort(), 2);
    QCOMPARE(s.port.lineSettings().baud, 115200);
    QVERIFY(s.port.DTREnable());
    QVERIFY(s.port.RTSEnable());
    QCOMPARE(terminal.windowTitle(), QStringLiteral("COM2:115200,N,8,1"));
    QVERIFY(s.prompts.verify());
}

void ShellTest::exitClosesPortAndWritesSettings()
{
    Shell s;
    s.writeIni(kCompletePort + QStringLiteral("[Application]\r\nHide Intro=-1\r\n"));
    MainMenu menu(s.session, s.ini);
    menu.Load();
    QVERIFY(!menu.terminal()->isVisible());
    QVERIFY(s.port.PortOpen());
    menu.close();
    QVERIFY(!s.port.PortOpen());
    const QString file = readFile(s.ini.path());
    QVERIFY2(file.contains(QStringLiteral("Hide Intro=True")), qPrintable(file));
    QVERIFY(file.contains(QStringLiteral("Hide Diag=False")));
    QVERIFY(file.contains(QStringLiteral("Auto ZModem=")));
}

void ShellTest::diagnosticsWithSilentModemStaysOnMainMenu()
{
    Shell s;
    s.writeIni(kCompletePort);
    MainMenu menu(s.session, s.ini);
    menu.Load();
    menu.show();
    bool opened = false;
    menu.openDiagnostics = [&] { opened = true; };
    s.prompts.expectMsgBox(
        QStringLiteral("The Varnel is not detected on the selected comm port.  Would you like to "
                       "initialize the IR Dongel?"),
        MsgAnswer::No);
    s.prompts.expectMsgBox(
        QStringLiteral("Not communicating.  Make sure last switch on switch block (#8 or #2) is "
                       "down.  Then reset."),
        MsgAnswer::Abort);
    s.port.clearEvents();
    menu.cmdDiags->click();
    QVERIFY(s.prompts.verify());
    QVERIFY(!opened);
    QVERIFY(menu.isVisible());
    QVERIFY(!s.port.written().contains("FA"));

    s.modem.answer("\x03", "\r\nCMD:");
    menu.cmdDiags->click();
    QVERIFY(opened);
    QVERIFY(!menu.isVisible());
}

void ShellTest::terminalEmulationHandsThePortToTheScreen()
{
    Shell s;
    s.writeIni(kCompletePort);
    MainMenu menu(s.session, s.ini);
    menu.Load();
    menu.show();
    s.port.setAutoProcess(0);
    s.port.feed("old text");
    s.port.clearEvents();
    // The introduction comes last, with the port already in the terminal's hands.
    bool introShown = false;
    whenModal([&](QWidget *w) {
        introShown = true;
        QCOMPARE(w->objectName(), QStringLiteral("TermIntro"));
        QCOMPARE(s.port.AutoProcess(), 3);
        QVERIFY(!menu.isVisible());
        w->findChild<QCheckBox *>(QStringLiteral("chkHide"))->setChecked(true);
        w->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
    });
    menu.cmdTermEm->click();
    QVERIFY(introShown);
    QCOMPARE(s.port.writes(), QList<QByteArray>{"\r"});
    QCOMPARE(s.port.AutoProcess(), 3);
    QCOMPARE(s.port.InBufferCount(), 0);
    QVERIFY(menu.terminal()->isVisible());
    QVERIFY(!menu.isVisible());

    // "Exit to Main Menu" hides the window, keeps the port open, and the note stays away next time.
    s.port.setAutoProcess(0);
    menu.terminal()->MFile(4)->trigger();
    QVERIFY(menu.isVisible());
    QVERIFY(!menu.terminal()->isVisible());
    QVERIFY(s.port.PortOpen());
    QCOMPARE(s.port.AutoProcess(), 3);
    menu.cmdTermEm->click();
    QVERIFY(menu.terminal()->isVisible());
    QVERIFY(s.prompts.verify());
}

void ShellTest::programmingReturnsToMainMenu()
{
    Shell s;
    s.writeIni(kCompletePort);
    MainMenu menu(s.session, s.ini);
    menu.Load();
    menu.show();
    menu.cmdVnlPrg->click();
    QVERIFY(!menu.isVisible());
    QVERIFY(menu.programmingMenu() && menu.programmingMenu()->isVisible());
    s.port.setAutoProcess(0);
    emit menu.programmingMenu()->returnedToMainMenu();
    QVERIFY(menu.isVisible());
    QCOMPARE(s.port.AutoProcess(), 3);
}

void ShellTest::productInformation()
{
    const QString mounts = QStringLiteral("sysfs /sys sysfs rw 0 0\n"
                                          "/dev/sda1 / ext4 rw 0 0\n"
                                          "/dev/sr0 /media/user/VARNEL\\040CD iso9660 ro 0 0\n"
                                          "/dev/loop3 /mnt/image udf ro 0 0\n");
    QCOMPARE(opticalMountPoints(mounts),
             (QStringList{QStringLiteral("/media/user/VARNEL CD/"), QStringLiteral("/mnt/image/")}));
    QVERIFY(opticalMountPoints(QStringLiteral("/dev/sda1 / ext4 rw 0 0\n")).isEmpty());

    QCOMPARE(productInformationMessage(QString()),
             QStringLiteral("You Must Have The Varnel Utility CD In Your CD Drive"));
    QTemporaryDir disc;
    const QString root = disc.path() + QLatin1Char('/');
    QCOMPARE(productInformationMessage(root),
             QStringLiteral("You Must Have The Varnel Utility CD In Your CD Drive"));
    QFile page(root + QStringLiteral("1_default.html"));
    QVERIFY(page.open(QIODevice::WriteOnly));
    page.close();
    QStringList opened;
    desktopOpener() = [&](const QString &file) {
        opened << file;
        return false;
    };
    QCOMPARE(productInformationMessage(root),
             QStringLiteral("You Must The Varnel Resource Disk In Your CD Drive"));
    desktopOpener() = [&](const QString &file) {
        opened << file;
        return true;
    };
    QCOMPARE(productInformationMessage(root), QString());
    QCOMPARE(opened.last(), root + QStringLiteral("1_default.html"));
}

QTEST_MAIN(ShellTest)
#include "ShellTest.moc"
