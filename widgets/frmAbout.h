#pragma once

#include <QDialog>

class Prompts;
class QLabel;
class QPushButton;

// The About box, reached from the Help menus of the main menu, the terminal and the programming screen.
class frmAbout : public QDialog
{
    Q_OBJECT
public:
    explicit frmAbout(Prompts &prompts, QWidget *parent = nullptr);

    QLabel *lblTitle;
    QLabel *lblVersion;
    QLabel *lblDescription;
    QLabel *lblDisclaimer;
    QPushButton *cmdOK;
    QPushButton *cmdSysInfo;

private:
    void cmdSysInfo_Click();

    Prompts &m_prompts;
};

// The program's title and its version text "3.0.0".
QString appTitle();
QString appVersionText();

// Starts the desktop's system information tool; false when there is none.
bool startSystemInformation();
