#include "CaptureFile.h"
#include "AppError.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

QByteArray captured(CaptureMode mode, const QList<QByteArray> &pieces)
{
    CaptureText text(mode);
    QByteArray out;
    for (const QByteArray &piece : pieces)
        out += text.take(piece);
    return out + text.finish();
}

} // namespace

class CaptureFileTest : public QObject
{
    Q_OBJECT
private slots:
    void modeNames();
    void visibleText_data();
    void visibleText();
    void standardText_data();
    void standardText();
    void piecesMaySplitSequences();
    void binaryFileHoldsEveryByte();
    void textFilesHoldWhatTheScreenShows();
    void existingFileIsContinued();
    void modeChangeWhileOpen();
    void failures();
};

void CaptureFileTest::modeNames()
{
    QCOMPARE(captureModeName(1), QStringLiteral("BINARY"));
    QCOMPARE(captureModeName(2), QStringLiteral("VISIBLE"));
    QCOMPARE(captureModeName(3), QStringLiteral("STANDARD"));
    QCOMPARE(captureModeName(0), QString());
    QCOMPARE(captureModeName(4), QString());
}

void CaptureFileTest::visibleText_data()
{
    QTest::addColumn<QByteArray>("shown");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("lines") << QByteArray("CMD:\r\nok\r\n") << QByteArray("CMD:\r\nok\r\n");
    QTest::newRow("sequences") << QByteArray("a\x1b[1;31mb\x1b[0m\x1b[2J\x1b"
                                             "7c\x1b(Bd")
                               << QByteArray("abcd");
    QTest::newRow("title string") << QByteArray("a\x1b]0;title\x07"
                                                "b\x1b]2;t\x1b\\c")
                                  << QByteArray("abc");
    QTest::newRow("controls") << QByteArray("a\a\bb\tc\x0e\x7f"
                                            "d")
                              << QByteArray("ab\tcd");
    QTest::newRow("overwrites kept") << QByteArray("abc\rX\n") << QByteArray("abc\rX\n");
    QTest::newRow("utf-8") << QByteArray("\xc3\xa9t\xe2\x82\xac\xf0\x9f\x98\x80\xf4\x8f\xbf\xbf")
                           << QByteArray("\xc3\xa9t\xe2\x82\xac\xf0\x9f\x98\x80\xf4\x8f\xbf\xbf");
    QTest::newRow("bad utf-8") << QByteArray("a\x80"
                                             "b")
                               << QByteArray("a\xef\xbf\xbd"
                                             "b");
}

void CaptureFileTest::visibleText()
{
    QFETCH(QByteArray, shown);
    QFETCH(QByteArray, text);
    QCOMPARE(captured(CaptureMode::Visible, {shown}), text);
}

void CaptureFileTest::standardText_data()
{
    QTest::addColumn<QByteArray>("shown");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("lines") << QByteArray("CMD:\r\nok\r\n") << QByteArray("CMD:\r\nok\r\n");
    QTest::newRow("overwrite") << QByteArray("abc\rX\r\n") << QByteArray("Xbc\r\n");
    QTest::newRow("backspace") << QByteArray("abc\b\bZ\r\n") << QByteArray("aZc\r\n");
    QTest::newRow("backspace at start") << QByteArray("\b\bq\r\n") << QByteArray("q\r\n");
    QTest::newRow("tab") << QByteArray("a\tb\r\n") << QByteArray("a       b\r\n");
    QTest::newRow("tab on a stop") << QByteArray("abcdefgh\tb\r\n") << QByteArray("abcdefgh        b\r\n");
    QTest::newRow("trailing blanks") << QByteArray("ab   \r\n") << QByteArray("ab\r\n");
    QTest::newRow("blanks only") << QByteArray(" \r\n") << QByteArray("\r\n");
    QTest::newRow("bare line feed keeps column") << QByteArray("ab\ncd\r\n") << QByteArray("ab\r\n  cd\r\n");
    QTest::newRow("unfinished prompt") << QByteArray("ok\r\nCMD:") << QByteArray("ok\r\nCMD:");
    QTest::newRow("sequences") << QByteArray("\x1b[1ma\x1b[0mb\x1b[K\r\n") << QByteArray("ab\r\n");
    QTest::newRow("empty lines") << QByteArray("\r\n\r\n") << QByteArray("\r\n\r\n");
    QTest::newRow("wide overwrite") << QByteArray("\xc3\xa9\xc3\xa9\rx\r\n") << QByteArray("x\xc3\xa9\r\n");
}

void CaptureFileTest::standardText()
{
    QFETCH(QByteArray, shown);
    QFETCH(QByteArray, text);
    QCOMPARE(captured(CaptureMode::Standard, {shown}), text);
}

void CaptureFileTest::piecesMaySplitSequences()
{
    const QByteArray whole = "a\x1b[1;31mb\xc3\xa9\r\nc\x1b]0;t\x07"
                             "d\r\n";
    QList<QByteArray> bytes;
    for (const char c : whole)
        bytes << QByteArray(1, c);
    for (const CaptureMode mode : {CaptureMode::Visible, CaptureMode::Standard})
        QCOMPARE(captured(mode, bytes), captured(mode, {whole}));
    QCOMPARE(captured(CaptureMode::Standard, bytes), QByteArray("ab\xc3\xa9\r\ncd\r\n"));
}

void CaptureFileTest::binaryFileHoldsEveryByte()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("cap.txt"));
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all.append(char(i));
    CaptureFile capture;
    capture.setMode(int(CaptureMode::Binary));
    capture.open(path);
    QVERIFY(capture.isOpen());
    QCOMPARE(capture.fileName(), path);
    capture.write(all.left(100), "ignored");
    capture.write(all.mid(100), "ignored");
    capture.flush();
    QCOMPARE(readAll(path), all);
    capture.close();
    QVERIFY(!capture.isOpen());
    QCOMPARE(capture.fileName(), QString());
    QCOMPARE(readAll(path), all);
    // Nothing is written once closed.
    capture.write("late", "late");
    QCOMPARE(readAll(path), all);
}

void CaptureFileTest::textFilesHoldWhatTheScreenShows()
{
    QTemporaryDir dir;
    const QByteArray raw = "\x1b[2Jrssi -72\r\nabc\rX\r\nCMD:";
    for (const auto &[mode, expected] :
         {std::pair{CaptureMode::Visible, QByteArray("rssi -72\r\nabc\rX\r\nCMD:")},
          std::pair{CaptureMode::Standard, QByteArray("rssi -72\r\nXbc\r\nCMD:")}}) {
        const QString path = dir.filePath(captureModeName(int(mode)));
        CaptureFile capture;
        capture.setMode(int(mode));
        capture.open(path);
        capture.write(raw, raw);
        capture.close();
        QCOMPARE(readAll(path), expected);
    }
}

void CaptureFileTest::existingFileIsContinued()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("CAPTURE.TXT"));
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("earlier\r\n");
    }
    CaptureFile capture;
    capture.open(path);
    QCOMPARE(capture.mode(), int(CaptureMode::Standard));
    capture.write("later\r\n", "later\r\n");
    capture.close();
    QCOMPARE(readAll(path), QByteArray("earlier\r\nlater\r\n"));

    // Opening another file closes the first, with its unfinished line.
    const QString other = dir.filePath(QStringLiteral("OTHER.TXT"));
    capture.open(path);
    capture.write("CMD:", "CMD:");
    capture.open(other);
    capture.write("x\r\n", "x\r\n");
    capture.close();
    QCOMPARE(readAll(path), QByteArray("earlier\r\nlater\r\nCMD:"));
    QCOMPARE(readAll(other), QByteArray("x\r\n"));
}

void CaptureFileTest::modeChangeWhileOpen()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("cap.txt"));
    CaptureFile capture;
    capture.setMode(int(CaptureMode::Standard));
    capture.open(path);
    capture.write("abc", "abc");
    capture.setMode(int(CaptureMode::Binary));
    capture.write("\x1b[1m", "\x1b[1m");
    capture.close();
    QCOMPARE(readAll(path), QByteArray("abc\x1b[1m"));
}

void CaptureFileTest::failures()
{
    QTemporaryDir dir;
    CaptureFile capture;
    try {
        capture.open(dir.filePath(QStringLiteral("missing/cap.txt")));
        QFAIL("a file in a missing folder was opened");
    } catch (const AppError &error) {
        QCOMPARE(error.number, AppErrors::PathNotFound);
    }
    QVERIFY(!capture.isOpen());
    QCOMPARE(capture.fileName(), QString());
    try {
        capture.open(dir.path());
        QFAIL("a folder was opened as a capture file");
    } catch (const AppError &error) {
        QCOMPARE(error.number, AppErrors::PermissionDenied);
    }
    try {
        capture.setMode(4);
        QFAIL("mode 4 was taken");
    } catch (const AppError &error) {
        QCOMPARE(error.number, AppErrors::InvalidPropertyValue);
    }
    QCOMPARE(capture.mode(), int(CaptureMode::Standard));
}

QTEST_GUILESS_MAIN(CaptureFileTest)
#include "CaptureFileTest.moc"
