#include "CommandDialogs.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "CommControl.h"
#include "CommandVocabulary.h"
#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
const QString kAddCaption = QStringLiteral("     Add to Command List");

QLabel *wrapped(QAnyStringView name, const QString &text, QWidget *parent)
{
    auto *label = named<QLabel>(name, text, parent);
    label->setWordWrap(true);
    return label;
}

QHBoxLayout *buttonRow(std::initializer_list<QWidget *> buttons)
{
    auto *row = new QHBoxLayout;
    for (QWidget *b : buttons)
        row->addWidget(b);
    return row;
}

// The dialogs open over the programming screen, which takes no input until they close, and are
// gone once closed.
void showDialog(QDialog *dialog)
{
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->show();
}

void askInput(ModemSession &session, const CommandEntry &entry, const AddCommandHook &addCommand)
{
    Prompts &prompts = session.prompts();
    const std::optional<QString> answer = prompts.InputBox(
        QLatin1String(entry.question), QLatin1String(entry.title), QLatin1String(entry.preset));
    if (!answer || answer->isEmpty())
        return;
    attempt(prompts, [&] {
        if (const std::optional<QString> line = inputLine(entry, *answer))
            addCommand(*line);
        else
            prompts.MsgBox(QLatin1String(entry.refusal), MsgButtons::OkOnly, MsgIcon::Exclamation,
                           QLatin1String(entry.boxTitle));
    });
}

void askSecurity(ModemSession &session, const AddCommandHook &addCommand)
{
    Prompts &prompts = session.prompts();
    prompts.MsgBox(QStringLiteral("The Security Feature in the Varnel disables the prgramming.\rThis feature "
                                  "can only be turned off the the origional security value.\rIf the security "
                                  "value is lost, the Varnel can no longer be programmed."),
                   MsgButtons::OkOnly, MsgIcon::Information);
    const std::optional<QString> answer = prompts.InputBox(
        QStringLiteral("Enter a number from 1 to 100000 to enable the security feature or type "
                       "the security value currently set to disable security."),
        QStringLiteral("Security feature"));
    if (!answer || answer->isEmpty())
        return;
    // A value beyond 16 bits cannot be converted; the user hears of it in the standard box.
    attempt(prompts, [&] {
        if (const std::optional<QString> line = securityLine(*answer))
            addCommand(*line);
        else
            prompts.MsgBox(QStringLiteral("The Security value is not between 0 and 100000!"));
    });
}

void openCommandEntry(QWidget &owner, ModemSession &session, const CommandEntry &entry,
                      const AddCommandHook &addCommand)
{
    switch (entry.dialog) {
    case CommandDialog::Setting:
        session.ProgMode = QLatin1String(entry.key);
        showDialog(new TF(entry, addCommand, &owner));
        break;
    case CommandDialog::Demo:
        session.ProgMode = QLatin1String(entry.key);
        showDialog(new Demoform(session, entry, &owner));
        break;
    case CommandDialog::Input:
        askInput(session, entry, addCommand);
        break;
    }
}

void openCopyright(QWidget &owner, ModemSession &session)
{
    BusyPointer busy(session.prompts());
    if (session.EnterCommandMode())
        showDialog(new copyright(session, &owner));
}
} // namespace

TF::TF(const CommandEntry &entry, AddCommandHook addCommand, QWidget *parent)
    : QDialog(parent), fraTitle(named<QGroupBox>("fraTitle", QLatin1String(entry.question), this)),
      optON(named<QRadioButton>("optON", QStringLiteral("ON"), fraTitle)),
      optOFF(named<QRadioButton>("optOFF", QStringLiteral("OFF"), fraTitle)),
      lbldezzy(wrapped("lbldezzy", commandDescription(entry), this)),
      cmdoklf(named<QPushButton>("cmdoklf", kAddCaption, this)),
      cmdcanclf(named<QPushButton>("cmdcanclf", QStringLiteral("Cancel"), this))
{
    setObjectName(QStringLiteral("TF"));
    setWindowTitle(QLatin1String(entry.title));
    auto *options = new QHBoxLayout(fraTitle);
    options->addWidget(optON);
    options->addWidget(optOFF);
    (QLatin1String(entry.preset) == u"ON" ? optON : optOFF)->setChecked(true);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(fraTitle);
    layout->addWidget(named<QLabel>("Label1", QStringLiteral("Description:"), this));
    layout->addWidget(lbldezzy);
    layout->addLayout(buttonRow({cmdoklf, cmdcanclf}));
    connect(cmdoklf, &QPushButton::clicked, this, [this, &entry, addCommand] {
        addCommand(settingLine(entry, optON->isChecked()));
        close();
    });
    connect(cmdcanclf, &QPushButton::clicked, this, &QDialog::close);
}

TermTime::TermTime(ModemSession &session, AddCommandHook addCommand, QWidget *parent)
    : QDialog(parent), cmboTermt(named<QComboBox>("cmboTermt", this)),
      txtTermTime(named<QLineEdit>("txtTermTime", QStringLiteral("50"), this)),
      cmdoklf(named<QPushButton>("cmdoklf", kAddCaption, this)),
      Command2(named<QPushButton>("Command2", QStringLiteral("Cancel"), this))
{
    setObjectName(QStringLiteral("TermTime"));
    setWindowTitle(QStringLiteral("Termination Timer"));
    cmboTermt->addItems({QStringLiteral("ON"), QStringLiteral("OFF")});
    auto *frame = named<QGroupBox>("Frame1", QStringLiteral("Please Select"), this);
    auto *frameLayout = new QVBoxLayout(frame);
    frameLayout->addWidget(cmboTermt);
    frameLayout->addWidget(txtTermTime);
    frameLayout->addWidget(
        named<QLabel>("Label4", QStringLiteral("Termination Time In Milliseconds (ms)"), frame));
    frameLayout->addWidget(named<QLabel>("Label5", QStringLiteral("(10-65535 ms)"), frame));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(named<QLabel>("Label1", QStringLiteral("Termination Timer"), this));
    layout->addWidget(
        wrapped("Label2",
                QStringLiteral("The Varnel will transmit the contents of its transmit buffer if "
                               "the termination timer expires before another character is "
                               "received via the RS-232/422/485 port."),
                this));
    layout->addWidget(
        wrapped("Label3",
                QStringLiteral("This feature would be used to transmit data when there is no end "
                               "character in the transmit data."),
                this));
    layout->addWidget(frame);
    layout->addLayout(buttonRow({cmdoklf, Command2}));
    connect(cmdoklf, &QPushButton::clicked, this, [this, &session, addCommand] {
        const QStringList lines = termTimeLines(cmboTermt->currentText(), txtTermTime->text());
        if (lines.isEmpty()) {
            session.prompts().MsgBox(QStringLiteral("Please Select Termination Time From 10 to 65535"));
            return;
        }
        for (const QString &line : lines)
            addCommand(line);
        close();
    });
    connect(Command2, &QPushButton::clicked, this, &QDialog::close);
}

Demoform::Demoform(ModemSession &session, const CommandEntry &entry, QWidget *parent)
    : QDialog(parent), lbldemo(wrapped("lbldemo", commandDescription(entry), this)),
      cmdDemo(named<QPushButton>("cmdDemo", QStringLiteral("Demo"), this)),
      cmdCancel(named<QPushButton>("cmdCancel", QStringLiteral("Cancel"), this)), m_session(session),
      m_entry(entry)
{
    setObjectName(QStringLiteral("Demoform"));
    setWindowTitle(QLatin1String(entry.title));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(named<QLabel>("Label1", QStringLiteral("Description:"), this));
    layout->addWidget(lbldemo);
    layout->addLayout(buttonRow({cmdDemo, cmdCancel}));
    cmdDemo->setEnabled(demoRuns(entry));
    connect(cmdDemo, &QPushButton::clicked, this, &Demoform::cmdDemo_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::close);
}

void Demoform::cmdDemo_Click()
{
    Prompts &prompts = m_session.prompts();
    BusyPointer busy(prompts);
    if (!m_session.EnterCommandMode())
        return;
    QString address;
    if (demoAsksAddress(m_entry)) {
        const std::optional<QString> answer =
            prompts.InputBox(QLatin1String(m_entry.question), QLatin1String(m_entry.boxTitle));
        if (!answer || answer->isEmpty())
            return;
        address = *answer;
    }
    showDialog(new CommandDemo(m_session, QLatin1String(m_entry.title), demoCommand(m_entry, address), this));
}

DemoTerminal::DemoTerminal(ModemSession &session, QWidget *parent)
    : QPlainTextEdit(parent), m_session(session)
{
    setReadOnly(true);
    setFocusPolicy(Qt::StrongFocus);
    // The modem ends its lines with a carriage return and a line feed; the view breaks at the return.
    connect(&session.Comm1(), &CommControl::screenText, this, [this](const QByteArray &bytes) {
        moveCursor(QTextCursor::End);
        insertPlainText(QString::fromLatin1(bytes).remove(u'\n').replace(u'\r', u'\n'));
    });
}

void DemoTerminal::keyPressEvent(QKeyEvent *event)
{
    const QByteArray typed = event->text().toLatin1();
    if (typed.isEmpty()) {
        QPlainTextEdit::keyPressEvent(event);
        return;
    }
    // Keys for a closed port are lost, as in the main terminal.
    ignoreErrors([&] { m_session.Comm1().Output(typed); });
}

CommandDemo::CommandDemo(ModemSession &session, const QString &title, const QString &command, QWidget *parent)
    : QDialog(parent), DemoComm(new DemoTerminal(session, this)),
      Command1(named<QPushButton>("Command1", QStringLiteral("Done"), this)), m_session(session),
      m_port(session.Comm1(), PortClaim::Then::Restore)
{
    setObjectName(QStringLiteral("CommandDemo"));
    setWindowTitle(title);
    DemoComm->setObjectName(QStringLiteral("DemoComm"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(DemoComm);
    layout->addWidget(Command1, 0, Qt::AlignHCenter);
    resize(560, 360);
    connect(Command1, &QPushButton::clicked, this, &QDialog::close);
    // The port runs as a terminal while the window is open, so the answer shows as it arrives.
    PortClaim::giveToTerminal(session.Comm1());
    attempt(session.prompts(), [&] { session.sendText(command.toLatin1() + '\r'); });
    DemoComm->setFocus();
}

void CommandDemo::closeEvent(QCloseEvent *event)
{
    CommControl &comm = m_session.Comm1();
    disconnect(&comm, nullptr, DemoComm, nullptr);
    m_port.release();
    // The main terminal takes the port back in the state it had: an open port is opened afresh.
    if (comm.PortOpen())
        attempt(m_session.prompts(), [&] {
            comm.setPortOpen(false);
            comm.setPortOpen(true);
        });
    event->accept();
}

copyright::copyright(ModemSession &session, QWidget *parent)
    : QDialog(parent), lblcopyr2(wrapped("lblcopyr2", QString(), this)),
      cmdokcopy(named<QPushButton>("cmdokcopy", QStringLiteral("OK"), this))
{
    setObjectName(QStringLiteral("copyright"));
    setWindowTitle(QStringLiteral("Varnel Copyright Information"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblcopyr2);
    layout->addWidget(cmdokcopy, 0, Qt::AlignHCenter);
    connect(cmdokcopy, &QPushButton::clicked, this, &QDialog::close);
    CommControl &comm = session.Comm1();
    PortClaim::takeForProgram(comm);
    comm.setInBufferCount(0);
    attempt(session.prompts(), [&] { comm.Output(QByteArrayLiteral("COP\r")); });
    session.WaitForBytes(40);
    lblcopyr2->setText(QString::fromLatin1(comm.Input()));
}

void wireCommandDialogs(QWidget &menuOwner, ModemSession &session, AddCommandHook addCommand)
{
    const auto onEntry = [&menuOwner](const char *name, auto &&handler) {
        QObject::connect(menuOwner.findChild<QAction *>(QLatin1String(name)), &QAction::triggered, &menuOwner,
                         std::forward<decltype(handler)>(handler));
    };
    for (const CommandEntry &entry : commandEntries())
        if (entry.entry)
            onEntry(entry.entry, [&menuOwner, &session, &entry, addCommand] {
                openCommandEntry(menuOwner, session, entry, addCommand);
            });
    for (const char *name : {"mnuautotadv", "mnuadvtimer"})
        onEntry(name, [&menuOwner, &session, addCommand] {
            showDialog(new TermTime(session, addCommand, &menuOwner));
        });
    onEntry("mnusecadv", [&session, addCommand] { askSecurity(session, addCommand); });
    onEntry("mnucopyr", [&menuOwner, &session] { openCopyright(menuOwner, session); });
}
