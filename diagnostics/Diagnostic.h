#pragma once

#include "DiagnosticReport.h"
#include "DiagnosticShell.h"
#include "LinkMeasures.h"
#include "PollingRun.h"
#include "PortClaim.h"

#include <QMainWindow>
#include <QPointer>
#include <functional>

class Comments;
class DiagInfo;
class DiagNewAdd;
class DiagPlots;
class DiagSetup;
class Interference;
class ModemSession;
class PollingDiag;
class QAction;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class TestData;
class ViewDiag;

// The status of a test is the caption and colours of its label; a test reads the label to decide.
enum class TestStatus { NotTested, NotAvailable, Running, Completed };
void setTestStatus(QLabel *label, TestStatus status);

// "Varnel Diagnostic Testing": the modem under test, the test address list, the four test panels and
// the running report. It lives while the test screens come and go and hands back to the main menu.
class Diagnostic : public QMainWindow
{
    Q_OBJECT
public:
    explicit Diagnostic(ModemSession &session, QWidget *parent = nullptr);
    ~Diagnostic() override;

    // The Hide Diag setting, kept by the shell.
    std::function<bool()> hideDiag;
    std::function<void(bool)> setHideDiag;
    // The Repeater Setup setting: a repeater configuration has been saved before.
    std::function<bool()> repeaterSetup;
    std::function<void(bool)> setRepeaterSetup;

    // From the main menu, at the prompt: the report opens, the modem is read, the introduction or the
    // address dialog follows.
    void open();
    void Load();
    // Appends a line to the report.
    void AddData(const QString &line);
    const DiagnosticReport &report() const { return m_report; }
    QStringList addresses() const;
    ModemSession &session() const { return m_session; }

    bool TestRunning = false;
    // The repeater site test runs without TestRunning and to its end; a close waits for it.
    bool siteTestRunning = false;
    bool DiagClosing = false;
    bool RunRss = false, RunInterference = false, RunDq = false, RunPolling = false;
    ModemUnderTest UnderTest;

    QLabel *lblModel, *lblVersion, *lblSerial;
    QListWidget *lstAdds;
    QPushButton *cmdNewAdd, *cmdDelAdd;
    QLabel *lblRSS, *lblInter, *lblDQ, *lblPolling;
    QPushButton *cmdRSS, *cmdInter, *cmdDQ, *cmdPolling;
    QLineEdit *txtPackSize;
    QPushButton *cmdStop;
    QAction *mnuView, *mnuSave, *mnuSavedFile, *mnuPlots, *mnuSaveAdds, *mnuExit;
    QAction *mnuAll, *mnuRSS, *mnuInterference, *mnuDQ, *mnuPolling, *mnuRTNRepTest;

    TestData *testData() const;
    DiagSetup *diagSetup() const;
    DiagNewAdd *diagNewAdd() const;
    DiagInfo *diagInfo() const;
    PollingDiag *pollingDiag() const;
    ViewDiag *viewDiag() const;
    Comments *comments() const;
    Interference *interference() const;

    void showDiagNewAdd();
    // The progress dialog of a test, shown beside the screens.
    DiagInfo *showDiagInfo(const QString &title);
    void showComments();
    // What a test shows in the progress dialog and adds to the report, once the dialog is shown.
    TestHooks testHooks();
    // The report form in front, in its normal state.
    void showReport();
    // The samples of the last run of each test, one entry a measured address.
    QList<AddressSamples> signalSamples, qualitySamples;
    // The polls of the last polling run, for its link timeline.
    QList<PollMark> pollMarks;
    // The plots of those runs beside the report; once open they follow each run.
    void showPlots();
    void refreshPlots();
    DiagPlots *diagPlots() const;

    // Back to the main menu's hands: the report form has closed with the diagnostics.
    void unloadTestForms();
    // A close asked for while a test ran goes on once the test has stopped.
    void closeIfAsked();

    void mnuAll_Click();
    void mnuInterference_Click();
    void mnuRTNRepTest_Click();
    void BeginTesting();
    void SignalStrength();
    void DataQuality();
    void mnuPolling_Click();
    void mnuSave_Click();
    void mnuSaveAdds_Click();
    void mnuOpenList_Click();
    void mnuSavedFile_Click();
    void cmdDelAdd_Click();
    void cmdCancel_Click();

signals:
    void returnedToMainMenu();

protected:
    void closeEvent(QCloseEvent *event) override;
    // A click on a test's status label does what its button does.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // The common start and end of the signal strength and data quality tests: false when the test
    // does not start.
    bool startLinkTest(QLabel *label, const QString &testName, const QString &skipText, const QString &title);
    void endLinkTest(QLabel *label);
    bool askTestAgain(const QString &testName);

    void buildScreen();
    void buildMenus();
    void setAvailability(const TestAvailability &available);

    ModemSession &m_session;
    DiagnosticReport m_report;
    PortClaim m_port;
    QPointer<TestData> m_testData;
    QPointer<DiagSetup> m_setup;
    QPointer<DiagNewAdd> m_newAdd;
    QPointer<DiagInfo> m_info;
    QPointer<PollingDiag> m_polling;
    QPointer<ViewDiag> m_view;
    QPointer<Comments> m_comments;
    QPointer<Interference> m_interference;
    QPointer<DiagPlots> m_plots;
    bool m_closeAfterTest = false;
    bool m_linkTestRunning = false;
};
