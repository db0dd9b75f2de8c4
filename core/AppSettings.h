#pragma once

#include <QString>
#include <array>

class IniFile;

// One programmable button at the foot of the terminal.
struct ButtonAssignment
{
    QString caption;
    QString tag; // the text the button sends; "~" in the file is a CR
};

// The sections Application and Button Assignments: read when the terminal loads, written when it unloads.
struct AppSettings
{
    QString downloadDirectory, uploadDirectory; // Directory kind: upper case, trailing backslash added
    int zmodemOptions = 0, transferOptions = 0;
    bool autoZModem = false; // written at every exit, never read back
    bool hideIntro = false, hideDiag = false, repeaterSetup = false;
    std::array<ButtonAssignment, 10> buttons;
};

// Buttons whose key is not in the file keep what they had.
void LoadAppSettings(const IniFile &ini, AppSettings &settings);
void SaveAppSettings(IniFile &ini, const AppSettings &settings);

// A button's text as stored: only its first carriage return counts and ends the value, shown as "~".
QString buttonValueText(const QString &tag);
// The text a button sends, from its stored value: the first "~" is a carriage return that ends it.
QString buttonTagFromValue(const QString &value);
