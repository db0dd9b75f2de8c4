#include "SetModel.h"

#include "FreqSetting.h"
#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"
#include "TextRules.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

SetModel::SetModel(ModemSession &session, QWidget *parent) : QWidget(parent, Qt::Window), m_session(session)
{
    setObjectName(QStringLiteral("SetModel"));
    setWindowTitle(QStringLiteral("Calculate Frequency Latches"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *grid = new QGridLayout(this);
    QGroupBox *groups[] = {named<QGroupBox>("fraOld", QStringLiteral("Old Case Style"), this),
                           named<QGroupBox>("fraNew", QStringLiteral("New Case Style"), this)};
    QVBoxLayout *columns[] = {new QVBoxLayout(groups[0]), new QVBoxLayout(groups[1])};
    // One choice over both groups, though each group is a frame of its own.
    m_choice = new QButtonGroup(this);
    const QList<CalculatorUnit> &units = calculatorUnits();
    for (int i = 0; i < units.size(); ++i) {
        QGroupBox *group = groups[units[i].newCase ? 1 : 0];
        auto *option = named<QRadioButton>(QStringLiteral("optModel(%1)").arg(i),
                                           QLatin1String(units[i].caption), group);
        columns[units[i].newCase ? 1 : 0]->addWidget(option);
        optModel << option;
        m_choice->addButton(option, i);
        connect(option, &QRadioButton::toggled, this, [this, i](bool on) {
            if (on)
                MaskBoxtxt->setInputMask(
                    frequencyMask(QLatin1String(calculatorUnits()[i].model), FreqGrid::Calculator));
        });
    }
    grid->addWidget(groups[0], 0, 0);
    grid->addWidget(groups[1], 0, 1);
    MaskBoxtxt = named<QLineEdit>("MaskBoxtxt", this);
    grid->addWidget(MaskBoxtxt, 1, 0, 1, 2);
    cmdOK = named<QPushButton>("cmdOK", QStringLiteral("Calculate"), this);
    cmdCancel = named<QPushButton>("cmdCancel", QStringLiteral("Cancel"), this);
    grid->addWidget(cmdOK, 2, 0);
    grid->addWidget(cmdCancel, 2, 1);
    connect(cmdOK, &QPushButton::clicked, this, &SetModel::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &QWidget::close);
    optModel.first()->setChecked(true);
}

void SetModel::cmdOK_Click()
{
    const CalculatorUnit &unit = calculatorUnits()[int(optModel.indexOf(m_choice->checkedButton()))];
    const double frequency = numericValue(MaskBoxtxt->text());
    const Notice refusal = calculatorCheck(unit, frequency);
    if (!refusal.text.isEmpty()) {
        m_session.prompts().MsgBox(refusal.text, MsgButtons::OkOnly, refusal.icon, refusal.title);
        MaskBoxtxt->setFocus();
        return;
    }
    const Latches l = calculatorLatches(unit, frequency);
    auto *display =
        new DisplayLatches(QStringLiteral("Frequency Latches for ") + QLatin1String(unit.model) +
                               QStringLiteral(" at ") + numberText(frequency) + QStringLiteral(" MHz"),
                           numberText(l.n1), numberText(l.a1), numberText(l.n2), this);
    display->show();
}

DisplayLatches::DisplayLatches(const QString &title, const QString &n1, const QString &a1, const QString &n2,
                               QWidget *parent)
    : QWidget(parent, Qt::Window)
{
    setObjectName(QStringLiteral("DisplayLatches"));
    setWindowTitle(QStringLiteral("Latch Values"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *grid = new QGridLayout(this);
    grid->addWidget(named<QLabel>("lblTitle", title, this), 0, 0, 1, 2);
    const std::pair<const char *, QString> rows[] = {
        {"Switch Sel/N1:", n1}, {"Switch Sel/A1:", a1}, {"Switch Sel/N2:", n2}};
    for (int i = 0; i < 3; ++i) {
        grid->addWidget(
            named<QLabel>(QStringLiteral("Label%1").arg(i + 1), QLatin1String(rows[i].first), this), i + 1,
            0);
        grid->addWidget(named<QLabel>(QStringLiteral("lblLatch(%1)").arg(i), rows[i].second, this), i + 1, 1);
    }
}
