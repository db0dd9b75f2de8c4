#include "MemoryCommControl.h"

#include "AppError.h"
#include "TimeSource.h"

MemoryCommControl::MemoryCommControl(QObject *parent) : CommControl(parent) {}

void MemoryCommControl::feed(const QByteArray &bytes)
{
    if (PortOpen())
        record({WireEvent::Kind::Received, 0, bytes});
    deliver(bytes);
}

void MemoryCommControl::failNextOpen(int errorNumber, const QString &description)
{
    m_failNumber = errorNumber;
    m_failDescription = description;
}

QByteArray MemoryCommControl::written() const
{
    QByteArray all;
    for (const WireEvent &e : m_events)
        if (e.kind == WireEvent::Kind::Write)
            all += e.bytes;
    return all;
}

QList<QByteArray> MemoryCommControl::writes() const
{
    QList<QByteArray> list;
    for (const WireEvent &e : m_events)
        if (e.kind == WireEvent::Kind::Write)
            list.append(e.bytes);
    return list;
}

QString MemoryCommControl::deviceFor(int port) const
{
    return QStringLiteral("memory:%1").arg(port);
}

void MemoryCommControl::openDevice()
{
    if (m_failNumber != 0) {
        const AppError error{m_failNumber, m_failDescription};
        m_failNumber = 0;
        throw error;
    }
    record({WireEvent::Kind::Open, 0, {}});
    if (m_peer)
        m_peer->hostOpened(true);
}

void MemoryCommControl::closeDevice()
{
    record({WireEvent::Kind::Close, 0, {}});
    if (m_peer)
        m_peer->hostOpened(false);
}

void MemoryCommControl::writeDevice(const QByteArray &bytes)
{
    record({WireEvent::Kind::Write, 0, bytes});
    if (m_peer)
        m_peer->hostWrote(bytes, lineSettings());
}

void MemoryCommControl::applyLineSettings(const LineSettings &settings)
{
    record({WireEvent::Kind::Settings, 0, lineSettingsText(settings).toLatin1()});
    if (m_peer)
        m_peer->hostLineSettings(settings);
}

void MemoryCommControl::applyControlLines(bool dtr, bool rts)
{
    WireEvent e{WireEvent::Kind::ControlLines, 0, {}};
    e.dtr = dtr;
    e.rts = rts;
    record(e);
    if (m_peer)
        m_peer->hostControlLines(dtr, rts);
}

void MemoryCommControl::applyHandshaking(int) {}

bool MemoryCommControl::carrierDetect() const
{
    return m_peer && m_peer->carrier();
}

void MemoryCommControl::record(WireEvent event)
{
    event.atMs = m_clock ? m_clock->elapsedMs() : 0;
    m_events.append(std::move(event));
}
