#pragma once

#include <QByteArray>
#include <QStringList>

// The modem's answer to its listing request "he ch", cut into command lines by four marks alone:
// the echo opens the listing, the prompt closes it, carriage returns separate the lines, and
// whatever stands between lines up to the next letter is dropped.

// The line table holds this many lines; the listing beyond them is cut out and lost.
inline constexpr int kLineTableSize = 101;

inline const QByteArray kListingRequest = QByteArrayLiteral("he ch");

struct ProgramListing
{
    QByteArray prompt; // "CMD:" or "RPG:", the first that stands in the reply; empty for neither
    QStringList lines; // no lines when neither prompt stands in the reply
};

ProgramListing parseProgramListing(const QByteArray &reply);
