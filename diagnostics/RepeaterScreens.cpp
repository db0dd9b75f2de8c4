#include "RepeaterScreens.h"

#include "AppError.h"
#include "BusyPointer.h"
#include "Diagnostic.h"
#include "DiagnosticForms.h"
#include "DiagnosticShell.h"
#include "ModemSession.h"
#include "Named.h"
#include "ProgramFile.h"
#include "Prompts.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
QLabel *wrapped(const QString &text)
{
    auto *label = new QLabel(text);
    label->setWordWrap(true);
    return label;
}

void setBackColour(QLabel *label, const QColor &colour)
{
    QPalette palette = label->palette();
    palette.setColor(QPalette::Window, colour);
    label->setPalette(palette);
    label->setAutoFillBackground(true);
}
} // namespace

void Diagnostic::mnuRTNRepTest_Click()
{
    auto *config = new RepTestConfig(*this);
    config->show();
    config->Load();
}

RepTestConfig::RepTestConfig(Diagnostic &diagnostic) : QMainWindow(&diagnostic), m_diagnostic(diagnostic)
{
    setObjectName(QStringLiteral("RepTestConfig"));
    setWindowTitle(QStringLiteral("RTN Repeater Test Setup"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    setCentralWidget(central);
    layout->addWidget(wrapped(QStringLiteral("This section of the diagnostics will test the operation of the "
                                             "repeater sites in an Varnel Roaming Terminal Network (RTN).")));
    layout->addWidget(
        wrapped(QStringLiteral("The setup information below will be saved after completion and "
                               "will not be required to enter next time you test the repeaters.")));
    auto *frame = named<QGroupBox>("fraConfig", QStringLiteral("Repeater Configuration..."));
    layout->addWidget(frame);
    auto *grid = new QGridLayout(frame);
    grid->addWidget(new QLabel(QStringLiteral("Enter Repeater Name")), 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Enter Address or Route")), 0, 2);
    for (int i = 0; i < kRepeaterRows; ++i) {
        grid->addWidget(new QLabel(QStringLiteral("Repeater #%1:").arg(i + 1)), i + 1, 0);
        grid->addWidget(txtRepName[size_t(i)] = named<QLineEdit>(QStringLiteral("txtRepName_%1").arg(i)),
                        i + 1, 1);
        grid->addWidget(txtRepAdd[size_t(i)] = named<QLineEdit>(QStringLiteral("txtRepAdd_%1").arg(i)), i + 1,
                        2);
    }
    layout->addWidget(
        chkMaintenceKit = named<QCheckBox>(
            "chkMaintenceKit", QStringLiteral("Check Here if using Varnel Maintence Kit at Base")));
    auto *base = new QHBoxLayout;
    base->addWidget(lblBase = named<QLabel>("lblBase", QStringLiteral("Base Station Varnel Address:")));
    base->addWidget(txtBase = named<QLineEdit>("txtBase", QStringLiteral("99")));
    layout->addLayout(base);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdContinue = named<QPushButton>("cmdContinue", QStringLiteral("Continue")));
    buttons->addWidget(cmdCancel = named<QPushButton>("cmdCancel", QStringLiteral("Cancel")));
    layout->addLayout(buttons);
    QMenu *file = namedMenu(menuBar(), "mnuFile", QStringLiteral("&File"));
    mnuOpen = namedEntry(file, "mnuOpen", QStringLiteral("&Open Configuration"));
    mnuSave = namedEntry(file, "mnuSave", QStringLiteral("&Save Configuration"));
    mnuExit = namedEntry(file, "mnuExit", QStringLiteral("&Exit Repeater Testing"));
    lblBase->setVisible(false);
    txtBase->setVisible(false);
    connect(chkMaintenceKit, &QCheckBox::toggled, this, [this](bool kit) {
        lblBase->setVisible(kit);
        txtBase->setVisible(kit);
    });
    connect(mnuOpen, &QAction::triggered, this, &RepTestConfig::mnuOpen_Click);
    connect(mnuSave, &QAction::triggered, this, &RepTestConfig::mnuSave_Click);
    connect(mnuExit, &QAction::triggered, this, &QWidget::close);
    connect(cmdContinue, &QPushButton::clicked, this, &RepTestConfig::cmdContinue_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &QWidget::close);
}

RepeaterRows RepTestConfig::rows() const
{
    RepeaterRows rows;
    for (size_t i = 0; i < rows.size(); ++i)
        rows[i] = {txtRepName[i]->text(), txtRepAdd[i]->text()};
    return rows;
}

void RepTestConfig::setRows(const RepeaterRows &rows)
{
    for (size_t i = 0; i < rows.size(); ++i) {
        txtRepName[i]->setText(rows[i].name);
        txtRepAdd[i]->setText(rows[i].address);
    }
}

void RepTestConfig::Load()
{
    if (!m_diagnostic.repeaterSetup || !m_diagnostic.repeaterSetup()) {
        setRows({});
        return;
    }
    // The setting says only that a file was saved, not where: the user finds it in the dialog.
    if (m_diagnostic.session().prompts().MsgBox(
            QStringLiteral(
                "A Repeater Configuration File Has Been Previously Saved.  Do You Wish To Load This File?"),
            MsgButtons::YesNo, MsgIcon::None, QStringLiteral("Configuration Saved")) == MsgAnswer::Yes)
        mnuOpen_Click();
}

void RepTestConfig::mnuOpen_Click()
{
    Prompts &prompts = m_diagnostic.session().prompts();
    BusyPointer busy(prompts);
    const QString name =
        askFileName(prompts, FileDialogRequest::Kind::Open, kRepeaterFileFilter, kBlankFileName);
    if (name.isEmpty() || name == kBlankFileName)
        return;
    const ProgramFileContents contents = readProgramFile(name);
    if (contents.errorNumber) {
        if (const QString text = openErrorMessage(contents.errorNumber); !text.isEmpty())
            prompts.MsgBox(text);
        return;
    }
    // The rows the file holds are filled from the top; those below keep what they had.
    const QList<RepeaterRow> read = repeaterRowsFromLines(contents.lines);
    for (qsizetype i = 0; i < read.size(); ++i) {
        txtRepName[size_t(i)]->setText(read[i].name);
        txtRepAdd[size_t(i)]->setText(read[i].address);
    }
}

void RepTestConfig::mnuSave_Click()
{
    Prompts &prompts = m_diagnostic.session().prompts();
    const RepeaterSaveCheck check = checkRepeaterSave(rows());
    setRows(check.rows);
    if (!check.faultText.isEmpty()) {
        prompts.MsgBox(check.faultText, MsgButtons::OkOnly,
                       check.exclamation ? MsgIcon::Exclamation : MsgIcon::None);
        return;
    }
    // The dialog's Cancel is an error that ends the save: nothing is written and nothing counts as saved.
    const QString name = askFileName(prompts, FileDialogRequest::Kind::Save, kRepeaterSaveFilter);
    if (name.isEmpty())
        return;
    attempt(prompts, [&] { writeProgramFile(name, repeaterConfigLines(check.rows)); });
    if (m_diagnostic.setRepeaterSetup)
        m_diagnostic.setRepeaterSetup(true);
}

void RepTestConfig::cmdContinue_Click()
{
    Prompts &prompts = m_diagnostic.session().prompts();
    if (txtRepAdd[0]->text().isEmpty()) {
        prompts.MsgBox(QStringLiteral("At Least On Repeater Must Be Programmed To Continue"),
                       MsgButtons::OkOnly, MsgIcon::Exclamation);
        return;
    }
    if ((!m_diagnostic.repeaterSetup || !m_diagnostic.repeaterSetup()) &&
        prompts.MsgBox(QStringLiteral("The configuration menu has not been saved. If you do not save the "
                                      "information, it will need to be typed in again for the next test.  Do "
                                      "you wish to save the configuration now?"),
                       MsgButtons::YesNo, MsgIcon::None,
                       QStringLiteral("Configuration Not Saved")) == MsgAnswer::Yes)
        mnuSave_Click();
    auto *test = new RepeaterTest(m_diagnostic);
    test->Load(repeaterSites(rows(), chkMaintenceKit->isChecked(), txtBase->text()));
    test->show();
    close();
}

RepeaterTest::RepeaterTest(Diagnostic &diagnostic) : QDialog(&diagnostic), m_diagnostic(diagnostic)
{
    setObjectName(QStringLiteral("RepeaterTest"));
    setWindowTitle(QStringLiteral("RTN Repeater Testing"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QGridLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Test Varnel")), 0, 0);
    layout->addWidget(lblSerial = named<QLabel>("lblSerial"), 0, 1);
    layout->addWidget(new QLabel(QStringLiteral("Frequency:")), 1, 0);
    layout->addWidget(lblFreq = named<QLabel>("lblFreq"), 1, 1);
    layout->addWidget(new QLabel(QStringLiteral("MHz")), 1, 2);
    auto *frame = named<QGroupBox>("fraStatus", QStringLiteral("Repeater Status..."));
    layout->addWidget(frame, 2, 0, 1, 3);
    auto *grid = new QGridLayout(frame);
    grid->addWidget(new QLabel(QStringLiteral("Repeater Name")), 0, 0);
    grid->addWidget(new QLabel(QStringLiteral("Address")), 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Link Status")), 0, 2);
    for (int i = 0; i < kRepeaterRows; ++i) {
        const auto at = size_t(i);
        grid->addWidget(lblRepName[at] = named<QLabel>(QStringLiteral("lblRepName_%1").arg(i)), i + 1, 0);
        grid->addWidget(lblAddTotal[at] = named<QLabel>(QStringLiteral("lblAddTotal_%1").arg(i)), i + 1, 1);
        grid->addWidget(lblLinkTotal[at] = named<QLabel>(QStringLiteral("lblLinkTotal_%1").arg(i)), i + 1, 2);
    }
    layout->addWidget(cmdRun = named<QPushButton>("cmdRun", QStringLiteral("Run Test")), 3, 1);
    layout->addWidget(cmdQuit = named<QPushButton>("cmdQuit", QStringLiteral("Quit")), 3, 2);
    connect(cmdRun, &QPushButton::clicked, this, &RepeaterTest::cmdRun_Click);
    connect(cmdQuit, &QPushButton::clicked, this, &QWidget::close);
}

void RepeaterTest::Load(const std::array<RepeaterSite, kRepeaterRows> &sites)
{
    lblSerial->setText(m_diagnostic.UnderTest.SerialText);
    lblFreq->setText(m_diagnostic.UnderTest.OperatingFrequency);
    for (size_t i = 0; i < sites.size(); ++i) {
        const RepeaterSite &site = sites[i];
        lblAddTotal[i]->setText(site.row.address);
        lblAddTotal[i]->setVisible(site.shown);
        lblLinkTotal[i]->setVisible(site.shown);
        if (site.shown)
            setTestStatus(lblLinkTotal[i], TestStatus::NotTested);
        lblRepName[i]->setText(site.row.name);
        lblRepName[i]->setVisible(!site.row.name.isEmpty());
    }
}

void RepeaterTest::cmdRun_Click()
{
    RepeaterRows rows;
    for (size_t i = 0; i < rows.size(); ++i)
        rows[i] = {lblRepName[i]->text(), lblAddTotal[i]->text()};
    Diagnostic &diagnostic = m_diagnostic;
    BusyPointer busy(diagnostic.session().prompts());
    diagnostic.showDiagInfo(QStringLiteral("Testing Repeater Sites"));
    RepeaterSiteRun run(diagnostic.session(), diagnostic.testHooks());
    // The form may be closed while the test runs; the rows it would show then go nowhere.
    QPointer<RepeaterTest> self(this);
    run.linkShown = [self](int row, bool up) {
        if (self)
            self->showLink(row, up);
    };
    run.rowsDone = [&diagnostic] {
        if (DiagInfo *info = diagnostic.diagInfo())
            info->close();
    };
    diagnostic.siteTestRunning = true;
    run.run(rows);
    diagnostic.siteTestRunning = false;
    diagnostic.showReport();
    diagnostic.closeIfAsked();
}

void RepeaterTest::showLink(int row, bool up)
{
    QLabel *label = lblLinkTotal[size_t(row)];
    label->setText(up ? QStringLiteral("Link Up") : QStringLiteral("Link Down"));
    setBackColour(label, up ? Qt::green : Qt::red);
}
