#include "FreqScreens.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "CommControl.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"
#include "TextRules.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
// The caption of a row, named by its row as the other labels of the screen are.
QLabel *label(QWidget *parent, QGridLayout *grid, int row, const QString &caption)
{
    auto *l = named<QLabel>(QStringLiteral("Label%1").arg(row + 1), caption, parent);
    grid->addWidget(l, row, 0);
    return l;
}

QLabel *value(QWidget *parent, QGridLayout *grid, int row, const char *name)
{
    auto *l = named<QLabel>(name, parent);
    grid->addWidget(l, row, 1);
    return l;
}
} // namespace

FreqScreen::FreqScreen(ModemSession &session, ModemRecord &record, QWidget *parent)
    : QWidget(parent, Qt::Window), m_session(session), m_record(record)
{
    setAttribute(Qt::WA_DeleteOnClose);
}

void FreqScreen::finish()
{
    m_set = true;
    close();
}

void FreqScreen::closeEvent(QCloseEvent *event)
{
    event->accept();
    if (m_set)
        emit frequencySet();
    else
        emit left();
}

FrequencyEntry::FrequencyEntry(ModemSession &session, ModemRecord &record, QWidget *parent, bool remote)
    : FreqScreen(session, record, parent), m_remote(remote)
{
    auto *grid = new QGridLayout(this);
    label(this, grid, 0, QStringLiteral("Current TX/RX Frequency:"));
    lblcurrentfreq = value(this, grid, 0, "lblcurrentfreq");
    label(this, grid, 1, QStringLiteral("The Frequency Range is:"));
    lblfreq2 = value(this, grid, 1, "lblfreq2");
    label(this, grid, 2, QStringLiteral("Enter new TX/RX Frequency:"));
    mask = named<QLineEdit>(remote ? "MaskBoxChange" : "MaskBoxtxt", this);
    grid->addWidget(mask, 2, 1);
    ok = named<QPushButton>(remote ? "cmdOkD" : "cmdOkDis", QStringLiteral("OK"), this);
    cmdCancDis = named<QPushButton>("cmdCancDis", QStringLiteral("Cancel"), this);
    grid->addWidget(ok, 3, 0);
    grid->addWidget(cmdCancDis, 3, 1);
    connect(ok, &QPushButton::clicked, this, &FrequencyEntry::okClick);
    connect(cmdCancDis, &QPushButton::clicked, this, &QWidget::close);
}

void FrequencyEntry::showCurrent()
{
    double a1 = 0, n1 = 0, n2 = 0, squelch = 0;
    ReadLatches(m_session, a1, n1, n2, squelch);
    attempt(m_session.prompts(), [&] {
        lblcurrentfreq->setText(frequencyText(frequencyOf(m_record, {a1, n1, n2})));
    });
    lblfreq2->setText(takeRange(m_record));
    mask->setInputMask(frequencyMask(m_record.Model, m_remote ? FreqGrid::Remote : FreqGrid::Local));
}

void FrequencyEntry::okClick()
{
    Prompts &prompts = m_session.prompts();
    BusyPointer busy(prompts);
    const double frequency = numericValue(mask->text());
    const Notice refusal =
        checkNewFrequency(m_record, frequency, m_remote ? FreqGrid::Remote : FreqGrid::Local);
    if (!refusal.text.isEmpty()) {
        prompts.setBusy(false);
        prompts.MsgBox(refusal.text, MsgButtons::OkOnly, refusal.icon, refusal.title);
        mask->setFocus();
        return;
    }
    if (!m_remote) {
        const QString report = SetLocalFrequency(m_session, m_record, frequency);
        prompts.MsgBox(report);
    } else if (SetRemoteFrequency(m_session, m_record, frequency)) {
        prompts.MsgBox(QStringLiteral("The Remote Frequency Is Set To ") + numberText(frequency) +
                       QStringLiteral(" MHz"));
    } else {
        close();
        return;
    }
    prompts.setBusy(false);
    m_session.Comm1().Input();
    finish();
}

TXRX::TXRX(ModemSession &session, ModemRecord &record, QWidget *parent)
    : FrequencyEntry(session, record, parent, false)
{
    setObjectName(QStringLiteral("TXRX"));
    setWindowTitle(QStringLiteral("Current TX/RX Frequency for Model ") + record.Model);
    showCurrent();
}

RemoteFreqChange::RemoteFreqChange(ModemSession &session, ModemRecord &hubRecord, QWidget *parent)
    : FrequencyEntry(session, m_remoteRecord, parent, true)
{
    setObjectName(QStringLiteral("RemoteFreqChange"));
    setWindowTitle(QStringLiteral("Remote Frequency Adjustment"));
    // The remote answers for itself, over the link; the hub keeps what was set.
    readModemRecord(session, m_remoteRecord);
    showCurrent();
    connect(this, &FreqScreen::frequencySet, this, [this, &hubRecord] {
        const ModemRecord &r = m_remoteRecord;
        hubRecord.Frequency = r.Frequency;
        hubRecord.FreqLow = r.FreqLow;
        hubRecord.FreqHigh = r.FreqHigh;
        hubRecord.A1 = r.A1;
        hubRecord.N1 = r.N1;
        hubRecord.N2 = r.N2;
    });
}

DisplayCurrent::DisplayCurrent(ModemSession &session, ModemRecord &record, QWidget *parent)
    : FreqScreen(session, record, parent)
{
    setObjectName(QStringLiteral("DisplayCurrent"));
    setWindowTitle(QStringLiteral("Current Frequency and Squelch for Model ") + record.Model);
    double a1 = 0, n1 = 0, n2 = 0, squelch = 0, asquelch = 0;
    ReadLatches(session, a1, n1, n2, squelch);
    ReadAsquelch(session, asquelch);
    QString frequency;
    attempt(session.prompts(), [&] { frequency = frequencyText(frequencyOf(record, {a1, n1, n2})); });

    auto *grid = new QGridLayout(this);
    const std::pair<QString, QString> rows[] = {
        {QStringLiteral("The Current Operating Frequency is:  "), frequency},
        {QStringLiteral("The Current Squelch Level is:  "), numberText(squelch)},
        {QStringLiteral("The Current Asquelch Level is:  "), numberText(asquelch)},
        {QStringLiteral("Switch Sel/N1="), numberText(n1)},
        {QStringLiteral("Switch Sel/A1="), numberText(a1)},
        {QStringLiteral("Switch Sel/N2="), numberText(n2)},
    };
    const char *const names[] = {"lblFreq", "lblSquelch", "lblAsquelch", "lblN1", "lblA1", "lblN2"};
    for (int i = 0; i < 6; ++i) {
        label(this, grid, i, rows[i].first);
        value(this, grid, i, names[i])->setText(rows[i].second);
    }
    label(this, grid, 6, QStringLiteral("Do  you want to keep these current settings?"));
    cmdYes = named<QPushButton>("cmdYes", QStringLiteral("Yes"), this);
    CmdNo = named<QPushButton>("CmdNo", QStringLiteral("No"), this);
    grid->addWidget(cmdYes, 7, 0);
    grid->addWidget(CmdNo, 7, 1);
    // Either answer returns to the hub.
    connect(cmdYes, &QPushButton::clicked, this, &QWidget::close);
    connect(CmdNo, &QPushButton::clicked, this, &QWidget::close);
}

SpreadChannels::SpreadChannels(ModemSession &session, ModemRecord &record, QWidget *parent)
    : FreqScreen(session, record, parent)
{
    auto *grid = new QGridLayout(this);
    auto *column = new QWidget(this);
    auto *options = new QVBoxLayout(column);
    for (int i = 1; i <= kSpreadChannels; ++i) {
        Option1[size_t(i)] = named<QRadioButton>(QStringLiteral("Option1(%1)").arg(i),
                                                 QStringLiteral("%1 MHz").arg(spreadFrequency(i)), column);
        options->addWidget(Option1[size_t(i)]);
    }
    grid->addWidget(column, 0, 0);
    cmdCancel = named<QPushButton>("cmdCancel", QStringLiteral("Cancel"), this);
    grid->addWidget(cmdCancel, 1, 1);
    connect(cmdCancel, &QPushButton::clicked, this, &QWidget::close);
}

int SpreadChannels::readChannel()
{
    double a1 = 0, n1 = 0, n2 = 0, squelch = 0;
    ReadLatches(m_session, a1, n1, n2, squelch);
    const int channel = int(a1);
    if (channel >= 1 && channel <= kSpreadChannels)
        Option1[size_t(channel)]->setChecked(true);
    return channel;
}

SpreadFreqSet::SpreadFreqSet(ModemSession &session, ModemRecord &record, QWidget *parent)
    : SpreadChannels(session, record, parent), m_remote(session.ProgMode == kRemoteFreqSMode)
{
    setObjectName(QStringLiteral("SpreadFreqSet"));
    setWindowTitle(m_remote ? QStringLiteral("Remote Frequency Setting")
                            : QStringLiteral("Frequency Setting For Varnel Q40Z"));
    cmdSetFreq = named<QPushButton>("cmdSetFreq", QStringLiteral("Set Frequency"), this);
    static_cast<QGridLayout *>(layout())->addWidget(cmdSetFreq, 1, 0);
    connect(cmdSetFreq, &QPushButton::clicked, this, &SpreadFreqSet::cmdSetFreq_Click);
    readChannel();
}

void SpreadFreqSet::cmdSetFreq_Click()
{
    int channel = 0;
    for (int i = 1; i <= kSpreadChannels; ++i)
        if (Option1[size_t(i)]->isChecked())
            channel = i;
    if (channel == 0)
        return;
    Prompts &prompts = m_session.prompts();
    BusyPointer busy(prompts);
    const QString report = SetSpreadChannel(m_session, channel, m_remote);
    prompts.setBusy(false);
    prompts.MsgBox(report, MsgButtons::OkOnly, MsgIcon::None, QStringLiteral("Model Q40Z"));
    finish();
}

ShowSpreadFreq::ShowSpreadFreq(ModemSession &session, ModemRecord &record, QWidget *parent)
    : SpreadChannels(session, record, parent)
{
    setObjectName(QStringLiteral("ShowSpreadFreq"));
    setWindowTitle(QStringLiteral("Show Frequency Model Q40Z"));
    cmdCancel->setText(QStringLiteral("Done"));
    readChannel();
    double squelch = 0, asquelch = 0;
    ReadSquelch(session, squelch);
    ReadAsquelch(session, asquelch);
    for (int i = 1; i <= kSpreadChannels; ++i)
        Option1[size_t(i)]->setEnabled(false);
    auto *grid = static_cast<QGridLayout *>(layout());
    grid->addWidget(named<QLabel>("lblSquelch", QStringLiteral("Squelch =  ") + numberText(squelch), this), 2,
                    0);
    grid->addWidget(named<QLabel>("lblAsquelch", QStringLiteral("Asquelch =  ") + numberText(asquelch), this),
                    3, 0);
}
