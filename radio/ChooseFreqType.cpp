#include "ChooseFreqType.h"

#include "BusyPointer.h"
#include "FreqScreens.h"
#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"
#include "Squelch.h"
#include "SquelchScreens.h"

#include <QCloseEvent>
#include <QPushButton>
#include <QVBoxLayout>

ChooseFreqType::ChooseFreqType(ModemSession &session, QWidget *parent)
    : QWidget(parent, Qt::Window), m_session(session), m_port(session.Comm1(), PortClaim::Then::Terminal)
{
    setObjectName(QStringLiteral("ChooseFreqType"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    const QString captions[] = {QStringLiteral("Set Frequency of &Local Varnel"),
                                QStringLiteral("Set Frequency of &Remote Varnel"),
                                QStringLiteral("Set Receiver &Squelch of Local Varnel"),
                                QStringLiteral("&Display current frequency and Squelch settings")};
    for (int i = 1; i <= 4; ++i) {
        Command1[size_t(i)] =
            named<QPushButton>(QStringLiteral("Command1(%1)").arg(i), captions[i - 1], this);
        layout->addWidget(Command1[size_t(i)]);
        connect(Command1[size_t(i)], &QPushButton::clicked, this, [this, i] { Command1_Click(i); });
    }
    cmdCancFreq = named<QPushButton>("cmdCancFreq", QStringLiteral("&Done"), this);
    layout->addWidget(cmdCancFreq);
    connect(cmdCancFreq, &QPushButton::clicked, this, &QWidget::close);
}

void ChooseFreqType::Load()
{
    readModemRecord(m_session, record);
    setWindowTitle(QStringLiteral("Frequency Setting For Varnel Model ") + record.Model);
    for (const Notice &warning : recordWarnings(record))
        m_session.prompts().MsgBox(warning.text, MsgButtons::OkOnly, warning.icon, warning.title);
}

namespace {
template <typename Screen> FreqScreen *loaded(ModemSession &session, ModemRecord &record, QWidget *parent)
{
    auto *screen = new Screen(session, record, parent);
    if (screen->Load())
        return screen;
    delete screen;
    return nullptr;
}
} // namespace

FreqScreen *localFrequencyScreen(ModemSession &session, ModemRecord &record, QWidget *parent)
{
    if (record.Model == kSpreadModel)
        return loaded<SpreadFreqSet>(session, record, parent);
    return loaded<TXRX>(session, record, parent);
}

FreqScreen *squelchScreen(ModemSession &session, ModemRecord &record, QWidget *parent)
{
    const bool help =
        session.prompts().MsgBox(QStringLiteral("Do you need help in setting your squelch level?"),
                                 MsgButtons::YesNo, MsgIcon::None, QStringLiteral("Need Help?"),
                                 2) == MsgAnswer::Yes;
    if (record.Model == kSpreadModel) {
        if (!help)
            return loaded<SetSquelchS>(session, record, parent);
        SpreadSquelchWalk(session);
    } else if (record.OptNoiseSquelch) {
        if (help)
            return loaded<AutoSquelch>(session, record, parent);
        return loaded<SetSquelchHP>(session, record, parent);
    } else if (help) {
        SquelchWalk(session);
    } else {
        return loaded<SetSquelch>(session, record, parent);
    }
    return nullptr;
}

void ChooseFreqType::present(FreqScreen *screen)
{
    if (!screen)
        return;
    connect(screen, &FreqScreen::frequencySet, this, &ChooseFreqType::frequencySet);
    connect(screen, &FreqScreen::left, this, &ChooseFreqType::showAgain);
    screen->show();
}

void ChooseFreqType::Command1_Click(int index)
{
    BusyPointer busy(m_session.prompts());
    if (!m_session.EnterCommandMode())
        return;
    const bool spread = record.Model == kSpreadModel;
    switch (index) {
    case 1:
        present(localFrequencyScreen(m_session, record, this));
        break;
    case 2:
        m_session.ProgMode = spread ? kRemoteFreqSMode : kRemoteFreqMode;
        openRemote();
        break;
    case 3:
        present(squelchScreen(m_session, record, this));
        break;
    case 4:
        if (spread)
            present(loaded<ShowSpreadFreq>(m_session, record, this));
        else
            present(loaded<DisplayCurrent>(m_session, record, this));
        break;
    }
}

void ChooseFreqType::openRemote()
{
    if (!openRemoteAddress)
        return;
    const bool spread = m_session.ProgMode == kRemoteFreqSMode;
    openRemoteAddress(
        [this, spread] {
            if (spread)
                present(loaded<SpreadFreqSet>(m_session, record, this));
            else
                present(loaded<RemoteFreqChange>(m_session, record, this));
        },
        [this] { showAgain(); });
}

void ChooseFreqType::frequencySet()
{
    close();
}

void ChooseFreqType::showAgain()
{
    show();
    activateWindow();
}

void ChooseFreqType::closeEvent(QCloseEvent *event)
{
    m_port.release();
    event->accept();
}
