#pragma once

#include <QString>
#include <QStringList>

// The program's settings file: "[Section]" headers and "Key=Value" lines, read and written key by
// key with the classic profile-string rules. Section and key names match without regard to case,
// blanks around names and values do not count, a value in matching quotes loses the quotes, and a
// missing file, section or key simply yields the caller's default. Every read goes to the file, so
// two IniFile objects on one path always agree.
class IniFile
{
public:
    explicit IniFile(const QString &path);

    QString path() const;

    // The value, or defaultValue when the section or key is missing; cut to bufferSize - 1 characters as a
    // fixed buffer of the system call would cut it. Trailing blanks of the default do not count.
    QString getString(const QString &section, const QString &key, const QString &defaultValue,
                      int bufferSize = 256) const;
    // The numeric value at the front of the text (0 when it doesn't start with a number); default when
    // missing.
    int getInt(const QString &section, const QString &key, int defaultValue) const;
    bool hasKey(const QString &section, const QString &key) const;
    // The section's keys as listed zero-separated into a buffer of bufferSize (so a long list is cut, the
    // last key that only partly fits coming back cut short).
    QStringList keys(const QString &section, int bufferSize = 256) const;
    // Changes one key and leaves the rest of the file as it stands. Atomic: a crash mid-write leaves the
    // old file whole. A value (or key) can never add a line or a key: CR/LF and other line breaks are
    // removed, and text behind a zero character is dropped as a C string would drop it. Failures are
    // silent; the program never looks at the result of a write.
    void writeString(const QString &section, const QString &key, const QString &value);

private:
    QString m_path;
};

// The running program's file, with its full path.
QString programFilePath();
// The settings file's name for a program file: the name cut at its first point, with ".INI" behind it.
QString iniFileNameFor(const QString &programFileName);
// Full path: $XDG_CONFIG_HOME (default ~/.config) / <executable name cut at its first point> + ".INI".
QString GetIniFileName();

// The numeric value at the front of a text, as the settings read numbers: leading blanks and a sign
// allowed, 0 when no digit follows.
int iniNumber(QStringView text);

// A true value is written "True" and read as true from "True" or "-1" only, in exactly that case.
bool iniBool(const QString &text);
QString iniBoolText(bool value);

// Takes the next item from a separated list, without its leading blanks. A position below 1 counts as 1;
// the position moves behind the separator, and becomes 0 once the list is finished.
QString NextIniKey(int &position, const QString &list, const QString &separator);
// Strips zeros, tabs, line ends and blanks from the end of text, turns remaining zeros and "~" into blanks
// (text keeps that), and returns it without blanks at either end.
QString CleanIniText(QString &text);
