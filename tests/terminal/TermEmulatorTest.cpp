#include "TermEmulator.h"
#include "Tables.h"

namespace {

QByteArray numberedLines(int from, int to, const char *ending = "\r\n")
{
    QByteArray bytes;
    for (int i = from; i <= to; ++i)
        bytes += "line " + QByteArray::number(i) + ending;
    return bytes;
}

// The scroll-back and the screen down to the last row with text, and the cursor.
QString dump(const TermEmulator &emu)
{
    QStringList rows;
    for (int row = -emu.scrollbackLines(); row < emu.rows(); ++row)
        rows << emu.rowText(row);
    while (!rows.isEmpty() && rows.last().isEmpty())
        rows.removeLast();
    return rows.join(u'|') + QStringLiteral(" @%1,%2").arg(emu.cursorRow()).arg(emu.cursorColumn());
}

// Bytes as received on a screen of the given size and scroll-back, and what it shows then.
struct ScreenCase
{
    const char *name;
    int rows;
    int columns;
    int scrollLimit;
    bool tty;
    const char *bytes;
    const char *shown;
};

const ScreenCase kScreenCases[] = {
    {"line ends", 25, 80, 409, false, "hello\r\nworld", "hello|world @1,5"},
    {"bare line feed and return", 25, 80, 409, false, "ab\ncd\rX", "ab|X cd @1,1"},
    {"wrap", 5, 10, 409, false, "aaaaaaaaaabbbbb", "aaaaaaaaaa|bbbbb @1,5"},
    {"full row then line end", 5, 10, 409, false, "cccccccccc\r\nnext", "cccccccccc|next @1,4"},
    {"erase and position", 25, 80, 409, false,
     "garbage on the first row\r\n\x1b[2J\x1b[3;5HX\x1b[1;1Habcdef\x1b[4D\x1b[K", "ab||    X @0,2"},
    {"backspace", 25, 80, 409, false, "abc\b\bZ", "aZc @0,2"},
    {"tab", 25, 80, 409, false, "a\tT", "a       T @0,9"},
    {"bell and controls", 25, 80, 409, false, "a\ab", "ab @0,2"},
    {"scroll region", 5, 20, 409, false, "top\r\n\x1b[2;4r\x1b[4;1Ha\r\nb\r\nc\r\nd", "top|b|c|d @3,1"},
    {"scroll-back", 3, 20, 409, false, "1\r\n2\r\n3\r\n4\r\n5", "1|2|3|4|5 @2,1"},
    {"scroll-back limit", 3, 20, 2, false, "1\r\n2\r\n3\r\n4\r\n5\r\n6", "2|3|4|5|6 @2,1"},
    {"no scroll-back", 3, 20, 0, false, "1\r\n2\r\n3\r\n4", "2|3|4 @2,1"},
    {"split utf-8 and attributes", 25, 80, 409, false, "\x1b[3;7Hx\x1b[1mbold\xc3\xa9!",
     "||      xbold\u00e9! @2,13"},
    {"wide characters", 25, 80, 409, false, "\xe6\x97\xa5\xe6\x9c\xac!", "\u65e5\u672c! @0,5"},
    {"tty shows sequences", 25, 80, 409, true, "\x1b[2Jab\x1b[1mc\xe9", "[2Jab[1mc\u00e9 @0,10"},
    {"tty keeps the basic controls", 25, 80, 409, true, "ab\bc\td\r\ne", "ac      d|e @1,1"},
};

} // namespace

class TermEmulatorTest : public QObject
{
    Q_OBJECT
private slots:
    void screens_data() { addRows(kScreenCases); }
    void screens()
    {
        const ScreenCase &c = fetchRow(kScreenCases);
        const QByteArray bytes = c.bytes;
        // At once, and a byte at a time: pieces may split sequences and characters anywhere.
        TermEmulator whole(c.rows, c.columns);
        TermEmulator trickle(c.rows, c.columns);
        for (TermEmulator *emu : {&whole, &trickle}) {
            emu->setEmulation(c.tty ? TermEmulation::Tty : TermEmulation::Vt100);
            emu->setScrollLimit(c.scrollLimit);
        }
        whole.write(c.tty ? ::ttyFilter(bytes) : bytes);
        whole.process();
        for (const char b : bytes) {
            trickle.write(c.tty ? ::ttyFilter(QByteArray(1, b)) : QByteArray(1, b));
            trickle.process();
        }
        QCOMPARE(dump(whole), QString::fromUtf8(c.shown));
        if (!c.tty)
            QCOMPARE(dump(trickle), dump(whole));
    }

    void colorsAndAttributes()
    {
        TermEmulator emu(25, 80);
        emu.write("p\x1b[1;31;42mX\x1b[0;7mR\x1b[0;4mU");
        emu.process();
        std::vector<TermCell> cells;
        emu.rowCells(0, cells);
        QVERIFY(cells[0].fg.isDefault());
        QVERIFY(cells[0].bg.isDefault());
        QCOMPARE(cells[0].attrs, quint8(0));
        QVERIFY(!cells[1].fg.isDefault());
        QVERIFY(!cells[1].bg.isDefault());
        QVERIFY(cells[1].fg.rgb() != cells[1].bg.rgb());
        QCOMPARE(cells[1].attrs, quint8(TermCell::Bold));
        QVERIFY(cells[2].fg.isDefault());
        QCOMPARE(cells[2].attrs, quint8(TermCell::Reverse));
        QCOMPARE(cells[3].attrs, quint8(TermCell::Underline));
        QVERIFY(cells[0].sameLook(cells[4]));
        QVERIFY(!cells[0].sameLook(cells[1]));
    }

    void scrollLimitShrinksFromTheOldestLine()
    {
        TermEmulator emu(5, 40);
        emu.setScrollLimit(8);
        emu.write(numberedLines(1, 30)); // wraps the ring several times
        emu.process();
        QCOMPARE(emu.rowText(-8), QStringLiteral("line 19"));
        emu.setScrollLimit(3);
        QCOMPARE(emu.scrollbackLines(), 3);
        QCOMPARE(emu.rowText(-3), QStringLiteral("line 24"));
        QCOMPARE(emu.rowText(-1), QStringLiteral("line 26"));
        emu.write(numberedLines(31, 31));
        emu.process();
        QCOMPARE(emu.rowText(-3), QStringLiteral("line 25"));
        QCOMPARE(emu.rowText(-1), QStringLiteral("line 27"));
    }

    // Bytes fed one at a time reach libvterm as they came; in bulk they take the shortcuts for plain
    // text (passing over what cannot be seen, scrolling many lines at once), which must not show.
    void fastStreamMatchesByteByByte_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("stream");
        QTest::addColumn<bool>("tty");

        QByteArray longLines;
        QByteArray tabs;
        QByteArray crOnly;
        QByteArray fullRows;
        QByteArray latin1;
        // A full row leaves the cursor waiting to wrap: a line feed keeps it waiting, a backspace or
        // a return ends the wait, a tab does not move it.
        const char *const afterFullRow[] = {"\n\r\a", "\r\n", "\bX\r\n", "\rY\r\n", "\tZ\r\n", "\t\nW\r\n"};
        const QByteArray accented[] = {"plain\r\n", "caf\xe9\r\n", QByteArray(81, '\xe9') + "\r\n",
                                       QByteArray(80, '\xe9') + "\nW\r\n"};
        const QByteArray tabbed[] = {"\r\n", "\t\t\t\t\t\t\t\t\t\t\tab\r\n",
                                     "\r\nx\t" + QByteArray(72, 'y') + "\r\n"};
        for (int i = 0; i < 900; ++i) {
            longLines += QByteArray(i % 130, char('a' + i % 26)) + "\r\n";
            tabs += "a\tb\bc " + QByteArray::number(i) + tabbed[i % 3];
            crOnly += "progress " + QByteArray::number(i) + "\r" + (i % 10 == 9 ? "\n" : "");
            fullRows += QByteArray(80, char('A' + i % 26)) + afterFullRow[i % 6];
            latin1 += "line " + QByteArray::number(i) + "\r\n" + accented[i % 4];
        }

        QTest::newRow("modem lines") << QByteArray() << numberedLines(1, 2000) << false;
        QTest::newRow("after text") << QByteArray("CMD:abc") << numberedLines(1, 2000) << false;
        QTest::newRow("wrapping lines") << QByteArray("x") << longLines << false;
        QTest::newRow("tabs and backspaces") << QByteArray("\r\n\r\n") << tabs << false;
        QTest::newRow("full rows") << QByteArray() << fullRows << false;
        QTest::newRow("line feeds only") << QByteArray("start") << numberedLines(1, 2000, "\n") << false;
        QTest::newRow("carriage returns") << QByteArray() << crOnly << false;
        QTest::newRow("tty latin-1") << QByteArray() << latin1 << true;
        QTest::newRow("sequence at the end")
            << QByteArray() << numberedLines(1, 1500) + "\x1b[1;31mred\x1b[0m\r\n"
            << false;
        QTest::newRow("sequence in the middle")
            << QByteArray() << numberedLines(1, 700) + "\x1b[5;10r\x1b[4h" + numberedLines(701, 1400)
            << false;
        QTest::newRow("after a scroll region")
            << QByteArray("\x1b[3;6r\x1b[6;1H") << numberedLines(1, 2000) << false;
    }

    void fastStreamMatchesByteByByte()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, stream);
        QFETCH(bool, tty);

        TermEmulator burst(25, 80);
        TermEmulator trickle(25, 80);
        // A fast port: pieces queued one after another, interpreted only at the end.
        TermEmulator pieces(25, 80);
        // Interpreted as it comes in pieces that cut lines and sequences anywhere.
        TermEmulator sliced(25, 80);
        for (TermEmulator *emu : {&burst, &trickle, &pieces, &sliced}) {
            emu->setScrollLimit(100);
            emu->setEmulation(tty ? TermEmulation::Tty : TermEmulation::Vt100);
            emu->write(before);
            emu->process();
        }
        const auto shown = [tty](const QByteArray &bytes) { return tty ? ::ttyFilter(bytes) : bytes; };
        burst.write(shown(stream));
        burst.process();
        for (const char b : stream) {
            trickle.write(shown(QByteArray(1, b)));
            trickle.process();
        }
        for (qsizetype i = 0; i < stream.size(); i += 4096)
            pieces.write(shown(stream.mid(i, 4096)));
        pieces.process();
        for (qsizetype i = 0; i < stream.size(); i += 333) {
            sliced.write(shown(stream.mid(i, 333)));
            sliced.process();
        }
        QCOMPARE(dump(burst), dump(trickle));
        QCOMPARE(dump(pieces), dump(trickle));
        QCOMPARE(dump(sliced), dump(trickle));
        QCOMPARE(sliced.takeScrolledLines(), trickle.takeScrolledLines());
    }

    void fastStreamIsPassedOverOnlyWhenPlain()
    {
        const QByteArray stream = numberedLines(1, 5000);
        TermEmulator plain(25, 80);
        plain.write(stream);
        plain.process();
        // Of 5000 lines only those that can still be seen are interpreted.
        QVERIFY(plain.interpretedBytes() < stream.size() / 5);
        QCOMPARE(plain.takeScrolledLines(), 5000 - 24);

        // Queued without a pause, the stream never holds twice the 2 * 25 + 409 + 1 lines (of at most
        // 11 bytes) that can still show.
        TermEmulator queued(25, 80);
        qsizetype longest = 0;
        for (qsizetype i = 0; i < stream.size(); i += 4096) {
            queued.write(stream.mid(i, 4096));
            longest = std::max(longest, queued.pendingBytes());
        }
        QVERIFY(longest <= 2 * 460 * 11);
        QVERIFY(longest > 460 * 11);
        queued.process();
        QCOMPARE(queued.takeScrolledLines(), 5000 - 24);
        QCOMPARE(queued.rowText(-409), QStringLiteral("line 4568"));

        TermEmulator coloured(25, 80);
        coloured.write("\x1b[32m");
        coloured.process();
        coloured.write(stream);
        coloured.process();
        QCOMPARE(coloured.interpretedBytes(), stream.size() + 5);

        // A clear screen starts the emulation afresh, so the shortcut is allowed again.
        coloured.clearScreen();
        coloured.write(stream);
        coloured.process();
        QVERIFY(coloured.interpretedBytes() < 2 * stream.size());
        QCOMPARE(coloured.rowText(23), QStringLiteral("line 5000"));
    }

    void processInSlices()
    {
        // A limited slice leaves the rest for the next call.
        TermEmulator sliced(25, 80);
        sliced.write("\x1b[1mabcdef");
        QVERIFY(sliced.process(6));
        QCOMPARE(sliced.rowText(0), QStringLiteral("ab"));
        QVERIFY(!sliced.process(100));
        QCOMPARE(sliced.rowText(0), QStringLiteral("abcdef"));
    }

    void ttyFilters_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QByteArray>("output");
        QTest::newRow("plain") << QByteArray("CMD:\r\n\ta\b\a") << QByteArray("CMD:\r\n\ta\b\a");
        QTest::newRow("escape dropped") << QByteArray("\x1b[1mX") << QByteArray("[1mX");
        QTest::newRow("controls dropped") << QByteArray("a\x00\x01\x0e\x7f"
                                                        "b",
                                                        6)
                                          << QByteArray("ab");
        QTest::newRow("latin-1 kept") << QByteArray("\xe9\xff") << QByteArray("\xc3\xa9\xc3\xbf");
        QTest::newRow("c1 dropped") << QByteArray("\x85\x9b"
                                                  "x")
                                    << QByteArray("x");
    }

    void ttyFilters()
    {
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, output);
        QCOMPARE(::ttyFilter(input), output);
    }

    void clearScreenKeepsScrollback()
    {
        TermEmulator emu(5, 40);
        emu.write(numberedLines(1, 8) + "\x1b[?25l");
        emu.process();
        QVERIFY(!emu.cursorVisible());
        emu.clearScreen();
        for (int row = 0; row < 5; ++row)
            QCOMPARE(emu.rowText(row), QString());
        QCOMPARE(emu.cursorRow(), 0);
        QCOMPARE(emu.cursorColumn(), 0);
        QVERIFY(emu.cursorVisible());
        QCOMPARE(emu.rowText(-1), QStringLiteral("line 4"));
        emu.clearScrollback();
        QCOMPARE(emu.scrollbackLines(), 0);

        emu.setCursor(2, 7);
        QCOMPARE(emu.cursorRow(), 2);
        QCOMPARE(emu.cursorColumn(), 7);
        emu.setCursor(99, -3);
        QCOMPARE(emu.cursorRow(), 4);
        QCOMPARE(emu.cursorColumn(), 0);
    }

    void resizeEmptiesTheScreen()
    {
        TermEmulator emu(5, 40);
        emu.write(numberedLines(1, 7));
        emu.process();
        const int before = emu.scrollbackLines();
        emu.setSize(10, 20);
        QCOMPARE(emu.rows(), 10);
        QCOMPARE(emu.columns(), 20);
        QCOMPARE(emu.scrollbackLines(), before);
        QCOMPARE(emu.screenText(), QString(QStringLiteral("\r\n")).repeated(10));
        emu.write(QByteArray(25, 'z'));
        emu.process();
        QCOMPARE(emu.rowText(1), QStringLiteral("zzzzz"));
    }

    void bellsAndDamage()
    {
        TermEmulator emu(25, 80);
        emu.takeDamage();
        emu.write("\x1b[5;10Hab\a\a");
        emu.process();
        QCOMPARE(emu.takeBells(), 2);
        QCOMPARE(emu.takeBells(), 0);
        const QRect damage = emu.takeDamage();
        QVERIFY(damage.contains(QPoint(9, 4)));
        QVERIFY(damage.contains(QPoint(10, 4)));
        QVERIFY(!damage.contains(QPoint(0, 10)));
        QVERIFY(emu.takeDamage().isNull());

        // The emulation answers a device status request by itself.
        emu.write("\x1b[6n");
        emu.process();
        QCOMPARE(emu.takeOutput(), QByteArray("\x1b[5;12R"));
    }

    void cursorKeys()
    {
        TermEmulator emu(25, 80);
        QCOMPARE(emu.cursorKeyBytes(Qt::Key_Up), QByteArray("\x1b[A"));
        QCOMPARE(emu.cursorKeyBytes(Qt::Key_Left), QByteArray("\x1b[D"));
        emu.write("\x1b[?1h");
        emu.process();
        QCOMPARE(emu.cursorKeyBytes(Qt::Key_Down), QByteArray("\x1bOB"));
        QCOMPARE(emu.cursorKeyBytes(Qt::Key_F5), QByteArray());
        QCOMPARE(emu.takeOutput(), QByteArray());
        emu.setEmulation(TermEmulation::Tty);
        QCOMPARE(emu.cursorKeyBytes(Qt::Key_Up), QByteArray());
    }
};

QTEST_GUILESS_MAIN(TermEmulatorTest)
#include "TermEmulatorTest.moc"
