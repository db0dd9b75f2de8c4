#include "ModemSession.h"

#include "SessionRig.h"
#include "Tables.h"

namespace {
// The boxes of the entry routines, by the names the scenarios give them.
struct BoxLook
{
    const char *key;
    const char *text;
    MsgButtons buttons;
    MsgIcon icon;
    const char *title;
};

const char *const kLongFinal =
    "No Communication with the connected Varnel.  Verify all cable connections and try again.";

const BoxLook kBoxes[] = {
    {"dongle?",
     "The Varnel is not detected on the selected comm port.  Would you like to initialize the IR Dongel?",
     MsgButtons::YesNo, MsgIcon::None, ""},
    {"switch", "Not communicating.  Make sure last switch on switch block (#8 or #2) is down.  Then reset.",
     MsgButtons::AbortRetryIgnore, MsgIcon::Exclamation, ""},
    {"unable", kLongFinal, MsgButtons::OkOnly, MsgIcon::Exclamation, "Unable to find Varnel"},
    {"keep unable", "No Communication", MsgButtons::OkOnly, MsgIcon::Exclamation, "Unable to find Varnel"},
    {"bit 8", "Not communicating.  Make sure bit 8 on switch  block is down.  Then reset.",
     MsgButtons::RetryCancel, MsgIcon::None, "Unable to get Communication"},
    {"keep retry", "Not communicating.  Check all connections, reset modem,  press the Retry button.",
     MsgButtons::RetryCancel, MsgIcon::None, "Unable to get Communication"},
    {"get find", "No Communication", MsgButtons::OkOnly, MsgIcon::Exclamation, "Unable to get find Varnel."},
    {"keep get find", kLongFinal, MsgButtons::OkOnly, MsgIcon::Exclamation, "Unable to get find Varnel."},
    {"dongle silent", "The Infra-Red Dongle is not responding", MsgButtons::OkOnly, MsgIcon::None, ""},
};

// The far end's canned answers, by name: what it hears, what it says, how much later.
const char *const kAnswers[][4] = {
    {"prompt", "\x03", "\r\nCMD:", "20"},
    {"unit address", "FA\r", "\r\nUnit Address? \r\nCMD:", "40"},
    {"adaptor", "\xC0", "\xC2", "10"},
    // A modem in a data mode ignores the lone Ctrl-C but echoes a line for the carriage return.
    {"any line", "\x03\r", "garbage\r\n", "50"},
};

// An entry routine (on a closed port where it says so) against a far end (answers by name) and a
// user (the answers to the boxes in turn): the timeline of writes, line settings, control lines and
// boxes with their times; after it "result AutoProcess settings adaptor dtr rts", and the time taken.
const char *const kEntries[][7] = {
    {"prompt at the first Ctrl-C", "EnterCommandMode", "prompt", "", "0:<03>",
     "yes 3 19200,n,8,1 off dtr rts", "100"},
    {"factory default when Ctrl-C is missed", "EnterCommandMode", "unit address", "", "0:<03> | 1000:FA\\r",
     "yes 3 19200,n,8,1 off dtr rts", "1100"},
    {"silent, no adaptor, retry", "EnterCommandMode", "", "No Retry Ok",
     "0:<03> | 1000:FA\\r | 2000:dongle? | 2000:FA\\r | 4000:switch | 4000:<03>FA\\r | 6000:unable",
     "no 0 19200,n,8,1 off dtr rts", "6000"},
    {"silent, no adaptor, abort", "EnterCommandMode", "", "No Abort",
     "0:<03> | 1000:FA\\r | 2000:dongle? | 2000:FA\\r | 4000:switch", "no 3 19200,n,8,1 off dtr rts", "4000"},
    {"closed port: boxes, no failure", "EnterCommandMode, closed port", "", "No Retry Ok",
     "2000:dongle? | 4000:switch | 6000:unable", "no 0 19200,n,8,1 off dtr rts", "6000"},
    {"adaptor silent", "EnterCommandMode", "", "Yes Ok",
     "0:<03> | 1000:FA\\r | 2000:dongle? | 2000:settings 9600,n,8,1 | 2000:dtr 1 rts 0 | 2030:dtr 1 rts 1 | "
     "2030:dtr 0 rts 1 | 2030:<D1> | 2030:<C0> | 2230:dongle silent | 2230:settings 19200,n,8,1 | "
     "2230:dtr 0 rts 1 | 2230:dtr 1 rts 1",
     "no 3 19200,n,8,1 off dtr rts", "2230"},
    {"adaptor up, modem silent, cancel", "EnterCommandMode", "adaptor", "Yes Cancel",
     "0:<03> | 1000:FA\\r | 2000:dongle? | 2000:adaptor up | 2230:<03> | 4230:bit 8",
     "no 3 9600,n,8,1 on dtr rts", "4230"},
    {"adaptor up, modem silent, retry", "EnterCommandMode", "adaptor", "Yes Retry Ok",
     "0:<03> | 1000:FA\\r | 2000:dongle? | 2000:adaptor up | 2230:<03> | 4230:bit 8 | 4230:<03>FA\\r | "
     "6230:get find",
     "no 3 9600,n,8,1 on dtr rts", "6230"},
    {"keep: never a factory default", "EnterCommandModeKeep", "", "No Ignore Ok",
     "0:<03> | 1000:<03>\\r | 2000:dongle? | 2000:<03> | 4000:switch | 4000:<03>\\r | 6000:keep unable",
     "no 0 19200,n,8,1 off dtr rts", "6000"},
    {"keep: adaptor up, modem silent, retry", "EnterCommandModeKeep", "adaptor", "Yes Retry Ok",
     "0:<03> | 1000:<03>\\r | 2000:dongle? | 2000:adaptor up | 2230:<03> | 4230:keep retry | 4230:<03>\\r | "
     "6230:keep get find",
     "no 3 9600,n,8,1 on dtr rts", "6230"},
    {"keep: any line will do", "EnterCommandModeKeep", "any line", "", "0:<03> | 1000:<03>\\r",
     "yes 3 19200,n,8,1 off dtr rts", "1100"},
    {"probe: quiet, then factory default", "ProbeCommandPrompt", "", "", "0:<03> | 1000:FA\\r",
     "no 3 19200,n,8,1 off dtr rts", "2000"},
    {"probe: prompt", "ProbeCommandPrompt", "prompt", "", "0:<03>", "yes 3 19200,n,8,1 off dtr rts", "100"},
    {"probe: factory default", "ProbeCommandPrompt", "unit address", "", "0:<03> | 1000:FA\\r",
     "yes 3 19200,n,8,1 off dtr rts", "1100"},
    {"adaptor start-up", "InitIrDongle", "adaptor", "", "0:adaptor up", "- 0 9600,n,8,1 on dtr rts", "230"},
};

// The adaptor's start-up from time t, as it should go, shown as "t:adaptor up".
QStringList adaptorUp(qint64 t)
{
    QStringList lines;
    for (const char *step : {"0:settings 9600,n,8,1", "0:dtr 1 rts 0", "30:dtr 1 rts 1", "30:dtr 0 rts 1",
                             "30:<D1>", "30:<C0>", "130:<D0>", "130:<03>", "130:E", "230:dtr 1 rts 1"})
        lines << QStringLiteral("%1:%2").arg(t + atoi(step)).arg(QLatin1String(strchr(step, ':') + 1));
    return lines;
}

// The wire as "ms:what" (writes, line settings, control lines), with the boxes shown between.
QStringList timeline(const MemoryCommControl &port, const QList<std::pair<qsizetype, QString>> &boxes)
{
    QStringList lines;
    const QList<WireEvent> &events = port.events();
    for (qsizetype i = 0, b = 0; i <= events.size(); ++i) {
        for (; b < boxes.size() && boxes[b].first == i; ++b)
            lines << boxes[b].second;
        if (i == events.size())
            break;
        const WireEvent &e = events[i];
        if (e.kind == WireEvent::Kind::Write)
            lines << QStringLiteral("%1:%2").arg(e.atMs).arg(SessionRig::shown(e.bytes));
        else if (e.kind == WireEvent::Kind::Settings)
            lines << QStringLiteral("%1:settings %2").arg(e.atMs).arg(QLatin1String(e.bytes));
        else if (e.kind == WireEvent::Kind::ControlLines)
            lines << QStringLiteral("%1:dtr %2 rts %3").arg(e.atMs).arg(e.dtr).arg(e.rts);
    }
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const qint64 t = lines[i].section(u':', 0, 0).toLongLong();
        if (lines.mid(i, 10) == adaptorUp(t)) {
            lines.remove(i + 1, 9);
            lines[i] = QStringLiteral("%1:adaptor up").arg(t);
        }
    }
    return lines;
}

QString yes(bool value)
{
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

// A primitive on a line that delivers some bytes at once and others later ("bytes@ms"): its result,
// what waits unread after it, the time it took, the port's mode before it, and the writes when given.
const char *const kWaits[][8] = {
    {"reply: shorter than one step", "reply 99", "CMD:", "", "no, 4 left", "0", "0"},
    {"reply: steps of 100 ms", "reply 250", "", "", "no, 0 left", "200", "0"},
    {"reply: split prompt", "reply 1000", "", "\r\nCM@50 | D:@150", "yes, 0 left", "200", "0"},
    {"checked: refusal seen after the loop", "checked", "", "INVALID\r\nCMD:@30", "no, 0 left", "100", "0"},
    {"checked: ambiguous", "checked", "", "AMBIGUOUS\r\nCMD:@30", "no, 0 left", "100", "0"},
    {"checked: refusal without prompt", "checked", "", "INVALID\r\n@30", "no, 0 left", "1000", "0"},
    {"checked: accepted", "checked", "", "\r\nCMD:@30", "yes, 0 left", "100", "0"},
    {"polled: failure", "polled 3000", "", "12 SS03 \r@250", "found no failed yes, 0 left", "300", "0"},
    {"polled: found", "polled 3000", "", "12 SS00 \r@250", "found yes failed no, 0 left", "300", "0"},
    {"polled: silent", "polled 500", "", "", "found no failed no, 0 left", "500", "0"},
    {"bytes: silent, from the terminal", "bytes", "", "", ", 0 left", "5100", "3"},
    {"bytes: as many as asked are not enough", "bytes", "0123456789", "", ", 10 left", "5200", "0"},
    // The reply has begun; it is whole once two looks a step apart agree.
    {"bytes: a gap ends the reply", "bytes, then more", "",
     "aaaaaaaaaaaaaaaaaaaa@50 | bbbbbbbbbbbbbbbbbbbb@400",
     "aaaaaaaaaaaaaaaaaaaa|bbbbbbbbbbbbbbbbbbbb, 0 left", "500", "0"},
    {"bytes ok: silent", "bytes ok", "", "", "no, 0 left", "5100", "3"},
    {"bytes ok: as many as asked are not enough", "bytes ok", "0123456789", "", "no, 10 left", "5100", "0"},
    // ok stays as the caller set it when the bytes were there at the first look; settling takes 5 ms steps.
    {"bytes ok: there at once", "bytes ok, preset no", "MODEL     = Q4U\r\n", "", "no, 17 left", "5", "0"},
    {"bytes ok: later", "bytes ok, preset no", "", "MODEL     = Q4U\r\n@150", "yes, 17 left", "205", "0"},
    {"command over the adaptor: a character at a time", "adaptor: Squelch", "stale", "", ", 0 left", "8", "0",
     "0:S | 1:q | 2:u | 3:e | 4:l | 5:c | 6:h | 7:\\r"},
    {"command over the cable", "Squelch", "stale", "", ", 0 left", "0", "0", "0:Squelch\\r"},
    {"command in one write over the adaptor", "adaptor: one write", "", "", ", 0 left", "0", "0",
     "0:Model\\r"},
    {"text as it stands over the adaptor", "adaptor: text", "stale", "", ", 5 left", "2", "0", "0:a | 1:b"},
    {"closed port: the write fails", "closed", "", "", "error 8018, 0 left", "0", "0"},
};

QString call(ModemSession &s, const QString &how)
{
    const int ms = how.section(u' ', -1).toInt();
    bool found = true, failed = true, ok = !how.endsWith(u"no");
    s.IrDongleActive = how.startsWith(u"adaptor");
    if (how.startsWith(u"reply"))
        return yes(s.WaitForReply("CMD:", ms));
    if (how == u"checked")
        return yes(s.WaitForReplyChecked("CMD:", 1000));
    if (how.startsWith(u"polled")) {
        s.WaitForReplyPolled("SS00", ms, found, failed);
        return QStringLiteral("found %1 failed %2").arg(yes(found), yes(failed));
    }
    if (how.startsWith(u"bytes ok")) {
        s.WaitForBytesOk(10, ok);
        return yes(ok);
    }
    if (how.startsWith(u"bytes")) {
        s.WaitForBytes(10);
        if (how == u"bytes")
            return {};
        const QByteArray first = s.Comm1().Input();
        s.MsDelay(300);
        return QString::fromLatin1(first + '|' + s.Comm1().Input());
    }
    if (how == u"closed")
        s.Comm1().setPortOpen(false);
    return outcome([&] {
        if (how == u"adaptor: text")
            s.sendText("ab");
        else if (how == u"adaptor: one write")
            s.sendCommand("Model", ModemSession::Way::OneWrite);
        else
            s.sendCommand(how.endsWith(u"Squelch") ? "Squelch" : "Model");
        return QString();
    });
}
} // namespace

class ModemSessionTest : public QObject
{
    Q_OBJECT
private slots:
    void entries_data() { addRows(kEntries); }
    void entries()
    {
        const auto &[name, routineName, answers, userAnswers, expected, after, elapsedMs] =
            fetchRow(kEntries);
        SessionRig rig(CommControl::kAutoProcessTerminal);
        if (QByteArray(routineName).endsWith("closed port"))
            rig.port.setPortOpen(false);
        for (const QString &key : items(answers)) {
            for (const auto &[answer, trigger, reply, delayMs] : kAnswers)
                if (key == QLatin1String(answer))
                    rig.modem.answer(trigger, reply, atoi(delayMs));
        }
        const QStringList user = QString::fromLatin1(userAnswers).split(u' ', Qt::SkipEmptyParts);
        const QStringList answerNames{QStringLiteral("Ok"),     QStringLiteral("Cancel"),
                                      QStringLiteral("Abort"),  QStringLiteral("Retry"),
                                      QStringLiteral("Ignore"), QStringLiteral("Yes"),
                                      QStringLiteral("No")};
        QList<std::pair<qsizetype, QString>> boxes;
        int next = 0;
        for (const QString &line : items(expected)) {
            for (const BoxLook &b : kBoxes) {
                if (line.section(u':', 1) != QLatin1String(b.key))
                    continue;
                const auto answer = MsgAnswer(answerNames.indexOf(user.value(next++)));
                rig.prompts.expectMsgBox(QLatin1String(b.text), answer)
                    .withButtons(b.buttons)
                    .withIcon(b.icon)
                    .withTitle(QLatin1String(b.title))
                    .then([&rig, &boxes, key = b.key] {
                        boxes.append(
                            {rig.port.events().size(),
                             QStringLiteral("%1:%2").arg(rig.time.elapsedMs()).arg(QLatin1String(key))});
                    });
            }
        }
        QString result = QStringLiteral("-");
        const QString routine = QString::fromLatin1(routineName).section(u',', 0, 0);
        if (routine == u"InitIrDongle") {
            rig.port.setAutoProcess(0);
            rig.session.InitIrDongle();
        } else {
            result = yes(routine == u"EnterCommandMode"       ? rig.session.EnterCommandMode()
                         : routine == u"EnterCommandModeKeep" ? rig.session.EnterCommandModeKeep()
                                                              : rig.session.ProbeCommandPrompt());
        }
        QVERIFY(rig.prompts.verify());
        QCOMPARE(timeline(rig.port, boxes), items(expected));
        const auto word = [](bool on, const char *what) {
            return on ? QLatin1String(what) : QLatin1String("-");
        };
        QCOMPARE(QStringLiteral("%1 %2 %3 %4 %5 %6")
                     .arg(result)
                     .arg(rig.port.AutoProcess())
                     .arg(rig.port.Settings(),
                          rig.session.IrDongleActive ? QStringLiteral("on") : QStringLiteral("off"),
                          word(rig.port.DTREnable(), "dtr"), word(rig.port.RTSEnable(), "rts")),
                 QLatin1String(after));
        QCOMPARE(rig.time.elapsedMs(), qint64(atoi(elapsedMs)));
    }

    void waits_data() { addRows(kWaits); }
    void waits()
    {
        const auto &[name, how, now, later, expected, elapsedMs, autoProcess, writes] = fetchRow(kWaits);
        SessionRig rig(atoi(autoProcess));
        rig.port.feed(now);
        for (const QString &bytes : items(later))
            rig.modem.sendLater(bytes.section(u'@', 0, 0).toLatin1(), bytes.section(u'@', 1).toInt());
        rig.port.clearEvents();
        const QString result = call(rig.session, QLatin1String(how));
        QCOMPARE(QStringLiteral("%1, %2 left").arg(result).arg(rig.port.InBufferCount()),
                 QLatin1String(expected));
        QCOMPARE(rig.time.elapsedMs(), qint64(atoi(elapsedMs)));
        QCOMPARE(rig.port.AutoProcess(), 0);
        if (writes)
            QCOMPARE(rig.transcript(), items(writes));
    }

    void floodNobodyReadsStaysBounded()
    {
        // A hundred megabytes while no dialogue reads: the control keeps the newest, where the prompt stands.
        SessionRig rig(CommControl::kAutoProcessProgram);
        for (int i = 0; i < 100; ++i)
            rig.port.feed(QByteArray(1 << 20, 'x'));
        rig.port.feed("\r\nCMD:");
        QCOMPARE(rig.port.Input(), QByteArray(CommControl::kInBufferLimit - 6, 'x') + "\r\nCMD:");
    }

    void nestedWaitRearmsTheOneTimer()
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
};

QTEST_GUILESS_MAIN(ModemSessionTest)
#include "ModemSessionTest.moc"
