#include "PlotModel.h"

#include <QMap>

QString plotName(const QString &row)
{
    return QStringLiteral("Address ") + row;
}

QList<PlotSeries> sampleSeries(const QList<AddressSamples> &samples)
{
    QList<PlotSeries> lines;
    for (const AddressSamples &address : samples) {
        PlotSeries line{plotName(address.row), {}};
        for (qsizetype i = 0; i < address.values.size(); ++i)
            line.points.append({double(i + 1), address.values[i]});
        lines.append(line);
    }
    return lines;
}

QList<PlotSeries> linkTimeline(const QList<PollMark> &marks)
{
    QMap<int, PlotSeries> rows;
    const double first = marks.isEmpty() ? 0 : marks.first().clock;
    double days = 0, previous = first, elapsed = 0;
    for (const PollMark &mark : marks) {
        if (mark.clock < previous)
            days += kSecondsPerDay;
        previous = mark.clock;
        elapsed = mark.clock + days - first;
        PlotSeries &line = rows[mark.index];
        line.name = plotName(mark.row);
        const double level = mark.up ? 1 : 0;
        if (line.points.isEmpty()) {
            line.points.append({elapsed, level});
        } else if (const double was = line.points.last().y(); was != level) {
            line.points.append({elapsed, was});
            line.points.append({elapsed, level});
        }
    }
    QList<PlotSeries> lines = rows.values();
    for (PlotSeries &line : lines)
        if (line.points.last().x() < elapsed)
            line.points.append({elapsed, line.points.last().y()});
    return lines;
}
