#pragma once

#include "ModelOptions.h"
#include "PortClaim.h"

#include <QDialog>
#include <array>

class ModemSession;
class QCheckBox;
class QLabel;
class QPushButton;
class QRadioButton;

// "Varnel Options": the eight bits of the option word as boxes. Clearing "Narrow Band Operation"
// offers the wide band timing at once; "Set Option" writes the word.
class Options : public QDialog
{
    Q_OBJECT
public:
    Options(ModemSession &session, QWidget *parent = nullptr);

    std::array<QCheckBox *, 8> chkoptions{};
    QPushButton *cmdSet;
    QPushButton *cmdCancel;
    OptionBits bits() const;
    void setBits(const OptionBits &bits);

protected:
    // The spread-spectrum model's form: its own captions, the same word.
    Options(ModemSession &session, bool spreadSpectrum, QWidget *parent);

private:
    void chkoptions_Click(int index);

    ModemSession &m_session;
    bool m_spreadSpectrum;
};

// "Varnel Q40Z Options".
class OptQ40Z : public Options
{
    Q_OBJECT
public:
    OptQ40Z(ModemSession &session, QWidget *parent = nullptr);
};

// "Output Power Model Q40Z": half a watt or one, with the warning for one.
class SetPowerS : public QDialog
{
    Q_OBJECT
public:
    SetPowerS(ModemSession &session, QWidget *parent = nullptr);

    std::array<QRadioButton *, 2> optPower{};
    QLabel *lblWarn;
    QPushButton *cmdSet;
    QPushButton *cmdCancel;

protected:
    void done(int result) override;

private:
    ModemSession &m_session;
    PortClaim m_port;
};

// "Varnel Hour Meter": the modem's running hours, and the same as years, days and hours.
class Hours : public QDialog
{
    Q_OBJECT
public:
    Hours(ModemSession &session, QWidget *parent = nullptr);

    QLabel *lblTotal;
    QLabel *lblYears;
    QLabel *lblDays;
    QLabel *lblHours;
    QPushButton *cmdOK;
};

// The option word of the connected modem in its form, as a modal dialog; a double click on the
// terminal screen may set it.
void ShowModelOptions(ModemSession &session, QWidget *parent, bool settable = true);
// "Modem Options" of the programming menu: the options shown under the hourglass, not to be set.
void mnuModemopt(ModemSession &session, QWidget *parent);
// "Set Output Power Level" of the terminal's menu.
void mnuPowerS(ModemSession &session, QWidget *parent);
// "Hour Meter" of the programming menu: the hour meter of a modem at its prompt.
void mnuHours(ModemSession &session, QWidget *parent);
