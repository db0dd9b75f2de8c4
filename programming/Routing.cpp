#include "Routing.h"

#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"
#include "SetupForms.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
const QString kRepeaterCaptions[] = {QStringLiteral("1st Repeater"), QStringLiteral("2nd Repeater"),
                                     QStringLiteral("3rd Repeater")};

QGroupBox *frame(const QString &title, QWidget *parent)
{
    return named<QGroupBox>("Frame1", title, parent);
}

// The example routes: the repeaters, then the address fields from the first on.
struct ExampleRoute
{
    QStringList repeaters;
    QStringList addresses;
};
const ExampleRoute kExamples[] = {
    {{QStringLiteral("5")}, {QStringLiteral("25"), QStringLiteral("28")}},
    {{QStringLiteral("3")}, {QStringLiteral("20"), QStringLiteral("21")}},
    {{QStringLiteral("3"), QStringLiteral("20")}, {QStringLiteral("40"), QStringLiteral("42")}},
    {{QStringLiteral("3"), QStringLiteral("20"), QStringLiteral("40")},
     {QStringLiteral("50"), QStringLiteral("53"), QStringLiteral("35")}},
};
} // namespace

RouteFields::RouteFields(QGroupBox *frame) : lblRoute(named<QLabel>("lblRoute", frame))
{
    auto *grid = new QGridLayout(frame);
    grid->addWidget(lblRoute, 0, 0, 1, 4);
    for (int i = 0; i < 3; ++i) {
        txtRep[size_t(i)] = named<QLineEdit>(QStringLiteral("txtRep(%1)").arg(i), frame);
        grid->addWidget(named<QLabel>(QStringLiteral("lblRep(%1)").arg(i), kRepeaterCaptions[i], frame), 1,
                        i);
        grid->addWidget(txtRep[size_t(i)], 2, i);
    }
    grid->addWidget(named<QLabel>("lblAddresses", QStringLiteral("Addresses Using This Route:"), frame), 3, 0,
                    1, 4);
    grid->addWidget(named<QLabel>("lblAddress", QStringLiteral("Address:"), frame), 4, 0);
    grid->addWidget(named<QLabel>("lblGroup", QStringLiteral("Group"), frame), 4, 3);
    for (int i = 0; i < 8; ++i)
        txtAdd[size_t(i)] = named<QLineEdit>(QStringLiteral("txtAdd(%1)").arg(i), frame);
    for (int row = 0; row < 4; ++row) {
        chkGroup[size_t(row)] = named<QCheckBox>(QStringLiteral("chkGroup(%1)").arg(row), frame);
        grid->addWidget(txtAdd[size_t(row)], 5 + row, 0);
        grid->addWidget(
            named<QLabel>(QStringLiteral("lblThrough(%1)").arg(row), QStringLiteral("-Through-"), frame),
            5 + row, 1);
        grid->addWidget(txtAdd[size_t(row) + 4], 5 + row, 2);
        grid->addWidget(chkGroup[size_t(row)], 5 + row, 3);
    }
    grid->addWidget(
        named<QLabel>("lblNote", QStringLiteral("If only one address, leave second box blank."), frame), 9, 0,
        1, 4);
    showRoute(1);
}

void RouteFields::showRoute(int number) const
{
    lblRoute->setText(QStringLiteral("Route %1").arg(number));
}

void RouteFields::clear() const
{
    for (QLineEdit *field : txtRep)
        field->clear();
    for (QLineEdit *field : txtAdd)
        field->clear();
    for (QCheckBox *box : chkGroup)
        box->setChecked(false);
}

Routing::Routing(ModemSession &session, AddCommandHook addCommand, QWidget *parent)
    : QWidget(parent, Qt::Window), fields(frame(QStringLiteral("Repeater Routing"), this)),
      cmdNext(named<QPushButton>("cmdNext",
                                 QStringLiteral("     Add This Route To                Command List"), this)),
      cmdMore(named<QPushButton>(
          "cmdMore", QStringLiteral("    More Addresses For                Current Route"), this)),
      cmdExample(named<QPushButton>("cmdExample", QStringLiteral("Examples"), this)),
      cmdExit(named<QPushButton>("cmdExit", QStringLiteral("Done"), this)), m_session(session),
      m_addCommand(std::move(addCommand))
{
    setObjectName(QStringLiteral("Routing"));
    setWindowTitle(QStringLiteral("Routing"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(fields.lblRoute->parentWidget());
    auto *buttons = new QHBoxLayout;
    for (QPushButton *button : {cmdNext, cmdMore, cmdExample, cmdExit})
        buttons->addWidget(button);
    layout->addLayout(buttons);

    connect(cmdNext, &QPushButton::clicked, this, [this] { addRoute(RouteAction::Next); });
    connect(cmdMore, &QPushButton::clicked, this, [this] {
        if (addRoute(RouteAction::More))
            m_session.prompts().MsgBox(
                QStringLiteral("The Address Groups Have Been Added To Your Command List."),
                MsgButtons::OkOnly, MsgIcon::Information);
    });
    connect(cmdExample, &QPushButton::clicked, this, [this] { (new RoutingExamp(this))->show(); });
    connect(cmdExit, &QPushButton::clicked, this, &Routing::cmdExit_Click);
}

bool Routing::addRoute(RouteAction action)
{
    RouteAnswers answers{fieldTexts(fields.txtRep), fieldTexts(fields.txtAdd), {}};
    for (size_t i = 0; i < answers.group.size(); ++i)
        answers.group[i] = fields.chkGroup[i]->isChecked();
    if (!runSetupStep(
            m_session.prompts(), [this, &answers, action] { return routeLines(m_counters, answers, action); },
            m_addCommand, fields.txtRep))
        return false;
    fields.showRoute(m_counters.route);
    fields.clear();
    return true;
}

void Routing::cmdExit_Click()
{
    // A route still being typed goes to the list before the form closes.
    if (!fields.txtRep[0]->text().isEmpty())
        addRoute(RouteAction::Next);
    m_session.prompts().MsgBox(QStringLiteral("Your Routing Information Has Been Added To The Command List"),
                               MsgButtons::OkOnly, MsgIcon::Information);
    close();
}

RoutingExamp::RoutingExamp(QWidget *parent)
    : QWidget(parent, Qt::Window), fields(frame(QStringLiteral("Example Routing"), this)),
      cmdNext(named<QPushButton>("cmdNext", QStringLiteral("View Next Route"), this)),
      Command2(named<QPushButton>("Command2", QStringLiteral("Done"), this))
{
    setObjectName(QStringLiteral("RoutingExamp"));
    setWindowTitle(QStringLiteral("Repeater Routing"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(fields.lblRoute->parentWidget());
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdNext);
    buttons->addWidget(Command2);
    layout->addLayout(buttons);
    for (QLineEdit *field : fields.txtRep)
        field->setReadOnly(true);
    for (QLineEdit *field : fields.txtAdd)
        field->setReadOnly(true);
    for (QCheckBox *box : fields.chkGroup)
        box->setEnabled(false);
    showExample();

    connect(cmdNext, &QPushButton::clicked, this, [this] {
        m_example = (m_example + 1) % int(std::size(kExamples));
        showExample();
    });
    connect(Command2, &QPushButton::clicked, this, &QWidget::close);
}

void RoutingExamp::showExample()
{
    const ExampleRoute &example = kExamples[m_example];
    fields.clear();
    fields.showRoute(m_example + 1);
    for (qsizetype i = 0; i < example.repeaters.size(); ++i)
        fields.txtRep[size_t(i)]->setText(example.repeaters[i]);
    for (qsizetype i = 0; i < example.addresses.size(); ++i)
        fields.txtAdd[size_t(i)]->setText(example.addresses[i]);
}

RoutingExample::RoutingExample(QWidget *parent)
    : QWidget(parent, Qt::Window), Command1(named<QPushButton>("Command1", QStringLiteral("Done"), this))
{
    setObjectName(QStringLiteral("RoutingExample"));
    setWindowTitle(QStringLiteral("Repeater Routing Example"));
    setAttribute(Qt::WA_DeleteOnClose);
    struct Example
    {
        const char *heading;
        QStringList repeaters;
    };
    const Example examples[] = {
        {"Example 1: Programming Varnel Address 30",
         {QStringLiteral("40"), QStringLiteral("20"), QStringLiteral("3")}},
        {"Example 2: Programming Varnel Address 40", {QStringLiteral("20"), QStringLiteral("3")}},
        {"Example 3: Programming Varnel Address 26", {QStringLiteral("5")}},
    };
    auto *layout = new QVBoxLayout(this);
    // The network behind the examples: each chain of repeaters ends at the master, address 1.
    auto *figure = named<QLabel>(
        "picNetwork", QStringLiteral("30 -> 40 -> 20 -> 3 -> 1\n40 -> 20 -> 3 -> 1\n26 -> 5 -> 1"), this);
    figure->setFrameShape(QFrame::Box);
    figure->setFont(QFont(QStringLiteral("monospace")));
    layout->addWidget(figure);
    for (const Example &example : examples) {
        auto *box = named<QGroupBox>(QStringLiteral("fraExample(%1)").arg(layout->count() - 1),
                                     QLatin1String(example.heading), this);
        auto *grid = new QGridLayout(box);
        for (int i = 0; i < 3; ++i) {
            auto *field =
                named<QLineEdit>(QStringLiteral("txtRep(%1)").arg(i), example.repeaters.value(i), box);
            field->setReadOnly(true);
            grid->addWidget(named<QLabel>(QStringLiteral("lblRep(%1)").arg(i), kRepeaterCaptions[i], box), 0,
                            i);
            grid->addWidget(field, 1, i);
        }
        auto *destination = named<QLineEdit>("txtDestination", QStringLiteral("1"), box);
        destination->setReadOnly(true);
        grid->addWidget(
            named<QLabel>("lblDestination", QStringLiteral("Destination Varnel/PLC Address:"), box), 0, 3);
        grid->addWidget(destination, 1, 3);
        layout->addWidget(box);
    }
    layout->addWidget(Command1, 0, Qt::AlignHCenter);
    connect(Command1, &QPushButton::clicked, this, &QWidget::close);
}
