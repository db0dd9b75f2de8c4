#include "Terminal.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "ButtonDef.h"
#include "CaptureFile.h"
#include "CommControl.h"
#include "IniFile.h"
#include "MWPort.h"
#include "MWTerm.h"
#include "ModemSession.h"
#include "Named.h"
#include "PortClaim.h"
#include "Prompts.h"
#include "TermIntro.h"
#include "TerminalScreen.h"
#include "frmAbout.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QCloseEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QVBoxLayout>

namespace {

constexpr int kCaptureStandard = int(CaptureMode::Standard);
constexpr char kCtrlC = '\x03';

QString clipboardText()
{
    return QGuiApplication::clipboard()->text();
}

} // namespace

Terminal::Terminal(ModemSession &session, IniFile &ini, QWidget *parent)
    : QMainWindow(parent), m_session(session), m_ini(ini)
{
    setObjectName(QStringLiteral("Terminal"));
    buildScreen();
    buildMenus();
    hooksChanged();
}

Terminal::~Terminal() = default;

void Terminal::buildScreen()
{
    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(4, 4, 4, 4);

    Comm1Screen = new TerminalScreen(central);
    Comm1Screen->attach(&Comm1());
    layout->addWidget(Comm1Screen, 1, Qt::AlignHCenter);

    Status = named<QLabel>("Status", central);
    Status->setFrameShape(QFrame::Panel);
    Status->setFrameShadow(QFrame::Sunken);
    Status->setTextFormat(Qt::PlainText);
    layout->addWidget(Status);

    auto *buttons = new QGridLayout;
    for (int i = 0; i < kButtons; ++i) {
        auto *button = named<TagButton>(QStringLiteral("Btn(%1)").arg(i), central);
        button->setAutoDefault(false);
        button->setMinimumHeight(26);
        buttons->addWidget(button, i / 5, i % 5);
        connect(button, &QPushButton::clicked, this, [this, i] { Btn_Click(i); });
        Btn[size_t(i)] = button;
    }
    layout->addLayout(buttons);
    setCentralWidget(central);

    connect(Comm1Screen, &TerminalScreen::keyRouted, this, &Terminal::applyKeyRoute);
    connect(Comm1Screen, &TerminalScreen::DblClick, this, &Terminal::Comm1_DblClick);
    connect(Comm1Screen, &TerminalScreen::bell, this, [this] { m_session.prompts().Beep(); });
    connect(&Comm1(), &CommControl::received, this, &Terminal::Comm1_Receive);
    connect(&Comm1(), &CommControl::lineLost, this, &Terminal::Comm1_LineLost);
    connect(&Comm1(), &CommControl::portOpenChanged, this, [this](bool open) {
        if (open && m_lineLost) {
            m_lineLost = false;
            setPortTitle();
            SetStatus(QStringLiteral("Port open again: ") + Comm1().deviceFor(Comm1().CommPort()));
        }
    });
}

void Terminal::buildMenus()
{
    MenuFile = namedMenu(menuBar(), QStringLiteral("MenuFile"), QStringLiteral("&File"));
    m_mFile[1] = namedEntry(MenuFile, QStringLiteral("MFile(1)"), QStringLiteral("O&pen Capture File..."));
    m_mFile[2] = namedEntry(MenuFile, QStringLiteral("MFile(2)"), QStringLiteral("C&lose Capture File"));
    m_mFile[2]->setEnabled(false);
    m_mFile[3] = namedSeparator(MenuFile, QStringLiteral("MFile(3)"));
    m_mFile[4] = namedEntry(MenuFile, QStringLiteral("MFile(4)"), QStringLiteral("E&xit to Main Menu"));
    for (const int i : {1, 2, 4})
        connect(m_mFile[i], &QAction::triggered, this, [this, i] { MFile_Click(i); });

    MenuEdit = namedMenu(menuBar(), QStringLiteral("MenuEdit"), QStringLiteral("&Edit"));
    m_mEdit[1] = namedEntry(MenuEdit, QStringLiteral("MEdit(1)"), QStringLiteral("&Copy"),
                            QKeySequence(Qt::CTRL | Qt::Key_C));
    m_mEdit[2] = namedEntry(MenuEdit, QStringLiteral("MEdit(2)"), QStringLiteral("&Paste"),
                            QKeySequence(Qt::CTRL | Qt::Key_V));
    for (const int i : {1, 2})
        connect(m_mEdit[i], &QAction::triggered, this, [this, i] { MEdit_Click(i); });
    connect(MenuEdit, &QMenu::aboutToShow, this, &Terminal::MenuEdit_Refresh);

    mnuvnlsetup = namedMenu(menuBar(), QStringLiteral("mnuvnlsetup"), QStringLiteral("V&arnel  Setup"));
    mnusetfreq = namedEntry(mnuvnlsetup, QStringLiteral("mnusetfreq"),
                            QStringLiteral("Set Frequency/Squelch"), QKeySequence(Qt::Key_F1));
    mnuDiag = namedEntry(mnuvnlsetup, QStringLiteral("mnuDiag"), QStringLiteral("Varnel Diagnostics"),
                         QKeySequence(Qt::Key_F2));
    mnudongle = namedEntry(mnuvnlsetup, QStringLiteral("mnudongle"), QStringLiteral("Initialize IR Dongle"),
                           QKeySequence(Qt::Key_F3));
    namedSeparator(mnuvnlsetup, QStringLiteral("mnudash1"));
    mnutest = namedEntry(mnuvnlsetup, QStringLiteral("mnutest"), QStringLiteral("Test String"),
                         QKeySequence(Qt::Key_F5));
    mnuCtrlC = namedEntry(mnuvnlsetup, QStringLiteral("mnuCtrlC"), QStringLiteral("Ctrl-C: Disconnect"),
                          QKeySequence(Qt::Key_F6));
    namedSeparator(mnuvnlsetup, QStringLiteral("mnudash2"));
    mnuFlash = namedEntry(mnuvnlsetup, QStringLiteral("mnuFlash"), QStringLiteral("Update Flash Memory"));
    mnuSerialS =
        namedEntry(mnuvnlsetup, QStringLiteral("mnuSerialS"), QStringLiteral("Configure Varnel Serial Port"));
    namedSeparator(mnuvnlsetup, QStringLiteral("mnudash3"));
    setQ40z = namedMenu(mnuvnlsetup, QStringLiteral("setQ40z"), QStringLiteral("Model Q40Z Settings"));
    mnuPowerS = namedEntry(setQ40z, QStringLiteral("mnuPowerS"), QStringLiteral("Set Output Power Level"));
    connect(mnusetfreq, &QAction::triggered, this, &Terminal::mnusetfreq_Click);
    connect(mnuDiag, &QAction::triggered, this, &Terminal::mnuDiag_Click);
    connect(mnudongle, &QAction::triggered, this, &Terminal::mnudongle_Click);
    connect(mnutest, &QAction::triggered, this, &Terminal::mnutest_Click);
    connect(mnuCtrlC, &QAction::triggered, this, &Terminal::mnuCtrlC_Click);
    connect(mnuFlash, &QAction::triggered, this, [this] {
        if (openFlashUpdate)
            openFlashUpdate();
    });
    connect(mnuSerialS, &QAction::triggered, this, [this] {
        if (openSerialRate)
            openSerialRate();
    });
    connect(mnuPowerS, &QAction::triggered, this, [this] {
        if (openPowerLevel)
            openPowerLevel();
    });

    Menutermset = namedMenu(menuBar(), QStringLiteral("Menutermset"), QStringLiteral("&Terminal Setup"));
    m_mSetup[1] = namedEntry(Menutermset, QStringLiteral("MSetup(1)"), QStringLiteral("&Port..."));
    m_mSetup[2] =
        namedEntry(Menutermset, QStringLiteral("MSetup(2)"), QStringLiteral("&Terminal Configuration..."));
    MSetup4 = namedMenu(Menutermset, QStringLiteral("MSetup(4)"), QStringLiteral("&Buttons..."));
    m_mSetup[4] = MSetup4->menuAction();
    mnuButtonDef = namedEntry(MSetup4, QStringLiteral("mnuButtonDef"), QStringLiteral("Configure Buttons"));
    for (int i = 0; i < kButtons; ++i) {
        // Shift+F10 is left out on purpose: button 10 answers to Shift+F11.
        const int functionKey = i < 9 ? Qt::Key_F1 + i : Qt::Key_F11;
        m_mnuButton[size_t(i)] = namedEntry(MSetup4, QStringLiteral("mnuButton(%1)").arg(i),
                                            QStringLiteral("Button %1").arg(i + 1),
                                            QKeySequence(Qt::SHIFT | Qt::Key(functionKey)));
        connect(m_mnuButton[size_t(i)], &QAction::triggered, this, [this, i] { Btn_Click(i); });
    }
    m_mComm[4] = namedEntry(Menutermset, QStringLiteral("MComm(4)"), QStringLiteral("Clear the &Screen"));
    for (const int i : {1, 2})
        connect(m_mSetup[i], &QAction::triggered, this, [this, i] { MSetup_Click(i); });
    connect(mnuButtonDef, &QAction::triggered, this, &Terminal::mnuButtonDef_Click);
    connect(m_mComm[4], &QAction::triggered, this, [this] { MComm_Click(4); });

    MenuHelp = namedMenu(menuBar(), QStringLiteral("MenuHelp"), QStringLiteral("&Help"));
    mnuhp = namedEntry(MenuHelp, QStringLiteral("mnuhp"), QStringLiteral("About"),
                       QKeySequence(Qt::CTRL | Qt::Key_F1));
    connect(mnuhp, &QAction::triggered, this, &Terminal::mnuhp_Click);
}

void Terminal::hooksChanged()
{
    mnusetfreq->setEnabled(bool(openChooseFreqType));
    mnuDiag->setEnabled(bool(openDiagnostics));
    mnuFlash->setEnabled(bool(openFlashUpdate));
    mnuSerialS->setEnabled(bool(openSerialRate));
    mnuPowerS->setEnabled(bool(openPowerLevel));
}

CommControl &Terminal::Comm1() const
{
    return m_session.Comm1();
}

void Terminal::Load()
{
    LoadAppSettings(m_ini, Settings);
    applyButtons();
    LoadPortSettings(Comm1(), m_ini, m_session.prompts(), [this] {
        // A first run, or a key gone from the file: the port dialog asks, and may end the program.
        MWPort port(m_session, m_ini, this);
        port.PortSetupRequired = true;
        port.SetPortSettings(Comm1());
    });
    setPortTitle();
    openPort();
    if (m_session.IrDongleActive)
        mnudongle_Click();
    m_loaded = true;
}

void Terminal::openPort()
{
    attempt(m_session.prompts(), [&] {
        if (!Comm1().PortOpen())
            Comm1().setPortOpen(true);
    });
}

void Terminal::reconnect()
{
    if (m_lineLost)
        openPort();
}

void Terminal::Comm1_LineLost(const QString &device)
{
    // The port stays closed until the user opens it again, so the user must see at once that it is.
    m_lineLost = true;
    setWindowTitle(QStringLiteral("COM%1: Line Lost (%2)").arg(Comm1().CommPort()).arg(device));
    SetStatus(QStringLiteral("Line lost on ") + device +
              QStringLiteral(": the port is closed. Open it again with Terminal Setup, Port..."));
}

void Terminal::Unload()
{
    if (!m_loaded)
        return;
    m_loaded = false;
    emit aboutToUnload();
    if (!Comm1Screen->CaptureFilename().isEmpty()) {
        Comm1Screen->setCaptureFilename(QString());
        m_session.prompts().Beep();
        m_session.prompts().MsgBox(QStringLiteral("Capture File Closed"));
    }
    ignoreErrors([&] {
        if (Comm1().PortOpen())
            Comm1().setPortOpen(false);
    });
    collectButtons();
    SaveAppSettings(m_ini, Settings);
    emit unloaded();
}

void Terminal::closeEvent(QCloseEvent *event)
{
    // The window's close button unloads the form, as the program's own exit does.
    Unload();
    event->accept();
}

void Terminal::applyButtons()
{
    for (int i = 0; i < kButtons; ++i) {
        const ButtonAssignment &assignment = Settings.buttons[size_t(i)];
        Btn[size_t(i)]->setText(assignment.caption);
        Btn[size_t(i)]->Tag = assignment.tag;
        if (!assignment.caption.isEmpty())
            m_mnuButton[size_t(i)]->setText(assignment.caption);
    }
}

void Terminal::collectButtons()
{
    for (int i = 0; i < kButtons; ++i)
        Settings.buttons[size_t(i)] = {Btn[size_t(i)]->text(), Btn[size_t(i)]->Tag};
}

void Terminal::setPortTitle()
{
    setWindowTitle(QStringLiteral("COM%1:%2").arg(Comm1().CommPort()).arg(Comm1().Settings().toUpper()));
}

void Terminal::SetStatus(const QString &text)
{
    Status->setText((text.isEmpty() ? m_lastStatus : text) + u' ');
    m_lastStatus = text;
}

void Terminal::focusComm1()
{
    Comm1Screen->setFocus();
}

void Terminal::showTermIntro()
{
    if (Settings.hideIntro)
        return;
    TermIntro intro(this);
    intro.exec();
    Settings.hideIntro = intro.chkHide->isChecked();
    focusComm1();
}

void Terminal::OpenCapture(TerminalScreen &control, int mode)
{
    FileDialogRequest request;
    request.kind = FileDialogRequest::Kind::Save;
    request.title = QStringLiteral("Capture Filename");
    request.filter = QStringLiteral("Text Files (*.TXT);;All Files (*.*)");
    request.overwritePrompt = false;
    QString name = m_session.prompts().FileDialog(request);
    if (name.trimmed().isEmpty())
        return;
    // The dialog's default extension.
    if (QFileInfo(name).suffix().isEmpty())
        name += QStringLiteral(".TXT");
    control.setCaptureMode(mode);
    control.setCaptureFilename(name);
    m_session.CaptureActive = true;
    SetStatus(QStringLiteral("Capturing [") + captureModeName(mode) + QStringLiteral("] to ") + name);
}

void Terminal::CloseCapture(TerminalScreen &control)
{
    control.setCaptureFilename(QString());
    SetStatus(QStringLiteral("Capture File Closed"));
    m_session.CaptureActive = false;
}

void Terminal::MFile_Click(int index)
{
    switch (index) {
    case 1:
        attempt(m_session.prompts(), [&] { OpenCapture(*Comm1Screen, kCaptureStandard); });
        if (!Comm1Screen->CaptureFilename().isEmpty()) {
            MFile(1)->setEnabled(false);
            MFile(2)->setEnabled(true);
        }
        break;
    case 2:
        attempt(m_session.prompts(), [&] { CloseCapture(*Comm1Screen); });
        MFile(1)->setEnabled(true);
        MFile(2)->setEnabled(false);
        focusComm1();
        break;
    case 4:
        emit returnedToMainMenu();
        hide();
        break;
    default:
        break;
    }
}

void Terminal::MEdit_Click(int index)
{
    if (index == 1) {
        QClipboard *clipboard = QGuiApplication::clipboard();
        clipboard->clear();
        clipboard->setText(Comm1Screen->SelText());
    } else if (index == 2) {
        attempt(m_session.prompts(), [&] { Comm1().Output(clipboardText().toLatin1()); });
    }
}

void Terminal::MenuEdit_Refresh()
{
    MEdit(1)->setEnabled(Comm1Screen->SelLength() != 0);
    const QMimeData *clip = QGuiApplication::clipboard()->mimeData();
    MEdit(2)->setEnabled(clip && clip->hasText());
}

void Terminal::mnusetfreq_Click()
{
    if (!openChooseFreqType)
        return;
    BusyPointer busy(m_session.prompts());
    PortClaim claim(Comm1(), PortClaim::Then::Terminal);
    if (!m_session.EnterCommandMode())
        return;
    // The frequency screen holds the port from here and gives it back when it unloads.
    claim.keep();
    openChooseFreqType();
}

void Terminal::mnuDiag_Click()
{
    if (!openDiagnostics)
        return;
    {
        BusyPointer busy(m_session.prompts());
        if (!m_session.EnterCommandModeKeep())
            return;
        PortClaim::takeForProgram(Comm1());
        openDiagnostics();
    }
    hide();
}

void Terminal::mnudongle_Click()
{
    PortClaim claim(Comm1(), PortClaim::Then::Terminal);
    m_session.InitIrDongle();
    if (m_session.IrDongleActive) {
        setWindowTitle(QStringLiteral("COM%1: Using IR Dongle").arg(Comm1().CommPort()));
        attempt(m_session.prompts(), [&] { Comm1().Output(QByteArray(1, kCtrlC)); });
    }
}

void Terminal::mnutest_Click()
{
    attempt(m_session.prompts(), [&] { m_session.sendText(QByteArray(kTestString)); });
}

void Terminal::mnuCtrlC_Click()
{
    // The control character goes by itself, even through the adaptor, and the word a tenth of a
    // second later.
    attempt(m_session.prompts(), [&] { Comm1().Output(QByteArray(1, kCtrlC)); });
    m_session.MsDelay(100);
    attempt(m_session.prompts(), [&] { m_session.sendText(QByteArrayLiteral("Disconnect\r")); });
}

void Terminal::MSetup_Click(int index)
{
    if (index == 1) {
        attempt(m_session.prompts(), [&] {
            MWPort port(m_session, m_ini, this);
            port.SetPortSettings(Comm1());
        });
        setPortTitle();
    } else if (index == 2) {
        attempt(m_session.prompts(), [&] {
            MWTerm settings(m_session, m_ini, this);
            settings.SetTerminalSettings(*Comm1Screen);
        });
    }
}

void Terminal::openButtonDef(int index)
{
    ButtonDef dialog(Btn, index, this);
    dialog.exec();
}

void Terminal::mnuButtonDef_Click()
{
    openButtonDef(0);
}

void Terminal::Btn_Click(int index)
{
    TagButton *button = Btn[size_t(index)];
    if (button->Tag.isEmpty()) {
        openButtonDef(index);
        return;
    }
    // One write whatever AutoProcess is, never character by character.
    attempt(m_session.prompts(), [&] { Comm1().Output(button->Tag.toLatin1()); });
    focusComm1();
}

void Terminal::MComm_Click(int index)
{
    if (index != 4)
        return;
    Comm1Screen->setScreenText(QString());
    Comm1Screen->setCursorRow(1);
    Comm1Screen->setCursorCol(1);
}

void Terminal::mnuhp_Click()
{
    frmAbout about(m_session.prompts(), this);
    about.exec();
}

void Terminal::Comm1_Receive()
{
    ignoreErrors([&] { Comm1().Disp(Comm1().Input()); });
}

void Terminal::applyKeyRoute(const KeyRoute &route)
{
    if (route.escPressed)
        m_session.EscPressed = true;
    // Keys cannot reach a closed port; the user hears of it instead of losing them without a word.
    if (!route.send.isEmpty() && !Comm1().PortOpen())
        SetStatus(QStringLiteral("The port is closed: keys typed are not sent."));
    const QString selection = Comm1Screen->SelText();
    switch (route.edit) {
    case KeyRoute::Edit::Paste:
        ignoreErrors([&] { Comm1().Output(clipboardText().toLatin1()); });
        break;
    case KeyRoute::Edit::Copy:
    case KeyRoute::Edit::CopyAndUnselect:
        // The keyboard copies leave out the selection's last character.
        QGuiApplication::clipboard()->setText(selection.chopped(1));
        if (route.edit == KeyRoute::Edit::CopyAndUnselect)
            Comm1Screen->clearSelection();
        break;
    case KeyRoute::Edit::Unselect:
        Comm1Screen->clearSelection();
        break;
    default:
        break;
    }
}

void Terminal::Comm1_DblClick()
{
    if (!showModelOptions)
        return;
    {
        BusyPointer busy(m_session.prompts());
        showModelOptions();
    }
    PortClaim::giveToTerminal(Comm1());
}

void Terminal::keyPressEvent(QKeyEvent *event)
{
    KeyContext context;
    context.portOpen = Comm1().PortOpen();
    const KeyRoute route =
        routeKey({TypedKey::Place::Form, event->key(), event->modifiers(), event->text()}, context);
    if (route.passOn) {
        QMainWindow::keyPressEvent(event);
        return;
    }
    focusComm1();
    if (!route.send.isEmpty())
        ignoreErrors([&] { Comm1().Output(route.send); });
}
