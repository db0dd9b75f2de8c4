#pragma once

#include "AppError.h"
#include "CommControl.h"

#include <QSerialPort>
#include <functional>

// Comm1 over a real serial device. A port number finds its device through a resolver (the port
// map of the settings file, then the system's serial devices in a stable order).
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

private:
    void onError(QSerialPort::SerialPortError error);

    DeviceResolver m_resolver;
    mutable QSerialPort m_serial; // reading the pins is not const in QSerialPort
};
