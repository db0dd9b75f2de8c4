#include "AppError.h"
#include "DiagnosticReport.h"
#include "ReportPrint.h"
#include "Tables.h"

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {
// Runs a converter and gives its exit status; the output file is what counts.
bool run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(150000) && process.exitStatus() == QProcess::NormalExit;
}

// A report with every kind of line: opening, identity, a test block, blanks, markup characters.
DiagnosticReport sampleReport()
{
    DiagnosticReport report;
    report.open(QStringLiteral("11/23/26"), QStringLiteral("08:15:00"));
    for (const char *line :
         {"Varnel Model Q40U", "Serial Number=  Q40U14210", "Firmware Version=  1.52",
          "Operating Frequency= 451.025 MHz", "", "{braces} and \\ back", "caf\xc3\xa9 ends"})
        report.AddData(QString::fromUtf8(line));
    report.AddData(asterisks());
    report.AddData(QStringLiteral("     1            12          Link Down       08:15:05  11/23/26"));
    return report;
}

QStringList reportLines(const DiagnosticReport &report)
{
    QStringList lines = report.text().split(QStringLiteral("\r\n"));
    lines.removeLast();
    return lines;
}
} // namespace

class ReportFileTest : public QObject
{
    Q_OBJECT
private slots:
    // The saved document opens in a word processor with every line as it stands.
    void richTextOpensInWriter()
    {
        QTemporaryDir dir;
        const DiagnosticReport report = sampleReport();
        saveReport(dir.filePath(QStringLiteral("site.rtf")), report.text());
        QVERIFY(
            run(QStringLiteral("soffice"),
                {QStringLiteral("-env:UserInstallation=file://") + dir.filePath(QStringLiteral("profile")),
                 QStringLiteral("--headless"), QStringLiteral("--convert-to"),
                 QStringLiteral("txt:Text (encoded):UTF8"), QStringLiteral("--outdir"), dir.path(),
                 dir.filePath(QStringLiteral("site.rtf"))}));
        QByteArray text = readBytes(dir.filePath(QStringLiteral("site.txt")));
        QVERIFY2(text.startsWith("\xef\xbb\xbf"), text.left(40).constData());
        QStringList lines = QString::fromUtf8(text.mid(3)).split(QRegularExpression(QStringLiteral("\r?\n")));
        if (lines.last().isEmpty())
            lines.removeLast();
        QCOMPARE(lines, reportLines(report));
    }

    void pdfTextReadsBack()
    {
        QTemporaryDir dir;
        const DiagnosticReport report = sampleReport();
        saveReport(dir.filePath(QStringLiteral("site.pdf")), report.text());
        QVERIFY(run(QStringLiteral("pdftotext"),
                    {QStringLiteral("-layout"), dir.filePath(QStringLiteral("site.pdf")),
                     dir.filePath(QStringLiteral("site.txt"))}));
        // The layout keeps the words of every line in order, not the count of blanks between them; the
        // page number stands at the foot of the page.
        const auto words = [](const QStringList &lines) {
            QStringList out;
            for (const QString &line : lines)
                if (!line.simplified().isEmpty())
                    out << line.simplified();
            return out;
        };
        QCOMPARE(words(QString::fromUtf8(readBytes(dir.filePath(QStringLiteral("site.txt")))).split(u'\n')),
                 words(reportLines(report) << QStringLiteral("1")));
    }

    // A save that fails says why and leaves the old file whole.
    void failedSaveKeepsTheOldFile()
    {
        QTemporaryDir dir;
        const QString old = dir.filePath(QStringLiteral("old.rtf"));
        QVERIFY(writeBytes(old, "old report"));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("folder.rtf")));
        QCOMPARE(outcome([&] {
                     return saveReport(dir.filePath(QStringLiteral("folder.rtf")), QStringLiteral("x")),
                            QString();
                 }),
                 QStringLiteral("error 75"));
        QCOMPARE(outcome([&] {
                     return saveReport(dir.filePath(QStringLiteral("no/such.rtf")), QStringLiteral("x")),
                            QString();
                 }),
                 QStringLiteral("error 76"));
        QCOMPARE(readBytes(old), QByteArray("old report"));
    }
};

QTEST_MAIN(ReportFileTest)
#include "ReportFileTest.moc"
