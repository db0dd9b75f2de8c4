#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <chrono>

namespace sim {

class Modem;

// The unit's radio links: a converse connection to a partner, and remote programming, where the
// lines typed at this unit run on a far one that answers "RPG:". Both go over the network along a
// route of up to three repeaters and the destination.
class Links
{
public:
    explicit Links(Modem &modem) : m_modem(modem) {}

    // Opens a link along the route; the prompt or the partner's first answer follows.
    void open(const QList<int> &route, bool programming);
    void disconnect() { m_connectRoute.clear(); }
    void reset();

    // This unit's side of remote programming: the line goes out, the far unit's answer comes back.
    void sendRemoteLine(const QString &line);
    // The far unit's side: it runs the line and answers with its text and "RPG:" after the delay.
    // The text is empty when the unit restarted on the line.
    struct RemoteAnswer
    {
        QByteArray text;
        std::chrono::milliseconds delay{0};
    };
    RemoteAnswer answerRemote(const QString &line);

    // A byte typed in converse or operating mode, and data that came from the partner.
    void converseByte(char c);
    void receiveFromAir(const QByteArray &data);

    // Packets sent in converse and their retries since the last reading.
    struct Counts
    {
        int packets = 0;
        int retries = 0;
    };
    Counts takeCounts();

private:
    void sendPacket();
    // A line or its answer did not get through: the programming link is given up.
    void linkFailed();

    Modem &m_modem;
    QList<int> m_connectRoute; // of the converse partner
    QList<int> m_remoteRoute;  // of the programming link
    QByteArray m_converseBuffer;
    Counts m_counts;
};

} // namespace sim
