#pragma once

#include "Prompts.h"
#include "TimeSource.h"

#include <QList>
#include <QStringList>
#include <QTest>
#include <functional>

// Prompts for tests: each box, input box and file dialog must have been expected, in order, with
// its exact text. An unexpected one fails the running test and is answered with a cancel.
class ScriptedPrompts : public Prompts
{
public:
    enum class Kind { MsgBox, InputBox, FileDialog, FontDialog };
    struct Expectation
    {
        Kind kind = Kind::MsgBox;
        QString text; // box text, input prompt, or dialog title (empty: any title)
        MsgAnswer answer = MsgAnswer::Ok;
        std::optional<QString> reply = {};   // input box text, file name; nullopt: cancel
        std::optional<FontChoice> font = {}; // font dialog answer
        std::optional<MsgIcon> icon = {};
        std::optional<MsgButtons> buttons = {};
        std::optional<QString> title = {};
        std::function<void()> onShow = {}; // runs when the box is shown, before it is answered

        Expectation &withIcon(MsgIcon i) { return set(icon, i); }
        Expectation &withButtons(MsgButtons b) { return set(buttons, b); }
        Expectation &withTitle(const QString &t) { return set(title, t); }
        Expectation &then(std::function<void()> fn) { return set(onShow, std::move(fn)); }

    private:
        template <typename F, typename V> Expectation &set(F &field, V &&value)
        {
            field = std::forward<V>(value);
            return *this;
        }
    };

    // A record of what was shown, for assertions on order and timing.
    struct Shown
    {
        Kind kind;
        QString text;
        qint64 atMs = 0;
    };

    explicit ScriptedPrompts(const TimeSource *clock = nullptr) : m_clock(clock) {}

    Expectation &expectMsgBox(const QString &text, MsgAnswer answer = MsgAnswer::Ok)
    {
        return add({Kind::MsgBox, text, answer});
    }
    // A box as a table writes it: its text, and the answer behind a last colon when it is not OK
    // ("Return To Wideband?:Yes"; the words as MsgAnswer names them).
    Expectation &expectAnswered(const QString &item)
    {
        static const QStringList words{QStringLiteral("Ok"),     QStringLiteral("Cancel"),
                                       QStringLiteral("Abort"),  QStringLiteral("Retry"),
                                       QStringLiteral("Ignore"), QStringLiteral("Yes"),
                                       QStringLiteral("No")};
        const qsizetype colon = item.lastIndexOf(u':');
        const qsizetype answer = colon < 0 ? -1 : words.indexOf(item.mid(colon + 1));
        return answer < 0 ? expectMsgBox(item) : expectMsgBox(item.left(colon), MsgAnswer(answer));
    }
    Expectation &expectInputBox(const QString &prompt, std::optional<QString> reply)
    {
        return add({Kind::InputBox, prompt, MsgAnswer::Ok, std::move(reply)});
    }
    Expectation &expectFileDialog(std::optional<QString> fileName, const QString &title = {})
    {
        return add({Kind::FileDialog, title, MsgAnswer::Ok, std::move(fileName)});
    }
    Expectation &expectFontDialog(std::optional<FontChoice> font)
    {
        return add({Kind::FontDialog, {}, MsgAnswer::Ok, {}, std::move(font)});
    }

    // True when every expectation was met; reports what is left to the running test otherwise.
    bool verify()
    {
        QStringList left;
        for (const Expectation &e : std::as_const(m_script))
            left << QStringLiteral("%1 \"%2\"").arg(kindName(e.kind), e.text);
        m_script.clear();
        if (!left.isEmpty())
            fail(QStringLiteral("Expected but never shown: ") + left.join(QStringLiteral("; ")));
        return left.isEmpty();
    }
    const QList<Shown> &shown() const { return m_shown; }
    int beeps() const { return m_beeps; }
    // Whether the hourglass is up now.
    bool busy() const { return m_busy; }
    // The last file dialog request, for checks of filters and titles.
    const FileDialogRequest &lastFileDialog() const { return m_lastFileDialog; }

    MsgAnswer MsgBox(const MsgBoxRequest &r) override
    {
        const auto e = take(Kind::MsgBox, r.text, r.title, r.icon, r.buttons);
        return e ? e->answer : r.buttons == MsgButtons::OkOnly ? MsgAnswer::Ok : MsgAnswer::Cancel;
    }
    std::optional<QString> InputBox(const InputBoxRequest &r) override
    {
        const auto e = take(Kind::InputBox, r.prompt, r.title);
        return e ? e->reply : std::nullopt;
    }
    QString FileDialog(const FileDialogRequest &r) override
    {
        m_lastFileDialog = r;
        const auto e = take(Kind::FileDialog, r.title, r.title);
        return e ? e->reply.value_or(QString()) : QString();
    }
    std::optional<FontChoice> FontDialog(const FontChoice &, const QString &title) override
    {
        const auto e = take(Kind::FontDialog, title, title);
        return e ? e->font : std::nullopt;
    }
    void Beep() override { ++m_beeps; }
    void setBusy(bool busy) override { m_busy = busy; }
    using Prompts::InputBox;
    using Prompts::MsgBox;

private:
    static QString kindName(Kind kind)
    {
        static const char *const names[] = {"message box", "input box", "file dialog", "font dialog"};
        return QLatin1String(names[int(kind)]);
    }
    static void fail(const QString &message) { QTest::qFail(qPrintable(message), __FILE__, __LINE__); }
    Expectation &add(Expectation &&e) { return m_script.emplace_back(std::move(e)); }

    // Records what is shown and takes the next expectation, failing the test where they differ.
    std::optional<Expectation> take(Kind kind, const QString &text, const QString &title,
                                    MsgIcon icon = MsgIcon::None, MsgButtons buttons = MsgButtons::OkOnly)
    {
        m_shown.append({kind, text, m_clock ? m_clock->elapsedMs() : 0});
        const QString shown = QStringLiteral("%1 \"%2\"").arg(kindName(kind), text);
        if (m_script.isEmpty()) {
            fail(QStringLiteral("Unexpected ") + shown);
            return std::nullopt;
        }
        Expectation e = m_script.takeFirst();
        const bool anyText = kind == Kind::FontDialog || (kind == Kind::FileDialog && e.text.isEmpty());
        if (e.kind != kind || (!anyText && e.text != text)) {
            fail(QStringLiteral("Expected %1 \"%2\" but got %3").arg(kindName(e.kind), e.text, shown));
            return std::nullopt;
        }
        // The features the expectation names, as they were shown and as they were expected.
        static const char *const icons[] = {"plain", "critical", "question", "exclamation", "information"};
        static const char *const rows[] = {"OK",     "OK/Cancel",   "Abort/Retry/Ignore", "Yes/No/Cancel",
                                           "Yes/No", "Retry/Cancel"};
        const auto look = [&](const Expectation &x) {
            return QStringLiteral("%1 icon, %2 buttons, title \"%3\"")
                .arg(QLatin1String(icons[int(x.icon.value_or(icon))]),
                     QLatin1String(rows[int(x.buttons.value_or(buttons))]), x.title.value_or(title));
        };
        if (look(e) != look(Expectation{}))
            fail(shown + QStringLiteral(": ") + look(Expectation{}) + QStringLiteral(", expected ") +
                 look(e));
        if (e.onShow)
            e.onShow();
        return e;
    }

    const TimeSource *m_clock;
    QList<Expectation> m_script;
    QList<Shown> m_shown;
    FileDialogRequest m_lastFileDialog;
    int m_beeps = 0;
    bool m_busy = false;
};
