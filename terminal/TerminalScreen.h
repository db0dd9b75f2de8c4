#pragma once

#include "CaptureFile.h"
#include "CommControl.h"
#include "TermEmulator.h"

#include <QAbstractScrollArea>
#include <QElapsedTimer>
#include <QHash>
#include <QImage>
#include <QPoint>
#include <QPointer>
#include <QRawFont>
#include <QTimer>
#include <array>
#include <string>

// The key's character code as the terminal's key-press event reports it: 8 for Backspace, 13 for
// Enter, 27 for Esc, 9 for Tab, 1 to 26 for Ctrl and a letter, the Latin-1 code of a typed
// character; -1 for keys without one (cursor keys, function keys, Insert, Delete).
int KeyAscii(int key, Qt::KeyboardModifiers modifiers, const QString &text);

// The screen half of Comm1: the terminal screen with its text, cursor, selection, scroll-back and
// capture, and the terminal members of the control (emulation, colours, size, font, echo...).
// The port half is the CommControl it is attached to: at AutoProcess 3 what the port receives is
// shown here and keys typed here go to the port; at 0 the screen shows only what Disp puts there.
//
// Received bytes are queued and shown on a short repaint tick, from the rectangle that changed,
// however fast they come; readers of the screen's text see everything received so far.
class TerminalScreen : public QAbstractScrollArea
{
    Q_OBJECT
public:
    static constexpr int kDefaultRows = 25;
    static constexpr int kDefaultColumns = 80;
    static constexpr int kDefaultScrollRows = 409;
    // The screen keeps every cell in memory; these bound what a settings file can ask for.
    static constexpr int kMaxRows = 200;
    static constexpr int kMaxColumns = 400;

    enum CursorShape { CursorUnderline = 0, CursorBlock = 1 };

    explicit TerminalScreen(QWidget *parent = nullptr);
    ~TerminalScreen() override;

    // Ties the screen to its port; null leaves a screen that only shows text (the settings sample).
    void attach(CommControl *port);
    CommControl *port() const { return m_port; }

    int Emulation() const { return m_emulation; }
    void setEmulation(int emulation);
    // 0: the Backspace key sends Ctrl-H (8); 1: it sends DEL (127).
    int Backspace() const { return m_backspace; }
    void setBackspace(int code) { m_backspace = code; }
    bool Echo() const { return m_echo; }
    void setEcho(bool on) { m_echo = on; }
    int ForeColor() const { return m_foreColor; }
    void setForeColor(int index);
    int BackColor() const { return m_backColor; }
    void setBackColor(int index);
    int ColorFilter() const { return m_colorFilter; }
    void setColorFilter(int filter);
    int Rows() const { return m_emu.rows(); }
    void setRows(int rows) { setScreenSize(rows, Columns()); }
    int Columns() const { return m_emu.columns(); }
    void setColumns(int columns) { setScreenSize(Rows(), columns); }
    int ScrollRows() const { return m_emu.scrollLimit(); }
    void setScrollRows(int lines);
    // The font is the widget's own (font(), setFont()).
    int CursorType() const { return m_cursorType; }
    void setCursorType(int type);
    // True: the screen is exactly as large as its rows and columns in its font.
    bool AutoSize() const { return m_autoSize; }
    void setAutoSize(bool on);
    // 0: the view stays where the user scrolled it; otherwise new text brings it back to the cursor.
    int AutoScroll() const { return m_autoScroll; }
    void setAutoScroll(int mode) { m_autoScroll = mode; }

    QString CaptureFilename() const { return m_capture.fileName(); }
    // A name opens the capture file (AppError when it cannot be created); the empty text closes it.
    void setCaptureFilename(const QString &fileName);
    int CaptureMode() const { return m_capture.mode(); }
    void setCaptureMode(int mode) { m_capture.setMode(mode); }

    // Every screen row without trailing blanks, each ended by CR LF. Setting it empties the screen and
    // shows the text given.
    QString ScreenText();
    void setScreenText(const QString &text);
    // 1-based, as the control counts.
    int CursorRow();
    void setCursorRow(int row);
    int CursorCol();
    void setCursorCol(int column);
    QString SelText() const;
    int SelLength() const { return int(SelText().size()); }
    void clearSelection();
    // Selects from one cell to another (rows as rowText counts them, columns 0-based, end exclusive).
    void select(int fromRow, int fromColumn, int toRow, int toColumn);

    // A new size keeps the text of the screen, less its trailing empty lines.
    void setScreenSize(int rows, int columns);
    // Takes the text out, empties the screen and puts the text back without its trailing line ends.
    void reflowText();

    // One row's text: 0 is the top of the screen, -1 the newest line of the scroll-back.
    QString rowText(int row);
    int scrollbackLines() const { return m_emu.scrollbackLines(); }
    // The row shown at the top of the view (negative while the view is scrolled back).
    int topRow() const;

    // Shows everything queued now instead of at the next repaint tick.
    void flush();

    QSize sizeHint() const override;
    QSize cellSize() const { return {m_cellWidth, m_cellHeight}; }

public slots:
    // Text for the screen, as received (or put there by Disp).
    void receive(const QByteArray &bytes);

signals:
    // The control's key events, for the form: every key, and those that have a character code.
    void KeyDown(int key, Qt::KeyboardModifiers shift);
    void KeyPress(int ascii);
    void DblClick();
    // The modem rang the bell (at most once per repaint tick).
    void bell();

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    struct CellPos
    {
        int row = 0;
        int column = 0;
        bool operator==(const CellPos &) const = default;
        auto operator<=>(const CellPos &) const = default;
    };

    // Puts bytes on the screen as if received, without capturing them (local echo, reflowed text).
    void display(QByteArrayView bytes);
    QByteArray shownBytes(const QByteArray &bytes) const;
    void relayout(int rows, int columns);
    void process(qsizetype maxBytes);
    void scheduleRepaint();
    void scrollbackGrew(qint64 lines);
    void updateScrollBar();
    void updateMetrics();
    void updateCells(const QRect &cells);
    void sendFromKeyboard(const QByteArray &bytes);
    // One row as painted: its cells, the selected columns, where the cursor stands on it.
    struct RowLook
    {
        std::vector<TermCell> cells;
        int selFrom = -1;
        int selTo = -1;
        int cursorColumn = -1;
        bool operator==(const RowLook &) const = default;
    };
    struct CachedRow
    {
        size_t hash = 0;
        RowLook look;
        QImage image;
        quint64 used = 0;
    };
    // One character cell as painted: the character, its colours after reverse, selection and
    // filter, and the attributes that change the glyph.
    struct GlyphKey
    {
        char32_t ch = U' ';
        QRgb fg = 0;
        QRgb bg = 0;
        quint8 attrs = 0;
        bool wide = false;
        bool operator==(const GlyphKey &) const = default;
        friend size_t qHash(const GlyphKey &key, size_t seed = 0)
        {
            return qHashMulti(seed, uint(key.ch), key.fg, key.bg, key.attrs, key.wide);
        }
    };
    RowLook rowLook(int row) const;
    const QImage &rowImage(RowLook &&look);
    void renderRow(QImage &image, const RowLook &look) const;
    const QImage &cellImage(const GlyphKey &key) const;
    // Colours, font or cursor changed: every row is painted afresh.
    void restyle();
    CellPos cellAt(const QPoint &point) const;
    const QFont &fontFor(quint8 attrs) const;
    // Draws characters one to a cell, from glyphs looked up once per character: a terminal's text
    // needs no shaping, and shaping every new line is what a fast stream would otherwise cost.
    void drawChars(QPainter &painter, int x, const std::u32string &chars, quint8 attrs) const;

    TermEmulator m_emu{kDefaultRows, kDefaultColumns};
    CaptureFile m_capture;
    QPointer<CommControl> m_port;
    QTimer m_repaint;

    int m_emulation = int(TermEmulation::Vt100);
    int m_backspace = 0;
    bool m_echo = false;
    int m_foreColor = 15;
    int m_backColor = 1;
    int m_colorFilter = 0;
    int m_cursorType = CursorUnderline;
    bool m_autoSize = true;
    int m_autoScroll = 4;

    int m_cellWidth = 8;
    int m_cellHeight = 16;
    int m_ascent = 12;
    // The font with each combination of bold, underline, italic and strike-out.
    std::array<QFont, 16> m_fonts;
    // The font's faces without and with bold and italic, and the glyph of each character drawn so far.
    struct Face
    {
        QRawFont raw;
        QHash<char32_t, quint32> glyphs;
    };
    mutable std::array<Face, 4> m_faces;
    // Every cell drawn so far, as a picture: a row is put together by copying pixels, not by drawing text.
    mutable QHash<GlyphKey, QImage> m_cells;
    CellPos m_paintedCursor{-1, -1};

    // Rows painted lately, kept as pictures: a scrolling screen shows mostly rows it has painted before.
    std::vector<CachedRow> m_rowCache;
    quint64 m_paintCount = 0;
    qint64 m_lastProcessMs = 0;
    bool m_lastProcessScrolled = false;
    QElapsedTimer m_clock;

    CellPos m_selAnchor;
    CellPos m_selEnd;
    bool m_selecting = false;
};
