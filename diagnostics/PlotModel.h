#pragma once

#include "LinkMeasures.h"
#include "PollingRun.h"

#include <QList>
#include <QPointF>
#include <QString>

// One line of a plot: its name in the legend and its points in order.
struct PlotSeries
{
    QString name;
    QList<QPointF> points;

    bool operator==(const PlotSeries &) const = default;
};

// The name of an address in the plots, as the report names it.
QString plotName(const QString &row);

// One line per measured address: sample number (from 1) against value. An address that failed to
// connect gave no samples and has no line.
QList<PlotSeries> sampleSeries(const QList<AddressSamples> &samples);

// The link of each polled address over the run: 1 while up, 0 while down, as steps at the end of the
// polls that found the change, drawn on to the last poll of the run. The time axis is seconds from the
// first poll; a clock reading below the one before means midnight has passed. One line per list row,
// in the order of the list.
QList<PlotSeries> linkTimeline(const QList<PollMark> &marks);
