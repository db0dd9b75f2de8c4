#include "ProgramListing.h"

#include <QTest>

using namespace Qt::StringLiterals;

class ProgramListingTest : public QObject
{
    Q_OBJECT
private slots:
    void parse_data();
    void parse();
    void lineTableHoldsOneHundredAndOneLines_data();
    void lineTableHoldsOneHundredAndOneLines();
};

void ProgramListingTest::parse_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QByteArray>("prompt");
    QTest::addColumn<QStringList>("lines");

    QTest::newRow("echo, lines, prompt")
        << QByteArray("he ch\r\nADDRESS 5\r\nNETWORK 37\r\nCMD:") << QByteArray("CMD:")
        << QStringList{u"ADDRESS 5"_s, u"NETWORK 37"_s};
    QTest::newRow("no echo: parsing starts at the first letter")
        << QByteArray("\r\n  \r\nADDRESS 5\r\nCMD:") << QByteArray("CMD:") << QStringList{u"ADDRESS 5"_s};
    QTest::newRow("a line that begins with digits loses them")
        << QByteArray("he ch\r\n12 SETC 7\r\nADDRESS 5\r\n3rd 4\r\nCMD:") << QByteArray("CMD:")
        << QStringList{u"SETC 7"_s, u"ADDRESS 5"_s, u"rd 4"_s};
    QTest::newRow("blanks and line feeds between lines are dropped")
        << QByteArray("he ch\r\n\n  ADDRESS 5\r\r\n\n NET 12\r\nCMD:") << QByteArray("CMD:")
        << QStringList{u"ADDRESS 5"_s, u"NET 12"_s};
    QTest::newRow("case and inner blanks stay")
        << QByteArray("he ch\r\nadd 5\r\nSETC  255 \r\nCMD:") << QByteArray("CMD:")
        << QStringList{u"add 5"_s, u"SETC  255 "_s};
    QTest::newRow("remote prompt") << QByteArray("he ch\r\nADDRESS 9\r\nRPG:") << QByteArray("RPG:")
                                   << QStringList{u"ADDRESS 9"_s};
    QTest::newRow("the command prompt wins over the remote one")
        << QByteArray("RPG:he ch\r\nADDRESS 9\r\nCMD:") << QByteArray("CMD:") << QStringList{u"ADDRESS 9"_s};
    QTest::newRow("neither prompt: nothing")
        << QByteArray("he ch\r\nADDRESS 5\r\nNET 12\r\n") << QByteArray() << QStringList{};
    QTest::newRow("nothing at all") << QByteArray() << QByteArray() << QStringList{};
    // Without a line end after the last setting the tail of the reply is taken as it is.
    QTest::newRow("no carriage return after the last setting")
        << QByteArray("CMD:he ch\r\nADDRESS 5\r\nNETWORK 37") << QByteArray("CMD:")
        << QStringList{u"ADDRESS 5"_s, u"RK 37"_s};
    QTest::newRow("echo and prompt only")
        << QByteArray("he ch\r\nCMD:") << QByteArray("CMD:") << QStringList{u"\nCMD:"_s};
    QTest::newRow("prompt before the listing: every line, then the tail")
        << QByteArray("CMD:he ch\r\nADDRESS 5\r\nNET 12\r\nCMD:") << QByteArray("CMD:")
        << QStringList{u"ADDRESS 5"_s, u"NET 12"_s, u"\nCMD:"_s};
    QTest::newRow("nothing but line ends after the last line")
        << QByteArray("CMD:he ch\r\nADDRESS 5\r\n\r\n") << QByteArray("CMD:")
        << QStringList{u"ADDRESS 5"_s, u"5\r\n\r\n"_s};
}

void ProgramListingTest::parse()
{
    QFETCH(QByteArray, reply);
    QFETCH(QByteArray, prompt);
    QFETCH(QStringList, lines);
    const ProgramListing listing = parseProgramListing(reply);
    QCOMPARE(listing.prompt, prompt);
    QCOMPARE(listing.lines, lines);
}

void ProgramListingTest::lineTableHoldsOneHundredAndOneLines_data()
{
    QTest::addColumn<int>("sent");
    QTest::addColumn<int>("kept");
    QTest::newRow("100") << 100 << 100;
    QTest::newRow("101") << 101 << 101;
    QTest::newRow("102") << 102 << 101;
    QTest::newRow("150") << 150 << 101;
}

void ProgramListingTest::lineTableHoldsOneHundredAndOneLines()
{
    QFETCH(int, sent);
    QFETCH(int, kept);
    QByteArray reply = "he ch\r\n";
    QStringList expected;
    for (int i = 0; i < sent; ++i) {
        const QByteArray line = "MESS L" + QByteArray::number(i);
        reply += line + "\r\n";
        if (i < kept)
            expected << QString::fromLatin1(line);
    }
    reply += "CMD:";
    const ProgramListing listing = parseProgramListing(reply);
    QCOMPARE(listing.lines.size(), kept);
    QCOMPARE(listing.lines, expected);
    QCOMPARE(kLineTableSize, 101);
}

QTEST_APPLESS_MAIN(ProgramListingTest)
#include "ProgramListingTest.moc"
