#include "TerminalScreen.h"

#include "AppError.h"
#include "CommControl.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEngine>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <chrono>

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
// A piece of a stream may come this much before the gap is over and still be shown at once: the
// port's gathering and the repaint ticks drift against each other by a few milliseconds.
constexpr auto kStreamSlack = 50ms;
// What one turn of the event loop interprets at most when the shortcut for plain text cannot help,
// so that a flood of escape sequences never holds the window still.
constexpr qsizetype kSliceBytes = 256 * 1024;
// A flood is interpreted as it comes once this much waits, so that what is queued stays small
// however fast the port delivers.
constexpr qsizetype kMostPending = 1024 * 1024;

const QLatin1String kLineEnd("\r\n");

// The picture a painter paints into, when rows can be written into it directly: a window's own
// picture at one pixel per point in the colour format of the row pictures.
QImage *paintTarget(QPainter &painter)
{
    QPaintDevice *device = painter.paintEngine() ? painter.paintEngine()->paintDevice() : nullptr;
    if (!device || device->devType() != QInternal::Image ||
        painter.deviceTransform().type() > QTransform::TxTranslate)
        return nullptr;
    auto *image = static_cast<QImage *>(device);
    const bool rgb =
        image->format() == QImage::Format_RGB32 || image->format() == QImage::Format_ARGB32_Premultiplied;
    return rgb && image->isDetached() ? image : nullptr;
}

} // namespace

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
    m_renderer.setFont(font());

    m_emu.setScrollLimit(kDefaultScrollRows);
    m_clock.start();
    m_lastProcess = -kScrollingRepaintGap;
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
    m_emu.setEmulation(emulationFromNumber(emulation));
}

void TerminalScreen::setForeColor(int index)
{
    TermStyle style = m_renderer.style();
    style.foreColor = index;
    restyle(style);
}

void TerminalScreen::setBackColor(int index)
{
    TermStyle style = m_renderer.style();
    style.backColor = index;
    restyle(style);
}

void TerminalScreen::setColorFilter(int filter)
{
    TermStyle style = m_renderer.style();
    style.colorFilter = filter;
    restyle(style);
}

void TerminalScreen::setScrollRows(int lines)
{
    m_emu.setScrollLimit(std::max(lines, 0));
    updateScrollBar();
    viewport()->update();
}

void TerminalScreen::setCursorType(int type)
{
    TermStyle style = m_renderer.style();
    style.cursorType = type;
    restyle(style);
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
    return m_emu.emulation() == TermEmulation::Tty ? ttyFilter(bytes) : bytes;
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
    const auto sinceLast = std::chrono::milliseconds(m_clock.elapsed()) - m_lastProcess;
    const auto gap = m_lastProcessScrolled ? kScrollingRepaintGap : kRepaintGap;
    // Within a stream the port hands over what it gathered meanwhile, so a piece that comes when
    // the gap is about over is shown at once rather than on a tick of its own a moment later.
    if (sinceLast >= gap - kStreamSlack && sinceLast < 2 * gap) {
        process(kSliceBytes);
        return;
    }
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
    m_lastProcess = std::chrono::milliseconds(m_clock.elapsed());
    m_capture.flush();
    const QByteArray reply = m_emu.takeOutput();
    if (!reply.isEmpty() && m_port && m_port->AutoProcess() == CommControl::kAutoProcessTerminal)
        ignoreErrors([&] { m_port->Output(reply); });
    if (m_emu.takeBells() > 0)
        emit bell();
    const qint64 scrolled = m_emu.takeScrolledLines();
    m_lastProcessScrolled = scrolled > 0;
    m_scrolledSincePaint += scrolled;
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
    const QSize cell = cellSize();
    viewport()->update(QRect(cells.left() * cell.width(), (cells.top() - top) * cell.height(),
                             cells.width() * cell.width(), cells.height() * cell.height()));
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
    m_renderer.forgetRows();
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

QSize TerminalScreen::sizeHint() const
{
    const int frame = 2 * frameWidth();
    const QSize cell = cellSize();
    return {Columns() * cell.width() + frame + verticalScrollBar()->sizeHint().width(),
            Rows() * cell.height() + frame};
}

void TerminalScreen::changeEvent(QEvent *event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        m_renderer.setFont(font());
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

RowLook TerminalScreen::rowLook(int row) const
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

void TerminalScreen::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    const QRect area = event->rect();
    const QSize cell = cellSize();
    const int firstRow = std::max(0, area.top() / cell.height());
    const int lastRow = std::min(Rows() - 1, area.bottom() / cell.height());
    const int top = topRow();
    m_renderer.setDevicePixelRatio(devicePixelRatioF());
    const size_t cachedRows = size_t(2 * Rows() + 8);
    // After a screenful of new lines every row is new and moves on at the next tick: such rows are
    // painted straight into the window's picture instead of into pictures of their own first.
    QImage *target = std::exchange(m_scrolledSincePaint, 0) >= Rows() ? paintTarget(painter) : nullptr;
    for (int viewRow = firstRow; viewRow <= lastRow; ++viewRow) {
        const QRect row(0, viewRow * cell.height(), Columns() * cell.width(), cell.height());
        const QRect pixels = painter.deviceTransform().mapRect(row);
        if (target && target->rect().contains(pixels) &&
            painter.paintEngine()->systemClip().contains(pixels)) {
            QImage part(target->bits() + pixels.top() * target->bytesPerLine() + pixels.left() * 4,
                        pixels.width(), pixels.height(), target->bytesPerLine(), target->format());
            m_renderer.renderRow(part, rowLook(top + viewRow));
        } else {
            painter.drawImage(row.topLeft(), m_renderer.rowImage(rowLook(top + viewRow), cachedRows));
        }
    }

    // Beyond the last column and the last row, the screen's own background.
    const QRegion margin = QRegion(area) - QRect(0, 0, Columns() * cell.width(), Rows() * cell.height());
    for (const QRect &rect : margin)
        painter.fillRect(rect, m_renderer.background());
}

void TerminalScreen::restyle(const TermStyle &style)
{
    m_renderer.setStyle(style);
    viewport()->update();
}

TermSettings TerminalScreen::settings() const
{
    TermSettings s;
    s.emulation = Emulation();
    s.backspace = Backspace();
    s.echo = Echo();
    s.foreColor = ForeColor();
    s.backColor = BackColor();
    s.colorFilter = ColorFilter();
    s.rows = Rows();
    s.columns = Columns();
    s.scrollRows = ScrollRows();
    s.font = font();
    s.cursorType = CursorType();
    return s;
}

void TerminalScreen::applySettings(const TermSettings &settings)
{
    setEmulation(settings.emulation);
    setBackspace(settings.backspace);
    setEcho(settings.echo);
    restyle({settings.foreColor, settings.backColor, settings.colorFilter, settings.cursorType});
    setFont(settings.font);
    setScrollRows(settings.scrollRows);
    setScreenSize(settings.rows, settings.columns);
}

void TerminalScreen::keyPressEvent(QKeyEvent *event)
{
    event->accept();
    const TypedKey typed{TypedKey::Place::Screen, event->key(), event->modifiers(), event->text()};
    const KeyContext context{m_port ? m_port->AutoProcess() : CommControl::kAutoProcessTerminal,
                             m_port && m_port->PortOpen(),
                             m_backspace,
                             m_echo,
                             !SelText().isEmpty(),
                             m_emu.cursorKeyBytes(Qt::Key(event->key()))};
    const KeyRoute route = routeKey(typed, context);
    QScrollBar *bar = verticalScrollBar();
    if (route.edit == KeyRoute::Edit::PageUp || route.edit == KeyRoute::Edit::PageDown) {
        bar->triggerAction(route.edit == KeyRoute::Edit::PageUp ? QAbstractSlider::SliderPageStepSub
                                                                : QAbstractSlider::SliderPageStepAdd);
        return;
    }
    // A screen without a port (the settings sample) sends and echoes nothing.
    if (m_port && !route.send.isEmpty())
        ignoreErrors([&] { m_port->Output(route.send); });
    // The echo is part of what the screen shows, so an open capture records it too.
    if (m_port && route.echo)
        receive(route.send);
    if (m_port && route.followCursor)
        bar->setValue(bar->maximum());
    emit keyRouted(route);
}

TerminalScreen::CellPos TerminalScreen::cellAt(const QPoint &point) const
{
    const QSize cell = cellSize();
    const int row = std::clamp(topRow() + point.y() / cell.height(), -scrollbackLines(), Rows() - 1);
    const int column = std::clamp((point.x() + cell.width() / 2) / cell.width(), 0, Columns());
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
