#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace sim {

// How the firmware stores and checks the value of a setting.
enum class ValueKind {
    Number, // whole decimal number within [low, high]; a fraction typed after it is dropped
    OnOff,  // "ON" or "OFF"
    Text,   // kept as typed (routes such as "40,41,12", model codes, versions)
};

// One setting of the interpreter: the full command name, the shortest abbreviation the
// interpreter takes, the name it prints in a value line, and where it keeps its value.
struct ParameterDef
{
    const char *command; // full name, in capitals: "ADDRESS"
    int minLength;       // "ADD" is enough for ADDRESS
    const char *label;   // the name in the value line: "ADDRESS", "SETCON", "A1"
    ValueKind kind;
    int low = 0;
    int high = 0;
    bool writable = true;    // MODEL, OPTION and S/N are writable too: the flash utility writes them back
    bool listed = true;      // appears in the "he ch" listing when changed
    bool shortLabel = false; // synthesizer latches print a short line ("A1   = 56")
};

// Every setting of the firmware, in the order the "he ch" listing prints them.
const QList<ParameterDef> &parameterDefs();
const ParameterDef *findParameter(const QString &command);

// The value line the interpreter prints, without its line end: the label in capitals, padded so
// that the value begins eleven columns after the first letter of the label (seven for the latches).
QByteArray valueLine(const ParameterDef &def, const QString &value);

// Normalises a value typed after a command; nothing when the firmware refuses it.
std::optional<QString> normaliseValue(const ParameterDef &def, const QString &typed);

// The number at the front of a text ("12abc" is 12, "9600.5" is 9600); nothing when there is none.
std::optional<long long> leadingNumber(const QString &text);

} // namespace sim
