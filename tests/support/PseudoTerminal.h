#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

// A pseudo-terminal pair for tests that need a real tty: the program opens slavePath() as its
// serial device, the test plays the far side on the master.
class PseudoTerminal
{
public:
    PseudoTerminal() : m_master(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK))
    {
        termios tio{};
        if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0 ||
            ::tcgetattr(m_master, &tio)) {
            close();
            return;
        }
        m_slavePath = QString::fromLocal8Bit(::ptsname(m_master));
        ::cfmakeraw(&tio);
        ::tcsetattr(m_master, TCSANOW, &tio);
    }
    ~PseudoTerminal() { close(); }

    bool isValid() const { return m_master >= 0; }
    QString slavePath() const { return m_slavePath; }
    // A full pty drops the bytes; the test sees the loss.
    void write(const QByteArray &bytes)
    {
        [[maybe_unused]] const ssize_t written = ::write(m_master, bytes.constData(), size_t(bytes.size()));
    }
    // What the program wrote so far (non-blocking).
    QByteArray readAvailable()
    {
        QByteArray all;
        char buffer[4096];
        for (ssize_t n; (n = ::read(m_master, buffer, sizeof buffer)) > 0;)
            all.append(buffer, n);
        return all;
    }
    // How many of the bytes written here wait in the device, not yet read by the program.
    int unread() const
    {
        const int fd = ::open(QFile::encodeName(m_slavePath).constData(), O_RDONLY | O_NOCTTY | O_NONBLOCK);
        int count = 0;
        if (fd >= 0) {
            ::ioctl(fd, FIONREAD, &count);
            ::close(fd);
        }
        return count;
    }
    // The far side goes away.
    void close()
    {
        if (m_master >= 0)
            ::close(m_master);
        m_master = -1;
    }

private:
    int m_master;
    QString m_slavePath;
};
