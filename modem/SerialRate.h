#pragma once

#include <QString>
#include <array>
#include <optional>

class ModemSession;

// The modem's comrate byte for a settings text ("9600,E,7,1"), with the rate code still 0: one stop
// bit sets bit 3, parity bit 4, eight data bits bit 5, odd parity bit 6. The same layout fixes the
// setup switches of old units.
int rateByte(const QString &settings);

// The rate code for a rate text: the spread-spectrum model ("Q40Z") has codes 1 to 7 from 57600 down
// to 1200, every other model 0 to 4 from 19200 down. Nothing for 115200 or a rate outside the table.
std::optional<int> rateCode(const QString &rate, const QString &modelTag);

// A rate the model cannot take at all: 57600 or 38400 on any model but the spread-spectrum one.
bool rateTooHigh(const QString &rate, const QString &modelTag);

// The eight setup switches for a settings text, switch 1 first, on as true: the rate switches, then
// the frame as in the comrate byte; switch 8 is always off.
std::array<bool, 8> switchChart(const QString &settings);

// How the result line of the wizard looks.
enum class StatusLook {
    Plain,  // white, nothing said yet
    Failed, // yellow on red
    Passed, // black on green
};

// What the wizard shows.
class SerialRateView
{
public:
    virtual ~SerialRateView() = default;
    virtual void setStatus(const QString &text, StatusLook look) = 0; // txtStatus
    virtual void setInfo(const QString &text) = 0;                    // lblInfo
    virtual void setActionCaption(const QString &text) = 0;           // cmdDownload
    virtual void disableCancel() = 0;
    // The switch chart of an old unit, beside the wizard.
    virtual void openBaud() = 0;
    virtual void unload() = 0;
};

// "Set Serial Baud Rate": makes the serial port of the connected modem match the computer's port
// settings, in steps around one button. The modem is first forced by its switches to its fixed
// start-up rate, the program talks to it at 19200, downloads the new rate, and the user moves a
// switch back and tests the result. Old units have no rate command: they get the switch chart.
class SerialRateSetup
{
public:
    static const QString kStep1Info;

    // The form loads: the port is the program's, the computer's settings are kept.
    SerialRateSetup(ModemSession &session, SerialRateView &view);

    void cmdDownload_Click();
    void cmdCancel_Click();

    int Step() const { return m_step; }
    QString SavedSettings() const { return m_savedSettings; }
    QString ModelTag() const { return m_modelTag; }

private:
    void resetCheck();
    void download();
    void test();
    void backToSavedSettings();

    ModemSession &m_session;
    SerialRateView &m_view;
    int m_step = 1;
    QString m_savedSettings;
    QString m_modelTag;
};
