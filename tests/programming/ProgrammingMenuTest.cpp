#include "ProgrammingMenu.h"

#include "AppError.h"
#include "CommandListBox.h"
#include "MemoryCommControl.h"
#include "ModemSession.h"
#include "ScriptedPrompts.h"
#include "TimeSource.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {
const QString kSavePrompt = u"Do You Wish to Save The Current Command List?"_s;
const QString kClosePrompt = u"Do You Wish to Save The Command List?"_s;
const QString kNothingToSave = u"Error:  The file does not contain anything to save."_s;

QByteArray readAll(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "<no file>";
    return file.readAll();
}

void writeAll(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

// Every entry of a menu bar, depth first, as "parent/name=caption", with " (off)" when disabled.
void walk(const QList<QAction *> &actions, const QString &parent, QStringList &out)
{
    for (QAction *a : actions) {
        const QString caption = a->isSeparator() ? u"-"_s : a->text();
        out << parent + u'/' + a->objectName() + u'=' + caption + (a->isEnabled() ? QString() : u" (off)"_s);
        if (a->menu())
            walk(a->menu()->actions(), a->objectName(), out);
    }
}

struct Rig
{
    VirtualTime time;
    MemoryCommControl port;
    ScriptedPrompts prompts{&time};
    ModemSession session{port, time, prompts};
    std::unique_ptr<ProgrammingMenu> menu;

    Rig()
    {
        port.setClock(&time);
        port.setPortOpen(true);
        menu = std::make_unique<ProgrammingMenu>(session);
    }

    CommandListBox &list() const { return menu->cmboedit(); }
    QAction *entry(const char *name) const { return menu->findChild<QAction *>(QLatin1String(name)); }
    QPushButton *button(const char *name) const
    {
        return menu->findChild<QPushButton *>(QLatin1String(name));
    }
    void fill(const QStringList &lines) const
    {
        for (const QString &line : lines)
            menu->AddCommand(line);
    }
    // Runs a button or a menu entry by its name.
    void run(const QString &name) const
    {
        if (QPushButton *b = menu->findChild<QPushButton *>(name))
            b->click();
        else if (QAction *a = menu->findChild<QAction *>(name))
            a->trigger();
        else
            QFAIL(qPrintable(u"no control "_s + name));
    }
};
} // namespace

class ProgrammingMenuTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void showsItsTextsAndButtons();
    void menuTreeIsComplete();
    void openingTakesThePortFromTheTerminal();

    void selectingALineShowsItInTheField();
    void addCommandAppendsTheFieldAndEmptiesIt();
    void addCommandWithAnEmptyFieldAddsNothing();
    void deleteRemovesTheSelectedLine();
    void deleteWithNothingSelectedDoesNothing();
    void AddCommandAppendsWhileTheScreenIsHidden();

    void savePrompt_data();
    void savePrompt();
    void savePromptSkipsAnEmptyList_data();
    void savePromptSkipsAnEmptyList();
    void customShowsItsBoxOnly();

    void openReplacesTheListByTheFile();
    void openPresetsABlankNameAndItsFilter();
    void openWithCancelLeavesAnEmptyList_data();
    void openWithCancelLeavesAnEmptyList();
    void openOfTheBlankNameReadsNothing();
    void openErrorsAskAgain_data();
    void openErrorsAskAgain();
    void openOfAFolderReadsNothingAndSaysNothing();

    void saveOfAnEmptyListGivesTheErrorBox();
    void saveWritesEveryLineAndOneMoreLineEnd();
    void saveMovesTheSelectionToTheFirstLine();
    void saveWithCancelWritesNothing();
    void saveFailureShowsTheStandardBoxAndGoesOn();

    void closeWithAnEmptyListAsksNothing_data();
    void closeWithAnEmptyListAsksNothing();
    void closeOffersToSave_data();
    void closeOffersToSave();

    void errorMessageEntriesDoNothing();
    void aboutAsksTheShell();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
};

void ProgrammingMenuTest::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void ProgrammingMenuTest::showsItsTextsAndButtons()
{
    Rig rig;
    ProgrammingMenu &m = *rig.menu;
    QCOMPARE(m.windowTitle(), u"Varnel Programming"_s);
    QCOMPARE(m.findChild<QLabel *>(u"lblIntro"_s)->text(), u"Welcome to The Varnel Command Editor"_s);
    QCOMPARE(m.findChild<QLabel *>(u"Label1"_s)->text(),
             u"This section will allow you to develop a list of software commands for your Varnel Wireless "
             "Modems.\n\nAll Varnel software commands are listed in the above menus and can be added to your "
             "command list for download to your Varnel or saved as a file for future use.\n\nFor PLC "
             "Programming, click on Varnel Programming in above menu and select PLC."_s);
    QCOMPARE(m.findChild<QGroupBox *>(u"Frame1"_s)->title(), u"Command List"_s);
    QCOMPARE(m.findChild<CommandListBox *>(u"cmboedit"_s), &rig.list());
    QCOMPARE(rig.list().count(), 0);
    QCOMPARE(rig.list().text(), QString());

    const struct
    {
        const char *name;
        QString caption;
        QString toolTip;
    } buttons[] = {
        {"cmdokVNL", u"Add Command"_s, u"Adds Command to Command List"_s},
        {"cmddelete", u"Delete Command"_s, u"Deletes Highlighted Command In the List"_s},
        {"cmdClear", u"Clear List"_s, u"Deletes Highlighted Command In the List"_s},
        {"cmdreturn", u"Exit to Main Menu"_s, QString()},
    };
    for (const auto &b : buttons) {
        QPushButton *control = rig.button(b.name);
        QVERIFY2(control, b.name);
        QCOMPARE(control->text(), b.caption);
        QCOMPARE(control->toolTip(), b.toolTip);
    }
}

void ProgrammingMenuTest::menuTreeIsComplete()
{
    Rig rig;
    QStringList tree;
    walk(rig.menu->menuBar()->actions(), QString(), tree);
    const QStringList expected{
        u"/mnufile=&File"_s,
        u"mnufile/mnuopen=Open Program File"_s,
        u"mnufile/mnusave2=Save Program File"_s,
        u"mnufile/mnuread=&Read Program From Varnel"_s,
        u"mnuread/mnureadconn=Read from Connected Varnel"_s,
        u"mnuread/mnureadremote=Read from Remote Varnel (off)"_s,
        u"mnufile/mnusave=&Save Program To Varnel "_s,
        u"mnusave/mnuconnected=To Connected Varnel "_s,
        u"mnusave/mnuremote=To Remote Varnel (off)"_s,
        u"mnufile/mnuclear=Clear Command List"_s,
        u"mnufile/mnudash11=-"_s,
        u"mnufile/mnuMainmenu8=Return to Main Menu"_s,
        u"/mnuprog=&Varnel Programming"_s,
        u"mnuprog/mnutrans=Transparent (off)"_s,
        u"mnuprog/mnuplc=PLC (off)"_s,
        u"mnuprog/mnurtn=RTN"_s,
        u"mnurtn/mnuradioip=Radio/IP (off)"_s,
        u"mnuprog/mnucustom=Custom"_s,
        u"/mnusoft=&Software Commands"_s,
        u"mnusoft/mnumodes=Modes of Operation"_s,
        u"mnumodes/mnucommmode=Command Mode (off)"_s,
        u"mnumodes/mnuconv=Converse Mode (off)"_s,
        u"mnumodes/mnuremoteprog=Remote Programming (off)"_s,
        u"mnumodes/mnudigi=Digi-Repeating (off)"_s,
        u"mnusoft/mnusimple=Simple Programming"_s,
        u"mnusimple/mnuSetAddress=Varnel Address (off)"_s,
        u"mnusimple/mnusetconn=Set Connect Address  (off)"_s,
        u"mnusimple/mnuconnect=Connect (off)"_s,
        u"mnusimple/mnudisc=Disconnect (off)"_s,
        u"mnusimple/mnuFA=Restore Factory Settings (off)"_s,
        u"mnusimple/mnuxmiter=Radio Transmitter ON/OFF (off)"_s,
        u"mnusimple/mnureset=Reset Modem (off)"_s,
        u"mnusimple/mnusa=Save (off)"_s,
        u"mnusoft/mnuadv=Advanced Programming"_s,
        u"mnuadv/mnubc=Broadcast (off)"_s,
        u"mnuadv/mnuautotadv=AutoTransmit (off)"_s,
        u"mnuadv/mnuMIadv=Multi-ID (off)"_s,
        u"mnuadv/mnusecadv=Security (off)"_s,
        u"mnuadv/mnuautolfadv=Auto Line Feed (off)"_s,
        u"mnuadv/mnuenDTRadv=Enable DTR (off)"_s,
        u"mnuadv/mnuechoadv=Echo (off)"_s,
        u"mnuadv/mnumcadv=Mode Control (off)"_s,
        u"mnuadv/mnuhsprotadv=Hand Shaking Protocol"_s,
        u"mnuhsprotadv/mnuxhflow=Hardware Flow Control (off)"_s,
        u"mnuhsprotadv/mnuxsflow=Software Flow Control (off)"_s,
        u"mnuadv/mnucommmodeadv=Key to Command Mode (off)"_s,
        u"mnuadv/mnuconvadv=Converse Mode Editing (off)"_s,
        u"mnuadv/mnuadvmess=Message Format (off)"_s,
        u"mnuadv/mnuadvnetID=Network ID (off)"_s,
        u"mnuadv/mnusendpackadv=Send Packet Key (off)"_s,
        u"mnuadv/mnuadvtimer=Termination Timer (off)"_s,
        u"mnuadv/mnuerrorformadv=Error Messages"_s,
        u"mnuerrorformadv/mnuSysErrMsgs=System Error Messages"_s,
        u"mnuerrorformadv/mnuCommErrMsgs=Communication Error Messages"_s,
        u"mnuadv/mnucbdadv=Carrier Busy Delay (off)"_s,
        u"/mnuVNLinfo=Varnel Information"_s,
        u"mnuVNLinfo/mnucopyr=Copyright (off)"_s,
        u"mnuVNLinfo/mnuModelNumber2=Model Number (off)"_s,
        u"mnuVNLinfo/mnuModemopt=Modem Options (off)"_s,
        u"mnuVNLinfo/mnuserial=Modem Serial Number (off)"_s,
        u"mnuVNLinfo/mnusoftvers=Modem Software Version (off)"_s,
        u"mnuVNLinfo/mnuHours=Hour Meter (off)"_s,
        u"mnuVNLinfo/mnupacketl=Packet Length (off)"_s,
        u"mnuVNLinfo/mnuretries=Number of Retries (off)"_s,
        u"mnuVNLinfo/mnuxmitstats=Transmit status (off)"_s,
        u"/mnuhelp=Help"_s,
        u"mnuhelp/mnuAbout=About"_s,
    };
    for (qsizetype i = 0; i < std::min(tree.size(), expected.size()); ++i)
        QCOMPARE(tree[i], expected[i]);
    QCOMPARE(tree.size(), expected.size());
}

void ProgrammingMenuTest::openingTakesThePortFromTheTerminal()
{
    Rig rig;
    QCOMPARE(rig.port.AutoProcess(), CommControl::kAutoProcessProgram);
}

void ProgrammingMenuTest::selectingALineShowsItInTheField()
{
    Rig rig;
    rig.fill({u"ADD 5"_s, u"NET 12"_s});
    QCOMPARE(rig.list().listIndex(), -1);
    // A click on the line, as the user makes it.
    QListWidget *view = rig.list().listWidget();
    view->show();
    const QRect second = view->visualItemRect(view->item(1));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, second.center());
    QCOMPARE(rig.list().listIndex(), 1);
    QCOMPARE(rig.list().editField()->text(), u"NET 12"_s);
    rig.list().setListIndex(0);
    QCOMPARE(rig.list().text(), u"ADD 5"_s);
}

void ProgrammingMenuTest::addCommandAppendsTheFieldAndEmptiesIt()
{
    Rig rig;
    QLineEdit *field = rig.list().editField();
    for (const QString &typed : {u"add 5"_s, u"   "_s, u"add 5"_s}) {
        field->setText(typed);
        rig.button("cmdokVNL")->click();
        QCOMPARE(field->text(), QString());
    }
    // Neither case nor blanks nor a repeated line are touched.
    QCOMPARE(rig.list().lines(), (QStringList{u"add 5"_s, u"   "_s, u"add 5"_s}));
}

void ProgrammingMenuTest::addCommandWithAnEmptyFieldAddsNothing()
{
    Rig rig;
    rig.fill({u"ADD 5"_s});
    rig.button("cmdokVNL")->click();
    QCOMPARE(rig.list().lines(), QStringList{u"ADD 5"_s});
    QCOMPARE(rig.list().text(), QString());
}

void ProgrammingMenuTest::deleteRemovesTheSelectedLine()
{
    Rig rig;
    rig.fill({u"ADD 5"_s, u"NET 12"_s, u"SETC 7"_s});
    rig.list().setListIndex(1);
    rig.button("cmddelete")->click();
    QCOMPARE(rig.list().lines(), (QStringList{u"ADD 5"_s, u"SETC 7"_s}));
    QCOMPARE(rig.list().listIndex(), -1);
    // A second press has nothing selected to remove.
    rig.button("cmddelete")->click();
    QCOMPARE(rig.list().lines(), (QStringList{u"ADD 5"_s, u"SETC 7"_s}));
}

void ProgrammingMenuTest::deleteWithNothingSelectedDoesNothing()
{
    Rig rig;
    rig.fill({u"ADD 5"_s, u"NET 12"_s});
    rig.list().setText(u"NET 12"_s);
    rig.button("cmddelete")->click();
    QCOMPARE(rig.list().lines(), (QStringList{u"ADD 5"_s, u"NET 12"_s}));
    QVERIFY(rig.prompts.shown().isEmpty());
}

void ProgrammingMenuTest::AddCommandAppendsWhileTheScreenIsHidden()
{
    Rig rig;
    QVERIFY(!rig.menu->isVisible());
    rig.menu->AddCommand(u"ROUTE 40,41,12"_s);
    rig.menu->AddCommand(u""_s);
    rig.menu->AddCommand(u"echo off "_s);
    QCOMPARE(rig.list().lines(), (QStringList{u"ROUTE 40,41,12"_s, u""_s, u"echo off "_s}));
}

void ProgrammingMenuTest::savePrompt_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<bool>("yes");
    QTest::addColumn<bool>("chooseFile");
    for (const QString &control : {u"cmdClear"_s, u"mnuclear"_s}) {
        QTest::addRow("%s, no", qPrintable(control)) << control << false << false;
        QTest::addRow("%s, yes, saved", qPrintable(control)) << control << true << true;
        QTest::addRow("%s, yes, cancelled", qPrintable(control)) << control << true << false;
    }
}

void ProgrammingMenuTest::savePrompt()
{
    QFETCH(QString, control);
    QFETCH(bool, yes);
    QFETCH(bool, chooseFile);
    Rig rig;
    rig.fill({u"ADD 5"_s, u"NET 12"_s});
    const QString path = m_dir->filePath(u"prompt.nvc"_s);
    rig.prompts.expectMsgBox(kSavePrompt, yes ? MsgAnswer::Yes : MsgAnswer::No)
        .withIcon(MsgIcon::Question)
        .withButtons(MsgButtons::YesNo)
        .withTitle(QString());
    if (yes)
        rig.prompts.expectFileDialog(chooseFile ? std::optional<QString>(path) : std::nullopt);
    rig.run(control);
    QVERIFY(rig.prompts.verify());
    // Whatever the answer, the list is emptied.
    QCOMPARE(rig.list().count(), 0);
    QCOMPARE(readAll(path), chooseFile ? QByteArray("ADD 5\r\nNET 12\r\n\r\n") : QByteArray("<no file>"));
}

void ProgrammingMenuTest::savePromptSkipsAnEmptyList_data()
{
    QTest::addColumn<QString>("control");
    QTest::newRow("cmdClear") << u"cmdClear"_s;
    QTest::newRow("mnuclear") << u"mnuclear"_s;
}

void ProgrammingMenuTest::savePromptSkipsAnEmptyList()
{
    QFETCH(QString, control);
    Rig rig;
    rig.run(control);
    QVERIFY(rig.prompts.shown().isEmpty());
    QCOMPARE(rig.list().count(), 0);
}

void ProgrammingMenuTest::customShowsItsBoxOnly()
{
    Rig rig;
    rig.fill({u"ADD 5"_s});
    rig.prompts
        .expectMsgBox(
            u"To create a custom program list for your Varnel, locate required commands in software "
            "commands and add to Command List on the right side of the screen."_s)
        .withTitle(u"Custom Listing"_s)
        .withIcon(MsgIcon::None)
        .withButtons(MsgButtons::OkOnly);
    rig.entry("mnucustom")->trigger();
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.list().lines(), QStringList{u"ADD 5"_s});
}

void ProgrammingMenuTest::openReplacesTheListByTheFile()
{
    Rig rig;
    const QString path = m_dir->filePath(u"open.nvc"_s);
    writeAll(path, "\r\nADD 5\r\n\r\n  \r\nroute 1,2\r\n\r\n");
    rig.fill({u"OLD 1"_s, u"OLD 2"_s});
    rig.prompts.expectMsgBox(kSavePrompt, MsgAnswer::No);
    rig.prompts.expectFileDialog(path);
    rig.entry("mnuopen")->trigger();
    QVERIFY(rig.prompts.verify());
    // The file's lines stand alone, blank ones dropped and the line of blanks kept.
    QCOMPARE(rig.list().lines(), (QStringList{u"ADD 5"_s, u"  "_s, u"route 1,2"_s}));
    QVERIFY(!rig.prompts.busy());
}

void ProgrammingMenuTest::openPresetsABlankNameAndItsFilter()
{
    Rig rig;
    FileDialogRequest seen;
    rig.prompts.expectFileDialog(std::nullopt).then([&] {
        seen = rig.prompts.lastFileDialog();
        // The pointer shows busy while the dialog is up.
        QVERIFY(rig.prompts.busy());
    });
    rig.entry("mnuopen")->trigger();
    QVERIFY(rig.prompts.verify());
    QVERIFY(seen.kind == FileDialogRequest::Kind::Open);
    QCOMPARE(seen.fileName, u" "_s);
    QCOMPARE(seen.filter, u"Varnel Commands (*.nvc);;Text (*.txt);;All (*.*)"_s);
    QVERIFY(!rig.prompts.busy());
}

void ProgrammingMenuTest::openWithCancelLeavesAnEmptyList_data()
{
    QTest::addColumn<bool>("yes");
    QTest::newRow("no") << false;
    QTest::newRow("yes, then cancel in both dialogs") << true;
}

void ProgrammingMenuTest::openWithCancelLeavesAnEmptyList()
{
    QFETCH(bool, yes);
    Rig rig;
    rig.fill({u"ADD 5"_s});
    rig.prompts.expectMsgBox(kSavePrompt, yes ? MsgAnswer::Yes : MsgAnswer::No);
    if (yes)
        rig.prompts.expectFileDialog(std::nullopt);
    rig.prompts.expectFileDialog(std::nullopt);
    rig.entry("mnuopen")->trigger();
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.list().count(), 0);
    QVERIFY(!rig.prompts.busy());
}

void ProgrammingMenuTest::openOfTheBlankNameReadsNothing()
{
    Rig rig;
    writeAll(m_dir->filePath(u" "_s), "ADD 5\r\n");
    rig.prompts.expectFileDialog(u" "_s);
    rig.entry("mnuopen")->trigger();
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.list().count(), 0);
}

void ProgrammingMenuTest::openErrorsAskAgain_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("message");
    QTest::newRow("file not found") << u"missing.nvc"_s
                                    << u"File not found.  Please enter a valid file name."_s;
    QTest::newRow("bad file name") << QString(300, u'x')
                                   << u"Bad file name.  Please enter a valid file name."_s;
    QTest::newRow("path not found") << u"nowhere/p.nvc"_s << u"Path not found. Please enter a valid path."_s;
}

void ProgrammingMenuTest::openErrorsAskAgain()
{
    QFETCH(QString, name);
    QFETCH(QString, message);
    Rig rig;
    const QString good = m_dir->filePath(u"good.nvc"_s);
    writeAll(good, "NET 12\r\n\r\n");
    rig.prompts.expectFileDialog(m_dir->filePath(name));
    rig.prompts.expectMsgBox(message)
        .withIcon(MsgIcon::None)
        .withTitle(QString())
        .withButtons(MsgButtons::OkOnly);
    FileDialogRequest again;
    rig.prompts.expectFileDialog(good).then([&] { again = rig.prompts.lastFileDialog(); });
    rig.entry("mnuopen")->trigger();
    QVERIFY(rig.prompts.verify());
    QCOMPARE(again.fileName, u" "_s);
    QCOMPARE(rig.list().lines(), QStringList{u"NET 12"_s});
}

void ProgrammingMenuTest::openOfAFolderReadsNothingAndSaysNothing()
{
    Rig rig;
    QVERIFY(QDir(m_dir->path()).mkpath(u"folder.nvc"_s));
    rig.prompts.expectFileDialog(m_dir->filePath(u"folder.nvc"_s));
    rig.entry("mnuopen")->trigger();
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.list().count(), 0);
    QVERIFY(!rig.prompts.busy());
}

void ProgrammingMenuTest::saveOfAnEmptyListGivesTheErrorBox()
{
    Rig rig;
    rig.prompts.expectMsgBox(kNothingToSave)
        .withIcon(MsgIcon::None)
        .withButtons(MsgButtons::OkOnly)
        .withTitle(QString());
    rig.entry("mnusave2")->trigger();
    QVERIFY(rig.prompts.verify());
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files), QStringList());
}

void ProgrammingMenuTest::saveWritesEveryLineAndOneMoreLineEnd()
{
    Rig rig;
    rig.fill({u"ADD 5"_s, u"add 6"_s, u"  "_s, u"ROUTE 40,41,12"_s});
    const QString path = m_dir->filePath(u"save.nvc"_s);
    writeAll(path, "OLD CONTENT THAT IS LONGER THAN THE NEW\r\n");
    FileDialogRequest seen;
    rig.prompts.expectFileDialog(path).then([&] { seen = rig.prompts.lastFileDialog(); });
    rig.entry("mnusave2")->trigger();
    QVERIFY(rig.prompts.verify());
    QVERIFY(seen.kind == FileDialogRequest::Kind::Save);
    QVERIFY(seen.overwritePrompt);
    QCOMPARE(seen.filter, u"VNL Files (*.nvc);;All files (*.*)"_s);
    QCOMPARE(readAll(path), QByteArray("ADD 5\r\nadd 6\r\n  \r\nROUTE 40,41,12\r\n\r\n"));
    // Saving keeps the list.
    QCOMPARE(rig.list().count(), 4);

    // Read back, the same lines stand in the list.
    Rig reader;
    reader.prompts.expectFileDialog(path);
    reader.entry("mnuopen")->trigger();
    QVERIFY(reader.prompts.verify());
    QCOMPARE(reader.list().lines(), rig.list().lines());
}

void ProgrammingMenuTest::saveMovesTheSelectionToTheFirstLine()
{
    Rig rig;
    rig.fill({u"ADD 5"_s, u"NET 12"_s, u"SETC 7"_s});
    rig.list().setListIndex(2);
    rig.prompts.expectFileDialog(std::nullopt);
    rig.entry("mnusave2")->trigger();
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.list().listIndex(), 0);
    QCOMPARE(rig.list().text(), u"ADD 5"_s);

    // With nothing selected the selection stays away.
    Rig other;
    other.fill({u"ADD 5"_s});
    other.prompts.expectFileDialog(std::nullopt);
    other.entry("mnusave2")->trigger();
    QCOMPARE(other.list().listIndex(), -1);
}

void ProgrammingMenuTest::saveWithCancelWritesNothing()
{
    Rig rig;
    rig.fill({u"ADD 5"_s});
    rig.prompts.expectFileDialog(std::nullopt);
    rig.entry("mnusave2")->trigger();
    QVERIFY(rig.prompts.verify());
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files), QStringList());
    QCOMPARE(rig.list().count(), 1);
}

void ProgrammingMenuTest::saveFailureShowsTheStandardBoxAndGoesOn()
{
    Rig rig;
    rig.fill({u"ADD 5"_s});
    rig.prompts.expectMsgBox(kSavePrompt, MsgAnswer::Yes);
    rig.prompts.expectFileDialog(m_dir->filePath(u"nowhere/p.nvc"_s));
    rig.prompts.expectMsgBox(appErrorText({76, u"Path not found"_s}))
        .withIcon(MsgIcon::Critical)
        .withButtons(MsgButtons::OkOnly);
    rig.button("cmdClear")->click();
    QVERIFY(rig.prompts.verify());
    // The failed save does not stop the clearing that follows it.
    QCOMPARE(rig.list().count(), 0);
}

void ProgrammingMenuTest::closeWithAnEmptyListAsksNothing_data()
{
    QTest::addColumn<QString>("control");
    QTest::newRow("cmdreturn") << u"cmdreturn"_s;
    QTest::newRow("mnuMainmenu8") << u"mnuMainmenu8"_s;
    QTest::newRow("window closed") << QString();
}

void ProgrammingMenuTest::closeWithAnEmptyListAsksNothing()
{
    QFETCH(QString, control);
    Rig rig;
    rig.menu->show();
    QSignalSpy returned(rig.menu.get(), &ProgrammingMenu::returnedToMainMenu);
    if (control.isEmpty())
        rig.menu->close();
    else
        rig.run(control);
    QVERIFY(rig.prompts.shown().isEmpty());
    QCOMPARE(returned.count(), 1);
    QVERIFY(!rig.menu->isVisible());
    QCOMPARE(rig.port.AutoProcess(), CommControl::kAutoProcessTerminal);
}

void ProgrammingMenuTest::closeOffersToSave_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<bool>("yes");
    for (const QString &control : {u"cmdreturn"_s, u"mnuMainmenu8"_s}) {
        QTest::addRow("%s, yes", qPrintable(control)) << control << true;
        QTest::addRow("%s, no", qPrintable(control)) << control << false;
    }
}

void ProgrammingMenuTest::closeOffersToSave()
{
    QFETCH(QString, control);
    QFETCH(bool, yes);
    Rig rig;
    rig.menu->show();
    rig.fill({u"ADD 5"_s});
    const QString path = m_dir->filePath(u"close.nvc"_s);
    QSignalSpy returned(rig.menu.get(), &ProgrammingMenu::returnedToMainMenu);
    rig.prompts.expectMsgBox(kClosePrompt, yes ? MsgAnswer::Yes : MsgAnswer::No)
        .withIcon(MsgIcon::Question)
        .withButtons(MsgButtons::YesNo);
    if (yes)
        rig.prompts.expectFileDialog(path);
    rig.run(control);
    QVERIFY(rig.prompts.verify());
    QCOMPARE(readAll(path), yes ? QByteArray("ADD 5\r\n\r\n") : QByteArray("<no file>"));
    // The list does not survive the screen.
    QCOMPARE(rig.list().count(), 0);
    QCOMPARE(returned.count(), 1);
    QCOMPARE(rig.port.AutoProcess(), CommControl::kAutoProcessTerminal);
}

void ProgrammingMenuTest::errorMessageEntriesDoNothing()
{
    Rig rig;
    rig.fill({u"ADD 5"_s});
    for (const char *name : {"mnuSysErrMsgs", "mnuCommErrMsgs"}) {
        QAction *entry = rig.entry(name);
        QVERIFY(entry->isEnabled());
        entry->trigger();
    }
    QVERIFY(rig.prompts.shown().isEmpty());
    QCOMPARE(rig.list().lines(), QStringList{u"ADD 5"_s});
    // No window of any kind has opened.
    for (QWidget *w : QApplication::topLevelWidgets())
        QVERIFY2(!w->isVisible(), qPrintable(w->objectName()));
    QCOMPARE(rig.port.written(), QByteArray());
}

void ProgrammingMenuTest::aboutAsksTheShell()
{
    Rig rig;
    QSignalSpy about(rig.menu.get(), &ProgrammingMenu::aboutRequested);
    rig.entry("mnuAbout")->trigger();
    QCOMPARE(about.count(), 1);
}

QTEST_MAIN(ProgrammingMenuTest)
#include "ProgrammingMenuTest.moc"
