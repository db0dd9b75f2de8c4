#include "Links.h"

#include "CommandTable.h"
#include "Modem.h"
#include "Network.h"
#include "TimeSource.h"

#include <algorithm>
#include <utility>

namespace sim {

namespace {

using namespace std::chrono_literals;

constexpr int kLinkRequestBytes = 16;
// How long a unit thinks over a line that came over the air before it answers.
constexpr auto kRemoteThinkTime = 30ms;

// A route typed after a link command: one to four addresses from 1 to 255, separated by commas.
QList<int> parseRoute(const QString &text, bool *ok)
{
    QList<int> route;
    *ok = false;
    const QStringList parts = text.split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (parts.isEmpty() || parts.size() > 4)
        return route;
    for (const QString &p : parts) {
        bool isNumber = false;
        const int v = p.trimmed().toInt(&isNumber);
        if (!isNumber || v < 1 || v > 255)
            return {};
        route << v;
    }
    *ok = true;
    return route;
}

bool messageForm(const Modem &modem)
{
    return modem.value(QStringLiteral("MESSFORM")) == QLatin1String("ON");
}

// The link commands run only on the unit at the cable, and open their link once the line is done.
bool openLink(CommandCall &call, const QString &target, bool programming)
{
    if (call.overAir || !call.modem.network())
        return call.refuse();
    bool ok = false;
    const QList<int> route = parseRoute(target, &ok);
    if (!ok)
        return call.refuse();
    call.reply.prompt = false;
    Links *links = &call.modem.links();
    call.reply.then = [links, route, programming] { links->open(route, programming); };
    return false;
}

bool runConnect(CommandCall &call)
{
    return openLink(call, call.argument, false);
}

bool runConverse(CommandCall &call)
{
    return openLink(call, call.modem.value(QStringLiteral("SETCONNECT")), false);
}

bool runProgram(CommandCall &call)
{
    return openLink(call, call.argument, true);
}

bool runDisconnect(CommandCall &call)
{
    call.modem.links().disconnect();
    return true;
}

} // namespace

const QList<CommandDef> &linkCommands()
{
    static const QList<CommandDef> commands{
        {"CONNECT", 4, &runConnect},
        {"CONVERSE", 4, &runConverse},
        {"DISCONNECT", 4, &runDisconnect},
        {"PROGRAM", 4, &runProgram},
    };
    return commands;
}

void Links::reset()
{
    m_connectRoute.clear();
    m_remoteRoute.clear();
    m_converseBuffer.clear();
}

void Links::open(const QList<int> &route, bool programming)
{
    const Network::Delivery d = m_modem.network()->send(m_modem, route, kLinkRequestBytes);
    m_modem.afterUnlessInterrupted(d.duration, [this, d, route, programming] {
        const QByteArray le = m_modem.lineEnd();
        const bool messages = messageForm(m_modem);
        if (!d.delivered) {
            m_modem.send(messages ? "SS03" + le : "LINK FAILED" + le);
            m_modem.send("CMD:");
        } else if (programming) {
            m_modem.setMode(Modem::Mode::Remote);
            m_remoteRoute = route;
            m_modem.send(le + d.destination->links().answerRemote(QString()).text);
        } else {
            m_modem.setMode(Modem::Mode::Converse);
            m_connectRoute = route;
            m_modem.send(messages ? "*" + le : "*** CONNECTED TO " + QByteArray::number(route.last()) + le);
        }
        m_modem.console().done();
    });
}

Links::RemoteAnswer Links::answerRemote(const QString &line)
{
    const Reply reply = runCommandLine(m_modem, line, true, kRemoteThinkTime);
    if (reply.then) {
        // A restart over the air ends the link: nothing comes back.
        m_modem.afterUnlessInterrupted(reply.delay, reply.then);
        return {};
    }
    return {reply.text + "RPG:", reply.delay + m_modem.replyDelay()};
}

void Links::sendRemoteLine(const QString &line)
{
    // The line goes out over the air; the remote runs it; its answer comes back the same way.
    Network &network = *m_modem.network();
    const Network::Delivery there = network.send(m_modem, m_remoteRoute, int(line.size()) + 1);
    // A line on the air reaches the remote even if this unit is interrupted meanwhile; only the
    // answer then finds nobody waiting for it.
    m_modem.after(there.duration, [this, &network, there, line] {
        const RemoteAnswer answer =
            there.delivered ? there.destination->links().answerRemote(line) : RemoteAnswer{};
        if (m_modem.mode() != Modem::Mode::Remote)
            return;
        if (!there.delivered) {
            linkFailed();
            return;
        }
        if (answer.text.isEmpty()) {
            m_modem.console().done();
            return;
        }
        m_modem.afterUnlessInterrupted(answer.delay, [this, &network, text = answer.text] {
            if (m_modem.mode() != Modem::Mode::Remote)
                return;
            QList<int> back = m_remoteRoute;
            Modem *far = network.modemAt(back.last());
            if (!far) {
                m_modem.console().done();
                return;
            }
            // Back along the same repeaters, in the other order, to this unit.
            back.removeLast();
            std::reverse(back.begin(), back.end());
            back.append(m_modem.address());
            const Network::Delivery home = network.send(*far, back, int(text.size()));
            m_modem.afterUnlessInterrupted(home.duration, [this, home, text] {
                if (m_modem.mode() != Modem::Mode::Remote)
                    return;
                if (!home.delivered) {
                    linkFailed();
                    return;
                }
                m_modem.send(text);
                m_modem.console().done();
            });
        });
    });
}

void Links::linkFailed()
{
    // The retries are spent: the unit gives the link up and is back at its own prompt.
    m_remoteRoute.clear();
    m_modem.setMode(Modem::Mode::Command);
    const QByteArray le = m_modem.lineEnd();
    m_modem.send((messageForm(m_modem) ? "SS03" : "LINK FAILED") + le + "CMD:");
    m_modem.console().done();
}

void Links::converseByte(char c)
{
    const int commandChar = m_modem.value(QStringLiteral("COMMAND")).toInt();
    if (c == kCtrlC || (commandChar > 0 && c == char(commandChar))) {
        // Back to the prompt; the connection stays up until DISC.
        m_modem.interrupt();
        return;
    }
    if (m_modem.mode() == Modem::Mode::Operating && m_connectRoute.isEmpty()) {
        bool ok = false;
        m_connectRoute = parseRoute(m_modem.value(QStringLiteral("SETCONNECT")), &ok);
    }
    m_converseBuffer.append(c);
    const int sendChar = m_modem.value(QStringLiteral("SENDPACK")).toInt();
    const int packLen = m_modem.value(QStringLiteral("PACKLEN")).toInt();
    if (c == char(sendChar) || m_converseBuffer.size() >= packLen)
        sendPacket();
}

void Links::sendPacket()
{
    const QByteArray data = m_converseBuffer;
    m_converseBuffer.clear();
    if (!m_modem.network() || m_connectRoute.isEmpty())
        return;
    const Network::Delivery d = m_modem.network()->send(m_modem, m_connectRoute, int(data.size()));
    ++m_counts.packets;
    m_counts.retries += d.retries;
    const int partner = m_connectRoute.last();
    m_modem.afterUnlessInterrupted(d.duration, [this, d, data, partner] {
        const QByteArray le = m_modem.lineEnd();
        const bool messages = messageForm(m_modem);
        if (!d.delivered) {
            if (messages)
                m_modem.send("SS03" + le);
            return;
        }
        if (d.destination)
            d.destination->links().receiveFromAir(data);
        if (m_modem.dataQualityMode()) {
            if (GroundTruth *truth = m_modem.truth())
                truth->qualityReadings.append(
                    {m_modem.time().elapsedMs(), m_modem.address(), partner, d.quality});
            m_modem.send('[' + QByteArray::number(partner) + ',' + QByteArray::number(qRound(d.microvolts)) +
                         ',' + QByteArray::number(d.quality) + ']' + le);
        } else if (messages)
            m_modem.send("*" + le);
    });
}

void Links::receiveFromAir(const QByteArray &data)
{
    if (m_modem.mode() == Modem::Mode::Converse || m_modem.mode() == Modem::Mode::Operating)
        m_modem.send(data);
}

Links::Counts Links::takeCounts()
{
    return std::exchange(m_counts, Counts{});
}

} // namespace sim
