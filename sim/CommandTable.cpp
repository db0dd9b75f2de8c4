#include "CommandTable.h"

#include "Modem.h"

namespace sim {

void CommandCall::answer(const QByteArray &text)
{
    reply.text += text + modem.lineEnd();
}

bool CommandCall::refuse()
{
    answer("INVALID");
    return false;
}

const QList<CommandDef> &commandTable()
{
    static const QList<CommandDef> table =
        settingCommands() + unitCommands() + instrumentCommands() + linkCommands() + loaderCommands();
    return table;
}

Match matchCommand(const QString &word, const CommandDef **found)
{
    const QString w = word.toUpper();
    for (const CommandDef &def : commandTable())
        if (w == QLatin1String(def.name)) {
            *found = &def;
            return Match::Found;
        }
    const CommandDef *taken = nullptr;
    int takers = 0;
    bool prefixOfSome = false;
    for (const CommandDef &def : commandTable()) {
        if (!QLatin1String(def.name).startsWith(w))
            continue;
        prefixOfSome = true;
        if (w.size() >= def.minLength) {
            taken = &def;
            ++takers;
        }
    }
    if (takers == 1) {
        *found = taken;
        return Match::Found;
    }
    return prefixOfSome ? Match::Ambiguous : Match::Invalid;
}

Reply runCommandLine(Modem &modem, const QString &line, bool overAir, std::chrono::milliseconds thinkTime)
{
    Reply reply;
    reply.delay = thinkTime;
    for (const QString &part : line.split(QLatin1Char(':'))) {
        const QString command = part.trimmed();
        if (command.isEmpty())
            continue;
        CommandCall call{modem, QString(), command.section(QLatin1Char(' '), 1).trimmed(), overAir, reply};
        const CommandDef *def = nullptr;
        const Match match = matchCommand(command.section(QLatin1Char(' '), 0, 0), &def);
        if (match == Match::Ambiguous) {
            call.answer("AMBIGUOUS");
            break;
        }
        if (match == Match::Invalid) {
            call.refuse();
            break;
        }
        call.name = QLatin1String(def->name);
        if (!def->run(call))
            break;
    }
    return reply;
}

} // namespace sim
