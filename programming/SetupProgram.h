#pragma once

#include "Prompts.h"

#include <QStringList>

// What one button of a set-up form makes: the lines for the command list, and the box to show when
// an answer was refused.
struct SetupProgram
{
    QStringList lines;           // to append, also those made before a refused answer
    QString faultText;           // empty when every answer was good
    bool clearRepeaters = false; // a gap among the repeaters empties all three fields
    MsgIcon faultIcon = MsgIcon::Exclamation;
};
