#include "DiagPlots.h"
#include "Golden.h"
#include "ScriptedPrompts.h"

#include <QChartView>
#include <QImage>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>

namespace {
// Each line as "name: x,y x,y".
QStringList shown(const QList<PlotSeries> &lines)
{
    QStringList out;
    for (const PlotSeries &line : lines) {
        out << line.name + u':';
        for (const QPointF &p : line.points)
            out.last() += QStringLiteral(" %1,%2").arg(p.x()).arg(p.y());
    }
    return out;
}

// A run's samples as "row value value", or its polls as "clock index row up|down"; the lines they give.
const char *const kSeries[][4] = {
    {"empty run", "samples", "", ""},
    {"13 failed to connect and gave none, 15 silent", "samples", "12 31 35.5 33 | 14 9 | 15",
     "Address 12: 1,31 2,35.5 3,33 | Address 14: 1,9 | Address 15:"},
    {"an outage, drawn to the last poll", "polls",
     "100 0 12 up | 104 0 12 down | 110 0 12 down | 115 0 12 up | 120 0 12 up",
     "Address 12: 0,1 4,1 4,0 15,0 15,1 20,1"},
    {"two rows in list order, the second down from its first poll", "polls",
     "50 0 12 up | 52 1 5,13 down | 54 0 12 up | 56 1 5,13 up",
     "Address 12: 0,1 6,1 | Address 5,13: 2,0 6,0 6,1"},
    {"across midnight", "polls", "86398 0 12 up | 1 0 12 down | 4 0 12 up",
     "Address 12: 0,1 3,1 3,0 6,0 6,1"},
    {"a row never reached", "polls", "10 1 13 down", "Address 13: 0,0"},
};
} // namespace

class DiagPlotsTest : public QObject
{
    Q_OBJECT
private slots:
    void series_data() { addRows(kSeries); }
    void series()
    {
        const auto &[name, kind, input, lines] = fetchRow(kSeries);
        QList<AddressSamples> run;
        QList<PollMark> marks;
        const bool polls = *kind == 'p';
        for (const QString &item : items(input)) {
            const QStringList f = item.split(u' ');
            if (polls)
                marks.append({f[0].toDouble(), f[1].toInt(), f[2], f[3] == u"up"});
            else
                run.append({f[0], {}});
            for (const QString &value : f.mid(1, polls ? 0 : -1))
                run.last().values << value.toDouble();
        }
        QCOMPARE(shown(polls ? linkTimeline(marks) : sampleSeries(run)), items(lines));
    }

    // The plot in front is saved as a PNG of its size, named so when the user gave no extension; a
    // cancel or a missing folder writes nothing.
    void windowAndPng()
    {
        ScriptedPrompts prompts;
        DiagPlots plots(prompts);
        QVERIFY(matchesGolden(describeWindow(plots), QStringLiteral(VARNEL_GOLDEN "/DiagPlots.txt")));
        // The plot of the newest run is in front; drawing the same runs again leaves the choice alone.
        const QList<AddressSamples> one{{QStringLiteral("7"), {40}}};
        const QList<PollMark> poll{{10, 0, QStringLiteral("7"), true}};
        QString fronts;
        for (const auto &[signal, quality, polls] : {std::tuple{one, one, poll},
                                                     {one, one, poll},
                                                     {{}, {}, {}},
                                                     {one, {}, {}},
                                                     {one, one, {}},
                                                     {{}, one, poll}}) {
            plots.showRuns(signal, quality, polls);
            fronts += QString::number(plots.tabPlots->currentIndex());
        }
        QCOMPARE(fronts, QStringLiteral("222012"));
        plots.show();
        QTemporaryDir dir;
        prompts.expectFileDialog(std::nullopt, QStringLiteral("Save as PNG"));
        prompts.expectFileDialog(dir.filePath(QStringLiteral("none/plot.png")));
        prompts.expectMsgBox(appErrorText({AppErrors::PathNotFound, QStringLiteral("Path not found")}));
        prompts.expectFileDialog(dir.filePath(QStringLiteral("plot")));
        for (int i = 0; i < 3; ++i)
            plots.cmdSavePng->click();
        QVERIFY(prompts.verify());
        QCOMPARE(QDir(dir.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
                 QStringList{QStringLiteral("plot.png")});
        QCOMPARE(QImage(dir.filePath(QStringLiteral("plot.png")), "PNG").size(),
                 plots.tabPlots->currentWidget()->size() * plots.devicePixelRatio());
    }
};

QTEST_MAIN(DiagPlotsTest)
#include "DiagPlotsTest.moc"
