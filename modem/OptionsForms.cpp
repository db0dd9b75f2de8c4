#include "OptionsForms.h"

#include "BusyPointer.h"
#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"
#include "TextRules.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
// Captions of the eight boxes, bit 0 first: the narrow band models, then the spread-spectrum one.
const char *const kCaptions[2][8] = {
    {"To be Sold in Canada        (Bit 0)", "New SA8026 Synth           (Bit 1)",
     "Signal Strength                  (Bit 2)", "Q40R  75MHz to 76MHz    (Bit 3)",
     "Narrow Band Operation     (Bit 4)", "5kHz Channel Spacing      (Bit 5)",
     "Noise Squelch                   (Bit 6)", "Frequency Lock                (Bit 7)"},
    {"To be Sold in Canada        (Bit 0)", "Phone Circuit                     (Bit 1)",
     "N/A                                   (Bit 2)", "N/A                                   (Bit 3)",
     "N/A                                   (Bit 4)", "N/A                                   (Bit 5)",
     "N/A                                   (Bit 6)", "N/A                                   (Bit 7)"},
};

QLabel *wrapped(const char *name, const QString &text, QWidget *parent)
{
    auto *label = named<QLabel>(name, text, parent);
    label->setWordWrap(true);
    return label;
}
} // namespace

Options::Options(ModemSession &session, QWidget *parent) : Options(session, false, parent) {}

Options::Options(ModemSession &session, bool spreadSpectrum, QWidget *parent)
    : QDialog(parent), m_session(session), m_spreadSpectrum(spreadSpectrum)
{
    setObjectName(spreadSpectrum ? QStringLiteral("OptQ40Z") : QStringLiteral("Options"));
    setWindowTitle(spreadSpectrum ? QStringLiteral("Varnel Q40Z Options") : QStringLiteral("Varnel Options"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(named<QLabel>("Label1", QStringLiteral("Choose One of the Following Options:"), this));
    for (int i = 0; i < 8; ++i) {
        auto *box = named<QCheckBox>(QStringLiteral("chkoptions(%1)").arg(i),
                                     QLatin1String(kCaptions[spreadSpectrum][i]), this);
        chkoptions[size_t(i)] = box;
        layout->addWidget(box);
        connect(box, &QCheckBox::clicked, this, [this, i] { chkoptions_Click(i); });
    }
    layout->addWidget(
        wrapped("lblWarning",
                QStringLiteral("WARNING: Changing options in the Varnel may cause your modem to "
                               "function incorrectly. Do not modify option list unless %1 by VNL "
                               "technical support")
                    .arg(spreadSpectrum ? QStringLiteral("instucted") : QStringLiteral("instructed")),
                this));
    cmdSet = named<QPushButton>("cmdSet", QStringLiteral("Set Option"), this);
    cmdCancel = named<QPushButton>("cmdCancel", QStringLiteral("Cancel"), this);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdSet);
    buttons->addWidget(cmdCancel);
    layout->addLayout(buttons);
    connect(cmdSet, &QPushButton::clicked, this, [this] {
        SetModelOptions(m_session, bits(), m_spreadSpectrum);
        accept();
    });
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

OptionBits Options::bits() const
{
    OptionBits bits{};
    for (size_t i = 0; i < bits.size(); ++i)
        bits[i] = chkoptions[i]->isChecked();
    return bits;
}

void Options::setBits(const OptionBits &bits)
{
    for (size_t i = 0; i < bits.size(); ++i)
        chkoptions[i]->setChecked(bits[i]);
}

void Options::chkoptions_Click(int index)
{
    // Only the narrow band box of the narrow band models asks, and only when it was just cleared.
    if (m_spreadSpectrum || index != OptionNarrowBand || chkoptions[size_t(index)]->isChecked())
        return;
    if (m_session.prompts().MsgBox(QStringLiteral("Return To Wideband?"), MsgButtons::YesNo, MsgIcon::None,
                                   QStringLiteral("Wideband Settings")) == MsgAnswer::Yes)
        ReturnToWideband(m_session);
}

OptQ40Z::OptQ40Z(ModemSession &session, QWidget *parent) : Options(session, true, parent) {}

SetPowerS::SetPowerS(ModemSession &session, QWidget *parent)
    : QDialog(parent), m_session(session), m_port(session.Comm1(), PortClaim::Then::Terminal)
{
    setObjectName(QStringLiteral("SetPowerS"));
    setWindowTitle(QStringLiteral("Output Power Model Q40Z"));
    auto *layout = new QVBoxLayout(this);
    optPower = {named<QRadioButton>("optPower(0)", QStringLiteral("0.5 Watts"), this),
                named<QRadioButton>("optPower(1)", QStringLiteral("1.0 Watts"), this)};
    lblWarn =
        wrapped("lblWarn",
                QStringLiteral("Warning: You must connect an antenna to the Varnel Model Q40Z if used at 1 "
                               "Watt.  Failure to do so will result in equipment damage!"),
                this);
    cmdSet = named<QPushButton>("cmdSet", QStringLiteral("Set Power Level"), this);
    cmdCancel = named<QPushButton>("cmdCancel", QStringLiteral("Cancel"), this);
    for (QWidget *w :
         {static_cast<QWidget *>(optPower[0]), static_cast<QWidget *>(optPower[1]),
          static_cast<QWidget *>(lblWarn), static_cast<QWidget *>(cmdSet), static_cast<QWidget *>(cmdCancel)})
        layout->addWidget(w);
    connect(optPower[1], &QRadioButton::toggled, lblWarn, &QLabel::setVisible);
    lblWarn->setVisible(false);
    optPower[ReadPowerLevel(session) == 1 ? 1 : 0]->setChecked(true);
    connect(cmdSet, &QPushButton::clicked, this, [this] {
        SetPowerLevel(m_session, optPower[1]->isChecked() ? 1 : 0);
        m_session.prompts().setBusy(false);
        accept();
    });
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void SetPowerS::done(int result)
{
    m_port.release();
    QDialog::done(result);
}

Hours::Hours(ModemSession &session, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("Hours"));
    setWindowTitle(QStringLiteral("Varnel Hour Meter"));
    const HourMeter meter = ReadHours(session);
    auto *grid = new QGridLayout(this);
    const std::pair<const char *, QString> rows[] = {{"Total Hours =", meter.total},
                                                     {"Years =", QString::number(meter.years)},
                                                     {"Days =", QString::number(meter.days)},
                                                     {"Hours =", numberText(meter.hours)}};
    QLabel **values[] = {&lblTotal, &lblYears, &lblDays, &lblHours};
    const char *names[] = {"lblTotal", "lblYears", "lblDays", "lblHours"};
    for (int i = 0; i < 4; ++i) {
        grid->addWidget(
            named<QLabel>(QStringLiteral("Label%1").arg(i + 1), QLatin1String(rows[i].first), this), i, 0);
        *values[i] = named<QLabel>(names[i], rows[i].second, this);
        grid->addWidget(*values[i], i, 1);
    }
    cmdOK = named<QPushButton>("cmdOK", QStringLiteral("OK"), this);
    grid->addWidget(cmdOK, 4, 0, 1, 2, Qt::AlignCenter);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
}

void ShowModelOptions(ModemSession &session, QWidget *parent, bool settable)
{
    const std::optional<ModelOptionsRead> read = readModelOptions(session);
    if (!read)
        return;
    std::unique_ptr<Options> form(read->spreadSpectrum() ? new OptQ40Z(session, parent)
                                                         : new Options(session, parent));
    form->setBits(read->bits);
    form->cmdSet->setEnabled(settable);
    form->exec();
}

void mnuModemopt(ModemSession &session, QWidget *parent)
{
    BusyPointer busy(session.prompts());
    ShowModelOptions(session, parent, false);
}

void mnuPowerS(ModemSession &session, QWidget *parent)
{
    if (!PowerLevelAvailable(session))
        return;
    SetPowerS form(session, parent);
    form.exec();
}

void mnuHours(ModemSession &session, QWidget *parent)
{
    BusyPointer busy(session.prompts());
    if (!session.EnterCommandMode())
        return;
    Hours form(session, parent);
    form.exec();
}
