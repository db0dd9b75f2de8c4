#include "CaptureFile.h"

#include "AppError.h"

#include <QDir>
#include <QFileInfo>

namespace {

constexpr char kEsc = 0x1B;
constexpr char32_t kReplacement = 0xFFFD;

void appendUtf8(char32_t ch, QByteArray &out)
{
    if (ch < 0x80) {
        out.append(char(ch));
        return;
    }
    out.append(QString::fromUcs4(&ch, 1).toUtf8());
}

int utf8Length(uchar lead)
{
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    if (lead >= 0xF0 && lead <= 0xF4)
        return 4;
    return 0;
}

} // namespace

QString captureModeName(int mode)
{
    switch (mode) {
    case int(CaptureMode::Binary):
        return QStringLiteral("BINARY");
    case int(CaptureMode::Visible):
        return QStringLiteral("VISIBLE");
    case int(CaptureMode::Standard):
        return QStringLiteral("STANDARD");
    default:
        return {};
    }
}

QByteArray CaptureText::take(QByteArrayView shown)
{
    QByteArray out;
    for (const char c : shown) {
        const auto b = uchar(c);
        switch (m_escape) {
        case Escape::None:
            break;
        case Escape::Start:
            if (c == '[')
                m_escape = Escape::Csi;
            else if (c == ']' || c == 'P' || c == 'X' || c == '^' || c == '_')
                m_escape = Escape::String;
            else if (c == kEsc)
                m_escape = Escape::Start;
            else if (b < 0x20 || b > 0x2F) // intermediates keep the sequence open until its final byte
                m_escape = Escape::None;
            continue;
        case Escape::Csi:
            if (c == kEsc)
                m_escape = Escape::Start;
            else if (b >= 0x40 && b <= 0x7E)
                m_escape = Escape::None;
            else if (b < 0x20)
                control(c, out); // controls within a sequence still act, as on the screen
            continue;
        case Escape::String:
            if (c == '\a')
                m_escape = Escape::None;
            else if (c == kEsc)
                m_escape = Escape::StringEnd;
            continue;
        case Escape::StringEnd:
            m_escape = Escape::None;
            continue;
        }

        if (!m_utf8.isEmpty()) {
            if ((b & 0xC0) == 0x80) {
                m_utf8.append(c);
                if (m_utf8.size() == utf8Length(uchar(m_utf8[0]))) {
                    const QList<uint> ucs = QString::fromUtf8(m_utf8).toUcs4();
                    character(ucs.isEmpty() ? kReplacement : char32_t(ucs[0]), out);
                    m_utf8.clear();
                }
                continue;
            }
            character(kReplacement, out);
            m_utf8.clear();
        }
        if (b >= 0x80) {
            if (utf8Length(b) > 0)
                m_utf8.append(c);
            else
                character(kReplacement, out);
        } else if (c == kEsc) {
            m_escape = Escape::Start;
        } else if (b < 0x20 || b == 0x7F) {
            control(c, out);
        } else {
            character(char32_t(b), out);
        }
    }
    return out;
}

void CaptureText::character(char32_t ch, QByteArray &out)
{
    if (m_mode != CaptureMode::Standard) {
        appendUtf8(ch, out);
        return;
    }
    if (m_column < m_line.size())
        m_line[m_column] = ch;
    else {
        m_line.resize(m_column, U' ');
        m_line.push_back(ch);
    }
    ++m_column;
}

void CaptureText::control(char c, QByteArray &out)
{
    if (m_mode != CaptureMode::Standard) {
        if (c == '\r' || c == '\n' || c == '\t')
            out.append(c);
        return;
    }
    switch (c) {
    case '\r':
        m_column = 0;
        break;
    case '\n':
        // The screen's cursor keeps its column on a bare line feed; so does the next line here.
        out += lineBytes() + "\r\n";
        m_line.clear();
        break;
    case '\b':
        if (m_column > 0)
            --m_column;
        break;
    case '\t':
        m_column = (m_column / 8 + 1) * 8;
        break;
    default:
        break;
    }
}

QByteArray CaptureText::lineBytes() const
{
    size_t length = m_line.size();
    while (length > 0 && m_line[length - 1] == U' ')
        --length;
    return QString::fromUcs4(m_line.data(), qsizetype(length)).toUtf8();
}

QByteArray CaptureText::finish()
{
    QByteArray rest = m_mode == CaptureMode::Standard ? lineBytes() : QByteArray();
    m_line.clear();
    m_column = 0;
    m_utf8.clear();
    m_escape = Escape::None;
    return rest;
}

CaptureFile::~CaptureFile()
{
    close();
}

void CaptureFile::setMode(int mode)
{
    if (captureModeName(mode).isEmpty())
        throw AppError{AppErrors::InvalidPropertyValue, QStringLiteral("Invalid property value")};
    if (m_file.isOpen())
        m_file.write(m_text.finish());
    m_mode = CaptureMode(mode);
    m_text = CaptureText(m_mode);
}

void CaptureFile::open(const QString &fileName)
{
    close();
    m_file.setFileName(fileName);
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        if (!QFileInfo(fileName).absoluteDir().exists())
            throw AppError{AppErrors::PathNotFound, QStringLiteral("Path not found")};
        throw AppError{AppErrors::PermissionDenied, QStringLiteral("Permission denied")};
    }
    m_fileName = fileName;
    m_text = CaptureText(m_mode);
}

void CaptureFile::close()
{
    if (!m_file.isOpen())
        return;
    m_file.write(m_text.finish());
    m_file.close();
    m_fileName.clear();
}

void CaptureFile::write(QByteArrayView raw, QByteArrayView shown)
{
    if (!m_file.isOpen())
        return;
    if (m_mode == CaptureMode::Binary)
        m_file.write(raw.data(), raw.size());
    else
        m_file.write(m_text.take(shown));
}

void CaptureFile::flush()
{
    if (m_file.isOpen())
        m_file.flush();
}
