#pragma once

#include "FreqScreens.h"

class QProgressBar;
class QSlider;

// The slider screens of the squelch: four positions from the most sensitive to the most squelch.
class SquelchSlider : public FreqScreen
{
    Q_OBJECT
public:
    QSlider *sldsrs;
    QLabel *lblsrs;
    QLabel *lblValue;
    QPushButton *cmdsrs;

protected:
    SquelchSlider(ModemSession &session, ModemRecord &record, QWidget *parent);
    // Shows the position in lblsrs and its sensitivity in lblValue.
    virtual void showPosition(int position);
};

// Units without noise squelch: the Squelch value itself, on the connected or a linked remote modem.
class SetSquelch : public SquelchSlider
{
    Q_OBJECT
public:
    SetSquelch(ModemSession &session, ModemRecord &record, QWidget *parent = nullptr);
    bool Load() override;
    void cmdsrs_Click();

private:
    bool m_remote;
};

// Units with noise squelch: a profile of Asquelch values for the model, Squelch 0.
class SetSquelchHP : public SquelchSlider
{
    Q_OBJECT
public:
    SetSquelchHP(ModemSession &session, ModemRecord &record, QWidget *parent = nullptr);
    bool Load() override;
    void cmdsrs_Click();

protected:
    void showPosition(int position) override;

private:
    QString m_model;
};

// The spread-spectrum model: Squelch on the slider and the Asquelch it has.
class SetSquelchS : public SquelchSlider
{
    Q_OBJECT
public:
    SetSquelchS(ModemSession &session, ModemRecord &record, QWidget *parent = nullptr);
    bool Load() override;
    void cmdsrs_Click();
    QLabel *lblSquelch;
    QLabel *lblAsquelch;

protected:
    void showPosition(int position) override;

private:
    bool m_remote;
    int m_asquelch = 0;
};

// "Set Squelch Level": the Asquelch found by watching the carrier indicator.
class AutoSquelch : public FreqScreen
{
    Q_OBJECT
public:
    AutoSquelch(ModemSession &session, ModemRecord &record, QWidget *parent = nullptr);
    bool Load() override;
    void cmdSetSquelch_Click();

    QPushButton *cmdSetSquelch;
    QProgressBar *barAsqStat;
    QLabel *lblAsqStat;
    int Asquelch = 0;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    QString m_model;
};
