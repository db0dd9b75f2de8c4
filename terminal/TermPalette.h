#pragma once

#include <QColor>
#include <QStringList>

// The sixteen colours that ForeColor and BackColor choose from, in the order of the classic
// sixteen-colour palette: 0 black, 1 blue, ... 7 light grey, 8 dark grey, ... 15 bright white.
constexpr int kPaletteSize = 16;
QColor paletteColor(int index);
// Their names, for the colour lists of the settings dialog.
QStringList paletteColorNames();

// The ColorFilter of the screen, numbered as the ScreenFilter setting stores it.
enum class ColorFilter { Color = 0, GrayScale = 1, Monochrome = 2 };
ColorFilter colorFilterFromNumber(int number);

// A cell's colours as painted through the filter: Gray Scale keeps the brightness and drops the
// hue; Monochrome paints white on black, or black on white where the background was the brighter.
struct CellColors
{
    QColor fg;
    QColor bg;
};
CellColors filterColors(const QColor &fg, const QColor &bg, ColorFilter filter);
