#pragma once

#include <QString>
#include <QStringList>

// The ways a value is cut out of the modem's reply text. Value lines look like "SQUELCH  = 30",
// a name in capitals padded to a column, an "=" and the value, ended by a carriage return. Every
// cut searches the name exactly in case (so an echoed mixed-case command never matches), and cuts
// the way the string operations always have: a reply without the name or without the closing
// carriage return ends in a negative length or a start before the text, which throws "Invalid
// procedure call or argument" for the caller's handler to show. Values come back trimmed of blanks.

// The value starts 11 characters after the first letter of the name and runs up to the first
// carriage return at or after the name.
QString cutFixedColumn(const QString &reply, const QString &name);

// The same, but the carriage return is searched from endFrom, a position taken from another reply.
// The version of the model information is cut this way from the position the model had.
QString cutFixedColumnEndingFrom(const QString &reply, const QString &name, int endFrom);

// A latch value: it starts 7 characters after the first letter of "A1", "N1" or "N2", because
// the latch lines carry a "SEL/" in front of the name.
QString cutLatch(const QString &reply, const QString &name);

// The value starts one character after the first "=" behind the name and runs up to the next
// carriage return.
QString cutEqualsSign(const QString &reply, const QString &name);

// The two characters in front of the first carriage return behind the name: a hexadecimal value.
QString cutHexPair(const QString &reply, const QString &name);

// The numbered lines of a route listing: for 1 to 30 in turn, the number's text is searched from
// where the last line ended, and the line runs from it up to the next carriage return. The search
// stops at the first number not found. Each line is appended to lines as it is cut, so the lines
// before a line without its carriage return are kept when that one throws.
void cutNumberedLines(const QString &reply, QStringList &lines);
