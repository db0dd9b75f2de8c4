#include "Named.h"

#include <QMenu>
#include <QMenuBar>

namespace {
QMenu *nameMenu(QMenu *menu, QAnyStringView name)
{
    menu->setObjectName(name.toString());
    menu->menuAction()->setObjectName(name.toString());
    return menu;
}
} // namespace

QMenu *namedMenu(QMenuBar *bar, QAnyStringView name, const QString &caption)
{
    return nameMenu(bar->addMenu(caption), name);
}

QMenu *namedMenu(QMenu *parent, QAnyStringView name, const QString &caption)
{
    return nameMenu(parent->addMenu(caption), name);
}

QAction *namedEntry(QMenu *menu, QAnyStringView name, const QString &caption, const QKeySequence &key)
{
    QAction *action = menu->addAction(caption);
    action->setObjectName(name.toString());
    action->setShortcut(key);
    return action;
}

QAction *namedSeparator(QMenu *menu, QAnyStringView name)
{
    QAction *action = menu->addSeparator();
    action->setObjectName(name.toString());
    return action;
}
