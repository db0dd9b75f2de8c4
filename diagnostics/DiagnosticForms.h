#pragma once

#include "DiagnosticReport.h"

#include <QDialog>
#include <QMainWindow>
#include <QPrinter>
#include <array>
#include <functional>

class Diagnostic;
class Prompts;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QAction;

// "Varnel Diagnostics": the introduction, until the user ticks it away.
class DiagSetup : public QDialog
{
    Q_OBJECT
public:
    explicit DiagSetup(Diagnostic &diagnostic);
    QCheckBox *chkDiagHide;
    QPushButton *cmdBegin;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    Diagnostic &m_diagnostic;
};

// "Add New Test Addresses": one row of the test address list at a time.
class DiagNewAdd : public QMainWindow
{
    Q_OBJECT
public:
    explicit DiagNewAdd(Diagnostic &diagnostic);
    QLabel *lblTestNum;
    QLineEdit *txtDes;
    std::array<QLineEdit *, 3> txtRep;
    QPushButton *cmdNext;
    QPushButton *cmdDone;
    QAction *mnuRepeater;
    QAction *mnuOpenList;
    QAction *mnuExit;

    void cmdNext_Click();
    void cmdDone_Click();

private:
    Diagnostic &m_diagnostic;
    int m_count = 0;
};

// "Test In Progress...": a test's progress, shown beside the screens, with its Cancel.
class DiagInfo : public QDialog
{
    Q_OBJECT
public:
    explicit DiagInfo(Diagnostic &diagnostic);
    QLabel *lblTest;
    QLabel *lblStatus;
    QLabel *lblAdd;
    QProgressBar *pbStatus;
    QPushButton *cmdCancel;

private:
    Diagnostic &m_diagnostic;
};

// The report on the screen, and the printer it goes to. The print setup is a seam: the program shows
// the system's dialog, a test says what the user chose.
class ReportWindow : public QMainWindow
{
    Q_OBJECT
public:
    ReportWindow(Prompts &prompts, const char *name, const QString &title);
    QPlainTextEdit *txtData;
    QAction *mnuSetup;
    QAction *mnuPrint;
    QAction *mnuExit;
    std::function<bool(QPrinter &)> printSetup;

    void showText(const QString &text);
    void mnuPrint_Click();
    QPrinter &printer() { return m_printer; }

protected:
    QMenu *m_file;
    Prompts &m_prompts;

private:
    QPrinter m_printer;
};

// "Varnel Diagnostic Test Results": the running report; closing it ends the diagnostics.
class TestData : public ReportWindow
{
    Q_OBJECT
public:
    explicit TestData(Diagnostic &diagnostic);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    Diagnostic &m_diagnostic;
};

// "Saved Data File": a saved report, read only.
class ViewDiag : public ReportWindow
{
    Q_OBJECT
public:
    explicit ViewDiag(Prompts &prompts);
    QAction *mnuOpen;
    // Asks for a report file and shows it; a cancelled dialog leaves the text as it is.
    void openFile();
};

// "Comments": the user's words at the end of the polling report.
class Comments : public QDialog
{
    Q_OBJECT
public:
    explicit Comments(Diagnostic &diagnostic);
    QLineEdit *Text1;
    QPushButton *Command1;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    Diagnostic &m_diagnostic;
};
