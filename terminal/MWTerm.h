#pragma once

#include "TerminalSettings.h"

#include <QDialog>

class IniFile;
class ModemSession;
class QCheckBox;
class QComboBox;
class QPushButton;
class QSpinBox;
class TerminalScreen;

// "Terminal Emulation Settings": the terminal members of a control, tried on a sample screen first
// and kept in the section Terminal_ and the control's tag when the user leaves with OK.
class MWTerm : public QDialog
{
    Q_OBJECT
public:
    MWTerm(ModemSession &session, IniFile &ini, QWidget *parent = nullptr);

    // Reads the terminal section onto the control; nothing in the program calls it at start, so that
    // saved terminal settings hold for the run in which they were made.
    void LoadTerminalSettings(TerminalScreen &control);
    // Runs the dialog on the control; returns whether the user accepted.
    bool SetTerminalSettings(TerminalScreen &control);

    QComboBox *cbEmulation;
    QComboBox *cbScreenFilter;
    QComboBox *cboForeColor;
    QComboBox *cboBackColor;
    QComboBox *cboCursorType;
    QComboBox *cboBackspace;
    QSpinBox *txtRows;
    QSpinBox *txtColumns;
    QSpinBox *txtScrollRows;
    QCheckBox *chkEcho;
    QPushButton *cmdFont;
    QPushButton *cmdOK;
    QPushButton *cmdCancel;
    TerminalScreen *CommSample;

    // What the dialog holds now.
    TermSettings settings() const;

private:
    void fillFrom(const TermSettings &settings);
    void trySample();
    void cmdFont_Click();
    // The control must carry a port; a screen without one is reported and left alone.
    bool proveControl(const TerminalScreen &control);

    ModemSession &m_session;
    IniFile &m_ini;
    QFont m_font;
};

// The sample text of the settings dialog.
QByteArray sampleTerminalText();
