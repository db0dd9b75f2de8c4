#pragma once

#include "CommControl.h"
#include "Network.h"
#include "Scenario.h"
#include "SerialLine.h"

#include <QObject>
#include <QString>
#include <memory>

class QSocketNotifier;
class TimeSource;

namespace sim {

// Serves a scenario's local modem on a pseudo-terminal, so that a program can open the slave
// device as its serial port. The line follows the rate and frame the program sets on the slave;
// a pseudo-terminal carries no control lines, so the infra-red adaptor cannot be driven through it.
class PtyServer : public QObject
{
    Q_OBJECT
public:
    PtyServer(TimeSource &time, const Scenario &scenario, QObject *parent = nullptr);
    ~PtyServer() override;

    // Opens the pseudo-terminal; false with the reason in *error when the system refuses.
    bool start(QString *error);
    QString slavePath() const { return m_slavePath; }
    Network &network() { return *m_network; }
    SerialLine &line() { return *m_line; }
    // Rate and frame the program has set on the slave.
    LineSettings hostSettings() const;

    // Every byte in either direction, for a transcript on the terminal that runs the tool.
    void setTrace(bool on) { m_trace = on; }

    // The far end goes away: the program sees its line drop.
    void hangUp();

signals:
    void traced(const QString &line);

private:
    void onReadable();
    void writeToHost(const QByteArray &bytes);

    TimeSource &m_time;
    std::unique_ptr<Network> m_network;
    std::unique_ptr<SerialLine> m_line;
    int m_master = -1;
    int m_slave = -1; // held open so that the program can close and reopen the device
    QString m_slavePath;
    QSocketNotifier *m_notifier = nullptr;
    bool m_trace = false;
};

// Rate and frame of a terminal's termios.
LineSettings lineSettingsOfTerminal(int fd);

} // namespace sim
