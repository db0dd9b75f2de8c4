#include "SerialCommControl.h"

#include "AppError.h"

#include <QFile>
#include <grp.h>
#include <pwd.h>
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

QString kindWords(DeviceFacts::Kind kind)
{
    switch (kind) {
    case DeviceFacts::Kind::RegularFile:
        return QStringLiteral("a regular file");
    case DeviceFacts::Kind::Directory:
        return QStringLiteral("a directory");
    case DeviceFacts::Kind::Fifo:
        return QStringLiteral("a FIFO");
    default:
        return QStringLiteral("a special file");
    }
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

DeviceFacts deviceFacts(const QString &device)
{
    DeviceFacts facts;
    struct stat st
    {
    };
    const QByteArray path = QFile::encodeName(device);
    if (device.isEmpty() || ::stat(path.constData(), &st) != 0)
        return facts;
    using Kind = DeviceFacts::Kind;
    facts.kind = S_ISCHR(st.st_mode)    ? Kind::Device
                 : S_ISREG(st.st_mode)  ? Kind::RegularFile
                 : S_ISDIR(st.st_mode)  ? Kind::Directory
                 : S_ISFIFO(st.st_mode) ? Kind::Fifo
                                        : Kind::Other;
    facts.accessible = ::access(path.constData(), R_OK | W_OK) == 0;
    // Joining the group that owns the device helps only when the group may use it, and nobody is
    // told to join the superuser's group.
    facts.groupMayUse = (st.st_mode & (S_IRGRP | S_IWGRP)) == (S_IRGRP | S_IWGRP) && st.st_gid != 0;
    const passwd *user = ::getpwuid(st.st_uid);
    facts.owner = user ? QString::fromLocal8Bit(user->pw_name) : QString::number(st.st_uid);
    const group *g = ::getgrgid(st.st_gid);
    facts.group = g ? QString::fromLocal8Bit(g->gr_name) : QString::number(st.st_gid);
    return facts;
}

AppError deviceFailure(const QString &device, int port, QSerialPort::SerialPortError error,
                       const DeviceFacts &facts)
{
    using Kind = DeviceFacts::Kind;
    const QString com = QStringLiteral("COM%1").arg(port);
    if (device.isEmpty())
        return {
            AppErrors::NoSuchDevice,
            QStringLiteral("%1 reaches no serial device on this computer. Plug in the cable or adapter, or "
                           "name the device for %1 in the [Port Map] section of the settings file.")
                .arg(com)};
    if (facts.kind != Kind::Device && facts.kind != Kind::Missing)
        return {AppErrors::NoSuchDevice,
                QStringLiteral("%1 (%2) is %3, not a serial device. Name the device of the cable or adapter "
                               "for %2 in the [Port Map] section of the settings file.")
                    .arg(device, com, kindWords(facts.kind))};
    if (error == QSerialPort::DeviceNotFoundError || facts.kind == Kind::Missing)
        return {AppErrors::NoSuchDevice,
                QStringLiteral("No such device: %1 (%2). Check that the cable or adapter is plugged in.")
                    .arg(device, com)};
    if (error == QSerialPort::PermissionError && !facts.accessible) {
        if (facts.groupMayUse)
            return {AppErrors::DeviceAccessDenied,
                    QStringLiteral(
                        "Permission denied on %1 (%2). Your user must be in the group \"%3\" that owns the "
                        "device: run \"sudo usermod -aG %3 $USER\", then log out and in again.")
                        .arg(device, com, facts.group)};
        return {AppErrors::DeviceAccessDenied,
                QStringLiteral("Permission denied on %1 (%2). Only its owner \"%3\" may use it, so no group "
                               "helps: ask the administrator to let you read and write the device.")
                    .arg(device, com, facts.owner)};
    }
    if (error == QSerialPort::PermissionError)
        return {AppErrors::DeviceBusy,
                QStringLiteral("Device busy: %1 (%2) is in use by another program. Close it and try again.")
                    .arg(device, com)};
    return {AppErrors::DeviceUnavailable, QStringLiteral("%1 (%2) cannot be opened.").arg(device, com)};
}

AppError SerialCommControl::openFailure(const QString &device, int port, QSerialPort::SerialPortError error)
{
    return deviceFailure(device, port, error, deviceFacts(device));
}

void SerialCommControl::openDevice()
{
    const QString device = deviceFor(CommPort());
    // A file, a folder or a pipe is refused before the serial port tries to make a line of it.
    if (const DeviceFacts facts = deviceFacts(device); facts.kind != DeviceFacts::Kind::Device)
        throw deviceFailure(device, CommPort(), QSerialPort::DeviceNotFoundError, facts);
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
