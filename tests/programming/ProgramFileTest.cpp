#include "ProgramFile.h"

#include "IniFile.h"
#include "Tables.h"

#include <QDir>
#include <QTemporaryDir>

#include <cerrno>
#include <csignal>
#include <sys/resource.h>

namespace {
// Command lines (joined by " | ") and the text of their file: written ("->"), read ("<-"), or both.
const char *const kTexts[][4] = {
    {"two lines", "<->", "ADD 5 | NET 12", "ADD 5\r\nNET 12\r\n\r\n"},
    {"one line", "<->", "save", "save\r\n\r\n"},
    {"a line of blanks stays", "<->", "ADD 5 |     | NET 12", "ADD 5\r\n   \r\nNET 12\r\n\r\n"},
    {"case and inner blanks kept", "<->", "add 5 | SETC  255 ", "add 5\r\nSETC  255 \r\n\r\n"},
    {"duplicates kept", "<->", "ECHO ON | ECHO ON", "ECHO ON\r\nECHO ON\r\n\r\n"},
    {"no lines", "<->", "", "\r\n"},
    {"an empty line is written as it stands", "->", "ADD 5 | ", "ADD 5\r\n\r\n\r\n"},
    {"line feeds only", "<-", "ADD 5 | NET 12", "ADD 5\nNET 12\n"},
    {"carriage returns only", "<-", "ADD 5 | NET 12", "ADD 5\rNET 12\r"},
    {"blank lines vanish", "<-", "ADD 5 | NET 12", "\r\n\r\nADD 5\r\n\r\n\r\nNET 12\r\n\r\n"},
    {"last line without line end", "<-", "ADD 5 | NET 12", "ADD 5\r\nNET 12"},
    {"only line ends", "<-", "", "\r\n\r\n\n\r"},
    {"bytes above 127 pass through", "<->", "MESS \xe9t\xe9", "MESS \xe9t\xe9\r\n\r\n"},
};

// The program's bar-separated filters and the dialog's form.
const char *const kFilters[][2] = {
    {"Varnel Commands (*.nvc)|*.nvc|Text (*.txt)|*.txt|All (*.*)|*.*",
     "Varnel Commands (*.nvc);;Text (*.txt);;All (*.*)"},
    {"VNL Files (*.nvc)|*.nvc|All files (*.*)|*.*|", "VNL Files (*.nvc);;All files (*.*)"},
    {"Programs|*.nvc", "Programs (*.nvc)"},
    {"Texts|*.txt;*.log", "Texts (*.txt *.log)"},
};

// Every failure of a user's file, for the program file and the settings file alike: an operation on
// a name ("<long>" a name of 300, "<longest>" the longest a folder takes, which leaves no room for a
// temporary beside it), with the old file's bytes (null: none), the disk's room (-1: enough); what
// the operation gives (the lines read, or "error N"), the file after, and the box Open shows.

const char *const kOld = "OLD 1\r\n\r\n";
const char *const kOldSettings = "[Application]\r\nHide Intro=False\r\n";

const char *const kFileCases[][7] = {
    {"read", "read", "p.nvc", "ADD 5\r\n\r\n  \r\nadd 6\r\n", "-1", "ADD 5 |    | add 6",
     "ADD 5\r\n\r\n  \r\nadd 6\r\n"},
    {"read a missing file", "read", "none.nvc", nullptr, "-1", "error 53", "<no file>"},
    {"read in a missing folder", "read", "nowhere/none.nvc", nullptr, "-1", "error 76", "<no file>"},
    {"read behind a file", "read", "p.nvc/none.nvc", nullptr, "-1", "error 76", "<no file>"},
    {"read a name too long", "read", "<long>", nullptr, "-1", "error 64", "<no file>"},
    {"read no name", "read", "", nullptr, "-1", "error 64", "<no file>"},
    {"read a folder", "read", "folder.nvc", nullptr, "-1", "", "<no file>"},
    {"write replaces a file", "write", "p.nvc", "OLD CONTENT THAT IS LONGER THAN THE NEW\r\n", "-1", "",
     "ADD 5\r\nNET 12\r\n\r\n"},
    {"write into a missing folder", "write", "nowhere/p.nvc", nullptr, "-1", "error 76", "<no file>"},
    {"write onto a folder", "write", "folder.nvc", nullptr, "-1", "error 75", "<no file>"},
    {"write without room for the temporary", "write", "<longest>", kOld, "-1", "error 57", kOld},
    {"write on a full disk", "write", "p.nvc", kOld, "0", "error 57", kOld},
    {"write on a disk that fills up", "write", "p.nvc", kOld, "4", "error 57", kOld},
    {"settings into a new folder", "settings", "config/deeper/v.INI", nullptr, "-1", "",
     "[Application]\nHide Intro=True\n"},
    {"settings onto a folder", "settings", "folder.nvc", nullptr, "-1", "", "<no file>"},
    {"settings without room for the temporary", "settings", "<longest>", kOldSettings, "-1", "",
     kOldSettings},
    {"settings on a full disk", "settings", "v.INI", kOldSettings, "0", "", kOldSettings},
};

// Makes every write to a regular file beyond the limit fail, as a full disk would. Nothing may be
// printed while it holds: the test's own output may be a file.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(int bytes)
    {
        getrlimit(RLIMIT_FSIZE, &m_saved);
        m_oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = m_saved;
        limit.rlim_cur = rlim_t(bytes);
        if (bytes >= 0)
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
    void texts_data() { addRows(kTexts); }
    void texts()
    {
        const auto &[name, way, text, bytes] = fetchRow(kTexts);
        const QString lines = QString::fromLatin1(text);
        if (way[2] == '>')
            QCOMPARE(programFileText(lines.isEmpty() ? QStringList() : lines.split(QStringLiteral(" | "))),
                     QByteArray(bytes));
        if (way[0] == '<')
            QCOMPARE(programLinesFromText(bytes), lines.split(QStringLiteral(" | "), Qt::SkipEmptyParts));
    }

    void dialogFilters()
    {
        for (const auto &[bars, filter] : kFilters)
            QCOMPARE(fileDialogFilter(QLatin1String(bars)), QLatin1String(filter));
    }

    void openErrors()
    {
        // Open tells the user about four numbers and asks again for a name after three of them.
        QStringList told;
        for (const int number : {53, 64, 76, 55, 70, 75, 0})
            told << QStringLiteral("%1 %2 %3")
                        .arg(number)
                        .arg(openErrorAsksAgain(number))
                        .arg(openErrorMessage(number));
        QCOMPARE(told, (QStringList{QStringLiteral("53 1 File not found.  Please enter a valid file name."),
                                    QStringLiteral("64 1 Bad file name.  Please enter a valid file name."),
                                    QStringLiteral("76 1 Path not found. Please enter a valid path."),
                                    QStringLiteral("55 0 File already open"), QStringLiteral("70 0 "),
                                    QStringLiteral("75 0 "), QStringLiteral("0 0 ")}));
        QCOMPARE(openErrorNumber(EBUSY, true), 55);
        QCOMPARE(openErrorNumber(EACCES, true), 70);
        QCOMPARE(openErrorNumber(EIO, true), 75);
        QCOMPARE(openErrorNumber(EILSEQ, true), 64);
    }

    void fileFailures_data() { addRows(kFileCases); }
    void fileFailures()
    {
        const auto &[row, operationName, file, before, room, expected, after] = fetchRow(kFileCases);
        QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkpath(QStringLiteral("folder.nvc")) &&
                writeBytes(dir.filePath(QStringLiteral("p.nvc")), before ? before : ""));
        QString name = QString::fromLatin1(file);
        name = name == u"<long>"      ? QString(300, u'x')
               : name == u"<longest>" ? QString(251, u'v') + QStringLiteral(".nvc")
                                      : name;
        const QString path = name.isEmpty() ? QString() : dir.filePath(name);
        if (before && name != u"p.nvc")
            QVERIFY(writeBytes(path, before));
        const QString operation = QLatin1String(operationName);
        QString result;
        {
            const FileSizeLimit disk(atoi(room));
            result = outcome([&] {
                if (operation == u"read") {
                    const ProgramFileContents contents = readProgramFile(path);
                    return contents.errorNumber ? QStringLiteral("error %1").arg(contents.errorNumber)
                                                : contents.lines.join(QStringLiteral(" | "));
                }
                if (operation == u"write")
                    writeProgramFile(path, {QStringLiteral("ADD 5"), QStringLiteral("NET 12")});
                else
                    IniFile(path).writeString(QStringLiteral("Application"), QStringLiteral("Hide Intro"),
                                              QStringLiteral("True"));
                return QString();
            });
        }
        QCOMPARE(result, QLatin1String(expected));
        QCOMPARE(QString::fromLatin1(readBytes(path)), QString::fromLatin1(after));
        // Nothing half-written is left beside the file.
        QStringList left = QDir(dir.path()).entryList(QDir::Files | QDir::Hidden);
        left.removeOne(QStringLiteral("p.nvc"));
        left.removeOne(name);
        QCOMPARE(left, QStringList());
    }
};

QTEST_APPLESS_MAIN(ProgramFileTest)
#include "ProgramFileTest.moc"
