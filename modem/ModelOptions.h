#pragma once

#include "ModemParams.h"

#include <QByteArray>
#include <QString>
#include <optional>

class ModemSession;

// The radio timing for narrow or wide band channels, by the firmware version as a number.
QByteArray bandLine(bool narrow, double version);

// The connected modem's model and option word, as the option dialogs start from them.
struct ModelOptionsRead
{
    QString model;
    OptionBits bits{};
    bool spreadSpectrum() const { return model == u"Q4Z"; }
};

// Brings the modem to its prompt and reads its model and options; nothing when the prompt was not
// had (the entry routine has told the user why).
std::optional<ModelOptionsRead> readModelOptions(ModemSession &session);

// Clearing "Narrow Band Operation" and answering Yes: the wide band timing for the modem's
// version goes out at once, before any option word.
void ReturnToWideband(ModemSession &session);

// "Set Option": the option word is written and saved, with the narrow band timing first when that
// box is ticked on a model that has it; the user is told the value even when the modem was not
// found.
void SetModelOptions(ModemSession &session, const OptionBits &bits, bool spreadSpectrum);

// "Set Output Power Level": whether the connected modem has a power level to set. Only the
// spread-spectrum model has; the others are told so and the port goes back to the terminal.
bool PowerLevelAvailable(ModemSession &session);
// The power setting as SetPowerS starts from it: 0 for half a watt, 1 for one watt.
int ReadPowerLevel(ModemSession &session);
// Sets and saves the output power: index 0 half a watt, 1 one watt.
void SetPowerLevel(ModemSession &session, int index);

// The hour meter's reading, and its total split into years, days and hours.
struct HourMeter
{
    QString total;
    qint64 years = 0;
    qint64 days = 0;
    double hours = 0; // what remains, with the fraction the meter gave
};
HourMeter splitHours(const QString &total);
// Reads the hour meter with `hour`.
HourMeter ReadHours(ModemSession &session);
