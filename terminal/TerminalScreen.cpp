#include "TerminalScreen.h"

#include "AppError.h"
#include "CommControl.h"
#include "TermPalette.h"

#include <QGlyphRun>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <chrono>
#include <cstring>

using namespace std::chrono_literals;

namespace {

// Received text is shown this long after it arrives: soon enough to feel immediate, late enough
// that a burst is shown once rather than once per arrival.
constexpr auto kRepaintDelay = 20ms;
// Changes keep coming (typing, a status line updating in place): they are shown at this pace at most.
constexpr auto kRepaintGap = 100ms;
// A screen that scrolls is repainted at this slower pace, so that a modem talking at full speed
// costs a few repaints a second rather than one per line, and the lines it shows can be taken in.
constexpr auto kScrollingRepaintGap = 200ms;
// What one turn of the event loop interprets at most when the shortcut for plain text cannot help,
// so that a flood of escape sequences never holds the window still.
constexpr qsizetype kSliceBytes = 256 * 1024;
// A flood is interpreted as it comes once this much waits, so that what is queued stays small
// however fast the port delivers.
constexpr qsizetype kMostPending = 1024 * 1024;

const QLatin1String kLineEnd("\r\n");

// One cell's part of a row picture: where it goes and the glyph picture it comes from.
struct CellPiece
{
    qsizetype offset = 0;
    const uchar *bits = nullptr;
    qsizetype stride = 0;
    size_t bytes = 0;
};

// Writes a row picture line by line from its cells' glyphs. Cells of the usual width are copied with
// a fixed size, which the compiler turns into a few moves instead of a call per cell and line.
template <size_t Bytes>
void CopyPieces(uchar *bits, qsizetype rowBytes, int lines, const std::vector<CellPiece> &pieces)
{
    for (int y = 0; y < lines; ++y, bits += rowBytes) {
        for (const CellPiece &piece : pieces) {
            const uchar *source = piece.bits + y * piece.stride;
            if (Bytes != 0 && piece.bytes == Bytes)
                std::memcpy(bits + piece.offset, source, Bytes);
            else
                std::memcpy(bits + piece.offset, source, piece.bytes);
        }
    }
}

void CopyPieces(uchar *bits, qsizetype rowBytes, int lines, size_t cellBytes,
                const std::vector<CellPiece> &pieces)
{
    switch (cellBytes) {
    case 24:
        return CopyPieces<24>(bits, rowBytes, lines, pieces);
    case 28:
        return CopyPieces<28>(bits, rowBytes, lines, pieces);
    case 32:
        return CopyPieces<32>(bits, rowBytes, lines, pieces);
    case 36:
        return CopyPieces<36>(bits, rowBytes, lines, pieces);
    case 40:
        return CopyPieces<40>(bits, rowBytes, lines, pieces);
    default:
        return CopyPieces<0>(bits, rowBytes, lines, pieces);
    }
}

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
    m_clock.start();
    m_lastProcessMs = -kScrollingRepaintGap.count();
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
    restyle();
}

void TerminalScreen::setBackColor(int index)
{
    m_backColor = index;
    restyle();
}

void TerminalScreen::setColorFilter(int filter)
{
    m_colorFilter = filter;
    restyle();
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
    restyle();
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
    if (m_emu.pendingBytes() > kMostPending)
        process(kSliceBytes);
    scheduleRepaint();
}

void TerminalScreen::display(QByteArrayView bytes)
{
    m_emu.write(shownBytes(bytes.toByteArray()));
    scheduleRepaint();
}

void TerminalScreen::scheduleRepaint()
{
    if (m_repaint.isActive())
        return;
    const auto sinceLast = std::chrono::milliseconds(m_clock.elapsed() - m_lastProcessMs);
    const auto gap = m_lastProcessScrolled ? kScrollingRepaintGap : kRepaintGap;
    m_repaint.start(std::max<std::chrono::milliseconds>(kRepaintDelay, gap - sinceLast));
}

void TerminalScreen::flush()
{
    m_repaint.stop();
    process(-1);
}

void TerminalScreen::process(qsizetype maxBytes)
{
    const bool more = m_emu.process(maxBytes);
    m_lastProcessMs = m_clock.elapsed();
    m_capture.flush();
    const QByteArray reply = m_emu.takeOutput();
    if (!reply.isEmpty() && m_port && m_port->AutoProcess() == CommControl::kAutoProcessTerminal)
        ignoreErrors([&] { m_port->Output(reply); });
    if (m_emu.takeBells() > 0)
        emit bell();
    const qint64 scrolled = m_emu.takeScrolledLines();
    m_lastProcessScrolled = scrolled > 0;
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
    m_rowCache.clear();
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
    for (size_t i = 0; i < m_faces.size(); ++i)
        m_faces[i] = Face{QRawFont::fromFont(m_fonts[(i & 1) | ((i & 2) ? 4 : 0)]), {}};
}

void TerminalScreen::drawChars(QPainter &painter, int x, const std::u32string &chars, quint8 attrs) const
{
    Face &face = m_faces[size_t(((attrs & TermCell::Bold) ? 1 : 0) | ((attrs & TermCell::Italic) ? 2 : 0))];
    QList<quint32> glyphs;
    QList<QPointF> positions;
    glyphs.reserve(qsizetype(chars.size()));
    positions.reserve(qsizetype(chars.size()));
    bool complete = face.raw.isValid();
    for (size_t i = 0; complete && i < chars.size(); ++i) {
        auto found = face.glyphs.constFind(chars[i]);
        if (found == face.glyphs.cend()) {
            const QString text = QString::fromUcs4(&chars[i], 1);
            quint32 glyph = 0;
            int count = 1;
            if (!face.raw.glyphIndexesForChars(text.constData(), int(text.size()), &glyph, &count) ||
                count != 1)
                glyph = 0;
            found = face.glyphs.insert(chars[i], glyph);
        }
        complete = *found != 0 || chars[i] == U' ';
        glyphs << *found;
        positions << QPointF(qreal(i) * m_cellWidth, m_ascent);
    }
    if (!complete) {
        // A character the font lacks: the text engine finds it in a fallback font.
        painter.setFont(fontFor(attrs));
        painter.drawText(x, m_ascent, QString::fromUcs4(chars.data(), qsizetype(chars.size())));
        return;
    }
    QGlyphRun run;
    run.setRawFont(face.raw);
    run.setGlyphIndexes(glyphs);
    run.setPositions(positions);
    run.setUnderline(attrs & TermCell::Underline);
    run.setStrikeOut(attrs & TermCell::Strike);
    painter.drawGlyphRun(QPointF(x, 0), run);
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
        restyle();
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

TerminalScreen::RowLook TerminalScreen::rowLook(int row) const
{
    RowLook look;
    m_emu.rowCells(row, look.cells);
    if (m_selAnchor != m_selEnd) {
        const auto [from, to] = std::minmax(m_selAnchor, m_selEnd);
        if (row >= from.row && row <= to.row) {
            look.selFrom = row == from.row ? from.column : 0;
            look.selTo = row == to.row ? to.column : Columns();
        }
    }
    if (row == m_emu.cursorRow() && m_emu.cursorVisible())
        look.cursorColumn = m_emu.cursorColumn();
    return look;
}

const QImage &TerminalScreen::rowImage(RowLook &&look)
{
    size_t hash = qHashMulti(0, look.selFrom, look.selTo, look.cursorColumn);
    for (const TermCell &cell : look.cells)
        hash = qHashMulti(hash, uint(cell.ch), cell.fg.value, cell.bg.value, cell.attrs);
    ++m_paintCount;
    for (CachedRow &cached : m_rowCache) {
        if (cached.hash == hash && cached.look == look) {
            cached.used = m_paintCount;
            return cached.image;
        }
    }
    const size_t capacity = size_t(2 * Rows() + 8);
    auto slot = m_rowCache.end();
    if (m_rowCache.size() >= capacity)
        slot = std::min_element(m_rowCache.begin(), m_rowCache.end(),
                                [](const CachedRow &a, const CachedRow &b) { return a.used < b.used; });
    if (slot == m_rowCache.end()) {
        m_rowCache.emplace_back();
        slot = m_rowCache.end() - 1;
    }
    const qreal ratio = devicePixelRatioF();
    const QSize size(qRound(Columns() * m_cellWidth * ratio), qRound(m_cellHeight * ratio));
    // An evicted row's picture is painted over rather than allocated anew.
    if (slot->image.size() != size || slot->image.devicePixelRatio() != ratio) {
        slot->image = QImage(size, QImage::Format_RGB32);
        slot->image.setDevicePixelRatio(ratio);
    }
    renderRow(slot->image, look);
    slot->hash = hash;
    slot->look = std::move(look);
    slot->used = m_paintCount;
    return slot->image;
}

const QImage &TerminalScreen::cellImage(const GlyphKey &key) const
{
    if (const auto found = m_cells.constFind(key); found != m_cells.cend())
        return *found;
    const qreal ratio = devicePixelRatioF();
    const int width = qRound(m_cellWidth * ratio) * (key.wide ? 2 : 1);
    QImage image(width, qRound(m_cellHeight * ratio), QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(QColor(key.bg));
    if (key.ch != U' ' || (key.attrs & (TermCell::Underline | TermCell::Strike))) {
        QPainter painter(&image);
        painter.setPen(QColor(key.fg));
        drawChars(painter, 0, std::u32string(1, key.ch), key.attrs);
    }
    return *m_cells.insert(key, std::move(image));
}

void TerminalScreen::renderRow(QImage &image, const RowLook &look) const
{
    const auto filter = ColorFilterFromNumber(m_colorFilter);
    const QColor defaultFg = PaletteColor(m_foreColor);
    const QColor defaultBg = PaletteColor(m_backColor);
    const std::vector<TermCell> &cells = look.cells;
    const int columns = int(cells.size());
    const int cellBytes = qRound(m_cellWidth * image.devicePixelRatio()) * 4;
    const int height = image.height();
    const qsizetype rowBytes = image.bytesPerLine();
    uchar *const bits = image.bits();
    constexpr quint8 kGlyphAttrs = TermCell::Bold | TermCell::Italic | TermCell::Underline | TermCell::Strike;
    // Many colours and characters make many cells: start afresh rather than grow without end, but
    // never within a row, which holds on to the cells it has looked up.
    constexpr qsizetype kMostCells = 4096;
    if (m_cells.size() + columns > kMostCells)
        m_cells.clear();
    // Neighbouring cells mostly look alike: the colours are worked out again only when the look
    // changes, and the plain characters of the present look are found without hashing.
    struct Glyph
    {
        const uchar *bits = nullptr;
        qsizetype stride = 0;
    };
    std::array<Glyph, 128> asciiGlyphs;
    std::vector<CellPiece> pieces;
    pieces.reserve(size_t(columns));
    TermCell lastLook;
    bool lastSelected = false;
    CellColors colors;
    bool haveColors = false;
    for (int column = 0; column < columns; ++column) {
        const TermCell &cell = cells[size_t(column)];
        // The right half of a wide character was painted with its left half.
        if (cell.ch == 0 && column > 0 && cells[size_t(column - 1)].ch != 0)
            continue;
        const bool inSelection = column >= look.selFrom && column < look.selTo;
        if (!haveColors || !cell.sameLook(lastLook) || inSelection != lastSelected) {
            QColor fg = cell.fg.isDefault() ? defaultFg : QColor(QRgb(cell.fg.rgb()));
            QColor bg = cell.bg.isDefault() ? defaultBg : QColor(QRgb(cell.bg.rgb()));
            if (bool(cell.attrs & TermCell::Reverse) != inSelection)
                std::swap(fg, bg);
            colors = FilterColors(fg, bg, filter);
            lastLook = cell;
            lastSelected = inSelection;
            haveColors = true;
            asciiGlyphs.fill({});
        }
        const char32_t ch = cell.ch == 0 ? U' ' : cell.ch;
        const bool wide = cell.ch != 0 && column + 1 < columns && cells[size_t(column + 1)].ch == 0;
        const bool isAscii = ch < asciiGlyphs.size() && !wide;
        Glyph glyph = isAscii ? asciiGlyphs[ch] : Glyph{};
        if (!glyph.bits) {
            const QImage &found =
                cellImage({ch, colors.fg.rgb(), colors.bg.rgb(), quint8(cell.attrs & kGlyphAttrs), wide});
            glyph = {found.constBits(), found.bytesPerLine()};
            if (isAscii)
                asciiGlyphs[ch] = glyph;
        }
        const qsizetype offset = qsizetype(column) * cellBytes;
        pieces.push_back(
            {offset, glyph.bits, glyph.stride, size_t(std::min(glyph.stride, rowBytes - offset))});
    }
    CopyPieces(bits, rowBytes, height, size_t(cellBytes), pieces);
    if (look.cursorColumn < 0 || look.cursorColumn >= columns)
        return;
    const CellColors plain = FilterColors(defaultFg, defaultBg, filter);
    QPainter painter(&image);
    const QRect cell(look.cursorColumn * m_cellWidth, 0, m_cellWidth, m_cellHeight);
    if (m_cursorType == CursorBlock) {
        painter.fillRect(cell, plain.fg);
        const TermCell &under = cells[size_t(look.cursorColumn)];
        if (under.ch > U' ') {
            painter.setPen(plain.bg);
            drawChars(painter, cell.left(), std::u32string(1, under.ch), under.attrs);
        }
    } else {
        painter.fillRect(QRect(cell.left(), cell.bottom() - 1, m_cellWidth, 2), plain.fg);
    }
}

void TerminalScreen::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    const QRect area = event->rect();
    const int firstRow = std::max(0, area.top() / m_cellHeight);
    const int lastRow = std::min(Rows() - 1, area.bottom() / m_cellHeight);
    const int top = topRow();
    for (int viewRow = firstRow; viewRow <= lastRow; ++viewRow)
        painter.drawImage(QPoint(0, viewRow * m_cellHeight), rowImage(rowLook(top + viewRow)));

    // Beyond the last column and the last row, the screen's own background.
    const QRegion margin = QRegion(area) - QRect(0, 0, Columns() * m_cellWidth, Rows() * m_cellHeight);
    if (!margin.isEmpty()) {
        const QColor background = FilterColors(PaletteColor(m_foreColor), PaletteColor(m_backColor),
                                               ColorFilterFromNumber(m_colorFilter))
                                      .bg;
        for (const QRect &rect : margin)
            painter.fillRect(rect, background);
    }
}

void TerminalScreen::restyle()
{
    m_rowCache.clear();
    m_cells.clear();
    viewport()->update();
}

void TerminalScreen::sendFromKeyboard(const QByteArray &bytes)
{
    ignoreErrors([&] { m_port->Output(bytes); });
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
