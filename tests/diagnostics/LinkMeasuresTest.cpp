#include "LinkMeasures.h"
#include "InterferenceRun.h"
#include "ModemSession.h"
#include "ScriptedPrompts.h"
#include "SessionRig.h"
#include "SimulatedModemLink.h"
#include "Tables.h"
#include "TextRules.h"

#include <QRegularExpression>
#include <QTest>

namespace {
// "N*text|rest" stands for the text N times and the rest once.
QString expand(const char *cell)
{
    const QString text = QLatin1String(cell);
    const qsizetype star = text.indexOf(u'*');
    if (star < 1)
        return text;
    const QString repeated = text.mid(star + 1).section(u'|', 0, 0);
    return repeated.repeated(text.left(star).toInt()) + text.mid(star + 1).section(u'|', 1);
}

// The meter's stream gives its highest value and band; the quality text its mean and verdict; the
// listening test's input its reading, its rows their layout, and its list of choices the threshold.
const char *const kFigures[][4] = {
    {"highest of three", "rss", "RXS ON\r\nCMD:,11,17,11,", "17 17-23"},
    {"one field between two commas", "rss", ",5,", "5 5"},
    {"zeros", "rss", ",0,0,0,", "0 0"},
    {"after the last comma is not a sample", "rss", ",3,40", "3 3-6"},
    {"one comma", "rss", "90,", "0 0"},
    {"a fraction is rounded, text counts 0", "rss", ",x,12.6,", "13 13"},
    {"top of each scale", "rss", ",90,400,", "400 400 or Greater"},
    {"ninety", "rss", ",90,8,", "90 90 or Greater"},
    {"ten samples of 60", "dq", "10*[7,35,60]\r\n", "60 Good Data Quality"},
    {"52.5 is 52, poor", "dq", "9*[7,3,52]|[7,3,57]", "52 Poor Data Quality"},
    {"53.5 is 54, good", "dq", "9*[7,3,53]|[7,3,58]", "54 Good Data Quality"},
    {"53 is good", "dq", "10*[1,2,53]", "53 Good Data Quality"},
    {"three digits stand whole", "dq", "10*[7,99,100]", "100 Good Data Quality"},
    {"only what follows a comma", "dq", "10*5,7]", "7 Poor Data Quality"},
    {"a short text is read again after a gap", "dq", "[7,35,60]", "30 Poor Data Quality"},
    {"a bracket at the front cuts nothing", "dq", "60]", "0 Poor Data Quality"},
    {"the first turn looks from the first place", "dq", "]7,60]", "18 Poor Data Quality"},
    {"empty", "dq", "", "0 Poor Data Quality"},
    {"the reading between the first two commas", "inter", "7,12,9", "12"},
    {"one comma gives no reading", "inter", "5,", ""},
    {"data row", "row", "12|50", "      12                 50                    08:15        2026-11-23"},
    {"start row", "row", "start", "  Start Test                                   08:15        2026-11-23"},
    {"stop row", "row", "stop", "   Stop Test                                   08:15        2026-11-23"},
    {"a reading too long for its column", "row", "1|12345678901234567890", "error 5"},
    {"the first threshold", "threshold", "0", "3"},
    {"the last threshold", "threshold", "10", "800"},
};

const QDateTime kStart(QDate(2026, 11, 23), QTime(8, 15));

// The diagnostic site, every unit of the given model.
sim::Scenario site(const QString &model)
{
    auto s = sim::Scenario::fromFile(QStringLiteral(VARNEL_SCENARIOS "/diagnostic-site.json"));
    for (sim::ModemProfile &modem : s->modems)
        modem.model = model;
    return *s;
}

// Runs over the rows, with Cancel or the unit at the cable falling silent after some addresses; the
// result lines of the report, the commands among those sent, the squelch and noise squelch of the
// unit at the cable afterwards, whether anything (a remote's transmitter, a mode) is left on, and
// the steps of the progress bar.
const char *const kRuns[][7] = {
    {"signal strength", "rss Q4U", "7 | 5,7 | 9 | 12",
     "Address 7  = 35-50 µV | Address 9  = 6-10 µV | Address 12  = Failed to Connect",
     "squelch 0:latch | squelch 25:latch | asquelch 100:latch | asquelch 60:latch", "25 60 off"},
    {"signal strength cancelled", "rss Q4U cancel1", "7 | 9", "Address 7  = 35-50 µV", "", "25 60 off"},
    {"signal strength, unit falls silent", "rss Q4U silent1", "7 | 9",
     "Address 7  = 35-50 µV | Address 9  = Failed to Connect", "", "25 60 off",
     "1 10 15 20 30 40 50 51.5 53 54.5 56 57.5 59 60.5 62 63.5 65 66.5 68 69.5 71 72.5 90 100 "
     "1 10 15 20 50 100"},
    {"spread spectrum listens with asquelch 0", "rss Q4Z", "9", "Address 9  = 6-10 µV", "asquelch 0:latch",
     "25 60 off"},
    {"data quality", "dq Q4U", "7 | 5,7 | 9 | 12",
     "Address 7  = 77  (Good Data Quality) | Address 9  = 57  (Good Data Quality) | Address 12  = Failed to "
     "Connect",
     "", "25 60 off"},
    {"data quality, repeater rows only", "dq Q4U", "5,7", "", "FA\\r | DQ ON\\r | RESET\\r", "25 60 off"},
    {"data quality cancelled", "dq Q4U cancel1", "7 | 9", "Address 7  = 77  (Good Data Quality)", "",
     "25 60 off"},
    {"data quality, unit falls silent", "dq Q4U silent1", "7 | 9",
     "Address 7  = 77  (Good Data Quality) | Address 9  = Failed to Connect", "", "30 40 on",
     "1 10 30 40 45 50 55 60 65 70 75 80 85 90 95 100 1 10 30 75 100"},
};
} // namespace

class LinkMeasuresTest : public QObject
{
    Q_OBJECT
private slots:
    void figures_data() { addRows(kFigures); }
    void figures()
    {
        const auto &[name, test, input, expected] = fetchRow(kFigures);
        const QString text = expand(input);
        QString result;
        const QString time = QStringLiteral("08:15"), date = QStringLiteral("2026-11-23");
        if (QLatin1String(test) == u"inter")
            result = interferenceReading(text);
        else if (QLatin1String(test) == u"threshold")
            result = QString::number(thresholdFromChoice(thresholdChoices().value(text.toInt())));
        else if (QLatin1String(test) == u"row")
            result = outcome([&] {
                return text == u"start"  ? InterferenceRows::start(time, date)
                       : text == u"stop" ? InterferenceRows::stop(time, date)
                                         : InterferenceRows::data(text.section(u'|', 0, 0).toInt(),
                                                                  text.section(u'|', 1), time, date);
            });
        else if (QLatin1String(test) == u"rss") {
            const QString highest = FindHighestValue(text);
            result = highest + u' ' + signalBand(highest);
            QCOMPARE(meterSamples(text).size(), std::max<qsizetype>(0, text.count(u',') - 1));
        } else {
            const int quality = int(roundHalfEven(AverageQualityValue(text)));
            result = QString::number(quality) + u' ' + qualityVerdict(quality);
            double sum = 0;
            for (const double turn : qualityTurns(text))
                sum += turn;
            QCOMPARE(sum / 10, AverageQualityValue(text));
        }
        QCOMPARE(result, QLatin1String(expected));
    }

    void runs_data() { addRows(kRuns); }
    void runs()
    {
        const auto &[name, how, rows, block, wire, after, bar] = fetchRow(kRuns);
        const QStringList options = QString::fromLatin1(how).split(u' ');
        sim::SimulatedModemLink link(site(options[1]));
        link.time().setOrigin(kStart);
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        QStringList lines;
        const QString fault = options.value(2);
        int measured = 0;
        const int at = fault.right(1).toInt();
        QStringList progress;
        TestHooks hooks{{},
                        [&](const QString &line) { lines << line; },
                        [](auto) {},
                        {},
                        [&](double value) { progress << QString::number(value); }};
        hooks.running = [&] { return !fault.startsWith(u"cancel") || measured < at; };
        hooks.address = [&](const QString &) {
            if (measured++ == at && fault.startsWith(u"silent"))
                link.local().setDead(true);
        };
        link.port().clearEvents();
        const bool rss = options[0] == u"rss";
        SignalStrengthRun signal(session, hooks);
        DataQualityRun quality(session, hooks);
        rss ? signal.run(items(rows), QStringLiteral("Q40") + options[1].mid(2)) : quality.run(items(rows));
        const QList<AddressSamples> &samples = rss ? signal.samples() : quality.samples();
        const QString header =
            QString(60, u'*') +
            (rss ? QStringLiteral(" | Received Signal Strength Testing | Test Start=  T   D")
                 : QStringLiteral(" | Data Quality Testing | Test Start=  T   D | Average "
                                  "Data Quality By Address"));
        QCOMPARE(lines.join(QStringLiteral(" | "))
                     .replace(QRegularExpression(QStringLiteral("08:\\d\\d   2026-11-23")),
                              QStringLiteral("T   D")),
                 QStringList({header, QString::fromUtf8(block), QStringLiteral("Test Stop=  T   D")})
                     .join(QStringLiteral(" | "))
                     .replace(QStringLiteral(" |  | "), QStringLiteral(" | ")));
        const QString written =
            SessionRig::shown(link.port().written()).replace(QStringLiteral("\\r"), QStringLiteral("\\r | "));
        for (const QString &command : items(wire))
            QVERIFY2(written.contains(command), qPrintable(written));
        link.local().setDead(false);
        // The restart that ends the data quality test is still under way when the test stops waiting.
        link.time().MsDelay(5000);
        sim::Modem &local = link.local();
        const bool on = link.network().modemAt(7)->transmitterKeyed() ||
                        link.network().modemAt(9)->transmitterKeyed() || local.signalStreaming() ||
                        local.dataQualityMode();
        QCOMPARE(QStringLiteral("%1 %2 %3")
                     .arg(local.latchedValue(QStringLiteral("SQUELCH")),
                          local.latchedValue(QStringLiteral("ASQUELCH")),
                          on ? QStringLiteral("on") : QStringLiteral("off")),
                 QLatin1String(after));
        // Every measured address gave its samples: sixty meter readings less the last, or ten turns.
        for (const AddressSamples &s : samples)
            QCOMPARE(s.values.size(), rss ? 58 : 10);
        if (bar)
            QCOMPARE(progress.join(u' '), QLatin1String(bar));
    }

    // A path with spread: the highest reading and the mean quality are those the units printed.
    void againstGroundTruth()
    {
        sim::Scenario s = site(QStringLiteral("Q4U"));
        s.links = {{1, 7, 20.0, 6.0, 0, {}, 4.0}};
        s.seed = 7;
        sim::SimulatedModemLink link(s);
        ScriptedPrompts prompts(&link.time());
        ModemSession session(link.port(), link.time(), prompts);
        QStringList lines;
        TestHooks hooks{[] { return true; }, [&](const QString &line) { lines << line; }, [](auto) {},
                        [](auto) {}, [](double) {}};
        SignalStrengthRun rss(session, hooks);
        rss.run({QStringLiteral("7")}, QStringLiteral("Q40U"));
        const auto &meter = link.truth().meterReadings;
        QCOMPARE(rss.samples().value(0).values.size(), meter.size() - 1);
        int highest = 0;
        for (qsizetype i = 0; i + 1 < meter.size(); ++i) {
            QCOMPARE(rss.samples()[0].values[i], meter[i].value);
            highest = std::max(highest, meter[i].value);
        }
        QVERIFY(lines.contains(QStringLiteral("Address 7  = ") + signalBand(QString::number(highest)) +
                               QStringLiteral(" \u00b5V")));
        DataQualityRun dq(session, hooks);
        dq.run({QStringLiteral("7")});
        // Nine of the ten packets are answered before the text is read; the tenth turn adds nothing.
        const auto &printed = link.truth().qualityReadings;
        QList<double> expected;
        double total = 0;
        for (qsizetype i = 0; i < 9; ++i)
            total += expected.emplace_back(printed.value(i).value);
        QCOMPARE(dq.samples().value(0).values, expected << 0);
        const int mean = int(roundHalfEven(total / 10));
        QCOMPARE(lines.value(lines.size() - 2),
                 QStringLiteral("Address 7  = %1  (%2)").arg(mean).arg(qualityVerdict(mean)));
    }
};

// Times and dates in one fixed short format whatever the machine's locale: "2026-11-23", "08:15".
int main(int argc, char *argv[])
{
    qputenv("LC_ALL", "sv_SE.UTF-8");
    QCoreApplication app(argc, argv);
    LinkMeasuresTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "LinkMeasuresTest.moc"
