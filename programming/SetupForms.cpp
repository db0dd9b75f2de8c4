#include "SetupForms.h"

#include "AppError.h"

bool runSetupStep(Prompts &prompts, const std::function<SetupProgram()> &make,
                  const AddCommandHook &addCommand, const std::array<QLineEdit *, 3> &repeaters)
{
    SetupProgram program;
    if (!attempt(prompts, [&] { program = make(); }))
        return false;
    for (const QString &line : std::as_const(program.lines))
        addCommand(line);
    if (program.faultText.isEmpty())
        return true;
    if (program.clearRepeaters)
        for (QLineEdit *field : repeaters)
            field->clear();
    prompts.MsgBox(program.faultText, MsgButtons::OkOnly, program.faultIcon);
    return false;
}
