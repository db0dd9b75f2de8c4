#pragma once

#include "Prompts.h"

#include <QList>
#include <QStringList>
#include <functional>

class TimeSource;

// Prompts for tests: each box, input box and file dialog must have been expected, in order, with
// its exact text. An unexpected one fails the running test and is answered with a cancel.
class ScriptedPrompts : public Prompts
{
public:
    struct Expectation
    {
        enum class Kind { MsgBox, InputBox, FileDialog, FontDialog };
        Kind kind = Kind::MsgBox;
        QString text; // box text, input prompt, or dialog title (empty: any title)
        std::optional<MsgIcon> icon;
        std::optional<MsgButtons> buttons;
        std::optional<QString> title;
        std::optional<int> defaultButton;
        MsgAnswer answer = MsgAnswer::Ok;
        std::optional<QString> reply;   // input box text, file name; nullopt: cancel
        std::optional<FontChoice> font; // font dialog answer
        std::function<void()> onShow;   // runs when the box is shown, before it is answered

        Expectation &withIcon(MsgIcon i)
        {
            icon = i;
            return *this;
        }
        Expectation &withButtons(MsgButtons b)
        {
            buttons = b;
            return *this;
        }
        Expectation &withTitle(const QString &t)
        {
            title = t;
            return *this;
        }
        Expectation &withDefault(int d)
        {
            defaultButton = d;
            return *this;
        }
        Expectation &then(std::function<void()> fn)
        {
            onShow = std::move(fn);
            return *this;
        }
    };

    // A record of what was shown, for assertions on order and timing.
    struct Shown
    {
        Expectation::Kind kind;
        QString text;
        QString title;
        MsgIcon icon = MsgIcon::None;
        MsgButtons buttons = MsgButtons::OkOnly;
        qint64 atMs = 0;
    };

    explicit ScriptedPrompts(const TimeSource *clock = nullptr) : m_clock(clock) {}
    ~ScriptedPrompts() override;

    Expectation &expectMsgBox(const QString &text, MsgAnswer answer = MsgAnswer::Ok);
    Expectation &expectInputBox(const QString &prompt, std::optional<QString> reply);
    Expectation &expectFileDialog(std::optional<QString> fileName, const QString &title = {});
    Expectation &expectFontDialog(std::optional<FontChoice> font);

    // True when every expectation was met; reports what is left to the running test otherwise.
    bool verify();
    int pending() const { return int(m_script.size()); }
    const QList<Shown> &shown() const { return m_shown; }
    QStringList shownTexts() const;
    int beeps() const { return m_beeps; }

    MsgAnswer MsgBox(const MsgBoxRequest &request) override;
    std::optional<QString> InputBox(const InputBoxRequest &request) override;
    QString FileDialog(const FileDialogRequest &request) override;
    std::optional<FontChoice> FontDialog(const FontChoice &initial, const QString &title) override;
    void Beep() override { ++m_beeps; }
    void setBusy(bool busy) override { m_busy = busy; }
    // Whether the hourglass is up now.
    bool busy() const { return m_busy; }
    using Prompts::InputBox;
    using Prompts::MsgBox;

    // The last file dialog request, for checks of filters and titles.
    const FileDialogRequest &lastFileDialog() const { return m_lastFileDialog; }

private:
    std::optional<Expectation> take(Expectation::Kind kind, const QString &text);
    void record(Expectation::Kind kind, const QString &text, const QString &title,
                MsgIcon icon = MsgIcon::None, MsgButtons buttons = MsgButtons::OkOnly);

    const TimeSource *m_clock;
    QList<Expectation> m_script;
    QList<Shown> m_shown;
    FileDialogRequest m_lastFileDialog;
    int m_beeps = 0;
    bool m_busy = false;
};

const char *toString(MsgIcon icon);
const char *toString(MsgButtons buttons);
