#include "DiagPlots.h"

#include "AppError.h"
#include "Named.h"
#include "Prompts.h"
#include "WholeFile.h"

#include <QBuffer>
#include <QChartView>
#include <QFileInfo>
#include <QLineSeries>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <QValueAxis>

namespace {
constexpr double kLaneStep = 0.04;

struct PlotLook
{
    const char *name, *tab, *xTitle, *yTitle;
    // Up and down sit half a step inside the chart, clear of its edges.
    bool levels = false;
};

void draw(QChartView *view, const QList<PlotSeries> &lines, const PlotLook &look)
{
    QChart *chart = view->chart();
    chart->removeAllSeries();
    for (qsizetype lane = 0; lane < lines.size(); ++lane) {
        auto *series = new QLineSeries(chart);
        series->setName(lines[lane].name);
        // Links that are up or down together would hide each other: each address keeps a thin lane.
        for (const QPointF &point : lines[lane].points)
            series->append(point.x(), point.y() + (look.levels ? double(lane) * kLaneStep : 0));
        chart->addSeries(series);
    }
    // The axes follow the figures of the run; a run without figures leaves an empty chart.
    chart->createDefaultAxes();
    // Samples, seconds and readings are whole numbers: the ticks fall on round ones.
    for (QAbstractAxis *axis : chart->axes()) {
        const bool across = axis->orientation() == Qt::Horizontal;
        axis->setTitleText(QLatin1String(across ? look.xTitle : look.yTitle));
        auto *values = qobject_cast<QValueAxis *>(axis);
        if (!values)
            continue;
        if (look.levels && !across) {
            values->setRange(-0.5, 1.5);
            values->setTickCount(5);
        } else {
            values->applyNiceNumbers();
            values->setLabelFormat(QStringLiteral("%d"));
        }
    }
}

const PlotLook kSignalLook{"chtSignal", "Signal Strength", "Sample", "Meter Reading"};
const PlotLook kQualityLook{"chtQuality", "Data Quality", "Sample", "Data Quality"};
const PlotLook kLinksLook{"chtLinks", "Link Timeline", "Seconds", "Link Up (1) / Down (0)", true};
} // namespace

DiagPlots::DiagPlots(Prompts &prompts, QWidget *parent) : QWidget(parent, Qt::Window), m_prompts(prompts)
{
    setObjectName(QStringLiteral("DiagPlots"));
    setWindowTitle(QStringLiteral("Test Plots"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tabPlots = named<QTabWidget>("tabPlots"));
    for (auto [view, look] :
         {std::pair{&chtSignal, &kSignalLook}, {&chtQuality, &kQualityLook}, {&chtLinks, &kLinksLook}}) {
        *view = named<QChartView>(look->name);
        (*view)->setRenderHint(QPainter::Antialiasing);
        (*view)->chart()->setTitle(QLatin1String(look->tab));
        tabPlots->addTab(*view, QLatin1String(look->tab));
    }
    layout->addWidget(cmdSavePng = named<QPushButton>("cmdSavePng", QStringLiteral("Save as PNG")));
    connect(cmdSavePng, &QPushButton::clicked, this, &DiagPlots::cmdSavePng_Click);
    resize(720, 480);
}

void DiagPlots::showRuns(const QList<AddressSamples> &signal, const QList<AddressSamples> &quality,
                         const QList<PollMark> &polls)
{
    draw(chtSignal, sampleSeries(signal), kSignalLook);
    draw(chtQuality, sampleSeries(quality), kQualityLook);
    draw(chtLinks, linkTimeline(polls), kLinksLook);
}

void DiagPlots::cmdSavePng_Click()
{
    FileDialogRequest request;
    request.kind = FileDialogRequest::Kind::Save;
    request.title = QStringLiteral("Save as PNG");
    request.filter = QStringLiteral("PNG Images (*.png)");
    QString name = m_prompts.FileDialog(request);
    if (name.isEmpty())
        return;
    if (QFileInfo(name).suffix().isEmpty())
        name += QStringLiteral(".png");
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    tabPlots->currentWidget()->grab().save(&buffer, "PNG");
    attempt(m_prompts, [&] { saveWholeFile(name, png); });
}
