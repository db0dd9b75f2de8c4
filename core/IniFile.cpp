#include "IniFile.h"

#include "TextRules.h"
#include "WholeFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QLockFile>
#include <QStringDecoder>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

// How long a save waits for another program that holds the settings file's lock: far longer than a
// save takes, since the lock is tried again at growing intervals and a busy second writer can keep
// it for a while. A program that died holding it leaves a stale lock, which QLockFile takes at once.
constexpr auto kLockWait = 30s;

enum class LineKind { Other, Section, Key };

// One line of the file as it stands, with its own line end so that untouched lines go back byte for byte,
// and what it says, found once when it is read or changed.
struct Line
{
    QString content;
    QString ending; // "\n", "\r\n", or empty for a last line without one
    LineKind kind = LineKind::Other;
    qsizetype nameFrom = 0, nameSize = 0, valueFrom = 0, valueSize = 0;

    QStringView name() const { return QStringView(content).mid(nameFrom, nameSize); }
    QStringView value() const { return QStringView(content).mid(valueFrom, valueSize); }
};

// What tells a change of the file on disk: a save replaces the file by a new one, and any change moves
// its size or its times.
struct FileStamp
{
    bool exists = false;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    qint64 modified = 0, changed = 0;

    bool operator==(const FileStamp &) const = default;
};

qint64 nanoseconds(const timespec &time)
{
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

FileStamp stampOf(const QString &path)
{
    struct stat st
    {
    };
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return {};
    return {true, st.st_dev, st.st_ino, st.st_size, nanoseconds(st.st_mtim), nanoseconds(st.st_ctim)};
}

QString systemReason(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace

struct IniDocument
{
    FileStamp stamp;
    QList<Line> lines;
    bool byteOrderMark = false;
    bool latin1 = false; // not valid UTF-8: an old single-byte file, written back the same way
    QString unreadable;  // why a file that exists cannot be read; empty when it could, or is missing

    // New lines follow the file's own line ends, so a file from Windows keeps CRLF.
    QString lineEnding() const
    {
        for (const Line &line : lines) {
            if (!line.ending.isEmpty())
                return line.ending;
        }
        return QStringLiteral("\n");
    }
};

namespace {

const QByteArray kUtf8Bom("\xEF\xBB\xBF");

bool isProfileSpace(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == u'\v' || c == u'\f' || c == u'\x1a';
}

QStringView trimmedProfile(QStringView text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && isProfileSpace(text.at(begin)))
        ++begin;
    while (end > begin && isProfileSpace(text.at(end - 1)))
        --end;
    return text.mid(begin, end - begin);
}

Line makeLine(QString content, QString ending)
{
    Line line{std::move(content), std::move(ending)};
    const QStringView text = trimmedProfile(line.content);
    const auto offset = [&](QStringView part) { return qsizetype(part.data() - line.content.constData()); };
    const auto set = [&](LineKind kind, QStringView name, QStringView value) {
        line.kind = kind;
        line.nameFrom = offset(name);
        line.nameSize = name.size();
        line.valueFrom = offset(value);
        line.valueSize = value.size();
    };
    if (text.isEmpty() || text.front() == u';')
        return line;
    if (text.front() == u'[') {
        const qsizetype close = text.lastIndexOf(u']');
        if (close >= 0)
            set(LineKind::Section, trimmedProfile(text.mid(1, close - 1)), text.mid(close));
        return line;
    }
    const qsizetype equals = text.indexOf(u'=');
    if (equals < 0)
        return line;
    const QStringView name = trimmedProfile(text.left(equals));
    if (!name.isEmpty())
        set(LineKind::Key, name, trimmedProfile(text.mid(equals + 1)));
    return line;
}

// The whole file's bytes; a file that exists but cannot be read gives its reason instead.
QByteArray readBytes(const QString &path, QString &unreadable)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        // Only a file that is not there counts as empty.
        if (errno != ENOENT && errno != ENOTDIR)
            unreadable = systemReason(errno);
        return {};
    }
    QByteArray data;
    char chunk[65536];
    for (;;) {
        const ssize_t got = ::read(fd, chunk, sizeof chunk);
        if (got > 0) {
            data.append(chunk, got);
        } else if (got == 0) {
            break;
        } else if (errno != EINTR) {
            unreadable = systemReason(errno);
            data.clear();
            break;
        }
    }
    ::close(fd);
    return data;
}

void readDocument(const QString &path, IniDocument &document)
{
    QByteArray data = readBytes(path, document.unreadable);
    if (data.startsWith(kUtf8Bom)) {
        document.byteOrderMark = true;
        data.remove(0, kUtf8Bom.size());
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    QString text = decoder(data);
    if (decoder.hasError()) {
        document.latin1 = true;
        text = QString::fromLatin1(data);
    }
    data = QByteArray();

    const QString lf = QStringLiteral("\n");
    const QString crlf = QStringLiteral("\r\n");
    qsizetype start = 0;
    while (start < text.size()) {
        const qsizetype newline = text.indexOf(u'\n', start);
        if (newline < 0) {
            document.lines.append(makeLine(text.mid(start), QString()));
            break;
        }
        const bool cr = newline > start && text.at(newline - 1) == u'\r';
        const qsizetype end = cr ? newline - 1 : newline;
        document.lines.append(makeLine(text.mid(start, end - start), cr ? crlf : lf));
        start = newline + 1;
    }
}

QByteArray encodeDocument(const IniDocument &document)
{
    QString text;
    for (const Line &line : document.lines)
        text += line.content + line.ending;
    QByteArray data = document.byteOrderMark ? kUtf8Bom : QByteArray();
    data += document.latin1 ? text.toLatin1() : text.toUtf8();
    return data;
}

bool isLineBreak(QChar c)
{
    return c == u'\r' || c == u'\n' || c == u'\v' || c == u'\f' || c == u'\x85' || c == QChar(0x2028) ||
           c == QChar(0x2029);
}

// What a text would be once passed to the file as a C string on one line: cut at its first zero, without
// line breaks.
QString oneLine(const QString &text)
{
    const qsizetype zero = text.indexOf(QChar(0));
    QString result = zero < 0 ? text : text.left(zero);
    result.removeIf(isLineBreak);
    return result;
}

QString cleanSectionName(const QString &section)
{
    return trimmedProfile(oneLine(section)).toString();
}

// A key can't hold "=", nor start like a section header or a comment, or it would read back as
// something else.
QString cleanKeyName(const QString &key)
{
    QString name = oneLine(key);
    name.remove(u'=');
    QStringView view = trimmedProfile(name);
    while (!view.isEmpty() && (view.front() == u'[' || view.front() == u';' || isProfileSpace(view.front())))
        view = view.mid(1);
    return view.toString();
}

bool sameName(QStringView a, QStringView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// The lines of the first section of that name: header index and the index behind its last line.
struct SectionRange
{
    qsizetype header = -1;
    qsizetype end = -1;
    bool found() const { return header >= 0; }
};

SectionRange findSection(const IniDocument &document, QStringView section)
{
    SectionRange range;
    for (qsizetype i = 0; i < document.lines.size(); ++i) {
        const Line &line = document.lines.at(i);
        if (line.kind != LineKind::Section)
            continue;
        if (range.found()) {
            range.end = i;
            return range;
        }
        if (sameName(line.name(), section))
            range.header = i;
    }
    if (range.found())
        range.end = document.lines.size();
    return range;
}

qsizetype findKey(const IniDocument &document, const SectionRange &range, QStringView key)
{
    for (qsizetype i = range.header + 1; i < range.end; ++i) {
        const Line &line = document.lines.at(i);
        if (line.kind == LineKind::Key && sameName(line.name(), key))
            return i;
    }
    return -1;
}

// The value of a key, without the quotes that may enclose it; empty optional when the key is missing.
std::optional<QString> readValue(const IniDocument &document, const QString &section, const QString &key)
{
    const QString sectionName = cleanSectionName(section);
    const QString keyName = cleanKeyName(key);
    if (sectionName.isEmpty() || keyName.isEmpty())
        return std::nullopt;
    const SectionRange range = findSection(document, sectionName);
    if (!range.found())
        return std::nullopt;
    const qsizetype index = findKey(document, range, keyName);
    if (index < 0)
        return std::nullopt;
    QStringView value = document.lines.at(index).value();
    if (value.size() >= 2 && (value.front() == u'"' || value.front() == u'\'') &&
        value.back() == value.front())
        value = value.mid(1, value.size() - 2);
    return value.toString();
}

QString cutToBuffer(const QString &text, int bufferSize)
{
    if (bufferSize <= 1)
        return QString();
    return text.left(bufferSize - 1);
}

void insertLine(IniDocument &document, qsizetype at, const QString &content, const QString &ending)
{
    if (at > 0 && document.lines[at - 1].ending.isEmpty())
        document.lines[at - 1].ending = ending;
    document.lines.insert(at, makeLine(content, ending));
}

// Changes one key in the document as a write of the classic call changes it in the file.
void applyEntry(IniDocument &document, const IniEntry &entry)
{
    const QString sectionName = cleanSectionName(entry.section);
    const QString keyName = cleanKeyName(entry.key);
    if (sectionName.isEmpty() || keyName.isEmpty())
        return;
    const QString text = oneLine(entry.value);
    const QString ending = document.lineEnding();
    const SectionRange range = findSection(document, sectionName);
    if (range.found()) {
        const qsizetype index = findKey(document, range, keyName);
        if (index >= 0) {
            // The key keeps its spelling in the file; only what stands behind "=" changes.
            Line &line = document.lines[index];
            line = makeLine(line.name().toString() + u'=' + text, line.ending);
        } else {
            qsizetype after = range.header;
            for (qsizetype i = range.header + 1; i < range.end; ++i) {
                if (document.lines.at(i).kind == LineKind::Key)
                    after = i;
            }
            insertLine(document, after + 1, keyName + u'=' + text, ending);
        }
    } else {
        if (!document.lines.isEmpty() && !trimmedProfile(document.lines.last().content).isEmpty())
            insertLine(document, document.lines.size(), QString(), ending);
        insertLine(document, document.lines.size(), u'[' + sectionName + u']', ending);
        insertLine(document, document.lines.size(), keyName + u'=' + text, ending);
    }
}

} // namespace

IniFile::IniFile(const QString &path) : m_path(path) {}

IniFile::~IniFile() = default;

QString IniFile::path() const
{
    return m_path;
}

IniDocument &IniFile::document() const
{
    const FileStamp stamp = stampOf(m_path);
    if (m_document && m_document->stamp == stamp)
        return *m_document;
    m_document = std::make_unique<IniDocument>();
    m_document->stamp = stamp;
    readDocument(m_path, *m_document);
    if (!m_document->unreadable.isEmpty())
        tell(m_toldUnreadable,
             QStringLiteral("The settings file %1 cannot be read (%2): it is left as it is.")
                 .arg(QDir::toNativeSeparators(m_path), m_document->unreadable));
    return *m_document;
}

void IniFile::tell(bool &told, const QString &message) const
{
    if (told || !onTrouble)
        return;
    told = true;
    onTrouble(message);
}

QString IniFile::getString(const QString &section, const QString &key, const QString &defaultValue,
                           int bufferSize) const
{
    QString value = defaultValue;
    while (value.endsWith(u' '))
        value.chop(1);
    if (const auto found = readValue(document(), section, key))
        value = *found;
    return cutToBuffer(value, bufferSize);
}

int IniFile::getInt(const QString &section, const QString &key, int defaultValue) const
{
    const auto found = readValue(document(), section, key);
    return found ? iniNumber(*found) : defaultValue;
}

bool IniFile::hasKey(const QString &section, const QString &key) const
{
    return readValue(document(), section, key).has_value();
}

QStringList IniFile::keys(const QString &section, int bufferSize) const
{
    const QString sectionName = cleanSectionName(section);
    if (sectionName.isEmpty() || bufferSize <= 2)
        return {};
    const IniDocument &file = document();
    const SectionRange range = findSection(file, sectionName);
    if (!range.found())
        return {};
    // The names stand in the buffer one behind the other, each closed by a zero, and a second zero ends
    // the list; when they don't fit, the list is cut to leave room for the two closing zeros.
    QString buffer;
    for (qsizetype i = range.header + 1; i < range.end; ++i) {
        const Line &line = file.lines.at(i);
        if (line.kind == LineKind::Key) {
            buffer += line.name();
            buffer += QChar(0);
        }
    }
    if (buffer.size() + 1 > bufferSize)
        buffer.truncate(bufferSize - 2);
    return buffer.split(QChar(0), Qt::SkipEmptyParts);
}

void IniFile::writeString(const QString &section, const QString &key, const QString &value)
{
    writeStrings({{section, key, value}});
}

void IniFile::writeStrings(const QList<IniEntry> &entries)
{
    const auto unsaved = [this](const QString &reason) {
        tell(m_toldUnsaved, QStringLiteral("The settings cannot be saved to %1 (%2).")
                                .arg(QDir::toNativeSeparators(m_path), reason));
    };
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    QLockFile lock(m_path + QStringLiteral(".lock"));
    // A folder that takes no lock file takes no settings file either: the save below says why.
    if (!lock.tryLock(kLockWait) && lock.error() == QLockFile::LockFailedError)
        return unsaved(QStringLiteral("it is in use by another program"));
    IniDocument &file = document();
    if (!file.unreadable.isEmpty())
        return;
    for (const IniEntry &entry : entries)
        applyEntry(file, entry);
    QString reason;
    if (writeWholeFile(m_path, encodeDocument(file), &reason) != WholeFileResult::Written)
        return unsaved(reason);
    file.stamp = stampOf(m_path);
}

QString programFilePath()
{
    if (QCoreApplication::instance())
        return QCoreApplication::applicationFilePath();
    return QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath();
}

QString iniFileNameFor(const QString &programFileName)
{
    QString name = QFileInfo(programFileName).fileName();
    const qsizetype point = name.indexOf(u'.');
    if (point >= 0)
        name.truncate(point);
    return name + QStringLiteral(".INI");
}

QString GetIniFileName()
{
    QString base = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (base.isEmpty() || QDir::isRelativePath(base))
        base = QDir::homePath() + QStringLiteral("/.config");
    return QDir::cleanPath(base + u'/' + iniFileNameFor(programFilePath()));
}

int iniNumber(QStringView text)
{
    qsizetype i = 0;
    while (i < text.size() && (text.at(i) == u' ' || text.at(i) == u'\t'))
        ++i;
    bool negative = false;
    if (i < text.size() && (text.at(i) == u'-' || text.at(i) == u'+')) {
        negative = text.at(i) == u'-';
        ++i;
    }
    constexpr qint64 limit = qint64(std::numeric_limits<int>::max()) + 1;
    qint64 magnitude = 0;
    for (; i < text.size() && text.at(i) >= u'0' && text.at(i) <= u'9'; ++i)
        magnitude = std::min(limit, magnitude * 10 + (text.at(i).unicode() - u'0'));
    const qint64 value = negative ? -magnitude : magnitude;
    return int(std::clamp<qint64>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

bool iniBool(const QString &text)
{
    return text == QStringLiteral("True") || text == QStringLiteral("-1");
}

QString iniBoolText(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

QString NextIniKey(int &position, const QString &list, const QString &separator)
{
    if (position < 1)
        position = 1;
    const qsizetype from = position - 1;
    // An empty separator finds nothing, so the caller's loop always ends.
    const qsizetype found = separator.isEmpty() || from >= list.size() ? -1 : list.indexOf(separator, from);
    QString item;
    if (found < 0) {
        item = list.mid(from);
        position = int(list.size()) + 1;
    } else {
        item = list.mid(from, found - from);
        position = int(found + separator.size()) + 1;
    }
    if (position > list.size())
        position = 0;
    qsizetype blanks = 0;
    while (blanks < item.size() && item.at(blanks) == u' ')
        ++blanks;
    return item.mid(blanks);
}

QString CleanIniText(QString &text)
{
    qsizetype end = text.size();
    while (end > 0) {
        const QChar c = text.at(end - 1);
        if (c != QChar(0) && c != u'\t' && c != u'\r' && c != u'\n' && c != u' ')
            break;
        --end;
    }
    text.truncate(end);
    text.replace(QChar(0), u' ');
    text.replace(u'~', u' ');
    return trimBlanks(text);
}
