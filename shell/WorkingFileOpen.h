#pragma once

#include <QString>
#include <functional>

// Opening a document with the application the desktop has for its type, and finding the product's
// disc among the mounted media.

// The mount points of optical media in a mounts table (the text of /proc/self/mounts): devices
// /dev/sr*, /dev/cdrom* and file systems iso9660 and udf.
QStringList opticalMountPoints(const QString &mountsTable);

// Sets rootPath to the root of the first optical medium ("/media/cdrom/"); leaves it alone if there is none.
void FindCdDrive(QString &rootPath);

// Opens the file with the desktop's handler for its type, never through a shell. True if a handler was
// started. Tests replace the opener.
bool OpenWithAssociation(const QString &fileName);
std::function<bool(const QString &fileName)> &desktopOpener();

// The steps of the main menu's Product Information: the box text to show, or an empty text when the
// documentation was opened.
QString productInformationMessage(const QString &cdRoot);
