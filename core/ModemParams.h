#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <array>

class ModemSession;

// The readers of the modem's parameters. Each one assumes the modem sits at "CMD:" or "RPG:",
// sends the parameter's name, waits for the reply with WaitForBytes, reads the input once and cuts
// the value out. A silent or refusing modem costs the standard error box once per value that
// could not be cut; the reader then goes on with its next value, and what could not be read stays
// as it was: the callers pass fresh variables, so that is an empty text or 0.

// Model code, firmware version and option value, from `Model`, `Option` and `Version`.
void ReadModelInfo(ModemSession &session, QString &model, QString &version, QString &option);
// The squelch setting, from `Squelch` (`squelch` over the infra-red adaptor).
void ReadSquelch(ModemSession &session, double &value);
// The noise squelch setting, from `asquelch`.
void ReadAsquelch(ModemSession &session, double &value);
// The serial number, from `s/n`.
void ReadSerialNumber(ModemSession &session, QString &value);
// The network identifier, from `net`.
void ReadNetworkId(ModemSession &session, QString &value);
// The repeater routes, from `route` and `append`: each reply line that holds a comma is appended
// to commands as "ROUTE " or "APPEND " and the line.
void ReadRoutes(ModemSession &session, QStringList &commands);
// Address, set-connect, noise squelch, RF flow, receive mark, serial rate and RF power.
void ReadConfiguration(ModemSession &session, QString &address, QString &setcon, QString &asquelch,
                       QString &rflow, QString &rxmark, QString &comrate, QString &rfpower);
// Whether the modem's squelch line is open: bit 2 of the input port, from `inout 0,5`.
bool ReadInout(ModemSession &session);
// The radio timing: data rate, receive data delay, transmit flags, transmit end and frame ack time.
void ReadRadioTiming(ModemSession &session, QString &datarate, QString &rxdata, QString &txflag,
                     QString &txend, QString &frack);
// The three synthesizer latches and the squelch.
void ReadLatches(ModemSession &session, double &a1, double &n1, double &n2, double &squelch);

// The bits of the option byte, by their index.
enum OptionBit {
    OptionCanada = 0,         // "To be Sold in Canada": the user may not change the frequency
    OptionNewSynth = 1,       // "New SA8026 Synth" (on the spread-spectrum model: "Phone Circuit")
    OptionSignalStrength = 2, // "Signal Strength": the signal strength meter is installed
    OptionQ40R75MHz = 3,      // "Q40R  75MHz to 76MHz"
    OptionNarrowBand = 4,     // "Narrow Band Operation"
    Option5kHzSpacing = 5,    // "5kHz Channel Spacing" in place of 6.25 kHz
    OptionNoiseSquelch = 6,   // "Noise Squelch": the unit has `asquelch`
    OptionFrequencyLock = 7,  // "Frequency Lock": the frequency may not be changed
};
using OptionBits = std::array<bool, 8>;

// Splits the option byte into its eight bits, bit 0 first.
OptionBits UnpackOptions(quint8 option);
// Joins eight bits into the option byte.
quint8 PackOptions(const OptionBits &bits);
// Whether one bit of an option value is set.
bool optionBitSet(int option, OptionBit bit);
// The option text of ReadModelInfo as a byte: its numeric value, rounded; beyond 0 to 255 throws
// Overflow.
quint8 optionByte(const QString &optionText);

// The decimal text of a text of hexadecimal digits, as a 32-bit value ("FB" gives "251").
QString HexToDecimal(const QString &hex);

// A text of the given length running "0" to "z" and over again, the test data of the polling test.
QString MakeTestPattern(int length);

// The modem's three rate switches for the rate in front of the first comma of a settings text
// ("9600,n,8,1"): switch 1, 2 and 3, on as true. A rate without a row leaves all three off. A text
// without a comma throws "Invalid procedure call or argument", as taking its front part did.
std::array<bool, 3> BaudToSwitches(const QString &settings);

// The frame switches for a settings text, from the characters at 1, 3 and 5 behind the first
// comma: more than one stop bit, parity on, data bits other than 7, odd parity.
std::array<bool, 4> FrameToSwitches(const QString &settings);
