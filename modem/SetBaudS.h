#pragma once

#include "PortClaim.h"
#include "SerialRate.h"

#include <QDialog>
#include <QPointer>
#include <array>
#include <functional>
#include <memory>

class ModemSession;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;

// "Baud Rate Switches": where the setup switches of an old unit go for the computer's settings.
class Baud : public QDialog
{
    Q_OBJECT
public:
    Baud(const QString &settings, QWidget *parent = nullptr);

    QLabel *lblBaud;
    std::array<QLabel *, 8> lblSwitch{};
    std::array<QFrame *, 8> blkOnOff{};
    QPushButton *Command1;
    // "Done": the wizard goes first, then this form.
    std::function<void()> done;
};

// "Set Serial Baud Rate", the wizard around one button. The port is the program's while it is open.
class SetBaudS : public QDialog, private SerialRateView
{
    Q_OBJECT
public:
    SetBaudS(ModemSession &session, QWidget *parent = nullptr);
    ~SetBaudS() override;

    SerialRateSetup &setup() { return *m_setup; }
    Baud *baud() const { return m_baud; }

    QLabel *lblInfo;
    QLineEdit *txtStatus;
    QPushButton *cmdDownload;
    QPushButton *cmdCancel;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void setStatus(const QString &text, StatusLook look) override;
    void setInfo(const QString &text) override;
    void setActionCaption(const QString &text) override;
    void disableCancel() override;
    void openBaud() override;
    void unload() override;

    ModemSession &m_session;
    PortClaim m_port;
    std::unique_ptr<SerialRateSetup> m_setup;
    QPointer<Baud> m_baud;
};

// "Configure Varnel Serial Port": refused through the adaptor, otherwise the wizard opens beside the
// terminal. Returns the wizard, or nothing when it was refused.
SetBaudS *mnuSerialS(ModemSession &session, QWidget *parent);
