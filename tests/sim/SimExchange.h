#pragma once

#include "SimulatedModemLink.h"

// Sends bytes as one write, lets virtual time run, and returns everything the port received.
inline QByteArray exchange(sim::SimulatedModemLink &link, const QByteArray &bytes, int waitMs = 1000)
{
    link.port().Input();
    link.port().Output(bytes);
    link.time().MsDelay(waitMs);
    return link.port().Input();
}
