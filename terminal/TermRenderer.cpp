#include "TermRenderer.h"

#include "TermPalette.h"

#include <QFontMetrics>
#include <QGlyphRun>
#include <QPainter>

#include <cstring>

namespace {

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
void copyPieces(uchar *bits, qsizetype rowBytes, int lines, const std::vector<CellPiece> &pieces)
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

void copyPieces(uchar *bits, qsizetype rowBytes, int lines, size_t cellBytes,
                const std::vector<CellPiece> &pieces)
{
    switch (cellBytes) {
    case 24:
        return copyPieces<24>(bits, rowBytes, lines, pieces);
    case 28:
        return copyPieces<28>(bits, rowBytes, lines, pieces);
    case 32:
        return copyPieces<32>(bits, rowBytes, lines, pieces);
    case 36:
        return copyPieces<36>(bits, rowBytes, lines, pieces);
    case 40:
        return copyPieces<40>(bits, rowBytes, lines, pieces);
    default:
        return copyPieces<0>(bits, rowBytes, lines, pieces);
    }
}

// A blank that looks like the screen's own background.
bool isPlainBlank(const TermCell &cell)
{
    return cell.ch == U' ' && cell.bg.isDefault() &&
           (cell.attrs & (TermCell::Reverse | TermCell::Underline | TermCell::Strike)) == 0;
}

} // namespace

TermRenderer::TermRenderer()
{
    QFont terminalFont(QStringLiteral("Terminal"));
    terminalFont.setStyleHint(QFont::TypeWriter);
    terminalFont.setFixedPitch(true);
    terminalFont.setPointSize(9);
    setFont(terminalFont);
}

void TermRenderer::setFont(const QFont &font)
{
    const QFontMetrics metrics(font);
    m_cellWidth = std::max(1, metrics.horizontalAdvance(QLatin1Char('M')));
    m_cellHeight = std::max(1, metrics.height());
    m_ascent = metrics.ascent();
    for (size_t i = 0; i < m_fonts.size(); ++i) {
        QFont variant = font;
        variant.setBold(i & 1);
        variant.setUnderline(i & 2);
        variant.setItalic(i & 4);
        variant.setStrikeOut(i & 8);
        m_fonts[i] = variant;
    }
    for (size_t i = 0; i < m_faces.size(); ++i)
        m_faces[i] = Face{QRawFont::fromFont(m_fonts[(i & 1) | ((i & 2) ? 4 : 0)]), {}};
    restyle();
}

void TermRenderer::setStyle(const TermStyle &style)
{
    m_style = style;
    restyle();
}

void TermRenderer::setDevicePixelRatio(qreal ratio)
{
    if (ratio == m_ratio)
        return;
    m_ratio = ratio;
    restyle();
}

void TermRenderer::restyle()
{
    m_rowCache.clear();
    m_cells.clear();
}

QColor TermRenderer::background() const
{
    return filterColors(paletteColor(m_style.foreColor), paletteColor(m_style.backColor),
                        colorFilterFromNumber(m_style.colorFilter))
        .bg;
}

void TermRenderer::drawChars(QPainter &painter, int x, const std::u32string &chars, quint8 attrs) const
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

const QFont &TermRenderer::fontFor(quint8 attrs) const
{
    return m_fonts[size_t((attrs & 7) | ((attrs & TermCell::Strike) ? 8 : 0))];
}

const QImage &TermRenderer::rowImage(RowLook &&look, size_t capacity)
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
    auto slot = m_rowCache.end();
    if (m_rowCache.size() >= capacity)
        slot = std::min_element(m_rowCache.begin(), m_rowCache.end(),
                                [](const CachedRow &a, const CachedRow &b) { return a.used < b.used; });
    if (slot == m_rowCache.end()) {
        m_rowCache.emplace_back();
        slot = m_rowCache.end() - 1;
    }
    const QSize size(qRound(qsizetype(look.cells.size()) * m_cellWidth * m_ratio),
                     qRound(m_cellHeight * m_ratio));
    // An evicted row's picture is painted over rather than allocated anew.
    if (slot->image.size() != size) {
        slot->image = QImage(size, QImage::Format_RGB32);
        slot->image.setDevicePixelRatio(m_ratio);
    }
    renderRow(slot->image, look);
    slot->hash = hash;
    slot->look = std::move(look);
    slot->used = m_paintCount;
    return slot->image;
}

const QImage &TermRenderer::cellImage(const GlyphKey &key) const
{
    if (const auto found = m_cells.constFind(key); found != m_cells.cend())
        return *found;
    const int width = qRound(m_cellWidth * m_ratio) * (key.wide ? 2 : 1);
    QImage image(width, qRound(m_cellHeight * m_ratio), QImage::Format_RGB32);
    image.setDevicePixelRatio(m_ratio);
    image.fill(QColor(key.bg));
    if (key.ch != U' ' || (key.attrs & (TermCell::Underline | TermCell::Strike))) {
        QPainter painter(&image);
        painter.setPen(QColor(key.fg));
        drawChars(painter, 0, std::u32string(1, key.ch), key.attrs);
    }
    return *m_cells.insert(key, std::move(image));
}

void TermRenderer::renderRow(QImage &image, const RowLook &look) const
{
    const auto filter = colorFilterFromNumber(m_style.colorFilter);
    const QColor defaultFg = paletteColor(m_style.foreColor);
    const QColor defaultBg = paletteColor(m_style.backColor);
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
    // The blanks that end most rows are filled with the background rather than copied cell by cell.
    int inkEnd = columns;
    while (inkEnd > 0 && isPlainBlank(cells[size_t(inkEnd - 1)]) &&
           !(inkEnd - 1 >= look.selFrom && inkEnd - 1 < look.selTo))
        --inkEnd;
    for (int column = 0; column < inkEnd; ++column) {
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
            colors = filterColors(fg, bg, filter);
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
    copyPieces(bits, rowBytes, height, size_t(cellBytes), pieces);
    const CellColors plain = filterColors(defaultFg, defaultBg, filter);
    const qsizetype blankFrom = std::min<qsizetype>(qsizetype(inkEnd) * cellBytes / 4, image.width());
    for (int y = 0; y < height && blankFrom < image.width(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(bits + y * rowBytes);
        std::fill(line + blankFrom, line + image.width(), plain.bg.rgb());
    }
    if (look.cursorColumn < 0 || look.cursorColumn >= columns)
        return;
    QPainter painter(&image);
    const QRect cell(look.cursorColumn * m_cellWidth, 0, m_cellWidth, m_cellHeight);
    if (m_style.cursorType == TermStyle::CursorBlock) {
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
