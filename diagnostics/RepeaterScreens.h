#pragma once

#include "RepeaterSites.h"

#include <QDialog>
#include <QMainWindow>
#include <array>

class Diagnostic;
class QAction;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

// "RTN Repeater Test Setup": the six repeater sites of the network, kept in a configuration file.
class RepTestConfig : public QMainWindow
{
    Q_OBJECT
public:
    explicit RepTestConfig(Diagnostic &diagnostic);

    // A configuration saved before is offered to load; otherwise the rows start empty.
    void Load();
    void mnuOpen_Click();
    void mnuSave_Click();
    void cmdContinue_Click();

    std::array<QLineEdit *, kRepeaterRows> txtRepName, txtRepAdd;
    QCheckBox *chkMaintenceKit;
    QLabel *lblBase;
    QLineEdit *txtBase;
    QPushButton *cmdContinue, *cmdCancel;
    QAction *mnuOpen, *mnuSave, *mnuExit;

private:
    RepeaterRows rows() const;
    void setRows(const RepeaterRows &rows);

    Diagnostic &m_diagnostic;
};

// "RTN Repeater Testing": whether each repeater site can be linked to. The labels are the test's data.
class RepeaterTest : public QDialog
{
    Q_OBJECT
public:
    explicit RepeaterTest(Diagnostic &diagnostic);

    void Load(const std::array<RepeaterSite, kRepeaterRows> &sites);
    void cmdRun_Click();

    QLabel *lblSerial, *lblFreq;
    std::array<QLabel *, kRepeaterRows> lblRepName, lblAddTotal, lblLinkTotal;
    QPushButton *cmdRun, *cmdQuit;

private:
    void showLink(int row, bool up);

    Diagnostic &m_diagnostic;
};
