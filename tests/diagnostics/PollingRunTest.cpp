#include "PollingRun.h"
#include "MemoryCommControl.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "PlotModel.h"
#include "ScriptedPrompts.h"
#include "SessionRig.h"
#include "SimulatedModemLink.h"
#include "Tables.h"

#include <QRegularExpression>
#include <QTest>

namespace {
const QDateTime kStart(QDate(2026, 11, 23), QTime(8, 15));

// The modem on the cable for the event tests: each poll plays one outcome in turn. "ok" and a count
// of retries: connected, acknowledged, the count in the transmit status. "ss03": the packet failed.
// "noconn": the connect gets no "*". "quiet": the packet gets no answer. "silent": nothing answers.
class PollScript : public PortPeer
{
public:
    PollScript(MemoryCommControl &port, VirtualTime &time, const QStringList &outcomes)
        : m_port(port), m_time(time), m_outcomes(outcomes)
    {
        m_port.setPeer(this);
        m_port.setClock(&m_time);
    }
    ~PollScript() override { m_port.setPeer(nullptr); }
    void nextPoll() { m_current = m_outcomes.value(m_index++).toLatin1(); }

    void hostWrote(const QByteArray &bytes, const LineSettings &) override
    {
        m_line += bytes;
        if (m_current == "silent")
            return m_line.clear();
        if (m_line.endsWith('\x03')) {
            m_line.clear();
            return reply("\r\nCMD:");
        }
        if (!m_line.endsWith('\r'))
            return;
        const QByteArray line = std::exchange(m_line, {});
        if (line.startsWith("CONN "))
            return reply(m_current == "noconn" ? "SS03\r\nCMD:" : "*\r\n");
        if (line == "TXS\r")
            return reply("Packets = 1\r\nRetries = " + m_current.mid(2) + "\r\nCMD:");
        if (line.startsWith("0123"))
            return reply(m_current == "ss03" ? "SS03\r\n" : m_current == "quiet" ? "" : "*\r\n");
        reply("CMD:");
    }

private:
    void reply(const QByteArray &bytes)
    {
        m_time.after(30, [this, bytes] { m_port.feed(bytes); });
    }
    MemoryCommControl &m_port;
    VirtualTime &m_time;
    QStringList m_outcomes;
    QByteArray m_current, m_line;
    int m_index = 0;
};

// A row with its time and date columns as T and D, blanks run together.
QString shape(const QString &row, const QString &date)
{
    return QString(row)
        .replace(date, QStringLiteral(" D"))
        .replace(QRegularExpression(QStringLiteral("(?<![:\\d])\\d\\d:\\d\\d(?![:\\d])")),
                 QStringLiteral("T"))
        .simplified();
}

// Outcomes of the polls of address 12, the rows they leave (start and stop aside), the totals
// "transmissions retries down time", the beeps, and the milliseconds the run took: a packet without
// an answer is waited for 160 times 100 ms.
const char *const kEvents[][6] = {
    {"good poll leaves no row", "ok0", "", "1 0 00:00:00", "0", "605"},
    {"retries leave a row", "ok3 | ok0 | ok2", "1 12 3 T D | 2 12 2 T D", "3 5 00:00:00", "0", "1615"},
    {"no star after the connect", "noconn | noconn | ok0", "1 12 Link Down T D | 2 12 Link Up T D 00:00:02",
     "0 0 00:00:02", "2", "4910"},
    {"a failed packet", "ss03 | ok1", "1 12 Link Down T D | 2 12 Link Up T D 00:00:00", "0 0 00:00:00", "2",
     "905"},
    {"no answer to the packet counts nothing", "quiet | ok0", "", "1 0 00:00:00", "0", "16805"},
    {"a silent modem, then one poll skipped", "silent | ok0 | ok0 | ok0",
     "1 No Response From Modem - RS-232 Error T D | 2 12 Link Down T D | 3 12 Link Up T D 00:00:05",
     "1 0 00:00:05", "2", "11310"},
};

// Three remotes: 12 over a lossy path, 13 whose path fails now and then, 14 behind 12. The modem at
// the cable is on network 55 with the shortest frame ack time, so that a link request gets its answer
// within the 2 seconds the test waits even over a repeater; the loss is low enough that no request
// needs all six retries, which would bring its answer after the wait.
sim::Scenario network(const QList<sim::LinkDrop> &drops)
{
    sim::Scenario s = sim::Scenario::standard();
    for (auto &[key, value] : {std::pair{"NETWORK", "55"}, {"FRACK", "1"}})
        s.modems[0].settings.insert(QLatin1String(key), QLatin1String(value));
    for (const char *address : {"12", "13", "14"}) {
        sim::ModemProfile remote;
        remote.settings.insert(QStringLiteral("ADDRESS"), QLatin1String(address));
        remote.settings.insert(QStringLiteral("NETWORK"), QStringLiteral("55"));
        s.modems << remote;
    }
    s.links = {{1, 12, 10.0, 0, 0.2, {}}, {1, 13, 10.0, 0, 0, drops}, {12, 14, 10.0, 0, 0, {}}};
    return s;
}

// What the air says the polling test must count, address by address: a poll whose packet was
// delivered while the link was up counts one transmission and the retries the modem's counter holds
// when it is read: those of every packet since the last reading. A lost link request or packet takes
// the link down, and the first delivered packet after that brings it up without a count. After a lost
// packet the modem stays connected, so the status command goes out as data and is not a reading.
// Polls end where the next link request (16 bytes) begins; packets from the cutoff on belong to the
// poll that the stop cut short.
QMap<int, QPair<qint64, qint64>> truthTotals(const sim::GroundTruth &truth, int packetBytes, qint64 cutoff)
{
    enum class Poll { Open, Good, PacketLost, Other };
    QMap<int, QPair<qint64, qint64>> totals;
    QMap<int, bool> down;
    qint64 counter = 0;
    int destination = 0;
    Poll poll = Poll::Other;
    const auto endPoll = [&] {
        if (poll == Poll::Good)
            totals[destination].first += 1, totals[destination].second += counter;
        if (poll != Poll::PacketLost)
            counter = 0;
    };
    for (const sim::GroundTruth::Packet &p : truth.packets) {
        if (p.from != 1 || p.atMs >= cutoff)
            continue;
        if (p.bytes == 16) {
            endPoll();
            destination = p.to;
            poll = p.delivered ? Poll::Open : Poll::Other;
            down[destination] = down[destination] || !p.delivered;
            continue;
        }
        counter += p.retries;
        if (p.bytes != packetBytes)
            continue;
        poll = !p.delivered ? Poll::PacketLost : down[destination] ? Poll::Other : Poll::Good;
        down[destination] = !p.delivered;
    }
    endPoll();
    return totals;
}

// The outages of the link to one address as the air saw them, in milliseconds: each from the first
// packet lost while the link was up to the first test packet delivered after it, the last one that
// is still open up to the given time.
QList<qint64> truthOutages(const sim::GroundTruth &truth, int address, int packetBytes, qint64 openUntil)
{
    QList<qint64> outages;
    qint64 downAt = -1;
    for (const sim::GroundTruth::Packet &p : truth.packets) {
        if (p.from != 1 || p.to != address || p.atMs >= openUntil)
            continue;
        if (!p.delivered && downAt < 0)
            downAt = p.atMs;
        else if (p.delivered && downAt >= 0 && p.bytes == packetBytes)
            outages << p.atMs - std::exchange(downAt, -1);
    }
    if (downAt >= 0)
        outages << openUntil - downAt;
    return outages;
}

qint64 clockSeconds(const QString &text)
{
    return QTime(0, 0).secsTo(QTime::fromString(text.right(8)));
}

} // namespace

class PollingRunTest : public QObject
{
    Q_OBJECT
private slots:
    void events_data() { addRows(kEvents); }
    void events()
    {
        const auto &[name, outcomes, rows, totals, beeps, ms] = fetchRow(kEvents);
        SessionRig rig(CommControl::kAutoProcessProgram);
        auto [time, prompts] = std::tie(rig.time, rig.prompts);
        time.setOrigin(kStart);
        PollScript modem(rig.port, time, items(outcomes));
        PollingRun run(rig.session, [] { return QStringList{QStringLiteral("12")}; });
        run.TestPacket = QStringLiteral("0123456789");
        int polls = 0;
        run.pollingAddress = [&](const QString &) { modem.nextPoll(); };
        QList<int> bar;
        run.progressChanged = [&](int value) {
            if (polls == 0)
                bar << value;
        };
        run.linkShown = [&](int, const QString &, const LinkRecord &) {
            if (++polls == items(outcomes).size())
                run.StopPolling();
        };
        bool stopped = false;
        run.stopped = [&] { stopped = true; };
        run.StartPolling();
        QVERIFY(stopped);
        QStringList shaped;
        for (const QString &row : std::as_const(run.rows))
            shaped << shape(row, time.dateText());
        QCOMPARE(shaped.takeFirst(), QStringLiteral("Start Test T D"));
        QCOMPARE(shaped.takeLast(), QStringLiteral("Stop Test T D"));
        QCOMPARE(shaped, items(rows));
        const LinkRecord &link = run.links[0];
        QCOMPARE(QStringLiteral("%1 %2 %3").arg(link.Transmissions).arg(link.RetryTotal).arg(link.DownText),
                 QLatin1String(totals));
        QCOMPARE(prompts.beeps(), QByteArray(beeps).toInt());
        QCOMPARE(run.ReportNumber, shaped.size() + 1);
        QCOMPARE(run.ReportText, run.rows.join(QStringLiteral("\r\n")));
        // The bar of the first poll: connect, packet, acknowledgement, status, shown.
        if (items(outcomes).first() == u"ok0")
            QCOMPARE(bar, QList<int>({5, 10, 15, 20, 25, 95, 97, 99, 100}));
        QCOMPARE(QString::number(time.elapsedMs()), QLatin1String(ms));
    }

    // The modem is prepared once: status messages, no echo, and the network and frame ack time kept
    // across the factory default. Over the adaptor the frame ack time is not carried.
    void configure_data()
    {
        QTest::addColumn<bool>("adaptor");
        QTest::addColumn<QString>("wire");
        QTest::addColumn<QString>("frack");
        QTest::newRow("cable")
            << false
            << "<03> | network\\r | frack\\r | FA\\r | xsf off:messform on:au off:echo off\\r | "
               "network 55\\r | frack 1\\r"
            << "1";
        QTest::newRow("adaptor") << true
                                 << "<03> | network\\r | FA\\r | xsf off:messform on:au off:echo off\\r | "
                                    "network 55\\r"
                                 << "50";
    }
    void configure()
    {
        QFETCH(bool, adaptor);
        QFETCH(QString, wire);
        QFETCH(QString, frack);
        sim::SimulatedModemLink link(network({}));
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        session.IrDongleActive = adaptor;
        PollingRun run(session, [] { return QStringList(); });
        link.port().clearEvents();
        run.ConfigureVarnel();
        QString written = SessionRig::shown(link.port().written());
        QCOMPARE(written.replace(QStringLiteral("\\r"), QStringLiteral("\\r | "))
                     .chopped(3)
                     .replace(QStringLiteral("<03>"), QStringLiteral("<03> | ")),
                 wire);
        QCOMPARE(run.SavedNetwork, QStringLiteral("55"));
        const sim::Modem &modem = link.local();
        QCOMPARE(modem.value(QStringLiteral("NETWORK")) + modem.value(QStringLiteral("FRACK")) +
                     modem.value(QStringLiteral("MESSFORM")) + modem.value(QStringLiteral("ECHO")),
                 QStringLiteral("55") + frack + QStringLiteral("ONOFF"));
        QVERIFY(!prompts.busy());
    }

    // Three hours of polling with link flaps, stopped with an outage still open: the totals are those
    // of the air, and so is each outage, less the wait that finds it.
    void hoursAgainstGroundTruth()
    {
        constexpr qint64 kMinute = 60000;
        const QList<sim::LinkDrop> drops{{20 * kMinute, 5 * kMinute},
                                         {60 * kMinute, 90000},
                                         {100 * kMinute, 30 * kMinute},
                                         {175 * kMinute, 20 * kMinute}};
        sim::SimulatedModemLink link(network(drops));
        link.time().setOrigin(QDateTime(QDate(2026, 11, 23), QTime(8, 0)));
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        const QStringList addresses{QStringLiteral("12"), QStringLiteral("13"), QStringLiteral("12,14")};
        PollingRun run(session, [&] { return addresses; });
        run.ConfigureVarnel();
        run.TestPacket = MakeTestPattern(99);
        qint64 lastPollEnd = 0;
        run.linkShown = [&](int, const QString &, const LinkRecord &) {
            lastPollEnd = link.time().elapsedMs();
        };
        link.time().after(int(180 * kMinute), [&] { run.StopPolling(); });
        run.StartPolling();
        QVERIFY(!run.StopRequested && run.rows.last().startsWith(QLatin1String(" Stop Test")));
        const auto truth = truthTotals(link.truth(), 100, lastPollEnd);
        for (const int i : {0, 1, 2}) {
            const auto expected = truth.value(QList<int>{12, 13, 14}[i]);
            QCOMPARE(run.links[size_t(i)].Transmissions, expected.first);
            QCOMPARE(run.links[size_t(i)].RetryTotal, expected.second);
        }
        QVERIFY(run.links[0].RetryTotal > 100);
        // The program calls a link down when its 2-second wait for the link's answer runs out, and up
        // when the test packet is acknowledged: each outage it reports, the last one counted up to the
        // stop, is the air's less those 2 seconds, to within the second it rounds to.
        const QList<qint64> outages = truthOutages(link.truth(), 13, 100, link.time().elapsedMs());
        const QStringList ups = run.rows.filter(QRegularExpression(QStringLiteral("^ +\\d+ +13 +Link Up")));
        QCOMPARE(ups.size(), 3);
        QCOMPARE(outages.size(), 4);
        // So is each stretch of its link timeline at 0, to within the ends of the polls that found it.
        QList<double> down;
        for (const QPointF &point : linkTimeline(run.marks).value(1).points)
            if (point.y() == 0)
                down << point.x() * 1000;
        QCOMPARE(down.size(), 8);
        qint64 reported = 0;
        for (int i = 0; i < 4; ++i) {
            const qint64 seconds =
                i < 3 ? clockSeconds(ups[i]) : clockSeconds(run.links[1].DownText) - reported;
            reported += seconds;
            QVERIFY(std::abs(down[2 * i + 1] - down[2 * i] - (outages[i] - 2000)) <= 1000);
            QVERIFY2(std::abs(seconds * 1000 - (outages[i] - 2000)) <= 1000,
                     qPrintable(QStringLiteral("outage %1: %2 s reported, %3 ms on the air")
                                    .arg(i)
                                    .arg(seconds)
                                    .arg(outages[i])));
        }
        QCOMPARE(run.rows.filter(QRegularExpression(QStringLiteral("^ +\\d+ +13 +Link Down"))).size(), 4);
        QVERIFY(!run.links[1].LinkUp && run.links[0].LinkUp);
    }

    // A pause ends the loop and marks the report; the resume starts the report again from the first row.
    void pauseAndResume()
    {
        sim::SimulatedModemLink link(network({}));
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        PollingRun run(session, [] { return QStringList{QStringLiteral("13")}; });
        run.ConfigureVarnel();
        run.TestPacket = MakeTestPattern(9);
        int polls = 0;
        run.linkShown = [&](int, const QString &, const LinkRecord &) {
            if (++polls == 2)
                run.pause(false);
            else if (polls == 4)
                run.StopPolling();
        };
        run.StartPolling();
        QCOMPARE(run.rows.size(), 2);
        QVERIFY(run.rows[1].startsWith(QLatin1String("     Pause Test")));
        // With no numbered row yet, the resume writes the start row once more.
        run.pause(true);
        QCOMPARE(polls, 4);
        QCOMPARE(run.rows.size(), 4);
        QVERIFY(run.rows[2].startsWith(QLatin1String(" Start Test")));
        QCOMPARE(run.ReportText, run.rows[0] + QStringLiteral("\r\n") + run.rows[3]);
        QCOMPARE(run.links[0].Transmissions, 4);
        // The restore clears the link towards each address and restarts the modem on its saved setup.
        link.port().clearEvents();
        run.restoreModems();
        QCOMPARE(SessionRig::shown(link.port().written()), QStringLiteral("<03>setc 13\\rdisc\\rreset\\r"));
        QCOMPARE(link.local().value(QStringLiteral("MESSFORM")), QStringLiteral("OFF"));
        QCOMPARE(run.reportLines(false).mid(1),
                 QStringList(
                     {QStringLiteral("Polling Diagnostic Results - Totals Only\r"),
                      QStringLiteral("**********  Totals  **********"),
                      QStringLiteral("   Address          Transmissions     Retries          Link Down Time"),
                      QStringLiteral("     13                  4               0                00:00:00"),
                      QStringLiteral("Test Packet Size = 10")}));
    }
};

// Times and dates in one fixed short format whatever the machine's locale: "2026-11-23", "08:15".
int main(int argc, char *argv[])
{
    qputenv("LC_ALL", "sv_SE.UTF-8");
    QCoreApplication app(argc, argv);
    PollingRunTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "PollingRunTest.moc"
