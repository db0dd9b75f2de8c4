#include "TermEmulator.h"

#include <QTest>

namespace {

QByteArray numberedLines(int from, int to, const char *ending = "\r\n")
{
    QByteArray bytes;
    for (int i = from; i <= to; ++i)
        bytes += "line " + QByteArray::number(i) + ending;
    return bytes;
}

// Everything a user could see: the scroll-back, the screen and the cursor.
QStringList visibleState(TermEmulator &emu)
{
    QStringList state;
    for (int row = -emu.scrollbackLines(); row < emu.rows(); ++row)
        state << emu.rowText(row);
    state << QStringLiteral("cursor %1,%2").arg(emu.cursorRow()).arg(emu.cursorColumn());
    return state;
}

} // namespace

class TermEmulatorTest : public QObject
{
    Q_OBJECT
private slots:
    void lineEndsAndWrap();
    void controlSequences();
    void colorsAndAttributes();
    void scrollbackKeepsLinesThatLeaveTheTop();
    void scrollbackHasItsLimit();
    void scrollLimitShrinksFromTheOldestLine();
    void fastStreamMatchesByteByByte_data();
    void fastStreamMatchesByteByByte();
    void fastStreamIsPassedOverOnlyWhenPlain();
    void sequencesSplitAcrossWrites();
    void ttyShowsSequencesAsText();
    void ttyFilter_data();
    void ttyFilter();
    void clearScreenKeepsScrollback();
    void resizeEmptiesTheScreen();
    void bellsAndDamage();
    void cursorKeys();
    void wideCharacters();
};

void TermEmulatorTest::lineEndsAndWrap()
{
    TermEmulator emu(25, 80);
    emu.write("hello\r\nworld");
    emu.process();
    QCOMPARE(emu.rowText(0), QStringLiteral("hello"));
    QCOMPARE(emu.rowText(1), QStringLiteral("world"));
    QCOMPARE(emu.cursorRow(), 1);
    QCOMPARE(emu.cursorColumn(), 5);

    // A bare line feed keeps the column; a bare carriage return overwrites.
    emu.write("\nabc\rX");
    emu.process();
    QCOMPARE(emu.rowText(2), QStringLiteral("X    abc"));

    // 85 characters wrap after the 80th.
    TermEmulator wrap(25, 80);
    wrap.write(QByteArray(80, 'a') + QByteArray(5, 'b'));
    wrap.process();
    QCOMPARE(wrap.rowText(0), QString(80, u'a'));
    QCOMPARE(wrap.rowText(1), QStringLiteral("bbbbb"));
    QCOMPARE(wrap.cursorRow(), 1);

    // Exactly 80 characters and CR LF make one row, not two.
    TermEmulator exact(25, 80);
    exact.write(QByteArray(80, 'c') + "\r\nnext");
    exact.process();
    QCOMPARE(exact.rowText(1), QStringLiteral("next"));
}

void TermEmulatorTest::controlSequences()
{
    TermEmulator emu(25, 80);
    emu.write("garbage on the first row\r\n\x1b[2J\x1b[3;5HX\x1b[1;1Habcdef\x1b[4D\x1b[K");
    emu.process();
    QCOMPARE(emu.rowText(0), QStringLiteral("ab"));
    QCOMPARE(emu.rowText(1), QString());
    QCOMPARE(emu.rowText(2), QStringLiteral("    X"));
    QCOMPARE(emu.cursorRow(), 0);
    QCOMPARE(emu.cursorColumn(), 2);

    emu.write("abc\b\bZ");
    emu.process();
    QCOMPARE(emu.rowText(0), QStringLiteral("abaZc"));

    emu.write("\x1b[10;1H\tT");
    emu.process();
    QCOMPARE(emu.rowText(9), QStringLiteral("        T"));

    // A scroll region moves only its own rows and pushes nothing into the scroll-back.
    TermEmulator region(5, 20);
    region.write("top\r\n\x1b[2;4r\x1b[4;1Ha\r\nb\r\nc\r\nd");
    region.process();
    QCOMPARE(region.rowText(0), QStringLiteral("top"));
    QCOMPARE(region.rowText(1), QStringLiteral("b"));
    QCOMPARE(region.rowText(3), QStringLiteral("d"));
    QCOMPARE(region.scrollbackLines(), 0);
}

void TermEmulatorTest::colorsAndAttributes()
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

void TermEmulatorTest::scrollbackKeepsLinesThatLeaveTheTop()
{
    TermEmulator emu(25, 80);
    emu.write(numberedLines(1, 30));
    emu.process();
    // 30 line ends on 25 rows: the cursor rests on an empty bottom row, six lines went up.
    QCOMPARE(emu.scrollbackLines(), 6);
    QCOMPARE(emu.rowText(-6), QStringLiteral("line 1"));
    QCOMPARE(emu.rowText(-1), QStringLiteral("line 6"));
    QCOMPARE(emu.rowText(0), QStringLiteral("line 7"));
    QCOMPARE(emu.rowText(23), QStringLiteral("line 30"));
    QCOMPARE(emu.rowText(24), QString());
    QCOMPARE(emu.rowText(-7), QString());
    QCOMPARE(emu.takeScrolledLines(), 6);
}

void TermEmulatorTest::scrollbackHasItsLimit()
{
    TermEmulator emu(5, 40);
    emu.setScrollLimit(10);
    for (int i = 1; i <= 100; ++i) {
        emu.write(numberedLines(i, i));
        emu.process();
    }
    QCOMPARE(emu.scrollbackLines(), 10);
    // 100 lines, the last four on screen above the empty cursor row, and ten above those.
    QCOMPARE(emu.rowText(0), QStringLiteral("line 97"));
    QCOMPARE(emu.rowText(-1), QStringLiteral("line 96"));
    QCOMPARE(emu.rowText(-10), QStringLiteral("line 87"));

    TermEmulator none(5, 40);
    none.setScrollLimit(0);
    none.write(numberedLines(1, 20));
    none.process();
    QCOMPARE(none.scrollbackLines(), 0);
    QCOMPARE(none.rowText(0), QStringLiteral("line 17"));
}

void TermEmulatorTest::scrollLimitShrinksFromTheOldestLine()
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

void TermEmulatorTest::fastStreamMatchesByteByByte_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("stream");

    QByteArray longLines;
    for (int i = 0; i < 900; ++i)
        longLines += QByteArray(i % 130, char('a' + i % 26)) + "\r\n";
    QByteArray tabs;
    for (int i = 0; i < 900; ++i)
        tabs += "a\tb\bc " + QByteArray::number(i) + "\r\n";
    QByteArray crOnly;
    for (int i = 0; i < 900; ++i)
        crOnly += "progress " + QByteArray::number(i) + "\r" + (i % 10 == 9 ? "\n" : "");

    QTest::newRow("modem lines") << QByteArray() << numberedLines(1, 2000);
    QTest::newRow("after text") << QByteArray("CMD:abc") << numberedLines(1, 2000);
    QTest::newRow("wrapping lines") << QByteArray("x") << longLines;
    QTest::newRow("tabs and backspaces") << QByteArray("\r\n\r\n") << tabs;
    QTest::newRow("line feeds only") << QByteArray("start") << numberedLines(1, 2000, "\n");
    QTest::newRow("carriage returns") << QByteArray() << crOnly;
    QTest::newRow("sequence at the end")
        << QByteArray() << numberedLines(1, 1500) + "\x1b[1;31mred\x1b[0m\r\n";
    QTest::newRow("sequence in the middle")
        << QByteArray() << numberedLines(1, 700) + "\x1b[5;10r\x1b[4h" + numberedLines(701, 1400);
    QTest::newRow("after a scroll region") << QByteArray("\x1b[3;6r\x1b[6;1H") << numberedLines(1, 2000);
}

void TermEmulatorTest::fastStreamMatchesByteByByte()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, stream);

    TermEmulator burst(25, 80);
    TermEmulator trickle(25, 80);
    burst.setScrollLimit(100);
    trickle.setScrollLimit(100);
    for (TermEmulator *emu : {&burst, &trickle}) {
        emu->write(before);
        emu->process();
    }
    burst.write(stream);
    burst.process();
    for (qsizetype i = 0; i < stream.size(); i += 7) {
        trickle.write(stream.mid(i, 7));
        trickle.process();
    }
    QCOMPARE(visibleState(burst), visibleState(trickle));
}

void TermEmulatorTest::fastStreamIsPassedOverOnlyWhenPlain()
{
    const QByteArray stream = numberedLines(1, 5000);
    TermEmulator plain(25, 80);
    plain.write(stream);
    plain.process();
    // Of 5000 lines only those that can still be seen are interpreted.
    QVERIFY(plain.interpretedBytes() < stream.size() / 5);
    QCOMPARE(plain.takeScrolledLines(), 5000 - 24);

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

void TermEmulatorTest::sequencesSplitAcrossWrites()
{
    TermEmulator emu(25, 80);
    const QByteArray bytes = "\x1b[3;7Hx\x1b[1mbold\xc3\xa9!";
    for (const char c : bytes) {
        emu.write(QByteArrayView(&c, 1));
        emu.process();
    }
    QCOMPARE(emu.rowText(2), QStringLiteral("      xbold\u00e9!"));

    // A limited slice leaves the rest for the next call.
    TermEmulator sliced(25, 80);
    sliced.write("\x1b[1mabcdef");
    QVERIFY(sliced.process(6));
    QCOMPARE(sliced.rowText(0), QStringLiteral("ab"));
    QVERIFY(!sliced.process(100));
    QCOMPARE(sliced.rowText(0), QStringLiteral("abcdef"));
}

void TermEmulatorTest::ttyShowsSequencesAsText()
{
    TermEmulator emu(25, 80);
    emu.setEmulation(TermEmulation::Tty);
    emu.write(TtyFilter("\x1b[2Jab\x1b[1mc\xe9"));
    emu.process();
    QCOMPARE(emu.rowText(0), QStringLiteral("[2Jab[1mc\u00e9"));
    QCOMPARE(emu.cursorKeyBytes(Qt::Key_Up), QByteArray());
}

void TermEmulatorTest::ttyFilter_data()
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

void TermEmulatorTest::ttyFilter()
{
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, output);
    QCOMPARE(TtyFilter(input), output);
}

void TermEmulatorTest::clearScreenKeepsScrollback()
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

void TermEmulatorTest::resizeEmptiesTheScreen()
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

void TermEmulatorTest::bellsAndDamage()
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

void TermEmulatorTest::cursorKeys()
{
    TermEmulator emu(25, 80);
    QCOMPARE(emu.cursorKeyBytes(Qt::Key_Up), QByteArray("\x1b[A"));
    QCOMPARE(emu.cursorKeyBytes(Qt::Key_Left), QByteArray("\x1b[D"));
    emu.write("\x1b[?1h");
    emu.process();
    QCOMPARE(emu.cursorKeyBytes(Qt::Key_Down), QByteArray("\x1bOB"));
    QCOMPARE(emu.cursorKeyBytes(Qt::Key_F5), QByteArray());
    QCOMPARE(emu.takeOutput(), QByteArray());
}

void TermEmulatorTest::wideCharacters()
{
    TermEmulator emu(25, 80);
    emu.write("\xe6\x97\xa5\xe6\x9c\xac!");
    emu.process();
    std::vector<TermCell> cells;
    emu.rowCells(0, cells);
    QCOMPARE(cells[0].ch, U'\u65e5');
    QCOMPARE(cells[1].ch, char32_t(0));
    QCOMPARE(emu.rowText(0), QStringLiteral("\u65e5\u672c!"));
    QCOMPARE(emu.cursorColumn(), 5);
}

QTEST_GUILESS_MAIN(TermEmulatorTest)
#include "TermEmulatorTest.moc"
