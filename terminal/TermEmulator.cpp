#include "TermEmulator.h"

#include <vterm.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr char kCr = '\r';
constexpr char kLf = '\n';
// The tab stops of a screen whose emulation has not been told otherwise.
constexpr int kTabWidth = 8;

// Bytes after which the emulation's state is still the power-on state apart from the screen's
// text and the cursor: printable ASCII and the harmless controls. In the TTY emulation the bytes
// above 127 are whole UTF-8 characters made by ttyFilter, so they are plain too.
bool isPlainAscii(uchar byte)
{
    return (byte >= 0x20 && byte < 0x7F) || byte == '\r' || byte == '\n' || byte == '\t' || byte == '\b' ||
           byte == '\a';
}

// Plain as the shortcut counts it: in the TTY emulation every byte above 127 too.
bool isPlainByte(uchar byte, bool highIsPlain)
{
    return isPlainAscii(byte) || (highIsPlain && byte >= 0x80);
}

// The queue moves what it still holds to its front once this much before it is spent, and no more
// than it moves.
constexpr qsizetype kCompactAt = 256 * 1024;

TermColor colorOf(const VTermScreen *screen, VTermColor color, bool foreground)
{
    if (foreground ? VTERM_COLOR_IS_DEFAULT_FG(&color) : VTERM_COLOR_IS_DEFAULT_BG(&color))
        return {};
    vterm_screen_convert_color_to_rgb(screen, &color);
    return TermColor::fromRgb(color.rgb.red, color.rgb.green, color.rgb.blue);
}

TermCell cellOf(const VTermScreen *screen, const VTermScreenCell &cell)
{
    TermCell out;
    const uint32_t ch = cell.chars[0];
    out.ch = ch == 0xFFFFFFFFu ? 0 : (ch == 0 ? U' ' : char32_t(ch));
    out.fg = colorOf(screen, cell.fg, true);
    out.bg = colorOf(screen, cell.bg, false);
    out.attrs =
        quint8((cell.attrs.bold ? TermCell::Bold : 0) | (cell.attrs.underline ? TermCell::Underline : 0) |
               (cell.attrs.italic ? TermCell::Italic : 0) | (cell.attrs.reverse ? TermCell::Reverse : 0) |
               (cell.attrs.strike ? TermCell::Strike : 0));
    return out;
}

bool isBlank(const TermCell &cell)
{
    return cell.ch == U' ' && cell.bg.isDefault() &&
           (cell.attrs & (TermCell::Reverse | TermCell::Underline)) == 0;
}

} // namespace

TermEmulation emulationFromNumber(int number)
{
    return number == int(TermEmulation::Tty) ? TermEmulation::Tty : TermEmulation::Vt100;
}

QByteArray ttyFilter(QByteArrayView bytes)
{
    const auto plain = std::all_of(bytes.begin(), bytes.end(), [](char c) { return isPlainAscii(uchar(c)); });
    if (plain)
        return bytes.toByteArray();
    QByteArray out;
    out.reserve(bytes.size() + 16);
    for (const char c : bytes) {
        const auto u = uchar(c);
        if (isPlainAscii(u)) {
            out.append(c);
        } else if (u >= 0xA0) {
            out.append(char(0xC0 | (u >> 6)));
            out.append(char(0x80 | (u & 0x3F)));
        }
    }
    return out;
}

struct TermEmulator::Callbacks
{
    static int damage(VTermRect rect, void *user)
    {
        auto *self = static_cast<TermEmulator *>(user);
        self->m_damage |= QRect(rect.start_col, rect.start_row, rect.end_col - rect.start_col,
                                rect.end_row - rect.start_row);
        return 1;
    }
    static int movecursor(VTermPos pos, VTermPos oldpos, int, void *user)
    {
        auto *self = static_cast<TermEmulator *>(user);
        self->m_damage |= QRect(oldpos.col, oldpos.row, 1, 1);
        self->m_damage |= QRect(pos.col, pos.row, 1, 1);
        return 1;
    }
    static int settermprop(VTermProp prop, VTermValue *value, void *user)
    {
        auto *self = static_cast<TermEmulator *>(user);
        if (prop == VTERM_PROP_CURSORVISIBLE) {
            self->m_cursorVisible = value->boolean != 0;
            self->m_damage |= QRect(self->cursorColumn(), self->cursorRow(), 1, 1);
        }
        return 1;
    }
    static int bell(void *user)
    {
        ++static_cast<TermEmulator *>(user)->m_bells;
        return 1;
    }
    static int resize(int, int, void *) { return 1; }
    static int pushline(int columns, const VTermScreenCell *cells, void *user)
    {
        static_cast<TermEmulator *>(user)->pushLine(columns, cells);
        return 1;
    }
    static int popline(int, VTermScreenCell *, void *) { return 0; }
    static void output(const char *bytes, size_t length, void *user)
    {
        static_cast<TermEmulator *>(user)->m_output.append(bytes, qsizetype(length));
    }

    // libvterm keeps a pointer to this table for the life of the screen.
    static constexpr VTermScreenCallbacks table{damage, nullptr, movecursor, settermprop,
                                                bell,   resize,  pushline,   popline};
};

TermEmulator::TermEmulator(int rows, int columns) : m_rows(std::max(rows, 1)), m_columns(std::max(columns, 1))
{
    create();
}

TermEmulator::~TermEmulator()
{
    vterm_free(m_vt);
}

void TermEmulator::create()
{
    m_vt = vterm_new(m_rows, m_columns);
    vterm_set_utf8(m_vt, 1);
    vterm_output_set_callback(m_vt, &Callbacks::output, this);
    m_screen = vterm_obtain_screen(m_vt);
    vterm_screen_set_callbacks(m_screen, &Callbacks::table, this);
    vterm_screen_set_damage_merge(m_screen, VTERM_DAMAGE_SCREEN);
    resetScreen();
}

void TermEmulator::resetScreen()
{
    vterm_screen_reset(m_screen, 1);
    vterm_screen_flush_damage(m_screen);
    m_plainHistory = true;
    m_cursorVisible = true;
    m_damage = QRect(0, 0, m_columns, m_rows);
}

void TermEmulator::setSize(int rows, int columns)
{
    process();
    rows = std::max(rows, 1);
    columns = std::max(columns, 1);
    if (rows == m_rows && columns == m_columns)
        return;
    // Emptied first, so that the resize itself has nothing to push into the scroll-back.
    vterm_screen_reset(m_screen, 1);
    vterm_set_size(m_vt, rows, columns);
    m_rows = rows;
    m_columns = columns;
    resetScreen();
}

void TermEmulator::setScrollLimit(int lines)
{
    lines = std::max(lines, 0);
    if (lines == m_scrollLimit)
        return;
    const size_t keep = std::min(m_scrollCount, size_t(lines));
    std::vector<std::vector<TermCell>> ring;
    ring.reserve(keep);
    for (size_t i = m_scrollCount - keep; i < m_scrollCount; ++i)
        ring.push_back(std::move(m_scroll[(m_scrollHead + i) % m_scroll.size()]));
    m_scroll = std::move(ring);
    m_scrollHead = 0;
    m_scrollCount = keep;
    m_scrollLimit = lines;
}

void TermEmulator::clearScrollback()
{
    m_scroll.clear();
    m_scrollHead = 0;
    m_scrollCount = 0;
}

void TermEmulator::write(QByteArrayView bytes)
{
    bool plainSoFar = m_plainFront == pendingBytes();
    m_pending.append(bytes.data(), bytes.size());
    if (!m_plainHistory)
        return;
    const bool highIsPlain = m_emulation == TermEmulation::Tty;
    const auto *data = reinterpret_cast<const uchar *>(bytes.data());
    for (qsizetype k = 0; k < bytes.size(); ++k) {
        if (data[k] == kLf)
            ++m_pendingFeeds;
        else if (plainSoFar && !isPlainByte(data[k], highIsPlain))
            plainSoFar = false;
        m_plainFront += plainSoFar ? 1 : 0;
    }
    // Cutting only once twice the feeds needed wait scans each byte for a cut about once.
    if (plainSoFar)
        forgetUnseen(2 * feedsToKeep());
}

qsizetype TermEmulator::feedsToKeep() const
{
    // Enough line feeds must follow the cut to move the cursor to the bottom from anywhere, and then
    // to push the whole screen and the whole scroll-back out.
    return 2 * qsizetype(m_rows) + m_scrollLimit + 1;
}

void TermEmulator::forgetUnseen(qsizetype keepAtLeast)
{
    const qsizetype needed = feedsToKeep();
    if (!m_plainHistory || m_pendingFeeds < std::max(needed, keepAtLeast))
        return;
    const char *data = m_pending.constData();
    qsizetype cut = m_pending.size();
    qsizetype kept = 0;
    while (kept < needed)
        if (data[--cut] == kLf)
            ++kept;
    // The cut must follow a carriage return, as the column a line starts in depends on what went
    // before until the next one.
    while (cut > m_pendingStart && data[cut] != kCr)
        if (data[--cut] == kLf)
            ++kept;
    if (data[cut] != kCr || cut - m_pendingStart > m_plainFront)
        return;
    m_scrolled += m_pendingFeeds - kept;
    m_pendingFeeds = kept;
    m_damage = QRect(0, 0, m_columns, m_rows);
    dropFront(cut - m_pendingStart);
}

void TermEmulator::dropFront(qsizetype length)
{
    m_pendingStart += length;
    m_plainFront -= length;
    if (m_pendingStart == m_pending.size()) {
        // The storage stays for the next burst.
        m_pending.resize(0);
        m_pendingStart = 0;
        m_pendingFeeds = 0;
        m_plainFront = 0;
    } else if (m_pendingStart >= kCompactAt && m_pendingStart >= pendingBytes()) {
        const qsizetype left = pendingBytes();
        std::memmove(m_pending.data(), m_pending.constData() + m_pendingStart, size_t(left));
        m_pending.resize(left);
        m_pendingStart = 0;
    }
}

bool TermEmulator::process(qsizetype maxBytes)
{
    forgetUnseen(0);
    const qsizetype length = maxBytes < 0 ? pendingBytes() : std::min(maxBytes, pendingBytes());
    const char *fed = m_pending.constData() + m_pendingStart;
    feedVterm(fed, length);
    if (m_plainHistory)
        m_pendingFeeds -= std::count(fed, fed + length, kLf);
    dropFront(length);
    return hasPending();
}

void TermEmulator::feedVterm(const char *bytes, qsizetype length)
{
    if (length <= 0)
        return;
    if (m_plainHistory) {
        const bool highIsPlain = m_emulation == TermEmulation::Tty;
        const auto *data = reinterpret_cast<const uchar *>(bytes);
        m_plainHistory =
            std::all_of(data, data + length, [highIsPlain](uchar b) { return isPlainByte(b, highIsPlain); });
    }
    m_interpreted += length;
    const char *const end = bytes + length;
    while (bytes < end) {
        const qsizetype run = m_plainHistory ? feedScrolledRun(bytes, end - bytes) : 0;
        bytes += run;
        if (run > 0)
            continue;
        // A run can start again after the next line feed.
        const auto *feed = m_plainHistory
                               ? static_cast<const char *>(std::memchr(bytes, kLf, size_t(end - bytes)))
                               : nullptr;
        const char *next = feed ? feed + 1 : end;
        vterm_input_write(m_vt, bytes, size_t(next - bytes));
        bytes = next;
    }
    vterm_screen_flush_damage(m_screen);
}

qsizetype TermEmulator::feedScrolledRun(const char *bytes, qsizetype length)
{
    VTermPos pos;
    vterm_state_get_cursorpos(vterm_obtain_state(m_vt), &pos);
    // In the last column the cursor may be waiting to wrap, which libvterm does not tell.
    if (pos.row != m_rows - 1 || pos.col >= m_columns - 1)
        return 0;
    // Every row pushed up must be one from before the run: it is pushed before the run is written.
    const int most = m_rows - 1;
    int column = pos.col;
    bool waitingToWrap = false;
    int lines = 0;
    qsizetype taken = 0;
    for (; taken < length; ++taken) {
        const auto byte = uchar(bytes[taken]);
        if (byte >= 0x20 && byte < 0x7F) {
            if (waitingToWrap) {
                if (lines == most)
                    break;
                ++lines;
                column = 0;
                waitingToWrap = false;
            }
            if (column == m_columns - 1)
                waitingToWrap = true;
            else
                ++column;
        } else if (byte == kLf) {
            // A line feed that scrolls leaves the cursor waiting to wrap, one that moves it does not.
            if (waitingToWrap || lines == most)
                break;
            ++lines;
        } else if (byte == kCr) {
            column = 0;
            waitingToWrap = false;
        } else if (byte == '\b') {
            if (column > 0) {
                --column;
                waitingToWrap = false;
            }
        } else if (byte == '\t') {
            if (column < m_columns - 1) {
                column = std::min((column / kTabWidth + 1) * kTabWidth, m_columns - 1);
                waitingToWrap = false;
            }
        } else if (byte != '\a') {
            break;
        }
    }
    // A single scroll costs the same either way.
    if (lines < 2)
        return 0;
    const QByteArray scroll =
        "\x1b[" + QByteArray::number(lines) + "S\x1b[" + QByteArray::number(lines) + 'A';
    vterm_input_write(m_vt, scroll.constData(), size_t(scroll.size()));
    vterm_input_write(m_vt, bytes, size_t(taken));
    return taken;
}

void TermEmulator::pushLine(int columns, const void *cells)
{
    ++m_scrolled;
    if (m_scrollLimit <= 0)
        return;
    const auto *source = static_cast<const VTermScreenCell *>(cells);
    int length = columns;
    std::vector<TermCell> *line = nullptr;
    if (m_scroll.size() < size_t(m_scrollLimit)) {
        m_scroll.emplace_back();
        line = &m_scroll.back();
        ++m_scrollCount;
    } else {
        line = &m_scroll[m_scrollHead];
        m_scrollHead = (m_scrollHead + 1) % m_scroll.size();
    }
    line->clear();
    for (int c = 0; c < length; ++c)
        line->push_back(cellOf(m_screen, source[c]));
    while (!line->empty() && isBlank(line->back()))
        line->pop_back();
}

void TermEmulator::clearScreen()
{
    process();
    resetScreen();
}

void TermEmulator::rowCells(int row, std::vector<TermCell> &cells) const
{
    cells.assign(size_t(m_columns), TermCell{});
    if (row >= 0) {
        if (row >= m_rows)
            return;
        VTermScreenCell cell;
        for (int c = 0; c < m_columns; ++c) {
            vterm_screen_get_cell(m_screen, VTermPos{row, c}, &cell);
            cells[size_t(c)] = cellOf(m_screen, cell);
        }
        return;
    }
    const qint64 index = qint64(m_scrollCount) + row;
    if (index < 0)
        return;
    const auto &line = m_scroll[(m_scrollHead + size_t(index)) % m_scroll.size()];
    std::copy_n(line.begin(), std::min(line.size(), cells.size()), cells.begin());
}

QString TermEmulator::rowText(int row) const
{
    std::vector<TermCell> cells;
    rowCells(row, cells);
    std::u32string text;
    for (const TermCell &cell : cells)
        if (cell.ch != 0)
            text.push_back(cell.ch);
    while (!text.empty() && text.back() == U' ')
        text.pop_back();
    return QString::fromUcs4(text.data(), qsizetype(text.size()));
}

QString TermEmulator::screenText() const
{
    QString text;
    for (int r = 0; r < m_rows; ++r)
        text += rowText(r) + QLatin1String("\r\n");
    return text;
}

int TermEmulator::cursorRow() const
{
    VTermPos pos;
    vterm_state_get_cursorpos(vterm_obtain_state(m_vt), &pos);
    return pos.row;
}

int TermEmulator::cursorColumn() const
{
    VTermPos pos;
    vterm_state_get_cursorpos(vterm_obtain_state(m_vt), &pos);
    return pos.col;
}

void TermEmulator::setCursor(int row, int column)
{
    process();
    const QByteArray move = "\x1b[" + QByteArray::number(std::clamp(row, 0, m_rows - 1) + 1) + ';' +
                            QByteArray::number(std::clamp(column, 0, m_columns - 1) + 1) + 'H';
    // A cursor position changes no mode, so the plain-text shortcut stays allowed.
    vterm_input_write(m_vt, move.constData(), size_t(move.size()));
    vterm_screen_flush_damage(m_screen);
}

QRect TermEmulator::takeDamage()
{
    return std::exchange(m_damage, QRect());
}

qint64 TermEmulator::takeScrolledLines()
{
    return std::exchange(m_scrolled, 0);
}

int TermEmulator::takeBells()
{
    return std::exchange(m_bells, 0);
}

QByteArray TermEmulator::takeOutput()
{
    return std::exchange(m_output, QByteArray());
}

QByteArray TermEmulator::cursorKeyBytes(Qt::Key key)
{
    if (m_emulation == TermEmulation::Tty)
        return {};
    VTermKey code = VTERM_KEY_NONE;
    switch (key) {
    case Qt::Key_Up:
        code = VTERM_KEY_UP;
        break;
    case Qt::Key_Down:
        code = VTERM_KEY_DOWN;
        break;
    case Qt::Key_Right:
        code = VTERM_KEY_RIGHT;
        break;
    case Qt::Key_Left:
        code = VTERM_KEY_LEFT;
        break;
    case Qt::Key_Home:
        code = VTERM_KEY_HOME;
        break;
    case Qt::Key_End:
        code = VTERM_KEY_END;
        break;
    default:
        return {};
    }
    const qsizetype before = m_output.size();
    vterm_keyboard_key(m_vt, code, VTERM_MOD_NONE);
    QByteArray bytes = m_output.mid(before);
    m_output.truncate(before);
    return bytes;
}
