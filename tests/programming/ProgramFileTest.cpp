#include "ProgramFile.h"
#include "AppError.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <optional>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {
QByteArray readAll(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "<cannot open>";
    return file.readAll();
}

void writeAll(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

// Makes every write to a regular file beyond the limit fail, as a full disk would.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &m_saved);
        m_oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = m_saved;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_saved);
        std::signal(SIGXFSZ, m_oldHandler);
    }

private:
    rlimit m_saved{};
    void (*m_oldHandler)(int) = nullptr;
};
} // namespace

class ProgramFileTest : public QObject
{
    Q_OBJECT
private slots:
    void linesFromText_data();
    void linesFromText();
    void fileText_data();
    void fileText();
    void roundTripKeepsEveryLine_data();
    void roundTripKeepsEveryLine();

    void dialogFilter_data();
    void dialogFilter();

    void openErrorNumber_data();
    void openErrorNumber();
    void openErrorMessages_data();
    void openErrorMessages();

    void readsAFile();
    void readFailuresGiveTheirNumbers();
    void readingAFolderGivesNothing();
    void writesTheWholeText();
    void writeReplacesAnExistingFile();
    void writeIntoMissingFolderFails();
    void failedWriteKeepsTheOldFile_data();
    void failedWriteKeepsTheOldFile();

private:
    QTemporaryDir m_dir;
};

void ProgramFileTest::linesFromText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("carriage return and line feed")
        << QByteArray("ADD 5\r\nNET 12\r\n\r\n") << QStringList{u"ADD 5"_s, u"NET 12"_s};
    QTest::newRow("line feeds only") << QByteArray("ADD 5\nNET 12\n") << QStringList{u"ADD 5"_s, u"NET 12"_s};
    QTest::newRow("carriage returns only")
        << QByteArray("ADD 5\rNET 12\r") << QStringList{u"ADD 5"_s, u"NET 12"_s};
    QTest::newRow("blank lines vanish")
        << QByteArray("\r\n\r\nADD 5\r\n\r\n\r\nNET 12\r\n\r\n") << QStringList{u"ADD 5"_s, u"NET 12"_s};
    QTest::newRow("a line of blanks stays")
        << QByteArray("ADD 5\r\n   \r\nNET 12\r\n") << QStringList{u"ADD 5"_s, u"   "_s, u"NET 12"_s};
    QTest::newRow("last line without line end")
        << QByteArray("ADD 5\r\nNET 12") << QStringList{u"ADD 5"_s, u"NET 12"_s};
    QTest::newRow("case and inner blanks kept")
        << QByteArray("add 5\r\nSETC  255 \r\n") << QStringList{u"add 5"_s, u"SETC  255 "_s};
    QTest::newRow("duplicates kept") << QByteArray("ECHO ON\r\nECHO ON\r\n")
                                     << QStringList{u"ECHO ON"_s, u"ECHO ON"_s};
    QTest::newRow("empty file") << QByteArray() << QStringList{};
    QTest::newRow("only line ends") << QByteArray("\r\n\r\n\n\r") << QStringList{};
    QTest::newRow("bytes above 127 pass through")
        << QByteArray("MESS \xe9t\xe9\r\n") << QStringList{u"MESS \u00e9t\u00e9"_s};
}

void ProgramFileTest::linesFromText()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, lines);
    QCOMPARE(programLinesFromText(text), lines);
}

void ProgramFileTest::fileText_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("two lines") << QStringList{u"ADD 5"_s, u"NET 12"_s}
                               << QByteArray("ADD 5\r\nNET 12\r\n\r\n");
    QTest::newRow("one line") << QStringList{u"save"_s} << QByteArray("save\r\n\r\n");
    QTest::newRow("a line of blanks") << QStringList{u"  "_s} << QByteArray("  \r\n\r\n");
    QTest::newRow("an empty line is written as it stands")
        << QStringList{u"ADD 5"_s, u""_s} << QByteArray("ADD 5\r\n\r\n\r\n");
    QTest::newRow("no lines") << QStringList{} << QByteArray("\r\n");
}

void ProgramFileTest::fileText()
{
    QFETCH(QStringList, lines);
    QFETCH(QByteArray, text);
    QCOMPARE(programFileText(lines), text);
}

void ProgramFileTest::roundTripKeepsEveryLine_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("routes") << QStringList{u"ADD 5"_s, u"ROUTE 40,41,12"_s, u"APPEND 1,2"_s};
    QTest::newRow("lower case") << QStringList{u"add 5"_s, u"echo off"_s};
    QTest::newRow("blanks") << QStringList{u" "_s, u"  SETC 255"_s, u"NET 12  "_s};
    QTest::newRow("one") << QStringList{u"FA"_s};
}

void ProgramFileTest::roundTripKeepsEveryLine()
{
    QFETCH(QStringList, lines);
    const QByteArray text = programFileText(lines);
    // n lines have n line ends plus the one the write adds.
    QCOMPARE(text.count("\r\n"), lines.size() + 1);
    QVERIFY(text.endsWith("\r\n\r\n"));
    QCOMPARE(programLinesFromText(text), lines);
}

void ProgramFileTest::dialogFilter_data()
{
    QTest::addColumn<QString>("bars");
    QTest::addColumn<QString>("filter");
    QTest::newRow("open") << u"Varnel Commands (*.nvc)|*.nvc|Text (*.txt)|*.txt|All (*.*)|*.*"_s
                          << u"Varnel Commands (*.nvc);;Text (*.txt);;All (*.*)"_s;
    QTest::newRow("save, with its closing bar")
        << u"VNL Files (*.nvc)|*.nvc|All files (*.*)|*.*|"_s << u"VNL Files (*.nvc);;All files (*.*)"_s;
    QTest::newRow("description without patterns") << u"Programs|*.nvc"_s << u"Programs (*.nvc)"_s;
    QTest::newRow("several patterns") << u"Texts|*.txt;*.log"_s << u"Texts (*.txt *.log)"_s;
}

void ProgramFileTest::dialogFilter()
{
    QFETCH(QString, bars);
    QFETCH(QString, filter);
    QCOMPARE(fileDialogFilter(bars), filter);
}

void ProgramFileTest::openErrorNumber_data()
{
    QTest::addColumn<int>("osError");
    QTest::addColumn<bool>("folderExists");
    QTest::addColumn<int>("number");
    QTest::newRow("missing file") << ENOENT << true << 53;
    QTest::newRow("missing folder") << ENOENT << false << 76;
    QTest::newRow("file in the way of a folder") << ENOTDIR << true << 76;
    QTest::newRow("name too long") << ENAMETOOLONG << true << 64;
    QTest::newRow("name the file system refuses") << EILSEQ << true << 64;
    QTest::newRow("busy") << EBUSY << true << 55;
    QTest::newRow("no permission") << EACCES << true << 70;
    QTest::newRow("anything else") << EIO << true << 75;
}

void ProgramFileTest::openErrorNumber()
{
    QFETCH(int, osError);
    QFETCH(bool, folderExists);
    QFETCH(int, number);
    QCOMPARE(::openErrorNumber(osError, folderExists), number);
}

void ProgramFileTest::openErrorMessages_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("asksAgain");
    QTest::newRow("53") << 53 << u"File not found.  Please enter a valid file name."_s << true;
    QTest::newRow("64") << 64 << u"Bad file name.  Please enter a valid file name."_s << true;
    QTest::newRow("76") << 76 << u"Path not found. Please enter a valid path."_s << true;
    QTest::newRow("55") << 55 << u"File already open"_s << false;
    QTest::newRow("70 is passed over") << 70 << u""_s << false;
    QTest::newRow("75 is passed over") << 75 << u""_s << false;
    QTest::newRow("no error") << 0 << u""_s << false;
}

void ProgramFileTest::openErrorMessages()
{
    QFETCH(int, number);
    QFETCH(QString, message);
    QFETCH(bool, asksAgain);
    QCOMPARE(openErrorMessage(number), message);
    QCOMPARE(openErrorAsksAgain(number), asksAgain);
}

void ProgramFileTest::readsAFile()
{
    const QString path = m_dir.filePath(QStringLiteral("read.nvc"));
    writeAll(path, "ADD 5\r\n\r\n  \r\nadd 6\r\n\r\n");
    const ProgramFileContents contents = readProgramFile(path);
    QCOMPARE(contents.errorNumber, 0);
    QCOMPARE(contents.lines, (QStringList{u"ADD 5"_s, u"  "_s, u"add 6"_s}));
}

void ProgramFileTest::readFailuresGiveTheirNumbers()
{
    QCOMPARE(readProgramFile(m_dir.filePath(QStringLiteral("none.nvc"))).errorNumber, 53);
    QCOMPARE(readProgramFile(m_dir.filePath(QStringLiteral("nowhere/none.nvc"))).errorNumber, 76);
    QCOMPARE(readProgramFile(m_dir.filePath(QString(300, QLatin1Char('x')))).errorNumber, 64);
    QCOMPARE(readProgramFile(QString()).errorNumber, 64);
    const ProgramFileContents failed = readProgramFile(m_dir.filePath(QStringLiteral("none.nvc")));
    QVERIFY(failed.lines.isEmpty());
}

void ProgramFileTest::readingAFolderGivesNothing()
{
    QVERIFY(QDir(m_dir.path()).mkpath(QStringLiteral("folder.nvc")));
    const ProgramFileContents contents = readProgramFile(m_dir.filePath(QStringLiteral("folder.nvc")));
    QVERIFY(!openErrorAsksAgain(contents.errorNumber));
    QVERIFY(contents.lines.isEmpty());
}

void ProgramFileTest::writesTheWholeText()
{
    const QString path = m_dir.filePath(QStringLiteral("write.nvc"));
    writeProgramFile(path, {u"ADD 5"_s, u"add 6"_s, u" "_s});
    QCOMPARE(readAll(path), QByteArray("ADD 5\r\nadd 6\r\n \r\n\r\n"));
    QCOMPARE(readProgramFile(path).lines, (QStringList{u"ADD 5"_s, u"add 6"_s, u" "_s}));
}

void ProgramFileTest::writeReplacesAnExistingFile()
{
    const QString path = m_dir.filePath(QStringLiteral("replace.nvc"));
    writeAll(path, QByteArray(2000, 'x'));
    writeProgramFile(path, {u"NET 12"_s});
    QCOMPARE(readAll(path), QByteArray("NET 12\r\n\r\n"));
}

void ProgramFileTest::writeIntoMissingFolderFails()
{
    try {
        writeProgramFile(m_dir.filePath(QStringLiteral("nowhere/p.nvc")), {u"ADD 5"_s});
        QFAIL("the write into a missing folder went through");
    } catch (const AppError &error) {
        QCOMPARE(error.number, 76);
        QCOMPARE(error.description, QStringLiteral("Path not found"));
    }
}

void ProgramFileTest::failedWriteKeepsTheOldFile_data()
{
    // The disk fills up before the first byte, or in the middle of the text.
    QTest::addColumn<int>("room");
    QTest::newRow("no room") << 0;
    QTest::newRow("room for four bytes") << 4;
}

void ProgramFileTest::failedWriteKeepsTheOldFile()
{
    QFETCH(int, room);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("keep.nvc"));
    writeAll(path, "OLD 1\r\n\r\n");
    std::optional<AppError> failure;
    {
        // Nothing may be printed while the limit holds: the test's own output may be a file.
        const FileSizeLimit fullDisk{rlim_t(room)};
        try {
            writeProgramFile(path, {u"ADD 5"_s, u"NET 12"_s, u"ROUTE 40,41,12"_s});
        } catch (const AppError &error) {
            failure = error;
        }
    }
    QVERIFY(failure.has_value());
    QCOMPARE(failure->number, 57);
    QCOMPARE(failure->description, QStringLiteral("Device I/O error"));
    QCOMPARE(readAll(path), QByteArray("OLD 1\r\n\r\n"));
    // Nothing half-written is left beside it.
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{u"keep.nvc"_s});
}

QTEST_APPLESS_MAIN(ProgramFileTest)
#include "ProgramFileTest.moc"
