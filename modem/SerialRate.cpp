#include "SerialRate.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "CommControl.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "Prompts.h"
#include "TextRules.h"

namespace {
// The rate the modem's switches force, at which the program finds it whatever its own rate.
const QString kStartUpSettings = QStringLiteral("19200,N,8,1");

struct RateRow
{
    const char *rate;
    int spreadSpectrum; // -1: no code
    int other;          // -1: refused
};
constexpr RateRow kRates[] = {
    {"57600", 1, -1}, {"38400", 2, -1}, {"19200", 3, 0}, {"9600", 4, 1},
    {"4800", 5, 2},   {"2400", 6, 3},   {"1200", 7, 4},
};
const QString kSpreadSpectrumTag = QStringLiteral("Q40Z");
} // namespace

int rateByte(const QString &settings)
{
    const std::array<bool, 4> frame = FrameToSwitches(settings);
    return (frame[0] ? 0 : 8) + (frame[1] ? 16 : 0) + (frame[2] ? 32 : 0) + (frame[3] ? 64 : 0);
}

std::optional<int> rateCode(const QString &rate, const QString &modelTag)
{
    for (const RateRow &row : kRates) {
        if (rate != QLatin1String(row.rate))
            continue;
        const int code = modelTag == kSpreadSpectrumTag ? row.spreadSpectrum : row.other;
        if (code >= 0)
            return code;
    }
    return std::nullopt;
}

bool rateTooHigh(const QString &rate, const QString &modelTag)
{
    return modelTag != kSpreadSpectrumTag && (rate == u"57600" || rate == u"38400");
}

std::array<bool, 8> switchChart(const QString &settings)
{
    const std::array<bool, 3> rate = BaudToSwitches(settings);
    const std::array<bool, 4> frame = FrameToSwitches(settings);
    return {rate[0], rate[1], rate[2], !frame[0], frame[1], frame[2], frame[3], false};
}

const QString SerialRateSetup::kStep1Info = QStringLiteral(
    "Step 1: If the Varnel has two (2) RS-232 setup switches, turn Both RS-232 Setup Switches to the OFF "
    "(down) position and press Reset on the front panel.  If the Varnel has eight (8) RS-232 setup switches, "
    "turn switch #6 to the ON (up) position, all others OFF (down) and press Reset on the front panel.");

SerialRateSetup::SerialRateSetup(ModemSession &session, SerialRateView &view)
    : m_session(session), m_view(view), m_savedSettings(session.Comm1().Settings())
{
    m_view.setInfo(kStep1Info);
}

void SerialRateSetup::backToSavedSettings()
{
    attempt(m_session.prompts(), [&] { m_session.Comm1().setSettings(m_savedSettings); });
}

void SerialRateSetup::cmdDownload_Click()
{
    switch (m_step) {
    case 1:
        return resetCheck();
    case 2:
        return download();
    case 3:
        return test();
    default:
        return m_view.unload();
    }
}

void SerialRateSetup::cmdCancel_Click()
{
    backToSavedSettings();
    m_view.unload();
}

void SerialRateSetup::resetCheck()
{
    m_view.setStatus(QString(), StatusLook::Plain);
    BusyPointer busy(m_session.prompts());
    m_session.Comm1().setSettings(kStartUpSettings);
    if (!m_session.ProbeCommandPrompt()) {
        m_view.setStatus(
            QStringLiteral("Varnel Reset Not Detected.  Follow Step 1 Again and Press OK When Completed."),
            StatusLook::Failed);
        return;
    }
    QString model, version, option;
    ReadModelInfo(m_session, model, version, option);
    if (model == u"Q4Z") {
        m_modelTag = kSpreadSpectrumTag;
    } else {
        QString serial;
        ReadSerialNumber(m_session, serial);
        if (numericValue(serial) >= 12000) {
            m_modelTag = QStringLiteral("Q40Combine");
        } else {
            // An old unit has no rate command: its switches set the rate.
            backToSavedSettings();
            m_view.openBaud();
        }
    }
    m_view.setStatus(QStringLiteral("Reset Successful"), StatusLook::Passed);
    m_view.setActionCaption(QStringLiteral("Download  ") + m_savedSettings);
    m_view.setInfo(
        QStringLiteral("Step 2: The Varnel serial port will now be configured to match the computer's "
                       "serial port setting (listed on the") +
        QStringLiteral(" button below).  If you do not want to configure for the port setting listed "
                       "below, press the Cancel button") +
        QStringLiteral(" and re-configure the Terminal Port to the correct serial port settings."));
    m_step = 2;
}

void SerialRateSetup::download()
{
    Prompts &prompts = m_session.prompts();
    m_view.setStatus(QString(), StatusLook::Plain);
    BusyPointer busy(prompts);
    // The rate is what stands before a tail such as ",N,8,1".
    const QString rate = leftText(m_savedSettings, std::max<qsizetype>(m_savedSettings.size() - 6, 0));
    const int byte = rateByte(m_savedSettings);
    if (!m_session.ProbeCommandPrompt()) {
        prompts.MsgBox(
            QStringLiteral("Lost communication with Varnel during download. Check all serial connections "
                           "and start again from the begining."));
        backToSavedSettings();
        m_view.unload();
        return;
    }
    if (rateTooHigh(rate, m_modelTag)) {
        prompts.MsgBox(
            QStringLiteral("The Maximum Baud Rate of This Varnel is 19200 bps.\r\nPlease reconfigure Comm "
                           "Port and Press Again"));
        m_view.unload();
    } else if (const std::optional<int> code = rateCode(rate, m_modelTag)) {
        // The colon joins the save to the rate on one line.
        attempt(prompts,
                [&] { m_session.Comm1().Output("comrate " + QByteArray::number(byte + *code) + ":sa\r"); });
    }
    m_session.WaitForReply("CMD:", 1000);
    backToSavedSettings();
    if (rate == u"115200") {
        m_view.unload();
        return;
    }
    m_view.setStatus(QStringLiteral("Download Successful"), StatusLook::Passed);
    m_view.setInfo(
        QStringLiteral(
            "Step 3: Place RS-232 Setup Switch #1 in the ON (Up) Position and press the Reset Button.") +
        QStringLiteral(
            "  Press the Test New Baud Rate button below to confirm operation at the new baud rate."));
    m_view.setActionCaption(QStringLiteral("Test New Baud Rate"));
    m_step = 3;
}

void SerialRateSetup::test()
{
    m_view.setStatus(QString(), StatusLook::Plain);
    BusyPointer busy(m_session.prompts());
    if (!m_session.ProbeCommandPrompt()) {
        m_view.setInfo(
            QStringLiteral("Unable to communicate with Varnel at new baud rate.  Verify Switch #1 in ON "
                           "(Up) position and press the reset button.  Press the Test New Baud Rate "
                           "again when ready."));
        m_view.setStatus(QStringLiteral("Varnel Not Found"), StatusLook::Failed);
        return;
    }
    m_view.setInfo(QStringLiteral("Varnel configured and operating at new baud rate"));
    m_view.setStatus(QStringLiteral("Press OK to Continue"), StatusLook::Passed);
    m_view.setActionCaption(QStringLiteral("OK"));
    m_view.disableCancel();
    m_step = 4;
}
