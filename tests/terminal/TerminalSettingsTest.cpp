#include "TerminalSettings.h"
#include "IniFile.h"
#include "Tables.h"

#include <QTemporaryDir>
#include <climits>

namespace {

const QString kSection = QStringLiteral("Terminal_Phone");

QString describe(const std::optional<TermSettings> &s)
{
    if (!s)
        return QStringLiteral("dialog");
    return QStringLiteral("emu %1 bs %2 echo %3 fg %4 bg %5 filter %6 rows %7 cols %8 scroll %9 ")
               .arg(s->emulation)
               .arg(s->backspace)
               .arg(int(s->echo))
               .arg(s->foreColor)
               .arg(s->backColor)
               .arg(s->colorFilter)
               .arg(s->rows)
               .arg(s->columns)
               .arg(s->scrollRows) +
           QStringLiteral("font %1 %2%3%4 cursor %5")
               .arg(s->font.family())
               .arg(s->font.pointSizeF())
               .arg(s->font.bold() ? QStringLiteral(" bold") : QString())
               .arg(s->font.italic() ? QStringLiteral(" italic") : QString())
               .arg(s->cursorType);
}

// What the control has before the section is read: filter 2 and a font of its own, which the
// section's missing keys leave standing.
TermSettings present()
{
    TermSettings s;
    s.colorFilter = 2;
    s.font = QFont(QStringLiteral("Courier"));
    s.font.setPointSizeF(12);
    return s;
}

struct ReadCase
{
    const char *name;
    const char *section;
    const char *read;
};

const ReadCase kReadCases[] = {
    {"no section", "", "dialog"},
    {"emulation 0", "Emulation=0\r\nRows=20", "dialog"},
    {"emulation not a number", "Emulation=vt\r\nRows=20", "dialog"},
    {"emulation only", "Emulation=2",
     "emu 2 bs 0 echo 0 fg 15 bg 1 filter 2 rows 25 cols 80 scroll 26843545 font Courier 9.1 cursor 0"},
    {"every key",
     "Emulation=1\r\nBackspace=1\r\nEcho(Duplex)=-1\r\nForeColor=14\r\nBackColor=0\r\nScreenFilter=0\r\n"
     "Rows=20\r\nColumns=40\r\nScrollRows=99\r\nFontName=Nowhere Sans\r\nFontsize=11.5\r\n"
     "FontBold=True\r\nFontItalic=1\r\nCursorType=1",
     "emu 1 bs 1 echo 1 fg 14 bg 0 filter 2 rows 20 cols 40 scroll 99 font Nowhere Sans 11.5 bold cursor 1"},
    {"limits by the width", "Emulation=2\r\nColumns=1073741824\r\nRows=7\r\nScrollRows=5",
     "emu 2 bs 0 echo 0 fg 15 bg 1 filter 2 rows 2 cols 1073741824 scroll 2 font Courier 9.1 cursor 0"},
    {"font size without a number", "Emulation=2\r\nFontsize=large\r\nEcho(Duplex)=yes",
     "emu 2 bs 0 echo 0 fg 15 bg 1 filter 2 rows 25 cols 80 scroll 26843545 font Courier 12 cursor 0"},
};

struct ScrollLimitCase
{
    const char *name;
    int columns;
    int limit;
};

const ScrollLimitCase kScrollLimits[] = {
    {"80", 80, 26843545}, {"132", 132, 16268815}, {"40", 40, 53687091},
    {"2", 2, 1073741824}, {"1", 1, INT_MAX},      {"0", 0, INT_MAX},
};

struct FontSizeCase
{
    const char *name;
    const char *text;
    double size;
};

const FontSizeCase kFontSizes[] = {
    {"default", "9.1", 9.1},      {"whole", "12", 12.0},  {"unit behind", " 10.5pt", 10.5},
    {"fraction only", ".5", 0.5}, {"signed", "-3", -3.0}, {"no number", "large", 0.0},
    {"empty", "", 0.0},
};

} // namespace

class TerminalSettingsTest : public QObject
{
    Q_OBJECT
private slots:
    void reads_data() { addRows(kReadCases); }
    void reads()
    {
        const ReadCase &c = fetchRow(kReadCases);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("VarnelUtil.INI"));
        QVERIFY(writeBytes(path, QByteArray("[Terminal_Phone]\r\n") + c.section + "\r\n"));
        QCOMPARE(describe(readTermSection(IniFile(path), kSection, present())), QString::fromLatin1(c.read));
    }

    // Every key written once, in its order; what is written reads back, less the screen filter.
    void roundTrip()
    {
        QTemporaryDir dir;
        IniFile ini(dir.filePath(QStringLiteral("VarnelUtil.INI")));
        TermSettings s;
        s.emulation = 1;
        s.backspace = 1;
        s.echo = true;
        s.foreColor = 10;
        s.backColor = 0;
        s.colorFilter = 1;
        s.rows = 30;
        s.columns = 132;
        s.scrollRows = 1000;
        s.font = QFont(QStringLiteral("Nowhere Mono"));
        s.font.setPointSizeF(12.5);
        s.font.setItalic(true);
        s.cursorType = 1;
        writeTermSection(ini, kSection, s);
        QCOMPARE(readBytes(ini.path()),
                 QByteArray("[Terminal_Phone]\nEmulation=1\nBackspace=1\nEcho(Duplex)=True\nForeColor=10\n"
                            "BackColor=0\nScreenFilter=1\nRows=30\nColumns=132\nScrollRows=1000\n"
                            "FontName=Nowhere Mono\nFontsize=12.5\nFontBold=False\nFontItalic=True\n"
                            "CursorType=1\n"));
        std::optional<TermSettings> back = readTermSection(ini, kSection, present());
        QVERIFY(back);
        QCOMPARE(back->colorFilter, 2);
        back->colorFilter = s.colorFilter;
        QCOMPARE(describe(back), describe(s));

        s.echo = false;
        s.font.setBold(true);
        writeTermSection(ini, kSection, s);
        QCOMPARE(describe(readTermSection(ini, kSection, s)), describe(s));
        QCOMPARE(terminalSection(QStringLiteral("Phone")), kSection);
    }

    void scrollLimits_data() { addRows(kScrollLimits); }
    void scrollLimits()
    {
        const ScrollLimitCase &c = fetchRow(kScrollLimits);
        QCOMPARE(scrollRowsLimit(c.columns), c.limit);
    }

    void fontSizes_data() { addRows(kFontSizes); }
    void fontSizes()
    {
        const FontSizeCase &c = fetchRow(kFontSizes);
        QCOMPARE(fontSizeValue(QString::fromLatin1(c.text)), c.size);
    }
};

QTEST_MAIN(TerminalSettingsTest)
#include "TerminalSettingsTest.moc"
