#pragma once

#include <QFont>
#include <QString>
#include <optional>

class IniFile;

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

QString terminalSection(const QString &tag);

// The whole part of 2 to the power 31 divided by the columns: the most rows and scroll-back rows
// a screen of that width may have.
int scrollRowsLimit(int columns);

// A font size as the settings store it: the number at the front of the text, with its fraction.
double fontSizeValue(const QString &text);

// Writes every key of the section.
void writeTermSection(IniFile &ini, const QString &section, const TermSettings &settings);
// Reads the section over the control's present settings, each missing key at its default; nothing
// when the emulation is missing or 0, which asks for the dialog. The screen filter is written but
// not read back, so it stays as the control has it.
std::optional<TermSettings> readTermSection(const IniFile &ini, const QString &section,
                                            const TermSettings &present);
