#pragma once

#include "PortClaim.h"

#include <QDialog>
#include <QPlainTextEdit>
#include <functional>

struct CommandEntry;
class ModemSession;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

// Appends one line to the command list.
using AddCommandHook = std::function<void(const QString &)>;

// The ON/OFF dialog of a setting: adds the setting's line with the chosen option.
class TF : public QDialog
{
    Q_OBJECT
public:
    TF(const CommandEntry &entry, AddCommandHook addCommand, QWidget *parent = nullptr);

    QGroupBox *fraTitle;
    QRadioButton *optON;
    QRadioButton *optOFF;
    QLabel *lbldezzy;
    QPushButton *cmdoklf;
    QPushButton *cmdcanclf;
};

// "Termination Timer": the timer's switch and time, added as two lines.
class TermTime : public QDialog
{
    Q_OBJECT
public:
    TermTime(ModemSession &session, AddCommandHook addCommand, QWidget *parent = nullptr);

    QComboBox *cmboTermt;
    QLineEdit *txtTermTime;
    QPushButton *cmdoklf;
    QPushButton *Command2;
};

// The show-and-try dialog of a command: its help, and Demo, which runs it on the connected modem.
class Demoform : public QDialog
{
    Q_OBJECT
public:
    Demoform(ModemSession &session, const CommandEntry &entry, QWidget *parent = nullptr);

    QLabel *lbldemo;
    QPushButton *cmdDemo;
    QPushButton *cmdCancel;

private:
    void cmdDemo_Click();

    ModemSession &m_session;
    const CommandEntry &m_entry;
};

// A small terminal on the shared port: shows what arrives and sends what is typed.
class DemoTerminal : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit DemoTerminal(ModemSession &session, QWidget *parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    ModemSession &m_session;
};

// The demonstration window: sends the command on a terminal of its own and shows the answer.
// While it is open the port runs as a terminal; Done gives it back as it was found.
class CommandDemo : public QDialog
{
    Q_OBJECT
public:
    CommandDemo(ModemSession &session, const QString &title, const QString &command,
                QWidget *parent = nullptr);

    DemoTerminal *DemoComm;
    QPushButton *Command1;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    ModemSession &m_session;
    PortClaim m_port;
};

// "Varnel Copyright Information": the modem's own copyright text.
class copyright : public QDialog
{
    Q_OBJECT
public:
    explicit copyright(ModemSession &session, QWidget *parent = nullptr);

    QLabel *lblcopyr2;
    QPushButton *cmdokcopy;
};

// Connects the command entries of the programming menu (found by name under menuOwner) to their
// dialogs, each adding its lines through addCommand.
void wireCommandDialogs(QWidget &menuOwner, ModemSession &session, AddCommandHook addCommand);
