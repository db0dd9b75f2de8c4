#pragma once

#include "CommControl.h"

#include <QList>

class TimeSource;

// What sits at the far end of an in-memory port: the modem simulator in tests and in the demo.
class PortPeer
{
public:
    virtual ~PortPeer() = default;
    // Bytes that left the computer, at the line settings the port had at that moment.
    virtual void hostWrote(const QByteArray &bytes, const LineSettings &line) = 0;
    virtual void hostLineSettings(const LineSettings &line) { Q_UNUSED(line); }
    virtual void hostControlLines(bool dtr, bool rts)
    {
        Q_UNUSED(dtr);
        Q_UNUSED(rts);
    }
    virtual void hostOpened(bool open) { Q_UNUSED(open); }
    virtual bool carrier() const { return false; }
};

// One thing that happened on the wire, stamped with the time source's clock, for transcripts.
struct WireEvent
{
    enum class Kind { Write, Settings, ControlLines, Open, Close, Received };
    Kind kind = Kind::Write;
    qint64 atMs = 0;
    QByteArray bytes; // Write and Received: the bytes; Settings: the settings text
    bool dtr = false; // ControlLines
    bool rts = false; // ControlLines
};

// The serial control in memory: the far side is a PortPeer, every event is recorded, and faults
// (a missing device, a busy one, a hang-up) can be ordered by a test.
class MemoryCommControl : public CommControl
{
    Q_OBJECT
public:
    explicit MemoryCommControl(QObject *parent = nullptr);

    void setPeer(PortPeer *peer) { m_peer = peer; }
    void setClock(const TimeSource *clock) { m_clock = clock; }

    // Bytes from the modem arrive.
    void feed(const QByteArray &bytes);
    // The far side goes away: the port closes at once.
    void hangUp() { dropLine(); }
    // The next opening fails with this error (0 for none).
    void failNextOpen(int errorNumber, const QString &description);

    const QList<WireEvent> &events() const { return m_events; }
    void clearEvents() { m_events.clear(); }
    // All bytes written, joined, since the last clearEvents().
    QByteArray written() const;
    // The writes one by one.
    QList<QByteArray> writes() const;

    QString deviceFor(int port) const override;

protected:
    void openDevice() override;
    void closeDevice() override;
    void writeDevice(const QByteArray &bytes) override;
    void applyLineSettings(const LineSettings &settings) override;
    void applyControlLines(bool dtr, bool rts) override;
    void applyHandshaking(int code) override;
    bool carrierDetect() const override;

private:
    void record(WireEvent event);

    PortPeer *m_peer = nullptr;
    const TimeSource *m_clock = nullptr;
    QList<WireEvent> m_events;
    int m_failNumber = 0;
    QString m_failDescription;
};
