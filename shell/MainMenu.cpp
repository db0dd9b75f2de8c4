#include "MainMenu.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "ChooseFreqType.h"
#include "CommControl.h"
#include "Diagnostic.h"
#include "FlashProgress.h"
#include "FreqScreens.h"
#include "IniFile.h"
#include "MWPort.h"
#include "ModemSession.h"
#include "Named.h"
#include "OptionsForms.h"
#include "PortClaim.h"
#include "ProgrammingMenu.h"
#include "Prompts.h"
#include "RemoteAddress.h"
#include "SetBaudS.h"
#include "StartOutScreens.h"
#include "Terminal.h"
#include "WorkingFileOpen.h"
#include "frmAbout.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>

namespace {
// The main menu's picture: the modem's name on a band of the product's colours.
QPixmap menuPicture()
{
    QPixmap picture(360, 80);
    picture.fill(QColor(0, 51, 102));
    QPainter painter(&picture);
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setPointSize(20);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(picture.rect(), Qt::AlignCenter, QStringLiteral("Varnel Model Q40"));
    return picture;
}
} // namespace

MainMenu::MainMenu(ModemSession &session, IniFile &ini, QWidget *parent)
    : QMainWindow(parent), m_session(session), m_ini(ini)
{
    setObjectName(QStringLiteral("MainMenu"));
    // A settings file that cannot be read or saved is said once in a box; the program carries on.
    m_ini.onTrouble = [this](const QString &message) {
        m_session.prompts().MsgBox(message, MsgButtons::OkOnly, MsgIcon::Exclamation);
    };
    setWindowTitle(appTitle() + QStringLiteral(" - Main Menu"));

    auto *central = new QWidget(this);
    auto *grid = new QGridLayout(central);
    Image1 = named<QLabel>("Image1", central);
    Image1->setPixmap(menuPicture());
    Image1->setAlignment(Qt::AlignCenter);
    grid->addWidget(Image1, 0, 0, 1, 2);
    setCentralWidget(central);

    cmdStartOut = addCommand("cmdStartOut", QStringLiteral("Starting Out"),
                             QStringLiteral("Basic Configuration of The Varnel"));
    cmdDiags =
        addCommand("cmdDiags", QStringLiteral("Diagnostics"), QStringLiteral("Verify Operation of Varnel"));
    cmdVnlPrg = addCommand("cmdVnlPrg", QStringLiteral("Varnel Programming"),
                           QStringLiteral("Programming the Varnel for Operation"));
    cmdTermEm = addCommand("cmdTermEm", QStringLiteral("Terminal Emulation"),
                           QStringLiteral("Direct Terminal to The Varnel"));
    cmdProductInfo = addCommand("cmdProductInfo", QStringLiteral("Product Information"),
                                QStringLiteral("Product Information"));
    cmdExit = addCommand("cmdExit", QStringLiteral("Exit"), QStringLiteral("Exit the Utility"));
    const QList<QPushButton *> buttons{cmdStartOut, cmdDiags, cmdVnlPrg, cmdTermEm, cmdProductInfo, cmdExit};
    for (int i = 0; i < buttons.size(); ++i)
        grid->addWidget(buttons[i], 1 + i / 2, i % 2);

    QMenu *mnuFile = namedMenu(menuBar(), "mnuFile", QStringLiteral("&File"));
    auto entry = [&](QMenu *menu, const char *name, const QString &caption, QPushButton *button) {
        QAction *action = namedEntry(menu, name, caption);
        // A menu entry simply runs the handler of its button.
        connect(action, &QAction::triggered, button, &QPushButton::click);
        return action;
    };
    mnuStart = entry(mnuFile, "mnuStart", QStringLiteral("&Starting Out"), cmdStartOut);
    mnuSurvey = entry(mnuFile, "mnuSurvey", QStringLiteral("&Diagnostics"), cmdDiags);
    mnuProgram = entry(mnuFile, "mnuProgram", QStringLiteral("&Varnel Programming"), cmdVnlPrg);
    mnuTermEm = entry(mnuFile, "mnuTermEm", QStringLiteral("&Terminal Emulation"), cmdTermEm);
    mnuPI = entry(mnuFile, "mnuPI", QStringLiteral("&Product Information"), cmdProductInfo);
    mnuLine = namedSeparator(mnuFile, "mnuLine");
    mnuExit = entry(mnuFile, "mnuExit", QStringLiteral("E&xit the Program"), cmdExit);
    QMenu *mnuHelp = namedMenu(menuBar(), "mnuHelp", QStringLiteral("&Help"));
    mnuAbout = namedEntry(mnuHelp, "mnuAbout", QStringLiteral("&About"));
    connect(mnuAbout, &QAction::triggered, this, [this] { frmAbout(m_session.prompts(), this).exec(); });

    connect(cmdStartOut, &QPushButton::clicked, this, &MainMenu::cmdStartOut_Click);
    connect(cmdDiags, &QPushButton::clicked, this, &MainMenu::cmdDiags_Click);
    connect(cmdVnlPrg, &QPushButton::clicked, this, &MainMenu::cmdVnlPrg_Click);
    connect(cmdTermEm, &QPushButton::clicked, this, &MainMenu::cmdTermEm_Click);
    connect(cmdProductInfo, &QPushButton::clicked, this, &MainMenu::cmdProductInfo_Click);
    connect(cmdExit, &QPushButton::clicked, this, &MainMenu::cmdExit_Click);
    openDiagnostics = [this] { showDiagnostics(); };
    openStartingOut = [this] { showStartingOut(); };
}

MainMenu::~MainMenu()
{
    m_ini.onTrouble = nullptr;
    delete m_startingOut;
    delete m_diagnostic;
    delete m_programming;
    delete m_terminal;
}

Terminal *MainMenu::terminal() const
{
    return m_terminal;
}

ProgrammingMenu *MainMenu::programmingMenu() const
{
    return m_programming;
}

Diagnostic *MainMenu::diagnostic() const
{
    return m_diagnostic;
}

void MainMenu::showDiagnostics()
{
    m_diagnostic = new Diagnostic(m_session);
    m_diagnostic->setAttribute(Qt::WA_DeleteOnClose);
    // The introduction's setting lives with the other settings of the program, on Terminal.
    m_diagnostic->hideDiag = [this] { return m_terminal && m_terminal->Settings.hideDiag; };
    m_diagnostic->setHideDiag = [this](bool hide) {
        if (m_terminal)
            m_terminal->Settings.hideDiag = hide;
    };
    m_diagnostic->repeaterSetup = [this] { return m_terminal && m_terminal->Settings.repeaterSetup; };
    m_diagnostic->setRepeaterSetup = [this](bool saved) {
        if (m_terminal)
            m_terminal->Settings.repeaterSetup = saved;
    };
    connect(m_diagnostic, &Diagnostic::returnedToMainMenu, this, &MainMenu::sectionEnded);
    m_diagnostic->open();
}

void MainMenu::showStartingOut()
{
    m_startingOut = new StartingOutMenu(m_session);
    StartingOutMenu *menu = m_startingOut;
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->openFrequency = [this](ModemRecord &record, QWidget *parent) {
        if (FreqScreen *screen = localFrequencyScreen(m_session, record, parent))
            screen->show();
    };
    menu->openSquelch = [this](ModemRecord &record, QWidget *parent) {
        if (FreqScreen *screen = squelchScreen(m_session, record, parent))
            screen->show();
    };
    menu->configurePort = [this](QWidget *parent) {
        attempt(m_session.prompts(),
                [&] { MWPort(m_session, m_ini, parent).SetPortSettings(m_session.Comm1()); });
        if (m_terminal)
            m_terminal->setPortTitle();
    };
    // The rate wizard gives the port to the terminal when it closes; the guide is still open and takes it
    // back.
    menu->openSerialRate = [this, menu](QWidget *parent) {
        auto *wizard = new SetBaudS(m_session, parent);
        connect(wizard, &QObject::destroyed, menu, &StartingOutMenu::retakePort);
        wizard->show();
    };
    connect(menu, &StartingOutMenu::unloaded, this, &MainMenu::sectionEnded);
    menu->show();
}

QPushButton *MainMenu::addCommand(const char *name, const QString &caption, const QString &toolTip)
{
    auto *button = named<QPushButton>(name, caption, centralWidget());
    button->setToolTip(toolTip);
    button->setMinimumHeight(36);
    return button;
}

void MainMenu::updateSections()
{
    cmdStartOut->setEnabled(bool(openStartingOut));
    mnuStart->setEnabled(bool(openStartingOut));
}

void MainMenu::prepareTerminal()
{
    if (!m_terminal)
        m_terminal = new Terminal(m_session, m_ini);
}

void MainMenu::Load()
{
    updateSections();
    m_session.IrDongleActive = false;
    prepareTerminal();
    m_terminal->Load();
    m_terminal->setVisible(false);
    connect(m_terminal, &Terminal::returnedToMainMenu, this, &MainMenu::sectionEnded);
    connect(m_terminal, &Terminal::unloaded, this, &MainMenu::sectionEnded);
    wireModemScreens();
}

void MainMenu::wireModemScreens()
{
    Terminal *terminal = m_terminal;
    const FlashTerminalHooks flashHooks{[terminal](const QString &title) { terminal->setWindowTitle(title); },
                                        [terminal] { terminal->setPortTitle(); },
                                        [terminal] { terminal->MComm_Click(4); }};
    terminal->openFlashUpdate = [this, flashHooks] { mnuFlash(m_session, flashHooks, m_terminal); };
    terminal->openSerialRate = [this] { mnuSerialS(m_session, m_terminal); };
    terminal->openPowerLevel = [this] { mnuPowerS(m_session, m_terminal); };
    terminal->showModelOptions = [this] { ShowModelOptions(m_session, m_terminal); };
    terminal->openChooseFreqType = [this] { openChooseFreqType(); };
    terminal->hooksChanged();
}

void MainMenu::openChooseFreqType()
{
    auto *hub = new ChooseFreqType(m_session, m_terminal);
    // The frequency screens reach a remote modem through the remote programming form.
    hub->openRemoteAddress = [this, hub](std::function<void()> linked, std::function<void()> failed) {
        auto *form = new RemoteAddress(m_session, hub);
        form->linked = std::move(linked);
        form->failed = std::move(failed);
        form->focusOpener = [hub] { hub->activateWindow(); };
        form->show();
    };
    hub->Load();
    hub->show();
}

void MainMenu::sectionEnded()
{
    PortClaim::giveToTerminal(m_session.Comm1());
    setVisible(true);
}

// A terminal closed by its window's button has closed the port; whatever needs the port next loads it
// again, hidden, as the program's start did.
void MainMenu::reloadTerminal()
{
    if (m_terminal->isLoaded())
        return;
    m_terminal->Load();
    m_terminal->setVisible(false);
}

void MainMenu::cmdStartOut_Click()
{
    if (!openStartingOut)
        return;
    BusyPointer busy(m_session.prompts());
    reloadTerminal();
    openStartingOut();
    setVisible(false);
}

void MainMenu::cmdDiags_Click()
{
    BusyPointer busy(m_session.prompts());
    reloadTerminal();
    // A false result leaves the user here; the boxes of the entry routine have said why.
    if (m_session.EnterCommandModeKeep() && openDiagnostics) {
        openDiagnostics();
        setVisible(false);
    }
}

void MainMenu::cmdVnlPrg_Click()
{
    // No modem dialogue is needed to edit a command list, but reading and downloading need the port.
    reloadTerminal();
    if (!m_programming) {
        m_programming = new ProgrammingMenu(m_session);
        m_programming->setAttribute(Qt::WA_DeleteOnClose);
        connect(m_programming, &ProgrammingMenu::returnedToMainMenu, this, &MainMenu::sectionEnded);
        connect(m_programming, &ProgrammingMenu::aboutRequested, this,
                [this] { frmAbout(m_session.prompts(), m_programming).exec(); });
        m_programming->showModelOptions = [this] { mnuModemopt(m_session, m_programming); };
        m_programming->openHours = [this] { mnuHours(m_session, m_programming); };
        m_programming->hooksChanged();
    }
    m_programming->show();
    setVisible(false);
}

void MainMenu::cmdTermEm_Click()
{
    CommControl &comm = m_session.Comm1();
    // One that lost its line reopens the port.
    if (m_terminal->isLoaded())
        m_terminal->reconnect();
    reloadTerminal();
    m_terminal->setVisible(true);
    comm.Input();
    m_terminal->activateWindow();
    m_terminal->focusComm1();
    // A carriage return makes the modem show a fresh prompt on the screen.
    ignoreErrors([&] { comm.Output(QByteArrayLiteral("\r")); });
    PortClaim::giveToTerminal(comm);
    setVisible(false);
    m_terminal->showTermIntro();
}

void MainMenu::cmdProductInfo_Click()
{
    QString root;
    FindCdDrive(root);
    const QString message = productInformationMessage(root);
    if (!message.isEmpty())
        m_session.prompts().MsgBox(message);
}

void MainMenu::cmdExit_Click()
{
    close();
}

void MainMenu::closeEvent(QCloseEvent *event)
{
    // Unloading the main menu unloads Terminal, which closes the port and saves the settings.
    if (m_terminal) {
        disconnect(m_terminal, &Terminal::unloaded, this, &MainMenu::sectionEnded);
        m_terminal->Unload();
    }
    event->accept();
    QApplication::quit();
}
