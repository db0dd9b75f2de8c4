#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

struct IniDocument;

// One key to write: its section, its name and its value.
struct IniEntry
{
    QString section;
    QString key;
    QString value;
};

// The program's settings file: "[Section]" headers and "Key=Value" lines, read and written key by
// key with the classic profile-string rules. Section and key names match without regard to case,
// blanks around names and values do not count, a value in matching quotes loses the quotes, and a
// missing file, section or key simply yields the caller's default. The file is read once and kept
// until it changes on disk, so two IniFile objects on one path, or two programs, still agree.
//
// Only a file that does not exist counts as empty: one that exists but cannot be read is never
// written, so the user's settings in it are not replaced by the few keys of this run.
class IniFile
{
public:
    explicit IniFile(const QString &path);
    ~IniFile();

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
    // removed, and text behind a zero character is dropped as a C string would drop it. The program
    // never looks at the result of a write; a failure goes to onTrouble.
    void writeString(const QString &section, const QString &key, const QString &value);
    // Several keys in one change of the file. A lock file beside the settings file keeps two programs
    // from changing it at once, so neither loses the other's keys.
    void writeStrings(const QList<IniEntry> &entries);

    // Told, once each in a session, that the file cannot be read or cannot be saved: the text names
    // the file and the reason.
    std::function<void(const QString &message)> onTrouble;

private:
    // The file as it stands on disk, read again only when it changed there.
    IniDocument &document() const;
    void tell(bool &told, const QString &message) const;

    QString m_path;
    mutable std::unique_ptr<IniDocument> m_document;
    mutable bool m_toldUnreadable = false;
    mutable bool m_toldUnsaved = false;
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
