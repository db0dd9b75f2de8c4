#include "AppError.h"

#include "Prompts.h"

namespace AppErrors {
AppError overflow()
{
    return {Overflow, QStringLiteral("Overflow")};
}

AppError invalidProcedureCall()
{
    return {InvalidProcedureCall, QStringLiteral("Invalid procedure call or argument")};
}
} // namespace AppErrors

QString appErrorText(const AppError &error)
{
    const QChar cr(13);
    return QStringLiteral("The following error has occured in the application:") + cr +
           QString::number(error.number) + QStringLiteral(" = ") + error.description + cr +
           QStringLiteral("Press OK to attempt to fix problem.") + cr +
           QStringLiteral("If problem remains, please exit program and report error to VNL.");
}

void ShowAppError(Prompts &prompts, const AppError &error)
{
    prompts.MsgBox(appErrorText(error), MsgButtons::OkOnly, MsgIcon::Critical);
}
