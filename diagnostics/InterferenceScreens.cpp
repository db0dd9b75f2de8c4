#include "InterferenceScreens.h"

#include "BusyPointer.h"
#include "Diagnostic.h"
#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QPushButton>

InterSetup::InterSetup(Diagnostic &diagnostic, Interference &test) : QDialog(&diagnostic), m_test(test)
{
    setObjectName(QStringLiteral("InterSetup"));
    setWindowTitle(QStringLiteral("Interference Testing"));
    auto *grid = new QGridLayout(this);
    auto *intro =
        new QLabel(QStringLiteral("This program places the Varnel in a listen only mode and will list "
                                  "all emitters by time and date on your frequency above a preset "
                                  "micro-volt threshold."));
    intro->setWordWrap(true);
    grid->addWidget(intro, 0, 0, 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("Please Select Threshold Level:")), 1, 0);
    grid->addWidget(Combo1 = named<QComboBox>("Combo1"), 1, 1);
    grid->addWidget(Command1 = named<QPushButton>("Command1", QStringLiteral("Begin Testing")), 2, 1);
    Combo1->addItems(thresholdChoices());
    connect(Command1, &QPushButton::clicked, this, &InterSetup::Command1_Click);
    setAttribute(Qt::WA_DeleteOnClose);
}

void InterSetup::Command1_Click()
{
    const qint16 threshold = thresholdFromChoice(Combo1->currentText());
    close();
    m_test.start(threshold);
}

Interference::Interference(Diagnostic &diagnostic)
    : m_diagnostic(diagnostic), m_run(std::make_unique<InterferenceRun>(diagnostic.session()))
{
    setObjectName(QStringLiteral("Interference"));
    setWindowTitle(QStringLiteral("Interference Testing"));
    auto *central = new QWidget(this);
    auto *grid = new QGridLayout(central);
    setCentralWidget(central);
    const auto row = [&](int at, const QString &caption, const char *name, const QString &unit) {
        grid->addWidget(new QLabel(caption), at, 0);
        auto *value = named<QLabel>(name);
        grid->addWidget(value, at, 1);
        grid->addWidget(new QLabel(unit), at, 2);
        return value;
    };
    lblFreq = row(0, QStringLiteral("Test Frequency"), "lblFreq", QStringLiteral("MHz"));
    lblThreshold = row(1, QStringLiteral("Threshold Value:"), "lblThreshold", QStringLiteral("uV"));
    lblValue = row(2, QStringLiteral("Current Receive Signal:"), "lblValue", QStringLiteral("uV"));
    auto *headings = new QHBoxLayout;
    for (const char *heading : {"Report #", "Value", "Time", "Date"})
        headings->addWidget(new QLabel(QLatin1String(heading)));
    grid->addLayout(headings, 3, 0, 1, 3);
    grid->addWidget(lstRSS = named<QListWidget>("lstRSS"), 4, 0, 1, 3);
    grid->addWidget(cmdStop = named<QPushButton>("cmdStop", QStringLiteral("Stop Test")), 5, 2);
    QMenu *testing = namedMenu(menuBar(), "mnuTesting", QStringLiteral("&Testing"));
    mnuClear = namedEntry(testing, "mnuClear", QStringLiteral("&Clear Test Results And Restart Test"));
    mnuStop = namedEntry(testing, "mnuStop", QStringLiteral("&Stop Test and Exit"));
    connect(cmdStop, &QPushButton::clicked, this, &QWidget::close);
    connect(mnuStop, &QAction::triggered, this, &QWidget::close);
    connect(mnuClear, &QAction::triggered, this, &Interference::mnuClear_Click);
    m_run->valueShown = [this](const QString &value) { lblValue->setText(value); };
    m_run->rowAdded = [this](const QString &text) {
        lstRSS->addItem(text);
        // Selected and unselected, so that the newest row scrolls into view.
        lstRSS->setCurrentRow(lstRSS->count() - 1);
        lstRSS->clearSelection();
    };
    m_run->ended = [this] { close(); };
}

Interference::~Interference() = default;

void Interference::Load()
{
    m_run->StopLoop = m_run->StopRequested = false;
    lblFreq->setText(m_diagnostic.UnderTest.OperatingFrequency);
    m_diagnostic.TestRunning = true;
    lblValue->setText(QStringLiteral("0"));
}

void Interference::start(qint16 threshold)
{
    m_run->Threshold = threshold;
    show();
    m_shown = true;
    m_run->Restart = true;
    lblThreshold->setText(QString::number(threshold));
    m_run->RunTesting();
}

void Interference::mnuClear_Click()
{
    ModemSession &session = m_diagnostic.session();
    {
        BusyPointer busy(session.prompts());
        m_run->StopLoop = true;
        // What the wait reads is the stream's tail; it is dropped.
        session.WaitForReply(QByteArrayLiteral("CMD:"), 3000);
        lstRSS->clear();
        m_run->rows.clear();
        m_run->Restart = true;
        m_run->StopLoop = false;
    }
    // The first loop still waits underneath; it ends at its next check once this one has closed the form.
    m_run->RunTesting();
}

void Interference::closeEvent(QCloseEvent *event)
{
    if (!m_shown || m_unloaded)
        return event->accept();
    if (!m_run->StopRequested)
        m_run->StopTest();
    if (!m_run->TestDone)
        return event->ignore();
    m_run->finish(m_diagnostic.UnderTest.SquelchText);
    if (m_diagnostic.session().prompts().MsgBox(
            QStringLiteral("Do You Wish To Save the Interference Data to The Diagnostic Testing Data?"),
            MsgButtons::YesNo, MsgIcon::None, QStringLiteral("Save Data")) == MsgAnswer::Yes)
        for (const QString &line : m_run->reportLines())
            m_diagnostic.AddData(line);
    setTestStatus(m_diagnostic.lblInter, TestStatus::Completed);
    m_diagnostic.TestRunning = false;
    m_diagnostic.showReport();
    m_unloaded = true;
    event->accept();
    m_diagnostic.closeIfAsked();
}
