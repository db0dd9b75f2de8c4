#include "PortMap.h"

#include "IniFile.h"

#include <QFileInfo>
#include <algorithm>

namespace {

constexpr int kFirstPort = 1;
constexpr int kLastPort = 16;
constexpr int kDevicePathBuffer = 256;

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// Plug-in adapters come first: on a field laptop they are what the technician has just connected.
bool isAdapter(const QString &location)
{
    const QString name = QFileInfo(location).fileName();
    return name.startsWith(QStringLiteral("ttyUSB")) || name.startsWith(QStringLiteral("ttyACM"));
}

// Compares two runs of digits by their value, leading zeros aside.
int compareNumbers(QStringView a, QStringView b)
{
    while (a.size() > 1 && a.front() == u'0')
        a = a.mid(1);
    while (b.size() > 1 && b.front() == u'0')
        b = b.mid(1);
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    return a.compare(b);
}

} // namespace

bool naturalLess(const QString &a, const QString &b)
{
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        const bool digitsA = isDigit(a.at(i));
        const bool digitsB = isDigit(b.at(j));
        if (digitsA != digitsB)
            return digitsA; // a number sorts before a letter at the same place
        qsizetype endA = i;
        qsizetype endB = j;
        while (endA < a.size() && isDigit(a.at(endA)) == digitsA)
            ++endA;
        while (endB < b.size() && isDigit(b.at(endB)) == digitsB)
            ++endB;
        const QStringView runA = QStringView(a).mid(i, endA - i);
        const QStringView runB = QStringView(b).mid(j, endB - j);
        const int order = digitsA ? compareNumbers(runA, runB) : runA.compare(runB);
        if (order != 0)
            return order < 0;
        i = endA;
        j = endB;
    }
    if ((i < a.size()) != (j < b.size()))
        return j < b.size();
    // Equal but for leading zeros: fall back to plain order so the result stays stable.
    return a < b;
}

QStringList orderSystemPorts(const QStringList &systemLocations)
{
    QStringList ports = systemLocations;
    ports.removeDuplicates();
    std::sort(ports.begin(), ports.end(), [](const QString &a, const QString &b) {
        const bool adapterA = isAdapter(a);
        const bool adapterB = isAdapter(b);
        if (adapterA != adapterB)
            return adapterA;
        return naturalLess(a, b);
    });
    return ports;
}

QString devicePathForPort(const IniFile &ini, int port,
                          const std::function<QStringList()> &orderedSystemPorts)
{
    if (port < kFirstPort || port > kLastPort)
        return QString();
    const QString mapped = ini.getString(QStringLiteral("Port Map"), QStringLiteral("COM%1").arg(port),
                                         QString(), kDevicePathBuffer);
    if (!mapped.isEmpty())
        return mapped;
    const QStringList system = orderedSystemPorts();
    return port <= system.size() ? system.at(port - 1) : QString();
}
