#pragma once

#include "InterferenceRun.h"

#include <QDialog>
#include <QMainWindow>
#include <memory>

class Diagnostic;
class Interference;
class QAction;
class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;

// "Interference Testing": the threshold of the listening test, and its start.
class InterSetup : public QDialog
{
    Q_OBJECT
public:
    InterSetup(Diagnostic &diagnostic, Interference &test);
    QComboBox *Combo1;
    QPushButton *Command1;

    void Command1_Click();

private:
    Interference &m_test;
};

// "Interference Testing": the readings at or above the threshold while the modem listens. The form
// cannot close while its loop runs: the first close asks the loop to stop, and the loop closes the
// form again when it has; that close puts the modem back and offers the rows to the report.
class Interference : public QMainWindow
{
    Q_OBJECT
public:
    explicit Interference(Diagnostic &diagnostic);
    ~Interference() override;

    // From here the test counts as running, even if it never starts.
    void Load();
    void start(qint16 threshold);
    void mnuClear_Click();
    InterferenceRun &run() { return *m_run; }

    QLabel *lblFreq, *lblThreshold, *lblValue;
    QListWidget *lstRSS;
    QPushButton *cmdStop;
    QAction *mnuClear, *mnuStop;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    Diagnostic &m_diagnostic;
    std::unique_ptr<InterferenceRun> m_run;
    bool m_shown = false;
    bool m_unloaded = false;
};
