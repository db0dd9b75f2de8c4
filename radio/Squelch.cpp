#include "Squelch.h"

#include "AppError.h"
#include "CommControl.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "Prompts.h"

#include <algorithm>
#include <array>

namespace {
constexpr int kLevels = 4;
constexpr int kFlickerReads = 20;
constexpr int kSearchStep = 10;
constexpr int kSearchMargin = 20;
constexpr int kBarStep = 4;
constexpr int kHighest = 255;

const QChar kMicro(0xB5);

struct Profile
{
    const char *model;
    std::array<int, kLevels> asquelch;
};
// The first column is also the limit of the automatic search.
const Profile kProfiles[] = {
    {"Q4U", {90, 115, 150, 195}},    {"Q4Y", {110, 140, 170, 210}}, {"Q4ULX", {125, 160, 190, 240}},
    {"Q4YLX", {130, 170, 195, 240}}, {"Q4W", {120, 150, 180, 225}},
};

const Profile *profileOf(const QString &model)
{
    const auto p = std::find_if(std::begin(kProfiles), std::end(kProfiles),
                                [&](const Profile &x) { return model == QLatin1String(x.model); });
    return p == std::end(kProfiles) ? nullptr : p;
}

// "save" over the adaptor, "Save" by cable.
QByteArray saveWord(const ModemSession &session)
{
    return session.IrDongleActive ? QByteArrayLiteral("save") : QByteArrayLiteral("Save");
}

void send(ModemSession &session, const QByteArray &line)
{
    attempt(session.prompts(), [&] { session.sendCommand(line); });
}

void showHighestLevel(Prompts &prompts)
{
    prompts.MsgBox(QStringLiteral("Receiver squelch set to the highest squelch level. ") +
                       QStringLiteral(" Movement of antenna,") +
                       QStringLiteral(" modem or data cable is necessary ") +
                       QStringLiteral("until the RX light is off"),
                   MsgButtons::OkOnly, MsgIcon::Critical);
}

bool rxLightOn(Prompts &prompts, const QString &question)
{
    return prompts.MsgBox(question, MsgButtons::YesNo) == MsgAnswer::Yes;
}
} // namespace

QString sensitivityText(int position)
{
    static const char *const numbers[] = {"2", "5", "10", "70"};
    static const char *const rest[] = {"V   -101dBm", "V   -93dBm", "V   -87dBm", "V   -70dBm"};
    return QLatin1String(numbers[position]) + kMicro + QLatin1String(rest[position]);
}

int profileAsquelch(const QString &model, int position)
{
    const Profile *p = profileOf(model);
    return p ? p->asquelch[size_t(position)] : 0;
}

int autoSquelchLimit(const QString &model)
{
    const Profile *p = profileOf(model);
    return p ? p->asquelch[0] : kHighest;
}

void SquelchWalk(ModemSession &session)
{
    Prompts &prompts = session.prompts();
    for (int n = 0; n < kLevels; ++n) {
        send(session, "Squelch " + QByteArray::number(n) + ":Latch");
        if (!rxLightOn(prompts, QStringLiteral("Receiver squelch set to %1.  Is your RX light on?").arg(n))) {
            send(session, "SAVE");
            prompts.MsgBox(QStringLiteral("Squelch Saved at %1.").arg(n), MsgButtons::OkOnly, MsgIcon::None,
                           QStringLiteral("Squelch Level Saved"));
            break;
        }
        if (n == kLevels - 1) {
            showHighestLevel(prompts);
            send(session, "SAVE");
        }
    }
    session.Comm1().Input();
}

void SpreadSquelchWalk(ModemSession &session)
{
    Prompts &prompts = session.prompts();
    for (int a = 0; a < kLevels; ++a) {
        send(session, "Asquelch " + QByteArray::number(a) + ":Latch");
        session.WaitForReply("CMD:", 1000);
        for (int s = 0; s < kLevels; ++s) {
            send(session, "Squelch " + QByteArray::number(s) + ":Latch");
            if (!rxLightOn(prompts,
                           QStringLiteral("Receiver squelch set to %1Asquelch = %2.  Is your RX light on?")
                               .arg(s)
                               .arg(a))) {
                send(session, "SAVE");
                prompts.MsgBox(QStringLiteral("Asquelch Saved at %1 Squelch Saved at %2.").arg(a).arg(s),
                               MsgButtons::OkOnly, MsgIcon::None, QStringLiteral("Squelch Level Saved"));
                session.Comm1().Input();
                return;
            }
        }
    }
    showHighestLevel(prompts);
    send(session, "SAVE");
    session.Comm1().Input();
}

bool CheckFlickerCD(ModemSession &session)
{
    for (int read = 0; read < kFlickerReads; ++read)
        if (ReadInout(session))
            return true;
    return false;
}

void SetAsquelchLevel(ModemSession &session, const QString &model, int &result,
                      const std::function<void(int)> &bar)
{
    int progress = 0;
    bar(progress);
    send(session, "Squelch 0:Latch");
    session.WaitForBytes(5);
    send(session, "Asquelch 0:Latch");
    session.WaitForBytes(5);
    int level = 0;
    while (CheckFlickerCD(session)) {
        progress += kBarStep;
        bar(progress);
        level = std::min(level + kSearchStep, kHighest);
        send(session, "asq " + QByteArray::number(level) + ":Latch");
        session.WaitForBytes(5);
        if (level == kHighest) {
            session.prompts().MsgBox(
                QStringLiteral("Maximum Squelch Level Set! Other Varnel or Input Causing Error In "
                               "Calculation.  Remove Noise Source and Try Again."),
                MsgButtons::OkOnly, MsgIcon::Critical, QStringLiteral("Squelch Error"));
            return;
        }
    }
    bar(100);
    result = std::min(std::min(level + kSearchMargin, autoSquelchLimit(model)), kHighest);
}

QString saveAutoSquelch(ModemSession &session, int asquelch)
{
    send(session, "Squelch 30:Latch");
    session.WaitForReply("CMD:", 1000);
    send(session, "Asquelch " + QByteArray::number(asquelch) + ":Latch");
    session.WaitForReply("CMD:", 1000);
    send(session, saveWord(session));
    return QStringLiteral("Your settings has been saved.\rAsquelch = %1\rSquelch = 30").arg(asquelch);
}

QString saveSquelch(ModemSession &session, int squelch, bool remote)
{
    send(session, "Squelch " + QByteArray::number(squelch) + ":Latch");
    session.WaitForReply(remote ? "RPG:" : "CMD:", 1000);
    send(session, saveWord(session));
    if (!remote)
        return QStringLiteral("Your squelch has been saved at Squelch = %1").arg(squelch);
    session.WaitForReply("RPG:", 1000);
    return QStringLiteral("The remote Varnel squelch has been saved at Squelch = %1").arg(squelch);
}

QString saveSpreadSquelch(ModemSession &session, int squelch, int asquelch, bool remote)
{
    const QByteArray prompt = remote ? "RPG:" : "CMD:";
    send(session, "Squelch " + QByteArray::number(squelch) + ":Latch");
    session.WaitForReply(prompt, 1000);
    send(session, "Asquelch " + QByteArray::number(asquelch) + ":Latch");
    session.WaitForReply(prompt, 1000);
    send(session, saveWord(session));
    const QString who = remote ? QStringLiteral("The remote Varnel ") : QStringLiteral("Your ");
    return who + QStringLiteral("squelch has been saved at Squelch = %1\r").arg(squelch) + who +
           QStringLiteral("Asquelch has been saved at Asquelch = %1").arg(asquelch);
}

QString saveSquelchProfile(ModemSession &session, const QString &model, int position)
{
    const int asquelch = profileAsquelch(model, position);
    send(session, "Squelch 0:Asquelch " + QByteArray::number(asquelch) + ":Latch");
    session.WaitForReply("CMD:", 1000);
    send(session, saveWord(session));
    return QStringLiteral("Your settings has been saved.\rAsquelch = %1\rSquelch = 0").arg(asquelch);
}
