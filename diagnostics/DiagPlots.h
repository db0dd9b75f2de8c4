#pragma once

#include "PlotModel.h"

#include <QWidget>
#include <array>

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

    // Draws the three plots; the one a new run has changed comes to the front.
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
    std::array<QList<PlotSeries>, 3> m_drawn;
};
