#include "Terminal.h"
#include "ButtonDef.h"
#include "TermIntro.h"
#include "TerminalFixture.h"
#include "TerminalScreen.h"

#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace {

const QByteArray kTestString = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

struct LoadedTerminal
{
    TerminalRig rig;
    Terminal window{rig.session, rig.ini};

    explicit LoadedTerminal(const QByteArray &moreSettings = {}) : rig(moreSettings)
    {
        window.Load();
        rig.port.clearEvents();
    }
    TerminalScreen &screen() { return *window.Comm1Screen; }
    QList<QByteArray> writes() const { return rig.port.writes(); }
};

QList<qint64> writeTimes(const MemoryCommControl &port)
{
    QList<qint64> times;
    for (const WireEvent &e : port.events())
        if (e.kind == WireEvent::Kind::Write)
            times << e.atMs;
    return times;
}

} // namespace

class TerminalTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void menusCaptionsAndKeys();
    void entriesOfOtherSectionsWaitForTheirScreens();
    void receivedTextAtEachAutoProcess();
    void receiveEventShowsWhatArrives();
    void keysGoToThePortAtAutoProcess3();
    void keysGoToThePortAtAutoProcess0();
    void keysOnTheFormGoToTheScreen();
    void keyboardCopyDropsTheLastCharacter();
    void menuCopyAndPaste();
    void editMenuRefresh();
    void testString();
    void testStringThroughTheAdaptor();
    void disconnectSendsControlCharacterFirst();
    void disconnectThroughTheAdaptor();
    void clearTheScreen();
    void exitToMainMenuKeepsThePortOpen();
    void blankButtonOpensDefinitions();
    void buttonSendsItsTextInOneWrite();
    void buttonShortcuts();
    void buttonAssignmentsLoadAndSave();
    void setStatus();
    void captureFromTheMenu();
    void captureCancelledOrRefused();
    void captureModesThroughTheWindow();
    void unloadClosesCaptureBeforeThePort();
    void introductionUntilHidden();
    void initializeIrDongle();
    void adaptorStartsWhenLoaded();
    void setFrequencyEntersCommandModeFirst();
    void setFrequencyWithSilentModem();
    void diagnosticsEntry();
    void doubleClickShowsModelOptions();
    void aboutBox();
    void titleIsThePortReadOut();
};

void TerminalTest::init()
{
    QGuiApplication::clipboard()->clear();
}

void TerminalTest::menusCaptionsAndKeys()
{
    LoadedTerminal t;
    Terminal &w = t.window;
    const auto check = [&](const char *name, const QString &caption, const QKeySequence &key) {
        auto *action = w.findChild<QAction *>(QString::fromLatin1(name));
        QVERIFY2(action, name);
        QCOMPARE(action->text(), caption);
        QCOMPARE(action->shortcut(), key);
    };
    QCOMPARE(w.MenuFile->title(), QStringLiteral("&File"));
    QCOMPARE(w.MenuEdit->title(), QStringLiteral("&Edit"));
    QCOMPARE(w.mnuvnlsetup->title(), QStringLiteral("V&arnel  Setup"));
    QCOMPARE(w.Menutermset->title(), QStringLiteral("&Terminal Setup"));
    QCOMPARE(w.MenuHelp->title(), QStringLiteral("&Help"));
    check("MFile(1)", QStringLiteral("O&pen Capture File..."), {});
    check("MFile(2)", QStringLiteral("C&lose Capture File"), {});
    QVERIFY(w.MFile(3)->isSeparator());
    check("MFile(4)", QStringLiteral("E&xit to Main Menu"), {});
    check("MEdit(1)", QStringLiteral("&Copy"), QKeySequence(QStringLiteral("Ctrl+C")));
    check("MEdit(2)", QStringLiteral("&Paste"), QKeySequence(QStringLiteral("Ctrl+V")));
    check("mnusetfreq", QStringLiteral("Set Frequency/Squelch"), QKeySequence(QStringLiteral("F1")));
    check("mnuDiag", QStringLiteral("Varnel Diagnostics"), QKeySequence(QStringLiteral("F2")));
    check("mnudongle", QStringLiteral("Initialize IR Dongle"), QKeySequence(QStringLiteral("F3")));
    check("mnutest", QStringLiteral("Test String"), QKeySequence(QStringLiteral("F5")));
    check("mnuCtrlC", QStringLiteral("Ctrl-C: Disconnect"), QKeySequence(QStringLiteral("F6")));
    check("mnuFlash", QStringLiteral("Update Flash Memory"), {});
    check("mnuSerialS", QStringLiteral("Configure Varnel Serial Port"), {});
    check("mnuPowerS", QStringLiteral("Set Output Power Level"), {});
    QCOMPARE(w.setQ40z->title(), QStringLiteral("Model Q40Z Settings"));
    QCOMPARE(w.mnuPowerS->parent(), w.setQ40z);
    for (const char *dash : {"mnudash1", "mnudash2", "mnudash3"})
        QVERIFY(w.findChild<QAction *>(QString::fromLatin1(dash))->isSeparator());
    check("MSetup(1)", QStringLiteral("&Port..."), {});
    check("MSetup(2)", QStringLiteral("&Terminal Configuration..."), {});
    QCOMPARE(w.MSetup(4)->text(), QStringLiteral("&Buttons..."));
    QVERIFY(!w.findChild<QAction *>(QStringLiteral("MSetup(3)")));
    for (int i = 1; i <= 3; ++i)
        QVERIFY(!w.findChild<QAction *>(QStringLiteral("MComm(%1)").arg(i)));
    check("MComm(4)", QStringLiteral("Clear the &Screen"), {});
    check("mnuButtonDef", QStringLiteral("Configure Buttons"), {});
    check("mnuhp", QStringLiteral("About"), QKeySequence(QStringLiteral("Ctrl+F1")));

    // The order of the Varnel Setup menu, separators included.
    QStringList order;
    for (QAction *a : w.mnuvnlsetup->actions())
        order << (a->menu() ? a->menu()->objectName() : a->objectName());
    QCOMPARE(order.join(u' '),
             QStringLiteral("mnusetfreq mnuDiag mnudongle mnudash1 mnutest mnuCtrlC mnudash2 "
                            "mnuFlash mnuSerialS mnudash3 setQ40z"));

    QList<QKeySequence> buttonKeys;
    for (int i = 0; i < 10; ++i) {
        QCOMPARE(w.mnuButton(i)->text(), QStringLiteral("Button %1").arg(i + 1));
        QCOMPARE(w.mnuButton(i)->parent(), w.MSetup4);
        buttonKeys << w.mnuButton(i)->shortcut();
    }
    QCOMPARE(buttonKeys.first(), QKeySequence(QStringLiteral("Shift+F1")));
    QCOMPARE(buttonKeys[8], QKeySequence(QStringLiteral("Shift+F9")));
    QCOMPARE(buttonKeys[9], QKeySequence(QStringLiteral("Shift+F11")));
    QVERIFY(!buttonKeys.contains(QKeySequence(QStringLiteral("Shift+F10"))));

    // Two rows of five under the screen, the status line between.
    QCOMPARE(w.Status->objectName(), QStringLiteral("Status"));
    QCOMPARE(w.Comm1Screen->objectName(), QStringLiteral("Comm1"));
    w.resize(800, 600);
    w.show();
    QVERIFY(w.Status->geometry().top() >= w.Comm1Screen->geometry().bottom());
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(w.Btn[size_t(i)]->objectName(), QStringLiteral("Btn(%1)").arg(i));
        QCOMPARE(w.Btn[size_t(i)]->y(), w.Btn[0]->y());
        QCOMPARE(w.Btn[size_t(i + 5)]->y(), w.Btn[5]->y());
        QVERIFY(w.Btn[size_t(i)]->x() < w.Btn[size_t(i + 1 < 5 ? i + 1 : 4)]->x() || i == 4);
        QCOMPARE(w.Btn[size_t(i + 5)]->x(), w.Btn[size_t(i)]->x());
    }
    QVERIFY(w.Btn[5]->y() > w.Btn[0]->y());
    QVERIFY(w.Btn[0]->y() > w.Status->geometry().bottom());
}

void TerminalTest::entriesOfOtherSectionsWaitForTheirScreens()
{
    LoadedTerminal t;
    Terminal &w = t.window;
    for (QAction *entry : {w.mnusetfreq, w.mnuDiag, w.mnuFlash, w.mnuSerialS, w.mnuPowerS})
        QVERIFY2(!entry->isEnabled(), qPrintable(entry->objectName()));
    int flash = 0, serial = 0, power = 0;
    w.openFlashUpdate = [&] { ++flash; };
    w.openSerialRate = [&] { ++serial; };
    w.openPowerLevel = [&] { ++power; };
    w.hooksChanged();
    QVERIFY(w.mnuFlash->isEnabled() && w.mnuSerialS->isEnabled() && w.mnuPowerS->isEnabled());
    w.mnuFlash->trigger();
    w.mnuSerialS->trigger();
    w.mnuPowerS->trigger();
    QCOMPARE(flash + serial + power, 3);
    QVERIFY(t.rig.prompts.verify());
}

void TerminalTest::receivedTextAtEachAutoProcess()
{
    LoadedTerminal t;
    t.rig.port.feed("CMD:model\r\nQ4U\r\n");
    QCOMPARE(t.screen().rowText(0), QStringLiteral("CMD:model"));
    QCOMPARE(t.screen().rowText(1), QStringLiteral("Q4U"));

    // While the program owns the port the screen neither shows nor takes anything.
    t.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
    t.rig.port.feed("CMD:");
    QCOMPARE(t.screen().rowText(2), QString());
    QCOMPARE(t.rig.port.InBufferCount(), 4);
    QCOMPARE(t.rig.port.Input(), QByteArray("CMD:"));

    // Disp puts text there whatever the mode.
    t.rig.port.Disp("shown");
    QCOMPARE(t.screen().rowText(2), QStringLiteral("shown"));
}

void TerminalTest::receiveEventShowsWhatArrives()
{
    LoadedTerminal t;
    t.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
    t.rig.port.setRThreshold(1);
    t.rig.port.feed("arrived");
    QCOMPARE(t.screen().rowText(0), QStringLiteral("arrived"));
    QCOMPARE(t.rig.port.InBufferCount(), 0);
}

void TerminalTest::keysGoToThePortAtAutoProcess3()
{
    LoadedTerminal t;
    TerminalScreen &screen = t.screen();
    QTest::keyClicks(&screen, QStringLiteral("at"));
    QTest::keyClick(&screen, Qt::Key_Return);
    QTest::keyClick(&screen, Qt::Key_Backspace);
    QTest::keyClick(&screen, Qt::Key_Tab);
    QTest::keyClick(&screen, Qt::Key_X, Qt::ControlModifier);
    QTest::keyClick(&screen, Qt::Key_Up);
    QTest::keyClick(&screen, Qt::Key_F12);
    QCOMPARE(t.writes(), QList<QByteArray>({"a", "t", "\r", "\b", "\t", "\x18", "\x1b[A"}));
    // Nothing was echoed: the modem does that.
    QCOMPARE(screen.rowText(0), QString());

    t.rig.port.clearEvents();
    screen.setBackspace(1);
    screen.setEcho(true);
    QTest::keyClicks(&screen, QStringLiteral("ok"));
    QTest::keyClick(&screen, Qt::Key_Backspace);
    QCOMPARE(t.writes(), QList<QByteArray>({"o", "k", "\x7f"}));
    QCOMPARE(screen.rowText(0), QStringLiteral("ok"));

    // The TTY emulation has no cursor keys.
    t.rig.port.clearEvents();
    screen.setEmulation(1);
    QTest::keyClick(&screen, Qt::Key_Up);
    QCOMPARE(t.writes(), QList<QByteArray>());

    QVERIFY(!t.rig.session.EscPressed);
    QTest::keyClick(&screen, Qt::Key_Escape);
    QVERIFY(t.rig.session.EscPressed);
    QCOMPARE(t.writes(), QList<QByteArray>({"\x1b"}));

    // A closed port swallows keys without a box.
    t.rig.port.setPortOpen(false);
    QTest::keyClicks(&screen, QStringLiteral("x"));
    QVERIFY(t.rig.prompts.verify());
}

void TerminalTest::keysGoToThePortAtAutoProcess0()
{
    LoadedTerminal t;
    TerminalScreen &screen = t.screen();
    screen.setEcho(true);
    screen.setBackspace(1);
    t.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
    QTest::keyClicks(&screen, QStringLiteral("hi"));
    QTest::keyClick(&screen, Qt::Key_Backspace);
    QTest::keyClick(&screen, Qt::Key_Up);
    QTest::keyClick(&screen, Qt::Key_Escape);
    // The form writes the key's own code; the control's translation and echo belong to mode 3.
    QCOMPARE(t.writes(), QList<QByteArray>({"h", "i", "\b", "\x1b"}));
    QCOMPARE(screen.rowText(0), QString());
    QVERIFY(t.rig.session.EscPressed);

    t.rig.port.setPortOpen(false);
    QTest::keyClicks(&screen, QStringLiteral("x"));
    QVERIFY(t.rig.prompts.verify());
}

void TerminalTest::keysOnTheFormGoToTheScreen()
{
    LoadedTerminal t;
    t.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&t.window));
    TagButton *button = t.window.Btn[3];
    button->setFocus();
    QTest::keyClicks(button, QStringLiteral("z"));
    QCOMPARE(t.writes(), QList<QByteArray>({"z"}));
    QCOMPARE(QApplication::focusWidget(), t.window.Comm1Screen);

    t.rig.port.setPortOpen(false);
    button->setFocus();
    QTest::keyClicks(button, QStringLiteral("y"));
    QCOMPARE(QApplication::focusWidget(), t.window.Comm1Screen);
    QVERIFY(t.rig.prompts.verify());
}

void TerminalTest::keyboardCopyDropsTheLastCharacter()
{
    LoadedTerminal t;
    TerminalScreen &screen = t.screen();
    QClipboard *clipboard = QGuiApplication::clipboard();
    t.rig.port.feed("CMD:squelch\r\nSQUELCH 30\r\n");

    screen.select(0, 4, 0, 11);
    QCOMPARE(screen.SelText(), QStringLiteral("squelch"));
    QTest::keyClick(&screen, Qt::Key_Insert, Qt::ControlModifier);
    QCOMPARE(clipboard->text(), QStringLiteral("squelc"));
    QCOMPARE(screen.SelLength(), 7);

    // Two rows: the line end comes along, the last character still goes.
    screen.select(0, 4, 1, 10);
    QTest::keyClick(&screen, Qt::Key_Delete, Qt::ShiftModifier);
    QCOMPARE(clipboard->text(), QStringLiteral("squelch\r\nSQUELCH 3"));
    QCOMPARE(screen.SelLength(), 0);

    // One character: the keyboard copy leaves an empty text.
    screen.select(1, 0, 1, 1);
    QTest::keyClick(&screen, Qt::Key_Insert, Qt::ControlModifier);
    QCOMPARE(clipboard->text(), QString());

    // Delete only drops the selection.
    clipboard->setText(QStringLiteral("kept"));
    screen.select(1, 0, 1, 3);
    QTest::keyClick(&screen, Qt::Key_Delete);
    QCOMPARE(screen.SelLength(), 0);
    QCOMPARE(clipboard->text(), QStringLiteral("kept"));
    QCOMPARE(t.writes(), QList<QByteArray>());

    // Without a selection the keyboard copy leaves the clipboard alone.
    QTest::keyClick(&screen, Qt::Key_Insert, Qt::ControlModifier);
    QCOMPARE(clipboard->text(), QStringLiteral("kept"));

    // Shift+Insert sends the clipboard, at either mode.
    QTest::keyClick(&screen, Qt::Key_Insert, Qt::ShiftModifier);
    t.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
    QTest::keyClick(&screen, Qt::Key_Insert, Qt::ShiftModifier);
    QCOMPARE(t.writes(), QList<QByteArray>({"kept", "kept"}));
}

void TerminalTest::menuCopyAndPaste()
{
    LoadedTerminal t;
    TerminalScreen &screen = t.screen();
    QClipboard *clipboard = QGuiApplication::clipboard();
    t.rig.port.feed("ABC");
    screen.select(0, 0, 0, 1);
    t.window.MEdit(1)->trigger();
    QCOMPARE(clipboard->text(), QStringLiteral("A"));
    screen.select(0, 0, 0, 3);
    t.window.MEdit(1)->trigger();
    QCOMPARE(clipboard->text(), QStringLiteral("ABC"));
    QCOMPARE(screen.SelLength(), 3);

    clipboard->setText(QStringLiteral("datarate 0\r"));
    t.window.MEdit(2)->trigger();
    QCOMPARE(t.writes(), QList<QByteArray>({"datarate 0\r"}));

    // A paste to a closed port ends in the standard box.
    t.rig.port.setPortOpen(false);
    t.rig.prompts
        .expectMsgBox(QStringLiteral("The following error has occured in the application:\r8018 = "
                                     "Operation valid only when the port is open\rPress OK to attempt "
                                     "to fix problem.\rIf problem remains, please exit program and "
                                     "report error to VNL."))
        .withIcon(MsgIcon::Critical);
    t.window.MEdit(2)->trigger();
    QVERIFY(t.rig.prompts.verify());
}

void TerminalTest::editMenuRefresh()
{
    LoadedTerminal t;
    t.rig.port.feed("text");
    emit t.window.MenuEdit->aboutToShow();
    QVERIFY(!t.window.MEdit(1)->isEnabled());
    QVERIFY(!t.window.MEdit(2)->isEnabled());

    t.screen().select(0, 0, 0, 2);
    QGuiApplication::clipboard()->setText(QStringLiteral("x"));
    emit t.window.MenuEdit->aboutToShow();
    QVERIFY(t.window.MEdit(1)->isEnabled());
    QVERIFY(t.window.MEdit(2)->isEnabled());

    t.screen().clearSelection();
    QGuiApplication::clipboard()->clear();
    emit t.window.MenuEdit->aboutToShow();
    QVERIFY(!t.window.MEdit(1)->isEnabled());
    QVERIFY(!t.window.MEdit(2)->isEnabled());
}

void TerminalTest::testString()
{
    LoadedTerminal t;
    t.window.mnutest->trigger();
    // One write, and no line end: the interpreter is left with an unfinished line.
    QCOMPARE(t.writes(), QList<QByteArray>({kTestString}));
    QCOMPARE(t.rig.time.elapsedMs(), 0);
}

void TerminalTest::testStringThroughTheAdaptor()
{
    LoadedTerminal t;
    t.rig.session.IrDongleActive = true;
    t.window.mnutest->trigger();
    QList<QByteArray> chars;
    for (const char c : kTestString)
        chars << QByteArray(1, c);
    QCOMPARE(t.writes(), chars);
    QCOMPARE(t.rig.time.elapsedMs(), kTestString.size());
}

void TerminalTest::disconnectSendsControlCharacterFirst()
{
    LoadedTerminal t;
    t.rig.time.advance(1000);
    t.window.mnuCtrlC->trigger();
    QCOMPARE(t.writes(), QList<QByteArray>({"\x03", "Disconnect\r"}));
    QCOMPARE(writeTimes(t.rig.port), QList<qint64>({1000, 1100}));
}

void TerminalTest::disconnectThroughTheAdaptor()
{
    LoadedTerminal t;
    t.rig.session.IrDongleActive = true;
    t.window.mnuCtrlC->trigger();
    const QList<QByteArray> writes = t.writes();
    QCOMPARE(writes.first(), QByteArray("\x03"));
    QCOMPARE(writes.size(), 1 + 11);
    QCOMPARE(writes.mid(1).join(), QByteArray("Disconnect\r"));
    const QList<qint64> times = writeTimes(t.rig.port);
    QCOMPARE(times[0], 0);
    QCOMPARE(times[1], 100);
    QCOMPARE(times.last(), 110);
}

void TerminalTest::clearTheScreen()
{
    LoadedTerminal t;
    t.rig.port.feed("one\r\ntwo\r\nthree");
    QCOMPARE(t.screen().CursorRow(), 3);
    t.window.MComm(4)->trigger();
    QCOMPARE(t.screen().ScreenText(), QStringLiteral("\r\n").repeated(25));
    QCOMPARE(t.screen().CursorRow(), 1);
    QCOMPARE(t.screen().CursorCol(), 1);
    t.rig.port.feed("next");
    QCOMPARE(t.screen().rowText(0), QStringLiteral("next"));
}

void TerminalTest::exitToMainMenuKeepsThePortOpen()
{
    LoadedTerminal t;
    t.window.show();
    QSignalSpy back(&t.window, &Terminal::returnedToMainMenu);
    t.window.MFile(4)->trigger();
    QCOMPARE(back.count(), 1);
    QVERIFY(!t.window.isVisible());
    QVERIFY(t.rig.port.PortOpen());
    QVERIFY(t.rig.port.events().isEmpty());
}

void TerminalTest::blankButtonOpensDefinitions()
{
    LoadedTerminal t;
    int shown = 0;
    whenModal([&](QWidget *dialog) {
        ++shown;
        QCOMPARE(dialog->objectName(), QStringLiteral("ButtonDef"));
        QCOMPARE(dialog->findChild<QListWidget *>(QStringLiteral("BtnNo"))->currentRow(), 6);
        // The button being edited wears the default mark.
        QVERIFY(t.window.Btn[6]->isDefault());
        dialog->findChild<QPushButton *>(QStringLiteral("Quit"))->click();
    });
    t.window.Btn[6]->click();
    QCOMPARE(shown, 1);
    QVERIFY(!t.window.Btn[6]->isDefault());
    QCOMPARE(t.writes(), QList<QByteArray>());

    whenModal([&](QWidget *dialog) {
        ++shown;
        QCOMPARE(dialog->findChild<QListWidget *>(QStringLiteral("BtnNo"))->currentRow(), 0);
        dialog->findChild<QPushButton *>(QStringLiteral("Quit"))->click();
    });
    t.window.mnuButtonDef->trigger();
    QCOMPARE(shown, 2);
}

void TerminalTest::buttonSendsItsTextInOneWrite()
{
    LoadedTerminal t;
    t.window.Btn[2]->Tag = QStringLiteral("squelch\r");
    t.rig.session.IrDongleActive = true;
    t.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
    t.window.Btn[2]->click();
    t.window.mnuButton(2)->trigger();
    QCOMPARE(t.writes(), QList<QByteArray>({"squelch\r", "squelch\r"}));
    QCOMPARE(t.rig.time.elapsedMs(), 0);

    // A lone carriage return is a stored text too.
    t.rig.port.clearEvents();
    t.window.Btn[9]->Tag = QStringLiteral("\r");
    t.window.mnuButton(9)->trigger();
    QCOMPARE(t.writes(), QList<QByteArray>({"\r"}));
}

void TerminalTest::buttonShortcuts()
{
    LoadedTerminal t;
    t.window.Btn[0]->Tag = QStringLiteral("one");
    t.window.Btn[8]->Tag = QStringLiteral("nine");
    t.window.Btn[9]->Tag = QStringLiteral("ten");
    t.window.show();
    t.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&t.window));
    t.window.Comm1Screen->setFocus();
    QTest::keyClick(t.window.Comm1Screen, Qt::Key_F1, Qt::ShiftModifier);
    QTest::keyClick(t.window.Comm1Screen, Qt::Key_F9, Qt::ShiftModifier);
    QTest::keyClick(t.window.Comm1Screen, Qt::Key_F10, Qt::ShiftModifier);
    QTest::keyClick(t.window.Comm1Screen, Qt::Key_F11, Qt::ShiftModifier);
    QCOMPARE(t.writes(), QList<QByteArray>({"one", "nine", "ten"}));

    t.rig.port.clearEvents();
    QTest::keyClick(t.window.Comm1Screen, Qt::Key_F5);
    QCOMPARE(t.writes(), QList<QByteArray>({kTestString}));
}

void TerminalTest::buttonAssignmentsLoadAndSave()
{
    LoadedTerminal t("[Button Assignments]\r\n3 - Squelch=squelch~\r\n10 - Factory=fa~ignored\r\n"
                     "1 - Model=model\r\n");
    Terminal &w = t.window;
    QCOMPARE(w.Btn[2]->text(), QStringLiteral("Squelch"));
    QCOMPARE(w.Btn[2]->Tag, QStringLiteral("squelch\r"));
    QCOMPARE(w.mnuButton(2)->text(), QStringLiteral("Squelch"));
    QCOMPARE(w.Btn[9]->Tag, QStringLiteral("fa\r"));
    QCOMPARE(w.Btn[0]->Tag, QStringLiteral("model"));
    QCOMPARE(w.Btn[1]->text(), QString());
    QCOMPARE(w.mnuButton(1)->text(), QStringLiteral("Button 2"));
    w.Btn[9]->click();
    QCOMPARE(t.writes(), QList<QByteArray>({"fa\r"}));

    w.Btn[4]->setText(QStringLiteral("Hours"));
    w.Btn[4]->Tag = QStringLiteral("hour\r");
    w.Btn[0]->Tag.clear();
    w.Unload();
    const QString section = QStringLiteral("Button Assignments");
    QCOMPARE(t.rig.ini.getString(section, QStringLiteral("5 - Hours"), {}), QStringLiteral("hour~"));
    QCOMPARE(t.rig.ini.getString(section, QStringLiteral("3 - Squelch"), {}), QStringLiteral("squelch~"));
    // An emptied button writes nothing, so its old key stays.
    QCOMPARE(t.rig.ini.getString(section, QStringLiteral("1 - Model"), {}), QStringLiteral("model"));

    Terminal again(t.rig.session, t.rig.ini);
    again.Load();
    QCOMPARE(again.Btn[4]->text(), QStringLiteral("Hours"));
    QCOMPARE(again.Btn[0]->Tag, QStringLiteral("model"));
}

void TerminalTest::setStatus()
{
    LoadedTerminal t;
    t.window.SetStatus(QStringLiteral("Capturing"));
    QCOMPARE(t.window.Status->text(), QStringLiteral("Capturing "));
    t.window.SetStatus(QStringLiteral("Done"));
    QCOMPARE(t.window.Status->text(), QStringLiteral("Done "));
    // An empty text shows the last one again, and is remembered in its place.
    t.window.SetStatus(QString());
    QCOMPARE(t.window.Status->text(), QStringLiteral("Done "));
    t.window.SetStatus(QString());
    QCOMPARE(t.window.Status->text(), QStringLiteral(" "));
}

void TerminalTest::captureFromTheMenu()
{
    LoadedTerminal t;
    const QString path = t.rig.dir.filePath(QStringLiteral("session.TXT"));
    t.rig.prompts.expectFileDialog(path, QStringLiteral("Capture Filename"));
    t.window.MFile(1)->trigger();
    const FileDialogRequest &request = t.rig.prompts.lastFileDialog();
    QCOMPARE(request.filter, QStringLiteral("Text Files (*.TXT);;All Files (*.*)"));
    QCOMPARE(request.fileName, QString());
    QCOMPARE(t.screen().CaptureFilename(), path);
    QCOMPARE(t.screen().CaptureMode(), 3);
    QVERIFY(t.rig.session.CaptureActive);
    QCOMPARE(t.window.Status->text(), QStringLiteral("Capturing [STANDARD] to ") + path + u' ');
    QVERIFY(!t.window.MFile(1)->isEnabled());
    QVERIFY(t.window.MFile(2)->isEnabled());

    t.rig.port.feed("CMD:rssi\r\n\x1b[1m-72\x1b[0m\r\nabc\rX\r\nCMD:");
    t.window.MFile(2)->trigger();
    QCOMPARE(readFile(path), QByteArray("CMD:rssi\r\n-72\r\nXbc\r\nCMD:"));
    QCOMPARE(t.screen().CaptureFilename(), QString());
    QVERIFY(!t.rig.session.CaptureActive);
    QCOMPARE(t.window.Status->text(), QStringLiteral("Capture File Closed "));
    QVERIFY(t.window.MFile(1)->isEnabled());
    QVERIFY(!t.window.MFile(2)->isEnabled());

    // A name without an extension gets the dialog's "TXT".
    t.rig.prompts.expectFileDialog(t.rig.dir.filePath(QStringLiteral("plain")));
    t.window.MFile(1)->trigger();
    QCOMPARE(t.screen().CaptureFilename(), t.rig.dir.filePath(QStringLiteral("plain.TXT")));
    QVERIFY(t.rig.prompts.verify());
}

void TerminalTest::captureCancelledOrRefused()
{
    LoadedTerminal t;
    t.rig.prompts.expectFileDialog(std::nullopt);
    t.window.MFile(1)->trigger();
    QCOMPARE(t.screen().CaptureFilename(), QString());
    QVERIFY(t.window.MFile(1)->isEnabled());
    QVERIFY(!t.window.MFile(2)->isEnabled());
    QCOMPARE(t.window.Status->text(), QString());

    t.rig.prompts.expectFileDialog(QStringLiteral("   "));
    t.window.MFile(1)->trigger();
    QCOMPARE(t.screen().CaptureFilename(), QString());

    t.rig.prompts.expectFileDialog(t.rig.dir.filePath(QStringLiteral("no/such/folder.TXT")));
    t.rig.prompts
        .expectMsgBox(QStringLiteral("The following error has occured in the application:\r76 = Path not "
                                     "found\rPress OK to attempt to fix problem.\rIf problem remains, "
                                     "please exit program and report error to VNL."))
        .withIcon(MsgIcon::Critical);
    t.window.MFile(1)->trigger();
    QCOMPARE(t.screen().CaptureFilename(), QString());
    QVERIFY(!t.rig.session.CaptureActive);
    QVERIFY(t.window.MFile(1)->isEnabled());
    QVERIFY(!t.window.MFile(2)->isEnabled());
    QCOMPARE(t.window.Status->text(), QString());
    QVERIFY(t.rig.prompts.verify());
}

void TerminalTest::captureModesThroughTheWindow()
{
    LoadedTerminal t;
    QByteArray every;
    for (int i = 0; i < 256; ++i)
        every.append(char(i));
    const QString binary = t.rig.dir.filePath(QStringLiteral("binary.TXT"));
    t.rig.prompts.expectFileDialog(binary);
    t.window.OpenCapture(t.screen(), 1);
    QCOMPARE(t.window.Status->text(), QStringLiteral("Capturing [BINARY] to ") + binary + u' ');
    t.rig.port.feed(every.left(100));
    t.rig.port.feed(every.mid(100));
    t.rig.port.feed("\x1b[2JRSSI\r\n");
    t.window.CloseCapture(t.screen());
    QCOMPARE(readFile(binary), every + "\x1b[2JRSSI\r\n");

    const QString visible = t.rig.dir.filePath(QStringLiteral("visible.TXT"));
    t.rig.prompts.expectFileDialog(visible);
    t.window.OpenCapture(t.screen(), 2);
    QCOMPARE(t.window.Status->text(), QStringLiteral("Capturing [VISIBLE] to ") + visible + u' ');
    t.rig.port.feed("\x1b[2JRSSI\a\x1b[1m -72\x1b[0m\r\nab\bc\r\n");
    // What the program reads for itself while it owns the port is not the terminal's.
    t.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
    t.rig.port.feed("dialogue");
    t.rig.port.Input();
    t.rig.port.setAutoProcess(CommControl::kAutoProcessTerminal);
    t.rig.port.feed("CMD:");
    t.window.CloseCapture(t.screen());
    QCOMPARE(readFile(visible), QByteArray("RSSI -72\r\nabc\r\nCMD:"));

    // The TTY emulation shows sequences as text, and so does its capture.
    t.screen().setEmulation(1);
    const QString tty = t.rig.dir.filePath(QStringLiteral("tty.TXT"));
    t.rig.prompts.expectFileDialog(tty);
    t.window.OpenCapture(t.screen(), 3);
    t.rig.port.feed("\x1b[1mbold\r\n");
    t.window.CloseCapture(t.screen());
    QCOMPARE(readFile(tty), QByteArray("[1mbold\r\n"));
    QVERIFY(t.rig.prompts.verify());
}

void TerminalTest::unloadClosesCaptureBeforeThePort()
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
    QCOMPARE(t.screen().CaptureFilename(), QString());
    QCOMPARE(readFile(path), QByteArray("last line\r\nCMD:"));

    // Without a capture the unload is silent.
    LoadedTerminal quiet;
    quiet.window.Unload();
    QCOMPARE(quiet.rig.prompts.beeps(), 0);
    QVERIFY(quiet.rig.prompts.verify());
}

void TerminalTest::introductionUntilHidden()
{
    LoadedTerminal t;
    QVERIFY(!t.window.Settings.hideIntro);
    int shown = 0;
    whenModal([&](QWidget *dialog) {
        ++shown;
        QCOMPARE(dialog->objectName(), QStringLiteral("TermIntro"));
        QCOMPARE(dialog->windowTitle(), QStringLiteral("Welcome To Varnel Utility"));
        const auto *hide = dialog->findChild<QCheckBox *>(QStringLiteral("chkHide"));
        QCOMPARE(hide->text(), QStringLiteral("Don't show this dialog in the future."));
        QVERIFY(!hide->isChecked());
        QStringList texts;
        for (const QLabel *label : dialog->findChildren<QLabel *>())
            texts << label->text();
        QVERIFY(texts.contains(
            QStringLiteral("To modify the operating parameters of the Varnel such as Frequency "
                           "and Squlech, select Varnel Setup on the menu.")));
        dialog->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
    });
    t.window.ShowTermIntro();
    QCOMPARE(shown, 1);
    QVERIFY(!t.window.Settings.hideIntro);

    whenModal([&](QWidget *dialog) {
        ++shown;
        dialog->findChild<QCheckBox *>(QStringLiteral("chkHide"))->setChecked(true);
        dialog->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
    });
    t.window.ShowTermIntro();
    QCOMPARE(shown, 2);
    QVERIFY(t.window.Settings.hideIntro);
    t.window.ShowTermIntro(); // hidden now: no dialog comes
    QCOMPARE(shown, 2);
    t.window.Unload();
    QCOMPARE(t.rig.ini.getString(QStringLiteral("Application"), QStringLiteral("Hide Intro"), {}),
             QStringLiteral("True"));
}

void TerminalTest::initializeIrDongle()
{
    LoadedTerminal t;
    t.rig.prompts.expectMsgBox(QStringLiteral("The Infra-Red Dongle is not responding"));
    t.window.mnudongle->trigger();
    QVERIFY(t.rig.prompts.verify());
    QCOMPARE(t.window.windowTitle(), QStringLiteral("COM2:9600,N,8,1"));
    QCOMPARE(t.rig.port.AutoProcess(), 3);
    QVERIFY(!t.writes().contains("\x03"));

    t.rig.port.clearEvents();
    t.rig.modem.answer(QByteArray(1, char(0xC0)), QByteArray(1, char(0xC2)));
    t.window.mnudongle->trigger();
    QVERIFY(t.rig.session.IrDongleActive);
    QCOMPARE(t.window.windowTitle(), QStringLiteral("COM2: Using IR Dongle"));
    QCOMPARE(t.writes().last(), QByteArray("\x03"));
    QCOMPARE(t.rig.port.AutoProcess(), 3);
}

void TerminalTest::adaptorStartsWhenLoaded()
{
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

void TerminalTest::setFrequencyEntersCommandModeFirst()
{
    LoadedTerminal t;
    int autoProcessAtScreen = -1;
    t.window.openChooseFreqType = [&] { autoProcessAtScreen = t.rig.port.AutoProcess(); };
    t.window.hooksChanged();
    QVERIFY(t.window.mnusetfreq->isEnabled());
    t.rig.modem.answer("\x03", "\r\nCMD:");
    t.window.mnusetfreq->trigger();
    QCOMPARE(t.writes().first(), QByteArray("\x03"));
    QCOMPARE(autoProcessAtScreen, 0);
    QVERIFY(!t.rig.prompts.busy());
}

void TerminalTest::setFrequencyWithSilentModem()
{
    LoadedTerminal t;
    bool opened = false;
    t.window.openChooseFreqType = [&] { opened = true; };
    t.window.hooksChanged();
    t.rig.prompts.expectMsgBox(
        QStringLiteral("The Varnel is not detected on the selected comm port.  Would you "
                       "like to initialize the IR Dongel?"),
        MsgAnswer::No);
    t.rig.prompts.expectMsgBox(
        QStringLiteral("Not communicating.  Make sure last switch on switch block (#8 or #2) "
                       "is down.  Then reset."),
        MsgAnswer::Abort);
    t.window.mnusetfreq->trigger();
    QVERIFY(t.rig.prompts.verify());
    QVERIFY(!opened);
    QCOMPARE(t.rig.port.AutoProcess(), 3);
    QVERIFY(!t.rig.prompts.busy());
}

void TerminalTest::diagnosticsEntry()
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
}

void TerminalTest::doubleClickShowsModelOptions()
{
    LoadedTerminal t;
    TerminalScreen &screen = t.screen();
    QTest::mouseDClick(screen.viewport(), Qt::LeftButton);
    int shown = 0;
    t.window.showModelOptions = [&] {
        ++shown;
        QVERIFY(t.rig.prompts.busy());
        t.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
    };
    QTest::mouseDClick(screen.viewport(), Qt::LeftButton);
    QCOMPARE(shown, 1);
    QCOMPARE(t.rig.port.AutoProcess(), 3);
    QVERIFY(!t.rig.prompts.busy());
}

void TerminalTest::aboutBox()
{
    LoadedTerminal t;
    bool shown = false;
    whenModal([&](QWidget *dialog) {
        shown = dialog->objectName() == QStringLiteral("frmAbout");
        dialog->close();
    });
    t.window.mnuhp->trigger();
    QVERIFY(shown);
}

void TerminalTest::titleIsThePortReadOut()
{
    TerminalRig rig;
    Terminal window(rig.session, rig.ini);
    rig.port.setSettings(QStringLiteral("19200,n,8,1"));
    window.Load();
    QCOMPARE(window.windowTitle(), QStringLiteral("COM2:9600,N,8,1"));
    rig.port.setPortOpen(false);
    rig.port.setCommPort(7);
    rig.port.setSettings(QStringLiteral("115200,e,7,2"));
    window.setPortTitle();
    QCOMPARE(window.windowTitle(), QStringLiteral("COM7:115200,E,7,2"));
}

QTEST_MAIN(TerminalTest)
#include "TerminalTest.moc"
