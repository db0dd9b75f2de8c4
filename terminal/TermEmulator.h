#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QRect>
#include <QString>
#include <Qt>
#include <vector>

struct VTerm;
struct VTermScreen;

// The emulations the terminal offers, numbered as the Emulation setting stores them.
enum class TermEmulation { Tty = 1, Vt100 = 2 };
TermEmulation emulationFromNumber(int number);

// A colour as the emulator keeps it: the default foreground or background (the screen's ForeColor
// and BackColor decide it when painting), or a colour that the modem chose, as RGB.
struct TermColor
{
    static constexpr quint32 kDefault = 0;
    static constexpr quint32 kRgbFlag = 0xFF000000u;
    quint32 value = kDefault;

    bool isDefault() const { return value == kDefault; }
    quint32 rgb() const { return value & 0x00FFFFFFu; }
    static TermColor fromRgb(quint8 r, quint8 g, quint8 b)
    {
        return {kRgbFlag | (quint32(r) << 16) | (quint32(g) << 8) | quint32(b)};
    }
    bool operator==(const TermColor &) const = default;
};

// One character cell. The right half of a double-width character has ch 0.
struct TermCell
{
    enum Attr : quint8 { Bold = 1, Underline = 2, Italic = 4, Reverse = 8, Strike = 16 };
    char32_t ch = U' ';
    TermColor fg;
    TermColor bg;
    quint8 attrs = 0;

    bool sameLook(const TermCell &other) const
    {
        return fg == other.fg && bg == other.bg && attrs == other.attrs;
    }
    bool operator==(const TermCell &) const = default;
};

// The TTY emulation is a glass teletype: printable text, CR, LF, BS, TAB and BEL pass, every other
// control byte (ESC with it) is dropped, and bytes above 127 are taken as Latin-1 characters.
QByteArray ttyFilter(QByteArrayView bytes);

// The screen of the terminal without its window: libvterm interprets the bytes, lines that leave the
// top of the screen go to a scroll-back of bounded length. Bytes are queued by write() and
// interpreted by process(), so a burst costs one pass however many pieces it came in.
//
// A long run of plain text (printable characters, CR, LF, TAB, BS) forgets everything before its
// last few hundred lines: they end up beyond the scroll-back anyway. So while everything since
// the last reset was plain, only the part of the queue that can still be seen reaches libvterm.
// The queue drops what can no longer be seen as it grows, so a fast modem stream costs no more
// than the lines it leaves visible, and the queue stays a few screens long however long the stream.
class TermEmulator
{
public:
    TermEmulator(int rows, int columns);
    ~TermEmulator();
    TermEmulator(const TermEmulator &) = delete;
    TermEmulator &operator=(const TermEmulator &) = delete;

    void setEmulation(TermEmulation emulation) { m_emulation = emulation; }
    TermEmulation emulation() const { return m_emulation; }

    int rows() const { return m_rows; }
    int columns() const { return m_columns; }
    // A new size empties the screen (the caller puts its text back); the scroll-back stays.
    void setSize(int rows, int columns);

    int scrollLimit() const { return m_scrollLimit; }
    void setScrollLimit(int lines);
    int scrollbackLines() const { return int(m_scrollCount); }

    // Queues bytes as received from the port.
    void write(QByteArrayView bytes);
    bool hasPending() const { return m_pendingStart < m_pending.size(); }
    qsizetype pendingBytes() const { return m_pending.size() - m_pendingStart; }
    // Interprets at most maxBytes of what is queued (after the plain-text shortcut); returns whether
    // something is left for the next call.
    bool process(qsizetype maxBytes = -1);
    // How many bytes libvterm has interpreted so far; the rest of what was written was passed over.
    qint64 interpretedBytes() const { return m_interpreted; }

    // Empties the screen and puts the cursor home; the emulation starts afresh, the scroll-back stays.
    void clearScreen();
    void clearScrollback();

    // Rows are counted from 0 at the top of the screen; negative rows are the scroll-back, -1 the
    // newest line there. Cells past a scroll-back line's end read as blanks.
    void rowCells(int row, std::vector<TermCell> &cells) const;
    // The row's text without its trailing blanks.
    QString rowText(int row) const;
    // Every screen row without trailing blanks, each followed by CR LF.
    QString screenText() const;

    int cursorRow() const;    // 0-based
    int cursorColumn() const; // 0-based
    bool cursorVisible() const { return m_cursorVisible; }
    // Moves the cursor (0-based) as a cursor position sequence would.
    void setCursor(int row, int column);

    // What changed since the last call, in cells of the screen, and how many lines went into the
    // scroll-back meanwhile (counting those the shortcut passed over).
    QRect takeDamage();
    qint64 takeScrolledLines();
    int takeBells();

    // The bytes the emulation answers with for keys it encodes itself (cursor keys), or that it
    // sends back on its own (device status replies). Taken by the caller for the port.
    QByteArray takeOutput();
    // What the VT-100 emulation sends for a cursor key, in the cursor-key mode the modem chose;
    // empty for other keys.
    QByteArray cursorKeyBytes(Qt::Key key);

private:
    struct Callbacks;
    void create();
    // An empty screen with the cursor home, all of it to be painted again.
    void resetScreen();
    void feedVterm(const char *bytes, qsizetype length);
    // Feeds a run of plain text that starts with the cursor on the bottom row as one scroll by the
    // rows it will push up, the cursor moved up as far, then the run itself: libvterm then moves the
    // screen's rows once instead of once per line. Returns how many bytes it took (0: none).
    qsizetype feedScrolledRun(const char *bytes, qsizetype length);
    void pushLine(int columns, const void *cells);
    // Line feeds that must follow a cut in the queue (see forgetUnseen).
    qsizetype feedsToKeep() const;
    // Drops the queue's plain front that the line feeds behind it push out of sight, when at least
    // keepAtLeast of them follow.
    void forgetUnseen(qsizetype keepAtLeast);
    // The queue lost its first length bytes to libvterm or to forgetUnseen.
    void dropFront(qsizetype length);

    VTerm *m_vt = nullptr;
    VTermScreen *m_screen = nullptr;
    TermEmulation m_emulation = TermEmulation::Vt100;
    int m_rows;
    int m_columns;
    int m_scrollLimit = 409;

    // Scroll-back as a ring: m_scrollHead is the oldest line; lines keep their storage when reused.
    std::vector<std::vector<TermCell>> m_scroll;
    size_t m_scrollHead = 0;
    size_t m_scrollCount = 0;

    QByteArray m_pending;
    qsizetype m_pendingStart = 0;
    // While the history is plain: the line feeds in the queue, and how many of its first bytes are
    // plain text (all of them, or up to the first that is not).
    qsizetype m_pendingFeeds = 0;
    qsizetype m_plainFront = 0;
    // Everything fed since the last reset was plain text, so the parser rests in its ground state
    // and no mode, margin or character set differs from the defaults.
    bool m_plainHistory = true;

    qint64 m_interpreted = 0;
    QRect m_damage;
    qint64 m_scrolled = 0;
    int m_bells = 0;
    bool m_cursorVisible = true;
    QByteArray m_output;
};
