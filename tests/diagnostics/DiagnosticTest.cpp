#include "Diagnostic.h"
#include "AppError.h"
#include "DiagnosticForms.h"
#include "Golden.h"
#include "ModemSession.h"
#include "PollingDiag.h"
#include "ScriptedPrompts.h"
#include "SimulatedModemLink.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {
// The connected modem with its meter, answering without echo, and the diagnostics opened on it.
struct Rig
{
    explicit Rig(bool hide = true)
    {
        s.modems[0].option = 4;
        s.modems[0].settings.insert(QStringLiteral("ECHO"), QStringLiteral("OFF"));
        link = std::make_unique<sim::SimulatedModemLink>(s);
        link->time().setOrigin(QDateTime(QDate(2026, 11, 23), QTime(8, 15)));
        session = std::make_unique<ModemSession>(link->port(), link->time(), prompts);
        diag = std::make_unique<Diagnostic>(*session);
        diag->hideDiag = [hide] { return hide; };
        diag->setHideDiag = [this](bool h) { hideSet = h ? 1 : 0; };
        diag->open();
    }
    sim::Scenario s = sim::Scenario::standard();
    std::unique_ptr<sim::SimulatedModemLink> link;
    ScriptedPrompts prompts{nullptr};
    std::unique_ptr<ModemSession> session;
    std::unique_ptr<Diagnostic> diag;
    int hideSet = -1;
};

// What the user does on the address dialog and the screen ("des:12", "rep1:7", "next", "done", "del",
// "select:1", "save", "open"), the boxes and dialogs in turn ("file:a.nva", "file:" for cancel, a
// box by its key), the rows after, the dialog's count and whether it is still open.
const char *const kBoxes[][2] = {
    {"no dest", "You Must Type In An Address For The Destination Varnel"},
    {"gap", "Please Fill In Repeaters From First to Third"},
    {"none", "You Must Select At Least One Remote Varnel Address For Testing"},
    {"last",
     "You Must Have At Least One Address In Test Addresses.  If You Wish To Change Address, Add The New "
     "Address First And Then Delete The Old Address."},
    {"not found", "File not found.  Please enter a valid file name."},
};
const char *const kSteps[][6] = {
    {"two rows, the second with repeaters", "des:12 | next | des:12 | rep0:5 | rep1:7 | next", "",
     "12 | 5,7,12", "3", "open"},
    {"done adds what is typed and closes", "des:12 | done", "", "12", "2", "closed"},
    {"done on an empty list stays", "done", "none", "", "1", "open"},
    {"no destination", "rep0:5 | next", "no dest", "", "1", "open"},
    {"a gap clears the repeaters only", "des:12 | rep0:5 | rep2:7 | next | rep0:4 | next", "gap", "4,12", "2",
     "open"},
    {"the only row stays", "des:12 | next | del", "last", "12", "2", "open"},
    {"delete with nothing selected", "des:1 | next | des:2 | next | del", "", "1 | 2", "3", "open"},
    {"delete the selected row", "des:1 | next | des:2 | next | select:0 | del", "", "2", "3", "open"},
    {"save from the first row, open again", "des:1 | next | des:2 | next | select:1 | save | open",
     "file:a.nva | file:a.nva", "1 | 2 | 1 | 2", "3", "closed"},
    {"open of empty lines keeps the dialog", "open", "file:empty.nva", "", "1", "open"},
    {"open cancelled", "open", "file: ", "", "1", "open"},
    {"open of a missing file", "open", "file:missing.nva | not found", "", "1", "open"},
};

QString boxText(const QString &key)
{
    for (const auto &box : kBoxes)
        if (key == QLatin1String(box[0]))
            return QLatin1String(box[1]);
    return key;
}
} // namespace

class DiagnosticTest : public QObject
{
    Q_OBJECT
private slots:
    void captionsAndMenus()
    {
        Rig rig(false);
        QVERIFY(rig.diag->diagSetup());
        rig.diag->showDiagNewAdd();
        rig.diag->showDiagInfo(QStringLiteral("Title"));
        rig.diag->showComments();
        PollingDiag polling(*rig.diag);
        ViewDiag view(rig.prompts);
        for (const QWidget *w : std::initializer_list<const QWidget *>{
                 rig.diag.get(), rig.diag->diagSetup(), rig.diag->diagNewAdd(), rig.diag->diagInfo(),
                 rig.diag->testData(), &view, rig.diag->comments(), &polling})
            QVERIFY(matchesGolden(describeWindow(*w),
                                  QStringLiteral(VARNEL_GOLDEN "/%1.txt").arg(w->objectName())));
    }

    // The report opens with the date first, then what the load read; the introduction hands over to
    // the address dialog and keeps the user's choice.
    void openingAndIntroduction()
    {
        Rig rig(false);
        QCOMPARE(
            rig.diag->report().text(),
            QStringLiteral("Varnel Diagnostics\r\n\r\nTesting Start:  2026-11-23   08:15\r\n\r\n"
                           "Varnel Model Q40U\r\nSerial Number=  Q40U14210\r\nFirmware Version=  1.52\r\n"
                           "Operating Frequency= 457.6 MHz\r\n"));
        QCOMPARE(rig.diag->lblModel->text() + rig.diag->lblSerial->text(), QStringLiteral("Q40UQ40U14210"));
        QVERIFY(!rig.diag->diagNewAdd());
        rig.diag->diagSetup()->chkDiagHide->setChecked(true);
        rig.diag->diagSetup()->cmdBegin->click();
        QCOMPARE(rig.hideSet, 1);
        QVERIFY(rig.diag->diagNewAdd() && rig.diag->diagNewAdd()->isVisible());
        QCOMPARE(rig.diag->lblRSS->text() + rig.diag->lblPolling->text(),
                 QStringLiteral("Not TestedNot Tested"));
        QCOMPARE(rig.diag->lblRSS->palette().color(QPalette::Window), QColor(Qt::red));
    }

    void addresses_data() { addRows(kSteps); }
    void addresses()
    {
        const auto &[name, actions, boxes, rows, count, open] = fetchRow(kSteps);
        QTemporaryDir dir;
        QVERIFY(writeBytes(dir.filePath(QStringLiteral("empty.nva")), "\r\n\r\n\r\n"));
        Rig rig;
        DiagNewAdd *add = rig.diag->diagNewAdd();
        QSignalSpy closed(add, &QObject::destroyed);
        for (const QString &box : items(boxes)) {
            if (box.startsWith(QLatin1String("file:")))
                rig.prompts.expectFileDialog(
                    box.mid(5).isEmpty() || box.mid(5) == u" " ? box.mid(5) : dir.filePath(box.mid(5)));
            else
                rig.prompts.expectMsgBox(boxText(box));
        }
        for (const QString &action : items(actions)) {
            const QString arg = action.section(u':', 1);
            if (action.startsWith(QLatin1String("des:")))
                add->txtDes->setText(arg);
            else if (action.startsWith(QLatin1String("rep")))
                add->txtRep[size_t(action.mid(3, 1).toInt())]->setText(arg);
            else if (action == u"next")
                add->cmdNext->click();
            else if (action == u"done")
                add->cmdDone->click();
            else if (action == u"del")
                rig.diag->cmdDelAdd->click();
            else if (action.startsWith(QLatin1String("select:")))
                rig.diag->lstAdds->setCurrentRow(arg.toInt());
            else if (action == u"save")
                rig.diag->mnuSaveAdds->trigger();
            else if (action == u"open")
                add->mnuOpenList->trigger();
        }
        QVERIFY(rig.prompts.verify());
        QCOMPARE(rig.diag->addresses(), items(rows));
        QCOMPARE(add->lblTestNum->text(), QLatin1String(count));
        QCOMPARE(add->isVisible() ? "open" : "closed", open);
        if (QLatin1String(name).startsWith(QLatin1String("save")))
            QCOMPARE(readBytes(dir.filePath(QStringLiteral("a.nva"))), QByteArray("1\r\n2\r\n\r\n"));
    }

    // The report saved, printed through the printer the setup chose, and viewed again.
    void reportSavePrintView()
    {
        Rig rig;
        QTemporaryDir dir;
        const QString rtf = dir.filePath(QStringLiteral("r.rtf")),
                      pdf = dir.filePath(QStringLiteral("p.pdf"));
        rig.prompts.expectFileDialog(rtf);
        rig.diag->mnuSave->trigger();
        QCOMPARE(readBytes(rtf), rtfDocument(rig.diag->report().text()));
        // A cancelled dialog leaves no name: the save fails with the standard box.
        rig.prompts.expectFileDialog(QString());
        rig.prompts.expectMsgBox(appErrorText({57, QStringLiteral("Device I/O error")}));
        rig.diag->mnuSave->trigger();
        TestData *data = rig.diag->testData();
        data->printSetup = [&](QPrinter &printer) {
            printer.setOutputFileName(pdf);
            return true;
        };
        data->mnuSetup->trigger();
        data->mnuPrint->trigger();
        QVERIFY(readBytes(pdf).startsWith("%PDF"));
        rig.prompts.expectFileDialog(rtf);
        rig.diag->mnuSavedFile->trigger();
        QCOMPARE(rig.diag->viewDiag()->txtData->toPlainText(),
                 QString(rig.diag->report().text()).remove(u'\r'));
        QVERIFY(rig.prompts.verify());
    }

    // Cancel on the progress dialog ends the test at its next address and says so in the report.
    void cancelOfATest()
    {
        Rig rig;
        rig.diag->TestRunning = true;
        DiagInfo *info = rig.diag->showDiagInfo(QStringLiteral("Polling"));
        info->pbStatus->setValue(40);
        info->cmdCancel->click();
        QVERIFY(!rig.diag->TestRunning);
        QVERIFY(rig.diag->report().text().endsWith(QLatin1String("Test Canceled at User's Request\r\n")));
        QCOMPARE(info->lblStatus->text(), QStringLiteral("Shutting Down Test.  Standby..."));
        QCOMPARE(info->pbStatus->value(), 0);
        // While a test runs, the polling test only beeps.
        rig.diag->TestRunning = true;
        rig.diag->cmdPolling->click();
        QCOMPARE(rig.prompts.beeps(), 1);
        rig.diag->TestRunning = false;
        rig.diag->txtPackSize->setText(QStringLiteral("9"));
        rig.prompts.expectMsgBox(QStringLiteral("Your Test Packet Must Be Between 10 and 2000"));
        rig.diag->cmdPolling->click();
        QVERIFY(rig.prompts.verify());
    }

    // The polling test from its button, stopped from its screen or by closing the diagnostics: it
    // finishes its poll, asks about the report, writes it, restores the modem and marks the test
    // completed. A close of the diagnostics asks first and goes on once the test has stopped.
    void polling_data()
    {
        QTest::addColumn<bool>("closeAll");
        QTest::newRow("stop button") << false;
        QTest::newRow("diagnostics closed") << true;
    }
    void polling()
    {
        QFETCH(bool, closeAll);
        Rig rig;
        QSignalSpy back(rig.diag.get(), &Diagnostic::returnedToMainMenu);
        rig.diag->lstAdds->addItem(QStringLiteral("12"));
        rig.diag->txtPackSize->setText(QStringLiteral("20"));
        rig.link->time().after(30000, [&] {
            QVERIFY(rig.diag->TestRunning);
            QCOMPARE(rig.diag->lblPolling->text(), QStringLiteral("Running"));
            if (closeAll)
                rig.diag->close();
            else
                rig.diag->pollingDiag()->cmdStop->click();
            QVERIFY(rig.diag->pollingDiag()->isVisible() && rig.diag->isVisible());
        });
        if (closeAll)
            rig.prompts.expectMsgBox(
                QStringLiteral("This Action Will Stop All Active Tests and Close Down The Diagnostics\r"
                               "Do You Wish To Proceed?"),
                MsgAnswer::Yes);
        rig.prompts
            .expectMsgBox(QStringLiteral("Do You Wish To Add All Reports To The Diagnostic Testing Data?\r"
                                         "The Totals Will be Added to the Report Automatically."),
                          MsgAnswer::Yes)
            .withTitle(QStringLiteral("Add Data to Report"))
            .withButtons(MsgButtons::YesNo);
        if (closeAll)
            rig.prompts.expectMsgBox(
                QStringLiteral("Do You Wish To Save The Diagnostic Testing Information To A File?"),
                MsgAnswer::No);
        rig.diag->show();
        rig.diag->cmdPolling->click();
        QVERIFY(rig.prompts.verify());
        QVERIFY(!rig.diag->TestRunning && !rig.diag->pollingDiag()->isVisible());
        QCOMPARE(rig.diag->lblPolling->text(), QStringLiteral("Completed"));
        QCOMPARE(back.count(), closeAll ? 1 : 0);
        QCOMPARE(rig.diag->isVisible(), !closeAll);
        QCOMPARE(rig.link->port().AutoProcess(),
                 closeAll ? CommControl::kAutoProcessTerminal : CommControl::kAutoProcessProgram);
        const QStringList report = rig.diag->report().text().split(QStringLiteral("\r\n"));
        const qsizetype at = report.indexOf(QStringLiteral("Polling Diagnostic Results - Complete\r"));
        QVERIFY(at > 0);
        QVERIFY(report[at + 3].startsWith(QLatin1String(" Start Test")));
        QVERIFY(report[at + 4].startsWith(QLatin1String("     1               12          Link Down")));
        QCOMPARE(report.filter(QStringLiteral("Test Packet Size = 20")).size(), 1);
        QCOMPARE(rig.link->local().value(QStringLiteral("MESSFORM")), QStringLiteral("OFF"));
        if (closeAll)
            return;
        rig.diag->comments()->Text1->setText(QStringLiteral("Mast at 12 was down"));
        rig.diag->comments()->Command1->click();
        QVERIFY(rig.diag->report().text().endsWith(QLatin1String("Comments:\r\nMast at 12 was down\r\n")));
    }

    // Closing the report asks first; closing the screen asks only about saving and hands back.
    void closing()
    {
        Rig rig;
        QSignalSpy back(rig.diag.get(), &Diagnostic::returnedToMainMenu);
        const QString exiting =
            QStringLiteral("Closing this window will stop all diagnostic testing\rDo you wish to proceed?");
        rig.prompts.expectMsgBox(exiting, MsgAnswer::No)
            .withTitle(QStringLiteral("Exiting Diagnostics"))
            .withButtons(MsgButtons::YesNo);
        QVERIFY(!rig.diag->testData()->close());
        rig.prompts.expectMsgBox(exiting, MsgAnswer::Yes)
            .withTitle(QStringLiteral("Exiting Diagnostics"))
            .withButtons(MsgButtons::YesNo);
        rig.prompts
            .expectMsgBox(QStringLiteral("Do You Wish To Save The Diagnostic Testing Information To A File?"),
                          MsgAnswer::No)
            .withTitle(QStringLiteral("Save File"))
            .withButtons(MsgButtons::YesNo);
        rig.diag->testData()->close();
        QVERIFY(rig.prompts.verify());
        QCOMPARE(back.count(), 1);
        QVERIFY(rig.diag->DiagClosing && !rig.diag->testData()->isVisible() &&
                !rig.diag->diagNewAdd()->isVisible());
        QCOMPARE(rig.link->port().AutoProcess(), CommControl::kAutoProcessTerminal);
    }
};

// Times and dates in one fixed short format whatever the machine's locale: "2026-11-23", "08:15".
int main(int argc, char *argv[])
{
    qputenv("LC_ALL", "sv_SE.UTF-8");
    QApplication app(argc, argv);
    DiagnosticTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "DiagnosticTest.moc"
