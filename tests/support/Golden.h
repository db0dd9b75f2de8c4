#pragma once

#include "Tables.h"

#include <QAction>
#include <QComboBox>
#include <QMenu>
#include <QMenuBar>

// A window as text, compared with a golden file kept beside its test: the title, each named control
// with its class and what the user reads on it, then the menus entry by entry, indented as they nest.
namespace golden {
inline QString quoted(QString text)
{
    return u'"' + text.replace(u'\r', QStringLiteral("\\r")).replace(u'\n', QStringLiteral("\\n")) + u'"';
}

// Tool tip, check mark and a disabled state, as the user sees them beside the caption.
inline QString marks(const QString &toolTip, const QVariant &checkable, bool checked, bool enabled)
{
    return (toolTip.isEmpty() ? QString() : QStringLiteral(" tip ") + quoted(toolTip)) +
           (checkable.toBool() ? (checked ? QStringLiteral(" [x]") : QStringLiteral(" [ ]")) : QString()) +
           (enabled ? QString() : QStringLiteral(" off"));
}

inline void menus(const QList<QAction *> &actions, const QString &indent, QStringList &out)
{
    for (const QAction *a : actions) {
        const QString key =
            a->shortcut().isEmpty() ? QString() : QStringLiteral(" key ") + a->shortcut().toString();
        out << indent + a->objectName() + u' ' +
                   (a->isSeparator() ? QStringLiteral("-") : quoted(a->text())) + key +
                   marks({}, a->isCheckable(), a->isChecked(), a->isEnabled());
        if (a->menu())
            menus(a->menu()->actions(), indent + QStringLiteral("  "), out);
    }
}

inline void controls(const QObject &parent, const QString &indent, QStringList &out)
{
    for (const QObject *child : parent.children()) {
        const auto *w = qobject_cast<const QWidget *>(child);
        if (!w || qobject_cast<const QMenu *>(w) || qobject_cast<const QMenuBar *>(w))
            continue;
        const bool named = !w->objectName().isEmpty() && !w->objectName().startsWith(QStringLiteral("qt_"));
        if (named) {
            QString line = indent + w->objectName() + u' ' + QLatin1String(w->metaObject()->className());
            for (const char *property : {"text", "title"})
                if (const QVariant text = w->property(property); text.isValid() && !text.toString().isEmpty())
                    line += u' ' + quoted(text.toString());
            if (const auto *combo = qobject_cast<const QComboBox *>(w))
                for (int i = 0; i < combo->count(); ++i)
                    line += (i ? QStringLiteral("|") : QStringLiteral(" items ")) + combo->itemText(i);
            out << line + marks(w->toolTip(), w->property("checkable"), w->property("checked").toBool(),
                                w->isEnabled());
        }
        controls(*w, named ? indent + QStringLiteral("  ") : indent, out);
    }
}
} // namespace golden

inline QStringList describeWindow(const QWidget &window)
{
    QStringList out{window.objectName() + u' ' + QLatin1String(window.metaObject()->className()) + u' ' +
                    golden::quoted(window.windowTitle())};
    golden::controls(window, QStringLiteral("  "), out);
    if (const auto *bar = window.findChild<QMenuBar *>(QString(), Qt::FindDirectChildrenOnly))
        golden::menus(bar->actions(), QStringLiteral("  "), out);
    return out;
}

// Whether the lines match the golden file; a mismatch fails the running test at the first line that
// differs. With VARNEL_UPDATE_GOLDEN set in the environment the file is written instead.
inline bool matchesGolden(const QStringList &lines, const QString &path)
{
    const QByteArray text = lines.join(u'\n').toUtf8() + '\n';
    if (qEnvironmentVariableIsSet("VARNEL_UPDATE_GOLDEN"))
        return writeBytes(path, text);
    const QStringList golden = QString::fromUtf8(readBytes(path)).split(u'\n');
    for (qsizetype i = 0; i < std::max(lines.size() + 1, golden.size()); ++i)
        if (!QTest::qCompare(lines.value(i), golden.value(i), "described", qPrintable(path), __FILE__,
                             __LINE__))
            return false;
    return true;
}
