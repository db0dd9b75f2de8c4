#include "DiagnosticReport.h"

#include <QStringView>

#include <cctype>
#include <utility>

namespace {
const QString kLineEnd = QStringLiteral("\r\n");
// The document's header: Western code page, a fixed-pitch font at 10 points.
const QByteArray kRtfHead = QByteArrayLiteral(
    "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fmodern\\fcharset0 Courier New;}}\r\n"
    "\\viewkind4\\uc1\\pard\\f0\\fs20 ");
// Groups whose text is no part of the document's text.
const QStringList kSkippedGroups{QStringLiteral("fonttbl"), QStringLiteral("colortbl"),
                                 QStringLiteral("stylesheet"), QStringLiteral("info"),
                                 QStringLiteral("pict")};

QByteArray rtfEscaped(QStringView line)
{
    QByteArray out;
    for (const QChar c : line) {
        const char16_t u = c.unicode();
        if (u == '\\' || u == '{' || u == '}')
            out += '\\' + QByteArray(1, char(u));
        else if (u == '\t')
            out += "\\tab ";
        else if (u >= 0x20 && u < 0x80)
            out += char(u);
        else if (u >= 0x80 && u < 0x100)
            out += "\\'" + QByteArray::number(u, 16);
        else if (u >= 0x100)
            out += "\\u" + QByteArray::number(qint16(u)) + '?';
    }
    return out;
}
} // namespace

void DiagnosticReport::open(const QString &date, const QString &time)
{
    m_text = QStringLiteral("Varnel Diagnostics") + kLineEnd + kLineEnd;
    m_text += QStringLiteral("Testing Start:  ") + date + QStringLiteral("   ") + time + kLineEnd + kLineEnd;
}

void DiagnosticReport::AddData(const QString &line)
{
    m_text += line + kLineEnd;
}

QString asterisks(int count)
{
    return QString(count, u'*');
}

QByteArray rtfDocument(const QString &text)
{
    QByteArray out = kRtfHead;
    QStringList lines = text.split(kLineEnd);
    // The line end of the last line is its paragraph mark; nothing follows it.
    if (lines.last().isEmpty())
        lines.removeLast();
    for (const QString &line : std::as_const(lines))
        out += rtfEscaped(line) + "\\par\r\n";
    return out + "}\r\n";
}

QString rtfPlainText(const QByteArray &rtf)
{
    QString text;
    int depth = 0;
    int skipFrom = 0;         // the depth of a group passed over, 0 when none
    bool skipStandIn = false; // the character that stands in for a \u character
    const auto put = [&](const QString &piece) {
        if (skipFrom)
            return;
        if (std::exchange(skipStandIn, false) && piece.size() == 1)
            return;
        text += piece;
    };
    for (qsizetype i = 0; i < rtf.size(); ++i) {
        const char c = rtf[i];
        if (c == '{') {
            ++depth;
            if (!skipFrom && rtf.mid(i + 1, 2) == "\\*")
                skipFrom = depth;
        } else if (c == '}') {
            if (skipFrom == depth)
                skipFrom = 0;
            --depth;
        } else if (c == '\r' || c == '\n') {
            continue;
        } else if (c != '\\') {
            put(QString(QLatin1Char(c)));
        } else if (i + 1 < rtf.size() && !std::isalpha(uchar(rtf[i + 1]))) {
            const char symbol = rtf[++i];
            if (symbol == '\'') {
                put(QString(QChar(char16_t(rtf.mid(i + 1, 2).toInt(nullptr, 16)))));
                i += 2;
            } else if (symbol == '\\' || symbol == '{' || symbol == '}') {
                put(QString(QLatin1Char(symbol)));
            }
        } else {
            qsizetype end = i + 1;
            while (end < rtf.size() && std::isalpha(uchar(rtf[end])))
                ++end;
            const QByteArray word = rtf.mid(i + 1, end - i - 1);
            qsizetype digits = end < rtf.size() && rtf[end] == '-' ? end + 1 : end;
            while (digits < rtf.size() && std::isdigit(uchar(rtf[digits])))
                ++digits;
            const int parameter = rtf.mid(end, digits - end).toInt();
            // One blank after a control word belongs to it.
            i = digits < rtf.size() && rtf[digits] == ' ' ? digits : digits - 1;
            if (!skipFrom && kSkippedGroups.contains(QString::fromLatin1(word)))
                skipFrom = depth;
            if (word == "par" || word == "line")
                put(kLineEnd);
            else if (word == "tab")
                put(QStringLiteral("\t"));
            else if (word == "u") {
                put(QString(QChar(char16_t(parameter))));
                skipStandIn = true;
            }
        }
    }
    return text;
}
