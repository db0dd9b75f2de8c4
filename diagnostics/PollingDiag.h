#pragma once

#include "PollingRun.h"

#include <QMainWindow>
#include <array>
#include <memory>

class Diagnostic;
class QAction;
class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;

// "Polling Diagnostic": the running list of link events and the totals of the first eight addresses.
// The form cannot close while its loop runs: the first close asks the loop to stop, and the loop
// closes the form again when it has.
class PollingDiag : public QMainWindow
{
    Q_OBJECT
public:
    explicit PollingDiag(Diagnostic &diagnostic);
    ~PollingDiag() override;

    // Fills the form, marks the test running and prepares the modem.
    void Load();
    void StartPolling();
    PollingRun &run() { return *m_run; }

    static constexpr int kSummaryRows = 8;
    QLabel *lblSerial, *lblFreq, *lblPollAdd, *lblLinkStat, *lblPackSize;
    QProgressBar *pbPolling;
    QListWidget *lstPolling;
    std::array<QLabel *, kSummaryRows> lblAddTotal, lblTrans, lblRetries, lblDown, lblLinkTotal;
    QPushButton *cmdStop;
    QAction *mnuPause, *mnuStop;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void showLink(int index, const QString &row, const LinkRecord &link);

    Diagnostic &m_diagnostic;
    std::unique_ptr<PollingRun> m_run;
    bool m_loaded = false;
};
