#include "TextRules.h"
#include "AppError.h"

#include <QTest>

#include <cmath>
#include <functional>

namespace {
// The number of the AppError a statement throws, or 0 when it does not throw.
int errorOf(const std::function<void()> &statement)
{
    try {
        statement();
    } catch (const AppError &error) {
        return error.number;
    }
    return 0;
}
} // namespace

class TextRulesTest : public QObject
{
    Q_OBJECT
private slots:
    void numericValueOfText_data();
    void numericValueOfText();
    void numericValueOverflows_data();
    void numericValueOverflows();
    void roundsHalfToEven_data();
    void roundsHalfToEven();
    void roundingIntoIntegersOverflows_data();
    void roundingIntoIntegersOverflows();
    void textFixDropsDivisionNoise_data();
    void textFixDropsDivisionNoise();
    void numberTextForTheWire_data();
    void numberTextForTheWire();
    void findsTextFromOnePosition_data();
    void findsTextFromOnePosition();
    void cutsTextByPosition_data();
    void cutsTextByPosition();
    void badPositionsAreInvalidCalls();
    void trimsBlanksOnly();
};

void TextRulesTest::numericValueOfText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("whole") << "30" << 30.0;
    QTest::newRow("leading blanks") << "   30" << 30.0;
    QTest::newRow("line end after") << "30\r\n" << 30.0;
    QTest::newRow("empty") << "" << 0.0;
    QTest::newRow("word") << "INVALID" << 0.0;
    QTest::newRow("model code") << "Q4U" << 0.0;
    QTest::newRow("number then letters") << "12abc" << 12.0;
    QTest::newRow("negative") << "-5" << -5.0;
    QTest::newRow("plus sign") << "+5" << 5.0;
    QTest::newRow("double sign") << "--5" << 0.0;
    QTest::newRow("blank inside") << "1 2" << 12.0;
    QTest::newRow("blank after sign") << "- 5" << -5.0;
    QTest::newRow("tab in front") << "\t7" << 7.0;
    QTest::newRow("carriage return ends it") << "1\r2" << 1.0;
    QTest::newRow("fraction") << "3.25" << 3.25;
    QTest::newRow("point first") << ".5" << 0.5;
    QTest::newRow("negative point first") << "-.5" << -0.5;
    QTest::newRow("point last") << "5." << 5.0;
    QTest::newRow("second point ends it") << "1.2.3" << 1.2;
    QTest::newRow("comma ends it") << "1,5" << 1.0;
    QTest::newRow("exponent") << "1e3" << 1000.0;
    QTest::newRow("negative exponent") << "1E-2" << 0.01;
    QTest::newRow("D exponent") << "1D2" << 100.0;
    QTest::newRow("exponent without digits") << "7e" << 7.0;
    QTest::newRow("hex") << "&HFF" << 255.0;
    QTest::newRow("small hex") << "&hfb" << 251.0;
    QTest::newRow("hex of 16 bits is signed") << "&HFFFF" << -1.0;
    QTest::newRow("hex past 16 bits") << "&H10000" << 65536.0;
    QTest::newRow("hex of 32 bits is signed") << "&HFFFFFFFF" << -1.0;
    QTest::newRow("hex stops at a non-digit") << "&H4G" << 4.0;
    QTest::newRow("hex without digits") << "&H" << 0.0;
    QTest::newRow("octal") << "&O17" << 15.0;
    QTest::newRow("octal without O") << "&17" << 15.0;
    QTest::newRow("ampersand alone") << "&X" << 0.0;
}

void TextRulesTest::numericValueOfText()
{
    QFETCH(QString, text);
    QFETCH(double, value);
    QCOMPARE(numericValue(text), value);
}

void TextRulesTest::numericValueOverflows_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("beyond a double") << "1e400";
    QTest::newRow("hex beyond 32 bits") << "&H100000000";
}

void TextRulesTest::numericValueOverflows()
{
    QFETCH(QString, text);
    QCOMPARE(errorOf([&] { numericValue(text); }), AppErrors::Overflow);
}

void TextRulesTest::roundsHalfToEven_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("rounded");
    QTest::newRow("half to even zero") << 0.5 << 0.0;
    QTest::newRow("one and a half") << 1.5 << 2.0;
    QTest::newRow("two and a half") << 2.5 << 2.0;
    QTest::newRow("three and a half") << 3.5 << 4.0;
    QTest::newRow("negative half") << -1.5 << -2.0;
    QTest::newRow("negative two and a half") << -2.5 << -2.0;
    QTest::newRow("below half") << 2.4999 << 2.0;
    QTest::newRow("above half") << 2.5001 << 3.0;
}

void TextRulesTest::roundsHalfToEven()
{
    QFETCH(double, value);
    QFETCH(double, rounded);
    QCOMPARE(roundHalfEven(value), rounded);
    QCOMPARE(double(roundToLong(value)), rounded);
    QCOMPARE(double(roundToInteger(value)), rounded);
}

void TextRulesTest::roundingIntoIntegersOverflows_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("longError");
    QTest::addColumn<int>("integerError");
    QTest::newRow("16-bit top") << 32767.4 << 0 << 0;
    QTest::newRow("rounds past 16 bits") << 32767.5 << 0 << AppErrors::Overflow;
    QTest::newRow("16-bit bottom, tie to even") << -32768.5 << 0 << 0;
    QTest::newRow("below 16 bits") << -32769.0 << 0 << AppErrors::Overflow;
    QTest::newRow("32-bit top") << 2147483647.4 << 0 << AppErrors::Overflow;
    QTest::newRow("rounds past 32 bits") << 2147483647.5 << AppErrors::Overflow << AppErrors::Overflow;
    QTest::newRow("32-bit bottom, tie to even") << -2147483648.5 << 0 << AppErrors::Overflow;
    QTest::newRow("below 32 bits") << -2147483649.0 << AppErrors::Overflow << AppErrors::Overflow;
    QTest::newRow("not a number") << std::nan("") << AppErrors::Overflow << AppErrors::Overflow;
}

void TextRulesTest::roundingIntoIntegersOverflows()
{
    QFETCH(double, value);
    QFETCH(int, longError);
    QFETCH(int, integerError);
    QCOMPARE(errorOf([&] { roundToLong(value); }), longError);
    QCOMPARE(errorOf([&] { roundToInteger(value); }), integerError);
}

void TextRulesTest::textFixDropsDivisionNoise_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("fixed");
    QTest::newRow("fraction cut") << 76.875 << 76.0;
    QTest::newRow("just below a whole number") << 957.9999999999999 << 958.0;
    QTest::newRow("just above a whole number") << 958.0000000000001 << 958.0;
    QTest::newRow("clearly below") << 957.99999999999 << 957.0;
    QTest::newRow("negative cut toward zero") << -2.5 << -2.0;
    QTest::newRow("a division") << 11975000.0 / 12500 << 958.0;
}

void TextRulesTest::textFixDropsDivisionNoise()
{
    QFETCH(double, value);
    QFETCH(double, fixed);
    QCOMPARE(textFix(value), fixed);
}

void TextRulesTest::numberTextForTheWire_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("whole") << 958.0 << "958";
    QTest::newRow("zero") << 0.0 << "0";
    QTest::newRow("negative zero") << -0.0 << "0";
    QTest::newRow("negative") << -3.0 << "-3";
    QTest::newRow("half") << 9600.5 << "9600.5";
    QTest::newRow("quarter") << 11064.25 << "11064.25";
    QTest::newRow("below one") << 0.5 << "0.5";
    QTest::newRow("frequency") << 150.0125 << "150.0125";
    QTest::newRow("noise dropped") << 16202.000000000002 << "16202";
    QTest::newRow("fifteen digits") << 1.0 / 3 << "0.333333333333333";
    QTest::newRow("largest without exponent") << 123456789012345.0 << "123456789012345";
    QTest::newRow("large") << 1e15 << "1E+15";
    QTest::newRow("small") << 0.00001 << "1E-05";
}

void TextRulesTest::numberTextForTheWire()
{
    QFETCH(double, value);
    QFETCH(QString, text);
    QCOMPARE(numberText(value), text);
}

void TextRulesTest::findsTextFromOnePosition_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("find");
    QTest::addColumn<int>("position");
    QTest::newRow("first") << 1 << "abcabc"
                           << "b" << 2;
    QTest::newRow("from a later start") << 3 << "abcabc"
                                        << "b" << 5;
    QTest::newRow("at the start itself") << 2 << "abcabc"
                                         << "b" << 2;
    QTest::newRow("exact case") << 1 << "abc"
                                << "B" << 0;
    QTest::newRow("not there") << 1 << "abc"
                               << "d" << 0;
    QTest::newRow("start past the end") << 4 << "abc"
                                        << "a" << 0;
    QTest::newRow("empty text") << 1 << ""
                                << "a" << 0;
    QTest::newRow("empty find gives the start") << 2 << "abc"
                                                << "" << 2;
}

void TextRulesTest::findsTextFromOnePosition()
{
    QFETCH(int, start);
    QFETCH(QString, text);
    QFETCH(QString, find);
    QFETCH(int, position);
    QCOMPARE(findText(start, text, find), position);
    if (start == 1)
        QCOMPARE(findText(text, find), position);
}

void TextRulesTest::cutsTextByPosition_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("cut");
    QTest::newRow("inside") << "hello" << 2 << 3 << "ell";
    QTest::newRow("past the end") << "hello" << 4 << 10 << "lo";
    QTest::newRow("start beyond") << "hello" << 6 << 1 << "";
    QTest::newRow("no length") << "hello" << 1 << 0 << "";
}

void TextRulesTest::cutsTextByPosition()
{
    QFETCH(QString, text);
    QFETCH(int, start);
    QFETCH(int, length);
    QFETCH(QString, cut);
    QCOMPARE(midText(text, start, length), cut);
    QCOMPARE(midText(text, start), text.mid(start - 1));
    QCOMPARE(leftText(text, length), text.left(length));
    QCOMPARE(rightText(text, length), text.right(length));
}

void TextRulesTest::badPositionsAreInvalidCalls()
{
    const int invalid = AppErrors::InvalidProcedureCall;
    QCOMPARE(errorOf([] { findText(0, QStringLiteral("abc"), QStringLiteral("a")); }), invalid);
    QCOMPARE(errorOf([] { midText(QStringLiteral("abc"), 0, 1); }), invalid);
    QCOMPARE(errorOf([] { midText(QStringLiteral("abc"), 11, -11); }), invalid);
    QCOMPARE(errorOf([] { midText(QStringLiteral("abc"), 0); }), invalid);
    QCOMPARE(errorOf([] { leftText(QStringLiteral("abc"), -1); }), invalid);
    QCOMPARE(errorOf([] { rightText(QStringLiteral("abc"), -1); }), invalid);
    try {
        midText(QString(), 11, -11);
        QFAIL("a negative length was taken");
    } catch (const AppError &error) {
        QCOMPARE(error.description, QStringLiteral("Invalid procedure call or argument"));
    }
}

void TextRulesTest::trimsBlanksOnly()
{
    QCOMPARE(trimBlanks(QStringLiteral("  a b  ")), QStringLiteral("a b"));
    QCOMPARE(trimBlanks(QStringLiteral("\ta\t")), QStringLiteral("\ta\t"));
    QCOMPARE(trimBlanks(QStringLiteral(" 3.10\r")), QStringLiteral("3.10\r"));
    QCOMPARE(trimBlanks(QStringLiteral("   ")), QString());
}

QTEST_GUILESS_MAIN(TextRulesTest)
#include "TextRulesTest.moc"
