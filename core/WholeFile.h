#pragma once

#include <QByteArray>
#include <QString>

// Writing a user's file whole or not at all: the bytes go to a temporary beside the file and replace
// it only once all of them are written, so a crash or a full disk leaves the old file as it was.
enum class WholeFileResult { Written, CannotOpen, WriteFailed };

// A failure's reason, in the system's words, goes to reason when one is given.
WholeFileResult writeWholeFile(const QString &path, const QByteArray &bytes, QString *reason = nullptr);

// The same for a routine under the standard error box: a failure throws AppError with the number the
// user has always seen for it (path not found, path/file access error, device I/O error).
void saveWholeFile(const QString &path, const QByteArray &bytes);
