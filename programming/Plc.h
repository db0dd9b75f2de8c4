#pragma once

#include "SetupForms.h"

#include <QWidget>
#include <array>

class ModemSession;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

// "PLC Configuration": the manufacturer list of the controller wizard. Continue keeps the
// manufacturer's key in ProgMode and opens the form that asks the rest, beside its own opener.
class PLC : public QWidget
{
    Q_OBJECT
public:
    PLC(ModemSession &session, AddCommandHook addCommand, QWidget *parent);

    QLabel *lblPLCframe;
    QComboBox *cmbPLC;
    QPushButton *cmdContinue;
    QPushButton *cmdexitplc;

private:
    void cmdContinue_Click();

    ModemSession &m_session;
    AddCommandHook m_addCommand;
};

// The four steps of a controller's program: master or remote, addresses, repeaters, protocol.
class PLCDescript : public QWidget
{
    Q_OBJECT
public:
    PLCDescript(ModemSession &session, AddCommandHook addCommand, QWidget *parent);

    QLabel *lblproduct;
    std::array<QRadioButton *, 2> optPLCMast{};
    QGroupBox *frmAdd;
    QLineEdit *txtAdd;
    QLabel *lblDes;
    QLineEdit *txtDes;
    QGroupBox *frmRepeater;
    std::array<QRadioButton *, 2> optRep{};
    QLabel *lblRoute;
    std::array<QLabel *, 3> lblRep{};
    std::array<QLineEdit *, 3> txtRep{};
    QPushButton *cmdExample;
    QGroupBox *frmPLC;
    QComboBox *cboProtocol;
    QLabel *lblError;
    QComboBox *cboError;
    QPushButton *cmdCL;
    QPushButton *cmdcancel8;

private:
    void optPLCMast_Click(bool master);
    void optRep_Click(bool needed);
    void showRepeaters(bool shown);
    void cmdCL_Click();

    ModemSession &m_session;
    AddCommandHook m_addCommand;
    QString m_key;
    bool m_master = false;
};

// "Square-D Addressing": the address fence that splits the Square D port addresses between the
// network interfaces and the modems.
class SquareD : public QWidget
{
    Q_OBJECT
public:
    SquareD(AddCommandHook addCommand, QWidget *parent);

    QLineEdit *txtFence;
    QPushButton *Command1;

private:
    AddCommandHook m_addCommand;
};
