#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// The running report of the diagnostics: plain text with a carriage return and a line feed after
// every line. Tests only append to it; the shell never clears it.
class DiagnosticReport
{
public:
    // The opening of a new report: the title and the date and time the testing started, in that order.
    void open(const QString &date, const QString &time);
    // Appends the line and a line end.
    void AddData(const QString &line);
    const QString &text() const { return m_text; }
    void setText(const QString &text) { m_text = text; }

private:
    QString m_text;
};

// A line of count asterisks, the mark in front of every block of the report.
QString asterisks(int count = 60);

// The report as a rich text document that word processors open: one fixed-pitch font, so that the
// columns of the tables stay aligned, and one paragraph a line.
QByteArray rtfDocument(const QString &text);
// The plain text of a rich text document, lines ended by a carriage return and a line feed. Groups of
// fonts, colours, styles and document information are passed over; the rest of the markup is dropped.
QString rtfPlainText(const QByteArray &rtf);
