#include "StartOut.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "CommControl.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "Prompts.h"
#include "TextRules.h"

namespace {
constexpr int kOldCaseSerial = 12000;
const char *const kPS410 = "Varnel Model PS410 (90-264 VAC)";
const char *const kPS420 = "Varnel Model PS420 (100-130 or 200-260 VAC)";

// The new-case units of the two-output row, and the high-power units.
constexpr PowerModel newCase(const char *entry)
{
    return {entry,
            "Q40Combine",
            {"2 Watt", "4 Watt", nullptr},
            {"1.4 Amps TX", "1.76 Amps TX", nullptr},
            {"1.4 Amps TX", "1.76 Amps TX", nullptr},
            {},
            ".366 Amps RX",
            kPS410};
}
constexpr PowerModel highPower(const char *entry)
{
    return {entry,
            "Q40Combine",
            {"10 Watts", "20 Watts", "30 Watts"},
            {"4 Amps TX", "5.5 Amps TX", "8.5 Amps Tx"},
            {"4 Amps TX", "5.5 Amps TX", "8.5 Amp TX"},
            {},
            ".400 Amps RX",
            kPS420};
}

struct Detection
{
    const char *model;
    const char *oldCase;
    const char *newCase;
};
const Detection kDetections[] = {
    {"Q4U", "Model Q40U (Old Case)", "Model Q40U"},
    {"Q4ULX", "Model Q40ULX (High Power)", "Model Q40ULX (High Power)"},
    {"Q4W", "Model Q40W (Old Case)", "Model Q40W"},
    {"Q4Y", "Model Q40Y (Old Case)", "Model Q40Y"},
    {"Q4YLX", "Model Q40YLX (High Power)", "Model Q40YLX (High Power)"},
    {"Q4R", "Model Q40R", "Model Q40R"},
    {"Q4Z", "Model Q40Z", "Model Q40Z"},
};

QString text(const char *label)
{
    return label ? QLatin1String(label) : QString();
}
} // namespace

const std::array<PowerModel, 10> &powerModels()
{
    // The old-case Q40W lists its outputs the other way round, and its second current reads as the
    // leftover it always has; both are what users of the guide have always seen.
    static const std::array<PowerModel, 10> models{{
        {"Model Q40U (Old Case)",
         "Q40U",
         {"2 Watt", "4 Watt", nullptr},
         {"2 Amps TX", "3 Amps TX", nullptr},
         {"2 Amps TX", "3 Amps TX", nullptr},
         {},
         ".75 Amps RX",
         kPS410},
        newCase("Model Q40U"),
        highPower("Model Q40ULX (High Power)"),
        {"Model Q40W (Old Case)",
         "Q40W",
         {"4 Watt", "2 Watt", nullptr},
         {"3 Amps TX", "2 Comm2.CursorRow = 1", nullptr},
         {"3 Amps TX", "2 Amps TX", nullptr},
         {},
         ".75 Amps RX",
         kPS410},
        newCase("Model Q40W"),
        {"Model Q40Y (Old Case)",
         "Q40Y",
         {"2 Watt", "4 Watt", nullptr},
         {"1.6 Amps TX", "2 Amps TX", nullptr},
         {"1.6 Amps TX", "2 Amps TX", nullptr},
         {},
         ".75 Amps RX",
         kPS410},
        newCase("Model Q40Y"),
        highPower("Model Q40YLX (High Power)"),
        {"Model Q40R",
         "Q40R",
         {"1 Watt", nullptr, nullptr},
         {".85 Amps TX", nullptr, nullptr},
         {".49 Amps TX", nullptr, nullptr},
         {".85 Amps RX", nullptr, nullptr},
         ".49 Amps RX",
         kPS410},
        {"Model Q40Z",
         "Q40Z",
         {"1 Watt (Maximum)", nullptr, nullptr},
         {".70 Amps TX", nullptr, nullptr},
         {".70 Amps TX", nullptr, nullptr},
         {},
         ".29 Amps RX",
         kPS410},
    }};
    return models;
}

PowerLabels modelSelected(const PowerModel &model, int choice)
{
    return {text(model.listTX[size_t(choice)]), text(model.rx), text(model.converter), kInputVoltage};
}

PowerLabels choiceClicked(const PowerModel &model, int choice, PowerLabels shown)
{
    shown.tx = text(model.clickTX[size_t(choice)]);
    if (const char *rx = model.clickRX[size_t(choice)])
        shown.rx = text(rx);
    return shown;
}

QString solarConsumption(const QString &tx, const QString &rx)
{
    return numberText(12 * numericValue(tx) + 12 * numericValue(rx)) + QStringLiteral(" Amp-Hours/Day");
}

QString modelEntryFor(const QString &model, const QString &serial)
{
    const bool oldCase = numericValue(serial) < kOldCaseSerial;
    for (const Detection &d : kDetections)
        if (model == QLatin1String(d.model))
            return QLatin1String(oldCase ? d.oldCase : d.newCase);
    return {};
}

QString detectModelEntry(ModemSession &session, bool dongle)
{
    BusyPointer busy(session.prompts());
    // The setup switches asked for put the modem at the loader's rate, whatever it was set to.
    attempt(session.prompts(), [&] { session.Comm1().setSettings(QStringLiteral("19200,N,8,1")); });
    if (dongle)
        session.InitIrDongle();
    if (!session.ProbeCommandPrompt()) {
        session.prompts().MsgBox(kNotDetectedText);
        return {};
    }
    QString model, version, option, serial;
    ReadModelInfo(session, model, version, option);
    ReadSerialNumber(session, serial);
    return modelEntryFor(model, serial);
}

void SetAddress(ModemSession &session)
{
    Prompts &prompts = session.prompts();
    BusyPointer busy(prompts);
    if (!session.EnterCommandMode())
        return;
    QString address, setcon, asquelch, rflow, rxmark, comrate, rfpower;
    ReadConfiguration(session, address, setcon, asquelch, rflow, rxmark, comrate, rfpower);
    for (;;) {
        const std::optional<QString> answer = prompts.InputBox(
            QStringLiteral("Please Provide a Unique Address For The Varnel.  Adresses 1-254 are valid "
                           "addresses for the Varnel"),
            QStringLiteral("Set Address"), address);
        if (!answer || answer->isEmpty())
            return;
        const double value = numericValue(*answer);
        if (value < 1 || value > 254) {
            prompts.MsgBox(QStringLiteral("Your address must be from 1 to 254"), MsgButtons::OkOnly,
                           MsgIcon::None, QStringLiteral("Incorrect Address"));
            continue;
        }
        const QString number = numberText(value);
        if (!attempt(prompts, [&] { session.Comm1().Output("add " + number.toLatin1() + ":save\r"); }))
            return;
        prompts.MsgBox(QStringLiteral("Your Address Is Set To ") + number);
        return;
    }
}

PortShare::PortShare(ModemSession &session, std::function<void(const QByteArray &)> show)
    : m_session(session), m_show(std::move(show))
{
    CommControl &comm = session.Comm1();
    m_threshold = comm.RThreshold();
    comm.setRThreshold(1);
    connect(&comm, &CommControl::received, this, [this] { m_show(m_session.Comm1().Input()); });
}

PortShare::~PortShare()
{
    end(false);
}

void PortShare::send(const QByteArray &bytes)
{
    attempt(m_session.prompts(), [&] { m_session.Comm1().Output(bytes); });
}

void PortShare::end(bool resetPort)
{
    CommControl &comm = m_session.Comm1();
    disconnect(&comm, nullptr, this, nullptr);
    comm.setRThreshold(m_threshold);
    if (resetPort)
        attempt(m_session.prompts(), [&] {
            comm.setPortOpen(false);
            comm.setPortOpen(true);
        });
}
