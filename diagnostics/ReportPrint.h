#pragma once

#include <QByteArray>
#include <QString>

class QPagedPaintDevice;

// The report on paper or in a PDF document: the text in a fixed-pitch font, page after page.
void printReport(QPagedPaintDevice &device, const QString &text);
// The report as a PDF document.
QByteArray reportPdf(const QString &text);
// Saves the report whole, as PDF for a name ending in ".pdf" and as rich text otherwise. A failed save
// throws AppError and leaves an existing file as it was.
void saveReport(const QString &path, const QString &text);
