#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace sim {

// What really happened in the simulated world, so that a test can hold the program's report
// against it.
struct GroundTruth
{
    struct Outage
    {
        int from = 0;
        int to = 0;
        qint64 startMs = 0;
        qint64 endMs = -1; // -1 while it lasts
    };
    struct SettingChange
    {
        qint64 atMs = 0;
        int address = 0; // of the modem whose working copy changed
        QString command; // full command name
        QString value;
    };
    struct Packet
    {
        qint64 atMs = 0;
        int from = 0;
        int to = 0;
        int retries = 0;
        bool delivered = false;
        int bytes = 0; // payload
    };
    struct Image
    {
        qint64 atMs = 0;
        int address = 0;
        int blocks = 0;
        QByteArray bytes;
        bool complete = false;
        QString version; // the firmware version the unit runs from then on
    };

    // A figure a unit printed for the diagnostics: a meter reading (from 0) or the quality of the
    // path from a partner, as the unit wrote it to its port.
    struct Reading
    {
        qint64 atMs = 0;
        int address = 0; // of the unit that printed it
        int from = 0;    // of the partner whose packet it measured, 0 for the meter
        int value = 0;
    };

    QList<Outage> outages;
    QList<Reading> meterReadings;
    QList<Reading> qualityReadings;
    QList<SettingChange> changes;
    QList<Packet> packets;
    QList<Image> images;
    QList<QPair<qint64, int>> resets;          // time and address of each restart
    QList<QPair<qint64, int>> factoryDefaults; // time and address of each FA

    int retriesGiven(int from, int to) const
    {
        int total = 0;
        for (const Packet &p : packets)
            if (p.from == from && p.to == to)
                total += p.retries;
        return total;
    }
};

} // namespace sim
