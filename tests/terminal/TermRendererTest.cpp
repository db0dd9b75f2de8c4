#include "TermRenderer.h"
#include "Tables.h"
#include "TermPalette.h"

namespace {

constexpr QRgb kBlue = 0xFF000080;  // palette 1, the default background
constexpr QRgb kWhite = 0xFFFFFFFF; // palette 15, the default foreground
constexpr QRgb kRed = 0xFF800000;   // palette 4
constexpr QRgb kModemRed = 0xFFC80000;
constexpr QRgb kBlack = 0xFF000000;
constexpr QRgb kYellow = 0xFFFFFF00; // palette 14

constexpr QRgb gray(QRgb color)
{
    return qRgb(qGray(color), qGray(color), qGray(color));
}

// A row of blanks but for the letters given; the cell at reverse (if any) is reversed, the cell at
// modemRed has the modem's own background.
struct PaintCase
{
    const char *name;
    TermStyle style;
    const char *text;
    int reverse;
    int modemRed;
    int selFrom;
    int selTo;
    int cursor;
    int column;
    bool bottom;
    QRgb color;
};

const PaintCase kPaintCases[] = {
    {"background", {}, "", -1, -1, -1, -1, -1, 3, false, kBlue},
    {"back colour", {15, 4, 0, 0}, "", -1, -1, -1, -1, -1, 3, true, kRed},
    {"reverse", {}, "ab", 1, -1, -1, -1, -1, 1, false, kWhite},
    {"selection", {}, "abc", -1, -1, 1, 3, -1, 2, false, kWhite},
    {"selection ends before", {}, "abc", -1, -1, 1, 3, -1, 3, false, kBlue},
    {"selection starts at", {}, "abc", -1, -1, 1, 3, -1, 0, false, kBlue},
    {"reverse selected", {}, "abc", 1, -1, 0, 3, -1, 1, false, kBlue},
    {"selected blanks", {}, "a", -1, -1, 1, 4, -1, 3, false, kWhite},
    {"reversed blank", {}, "", 3, -1, -1, -1, -1, 3, false, kWhite},
    {"modem colour", {}, "", -1, 2, -1, -1, -1, 2, false, kModemRed},
    {"modem colour reversed", {}, "", 2, 2, -1, -1, -1, 2, false, kWhite},
    {"gray scale", {15, 4, 1, 0}, "", -1, -1, -1, -1, -1, 0, false, gray(kRed)},
    {"monochrome dark", {15, 4, 2, 0}, "", -1, -1, -1, -1, -1, 0, false, kBlack},
    {"monochrome light", {0, 15, 2, 0}, "", -1, -1, -1, -1, -1, 0, false, kWhite},
    {"filter on modem colour", {15, 1, 2, 0}, "", -1, 0, -1, -1, -1, 0, false, kBlack},
    {"underline cursor", {}, "", -1, -1, -1, -1, 4, 4, true, kWhite},
    {"underline cursor top", {}, "", -1, -1, -1, -1, 4, 4, false, kBlue},
    {"cursor elsewhere", {}, "", -1, -1, -1, -1, 4, 5, true, kBlue},
    {"block cursor", {15, 1, 0, 1}, "", -1, -1, -1, -1, 4, 4, false, kWhite},
    {"block cursor gray", {14, 1, 1, 1}, "", -1, -1, -1, -1, 0, 0, false, gray(kYellow)},
    {"cursor beyond the row", {}, "", -1, -1, -1, -1, 10, 9, true, kBlue},
};

RowLook look(const PaintCase &c)
{
    RowLook row;
    row.cells.resize(10);
    for (int i = 0; c.text[i]; ++i)
        row.cells[size_t(i)].ch = char32_t(c.text[i]);
    if (c.reverse >= 0)
        row.cells[size_t(c.reverse)].attrs = TermCell::Reverse;
    if (c.modemRed >= 0)
        row.cells[size_t(c.modemRed)].bg = TermColor::fromRgb(200, 0, 0);
    row.selFrom = c.selFrom;
    row.selTo = c.selTo;
    row.cursorColumn = c.cursor;
    return row;
}

// Whether any pixel of the cell differs from its corner: a glyph was drawn there.
bool hasInk(const QImage &image, QSize cell, int column)
{
    const QRect rect(column * cell.width(), 0, cell.width(), cell.height());
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
            if (image.pixel(x, y) != image.pixel(rect.topLeft()))
                return true;
    return false;
}

} // namespace

class TermRendererTest : public QObject
{
    Q_OBJECT
private slots:
    void paints_data() { addRows(kPaintCases); }
    void paints()
    {
        const PaintCase &c = fetchRow(kPaintCases);
        TermRenderer renderer;
        renderer.setStyle(c.style);
        const QSize cell = renderer.cellSize();
        const QImage &image = renderer.rowImage(look(c), 4);
        QCOMPARE(image.size(), QSize(10 * cell.width(), cell.height()));
        const QPoint probe(c.column * cell.width() + cell.width() / 2, c.bottom ? cell.height() - 1 : 0);
        QCOMPARE(QColor(image.pixel(probe)), QColor(c.color));
    }

    void glyphsOneToACell()
    {
        TermRenderer renderer;
        RowLook row;
        row.cells.resize(6);
        row.cells[0].ch = U'A';
        row.cells[2].ch = U'\u65e5'; // a wide character and its right half
        row.cells[3].ch = 0;
        row.cells[4].ch = U'_';
        row.cells[4].attrs = TermCell::Bold;
        const QImage image = renderer.rowImage(RowLook(row), 4);
        const QSize cell = renderer.cellSize();
        QVERIFY(hasInk(image, cell, 0));
        QVERIFY(!hasInk(image, cell, 1));
        QVERIFY(hasInk(image, cell, 2) || hasInk(image, cell, 3));
        QVERIFY(hasInk(image, cell, 4));
        QVERIFY(!hasInk(image, cell, 5));
        QCOMPARE(renderer.background(), QColor(kBlue));
    }

    // A row painted lately is not painted again; a new style paints every row afresh.
    void rowsPaintedLately()
    {
        TermRenderer renderer;
        PaintCase c = kPaintCases[0];
        renderer.rowImage(look(c), 2);
        c.cursor = 1;
        const QImage *second = &renderer.rowImage(look(c), 2);
        const QImage kept = *second;
        const QImage *first = &renderer.rowImage(look(kPaintCases[0]), 2);
        QVERIFY(first != second);
        // Full: the row used longest ago gives its picture to the next new row.
        c.cursor = 2;
        QCOMPARE(&renderer.rowImage(look(c), 2), second);
        QVERIFY(*second != kept);
        QCOMPARE(&renderer.rowImage(look(kPaintCases[0]), 2), first);
        renderer.setStyle({15, 4, 0, 0});
        QCOMPARE(QColor(renderer.rowImage(look(kPaintCases[0]), 2).pixel(0, 0)), QColor(kRed));
        QCOMPARE(renderer.background(), QColor(kRed));
    }
};

QTEST_MAIN(TermRendererTest)
#include "TermRendererTest.moc"
