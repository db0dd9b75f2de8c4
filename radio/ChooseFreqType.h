#pragma once

#include "FreqSetting.h"
#include "PortClaim.h"

#include <QWidget>
#include <array>
#include <functional>

class ModemSession;
class QPushButton;

// "Frequency Setting For Varnel Model ...": the hub of the frequency and squelch screens. It reads
// the connected modem's identity once and keeps it for the screens it opens, and holds the port
// until it closes.
class ChooseFreqType : public QWidget
{
    Q_OBJECT
public:
    explicit ChooseFreqType(ModemSession &session, QWidget *parent = nullptr);

    // Reads the record and warns of a unit the user may not set; the buttons work all the same.
    void Load();

    // The remote address form, opened with the mode word set: linked() once the remote answers,
    // failed() when it does not.
    std::function<void(std::function<void()> linked, std::function<void()> failed)> openRemoteAddress;

    ModemRecord record;
    // Command1(1) to Command1(4); index 0 is not used.
    std::array<QPushButton *, 5> Command1{};
    QPushButton *cmdCancFreq;

    void Command1_Click(int index);
    // A screen it opened has set the frequency: the screens close back to the terminal.
    void frequencySet();
    // A screen it opened has closed without setting: the hub comes to the front again.
    void showAgain();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void openRemote();
    // The squelch: the walk with the user's help, or the slider screen of the unit.
    void squelch();
    template <typename Screen> void openScreen(ModemRecord &screenRecord);

    ModemSession &m_session;
    PortClaim m_port;
};
