#include "DiagnosticForms.h"

#include "AppError.h"
#include "Diagnostic.h"
#include "DiagnosticShell.h"
#include "ModemSession.h"
#include "Named.h"
#include "PollingDiag.h"
#include "ProgramFile.h"
#include "Prompts.h"
#include "ReportPrint.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPrintDialog>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
QLabel *text(QLayout *layout, const QString &caption)
{
    auto *label = new QLabel(caption);
    label->setWordWrap(true);
    layout->addWidget(label);
    return label;
}
} // namespace

DiagSetup::DiagSetup(Diagnostic &diagnostic) : m_diagnostic(diagnostic)
{
    setObjectName(QStringLiteral("DiagSetup"));
    setWindowTitle(QStringLiteral("Varnel Diagnostics"));
    auto *layout = new QVBoxLayout(this);
    QLabel *title = text(layout, QStringLiteral("Welcome to The Varnel Diagnostic Program"));
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    text(layout, QStringLiteral(
                     "This section of the Varnel Utility will test the operation of your wireless modems."));
    text(layout,
         QStringLiteral("Tests such as Measuring the Receive Signal Strength and Testing for Frequency "
                        "Interference require that the Varnel have the Receive Signal Strength installed."));
    text(layout,
         QStringLiteral("If your Varnel wireless modem does not have the necessary options for a test, it "
                        "will be listed as NOT AVAILABLE on the diagnostic screen.  Contact Customer "
                        "Support for more information on Varnel options."));
    layout->addWidget(chkDiagHide = named<QCheckBox>(
                          "chkDiagHide", QStringLiteral("Don't show this dialog in the future.")));
    layout->addWidget(cmdBegin = named<QPushButton>("cmdBegin", QStringLiteral("OK")));
    connect(cmdBegin, &QPushButton::clicked, this, [this] {
        if (m_diagnostic.setHideDiag)
            m_diagnostic.setHideDiag(chkDiagHide->isChecked());
        close();
    });
    setAttribute(Qt::WA_DeleteOnClose);
}

void DiagSetup::closeEvent(QCloseEvent *event)
{
    // However the introduction goes, the address dialog takes over.
    m_diagnostic.showDiagNewAdd();
    event->accept();
}

DiagNewAdd::DiagNewAdd(Diagnostic &diagnostic) : m_diagnostic(diagnostic)
{
    setObjectName(QStringLiteral("DiagNewAdd"));
    setWindowTitle(QStringLiteral("Add New Test Addresses"));
    auto *frame = named<QGroupBox>("Frame1", QStringLiteral("Please Enter Remote Varnel Addresses..."), this);
    setCentralWidget(frame);
    auto *grid = new QGridLayout(frame);
    grid->addWidget(new QLabel(QStringLiteral("Test Address #")), 0, 0);
    grid->addWidget(lblTestNum = named<QLabel>("lblTestNum"), 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Remote Varnel Address:")), 1, 0);
    grid->addWidget(txtDes = named<QLineEdit>("txtDes"), 1, 1);
    const QString captions[] = {QStringLiteral("1st Repeater"), QStringLiteral("2nd Repeater"),
                                QStringLiteral("3rd Repeater")};
    for (int i = 0; i < 3; ++i) {
        grid->addWidget(new QLabel(captions[i]), 2, i);
        grid->addWidget(txtRep[size_t(i)] = named<QLineEdit>(QStringLiteral("txtRep_%1").arg(i)), 3, i);
    }
    grid->addWidget(cmdNext = named<QPushButton>("cmdNext", QStringLiteral("&Next Address")), 4, 0);
    grid->addWidget(cmdDone = named<QPushButton>("cmdDone", QStringLiteral("&Done")), 4, 2);
    QMenu *file = namedMenu(menuBar(), "mnuFile", QStringLiteral("&File"));
    mnuRepeater = namedEntry(file, "mnuRepeater", QStringLiteral("&RTN Repeater Testing"));
    mnuOpenList = namedEntry(file, "mnuOpenList", QStringLiteral("&Open Saved Polling List"));
    mnuExit = namedEntry(file, "mnuExit", QStringLiteral("&Exit Diagnostics"));
    connect(mnuRepeater, &QAction::triggered, &m_diagnostic, &Diagnostic::mnuRTNRepTest_Click);
    connect(mnuOpenList, &QAction::triggered, &m_diagnostic, &Diagnostic::mnuOpenList_Click);
    connect(mnuExit, &QAction::triggered, &m_diagnostic, &QWidget::close);
    connect(cmdNext, &QPushButton::clicked, this, &DiagNewAdd::cmdNext_Click);
    connect(cmdDone, &QPushButton::clicked, this, &DiagNewAdd::cmdDone_Click);
    m_count = m_diagnostic.lstAdds->count() + 1;
    lblTestNum->setText(QString::number(m_count));
    setAttribute(Qt::WA_DeleteOnClose);
}

void DiagNewAdd::cmdNext_Click()
{
    const AddressEntry entry =
        addressRow(txtDes->text(), {txtRep[0]->text(), txtRep[1]->text(), txtRep[2]->text()});
    if (!entry.faultText.isEmpty()) {
        m_diagnostic.session().prompts().MsgBox(entry.faultText, MsgButtons::OkOnly,
                                                entry.exclamation ? MsgIcon::Exclamation : MsgIcon::None);
        if (entry.clearRepeaters)
            for (QLineEdit *field : txtRep)
                field->clear();
        return;
    }
    m_diagnostic.lstAdds->addItem(entry.row);
    lblTestNum->setText(QString::number(++m_count));
    txtDes->clear();
    for (QLineEdit *field : txtRep)
        field->clear();
    txtDes->setFocus();
}

void DiagNewAdd::cmdDone_Click()
{
    if (!txtDes->text().isEmpty())
        cmdNext_Click();
    if (m_diagnostic.lstAdds->count() == 0) {
        m_diagnostic.session().prompts().MsgBox(kNoAddressText);
        return;
    }
    m_diagnostic.activateWindow();
    close();
}

DiagInfo::DiagInfo(Diagnostic &diagnostic) : m_diagnostic(diagnostic)
{
    setObjectName(QStringLiteral("DiagInfo"));
    setWindowTitle(QStringLiteral("Test In Progress..."));
    setModal(false);
    auto *grid = new QGridLayout(this);
    grid->addWidget(lblTest = named<QLabel>("lblTest"), 0, 0, 1, 2);
    grid->addWidget(lblStatus = named<QLabel>("lblStatus"), 1, 0, 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("Address:")), 2, 0);
    grid->addWidget(lblAdd = named<QLabel>("lblAdd"), 2, 1);
    grid->addWidget(pbStatus = named<QProgressBar>("pbStatus"), 3, 0, 1, 2);
    grid->addWidget(cmdCancel = named<QPushButton>("cmdCancel", QStringLiteral("Cancel")), 4, 1);
    pbStatus->setRange(0, 100);
    connect(cmdCancel, &QPushButton::clicked, &m_diagnostic, &Diagnostic::cmdCancel_Click);
    setAttribute(Qt::WA_DeleteOnClose);
}

ReportWindow::ReportWindow(Prompts &prompts, const char *name, const QString &title)
    : m_prompts(prompts), m_printer(QPrinter::HighResolution)
{
    setObjectName(QLatin1String(name));
    setWindowTitle(title);
    setCentralWidget(txtData = named<QPlainTextEdit>("txtData"));
    txtData->setReadOnly(true);
    txtData->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_file = namedMenu(menuBar(), "mnuFile", QStringLiteral("&File"));
    mnuSetup = namedEntry(m_file, "mnuSetup", QStringLiteral("Printer &Setup"));
    mnuPrint = namedEntry(m_file, "mnuPrint", QStringLiteral("&Print Test Data"));
    mnuExit = namedEntry(m_file, "mnuExit", QStringLiteral("&Exit"));
    printSetup = [this](QPrinter &printer) {
        return QPrintDialog(&printer, this).exec() == QDialog::Accepted;
    };
    connect(mnuSetup, &QAction::triggered, this, [this] { printSetup(m_printer); });
    connect(mnuPrint, &QAction::triggered, this, &ReportWindow::mnuPrint_Click);
    connect(mnuExit, &QAction::triggered, this, &QWidget::close);
}

void ReportWindow::showText(const QString &text)
{
    txtData->setPlainText(QString(text).remove(u'\r'));
    txtData->moveCursor(QTextCursor::End);
}

void ReportWindow::mnuPrint_Click()
{
    printReport(m_printer, txtData->toPlainText());
}

TestData::TestData(Diagnostic &diagnostic)
    : ReportWindow(diagnostic.session().prompts(), "TestData",
                   QStringLiteral("Varnel Diagnostic Test Results")),
      m_diagnostic(diagnostic)
{}

void TestData::closeEvent(QCloseEvent *event)
{
    // Closing the report closes the diagnostics, which close the report in turn: the answer to the
    // question decides both.
    if (!m_diagnostic.DiagClosing &&
        m_prompts.MsgBox(QStringLiteral("Closing this window will stop all diagnostic testing\r"
                                        "Do you wish to proceed?"),
                         MsgButtons::YesNo, MsgIcon::None, QStringLiteral("Exiting Diagnostics"),
                         2) == MsgAnswer::Yes)
        m_diagnostic.close();
    event->setAccepted(m_diagnostic.DiagClosing);
}

ViewDiag::ViewDiag(Prompts &prompts) : ReportWindow(prompts, "ViewDiag", QStringLiteral("Saved Data File"))
{
    mnuOpen = namedEntry(m_file, "mnuOpen", QStringLiteral("&Open Data File"));
    m_file->insertAction(mnuSetup, mnuOpen);
    connect(mnuOpen, &QAction::triggered, this, [this] {
        txtData->clear();
        openFile();
    });
    setAttribute(Qt::WA_DeleteOnClose);
}

void ViewDiag::openFile()
{
    const QString name = askFileName(m_prompts, FileDialogRequest::Kind::Open,
                                     QStringLiteral("Diagnostic Files (*.rtf)|*.rtf"), kBlankFileName);
    if (name.isEmpty() || name == kBlankFileName)
        return;
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        const int number = QFileInfo::exists(name)                  ? AppErrors::PathFileAccess
                           : QFileInfo(name).absoluteDir().exists() ? AppErrors::FileNotFound
                                                                    : AppErrors::PathNotFound;
        if (const QString message = openErrorMessage(number); !message.isEmpty())
            m_prompts.MsgBox(message);
        return;
    }
    showText(rtfPlainText(file.readAll()));
}

Comments::Comments(Diagnostic &diagnostic) : m_diagnostic(diagnostic)
{
    setObjectName(QStringLiteral("Comments"));
    setWindowTitle(QStringLiteral("Comments"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(Text1 = named<QLineEdit>("Text1"));
    layout->addWidget(Command1 = named<QPushButton>("Command1", QStringLiteral("Done")));
    connect(Command1, &QPushButton::clicked, this, [this] {
        m_diagnostic.AddData(QStringLiteral("Comments:"));
        m_diagnostic.AddData(Text1->text());
        close();
    });
    setAttribute(Qt::WA_DeleteOnClose);
}

void Comments::closeEvent(QCloseEvent *event)
{
    m_diagnostic.showReport();
    m_diagnostic.activateWindow();
    event->accept();
}
