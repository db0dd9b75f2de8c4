#pragma once

#include <QString>
#include <QStringList>
#include <functional>

class IniFile;

// Which device a port number 1..16 reaches on Linux.
// A [Port Map] section with keys COM1..COM16 holding device paths wins. Without such a key (or with an
// empty one) the numbers go to the serial devices the system lists, in a stable order: USB and ACM
// adapters first, then built-in ports (natural order within each group: ttyUSB2 before ttyUSB10).
// Returns an empty text when the number reaches nothing. Listing the system's devices takes a
// while, so orderedSystemPorts is asked only for a number the map leaves open.
QStringList orderSystemPorts(const QStringList &systemLocations);
QString devicePathForPort(const IniFile &ini, int port,
                          const std::function<QStringList()> &orderedSystemPorts);

// Compares texts with runs of digits taken as numbers: "ttyS2" comes before "ttyS10".
bool naturalLess(const QString &a, const QString &b);
