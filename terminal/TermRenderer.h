#pragma once

#include "TermEmulator.h"

#include <QColor>
#include <QFont>
#include <QHash>
#include <QImage>
#include <QRawFont>
#include <array>
#include <string>
#include <vector>

class QPainter;

// How the screen paints: its colours from the sixteen-colour palette, the filter over them and the
// shape of the cursor, numbered as the terminal settings store them.
struct TermStyle
{
    enum CursorShape { CursorUnderline = 0, CursorBlock = 1 };
    int foreColor = 15;
    int backColor = 1;
    int colorFilter = 0;
    int cursorType = CursorUnderline;
    bool operator==(const TermStyle &) const = default;
};

// One row as painted: its cells, the selected columns (end exclusive), where the cursor stands on it.
struct RowLook
{
    std::vector<TermCell> cells;
    int selFrom = -1;
    int selTo = -1;
    int cursorColumn = -1;
    bool operator==(const RowLook &) const = default;
};

// Paints rows of the terminal screen into pictures, one character to a cell, without a window.
// Glyphs are looked up once per character and every cell drawn is kept as a picture, so that a row
// is put together by copying pixels rather than by drawing text: shaping every new line is what a
// fast stream would otherwise cost. Rows painted lately are kept too, since a scrolling screen
// shows mostly rows it has painted before.
class TermRenderer
{
public:
    TermRenderer();

    void setFont(const QFont &font);
    QSize cellSize() const { return {m_cellWidth, m_cellHeight}; }
    const TermStyle &style() const { return m_style; }
    void setStyle(const TermStyle &style);
    void setDevicePixelRatio(qreal ratio);

    // The screen's own background, beyond its last column and row.
    QColor background() const;
    // The picture of a row, painted afresh or taken from the rows painted lately (at most capacity).
    const QImage &rowImage(RowLook &&look, size_t capacity);
    void renderRow(QImage &image, const RowLook &look) const;
    // Forgets the rows painted so far (the screen changed its size).
    void forgetRows() { m_rowCache.clear(); }

private:
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
    struct CachedRow
    {
        size_t hash = 0;
        RowLook look;
        QImage image;
        quint64 used = 0;
    };
    // The font's faces without and with bold and italic, and the glyph of each character drawn so far.
    struct Face
    {
        QRawFont raw;
        QHash<char32_t, quint32> glyphs;
    };

    void restyle();
    const QImage &cellImage(const GlyphKey &key) const;
    const QFont &fontFor(quint8 attrs) const;
    void drawChars(QPainter &painter, int x, const std::u32string &chars, quint8 attrs) const;

    TermStyle m_style;
    qreal m_ratio = 1.0;
    int m_cellWidth = 8;
    int m_cellHeight = 16;
    int m_ascent = 12;
    // The font with each combination of bold, underline, italic and strike-out.
    std::array<QFont, 16> m_fonts;
    mutable std::array<Face, 4> m_faces;
    mutable QHash<GlyphKey, QImage> m_cells;
    std::vector<CachedRow> m_rowCache;
    quint64 m_paintCount = 0;
};
