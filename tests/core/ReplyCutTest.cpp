#include "ReplyCut.h"

#include "Tables.h"

namespace {
// How a value is cut from a reply by a field's name: "fixed", "latch", "equals", "hex", "from N" (the
// version's end searched from position N), "lines" (the numbered lines joined by "|", then the error if
// one came); and the value.
const char *const kCuts[][5] = {
    {"fixed plain", "fixed", "MODEL    = Q4U\r\nCMD:", "MODEL", "Q4U"},
    {"fixed passes over the mixed-case echo", "fixed", "Model\r\nMODEL    = Q4U\r\nCMD:", "MODEL", "Q4U"},
    {"fixed trims blanks", "fixed", "S/N      = 12345  \r\n", "S/N", "12345"},
    {"fixed up to the first return", "fixed", "OPTION   = 34\r\nVERSION  = 3.10\r\n", "OPTION", "34"},
    {"fixed empty value", "fixed", "NETWORK  = \r\nCMD:", "NETWORK", ""},
    {"fixed return before column 11", "fixed", "NETWORK  =\r\nCMD:", "NETWORK", "error 5"},
    {"fixed silent", "fixed", "", "MODEL", "error 5"},
    {"fixed without return", "fixed", "MODEL    = Q4U", "MODEL", "error 5"},
    {"fixed refused", "fixed", "INVALID\r\nCMD:", "RFPOWER", "error 5"},
    {"fixed long refusal", "fixed", "INVALID COMMAND NAME\r\nCMD:", "RFPOWER", "error 5"},
    {"fixed refused with echo", "fixed", "rfp\r\nAMBIGUOUS\r\nCMD:", "RFPOWER", "error 5"},
    {"fixed name in the wrong case", "fixed", "model    = Q4U\r\n", "MODEL", "error 5"},
    {"from the model's place", "from 1", "VERSION  = 3.10\r\nCMD:", "VERSION", "3.10"},
    {"from no model", "from 0", "VERSION  = 3.10\r\nCMD:", "VERSION", "error 5"},
    {"from past the line", "from 18", "VERSION  = 3.10\r\nCMD: X\r\n", "VERSION", "3.10\r\nCMD: X"},
    {"from past the reply", "from 40", "VERSION  = 3.10\r\n", "VERSION", "error 5"},
    {"from silent", "from 1", "", "VERSION", "error 5"},
    {"latch a1", "latch", "SEL/A1   = 56\r\nCMD:", "A1", "56"},
    {"latch n1 with echo", "latch", "sel/n1\r\nSEL/N1   = 76\r\nCMD:", "N1", "76"},
    {"latch n2", "latch", "SEL/N2   = 958\r\nCMD:", "N2", "958"},
    {"latch silent", "latch", "", "N2", "error 5"},
    {"latch without return", "latch", "SEL/N2   = 958", "N2", "error 5"},
    {"equals", "equals", "SQUELCH  = 30\r\nCMD:", "SQUELCH", "30"},
    {"equals tight", "equals", "SQUELCH=7\r\n", "SQUELCH", "7"},
    {"equals far", "equals", "ASQUELCH      =   12 \r\n", "ASQUELCH", "12"},
    {"equals finds squelch inside asquelch", "equals", "ASQUELCH = 12\r\n", "SQUELCH", "12"},
    {"equals first behind the name", "equals", "X=1\r\nSQUELCH = 30\r\n", "SQUELCH", "30"},
    {"equals empty value", "equals", "SQUELCH  =\r\n", "SQUELCH", ""},
    {"equals without return", "equals", "SQUELCH  = 30", "SQUELCH", "error 5"},
    {"equals silent", "equals", "", "SQUELCH", "error 5"},
    {"equals refused", "equals", "INVALID\r\nCMD:", "ASQUELCH", "error 5"},
    {"equals refused with echo", "equals", "asquelch\r\nINVALID\r\nCMD:", "ASQUELCH", "error 5"},
    {"equals without an equals sign", "equals", "SQUELCH 30\r\n", "SQUELCH", "error 5"},
    {"hex open", "hex", "INOUT    = 04\r\nCMD:", "INOUT", "04"},
    {"hex closed", "hex", "inout 0,5\r\nINOUT    = FB\r\nCMD:", "INOUT", "FB"},
    {"hex one digit", "hex", "INOUT    = 4\r\n", "INOUT", "4"},
    {"hex silent", "hex", "", "INOUT", "error 5"},
    {"hex without return", "hex", "INOUT    = 04", "INOUT", "error 5"},
    {"hex whatever stands there", "hex", "INOUT\r\n", "INOUT", "UT"},
    {"hex no name", "hex", "xy\r\n", "INOUT", "error 5"},
    {"lines two routes", "lines", "route\r\n 1  40,41,12\r\n 2  50\r\nCMD:", "", "1  40,41,12|2  50"},
    {"lines stop at a missing number", "lines", "1 a\r\n3 b\r\n", "", "1 a"},
    {"lines none numbered", "lines", "route\r\nCMD:", "", ""},
    {"lines silent", "lines", "", "", ""},
    // "2" is searched only behind the first line.
    {"lines number inside a line", "lines", "1 12,5\r\n", "", "1 12,5"},
    {"lines keep those before one without return", "lines", "1 40,12\r\n2 41,13", "", "1 40,12|error 5"},
};

QString cut(const QString &how, const QString &reply, const QString &field)
{
    if (how == u"lines") {
        QStringList lines;
        const QString error = outcome([&] {
            cutNumberedLines(reply, lines);
            return QString();
        });
        return (error.isEmpty() ? lines : lines << error).join(u'|');
    }
    return outcome([&] {
        if (how == u"fixed")
            return cutFixedColumn(reply, field);
        if (how == u"latch")
            return cutLatch(reply, field);
        if (how == u"equals")
            return cutEqualsSign(reply, field);
        if (how == u"hex")
            return cutHexPair(reply, field);
        return cutFixedColumnEndingFrom(reply, field, how.mid(5).toInt());
    });
}
} // namespace

class ReplyCutTest : public QObject
{
    Q_OBJECT
private slots:
    void cuts_data() { addRows(kCuts); }
    void cuts()
    {
        const auto &[name, how, reply, field, value] = fetchRow(kCuts);
        QCOMPARE(cut(QLatin1String(how), QLatin1String(reply), QLatin1String(field)), QLatin1String(value));
    }

    void thirtyNumberedLinesAtMost()
    {
        QString listing;
        QStringList thirty;
        for (int n = 1; n <= 31; ++n) {
            listing += QStringLiteral("%1 %2,%3\r\n").arg(n).arg(n + 100).arg(n + 200);
            if (n <= 30)
                thirty << QStringLiteral("%1 %2,%3").arg(n).arg(n + 100).arg(n + 200);
        }
        QCOMPARE(cut(QStringLiteral("lines"), listing, {}), thirty.join(u'|'));
    }
};

QTEST_GUILESS_MAIN(ReplyCutTest)
#include "ReplyCutTest.moc"
