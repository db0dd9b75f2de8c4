#include "Diagnostic.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "DiagPlots.h"
#include "DiagnosticForms.h"
#include "InterferenceScreens.h"
#include "ModemSession.h"
#include "Named.h"
#include "PollingDiag.h"
#include "ProgramFile.h"
#include "Prompts.h"
#include "ReportPrint.h"
#include "TimeSource.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
struct StatusLook
{
    const char *caption;
    QColor back, text;
};
} // namespace

void setTestStatus(QLabel *label, TestStatus status)
{
    static const StatusLook looks[] = {
        {"Not Tested", Qt::red, Qt::yellow},
        {"Not Available", {}, {}},
        {"Running", Qt::yellow, {}},
        {"Completed", Qt::green, {}},
    };
    const StatusLook &look = looks[int(status)];
    label->setText(QLatin1String(look.caption));
    label->setEnabled(status != TestStatus::NotAvailable);
    if (status == TestStatus::NotAvailable)
        return;
    QPalette palette = label->palette();
    palette.setColor(QPalette::Window, look.back);
    palette.setColor(QPalette::WindowText,
                     look.text.isValid() ? look.text : QPalette().color(QPalette::WindowText));
    label->setPalette(palette);
    label->setAutoFillBackground(true);
}

Diagnostic::Diagnostic(ModemSession &session, QWidget *parent)
    : QMainWindow(parent), m_session(session), m_port(session.Comm1(), PortClaim::Then::Terminal)
{
    setObjectName(QStringLiteral("Diagnostic"));
    setWindowTitle(QStringLiteral("Varnel Diagnostic Testing"));
    buildScreen();
    buildMenus();
}

Diagnostic::~Diagnostic()
{
    for (QWidget *form : std::initializer_list<QWidget *>{m_polling, m_interference, m_info, m_newAdd,
                                                          m_setup, m_comments, m_view, m_plots, m_testData})
        delete form;
}

TestData *Diagnostic::testData() const
{
    return m_testData;
}

DiagSetup *Diagnostic::diagSetup() const
{
    return m_setup;
}

DiagNewAdd *Diagnostic::diagNewAdd() const
{
    return m_newAdd;
}

DiagInfo *Diagnostic::diagInfo() const
{
    return m_info;
}

PollingDiag *Diagnostic::pollingDiag() const
{
    return m_polling;
}

ViewDiag *Diagnostic::viewDiag() const
{
    return m_view;
}

Comments *Diagnostic::comments() const
{
    return m_comments;
}

DiagPlots *Diagnostic::diagPlots() const
{
    return m_plots;
}

Interference *Diagnostic::interference() const
{
    return m_interference;
}

void Diagnostic::buildScreen()
{
    auto *central = new QWidget(this);
    auto *grid = new QGridLayout(central);
    setCentralWidget(central);
    const auto panel = [&](const char *name, const QString &title, int row, int column) {
        auto *box = named<QGroupBox>(name, title, central);
        grid->addWidget(box, row, column);
        return new QGridLayout(box);
    };
    const auto label = [](QGridLayout *layout, const QString &text, int row, int column) {
        layout->addWidget(new QLabel(text), row, column);
    };

    QGridLayout *unit = panel("fraUnit", QStringLiteral("Varnel Under Test"), 0, 0);
    label(unit, QStringLiteral("Model:"), 0, 0);
    label(unit, QStringLiteral("Firmware Version:"), 1, 0);
    label(unit, QStringLiteral("Serial Number:"), 2, 0);
    unit->addWidget(lblModel = named<QLabel>("lblModel"), 0, 1);
    unit->addWidget(lblVersion = named<QLabel>("lblVersion"), 1, 1);
    unit->addWidget(lblSerial = named<QLabel>("lblSerial"), 2, 1);

    QGridLayout *adds = panel("fraAdds", QStringLiteral("Test Addresses"), 1, 0);
    adds->addWidget(lstAdds = named<QListWidget>("lstAdds"), 0, 0, 1, 2);
    adds->addWidget(cmdNewAdd = named<QPushButton>("cmdNewAdd", QStringLiteral("Add Test Address")), 1, 0);
    adds->addWidget(cmdDelAdd = named<QPushButton>("cmdDelAdd", QStringLiteral("DeleteTest Address")), 1, 1);

    const auto testPanel = [&](const char *frame, const QString &title, const QString &text,
                               const char *button, const char *status, int row, int column, QPushButton *&cmd,
                               QLabel *&lbl) {
        QGridLayout *layout = panel(frame, title, row, column);
        label(layout, text, 0, 0);
        layout->addWidget(cmd = named<QPushButton>(button, QStringLiteral("Begin Testing")), 2, 0);
        layout->addWidget(lbl = named<QLabel>(status), 2, 1);
        return layout;
    };
    testPanel("fraRSS", QStringLiteral("Measure Receive Signal Strength"),
              QStringLiteral("Measures the Receive Signal Stength Between Radios"), "cmdRSS", "lblRSS", 0, 1,
              cmdRSS, lblRSS);
    testPanel("fraInter", QStringLiteral("Frequency Interference Testing"),
              QStringLiteral("Tests the Selected Frequency For Other Radio Emitters"), "cmdInter", "lblInter",
              1, 1, cmdInter, lblInter);
    testPanel("fraDQ", QStringLiteral("Measure Data Quality"),
              QStringLiteral("Measures The Signal to Noise Ratio Between Radios"), "cmdDQ", "lblDQ", 2, 1,
              cmdDQ, lblDQ);
    QGridLayout *polling =
        testPanel("fraPolling", QStringLiteral("Polling Diagnostic"), QStringLiteral("Test Packet Size"),
                  "cmdPolling", "lblPolling", 2, 0, cmdPolling, lblPolling);
    polling->addWidget(txtPackSize = named<QLineEdit>("txtPackSize", QStringLiteral("100")), 0, 1);
    label(polling, QStringLiteral("Bytes"), 0, 2);
    label(polling, QStringLiteral("Valid Packet Sizes 10-2000 Bytes"), 1, 0);
    grid->addWidget(cmdStop = named<QPushButton>("cmdStop", QStringLiteral("Exit Diagnostics")), 3, 0, 1, 2);

    connect(cmdNewAdd, &QPushButton::clicked, this, &Diagnostic::showDiagNewAdd);
    connect(cmdDelAdd, &QPushButton::clicked, this, &Diagnostic::cmdDelAdd_Click);
    connect(cmdPolling, &QPushButton::clicked, this, &Diagnostic::mnuPolling_Click);
    connect(cmdRSS, &QPushButton::clicked, this, &Diagnostic::SignalStrength);
    connect(cmdDQ, &QPushButton::clicked, this, &Diagnostic::DataQuality);
    connect(cmdInter, &QPushButton::clicked, this, &Diagnostic::mnuInterference_Click);
    for (QLabel *status : {lblRSS, lblInter, lblDQ, lblPolling})
        status->installEventFilter(this);
    connect(cmdStop, &QPushButton::clicked, this, &QWidget::close);
}

void Diagnostic::buildMenus()
{
    QMenu *file = namedMenu(menuBar(), "mnuFile", QStringLiteral("&File"));
    mnuView = namedEntry(file, "mnuView", QStringLiteral("&View Current Diagnostic File"));
    mnuSave = namedEntry(file, "mnuSave", QStringLiteral("&Save Current Diagnostic File"));
    mnuSavedFile = namedEntry(file, "mnuSavedFile", QStringLiteral("View &Previously Saved Diagnostic File"));
    mnuPlots = namedEntry(file, "mnuPlots", QStringLiteral("Vie&w Test Plots"));
    mnuSaveAdds = namedEntry(file, "mnuSaveAdds", QStringLiteral("Save Test Address to File"));
    mnuExit = namedEntry(file, "mnuExit", QStringLiteral("&Exit Diagnostics"));
    QMenu *tests = namedMenu(menuBar(), "mnuTests", QStringLiteral("&Diagnostic Tests"));
    mnuAll = namedEntry(tests, "mnuAll", QStringLiteral("&Complete All Diagnostic Tests"));
    mnuRSS = namedEntry(tests, "mnuRSS", QStringLiteral("&Measure Received Signal Strenth"));
    mnuInterference = namedEntry(tests, "mnuInterference", QStringLiteral("&Interference Testing"));
    mnuDQ = namedEntry(tests, "mnuDQ", QStringLiteral("&Data Quality Measurement"));
    mnuPolling = namedEntry(tests, "mnuPolling", QStringLiteral("&Polling Diagnostic"));
    mnuRTNRepTest = namedEntry(tests, "mnuRTNRepTest", QStringLiteral("RTN Repeater Testing"));
    connect(mnuView, &QAction::triggered, this, &Diagnostic::showReport);
    connect(mnuSave, &QAction::triggered, this, &Diagnostic::mnuSave_Click);
    connect(mnuSavedFile, &QAction::triggered, this, &Diagnostic::mnuSavedFile_Click);
    connect(mnuPlots, &QAction::triggered, this, &Diagnostic::showPlots);
    connect(mnuSaveAdds, &QAction::triggered, this, &Diagnostic::mnuSaveAdds_Click);
    connect(mnuExit, &QAction::triggered, this, &QWidget::close);
    connect(mnuPolling, &QAction::triggered, this, &Diagnostic::mnuPolling_Click);
    connect(mnuAll, &QAction::triggered, this, &Diagnostic::mnuAll_Click);
    connect(mnuRSS, &QAction::triggered, this, &Diagnostic::SignalStrength);
    connect(mnuDQ, &QAction::triggered, this, &Diagnostic::DataQuality);
    connect(mnuInterference, &QAction::triggered, this, &Diagnostic::mnuInterference_Click);
    connect(mnuRTNRepTest, &QAction::triggered, this, &Diagnostic::mnuRTNRepTest_Click);
}

void Diagnostic::open()
{
    m_testData = new TestData(*this);
    m_report.open(m_session.time().dateText(), m_session.time().timeText());
    m_testData->showText(m_report.text());
    m_testData->show();
    Load();
    show();
    if (m_setup)
        m_setup->activateWindow();
    else if (m_newAdd)
        m_newAdd->activateWindow();
}

void Diagnostic::Load()
{
    RunRss = RunInterference = RunDq = RunPolling = TestRunning = DiagClosing = false;
    UnderTest = readModemUnderTest(m_session, m_report);
    lblVersion->setText(UnderTest.FirmwareVersion);
    lblModel->setText(UnderTest.ModelName);
    lblSerial->setText(UnderTest.SerialText);
    setAvailability(testAvailability(UnderTest, m_report));
    if (m_testData)
        m_testData->showText(m_report.text());
    if (hideDiag && hideDiag()) {
        showDiagNewAdd();
    } else {
        m_setup = new DiagSetup(*this);
        m_setup->show();
    }
}

void Diagnostic::setAvailability(const TestAvailability &available)
{
    const auto set = [](QLabel *label, QPushButton *button, QAction *entry, bool on) {
        setTestStatus(label, on ? TestStatus::NotTested : TestStatus::NotAvailable);
        button->setEnabled(on);
        entry->setEnabled(on);
    };
    set(lblRSS, cmdRSS, mnuRSS, available.rss);
    set(lblInter, cmdInter, mnuInterference, available.interference);
    set(lblDQ, cmdDQ, mnuDQ, available.dataQuality);
    setTestStatus(lblPolling, TestStatus::NotTested);
    if (!available.dataQuality)
        RunDq = false;
}

void Diagnostic::AddData(const QString &line)
{
    m_report.AddData(line);
    if (m_testData)
        m_testData->showText(m_report.text());
}

QStringList Diagnostic::addresses() const
{
    QStringList rows;
    for (int i = 0; i < lstAdds->count(); ++i)
        rows << lstAdds->item(i)->text();
    return rows;
}

void Diagnostic::showDiagNewAdd()
{
    if (!m_newAdd)
        m_newAdd = new DiagNewAdd(*this);
    m_newAdd->show();
    m_newAdd->txtDes->setFocus();
}

DiagInfo *Diagnostic::showDiagInfo(const QString &title)
{
    if (!m_info)
        m_info = new DiagInfo(*this);
    m_info->lblTest->setText(title);
    m_info->show();
    return m_info;
}

void Diagnostic::showComments()
{
    if (!m_comments)
        m_comments = new Comments(*this);
    m_comments->show();
}

void Diagnostic::showReport()
{
    if (!m_testData)
        return;
    m_testData->showNormal();
    m_testData->raise();
}

void Diagnostic::showPlots()
{
    if (!m_plots) {
        m_plots = new DiagPlots(m_session.prompts());
        if (m_testData)
            m_plots->move(m_testData->frameGeometry().topRight());
    }
    refreshPlots();
    m_plots->showNormal();
    m_plots->raise();
}

void Diagnostic::refreshPlots()
{
    if (m_plots)
        m_plots->showRuns(signalSamples, qualitySamples, pollMarks);
}

void Diagnostic::cmdCancel_Click()
{
    TestRunning = false;
    AddData(QStringLiteral("Test Canceled at User's Request"));
    if (m_info) {
        m_info->lblStatus->setText(QStringLiteral("Shutting Down Test.  Standby..."));
        m_info->pbStatus->setValue(0);
    }
}

void Diagnostic::cmdDelAdd_Click()
{
    if (lstAdds->count() < 2) {
        m_session.prompts().MsgBox(kDeleteLastAddressText, MsgButtons::OkOnly, MsgIcon::Exclamation,
                                   QStringLiteral("Varnel Diagnostics"));
        return;
    }
    if (lstAdds->currentRow() >= 0 && lstAdds->currentItem()->isSelected())
        delete lstAdds->takeItem(lstAdds->currentRow());
}

void Diagnostic::mnuSave_Click()
{
    const QString name = askFileName(m_session.prompts(), FileDialogRequest::Kind::Save, kReportFileFilter);
    // A cancelled dialog leaves no name, and the save that follows fails with the standard box.
    attempt(m_session.prompts(), [&] { saveReport(name, m_report.text()); });
}

void Diagnostic::mnuSaveAdds_Click()
{
    if (lstAdds->currentRow() >= 0 && !lstAdds->selectedItems().isEmpty())
        lstAdds->setCurrentRow(0);
    const QStringList rows = addresses();
    const QString name = askFileName(m_session.prompts(), FileDialogRequest::Kind::Save, kAddressFileFilter);
    if (!name.isEmpty())
        attempt(m_session.prompts(), [&] { writeProgramFile(name, rows); });
}

void Diagnostic::mnuOpenList_Click()
{
    BusyPointer busy(m_session.prompts());
    const QString name =
        askFileName(m_session.prompts(), FileDialogRequest::Kind::Open, kAddressFileFilter, kBlankFileName);
    if (name.isEmpty() || name == kBlankFileName)
        return;
    const ProgramFileContents contents = readProgramFile(name);
    if (contents.errorNumber) {
        if (const QString text = openErrorMessage(contents.errorNumber); !text.isEmpty())
            m_session.prompts().MsgBox(text);
        return;
    }
    lstAdds->addItems(contents.lines);
    if (lstAdds->count() > 0 && m_newAdd)
        m_newAdd->close();
}

void Diagnostic::mnuSavedFile_Click()
{
    if (!m_view)
        m_view = new ViewDiag(m_session.prompts());
    m_view->show();
    m_view->openFile();
}

void Diagnostic::mnuPolling_Click()
{
    Prompts &prompts = m_session.prompts();
    if (TestRunning) {
        prompts.Beep();
        return;
    }
    const TestPacketChoice packet = testPacketFor(txtPackSize->text());
    if (!packet.faultText.isEmpty()) {
        prompts.MsgBox(packet.faultText);
        return;
    }
    setTestStatus(lblPolling, TestStatus::Running);
    m_polling = new PollingDiag(*this);
    m_polling->show();
    m_polling->Load();
    m_polling->run().TestPacket = packet.packet;
    m_polling->StartPolling();
    // A close asked for while the test ran goes on once the test has stopped.
    if (m_closeAfterTest && !TestRunning)
        close();
}

void Diagnostic::unloadTestForms()
{
    for (QWidget *form :
         std::initializer_list<QWidget *>{m_polling, m_info, m_interference, m_newAdd, m_setup, m_plots})
        if (form)
            form->close();
}

void Diagnostic::closeEvent(QCloseEvent *event)
{
    Prompts &prompts = m_session.prompts();
    if (siteTestRunning) {
        m_closeAfterTest = true;
        event->ignore();
        return;
    }
    if (TestRunning) {
        if (prompts.MsgBox(
                QStringLiteral("This Action Will Stop All Active Tests and Close Down The Diagnostics\r"
                               "Do You Wish To Proceed?"),
                MsgButtons::YesNo, MsgIcon::Question) == MsgAnswer::No) {
            event->ignore();
            return;
        }
        // A test over the address list stops at its next address and the close goes on after it.
        if (m_linkTestRunning) {
            TestRunning = false;
            m_closeAfterTest = true;
            event->ignore();
            return;
        }
        // The polling and listening tests stop at their next check and report; the close goes on after.
        for (QWidget *test : std::initializer_list<QWidget *>{m_polling, m_interference})
            if (test)
                test->close();
        if ((m_polling && m_polling->isVisible()) || (m_interference && m_interference->isVisible())) {
            m_closeAfterTest = true;
            event->ignore();
            return;
        }
    }
    if (prompts.MsgBox(QStringLiteral("Do You Wish To Save The Diagnostic Testing Information To A File?"),
                       MsgButtons::YesNo, MsgIcon::None, QStringLiteral("Save File"), 2) == MsgAnswer::Yes)
        mnuSave_Click();
    DiagClosing = true;
    if (m_testData)
        m_testData->close();
    unloadTestForms();
    // Only the adaptor's path undoes something of the load here: its echo setting.
    if (m_session.IrDongleActive) {
        ignoreErrors([&] { m_session.SendSlow(QByteArrayLiteral("reset\r")); });
        m_session.WaitForReply(QByteArrayLiteral("CMD:"), 1000);
    }
    m_port.release();
    emit returnedToMainMenu();
    event->accept();
}
