#include "MWPort.h"

#include "AppError.h"
#include "CommControl.h"
#include "IniFile.h"
#include "ModemSession.h"
#include "Prompts.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <cstdlib>

namespace {
const QString kCommPort = QStringLiteral("Comm Port");
const QString kSettings = QStringLiteral("Settings");
const QString kDtr = QStringLiteral("DTREnable");
const QString kRts = QStringLiteral("RTSEnable");
const QString kHandshaking = QStringLiteral("Handshaking");

QComboBox *makeList(QWidget *parent, const char *name, const QStringList &items)
{
    auto *list = new QComboBox(parent);
    list->setObjectName(QString::fromLatin1(name));
    list->addItems(items);
    return list;
}

QCheckBox *makeCheck(QWidget *parent, const char *name, const QString &caption)
{
    auto *box = new QCheckBox(caption, parent);
    box->setObjectName(QString::fromLatin1(name));
    return box;
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

QString PortSection(const CommControl &control)
{
    return QStringLiteral("Port_") + control.Tag();
}

std::function<void()> &MWPort::EndProgram()
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
    ChkDTREnable = makeCheck(this, "ChkDTREnable", QStringLiteral("DTR Enable"));
    ChkRTSEnable = makeCheck(this, "ChkRTSEnable", QStringLiteral("RTS Enable"));
    ChkHandshakingSoftware = makeCheck(this, "ChkHandshakingSoftware", QStringLiteral("Software (XON/XOFF)"));
    ChkHandshakingHardware = makeCheck(this, "ChkHandshakingHardware", QStringLiteral("Hardware (RTS/CTS)"));
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

void MWPort::LoadPortSettings(CommControl &control)
{
    Attempt(m_session.prompts(), [&] {
        const bool wasOpen = control.PortOpen();
        if (wasOpen)
            control.setPortOpen(false);
        const QString section = PortSection(control);
        // Each key is applied as it is read; the first one missing means the setup is not complete.
        const bool complete = [&] {
            if (!m_ini.HasKey(section, kCommPort))
                return false;
            control.setCommPort(m_ini.GetInt(section, kCommPort, 0));
            if (!m_ini.HasKey(section, kSettings))
                return false;
            control.setSettings(m_ini.GetString(section, kSettings, {}, 20).trimmed());
            if (!m_ini.HasKey(section, kDtr))
                return false;
            control.setDTREnable(IniBool(m_ini.GetString(section, kDtr, {}, 6)));
            if (!m_ini.HasKey(section, kRts))
                return false;
            control.setRTSEnable(IniBool(m_ini.GetString(section, kRts, {}, 6)));
            if (!m_ini.HasKey(section, kHandshaking))
                return false;
            control.setHandshaking(m_ini.GetInt(section, kHandshaking, 0));
            return true;
        }();
        if (complete) {
            if (wasOpen)
                control.setPortOpen(true);
            return;
        }
        PortSetupRequired = true;
        SetPortSettings(control);
        PortSetupRequired = false;
    });
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

QString MWPort::settingsText() const
{
    return QStringLiteral("%1,%2,%3,%4")
        .arg(CmbBaudRate->currentText(), CmbParity->currentText().left(1), CmbDataBits->currentText(),
             CmbStopBits->currentText());
}

bool MWPort::SetPortSettings(CommControl &control)
{
    fillFrom(control);
    setWindowTitle(QStringLiteral("Varnel Setup"));
    while (exec() == QDialog::Accepted) {
        // Every accepted port dialog drops the adaptor: its settings no longer fit it.
        m_session.IrDongleActive = false;
        const QString section = PortSection(control);
        const int handshaking =
            (ChkHandshakingSoftware->isChecked() ? 1 : 0) + (ChkHandshakingHardware->isChecked() ? 2 : 0);
        Attempt(m_session.prompts(), [&] {
            control.setInputLen(0);
            control.setInterval(55);
            control.setSettings(settingsText());
            control.setDTREnable(ChkDTREnable->isChecked());
            control.setRTSEnable(ChkRTSEnable->isChecked());
            control.setHandshaking(handshaking);
        });
        m_ini.WriteString(section, kSettings, settingsText());
        m_ini.WriteString(section, kDtr, IniBoolText(ChkDTREnable->isChecked()));
        m_ini.WriteString(section, kRts, IniBoolText(ChkRTSEnable->isChecked()));
        m_ini.WriteString(section, kHandshaking, QString::number(handshaking));
        const int port = CmbComPort->currentIndex() + 1;
        try {
            if (control.PortOpen())
                control.setPortOpen(false);
            control.setCommPort(port);
            control.setPortOpen(true);
        } catch (const AppError &error) {
            // The port key is written only once the port opens; the user can try again.
            m_session.prompts().MsgBox(error.description);
            continue;
        }
        m_ini.WriteString(section, kCommPort, QString::number(port));
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
        EndProgram()();
}
