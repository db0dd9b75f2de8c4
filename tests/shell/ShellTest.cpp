#include "ChooseFreqType.h"
#include "Golden.h"
#include "IniFile.h"
#include "MWPort.h"
#include "MainMenu.h"
#include "Modal.h"
#include "ProgrammingMenu.h"
#include "RemoteAddress.h"
#include "SessionRig.h"
#include "SetBaudS.h"
#include "StartOutScreens.h"
#include "Terminal.h"
#include "TerminalScreen.h"
#include "WorkingFileOpen.h"
#include "frmAbout.h"
#include "frmSplash.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {
void click(QWidget *dialog, const char *button)
{
    dialog->findChild<QPushButton *>(QLatin1String(button))->click();
}

const char *const kCompletePort =
    "[Port_Phone]\r\nComm "
    "Port=2\r\nSettings=9600,N,8,1\r\nDTREnable=True\r\nRTSEnable=-1\r\nHandshaking=0\r\n";

struct Shell : SessionRig
{
    QTemporaryDir dir;
    IniFile ini{dir.filePath(QStringLiteral("varnel-utility.INI"))};
    MainMenu menu{session, ini};

    explicit Shell(const char *file = kCompletePort) : SessionRig(CommControl::kAutoProcessTerminal)
    {
        port.setPortOpen(false);
        writeBytes(ini.path(), file);
    }
    QString key(const char *name) const
    {
        return ini.getString(QStringLiteral("Port_Phone"), QLatin1String(name), {});
    }
};
} // namespace

class ShellTest : public QObject
{
    Q_OBJECT
private slots:
    void captionsAndMenus()
    {
        Shell s;
        s.menu.Load();
        frmAbout about(s.prompts);
        frmSplash *splash = new frmSplash;
        for (const QWidget *w : std::initializer_list<const QWidget *>{&s.menu, &about, splash})
            QVERIFY(matchesGolden(describeWindow(*w),
                                  QStringLiteral(VARNEL_GOLDEN "/%1.txt").arg(w->objectName())));
        // The splash hands over after half a second; once it is on the screen, and only once, it
        // lets the program build what comes next.
        QVERIFY(splash->Timer1.isActive() && splash->Timer1.isSingleShot());
        QCOMPARE(splash->Timer1.interval(), 500);
        QSignalSpy shown(splash, &frmSplash::shownOnScreen);
        splash->show();
        QVERIFY(shown.wait());
        splash->repaint();
        QVERIFY(!shown.wait(50));
        QVERIFY(splash->Timer1.isActive());
        delete splash;
    }

    void standardErrorBox()
    {
        ScriptedPrompts prompts;
        prompts
            .expectMsgBox(
                QStringLiteral("The following error has occured in the application:\r8018 = Operation valid "
                               "only when the port is open\rPress OK to attempt to fix problem.\rIf problem "
                               "remains, please exit program and report error to VNL."))
            .withIcon(MsgIcon::Critical)
            .withButtons(MsgButtons::OkOnly)
            .withTitle(QString());
        MemoryCommControl closed;
        // The routine goes on with the statement after the one that failed.
        QVERIFY(!attempt(prompts, [&] { closed.Output("x"); }));
        QVERIFY(prompts.verify());
    }

    void firstStartAsksForThePort()
    {
        Shell s("");
        whenModal([](QWidget *w) {
            QCOMPARE(w->objectName() + w->windowTitle(), QStringLiteral("MWPortVarnel Setup"));
            w->findChild<QComboBox *>(QStringLiteral("CmbComPort"))->setCurrentIndex(2);
            w->findChild<QComboBox *>(QStringLiteral("CmbBaudRate"))->setCurrentText(QStringLiteral("9600"));
            w->findChild<QComboBox *>(QStringLiteral("CmbParity"))->setCurrentText(QStringLiteral("None"));
            w->findChild<QCheckBox *>(QStringLiteral("ChkHandshakingHardware"))->setChecked(true);
            click(w, "cmdOK");
        });
        s.session.IrDongleActive = true;
        Terminal terminal(s.session, s.ini);
        terminal.Load();
        QVERIFY(s.port.PortOpen() && !s.session.IrDongleActive);
        QCOMPARE(terminal.windowTitle(), QStringLiteral("COM3:9600,N,8,1"));
        QCOMPARE(s.key("Comm Port") + s.key("Settings") + s.key("Handshaking"),
                 QStringLiteral("39600,N,8,12"));
    }

    void missingKeyBringsTheDialogBack()
    {
        Shell s("[Port_Phone]\r\nComm Port=2\r\nDTREnable=True\r\n");
        int comPort = -1;
        whenModal([&](QWidget *w) {
            // The dialog shows what was read before the missing key.
            comPort = w->findChild<QComboBox *>(QStringLiteral("CmbComPort"))->currentIndex();
            click(w, "cmdOK");
        });
        Terminal terminal(s.session, s.ini);
        terminal.Load();
        QCOMPARE(comPort, 1);
        QCOMPARE(s.key("Settings").isEmpty(), false);
    }

    void cancelAtFirstStartOffersToEnd()
    {
        Shell s("");
        int ended = 0;
        MWPort::endProgram() = [&] {
            ++ended;
            click(QApplication::activeModalWidget(), "cmdOK");
        };
        s.prompts.expectMsgBox(QStringLiteral("This will end your application"), MsgAnswer::Cancel)
            .withTitle(QStringLiteral("Port Setup"))
            .withButtons(MsgButtons::OkCancel)
            // Cancel leads back to the dialog: cancel it again, and end this time.
            .then([] { whenModal([](QWidget *w) { click(w, "cmdCancel"); }); });
        s.prompts.expectMsgBox(QStringLiteral("This will end your application"), MsgAnswer::Ok);
        whenModal([](QWidget *w) { click(w, "cmdCancel"); });
        s.menu.Load();
        QCOMPARE(ended, 1);
        QVERIFY(s.prompts.verify());
    }

    void portDialogThatCannotSaveSaysWhyOncePerRun()
    {
        Shell s("");
        QVERIFY(QFile::remove(s.ini.path()) &&
                QFile::link(s.dir.filePath(QStringLiteral("gone/x")), s.ini.path()));
        whenModal([](QWidget *w) { click(w, "cmdOK"); });
        s.prompts
            .expectMsgBox(QStringLiteral("The settings cannot be saved to %1 (No such file or directory).")
                              .arg(s.ini.path()))
            .withIcon(MsgIcon::Exclamation);
        s.menu.Load();
        s.menu.close();
        QVERIFY(s.prompts.verify());
    }

    void openFailureLeadsBackToTheDialog()
    {
        Shell s("");
        s.port.failNextOpen(AppErrors::DeviceBusy, QStringLiteral("Device busy: /dev/ttyUSB0 (COM1)."));
        s.prompts.expectMsgBox(QStringLiteral("Device busy: /dev/ttyUSB0 (COM1)."));
        int shown = 0;
        std::function<void(QWidget *)> accept = [&](QWidget *w) {
            // The failed opening wrote no port number.
            if (++shown == 1)
                whenModal(accept);
            else
                QCOMPARE(s.key("Comm Port"), QString());
            click(w, "cmdOK");
        };
        whenModal(accept);
        MWPort dialog(s.session, s.ini);
        QVERIFY(dialog.SetPortSettings(s.port));
        QCOMPARE(shown, 2);
        QVERIFY(s.port.PortOpen());
        QCOMPARE(s.key("Comm Port"), QStringLiteral("1"));
        QVERIFY(s.prompts.verify());
    }

    void terminalBuiltAheadWaitsForTheLoad()
    {
        Shell s;
        s.menu.prepareTerminal();
        Terminal *prepared = s.menu.terminal();
        QVERIFY(prepared && !prepared->isLoaded() && !prepared->isVisible() && !s.port.PortOpen());
        s.menu.Load();
        QCOMPARE(s.menu.terminal(), prepared);
        QVERIFY(prepared->isLoaded() && s.port.PortOpen());
    }

    void sectionsComeAndGo()
    {
        Shell s(kCompletePort);
        s.menu.Load();
        s.menu.show();
        QVERIFY(s.port.PortOpen() && !s.menu.terminal()->isVisible());
        QCOMPARE(s.menu.terminal()->windowTitle(), QStringLiteral("COM2:9600,N,8,1"));

        // Diagnostics needs the prompt: with a silent modem the user stays here, and "FA" is never sent.
        bool diagnostics = false;
        s.menu.openDiagnostics = [&] { diagnostics = true; };
        s.prompts.expectMsgBox(
            QStringLiteral("The Varnel is not detected on the selected comm port.  Would you like "
                           "to initialize the IR Dongel?"),
            MsgAnswer::No);
        s.prompts.expectMsgBox(
            QStringLiteral("Not communicating.  Make sure last switch on switch block (#8 or #2) "
                           "is down.  Then reset."),
            MsgAnswer::Abort);
        s.menu.cmdDiags->click();
        QVERIFY(!diagnostics && s.menu.isVisible() && !s.port.written().contains("FA"));
        s.modem.answer("\x03", "\r\nCMD:");
        s.menu.cmdDiags->click();
        QVERIFY(diagnostics && !s.menu.isVisible());

        // The terminal's frequency entry opens the hub, which reaches a remote through the remote form.
        for (const auto &[line, reply] : {std::pair{"Model\r", "MODEL    = Q4Z\r"},
                                          {"Option\r", "OPTION   = 0\r"},
                                          {"Version\r", "VERSION  = 1.52\r"},
                                          {"s/n\r", "S/N      = 14210\r"}})
            s.modem.answer(line, QByteArray(reply) + "CMD:");
        s.menu.terminal()->mnusetfreq->trigger();
        auto *hub = s.menu.terminal()->findChild<ChooseFreqType *>();
        QVERIFY(hub && hub->isVisible() && hub->record.SerialNumber == 14210);
        QCOMPARE(s.port.AutoProcess(), CommControl::kAutoProcessProgram);
        hub->Command1[2]->click();
        QCOMPARE(s.session.ProgMode, QStringLiteral("RemoteFreqS"));
        QVERIFY(hub->findChild<RemoteAddress *>()->isVisible());
        hub->close();
        QCOMPARE(s.port.AutoProcess(), CommControl::kAutoProcessTerminal);

        // Starting Out holds the port; the rate wizard it opens gives the port away, and it takes it back.
        s.menu.show();
        s.menu.cmdStartOut->click();
        StartingOutMenu *startOut = nullptr;
        for (QWidget *w : QApplication::topLevelWidgets())
            if (auto *found = qobject_cast<StartingOutMenu *>(w))
                startOut = found;
        QVERIFY(startOut && startOut->isVisible() && !s.menu.isVisible());
        QCOMPARE(s.port.AutoProcess(), CommControl::kAutoProcessProgram);
        startOut->openSerialRate(startOut);
        auto *wizard = startOut->findChild<SetBaudS *>();
        wizard->close();
        QCOMPARE(s.port.AutoProcess(), CommControl::kAutoProcessTerminal);
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(s.port.AutoProcess(), CommControl::kAutoProcessProgram);
        startOut->cmdExit->click();
        QVERIFY(s.menu.isVisible());
        QCOMPARE(s.port.AutoProcess(), CommControl::kAutoProcessTerminal);

        s.menu.cmdVnlPrg->click();
        QVERIFY(!s.menu.isVisible() && s.menu.programmingMenu()->isVisible());
        s.menu.programmingMenu()->close();
        QVERIFY(s.menu.isVisible());
        QCOMPARE(s.port.AutoProcess(), CommControl::kAutoProcessTerminal);
        QVERIFY(s.prompts.verify());
    }

    // The terminal's entries for the modem itself lead to their procedures; over the adaptor each
    // refuses with its own box and sends nothing.
    void modemEntriesAreWired()
    {
        Shell s;
        s.menu.Load();
        s.session.IrDongleActive = true;
        s.port.clearEvents();
        s.prompts.expectMsgBox(QStringLiteral("Flash Update Not Available Through Dongle!"));
        s.menu.terminal()->mnuFlash->trigger();
        s.prompts.expectMsgBox(QStringLiteral("You must connect directly to Varnel to change baud rate"));
        s.menu.terminal()->mnuSerialS->trigger();
        QVERIFY(s.prompts.verify());
        QVERIFY(s.port.writes().isEmpty());
        s.menu.cmdVnlPrg->click();
        for (const char *entry : {"mnuModemopt", "mnuHours"})
            QVERIFY(s.menu.programmingMenu()->findChild<QAction *>(QLatin1String(entry))->isEnabled());
        QVERIFY(s.menu.terminal()->mnuPowerS->isEnabled());
    }

    void terminalEmulationHandsThePortToTheScreen()
    {
        Shell s;
        s.menu.Load();
        s.menu.show();
        s.port.setAutoProcess(0);
        s.port.feed("old text");
        s.port.clearEvents();
        // The introduction comes last, with the port already in the terminal's hands.
        bool introShown = false;
        whenModal([&](QWidget *w) {
            introShown = w->objectName() == u"TermIntro" && s.port.AutoProcess() == 3 && !s.menu.isVisible();
            w->findChild<QCheckBox *>(QStringLiteral("chkHide"))->setChecked(true);
            click(w, "cmdOK");
        });
        s.menu.cmdTermEm->click();
        QVERIFY(introShown);
        QCOMPARE(s.port.writes(), QList<QByteArray>{"\r"});
        QCOMPARE(s.port.InBufferCount(), 0);
        QVERIFY(s.menu.terminal()->isVisible() && !s.menu.isVisible());

        // "Exit to Main Menu" hides the window, keeps the port open, and the note stays away next time.
        s.port.setAutoProcess(0);
        s.menu.terminal()->MFile(4)->trigger();
        QVERIFY(s.menu.isVisible() && !s.menu.terminal()->isVisible() && s.port.PortOpen());
        QCOMPARE(s.port.AutoProcess(), 3);
        s.menu.cmdTermEm->click();
        QVERIFY(s.menu.terminal()->isVisible());

        // Closing the main menu closes the port and writes the settings.
        s.menu.close();
        QVERIFY(!s.port.PortOpen());
        QVERIFY(
            readBytes(s.ini.path()).contains("Hide Intro=True\r\nHide Diag=False\r\nRepeater Setup=False"));
        QVERIFY(s.prompts.verify());
    }

    // The window's close button unloads the terminal as the exit does: the capture is closed with its
    // beep and box, the port closed, the buttons saved, the main menu back; what needs the port next
    // reconnects.
    void closeButtonUnloadsTheTerminal()
    {
        Shell s;
        s.menu.Load();
        Terminal *terminal = s.menu.terminal();
        terminal->Settings.hideIntro = true;
        s.menu.cmdTermEm->click();
        terminal->Comm1Screen->setCaptureFilename(s.dir.filePath(QStringLiteral("CAP.TXT")));
        terminal->Btn[0]->setText(QStringLiteral("Call"));
        terminal->Btn[0]->Tag = QStringLiteral("C 12\r");
        s.prompts.expectMsgBox(QStringLiteral("Capture File Closed"));
        QVERIFY(terminal->close());
        QVERIFY(s.prompts.verify());
        QCOMPARE(s.prompts.beeps(), 1);
        QVERIFY(s.menu.isVisible() && !terminal->isVisible() && !s.port.PortOpen());
        QVERIFY(terminal->Comm1Screen->CaptureFilename().isEmpty());
        QVERIFY(readBytes(s.ini.path()).contains("1 - Call="));
        // The diagnostics need the port: the terminal loads again, hidden, and opens it.
        bool diagnostics = false;
        s.menu.openDiagnostics = [&] { diagnostics = true; };
        s.modem.answer("\x03", "\r\nCMD:");
        s.menu.cmdDiags->click();
        QVERIFY(diagnostics && s.port.PortOpen() && !terminal->isVisible());
        QVERIFY(s.prompts.verify());
        s.menu.cmdTermEm->click();
        QVERIFY(s.port.PortOpen() && terminal->isVisible() && !s.menu.isVisible());
    }

    void productInformation()
    {
        QCOMPARE(opticalMountPoints(
                     QStringLiteral("sysfs /sys sysfs rw 0 0\n/dev/sda1 / ext4 rw 0 0\n/dev/sr0 "
                                    "/media/user/VARNEL\\040CD iso9660 ro 0 0\n/dev/cdrom1 /cd vfat ro "
                                    "0 0\n/dev/loop3 /mnt/image/ udf ro 0 0\nbad line\n")),
                 (QStringList{QStringLiteral("/media/user/VARNEL CD/"), QStringLiteral("/cd/"),
                              QStringLiteral("/mnt/image/")}));
        const QString noDisc = QStringLiteral("You Must Have The Varnel Utility CD In Your CD Drive");
        QCOMPARE(productInformationMessage(QString()), noDisc);
        QTemporaryDir disc;
        const QString root = disc.path() + u'/';
        QCOMPARE(productInformationMessage(root), noDisc);
        QVERIFY(writeBytes(root + QStringLiteral("1_default.html"), ""));
        QStringList opened;
        for (const bool started : {false, true}) {
            desktopOpener() = [&](const QString &file) {
                opened << file;
                return started;
            };
            QCOMPARE(productInformationMessage(root),
                     started ? QString()
                             : QStringLiteral("You Must The Varnel Resource Disk In Your CD Drive"));
        }
        QCOMPARE(opened, QStringList(2, root + QStringLiteral("1_default.html")));
        QVERIFY(!OpenWithAssociation(QStringLiteral("/tmp/no-suffix")));
    }
};

QTEST_MAIN(ShellTest)
#include "ShellTest.moc"
