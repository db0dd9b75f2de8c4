#include "ModelOptions.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "CommControl.h"
#include "ModemSession.h"
#include "PortClaim.h"
#include "Prompts.h"
#include "TextRules.h"

#include <cmath>

namespace {
constexpr double kHoursPerYear = 8760;
constexpr double kHoursPerDay = 24;

bool output(ModemSession &session, const QByteArray &bytes)
{
    return attempt(session.prompts(), [&] { session.Comm1().Output(bytes); });
}

double versionOf(ModemSession &session)
{
    QString model, version, option;
    ReadModelInfo(session, model, version, option);
    return numericValue(version);
}
} // namespace

QByteArray bandLine(bool narrow, double version)
{
    // Versions from 1.45 up to 1.5 wait longer before they transmit.
    const bool middle = version >= 1.45 && version < 1.5;
    if (!narrow)
        return middle ? "datarate 0:rfwait 5:rxd 2:rxend 1:txf 3:txe 1:frack 50"
                      : "datarate 0:rfwait 2:rxd 2:rxend 1:txf 3:txe 1:frack 50";
    if (version >= 1.5)
        return "datarate 64:rfwait 2:rxd 3:rxend 1:txf 2:txe 2:frack 60";
    return middle ? "datarate 64:rfwait 7:rxd 3:rxend 1:txf 2:txe 1:frack 60"
                  : "datarate 64:rfwait 3:rxd 3:rxend 1:txf 2:txe 1:frack 60";
}

std::optional<ModelOptionsRead> readModelOptions(ModemSession &session)
{
    if (!session.EnterCommandMode())
        return std::nullopt;
    ModelOptionsRead read;
    QString version, option;
    ReadModelInfo(session, read.model, version, option);
    attempt(session.prompts(), [&] { read.bits = UnpackOptions(optionByte(option)); });
    return read;
}

void ReturnToWideband(ModemSession &session)
{
    if (!session.EnterCommandMode())
        return;
    output(session, bandLine(false, versionOf(session)) + '\r');
}

void SetModelOptions(ModemSession &session, const OptionBits &bits, bool spreadSpectrum)
{
    const quint8 option = PackOptions(bits);
    if (session.EnterCommandMode()) {
        if (!spreadSpectrum) {
            const double version = versionOf(session);
            if (bits[OptionNarrowBand]) {
                output(session, bandLine(true, version) + '\r');
                session.WaitForReply("CMD:", 500);
            }
        }
        output(session, "option " + QByteArray::number(option) + ":save\r");
    }
    session.prompts().MsgBox(QStringLiteral("Varnel Set to Option = %1").arg(option), MsgButtons::OkOnly,
                             MsgIcon::Information);
}

bool PowerLevelAvailable(ModemSession &session)
{
    BusyPointer busy(session.prompts());
    if (!session.EnterCommandMode())
        return false;
    PortClaim::takeForProgram(session.Comm1());
    QString model, version, option;
    ReadModelInfo(session, model, version, option);
    if (model == u"Q4Z")
        return true;
    session.prompts().MsgBox(QStringLiteral("This Model of Varnel Does Not Support This Option"));
    PortClaim::giveToTerminal(session.Comm1());
    return false;
}

int ReadPowerLevel(ModemSession &session)
{
    QString address, setcon, asquelch, rflow, rxmark, comrate, rfpower;
    ReadConfiguration(session, address, setcon, asquelch, rflow, rxmark, comrate, rfpower);
    return int(numericValue(rfpower));
}

void SetPowerLevel(ModemSession &session, int index)
{
    output(session, "RFP " + QByteArray::number(index) + ":LAT\r");
    session.WaitForReply("CMD:", 1000);
    output(session, "SAVE\r");
}

HourMeter splitHours(const QString &total)
{
    HourMeter meter;
    meter.total = total;
    const double h = numericValue(total);
    meter.years = qint64(std::floor(h / kHoursPerYear));
    const double rest = h - double(meter.years) * kHoursPerYear;
    meter.days = qint64(std::floor(rest / kHoursPerDay));
    meter.hours = rest - double(meter.days) * kHoursPerDay;
    return meter;
}

HourMeter ReadHours(ModemSession &session)
{
    output(session, "hour\r");
    session.WaitForBytes(10);
    const QString reply = QString::fromLatin1(session.Comm1().Input());
    QString total;
    // The total stands eleven characters behind the start of "HOUR", up to the line's end.
    attempt(session.prompts(), [&] {
        const int start = findText(reply, QStringLiteral("HOUR")) + 11;
        total = midText(reply, start, findText(start, reply, QStringLiteral("\r")) - start);
    });
    return splitHours(total);
}
