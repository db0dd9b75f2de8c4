#include "FlashProgress.h"

#include "Named.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QLabel>
#include <QProgressBar>

FlashProgress::FlashProgress(QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("FlashProgress"));
    setWindowModality(Qt::ApplicationModal);
    setWindowTitle(QStringLiteral("Flash Upload Progress"));
    lblUpload = named<QLabel>("lblUpload", this);
    lblBlock = named<QLabel>("lblBlock", this);
    lblOf = named<QLabel>("lblOf", QStringLiteral("of"), this);
    lblTotal = named<QLabel>("lblTotal", this);
    Label2 = named<QLabel>("Label2", QStringLiteral("Please Standby..."), this);
    pbFlash = named<QProgressBar>("pbFlash", this);
    pbFlash->setTextVisible(false);
    for (QLabel *label : {lblBlock, lblOf, lblTotal})
        label->setVisible(false);

    auto *layout = new QGridLayout(this);
    layout->addWidget(lblUpload, 0, 0);
    layout->addWidget(lblBlock, 0, 1);
    layout->addWidget(lblOf, 0, 2);
    layout->addWidget(lblTotal, 0, 3);
    layout->addWidget(pbFlash, 1, 0, 1, 4);
    layout->addWidget(Label2, 2, 0, 1, 4, Qt::AlignCenter);
    setMinimumWidth(360);
}

void FlashProgress::closeEvent(QCloseEvent *event)
{
    event->ignore();
}

FlashScreen::FlashScreen(FlashTerminalHooks hooks, QWidget *parent)
    : m_hooks(std::move(hooks)), m_parent(parent)
{}

FlashScreen::~FlashScreen()
{
    delete m_form;
}

FlashProgress &FlashScreen::loaded()
{
    if (!m_form)
        m_form = new FlashProgress(m_parent);
    return *m_form;
}

void FlashScreen::showProgress()
{
    loaded().show();
}

void FlashScreen::unloadProgress()
{
    delete m_form;
}

void FlashScreen::setStage(const QString &text)
{
    loaded().lblUpload->setText(text);
}

void FlashScreen::setBlocksVisible(bool visible)
{
    for (QLabel *label : {loaded().lblBlock, loaded().lblOf, loaded().lblTotal})
        label->setVisible(visible);
}

void FlashScreen::setBlock(int block)
{
    loaded().lblBlock->setText(QString::number(block));
}

void FlashScreen::setTotal(int blocks)
{
    loaded().lblTotal->setText(QString::number(blocks));
}

void FlashScreen::setMaximum(qint64 maximum)
{
    // The bar counts in ints; an image beyond 2 GB would not fit a modem anyway.
    loaded().pbFlash->setRange(0, int(std::min<qint64>(maximum, INT_MAX)));
    loaded().pbFlash->setValue(0);
}

void FlashScreen::setValue(qint64 value)
{
    QProgressBar *bar = loaded().pbFlash;
    bar->setValue(int(std::min<qint64>(value, bar->maximum())));
}

void FlashScreen::setTitle(const QString &title)
{
    if (m_hooks.setTitle)
        m_hooks.setTitle(title);
}

void FlashScreen::restoreTitle()
{
    if (m_hooks.restoreTitle)
        m_hooks.restoreTitle();
}

void FlashScreen::clearScreen()
{
    if (m_hooks.clearScreen)
        m_hooks.clearScreen();
}

void mnuFlash(ModemSession &session, const FlashTerminalHooks &hooks, QWidget *parent)
{
    FlashScreen screen(hooks, parent);
    FlashUpdate(session, screen).mnuFlash();
}
