#include "StartOutScreens.h"

#include "BusyPointer.h"
#include "CommControl.h"
#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSvgWidget>
#include <QVBoxLayout>

using namespace std::chrono_literals;

namespace {
// The modem is given time to drop the link before the port is reset.
constexpr auto kDisconnectWait = 500ms;

QLabel *wrapped(QAnyStringView name, const QString &text, QWidget *parent)
{
    auto *label = named<QLabel>(name, text, parent);
    label->setWordWrap(true);
    return label;
}

QPushButton *button(QAnyStringView name, const QString &caption, QWidget *parent, QLayout *layout)
{
    auto *b = named<QPushButton>(name, caption, parent);
    layout->addWidget(b);
    return b;
}

// A part of a panel: its button's name and caption, and what its box says. A part without a text
// opens the form of the T/E LED.
struct PanelPart
{
    const char *name;
    const char *caption;
    const char *text;
};

const PanelPart kIrPort{"cmdIRPort", "IR Port",
                        "The infra-red port configures the Varnel without the RS-232 connector, through "
                        "the infra-red adaptor P/N IR500."};
const PanelPart kSwitch{"cmdOnOff", "Off/On/Reset",
                        "A three-position switch: off, on, and a third momentary position that resets the "
                        "CPU. The Varnel also resets each time power comes on."};
const PanelPart kPowerLed{"cmdPowerLED", "Power LED", "Lit from the incoming +12 VDC."};
const PanelPart kRxLed{"cmdRXLED", "RX LED", "Carrier detect: lit while the receiver hears a carrier."};
const PanelPart kTxLed{"cmdTXLED", "TX LED", "Lit while the transmitter is on."};
const PanelPart kTeLed{"cmdTELED", "T/E LED", nullptr};
const PanelPart kAntenna{"cmdAntenna", "Antenna Connection", "The 50 ohm TNC connection for the antenna."};
const PanelPart kDips{"cmdDips", "Setup Dip Switches", "These switches configure the RS-232/422/485 port."};
const PanelPart kIo{"cmdIO", "I/O Connection", "The 25 pin serial port."};
const PanelPart kPhone{"cmdPhone", "Phone Modem Interface", "The 4-wire RJ11 connection of the phone modem."};
const PanelPart kPowerIn{"cmdPowerIn", "12 VDC Input Power Connection",
                         "The Molex connection for the 12 VDC supply."};

struct Panel
{
    const char *name;
    const char *title;
    const char *picture;
    QList<const PanelPart *> parts;
};
enum PanelKind { FrontOld, FrontNew, BackPanel };
const Panel kPanels[] = {
    {"Front",
     "Front Panel Diagram",
     ":/startout/pictures/front.svg",
     {&kIrPort, &kSwitch, &kPowerLed, &kRxLed, &kTxLed, &kTeLed}},
    {"FrontPanelS",
     "New Case Style Front Panel",
     ":/startout/pictures/frontnew.svg",
     {&kIrPort, &kPowerLed, &kRxLed, &kTxLed, &kTeLed, &kAntenna, &kDips, &kIo, &kPhone, &kPowerIn}},
    {"BackPicture",
     "Back Panel Diagram",
     ":/startout/pictures/back.svg",
     {&kAntenna, &kDips, &kIo, &kPhone, &kPowerIn}},
};

// A window of texts one under the other, with a button that closes it.
QDialog *textForm(QWidget *parent, const char *name, const QString &title, const QStringList &lines,
                  const char *picture = nullptr)
{
    auto *form = named<QDialog>(name, parent);
    form->setAttribute(Qt::WA_DeleteOnClose);
    form->setWindowTitle(title);
    auto *layout = new QVBoxLayout(form);
    if (picture)
        layout->addWidget(named<QSvgWidget>("picture", QLatin1String(picture), form));
    for (int i = 0; i < lines.size(); ++i)
        layout->addWidget(wrapped(QStringLiteral("lblText(%1)").arg(i), lines[i], form));
    QObject::connect(button("cmdOK", QStringLiteral("OK"), form, layout), &QPushButton::clicked, form,
                     &QDialog::close);
    return form;
}

void openTELED(QWidget *parent)
{
    textForm(
        parent, "TELED", QStringLiteral("T/E LED"),
        {QStringLiteral("Mode 1 - Off: the Varnel is not linked."),
         QStringLiteral("Mode 2 - On: the Varnel is linked, until the link ends or a framing error occurs."),
         QStringLiteral("Mode 3 - Blinking twice a second: auto connect mode."),
         QStringLiteral("Mode 4 - Blinking faster: an RS-232 framing error.")})
        ->show();
}

QDialog *panelForm(ModemSession &session, QWidget *parent, const Panel &panel)
{
    auto *form = named<QDialog>(panel.name, parent);
    form->setWindowTitle(QLatin1String(panel.title));
    auto *layout = new QVBoxLayout(form);
    auto *picture = named<QSvgWidget>("picture", QLatin1String(panel.picture), form);
    picture->setMinimumSize(picture->sizeHint());
    layout->addWidget(picture);
    auto *row = new QHBoxLayout;
    layout->addLayout(row);
    for (const PanelPart *part : panel.parts) {
        auto *b = button(part->name, QLatin1String(part->caption), form, row);
        QObject::connect(b, &QPushButton::clicked, form, [&session, form, part] {
            if (part->text)
                session.prompts().MsgBox(QLatin1String(part->text), MsgButtons::OkOnly, MsgIcon::None,
                                         QLatin1String(part->caption));
            else
                openTELED(form);
        });
    }
    QObject::connect(button("cmdClose", QStringLiteral("Close"), form, layout), &QPushButton::clicked, form,
                     &QDialog::close);
    return form;
}

void openConnections(QWidget *parent)
{
    textForm(parent, "Connections", QStringLiteral("Varnel Serial Connections"),
             {QStringLiteral("RS-232 (25 pin):  2 TXD in,  3 RXD out,  4 RTS in,  5 CTS out,  6 DSR out,  "
                             "7 Ground,  8 DCD out,  20 DTR in"),
              QStringLiteral("RS-422/485:  TX+,  TX-,  RX+,  RX-  and Ground; the pins of this interface are "
                             "given in the modem's installation manual."),
              QStringLiteral("For RS-485 two-wire use, join TX+ to RX+ and TX- to RX-.")})
        ->show();
}

// "Attach Antenna and Adjust Squelch": the checklist and the squelch screens of the connected modem.
void openAntenna(StartingOutMenu &menu, QWidget *parent)
{
    auto *form =
        textForm(parent, "Antenna", QStringLiteral("Attach Antenna and Adjust Squelch"),
                 {QStringLiteral("1. Attach the antennas and separate them at least 5 to 10 feet"),
                  QStringLiteral("2. Check to see if the RX light is out. If not:"),
                  QStringLiteral("A. Make sure no other radio is transmitting on the same frequency."),
                  QStringLiteral("B. Press Adjust Squelch and raise the squelch one step."),
                  QStringLiteral("C. Check the RX light again."),
                  QStringLiteral("3. If RX light is out press DONE button.")});
    auto *done = form->findChild<QPushButton *>(QStringLiteral("cmdOK"));
    done->setObjectName(QStringLiteral("cmdDone"));
    done->setText(QStringLiteral("Done"));
    auto *adjust = named<QPushButton>("cmdAdjust", QStringLiteral("Adjust Squelch"), form);
    form->layout()->addWidget(adjust);
    auto record = std::make_shared<ModemRecord>();
    QObject::connect(adjust, &QPushButton::clicked, form, [&menu, form, record] {
        ModemSession &session = menu.session();
        BusyPointer busy(session.prompts());
        if (!session.EnterCommandMode())
            return;
        readModemRecord(session, *record);
        if (menu.openSquelch)
            menu.openSquelch(*record, form);
    });
    form->show();
}
} // namespace

// The panel pictures live in this library's resources, which a static library has to register.
static void loadPictures()
{
    Q_INIT_RESOURCE(pictures);
}

GuideForm::GuideForm(StartingOutMenu &menu, const char *name, const QString &title) : m_menu(menu)
{
    setObjectName(QLatin1String(name));
    setWindowTitle(title);
    connect(this, &GuideForm::closed, &menu, &StartingOutMenu::showIfAlone);
}

void GuideForm::closeEvent(QCloseEvent *event)
{
    event->accept();
    hide();
    emit closed();
}

void GuideForm::goTo(QWidget *next)
{
    next->show();
    hide();
}

Power::Power(StartingOutMenu &menu)
    : GuideForm(menu, "Power", QStringLiteral("Step 1 - Installing External Power"))
{
    auto *grid = new QGridLayout(this);
    grid->addWidget(named<QLabel>("lblSelect", QStringLiteral("Please Select Model Number:"), this), 0, 0);
    cmboModel = named<QComboBox>("cmboModel", this);
    for (const PowerModel &model : powerModels())
        cmboModel->addItem(QLatin1String(model.entry));
    cmboModel->setCurrentIndex(-1);
    grid->addWidget(cmboModel, 0, 1);
    cmdFind = named<QPushButton>("cmdFind", QStringLiteral("Find Varnel"), this);
    grid->addWidget(cmdFind, 0, 2);
    const char *const names[] = {"optdefault", "optoption", "optThree"};
    for (int i = 0; i < 3; ++i) {
        options[size_t(i)] = named<QRadioButton>(names[i], this);
        options[size_t(i)]->hide();
        grid->addWidget(options[size_t(i)], 1 + i, 0);
        connect(options[size_t(i)], &QRadioButton::clicked, this, [this, i] {
            if (cmboModel->currentIndex() >= 0)
                showLabels(
                    choiceClicked(powerModels()[size_t(cmboModel->currentIndex())], i,
                                  {lblTXA->text(), lblRXA->text(), lblmodel2->text(), lblreqs->text()}));
        });
    }
    options[0]->setChecked(true);
    lblTXA = named<QLabel>("lblTXA", this);
    lblRXA = named<QLabel>("lblRXA", this);
    lblmodel2 = named<QLabel>("lblmodel2", this);
    lblreqs = named<QLabel>("lblreqs", this);
    grid->addWidget(lblTXA, 1, 1);
    grid->addWidget(lblRXA, 2, 1);
    grid->addWidget(named<QLabel>("lblInput", QStringLiteral("Input Voltage:"), this), 4, 0);
    grid->addWidget(lblreqs, 4, 1);
    grid->addWidget(named<QLabel>("lblConverter", QStringLiteral("Power Converter:"), this), 5, 0);
    grid->addWidget(lblmodel2, 5, 1, 1, 2);
    grid->addWidget(wrapped("lblNote",
                            QStringLiteral("Note: This section does NOT set the output power of the modem. "
                                           "Output Power listed for input power requirements only."),
                            this),
                    6, 0, 1, 3);
    cmdSolar = named<QPushButton>("cmdSolar", QStringLiteral("Calculate Solar Consumption"), this);
    txtsolar = named<QLineEdit>("txtsolar", this);
    txtsolar->setReadOnly(true);
    grid->addWidget(cmdSolar, 7, 0);
    grid->addWidget(txtsolar, 7, 1, 1, 2);
    cmdQuit = named<QPushButton>("cmdQuit", QStringLiteral("Quit"), this);
    cmdStep2 = named<QPushButton>("cmdStep2", QStringLiteral("Go To Step 2 >"), this);
    grid->addWidget(cmdQuit, 8, 0);
    grid->addWidget(cmdStep2, 8, 2);

    connect(cmboModel, &QComboBox::activated, this, &Power::cmboModel_Click);
    connect(cmdSolar, &QPushButton::clicked, this,
            [this] { txtsolar->setText(solarConsumption(lblTXA->text(), lblRXA->text())); });
    connect(cmdFind, &QPushButton::clicked, this,
            [this] { (new FindVarnel(m_menu.session(), *this))->show(); });
    connect(cmdQuit, &QPushButton::clicked, this, [this] { goTo(&m_menu); });
    connect(cmdStep2, &QPushButton::clicked, this, [this] {
        if (cmboModel->currentText() == kSpreadEntry)
            m_menu.ModelTag = kTagSpread;
        goTo(m_menu.familiarization());
    });
}

int Power::choice() const
{
    for (int i = 0; i < 3; ++i)
        if (options[size_t(i)]->isChecked())
            return i;
    return 0;
}

void Power::selectModel(const QString &entry)
{
    cmboModel->setCurrentText(entry);
    cmboModel_Click();
}

void Power::cmboModel_Click()
{
    if (cmboModel->currentIndex() < 0)
        return;
    const PowerModel &model = powerModels()[size_t(cmboModel->currentIndex())];
    m_menu.ModelTag = QLatin1String(model.tag);
    for (size_t i = 0; i < options.size(); ++i) {
        options[i]->setText(model.outputs[i] ? QLatin1String(model.outputs[i]) : QString());
        options[i]->setVisible(model.outputs[i] != nullptr);
    }
    showLabels(modelSelected(model, choice()));
}

void Power::showLabels(const PowerLabels &labels)
{
    lblTXA->setText(labels.tx);
    lblRXA->setText(labels.rx);
    lblmodel2->setText(labels.converter);
    lblreqs->setText(labels.reqs);
}

Familiarization::Familiarization(StartingOutMenu &menu)
    : GuideForm(menu, "Familiarization", QStringLiteral("Step 2 - Varnel Familiarization"))
{
    auto *layout = new QVBoxLayout(this);
    cmdFront = button("cmdFront", QStringLiteral("Front Panel Description"), this, layout);
    cmdBackPanel = button("cmdBackPanel", QStringLiteral("Back Panel Description"), this, layout);
    cmdTesting = button("cmdTesting", QStringLiteral("Testing Configuration"), this, layout);
    auto *row = new QHBoxLayout;
    layout->addLayout(row);
    cmdBack = button("cmdBack", QStringLiteral("< Go Back"), this, row);
    cmdStep3 = button("cmdStep3", QStringLiteral("Go to Step 3 >"), this, row);
    connect(cmdFront, &QPushButton::clicked, this, [this] { m_menu.frontPanel()->show(); });
    connect(cmdBackPanel, &QPushButton::clicked, this, [this] { m_menu.backPicture()->show(); });
    connect(cmdTesting, &QPushButton::clicked, this, [this] { m_menu.testingDiag()->show(); });
    connect(cmdBack, &QPushButton::clicked, this, [this] { goTo(m_menu.power()); });
    connect(cmdStep3, &QPushButton::clicked, this, [this] { goTo(m_menu.serial()); });
}

Serial::Serial(StartingOutMenu &menu)
    : GuideForm(menu, "Serial", QStringLiteral("Step 3 - Serial Connection"))
{
    auto *grid = new QGridLayout(this);
    const QString lines[] = {
        QStringLiteral("1.  Attach RS232/422/485 Cable "),
        QStringLiteral("2.  Configure Computer's Serial Port"),
        QStringLiteral("3.  Set Varnel Serial Port to           Match Computer's Serial Port"),
        QStringLiteral("4.  Test Serial Communications")};
    const char *const names[] = {"cmdCable", "cmdPort", "cmdSwitches", "cmdTest"};
    const QString captions[] = {QStringLiteral("Display Cable Diagram"), QStringLiteral("Configure Port"),
                                QStringLiteral("Set Switches"), QStringLiteral("Test Varnel")};
    QPushButton **buttons[] = {&cmdCable, &cmdPort, &cmdSwitches, &cmdTest};
    for (int i = 0; i < 4; ++i) {
        grid->addWidget(wrapped(QStringLiteral("lblStep(%1)").arg(i + 1), lines[i], this), i, 0);
        *buttons[i] = named<QPushButton>(names[i], captions[i], this);
        grid->addWidget(*buttons[i], i, 1);
    }
    grid->addWidget(
        wrapped("lblNote",
                QStringLiteral("Note: Connection to the Varnel with a serial cable is required for "
                               "this testing.  If you are using the IR Dongle, skip this section "
                               "and press Go to Step 4."),
                this),
        4, 0, 1, 2);
    cmdBack = named<QPushButton>("cmdBack", QStringLiteral("< Go Back"), this);
    cmdStep4 = named<QPushButton>("cmdStep4", QStringLiteral("Go to Step 4 >"), this);
    grid->addWidget(cmdBack, 5, 0);
    grid->addWidget(cmdStep4, 5, 1);
    connect(cmdCable, &QPushButton::clicked, this, [this] { openConnections(this); });
    connect(cmdPort, &QPushButton::clicked, this, [this] {
        if (m_menu.configurePort)
            m_menu.configurePort(this);
    });
    connect(cmdSwitches, &QPushButton::clicked, this, [this] {
        if (m_menu.openSerialRate)
            m_menu.openSerialRate(this);
    });
    connect(cmdTest, &QPushButton::clicked, this,
            [this] { (new SmallDemo(m_menu.session(), this))->show(); });
    connect(cmdBack, &QPushButton::clicked, this, [this] { goTo(m_menu.familiarization()); });
    connect(cmdStep4, &QPushButton::clicked, this, [this] {
        m_menu.step4()->setExpress(false);
        goTo(m_menu.step4());
    });
}

Step4::Step4(StartingOutMenu &menu) : GuideForm(menu, "Step4", QString())
{
    auto *layout = new QVBoxLayout(this);
    cmdFreq = button("cmdFreq", QStringLiteral("Set Frequency"), this, layout);
    cmdSquelch = button("cmdSquelch", QStringLiteral("Set Squelch/Antenna"), this, layout);
    cmdAddress = button("cmdAddress", QStringLiteral("Set Address"), this, layout);
    auto *row = new QHBoxLayout;
    layout->addLayout(row);
    cmdBack = button("cmdBack", QStringLiteral("< Go Back"), this, row);
    cmdComplete = button("cmdComplete", QString(), this, row);
    setExpress(false);
    connect(cmdFreq, &QPushButton::clicked, this, &Step4::cmdFreq_Click);
    connect(cmdSquelch, &QPushButton::clicked, this, [this] { openAntenna(m_menu, this); });
    connect(cmdAddress, &QPushButton::clicked, this, [this] { SetAddress(m_menu.session()); });
    connect(cmdBack, &QPushButton::clicked, this, [this] { goTo(m_menu.serial()); });
    connect(cmdComplete, &QPushButton::clicked, &m_menu, &StartingOutMenu::completeSetup);
}

void Step4::setExpress(bool express)
{
    setWindowTitle(express ? QStringLiteral("Express Setup")
                           : QStringLiteral("Step 4 - Varnel Setup Parameters"));
    cmdBack->setVisible(!express);
    cmdComplete->setText(express ? QStringLiteral("Complete Express Setup")
                                 : QStringLiteral("Complete Setup"));
}

void Step4::cmdFreq_Click()
{
    ModemSession &session = m_menu.session();
    if (!session.EnterCommandMode())
        return;
    BusyPointer busy(session.prompts());
    readModemRecord(session, m_record);
    if (m_menu.openFrequency)
        m_menu.openFrequency(m_record, this);
}

StartingOutMenu::StartingOutMenu(ModemSession &session, QWidget *parent)
    : QWidget(parent, Qt::Window), m_session(session), m_port(session.Comm1(), PortClaim::Then::Terminal)
{
    loadPictures();
    setObjectName(QStringLiteral("StartingOutMenu"));
    setWindowTitle(QStringLiteral("Starting Out"));
    auto *grid = new QGridLayout(this);
    grid->addWidget(
        wrapped("lblWelcome",
                QStringLiteral("Welcome to the Varnel Starting Out Menu.  Please select one of the "
                               "following buttons to begin the setup of your Varnel Wireless Modem."),
                this),
        0, 0, 1, 2);
    const char *const names[] = {"cmdGuide", "cmdExpress", "cmdTestComm"};
    const char *const labels[] = {"lblGuide", "lblExpress", "lblTestComm"};
    const QString captions[] = {QStringLiteral("Varnel Setup Guide"), QStringLiteral("Express Setup "),
                                QStringLiteral("Test Communication")};
    const QString hints[] = {QStringLiteral("Press Here For First Varnel Use"),
                             QStringLiteral("Press Here For Express Setup"),
                             QStringLiteral("Press Here To Test Communication")};
    QPushButton **buttons[] = {&cmdGuide, &cmdExpress, &cmdTestComm};
    for (int i = 0; i < 3; ++i) {
        *buttons[i] = named<QPushButton>(names[i], captions[i], this);
        grid->addWidget(*buttons[i], 1 + i, 0);
        grid->addWidget(named<QLabel>(labels[i], hints[i], this), 1 + i, 1);
    }
    grid->addWidget(
        wrapped("lblUnfamiliar",
                QStringLiteral("If you are unfamiliar with the Varnel Products, press Varnel Setup "
                               "Guide for a step-by-step configuration."),
                this),
        4, 0, 1, 2);
    cmdExit = named<QPushButton>("cmdExit", QStringLiteral("Exit to Main Menu"), this);
    grid->addWidget(cmdExit, 5, 1);
    power();
    familiarization();
    serial();
    step4();
    connect(cmdGuide, &QPushButton::clicked, this, [this] {
        power()->show();
        hide();
    });
    connect(cmdExpress, &QPushButton::clicked, this, [this] {
        PortClaim::takeForProgram(m_session.Comm1());
        step4()->setExpress(true);
        step4()->show();
        hide();
    });
    connect(cmdTestComm, &QPushButton::clicked, this,
            [this] { (new Communications(m_session, this))->show(); });
    connect(cmdExit, &QPushButton::clicked, this, &QWidget::close);
}

template <typename Form> Form *StartingOutMenu::load(QPointer<Form> &form)
{
    if (!form)
        form = new Form(*this);
    return form;
}

Power *StartingOutMenu::power()
{
    return load(m_power);
}

Familiarization *StartingOutMenu::familiarization()
{
    return load(m_familiarization);
}

Serial *StartingOutMenu::serial()
{
    return load(m_serial);
}

Step4 *StartingOutMenu::step4()
{
    return load(m_step4);
}

QWidget *StartingOutMenu::panel(QPointer<QWidget> &form, int kind)
{
    if (!form)
        form = panelForm(m_session, nullptr, kPanels[kind]);
    return form;
}

QWidget *StartingOutMenu::frontPanel()
{
    if (ModelTag == kTagCombine || ModelTag == kTagSpread)
        return panel(m_frontPanelS, FrontNew);
    return panel(m_front, FrontOld);
}

QWidget *StartingOutMenu::backPicture()
{
    return panel(m_backPicture, BackPanel);
}

QWidget *StartingOutMenu::testingDiag()
{
    if (!m_testingDiag)
        m_testingDiag = textForm(
            nullptr, "TestingDiag", QStringLiteral("Testing Configuration"),
            {QStringLiteral("Bench testing needs two Varnels set to the same frequency, each with "
                            "its own antenna and 12 VDC supply, and a computer on the serial port of "
                            "one of them."),
             QStringLiteral("Keep the antennas at least 5 feet apart so that the receivers are not "
                            "overloaded.")},
            ":/startout/pictures/testing.svg");
    return m_testingDiag;
}

void StartingOutMenu::completeSetup()
{
    for (QWidget *form : std::initializer_list<QWidget *>{m_step4, m_serial, m_familiarization, m_power})
        if (form) {
            form->hide();
            form->deleteLater();
        }
    show();
}

void StartingOutMenu::showIfAlone()
{
    // While Starting Out is open, every window on screen is one of its own.
    for (const QWidget *window : QApplication::topLevelWidgets())
        if (window->isVisible())
            return;
    show();
}

void StartingOutMenu::retakePort()
{
    PortClaim::takeForProgram(m_session.Comm1());
}

StartingOutMenu::~StartingOutMenu()
{
    unloadForms();
}

void StartingOutMenu::unloadForms()
{
    for (QWidget *form :
         std::initializer_list<QWidget *>{m_familiarization, m_serial, m_step4, m_power, m_backPicture,
                                          m_front, m_frontPanelS, m_testingDiag})
        delete form;
}

void StartingOutMenu::closeEvent(QCloseEvent *event)
{
    unloadForms();
    m_port.release();
    event->accept();
    emit unloaded();
}

Comm2View::Comm2View(ModemSession &session, QWidget *parent)
    : QPlainTextEdit(parent), m_share(session, [this](const QByteArray &bytes) {
          moveCursor(QTextCursor::End);
          insertPlainText(QString::fromLatin1(QByteArray(bytes).replace("\r\n", "\n").replace('\r', '\n')));
      })
{
    setObjectName(QStringLiteral("Comm2"));
    setReadOnly(true);
}

void Comm2View::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QByteArray bytes = enter ? QByteArrayLiteral("\r") : event->text().toLatin1();
    if (bytes.isEmpty())
        QPlainTextEdit::keyPressEvent(event);
    else
        m_share.send(bytes);
}

PortTest::PortTest(ModemSession &session, const char *name, const QString &title, const QString &text,
                   QWidget *parent)
    : QDialog(parent), m_session(session)
{
    setObjectName(QLatin1String(name));
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    lblInstructions = wrapped("lblInstructions", text, this);
    layout->addWidget(lblInstructions);
    Comm2 = new Comm2View(session, this);
    layout->addWidget(Comm2);
    cmdDone = named<QPushButton>("cmdDone", QStringLiteral("Done"), this);
    layout->addWidget(cmdDone);
}

void PortTest::closeEvent(QCloseEvent *event)
{
    Comm2->share().end(true);
    QDialog::closeEvent(event);
}

SmallDemo::SmallDemo(ModemSession &session, QWidget *parent)
    : PortTest(session, "SmallDemo", QStringLiteral("Test Serial Communications"),
               QStringLiteral("Press the Test Varnel button on the bottom of the window.  If you have "
                              "configured the RS-232C port correctly you will receive a welcome message on "
                              "your screen.\nThe third line of the welcome message gives the software "
                              "version of the Varnel."),
               parent)
{
    cmdTest = named<QPushButton>("cmdTest", QStringLiteral("Test Varnel"), this);
    layout()->addWidget(cmdTest);
    connect(cmdTest, &QPushButton::clicked, this, [this] { Comm2->share().send(QByteArrayLiteral("fa\r")); });
    connect(cmdDone, &QPushButton::clicked, this, &QDialog::close);
}

PCVNLtest::PCVNLtest(ModemSession &session, bool loopTest, QWidget *parent)
    : PortTest(session, "PCVNLtest",
               loopTest ? QStringLiteral("One PC/Two Varnel Test") : QStringLiteral("Two PC/Two Varnel Test"),
               loopTest
                   ? QStringLiteral("Connect one Varnel to this computer and keep the antennas of the two "
                                    "Varnels at least 5 ft apart.  Type CONNect ra,ca and press Enter, "
                                    "where ra is the address of the remote Varnel and ca the address of "
                                    "this one.  What you type then comes back from the remote Varnel.")
                   : QStringLiteral("Connect one Varnel to each computer.  On one computer type CONNect xxx "
                                    "and press Enter, where xxx is the address of the other Varnel.  The "
                                    "other computer uses Terminal Emulation from the main menu.  What you "
                                    "type is sent when you press Enter."),
               parent)
{
    Comm2->share().send(QByteArrayLiteral("fa\r"));
    connect(cmdDone, &QPushButton::clicked, this, [this] {
        Comm2->share().send(QByteArrayLiteral("disc\r"));
        m_session.MsDelay(kDisconnectWait);
        close();
    });
}

Communications::Communications(ModemSession &session, QWidget *parent) : QDialog(parent), m_session(session)
{
    setObjectName(QStringLiteral("Communications"));
    setWindowTitle(QStringLiteral("Test Radio Communications"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(
        wrapped("lblInfo",
                QStringLiteral("This test establishes a virtual link between two Varnels.  Choose "
                               "one of the two test configurations and press Begin Test."),
                this));
    optlooptest = named<QRadioButton>("optlooptest", QStringLiteral("One computer and two Varnels"), this);
    optcommlink = named<QRadioButton>("optcommlink", QStringLiteral("Two computers and two Varnels"), this);
    optlooptest->setChecked(true);
    layout->addWidget(optlooptest);
    layout->addWidget(optcommlink);
    auto *row = new QHBoxLayout;
    layout->addLayout(row);
    cmdBegin = button("cmdBegin", QStringLiteral("Begin Test"), this, row);
    cmdCancel = button("cmdCancel", QStringLiteral("Cancel"), this, row);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::close);
    connect(cmdBegin, &QPushButton::clicked, this, [this] {
        if (!m_session.EnterCommandMode())
            return;
        test = new PCVNLtest(m_session, optlooptest->isChecked(), parentWidget());
        test->show();
        close();
    });
}

FindVarnel::FindVarnel(ModemSession &session, Power &power) : QDialog(&power)
{
    setObjectName(QStringLiteral("FindVarnel"));
    setWindowTitle(QStringLiteral("Find Connected Varnel Model"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(
        wrapped("lblExplain",
                QStringLiteral("Set the RS-232 setup switches on the Varnel to the following "
                               "configuration, reset the modem and press OK when ready to test..."),
                this));
    layout->addWidget(named<QLabel>("lblTwo", QStringLiteral("2 Switches:"), this));
    layout->addWidget(named<QLabel>("lblTwoOff", QStringLiteral("Both Switches  = OFF (Down)"), this));
    layout->addWidget(named<QLabel>("lblEight", QStringLiteral("8 Switches:"), this));
    layout->addWidget(named<QLabel>("lblSixOn", QStringLiteral("Switch #6 ON = (Up)"), this));
    layout->addWidget(named<QLabel>("lblOthersOff", QStringLiteral("All Other Switches OFF = (Down)"), this));
    chkDongle = named<QCheckBox>("chkDongle", QStringLiteral("Check Here If Using Infared Dongle"), this);
    layout->addWidget(chkDongle);
    cmdOK = named<QPushButton>("cmdOK", QStringLiteral("OK"), this);
    layout->addWidget(cmdOK);
    connect(cmdOK, &QPushButton::clicked, this, [this, &session, &power] {
        const QString entry = detectModelEntry(session, chkDongle->isChecked());
        if (entry.isEmpty())
            return;
        power.selectModel(entry);
        close();
    });
}
