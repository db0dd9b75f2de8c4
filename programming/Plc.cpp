#include "Plc.h"

#include "ModemSession.h"
#include "Named.h"
#include "PlcSetup.h"
#include "Prompts.h"
#include "Routing.h"
#include "SetAddress.h"
#include "SetupForms.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
QLabel *wrapped(const char *name, const QString &text, QWidget *parent)
{
    auto *label = named<QLabel>(name, text, parent);
    label->setWordWrap(true);
    return label;
}

// A Yes and a No option in a frame's layout.
std::array<QRadioButton *, 2> yesNo(const char *name, QGroupBox *frame, QBoxLayout *layout)
{
    std::array<QRadioButton *, 2> options{};
    auto *row = new QHBoxLayout;
    for (int i = 0; i < 2; ++i)
        row->addWidget(options[size_t(i)] =
                           named<QRadioButton>(QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(i),
                                               i ? QStringLiteral("No") : QStringLiteral("Yes"), frame));
    layout->addLayout(row);
    return options;
}
} // namespace

PLC::PLC(ModemSession &session, AddCommandHook addCommand, QWidget *parent)
    : QWidget(parent, Qt::Window), cmbPLC(named<QComboBox>("cmbPLC", this)),
      cmdContinue(named<QPushButton>("cmdContinue", QStringLiteral("Continue"), this)),
      cmdexitplc(named<QPushButton>("cmdexitplc", QStringLiteral("Exit PLCs"), this)), m_session(session),
      m_addCommand(std::move(addCommand))
{
    setObjectName(QStringLiteral("PLC"));
    setWindowTitle(QStringLiteral("PLC Configuration"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *frame = named<QGroupBox>("Frame1", QStringLiteral("PLC Instructions"), this);
    lblPLCframe =
        wrapped("lblPLCframe", QStringLiteral("Select your PLC manufacturer from the list below."), frame);
    (new QVBoxLayout(frame))->addWidget(lblPLCframe);
    for (const PlcMaker &maker : plcMakers())
        cmbPLC->addItem(QLatin1String(maker.listText));
    cmbPLC->setCurrentIndex(-1);

    auto *layout = new QGridLayout(this);
    layout->addWidget(
        named<QLabel>("lblHeading", QStringLiteral("Control System Devices and Protocols"), this), 0, 0, 1, 2,
        Qt::AlignHCenter);
    layout->addWidget(frame, 1, 0, 1, 2);
    layout->addWidget(named<QLabel>("lblPLC", QStringLiteral("Select Your PLC manufacturer:"), this), 2, 0);
    layout->addWidget(cmbPLC, 2, 1);
    layout->addWidget(cmdContinue, 3, 0);
    layout->addWidget(cmdexitplc, 3, 1);

    connect(cmbPLC, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (index >= 0)
            lblPLCframe->setText(plcMakers()[size_t(index)].description);
    });
    connect(cmdContinue, &QPushButton::clicked, this, &PLC::cmdContinue_Click);
    connect(cmdexitplc, &QPushButton::clicked, this, &QWidget::close);
}

void PLC::cmdContinue_Click()
{
    if (const int index = cmbPLC->currentIndex(); index >= 0) {
        const PlcMaker &maker = plcMakers()[size_t(index)];
        m_session.ProgMode = QLatin1String(maker.key);
        QWidget *next = maker.next == PlcForm::SetAddress
                            ? static_cast<QWidget *>(new SetAddress(m_session, m_addCommand, parentWidget()))
                            : new PLCDescript(m_session, m_addCommand, parentWidget());
        next->show();
    }
    close();
}

PLCDescript::PLCDescript(ModemSession &session, AddCommandHook addCommand, QWidget *parent)
    : QWidget(parent, Qt::Window), lblproduct(wrapped("lblproduct", {}, this)),
      frmAdd(named<QGroupBox>("frmAdd", QStringLiteral("Step 2 - Addressing"), this)),
      txtAdd(named<QLineEdit>("txtAdd", frmAdd)),
      lblDes(named<QLabel>("lblDes", QStringLiteral("Destination Varnel/PLC Address:"), frmAdd)),
      txtDes(named<QLineEdit>("txtDes", frmAdd)),
      frmRepeater(named<QGroupBox>("frmRepeater", QStringLiteral("Step 3 - Are Repeaters Needed?"), this)),
      lblRoute(
          named<QLabel>("lblRoute", QStringLiteral("Repeater Route to Master Varnel/PLC:"), frmRepeater)),
      cmdExample(named<QPushButton>("cmdExample", QStringLiteral("Example"), frmRepeater)),
      frmPLC(named<QGroupBox>("frmPLC", QStringLiteral("Step 4 - PLC Information"), this)),
      cboProtocol(named<QComboBox>("cboProtocol", frmPLC)),
      lblError(named<QLabel>("lblError", QStringLiteral("Type of Error Detection:"), frmPLC)),
      cboError(named<QComboBox>("cboError", frmPLC)),
      cmdCL(named<QPushButton>("cmdCL", QStringLiteral("Add Configuration to      Command List"), this)),
      cmdcancel8(named<QPushButton>("cmdcancel8", QStringLiteral("Cancel"), this)), m_session(session),
      m_addCommand(std::move(addCommand)), m_key(session.ProgMode)
{
    setObjectName(QStringLiteral("PLCDescript"));
    setAttribute(Qt::WA_DeleteOnClose);

    auto *step1 =
        named<QGroupBox>("frmMaster", QStringLiteral("Step 1 - Master/Remote Configuration "), this);
    auto *masterLayout = new QVBoxLayout(step1);
    optPLCMast = yesNo("optPLCMast", step1, masterLayout);
    masterLayout->addWidget(
        wrapped("lblMaster",
                QStringLiteral("If the PLC is initiating communication to more than one PLC, "
                               "please enter \"YES\".") +
                    QStringLiteral("  The Varnel will then read the destination address in the "
                                   "packet and send the PLC data to the corresponding Varnel."),
                step1));

    auto *addLayout = new QGridLayout(frmAdd);
    addLayout->addWidget(named<QLabel>("lblAdd", QStringLiteral("Connected Varnel Address:"), frmAdd), 0, 0);
    addLayout->addWidget(txtAdd, 0, 1);
    addLayout->addWidget(lblDes, 1, 0);
    addLayout->addWidget(txtDes, 1, 1);
    addLayout->addWidget(
        wrapped("lblNote",
                QStringLiteral("Note: The Varnel and PLC Address Should be the Same.  Varnel "
                               "Addresses in Decimal."),
                frmAdd),
        2, 0, 1, 2);

    auto *repeaterLayout = new QVBoxLayout(frmRepeater);
    optRep = yesNo("optRep", frmRepeater, repeaterLayout);
    repeaterLayout->addWidget(lblRoute);
    auto *fields = new QGridLayout;
    const QString captions[] = {QStringLiteral("1st Repeater"), QStringLiteral("2nd Repeater"),
                                QStringLiteral("3rd Repeater")};
    for (int i = 0; i < 3; ++i) {
        fields->addWidget(lblRep[size_t(i)] =
                              named<QLabel>(QStringLiteral("lblRep(%1)").arg(i), captions[i], frmRepeater),
                          0, i);
        fields->addWidget(
            txtRep[size_t(i)] = named<QLineEdit>(QStringLiteral("txtRep(%1)").arg(i), frmRepeater), 1, i);
    }
    repeaterLayout->addLayout(fields);
    repeaterLayout->addWidget(cmdExample);

    auto *plcLayout = new QGridLayout(frmPLC);
    plcLayout->addWidget(named<QLabel>("lblProtocol", QStringLiteral("Please select PLC protocol:"), frmPLC),
                         0, 0);
    plcLayout->addWidget(cboProtocol, 0, 1);
    plcLayout->addWidget(lblError, 1, 0);
    plcLayout->addWidget(cboError, 1, 1);

    auto *layout = new QGridLayout(this);
    layout->addWidget(lblproduct, 0, 0, 1, 2);
    layout->addWidget(step1, 1, 0);
    layout->addWidget(frmAdd, 1, 1);
    layout->addWidget(frmRepeater, 2, 0);
    layout->addWidget(frmPLC, 2, 1);
    layout->addWidget(cmdCL, 3, 0);
    layout->addWidget(cmdcancel8, 3, 1);

    if (const PlcStepForm *form = plcStepForm(m_key)) {
        setWindowTitle(form->title);
        lblproduct->setText(form->welcome);
        cboProtocol->addItems(form->protocols);
        cboError->addItems(form->errorChecks);
    }
    cboProtocol->setCurrentIndex(-1);
    cboError->setCurrentIndex(-1);
    // The other steps wait for the answer to the first.
    for (QWidget *frame : {static_cast<QWidget *>(frmAdd), static_cast<QWidget *>(frmRepeater),
                           static_cast<QWidget *>(frmPLC)})
        frame->hide();
    lblError->hide();
    cboError->hide();

    connect(optPLCMast[0], &QRadioButton::clicked, this, [this] { optPLCMast_Click(true); });
    connect(optPLCMast[1], &QRadioButton::clicked, this, [this] { optPLCMast_Click(false); });
    connect(optRep[0], &QRadioButton::clicked, this, [this] { optRep_Click(true); });
    connect(optRep[1], &QRadioButton::clicked, this, [this] { optRep_Click(false); });
    connect(cmdExample, &QPushButton::clicked, this, [this] { (new RoutingExample(this))->show(); });
    connect(cmdCL, &QPushButton::clicked, this, &PLCDescript::cmdCL_Click);
    connect(cmdcancel8, &QPushButton::clicked, this, &QWidget::close);
}

void PLCDescript::optPLCMast_Click(bool master)
{
    for (QWidget *frame : {static_cast<QWidget *>(frmAdd), static_cast<QWidget *>(frmRepeater),
                           static_cast<QWidget *>(frmPLC)})
        frame->show();
    // A master reads the destination from each packet.
    lblDes->setVisible(!master);
    txtDes->setVisible(!master);
    m_master = master;
    const bool allenBradley = m_key == u"AB";
    lblError->setVisible(allenBradley);
    cboError->setVisible(allenBradley);
    if (master && m_key == u"SquareD")
        (new SquareD(m_addCommand, this))->show();
}

void PLCDescript::optRep_Click(bool needed)
{
    if (!needed) {
        showRepeaters(false);
        return;
    }
    if (!m_master)
        showRepeaters(true);
    // A master's repeaters are its routes to every remote; Square D routes by its own addresses.
    else if (m_key != u"SquareD")
        (new Routing(m_session, m_addCommand, this))->show();
}

void PLCDescript::showRepeaters(bool shown)
{
    for (size_t i = 0; i < txtRep.size(); ++i) {
        txtRep[i]->setVisible(shown);
        lblRep[i]->setVisible(shown);
    }
    cmdExample->setVisible(shown);
    lblRoute->setVisible(shown);
}

void PLCDescript::cmdCL_Click()
{
    const PlcAnswers answers{m_master,
                             txtAdd->text(),
                             txtDes->text(),
                             fieldTexts(txtRep),
                             cboProtocol->currentText(),
                             cboError->currentText()};
    if (runSetupStep(
            m_session.prompts(), [this, &answers] { return plcProgram(m_key, answers); }, m_addCommand,
            txtRep))
        close();
}

SquareD::SquareD(AddCommandHook addCommand, QWidget *parent)
    : QWidget(parent, Qt::Window), txtFence(named<QLineEdit>("txtFence", QStringLiteral("1"), this)),
      Command1(named<QPushButton>("Command1", QStringLiteral("Add Fence"), this)),
      m_addCommand(std::move(addCommand))
{
    setObjectName(QStringLiteral("SquareD"));
    setWindowTitle(QStringLiteral("Square-D Addressing"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(
        wrapped("lblRouting",
                QStringLiteral("The Varnel decides where to send each message by the route addresses "
                               "of the Square D protocol."),
                this));
    layout->addWidget(
        wrapped("lblFenceHelp",
                QStringLiteral("The address fence tells which port addresses are NIM or SY/LINK "
                               "addresses and which are Varnel addresses.  Port addresses above the "
                               "fence are for the Varnels, those below it for NIM or SY/LINK.  ") +
                    QStringLiteral("For example... if the fence value = 10, NIMs and SY/LINK require "
                                   "0-9 for the lower ports and 100-109 for the upper ones"),
                this));
    layout->addWidget(
        wrapped("lblNoNim", QStringLiteral("Between controllers with no NIMs the fence should be 0."), this));
    layout->addWidget(named<QLabel>("lblFence", QStringLiteral("Enter Address Fence:"), this));
    layout->addWidget(txtFence);
    layout->addWidget(Command1, 0, Qt::AlignHCenter);

    connect(Command1, &QPushButton::clicked, this, [this] {
        m_addCommand(squareDFenceLine(txtFence->text()));
        close();
    });
}
