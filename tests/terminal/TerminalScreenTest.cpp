#include "TerminalScreen.h"
#include "AppError.h"
#include "MemoryCommControl.h"
#include "Tables.h"

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

// The selected columns and the cursor of a row as the renderer gets them.
QString marks(const TerminalScreen &screen, int row)
{
    const RowLook look = screen.rowLook(row);
    return QStringLiteral("%1-%2 cursor %3").arg(look.selFrom).arg(look.selTo).arg(look.cursorColumn);
}

} // namespace

class TerminalScreenTest : public QObject
{
    Q_OBJECT
private slots:
    void defaults()
    {
        TerminalScreen screen;
        TermSettings expected;
        expected.font = screen.font();
        QVERIFY(screen.settings() == expected);
        QCOMPARE(screen.font().family(), QStringLiteral("Terminal"));
        QCOMPARE(screen.CaptureMode(), 3);
        QCOMPARE(screen.CaptureFilename(), QString());
        // The screen asks for exactly its rows and columns.
        const QSize hint = screen.sizeHint();
        QVERIFY(hint.width() >= 80 * screen.cellSize().width());
        QVERIFY(hint.height() >= 25 * screen.cellSize().height());
        QVERIFY(hint.height() < 26 * screen.cellSize().height());
    }

    void screenTextAndCursor()
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

    void sizeChangeKeepsTheText()
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

    void scrollbackView()
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

    void selectionWithTheMouse()
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
        // The renderer gets the selected columns of each row, and the cursor where it stands.
        QCOMPARE(marks(screen, 0), QStringLiteral("4-80 cursor -1"));
        QCOMPARE(marks(screen, 1), QStringLiteral("0-4 cursor -1"));
        QCOMPARE(marks(screen, 2), QStringLiteral("-1--1 cursor 0"));
        screen.receive("\x1b[?25l");
        screen.flush();
        QCOMPARE(marks(screen, 2), QStringLiteral("-1--1 cursor -1"));

        // Backwards works the same; a click alone selects nothing.
        screen.select(1, 4, 0, 4);
        QCOMPARE(screen.SelText(), QStringLiteral("rssi\r\nRSSI"));
        QTest::mouseClick(screen.viewport(), Qt::LeftButton, {}, at(0, 1));
        QCOMPARE(screen.SelLength(), 0);
    }

    void selectionFollowsScrolledText()
    {
        TerminalScreen screen;
        screen.receive(lines(1, 10));
        screen.select(2, 0, 2, 6);
        QCOMPARE(screen.SelText(), QStringLiteral("line 3"));
        screen.receive(lines(11, 40));
        screen.flush();
        QCOMPARE(screen.SelText(), QStringLiteral("line 3"));
    }

    // After a screenful of new lines the rows are painted straight into the window's picture; they
    // must look as rows painted through pictures of their own (as a grab paints them).
    void newScreenPaintedStraightIntoTheWindow()
    {
        TerminalScreen screen;
        screen.setColumns(40); // all of it fits in a new window
        screen.show();
        QVERIFY(QTest::qWaitForWindowExposed(&screen));
        screen.receive(lines(1, 60) + "\x1b[7mreversed\x1b[0m \x1b[31mred\x1b[0m");
        screen.flush();
        screen.viewport()->repaint();
        const QRect view(screen.viewport()->mapTo(&screen, QPoint()), screen.viewport()->size());
        const QImage window = screen.screen()->grabWindow(screen.winId()).toImage().copy(view);
        QCOMPARE(window.convertToFormat(QImage::Format_RGB32),
                 screen.grab(view).toImage().convertToFormat(QImage::Format_RGB32));
    }

    void bellOncePerRepaint()
    {
        TerminalScreen screen;
        QSignalSpy bells(&screen, &TerminalScreen::bell);
        screen.receive("\a\a\a");
        screen.flush();
        QCOMPARE(bells.count(), 1);
        screen.flush();
        QCOMPARE(bells.count(), 1);
    }

    void captureThroughTheScreen()
    {
        QTemporaryDir dir;
        TerminalScreen screen;
        screen.setCaptureMode(1);
        screen.setCaptureFilename(dir.filePath(QStringLiteral("c.TXT")));
        QCOMPARE(screen.CaptureFilename(), dir.filePath(QStringLiteral("c.TXT")));
        screen.receive(QByteArray("\x1b[1mA\x00", 5));
        screen.setCaptureFilename(QStringLiteral("  "));
        QCOMPARE(screen.CaptureFilename(), QString());
        QCOMPARE(readBytes(dir.filePath(QStringLiteral("c.TXT"))), QByteArray("\x1b[1mA\x00", 5));

        QVERIFY_THROWS_EXCEPTION(AppError,
                                 screen.setCaptureFilename(dir.filePath(QStringLiteral("x/y.TXT"))));
        QCOMPARE(screen.CaptureFilename(), QString());
    }

    void longStreamKeepsTheLimit()
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

    void detachedScreenSendsNothing()
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
};

QTEST_MAIN(TerminalScreenTest)
#include "TerminalScreenTest.moc"
