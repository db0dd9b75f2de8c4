#pragma once

#include <QFont>
#include <QString>

class IniFile;
class TerminalScreen;

// The terminal members of Comm1 that the settings keep, in the section "Terminal_" and the tag.
struct TermSettings
{
    int emulation = 2;
    int backspace = 0;
    bool echo = false;
    int foreColor = 15;
    int backColor = 1;
    int colorFilter = 0;
    int rows = 25;
    int columns = 80;
    int scrollRows = 409;
    QFont font;
    int cursorType = 0;

    bool operator==(const TermSettings &) const = default;
};

QString TerminalSection(const QString &tag);

// The whole part of 2 to the power 31 divided by the columns: the most rows and scroll-back rows
// a screen of that width may have.
int ScrollLimit(int columns);

// A font size as the settings store it: the number at the front of the text, with its fraction.
double FontSizeValue(const QString &text);

TermSettings TermSettingsOf(const TerminalScreen &screen);
// Puts the settings on the screen; a new size keeps the text on the screen.
void ApplyTermSettings(TerminalScreen &screen, const TermSettings &settings);
// Writes every key of the section.
void WriteTermSettings(IniFile &ini, const QString &section, const TermSettings &settings);
