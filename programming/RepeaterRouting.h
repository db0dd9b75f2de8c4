#pragma once

#include "SetupProgram.h"

#include <array>

// Routes of a master modem on a controller network: one ROUTE line names a chain of repeaters, the
// APPEND lines after it name the addresses and address groups that use that chain. Both counters
// start at 1 when the routing form opens and stop new lines at 16, so at most 15 of each are made.

struct RoutingCounters
{
    qint16 route = 1;  // the number the next ROUTE line carries
    qint16 append = 1; // the number of the next APPEND line, counted over all routes
};

// The routing form's fields: the three repeaters, the address rows (row i has its first address at
// i and its second at i + 4) and a group box per row.
struct RouteAnswers
{
    std::array<QString, 3> repeaters;
    std::array<QString, 8> addresses;
    std::array<bool, 4> group{};
};

enum class RouteAction {
    Next, // the route's ROUTE line, its address rows, then the next route
    More  // more address rows for the route being entered
};

// Makes the lines of one press of a routing button and moves the counters on as far as lines were made.
SetupProgram routeLines(RoutingCounters &counters, const RouteAnswers &answers, RouteAction action);
