#pragma once

#include "CommandListBox.h"
#include "ProgrammingMenu.h"
#include "SessionRig.h"
#include "Tables.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>

// The set-up forms driven as a table writes it. A step names a control of an open window as
// "Form.control": alone it clicks the control, "Form.control=text" types into a field or picks a
// list item, "Form.control==text" checks what the control shows, "Form.control>" gives it the
// focus; a menu entry is triggered, and "Form." stands for the window. "Nx" repeats the steps after
// it N times. Boxes are written with their icon in front: "!" exclamation, "*" information, "-"
// none, "?" a Yes/No question answered No; and a title after a "^".
namespace wizard {
inline QWidget *window(const QString &name)
{
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->isVisible() && w->objectName() == name)
            return w;
    return nullptr;
}

// A control of the window itself, not of a window it opened; the window for an empty name.
inline QWidget *control(QWidget *parent, const QString &name)
{
    if (name.isEmpty())
        return parent;
    for (QObject *child : parent->children()) {
        auto *w = qobject_cast<QWidget *>(child);
        if (!w || w->isWindow())
            continue;
        if (w->objectName() == name)
            return w;
        if (QWidget *found = control(w, name))
            return found;
    }
    return nullptr;
}

// What the user reads on a control, the title of a window, or that the control is out of sight.
inline QString shownText(const QWidget *w)
{
    if (!w->isVisible())
        return QStringLiteral("<hidden>");
    if (w->isWindow())
        return w->windowTitle();
    if (const auto *combo = qobject_cast<const QComboBox *>(w))
        return combo->currentText();
    return w->property("text").toString();
}

inline void step(const QString &step)
{
    const bool check = step.contains(QStringLiteral("=="));
    const QString target = step.section(u'=', 0, 0);
    const QString value = step.section(u'=', check ? 2 : 1);
    QWidget *form = window(target.section(u'.', 0, 0));
    QVERIFY2(form, qPrintable(step));
    const QString name = target.section(u'.', 1);
    if (auto *entry = form->findChild<QAction *>(name)) {
        entry->trigger();
        return;
    }
    QWidget *w = control(form, name.chopped(name.endsWith(u'>') ? 1 : 0));
    QVERIFY2(w, qPrintable(step));
    if (name.endsWith(u'>')) {
        QFocusEvent focus(QEvent::FocusIn);
        QApplication::sendEvent(w, &focus);
    } else if (check)
        QCOMPARE(shownText(w), value);
    else if (auto *edit = qobject_cast<QLineEdit *>(w); edit && step.contains(u'='))
        edit->setText(value);
    else if (auto *combo = qobject_cast<QComboBox *>(w); combo && step.contains(u'='))
        combo->setCurrentIndex(combo->findText(value));
    else if (auto *button = qobject_cast<QAbstractButton *>(w))
        button->click();
    else
        QFAIL(qPrintable(QStringLiteral("Cannot do ") + step));
}

inline void steps(const char *list)
{
    const QStringList all = items(list);
    for (qsizetype i = 0; i < all.size(); ++i) {
        const QRegularExpressionMatch repeat = QRegularExpression(QStringLiteral("^(\\d+)x$")).match(all[i]);
        if (!repeat.hasMatch()) {
            step(all[i]);
        } else {
            for (int n = repeat.captured(1).toInt(); n > 0; --n)
                for (qsizetype j = i + 1; j < all.size(); ++j)
                    step(all[j]);
            return;
        }
        if (QTest::currentTestFailed())
            return;
    }
}

inline void expectBoxes(ScriptedPrompts &prompts, const char *list)
{
    for (const QString &box : items(list)) {
        const bool question = box.startsWith(u'?');
        const MsgIcon icon = box.startsWith(u'!')   ? MsgIcon::Exclamation
                             : box.startsWith(u'*') ? MsgIcon::Information
                             : question             ? MsgIcon::Question
                                                    : MsgIcon::None;
        auto &expected =
            prompts.expectMsgBox(box.mid(1).section(u'^', 0, 0), question ? MsgAnswer::No : MsgAnswer::Ok)
                .withIcon(icon);
        expected.withTitle(box.section(u'^', 1))
            .withButtons(question ? MsgButtons::YesNo : MsgButtons::OkOnly);
    }
}

// The visible windows but the one named, by name, in order.
inline QString openWindows(const QString &except)
{
    QStringList names;
    for (const QWidget *w : QApplication::topLevelWidgets())
        if (w->isVisible() && w->objectName() != except)
            names << w->objectName();
    names.sort();
    return names.join(QStringLiteral(" | "));
}

// The list's lines against the table's: all of them, or "#N" and the last ones of N lines.
inline void compareLines(const QStringList &lines, const char *expected)
{
    QStringList tail = items(expected);
    qsizetype count = tail.size();
    if (!tail.isEmpty() && tail.first().startsWith(u'#'))
        count = tail.takeFirst().mid(1).toInt();
    QCOMPARE(lines.size(), count);
    QCOMPARE(lines.mid(count - tail.size()), tail);
}

// A case from the programming screen: the steps, the boxes in turn, the command list after, and the
// windows left open besides the programming screen.
struct Case
{
    const char *name;
    std::string steps;
    std::string boxes;
    std::string lines;
    const char *open;
};

// Runs a case with the form that opens(session, screen) opened first: the boxes are expected, the
// steps done, then the list and the windows left open are compared.
template <typename Opener> void run(const Case &c, Opener &&opens)
{
    SessionRig rig(CommControl::kAutoProcessProgram);
    ProgrammingMenu menu(rig.session);
    menu.show();
    opens(rig.session, menu);
    expectBoxes(rig.prompts, c.boxes.c_str());
    steps(c.steps.c_str());
    QVERIFY(rig.prompts.verify());
    compareLines(menu.cmboedit().lines(), c.lines.c_str());
    QCOMPARE(openWindows(menu.objectName()), QLatin1String(c.open));
}
inline void run(const Case &c)
{
    run(c, [](ModemSession &, ProgrammingMenu &) {});
}
} // namespace wizard
