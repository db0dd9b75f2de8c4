#pragma once

#include <QApplication>
#include <QTimer>
#include <functional>

// Runs fn on the next modal dialog as soon as it is up.
inline void whenModal(std::function<void(QWidget *)> fn)
{
    auto *timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, [timer, fn] {
        if (QWidget *modal = QApplication::activeModalWidget()) {
            timer->stop();
            timer->deleteLater();
            fn(modal);
        }
    });
    timer->start(0);
}
