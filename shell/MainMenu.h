#pragma once

#include <QMainWindow>
#include <QPointer>
#include <functional>

class IniFile;
class ModemSession;
class QAction;
class QLabel;
class QPushButton;
class Terminal;
class ProgrammingMenu;
class Diagnostic;
class StartingOutMenu;

// "Varnel Utility - Main Menu": six commands; one visible section at a time. The main menu loads the
// hidden Terminal form, the carrier of the port, before anything else can run.
class MainMenu : public QMainWindow
{
    Q_OBJECT
public:
    MainMenu(ModemSession &session, IniFile &ini, QWidget *parent = nullptr);
    ~MainMenu() override;

    // Builds the hidden Terminal window ahead of the load event, while the splash shows.
    void prepareTerminal();
    // The load event: clears the adaptor flag and loads Terminal, hidden.
    void Load();

    Terminal *terminal() const;
    ProgrammingMenu *programmingMenu() const;
    Diagnostic *diagnostic() const;

    // Sections built later hook in here; a button whose section is missing stays disabled.
    std::function<void()> openStartingOut;
    std::function<void()> openDiagnostics;

    QLabel *Image1;
    QPushButton *cmdStartOut;
    QPushButton *cmdDiags;
    QPushButton *cmdVnlPrg;
    QPushButton *cmdTermEm;
    QPushButton *cmdProductInfo;
    QPushButton *cmdExit;
    QAction *mnuStart;
    QAction *mnuSurvey;
    QAction *mnuProgram;
    QAction *mnuTermEm;
    QAction *mnuPI;
    QAction *mnuLine;
    QAction *mnuExit;
    QAction *mnuAbout;

    void cmdStartOut_Click();
    void cmdDiags_Click();
    void cmdVnlPrg_Click();
    void cmdTermEm_Click();
    void cmdProductInfo_Click();
    void cmdExit_Click();

    // "Set Frequency/Squelch" on the terminal, the modem at its prompt: the frequency hub.
    void openChooseFreqType();

    // A section hands back: the port goes back to the terminal and the main menu shows itself.
    void sectionEnded();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    QPushButton *addCommand(const char *name, const QString &caption, const QString &toolTip);
    void updateSections();
    // The terminal's entries that lead to the modem's own procedures.
    void wireModemScreens();
    void showDiagnostics();
    void reloadTerminal();
    void showStartingOut();

    ModemSession &m_session;
    IniFile &m_ini;
    QPointer<Terminal> m_terminal;
    QPointer<ProgrammingMenu> m_programming;
    QPointer<Diagnostic> m_diagnostic;
    QPointer<StartingOutMenu> m_startingOut;
};
