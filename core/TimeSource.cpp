#include "TimeSource.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QLocale>

double TimeSource::Timer() const
{
    const QTime t = now().time();
    return t.msecsSinceStartOfDay() / 1000.0;
}

QString TimeSource::timeText() const
{
    return QLocale::system().toString(now().time(), QLocale::ShortFormat);
}

QString TimeSource::dateText() const
{
    return shortDateText(QLocale::system(), now().date());
}

QString shortDateText(const QLocale &locale, QDate date)
{
    constexpr int kDatePlaces = 10;
    const QString text = locale.toString(date, QLocale::ShortFormat);
    return text.size() <= kDatePlaces ? text : date.toString(Qt::ISODate);
}

RealTime::RealTime(QObject *parent) : TimeSource(parent)
{
    m_timer.setObjectName(QStringLiteral("MiliSecondTimer"));
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &RealTime::onTick);
    m_elapsed.start();
}

void RealTime::MsDelay(int ms)
{
    if (ms < 1)
        return;
    m_timer.start(ms);
    QEventLoop loop;
    m_loops.append(&loop);
    loop.exec();
    m_loops.removeOne(&loop);
}

void RealTime::onTick()
{
    // The one timer ends every wait in progress; each loop returns as soon as control reaches it.
    m_timer.stop();
    for (QEventLoop *loop : std::as_const(m_loops))
        loop->quit();
}

qint64 RealTime::elapsedMs() const
{
    return m_elapsed.elapsed();
}

QDateTime RealTime::now() const
{
    return QDateTime::currentDateTime();
}

void RealTime::after(int ms, std::function<void()> fn)
{
    QTimer::singleShot(ms, Qt::PreciseTimer, this, std::move(fn));
}

VirtualTime::VirtualTime(QObject *parent) : TimeSource(parent), m_origin(QDate(2026, 11, 21), QTime(9, 0, 0))
{}

void VirtualTime::MsDelay(int ms)
{
    if (ms < 1)
        return;
    ++m_delayCount;
    m_deadline = m_now + ms;
    runToDeadline();
}

void VirtualTime::advance(qint64 ms)
{
    m_deadline = m_now + ms;
    runToDeadline();
}

void VirtualTime::settle()
{
    m_deadline = m_now;
    runToDeadline();
}

void VirtualTime::runToDeadline()
{
    // m_deadline is re-read on every turn: a wait begun by a callback re-arms it for both.
    for (;;) {
        QCoreApplication::sendPostedEvents();
        if (!m_queue.empty() && m_queue.begin()->first.first <= m_deadline) {
            auto it = m_queue.begin();
            m_now = std::max(m_now, it->first.first);
            auto fn = std::move(it->second);
            m_queue.erase(it);
            fn();
            continue;
        }
        if (m_now >= m_deadline)
            break;
        m_now = m_deadline;
    }
}

void VirtualTime::after(int ms, std::function<void()> fn)
{
    m_queue.emplace(std::make_pair(m_now + std::max(ms, 0), m_sequence++), std::move(fn));
}
