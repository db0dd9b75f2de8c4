#include "PollingDiag.h"

#include "Diagnostic.h"
#include "DiagnosticForms.h"
#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>

namespace {
void setLinkLook(QLabel *label, bool up)
{
    label->setText(up ? QStringLiteral("Link Up") : QStringLiteral("Link Down"));
    QPalette palette = label->palette();
    palette.setColor(QPalette::Window, up ? Qt::green : Qt::red);
    label->setPalette(palette);
    label->setAutoFillBackground(true);
}
} // namespace

PollingDiag::PollingDiag(Diagnostic &diagnostic)
    : m_diagnostic(diagnostic), m_run(std::make_unique<PollingRun>(
                                    diagnostic.session(), [&diagnostic] { return diagnostic.addresses(); }))
{
    setObjectName(QStringLiteral("PollingDiag"));
    setWindowTitle(QStringLiteral("Polling Diagnostic"));
    auto *central = new QWidget(this);
    setCentralWidget(central);
    auto *grid = new QGridLayout(central);
    const auto pair = [&](const QString &caption, const char *name, int row, int column) {
        grid->addWidget(new QLabel(caption), row, column);
        auto *label = named<QLabel>(name);
        grid->addWidget(label, row, column + 1);
        return label;
    };
    lblSerial = pair(QStringLiteral("Varnel Under Test:"), "lblSerial", 0, 0);
    lblFreq = pair(QStringLiteral("Frequency:"), "lblFreq", 0, 2);
    grid->addWidget(new QLabel(QStringLiteral("MHz")), 0, 4);
    lblPollAdd = pair(QStringLiteral("Polling Address"), "lblPollAdd", 1, 0);
    lblLinkStat = pair(QStringLiteral("Status:"), "lblLinkStat", 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("Progress:")), 2, 0);
    grid->addWidget(pbPolling = named<QProgressBar>("pbPolling"), 2, 1, 1, 4);
    pbPolling->setRange(0, 100);
    lblPackSize = pair(QStringLiteral("Test Packet Length:"), "lblPackSize", 3, 0);
    const QStringList headings{QStringLiteral("Report #"), QStringLiteral("Connect Address"),
                               QStringLiteral("Retries"),  QStringLiteral("Time Down"),
                               QStringLiteral("Time"),     QStringLiteral("Date")};
    for (int i = 0; i < headings.size(); ++i)
        grid->addWidget(new QLabel(headings[i]), 4, i);
    grid->addWidget(lstPolling = named<QListWidget>("lstPolling"), 5, 0, 1, 6);
    lstPolling->setFont(QFont(QStringLiteral("Monospace")));

    auto *totals = named<QGroupBox>("fraTotals", QStringLiteral("Totals Summary"));
    grid->addWidget(totals, 6, 0, 1, 6);
    auto *table = new QGridLayout(totals);
    const QStringList columns{QStringLiteral("Connect Address"), QStringLiteral("Total Transmissions"),
                              QStringLiteral("Total Retries"), QStringLiteral("Total Time Link Down"),
                              QStringLiteral("Current Link Status")};
    for (int c = 0; c < columns.size(); ++c)
        table->addWidget(new QLabel(columns[c]), 0, c);
    for (int r = 0; r < kSummaryRows; ++r) {
        int c = 0;
        for (auto *array : {&lblAddTotal, &lblTrans, &lblRetries, &lblDown, &lblLinkTotal}) {
            static const char *const names[] = {"lblAddTotal", "lblTrans", "lblRetries", "lblDown",
                                                "lblLinkTotal"};
            QLabel *label = (*array)[size_t(r)] =
                named<QLabel>(QStringLiteral("%1_%2").arg(QLatin1String(names[c])).arg(r));
            label->setVisible(false);
            table->addWidget(label, r + 1, c++);
        }
    }
    grid->addWidget(cmdStop = named<QPushButton>("cmdStop", QStringLiteral("Stop Polling Test")), 7, 0, 1, 6);

    QMenu *testing = namedMenu(menuBar(), "mnuTesting", QStringLiteral("&Testing"));
    mnuPause = namedEntry(testing, "mnuPause", QStringLiteral("&Pause Polling Diagnostic"));
    mnuPause->setCheckable(true);
    mnuStop = namedEntry(testing, "mnuStop", QStringLiteral("&Stop Test and Exit"));
    connect(mnuPause, &QAction::triggered, this, [this](bool nowMarked) { m_run->pause(!nowMarked); });
    connect(mnuStop, &QAction::triggered, this, &QWidget::close);
    connect(cmdStop, &QPushButton::clicked, this, &QWidget::close);

    m_run->rowAdded = [this](const QString &row) {
        lstPolling->addItem(row);
        lstPolling->setCurrentRow(lstPolling->count() - 1);
        lstPolling->scrollToBottom();
        lstPolling->clearSelection();
    };
    m_run->progressChanged = [this](int value) { pbPolling->setValue(value); };
    m_run->pollingAddress = [this](const QString &row) { lblPollAdd->setText(row); };
    m_run->linkShown = [this](int index, const QString &row, const LinkRecord &link) {
        showLink(index, row, link);
    };
    m_run->stopped = [this] { close(); };
    setAttribute(Qt::WA_DeleteOnClose);
}

PollingDiag::~PollingDiag() = default;

void PollingDiag::Load()
{
    lblFreq->setText(m_diagnostic.UnderTest.OperatingFrequency);
    lblSerial->setText(m_diagnostic.UnderTest.SerialText);
    pbPolling->setValue(0);
    m_diagnostic.TestRunning = true;
    m_run->ConfigureVarnel();
    m_run->StopLoop = m_run->StopRequested = m_run->SkipNextPoll = false;
    m_run->ReportNumber = 0;
    m_loaded = true;
}

void PollingDiag::StartPolling()
{
    lblPackSize->setText(QString::number(packetSize(m_run->TestPacket)));
    m_run->StartPolling();
}

void PollingDiag::showLink(int index, const QString &row, const LinkRecord &link)
{
    setLinkLook(lblLinkStat, link.LinkUp);
    const size_t i = size_t(index);
    setLinkLook(lblLinkTotal[i], link.LinkUp);
    lblAddTotal[i]->setText(row);
    lblTrans[i]->setText(QString::number(link.Transmissions));
    lblRetries[i]->setText(QString::number(link.RetryTotal));
    lblDown[i]->setText(link.DownText);
    for (QLabel *label : {lblAddTotal[i], lblTrans[i], lblRetries[i], lblDown[i], lblLinkTotal[i]})
        label->setVisible(true);
}

void PollingDiag::closeEvent(QCloseEvent *event)
{
    if (!m_loaded) {
        event->accept();
        return;
    }
    if (!m_run->StopLoop)
        m_run->StopPolling();
    if (m_run->StopRequested) {
        event->ignore();
        return;
    }
    m_loaded = false;
    const bool all =
        m_diagnostic.session().prompts().MsgBox(
            QStringLiteral("Do You Wish To Add All Reports To The Diagnostic Testing Data?\r"
                           "The Totals Will be Added to the Report Automatically."),
            MsgButtons::YesNo, MsgIcon::None, QStringLiteral("Add Data to Report"), 2) == MsgAnswer::Yes;
    for (const QString &line : m_run->reportLines(all))
        m_diagnostic.AddData(line);
    if (all)
        m_diagnostic.showComments();
    m_run->restoreModems();
    m_diagnostic.pollMarks = m_run->marks;
    m_diagnostic.refreshPlots();
    setTestStatus(m_diagnostic.lblPolling, TestStatus::Completed);
    m_diagnostic.TestRunning = false;
    m_diagnostic.showReport();
    event->accept();
}
