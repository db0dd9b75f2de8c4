#pragma once

#include "AppSettings.h"
#include "TagButton.h"

#include <QMainWindow>
#include <array>
#include <functional>
#include <map>

class CommControl;
class IniFile;
class ModemSession;
class QAction;
class QLabel;
class QMenu;
class TerminalScreen;
struct KeyRoute;

// The terminal form: the carrier of the serial control Comm1 and of the one millisecond timer
// through which every screen talks to the modem, whether or not the window is visible, and the
// window in which the user types to the modem's interpreter. It is loaded hidden at start and lives
// until the program ends; hiding it never closes the port.
class Terminal : public QMainWindow
{
    Q_OBJECT
public:
    static constexpr int kButtons = 10;
    static constexpr const char *kTestString =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

    Terminal(ModemSession &session, IniFile &ini, QWidget *parent = nullptr);
    ~Terminal() override;

    CommControl &Comm1() const;
    ModemSession &session() const { return m_session; }
    IniFile &ini() const { return m_ini; }

    // The application settings, kept here where the other screens read and set them.
    AppSettings Settings;

    // Reads the settings, applies the port section (asking on a first run), sets the title, opens the port.
    void Load();
    // Closes an open capture, closes the port and saves the application settings; the program ends after it.
    void Unload();
    bool isLoaded() const { return m_loaded; }
    // Re-entering the window after the line was lost opens the port again.
    void reconnect();

    // The title doubles as the port read-out: "COM1:9600,N,8,1".
    void setPortTitle();

    // Clears the status line and prints text and one blank; an empty text prints the last one again.
    void SetStatus(const QString &text);

    // The terminal's part in showing the window from the main menu: the focus goes to the screen,
    // and the introduction appears unless the user asked not to see it again.
    void focusComm1();
    void showTermIntro();

    // Opens a capture in the given mode after asking for the file; closes the open one.
    void OpenCapture(TerminalScreen &control, int mode);
    void CloseCapture(TerminalScreen &control);

    // The screen half of Comm1 (object name "Comm1"), the status line and the ten buttons.
    TerminalScreen *Comm1Screen;
    QLabel *Status;
    std::array<TagButton *, kButtons> Btn{};

    QMenu *MenuFile;
    QMenu *MenuEdit;
    QMenu *mnuvnlsetup;
    QMenu *Menutermset;
    QMenu *MenuHelp;
    QMenu *setQ40z;
    QMenu *MSetup4;
    // Entries of menu arrays by index, as the program numbers them (no MSetup(3), no MComm(1) to (3)).
    QAction *MFile(int index) const { return m_mFile.at(index); }
    QAction *MEdit(int index) const { return m_mEdit.at(index); }
    QAction *MSetup(int index) const { return m_mSetup.at(index); }
    QAction *MComm(int index) const { return m_mComm.at(index); }
    QAction *mnuButton(int index) const { return m_mnuButton.at(size_t(index)); }
    QAction *mnusetfreq;
    QAction *mnuDiag;
    QAction *mnudongle;
    QAction *mnutest;
    QAction *mnuCtrlC;
    QAction *mnuFlash;
    QAction *mnuSerialS;
    QAction *mnuPowerS;
    QAction *mnuButtonDef;
    QAction *mnuhp;

    // Screens of other sections that entries of this window lead to. An entry whose screen is not
    // there stays disabled; setHooksChanged() re-reads them.
    std::function<void()> openChooseFreqType; // after EnterCommandMode succeeded, port at AutoProcess 0
    std::function<void()> openDiagnostics;    // the main menu's diagnostics entry
    std::function<void()> openFlashUpdate;
    std::function<void()> openSerialRate;
    std::function<void()> openPowerLevel;
    std::function<void()> showModelOptions;
    void hooksChanged();

    void Btn_Click(int index);
    void MFile_Click(int index);
    void MEdit_Click(int index);
    void MenuEdit_Refresh();
    void mnusetfreq_Click();
    void mnuDiag_Click();
    void mnudongle_Click();
    void mnutest_Click();
    void mnuCtrlC_Click();
    void MSetup_Click(int index);
    void mnuButtonDef_Click();
    void MComm_Click(int index);
    void mnuhp_Click();

signals:
    // The unload has begun: screens that belong to this form go first.
    void aboutToUnload();
    // The unload is over; the main menu comes back.
    void unloaded();
    // "Exit to Main Menu": the window is hidden and the main menu takes over; the port stays open.
    void returnedToMainMenu();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildScreen();
    void buildMenus();
    void applyButtons();
    void collectButtons();
    void applyKeyRoute(const KeyRoute &route);
    void Comm1_DblClick();
    void Comm1_Receive();
    void Comm1_LineLost(const QString &device);
    void openPort();
    void openButtonDef(int index);

    ModemSession &m_session;
    IniFile &m_ini;
    bool m_loaded = false;
    bool m_lineLost = false;
    QString m_lastStatus;
    std::map<int, QAction *> m_mFile;
    std::map<int, QAction *> m_mEdit;
    std::map<int, QAction *> m_mSetup;
    std::map<int, QAction *> m_mComm;
    std::array<QAction *, kButtons> m_mnuButton{};
};
