#pragma once

#include "FlashUpdate.h"

#include <QDialog>
#include <QPointer>
#include <functional>

class ModemSession;
class QLabel;
class QProgressBar;

// "Flash Upload Progress": what stage the update is in, which block goes up, and the bar. It holds
// the whole program while it stands: a key typed into the terminal or a second update would reach
// the loader, and a half-written image cannot be taken back, so it cannot be closed either.
class FlashProgress : public QDialog
{
    Q_OBJECT
public:
    explicit FlashProgress(QWidget *parent = nullptr);
    void reject() override {}

    QLabel *lblUpload;
    QLabel *lblBlock;
    QLabel *lblOf;
    QLabel *lblTotal;
    QLabel *Label2;
    QProgressBar *pbFlash;

protected:
    void closeEvent(QCloseEvent *event) override;
};

// The terminal's part in an update, set by the shell: its title and its screen.
struct FlashTerminalHooks
{
    std::function<void(const QString &)> setTitle;
    std::function<void()> restoreTitle;
    std::function<void()> clearScreen;
};

// The update as the user sees it: the progress form, loaded when first shown and deleted when
// unloaded, and the terminal's title and screen through the hooks.
class FlashScreen : public FlashView
{
public:
    FlashScreen(FlashTerminalHooks hooks, QWidget *parent);
    ~FlashScreen() override;

    FlashProgress *form() const { return m_form; }

    void showProgress() override;
    void unloadProgress() override;
    void setStage(const QString &text) override;
    void setBlocksVisible(bool visible) override;
    void setBlock(int block) override;
    void setTotal(int blocks) override;
    void setMaximum(qint64 maximum) override;
    void setValue(qint64 value) override;
    void setTitle(const QString &title) override;
    void restoreTitle() override;
    void clearScreen() override;

private:
    FlashProgress &loaded();

    FlashTerminalHooks m_hooks;
    QWidget *m_parent;
    QPointer<FlashProgress> m_form;
};

// "Update Flash Memory" from the terminal's menu.
void mnuFlash(ModemSession &session, const FlashTerminalHooks &hooks, QWidget *parent);
