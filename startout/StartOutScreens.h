#pragma once

#include "FreqSetting.h"
#include "PortClaim.h"
#include "StartOut.h"

#include <QDialog>
#include <QPlainTextEdit>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>

class ModemSession;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class StartingOutMenu;

// A window of Starting Out, owned by the menu. Its window button, like its own way back, leaves the user on
// the Starting Out menu when no other of its windows is on screen.
class GuideForm : public QWidget
{
    Q_OBJECT
public:
    GuideForm(StartingOutMenu &menu, const char *name, const QString &title);

signals:
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;
    // Shows the other window and hides this one.
    void goTo(QWidget *next);

    StartingOutMenu &m_menu;
};

// Step 1: the model, its power needs and the day's consumption for a solar supply.
class Power : public GuideForm
{
    Q_OBJECT
public:
    explicit Power(StartingOutMenu &menu);

    QComboBox *cmboModel;
    QPushButton *cmdFind;
    std::array<QRadioButton *, 3> options{}; // optdefault, optoption, optThree
    QLabel *lblTXA;
    QLabel *lblRXA;
    QLabel *lblmodel2;
    QLabel *lblreqs;
    QLineEdit *txtsolar;
    QPushButton *cmdSolar;
    QPushButton *cmdStep2;
    QPushButton *cmdQuit;

    // Selects the entry and runs the list's handler, as the search for the connected modem does.
    void selectModel(const QString &entry);
    void cmboModel_Click();

private:
    void showLabels(const PowerLabels &labels);
    int choice() const;
};

// Step 2: the panels and the test set-up.
class Familiarization : public GuideForm
{
    Q_OBJECT
public:
    explicit Familiarization(StartingOutMenu &menu);
    QPushButton *cmdBack;
    QPushButton *cmdStep3;
    QPushButton *cmdFront;
    QPushButton *cmdBackPanel;
    QPushButton *cmdTesting;
};

// Step 3: cable, computer port, modem switches and a first word with the modem.
class Serial : public GuideForm
{
    Q_OBJECT
public:
    explicit Serial(StartingOutMenu &menu);
    QPushButton *cmdCable;
    QPushButton *cmdPort;
    QPushButton *cmdSwitches;
    QPushButton *cmdTest;
    QPushButton *cmdBack;
    QPushButton *cmdStep4;
};

// Step 4, and the express setup when retitled: frequency, squelch and address.
class Step4 : public GuideForm
{
    Q_OBJECT
public:
    explicit Step4(StartingOutMenu &menu);
    void setExpress(bool express);

    QPushButton *cmdFreq;
    QPushButton *cmdSquelch;
    QPushButton *cmdAddress;
    QPushButton *cmdBack;
    QPushButton *cmdComplete;

    void cmdFreq_Click();

private:
    ModemRecord m_record;
};

// "Starting Out": the guide, the express setup and the communication test. The port is the
// program's from the moment the menu loads until it unloads.
class StartingOutMenu : public QWidget
{
    Q_OBJECT
public:
    explicit StartingOutMenu(ModemSession &session, QWidget *parent = nullptr);
    ~StartingOutMenu() override;

    ModemSession &session() const { return m_session; }
    QString ModelTag;

    // The screens of other sections, opened by the shell for the guide.
    std::function<void(ModemRecord &record, QWidget *parent)> openFrequency;
    std::function<void(ModemRecord &record, QWidget *parent)> openSquelch;
    std::function<void(QWidget *parent)> configurePort;
    std::function<void(QWidget *parent)> openSerialRate;

    QPushButton *cmdGuide;
    QPushButton *cmdExpress;
    QPushButton *cmdTestComm;
    QPushButton *cmdExit;

    // The forms of the chain, loaded when first needed.
    Power *power();
    Familiarization *familiarization();
    Serial *serial();
    Step4 *step4();
    QWidget *frontPanel(); // by ModelTag: the new case's or the old one's
    QWidget *backPicture();
    QWidget *testingDiag();

    // Unloads the four steps and shows the menu again.
    void completeSetup();
    // Shows the menu when none of its other windows is on screen.
    void showIfAlone();
    // A screen of another section handed the port back to the terminal; Starting Out takes it again.
    void retakePort();

signals:
    void unloaded();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    template <typename Form> Form *load(QPointer<Form> &form);
    // "Exit to Main Menu" and the unload: every window of the guide goes.
    void unloadForms();
    QWidget *panel(QPointer<QWidget> &form, int kind);

    ModemSession &m_session;
    PortClaim m_port;
    QPointer<Power> m_power;
    QPointer<Familiarization> m_familiarization;
    QPointer<Serial> m_serial;
    QPointer<Step4> m_step4;
    QPointer<QWidget> m_front;
    QPointer<QWidget> m_frontPanelS;
    QPointer<QWidget> m_backPicture;
    QPointer<QWidget> m_testingDiag;
};

// The modem's side of a test: what comes in is shown, what is typed goes out.
class Comm2View : public QPlainTextEdit
{
    Q_OBJECT
public:
    Comm2View(ModemSession &session, QWidget *parent);
    PortShare &share() { return m_share; }

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    PortShare m_share;
};

// A test on the shared port: the serial line (SmallDemo) or a radio link (PCVNLtest).
class PortTest : public QDialog
{
    Q_OBJECT
public:
    QLabel *lblInstructions;
    Comm2View *Comm2;
    QPushButton *cmdDone;

protected:
    PortTest(ModemSession &session, const char *name, const QString &title, const QString &text,
             QWidget *parent);
    void closeEvent(QCloseEvent *event) override;

    ModemSession &m_session;
};

class SmallDemo : public PortTest
{
    Q_OBJECT
public:
    SmallDemo(ModemSession &session, QWidget *parent);
    QPushButton *cmdTest;
};

class PCVNLtest : public PortTest
{
    Q_OBJECT
public:
    PCVNLtest(ModemSession &session, bool loopTest, QWidget *parent);
};

// "Test Radio Communications": which test, then the test itself.
class Communications : public QDialog
{
    Q_OBJECT
public:
    Communications(ModemSession &session, QWidget *parent);
    QRadioButton *optlooptest;
    QRadioButton *optcommlink;
    QPushButton *cmdBegin;
    QPushButton *cmdCancel;
    QPointer<PCVNLtest> test;

private:
    ModemSession &m_session;
};

// "Find Connected Varnel Model": the switches to set, then the search.
class FindVarnel : public QDialog
{
    Q_OBJECT
public:
    FindVarnel(ModemSession &session, Power &power);
    QCheckBox *chkDongle;
    QPushButton *cmdOK;
};
