#include "ProgrammingMenu.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "CommControl.h"
#include "CommandDialogs.h"
#include "CommandListBox.h"
#include "ModemSession.h"
#include "Named.h"
#include "Plc.h"
#include "PortClaim.h"
#include "ProgramFile.h"
#include "ProgramTransfer.h"
#include "Prompts.h"
#include "RemoteAddress.h"
#include "RemoteProgramming.h"
#include "Transparent.h"
#include "TransparentSetup.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
const QString kOpenFilter = QStringLiteral("Varnel Commands (*.nvc)|*.nvc|Text (*.txt)|*.txt|All (*.*)|*.*");
// The save filter has no text-file row and ends in a bar of its own; both differ from Open on purpose.
const QString kSaveFilter = QStringLiteral("VNL Files (*.nvc)|*.nvc|All files (*.*)|*.*|");
// Open presets a name of one blank: a dialog that hands it back has chosen nothing.
const QString kBlankName = QStringLiteral(" ");

QString welcomeText()
{
    const QString paragraphBreak = QStringLiteral("\n\n");
    return QStringLiteral(
               "This section will allow you to develop a list of software commands for your Varnel "
               "Wireless Modems.") +
           paragraphBreak +
           QStringLiteral(
               "All Varnel software commands are listed in the above menus and can be added to your "
               "command list for download to your Varnel or saved as a file for future use.") +
           paragraphBreak +
           QStringLiteral("For PLC Programming, click on Varnel Programming in above menu and select PLC.");
}

// A set-up form starts from an empty list and only appends to it.
template <typename Form> void openSetupForm(ProgrammingMenu &menu, ModemSession &session)
{
    menu.savePrompt();
    (new Form(
         session, [&menu](const QString &line) { menu.AddCommand(line); }, &menu))
        ->show();
}

QPushButton *button(QWidget *parent, const char *name, const QString &caption, const QString &toolTip = {})
{
    auto *b = named<QPushButton>(name, caption, parent);
    b->setToolTip(toolTip);
    return b;
}
} // namespace

ProgrammingMenu::ProgrammingMenu(ModemSession &session, QWidget *parent)
    : QMainWindow(parent), m_session(session), m_lblIntro(new QLabel(this)), m_Label1(new QLabel(this)),
      m_Frame1(new QGroupBox(QStringLiteral("Command List"), this)), m_cmboedit(new CommandListBox(m_Frame1)),
      m_cmdokVNL(button(this, "cmdokVNL", QStringLiteral("Add Command"),
                        QStringLiteral("Adds Command to Command List"))),
      m_cmddelete(button(this, "cmddelete", QStringLiteral("Delete Command"),
                         QStringLiteral("Deletes Highlighted Command In the List"))),
      // Clear carries the delete button's tool tip word for word.
      m_cmdClear(button(this, "cmdClear", QStringLiteral("Clear List"),
                        QStringLiteral("Deletes Highlighted Command In the List"))),
      m_cmdreturn(button(this, "cmdreturn", QStringLiteral("Exit to Main Menu"))),
      // From here the dialogues of the programming screens read the port, not the terminal.
      m_port(session.Comm1(), PortClaim::Then::Terminal)
{
    setObjectName(QStringLiteral("ProgrammingMenu"));
    setWindowTitle(QStringLiteral("Varnel Programming"));

    m_lblIntro->setObjectName(QStringLiteral("lblIntro"));
    m_lblIntro->setText(QStringLiteral("Welcome to The Varnel Command Editor"));
    QFont heading = m_lblIntro->font();
    heading.setBold(true);
    heading.setPointSizeF(heading.pointSizeF() * 1.4);
    m_lblIntro->setFont(heading);
    m_lblIntro->setAlignment(Qt::AlignCenter);

    m_Label1->setObjectName(QStringLiteral("Label1"));
    m_Label1->setWordWrap(true);
    m_Label1->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_Frame1->setObjectName(QStringLiteral("Frame1"));
    m_cmboedit->setObjectName(QStringLiteral("cmboedit"));

    auto *frameLayout = new QVBoxLayout(m_Frame1);
    frameLayout->addWidget(m_cmboedit);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_cmdokVNL);
    buttons->addWidget(m_cmddelete);
    buttons->addWidget(m_cmdClear);
    frameLayout->addLayout(buttons);

    auto *central = new QWidget(this);
    auto *grid = new QGridLayout(central);
    grid->addWidget(m_lblIntro, 0, 0, 1, 2);
    grid->addWidget(m_Label1, 1, 0);
    grid->addWidget(m_Frame1, 1, 1);
    grid->addWidget(m_cmdreturn, 2, 0, 1, 2, Qt::AlignHCenter);
    grid->setColumnStretch(0, 2);
    grid->setColumnStretch(1, 3);
    setCentralWidget(central);
    resize(720, 480);

    buildMenus();
    hooksChanged();

    connect(m_cmdokVNL, &QPushButton::clicked, this, &ProgrammingMenu::addTypedCommand);
    connect(m_cmddelete, &QPushButton::clicked, this, &ProgrammingMenu::deleteSelectedCommand);
    connect(m_cmdClear, &QPushButton::clicked, this, &ProgrammingMenu::savePrompt);
    connect(m_cmdreturn, &QPushButton::clicked, this, &ProgrammingMenu::close);

    m_Label1->setText(welcomeText());
}

ProgrammingMenu::~ProgrammingMenu() = default;

void ProgrammingMenu::buildMenus()
{
    // The entries built here lead to what this screen does itself, or to the command dialogs, which are
    // connected by their names at the end.
    QMenu *mnufile = namedMenu(menuBar(), "mnufile", QStringLiteral("&File"));
    connect(namedEntry(mnufile, "mnuopen", QStringLiteral("Open Program File")), &QAction::triggered, this,
            &ProgrammingMenu::openProgramFile);
    connect(namedEntry(mnufile, "mnusave2", QStringLiteral("Save Program File")), &QAction::triggered, this,
            &ProgrammingMenu::saveProgramFile);
    QMenu *mnuread = namedMenu(mnufile, "mnuread", QStringLiteral("&Read Program From Varnel"));
    connect(namedEntry(mnuread, "mnureadconn", QStringLiteral("Read from Connected Varnel")),
            &QAction::triggered, this, &ProgrammingMenu::readFromConnected);
    connect(namedEntry(mnuread, "mnureadremote", QStringLiteral("Read from Remote Varnel")),
            &QAction::triggered, this, &ProgrammingMenu::readFromRemote);
    QMenu *mnusave = namedMenu(mnufile, "mnusave", QStringLiteral("&Save Program To Varnel "));
    connect(namedEntry(mnusave, "mnuconnected", QStringLiteral("To Connected Varnel ")), &QAction::triggered,
            this, &ProgrammingMenu::downloadToConnected);
    connect(namedEntry(mnusave, "mnuremote", QStringLiteral("To Remote Varnel")), &QAction::triggered, this,
            &ProgrammingMenu::downloadToRemote);
    connect(namedEntry(mnufile, "mnuclear", QStringLiteral("Clear Command List")), &QAction::triggered, this,
            &ProgrammingMenu::savePrompt);
    namedSeparator(mnufile, "mnudash11");
    connect(namedEntry(mnufile, "mnuMainmenu8", QStringLiteral("Return to Main Menu")), &QAction::triggered,
            this, &ProgrammingMenu::close);

    QMenu *mnuprog = namedMenu(menuBar(), "mnuprog", QStringLiteral("&Varnel Programming"));
    connect(namedEntry(mnuprog, "mnutrans", QStringLiteral("Transparent")), &QAction::triggered, this,
            [this] { openSetupForm<Transparent>(*this, m_session); });
    connect(namedEntry(mnuprog, "mnuplc", QStringLiteral("PLC")), &QAction::triggered, this,
            [this] { openSetupForm<PLC>(*this, m_session); });
    QMenu *mnurtn = namedMenu(mnuprog, "mnurtn", QStringLiteral("RTN"));
    connect(namedEntry(mnurtn, "mnuradioip", QStringLiteral("Radio/IP")), &QAction::triggered, this, [this] {
        m_cmboedit->addLines(radioIpProgram());
        m_session.prompts().MsgBox(QStringLiteral("The software commands necessary to operate with Radio/IP "
                                                  "software have been added to the Command List"),
                                   MsgButtons::OkOnly, MsgIcon::Information,
                                   QStringLiteral("Radio/IP Configuration"));
    });
    connect(namedEntry(mnuprog, "mnucustom", QStringLiteral("Custom")), &QAction::triggered, this,
            &ProgrammingMenu::showCustomListing);

    QMenu *mnusoft = namedMenu(menuBar(), "mnusoft", QStringLiteral("&Software Commands"));
    QMenu *mnumodes = namedMenu(mnusoft, "mnumodes", QStringLiteral("Modes of Operation"));
    namedEntry(mnumodes, "mnucommmode", QStringLiteral("Command Mode"));
    namedEntry(mnumodes, "mnuconv", QStringLiteral("Converse Mode"));
    namedEntry(mnumodes, "mnuremoteprog", QStringLiteral("Remote Programming"));
    namedEntry(mnumodes, "mnudigi", QStringLiteral("Digi-Repeating"));
    QMenu *mnusimple = namedMenu(mnusoft, "mnusimple", QStringLiteral("Simple Programming"));
    namedEntry(mnusimple, "mnuSetAddress", QStringLiteral("Varnel Address"));
    namedEntry(mnusimple, "mnusetconn", QStringLiteral("Set Connect Address "));
    namedEntry(mnusimple, "mnuconnect", QStringLiteral("Connect"));
    namedEntry(mnusimple, "mnudisc", QStringLiteral("Disconnect"));
    namedEntry(mnusimple, "mnuFA", QStringLiteral("Restore Factory Settings"));
    namedEntry(mnusimple, "mnuxmiter", QStringLiteral("Radio Transmitter ON/OFF"));
    namedEntry(mnusimple, "mnureset", QStringLiteral("Reset Modem"));
    namedEntry(mnusimple, "mnusa", QStringLiteral("Save"));
    QMenu *mnuadv = namedMenu(mnusoft, "mnuadv", QStringLiteral("Advanced Programming"));
    namedEntry(mnuadv, "mnubc", QStringLiteral("Broadcast"));
    namedEntry(mnuadv, "mnuautotadv", QStringLiteral("AutoTransmit"));
    namedEntry(mnuadv, "mnuMIadv", QStringLiteral("Multi-ID"));
    namedEntry(mnuadv, "mnusecadv", QStringLiteral("Security"));
    namedEntry(mnuadv, "mnuautolfadv", QStringLiteral("Auto Line Feed"));
    namedEntry(mnuadv, "mnuenDTRadv", QStringLiteral("Enable DTR"));
    namedEntry(mnuadv, "mnuechoadv", QStringLiteral("Echo"));
    namedEntry(mnuadv, "mnumcadv", QStringLiteral("Mode Control"));
    QMenu *mnuhsprotadv = namedMenu(mnuadv, "mnuhsprotadv", QStringLiteral("Hand Shaking Protocol"));
    namedEntry(mnuhsprotadv, "mnuxhflow", QStringLiteral("Hardware Flow Control"));
    namedEntry(mnuhsprotadv, "mnuxsflow", QStringLiteral("Software Flow Control"));
    namedEntry(mnuadv, "mnucommmodeadv", QStringLiteral("Key to Command Mode"));
    namedEntry(mnuadv, "mnuconvadv", QStringLiteral("Converse Mode Editing"));
    namedEntry(mnuadv, "mnuadvmess", QStringLiteral("Message Format"));
    namedEntry(mnuadv, "mnuadvnetID", QStringLiteral("Network ID"));
    namedEntry(mnuadv, "mnusendpackadv", QStringLiteral("Send Packet Key"));
    namedEntry(mnuadv, "mnuadvtimer", QStringLiteral("Termination Timer"));
    // The two error message entries are in the menu and open nothing: no entry leads to those dialogs.
    QMenu *mnuerrorformadv = namedMenu(mnuadv, "mnuerrorformadv", QStringLiteral("Error Messages"));
    namedEntry(mnuerrorformadv, "mnuSysErrMsgs", QStringLiteral("System Error Messages"));
    namedEntry(mnuerrorformadv, "mnuCommErrMsgs", QStringLiteral("Communication Error Messages"));
    namedEntry(mnuadv, "mnucbdadv", QStringLiteral("Carrier Busy Delay"));

    QMenu *mnuVNLinfo = namedMenu(menuBar(), "mnuVNLinfo", QStringLiteral("Varnel Information"));
    namedEntry(mnuVNLinfo, "mnucopyr", QStringLiteral("Copyright"));
    namedEntry(mnuVNLinfo, "mnuModelNumber2", QStringLiteral("Model Number"));
    m_mnuModemopt = namedEntry(mnuVNLinfo, "mnuModemopt", QStringLiteral("Modem Options"));
    connect(m_mnuModemopt, &QAction::triggered, this, [this] {
        if (showModelOptions)
            showModelOptions();
    });
    namedEntry(mnuVNLinfo, "mnuserial", QStringLiteral("Modem Serial Number"));
    namedEntry(mnuVNLinfo, "mnusoftvers", QStringLiteral("Modem Software Version"));
    m_mnuHours = namedEntry(mnuVNLinfo, "mnuHours", QStringLiteral("Hour Meter"));
    connect(m_mnuHours, &QAction::triggered, this, [this] {
        if (openHours)
            openHours();
    });
    namedEntry(mnuVNLinfo, "mnupacketl", QStringLiteral("Packet Length"));
    namedEntry(mnuVNLinfo, "mnuretries", QStringLiteral("Number of Retries"));
    namedEntry(mnuVNLinfo, "mnuxmitstats", QStringLiteral("Transmit status"));

    QMenu *mnuhelp = namedMenu(menuBar(), "mnuhelp", QStringLiteral("Help"));
    connect(namedEntry(mnuhelp, "mnuAbout", QStringLiteral("About")), &QAction::triggered, this,
            &ProgrammingMenu::aboutRequested);

    wireCommandDialogs(*this, m_session, [this](const QString &line) { AddCommand(line); });
}

void ProgrammingMenu::hooksChanged()
{
    m_mnuModemopt->setEnabled(bool(showModelOptions));
    m_mnuHours->setEnabled(bool(openHours));
}

void ProgrammingMenu::AddCommand(const QString &text)
{
    m_cmboedit->addLine(text);
}

void ProgrammingMenu::addTypedCommand()
{
    const QString text = m_cmboedit->text();
    if (text.isEmpty())
        return;
    m_cmboedit->addLine(text);
    m_cmboedit->setText(QString());
}

void ProgrammingMenu::deleteSelectedCommand()
{
    m_cmboedit->removeLine(m_cmboedit->listIndex());
}

void ProgrammingMenu::savePrompt()
{
    if (m_cmboedit->count() == 0)
        return;
    if (m_session.prompts().MsgBox(QStringLiteral("Do You Wish to Save The Current Command List?"),
                                   MsgButtons::YesNo, MsgIcon::Question) == MsgAnswer::Yes)
        saveProgramFile();
    // Whatever came of the saving, the list starts afresh.
    m_cmboedit->clear();
}

void ProgrammingMenu::saveProgramFile()
{
    Prompts &prompts = m_session.prompts();
    if (m_cmboedit->listIndex() >= 0)
        m_cmboedit->setListIndex(0);
    if (m_cmboedit->count() == 0) {
        prompts.MsgBox(QStringLiteral("Error:  The file does not contain anything to save."));
        return;
    }
    const QStringList lines = m_cmboedit->lines();

    FileDialogRequest request;
    request.kind = FileDialogRequest::Kind::Save;
    request.filter = fileDialogFilter(kSaveFilter);
    request.overwritePrompt = true;
    const QString name = prompts.FileDialog(request);
    if (name.isEmpty())
        return;
    attempt(prompts, [&] { writeProgramFile(name, lines); });
}

void ProgrammingMenu::openProgramFile()
{
    savePrompt();
    Prompts &prompts = m_session.prompts();
    BusyPointer busy(prompts);
    for (;;) {
        FileDialogRequest request;
        request.kind = FileDialogRequest::Kind::Open;
        request.fileName = kBlankName;
        request.filter = fileDialogFilter(kOpenFilter);
        const QString name = prompts.FileDialog(request);
        if (name.isEmpty() || name == kBlankName)
            break;
        const ProgramFileContents contents = readProgramFile(name);
        const QString message = openErrorMessage(contents.errorNumber);
        if (!message.isEmpty())
            prompts.MsgBox(message);
        if (openErrorAsksAgain(contents.errorNumber))
            continue;
        m_cmboedit->addLines(contents.lines);
        break;
    }
}

void ProgrammingMenu::showCustomListing()
{
    m_session.prompts().MsgBox(
        QStringLiteral("To create a custom program list for your Varnel, locate required ") +
            QStringLiteral("commands in software commands and add to Command List on ") +
            QStringLiteral("the right side of the screen."),
        MsgButtons::OkOnly, MsgIcon::None, QStringLiteral("Custom Listing"));
}

void ProgrammingMenu::readFromConnected()
{
    savePrompt();
    QStringList lines;
    ReadProgram(m_session, lines);
    m_cmboedit->addLines(lines);
}

void ProgrammingMenu::downloadToConnected()
{
    DownloadProgram(m_session, m_cmboedit->lines(), [this](int index) { m_cmboedit->setListIndex(index); });
}

void ProgrammingMenu::readFromRemote()
{
    savePrompt();
    openRemoteAddress(kRemoteReadMode);
}

void ProgrammingMenu::downloadToRemote()
{
    if (m_cmboedit->count() == 0) {
        m_session.prompts().MsgBox(
            QStringLiteral("You Cannot Save.  There Are No Commands In The Command List."),
            MsgButtons::OkOnly, MsgIcon::Exclamation);
        return;
    }
    openRemoteAddress(kRemoteSaveMode);
}

void ProgrammingMenu::openRemoteAddress(const QString &mode)
{
    BusyPointer busy(m_session.prompts());
    if (!PrepareRemoteModem(m_session))
        return;
    m_session.ProgMode = mode;
    auto *form = new RemoteAddress(m_session, this);
    form->linked = [this, mode] {
        QStringList lines;
        if (mode == kRemoteReadMode) {
            ReadProgram(m_session, lines);
            for (const QString &line : std::as_const(lines))
                m_cmboedit->addLine(line);
            return;
        }
        lines = m_cmboedit->lines();
        RemoteDownload(m_session, lines, [this, &lines](int index) {
            // The list shows what the walk has taken out of it so far.
            showLines(lines);
            m_cmboedit->setListIndex(index);
        });
        showLines(lines);
    };
    form->show();
}

void ProgrammingMenu::showLines(const QStringList &lines)
{
    if (m_cmboedit->lines() == lines)
        return;
    m_cmboedit->clear();
    for (const QString &line : lines)
        m_cmboedit->addLine(line);
}

void ProgrammingMenu::closeEvent(QCloseEvent *event)
{
    if (m_cmboedit->count() > 0) {
        if (m_session.prompts().MsgBox(QStringLiteral("Do You Wish to Save The Command List?"),
                                       MsgButtons::YesNo, MsgIcon::Question) == MsgAnswer::Yes)
            saveProgramFile();
        m_cmboedit->clear();
    }
    // Leaving the section gives the port back to the terminal.
    m_port.release();
    event->accept();
    emit returnedToMainMenu();
}
