#include "WholeFile.h"

#include "AppError.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

WholeFileResult writeWholeFile(const QString &path, const QByteArray &bytes, QString *reason)
{
    QSaveFile file(path);
    auto failed = [&](WholeFileResult result) {
        if (reason)
            *reason = file.errorString();
        return result;
    };
    // Unbuffered, so that a failing write is seen here: a buffered one fails only while committing,
    // and the commit then replaces the old file by what little was written.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return failed(WholeFileResult::CannotOpen);
    if (file.write(bytes) != bytes.size() || !file.commit())
        return failed(WholeFileResult::WriteFailed);
    return WholeFileResult::Written;
}

void saveWholeFile(const QString &path, const QByteArray &bytes)
{
    switch (writeWholeFile(path, bytes)) {
    case WholeFileResult::Written:
        return;
    case WholeFileResult::CannotOpen:
        if (!QFileInfo(path).absoluteDir().exists())
            throw AppError{AppErrors::PathNotFound, QStringLiteral("Path not found")};
        throw AppError{AppErrors::PathFileAccess, QStringLiteral("Path/File access error")};
    case WholeFileResult::WriteFailed:
        throw AppError{AppErrors::DeviceIo, QStringLiteral("Device I/O error")};
    }
}
