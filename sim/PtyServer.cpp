#include "PtyServer.h"

#include "Modem.h"
#include "TimeSource.h"

#include <QList>
#include <QPair>
#include <QSocketNotifier>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace sim {

namespace {

const QList<QPair<speed_t, int>> kSpeeds{{B300, 300},     {B600, 600},      {B1200, 1200},   {B2400, 2400},
                                         {B4800, 4800},   {B9600, 9600},    {B19200, 19200}, {B38400, 38400},
                                         {B57600, 57600}, {B115200, 115200}};

int baudOf(speed_t speed)
{
    for (const auto &[code, baud] : kSpeeds)
        if (code == speed)
            return baud;
    return 9600;
}

speed_t speedOf(int baud)
{
    for (const auto &[code, rate] : kSpeeds)
        if (rate == baud)
            return code;
    return B9600;
}

QString traceText(const char *direction, const QByteArray &bytes)
{
    QString text = QString::fromLatin1(direction);
    for (char c : bytes) {
        const uchar u = uchar(c);
        if (u >= 32 && u < 127)
            text += QLatin1Char(c);
        else
            text += QStringLiteral("<%1>").arg(u, 2, 16, QLatin1Char('0'));
    }
    return text;
}

} // namespace

LineSettings lineSettingsOfTerminal(int fd)
{
    LineSettings s;
    termios t{};
    if (tcgetattr(fd, &t) != 0)
        return s;
    s.baud = baudOf(cfgetospeed(&t));
    switch (t.c_cflag & CSIZE) {
    case CS5:
        s.dataBits = 5;
        break;
    case CS6:
        s.dataBits = 6;
        break;
    case CS7:
        s.dataBits = 7;
        break;
    default:
        s.dataBits = 8;
        break;
    }
    s.parity = (t.c_cflag & PARENB) ? ((t.c_cflag & PARODD) ? 'O' : 'E') : 'N';
    s.stopBits = (t.c_cflag & CSTOPB) ? 2 : 1;
    return s;
}

PtyServer::PtyServer(TimeSource &time, const Scenario &scenario, QObject *parent)
    : QObject(parent), m_time(time), m_network(std::make_unique<Network>(time, scenario))
{
    m_line = std::make_unique<SerialLine>(time, m_network->local(), false);
    m_line->setHostReceiver([this](const QByteArray &bytes) { writeToHost(bytes); });
    m_line->setHangUp([this] { hangUp(); });
    m_line->setHostSettingsSource([this] { return hostSettings(); });
}

PtyServer::~PtyServer()
{
    m_line.reset();
    if (m_master >= 0)
        ::close(m_master);
    if (m_slave >= 0)
        ::close(m_slave);
}

bool PtyServer::start(QString *error)
{
    m_master = posix_openpt(O_RDWR | O_NOCTTY);
    if (m_master < 0 || grantpt(m_master) != 0 || unlockpt(m_master) != 0) {
        if (error)
            *error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    m_slavePath = QString::fromLocal8Bit(ptsname(m_master));
    m_slave = ::open(ptsname(m_master), O_RDWR | O_NOCTTY);
    if (m_slave < 0) {
        if (error)
            *error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    // Raw bytes both ways, and the rate of the modem until the program sets its own.
    termios t{};
    tcgetattr(m_slave, &t);
    cfmakeraw(&t);
    const LineSettings start = m_network->local().lineSettings();
    cfsetispeed(&t, speedOf(start.baud));
    cfsetospeed(&t, speedOf(start.baud));
    tcsetattr(m_slave, TCSANOW, &t);
    fcntl(m_master, F_SETFL, fcntl(m_master, F_GETFL) | O_NONBLOCK);
    m_notifier = new QSocketNotifier(m_master, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &PtyServer::onReadable);
    return true;
}

LineSettings PtyServer::hostSettings() const
{
    return m_slave >= 0 ? lineSettingsOfTerminal(m_slave) : m_network->local().lineSettings();
}

void PtyServer::onReadable()
{
    char buffer[4096];
    const ssize_t n = ::read(m_master, buffer, sizeof buffer);
    if (n <= 0)
        return;
    const QByteArray bytes(buffer, int(n));
    if (m_trace)
        emit traced(traceText("> ", bytes));
    m_line->hostWrote(bytes, hostSettings());
}

void PtyServer::writeToHost(const QByteArray &bytes)
{
    if (m_master < 0)
        return;
    if (m_trace)
        emit traced(traceText("< ", bytes));
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(m_master, bytes.constData() + done, size_t(bytes.size() - done));
        if (n <= 0)
            return; // nobody reads the slave and its buffer is full: the bytes are lost, as on a cable
        done += n;
    }
}

void PtyServer::hangUp()
{
    if (m_notifier)
        m_notifier->setEnabled(false);
    if (m_slave >= 0)
        ::close(m_slave);
    if (m_master >= 0)
        ::close(m_master);
    m_slave = -1;
    m_master = -1;
}

} // namespace sim
