#include "RepeaterRouting.h"

#include "RepeaterRoute.h"
#include "TextRules.h"

namespace {
constexpr qint16 kCounterEnd = 16;

bool isAddress(double value)
{
    return value >= 1 && value <= 254;
}
} // namespace

SetupProgram routeLines(RoutingCounters &counters, const RouteAnswers &answers, RouteAction action)
{
    SetupProgram out;
    const auto fault = [&out](const QString &text, MsgIcon icon = MsgIcon::Exclamation) {
        out.faultText = text;
        out.faultIcon = icon;
        return out;
    };
    if (counters.route >= kCounterEnd)
        return fault(QStringLiteral("The Maximum Number of Routes Have Been Entered."));
    if (counters.append >= kCounterEnd)
        return fault(QStringLiteral("The Maximum Number of Append Route Address Groups Has Been Reached.  "
                                    "Please Review Your Addresses For Possible Grouping"));
    // Each repeater is followed by a comma, the last one too: "5," or "3,20,".
    const RepeaterWalk walk = walkRepeaters(answers.repeaters, QString());
    if (!walk.faultText.isEmpty()) {
        out.clearRepeaters = walk.clearFields;
        return fault(walk.faultText);
    }
    if (answers.addresses[0].isEmpty())
        return fault(QStringLiteral("You must supply at least one Varnel address per route"), MsgIcon::None);

    if (action == RouteAction::Next)
        out.lines << QStringLiteral("ROUTE %1,").arg(counters.route) + walk.route;
    for (size_t row = 0; row < answers.group.size(); ++row) {
        const QString &first = answers.addresses[row];
        const QString &second = answers.addresses[row + 4];
        if (first.isEmpty())
            continue;
        const QString rangeText = QStringLiteral("All Addresses Must Be Between 1 and 254");
        if (!isAddress(numericValue(first)))
            return fault(rangeText);
        if (!second.isEmpty()) {
            if (!isAddress(numericValue(second)))
                return fault(rangeText);
            if (numericValue(second) <= numericValue(first))
                return fault(
                    QStringLiteral("Your Second Address In A Group Must Be Greater than the First Address"));
        }
        // An unchecked group box marks the pair with a closing star.
        const QString head =
            QStringLiteral("APPEND %1,%2,%3,").arg(counters.append).arg(counters.route).arg(first);
        out.lines << (second.isEmpty()     ? head + first
                      : answers.group[row] ? head + second
                                           : head + second + QStringLiteral(",*"));
        ++counters.append;
    }
    if (action == RouteAction::Next)
        ++counters.route;
    return out;
}
