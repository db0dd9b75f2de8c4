#include "SimRig.h"

#include <QTest>

using namespace std::chrono_literals;
using sim::SimulatedModemLink;

class InterpreterTest : public QObject
{
    Q_OBJECT
private slots:
    void replyStartsAfterTheCarriageReturnAndComesAtTheLineRate()
    {
        SimulatedModemLink link;
        link.port().clearEvents();
        link.port().Output("Model\r");
        link.time().MsDelay(1000);
        QList<qint64> arrivals;
        QByteArray all;
        for (const WireEvent &e : link.port().events())
            if (e.kind == WireEvent::Kind::Received) {
                arrivals << e.atMs;
                all += e.bytes;
            }
        QCOMPARE(all, QByteArray("Model\r\nMODEL    = Q4U\r\nCMD:"));
        // The echo comes back as the characters arrive; the answer some tens of milliseconds later.
        QVERIFY(arrivals.first() >= 3);
        QVERIFY(arrivals.last() >= 25);
        QVERIFY(arrivals.last() < 100);
    }

    // The value begins eleven columns after the first letter of the name, seven for the latches.
    void sessions_data()
    {
        QTest::addColumn<QString>("scenario");
        QTest::addColumn<QByteArray>("session");
        QTest::newRow("limits and refusals") << QString()
                                             << QByteArray("frobnicate\nINVALID\n"
                                                           "CMD:MODE\nAMBIGUOUS\n"
                                                           "CMD:S\nAMBIGUOUS\n"
                                                           "CMD:ADD 254\n"
                                                           "CMD:ADD 0\nINVALID\n"
                                                           "CMD:ADD 255\nINVALID\n"
                                                           "CMD:rfp 2\nINVALID\n"
                                                           "CMD:echo maybe\nINVALID\n"
                                                           "CMD:version 9.99\nINVALID\n"
                                                           "CMD:he xx\nINVALID\n"
                                                           "CMD:radio up\nINVALID\n"
                                                           "CMD:squelch 40:bogus 1:squelch 50\nINVALID\n"
                                                           "CMD:squelch\nSQUELCH  = 40\n"
                                                           "CMD:");
        QTest::newRow("commands let the rest of the line run")
            << QStringLiteral("demo")
            << QByteArray("model:rxs off:dq off:radio off:disc:txs:inout 0,5:he ch:hour:cop:sa:lat:route:"
                          "squelch 31:squelch\n"
                          "MODEL    = Q4U\nPackets = 0\nRetries = 0\nINOUT    = 0,5 FB\n"
                          "COMRATE 41\nHOURS    = 1234\nVarnel Q40 Series Wireless Data Modem Firmware\n"
                          "Copyright (c) 1994-2002 Varnel Inc.  All rights reserved.\nSQUELCH  = 31\n"
                          "CMD:");
        // What the interpreter took is read back from its listing of changed settings.
        QTest::newRow("abbreviations and case")
            << QString()
            << QByteArray("ADD 5\n"
                          "CMD:SETC 40,41,12\n"
                          "CMD:ed off\n"
                          "CMD:asq 70\n"
                          "CMD:MODECONT ON\n"
                          "CMD:Termt 200\n"
                          "CMD:sel/n1 9600.5\n"
                          "CMD:he ch\nADDRESS 5\nSETCONNECT 40,41,12\nSEL/N1 9600\n"
                          "ASQUELCH 70\nTERMTIME 200\nEDIT OFF\nMODECONTR ON\n"
                          "CMD:");
        QTest::newRow("old case has no rate command") << QStringLiteral("q4u-old")
                                                      << QByteArray("comrate\nINVALID\n"
                                                                    "CMD:");
        QTest::newRow("remote") << QStringLiteral("demo")
                                << QByteArray("prog 12\n\n"
                                              "RPG:s/n\nS/N      = 14227\n"
                                              "RPG:squelch 61:bogus:squelch 62\nINVALID\n"
                                              "RPG:squelch\nSQUELCH  = 61\n"
                                              "RPG:flash\nINVALID\n"
                                              "RPG:rxs on\nINVALID\n"
                                              "RPG:conn 1\nINVALID\n"
                                              "RPG:");
        QTest::newRow("route and append tables") << QString()
                                                 << QByteArray("route\n"
                                                               "CMD:ROUTE 1,5,\n"
                                                               "CMD:ROUTE 2,3, 20,\n"
                                                               "CMD:APPEND 1,1,25,28,*\n"
                                                               "CMD:APPEND 2,2,30,30\n"
                                                               "CMD:route\n1,5,\n2,3,20,\n"
                                                               "CMD:append\n1,1,25,28,*\n2,2,30,30\n"
                                                               "CMD:ROUTE 4,7,\nINVALID\n"
                                                               "CMD:ROUTE 31,7,\nINVALID\n"
                                                               "CMD:ROUTE 0\nINVALID\n"
                                                               "CMD:ROUTE 2,4,\n"
                                                               "CMD:ROUTE 1\n"
                                                               "CMD:route\n1,4,\n"
                                                               "CMD:ROUTE 2,9,\n"
                                                               "CMD:ROUTE 3,8,\n"
                                                               "CMD:route\n1,4,\n2,9,\n3,8,\n"
                                                               "CMD:ROUTE 3\n"
                                                               "CMD:route\n1,4,\n2,9,\n"
                                                               "CMD:");
        QTest::newRow("security value") << QString()
                                        << QByteArray("SECURITY 4711\n"
                                                      "CMD:squelch 50\nINVALID\n"
                                                      "CMD:FA\nINVALID\n"
                                                      "CMD:ROUTE 1,5,\nINVALID\n"
                                                      "CMD:squelch\nSQUELCH  = 30\n"
                                                      "CMD:route\n"
                                                      "CMD:security\nSECURITY = ON\n"
                                                      "CMD:SECURITY 1234\nINVALID\n"
                                                      "CMD:SECURITY 4711\n"
                                                      "CMD:security\nSECURITY = OFF\n"
                                                      "CMD:squelch 50\n"
                                                      "CMD:");
        // Noise squelch fitted: the receiver's own noise lights the carrier indicator, bit 2 of the
        // status latch, once both squelches are latched open.
        QTest::newRow("carrier indicator") << QStringLiteral("demo")
                                           << QByteArray("inout 0,5\nINOUT    = 0,5 FB\n"
                                                         "CMD:Squelch 0:Asquelch 0\n"
                                                         "CMD:inout 0,5\nINOUT    = 0,5 FB\n"
                                                         "CMD:Latch:squelch\nSQUELCH  = 0\n"
                                                         "CMD:inout 0,5\nINOUT    = 0,5 FF\n"
                                                         "CMD:asq 200:Latch\n"
                                                         "CMD:inout 0,5\nINOUT    = 0,5 FB\n"
                                                         "CMD:");
    }
    void sessions()
    {
        QFETCH(QString, scenario);
        QFETCH(QByteArray, session);
        SimulatedModemLink link(::scenario(scenario));
        checkSession(link, session);
    }

    // The same editing wherever the line goes, the unit's own interpreter or a remote one. Bytes
    // typed while an answer is on its way sit in the receive buffer and are taken, in order, when
    // the prompt is back.
    void typing_data()
    {
        QTest::addColumn<QString>("scenario");
        QTest::addColumn<QByteArray>("setup");
        QTest::addColumn<QByteArray>("typed");
        QTest::addColumn<QByteArray>("reply");
        QTest::newRow("ctrl-c") << QString() << QByteArray() << QByteArray("\x03") << QByteArray("\r\nCMD:");
        QTest::newRow("ctrl-c drops the answer on its way")
            << QString() << QByteArray() << QByteArray("model\r\x03") << QByteArray("model\r\n\r\nCMD:");
        QTest::newRow("echo and line feed off")
            << QString() << QByteArray("xsf off:messform on:au off:echo off\r") << QByteArray("model\r")
            << QByteArray("MODEL    = Q4U\rCMD:");
        QTest::newRow("backspace echoed") << QString() << QByteArray() << QByteArray("\x7fS/x\x7fn\r")
                                          << QByteArray("S/x\b \bn\r\nS/N      = 14210\r\nCMD:");
        QTest::newRow("remote backspace echoed")
            << QStringLiteral("demo") << QByteArray("prog 12\r") << QByteArray("s/x\x7fn\r")
            << QByteArray("s/x\b \bn\r\nS/N      = 14227\r\nRPG:");
        QTest::newRow("line feeds and nulls ignored")
            << QString() << QByteArray() << QByteArray("\n\0s/n\r", 6)
            << QByteArray("s/n\r\nS/N      = 14210\r\nCMD:");
        QTest::newRow("a line holds 255 characters")
            << QString() << QByteArray() << QByteArray("s/n") + QByteArray(252, ' ') + "X\r"
            << QByteArray("s/n") + QByteArray(252, ' ') + "\r\nS/N      = 14210\r\nCMD:";
        QTest::newRow("typed ahead") << QString() << QByteArray() << QByteArray("model\rs/n\r")
                                     << QByteArray(
                                            "model\r\nMODEL    = Q4U\r\nCMD:s/n\r\nS/N      = 14210\r\nCMD:");
        QTest::newRow("typed ahead of a remote answer")
            << QStringLiteral("demo") << QByteArray("prog 12\r") << QByteArray("model\rs/n\r")
            << QByteArray("model\r\nMODEL    = Q4U\r\nRPG:s/n\r\nS/N      = 14227\r\nRPG:");
    }
    void typing()
    {
        QFETCH(QString, scenario);
        QFETCH(QByteArray, setup);
        QFETCH(QByteArray, typed);
        QFETCH(QByteArray, reply);
        SimulatedModemLink link(::scenario(scenario));
        exchange(link, setup);
        QCOMPARE(exchange(link, typed), reply);
    }

    void slowRepliesComeAfterTheEcho()
    {
        SimulatedModemLink link;
        link.local().setReplyDelay(1500ms);
        QCOMPARE(exchange(link, "Model\r", 1000), QByteArray("Model\r\n"));
        link.time().MsDelay(1000);
        QCOMPARE(link.port().Input(), QByteArray("MODEL    = Q4U\r\nCMD:"));
    }

    void silentModemAnswersNothingAndIsNotChanged()
    {
        SimulatedModemLink dead(scenario(QStringLiteral("dead-modem")));
        QCOMPARE(exchange(dead, QByteArray(1, 3) + "FA\r", 3000), QByteArray());
        SimulatedModemLink link;
        link.local().setDead(true);
        QCOMPARE(exchange(link, "\x03", 2000), QByteArray());
        QCOMPARE(exchange(link, "FA\r", 2000), QByteArray());
        QCOMPARE(link.truth().factoryDefaults.size(), 0);
        link.local().setDead(false);
        QVERIFY(exchange(link, "\x03").endsWith("CMD:"));
    }
};

QTEST_GUILESS_MAIN(InterpreterTest)
#include "InterpreterTest.moc"
