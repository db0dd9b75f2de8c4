#pragma once

#include "SetupForms.h"

#include <QWidget>
#include <array>

class ModemSession;
class QLabel;
class QLineEdit;
class QPushButton;

// "SetAddress": the connected modem's address, the destination and the repeaters in front of it,
// turned into the auto-connect program. The transparent chooser and the controller wizard both open
// it; ProgMode, read when it opens, says which program and which words it shows.
class SetAddress : public QWidget
{
    Q_OBJECT
public:
    SetAddress(ModemSession &session, AddCommandHook addCommand, QWidget *parent);

    QLabel *lblDescription;
    QLineEdit *txtConnectedAdd;
    QLineEdit *txtDestinationAdd;
    std::array<QLineEdit *, 3> txtRep{};
    QPushButton *cmdoksetadd;
    QPushButton *cmdcancel2;

private:
    void cmdoksetadd_Click();

    ModemSession &m_session;
    AddCommandHook m_addCommand;
};
