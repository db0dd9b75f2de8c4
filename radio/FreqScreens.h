#pragma once

#include "FreqSetting.h"

#include <QWidget>
#include <array>

class ModemSession;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

// The frequency screens the hub opens. Each one reads what it shows when it is built, and tells the
// hub by the signals below whether it set the frequency or was left.
class FreqScreen : public QWidget
{
    Q_OBJECT
public:
    FreqScreen(ModemSession &session, ModemRecord &record, QWidget *parent);
    // Reads what the screen needs before it is shown; false when it cannot open.
    virtual bool Load() { return true; }

signals:
    void frequencySet();
    void left();

protected:
    void closeEvent(QCloseEvent *event) override;
    // Closes the screen after a frequency was set.
    void finish();

    ModemSession &m_session;
    ModemRecord &m_record;

private:
    bool m_set = false;
};

// A new frequency typed into a masked field, tested and sent: the connected modem (TXRX) or a
// linked remote one (RemoteFreqChange).
class FrequencyEntry : public FreqScreen
{
    Q_OBJECT
public:
    QLabel *lblcurrentfreq;
    QLabel *lblfreq2;
    QLineEdit *mask;
    QPushButton *ok;
    QPushButton *cmdCancDis;

    void okClick();

protected:
    FrequencyEntry(ModemSession &session, ModemRecord &record, QWidget *parent, bool remote);
    // Reads the latches of the unit at the prompt and shows its frequency and band.
    void showCurrent();

private:
    bool m_remote;
};

class TXRX : public FrequencyEntry
{
    Q_OBJECT
public:
    TXRX(ModemSession &session, ModemRecord &record, QWidget *parent = nullptr);
    QLineEdit *MaskBoxtxt() const { return mask; }
};

// Works on the remote's own record, read over the link; what it sets is kept in the hub's record.
class RemoteFreqChange : public FrequencyEntry
{
    Q_OBJECT
public:
    RemoteFreqChange(ModemSession &session, ModemRecord &hubRecord, QWidget *parent = nullptr);
    QLineEdit *MaskBoxChange() const { return mask; }

private:
    ModemRecord m_remoteRecord;
};

// The present frequency, squelch and latches of the connected modem.
class DisplayCurrent : public FreqScreen
{
    Q_OBJECT
public:
    DisplayCurrent(ModemSession &session, ModemRecord &record, QWidget *parent = nullptr);
    QPushButton *cmdYes;
    QPushButton *CmdNo;
};

// The eleven channels of the spread-spectrum model: chosen and set (SpreadFreqSet), or shown with
// the squelch levels (ShowSpreadFreq).
class SpreadChannels : public FreqScreen
{
    Q_OBJECT
public:
    std::array<QRadioButton *, 12> Option1{}; // Option1(1) to Option1(11)
    QPushButton *cmdCancel;

protected:
    SpreadChannels(ModemSession &session, ModemRecord &record, QWidget *parent);
    // Reads the channel the latches stand on and selects its option.
    int readChannel();
};

class SpreadFreqSet : public SpreadChannels
{
    Q_OBJECT
public:
    SpreadFreqSet(ModemSession &session, ModemRecord &record, QWidget *parent = nullptr);
    QPushButton *cmdSetFreq;
    void cmdSetFreq_Click();

private:
    bool m_remote;
};

class ShowSpreadFreq : public SpreadChannels
{
    Q_OBJECT
public:
    ShowSpreadFreq(ModemSession &session, ModemRecord &record, QWidget *parent = nullptr);
};
