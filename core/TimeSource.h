#pragma once

#include <QDateTime>
#include <QElapsedTimer>
#include <QList>
#include <QLocale>
#include <QObject>
#include <QTimer>
#include <functional>
#include <map>

class QEventLoop;

// The one source of waits and clock readings. Every wait of the program is MsDelay: it pumps
// events while it waits and costs no CPU. There is one timer for all waits, so a wait begun by an
// event handler during another wait re-arms it, and both end when it next fires.
class TimeSource : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void MsDelay(int ms) = 0;
    // Monotonic milliseconds since the source began.
    virtual qint64 elapsedMs() const = 0;
    // Wall-clock date and time.
    virtual QDateTime now() const = 0;
    // Runs fn once, ms from now, from the event loop (or from a virtual wait).
    virtual void after(int ms, std::function<void()> fn) = 0;

    // The clock reading of the program: seconds since midnight, with the fraction.
    double Timer() const;
    // The system's short time and date texts.
    QString timeText() const;
    QString dateText() const;
};

// The short date of a locale, as the report rows lay it out in ten places; a locale whose short
// date is longer (the C locale writes "23 Nov 2026") gives the numeric date instead, so that no
// row of a report is lost to its date.
QString shortDateText(const QLocale &locale, QDate date);

// Real time: QTimer MiliSecondTimer with a precise timer and nested event loops.
class RealTime : public TimeSource
{
    Q_OBJECT
public:
    explicit RealTime(QObject *parent = nullptr);

    void MsDelay(int ms) override;
    qint64 elapsedMs() const override;
    QDateTime now() const override;
    void after(int ms, std::function<void()> fn) override;

    QTimer &MiliSecondTimer() { return m_timer; }

private:
    void onTick();

    QTimer m_timer;
    QElapsedTimer m_elapsed;
    QList<QEventLoop *> m_loops;
};

// Virtual time for tests and the in-memory modem: MsDelay moves the clock forward at once, running
// what was scheduled for the time it passes, in order. A 6-second silent-modem path takes no time.
class VirtualTime : public TimeSource
{
    Q_OBJECT
public:
    explicit VirtualTime(QObject *parent = nullptr);

    void MsDelay(int ms) override;
    qint64 elapsedMs() const override { return m_now; }
    QDateTime now() const override { return m_origin.addMSecs(m_now); }
    void after(int ms, std::function<void()> fn) override;

    // Where the virtual wall clock starts.
    void setOrigin(const QDateTime &origin) { m_origin = origin; }
    // Moves the clock on as a wait would, without being one.
    void advance(qint64 ms);
    // Runs everything scheduled up to now, without moving the clock.
    void settle();
    // Number of MsDelay calls so far, and the sum of the time they asked for.
    int delayCount() const { return m_delayCount; }
    bool hasPending() const { return !m_queue.empty(); }

private:
    void runToDeadline();

    qint64 m_now = 0;
    qint64 m_deadline = 0;
    quint64 m_sequence = 0;
    int m_delayCount = 0;
    QDateTime m_origin;
    // Keyed by (time, sequence) so that callbacks at the same time run in the order scheduled.
    std::map<std::pair<qint64, quint64>, std::function<void()>> m_queue;
};
