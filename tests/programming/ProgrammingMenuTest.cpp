#include "ProgrammingMenu.h"

#include "CommandListBox.h"
#include "Golden.h"
#include "SessionRig.h"

#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {
// The boxes of the screen, by name.
const char *const kBoxes[][2] = {
    {"save?", "Do You Wish to Save The Current Command List?"},
    {"close?", "Do You Wish to Save The Command List?"},
    {"nothing", "Error:  The file does not contain anything to save."},
    {"custom",
     "To create a custom program list for your Varnel, locate required commands in software commands and "
     "add to Command List on the right side of the screen."},
    {"not found", "File not found.  Please enter a valid file name."},
    {"bad name", "Bad file name.  Please enter a valid file name."},
    {"no path", "Path not found. Please enter a valid path."},
    {"standard 76",
     "The following error has occured in the application:\r76 = Path not found\rPress OK to attempt to "
     "fix problem.\rIf problem remains, please exit program and report error to VNL."},
};

// What the user does on the screen ("type:text", "select:row", "click:row", "close", or a control's
// name), the boxes and dialogs in turn ("box=Answer", "file:name", "file:" for cancel) with the list
// before and after, the file p.nvc after, and "selected line, edit field, port owner, returns".
const char *const kNone = "<no file>";

const char *const kSteps[][7] = {
    {"add typed commands as they stand", "",
     "type:add 5 | cmdokVNL | type:   | cmdokVNL | type:add 5 | cmdokVNL", "", "add 5 |    | add 5", kNone,
     "-1, '', program, 0"},
    {"add with an empty field adds nothing", "ADD 5", "cmdokVNL", "", "ADD 5", kNone, "-1, '', program, 0"},
    {"a click on a line shows it in the field", "ADD 5 | NET 12", "click:1", "", "ADD 5 | NET 12", kNone,
     "1, 'NET 12', program, 0"},
    {"delete the selected line, then nothing", "ADD 5 | NET 12 | SETC 7", "select:1 | cmddelete | cmddelete",
     "", "ADD 5 | SETC 7", kNone, "-1, 'NET 12', program, 0"},
    {"delete with nothing selected", "ADD 5 | NET 12", "type:NET 12 | cmddelete", "", "ADD 5 | NET 12", kNone,
     "-1, 'NET 12', program, 0"},
    {"clear, no", "ADD 5 | NET 12", "cmdClear", "save?=No", "", kNone, "-1, '', program, 0"},
    {"clear, yes, saved", "ADD 5 | NET 12", "cmdClear", "save?=Yes | file:p.nvc", "",
     "ADD 5\r\nNET 12\r\n\r\n", "-1, '', program, 0"},
    {"clear, yes, cancelled", "ADD 5 | NET 12", "mnuclear", "save?=Yes | file:", "", kNone,
     "-1, '', program, 0"},
    {"clear from the menu, no", "ADD 5", "mnuclear", "save?=No", "", kNone, "-1, '', program, 0"},
    {"clear an empty list asks nothing", "", "cmdClear | mnuclear", "", "", kNone, "-1, '', program, 0"},
    // The failed save does not stop the clearing that follows it.
    {"clear after a failed save", "ADD 5", "cmdClear", "save?=Yes | file:nowhere/p.nvc | standard 76", "",
     kNone, "-1, '', program, 0"},
    {"custom shows its box only", "ADD 5", "mnucustom", "custom", "ADD 5", kNone, "-1, '', program, 0"},
    // The file's lines stand alone, blank ones dropped and the line of blanks kept.
    {"open replaces the list", "OLD 1 | OLD 2", "mnuopen", "save?=No | file:in.nvc", "ADD 5 |    | route 1,2",
     kNone, "-1, '', program, 0"},
    {"open cancelled", "ADD 5", "mnuopen", "save?=No | file:", "", kNone, "-1, '', program, 0"},
    {"open cancelled twice", "ADD 5", "mnuopen", "save?=Yes | file: | file:", "", kNone,
     "-1, '', program, 0"},
    {"open of the blank name reads nothing", "", "mnuopen", "file: ", "", kNone, "-1, '', program, 0"},
    {"open asks again: file not found", "", "mnuopen", "file:missing.nvc | not found | file:good.nvc",
     "NET 12", kNone, "-1, '', program, 0"},
    {"open asks again: bad file name", "", "mnuopen", "file:<long> | bad name | file:good.nvc", "NET 12",
     kNone, "-1, '', program, 0"},
    {"open asks again: path not found", "", "mnuopen", "file:nowhere/p.nvc | no path | file:good.nvc",
     "NET 12", kNone, "-1, '', program, 0"},
    {"open of a folder says nothing", "", "mnuopen", "file:folder.nvc", "", kNone, "-1, '', program, 0"},
    {"save an empty list", "", "mnusave2", "nothing", "", kNone, "-1, '', program, 0"},
    {"save every line and a line end", "ADD 5 | add 6 |    | ROUTE 40,41,12", "mnusave2", "file:p.nvc",
     "ADD 5 | add 6 |    | ROUTE 40,41,12", "ADD 5\r\nadd 6\r\n  \r\nROUTE 40,41,12\r\n\r\n",
     "-1, '', program, 0"},
    {"save moves the selection to the first line", "ADD 5 | NET 12 | SETC 7", "select:2 | mnusave2",
     "file:", "ADD 5 | NET 12 | SETC 7", kNone, "0, 'ADD 5', program, 0"},
    {"close an empty list", "", "close", "", "", kNone, "-1, '', terminal, 1"},
    {"return with an empty list", "", "cmdreturn", "", "", kNone, "-1, '', terminal, 1"},
    {"return from the menu, yes", "ADD 5", "mnuMainmenu8", "close?=Yes | file:p.nvc", "", "ADD 5\r\n\r\n",
     "-1, '', terminal, 1"},
    {"return, no", "ADD 5", "cmdreturn", "close?=No", "", kNone, "-1, '', terminal, 1"},
    // The two error message entries are in the menu and open nothing.
    {"error message entries", "ADD 5", "mnuSysErrMsgs | mnuCommErrMsgs", "", "ADD 5", kNone,
     "-1, '', program, 0"},
};

} // namespace

class ProgrammingMenuTest : public QObject
{
    Q_OBJECT
private slots:
    void captionsAndMenus()
    {
        SessionRig rig(CommControl::kAutoProcessTerminal);
        ProgrammingMenu menu(rig.session);
        QVERIFY(matchesGolden(describeWindow(menu), QStringLiteral(VARNEL_GOLDEN "/ProgrammingMenu.txt")));
        // Opening the screen takes the port from the terminal; Help, About asks the shell.
        QCOMPARE(rig.port.AutoProcess(), CommControl::kAutoProcessProgram);
        QSignalSpy about(&menu, &ProgrammingMenu::aboutRequested);
        menu.findChild<QAction *>(QStringLiteral("mnuAbout"))->trigger();
        QCOMPARE(about.count(), 1);
    }

    void steps_data() { addRows(kSteps); }
    void steps()
    {
        const auto &[name, before, actions, prompts, after, file, state] = fetchRow(kSteps);
        QTemporaryDir dir;
        QVERIFY(
            writeBytes(dir.filePath(QStringLiteral("in.nvc")), "\r\nADD 5\r\n\r\n  \r\nroute 1,2\r\n\r\n"));
        QVERIFY(writeBytes(dir.filePath(QStringLiteral("good.nvc")), "NET 12\r\n\r\n") &&
                QDir(dir.path()).mkdir(QStringLiteral("folder.nvc")));
        SessionRig rig(CommControl::kAutoProcessTerminal);
        ProgrammingMenu menu(rig.session);
        menu.show();
        QSignalSpy returned(&menu, &ProgrammingMenu::returnedToMainMenu);
        CommandListBox &list = menu.cmboedit();
        for (const QString &line : items(before))
            menu.AddCommand(line);
        for (const QString &prompt : items(prompts)) {
            const QString key = prompt.section(u'=', 0, 0);
            const MsgAnswer answer = prompt.endsWith(u"=Yes")  ? MsgAnswer::Yes
                                     : prompt.endsWith(u"=No") ? MsgAnswer::No
                                                               : MsgAnswer::Ok;
            if (prompt.startsWith(u"file:")) {
                const QString chosen = prompt.mid(5) == u"<long>" ? QString(300, u'x') : prompt.mid(5);
                rig.prompts
                    .expectFileDialog(chosen.isEmpty()
                                          ? std::nullopt
                                          : std::optional(chosen == u" " ? chosen : dir.filePath(chosen)))
                    .then([&] {
                        // Open presets a name of one blank and shows busy; Save asks before it overwrites.
                        const FileDialogRequest &r = rig.prompts.lastFileDialog();
                        const bool open = r.kind == FileDialogRequest::Kind::Open;
                        QCOMPARE(
                            open ? u'\'' + r.fileName + QStringLiteral("' ") + r.filter +
                                       (rig.prompts.busy() ? QStringLiteral(", busy") : QString())
                                 : r.filter + (r.overwritePrompt ? QStringLiteral(", overwrite") : QString()),
                            open
                                ? QStringLiteral("' ' Varnel Commands (*.nvc);;Text (*.txt);;All (*.*), busy")
                                : QStringLiteral("VNL Files (*.nvc);;All files (*.*), overwrite"));
                    });
                continue;
            }
            const auto box = std::find_if(std::begin(kBoxes), std::end(kBoxes),
                                          [&](const auto &b) { return key == QLatin1String(b[0]); });
            QVERIFY(box != std::end(kBoxes));
            auto &expected = rig.prompts.expectMsgBox(QLatin1String((*box)[1]), answer)
                                 .withTitle(key == u"custom" ? QStringLiteral("Custom Listing") : QString());
            expected
                .withIcon(key.endsWith(u'?')      ? MsgIcon::Question
                          : key == u"standard 76" ? MsgIcon::Critical
                                                  : MsgIcon::None)
                .withButtons(key.endsWith(u'?') ? MsgButtons::YesNo : MsgButtons::OkOnly);
        }
        for (const QString &action : items(actions)) {
            const QString what = action.section(u':', 1);
            if (action.startsWith(u"type:")) {
                list.editField()->setText(what);
            } else if (action.startsWith(u"select:")) {
                list.setListIndex(what.toInt());
            } else if (action.startsWith(u"click:")) {
                QListView *view = list.listView();
                QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                                  view->visualRect(view->model()->index(what.toInt(), 0)).center());
            } else if (action == u"close") {
                menu.close();
            } else if (auto *button = menu.findChild<QPushButton *>(action)) {
                button->click();
            } else {
                menu.findChild<QAction *>(action)->trigger();
            }
        }
        QVERIFY(rig.prompts.verify());
        QCOMPARE(list.lines(), items(after));
        QCOMPARE(QString::fromLatin1(readBytes(dir.filePath(QStringLiteral("p.nvc")))), QLatin1String(file));
        QCOMPARE(QStringLiteral("%1, '%2', %3, %4")
                     .arg(list.listIndex())
                     .arg(list.text(),
                          rig.port.AutoProcess() ? QStringLiteral("terminal") : QStringLiteral("program"))
                     .arg(returned.count()),
                 QLatin1String(state));
        // Nothing went to the modem, no other window opened, and the pointer is back.
        QCOMPARE(rig.port.written(), QByteArray());
        for (QWidget *w : QApplication::topLevelWidgets())
            QVERIFY2(w == &menu || !w->isVisible(), qPrintable(w->objectName()));
        QVERIFY(!rig.prompts.busy());
    }
};

QTEST_MAIN(ProgrammingMenuTest)
#include "ProgrammingMenuTest.moc"
