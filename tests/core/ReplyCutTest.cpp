#include "ReplyCut.h"
#include "AppError.h"

#include <QTest>

#include <functional>

namespace {
// The text a cut gives, or the number of the AppError it throws, in the form "error 5".
QString outcome(const std::function<QString()> &cut)
{
    try {
        return cut();
    } catch (const AppError &error) {
        return QStringLiteral("error %1").arg(error.number);
    }
}

const QString kInvalidCall = QStringLiteral("error 5");
} // namespace

class ReplyCutTest : public QObject
{
    Q_OBJECT
private slots:
    void fixedColumn_data();
    void fixedColumn();
    void fixedColumnEndingFromAnotherPosition_data();
    void fixedColumnEndingFromAnotherPosition();
    void latch_data();
    void latch();
    void equalsSign_data();
    void equalsSign();
    void hexPair_data();
    void hexPair();
    void numberedLines_data();
    void numberedLines();
    void numberedLineWithoutEndKeepsTheLinesBefore();
};

void ReplyCutTest::fixedColumn_data()
{
    QTest::addColumn<QString>("reply");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::newRow("plain") << "MODEL    = Q4U\r\nCMD:"
                           << "MODEL"
                           << "Q4U";
    QTest::newRow("echo in mixed case is passed over") << "Model\r\nMODEL    = Q4U\r\nCMD:"
                                                       << "MODEL"
                                                       << "Q4U";
    QTest::newRow("blanks trimmed") << "S/N      = 12345  \r\n"
                                    << "S/N"
                                    << "12345";
    QTest::newRow("value up to the first return") << "OPTION   = 34\r\nVERSION  = 3.10\r\n"
                                                  << "OPTION"
                                                  << "34";
    QTest::newRow("nothing before the return") << "NETWORK  = \r\nCMD:"
                                               << "NETWORK"
                                               << "";
    QTest::newRow("value running into the return")
        << "NETWORK  =\r\nCMD:"
        << "NETWORK" << kInvalidCall; // return before column 11: negative length
    QTest::newRow("silent modem") << ""
                                  << "MODEL" << kInvalidCall;
    QTest::newRow("no carriage return after the value") << "MODEL    = Q4U"
                                                        << "MODEL" << kInvalidCall;
    QTest::newRow("refused command") << "INVALID\r\nCMD:"
                                     << "RFPOWER" << kInvalidCall;
    QTest::newRow("long refusal") << "INVALID COMMAND NAME\r\nCMD:"
                                  << "RFPOWER" << kInvalidCall;
    QTest::newRow("refused command with echo") << "rfp\r\nAMBIGUOUS\r\nCMD:"
                                               << "RFPOWER" << kInvalidCall;
    QTest::newRow("name in the wrong case") << "model    = Q4U\r\n"
                                            << "MODEL" << kInvalidCall;
}

void ReplyCutTest::fixedColumn()
{
    QFETCH(QString, reply);
    QFETCH(QString, name);
    QFETCH(QString, value);
    QCOMPARE(outcome([&] { return cutFixedColumn(reply, name); }), value);
}

void ReplyCutTest::fixedColumnEndingFromAnotherPosition_data()
{
    QTest::addColumn<QString>("reply");
    QTest::addColumn<int>("endFrom");
    QTest::addColumn<QString>("value");
    QTest::newRow("same start as the model reply") << "VERSION  = 3.10\r\nCMD:" << 1 << "3.10";
    QTest::newRow("model not found") << "VERSION  = 3.10\r\nCMD:" << 0 << kInvalidCall;
    // A model reply that had an echo in front puts the end search past the version's own line end.
    QTest::newRow("end searched past the line") << "VERSION  = 3.10\r\nCMD: X\r\n" << 18 << "3.10\r\nCMD: X";
    QTest::newRow("end searched past the reply") << "VERSION  = 3.10\r\n" << 40 << kInvalidCall;
    QTest::newRow("silent") << "" << 1 << kInvalidCall;
}

void ReplyCutTest::fixedColumnEndingFromAnotherPosition()
{
    QFETCH(QString, reply);
    QFETCH(int, endFrom);
    QFETCH(QString, value);
    QCOMPARE(outcome([&] { return cutFixedColumnEndingFrom(reply, QStringLiteral("VERSION"), endFrom); }),
             value);
}

void ReplyCutTest::latch_data()
{
    QTest::addColumn<QString>("reply");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::newRow("a1") << "SEL/A1   = 56\r\nCMD:"
                        << "A1"
                        << "56";
    QTest::newRow("n1 with echo") << "sel/n1\r\nSEL/N1   = 76\r\nCMD:"
                                  << "N1"
                                  << "76";
    QTest::newRow("n2") << "SEL/N2   = 958\r\nCMD:"
                        << "N2"
                        << "958";
    QTest::newRow("silent") << ""
                            << "N2" << kInvalidCall;
    QTest::newRow("no return") << "SEL/N2   = 958"
                               << "N2" << kInvalidCall;
}

void ReplyCutTest::latch()
{
    QFETCH(QString, reply);
    QFETCH(QString, name);
    QFETCH(QString, value);
    QCOMPARE(outcome([&] { return cutLatch(reply, name); }), value);
}

void ReplyCutTest::equalsSign_data()
{
    QTest::addColumn<QString>("reply");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::newRow("squelch") << "SQUELCH  = 30\r\nCMD:"
                             << "SQUELCH"
                             << "30";
    QTest::newRow("tight") << "SQUELCH=7\r\n"
                           << "SQUELCH"
                           << "7";
    QTest::newRow("far equals sign") << "ASQUELCH      =   12 \r\n"
                                     << "ASQUELCH"
                                     << "12";
    QTest::newRow("squelch found inside asquelch") << "ASQUELCH = 12\r\n"
                                                   << "SQUELCH"
                                                   << "12";
    QTest::newRow("first equals sign behind the name") << "X=1\r\nSQUELCH = 30\r\n"
                                                       << "SQUELCH"
                                                       << "30";
    QTest::newRow("empty value") << "SQUELCH  =\r\n"
                                 << "SQUELCH"
                                 << "";
    QTest::newRow("no return") << "SQUELCH  = 30"
                               << "SQUELCH" << kInvalidCall;
    QTest::newRow("silent") << ""
                            << "SQUELCH" << kInvalidCall;
    QTest::newRow("refused") << "INVALID\r\nCMD:"
                             << "ASQUELCH" << kInvalidCall;
    QTest::newRow("refused with echo") << "asquelch\r\nINVALID\r\nCMD:"
                                       << "ASQUELCH" << kInvalidCall;
    QTest::newRow("name without an equals sign") << "SQUELCH 30\r\n"
                                                 << "SQUELCH" << kInvalidCall;
}

void ReplyCutTest::equalsSign()
{
    QFETCH(QString, reply);
    QFETCH(QString, name);
    QFETCH(QString, value);
    QCOMPARE(outcome([&] { return cutEqualsSign(reply, name); }), value);
}

void ReplyCutTest::hexPair_data()
{
    QTest::addColumn<QString>("reply");
    QTest::addColumn<QString>("value");
    QTest::newRow("open") << "INOUT    = 04\r\nCMD:"
                          << "04";
    QTest::newRow("closed") << "inout 0,5\r\nINOUT    = FB\r\nCMD:"
                            << "FB";
    QTest::newRow("one digit after a blank") << "INOUT    = 4\r\n"
                                             << "4";
    QTest::newRow("silent") << "" << kInvalidCall;
    QTest::newRow("no return") << "INOUT    = 04" << kInvalidCall;
    QTest::newRow("whatever two characters stand there") << "INOUT\r\n"
                                                         << "UT";
    QTest::newRow("no name") << "xy\r\n" << kInvalidCall;
}

void ReplyCutTest::hexPair()
{
    QFETCH(QString, reply);
    QFETCH(QString, value);
    QCOMPARE(outcome([&] { return cutHexPair(reply, QStringLiteral("INOUT")); }), value);
}

void ReplyCutTest::numberedLines_data()
{
    QTest::addColumn<QString>("reply");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("two routes") << "route\r\n 1  40,41,12\r\n 2  50\r\nCMD:"
                                << QStringList{QStringLiteral("1  40,41,12"), QStringLiteral("2  50")};
    QTest::newRow("stops at the first number missing") << "1 a\r\n3 b\r\n"
                                                       << QStringList{QStringLiteral("1 a")};
    QTest::newRow("nothing numbered") << "route\r\nCMD:" << QStringList{};
    QTest::newRow("silent") << "" << QStringList{};
    QTest::newRow("number found inside a line")
        << "1 12,5\r\n"
        << QStringList{QStringLiteral("1 12,5")}; // "2" is searched only behind the first line
    QStringList thirty;
    QString listing;
    for (int n = 1; n <= 31; ++n) {
        listing += QStringLiteral("%1 %2,%3\r\n").arg(n).arg(n + 100).arg(n + 200);
        if (n <= 30)
            thirty.append(QStringLiteral("%1 %2,%3").arg(n).arg(n + 100).arg(n + 200));
    }
    QTest::newRow("thirty at most") << listing << thirty;
}

void ReplyCutTest::numberedLines()
{
    QFETCH(QString, reply);
    QFETCH(QStringList, lines);
    QStringList cut;
    cutNumberedLines(reply, cut);
    QCOMPARE(cut, lines);
}

void ReplyCutTest::numberedLineWithoutEndKeepsTheLinesBefore()
{
    QStringList cut;
    try {
        cutNumberedLines(QStringLiteral("1 40,12\r\n2 41,13"), cut);
        QFAIL("a line without its carriage return was taken");
    } catch (const AppError &error) {
        QCOMPARE(error.number, AppErrors::InvalidProcedureCall);
    }
    QCOMPARE(cut, QStringList{QStringLiteral("1 40,12")});
}

QTEST_GUILESS_MAIN(ReplyCutTest)
#include "ReplyCutTest.moc"
