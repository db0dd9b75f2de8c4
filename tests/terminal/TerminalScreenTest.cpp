#include "TerminalScreen.h"
#include "AppError.h"
#include "MemoryCommControl.h"
#include "TermPalette.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray lines(int from, int to)
{
    QByteArray bytes;
    for (int i = from; i <= to; ++i)
        bytes += "line " + QByteArray::number(i) + "\r\n";
    return bytes;
}

// The colour the screen painted in the middle of a cell.
QColor cellColor(TerminalScreen &screen, int row, int column)
{
    screen.flush();
    const QImage image = screen.viewport()->grab().toImage();
    const QSize cell = screen.cellSize();
    return image.pixelColor(column * cell.width() + cell.width() / 2, row * cell.height() + 1);
}

// Whether any pixel of the cell differs from the cell's corner, i.e. a glyph was drawn.
bool cellHasInk(TerminalScreen &screen, int row, int column)
{
    screen.flush();
    const QImage image = screen.viewport()->grab().toImage();
    const QSize cell = screen.cellSize();
    const QRect rect(column * cell.width(), row * cell.height(), cell.width(), cell.height());
    const QRgb corner = image.pixel(rect.topLeft());
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
            if (image.pixel(x, y) != corner)
                return true;
    return false;
}

} // namespace

class TerminalScreenTest : public QObject
{
    Q_OBJECT
private slots:
    void keyAscii_data();
    void keyAscii();
    void defaults();
    void screenTextAndCursor();
    void sizeChangeKeepsTheText();
    void scrollbackView();
    void selectionWithTheMouse();
    void selectionFollowsScrolledText();
    void paintsColoursThroughTheFilter();
    void paintsTextAndCursor();
    void bellOncePerRepaint();
    void captureThroughTheScreen();
    void longStreamKeepsTheLimit();
    void detachedScreenSendsNothing();
};

void TerminalScreenTest::keyAscii_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("ascii");
    QTest::newRow("letter") << int(Qt::Key_A) << 0 << QStringLiteral("a") << 97;
    QTest::newRow("shifted") << int(Qt::Key_A) << int(Qt::ShiftModifier) << QStringLiteral("A") << 65;
    QTest::newRow("backspace") << int(Qt::Key_Backspace) << 0 << QStringLiteral("\b") << 8;
    QTest::newRow("enter") << int(Qt::Key_Return) << 0 << QStringLiteral("\r") << 13;
    QTest::newRow("keypad enter") << int(Qt::Key_Enter) << 0 << QString() << 13;
    QTest::newRow("escape") << int(Qt::Key_Escape) << 0 << QStringLiteral("\x1b") << 27;
    QTest::newRow("tab") << int(Qt::Key_Tab) << 0 << QStringLiteral("\t") << 9;
    QTest::newRow("ctrl-c") << int(Qt::Key_C) << int(Qt::ControlModifier) << QString() << 3;
    QTest::newRow("ctrl-z") << int(Qt::Key_Z) << int(Qt::ControlModifier) << QString() << 26;
    QTest::newRow("ctrl-[") << int(Qt::Key_BracketLeft) << int(Qt::ControlModifier) << QString() << 27;
    QTest::newRow("ctrl-1") << int(Qt::Key_1) << int(Qt::ControlModifier) << QString() << -1;
    QTest::newRow("latin-1") << int(Qt::Key_Eacute) << 0 << QStringLiteral("\u00e9") << 0xE9;
    QTest::newRow("beyond latin-1") << int(Qt::Key_unknown) << 0 << QStringLiteral("\u20ac") << -1;
    QTest::newRow("delete") << int(Qt::Key_Delete) << 0 << QStringLiteral("\x7f") << -1;
    QTest::newRow("insert") << int(Qt::Key_Insert) << int(Qt::ShiftModifier) << QString() << -1;
    QTest::newRow("function") << int(Qt::Key_F4) << 0 << QString() << -1;
    QTest::newRow("cursor") << int(Qt::Key_Left) << 0 << QString() << -1;
}

void TerminalScreenTest::keyAscii()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, text);
    QFETCH(int, ascii);
    QCOMPARE(KeyAscii(key, Qt::KeyboardModifiers(modifiers), text), ascii);
}

void TerminalScreenTest::defaults()
{
    TerminalScreen screen;
    QCOMPARE(screen.objectName(), QStringLiteral("Comm1"));
    QCOMPARE(screen.Emulation(), 2);
    QCOMPARE(screen.Rows(), 25);
    QCOMPARE(screen.Columns(), 80);
    QCOMPARE(screen.ScrollRows(), 409);
    QCOMPARE(screen.ForeColor(), 15);
    QCOMPARE(screen.BackColor(), 1);
    QCOMPARE(screen.ColorFilter(), 0);
    QCOMPARE(screen.CursorType(), 0);
    QCOMPARE(screen.Backspace(), 0);
    QVERIFY(!screen.Echo());
    QCOMPARE(screen.font().family(), QStringLiteral("Terminal"));
    QCOMPARE(screen.CaptureMode(), 3);
    QCOMPARE(screen.CaptureFilename(), QString());
    // The screen asks for exactly its rows and columns.
    const QSize hint = screen.sizeHint();
    QVERIFY(hint.width() >= 80 * screen.cellSize().width());
    QVERIFY(hint.height() >= 25 * screen.cellSize().height());
    QVERIFY(hint.height() < 26 * screen.cellSize().height());
}

void TerminalScreenTest::screenTextAndCursor()
{
    TerminalScreen screen;
    screen.receive("CMD:model\r\nQ4U");
    QCOMPARE(screen.ScreenText(),
             QStringLiteral("CMD:model\r\nQ4U\r\n") + QStringLiteral("\r\n").repeated(23));
    QCOMPARE(screen.CursorRow(), 2);
    QCOMPARE(screen.CursorCol(), 4);
    screen.setCursorRow(5);
    screen.setCursorCol(10);
    screen.receive("x");
    QCOMPARE(screen.rowText(4), QStringLiteral("         x"));
    screen.setScreenText(QStringLiteral("new\r\ntext"));
    QCOMPARE(screen.rowText(0), QStringLiteral("new"));
    QCOMPARE(screen.rowText(1), QStringLiteral("text"));
    QCOMPARE(screen.rowText(4), QString());
}

void TerminalScreenTest::sizeChangeKeepsTheText()
{
    TerminalScreen screen;
    screen.receive("one\r\n" + QByteArray(50, 'x') + "\r\nthree\r\n\r\n\r\n");
    screen.setColumns(30);
    QCOMPARE(screen.Columns(), 30);
    QCOMPARE(screen.rowText(0), QStringLiteral("one"));
    QCOMPARE(screen.rowText(1), QString(30, u'x'));
    QCOMPARE(screen.rowText(2), QString(20, u'x'));
    QCOMPARE(screen.rowText(3), QStringLiteral("three"));
    QCOMPARE(screen.rowText(4), QString());
    // The cursor stands behind the text, not below the empty lines that were dropped.
    QCOMPARE(screen.CursorRow(), 4);
    QCOMPARE(screen.CursorCol(), 6);

    // Fewer rows push the top of the text into the scroll-back.
    screen.setRows(2);
    QCOMPARE(screen.rowText(0), QString(20, u'x'));
    QCOMPARE(screen.rowText(1), QStringLiteral("three"));
    QCOMPARE(screen.rowText(-1), QString(30, u'x'));
    QCOMPARE(screen.rowText(-2), QStringLiteral("one"));

    // Sizes beyond what the screen can hold are cut.
    screen.setScreenSize(0, 100000);
    QCOMPARE(screen.Rows(), 1);
    QCOMPARE(screen.Columns(), TerminalScreen::kMaxColumns);
}

void TerminalScreenTest::scrollbackView()
{
    TerminalScreen screen;
    screen.setAutoScroll(0);
    screen.receive(lines(1, 100));
    screen.flush();
    QCOMPARE(screen.scrollbackLines(), 76);
    QCOMPARE(screen.topRow(), 0);
    QScrollBar *bar = screen.verticalScrollBar();
    QCOMPARE(bar->maximum(), 76);
    QCOMPARE(bar->value(), 76);

    // Scrolled back, the view stays on the same lines while new ones arrive.
    bar->setValue(10);
    QCOMPARE(screen.topRow(), -66);
    QCOMPARE(screen.rowText(screen.topRow()), QStringLiteral("line 11"));
    screen.receive(lines(101, 105));
    screen.flush();
    QCOMPARE(screen.rowText(screen.topRow()), QStringLiteral("line 11"));

    // Shift+PageDown pages forward; typing returns to the cursor.
    QTest::keyClick(&screen, Qt::Key_PageDown, Qt::ShiftModifier);
    QCOMPARE(screen.rowText(screen.topRow()), QStringLiteral("line 36"));

    // At the bottom the view follows the text.
    bar->setValue(bar->maximum());
    screen.receive(lines(106, 110));
    screen.flush();
    QCOMPARE(screen.topRow(), 0);

    // With AutoScroll new text always brings the view back.
    screen.setAutoScroll(4);
    bar->setValue(0);
    screen.receive(lines(111, 111));
    screen.flush();
    QCOMPARE(screen.topRow(), 0);
    QCOMPARE(screen.rowText(23), QStringLiteral("line 111"));
}

void TerminalScreenTest::selectionWithTheMouse()
{
    TerminalScreen screen;
    screen.resize(screen.sizeHint());
    screen.receive("CMD:rssi\r\nRSSI -72\r\n");
    const QSize cell = screen.cellSize();
    const auto at = [&](int row, int column) {
        return QPoint(column * cell.width() + 1, row * cell.height() + cell.height() / 2);
    };
    QTest::mousePress(screen.viewport(), Qt::LeftButton, {}, at(0, 4));
    QTest::mouseMove(screen.viewport(), at(1, 4));
    QTest::mouseRelease(screen.viewport(), Qt::LeftButton, {}, at(1, 4));
    QCOMPARE(screen.SelText(), QStringLiteral("rssi\r\nRSSI"));
    QCOMPARE(screen.SelLength(), 10);
    // Selected cells are painted reversed.
    QCOMPARE(cellColor(screen, 0, 5), PaletteColor(15));
    QCOMPARE(cellColor(screen, 0, 2), PaletteColor(1));

    // Backwards works the same; a click alone selects nothing.
    screen.select(1, 4, 0, 4);
    QCOMPARE(screen.SelText(), QStringLiteral("rssi\r\nRSSI"));
    QTest::mouseClick(screen.viewport(), Qt::LeftButton, {}, at(0, 1));
    QCOMPARE(screen.SelLength(), 0);
}

void TerminalScreenTest::selectionFollowsScrolledText()
{
    TerminalScreen screen;
    screen.receive(lines(1, 10));
    screen.select(2, 0, 2, 6);
    QCOMPARE(screen.SelText(), QStringLiteral("line 3"));
    screen.receive(lines(11, 40));
    screen.flush();
    QCOMPARE(screen.SelText(), QStringLiteral("line 3"));
}

void TerminalScreenTest::paintsColoursThroughTheFilter()
{
    TerminalScreen screen;
    screen.resize(screen.sizeHint());
    screen.receive("\x1b[5;1H\x1b[41m  \x1b[0m");
    QCOMPARE(cellColor(screen, 0, 0), PaletteColor(1));
    // The modem's own colours come from the emulation's palette.
    const QColor red = cellColor(screen, 4, 0);
    QVERIFY(red.red() > 150 && red.green() == 0 && red.blue() == 0);

    screen.setBackColor(4);
    QCOMPARE(cellColor(screen, 0, 0), QColor(128, 0, 0));
    screen.setColorFilter(1);
    const QColor gray = cellColor(screen, 0, 0);
    QCOMPARE(gray.red(), gray.green());
    QCOMPARE(gray.green(), gray.blue());
    QCOMPARE(gray.red(), qGray(qRgb(128, 0, 0)));
    screen.setColorFilter(2);
    QCOMPARE(cellColor(screen, 0, 0), QColor(Qt::black));
    screen.setBackColor(15);
    screen.setForeColor(0);
    QCOMPARE(cellColor(screen, 0, 0), QColor(Qt::white));

    QCOMPARE(FilterColors(Qt::red, Qt::blue, ColorFilter::Color).fg, QColor(Qt::red));
    QCOMPARE(PaletteColor(17), PaletteColor(1));
    QCOMPARE(PaletteColorNames().size(), 16);
}

void TerminalScreenTest::paintsTextAndCursor()
{
    TerminalScreen screen;
    screen.resize(screen.sizeHint());
    screen.receive("\x1b[?25lAB");
    QVERIFY(cellHasInk(screen, 0, 0));
    QVERIFY(cellHasInk(screen, 0, 1));
    QVERIFY(!cellHasInk(screen, 0, 2));
    screen.receive("\x1b[?25h");
    QVERIFY(cellHasInk(screen, 0, 2)); // the underline cursor
    screen.setCursorType(TerminalScreen::CursorBlock);
    QCOMPARE(cellColor(screen, 0, 2), PaletteColor(15));
    screen.receive("\x1b[?25l");
    QCOMPARE(cellColor(screen, 0, 2), PaletteColor(1));
}

void TerminalScreenTest::bellOncePerRepaint()
{
    TerminalScreen screen;
    QSignalSpy bells(&screen, &TerminalScreen::bell);
    screen.receive("\a\a\a");
    screen.flush();
    QCOMPARE(bells.count(), 1);
    screen.flush();
    QCOMPARE(bells.count(), 1);
}

void TerminalScreenTest::captureThroughTheScreen()
{
    QTemporaryDir dir;
    TerminalScreen screen;
    screen.setCaptureMode(1);
    screen.setCaptureFilename(dir.filePath(QStringLiteral("c.TXT")));
    QCOMPARE(screen.CaptureFilename(), dir.filePath(QStringLiteral("c.TXT")));
    screen.receive(QByteArray("\x1b[1mA\x00", 5));
    screen.setCaptureFilename(QStringLiteral("  "));
    QCOMPARE(screen.CaptureFilename(), QString());
    QFile file(dir.filePath(QStringLiteral("c.TXT")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("\x1b[1mA\x00", 5));

    QVERIFY_THROWS_EXCEPTION(AppError, screen.setCaptureFilename(dir.filePath(QStringLiteral("x/y.TXT"))));
    QCOMPARE(screen.CaptureFilename(), QString());
}

void TerminalScreenTest::longStreamKeepsTheLimit()
{
    TerminalScreen screen;
    for (int chunk = 0; chunk < 20; ++chunk)
        screen.receive(lines(chunk * 1000 + 1, chunk * 1000 + 1000));
    QCOMPARE(screen.rowText(23), QStringLiteral("line 20000"));
    QCOMPARE(screen.scrollbackLines(), 409);
    QCOMPARE(screen.rowText(-409), QStringLiteral("line 19568"));
    screen.setScrollRows(5);
    QCOMPARE(screen.scrollbackLines(), 5);
    QCOMPARE(screen.verticalScrollBar()->maximum(), 5);
}

void TerminalScreenTest::detachedScreenSendsNothing()
{
    MemoryCommControl port;
    port.setPortOpen(true);
    TerminalScreen screen;
    screen.attach(&port);
    port.feed("shown");
    QCOMPARE(screen.rowText(0), QStringLiteral("shown"));
    screen.attach(nullptr);
    port.feed(" not");
    QCOMPARE(screen.rowText(0), QStringLiteral("shown"));
    port.clearEvents();
    QTest::keyClicks(&screen, QStringLiteral("ab"));
    QCOMPARE(port.written(), QByteArray());
}

QTEST_MAIN(TerminalScreenTest)
#include "TerminalScreenTest.moc"
