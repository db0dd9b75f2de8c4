#pragma once

#include <QList>
#include <QString>
#include <array>

// The repeater fields of every screen that takes a route: up to three repeaters in front of a
// destination, filled from the first to the third. The fields are walked from the third down to the
// first; each filled field is put in front of the route so far as the user typed it, with a comma
// between, so "40" and "41" in front of "12" give "40,41,12". A route started from an empty text ends
// in a comma ("40,41,").

inline const QString kRepeaterGapText = QStringLiteral("Please Fill In Repeaters From First to Third");
inline const QString kRepeaterRangeText = QStringLiteral("Your Repeater Addresses Must Be Between 1 and 254");

struct RepeaterWalk
{
    QString route;            // the route built, when the fields are good
    QString faultText;        // the box to show, empty when the fields are good
    bool clearFields = false; // a gap in front of a filled field: all three fields are emptied
};

// Walks the fields. A field is empty only when it holds no text at all; the number of a filled field
// is its numeric value, which must be from 1 to 254. A repeater whose value equals one of the values
// in others (the destination, the connected modem) gives sameText, where the screen has such a test.
RepeaterWalk walkRepeaters(const std::array<QString, 3> &fields, const QString &start,
                           const QList<double> &others = {}, const QString &sameText = {});
