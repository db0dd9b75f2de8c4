#include "FreqSetting.h"

#include "AppError.h"
#include "CalcFreq.h"
#include "CommControl.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "TextRules.h"

#include <cmath>
#include <limits>

namespace {
const QByteArray kCtrlC = QByteArrayLiteral("\x03");
const QString kCall = QStringLiteral(" Please call Varnel Radio Works at 555-0142");

bool isVhf(const QString &model)
{
    return model == u"Q4Y" || model == u"Q4YLX";
}

QString stepText(int step)
{
    switch (step) {
    case 5000:
        return QStringLiteral("Re-enter the frequency to be divisible by 5 Khz");
    case 6250:
        return QStringLiteral("Re-enter the frequency to be divisible by 6.25 Khz");
    case 12500:
        return QStringLiteral("Re-enter the frequency to be divisible by 12.5 Khz");
    }
    return QStringLiteral("Re-enter the frequency to be divisible by 20 kHz");
}
} // namespace

void readModemRecord(ModemSession &session, ModemRecord &record)
{
    QString option;
    QString serial;
    ReadModelInfo(session, record.Model, record.Version, option);
    ReadSerialNumber(session, serial);
    attempt(session.prompts(), [&] {
        record.Option = optionByte(option);
        record.SerialNumber = roundToInteger(numericValue(serial));
    });
    const OptionBits bits = UnpackOptions(record.Option);
    record.OptCanada = bits[OptionCanada];
    record.OptNoiseSquelch = bits[OptionNoiseSquelch];
    record.OptFreqLock = bits[OptionFrequencyLock];
}

QList<Notice> recordWarnings(const ModemRecord &record)
{
    QList<Notice> warnings;
    if (record.OptCanada)
        warnings.append(
            {QStringLiteral("Varnel Wireless Modems are not \rfrequency programmable in Canada.\r") + kCall,
             MsgIcon::Critical, QStringLiteral("Error")});
    if (record.OptFreqLock)
        warnings.append(
            {QStringLiteral("This Varnel Wireless Modem is locked\rfrom frequency programming.\r") + kCall,
             MsgIcon::Exclamation, QStringLiteral("Frequency Locked")});
    return warnings;
}

int frequencyStep(const QString &model, int option, FreqGrid grid)
{
    if (model == u"Q4R")
        return 20000;
    // The calculator knows no option byte, so the 5 kHz grid never meets it.
    if (isVhf(model) && optionBitSet(option, Option5kHzSpacing))
        return 5000;
    if (isVhf(model) || model == u"Q4U" || model == u"Q4ULX" || model == u"Q4W")
        return grid == FreqGrid::Remote ? 12500 : 6250;
    return 0;
}

Notice checkNewFrequency(const ModemRecord &record, double frequency, FreqGrid grid)
{
    const QString errorTitle = QStringLiteral("Error Message");
    const int step = frequencyStep(record.Model, record.Option, grid);
    if (step != 0 && std::fmod(roundHalfEven(frequency * 1000000), step) != 0)
        return {stepText(step), MsgIcon::Exclamation, errorTitle};
    if (grid == FreqGrid::Local && record.Model == u"Q4W" && frequency >= 406 && frequency <= 406.1)
        return {QStringLiteral("Frequency Entered Is Reserved for the International COPAS-SARSAT System at "
                               "406-406.1 MHz.  Please re-enter new frequency."),
                MsgIcon::Exclamation, errorTitle};
    if (float(frequency) < record.FreqLow || float(frequency) > record.FreqHigh)
        return {
            QStringLiteral("The frequency you entered is not within the operating frequency of your Varnel!"),
            MsgIcon::Exclamation, QStringLiteral("Incorrect Frequency Range")};
    return {};
}

Latches latchesFor(const ModemRecord &record, double frequency)
{
    Latches l;
    freqToLatches(chooseLatchScheme(record.Option, record.SerialNumber), record.Model, numberText(frequency),
                  record.Option, l.a1, l.n1, l.n2);
    return l;
}

QByteArray latchLine(const Latches &l)
{
    return "Sel/N1 " + numberText(l.n1).toLatin1() + ":Sel/A1 " + numberText(l.a1).toLatin1() + ":Sel/N2 " +
           numberText(l.n2).toLatin1();
}

double frequencyOf(const ModemRecord &record, const Latches &l)
{
    return latchesToFreq(chooseLatchScheme(record.Option, record.SerialNumber), record.Model, l.a1, l.n1,
                         l.n2, record.Option);
}

QString frequencyMask(const QString &model, FreqGrid grid)
{
    if (model == u"Q4R")
        return QStringLiteral("##.###");
    return grid == FreqGrid::Local ? QStringLiteral("###.#####") : QStringLiteral("###.####");
}

QString frequencyText(double frequency)
{
    return numberText(roundHalfEven(frequency * 100000) / 100000);
}

QString takeRange(ModemRecord &record)
{
    double low = record.FreqLow;
    double high = record.FreqHigh;
    FreqRangeForModel(record.Model, record.Option, low, high);
    record.FreqLow = float(low);
    record.FreqHigh = float(high);
    return numberText(low) + QStringLiteral(" to ") + numberText(high);
}

void storeSent(ModemRecord &record, double frequency, const Latches &l)
{
    record.Frequency = float(frequency);
    record.A1 = roundToLong(l.a1);
    record.N1 = roundToLong(l.n1);
    record.N2 = roundToLong(l.n2);
}

QString SetLocalFrequency(ModemSession &session, ModemRecord &record, double frequency)
{
    Prompts &prompts = session.prompts();
    Latches l;
    attempt(prompts, [&] { l = latchesFor(record, frequency); });
    attempt(prompts, [&] { session.sendCommand(latchLine(l) + ":Lat"); });
    session.WaitForReply("CMD:", 1000);
    attempt(prompts, [&] { session.sendText("SAVE\r"); });
    attempt(prompts, [&] { storeSent(record, frequency, l); });
    return QStringLiteral("The local frequency is set to ") + numberText(frequency) + QStringLiteral(" MHz");
}

bool SetRemoteFrequency(ModemSession &session, ModemRecord &record, double frequency)
{
    Prompts &prompts = session.prompts();
    CommControl &comm = session.Comm1();
    Latches l;
    attempt(prompts, [&] { l = latchesFor(record, frequency); });
    // A lost link shows only in the answer to the next line: a bare line end asks for the prompt.
    attempt(prompts, [&] { session.sendCommand(QByteArray()); });
    session.WaitForBytes(5);
    if (!comm.Input().contains("RPG:")) {
        attempt(prompts, [&] { comm.Output("Prog " + session.RemoteRoute.toLatin1() + '\r'); });
        session.WaitForBytes(40);
        if (!comm.Input().contains("RPG:")) {
            prompts.MsgBox(QStringLiteral("Lost Link to Remote Address"), MsgButtons::OkOnly, MsgIcon::None,
                           QStringLiteral("Remote Program Failure"));
            return false;
        }
    }
    attempt(prompts, [&] { session.sendCommand(latchLine(l) + ":sa"); });
    session.WaitForReply("RPG:", 2000);
    // The remote leaves the old frequency as it latches, and the link with it; Ctrl-C brings the
    // connected modem back to its prompt.
    attempt(prompts, [&] { session.sendText("latch\r"); });
    attempt(prompts, [&] { comm.Output(kCtrlC); });
    attempt(prompts, [&] { storeSent(record, frequency, l); });
    return true;
}

int spreadFrequency(int channel)
{
    return 2412 + 5 * (channel - 1);
}

QString SetSpreadChannel(ModemSession &session, int channel, bool remote)
{
    Prompts &prompts = session.prompts();
    attempt(prompts, [&] { session.sendCommand("sel/a1 " + QByteArray::number(channel) + ":save"); });
    session.WaitForReply(remote ? "RPG:" : "CMD:", 1000);
    attempt(prompts, [&] { session.sendText("latch\r"); });
    const QString frequency = QString::number(spreadFrequency(channel));
    if (!remote)
        return QStringLiteral("The Local Frequency Is Set To ") + frequency;
    attempt(prompts, [&] { session.Comm1().Output(kCtrlC); });
    return QStringLiteral("The RemoteFrequency Is Set To ") + frequency;
}

const QList<CalculatorUnit> &calculatorUnits()
{
    static const QList<CalculatorUnit> units{
        {"Q40U", "Q4U", false, "Q40U  450.1 to 470 MHz"},
        {"Q40W", "Q4W", false, "Q40W  400 to 420 MHz"},
        {"Q40Y", "Q4Y", false, "Q40Y  150 to 174 MHz"},
        {"Q40R", "Q4R", false, "Q40R  72 to 73 MHz"},
        {"Q40Combine", "Q4U", true, "Q40U  450.1 to 470 MHz"},
        {"Q40Combine", "Q4Y", true, "Q40Y  150 to 174 MHz"},
        {"Q40ULX", "Q4ULX", true, "Q40ULX  450.1 to 470 MHz"},
    };
    return units;
}

namespace {
ModemRecord calculatorRecord(const CalculatorUnit &unit)
{
    ModemRecord record;
    record.Model = QLatin1String(unit.model);
    // A serial number on the right side of 12000 picks the scheme of the case style.
    record.SerialNumber = unit.newCase ? 12000 : 11999;
    takeRange(record);
    return record;
}
} // namespace

Notice calculatorCheck(const CalculatorUnit &unit, double frequency)
{
    ModemRecord record = calculatorRecord(unit);
    if (record.Model == u"Q4R") {
        record.FreqLow = -std::numeric_limits<float>::max();
        record.FreqHigh = std::numeric_limits<float>::max();
    }
    return checkNewFrequency(record, frequency, FreqGrid::Calculator);
}

Latches calculatorLatches(const CalculatorUnit &unit, double frequency)
{
    return latchesFor(calculatorRecord(unit), frequency);
}
