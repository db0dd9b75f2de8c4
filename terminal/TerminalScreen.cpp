#include "TerminalScreen.h"

#include "AppError.h"
#include "CommControl.h"
#include "TermPalette.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <chrono>

using namespace std::chrono_literals;

namespace {

// Received text is shown at this pace at most: fast enough to feel immediate, slow enough that a
// fast stream costs a few repaints a second rather than one per arrival.
constexpr auto kRepaintInterval = 20ms;
// What one turn of the event loop interprets at most when the shortcut for plain text cannot help,
// so that a flood of escape sequences never holds the window still.
constexpr qsizetype kSliceBytes = 256 * 1024;

const QLatin1String kLineEnd("\r\n");

} // namespace

int KeyAscii(int key, Qt::KeyboardModifiers modifiers, const QString &text)
{
    switch (key) {
    case Qt::Key_Backspace:
        return 8;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return 9;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return 13;
    case Qt::Key_Escape:
        return 27;
    default:
        break;
    }
    if ((modifiers & Qt::ControlModifier) && !(modifiers & Qt::AltModifier)) {
        if (key >= Qt::Key_A && key <= Qt::Key_Z)
            return key - Qt::Key_A + 1;
        switch (key) {
        case Qt::Key_At:
        case Qt::Key_Space:
            return 0;
        case Qt::Key_BracketLeft:
            return 27;
        case Qt::Key_Backslash:
            return 28;
        case Qt::Key_BracketRight:
            return 29;
        case Qt::Key_AsciiCircum:
            return 30;
        case Qt::Key_Underscore:
            return 31;
        default:
            return -1;
        }
    }
    if (text.size() == 1) {
        const char16_t ch = text.at(0).unicode();
        if (ch >= 0x20 && ch <= 0xFF && ch != 0x7F && !(ch >= 0x80 && ch < 0xA0))
            return ch;
    }
    return -1;
}

TerminalScreen::TerminalScreen(QWidget *parent) : QAbstractScrollArea(parent)
{
    setObjectName(QStringLiteral("Comm1"));
    setFocusPolicy(Qt::StrongFocus);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setCursor(Qt::IBeamCursor);
    setAttribute(Qt::WA_InputMethodEnabled, false);

    QFont terminalFont(QStringLiteral("Terminal"));
    terminalFont.setStyleHint(QFont::TypeWriter);
    terminalFont.setFixedPitch(true);
    terminalFont.setPointSize(9);
    setFont(terminalFont);
    updateMetrics();

    m_emu.setScrollLimit(kDefaultScrollRows);
    m_repaint.setSingleShot(true);
    connect(&m_repaint, &QTimer::timeout, this, [this] { process(kSliceBytes); });
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    updateScrollBar();
}

TerminalScreen::~TerminalScreen() = default;

void TerminalScreen::attach(CommControl *port)
{
    if (m_port)
        disconnect(m_port, nullptr, this, nullptr);
    m_port = port;
    if (port)
        connect(port, &CommControl::screenText, this, &TerminalScreen::receive);
}

void TerminalScreen::setEmulation(int emulation)
{
    flush();
    m_emulation = emulation;
    m_emu.setEmulation(EmulationFromNumber(emulation));
}

void TerminalScreen::setForeColor(int index)
{
    m_foreColor = index;
    viewport()->update();
}

void TerminalScreen::setBackColor(int index)
{
    m_backColor = index;
    viewport()->update();
}

void TerminalScreen::setColorFilter(int filter)
{
    m_colorFilter = filter;
    viewport()->update();
}

void TerminalScreen::setScrollRows(int lines)
{
    m_emu.setScrollLimit(std::max(lines, 0));
    updateScrollBar();
    viewport()->update();
}

void TerminalScreen::setCursorType(int type)
{
    m_cursorType = type;
    viewport()->update();
}

void TerminalScreen::setAutoSize(bool on)
{
    m_autoSize = on;
    setSizePolicy(on ? QSizePolicy::Fixed : QSizePolicy::Expanding,
                  on ? QSizePolicy::Fixed : QSizePolicy::Expanding);
    updateGeometry();
}

void TerminalScreen::setCaptureFilename(const QString &fileName)
{
    if (fileName.trimmed().isEmpty())
        m_capture.close();
    else
        m_capture.open(fileName);
}

QByteArray TerminalScreen::shownBytes(const QByteArray &bytes) const
{
    return m_emu.emulation() == TermEmulation::Tty ? TtyFilter(bytes) : bytes;
}

void TerminalScreen::receive(const QByteArray &bytes)
{
    const QByteArray shown = shownBytes(bytes);
    m_capture.write(bytes, shown);
    m_emu.write(shown);
    if (!m_repaint.isActive())
        m_repaint.start(kRepaintInterval);
}

void TerminalScreen::display(QByteArrayView bytes)
{
    m_emu.write(shownBytes(bytes.toByteArray()));
    if (!m_repaint.isActive())
        m_repaint.start(kRepaintInterval);
}

void TerminalScreen::flush()
{
    m_repaint.stop();
    process(-1);
}

void TerminalScreen::process(qsizetype maxBytes)
{
    const bool more = m_emu.process(maxBytes);
    m_capture.flush();
    const QByteArray reply = m_emu.takeOutput();
    if (!reply.isEmpty() && m_port && m_port->AutoProcess() == CommControl::kAutoProcessTerminal)
        IgnoreErrors([&] { m_port->Output(reply); });
    if (m_emu.takeBells() > 0)
        emit bell();
    const qint64 scrolled = m_emu.takeScrolledLines();
    QRect damage = m_emu.takeDamage();
    if (scrolled > 0)
        scrollbackGrew(scrolled);
    const CellPos cursor{m_emu.cursorRow(), m_emu.cursorColumn()};
    if (cursor != m_paintedCursor) {
        if (m_paintedCursor.row >= 0)
            damage |= QRect(m_paintedCursor.column, m_paintedCursor.row, 1, 1);
        damage |= QRect(cursor.column, cursor.row, 1, 1);
        m_paintedCursor = cursor;
    }
    updateCells(damage);
    if (more)
        m_repaint.start(0);
}

void TerminalScreen::scrollbackGrew(qint64 lines)
{
    if (m_selAnchor != m_selEnd) {
        m_selAnchor.row = int(std::max<qint64>(m_selAnchor.row - lines, -scrollbackLines()));
        m_selEnd.row = int(std::max<qint64>(m_selEnd.row - lines, -scrollbackLines()));
    }
    QScrollBar *bar = verticalScrollBar();
    const bool atBottom = bar->value() == bar->maximum();
    // The scroll bar still has the old count, the emulator already the new one.
    const qint64 oldTop = qint64(bar->value()) - bar->maximum();
    updateScrollBar();
    if (atBottom || m_autoScroll != 0) {
        bar->setValue(bar->maximum());
        return;
    }
    // The view stays on the lines the user scrolled to while they move up into the scroll-back.
    bar->setValue(int(std::clamp<qint64>(oldTop - lines + scrollbackLines(), 0, bar->maximum())));
    viewport()->update();
}

void TerminalScreen::updateScrollBar()
{
    QScrollBar *bar = verticalScrollBar();
    const bool atBottom = bar->value() == bar->maximum();
    bar->setRange(0, scrollbackLines());
    bar->setPageStep(Rows());
    bar->setSingleStep(1);
    if (atBottom)
        bar->setValue(bar->maximum());
}

int TerminalScreen::topRow() const
{
    return verticalScrollBar()->value() - scrollbackLines();
}

void TerminalScreen::updateCells(const QRect &cells)
{
    if (cells.isEmpty())
        return;
    const int top = topRow();
    viewport()->update(QRect(cells.left() * m_cellWidth, (cells.top() - top) * m_cellHeight,
                             cells.width() * m_cellWidth, cells.height() * m_cellHeight));
}

QString TerminalScreen::ScreenText()
{
    flush();
    return m_emu.screenText();
}

void TerminalScreen::setScreenText(const QString &text)
{
    flush();
    m_emu.clearScreen();
    clearSelection();
    if (!text.isEmpty())
        display(text.toUtf8());
    flush();
}

int TerminalScreen::CursorRow()
{
    flush();
    return m_emu.cursorRow() + 1;
}

void TerminalScreen::setCursorRow(int row)
{
    flush();
    m_emu.setCursor(row - 1, m_emu.cursorColumn());
    process(-1);
}

int TerminalScreen::CursorCol()
{
    flush();
    return m_emu.cursorColumn() + 1;
}

void TerminalScreen::setCursorCol(int column)
{
    flush();
    m_emu.setCursor(m_emu.cursorRow(), column - 1);
    process(-1);
}

QString TerminalScreen::rowText(int row)
{
    flush();
    return m_emu.rowText(row);
}

void TerminalScreen::setScreenSize(int rows, int columns)
{
    rows = std::clamp(rows, 1, kMaxRows);
    columns = std::clamp(columns, 1, kMaxColumns);
    if (rows == Rows() && columns == Columns())
        return;
    relayout(rows, columns);
}

void TerminalScreen::reflowText()
{
    relayout(Rows(), Columns());
}

void TerminalScreen::relayout(int rows, int columns)
{
    flush();
    QString text = m_emu.screenText();
    while (text.endsWith(kLineEnd))
        text.chop(kLineEnd.size());
    m_emu.clearScreen();
    m_emu.setSize(rows, columns);
    clearSelection();
    display(text.toUtf8());
    flush();
    updateScrollBar();
    updateGeometry();
    viewport()->update();
}

void TerminalScreen::clearSelection()
{
    if (m_selAnchor == m_selEnd)
        return;
    m_selAnchor = m_selEnd = CellPos{};
    viewport()->update();
}

void TerminalScreen::select(int fromRow, int fromColumn, int toRow, int toColumn)
{
    flush();
    m_selAnchor = {fromRow, std::clamp(fromColumn, 0, Columns())};
    m_selEnd = {toRow, std::clamp(toColumn, 0, Columns())};
    viewport()->update();
}

bool TerminalScreen::selected(int row, int column) const
{
    if (m_selAnchor == m_selEnd)
        return false;
    const CellPos p{row, column};
    const auto [from, to] = std::minmax(m_selAnchor, m_selEnd);
    return from <= p && p < to;
}

QString TerminalScreen::SelText() const
{
    if (m_selAnchor == m_selEnd)
        return {};
    const auto [from, to] = std::minmax(m_selAnchor, m_selEnd);
    QStringList lines;
    std::vector<TermCell> cells;
    for (int row = from.row; row <= to.row; ++row) {
        m_emu.rowCells(row, cells);
        const int first = row == from.row ? from.column : 0;
        const int last = row == to.row ? to.column : Columns();
        QString line;
        for (int c = first; c < last; ++c)
            if (cells[size_t(c)].ch != 0)
                line += QStringView(QChar::fromUcs4(cells[size_t(c)].ch));
        while (line.endsWith(u' '))
            line.chop(1);
        lines << line;
    }
    return lines.join(kLineEnd);
}

void TerminalScreen::updateMetrics()
{
    const QFontMetrics metrics(font());
    m_cellWidth = std::max(1, metrics.horizontalAdvance(QLatin1Char('M')));
    m_cellHeight = std::max(1, metrics.height());
    m_ascent = metrics.ascent();
    for (size_t i = 0; i < m_fonts.size(); ++i) {
        QFont variant = font();
        variant.setBold(i & 1);
        variant.setUnderline(i & 2);
        variant.setItalic(i & 4);
        variant.setStrikeOut(i & 8);
        m_fonts[i] = variant;
    }
}

const QFont &TerminalScreen::fontFor(quint8 attrs) const
{
    return m_fonts[size_t((attrs & 7) | ((attrs & TermCell::Strike) ? 8 : 0))];
}

QSize TerminalScreen::sizeHint() const
{
    const int frame = 2 * frameWidth();
    return {Columns() * m_cellWidth + frame + verticalScrollBar()->sizeHint().width(),
            Rows() * m_cellHeight + frame};
}

void TerminalScreen::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        updateMetrics();
        updateGeometry();
        viewport()->update();
    }
}

void TerminalScreen::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBar();
}

bool TerminalScreen::focusNextPrevChild(bool)
{
    // Tab belongs to the modem, not to the focus chain.
    return false;
}

void TerminalScreen::scrollContentsBy(int, int)
{
    viewport()->update();
}

void TerminalScreen::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    const auto filter = ColorFilterFromNumber(m_colorFilter);
    const QColor defaultFg = PaletteColor(m_foreColor);
    const QColor defaultBg = PaletteColor(m_backColor);
    const CellColors plain = FilterColors(defaultFg, defaultBg, filter);
    const QRect area = event->rect();
    painter.fillRect(area, plain.bg);

    const int top = topRow();
    const int columns = Columns();
    const int firstRow = std::max(0, area.top() / m_cellHeight);
    const int lastRow = std::min(Rows() - 1, area.bottom() / m_cellHeight);
    const int firstColumn = std::max(0, area.left() / m_cellWidth - 1);
    const int lastColumn = std::min(columns - 1, area.right() / m_cellWidth);
    const CellPos cursor{m_emu.cursorRow(), m_emu.cursorColumn()};
    std::vector<TermCell> cells;
    QString text;

    for (int viewRow = firstRow; viewRow <= lastRow; ++viewRow) {
        const int row = top + viewRow;
        m_emu.rowCells(row, cells);
        const int y = viewRow * m_cellHeight;
        int column = firstColumn;
        while (column <= lastColumn) {
            const TermCell &first = cells[size_t(column)];
            const bool inSelection = selected(row, column);
            const auto isWide = [&](int c) { return c + 1 < columns && cells[size_t(c + 1)].ch == 0; };
            int end = column + (isWide(column) ? 2 : 1);
            text.clear();
            text += QStringView(QChar::fromUcs4(first.ch == 0 ? U' ' : first.ch));
            if (!isWide(column)) {
                while (end <= lastColumn && cells[size_t(end)].ch != 0 && !isWide(end) &&
                       cells[size_t(end)].sameLook(first) && selected(row, end) == inSelection) {
                    text += QStringView(QChar::fromUcs4(cells[size_t(end)].ch));
                    ++end;
                }
            }
            QColor fg = first.fg.isDefault() ? defaultFg : QColor(QRgb(first.fg.rgb()));
            QColor bg = first.bg.isDefault() ? defaultBg : QColor(QRgb(first.bg.rgb()));
            if (bool(first.attrs & TermCell::Reverse) != inSelection)
                std::swap(fg, bg);
            const CellColors colors = FilterColors(fg, bg, filter);
            const QRect runRect(column * m_cellWidth, y, (end - column) * m_cellWidth, m_cellHeight);
            painter.fillRect(runRect, colors.bg);
            const bool visibleText =
                !text.trimmed().isEmpty() || (first.attrs & (TermCell::Underline | TermCell::Strike)) != 0;
            if (visibleText) {
                painter.setFont(fontFor(first.attrs));
                painter.setPen(colors.fg);
                painter.drawText(runRect.left(), y + m_ascent, text);
            }
            column = end;
        }
        if (row == cursor.row && m_emu.cursorVisible() && cursor.column >= firstColumn &&
            cursor.column <= lastColumn) {
            const QRect cell(cursor.column * m_cellWidth, y, m_cellWidth, m_cellHeight);
            if (m_cursorType == CursorBlock) {
                painter.fillRect(cell, plain.fg);
                const char32_t ch = cells[size_t(cursor.column)].ch;
                if (ch > U' ') {
                    painter.setFont(fontFor(cells[size_t(cursor.column)].attrs));
                    painter.setPen(plain.bg);
                    painter.drawText(cell.left(), y + m_ascent, QStringView(QChar::fromUcs4(ch)).toString());
                }
            } else {
                painter.fillRect(QRect(cell.left(), cell.bottom() - 1, m_cellWidth, 2), plain.fg);
            }
        }
    }
}

void TerminalScreen::sendFromKeyboard(const QByteArray &bytes)
{
    IgnoreErrors([&] { m_port->Output(bytes); });
    if (m_echo)
        display(bytes);
    QScrollBar *bar = verticalScrollBar();
    bar->setValue(bar->maximum());
}

void TerminalScreen::keyPressEvent(QKeyEvent *event)
{
    event->accept();
    if ((event->modifiers() & Qt::ShiftModifier) &&
        (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown)) {
        QScrollBar *bar = verticalScrollBar();
        bar->triggerAction(event->key() == Qt::Key_PageUp ? QAbstractSlider::SliderPageStepSub
                                                          : QAbstractSlider::SliderPageStepAdd);
        return;
    }
    emit KeyDown(event->key(), event->modifiers());
    const int ascii = KeyAscii(event->key(), event->modifiers(), event->text());
    QByteArray bytes;
    if (ascii == 8)
        bytes = QByteArray(1, m_backspace == 1 ? '\x7f' : '\b');
    else if (ascii >= 0)
        bytes = QByteArray(1, char(ascii));
    else
        bytes = m_emu.cursorKeyBytes(Qt::Key(event->key()));
    if (!bytes.isEmpty() && m_port && m_port->AutoProcess() == CommControl::kAutoProcessTerminal)
        sendFromKeyboard(bytes);
    if (ascii >= 0)
        emit KeyPress(ascii);
}

TerminalScreen::CellPos TerminalScreen::cellAt(const QPoint &point) const
{
    const int row = std::clamp(topRow() + point.y() / m_cellHeight, -scrollbackLines(), Rows() - 1);
    const int column = std::clamp((point.x() + m_cellWidth / 2) / m_cellWidth, 0, Columns());
    return {row, column};
}

void TerminalScreen::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    flush();
    m_selAnchor = m_selEnd = cellAt(event->position().toPoint());
    m_selecting = true;
    viewport()->update();
}

void TerminalScreen::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_selecting)
        return;
    m_selEnd = cellAt(event->position().toPoint());
    viewport()->update();
}

void TerminalScreen::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        m_selecting = false;
}

void TerminalScreen::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit DblClick();
}
