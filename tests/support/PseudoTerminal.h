#pragma once

#include <QByteArray>
#include <QString>

// A pseudo-terminal pair for tests that need a real tty: the program opens slavePath() as its
// serial device, the test plays the far side on the master.
class PseudoTerminal
{
public:
    PseudoTerminal();
    ~PseudoTerminal();

    bool isValid() const { return m_master >= 0; }
    QString slavePath() const { return m_slavePath; }
    void write(const QByteArray &bytes);
    // What the program wrote so far (non-blocking).
    QByteArray readAvailable();
    // How many of the bytes written here wait in the device, not yet read by the program.
    int unread() const;
    // The far side goes away.
    void close();

private:
    int m_master = -1;
    QString m_slavePath;
};
