#pragma once

#include <QCursor>
#include <QGuiApplication>

// The busy pointer is one state of the screen, not a count: setting it twice and restoring it once
// gives the normal pointer back, and a routine that leaves it set is undone by the next restore.
inline void SetBusyPointer()
{
    if (QGuiApplication::overrideCursor())
        QGuiApplication::changeOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
}

inline void RestorePointer()
{
    while (QGuiApplication::overrideCursor())
        QGuiApplication::restoreOverrideCursor();
}

inline bool BusyPointerShown()
{
    const QCursor *cursor = QGuiApplication::overrideCursor();
    return cursor && cursor->shape() == Qt::WaitCursor;
}
