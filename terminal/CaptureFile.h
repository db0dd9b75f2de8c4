#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QFile>
#include <QString>
#include <string>

// The capture modes of the terminal, numbered as CaptureMode holds them.
enum class CaptureMode { Binary = 1, Visible = 2, Standard = 3 };
// "BINARY", "VISIBLE" or "STANDARD": the mode's name in the status line.
QString captureModeName(int mode);

// Turns what the screen shows into capture text, piece by piece; pieces may split a sequence.
// Visible keeps the characters as they arrive with CR, LF and TAB, and drops escape sequences and
// the other control characters. Standard keeps lines as the screen shows them: a CR goes back to
// the line's start and later characters overwrite, BS steps back, TAB moves to the next multiple
// of eight, and each LF writes the line, without trailing blanks, followed by CR LF.
class CaptureText
{
public:
    explicit CaptureText(CaptureMode mode) : m_mode(mode) {}
    QByteArray take(QByteArrayView shown);
    // The unfinished line of Standard mode (the modem's prompt, typically), written at the end.
    QByteArray finish();

private:
    enum class Escape { None, Start, Csi, String, StringEnd };
    void character(char32_t ch, QByteArray &out);
    void control(char c, QByteArray &out);
    QByteArray lineBytes() const;

    CaptureMode m_mode;
    Escape m_escape = Escape::None;
    // Standard mode's line under construction and its column.
    std::u32string m_line;
    size_t m_column = 0;
    // Bytes of a UTF-8 character still being assembled.
    QByteArray m_utf8;
};

// The capture file of the terminal control: opened when a name is set, appended to while it is open
// (an existing file is continued, never overwritten), closed when the name is emptied.
class CaptureFile
{
public:
    ~CaptureFile();

    QString fileName() const { return m_fileName; }
    int mode() const { return int(m_mode); }
    // Takes effect for what arrives from then on.
    void setMode(int mode);

    // Throws AppError when the file cannot be created; an open capture is closed first.
    void open(const QString &fileName);
    void close();
    bool isOpen() const { return m_file.isOpen(); }

    // raw: the bytes as received; shown: the same bytes as the emulation takes them.
    void write(QByteArrayView raw, QByteArrayView shown);
    void flush();

private:
    QFile m_file;
    QString m_fileName;
    CaptureMode m_mode = CaptureMode::Standard;
    CaptureText m_text{CaptureMode::Standard};
};
