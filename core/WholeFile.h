#pragma once

#include <QByteArray>
#include <QString>

// Writing a user's file whole or not at all: the bytes go to a temporary beside the file and replace
// it only once all of them are written, so a crash or a full disk leaves the old file as it was.
enum class WholeFileResult { Written, CannotOpen, WriteFailed };

WholeFileResult writeWholeFile(const QString &path, const QByteArray &bytes);
