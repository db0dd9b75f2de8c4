#include "Diagnostic.h"

#include "BusyPointer.h"
#include "DiagnosticForms.h"
#include "InterferenceScreens.h"
#include "ModemSession.h"
#include "Prompts.h"

#include <QAction>
#include <QEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace {
const QString kCompleted = QStringLiteral("Completed");
} // namespace

bool Diagnostic::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonRelease && static_cast<QWidget *>(watched)->isEnabled()) {
        if (watched == lblRSS)
            cmdRSS->click();
        else if (watched == lblInter)
            cmdInter->click();
        else if (watched == lblDQ)
            cmdDQ->click();
        else if (watched == lblPolling)
            cmdPolling->click();
    }
    return QMainWindow::eventFilter(watched, event);
}

bool Diagnostic::askTestAgain(const QString &testName)
{
    return m_session.prompts().MsgBox(QStringLiteral("The ") + testName +
                                          QStringLiteral(" Test Has Been Completed.\r"
                                                         "Do you wish to run the test again?"),
                                      MsgButtons::YesNo, MsgIcon::None,
                                      QStringLiteral("Test Again?")) == MsgAnswer::Yes;
}

bool Diagnostic::startLinkTest(QLabel *label, const QString &testName, const QString &skipText,
                               const QString &title)
{
    Prompts &prompts = m_session.prompts();
    if (TestRunning) {
        prompts.Beep();
        return false;
    }
    if (label->text() == kCompleted && !askTestAgain(testName))
        return false;
    setTestStatus(label, TestStatus::Running);
    prompts.MsgBox(skipText, MsgButtons::OkOnly, MsgIcon::Information);
    TestRunning = true;
    m_linkTestRunning = true;
    showDiagInfo(title);
    return true;
}

TestHooks Diagnostic::testHooks()
{
    DiagInfo *info = m_info;
    info->lblStatus->setText(QStringLiteral("Configuring Varnel for Testing.  Standby..."));
    // The dialog may be gone before the test ends; what it would show then goes nowhere.
    const auto onInfo = [this](auto show) {
        return [this, show](auto value) {
            if (m_info)
                show(*m_info, value);
        };
    };
    return {
        [this] { return TestRunning; },
        [this](const QString &line) { AddData(line); },
        onInfo([](DiagInfo &i, const QString &text) { i.lblStatus->setText(text); }),
        onInfo([](DiagInfo &i, const QString &row) { i.lblAdd->setText(row); }),
        onInfo([](DiagInfo &i, double value) { i.pbStatus->setValue(int(value)); }),
    };
}

void Diagnostic::endLinkTest(QLabel *label)
{
    if (m_info)
        m_info->close();
    setTestStatus(label, TestStatus::Completed);
    refreshPlots();
    TestRunning = false;
    m_linkTestRunning = false;
    showReport();
    closeIfAsked();
}

void Diagnostic::closeIfAsked()
{
    if (m_closeAfterTest)
        close();
}

void Diagnostic::mnuInterference_Click()
{
    if (TestRunning) {
        m_session.prompts().Beep();
        return;
    }
    if (m_interference)
        m_interference->deleteLater();
    m_interference = new Interference(*this);
    m_interference->Load();
    (new InterSetup(*this, *m_interference))->show();
}

void Diagnostic::SignalStrength()
{
    if (!startLinkTest(lblRSS, QStringLiteral("Signal Strength"),
                       QStringLiteral("The receive signal strength test can only measure destination Varnels "
                                      "without repeaters.  If repeaters are included in the test addresses, "
                                      "these will be skipped"),
                       QStringLiteral("Measuring Received Signal Strength")))
        return;
    BusyPointer busy(m_session.prompts());
    SignalStrengthRun run(m_session, testHooks());
    run.run(addresses(), UnderTest.ModelName);
    signalSamples = run.samples();
    endLinkTest(lblRSS);
}

void Diagnostic::DataQuality()
{
    if (!startLinkTest(lblDQ, QStringLiteral("Data Quality"),
                       QStringLiteral("The data quality test can only measure destination Varnels without "
                                      "repeaters.  If repeaters are included in the test addresses, these "
                                      "will be skipped"),
                       QStringLiteral("Measuring Data Quality")))
        return;
    BusyPointer busy(m_session.prompts());
    DataQualityRun run(m_session, testHooks());
    run.run(addresses());
    qualitySamples = run.samples();
    endLinkTest(lblDQ);
}

void Diagnostic::mnuAll_Click()
{
    RunDq = UnderTest.ModelName != QLatin1String("Q40Z");
    if (UnderTest.HasRssOption)
        RunRss = RunInterference = true;
    RunPolling = true;
    BeginTesting();
}

void Diagnostic::BeginTesting()
{
    if (RunRss)
        SignalStrength();
    if (RunDq && !DiagClosing)
        DataQuality();
    if (!RunPolling || DiagClosing)
        return;
    // A Yes runs the polling test twice in a row, a No still runs it once.
    if (lblPolling->text() == kCompleted && askTestAgain(QStringLiteral("Polling")))
        mnuPolling_Click();
    mnuPolling_Click();
}
