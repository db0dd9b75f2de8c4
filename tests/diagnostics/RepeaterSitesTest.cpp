#include "Diagnostic.h"
#include "DiagnosticForms.h"
#include "Golden.h"
#include "Network.h"
#include "RepeaterScreens.h"
#include "SessionRig.h"
#include "SimulatedModemLink.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace {
// The unit at the cable (1) hears the sites 5 and 7 and the base station 99, which hears them too;
// site 9 is out of reach of everyone.
sim::Scenario network()
{
    sim::Scenario s = sim::Scenario::standard();
    for (const char *address : {"5", "7", "9", "99"}) {
        s.modems << sim::ModemProfile{};
        s.modems.last().settings.insert(QStringLiteral("ADDRESS"), QLatin1String(address));
    }
    for (const auto &[a, b] : {std::pair{1, 5}, {1, 7}, {1, 99}, {99, 5}, {99, 7}})
        s.links << sim::LinkProfile{a, b, 35.0, 0, 0, {}, 0};
    return s;
}

struct Rig
{
    sim::SimulatedModemLink link{network()};
    ScriptedPrompts prompts{nullptr};
    ModemSession session{link.port(), link.time(), prompts};
    QString wire() { return SessionRig::writes(link.port()).join(QStringLiteral(" | ")); }
};

RepeaterRows rowsOf(const char *cell)
{
    RepeaterRows rows;
    const QStringList list = items(cell);
    for (qsizetype i = 0; i < list.size(); ++i)
        rows[size_t(i)] = {list[i].section(u':', 0, 0), list[i].section(u':', 1)};
    return rows;
}

// Rows, the base with the kit, a fault; the writes to the modem and the report's lines between the
// block's head and its stop line.
const char *const kRuns[][6] = {
    {"up and down", "A:5 | B:9 | :7", "", "",
     "FA\\r | conn 5\\r | <03> | <03>Disc\\r | conn 9\\r | <03> | conn 7\\r | <03> | <03>Disc\\r | RESET\\r",
     "A - Add 5  = Link Up | B - Add 9  = Link Down |  - Add 7  = Link Up"},
    {"the first empty row ends the test", "A:5 | : | C:7", "", "",
     "FA\\r | conn 5\\r | <03> | <03>Disc\\r | RESET\\r", "A - Add 5  = Link Up"},
    {"a site gone down", "A:7", "", "down", "FA\\r | conn 7\\r | <03> | RESET\\r", "A - Add 7  = Link Down"},
    {"through the base, empty rows too", "A:5 | B:5,7", "99", "",
     "FA\\r | conn 99,5\\r | <03> | <03>Disc\\r | conn 99,5,7\\r | <03> | conn 99,\\r | <03> | <03>Disc\\r "
     "| conn 99,\\r | <03> | <03>Disc\\r | conn 99,\\r | <03> | <03>Disc\\r | conn 99,\\r | <03> | "
     "<03>Disc\\r | RESET\\r",
     "A - Add 99,5  = Link Up | B - Add 99,5,7  = Link Down |  - Add 99,  = Link Up |  - Add 99,  = Link Up "
     "|  - Add 99,  = Link Up |  - Add 99,  = Link Up"},
    {"a silent modem", "A:5 | B:7", "", "silent", "FA\\r | conn 5\\r | <03> | conn 7\\r | <03> | RESET\\r",
     "A - Add 5  = Link Down | B - Add 7  = Link Down"},
};

// What the user does on the set-up form, the boxes and dialogs in turn, the file written, the rows
// on the form after and the setting.
const char *const kSetups[][6] = {
    {"save names the unnamed rows, and the file its type",
     "txtRepAdd_0:5 | txtRepAdd_2:7 | txtRepName_2:C | save", "file:out",
     "Repeater  1:5\r\n:\r\nC:7\r\n:\r\n:\r\n:\r\n\r\n", "Repeater  1:5 | : | C:7 | : | : | :", "saved"},
    {"a save and a load close the rows up", "txtRepAdd_0:5 | txtRepAdd_2:7 | save | new | load",
     "file:out.nvr | saved:Yes | file:out.nvr", "Repeater  1:5\r\n:\r\nRepeater  3:7\r\n:\r\n:\r\n:\r\n\r\n",
     "Repeater  1:5 | Repeater  3:7 | : | : | : | :", "saved"},
    {"load on a saved setting", "saved | load", "saved:Yes | file:a.nvr", "",
     "X:5 | Y:7:8 | :9 | : | : | :", "saved"},
    {"load declined", "saved | load", "saved:No", "", ": | : | : | : | : | :", "saved"},
    {"open cancelled", "open", "file: ", "", ": | : | : | : | : | :", ""},
    {"open of a missing file", "open", "file:missing.nvr | not found", "", ": | : | : | : | : | :", ""},
    {"no address in row 1", "txtRepAdd_1:5 | save", "need", "", ": | :5 | : | : | : | :", ""},
    {"a colon in a name", "txtRepAdd_0:5 | txtRepAdd_1:6 | txtRepName_2:a:b | save", "colon", "",
     "Repeater  1:5 | Repeater  2:6 | a:b: | : | : | :", ""},
    {"save cancelled", "txtRepAdd_0:5 | save", "file:", "", "Repeater  1:5 | : | : | : | : | :", ""},
    {"continue without an address", "continue", "one", "", ": | : | : | : | : | :", ""},
    {"continue offers the save", "txtRepAdd_0:5 | continue", "not saved:Yes | file:out.nvr",
     "Repeater  1:5\r\n:\r\n:\r\n:\r\n:\r\n:\r\n\r\n", "test", "saved"},
    {"continue, not saved", "txtRepAdd_0:5 | continue", "not saved:No", "", "test", ""},
};

// The boxes of the set-up by key, with their icon and title.
const std::tuple<const char *, const char *, MsgIcon, const char *> kBoxes[] = {
    {"need", "Error:  The configuration needs at least one route address to save.", MsgIcon::None, ""},
    {"colon", "Repeater Name Can Not Contain A Colon", MsgIcon::Exclamation, ""},
    {"one", "At Least On Repeater Must Be Programmed To Continue", MsgIcon::Exclamation, ""},
    {"saved", "A Repeater Configuration File Has Been Previously Saved.  Do You Wish To Load This File?",
     MsgIcon::None, "Configuration Saved"},
    {"not saved",
     "The configuration menu has not been saved. If you do not save the information, it will need to be "
     "typed in again for the next test.  Do you wish to save the configuration now?",
     MsgIcon::None, "Configuration Not Saved"},
    {"not found", "File not found.  Please enter a valid file name.", MsgIcon::None, ""},
};

// A box by its key with the answer behind a colon, or a file dialog with the name it gives back.
void expect(ScriptedPrompts &prompts, const QString &item, const QString &dir)
{
    const QString key = item.section(u':', 0, 0), answer = item.section(u':', 1);
    if (key == u"file")
        prompts.expectFileDialog(answer.trimmed().isEmpty() ? answer : dir + u'/' + answer);
    for (const auto &[k, text, icon, title] : kBoxes)
        if (key == QLatin1String(k))
            prompts.expectAnswered(QLatin1String(text) + (answer.isEmpty() ? QString() : u':' + answer))
                .withIcon(icon)
                .withTitle(QLatin1String(title));
}
} // namespace

class RepeaterSitesTest : public QObject
{
    Q_OBJECT
private slots:
    void runs_data() { addRows(kRuns); }
    void runs()
    {
        const auto &[name, rows, base, fault, wire, block] = fetchRow(kRuns);
        Rig rig;
        QStringList lines;
        // Cancel is not looked at: the flag reads as cleared throughout, and every row is tried.
        TestHooks hooks{[] { return false; }, [&](const QString &line) { lines << line; }, [](auto) {},
                        [](auto) {}, [](double) {}};
        rig.link.network().setLinkDown(1, 7, QLatin1String(fault) == u"down");
        rig.link.local().setDead(QLatin1String(fault) == u"silent");
        RepeaterRows tested = rowsOf(rows);
        for (size_t i = 0; *base && i < tested.size(); ++i)
            tested[i] = repeaterSites(rowsOf(rows), true, QLatin1String(base))[i].row;
        RepeaterSiteRun(rig.session, hooks).run(tested);
        QCOMPARE(rig.wire(), QLatin1String(wire));
        QCOMPARE(lines.mid(4, lines.size() - 5).join(QStringLiteral(" | ")), QLatin1String(block));
    }

    void setups_data() { addRows(kSetups); }
    void setups()
    {
        const auto &[name, steps, boxes, file, after, setting] = fetchRow(kSetups);
        Rig rig;
        QTemporaryDir dir;
        QVERIFY(
            writeBytes(dir.filePath(QStringLiteral("a.nvr")), "X:5\r\n:\r\nY:7:8\r\nnone\r\n\r\n:9\r\n:"));
        Diagnostic diag(rig.session);
        bool saved = false;
        diag.repeaterSetup = [&] { return saved; };
        diag.setRepeaterSetup = [&](bool s) { saved = s; };
        for (const QString &box : items(boxes))
            expect(rig.prompts, box, dir.path());
        QPointer<RepTestConfig> config = new RepTestConfig(diag);
        const QMap<QString, std::function<void()>> acts{
            {QStringLiteral("saved"), [&] { saved = true; }},
            {QStringLiteral("load"), [&] { config->Load(); }},
            {QStringLiteral("new"), [&] { config = new RepTestConfig(diag); }},
            {QStringLiteral("open"), [&] { config->mnuOpen->trigger(); }},
            {QStringLiteral("save"), [&] { config->mnuSave->trigger(); }},
            {QStringLiteral("continue"), [&] { config->cmdContinue->click(); }}};
        for (const QString &step : items(steps))
            if (const auto act = acts.value(step))
                act();
            else
                config->findChild<QLineEdit *>(step.section(u':', 0, 0))->setText(step.section(u':', 1));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(rig.prompts.verify());
        QCOMPARE(readBytes(dir.filePath(QStringLiteral("out.nvr"))), *file ? QByteArray(file) : kNoFile);
        QStringList shown;
        for (int i = 0; config && i < kRepeaterRows; ++i)
            shown << config->txtRepName[size_t(i)]->text() + u':' + config->txtRepAdd[size_t(i)]->text();
        QCOMPARE(config ? shown.join(QStringLiteral(" | ")) : QStringLiteral("test"), QLatin1String(after));
        QCOMPARE(saved ? QStringLiteral("saved") : QString(), QLatin1String(setting));
    }

    // The set-up hands its rows to the test screen, whose labels the run reads and colours up to the
    // first empty row; Cancel of the progress dialog midway leaves its line and the run goes on, and a
    // close of the diagnostics waits for the end of the run.
    void screens()
    {
        Rig rig;
        Diagnostic diag(rig.session);
        diag.repeaterSetup = [] { return true; };
        diag.UnderTest.SerialText = QStringLiteral("Q40U14210");
        diag.UnderTest.OperatingFrequency = QStringLiteral("460.125");
        expect(rig.prompts, QStringLiteral("saved:No"), {});
        diag.mnuRTNRepTest->trigger();
        auto *config = diag.findChild<RepTestConfig *>();
        QVERIFY(matchesGolden(describeWindow(*config), QStringLiteral(VARNEL_GOLDEN "/RepTestConfig.txt")));
        for (const auto &[row, name, address] : {std::tuple{0, "A", "5"}, {1, "", "9"}, {3, "D", "7"}}) {
            config->txtRepName[row]->setText(QLatin1String(name));
            config->txtRepAdd[row]->setText(QLatin1String(address));
        }
        for (const bool kit : {true, false}) {
            config->chkMaintenceKit->setChecked(kit);
            QCOMPARE(config->lblBase->isVisibleTo(config) + config->txtBase->isVisibleTo(config), 2 * kit);
        }
        config->cmdContinue->click();
        auto *test = diag.findChild<RepeaterTest *>();
        QVERIFY(matchesGolden(describeWindow(*test), QStringLiteral(VARNEL_GOLDEN "/RepeaterTest.txt")));
        DiagInfo *info = diag.showDiagInfo({});
        QStringList bar;
        connect(info->pbStatus, &QProgressBar::valueChanged, info, [&, info](int value) {
            bar << QString::number(value);
            if (bar.size() == 5) {
                info->cmdCancel->click();
                diag.close();
            }
        });
        rig.prompts.expectAnswered(
            QStringLiteral("Do You Wish To Save The Diagnostic Testing Information To A File?:No"));
        test->cmdRun->click();
        QStringList rows;
        for (size_t i = 0; i < kRepeaterRows; ++i)
            for (QLabel *label : {test->lblRepName[i], test->lblAddTotal[i], test->lblLinkTotal[i]})
                rows << (!label->isVisibleTo(test) ? QStringLiteral("-")
                         : label == test->lblLinkTotal[i]
                             ? label->text() + u'/' + label->palette().color(QPalette::Window).name()
                             : label->text());
        QCOMPARE(rows.join(u' '),
                 QStringLiteral(
                     "A 5 Link Up/#00ff00 - 9 Link Down/#ff0000 - - - D 7 Not Tested/#ff0000 - - - - - -"));
        QCOMPARE(QString(diag.report().text())
                     .replace(QRegularExpression(QStringLiteral("=  [^\\r]*")), QStringLiteral("=  T")),
                 QString(60, u'*') +
                     QStringLiteral("\r\nRTN Repeater Testing\r\nTest Start=  T\r\nLink Status By Repeater "
                                    "Name and Address\r\nA - Add 5  = Link Up\r\nTest Canceled at User's "
                                    "Request\r\n - Add 9  = Link Down\r\nTest Stop=  T\r\n"));
        QCOMPARE(bar.join(u' '), QStringLiteral("1 10 30 75 100 0 1 10 30 75 100"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!diag.diagInfo() && !rig.prompts.busy() && rig.prompts.verify() && diag.DiagClosing);
    }
};

QTEST_MAIN(RepeaterSitesTest)
#include "RepeaterSitesTest.moc"
