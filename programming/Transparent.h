#pragma once

#include "SetupForms.h"

#include <QWidget>
#include <array>

class ModemSession;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

// "Transparent Mode": the chooser between the two auto-connect programs and a custom one. It opens
// the form of the choice beside its own opener and closes itself.
class Transparent : public QWidget
{
    Q_OBJECT
public:
    Transparent(ModemSession &session, AddCommandHook addCommand, QWidget *parent);

    std::array<QRadioButton *, 3> opttrans{};
    QLabel *lblDescription;
    QPushButton *cmdOKtrans;
    QPushButton *cmdtranscancel;

private:
    void cmdOKtrans_Click();

    ModemSession &m_session;
    AddCommandHook m_addCommand;
};

// "Custom Transparent Configuration": a transparent program made of the commands the user picks.
class Custom : public QWidget
{
    Q_OBJECT
public:
    Custom(ModemSession &session, AddCommandHook addCommand, QWidget *parent);

    QLineEdit *txtadd5;
    QLineEdit *txtsetc;
    QComboBox *cboTermc;
    QLineEdit *txttermt;
    QLineEdit *txtchrs;
    QLineEdit *txtpacket;
    std::array<QRadioButton *, 3> optFlow{};
    std::array<QCheckBox *, 7> Check1{};
    QLabel *lblDes;
    QPushButton *cmdadding;
    QPushButton *cmdcustomcanc;

protected:
    // A control that takes the focus shows its help under "Description:".
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void cmdadding_Click();

    ModemSession &m_session;
    AddCommandHook m_addCommand;
};
