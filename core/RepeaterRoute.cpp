#include "RepeaterRoute.h"

#include "TextRules.h"

RepeaterWalk walkRepeaters(const std::array<QString, 3> &fields, const QString &start,
                           const QList<double> &others, const QString &sameText)
{
    RepeaterWalk walk;
    QString route = start;
    bool behindAllEmpty = true;
    for (auto field = fields.rbegin(); field != fields.rend(); ++field) {
        if (field->isEmpty()) {
            if (!behindAllEmpty) {
                walk.faultText = kRepeaterGapText;
                walk.clearFields = true;
                return walk;
            }
            continue;
        }
        const double value = numericValue(*field);
        if (value < 1 || value > 254) {
            walk.faultText = kRepeaterRangeText;
            return walk;
        }
        if (!sameText.isEmpty() && others.contains(value)) {
            walk.faultText = sameText;
            return walk;
        }
        route = *field + QLatin1Char(',') + route;
        behindAllEmpty = false;
    }
    walk.route = route;
    return walk;
}
