#pragma once

#include <QPushButton>
#include <array>

// A programmable button of the terminal: its caption, and as its tag the text that it sends.
class TagButton : public QPushButton
{
    Q_OBJECT
public:
    using QPushButton::QPushButton;
    QString Tag;
};

using ButtonRow = std::array<TagButton *, 10>;
