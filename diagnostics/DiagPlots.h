#pragma once

#include "PlotModel.h"

#include <QWidget>

class Prompts;
class QChartView;
class QPushButton;
class QTabWidget;

// "Test Plots": the samples of the last signal strength and data quality runs, one line an address,
// and the link of each polled address over the last polling run. It only reads what the runs kept;
// the report stays the record of the tests.
class DiagPlots : public QWidget
{
    Q_OBJECT
public:
    explicit DiagPlots(Prompts &prompts, QWidget *parent = nullptr);

    void showRuns(const QList<AddressSamples> &signal, const QList<AddressSamples> &quality,
                  const QList<PollMark> &polls);
    // Asks for a file and writes the plot in front to it as a PNG image; a cancelled dialog writes
    // nothing.
    void cmdSavePng_Click();

    QTabWidget *tabPlots;
    QChartView *chtSignal, *chtQuality, *chtLinks;
    QPushButton *cmdSavePng;

private:
    Prompts &m_prompts;
};
