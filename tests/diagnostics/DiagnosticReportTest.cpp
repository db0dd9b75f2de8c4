#include "DiagnosticReport.h"
#include "Tables.h"

#include <QTest>

namespace {
// Report text, and the paragraphs the document carries for it.
const char *const kParagraphs[][3] = {
    {"plain line", "Varnel Model Q40U\r\n", "Varnel Model Q40U\\par\r\n"},
    {"empty line", "\r\n\r\n", "\\par\r\n\\par\r\n"},
    {"last line without its end", "A\r\nB", "A\\par\r\nB\\par\r\n"},
    {"markup characters", "{x}\\y", "\\{x\\}\\\\y\\par\r\n"},
    {"tab", "a\tb\r\n", "a\\tab b\\par\r\n"},
    {"western letter", "caf\xc3\xa9\r\n", "caf\\'e9\\par\r\n"},
    {"beyond the code page", "\xe2\x82\xac 5\r\n", "\\u8364? 5\\par\r\n"},
};
const QByteArray kHead =
    "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fmodern\\fcharset0 Courier New;}}\r\n"
    "\\viewkind4\\uc1\\pard\\f0\\fs20 ";
} // namespace

class DiagnosticReportTest : public QObject
{
    Q_OBJECT
private slots:
    void openingAndLines()
    {
        DiagnosticReport report;
        report.AddData(QStringLiteral("lost"));
        report.open(QStringLiteral("11/23/26"), QStringLiteral("08:15:00"));
        report.AddData(asterisks());
        report.AddData(QString());
        QCOMPARE(report.text(),
                 QStringLiteral("Varnel Diagnostics\r\n\r\nTesting Start:  11/23/26   08:15:00\r\n\r\n") +
                     QString(60, u'*') + QStringLiteral("\r\n\r\n"));
    }

    void paragraphs_data() { addRows(kParagraphs); }
    void paragraphs()
    {
        const auto &[name, text, body] = fetchRow(kParagraphs);
        const QString report = QString::fromUtf8(text);
        QCOMPARE(rtfDocument(report), kHead + body + "}\r\n");
        // The viewer reads back what was written, every line with its end.
        QCOMPARE(rtfPlainText(rtfDocument(report)),
                 report.endsWith(QLatin1String("\r\n")) ? report : report + QStringLiteral("\r\n"));
    }

    // A document from another word processor: its tables, generator and formatting are no text.
    void foreignDocument()
    {
        const QByteArray rtf =
            "{\\rtf1\\ansi{\\fonttbl{\\f0\\froman Times;}{\\f1 Arial;}}{\\colortbl;\\red255\\green0\\blue0;}"
            "{\\*\\generator Writer;}{\\info{\\title T}}\\pard\\plain \\f1\\fs24\\b Bold\\b0  text\\line\r\n"
            "next\\par \\cf1 x\\u-4064?y\\'41{\\i z}\\par}";
        QCOMPARE(rtfPlainText(rtf), QStringLiteral("Bold text\r\nnext\r\nx") + QChar(char16_t(-4064)) +
                                        QStringLiteral("yAz\r\n"));
    }
};

QTEST_GUILESS_MAIN(DiagnosticReportTest)
#include "DiagnosticReportTest.moc"
