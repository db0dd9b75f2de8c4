#include "ModemSession.h"
#include "AppError.h"
#include "MemoryCommControl.h"
#include "ScriptedModem.h"
#include "ScriptedPrompts.h"
#include "SessionRig.h"
#include "TimeSource.h"

#include <QTest>

namespace {
const QString kQuestion = QStringLiteral(
    "The Varnel is not detected on the selected comm port.  Would you like to initialize the IR Dongel?");
const QString kSwitchBox = QStringLiteral(
    "Not communicating.  Make sure last switch on switch block (#8 or #2) is down.  Then reset.");
const QString kLongFinal = QStringLiteral(
    "No Communication with the connected Varnel.  Verify all cable connections and try again.");

QString hexBytes(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex(' '));
}

struct Rig : SessionRig
{
    Rig() : SessionRig(CommControl::kAutoProcessTerminal) {}

    // The writes with the virtual time of each, as "ms:bytes" in hexadecimal.
    QStringList transcript() const { return SessionRig::transcript(hexBytes); }
};

QString hex(const char *text)
{
    return QString::fromLatin1(QByteArray(text).toHex(' '));
}

QString at(qint64 ms, const char *text)
{
    return QStringLiteral("%1:%2").arg(ms).arg(hex(text));
}
} // namespace

class ModemSessionTest : public QObject
{
    Q_OBJECT
private slots:
    void modemAtPromptAnswersFirstCtrlC();
    void modemThatMissesCtrlCGetsFactoryDefault();
    void silentModemWithoutAdaptorEndsInFinalBox();
    void abortOnSwitchBoxRestoresAutoProcess();
    void adaptorThatDoesNotAnswer();
    void adaptorUpButModemSilent();
    void keepNeverSendsFactoryDefault();
    void keepTakesAnyLineAfterCtrlC();
    void probeIsQuietAndTriesFactoryDefault();
    void closedPortEndsInBoxesNotErrors();

    void waitForReplyPasses();
    void waitForReplyFindsSplitPrompt();
    void waitForReplyCheckedSeesRefusalOnlyAfterLoop();
    void waitForReplyPolledStopsOnFailure();
    void waitForBytesGivesUpAfterFiveSeconds();
    void waitForBytesOkLeavesPresetWhenDataIsThere();
    void settlingCutsAReplyWithAGap();

    void adaptorSendsOneCharacterAtATime();
    void initIrDongleTranscript();
    void nestedWaitRearmsTheOneTimer();
};

void ModemSessionTest::modemAtPromptAnswersFirstCtrlC()
{
    Rig rig;
    rig.modem.answer("\x03", "\r\nCMD:", 20);
    QVERIFY(rig.session.EnterCommandMode());
    QCOMPARE(rig.transcript(), QStringList{at(0, "\x03")});
    QCOMPARE(rig.time.elapsedMs(), 100);
    QCOMPARE(rig.port.AutoProcess(), 3);
    QVERIFY(rig.prompts.verify());
}

void ModemSessionTest::modemThatMissesCtrlCGetsFactoryDefault()
{
    Rig rig;
    rig.modem.answer("FA\r", "\r\nUnit Address? \r\nCMD:", 40);
    QVERIFY(rig.session.EnterCommandMode());
    QCOMPARE(rig.transcript(), (QStringList{at(0, "\x03"), at(1000, "FA\r")}));
    QCOMPARE(rig.time.elapsedMs(), 1100);
}

void ModemSessionTest::silentModemWithoutAdaptorEndsInFinalBox()
{
    Rig rig;
    rig.prompts.expectMsgBox(kQuestion, MsgAnswer::No).withButtons(MsgButtons::YesNo).withIcon(MsgIcon::None);
    rig.prompts.expectMsgBox(kSwitchBox, MsgAnswer::Retry)
        .withButtons(MsgButtons::AbortRetryIgnore)
        .withIcon(MsgIcon::Exclamation);
    rig.prompts.expectMsgBox(kLongFinal)
        .withIcon(MsgIcon::Exclamation)
        .withTitle(QStringLiteral("Unable to find Varnel"));

    QVERIFY(!rig.session.EnterCommandMode());
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.transcript(), (QStringList{at(0, "\x03"), at(1000, "FA\r"), at(2000, "FA\r"),
                                            at(4000, "\x03"
                                                     "FA\r")}));
    const auto shown = rig.prompts.shown();
    QCOMPARE(shown[0].atMs, 2000);
    QCOMPARE(shown[1].atMs, 4000);
    QCOMPARE(shown[2].atMs, 6000);
    // The port stays in the program's hands after this box.
    QCOMPARE(rig.port.AutoProcess(), 0);
}

void ModemSessionTest::abortOnSwitchBoxRestoresAutoProcess()
{
    Rig rig;
    rig.prompts.expectMsgBox(kQuestion, MsgAnswer::No);
    rig.prompts.expectMsgBox(kSwitchBox, MsgAnswer::Abort);
    QVERIFY(!rig.session.EnterCommandMode());
    QCOMPARE(rig.transcript().size(), 3);
    QCOMPARE(rig.port.AutoProcess(), 3);
    QVERIFY(rig.prompts.verify());
}

void ModemSessionTest::adaptorThatDoesNotAnswer()
{
    Rig rig;
    rig.port.setSettings(QStringLiteral("19200,n,8,1"));
    rig.prompts.expectMsgBox(kQuestion, MsgAnswer::Yes);
    rig.prompts.expectMsgBox(QStringLiteral("The Infra-Red Dongle is not responding"))
        .withIcon(MsgIcon::None);
    QVERIFY(!rig.session.EnterCommandMode());
    QVERIFY(rig.prompts.verify());
    QVERIFY(!rig.session.IrDongleActive);
    QCOMPARE(rig.port.Settings(), QStringLiteral("19200,n,8,1"));
    QVERIFY(rig.port.DTREnable());
    QVERIFY(rig.port.RTSEnable());
    QCOMPARE(rig.port.AutoProcess(), 3);
    QCOMPARE(rig.transcript(),
             (QStringList{at(0, "\x03"), at(1000, "FA\r"), at(2030, "\xD1"), at(2030, "\xC0")}));
}

void ModemSessionTest::adaptorUpButModemSilent()
{
    for (const MsgAnswer answer : {MsgAnswer::Cancel, MsgAnswer::Retry}) {
        Rig rig;
        rig.modem.answer("\xC0", "\xC2", 10);
        rig.prompts.expectMsgBox(kQuestion, MsgAnswer::Yes);
        rig.prompts
            .expectMsgBox(
                QStringLiteral("Not communicating.  Make sure bit 8 on switch  block is down.  Then reset."),
                answer)
            .withTitle(QStringLiteral("Unable to get Communication"))
            .withButtons(MsgButtons::RetryCancel);
        if (answer == MsgAnswer::Retry)
            rig.prompts.expectMsgBox(QStringLiteral("No Communication"))
                .withIcon(MsgIcon::Exclamation)
                .withTitle(QStringLiteral("Unable to get find Varnel."));
        QVERIFY(!rig.session.EnterCommandMode());
        QVERIFY(rig.prompts.verify());
        QVERIFY(rig.session.IrDongleActive);
        QCOMPARE(rig.port.Settings(), QStringLiteral("9600,n,8,1"));
        QCOMPARE(rig.port.AutoProcess(), 3);
        QStringList expected{at(0, "\x03"),    at(1000, "FA\r"), at(2030, "\xD1"), at(2030, "\xC0"),
                             at(2130, "\xD0"), at(2130, "\x03"), at(2130, "\x45"), at(2230, "\x03")};
        if (answer == MsgAnswer::Retry)
            expected << at(4230, "\x03"
                                 "FA\r");
        QCOMPARE(rig.transcript(), expected);
    }
}

void ModemSessionTest::keepNeverSendsFactoryDefault()
{
    {
        Rig rig;
        rig.prompts.expectMsgBox(kQuestion, MsgAnswer::No);
        rig.prompts.expectMsgBox(kSwitchBox, MsgAnswer::Ignore);
        rig.prompts.expectMsgBox(QStringLiteral("No Communication"))
            .withIcon(MsgIcon::Exclamation)
            .withTitle(QStringLiteral("Unable to find Varnel"));
        QVERIFY(!rig.session.EnterCommandModeKeep());
        QVERIFY(rig.prompts.verify());
        QCOMPARE(rig.transcript(),
                 (QStringList{at(0, "\x03"), at(1000, "\x03\r"), at(2000, "\x03"), at(4000, "\x03\r")}));
        QCOMPARE(rig.port.AutoProcess(), 0);
    }
    {
        Rig rig;
        rig.modem.answer("\xC0", "\xC2", 10);
        rig.prompts.expectMsgBox(kQuestion, MsgAnswer::Yes);
        rig.prompts
            .expectMsgBox(
                QStringLiteral(
                    "Not communicating.  Check all connections, reset modem,  press the Retry button."),
                MsgAnswer::Retry)
            .withTitle(QStringLiteral("Unable to get Communication"));
        rig.prompts.expectMsgBox(kLongFinal).withTitle(QStringLiteral("Unable to get find Varnel."));
        QVERIFY(!rig.session.EnterCommandModeKeep());
        QVERIFY(rig.prompts.verify());
        QVERIFY(!rig.port.written().contains("FA"));
        QCOMPARE(rig.port.AutoProcess(), 3);
    }
}

void ModemSessionTest::keepTakesAnyLineAfterCtrlC()
{
    Rig rig;
    // A modem in a data mode ignores the lone Ctrl-C but echoes a line for the carriage return.
    rig.modem.answer("\x03\r", "garbage\r\n", 50);
    QVERIFY(rig.session.EnterCommandModeKeep());
    QCOMPARE(rig.transcript(), (QStringList{at(0, "\x03"), at(1000, "\x03\r")}));
    QCOMPARE(rig.time.elapsedMs(), 1100);
}

void ModemSessionTest::probeIsQuietAndTriesFactoryDefault()
{
    Rig rig;
    QVERIFY(!rig.session.ProbeCommandPrompt());
    QCOMPARE(rig.transcript(), (QStringList{at(0, "\x03"), at(1000, "FA\r")}));
    QCOMPARE(rig.time.elapsedMs(), 2000);
    QCOMPARE(rig.port.AutoProcess(), 3);
    QVERIFY(rig.prompts.verify());

    Rig answering;
    answering.modem.answer("\x03", "CMD:");
    QVERIFY(answering.session.ProbeCommandPrompt());
}

void ModemSessionTest::closedPortEndsInBoxesNotErrors()
{
    Rig rig;
    rig.port.setPortOpen(false);
    rig.prompts.expectMsgBox(kQuestion, MsgAnswer::No);
    rig.prompts.expectMsgBox(kSwitchBox, MsgAnswer::Retry);
    rig.prompts.expectMsgBox(kLongFinal);
    QVERIFY(!rig.session.EnterCommandMode());
    QVERIFY(rig.prompts.verify());
    QCOMPARE(rig.time.elapsedMs(), 6000);

    // Outside the entry routines the failed write reaches the caller's handler.
    try {
        rig.session.sendCommand("Model");
        QFAIL("a write to a closed port must fail");
    } catch (const AppError &error) {
        QCOMPARE(error.number, AppErrors::PortNotOpen);
    }
}

void ModemSessionTest::waitForReplyPasses()
{
    Rig rig;
    rig.port.setAutoProcess(0);
    rig.port.feed("CMD:");
    QVERIFY(!rig.session.WaitForReply("CMD:", 99));
    QCOMPARE(rig.time.elapsedMs(), 0);
    QCOMPARE(rig.port.InBufferCount(), 4);

    rig.port.Input();
    QVERIFY(!rig.session.WaitForReply("CMD:", 250));
    QCOMPARE(rig.time.elapsedMs(), 200);
}

void ModemSessionTest::waitForReplyFindsSplitPrompt()
{
    Rig rig;
    rig.port.setAutoProcess(0);
    rig.modem.sendLater("\r\nCM", 50);
    rig.modem.sendLater("D:", 150);
    QVERIFY(rig.session.WaitForReply("CMD:", 1000));
    QCOMPARE(rig.time.elapsedMs(), 200);
}

void ModemSessionTest::waitForReplyCheckedSeesRefusalOnlyAfterLoop()
{
    Rig rig;
    rig.port.setAutoProcess(0);
    rig.modem.sendLater("INVALID\r\nCMD:", 30);
    QVERIFY(!rig.session.WaitForReplyChecked("CMD:", 1000));
    QCOMPARE(rig.time.elapsedMs(), 100);

    Rig refusing;
    refusing.port.setAutoProcess(0);
    refusing.modem.sendLater("INVALID\r\n", 30);
    QVERIFY(!refusing.session.WaitForReplyChecked("CMD:", 1000));
    QCOMPARE(refusing.time.elapsedMs(), 1000);

    Rig accepting;
    accepting.port.setAutoProcess(0);
    accepting.modem.sendLater("\r\nCMD:", 30);
    QVERIFY(accepting.session.WaitForReplyChecked("CMD:", 1000));
}

void ModemSessionTest::waitForReplyPolledStopsOnFailure()
{
    Rig rig;
    rig.port.setAutoProcess(0);
    rig.modem.sendLater("12 SS03 \r", 250);
    bool found = true, failed = false;
    rig.session.WaitForReplyPolled("SS00", 3000, found, failed);
    QVERIFY(!found);
    QVERIFY(failed);
    QCOMPARE(rig.time.elapsedMs(), 300);

    rig.session.WaitForReplyPolled("SS00", 500, found, failed);
    QVERIFY(!found);
    QVERIFY(!failed);
}

void ModemSessionTest::waitForBytesGivesUpAfterFiveSeconds()
{
    Rig rig;
    rig.session.WaitForBytes(10);
    QCOMPARE(rig.port.AutoProcess(), 0);
    QCOMPARE(rig.time.elapsedMs(), 5100);

    Rig ok;
    bool fine = true;
    ok.session.WaitForBytesOk(10, fine);
    QVERIFY(!fine);
    QCOMPARE(ok.time.elapsedMs(), 5100);
}

void ModemSessionTest::waitForBytesOkLeavesPresetWhenDataIsThere()
{
    Rig rig;
    rig.port.setAutoProcess(0);
    rig.port.feed("MODEL     = Q4U\r\n");
    bool ok = false;
    rig.session.WaitForBytesOk(10, ok);
    QVERIFY(!ok);
    // Only the 5 ms settling steps ran.
    QCOMPARE(rig.time.elapsedMs(), 5);

    Rig later;
    later.modem.sendLater("MODEL     = Q4U\r\n", 150);
    later.session.WaitForBytesOk(10, ok);
    QVERIFY(ok);
    QCOMPARE(later.time.elapsedMs(), 205);
}

void ModemSessionTest::settlingCutsAReplyWithAGap()
{
    Rig rig;
    const QByteArray first(20, 'a'), second(20, 'b');
    rig.modem.sendLater(first, 50);
    rig.modem.sendLater(second, 400);
    rig.session.WaitForBytes(10);
    QCOMPARE(rig.port.Input(), first);
    QCOMPARE(rig.time.elapsedMs(), 200);
    rig.session.MsDelay(300);
    QCOMPARE(rig.port.Input(), second);
}

void ModemSessionTest::adaptorSendsOneCharacterAtATime()
{
    Rig rig;
    rig.session.IrDongleActive = true;
    rig.port.feed("stale");
    rig.session.sendCommand("Squelch");
    QCOMPARE(rig.port.InBufferCount(), 0);
    const QStringList writes = rig.transcript();
    QCOMPARE(writes.size(), 8);
    for (int i = 0; i < 8; ++i)
        QCOMPARE(writes[i], QStringLiteral("%1:%2").arg(i).arg(
                                QString::fromLatin1(QByteArray(1, "Squelch\r"[i]).toHex())));
    QCOMPARE(rig.time.elapsedMs(), 8);

    Rig cable;
    cable.session.sendCommand("Squelch");
    QCOMPARE(cable.port.writes(), QList<QByteArray>{"Squelch\r"});
    cable.session.IrDongleActive = true;
    cable.session.sendCommand("Model", ModemSession::Way::OneWrite);
    QCOMPARE(cable.port.writes().last(), QByteArray("Model\r"));
}

void ModemSessionTest::initIrDongleTranscript()
{
    Rig rig;
    rig.port.setAutoProcess(0);
    rig.modem.answer("\xC0", "\xC2", 10);
    rig.session.InitIrDongle();
    QVERIFY(rig.session.IrDongleActive);
    QStringList events;
    for (const WireEvent &e : rig.port.events()) {
        switch (e.kind) {
        case WireEvent::Kind::Settings:
            events << QStringLiteral("%1 settings %2").arg(e.atMs).arg(QString::fromLatin1(e.bytes));
            break;
        case WireEvent::Kind::ControlLines:
            events << QStringLiteral("%1 dtr %2 rts %3").arg(e.atMs).arg(e.dtr).arg(e.rts);
            break;
        case WireEvent::Kind::Write:
            events << QStringLiteral("%1 write %2").arg(e.atMs).arg(QString::fromLatin1(e.bytes.toHex()));
            break;
        default:
            break;
        }
    }
    const QStringList expected{
        QStringLiteral("0 settings 9600,n,8,1"), QStringLiteral("0 dtr 1 rts 0"),
        QStringLiteral("30 dtr 1 rts 1"),        QStringLiteral("30 dtr 0 rts 1"),
        QStringLiteral("30 write d1"),           QStringLiteral("30 write c0"),
        QStringLiteral("130 write d0"),          QStringLiteral("130 write 03"),
        QStringLiteral("130 write 45"),          QStringLiteral("230 dtr 1 rts 1"),
    };
    QCOMPARE(events, expected);
    QCOMPARE(rig.port.Settings(), QStringLiteral("9600,n,8,1"));
}

void ModemSessionTest::nestedWaitRearmsTheOneTimer()
{
    VirtualTime time;
    qint64 innerEnded = -1;
    time.after(10, [&] {
        time.MsDelay(20);
        innerEnded = time.elapsedMs();
    });
    time.MsDelay(100);
    // The wait begun inside the first re-armed the one timer: both ended when it fired.
    QCOMPARE(innerEnded, 30);
    QCOMPARE(time.elapsedMs(), 30);
}

QTEST_GUILESS_MAIN(ModemSessionTest)
#include "ModemSessionTest.moc"
