#include "RepeaterRoute.h"

#include <QTest>

using namespace Qt::StringLiterals;

class RepeaterRouteTest : public QObject
{
    Q_OBJECT
private slots:
    void walk_data();
    void walk();
};

void RepeaterRouteTest::walk_data()
{
    QTest::addColumn<QStringList>("fields");
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("route");
    QTest::addColumn<QString>("fault");
    QTest::addColumn<bool>("clear");

    const QString same = u"Different"_s;
    QTest::newRow("no repeaters") << QStringList{u""_s, u""_s, u""_s} << u"12"_s << u"12"_s << QString()
                                  << false;
    QTest::newRow("first only") << QStringList{u"40"_s, u""_s, u""_s} << u"12"_s << u"40,12"_s << QString()
                                << false;
    QTest::newRow("all three") << QStringList{u"40"_s, u"41"_s, u"42"_s} << u"12"_s << u"40,41,42,12"_s
                               << QString() << false;
    QTest::newRow("typed text goes as it stands")
        << QStringList{u"  7"_s, u"7x"_s, u""_s} << u"12"_s << u"  7,7x,12"_s << QString() << false;
    QTest::newRow("from an empty start each repeater keeps its comma")
        << QStringList{u"40"_s, u"41"_s, u""_s} << QString() << u"40,41,"_s << QString() << false;
    QTest::newRow("gap at the second")
        << QStringList{u"40"_s, u""_s, u"42"_s} << u"12"_s << QString() << kRepeaterGapText << true;
    QTest::newRow("third alone") << QStringList{u""_s, u""_s, u"42"_s} << u"12"_s << QString()
                                 << kRepeaterGapText << true;
    QTest::newRow("255") << QStringList{u"40"_s, u"255"_s, u""_s} << u"12"_s << QString()
                         << kRepeaterRangeText << false;
    QTest::newRow("254 and 1 pass") << QStringList{u"254"_s, u"1"_s, u""_s} << u"12"_s << u"254,1,12"_s
                                    << QString() << false;
    QTest::newRow("no number") << QStringList{u"abc"_s, u""_s, u""_s} << u"12"_s << QString()
                               << kRepeaterRangeText << false;
    QTest::newRow("a blank is not empty")
        << QStringList{u" "_s, u""_s, u""_s} << u"12"_s << QString() << kRepeaterRangeText << false;
    QTest::newRow("a fraction under one")
        << QStringList{u"0.5"_s, u""_s, u""_s} << u"12"_s << QString() << kRepeaterRangeText << false;
    QTest::newRow("a fraction over 254")
        << QStringList{u"254.5"_s, u""_s, u""_s} << u"12"_s << QString() << kRepeaterRangeText << false;
    QTest::newRow("same as an end") << QStringList{u"40"_s, u"12.0"_s, u""_s} << u"12"_s << QString() << same
                                    << false;
}

void RepeaterRouteTest::walk()
{
    QFETCH(QStringList, fields);
    QFETCH(QString, start);
    QFETCH(QString, route);
    QFETCH(QString, fault);
    QFETCH(bool, clear);
    const std::array<QString, 3> boxes{fields[0], fields[1], fields[2]};
    const RepeaterWalk walk = walkRepeaters(boxes, start, {12, 5}, u"Different"_s);
    QCOMPARE(walk.route, route);
    QCOMPARE(walk.faultText, fault);
    QCOMPARE(walk.clearFields, clear);
    // Without a test of its own, a screen lets a repeater equal to an end pass.
    if (fault != u"Different"_s)
        return;
    QCOMPARE(walkRepeaters(boxes, start, {12, 5}).route, u"40,12.0,12"_s);
}

QTEST_APPLESS_MAIN(RepeaterRouteTest)
#include "RepeaterRouteTest.moc"
