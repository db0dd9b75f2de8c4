#include "SerialCommControl.h"

#include "AppError.h"

#include <QFileInfo>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
QString groupOf(const QString &device)
{
    struct stat st
    {
    };
    if (::stat(QFile::encodeName(device).constData(), &st) != 0)
        return {};
    if (const group *g = ::getgrgid(st.st_gid))
        return QString::fromLocal8Bit(g->gr_name);
    return QString::number(st.st_gid);
}

QSerialPort::Parity parityOf(char parity)
{
    switch (parity) {
    case 'E':
        return QSerialPort::EvenParity;
    case 'O':
        return QSerialPort::OddParity;
    case 'M':
        return QSerialPort::MarkParity;
    case 'S':
        return QSerialPort::SpaceParity;
    default:
        return QSerialPort::NoParity;
    }
}
} // namespace

SerialCommControl::SerialCommControl(DeviceResolver resolver, QObject *parent)
    : CommControl(parent), m_resolver(std::move(resolver))
{
    connect(&m_serial, &QSerialPort::readyRead, this, [this] { deliver(m_serial.readAll()); });
    connect(&m_serial, &QSerialPort::errorOccurred, this, &SerialCommControl::onError);
}

SerialCommControl::~SerialCommControl()
{
    m_serial.disconnect(this);
    if (m_serial.isOpen())
        m_serial.close();
}

QString SerialCommControl::deviceFor(int port) const
{
    return m_resolver ? m_resolver(port) : QString();
}

AppError SerialCommControl::openFailure(const QString &device, int port, QSerialPort::SerialPortError error)
{
    const QString com = QStringLiteral("COM%1").arg(port);
    if (device.isEmpty())
        return {
            AppErrors::NoSuchDevice,
            QStringLiteral("%1 reaches no serial device on this computer. Plug in the cable or adapter, or "
                           "name the device for %1 in the [Port Map] section of the settings file.")
                .arg(com)};
    if (error == QSerialPort::DeviceNotFoundError || !QFileInfo::exists(device))
        return {AppErrors::NoSuchDevice,
                QStringLiteral("No such device: %1 (%2). Check that the cable or adapter is plugged in.")
                    .arg(device, com)};
    if (error == QSerialPort::PermissionError) {
        if (::access(QFile::encodeName(device).constData(), R_OK | W_OK) != 0) {
            const QString group = groupOf(device);
            return {AppErrors::DeviceAccessDenied,
                    QStringLiteral(
                        "Permission denied on %1 (%2). Your user must be in the group \"%3\" that owns the "
                        "device: run \"sudo usermod -aG %3 $USER\", then log out and in again.")
                        .arg(device, com, group)};
        }
        return {AppErrors::DeviceBusy,
                QStringLiteral("Device busy: %1 (%2) is in use by another program. Close it and try again.")
                    .arg(device, com)};
    }
    return {AppErrors::DeviceUnavailable, QStringLiteral("%1 (%2) cannot be opened.").arg(device, com)};
}

void SerialCommControl::openDevice()
{
    const QString device = deviceFor(CommPort());
    if (device.isEmpty())
        throw openFailure(device, CommPort(), QSerialPort::DeviceNotFoundError);
    m_serial.setPortName(device);
    if (!m_serial.open(QIODevice::ReadWrite))
        throw openFailure(device, CommPort(), m_serial.error());
}

void SerialCommControl::closeDevice()
{
    m_serial.close();
}

void SerialCommControl::writeDevice(const QByteArray &bytes)
{
    m_serial.write(bytes);
}

void SerialCommControl::applyLineSettings(const LineSettings &settings)
{
    m_serial.setBaudRate(settings.baud);
    m_serial.setParity(parityOf(settings.parity));
    m_serial.setDataBits(QSerialPort::DataBits(settings.dataBits));
    m_serial.setStopBits(settings.stopBits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
}

void SerialCommControl::applyControlLines(bool dtr, bool rts)
{
    // A pseudo-terminal has no control lines; the program carries on without them.
    m_serial.setDataTerminalReady(dtr);
    if (m_serial.flowControl() != QSerialPort::HardwareControl)
        m_serial.setRequestToSend(rts);
}

void SerialCommControl::applyHandshaking(int code)
{
    if (code >= 2)
        m_serial.setFlowControl(QSerialPort::HardwareControl);
    else if (code & 1)
        m_serial.setFlowControl(QSerialPort::SoftwareControl);
    else
        m_serial.setFlowControl(QSerialPort::NoFlowControl);
}

bool SerialCommControl::carrierDetect() const
{
    return m_serial.pinoutSignals() & QSerialPort::DataCarrierDetectSignal;
}

void SerialCommControl::onError(QSerialPort::SerialPortError error)
{
    // A device that goes away keeps reporting errors while open: close it at once.
    if (error == QSerialPort::ReadError || error == QSerialPort::ResourceError)
        dropLine();
}
