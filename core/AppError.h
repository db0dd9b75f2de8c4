#pragma once

#include <QString>

class Prompts;

// A failure of a statement: what a routine's one handler shows in the standard error box before
// the routine carries on with its next statement. Numbers follow the serial control's and the
// language runtime's classic codes so that a user's report names the same failure every time.
struct AppError
{
    int number = 0;
    QString description;
};

namespace AppErrors {
inline constexpr int Overflow = 6;
inline constexpr int InvalidProcedureCall = 5;
inline constexpr int FileNotFound = 53;
inline constexpr int FileAlreadyOpen = 55;
inline constexpr int DeviceIo = 57;
inline constexpr int BadFileName = 64;
inline constexpr int PermissionDenied = 70;
inline constexpr int PathFileAccess = 75;
inline constexpr int PathNotFound = 76;
inline constexpr int InvalidPropertyValue = 380;
inline constexpr int PortAlreadyOpen = 8005;
inline constexpr int PortNotOpen = 8018;
inline constexpr int NoSuchDevice = 8002;
inline constexpr int DeviceBusy = 8010;
inline constexpr int DeviceAccessDenied = 8012;
inline constexpr int DeviceUnavailable = 8015;

AppError overflow();
AppError invalidProcedureCall();
} // namespace AppErrors

// The text of the standard error box: four pieces separated by carriage returns.
QString appErrorText(const AppError &error);

// Shows the standard error box (critical icon, OK only, no title). The caller goes on afterwards.
void ShowAppError(Prompts &prompts, const AppError &error);

// Runs one statement; if it fails, shows the standard box and lets the caller go on with the next
// statement, whatever the failed one was to set staying as it was. Returns whether it succeeded.
template <typename Statement> bool attempt(Prompts &prompts, Statement &&statement)
{
    try {
        statement();
        return true;
    } catch (const AppError &error) {
        ShowAppError(prompts, error);
        return false;
    }
}

// Runs one statement with errors ignored, as the entry routines and the terminal's key events do.
template <typename Statement> bool ignoreErrors(Statement &&statement)
{
    try {
        statement();
        return true;
    } catch (const AppError &) {
        return false;
    }
}
