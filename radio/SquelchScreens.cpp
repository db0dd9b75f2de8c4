#include "SquelchScreens.h"

#include "BusyPointer.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"
#include "Squelch.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>

namespace {
constexpr int kPositions = 4;

void showSaved(ModemSession &session, const QString &report, const QString &title)
{
    session.prompts().setBusy(false);
    session.prompts().MsgBox(report, MsgButtons::OkOnly, MsgIcon::None, title);
}
} // namespace

SquelchSlider::SquelchSlider(ModemSession &session, ModemRecord &record, QWidget *parent)
    : FreqScreen(session, record, parent)
{
    setWindowTitle(QStringLiteral("Set Receiver Squelch"));
    auto *grid = new QGridLayout(this);
    grid->addWidget(named<QLabel>("Label1", QStringLiteral("Most Sensitve/ Least Squelch"), this), 0, 0);
    grid->addWidget(named<QLabel>("Label2", QStringLiteral("Least Sensitve/ Most Squelch"), this), 0, 2);
    sldsrs = named<QSlider>("sldsrs", Qt::Horizontal, this);
    sldsrs->setRange(0, kPositions - 1);
    grid->addWidget(sldsrs, 1, 0, 1, 3);
    lblsrs = named<QLabel>("lblsrs", this);
    lblValue = named<QLabel>("lblValue", this);
    grid->addWidget(lblsrs, 2, 0);
    grid->addWidget(lblValue, 2, 2);
    cmdsrs = named<QPushButton>("cmdsrs", QStringLiteral("Set Receiver Squelch"), this);
    grid->addWidget(cmdsrs, 4, 1);
    connect(sldsrs, &QSlider::valueChanged, this, [this](int position) { showPosition(position); });
}

void SquelchSlider::showPosition(int position)
{
    lblsrs->setText(QStringLiteral("Squelch =  %1").arg(position));
    lblValue->setText(sensitivityText(position));
}

SetSquelch::SetSquelch(ModemSession &session, ModemRecord &record, QWidget *parent)
    : SquelchSlider(session, record, parent), m_remote(session.ProgMode == kRemoteSquelchMode)
{
    setObjectName(QStringLiteral("SetSquelch"));
    connect(cmdsrs, &QPushButton::clicked, this, &SetSquelch::cmdsrs_Click);
}

bool SetSquelch::Load()
{
    if (!m_remote && !m_session.EnterCommandMode())
        return false;
    double squelch = 0;
    ReadSquelch(m_session, squelch);
    sldsrs->setValue(int(squelch));
    showPosition(sldsrs->value());
    return true;
}

void SetSquelch::cmdsrs_Click()
{
    BusyPointer busy(m_session.prompts());
    showSaved(m_session, saveSquelch(m_session, sldsrs->value(), m_remote), QStringLiteral("Squelch"));
}

SetSquelchHP::SetSquelchHP(ModemSession &session, ModemRecord &record, QWidget *parent)
    : SquelchSlider(session, record, parent)
{
    setObjectName(QStringLiteral("SetSquelchHP"));
    connect(cmdsrs, &QPushButton::clicked, this, &SetSquelchHP::cmdsrs_Click);
}

bool SetSquelchHP::Load()
{
    // The profile starts at the first position; the modem's present value is not read.
    sldsrs->setValue(0);
    showPosition(0);
    QString version;
    QString option;
    ReadModelInfo(m_session, m_model, version, option);
    return true;
}

void SetSquelchHP::showPosition(int position)
{
    lblsrs->setText(QStringLiteral("Squelch Profile #%1").arg(position + 1));
    lblValue->setText(sensitivityText(position));
}

void SetSquelchHP::cmdsrs_Click()
{
    BusyPointer busy(m_session.prompts());
    showSaved(m_session, saveSquelchProfile(m_session, m_model, sldsrs->value()),
              QStringLiteral("Squelch Saved"));
}

SetSquelchS::SetSquelchS(ModemSession &session, ModemRecord &record, QWidget *parent)
    : SquelchSlider(session, record, parent), m_remote(session.ProgMode == kRemoteSquelchSMode)
{
    setObjectName(QStringLiteral("SetSquelchS"));
    setWindowTitle(QStringLiteral("Set Receiver Squelch Model Q40Z"));
    auto *grid = static_cast<QGridLayout *>(layout());
    lblSquelch = named<QLabel>("lblSquelch", this);
    lblAsquelch = named<QLabel>("lblAsquelch", this);
    grid->addWidget(lblSquelch, 3, 0);
    grid->addWidget(lblAsquelch, 3, 2);
    connect(cmdsrs, &QPushButton::clicked, this, &SetSquelchS::cmdsrs_Click);
}

bool SetSquelchS::Load()
{
    double squelch = 0;
    double asquelch = 0;
    ReadSquelch(m_session, squelch);
    ReadAsquelch(m_session, asquelch);
    m_asquelch = int(asquelch);
    lblAsquelch->setText(QStringLiteral("Asquelch =  %1").arg(m_asquelch));
    sldsrs->setValue(int(squelch));
    showPosition(sldsrs->value());
    return true;
}

void SetSquelchS::showPosition(int position)
{
    SquelchSlider::showPosition(position);
    lblSquelch->setText(QString::number(position));
}

void SetSquelchS::cmdsrs_Click()
{
    BusyPointer busy(m_session.prompts());
    showSaved(m_session, saveSpreadSquelch(m_session, sldsrs->value(), m_asquelch, m_remote),
              QStringLiteral("Squelch"));
}

AutoSquelch::AutoSquelch(ModemSession &session, ModemRecord &record, QWidget *parent)
    : FreqScreen(session, record, parent)
{
    setObjectName(QStringLiteral("AutoSquelch"));
    setWindowTitle(QStringLiteral("Set Squelch Level"));
    auto *layout = new QVBoxLayout(this);
    auto *frame = named<QGroupBox>("Frame1", QStringLiteral("Auto Squelch"), this);
    auto *inside = new QVBoxLayout(frame);
    auto *text = named<QLabel>(
        "lblExplain",
        QStringLiteral(
            "This program will automatically set the squelch levels for the Varnel Wireless Modem "
            "connected to the computer.  Please verify that the modem is connected to the antenna and "
            "coax cable and press the button when ready..."),
        frame);
    text->setWordWrap(true);
    inside->addWidget(text);
    cmdSetSquelch = named<QPushButton>("cmdSetSquelch", QStringLiteral("Set Squelch Level"), frame);
    barAsqStat = named<QProgressBar>("barAsqStat", frame);
    lblAsqStat = named<QLabel>("lblAsqStat", QStringLiteral("Setting Squelch Levels..."), frame);
    barAsqStat->setVisible(false);
    lblAsqStat->setVisible(false);
    inside->addWidget(cmdSetSquelch);
    inside->addWidget(barAsqStat);
    inside->addWidget(lblAsqStat);
    layout->addWidget(frame);
    connect(cmdSetSquelch, &QPushButton::clicked, this, &AutoSquelch::cmdSetSquelch_Click);
}

bool AutoSquelch::Load()
{
    QString version;
    QString option;
    ReadModelInfo(m_session, m_model, version, option);
    return true;
}

void AutoSquelch::cmdSetSquelch_Click()
{
    BusyPointer busy(m_session.prompts());
    barAsqStat->setRange(0, 100);
    barAsqStat->setVisible(true);
    lblAsqStat->setVisible(true);
    SetAsquelchLevel(m_session, m_model, Asquelch, [this](int value) { barAsqStat->setValue(value); });
    // A failed search still writes and saves: the result keeps what it had.
    showSaved(m_session, saveAutoSquelch(m_session, Asquelch), QStringLiteral("Squelch Saved"));
    close();
}

void AutoSquelch::closeEvent(QCloseEvent *event)
{
    m_session.ProgMode.clear();
    FreqScreen::closeEvent(event);
}
