#include "Transparent.h"

#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"
#include "SetAddress.h"
#include "SetupForms.h"
#include "TransparentSetup.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
const QString kChoiceTexts[] = {
    QStringLiteral("Auto Connect Transparent is for a dedicated point to point application.  The Varnel "
                   "starts the radio link by itself as soon as data comes in on its RS-232/422/485 port."),
    QStringLiteral("Auto Connect Transparent Global is for point to multi-point networks of devices that "
                   "have their own addressing protocol.  The Varnel packet addressing and acknowledge "
                   "protocol is defeated and all Varnels receive the transmission, while the 32 bit CRC "
                   "check on received data stays enabled.  One program serves all Varnels; they differ "
                   "only in their unit addresses."),
    QStringLiteral("This mode allows the user to design ") +
        QStringLiteral("his/her own transparent setup parameters."),
};

// The help of each control of the custom form.
struct Help
{
    const char *control;
    const char *text;
};
const Help kCustomHelp[] = {
    {"txtadd5", "The unit address of the connected Varnel.  The value can be from 1 to 254."},
    {"txtsetc",
     "The address the Varnel connects to when data comes in.  GLOBAL = 255  50 = connect to 50.  "
     "100,50 = connect to 50 using 100 as a repeater.  200,100,50 = connect to 50 using 200 and 100 "
     "as repeaters."},
    {"cboTermc", "When ON, the Varnel sends a packet after the termination timer has run out with no new "
                 "character.  The value can be from 10 to 255 ms."},
    {"txttermt", "The time without a new character after which the packet is sent.  The value can be from 10 "
                 "to 65535 ms."},
    {"txtchrs", "The character that sends the packet at once, as its decimal code from 0 to 255."},
    {"txtpacket", "The number of characters that fills a packet, from 1 to 2000."},
    {"optFlow(0)", "Software flow control: adds XSF ON to the program."},
    {"optFlow(1)", "Hardware flow control: adds XSF OFF and XHF ON to the program."},
    {"optFlow(2)", "No flow control: adds XSF OFF and XHF OFF to the program."},
    {"Check1(0)", "Checked adds DTR ON to the program."},
    {"Check1(1)", "Checked adds DISACK ON to the program."},
    {"Check1(2)", "Auto line feed is on in the Varnel; unchecked adds AUTOLF OFF to the program."},
    {"Check1(3)", "Echo is on in the Varnel; unchecked adds ECHO OFF to the program."},
    {"Check1(4)", "Edit is on in the Varnel; unchecked adds EDIT OFF to the program."},
    {"Check1(5)", "The prompt is on in the Varnel; unchecked adds PROMPT OFF to the program."},
    {"Check1(6)", "Typsys is on in the Varnel; unchecked adds TYPSYS OFF to the program."},
};

QLabel *caption(const char *name, const QString &text, QWidget *parent)
{
    return named<QLabel>(name, text, parent);
}
} // namespace

Transparent::Transparent(ModemSession &session, AddCommandHook addCommand, QWidget *parent)
    : QWidget(parent, Qt::Window), lblDescription(named<QLabel>("lblDescription", this)),
      cmdOKtrans(named<QPushButton>("cmdOKtrans", QStringLiteral("OK"), this)),
      cmdtranscancel(named<QPushButton>("cmdtranscancel", QStringLiteral("Cancel"), this)),
      m_session(session), m_addCommand(std::move(addCommand))
{
    setObjectName(QStringLiteral("Transparent"));
    setWindowTitle(QStringLiteral("Transparent Mode"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *frame = named<QGroupBox>("Frame1", QStringLiteral("Select One of The Following Choices"), this);
    auto *choices = new QVBoxLayout(frame);
    const QString captions[] = {QStringLiteral("Auto Connect Transparent"),
                                QStringLiteral("Auto Connect Transparent Global"),
                                QStringLiteral("Write Custom Program")};
    for (int i = 0; i < 3; ++i) {
        choices->addWidget(opttrans[size_t(i)] = named<QRadioButton>(QStringLiteral("opttrans(%1)").arg(i),
                                                                     captions[i], frame));
        connect(opttrans[size_t(i)], &QRadioButton::clicked, this,
                [this, i] { lblDescription->setText(kChoiceTexts[i]); });
    }
    lblDescription->setWordWrap(true);
    lblDescription->setText(QStringLiteral("The Transparent Mode is a generic mode ") +
                            QStringLiteral("used to send data between Varnels.  Use this mode if a ") +
                            QStringLiteral("software driver is not available for your mode of operation."));
    auto *layout = new QGridLayout(this);
    layout->addWidget(frame, 0, 0, 1, 2);
    layout->addWidget(lblDescription, 1, 0, 1, 2);
    layout->addWidget(cmdOKtrans, 2, 0);
    layout->addWidget(cmdtranscancel, 2, 1);

    connect(cmdOKtrans, &QPushButton::clicked, this, &Transparent::cmdOKtrans_Click);
    connect(cmdtranscancel, &QPushButton::clicked, this, &QWidget::close);
}

void Transparent::cmdOKtrans_Click()
{
    QWidget *next = nullptr;
    if (opttrans[2]->isChecked()) {
        next = new Custom(m_session, m_addCommand, parentWidget());
        next->setWindowTitle(QStringLiteral("Custom Program"));
    } else if (opttrans[0]->isChecked() || opttrans[1]->isChecked()) {
        const bool global = opttrans[1]->isChecked();
        m_session.ProgMode = global ? kAutoglobalMode : kAutoconnMode;
        next = new SetAddress(m_session, m_addCommand, parentWidget());
        next->setWindowTitle(global ? QStringLiteral("Auto Connect Transparent Global")
                                    : QStringLiteral("Auto Connect Transparent"));
    } else {
        m_session.prompts().MsgBox(QStringLiteral("Please Select Type of Transparent Programming"));
        return;
    }
    next->show();
    close();
}

Custom::Custom(ModemSession &session, AddCommandHook addCommand, QWidget *parent)
    : QWidget(parent, Qt::Window), txtadd5(named<QLineEdit>("txtadd5", this)),
      txtsetc(named<QLineEdit>("txtsetc", this)), cboTermc(named<QComboBox>("cboTermc", this)),
      txttermt(named<QLineEdit>("txttermt", QStringLiteral("10"), this)),
      txtchrs(named<QLineEdit>("txtchrs", QStringLiteral("13"), this)),
      txtpacket(named<QLineEdit>("txtpacket", QStringLiteral("2000"), this)),
      lblDes(named<QLabel>("lblDes", this)),
      cmdadding(named<QPushButton>("cmdadding", QStringLiteral("       Add to Command List"), this)),
      cmdcustomcanc(named<QPushButton>("cmdcustomcanc", QStringLiteral("Cancel"), this)), m_session(session),
      m_addCommand(std::move(addCommand))
{
    setObjectName(QStringLiteral("Custom"));
    setWindowTitle(QStringLiteral("Custom Transparent Configuration"));
    setAttribute(Qt::WA_DeleteOnClose);
    cboTermc->addItems({QStringLiteral("OFF"), QStringLiteral("ON")});

    auto *frame =
        named<QGroupBox>("Frame1", QStringLiteral("Please Select Commands for Your Application"), this);
    auto *grid = new QGridLayout(frame);
    const std::pair<const char *, QWidget *> fields[] = {
        {"Address:", txtadd5}, {"Setconnect:", txtsetc},     {"Termination Timer:", cboTermc},
        {"Termt:", txttermt},  {"Send Character:", txtchrs}, {"Packet Length:", txtpacket},
    };
    int row = 0;
    for (const auto &[text, field] : fields) {
        grid->addWidget(
            caption(qPrintable(QStringLiteral("lbl") + field->objectName()), QLatin1String(text), frame), row,
            0);
        grid->addWidget(field, row++, 1);
    }
    auto *flowFrame = named<QGroupBox>("Frame2", QStringLiteral("Serial Port Flow Control"), frame);
    auto *flow = new QVBoxLayout(flowFrame);
    const QString flowCaptions[] = {QStringLiteral("Software Flow Control"),
                                    QStringLiteral("Hardware Flow Control"),
                                    QStringLiteral("Disable Flow Control")};
    for (size_t i = 0; i < optFlow.size(); ++i)
        flow->addWidget(optFlow[i] = named<QRadioButton>(QStringLiteral("optFlow(%1)").arg(i),
                                                         flowCaptions[i], flowFrame));
    grid->addWidget(flowFrame, 0, 2, row, 1);
    const QString checkCaptions[] = {QStringLiteral("DTR/CD Enable"), QStringLiteral("DISACK"),
                                     QStringLiteral("Auto LF"),       QStringLiteral("Echo"),
                                     QStringLiteral("Edit"),          QStringLiteral("Prompt"),
                                     QStringLiteral("Typsyste")};
    for (size_t i = 0; i < Check1.size(); ++i)
        grid->addWidget(Check1[i] =
                            named<QCheckBox>(QStringLiteral("Check1(%1)").arg(i), checkCaptions[i], frame),
                        row + int(i) / 4, int(i) % 4);

    lblDes->setWordWrap(true);
    auto *layout = new QGridLayout(this);
    layout->addWidget(frame, 0, 0, 1, 2);
    layout->addWidget(caption("lblDescription", QStringLiteral("Description:"), this), 1, 0, 1, 2);
    layout->addWidget(lblDes, 2, 0, 1, 2);
    layout->addWidget(cmdadding, 3, 0);
    layout->addWidget(cmdcustomcanc, 3, 1);
    for (const Help &help : kCustomHelp)
        findChild<QWidget *>(QLatin1String(help.control))->installEventFilter(this);

    connect(cmdadding, &QPushButton::clicked, this, &Custom::cmdadding_Click);
    connect(cmdcustomcanc, &QPushButton::clicked, this, &QWidget::close);
}

bool Custom::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn)
        for (const Help &help : kCustomHelp)
            if (watched->objectName() == QLatin1String(help.control))
                lblDes->setText(QLatin1String(help.text));
    return QWidget::eventFilter(watched, event);
}

void Custom::cmdadding_Click()
{
    CustomAnswers answers{txtadd5->text(),  txtsetc->text(), cboTermc->currentText(),
                          txttermt->text(), txtchrs->text(), txtpacket->text()};
    for (size_t i = 0; i < optFlow.size(); ++i)
        if (optFlow[i]->isChecked())
            answers.flow = int(i);
    for (size_t i = 0; i < Check1.size(); ++i)
        answers.checks[i] = Check1[i]->isChecked();
    if (runSetupStep(
            m_session.prompts(), [&answers] { return customProgram(answers); }, m_addCommand))
        close();
}
