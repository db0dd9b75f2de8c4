#include "MWPort.h"

#include "AppError.h"
#include "CommControl.h"
#include "IniFile.h"
#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <cstdlib>

namespace {
QComboBox *makeList(QWidget *parent, const char *name, const QStringList &items)
{
    auto *list = named<QComboBox>(name, parent);
    list->addItems(items);
    return list;
}

// Selects the entry, adding it when the fixed list lacks it: a rate such as 115200 in the file is honoured.
void selectText(QComboBox *list, const QString &text)
{
    int index = list->findText(text);
    if (index < 0) {
        list->addItem(text);
        index = list->count() - 1;
    }
    list->setCurrentIndex(index);
}
} // namespace

std::function<void()> &MWPort::endProgram()
{
    static std::function<void()> end = [] { std::exit(0); };
    return end;
}

MWPort::MWPort(ModemSession &session, IniFile &ini, QWidget *parent)
    : QDialog(parent), m_session(session), m_ini(ini)
{
    setObjectName(QStringLiteral("MWPort"));
    setWindowTitle(QStringLiteral("Port Configuration"));
    QStringList ports;
    for (int n = 1; n <= 16; ++n)
        ports << QString::number(n);
    CmbComPort = makeList(this, "CmbComPort", ports);
    CmbBaudRate = makeList(this, "CmbBaudRate",
                           {QStringLiteral("1200"), QStringLiteral("2400"), QStringLiteral("4800"),
                            QStringLiteral("9600"), QStringLiteral("19200"), QStringLiteral("38400"),
                            QStringLiteral("57600")});
    CmbDataBits = makeList(this, "CmbDataBits", {QStringLiteral("7"), QStringLiteral("8")});
    CmbStopBits = makeList(this, "CmbStopBits", {QStringLiteral("1"), QStringLiteral("2")});
    CmbParity =
        makeList(this, "CmbParity", {QStringLiteral("Even"), QStringLiteral("Odd"), QStringLiteral("None")});
    ChkDTREnable = named<QCheckBox>("ChkDTREnable", QStringLiteral("DTR Enable"), this);
    ChkRTSEnable = named<QCheckBox>("ChkRTSEnable", QStringLiteral("RTS Enable"), this);
    ChkHandshakingSoftware =
        named<QCheckBox>("ChkHandshakingSoftware", QStringLiteral("Software (XON/XOFF)"), this);
    ChkHandshakingHardware =
        named<QCheckBox>("ChkHandshakingHardware", QStringLiteral("Hardware (RTS/CTS)"), this);
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));

    auto *form = new QFormLayout(this);
    form->addRow(QStringLiteral("Port"), CmbComPort);
    form->addRow(QStringLiteral("Baud Rate"), CmbBaudRate);
    form->addRow(QStringLiteral("Data Bits"), CmbDataBits);
    form->addRow(QStringLiteral("Stop Bits"), CmbStopBits);
    form->addRow(QStringLiteral("Parity"), CmbParity);
    form->addRow(ChkDTREnable);
    form->addRow(ChkRTSEnable);
    form->addRow(ChkHandshakingSoftware);
    form->addRow(ChkHandshakingHardware);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    form->addRow(buttons);

    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &MWPort::reject);
}

void MWPort::fillFrom(CommControl &control)
{
    for (int n = 1; n <= 16; ++n) {
        const QString device = control.deviceFor(n);
        CmbComPort->setItemText(n - 1, device.isEmpty() ? QString::number(n)
                                                        : QStringLiteral("%1  (%2)").arg(n).arg(device));
    }
    CmbComPort->setCurrentIndex(qBound(1, control.CommPort(), 16) - 1);
    const LineSettings line = control.lineSettings();
    selectText(CmbBaudRate, QString::number(line.baud));
    selectText(CmbDataBits, QString::number(line.dataBits));
    selectText(CmbStopBits, QString::number(line.stopBits));
    CmbParity->setCurrentIndex(line.parity == 'E' ? 0 : line.parity == 'O' ? 1 : 2);
    ChkDTREnable->setChecked(control.DTREnable());
    ChkRTSEnable->setChecked(control.RTSEnable());
    ChkHandshakingSoftware->setChecked(control.Handshaking() & 1);
    ChkHandshakingHardware->setChecked(control.Handshaking() >= 2);
}

PortChoice MWPort::choice() const
{
    PortChoice c;
    c.commPort = CmbComPort->currentIndex() + 1;
    c.settings = QStringLiteral("%1,%2,%3,%4")
                     .arg(CmbBaudRate->currentText(), CmbParity->currentText().left(1),
                          CmbDataBits->currentText(), CmbStopBits->currentText());
    c.dtr = ChkDTREnable->isChecked();
    c.rts = ChkRTSEnable->isChecked();
    c.handshaking =
        (ChkHandshakingSoftware->isChecked() ? 1 : 0) + (ChkHandshakingHardware->isChecked() ? 2 : 0);
    return c;
}

bool MWPort::SetPortSettings(CommControl &control)
{
    fillFrom(control);
    setWindowTitle(QStringLiteral("Varnel Setup"));
    while (exec() == QDialog::Accepted) {
        // Every accepted port dialog drops the adaptor: its settings no longer fit it.
        m_session.IrDongleActive = false;
        if (const auto failure = acceptPortChoice(control, m_ini, m_session.prompts(), choice())) {
            // The user can try again.
            m_session.prompts().MsgBox(*failure);
            continue;
        }
        return true;
    }
    return false;
}

void MWPort::reject()
{
    if (!PortSetupRequired) {
        QDialog::reject();
        return;
    }
    if (m_session.prompts().MsgBox(QStringLiteral("This will end your application"), MsgButtons::OkCancel,
                                   MsgIcon::None, QStringLiteral("Port Setup")) == MsgAnswer::Ok)
        endProgram()();
}
