#pragma once

#include "PortSection.h"

#include <QDialog>
#include <functional>

class CommControl;
class IniFile;
class ModemSession;
class QCheckBox;
class QComboBox;
class QPushButton;

// "Port Configuration": the serial line of a control, kept in the section Port_ and the control's tag.
class MWPort : public QDialog
{
    Q_OBJECT
public:
    MWPort(ModemSession &session, IniFile &ini, QWidget *parent = nullptr);

    // Runs the dialog on the control until the user cancels or the port opens with the new settings.
    // Returns whether the settings were accepted.
    bool SetPortSettings(CommControl &control);

    // What ends the program when the user gives up the first-run setup. Tests replace it.
    static std::function<void()> &endProgram();

    bool PortSetupRequired = false;

    QComboBox *CmbComPort;
    QComboBox *CmbBaudRate;
    QComboBox *CmbDataBits;
    QComboBox *CmbStopBits;
    QComboBox *CmbParity;
    QCheckBox *ChkDTREnable;
    QCheckBox *ChkRTSEnable;
    QCheckBox *ChkHandshakingSoftware;
    QCheckBox *ChkHandshakingHardware;
    QPushButton *cmdOK;
    QPushButton *cmdCancel;

    // Cancel, Esc and the window's close: with the first-run setup pending, the user is asked first.
    void reject() override;

private:
    void fillFrom(CommControl &control);
    PortChoice choice() const;

    ModemSession &m_session;
    IniFile &m_ini;
};
