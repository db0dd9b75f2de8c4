#include "CaptureFile.h"
#include "AppError.h"
#include "Tables.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray captured(CaptureMode mode, const QList<QByteArray> &pieces)
{
    CaptureText text(mode);
    QByteArray out;
    for (const QByteArray &piece : pieces)
        out += text.take(piece);
    return out + text.finish();
}

// What the screen was sent, and the text a capture of the mode keeps of it.
struct TextCase
{
    const char *name;
    CaptureMode mode;
    QByteArray shown;
    QByteArray text;
};

constexpr auto V = CaptureMode::Visible;
constexpr auto S = CaptureMode::Standard;

const TextCase kTextCases[] = {
    {"visible lines", V, "CMD:\r\nok\r\n", "CMD:\r\nok\r\n"},
    {"visible sequences", V, "a\x1b[1;31mb\x1b[0m\x1b[2J\0337c\x1b(Bd", "abcd"},
    {"visible title string", V, "a\x1b]0;title\ab\x1b]2;t\x1b\\c", "abc"},
    {"visible controls", V, "a\a\bb\tc\x0e\177d", "ab\tcd"},
    {"visible overwrites kept", V, "abc\rX\n", "abc\rX\n"},
    {"visible utf-8", V, "\xc3\xa9t\xe2\x82\xac\xf0\x9f\x98\x80\xf4\x8f\xbf\xbf",
     "\xc3\xa9t\xe2\x82\xac\xf0\x9f\x98\x80\xf4\x8f\xbf\xbf"},
    {"visible bad utf-8", V, "a\200b", "a\357\277\275b"},
    {"lines", S, "CMD:\r\nok\r\n", "CMD:\r\nok\r\n"},
    {"overwrite", S, "abc\rX\r\n", "Xbc\r\n"},
    {"backspace", S, "abc\b\bZ\r\n", "aZc\r\n"},
    {"backspace at start", S, "\b\bq\r\n", "q\r\n"},
    {"tab", S, "a\tb\r\n", "a       b\r\n"},
    {"tab on a stop", S, "abcdefgh\tb\r\n", "abcdefgh        b\r\n"},
    {"trailing blanks", S, "ab   \r\n", "ab\r\n"},
    {"blanks only", S, " \r\n", "\r\n"},
    {"bare line feed keeps column", S, "ab\ncd\r\n", "ab\r\n  cd\r\n"},
    {"unfinished prompt", S, "ok\r\nCMD:", "ok\r\nCMD:"},
    {"sequences", S, "\x1b[1ma\x1b[0mb\x1b[K\r\n", "ab\r\n"},
    {"empty lines", S, "\r\n\r\n", "\r\n\r\n"},
    {"wide overwrite", S, "\xc3\xa9\xc3\xa9\rx\r\n", "x\xc3\xa9\r\n"},
};

QString error(int number)
{
    return QStringLiteral("error %1").arg(number);
}

} // namespace

class CaptureFileTest : public QObject
{
    Q_OBJECT
private slots:
    void texts_data() { addRows(kTextCases); }
    void texts()
    {
        const TextCase &c = fetchRow(kTextCases);
        QCOMPARE(captured(c.mode, {c.shown}), c.text);
    }

    void piecesMaySplitSequences()
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

    void binaryFileHoldsEveryByte()
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
        QCOMPARE(readBytes(path), all);
        capture.close();
        QVERIFY(!capture.isOpen());
        QCOMPARE(capture.fileName(), QString());
        QCOMPARE(readBytes(path), all);
        // Nothing is written once closed.
        capture.write("late", "late");
        QCOMPARE(readBytes(path), all);
    }

    void existingFileIsContinued()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("CAPTURE.TXT"));
        QVERIFY(writeBytes(path, "earlier\r\n"));
        CaptureFile capture;
        capture.open(path);
        QCOMPARE(capture.mode(), int(CaptureMode::Standard));
        capture.write("later\r\n", "later\r\n");
        capture.close();
        QCOMPARE(readBytes(path), QByteArray("earlier\r\nlater\r\n"));

        // Opening another file closes the first, with its unfinished line.
        const QString other = dir.filePath(QStringLiteral("OTHER.TXT"));
        capture.open(path);
        capture.write("CMD:", "CMD:");
        capture.open(other);
        capture.write("x\r\n", "x\r\n");
        capture.close();
        QCOMPARE(readBytes(path), QByteArray("earlier\r\nlater\r\nCMD:"));
        QCOMPARE(readBytes(other), QByteArray("x\r\n"));
    }

    void modeChangeWhileOpen()
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
        QCOMPARE(readBytes(path), QByteArray("abc\x1b[1m"));
    }

    void failures()
    {
        QTemporaryDir dir;
        CaptureFile capture;
        const auto opening = [&](const QString &path) {
            return outcome([&] {
                capture.open(path);
                return QStringLiteral("opened");
            });
        };
        QCOMPARE(opening(dir.filePath(QStringLiteral("missing/cap.txt"))), error(AppErrors::PathNotFound));
        QVERIFY(!capture.isOpen());
        QCOMPARE(capture.fileName(), QString());
        QCOMPARE(opening(dir.path()), error(AppErrors::PermissionDenied));
        QCOMPARE(outcome([&] {
                     capture.setMode(4);
                     return QStringLiteral("taken");
                 }),
                 error(AppErrors::InvalidPropertyValue));
        QCOMPARE(capture.mode(), int(CaptureMode::Standard));
    }
};

QTEST_GUILESS_MAIN(CaptureFileTest)
#include "CaptureFileTest.moc"
