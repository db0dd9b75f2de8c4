#include "TerminalSettings.h"

#include "IniFile.h"

#include <QRegularExpression>

#include <limits>

namespace {

// Where a key's value is read from: the section of the settings file, the key's name.
struct Place
{
    const IniFile &ini;
    const QString &section;
    const QString &key;
    int number(int fallback) const { return ini.getInt(section, key, fallback); }
    QString text(const QString &fallback) const { return ini.getString(section, key, fallback); }
    bool truth() const { return iniBool(text(iniBoolText(false))); }
};

// One key of the section: how its value is written from the settings and read back into them.
struct TermKey
{
    const char *name;
    QString (*write)(const TermSettings &);
    // Null for a key that is written only.
    void (*read)(TermSettings &, const Place &);
};

QString number(int value)
{
    return QString::number(value);
}

// In the order they are written and read. The width limits the rows, so ScrollRows, whose default
// is that limit, comes after Columns.
const TermKey kTermKeys[] = {
    {"Emulation", [](const TermSettings &s) { return number(s.emulation); },
     [](TermSettings &s, const Place &p) { s.emulation = p.number(0); }},
    {"Backspace", [](const TermSettings &s) { return number(s.backspace); },
     [](TermSettings &s, const Place &p) { s.backspace = p.number(0); }},
    {"Echo(Duplex)", [](const TermSettings &s) { return iniBoolText(s.echo); },
     [](TermSettings &s, const Place &p) { s.echo = p.truth(); }},
    {"ForeColor", [](const TermSettings &s) { return number(s.foreColor); },
     [](TermSettings &s, const Place &p) { s.foreColor = p.number(15); }},
    {"BackColor", [](const TermSettings &s) { return number(s.backColor); },
     [](TermSettings &s, const Place &p) { s.backColor = p.number(1); }},
    {"ScreenFilter", [](const TermSettings &s) { return number(s.colorFilter); }, nullptr},
    {"Rows", [](const TermSettings &s) { return number(s.rows); },
     [](TermSettings &s, const Place &p) { s.rows = p.number(25); }},
    {"Columns", [](const TermSettings &s) { return number(s.columns); },
     [](TermSettings &s, const Place &p) { s.columns = p.number(80); }},
    {"ScrollRows", [](const TermSettings &s) { return number(s.scrollRows); },
     [](TermSettings &s, const Place &p) {
         const int limit = scrollRowsLimit(s.columns);
         s.scrollRows = std::min(p.number(limit), limit);
     }},
    {"FontName", [](const TermSettings &s) { return s.font.family(); },
     [](TermSettings &s, const Place &p) { s.font.setFamily(p.text(s.font.family())); }},
    {"Fontsize", [](const TermSettings &s) { return QString::number(s.font.pointSizeF()); },
     [](TermSettings &s, const Place &p) {
         if (const double size = fontSizeValue(p.text(QStringLiteral("9.1"))); size > 0)
             s.font.setPointSizeF(size);
     }},
    {"FontBold", [](const TermSettings &s) { return iniBoolText(s.font.bold()); },
     [](TermSettings &s, const Place &p) { s.font.setBold(p.truth()); }},
    {"FontItalic", [](const TermSettings &s) { return iniBoolText(s.font.italic()); },
     [](TermSettings &s, const Place &p) { s.font.setItalic(p.truth()); }},
    {"CursorType", [](const TermSettings &s) { return number(s.cursorType); },
     [](TermSettings &s, const Place &p) { s.cursorType = p.number(0); }},
};

} // namespace

QString terminalSection(const QString &tag)
{
    return QStringLiteral("Terminal_") + tag;
}

int scrollRowsLimit(int columns)
{
    // A width below one (a hand-edited file) counts as one, where the limit is at its largest.
    return int(std::min<qint64>((qint64(1) << 31) / std::max(columns, 1), std::numeric_limits<int>::max()));
}

double fontSizeValue(const QString &text)
{
    static const QRegularExpression number(QStringLiteral("^\\s*[+-]?(\\d+\\.?\\d*|\\.\\d+)"));
    const QRegularExpressionMatch match = number.match(text);
    return match.hasMatch() ? match.captured(0).trimmed().toDouble() : 0.0;
}

void writeTermSection(IniFile &ini, const QString &section, const TermSettings &settings)
{
    for (const TermKey &key : kTermKeys)
        ini.writeString(section, QLatin1String(key.name), key.write(settings));
}

std::optional<TermSettings> readTermSection(const IniFile &ini, const QString &section,
                                            const TermSettings &present)
{
    TermSettings settings = present;
    for (const TermKey &key : kTermKeys) {
        if (!key.read)
            continue;
        const QString name = QLatin1String(key.name);
        key.read(settings, Place{ini, section, name});
        // The emulation comes first: without it the section counts as never written.
        if (settings.emulation == 0)
            return std::nullopt;
    }
    settings.rows = std::min(settings.rows, scrollRowsLimit(settings.columns));
    return settings;
}
