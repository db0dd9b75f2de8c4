#include "ProgramFile.h"

#include "WholeFile.h"

#include "AppError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {
const QByteArray kLineEnd = QByteArrayLiteral("\r\n");

bool folderOf(const QString &path)
{
    return QFileInfo(path).absoluteDir().exists();
}
} // namespace

QStringList programLinesFromText(const QByteArray &text)
{
    QStringList lines;
    qsizetype start = 0;
    const qsizetype size = text.size();
    while (start < size) {
        qsizetype end = start;
        while (end < size && text[end] != '\r' && text[end] != '\n')
            ++end;
        if (end > start)
            lines.append(QString::fromLatin1(text.mid(start, end - start)));
        // A carriage return and line feed together are one line end.
        if (end + 1 < size && text[end] == '\r' && text[end + 1] == '\n')
            ++end;
        start = end + 1;
    }
    return lines;
}

QByteArray programFileText(const QStringList &lines)
{
    QByteArray text;
    for (const QString &line : lines)
        text += line.toLatin1() + kLineEnd;
    // The one write of the whole text ends with a line end of its own.
    return text + kLineEnd;
}

QString fileDialogFilter(const QString &barSeparated)
{
    const QStringList parts = barSeparated.split(QLatin1Char('|'));
    QStringList rows;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QString description = parts[i];
        QString patterns = parts[i + 1];
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        if (description.isEmpty() && patterns.isEmpty())
            continue;
        // The dialog reads the patterns from the parentheses of the description.
        const QString shown = QLatin1Char('(') + patterns + QLatin1Char(')');
        rows << (description.contains(shown) ? description : description + QLatin1Char(' ') + shown);
    }
    return rows.join(QStringLiteral(";;"));
}

int openErrorNumber(int osError, bool folderExists)
{
    using namespace AppErrors;
    switch (osError) {
    case ENOENT:
        return folderExists ? FileNotFound : PathNotFound;
    case ENOTDIR:
        return PathNotFound;
    case ENAMETOOLONG:
    case EILSEQ:
        return BadFileName;
    case EBUSY:
    case ETXTBSY:
        return FileAlreadyOpen;
    case EACCES:
    case EPERM:
        return PermissionDenied;
    default:
        return PathFileAccess;
    }
}

QString openErrorMessage(int number)
{
    using namespace AppErrors;
    switch (number) {
    case FileNotFound:
        return QStringLiteral("File not found.  Please enter a valid file name.");
    case BadFileName:
        return QStringLiteral("Bad file name.  Please enter a valid file name.");
    case PathNotFound:
        return QStringLiteral("Path not found. Please enter a valid path.");
    case FileAlreadyOpen:
        return QStringLiteral("File already open");
    default:
        return {};
    }
}

bool openErrorAsksAgain(int number)
{
    using namespace AppErrors;
    return number == FileNotFound || number == BadFileName || number == PathNotFound;
}

ProgramFileContents readProgramFile(const QString &path)
{
    ProgramFileContents contents;
    if (path.isEmpty() || path.contains(QChar(0))) {
        contents.errorNumber = AppErrors::BadFileName;
        return contents;
    }
    // The descriptor is opened here rather than by QFile so that the system's reason is at hand.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        contents.errorNumber = openErrorNumber(errno, folderOf(path));
        return contents;
    }
    QFile file;
    if (!file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        contents.errorNumber = AppErrors::PathFileAccess;
        return contents;
    }
    // Once the file is open a read error no longer stops anything: what came before it counts.
    contents.lines = programLinesFromText(file.readAll());
    return contents;
}

void writeProgramFile(const QString &path, const QStringList &lines)
{
    saveWholeFile(path, programFileText(lines));
}
