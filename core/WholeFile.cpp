#include "WholeFile.h"

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
