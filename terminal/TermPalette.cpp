#include "TermPalette.h"

#include <array>

namespace {

struct PaletteEntry
{
    QRgb rgb;
    const char *name;
};

constexpr std::array<PaletteEntry, kPaletteSize> kPalette{{
    {qRgb(0, 0, 0), "Black"},
    {qRgb(0, 0, 128), "Blue"},
    {qRgb(0, 128, 0), "Green"},
    {qRgb(0, 128, 128), "Cyan"},
    {qRgb(128, 0, 0), "Red"},
    {qRgb(128, 0, 128), "Magenta"},
    {qRgb(128, 128, 0), "Brown"},
    {qRgb(192, 192, 192), "Light Gray"},
    {qRgb(128, 128, 128), "Dark Gray"},
    {qRgb(0, 0, 255), "Light Blue"},
    {qRgb(0, 255, 0), "Light Green"},
    {qRgb(0, 255, 255), "Light Cyan"},
    {qRgb(255, 0, 0), "Light Red"},
    {qRgb(255, 0, 255), "Light Magenta"},
    {qRgb(255, 255, 0), "Yellow"},
    {qRgb(255, 255, 255), "White"},
}};

} // namespace

QColor paletteColor(int index)
{
    // Out-of-range numbers from a hand-edited settings file wrap around as the palette's four bits do.
    return QColor(kPalette[size_t(index & (kPaletteSize - 1))].rgb);
}

QStringList paletteColorNames()
{
    QStringList names;
    for (const PaletteEntry &entry : kPalette)
        names << QString::fromLatin1(entry.name);
    return names;
}

ColorFilter colorFilterFromNumber(int number)
{
    switch (number) {
    case int(ColorFilter::GrayScale):
        return ColorFilter::GrayScale;
    case int(ColorFilter::Monochrome):
        return ColorFilter::Monochrome;
    default:
        return ColorFilter::Color;
    }
}

CellColors filterColors(const QColor &fg, const QColor &bg, ColorFilter filter)
{
    switch (filter) {
    case ColorFilter::Color:
        break;
    case ColorFilter::GrayScale: {
        const int f = qGray(fg.rgb());
        const int b = qGray(bg.rgb());
        return {QColor(f, f, f), QColor(b, b, b)};
    }
    case ColorFilter::Monochrome:
        if (qGray(bg.rgb()) > qGray(fg.rgb()))
            return {Qt::black, Qt::white};
        return {Qt::white, Qt::black};
    }
    return {fg, bg};
}
