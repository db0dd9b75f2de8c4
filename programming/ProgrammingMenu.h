#pragma once

#include "PortClaim.h"

#include <QMainWindow>
#include <functional>

class CommandListBox;
class ModemSession;
class QAction;
class QGroupBox;
class QLabel;
class QMenu;
class QPushButton;

// The command editor: the one command list of the program, filled by hand, by the command dialogs
// and set-up forms (through AddCommand), by reading a modem or by opening a program file, and
// downloaded to a modem or saved as a file. The list lives as long as the screen.
class ProgrammingMenu : public QMainWindow
{
    Q_OBJECT
public:
    explicit ProgrammingMenu(ModemSession &session, QWidget *parent = nullptr);
    ~ProgrammingMenu() override;

    // Appends a line to the command list, unchanged, whether the screen is visible or not.
    void AddCommand(const QString &text);
    CommandListBox &cmboedit() const { return *m_cmboedit; }

    // If the list holds lines, offers to save them; then empties the list in any case.
    void savePrompt();
    // Saves the list as a program file, the user choosing the name.
    void saveProgramFile();
    // Replaces the list by the lines of a program file, after the save prompt.
    void openProgramFile();

    // Forms of the modem's own section that entries of this screen open. An entry whose form is not
    // there stays disabled; hooksChanged() re-reads them.
    std::function<void()> showModelOptions;
    std::function<void()> openHours;
    void hooksChanged();

signals:
    // The screen has closed: the main menu shows itself again.
    void returnedToMainMenu();
    // Help, About: the shell shows its About box.
    void aboutRequested();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildMenus();

    void addTypedCommand();
    void deleteSelectedCommand();
    void showCustomListing();
    void readFromConnected();
    void downloadToConnected();
    void readFromRemote();
    void downloadToRemote();
    // Prepares the connected modem and opens the remote address form with the mode word.
    void openRemoteAddress(const QString &mode);
    void showLines(const QStringList &lines);

    ModemSession &m_session;
    QLabel *m_lblIntro;
    QLabel *m_Label1;
    QGroupBox *m_Frame1;
    CommandListBox *m_cmboedit;
    QPushButton *m_cmdokVNL;
    QPushButton *m_cmddelete;
    QPushButton *m_cmdClear;
    QPushButton *m_cmdreturn;
    QAction *m_mnuModemopt;
    QAction *m_mnuHours;
    PortClaim m_port;
};
