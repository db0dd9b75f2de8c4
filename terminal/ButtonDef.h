#pragma once

#include "TagButton.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;

// "Button Definitions": edits the captions and texts of the terminal's ten buttons in place, so an
// edit takes effect at once and there is no Cancel.
class ButtonDef : public QDialog
{
    Q_OBJECT
public:
    // selected: the button (0 to 9) to start on.
    ButtonDef(const ButtonRow &buttons, int selected = 0, QWidget *parent = nullptr);

    QListWidget *BtnNo;
    QLineEdit *BtnCap;
    QLineEdit *BtnText;
    QCheckBox *AddCr;
    QPushButton *Quit;
    QLabel *Note1;

private:
    void BtnNo_Click();
    void BtnCap_Change();
    void BtnCap_LostFocus();
    void BtnText_Change(const QString &text);
    void AddCr_Click();
    void Quit_Click();
    TagButton *selectedButton() const;

    ButtonRow m_buttons;
};

// A list entry of the dialog: the number as printed with its leading blank, " - " and the caption.
QString buttonListEntry(int number, const QString &caption);
