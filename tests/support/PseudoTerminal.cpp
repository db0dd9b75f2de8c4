#include "PseudoTerminal.h"

#include <QFile>
#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

PseudoTerminal::PseudoTerminal()
{
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0) {
        close();
        return;
    }
    m_slavePath = QString::fromLocal8Bit(::ptsname(m_master));
    termios tio{};
    if (::tcgetattr(m_master, &tio) == 0) {
        ::cfmakeraw(&tio);
        ::tcsetattr(m_master, TCSANOW, &tio);
    }
}

PseudoTerminal::~PseudoTerminal()
{
    close();
}

void PseudoTerminal::write(const QByteArray &bytes)
{
    if (m_master >= 0 && ::write(m_master, bytes.constData(), size_t(bytes.size())) < 0)
        m_master = m_master; // a full pty drops the bytes; the test sees the loss
}

QByteArray PseudoTerminal::readAvailable()
{
    QByteArray all;
    char buffer[4096];
    for (;;) {
        const ssize_t n = m_master >= 0 ? ::read(m_master, buffer, sizeof buffer) : -1;
        if (n <= 0)
            break;
        all.append(buffer, n);
    }
    return all;
}

int PseudoTerminal::unread() const
{
    const int fd = ::open(QFile::encodeName(m_slavePath).constData(), O_RDONLY | O_NOCTTY | O_NONBLOCK);
    if (fd < 0)
        return 0;
    int count = 0;
    if (::ioctl(fd, FIONREAD, &count) != 0)
        count = 0;
    ::close(fd);
    return count;
}

void PseudoTerminal::close()
{
    if (m_master >= 0)
        ::close(m_master);
    m_master = -1;
}
