#pragma once

#include "SimulatedModemLink.h"

#include <QTest>

// Sends bytes as one write, lets virtual time run, and returns everything the port received.
inline QByteArray exchange(sim::SimulatedModemLink &link, const QByteArray &bytes, int waitMs = 1000)
{
    link.port().Input();
    link.port().Output(bytes);
    link.time().MsDelay(waitMs);
    return link.port().Input();
}

// Polls in 100 ms steps, as the program does, until the text arrives or time runs out.
inline bool waitFor(sim::SimulatedModemLink &link, const QByteArray &text, int timeoutMs,
                    QByteArray *seen = nullptr)
{
    QByteArray buffer;
    for (int pass = 0; pass < timeoutMs / 100 && !buffer.contains(text); ++pass) {
        link.time().MsDelay(100);
        buffer += link.port().Input();
    }
    if (seen)
        *seen = buffer;
    return buffer.contains(text);
}

// Sends a line with its carriage return and waits for the text that ends the answer.
inline bool sendLine(sim::SimulatedModemLink &link, const QByteArray &line, const QByteArray &until,
                     int timeoutMs)
{
    link.port().Input();
    link.port().Output(line + '\r');
    return waitFor(link, until, timeoutMs);
}

// One of the ready scenarios by its file name; the standard one for no name.
inline sim::Scenario scenario(const QString &name)
{
    if (name.isEmpty())
        return sim::Scenario::standard();
    QString error;
    const auto s = sim::Scenario::fromFile(QStringLiteral(VARNEL_SCENARIOS "/%1.json").arg(name), &error);
    if (!s)
        qFatal("scenario %s: %s", qPrintable(name), qPrintable(error));
    return *s;
}

// A session as the screen shows it, lines ended by "\n": the first line, and the text after a
// "CMD:" or "RPG:" that starts a line, are typed with a carriage return, one line a second; all the
// rest is the unit's answer, which must come back exactly.
inline void checkSession(sim::SimulatedModemLink &link, const QByteArray &session)
{
    link.port().Input();
    QByteArray received;
    const QList<QByteArray> lines = session.split('\n');
    for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
        const QByteArray &line = lines[i];
        if (i == 0 || line.startsWith("CMD:") || line.startsWith("RPG:")) {
            link.port().Output((i == 0 ? line : line.mid(4)) + '\r');
            link.time().MsDelay(1000);
            received += link.port().Input();
        }
    }
    QCOMPARE(received, QByteArray(session).replace('\n', "\r\n"));
}
