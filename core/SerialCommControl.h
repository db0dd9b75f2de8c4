#pragma once

#include "AppError.h"
#include "CommControl.h"

#include <QElapsedTimer>
#include <QSerialPort>
#include <QTimer>
#include <functional>

// What the program can find out about a device path that it cannot use.
struct DeviceFacts
{
    // Device: a character device, which the serial port tries as a line.
    enum class Kind { Missing, Device, RegularFile, Directory, Fifo, Other };
    Kind kind = Kind::Missing;
    bool accessible = false;  // the user may read and write it
    bool groupMayUse = false; // its group may read and write it
    QString owner;
    QString group;
};

DeviceFacts deviceFacts(const QString &device);

// The words a user can act on when a device cannot be opened, from the serial port's error and the
// facts about the device.
AppError deviceFailure(const QString &device, int port, QSerialPort::SerialPortError error,
                       const DeviceFacts &facts);

// Comm1 over a real serial device. A port number finds its device through a resolver (the port
// map of the settings file, then the system's serial devices in a stable order).
//
// At AutoProcess 3 a modem that keeps talking would wake the program for every line it sends. The
// control shows what comes after a quiet spell at once (the echo of a typed key); while pieces keep
// coming it gathers them for a moment and hands them to the screen in one. QSerialPort stops reading the
// device while its read buffer is full, so a buffer of one byte holds the device until the
// gathering ends.
class SerialCommControl : public CommControl
{
    Q_OBJECT
public:
    using DeviceResolver = std::function<QString(int port)>;

    explicit SerialCommControl(DeviceResolver resolver, QObject *parent = nullptr);
    ~SerialCommControl() override;

    QString deviceFor(int port) const override;

    // The words a user can act on when a device cannot be opened.
    static AppError openFailure(const QString &device, int port, QSerialPort::SerialPortError error);

protected:
    void openDevice() override;
    void closeDevice() override;
    void writeDevice(const QByteArray &bytes) override;
    void applyLineSettings(const LineSettings &settings) override;
    void applyControlLines(bool dtr, bool rts) override;
    void applyHandshaking(int code) override;
    bool carrierDetect() const override;
    void releaseHeldText() override;

private:
    void onError(QSerialPort::SerialPortError error);
    void onReadyRead();
    // Delivers what was read and, when asked to, gathers what follows.
    void hand(const QByteArray &bytes, bool gatherNext);
    // The gathering ended: hands over what came meanwhile.
    void collect();
    // Reads what the device holds now, without waiting; more tells whether it had more at once.
    QByteArray readWaiting(bool &more);
    void stopGathering();

    DeviceResolver m_resolver;
    mutable QSerialPort m_serial; // reading the pins is not const in QSerialPort
    QTimer m_gather;
    QElapsedTimer m_lastPiece;
    bool m_collecting = false;
};
