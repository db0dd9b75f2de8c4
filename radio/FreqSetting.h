#pragma once

#include "Prompts.h"

#include <QString>
#include <QtGlobal>

class ModemSession;

// The frequency of the connected modem or of a remote one: the record of the unit, the tests of a
// new frequency, and the latch lines that set it.

inline const QString kRemoteFreqMode = QStringLiteral("RemoteFreq");
inline const QString kRemoteFreqSMode = QStringLiteral("RemoteFreqS");
inline const QString kSpreadModel = QStringLiteral("Q4Z");

// What the hub knows of a unit while it is open: identity, band and the last latches sent.
struct ModemRecord
{
    QString Model;
    QString Version;
    quint8 Option = 0;
    float Frequency = 0;
    qint16 SerialNumber = 0;
    float FreqLow = 0;
    float FreqHigh = 0;
    qint32 N1 = 0;
    qint32 N2 = 0;
    qint32 A1 = 0;
    bool OptCanada = false;
    bool OptNoiseSquelch = false;
    bool OptFreqLock = false;
};

// Reads model, version, option and serial number of the unit at the prompt and unpacks the option.
void readModemRecord(ModemSession &session, ModemRecord &record);

// A box to show: its text, icon and title.
struct Notice
{
    QString text;
    MsgIcon icon = MsgIcon::None;
    QString title;
};
// The warnings of a unit the user may not set: sold in Canada, frequency locked. Empty for none.
QList<Notice> recordWarnings(const ModemRecord &record);

// The grid a new frequency must lie on, in Hz, by the screen that takes it; 0 where none is tested.
enum class FreqGrid { Local, Remote, Calculator };
int frequencyStep(const QString &model, int option, FreqGrid grid);

// The first refusal of a new frequency typed on a screen: off the grid, in the reserved band (the
// local screen only) or out of the unit's band. Empty text when the frequency may be sent.
Notice checkNewFrequency(const ModemRecord &record, double frequency, FreqGrid grid);

// The latches for a frequency by the unit's scheme, and the line that sets them, without its tail.
struct Latches
{
    double a1 = 0;
    double n1 = 0;
    double n2 = 0;
};
Latches latchesFor(const ModemRecord &record, double frequency);
QByteArray latchLine(const Latches &latches);
// The frequency the unit's latches stand for, by its scheme.
double frequencyOf(const ModemRecord &record, const Latches &latches);
// The input mask of a new frequency on a screen.
QString frequencyMask(const QString &model, FreqGrid grid);
// A frequency as the screens show it.
QString frequencyText(double frequency);
// The band of the unit as its screens show it ("450.1 to 470"), stored in the record.
QString takeRange(ModemRecord &record);
// Keeps the frequency and latches sent in the record, the latches rounded.
void storeSent(ModemRecord &record, double frequency, const Latches &latches);

// Sets the connected modem: latches latched, then saved. Returns the box that reports it.
QString SetLocalFrequency(ModemSession &session, ModemRecord &record, double frequency);

// Sets a linked remote modem: the link is checked and, if it dropped, opened again along
// RemoteRoute; the latches are saved, then latched, which ends the link. False when the link could
// not be had again ("Lost Link to Remote Address" has been shown).
bool SetRemoteFrequency(ModemSession &session, ModemRecord &record, double frequency);

// The spread-spectrum model's channels: 1 to 11, 5 MHz apart from 2412 MHz.
inline constexpr int kSpreadChannels = 11;
int spreadFrequency(int channel);
// Sets and saves the channel of the connected or of a linked remote modem, then latches it (which
// ends a remote link). Returns the box that reports it.
QString SetSpreadChannel(ModemSession &session, int channel, bool remote);

// The calculator's units: the model code, the case style and the caption with the band.
struct CalculatorUnit
{
    const char *tag; // the program's own name of the unit
    const char *model;
    bool newCase; // new case units compute by the second scheme, old case by the first
    const char *caption;
};
const QList<CalculatorUnit> &calculatorUnits();
// The latches of a frequency for a unit without any modem: the refusal, as on the local screen but
// for the calculator's grid and with no band for the Q40R, or the latches.
Notice calculatorCheck(const CalculatorUnit &unit, double frequency);
Latches calculatorLatches(const CalculatorUnit &unit, double frequency);
