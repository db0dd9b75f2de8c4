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
// The tabs in their order.
const std::array<const PlotLook *, 3> kLooks{&kSignalLook, &kQualityLook, &kLinksLook};
} // namespace

DiagPlots::DiagPlots(Prompts &prompts, QWidget *parent) : QWidget(parent, Qt::Window), m_prompts(prompts)
{
    setObjectName(QStringLiteral("DiagPlots"));
    setWindowTitle(QStringLiteral("Test Plots"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tabPlots = named<QTabWidget>("tabPlots"));
    for (const PlotLook *look : kLooks) {
        auto *view = named<QChartView>(look->name);
        view->setRenderHint(QPainter::Antialiasing);
        view->chart()->setTitle(QLatin1String(look->tab));
        tabPlots->addTab(view, QLatin1String(look->tab));
    }
    chtSignal = qobject_cast<QChartView *>(tabPlots->widget(0));
    chtQuality = qobject_cast<QChartView *>(tabPlots->widget(1));
    chtLinks = qobject_cast<QChartView *>(tabPlots->widget(2));
    layout->addWidget(cmdSavePng = named<QPushButton>("cmdSavePng", QStringLiteral("Save as PNG")));
    connect(cmdSavePng, &QPushButton::clicked, this, &DiagPlots::cmdSavePng_Click);
    resize(720, 480);
}

void DiagPlots::showRuns(const QList<AddressSamples> &signal, const QList<AddressSamples> &quality,
                         const QList<PollMark> &polls)
{
    const std::array<QList<PlotSeries>, 3> lines{sampleSeries(signal), sampleSeries(quality),
                                                 linkTimeline(polls)};
    for (int tab = 0; tab < 3; ++tab) {
        const QList<PlotSeries> &drawn = lines[size_t(tab)];
        draw(qobject_cast<QChartView *>(tabPlots->widget(tab)), drawn, *kLooks[size_t(tab)]);
        if (drawn != m_drawn[size_t(tab)] && !drawn.isEmpty())
            tabPlots->setCurrentIndex(tab);
    }
    m_drawn = lines;
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
