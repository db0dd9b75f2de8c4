#pragma once

#include <QDialog>

class QCheckBox;
class QPushButton;

// "Welcome To Varnel Utility": the note the main menu shows when it opens the terminal.
class TermIntro : public QDialog
{
    Q_OBJECT
public:
    explicit TermIntro(QWidget *parent = nullptr);

    QCheckBox *chkHide;
    QPushButton *cmdOK;
};
