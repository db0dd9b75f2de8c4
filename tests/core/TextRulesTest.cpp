#include "TextRules.h"
#include "TimeSource.h"

#include "Tables.h"

namespace {
// A rule applied to its arguments (separated by " | "), the result as text: numbers with 17 digits so
// that no difference hides, several results joined by "|", and a failure as "error N".
const char *const kRules[][4] = {
    {"whole", "numericValue", "30", "30"},
    {"leading blanks", "numericValue", "   30", "30"},
    {"line end after", "numericValue", "30\r\n", "30"},
    {"empty", "numericValue", "", "0"},
    {"word", "numericValue", "INVALID", "0"},
    {"model code", "numericValue", "Q4U", "0"},
    {"number then letters", "numericValue", "12abc", "12"},
    {"negative", "numericValue", "-5", "-5"},
    {"plus sign", "numericValue", "+5", "5"},
    {"double sign", "numericValue", "--5", "0"},
    {"blank inside", "numericValue", "1 2", "12"},
    {"blank after sign", "numericValue", "- 5", "-5"},
    {"tab in front", "numericValue", "\t7", "7"},
    {"carriage return ends it", "numericValue", "1\r2", "1"},
    {"fraction", "numericValue", "3.25", "3.25"},
    {"point first", "numericValue", ".5", "0.5"},
    {"negative point first", "numericValue", "-.5", "-0.5"},
    {"point last", "numericValue", "5.", "5"},
    {"second point ends it", "numericValue", "1.2.3", "1.2"},
    {"comma ends it", "numericValue", "1,5", "1"},
    {"exponent", "numericValue", "1e3", "1000"},
    {"negative exponent", "numericValue", "1E-2", "0.01"},
    {"D exponent", "numericValue", "1D2", "100"},
    {"exponent with blanks", "numericValue", "2E +\t1", "20"},
    {"exponent without digits", "numericValue", "7e", "7"},
    {"hex", "numericValue", "&HFF", "255"},
    {"small hex", "numericValue", "&hfb", "251"},
    {"hex with a blank", "numericValue", "&H1 0", "16"},
    {"hex of 16 bits is signed", "numericValue", "&HFFFF", "-1"},
    {"hex past 16 bits", "numericValue", "&H10000", "65536"},
    {"hex of 32 bits is signed", "numericValue", "&HFFFFFFFF", "-1"},
    {"hex beyond 32 bits", "numericValue", "&H100000000", "error 6"},
    {"hex stops at a non-digit", "numericValue", "&H4G", "4"},
    {"hex without digits", "numericValue", "&H", "0"},
    {"octal", "numericValue", "&O17", "15"},
    {"octal stops at 8", "numericValue", "&o78", "7"},
    {"octal without O", "numericValue", "&17", "15"},
    {"ampersand alone", "numericValue", "&X", "0"},
    {"beyond a double", "numericValue", "1e400", "error 6"},
    // roundHalfEven | roundToLong | roundToInteger
    {"half to even zero", "round", "0.5", "0|0|0"},
    {"one and a half", "round", "1.5", "2|2|2"},
    {"two and a half", "round", "2.5", "2|2|2"},
    {"three and a half", "round", "3.5", "4|4|4"},
    {"negative half", "round", "-1.5", "-2|-2|-2"},
    {"negative two and a half", "round", "-2.5", "-2|-2|-2"},
    {"below half", "round", "2.4999", "2|2|2"},
    {"above half", "round", "2.5001", "3|3|3"},
    {"16-bit top", "round", "32767.4", "32767|32767|32767"},
    {"rounds past 16 bits", "round", "32767.5", "32768|32768|error 6"},
    {"16-bit bottom, tie to even", "round", "-32768.5", "-32768|-32768|-32768"},
    {"below 16 bits", "round", "-32769", "-32769|-32769|error 6"},
    {"32-bit top", "round", "2147483647.4", "2147483647|2147483647|error 6"},
    {"rounds past 32 bits", "round", "2147483647.5", "2147483648|error 6|error 6"},
    {"32-bit bottom, tie to even", "round", "-2147483648.5", "-2147483648|-2147483648|error 6"},
    {"below 32 bits", "round", "-2147483649", "-2147483649|error 6|error 6"},
    {"not a number", "round", "nan", "nan|error 6|error 6"},
    {"fraction cut", "textFix", "76.875", "76"},
    {"just below a whole number", "textFix", "957.9999999999999", "958"},
    {"just above a whole number", "textFix", "958.0000000000001", "958"},
    {"clearly below", "textFix", "957.99999999999", "957"},
    {"negative cut toward zero", "textFix", "-2.5", "-2"},
    {"text of whole", "numberText", "958", "958"},
    {"text of zero", "numberText", "0", "0"},
    {"text of negative zero", "numberText", "-0", "0"},
    {"text of negative", "numberText", "-3", "-3"},
    {"text of half", "numberText", "9600.5", "9600.5"},
    {"text of quarter", "numberText", "11064.25", "11064.25"},
    {"text of below one", "numberText", "0.5", "0.5"},
    {"text of frequency", "numberText", "150.0125", "150.0125"},
    {"text of noise dropped", "numberText", "16202.000000000002", "16202"},
    {"text of fifteen digits", "numberText", "0.3333333333333333", "0.333333333333333"},
    {"text of largest without exponent", "numberText", "123456789012345", "123456789012345"},
    {"text of large", "numberText", "1e15", "1E+15"},
    {"text of small", "numberText", "0.00001", "1E-05"},
    // findText(start, text, find) | findText(text, find)
    {"find first", "find", "1 | abcabc | b", "2|2"},
    {"find from a later start", "find", "3 | abcabc | b", "5|2"},
    {"find at the start itself", "find", "2 | abcabc | b", "2|2"},
    {"find is exact in case", "find", "1 | abc | B", "0|0"},
    {"find nothing", "find", "1 | abc | d", "0|0"},
    {"find from past the end", "find", "4 | abc | a", "0|1"},
    {"find in empty text", "find", "1 |  | a", "0|0"},
    {"find empty gives the start", "find", "2 | abc | ", "2|1"},
    {"find from 0", "find", "0 | abc | a", "error 5|1"},
    // midText(text, start, length) | midText(text, start) | leftText(text, length) | rightText(text, length)
    {"cut inside", "cut", "hello | 2 | 3", "ell|ello|hel|llo"},
    {"cut past the end", "cut", "hello | 4 | 10", "lo|lo|hello|hello"},
    {"cut the last one", "cut", "abc | 3 | 1", "c|c|a|c"},
    {"cut from beyond", "cut", "hello | 6 | 1", "||h|o"},
    {"cut nothing", "cut", "hello | 1 | 0", "|hello||"},
    {"cut from 0", "cut", "abc | 0 | 1", "error 5|error 5|a|c"},
    {"cut a negative length", "cut", "abc | 11 | -11", "error 5||error 5|error 5"},
    {"trim blanks", "trimBlanks", "  a b  ", "a b"},
    {"trim keeps tabs", "trimBlanks", "\ta\t", "\ta\t"},
    {"trim keeps line ends", "trimBlanks", " 3.10\r", "3.10\r"},
    {"trim only blanks", "trimBlanks", "   ", ""},
    {"short date of its locale", "shortDate", "sv_SE | 2026-11-23", "2026-11-23"},
    {"short date of two-digit year", "shortDate", "en_US | 2026-11-23", "11/23/26"},
    {"long short date made numeric", "shortDate", "C | 2026-11-23", "2026-11-23"},
    {"date of ten places kept", "shortDate", "en_GB | 2026-11-23", "23/11/2026"},
};

QString number(double value)
{
    return QString::number(value, 'g', 17);
}

// Each statement's outcome, joined.
template <typename... Statements> QString each(Statements &&...statements)
{
    return QStringList{outcome(statements)...}.join(u'|');
}

QString apply(const QString &rule, const QStringList &a)
{
    const double x = a[0].toDouble();
    const int n = a.value(a.size() - 2).toInt();
    const int last = a.constLast().toInt();
    if (rule == u"numericValue")
        return outcome([&] { return number(numericValue(a[0])); });
    if (rule == u"round")
        return each([&] { return number(roundHalfEven(x)); }, [&] { return number(roundToLong(x)); },
                    [&] { return number(roundToInteger(x)); });
    if (rule == u"textFix")
        return number(textFix(x));
    if (rule == u"numberText")
        return numberText(x);
    if (rule == u"find")
        return each([&] { return number(findText(a[0].toInt(), a[1], a[2])); },
                    [&] { return number(findText(a[1], a[2])); });
    if (rule == u"cut")
        return each([&] { return midText(a[0], n, last); }, [&] { return midText(a[0], n); },
                    [&] { return leftText(a[0], last); }, [&] { return rightText(a[0], last); });
    if (rule == u"shortDate")
        return shortDateText(QLocale(a[0]), QDate::fromString(a[1], Qt::ISODate));
    return trimBlanks(a[0]);
}
} // namespace

class TextRulesTest : public QObject
{
    Q_OBJECT
private slots:
    void rules_data() { addRows(kRules); }
    void rules()
    {
        const auto &[name, rule, args, result] = fetchRow(kRules);
        QCOMPARE(apply(QLatin1String(rule), QString::fromUtf8(args).split(QStringLiteral(" | "))),
                 QString::fromUtf8(result));
    }

    void failuresCarryTheClassicTexts()
    {
        QCOMPARE(AppErrors::invalidProcedureCall().description,
                 QStringLiteral("Invalid procedure call or argument"));
        QCOMPARE(AppErrors::overflow().description, QStringLiteral("Overflow"));
    }
};

QTEST_GUILESS_MAIN(TextRulesTest)
#include "TextRulesTest.moc"
