#pragma once

#include <QAnyStringView>
#include <QKeySequence>
#include <QString>
#include <utility>

class QAction;
class QMenu;
class QMenuBar;

// Controls and menu entries carry the names the program gives them, so that a reader finds every
// handler and a test finds every control by its name.

// A new widget W built from args, named.
template <typename W, typename... Args> W *named(QAnyStringView name, Args &&...args)
{
    auto *widget = new W(std::forward<Args>(args)...);
    widget->setObjectName(name.toString());
    return widget;
}

// A menu on the bar or inside another menu; the menu and its entry in the parent carry the name.
QMenu *namedMenu(QMenuBar *bar, QAnyStringView name, const QString &caption);
QMenu *namedMenu(QMenu *parent, QAnyStringView name, const QString &caption);
// An entry of a menu, with its shortcut key if it has one.
QAction *namedEntry(QMenu *menu, QAnyStringView name, const QString &caption, const QKeySequence &key = {});
QAction *namedSeparator(QMenu *menu, QAnyStringView name);
