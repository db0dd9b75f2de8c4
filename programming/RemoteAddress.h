#pragma once

#include <QWidget>
#include <array>
#include <functional>

class ModemSession;
class QLabel;
class QLineEdit;
class QPushButton;

// "Remote Programming": the destination and up to three repeaters of a remote modem. Find Remote
// opens the link and hands over to whoever opened the form: linked() once the remote answers,
// failed() when it does not; the form closes after either. It opens without blocking its opener.
class RemoteAddress : public QWidget
{
    Q_OBJECT
public:
    explicit RemoteAddress(ModemSession &session, QWidget *parent = nullptr);

    std::function<void()> linked;
    std::function<void()> failed;
    // An empty destination gives the opener's screen the focus back, if it has one.
    std::function<void()> focusOpener;

    QLineEdit *txtaddrss;
    std::array<QLineEdit *, 3> txtRep{};
    QLabel *lblcaution;
    QPushButton *cmdaddOK2;
    QPushButton *cmdaddCancel;

    void cmdaddOK2_Click();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    ModemSession &m_session;
};
