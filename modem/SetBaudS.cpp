#include "SetBaudS.h"

#include "CommControl.h"
#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"

#include <QCloseEvent>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int kSlotHeight = 40;
constexpr int kBlockSize = 20;
} // namespace

Baud::Baud(const QString &settings, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("Baud"));
    setWindowTitle(QStringLiteral("Baud Rate Switches"));
    auto *layout = new QVBoxLayout(this);
    auto *current = new QHBoxLayout;
    current->addWidget(named<QLabel>("Label1", QStringLiteral("Current Baud Rate:"), this));
    lblBaud = named<QLabel>("lblBaud", settings, this);
    current->addWidget(lblBaud);
    layout->addLayout(current);
    layout->addWidget(named<QLabel>("Label2", QStringLiteral("Set Switches To The Following..."), this));

    auto *chart = new QGridLayout;
    const std::array<bool, 8> on = switchChart(settings);
    for (int i = 0; i < 8; ++i) {
        const auto index = size_t(i);
        lblSwitch[index] = named<QLabel>(QStringLiteral("lblSwitch(%1)").arg(i),
                                         QLatin1String(on[index] ? "ON" : "OFF"), this);
        // The switch's slide: its block up for ON, down for OFF.
        auto *slot = named<QFrame>(QStringLiteral("shpSwitch(%1)").arg(i), this);
        slot->setFrameShape(QFrame::Box);
        slot->setFixedSize(kBlockSize, kSlotHeight);
        blkOnOff[index] = named<QFrame>(QStringLiteral("blkOnOff(%1)").arg(i), slot);
        blkOnOff[index]->setFrameShape(QFrame::Panel);
        blkOnOff[index]->setAutoFillBackground(true);
        blkOnOff[index]->setStyleSheet(QStringLiteral("background: black"));
        blkOnOff[index]->setGeometry(0, on[index] ? 0 : kSlotHeight - kBlockSize, kBlockSize, kBlockSize);
        chart->addWidget(lblSwitch[index], 0, i, Qt::AlignCenter);
        chart->addWidget(slot, 1, i, Qt::AlignCenter);
        chart->addWidget(new QLabel(QString::number(i + 1), this), 2, i, Qt::AlignCenter);
    }
    layout->addLayout(chart);
    layout->addWidget(named<QLabel>(
        "Label3",
        QStringLiteral("Configure RS-232 setup switchs as above and reset Varnel on the front panel."),
        this));
    Command1 = named<QPushButton>("Command1", QStringLiteral("Done"), this);
    layout->addWidget(Command1, 0, Qt::AlignRight);
    connect(Command1, &QPushButton::clicked, this, [this] {
        if (done)
            done();
        close();
    });
}

SetBaudS::SetBaudS(ModemSession &session, QWidget *parent)
    : QDialog(parent), m_session(session), m_port(session.Comm1(), PortClaim::Then::Terminal)
{
    setObjectName(QStringLiteral("SetBaudS"));
    setWindowTitle(QStringLiteral("Set Serial Baud Rate"));
    setAttribute(Qt::WA_DeleteOnClose);
    lblInfo = named<QLabel>("lblInfo", this);
    lblInfo->setWordWrap(true);
    txtStatus = named<QLineEdit>("txtStatus", QStringLiteral("Press OK when completed"), this);
    txtStatus->setReadOnly(true);
    txtStatus->setAlignment(Qt::AlignCenter);
    cmdDownload = named<QPushButton>("cmdDownload", QStringLiteral("OK"), this);
    cmdCancel = named<QPushButton>("cmdCancel", QStringLiteral("Cancel"), this);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblInfo);
    layout->addWidget(txtStatus);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdDownload);
    buttons->addWidget(cmdCancel);
    layout->addLayout(buttons);
    setMinimumWidth(460);
    m_setup = std::make_unique<SerialRateSetup>(session, static_cast<SerialRateView &>(*this));
    connect(cmdDownload, &QPushButton::clicked, this, [this] { m_setup->cmdDownload_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { m_setup->cmdCancel_Click(); });
}

SetBaudS::~SetBaudS() = default;

void SetBaudS::closeEvent(QCloseEvent *event)
{
    m_port.release();
    QDialog::closeEvent(event);
}

void SetBaudS::setStatus(const QString &text, StatusLook look)
{
    static const char *const looks[] = {"background: white; color: black", "background: red; color: yellow",
                                        "background: lime; color: black"};
    txtStatus->setText(text);
    txtStatus->setStyleSheet(QLatin1String(looks[int(look)]));
}

void SetBaudS::setInfo(const QString &text)
{
    lblInfo->setText(text);
}

void SetBaudS::setActionCaption(const QString &text)
{
    cmdDownload->setText(text);
}

void SetBaudS::disableCancel()
{
    cmdCancel->setEnabled(false);
}

void SetBaudS::openBaud()
{
    m_baud = new Baud(m_session.Comm1().Settings(), parentWidget());
    m_baud->setAttribute(Qt::WA_DeleteOnClose);
    m_baud->done = [wizard = QPointer<SetBaudS>(this)] {
        if (wizard)
            wizard->close();
    };
    m_baud->show();
}

void SetBaudS::unload()
{
    // Closed, not deleted at once: the handler that unloads may still be running in this form.
    close();
}

SetBaudS *mnuSerialS(ModemSession &session, QWidget *parent)
{
    if (session.IrDongleActive) {
        session.prompts().MsgBox(QStringLiteral("You must connect directly to Varnel to change baud rate"));
        return nullptr;
    }
    auto *form = new SetBaudS(session, parent);
    form->show();
    return form;
}
