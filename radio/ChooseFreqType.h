#pragma once

#include "FreqSetting.h"
#include "PortClaim.h"

#include <QWidget>
#include <array>
#include <functional>

class FreqScreen;
class ModemSession;
class QPushButton;

// The frequency screen of the connected modem, loaded and not yet shown: the channels of the
// spread-spectrum model, the frequency entry of the others. Nothing when it could not load.
FreqScreen *localFrequencyScreen(ModemSession &session, ModemRecord &record, QWidget *parent);
// The squelch of the connected modem: the user is asked whether help is wanted, then the walk runs
// or the unit's screen is loaded and returned, not yet shown. Nothing when no screen is left to show.
FreqScreen *squelchScreen(ModemSession &session, ModemRecord &record, QWidget *parent);

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
    // A screen it opened reports back to it.
    void present(FreqScreen *screen);

    ModemSession &m_session;
    PortClaim m_port;
};
