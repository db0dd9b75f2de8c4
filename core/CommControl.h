#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <optional>

// Rate and frame of the serial line, as the control's Settings text "9600,n,8,1" gives them.
struct LineSettings
{
    int baud = 9600;
    char parity = 'N'; // 'N', 'E', 'O', 'M' or 'S'
    int dataBits = 8;
    int stopBits = 1;

    bool operator==(const LineSettings &) const = default;
};

// Reads "9600,n,8,1" (blanks and case ignored); nothing when the text is not of that form.
std::optional<LineSettings> parseLineSettings(const QString &text);
// The normal form the control reports: "9600,n,8,1".
QString lineSettingsText(const LineSettings &settings);

// The serial and terminal control Comm1: the one road to the modem. The members keep the names
// the rest of the program uses. AutoProcess is the lock on the port: at 3 the control runs the
// terminal by itself (received bytes go to the screen, keys to the port); at 0 the program reads
// and writes the port and the control neither shows nor consumes anything.
//
// Failures the program must see are thrown as AppError (opening a missing device, writing to a
// closed port, a malformed Settings text). Reading never fails: a closed port has nothing waiting.
class CommControl : public QObject
{
    Q_OBJECT
public:
    static constexpr int kAutoProcessProgram = 0;
    static constexpr int kAutoProcessTerminal = 3;
    // What the control keeps for the program at AutoProcess 0. A modem never sends more than a few
    // kilobytes between two prompts, so anything beyond this came while no dialogue was reading:
    // the oldest bytes go, and the newest, where a prompt stands, stay.
    static constexpr int kInBufferLimit = 64 * 1024;

    explicit CommControl(QObject *parent = nullptr);
    ~CommControl() override;

    int CommPort() const { return m_commPort; }
    void setCommPort(int port);

    bool PortOpen() const { return m_open; }
    void setPortOpen(bool open);

    QString Settings() const { return m_settingsText; }
    void setSettings(const QString &text);
    LineSettings lineSettings() const { return m_line; }

    // Queues all of the bytes for transmission at once, without waiting.
    void Output(const QByteArray &bytes);
    // Takes everything waiting (or InputLen bytes when that is not 0); never blocks.
    QByteArray Input();
    int InBufferCount() const { return int(m_inBuffer.size()); }
    void setInBufferCount(int count); // 0 empties the buffer

    int InputLen() const { return m_inputLen; }
    void setInputLen(int length) { m_inputLen = length; }

    int AutoProcess() const { return m_autoProcess; }
    void setAutoProcess(int mode);

    int RThreshold() const { return m_rThreshold; }
    void setRThreshold(int threshold) { m_rThreshold = threshold; }

    bool DTREnable() const { return m_dtr; }
    void setDTREnable(bool on);
    bool RTSEnable() const { return m_rts; }
    void setRTSEnable(bool on);
    int Handshaking() const { return m_handshaking; }
    void setHandshaking(int code);
    bool CDHolding() const;

    int Interval() const { return m_interval; }
    void setInterval(int ms) { m_interval = ms; }

    QString Tag() const { return m_tag; }
    void setTag(const QString &tag) { m_tag = tag; }

    // Puts text on the terminal screen as if it had been received.
    void Disp(const QByteArray &bytes);

    // The device a port number reaches, for the port dialog and for messages ("/dev/ttyUSB0").
    virtual QString deviceFor(int port) const = 0;

signals:
    // Text for the terminal screen: what Disp puts there and, at AutoProcess 3, what arrives.
    void screenText(const QByteArray &bytes);
    // The receive event: raised for each arrival while RThreshold is 1 or more and the program owns the port.
    void received();
    // The far side went away and the port was closed; device names what the port had open. The port
    // stays closed until the program opens it again.
    void lineLost(const QString &device);
    void portOpenChanged(bool open);

protected:
    // What an implementation does to the device. openDevice throws AppError on failure.
    virtual void openDevice() = 0;
    virtual void closeDevice() = 0;
    virtual void writeDevice(const QByteArray &bytes) = 0;
    virtual void applyLineSettings(const LineSettings &settings) = 0;
    virtual void applyControlLines(bool dtr, bool rts) = 0;
    virtual void applyHandshaking(int code) = 0;
    virtual bool carrierDetect() const = 0;
    // The program is about to take the port from the terminal: text the device still holds back
    // for the screen goes there now, not to the program.
    virtual void releaseHeldText() {}

    // Bytes that arrived from the modem.
    void deliver(const QByteArray &bytes);
    // The line dropped: close at once so that nothing keeps firing, and tell the window.
    void dropLine();

private:
    int m_commPort = 1;
    bool m_open = false;
    QString m_settingsText = QStringLiteral("19200,n,8,1");
    LineSettings m_line{19200, 'N', 8, 1};
    QByteArray m_inBuffer;
    int m_inputLen = 0;
    int m_autoProcess = kAutoProcessTerminal;
    int m_rThreshold = 0;
    bool m_dtr = true;
    bool m_rts = true;
    int m_handshaking = 0;
    int m_interval = 55;
    QString m_tag = QStringLiteral("Phone");
    QString m_openDevice;
};
