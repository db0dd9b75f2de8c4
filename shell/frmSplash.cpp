#include "frmSplash.h"

#include "Named.h"
#include "frmAbout.h"

#include <QLabel>
#include <QMetaObject>
#include <QVBoxLayout>
#include <utility>

frmSplash::frmSplash(QWidget *parent) : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint)
{
    setObjectName(QStringLiteral("frmSplash"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    auto label = [&](const char *name, const QString &text, int pointSize) {
        auto *l = named<QLabel>(name, text, this);
        QFont f = l->font();
        f.setPointSize(pointSize);
        l->setFont(f);
        l->setAlignment(Qt::AlignCenter);
        layout->addWidget(l);
        return l;
    };
    lblCompanyProduct = label("lblCompanyProduct", QStringLiteral("Model Q40"), 14);
    lblProductName = label("lblProductName", QStringLiteral("Varnel Utility"), 22);
    lblPlatform = label("lblPlatform", QStringLiteral("for Windows"), 11);
    lblVersion = label("lblVersion", QStringLiteral("Version ") + appVersionText(), 11);
    lblCopyright = label("lblCopyright", QStringLiteral("Copyright \u00A9 Varnel. All rights reserved."), 9);
    setMinimumSize(420, 240);

    Timer1.setObjectName(QStringLiteral("Timer1"));
    Timer1.setSingleShot(true);
    Timer1.setInterval(500);
    connect(&Timer1, &QTimer::timeout, this, [this] {
        emit finished();
        close();
    });
    Timer1.start();
}

void frmSplash::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    // Told once the labels are painted too, after this turn of the event loop.
    if (!std::exchange(m_painted, true))
        QMetaObject::invokeMethod(this, &frmSplash::shownOnScreen, Qt::QueuedConnection);
}
