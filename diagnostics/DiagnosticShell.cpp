#include "DiagnosticShell.h"

#include "AppError.h"
#include "CalcFreq.h"
#include "DiagnosticReport.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "ProgramFile.h"
#include "RepeaterRoute.h"
#include "TextRules.h"

#include <QFileInfo>

namespace {
const QString kSpreadSpectrum = QStringLiteral("Q40Z");
constexpr int kNewCaseSerial = 12000;
constexpr int kMinPacket = 10;
constexpr int kMaxPacket = 2000;
} // namespace

QString diagModelName(const QString &modelCode)
{
    return leftText(QStringLiteral("Q40") + midText(modelCode, 3), 10);
}

QString diagSerialText(const QString &modelName, const QString &serial)
{
    return modelName == kSpreadSpectrum ? QStringLiteral("S- ") + serial : modelName + serial;
}

QString operatingFrequency(const QString &modelCode, int option, const QString &serial, double a1, double n1,
                           double n2)
{
    if (modelCode == QLatin1String("Q4Z") ||
        (!optionBitSet(option, OptionNewSynth) && numericValue(serial) < kNewCaseSerial))
        // Single precision: seven digits are what the old calculation carries.
        return numberText(QString::number(LatchesToFreqA(modelCode, a1, n1, n2, option), 'g', 7).toDouble());
    if (optionBitSet(option, OptionNewSynth))
        return numberText(LatchesToFreqC(modelCode, a1, n1, option));
    return numberText(LatchesToFreqB(a1, n1, option));
}

ModemUnderTest readModemUnderTest(ModemSession &session, DiagnosticReport &report)
{
    ModemUnderTest m;
    if (session.IrDongleActive) {
        ignoreErrors([&] { session.sendCommand(QByteArrayLiteral("ECHO OFF")); });
        ignoreErrors([&] { session.WaitForReply(QByteArrayLiteral("CMD:"), 1000); });
    }
    QString code;
    ignoreErrors([&] { ReadModelInfo(session, code, m.FirmwareVersion, m.OptionWord); });
    m.ModelName = diagModelName(code);
    report.AddData(QStringLiteral("Varnel Model ") + m.ModelName);
    QString serial;
    ignoreErrors([&] { ReadSerialNumber(session, serial); });
    m.SerialText = diagSerialText(m.ModelName, serial);
    report.AddData(QStringLiteral("Serial Number=  ") + m.SerialText);
    int option = 0;
    ignoreErrors([&] { option = roundToInteger(numericValue(m.OptionWord)); });
    m.HasRssOption = optionBitSet(option, OptionSignalStrength) || m.ModelName == kSpreadSpectrum;
    double a1 = 0, n1 = 0, n2 = 0, squelch = 0;
    ignoreErrors([&] { ReadLatches(session, a1, n1, n2, squelch); });
    m.SquelchText = numberText(squelch);
    ignoreErrors([&] { m.OperatingFrequency = operatingFrequency(code, option, serial, a1, n1, n2); });
    report.AddData(QStringLiteral("Firmware Version=  ") + m.FirmwareVersion);
    report.AddData(QStringLiteral("Operating Frequency= ") + m.OperatingFrequency + QStringLiteral(" MHz"));
    return m;
}

TestAvailability testAvailability(const ModemUnderTest &modem, DiagnosticReport &report)
{
    TestAvailability a;
    const bool z = modem.ModelName == kSpreadSpectrum;
    a.rss = a.interference = modem.HasRssOption;
    a.dataQuality = !(modem.HasRssOption && z);
    const QString noMeter = QStringLiteral("Receive Signal Strength Meter Not Installed\r\n");
    if (!a.rss) {
        report.AddData(asterisks());
        report.AddData(noMeter + QStringLiteral("Receive Signal Strength Measurements Not Available"));
        report.AddData(asterisks());
        report.AddData(noMeter + QStringLiteral("Interference Test Not Available"));
    }
    if (!a.dataQuality)
        report.AddData(asterisks());
    return a;
}

AddressEntry addressRow(const QString &destination, const std::array<QString, 3> &repeaters)
{
    AddressEntry e;
    const double value = numericValue(destination);
    if (value == 0) {
        e.faultText = QStringLiteral("You Must Type In An Address For The Destination Varnel");
        e.exclamation = true;
        return e;
    }
    if (value < 1 || value > 254) {
        e.faultText = QStringLiteral("Your Destination Address Must Be Between 1 and 254");
        return e;
    }
    const RepeaterWalk walk =
        walkRepeaters(repeaters, destination, {value},
                      QStringLiteral("Your Repeater Addresses Must Be Different Your Destination Address"));
    e.row = walk.route;
    e.faultText = walk.faultText;
    e.clearRepeaters = walk.clearFields;
    return e;
}

TestPacketChoice testPacketFor(const QString &sizeText)
{
    const qint32 size = roundToLong(numericValue(sizeText));
    if (size < kMinPacket || size > kMaxPacket)
        return {{}, QStringLiteral("Your Test Packet Must Be Between 10 and 2000")};
    return {MakeTestPattern(size - 1), {}};
}

QString askFileName(Prompts &prompts, FileDialogRequest::Kind kind, const QString &filter,
                    const QString &preset)
{
    FileDialogRequest request;
    request.kind = kind;
    request.filter = fileDialogFilter(filter);
    request.fileName = preset;
    QString name = prompts.FileDialog(request);
    // A name typed without a type gets the first one the dialog lists, so it is listed there again.
    if (kind == FileDialogRequest::Kind::Save && !name.isEmpty() && QFileInfo(name).suffix().isEmpty())
        name += filter.section(u'|', 1, 1).mid(1);
    return name;
}
