#include "TerminalSettings.h"

#include "IniFile.h"
#include "TerminalScreen.h"

#include <QRegularExpression>

#include <limits>

QString TerminalSection(const QString &tag)
{
    return QStringLiteral("Terminal_") + tag;
}

int ScrollLimit(int columns)
{
    // A width below one (a hand-edited file) counts as one, where the limit is at its largest.
    return int(std::min<qint64>((qint64(1) << 31) / std::max(columns, 1), std::numeric_limits<int>::max()));
}

double FontSizeValue(const QString &text)
{
    static const QRegularExpression number(QStringLiteral("^\\s*[+-]?(\\d+\\.?\\d*|\\.\\d+)"));
    const QRegularExpressionMatch match = number.match(text);
    return match.hasMatch() ? match.captured(0).trimmed().toDouble() : 0.0;
}

TermSettings TermSettingsOf(const TerminalScreen &screen)
{
    TermSettings s;
    s.emulation = screen.Emulation();
    s.backspace = screen.Backspace();
    s.echo = screen.Echo();
    s.foreColor = screen.ForeColor();
    s.backColor = screen.BackColor();
    s.colorFilter = screen.ColorFilter();
    s.rows = screen.Rows();
    s.columns = screen.Columns();
    s.scrollRows = screen.ScrollRows();
    s.font = screen.font();
    s.cursorType = screen.CursorType();
    return s;
}

void ApplyTermSettings(TerminalScreen &screen, const TermSettings &settings)
{
    screen.setEmulation(settings.emulation);
    screen.setBackspace(settings.backspace);
    screen.setEcho(settings.echo);
    screen.setForeColor(settings.foreColor);
    screen.setBackColor(settings.backColor);
    screen.setColorFilter(settings.colorFilter);
    screen.setFont(settings.font);
    screen.setCursorType(settings.cursorType);
    screen.setScrollRows(settings.scrollRows);
    screen.setScreenSize(settings.rows, settings.columns);
}

void WriteTermSettings(IniFile &ini, const QString &section, const TermSettings &settings)
{
    const auto number = [](int value) { return QString::number(value); };
    ini.writeString(section, QStringLiteral("Emulation"), number(settings.emulation));
    ini.writeString(section, QStringLiteral("Backspace"), number(settings.backspace));
    ini.writeString(section, QStringLiteral("Echo(Duplex)"), iniBoolText(settings.echo));
    ini.writeString(section, QStringLiteral("ForeColor"), number(settings.foreColor));
    ini.writeString(section, QStringLiteral("BackColor"), number(settings.backColor));
    ini.writeString(section, QStringLiteral("ScreenFilter"), number(settings.colorFilter));
    ini.writeString(section, QStringLiteral("Rows"), number(settings.rows));
    ini.writeString(section, QStringLiteral("Columns"), number(settings.columns));
    ini.writeString(section, QStringLiteral("ScrollRows"), number(settings.scrollRows));
    ini.writeString(section, QStringLiteral("FontName"), settings.font.family());
    ini.writeString(section, QStringLiteral("Fontsize"), QString::number(settings.font.pointSizeF()));
    ini.writeString(section, QStringLiteral("FontBold"), iniBoolText(settings.font.bold()));
    ini.writeString(section, QStringLiteral("FontItalic"), iniBoolText(settings.font.italic()));
    ini.writeString(section, QStringLiteral("CursorType"), number(settings.cursorType));
}
