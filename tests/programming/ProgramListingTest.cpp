#include "ProgramListing.h"

#include "Tables.h"

namespace {
// A reply to "he ch", the prompt found in it, and the lines cut from it, joined by " | ".
struct Listing
{
    const char *name;
    const char *reply;
    const char *prompt;
    const char *lines;
};

const Listing kListings[] = {
    {"echo, lines, prompt", "he ch\r\nADDRESS 5\r\nNETWORK 37\r\nCMD:", "CMD:", "ADDRESS 5 | NETWORK 37"},
    {"no echo: the first letter starts it", "\r\n  \r\nADDRESS 5\r\nCMD:", "CMD:", "ADDRESS 5"},
    {"a line loses the digits it begins with",
     "he ch\r\n12 SETC 7\r\nADDRESS 5\r\n3rd 4\r\nCMD:", "CMD:", "SETC 7 | ADDRESS 5 | rd 4"},
    {"blanks and line feeds between lines dropped",
     "he ch\r\n\n  ADDRESS 5\r\r\n\n NET 12\r\nCMD:", "CMD:", "ADDRESS 5 | NET 12"},
    {"case and inner blanks stay", "he ch\r\nadd 5\r\nSETC  255 \r\nCMD:", "CMD:", "add 5 | SETC  255 "},
    {"remote prompt", "he ch\r\nADDRESS 9\r\nRPG:", "RPG:", "ADDRESS 9"},
    {"the command prompt wins", "RPG:he ch\r\nADDRESS 9\r\nCMD:", "CMD:", "ADDRESS 9"},
    {"neither prompt: nothing", "he ch\r\nADDRESS 5\r\nNET 12\r\n", "", ""},
    {"nothing at all", "", "", ""},
    // Without a line end after the last setting the tail of the reply is taken as it is.
    {"no carriage return after the last", "CMD:he ch\r\nADDRESS 5\r\nNETWORK 37",
     "CMD:", "ADDRESS 5 | RK 37"},
    {"echo and prompt only", "he ch\r\nCMD:", "CMD:", "\nCMD:"},
    {"prompt before the listing: the tail too",
     "CMD:he ch\r\nADDRESS 5\r\nNET 12\r\nCMD:", "CMD:", "ADDRESS 5 | NET 12 | \nCMD:"},
    {"only line ends after the last line", "CMD:he ch\r\nADDRESS 5\r\n\r\n", "CMD:", "ADDRESS 5 | 5\r\n\r\n"},
};
} // namespace

class ProgramListingTest : public QObject
{
    Q_OBJECT
private slots:
    void parse_data() { addRows(kListings); }
    void parse()
    {
        const Listing &l = fetchRow(kListings);
        const ProgramListing listing = parseProgramListing(l.reply);
        QCOMPARE(listing.prompt, QByteArray(l.prompt));
        QCOMPARE(listing.lines.join(QStringLiteral(" | ")), QLatin1String(l.lines));
    }

    void lineTableHoldsOneHundredAndOneLines()
    {
        for (const int sent : {101, 102}) {
            QByteArray reply = "he ch\r\n";
            QStringList expected;
            for (int i = 0; i < sent; ++i) {
                reply += "MESS L" + QByteArray::number(i) + "\r\n";
                if (i < 101)
                    expected << QStringLiteral("MESS L%1").arg(i);
            }
            QCOMPARE(parseProgramListing(reply + "CMD:").lines, expected);
        }
    }
};

QTEST_APPLESS_MAIN(ProgramListingTest)
#include "ProgramListingTest.moc"
