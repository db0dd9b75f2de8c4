#pragma once

#include "SetupProgram.h"

#include <QLineEdit>
#include <array>
#include <functional>

// The texts of a row of fields, in index order.
template <size_t N> std::array<QString, N> fieldTexts(const std::array<QLineEdit *, N> &fields)
{
    std::array<QString, N> texts;
    for (size_t i = 0; i < N; ++i)
        texts[i] = fields[i]->text();
    return texts;
}

// How the set-up forms hand their lines to the command list.
using AddCommandHook = std::function<void(const QString &)>;

// Runs one button of a set-up form: makes its program, appends the lines made, and shows the box of
// a refused answer, after emptying the form's repeater fields when they had a gap. A failure while
// making the program shows the standard box and appends nothing. True when every answer was good.
bool runSetupStep(Prompts &prompts, const std::function<SetupProgram()> &make,
                  const AddCommandHook &addCommand, const std::array<QLineEdit *, 3> &repeaters = {});
