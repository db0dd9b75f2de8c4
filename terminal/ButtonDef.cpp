#include "ButtonDef.h"

#include "Named.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

namespace {
constexpr QChar kCr = u'\r';
}

QString buttonListEntry(int number, const QString &caption)
{
    // Numbers print with a leading blank where a sign would stand.
    return QStringLiteral(" %1 - %2").arg(number).arg(caption);
}

ButtonDef::ButtonDef(const ButtonRow &buttons, int selected, QWidget *parent)
    : QDialog(parent), m_buttons(buttons)
{
    setObjectName(QStringLiteral("ButtonDef"));
    setWindowTitle(QStringLiteral("Button Definitions"));

    BtnNo = new QListWidget(this);
    BtnNo->setObjectName(QStringLiteral("BtnNo"));
    BtnCap = new QLineEdit(this);
    BtnCap->setObjectName(QStringLiteral("BtnCap"));
    BtnText = new QLineEdit(this);
    BtnText->setObjectName(QStringLiteral("BtnText"));
    AddCr = new QCheckBox(QStringLiteral("Add Cr"), this);
    AddCr->setObjectName(QStringLiteral("AddCr"));
    Quit = new QPushButton(QStringLiteral("&Quit"), this);
    Quit->setObjectName(QStringLiteral("Quit"));
    // The default is the terminal button being edited, so Enter in a field never closes the dialog.
    Quit->setAutoDefault(false);
    Note1 = new QLabel(
        QStringLiteral("Note1: A shortcut to the buttons is available by holding down the shift key "
                       "and pressing the function key for that button.   Example - Pressing Shift "
                       "and F1 will activate button #1."),
        this);
    Note1->setObjectName(QStringLiteral("Note1"));
    Note1->setWordWrap(true);

    auto *form = new QFormLayout;
    auto *buttonLabel = named<QLabel>("lblBtnNo", QStringLiteral("&Button:"), this);
    buttonLabel->setBuddy(BtnNo);
    auto *captionLabel = named<QLabel>("lblBtnCap", QStringLiteral("Button &Caption:"), this);
    captionLabel->setBuddy(BtnCap);
    auto *textLabel = named<QLabel>("lblBtnText", QStringLiteral("&Software Command:"), this);
    textLabel->setBuddy(BtnText);
    form->addRow(buttonLabel, BtnNo);
    form->addRow(captionLabel, BtnCap);
    form->addRow(textLabel, BtnText);
    form->addRow(QString(), AddCr);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(Note1);
    layout->addWidget(Quit, 0, Qt::AlignRight);

    for (int i = 0; i < int(m_buttons.size()); ++i)
        BtnNo->addItem(buttonListEntry(i + 1, m_buttons[size_t(i)]->text()));

    connect(BtnNo, &QListWidget::currentRowChanged, this, &ButtonDef::BtnNo_Click);
    connect(BtnCap, &QLineEdit::textEdited, this, &ButtonDef::BtnCap_Change);
    connect(BtnCap, &QLineEdit::editingFinished, this, &ButtonDef::BtnCap_LostFocus);
    connect(BtnText, &QLineEdit::textEdited, this, &ButtonDef::BtnText_Change);
    connect(AddCr, &QCheckBox::clicked, this, &ButtonDef::AddCr_Click);
    connect(Quit, &QPushButton::clicked, this, &ButtonDef::Quit_Click);

    BtnNo->setCurrentRow(selected >= 0 && selected < BtnNo->count() ? selected : 0);
}

TagButton *ButtonDef::selectedButton() const
{
    const int row = BtnNo->currentRow();
    return row >= 0 && row < int(m_buttons.size()) ? m_buttons[size_t(row)] : nullptr;
}

void ButtonDef::BtnNo_Click()
{
    TagButton *button = selectedButton();
    if (!button) {
        BtnCap->clear();
        BtnText->clear();
        return;
    }
    BtnCap->setText(button->text());
    const qsizetype cr = button->Tag.indexOf(kCr);
    BtnText->setText(cr < 0 ? button->Tag : button->Tag.left(cr));
    // A fresh button defaults to a whole command line.
    AddCr->setChecked(cr >= 0 || button->Tag.isEmpty());
    // The button being edited wears the default mark on the terminal.
    for (TagButton *other : m_buttons)
        other->setDefault(other == button);
}

void ButtonDef::BtnCap_Change()
{
    if (TagButton *button = selectedButton())
        button->setText(BtnCap->text());
}

void ButtonDef::BtnCap_LostFocus()
{
    const int row = BtnNo->currentRow();
    if (TagButton *button = selectedButton())
        BtnNo->item(row)->setText(buttonListEntry(row + 1, button->text()));
}

void ButtonDef::BtnText_Change(const QString &text)
{
    if (TagButton *button = selectedButton())
        button->Tag = text + (AddCr->isChecked() ? QString(kCr) : QString());
}

void ButtonDef::AddCr_Click()
{
    TagButton *button = selectedButton();
    if (!button)
        return;
    const qsizetype cr = button->Tag.indexOf(kCr);
    if (!AddCr->isChecked() && cr >= 0)
        button->Tag.truncate(cr);
    else if (AddCr->isChecked() && cr < 0)
        button->Tag += kCr;
}

void ButtonDef::Quit_Click()
{
    for (TagButton *button : m_buttons)
        button->setDefault(false);
    accept();
}
