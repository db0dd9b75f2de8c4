#include "ReportPrint.h"

#include "DiagnosticReport.h"
#include "WholeFile.h"

#include <QBuffer>
#include <QFontDatabase>
#include <QPdfWriter>
#include <QTextDocument>

void printReport(QPagedPaintDevice &device, const QString &text)
{
    QTextDocument document;
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(9);
    document.setDefaultFont(font);
    document.setPlainText(QString(text).remove(u'\r'));
    document.print(&device);
}

QByteArray reportPdf(const QString &text)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter pdf(&buffer);
        pdf.setTitle(QStringLiteral("Varnel Diagnostic Test Results"));
        pdf.setCreator(QStringLiteral("Varnel Utility"));
        printReport(pdf, text);
    }
    return buffer.data();
}

void saveReport(const QString &path, const QString &text)
{
    const bool pdf = path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive);
    saveWholeFile(path, pdf ? reportPdf(text) : rtfDocument(text));
}
