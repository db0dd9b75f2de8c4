#pragma once

#include "Prompts.h"

#include <QString>
#include <QStringList>
#include <array>

class DiagnosticReport;
class ModemSession;

// The modem under test as the diagnostics show it and the tests read it.
struct ModemUnderTest
{
    QString ModelName;
    QString FirmwareVersion;
    QString OptionWord;
    QString SerialText;
    QString SquelchText;
    QString OperatingFrequency;
    bool HasRssOption = false;
};

// "Q40" joined to the model code from its third character on, at most 10 characters.
QString diagModelName(const QString &modelCode);
// "S- " and the serial number for the spread-spectrum model; otherwise the name and the number.
QString diagSerialText(const QString &modelName, const QString &serial);
// The frequency the latches give, in MHz, by the calculation the model, option and serial number take.
QString operatingFrequency(const QString &modelCode, int option, const QString &serial, double a1, double n1,
                           double n2);

// Reads the modem at the cable and opens the report with what it found. A statement that fails is
// passed over: a silent modem gives empty values, and the report shows what was read.
ModemUnderTest readModemUnderTest(ModemSession &session, DiagnosticReport &report);

// Which tests the modem can run: signal strength, interference, data quality, polling.
struct TestAvailability
{
    bool rss = false, interference = false, dataQuality = false, polling = true;
};
// Decides the availability and writes the blocks that say what is missing to the report.
TestAvailability testAvailability(const ModemUnderTest &modem, DiagnosticReport &report);

// One row of the test address list from the fields of DiagNewAdd: the row, or the box to show.
struct AddressEntry
{
    QString row;
    QString faultText;
    bool exclamation = false; // the box of the missing destination carries the exclamation icon
    bool clearRepeaters = false;
};
AddressEntry addressRow(const QString &destination, const std::array<QString, 3> &repeaters);

// The packet of the polling test for the size the user typed: empty text and the box when the size
// is out of range. The text is one character short of the size: the carriage return ends it on the air.
struct TestPacketChoice
{
    QString packet;
    QString faultText;
};
TestPacketChoice testPacketFor(const QString &sizeText);

// Texts of the shell's boxes shared by the screens and their tests.
inline const QString kDeleteLastAddressText =
    QStringLiteral("You Must Have At Least One Address In Test Addresses.  If You Wish To Change Address, "
                   "Add The New Address First And Then Delete The Old Address.");
inline const QString kNoAddressText =
    QStringLiteral("You Must Select At Least One Remote Varnel Address For Testing");
inline const QString kAddressFileFilter = QStringLiteral("Varnel Test Addresses (*.nva)|*.nva");
inline const QString kReportFileFilter =
    QStringLiteral("Diagnostic File (*.rtf)|*.rtf|PDF Document (*.pdf)|*.pdf");

// A name of one blank in the open dialog: a dialog that hands it back has chosen nothing.
inline const QString kBlankFileName = QStringLiteral(" ");
// The name the user picks in a file dialog with the filter as the program writes it, empty on Cancel.
// A name to save under that has no type gets the filter's first.
QString askFileName(Prompts &prompts, FileDialogRequest::Kind kind, const QString &filter,
                    const QString &preset = {});
