#include "TermIntro.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

TermIntro::TermIntro(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("TermIntro"));
    setWindowTitle(QStringLiteral("Welcome To Varnel Utility"));

    auto *frame = new QGroupBox(QStringLiteral("Introduction"), this);
    frame->setObjectName(QStringLiteral("Frame1"));
    auto *texts = new QVBoxLayout(frame);
    const QStringList paragraphs{
        QStringLiteral("This terminal emulation program will allow you to interface directly with the Varnel "
                       "Wireless modem."),
        QStringLiteral(
            "To modify the operating parameters of the Varnel such as Frequency and Squlech, select "
            "Varnel Setup on the menu."),
        QStringLiteral(
            "The buttons at the bottom of the screen are programmable for your use in creating "
            "shortcuts to frequently used software commands.  Press a blank button or select Terminal "
            "Setup to program the buttons."),
    };
    for (int i = 0; i < int(paragraphs.size()); ++i) {
        auto *label = new QLabel(paragraphs[i], frame);
        label->setObjectName(QStringLiteral("lblIntro%1").arg(i + 1));
        label->setWordWrap(true);
        texts->addWidget(label);
    }

    chkHide = new QCheckBox(QStringLiteral("Don't show this dialog in the future."), this);
    chkHide->setObjectName(QStringLiteral("chkHide"));
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(frame);
    layout->addWidget(chkHide);
    layout->addWidget(cmdOK, 0, Qt::AlignRight);
    setMinimumWidth(420);
}
