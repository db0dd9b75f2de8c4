#include "SerialCommControl.h"

#include "AppError.h"

#include <QFileInfo>
#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {
// Pieces that arrive closer together than this are a stream; typed keys come further apart.
constexpr std::chrono::nanoseconds kStreamGap = 30ms;
// How long a stream is gathered before the screen gets it: about as often as a scrolling screen
// is repainted.
constexpr auto kGather = 200ms;
// A device that delivers faster than this is no modem on a serial line (at most 115200 bits a
// second) but a pseudo-terminal or a network bridge: it is read as fast as it delivers.
constexpr qint64 kSerialLineBytesPerSecond = 4 * 115200 / 10;

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
    connect(&m_serial, &QSerialPort::readyRead, this, &SerialCommControl::onReadyRead);
    connect(&m_serial, &QSerialPort::errorOccurred, this, &SerialCommControl::onError);
    m_gather.setSingleShot(true);
    connect(&m_gather, &QTimer::timeout, this, &SerialCommControl::collect);
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
    stopGathering();
    m_serial.close();
}

void SerialCommControl::onReadyRead()
{
    // While gathering, the byte that woke the control waits in the buffer for the gathering's end.
    if (m_collecting || m_gather.isActive())
        return;
    const std::chrono::nanoseconds sinceLast =
        m_lastPiece.isValid() ? std::chrono::nanoseconds(m_lastPiece.nsecsElapsed()) : kStreamGap;
    const QByteArray bytes = m_serial.readAll();
    // What follows a quiet spell is shown at once; a stream at the pace of a serial line is gathered.
    const bool stream = sinceLast < kStreamGap;
    const bool lineSpeed = bytes.size() * 1'000'000'000LL < kSerialLineBytesPerSecond * sinceLast.count();
    hand(bytes, stream && lineSpeed);
}

void SerialCommControl::hand(const QByteArray &bytes, bool gatherNext)
{
    deliver(bytes);
    m_lastPiece.start();
    if (gatherNext && PortOpen() && AutoProcess() == kAutoProcessTerminal) {
        m_serial.setReadBufferSize(1);
        m_gather.start(kGather);
    }
}

void SerialCommControl::collect()
{
    stopGathering();
    if (m_serial.bytesAvailable() == 0)
        return; // the stream stopped: the next piece is shown at once
    bool outpaced = false;
    const QByteArray bytes = readWaiting(outpaced);
    // A device that had more at once outpaces any serial line: gathering would only hold it up.
    hand(bytes, !outpaced);
}

QByteArray SerialCommControl::readWaiting(bool &more)
{
    m_collecting = true;
    m_serial.waitForReadyRead(0);
    more = m_serial.waitForReadyRead(0);
    m_collecting = false;
    return m_serial.readAll();
}

void SerialCommControl::stopGathering()
{
    m_gather.stop();
    m_serial.setReadBufferSize(0);
}

void SerialCommControl::releaseHeldText()
{
    // What the device holds arrived while the terminal had the port.
    stopGathering();
    bool more = false;
    deliver(readWaiting(more));
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
