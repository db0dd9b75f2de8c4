#include "Terminal.h"
#include "Golden.h"
#include "TermIntro.h"
#include "TerminalFixture.h"

#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QListWidget>
#include <QSignalSpy>

namespace {

const QByteArray kTestString = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
const QString kPortClosedBox = errorBox("8018 = Operation valid only when the port is open");

// Keys typed on a widget, each as a key sequence ("a", "Return", "Ctrl+X", "Shift+Insert").
void type(QWidget *widget, const char *keys)
{
    for (const QString &key : QString::fromLatin1(keys).split(u' '))
        QTest::keySequence(widget, QKeySequence(key));
}

// Keys typed on the terminal screen at a mode; setup words: "echo", "del" (Backspace sends DEL),
// "tty", "closed" port.
struct KeysCase
{
    const char *name;
    int autoProcess;
    const char *setup;
    const char *keys;
    const char *wire;
    const char *shown;
    bool esc;
};

const KeysCase kKeysCases[] = {
    {"at 3", 3, "", "a t Return Backspace Tab Ctrl+X Up F12",
     "0:a | 0:t | 0:\\r | 0:<08> | 0:<09> | 0:<18> | 0:<1B>[A", "", false},
    {"at 3 with echo", 3, "echo del", "o k Backspace", "0:o | 0:k | 0:<7F>", "ok", false},
    {"tty without cursor keys", 3, "tty", "Up Escape", "0:<1B>", "", true},
    {"at 0", 0, "echo del", "h i Backspace Up Escape", "0:h | 0:i | 0:<08> | 0:<1B>", "", true},
    {"closed at 3", 3, "closed echo", "x", "", "x", false},
    {"closed at 0", 0, "closed", "x", "", "", false},
};

// Entries that write to the modem, with the adaptor or without, from a clock at 1000 ms.
struct EntryCase
{
    const char *name;
    const char *entry;
    bool adaptor;
    const char *wire;
};

const EntryCase kEntryCases[] = {
    {"test string", "mnutest", false, "1000:ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"},
    {"disconnect", "mnuCtrlC", false, "1000:<03> | 1100:Disconnect\\r"},
    {"disconnect, adaptor", "mnuCtrlC", true,
     "1000:<03> | 1100:D | 1101:i | 1102:s | 1103:c | 1104:o | 1105:n | 1106:n | 1107:e | 1108:c | 1109:t | "
     "1110:\\r"},
    {"button, adaptor", "mnuButton(2)", true, "1000:squelch\\r"},
    {"bare line end", "mnuButton(9)", false, "1000:\\r"},
};

} // namespace

class TerminalTest : public QObject
{
    Q_OBJECT
private slots:
    void init() { QGuiApplication::clipboard()->clear(); }

    void captionsAndMenus()
    {
        LoadedTerminal t;
        Terminal &w = t.window;
        QVERIFY(matchesGolden(describeWindow(w), QStringLiteral(VARNEL_GOLDEN "/Terminal.txt")));
        // Two rows of five buttons under the screen, the status line between.
        w.resize(800, 600);
        w.show();
        QVERIFY(w.Status->geometry().top() >= w.Comm1Screen->geometry().bottom());
        QVERIFY(w.Btn[0]->y() > w.Status->geometry().bottom());
        for (size_t i = 0; i < 5; ++i) {
            QCOMPARE(w.Btn[i]->y(), w.Btn[0]->y());
            QCOMPARE(w.Btn[i + 5]->y(), w.Btn[5]->y());
            QCOMPARE(w.Btn[i + 5]->x(), w.Btn[i]->x());
            QVERIFY(i == 0 || w.Btn[i]->x() > w.Btn[i - 1]->x());
        }
        QVERIFY(w.Btn[5]->y() > w.Btn[0]->y());

        int opened = 0;
        w.openFlashUpdate = w.openSerialRate = w.openPowerLevel = [&] { ++opened; };
        w.hooksChanged();
        for (QAction *entry : {w.mnuFlash, w.mnuSerialS, w.mnuPowerS})
            entry->trigger();
        QCOMPARE(opened, 3);
        QVERIFY(!w.mnusetfreq->isEnabled() && !w.mnuDiag->isEnabled());
    }

    void received()
    {
        LoadedTerminal t;
        t.rig.port.feed("CMD:model\r\nQ4U\r\n");
        QCOMPARE(t.screen().rowText(1), QStringLiteral("Q4U"));
        // While the program owns the port the screen neither shows nor takes anything ...
        t.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
        t.rig.port.feed("CMD:");
        QCOMPARE(t.screen().rowText(2), QString());
        QCOMPARE(t.rig.port.Input(), QByteArray("CMD:"));
        // ... but Disp puts text there, and so does the receive event while it is enabled.
        t.rig.port.Disp("shown");
        t.rig.port.setRThreshold(1);
        t.rig.port.feed(" arrived");
        QCOMPARE(t.screen().rowText(2), QStringLiteral("shown arrived"));
        QCOMPARE(t.rig.port.InBufferCount(), 0);
    }

    void keys_data() { addRows(kKeysCases); }
    void keys()
    {
        const KeysCase &c = fetchRow(kKeysCases);
        LoadedTerminal t;
        const QStringList setup = items(c.setup).join(u' ').split(u' ');
        t.screen().setEcho(setup.contains(QStringLiteral("echo")));
        t.screen().setBackspace(setup.contains(QStringLiteral("del")) ? 1 : 0);
        t.screen().setEmulation(setup.contains(QStringLiteral("tty")) ? 1 : 2);
        if (setup.contains(QStringLiteral("closed")))
            t.rig.port.setPortOpen(false);
        t.rig.port.setAutoProcess(c.autoProcess);
        t.rig.port.clearEvents();
        type(&t.screen(), c.keys);
        QCOMPARE(t.wire(), QString::fromLatin1(c.wire));
        QCOMPARE(t.screen().rowText(0), QString::fromLatin1(c.shown));
        QCOMPARE(t.rig.session.EscPressed, c.esc);
        QVERIFY(t.rig.prompts.verify());
    }

    void keysOnTheForm()
    {
        LoadedTerminal t;
        t.window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&t.window));
        for (int round = 0; round < 2; ++round) {
            if (round == 1)
                t.rig.port.setPortOpen(false);
            t.window.Btn[3]->setFocus();
            QTest::keyClicks(t.window.Btn[3], QStringLiteral("z"));
            QCOMPARE(QApplication::focusWidget(), t.window.Comm1Screen);
        }
        QCOMPARE(t.wire(), QStringLiteral("0:z"));
        QVERIFY(t.rig.prompts.verify());
    }

    void copyAndPaste()
    {
        LoadedTerminal t;
        TerminalScreen &screen = t.screen();
        QClipboard *clipboard = QGuiApplication::clipboard();
        t.rig.port.feed("CMD:squelch\r\nSQUELCH 30\r\n");
        emit t.window.MenuEdit->aboutToShow();
        QVERIFY(!t.window.MEdit(1)->isEnabled() && !t.window.MEdit(2)->isEnabled());

        // The keyboard copies leave out the last character, the line end between rows comes along.
        screen.select(0, 4, 1, 10);
        type(&screen, "Ctrl+Insert");
        QCOMPARE(clipboard->text(), QStringLiteral("squelch\r\nSQUELCH 3"));
        QCOMPARE(screen.SelLength(), 19);
        screen.select(1, 0, 1, 1);
        type(&screen, "Shift+Delete");
        QCOMPARE(clipboard->text(), QString());
        QCOMPARE(screen.SelLength(), 0);
        emit t.window.MenuEdit->aboutToShow();
        QVERIFY(!t.window.MEdit(1)->isEnabled() && t.window.MEdit(2)->isEnabled());

        // The menu copies the selection whole; Delete drops the selection only.
        screen.select(1, 0, 1, 1);
        emit t.window.MenuEdit->aboutToShow();
        QVERIFY(t.window.MEdit(1)->isEnabled());
        t.window.MEdit(1)->trigger();
        QCOMPARE(clipboard->text(), QStringLiteral("S"));
        type(&screen, "Delete");
        QCOMPARE(screen.SelLength(), 0);
        QCOMPARE(clipboard->text(), QStringLiteral("S"));

        // Shift+Insert and the menu paste send the clipboard at either mode.
        clipboard->setText(QStringLiteral("datarate 0\r"));
        type(&screen, "Shift+Insert");
        t.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
        t.window.MEdit(2)->trigger();
        QCOMPARE(t.wire(), QStringLiteral("0:datarate 0\\r | 0:datarate 0\\r"));

        // A paste to a closed port: the menu shows the standard box, the keyboard stays silent.
        t.rig.port.setPortOpen(false);
        t.rig.prompts.expectMsgBox(kPortClosedBox).withIcon(MsgIcon::Critical);
        t.window.MEdit(2)->trigger();
        type(&screen, "Shift+Insert");
        QVERIFY(t.rig.prompts.verify());
    }

    void entries_data() { addRows(kEntryCases); }
    void entries()
    {
        const EntryCase &c = fetchRow(kEntryCases);
        LoadedTerminal t;
        t.window.Btn[2]->Tag = QStringLiteral("squelch\r");
        t.window.Btn[9]->Tag = QStringLiteral("\r");
        t.rig.session.IrDongleActive = c.adaptor;
        // A button sends whatever the mode is.
        t.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
        t.rig.time.advance(1000);
        t.window.findChild<QAction *>(QString::fromLatin1(c.entry))->trigger();
        QCOMPARE(t.wire(), QString::fromLatin1(c.wire));
    }

    // Through the adaptor the test string goes a character a millisecond, still without a line end.
    void testStringThroughTheAdaptor()
    {
        LoadedTerminal t;
        t.rig.session.IrDongleActive = true;
        t.window.mnutest->trigger();
        QCOMPARE(t.rig.port.writes().size(), kTestString.size());
        QCOMPARE(t.rig.port.written(), kTestString);
        QCOMPARE(t.rig.time.elapsedMs(), kTestString.size());
    }

    void buttons()
    {
        LoadedTerminal t("[Button Assignments]\r\n3 - Squelch=squelch~\r\n10 - Factory=fa~ignored\r\n"
                         "1 - Model=model\r\n");
        Terminal &w = t.window;
        QCOMPARE(w.Btn[2]->text(), QStringLiteral("Squelch"));
        QCOMPARE(w.mnuButton(2)->text(), QStringLiteral("Squelch"));
        QCOMPARE(w.mnuButton(1)->text(), QStringLiteral("Button 2"));
        w.show();
        w.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&w));
        w.Comm1Screen->setFocus();
        for (const Qt::Key key : {Qt::Key_F1, Qt::Key_F3, Qt::Key_F10, Qt::Key_F11})
            QTest::keyClick(w.Comm1Screen, key, Qt::ShiftModifier);
        w.Btn[2]->click();
        QCOMPARE(t.wire(), QStringLiteral("0:model | 0:squelch\\r | 0:fa\\r | 0:squelch\\r"));
        QCOMPARE(QApplication::focusWidget(), w.Comm1Screen);

        // A blank button opens the definitions on itself, marked as the default; nothing is sent.
        int shown = 0;
        for (const auto &[open, row] :
             {std::pair{std::function<void()>([&] { w.Btn[6]->click(); }), 6},
              std::pair{std::function<void()>([&] { w.mnuButtonDef->trigger(); }), 0}}) {
            whenModal([&, row = row](QWidget *dialog) {
                ++shown;
                QCOMPARE(dialog->findChild<QListWidget *>(QStringLiteral("BtnNo"))->currentRow(), row);
                QVERIFY(w.Btn[size_t(row)]->isDefault());
                dialog->findChild<QPushButton *>(QStringLiteral("Quit"))->click();
            });
            open();
        }
        QCOMPARE(shown, 2);
        QVERIFY(!w.Btn[6]->isDefault());

        // Saved at unload; an emptied button writes nothing, so its old key stays.
        w.Btn[4]->setText(QStringLiteral("Hours"));
        w.Btn[4]->Tag = QStringLiteral("hour\r");
        w.Btn[0]->Tag.clear();
        w.Unload();
        QStringList saved;
        for (const char *key : {"5 - Hours", "3 - Squelch", "1 - Model"})
            saved << t.rig.ini.getString(QStringLiteral("Button Assignments"), QString::fromLatin1(key), {});
        QCOMPARE(saved.join(u' '), QStringLiteral("hour~ squelch~ model"));
        Terminal again(t.rig.session, t.rig.ini);
        again.Load();
        QCOMPARE(again.Btn[4]->text(), QStringLiteral("Hours"));
        QCOMPARE(again.Btn[0]->Tag, QStringLiteral("model"));
    }

    void statusAndClearScreen()
    {
        LoadedTerminal t;
        QStringList shown;
        for (const QString &text : items("Capturing | Done |  | ", Qt::KeepEmptyParts)) {
            t.window.SetStatus(text);
            shown << t.window.Status->text();
        }
        // An empty text shows the last one again, and is remembered in its place.
        QCOMPARE(shown.join(u'|'), QStringLiteral("Capturing |Done |Done | "));

        t.rig.port.feed("one\r\ntwo\r\nthree");
        t.window.MComm(4)->trigger();
        QCOMPARE(t.screen().ScreenText(), QStringLiteral("\r\n").repeated(25));
        QCOMPARE(t.screen().CursorRow(), 1);
        QCOMPARE(t.screen().CursorCol(), 1);
    }

    void capture()
    {
        LoadedTerminal t;
        const QString path = t.rig.dir.filePath(QStringLiteral("session.TXT"));
        t.rig.prompts.expectFileDialog(path, QStringLiteral("Capture Filename"));
        t.window.MFile(1)->trigger();
        QCOMPARE(t.rig.prompts.lastFileDialog().filter,
                 QStringLiteral("Text Files (*.TXT);;All Files (*.*)"));
        QCOMPARE(t.rig.prompts.lastFileDialog().fileName, QString());
        QCOMPARE(t.screen().CaptureMode(), 3);
        QVERIFY(t.rig.session.CaptureActive);
        QCOMPARE(t.window.Status->text(), QStringLiteral("Capturing [STANDARD] to ") + path + u' ');
        QVERIFY(!t.window.MFile(1)->isEnabled() && t.window.MFile(2)->isEnabled());

        // What the program reads for itself while it owns the port is not the terminal's.
        t.rig.port.feed("CMD:rssi\r\n\x1b[1m-72\x1b[0m\r\nabc\rX\r\n");
        t.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
        t.rig.port.feed("dialogue");
        t.rig.port.Input();
        t.rig.port.setAutoProcess(CommControl::kAutoProcessTerminal);
        t.rig.port.feed("CMD:");
        t.window.MFile(2)->trigger();
        QCOMPARE(readBytes(path), QByteArray("CMD:rssi\r\n-72\r\nXbc\r\nCMD:"));
        QVERIFY(!t.rig.session.CaptureActive);
        QCOMPARE(t.window.Status->text(), QStringLiteral("Capture File Closed "));
        QVERIFY(t.window.MFile(1)->isEnabled() && !t.window.MFile(2)->isEnabled());

        // The TTY emulation shows sequences as text, and so does its capture; a name without an
        // extension gets the dialog's "TXT".
        t.screen().setEmulation(1);
        t.rig.prompts.expectFileDialog(t.rig.dir.filePath(QStringLiteral("tty")));
        t.window.OpenCapture(t.screen(), 2);
        const QString tty = t.rig.dir.filePath(QStringLiteral("tty.TXT"));
        QCOMPARE(t.window.Status->text(), QStringLiteral("Capturing [VISIBLE] to ") + tty + u' ');
        t.rig.port.feed("\x1b[1mbold\r\n");
        t.window.CloseCapture(t.screen());
        QCOMPARE(readBytes(tty), QByteArray("[1mbold\r\n"));
        QVERIFY(t.rig.prompts.verify());
    }

    void captureCancelledOrRefused()
    {
        LoadedTerminal t;
        t.rig.prompts.expectFileDialog(std::nullopt);
        t.rig.prompts.expectFileDialog(QStringLiteral("   "));
        t.rig.prompts.expectFileDialog(t.rig.dir.filePath(QStringLiteral("no/such/folder.TXT")));
        t.rig.prompts.expectMsgBox(errorBox("76 = Path not found")).withIcon(MsgIcon::Critical);
        for (int i = 0; i < 3; ++i)
            t.window.MFile(1)->trigger();
        QVERIFY(t.rig.prompts.verify());
        QCOMPARE(t.screen().CaptureFilename(), QString());
        QVERIFY(!t.rig.session.CaptureActive);
        QVERIFY(t.window.MFile(1)->isEnabled() && !t.window.MFile(2)->isEnabled());
        QCOMPARE(t.window.Status->text(), QString());
    }

    void unloadClosesCaptureBeforeThePort()
    {
        LoadedTerminal t;
        const QString path = t.rig.dir.filePath(QStringLiteral("cap.TXT"));
        t.rig.prompts.expectFileDialog(path);
        t.window.MFile(1)->trigger();
        t.rig.port.feed("last line\r\nCMD:");
        bool portOpenAtBox = false;
        int beepsAtBox = 0;
        t.rig.prompts.expectMsgBox(QStringLiteral("Capture File Closed")).withIcon(MsgIcon::None).then([&] {
            portOpenAtBox = t.rig.port.PortOpen();
            beepsAtBox = t.rig.prompts.beeps();
        });
        QSignalSpy unloading(&t.window, &Terminal::aboutToUnload);
        t.window.Unload();
        QVERIFY(t.rig.prompts.verify());
        QVERIFY(portOpenAtBox);
        QCOMPARE(beepsAtBox, 1);
        QCOMPARE(unloading.count(), 1);
        QVERIFY(!t.rig.port.PortOpen());
        QCOMPARE(readBytes(path), QByteArray("last line\r\nCMD:"));

        // Without a capture the unload is silent.
        LoadedTerminal quiet;
        quiet.window.Unload();
        QCOMPARE(quiet.rig.prompts.beeps(), 0);
    }

    void introductionUntilHidden()
    {
        LoadedTerminal t;
        int shown = 0;
        for (const bool hide : {false, true}) {
            whenModal([&](QWidget *dialog) {
                ++shown;
                QVERIFY(
                    matchesGolden(describeWindow(*dialog), QStringLiteral(VARNEL_GOLDEN "/TermIntro.txt")));
                dialog->findChild<QCheckBox *>(QStringLiteral("chkHide"))->setChecked(hide);
                dialog->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
            });
            t.window.showTermIntro();
            QCOMPARE(t.window.Settings.hideIntro, hide);
        }
        t.window.showTermIntro(); // hidden now: no dialog comes
        QCOMPARE(shown, 2);
        t.window.Unload();
        QCOMPARE(t.rig.ini.getString(QStringLiteral("Application"), QStringLiteral("Hide Intro"), {}),
                 QStringLiteral("True"));
    }

    void adaptor()
    {
        LoadedTerminal t;
        t.rig.prompts.expectMsgBox(QStringLiteral("The Infra-Red Dongle is not responding"));
        t.window.mnudongle->trigger();
        QVERIFY(t.rig.prompts.verify());
        QCOMPARE(t.window.windowTitle(), QStringLiteral("COM2:9600,N,8,1"));
        QVERIFY(!t.rig.port.written().contains('\x03'));

        // Started at load when the settings say so: the title tells, and Ctrl-C goes last.
        TerminalRig rig;
        rig.modem.answer(QByteArray(1, char(0xC0)), QByteArray(1, char(0xC2)));
        rig.session.IrDongleActive = true;
        Terminal window(rig.session, rig.ini);
        window.Load();
        QCOMPARE(window.windowTitle(), QStringLiteral("COM2: Using IR Dongle"));
        QCOMPARE(rig.port.writes().last(), QByteArray("\x03"));
        QCOMPARE(rig.port.AutoProcess(), 3);
        QVERIFY(rig.prompts.verify());
    }

    void setFrequency()
    {
        LoadedTerminal t;
        int autoProcessAtScreen = -1;
        t.window.openChooseFreqType = [&] { autoProcessAtScreen = t.rig.port.AutoProcess(); };
        t.window.hooksChanged();
        t.rig.modem.answer("\x03", "\r\nCMD:");
        t.window.mnusetfreq->trigger();
        QCOMPARE(t.rig.port.writes().first(), QByteArray("\x03"));
        QCOMPARE(autoProcessAtScreen, 0);
        QVERIFY(!t.rig.prompts.busy());

        // A silent modem: the boxes of the entry routine, and the port goes back to the terminal.
        LoadedTerminal silent;
        silent.window.openChooseFreqType = [] { QFAIL("opened"); };
        silent.window.hooksChanged();
        silent.rig.prompts.expectMsgBox(
            QStringLiteral(
                "The Varnel is not detected on the selected comm port.  Would you like to initialize "
                "the IR Dongel?"),
            MsgAnswer::No);
        silent.rig.prompts.expectMsgBox(
            QStringLiteral(
                "Not communicating.  Make sure last switch on switch block (#8 or #2) is down.  Then "
                "reset."),
            MsgAnswer::Abort);
        silent.window.mnusetfreq->trigger();
        QVERIFY(silent.rig.prompts.verify());
        QCOMPARE(silent.rig.port.AutoProcess(), 3);
        QVERIFY(!silent.rig.prompts.busy());
    }

    void diagnosticsAndModelOptions()
    {
        LoadedTerminal t;
        t.window.show();
        int autoProcessAtDiagnostics = -1;
        t.window.openDiagnostics = [&] { autoProcessAtDiagnostics = t.rig.port.AutoProcess(); };
        t.window.hooksChanged();
        t.rig.modem.answer("\x03", "\r\nCMD:");
        t.window.mnuDiag->trigger();
        QCOMPARE(autoProcessAtDiagnostics, 0);
        QVERIFY(!t.window.isVisible());
        QVERIFY(!t.rig.prompts.busy());

        // A double click on the screen shows the model options under the hourglass.
        int shown = 0;
        t.window.showModelOptions = [&] {
            ++shown;
            QVERIFY(t.rig.prompts.busy());
            t.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
        };
        QTest::mouseDClick(t.screen().viewport(), Qt::LeftButton);
        QCOMPARE(shown, 1);
        QCOMPARE(t.rig.port.AutoProcess(), 3);
        QVERIFY(!t.rig.prompts.busy());
    }

    void exitAboutAndTitle()
    {
        LoadedTerminal t;
        t.window.show();
        QSignalSpy back(&t.window, &Terminal::returnedToMainMenu);
        t.window.MFile(4)->trigger();
        QCOMPARE(back.count(), 1);
        QVERIFY(!t.window.isVisible());
        QVERIFY(t.rig.port.PortOpen());
        QVERIFY(t.rig.port.events().isEmpty());

        bool about = false;
        whenModal([&](QWidget *dialog) {
            about = dialog->objectName() == QStringLiteral("frmAbout");
            dialog->close();
        });
        t.window.mnuhp->trigger();
        QVERIFY(about);

        t.rig.port.setPortOpen(false);
        t.rig.port.setCommPort(7);
        t.rig.port.setSettings(QStringLiteral("115200,e,7,2"));
        t.window.setPortTitle();
        QCOMPARE(t.window.windowTitle(), QStringLiteral("COM7:115200,E,7,2"));
    }
};

QTEST_MAIN(TerminalTest)
#include "TerminalTest.moc"
