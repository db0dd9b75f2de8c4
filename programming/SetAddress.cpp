#include "SetAddress.h"

#include "ModemSession.h"
#include "Named.h"
#include "PlcSetup.h"
#include "SetupForms.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

SetAddress::SetAddress(ModemSession &session, AddCommandHook addCommand, QWidget *parent)
    : QWidget(parent, Qt::Window), lblDescription(named<QLabel>("lblDescription", this)),
      txtConnectedAdd(named<QLineEdit>("txtConnectedAdd", this)),
      txtDestinationAdd(named<QLineEdit>("txtDestinationAdd", this)),
      cmdoksetadd(named<QPushButton>("cmdoksetadd", QStringLiteral("      Add to Command List"), this)),
      cmdcancel2(named<QPushButton>("cmdcancel2", QStringLiteral("Cancel"), this)), m_session(session),
      m_addCommand(std::move(addCommand))
{
    setObjectName(QStringLiteral("SetAddress"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Transparent Mode"));
    lblDescription->setText(QStringLiteral("Please complete the following steps and then press the \"Add to "
                                           "Command List\" button below to configure your Varnel for "
                                           "Tranparent Operation"));
    lblDescription->setWordWrap(true);

    auto *grid = new QGridLayout(this);
    grid->addWidget(lblDescription, 0, 0, 1, 4);
    grid->addWidget(named<QLabel>("lblStep1", QStringLiteral("Step 1"), this), 1, 0);
    grid->addWidget(named<QLabel>("lblConnected", QStringLiteral("Enter Connected  Varnel Address:"), this),
                    1, 1);
    grid->addWidget(txtConnectedAdd, 1, 2);
    grid->addWidget(named<QLabel>("lblStep2", QStringLiteral("Step 2"), this), 2, 0);
    grid->addWidget(
        named<QLabel>("lblDestination", QStringLiteral("Enter Destination Varnel Address:"), this), 2, 1);
    grid->addWidget(txtDestinationAdd, 2, 2);
    grid->addWidget(named<QLabel>("lblRepeaters", QStringLiteral("Enter Repeater Addresses (if any):"), this),
                    3, 1);
    auto *repeaters = new QHBoxLayout;
    for (size_t i = 0; i < txtRep.size(); ++i)
        repeaters->addWidget(txtRep[i] = named<QLineEdit>(QStringLiteral("txtRep(%1)").arg(i), this));
    grid->addLayout(repeaters, 3, 2, 1, 2);
    grid->addWidget(cmdoksetadd, 4, 1);
    grid->addWidget(cmdcancel2, 4, 2);

    // A controller's key names its protocol in the title and the instructions.
    if (const std::optional<AddressFormText> words = plcAddressFormText(m_session.ProgMode)) {
        setWindowTitle(words->title);
        lblDescription->setText(words->text);
    }
    // The global program goes to every modem: its destination is fixed.
    if (m_session.ProgMode == kAutoglobalMode) {
        txtDestinationAdd->setText(kGlobalDestination);
        txtDestinationAdd->setEnabled(false);
    }

    connect(cmdoksetadd, &QPushButton::clicked, this, &SetAddress::cmdoksetadd_Click);
    connect(cmdcancel2, &QPushButton::clicked, this, &QWidget::close);
}

void SetAddress::cmdoksetadd_Click()
{
    if (runSetupStep(
            m_session.prompts(),
            [this] {
                return autoConnectProgram(
                    {txtConnectedAdd->text(), txtDestinationAdd->text(), fieldTexts(txtRep)});
            },
            m_addCommand, txtRep))
        close();
}
