#include "ScriptedPrompts.h"

#include "TimeSource.h"

#include <QTest>

namespace {
const char *kindName(ScriptedPrompts::Expectation::Kind kind)
{
    using K = ScriptedPrompts::Expectation::Kind;
    switch (kind) {
    case K::MsgBox:
        return "message box";
    case K::InputBox:
        return "input box";
    case K::FileDialog:
        return "file dialog";
    case K::FontDialog:
        return "font dialog";
    }
    return "?";
}

void fail(const QString &message)
{
    QTest::qFail(qPrintable(message), __FILE__, __LINE__);
}
} // namespace

const char *toString(MsgIcon icon)
{
    switch (icon) {
    case MsgIcon::None:
        return "plain";
    case MsgIcon::Critical:
        return "critical";
    case MsgIcon::Question:
        return "question";
    case MsgIcon::Exclamation:
        return "exclamation";
    case MsgIcon::Information:
        return "information";
    }
    return "?";
}

const char *toString(MsgButtons buttons)
{
    switch (buttons) {
    case MsgButtons::OkOnly:
        return "OK";
    case MsgButtons::OkCancel:
        return "OK/Cancel";
    case MsgButtons::AbortRetryIgnore:
        return "Abort/Retry/Ignore";
    case MsgButtons::YesNoCancel:
        return "Yes/No/Cancel";
    case MsgButtons::YesNo:
        return "Yes/No";
    case MsgButtons::RetryCancel:
        return "Retry/Cancel";
    }
    return "?";
}

ScriptedPrompts::~ScriptedPrompts() = default;

ScriptedPrompts::Expectation &ScriptedPrompts::expectMsgBox(const QString &text, MsgAnswer answer)
{
    Expectation e;
    e.kind = Expectation::Kind::MsgBox;
    e.text = text;
    e.answer = answer;
    m_script.append(e);
    return m_script.last();
}

ScriptedPrompts::Expectation &ScriptedPrompts::expectInputBox(const QString &prompt,
                                                              std::optional<QString> reply)
{
    Expectation e;
    e.kind = Expectation::Kind::InputBox;
    e.text = prompt;
    e.reply = std::move(reply);
    m_script.append(e);
    return m_script.last();
}

ScriptedPrompts::Expectation &ScriptedPrompts::expectFileDialog(std::optional<QString> fileName,
                                                                const QString &title)
{
    Expectation e;
    e.kind = Expectation::Kind::FileDialog;
    e.text = title;
    e.reply = std::move(fileName);
    m_script.append(e);
    return m_script.last();
}

ScriptedPrompts::Expectation &ScriptedPrompts::expectFontDialog(std::optional<FontChoice> font)
{
    Expectation e;
    e.kind = Expectation::Kind::FontDialog;
    e.font = std::move(font);
    m_script.append(e);
    return m_script.last();
}

bool ScriptedPrompts::verify()
{
    if (m_script.isEmpty())
        return true;
    QStringList left;
    for (const Expectation &e : std::as_const(m_script))
        left << QStringLiteral("%1 \"%2\"").arg(QLatin1String(kindName(e.kind)), e.text);
    fail(QStringLiteral("Expected but never shown: ") + left.join(QStringLiteral("; ")));
    m_script.clear();
    return false;
}

QStringList ScriptedPrompts::shownTexts() const
{
    QStringList texts;
    for (const Shown &s : m_shown)
        texts << s.text;
    return texts;
}

std::optional<ScriptedPrompts::Expectation> ScriptedPrompts::take(Expectation::Kind kind, const QString &text)
{
    if (m_script.isEmpty()) {
        fail(QStringLiteral("Unexpected %1: \"%2\"").arg(QLatin1String(kindName(kind)), text));
        return std::nullopt;
    }
    Expectation e = m_script.takeFirst();
    const bool textMatches = kind == Expectation::Kind::FontDialog ||
                             (kind == Expectation::Kind::FileDialog && e.text.isEmpty()) || e.text == text;
    if (e.kind != kind || !textMatches) {
        fail(QStringLiteral("Expected %1 \"%2\" but got %3 \"%4\"")
                 .arg(QLatin1String(kindName(e.kind)), e.text, QLatin1String(kindName(kind)), text));
        return std::nullopt;
    }
    return e;
}

void ScriptedPrompts::record(Expectation::Kind kind, const QString &text, const QString &title, MsgIcon icon,
                             MsgButtons buttons)
{
    m_shown.append({kind, text, title, icon, buttons, m_clock ? m_clock->elapsedMs() : 0});
}

MsgAnswer ScriptedPrompts::MsgBox(const MsgBoxRequest &request)
{
    record(Expectation::Kind::MsgBox, request.text, request.title, request.icon, request.buttons);
    auto e = take(Expectation::Kind::MsgBox, request.text);
    if (!e)
        return request.buttons == MsgButtons::OkOnly ? MsgAnswer::Ok : MsgAnswer::Cancel;
    if (e->icon && *e->icon != request.icon)
        fail(
            QStringLiteral("Box \"%1\": icon %2, expected %3")
                .arg(request.text, QLatin1String(toString(request.icon)), QLatin1String(toString(*e->icon))));
    if (e->buttons && *e->buttons != request.buttons)
        fail(QStringLiteral("Box \"%1\": buttons %2, expected %3")
                 .arg(request.text, QLatin1String(toString(request.buttons)),
                      QLatin1String(toString(*e->buttons))));
    if (e->title && *e->title != request.title)
        fail(QStringLiteral("Box \"%1\": title \"%2\", expected \"%3\"")
                 .arg(request.text, request.title, *e->title));
    if (e->defaultButton && *e->defaultButton != request.defaultButton)
        fail(QStringLiteral("Box \"%1\": default button %2, expected %3")
                 .arg(request.text)
                 .arg(request.defaultButton)
                 .arg(*e->defaultButton));
    if (e->onShow)
        e->onShow();
    return e->answer;
}

std::optional<QString> ScriptedPrompts::InputBox(const InputBoxRequest &request)
{
    record(Expectation::Kind::InputBox, request.prompt, request.title);
    auto e = take(Expectation::Kind::InputBox, request.prompt);
    if (!e)
        return std::nullopt;
    if (e->title && *e->title != request.title)
        fail(QStringLiteral("Input box \"%1\": title \"%2\", expected \"%3\"")
                 .arg(request.prompt, request.title, *e->title));
    if (e->onShow)
        e->onShow();
    return e->reply;
}

QString ScriptedPrompts::FileDialog(const FileDialogRequest &request)
{
    m_lastFileDialog = request;
    record(Expectation::Kind::FileDialog, request.title, request.title);
    auto e = take(Expectation::Kind::FileDialog, request.title);
    if (!e)
        return {};
    if (e->onShow)
        e->onShow();
    return e->reply.value_or(QString());
}

std::optional<FontChoice> ScriptedPrompts::FontDialog(const FontChoice &, const QString &title)
{
    record(Expectation::Kind::FontDialog, title, title);
    auto e = take(Expectation::Kind::FontDialog, title);
    if (!e)
        return std::nullopt;
    return e->font;
}
