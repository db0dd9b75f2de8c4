#include "Diagnostic.h"
#include "AppError.h"
#include "DiagPlots.h"
#include "DiagnosticForms.h"
#include "Golden.h"
#include "InterferenceScreens.h"
#include "ModemSession.h"
#include "PollingDiag.h"
#include "ScriptedPrompts.h"
#include "SimulatedModemLink.h"

#include <QApplication>
#include <QChartView>
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
    explicit Rig(bool hide = true, const QString &model = QStringLiteral("Q4U"), int option = 4,
                 double emitter = 0)
    {
        if (emitter > 0)
            s.interference = {{QString(), emitter, 1.0, 0}};
        s.modems[0].model = model;
        s.modems[0].option = option;
        s.modems[0].settings.insert(QStringLiteral("ECHO"), QStringLiteral("OFF"));
        // One remote at 7 on a clean path.
        sim::ModemProfile remote;
        remote.model = model;
        remote.settings.insert(QStringLiteral("ADDRESS"), QStringLiteral("7"));
        s.modems << remote;
        s.links = {{1, 7, 35.0, 0, 0, {}, 0}};
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

// What the user starts on the screen, on which modem and with which tests already done; the boxes
// in turn (by key, the answer behind a colon); the report's blocks in order, and the status labels
// of signal strength, data quality and polling after. A cancel is clicked at the time given.
const char *const kRunBoxes[][2] = {
    {"rss skip",
     "The receive signal strength test can only measure destination Varnels without repeaters.  If repeaters "
     "are included in the test addresses, these will be skipped"},
    {"dq skip", "The data quality test can only measure destination Varnels without repeaters.  If repeaters "
                "are included "
                "in the test addresses, these will be skipped"},
    {"rss again", "The Signal Strength Test Has Been Completed.\rDo you wish to run the test again?"},
    {"dq again", "The Data Quality Test Has Been Completed.\rDo you wish to run the test again?"},
    {"polling again", "The Polling Test Has Been Completed.\rDo you wish to run the test again?"},
    {"stop all",
     "This Action Will Stop All Active Tests and Close Down The Diagnostics\rDo You Wish To Proceed?"},
    {"save data", "Do You Wish To Save the Interference Data to The Diagnostic Testing Data?"},
    {"save file", "Do You Wish To Save The Diagnostic Testing Information To A File?"},
    {"report",
     "Do You Wish To Add All Reports To The Diagnostic Testing Data?\rThe Totals Will be Added to the "
     "Report Automatically."},
};
const char *const kScreenRuns[][7] = {
    {"again? No ends there", "Q4U 4 lblRSS", "cmdRSS", "rss again:No", "", "Completed/Not Tested/Not Tested",
     ""},
    {"again? Yes runs it, from a click on the label", "Q4U 4 lblDQ", "lblDQ", "dq again:Yes | dq skip",
     "dq 7 7", "Not Tested/Completed/Not Tested", ""},
    {"cancel at the second address", "Q4U 4", "cmdRSS", "rss skip", "rss cancel 7",
     "Completed/Not Tested/Not Tested", "10000"},
    {"all with the meter", "Q4U 4", "mnuAll", "rss skip | dq skip | report:No", "rss 7 7 | dq 7 7 | polling",
     "Completed/Completed/Completed", ""},
    {"all without the meter", "Q4U 0", "mnuAll", "dq skip | report:No", "dq 7 7 | polling",
     "Not Available/Completed/Completed", ""},
    {"all on the spread spectrum model", "Q4Z 0", "mnuAll", "rss skip | report:No", "rss 7 7 | polling",
     "Completed/Not Available/Completed", ""},
    {"all, polling done, No runs it once", "Q4U 0 lblPolling", "mnuAll",
     "dq skip | polling again:No | report:No", "dq 7 7 | polling", "Not Available/Completed/Completed", ""},
    {"all, polling done, Yes runs it twice", "Q4U 0 lblPolling", "mnuAll",
     "dq skip | polling again:Yes | report:No | report:No", "dq 7 7 | polling | polling",
     "Not Available/Completed/Completed", ""},
};

// The listening test beside a steady 50 microvolt emitter: the threshold's place in the list, what the
// user does and when (ms), the boxes in turn; the list's rows as start, number and value, stop;
// whether the report gained the block; the squelch latched afterwards and whether the meter streams.
const char *const kListening[][7] = {
    {"stopped by its button, a reading at the threshold listed", "5", "9000 cmdStop", "save data:Yes",
     "start | 1 50 | 2 50 | 3 50 | 4 50 | stop", "block", "30 off"},
    {"a reading below the threshold is not listed", "6", "9000 mnuStop", "save data:No", "start | stop", "",
     "30 off"},
    {"clearing restarts the numbering", "4", "5000 mnuClear | 15000 cmdStop", "save data:Yes",
     "start | 1 50 | 2 50 | 3 50 | stop", "block", "30 off"},
    {"closing the diagnostics stops it first", "4", "5000 close",
     "stop all:Yes | save data:Yes | save file:No", "start | 1 50 | 2 50 | stop", "block", "30 off"},
};

// The blocks of the report after the opening: each test's key and the addresses of its result lines.
QString blocks(const QString &report)
{
    QStringList found;
    for (const QString &line : report.split(QStringLiteral("\r\n"))) {
        if (line == u"Received Signal Strength Testing")
            found << QStringLiteral("rss");
        else if (line == u"Data Quality Testing")
            found << QStringLiteral("dq");
        else if (line.startsWith(QLatin1String("Polling Diagnostic Results")))
            found << QStringLiteral("polling");
        else if (line.startsWith(QLatin1String("Address ")))
            found.last() += u' ' + line.section(u' ', 1, 1);
        else if (line == u"Test Canceled at User's Request")
            found.last() += QStringLiteral(" cancel");
    }
    return found.join(QStringLiteral(" | "));
}

QString boxText(const QString &key)
{
    for (const auto &box : kBoxes)
        if (key == QLatin1String(box[0]))
            return QLatin1String(box[1]);
    for (const auto &box : kRunBoxes)
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
        Interference listening(*rig.diag);
        InterSetup setup(*rig.diag, listening);
        for (const QWidget *w : std::initializer_list<const QWidget *>{
                 rig.diag.get(), rig.diag->diagSetup(), rig.diag->diagNewAdd(), rig.diag->diagInfo(),
                 rig.diag->testData(), &view, rig.diag->comments(), &polling, &listening, &setup})
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

    void testsFromTheScreen_data() { addRows(kScreenRuns); }
    void testsFromTheScreen()
    {
        const auto &[name, modem, start, boxes, report, labels, cancelAt] = fetchRow(kScreenRuns);
        const QStringList setup = QString::fromLatin1(modem).split(u' ');
        Rig rig(true, setup[0], setup[1].toInt());
        Diagnostic &diag = *rig.diag;
        diag.lstAdds->addItems({QStringLiteral("7"), QStringLiteral("3,7"), QStringLiteral("7")});
        if (setup.size() > 2)
            setTestStatus(diag.findChild<QLabel *>(setup[2]), TestStatus::Completed);
        for (const QString &box : items(boxes))
            rig.prompts.expectAnswered(boxText(box.section(u':', 0, 0)) +
                                       (box.contains(u':') ? box.mid(box.indexOf(u':')) : QString()));
        // Each polling run is stopped from its screen after a minute.
        std::function<void()> stopPolling = [&] {
            if (diag.pollingDiag() && diag.pollingDiag()->isVisible())
                diag.pollingDiag()->cmdStop->click();
            rig.link->time().after(60000, stopPolling);
        };
        rig.link->time().after(60000, stopPolling);
        if (*cancelAt)
            rig.link->time().after(QByteArray(cancelAt).toInt(),
                                   [&] { diag.diagInfo()->cmdCancel->click(); });
        diag.mnuPlots->trigger();
        const QString prefix = diag.report().text();
        if (auto *action = diag.findChild<QAction *>(QLatin1String(start)))
            action->trigger();
        else
            QTest::mouseClick(diag.findChild<QWidget *>(QLatin1String(start)), Qt::LeftButton);
        QVERIFY(rig.prompts.verify());
        QCOMPARE(blocks(diag.report().text().mid(prefix.size())), QLatin1String(report));
        QCOMPARE(diag.lblRSS->text() + u'/' + diag.lblDQ->text() + u'/' + diag.lblPolling->text(),
                 QLatin1String(labels));
        QVERIFY(!diag.TestRunning && !(diag.diagInfo() && diag.diagInfo()->isVisible()) &&
                !rig.prompts.busy());
        // The plots opened before the run follow it: a line per measured address and per polled row.
        QCOMPARE(diag.pollMarks.isEmpty(), !QByteArray(report).contains("polling"));
        QCOMPARE(diag.diagPlots()->chtQuality->chart()->series().size(), diag.qualitySamples.size());
        QCOMPARE(diag.diagPlots()->chtLinks->chart()->series().size(), linkTimeline(diag.pollMarks).size());
        // Busy: a second start only beeps.
        const int beeps = rig.prompts.beeps();
        diag.TestRunning = true;
        diag.SignalStrength();
        diag.DataQuality();
        QCOMPARE(rig.prompts.beeps(), beeps + 2);
    }

    void listening_data() { addRows(kListening); }
    void listening()
    {
        const auto &[name, threshold, actions, boxes, rows, block, after] = fetchRow(kListening);
        Rig rig(true, QStringLiteral("Q4U"), 4, 50);
        Diagnostic &diag = *rig.diag;
        for (const QString &box : items(boxes))
            rig.prompts.expectAnswered(boxText(box.section(u':', 0, 0)) + box.mid(box.indexOf(u':')));
        for (const QString &action : items(actions))
            rig.link->time().after(action.section(u' ', 0, 0).toInt(),
                                   [&diag, what = action.section(u' ', 1)] {
                                       if (QAction *entry = diag.interference()->findChild<QAction *>(what))
                                           entry->trigger();
                                       else if (what == u"close")
                                           diag.close();
                                       else
                                           diag.interference()->cmdStop->click();
                                   });
        diag.cmdInter->click();
        QVERIFY(diag.TestRunning);
        auto *setup = diag.findChild<InterSetup *>();
        setup->Combo1->setCurrentIndex(QByteArray(threshold).toInt());
        setup->Command1->click();
        QVERIFY(rig.prompts.verify());
        QStringList shown;
        for (int i = 0; i < diag.interference()->lstRSS->count(); ++i) {
            const QString row = diag.interference()->lstRSS->item(i)->text().simplified();
            shown << (row.contains(QLatin1String("Start Test"))  ? QStringLiteral("start")
                      : row.contains(QLatin1String("Stop Test")) ? QStringLiteral("stop")
                                                                 : row.section(u' ', 0, 1));
        }
        QCOMPARE(shown.join(QStringLiteral(" | ")), QLatin1String(rows));
        const QString head =
            QString(60, u'*') + QStringLiteral("\r\n*****Interference Testing Results*****\r\r\n"
                                               " Report Number          Value               Time"
                                               "                Date\r\n");
        QCOMPARE(diag.report().text().contains(head + diag.interference()->run().ReportText), *block != 0);
        // The squelch goes back without a wait; the modem takes it a moment later.
        rig.link->time().MsDelay(1000);
        const sim::Modem &local = rig.link->local();
        QCOMPARE(local.latchedValue(QStringLiteral("SQUELCH")) +
                     (local.signalStreaming() ? QStringLiteral(" on") : QStringLiteral(" off")),
                 QLatin1String(after));
        QVERIFY(!diag.TestRunning && diag.lblInter->text() == u"Completed" &&
                !diag.interference()->isVisible());
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
