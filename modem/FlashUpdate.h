#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtGlobal>
#include <chrono>

class ModemSession;
class TimeSource;

// The settings that survive a firmware update: read from the running system before the flash and
// written back after it as the texts they were read as. A value that could not be read stays empty
// and goes back empty.
struct FlashParameters
{
    QString model;
    QString version; // read with the model, never written back
    QString option;
    QString address;
    QString setcon;
    QString asquelch;
    QString rflow;
    QString rxmark;
    QString comrate;
    QString rfpower;
    QString a1;
    QString n1;
    QString n2;
    QString squelch;
    QString datarate;
    QString rxdata;
    QString txflag;
    QString txend;
    QString frack;
    QString serial;
};

// One line of the write-back: the text that goes out with a carriage return, where the bar stands
// after it (-1: where it was), and how long the prompt is awaited.
struct ReprogramLine
{
    QByteArray text;
    int progress;
    int waitMs;
};

// The lines that write the gathered settings back, several settings to a line, then both saves.
QList<ReprogramLine> reprogramLines(const FlashParameters &parameters);

// Blocks of 4096 bytes in an image of this length, rounded to the nearest whole number and a half
// to the even one: the tail of a file that is not whole blocks is dropped or padded, never refused.
int flashBlockCount(qint64 length);

// Lets a display follow a fast loop without repainting more often than once an interval: the
// first look is always due, later ones only once the interval has passed on the time source.
class UpdateLimit
{
public:
    UpdateLimit(const TimeSource &time, std::chrono::milliseconds interval);
    bool due();

private:
    const TimeSource &m_time;
    qint64 m_intervalMs;
    qint64 m_lastMs = -1;
};

// What the update shows outside the modem dialogue: the progress form FlashProgress (loaded when
// first shown, gone when unloaded) and the terminal's title and screen.
class FlashView
{
public:
    virtual ~FlashView() = default;

    virtual void showProgress() = 0;
    virtual void unloadProgress() = 0;
    virtual void setStage(const QString &text) = 0;  // lblUpload
    virtual void setBlocksVisible(bool visible) = 0; // lblBlock, lblOf and lblTotal
    virtual void setBlock(int block) = 0;
    virtual void setTotal(int blocks) = 0;
    virtual void setMaximum(qint64 maximum) = 0; // pbFlash, from 0; the value goes back to 0
    virtual void setValue(qint64 value) = 0;
    virtual void setTitle(const QString &title) = 0;
    virtual void restoreTitle() = 0; // the terminal's normal title, the port read-out
    virtual void clearScreen() = 0;
};

// "Update Flash Memory": finds the modem's state, gathers its settings, lets the user choose the
// image, uploads it to the loader at the loader's fixed rate, waits for the restart and writes the
// settings back.
class FlashUpdate
{
public:
    FlashUpdate(ModemSession &session, FlashView &view);

    // The handler of the menu entry: the whole procedure.
    void mnuFlash();
    // The upload of the image to the loader. The caller learns nothing of success or failure.
    void LoadFlash(const QString &fileName);

    const FlashParameters &gathered() const { return m_parameters; }

private:
    // Stage 1: false when the procedure ends here.
    bool findModem(bool &noOperatingSystem);
    void gatherParameters();
    void reprogram();
    // Ends a stage the way the terminal wants the port back: title, receive events, terminal mode.
    void backToTerminal();
    bool output(const QByteArray &bytes);

    ModemSession &m_session;
    FlashView &m_view;
    FlashParameters m_parameters;
};
