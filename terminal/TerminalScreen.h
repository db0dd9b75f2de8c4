#pragma once

#include "CaptureFile.h"
#include "CommControl.h"
#include "TermEmulator.h"
#include "TermKeys.h"
#include "TermRenderer.h"
#include "TerminalSettings.h"

#include <QAbstractScrollArea>
#include <QElapsedTimer>
#include <QPoint>
#include <QPointer>
#include <QTimer>
#include <chrono>

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
    int ForeColor() const { return m_renderer.style().foreColor; }
    void setForeColor(int index);
    int BackColor() const { return m_renderer.style().backColor; }
    void setBackColor(int index);
    int ColorFilter() const { return m_renderer.style().colorFilter; }
    void setColorFilter(int filter);
    int Rows() const { return m_emu.rows(); }
    void setRows(int rows) { setScreenSize(rows, Columns()); }
    int Columns() const { return m_emu.columns(); }
    void setColumns(int columns) { setScreenSize(Rows(), columns); }
    int ScrollRows() const { return m_emu.scrollLimit(); }
    void setScrollRows(int lines);
    // The font is the widget's own (font(), setFont()).
    int CursorType() const { return m_renderer.style().cursorType; }
    void setCursorType(int type);
    // True: the screen is exactly as large as its rows and columns in its font.
    bool AutoSize() const { return m_autoSize; }
    void setAutoSize(bool on);
    // 0: the view stays where the user scrolled it; otherwise new text brings it back to the cursor.
    int AutoScroll() const { return m_autoScroll; }
    void setAutoScroll(int mode) { m_autoScroll = mode; }

    // The members that the terminal section keeps, and all of them at once; a new size keeps the text.
    TermSettings settings() const;
    void applySettings(const TermSettings &settings);

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
    // A row as it is painted, with the part of the selection and the cursor on it.
    RowLook rowLook(int row) const;

    // Shows everything queued now instead of at the next repaint tick.
    void flush();

    QSize sizeHint() const override;
    QSize cellSize() const { return m_renderer.cellSize(); }

public slots:
    // Text for the screen, as received (or put there by Disp).
    void receive(const QByteArray &bytes);

signals:
    // A key typed here went where routeKey sent it; the form does what the route leaves to it.
    void keyRouted(const KeyRoute &route);
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

    // Puts bytes on the screen as if received, without capturing them (reflowed or replaced text).
    void display(QByteArrayView bytes);
    QByteArray shownBytes(const QByteArray &bytes) const;
    void relayout(int rows, int columns);
    void process(qsizetype maxBytes);
    void scheduleRepaint();
    void scrollbackGrew(qint64 lines);
    void updateScrollBar();
    void updateCells(const QRect &cells);
    void restyle(const TermStyle &style);
    CellPos cellAt(const QPoint &point) const;

    TermEmulator m_emu{kDefaultRows, kDefaultColumns};
    CaptureFile m_capture;
    QPointer<CommControl> m_port;
    QTimer m_repaint;

    int m_emulation = int(TermEmulation::Vt100);
    int m_backspace = 0;
    bool m_echo = false;
    bool m_autoSize = true;
    int m_autoScroll = 4;

    TermRenderer m_renderer;
    CellPos m_paintedCursor{-1, -1};
    std::chrono::milliseconds m_lastProcess{0};
    bool m_lastProcessScrolled = false;
    qint64 m_scrolledSincePaint = 0;
    QElapsedTimer m_clock;

    CellPos m_selAnchor;
    CellPos m_selEnd;
    bool m_selecting = false;
};
