#pragma once

#include <QString>
#include <optional>

// Every message box, input box and file dialog of the program, and the busy pointer, go through one
// Prompts object, so that a test can script the expected texts and answers and a screen never blocks
// a test run.

enum class MsgIcon { None, Critical, Question, Exclamation, Information };
enum class MsgButtons { OkOnly, OkCancel, AbortRetryIgnore, YesNoCancel, YesNo, RetryCancel };
enum class MsgAnswer { Ok, Cancel, Abort, Retry, Ignore, Yes, No };

struct MsgBoxRequest
{
    QString text;
    MsgButtons buttons = MsgButtons::OkOnly;
    MsgIcon icon = MsgIcon::None;
    int defaultButton = 1; // 1 to 3, counted from the left as the buttons stand
    QString title;         // a box has no title unless one is given
};

struct InputBoxRequest
{
    QString prompt;
    QString title;
    QString defaultText;
};

// A font as the dialogs and the settings file know it: family, size in points and style.
struct FontChoice
{
    QString family;
    double pointSize = 0;
    bool bold = false;
    bool italic = false;

    bool operator==(const FontChoice &) const = default;
};

struct FileDialogRequest
{
    enum class Kind { Open, Save };
    Kind kind = Kind::Open;
    QString title;
    QString filter; // Qt form: "Program Files (*.nvc);;All Files (*.*)"
    int filterIndex = 0;
    QString directory;
    QString fileName;
    bool overwritePrompt = true;
};

class Prompts
{
public:
    virtual ~Prompts() = default;

    virtual MsgAnswer MsgBox(const MsgBoxRequest &request) = 0;
    // std::nullopt when the user cancels.
    virtual std::optional<QString> InputBox(const InputBoxRequest &request) = 0;
    // An empty text when the user cancels.
    virtual QString FileDialog(const FileDialogRequest &request) = 0;
    virtual std::optional<FontChoice> FontDialog(const FontChoice &initial, const QString &title) = 0;
    virtual void Beep() = 0;
    // The hourglass: one state of the screen, not a count. Setting it twice and clearing it once gives
    // the normal pointer back.
    virtual void setBusy(bool busy) = 0;

    MsgAnswer MsgBox(const QString &text, MsgButtons buttons = MsgButtons::OkOnly,
                     MsgIcon icon = MsgIcon::None, const QString &title = {}, int defaultButton = 1)
    {
        return MsgBox(MsgBoxRequest{text, buttons, icon, defaultButton, title});
    }
    std::optional<QString> InputBox(const QString &prompt, const QString &title = {},
                                    const QString &defaultText = {})
    {
        return InputBox(InputBoxRequest{prompt, title, defaultText});
    }
};
