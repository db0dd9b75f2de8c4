#include "CommControl.h"

#include "AppError.h"

#include <QStringList>

std::optional<LineSettings> parseLineSettings(const QString &text)
{
    const QStringList parts = text.simplified().remove(QLatin1Char(' ')).split(QLatin1Char(','));
    if (parts.size() != 4)
        return std::nullopt;
    bool okBaud = false, okData = false, okStop = false;
    LineSettings s;
    s.baud = parts[0].toInt(&okBaud);
    s.dataBits = parts[2].toInt(&okData);
    // "1.5" stop bits are counted as 2 on these machines: the serial layer offers nothing between.
    s.stopBits = parts[3] == QLatin1String("1.5") ? 2 : parts[3].toInt(&okStop);
    if (parts[3] == QLatin1String("1.5"))
        okStop = true;
    if (!okBaud || !okData || !okStop || parts[1].size() != 1 || s.baud <= 0)
        return std::nullopt;
    s.parity = parts[1].at(0).toUpper().toLatin1();
    if (!QByteArrayLiteral("NEOMS").contains(s.parity) || s.dataBits < 5 || s.dataBits > 8 ||
        s.stopBits < 1 || s.stopBits > 2)
        return std::nullopt;
    return s;
}

QString lineSettingsText(const LineSettings &settings)
{
    return QStringLiteral("%1,%2,%3,%4")
        .arg(settings.baud)
        .arg(QChar::fromLatin1(char(settings.parity)).toLower())
        .arg(settings.dataBits)
        .arg(settings.stopBits);
}

CommControl::CommControl(QObject *parent) : QObject(parent) {}

CommControl::~CommControl() = default;

void CommControl::setCommPort(int port)
{
    if (m_open)
        throw AppError{AppErrors::PortAlreadyOpen, QStringLiteral("Port already open")};
    if (port < 1 || port > 99)
        throw AppError{AppErrors::InvalidPropertyValue, QStringLiteral("Invalid Port Number")};
    m_commPort = port;
}

void CommControl::setPortOpen(bool open)
{
    if (open == m_open) {
        if (open)
            throw AppError{AppErrors::PortAlreadyOpen, QStringLiteral("Port already open")};
        return;
    }
    if (open) {
        openDevice();
        m_openDevice = deviceFor(m_commPort);
        m_open = true;
        applyLineSettings(m_line);
        applyHandshaking(m_handshaking);
        applyControlLines(m_dtr, m_rts);
    } else {
        closeDevice();
        m_open = false;
        m_inBuffer.clear();
    }
    emit portOpenChanged(m_open);
}

void CommControl::setSettings(const QString &text)
{
    const auto parsed = parseLineSettings(text);
    if (!parsed)
        throw AppError{AppErrors::InvalidPropertyValue, QStringLiteral("Invalid Setting")};
    m_settingsText = text.trimmed();
    m_line = *parsed;
    if (m_open)
        applyLineSettings(m_line);
}

void CommControl::Output(const QByteArray &bytes)
{
    if (!m_open)
        throw AppError{AppErrors::PortNotOpen, QStringLiteral("Operation valid only when the port is open")};
    if (!bytes.isEmpty())
        writeDevice(bytes);
}

QByteArray CommControl::Input()
{
    if (m_inputLen <= 0 || m_inputLen >= m_inBuffer.size()) {
        QByteArray all;
        all.swap(m_inBuffer);
        return all;
    }
    QByteArray head = m_inBuffer.left(m_inputLen);
    m_inBuffer.remove(0, m_inputLen);
    return head;
}

void CommControl::setInBufferCount(int count)
{
    if (count == 0)
        m_inBuffer.clear();
}

void CommControl::setAutoProcess(int mode)
{
    if (m_autoProcess == kAutoProcessTerminal && mode != kAutoProcessTerminal && m_open)
        releaseHeldText();
    m_autoProcess = mode;
    // Handing the port back to the terminal shows what arrived meanwhile, as the control would.
    if (mode == kAutoProcessTerminal && !m_inBuffer.isEmpty())
        emit screenText(Input());
}

void CommControl::setDTREnable(bool on)
{
    m_dtr = on;
    if (m_open)
        applyControlLines(m_dtr, m_rts);
}

void CommControl::setRTSEnable(bool on)
{
    m_rts = on;
    if (m_open)
        applyControlLines(m_dtr, m_rts);
}

void CommControl::setHandshaking(int code)
{
    m_handshaking = code;
    if (m_open)
        applyHandshaking(code);
}

bool CommControl::CDHolding() const
{
    return m_open && carrierDetect();
}

void CommControl::Disp(const QByteArray &bytes)
{
    emit screenText(bytes);
}

void CommControl::deliver(const QByteArray &bytes)
{
    if (!m_open || bytes.isEmpty())
        return;
    if (m_autoProcess == kAutoProcessTerminal) {
        emit screenText(bytes);
        return;
    }
    m_inBuffer.append(bytes);
    if (m_inBuffer.size() > kInBufferLimit)
        m_inBuffer.remove(0, m_inBuffer.size() - kInBufferLimit);
    if (m_rThreshold >= 1)
        emit received();
}

void CommControl::dropLine()
{
    if (!m_open)
        return;
    closeDevice();
    m_open = false;
    m_inBuffer.clear();
    emit portOpenChanged(false);
    emit lineLost(m_openDevice);
}
