#include "CommandTable.h"
#include "Modem.h"
#include "Parameters.h"

#include <cmath>

namespace sim {

namespace {

using namespace std::chrono_literals;

// How long the firmware works on its copies before it answers.
constexpr auto kLatchTime = 40ms;
constexpr auto kSaveTime = 120ms;
constexpr auto kFactoryTime = 250ms;
constexpr int kTableLines = 30;

// The banner that follows a factory default carries the unit's address, which is how the utility
// knows the command went through.
bool runFactoryDefault(CommandCall &call)
{
    if (call.modem.locked())
        return call.refuse();
    call.modem.factoryDefault();
    call.reply.delay += kFactoryTime;
    call.reply.text += call.modem.banner();
    return true;
}

// "SAVE 2" writes the second bank, the unit's factory record: identity and defaults.
bool runSave(CommandCall &call)
{
    call.modem.save(call.argument == QLatin1String("2"));
    call.reply.delay += kSaveTime;
    return true;
}

bool runLatch(CommandCall &call)
{
    call.modem.latch();
    call.reply.delay += kLatchTime;
    return true;
}

// A restart over the air prints no banner: the link is gone by then.
bool runReset(CommandCall &call)
{
    call.reply.prompt = false;
    call.reply.delay += kRestartTime;
    const bool banner = !call.overAir;
    Modem *modem = &call.modem;
    call.reply.then = [modem, banner] { modem->restart(banner); };
    return false;
}

// "HE CH" lists a command program: every setting that differs from its factory value, in the form
// the interpreter takes it back.
bool runHelp(CommandCall &call)
{
    if (!call.argument.toUpper().startsWith(QLatin1String("CH")))
        return call.refuse();
    for (const ParameterDef &def : parameterDefs()) {
        const QString command = QLatin1String(def.command);
        if (def.listed && call.modem.value(command) != call.modem.factoryValue(command))
            call.answer(QByteArray(def.command) + ' ' + call.modem.value(command).toLatin1());
    }
    return true;
}

// "n,..." puts line n of a table; "n" alone clears it and the lines after it move up.
bool setTableLine(QStringList &table, const QString &argument)
{
    bool ok = false;
    const int n = argument.section(QLatin1Char(','), 0, 0).trimmed().toInt(&ok);
    if (!ok || n < 1 || n > kTableLines)
        return false;
    const qsizetype comma = argument.indexOf(QLatin1Char(','));
    if (comma < 0) {
        if (n <= table.size())
            table.removeAt(n - 1);
        for (qsizetype i = n - 1; i < table.size(); ++i)
            table[i] = QString::number(i + 1) + table[i].mid(table[i].indexOf(QLatin1Char(',')));
        return true;
    }
    const QString line = QString::number(n) + argument.mid(comma).remove(QLatin1Char(' '));
    if (n <= table.size()) {
        table[n - 1] = line;
        return true;
    }
    if (n != table.size() + 1)
        return false;
    table.append(line);
    return true;
}

// Without an argument the table is listed; a locked unit refuses to change it.
bool runTable(CommandCall &call, QStringList table, void (Modem::*store)(const QStringList &))
{
    if (call.argument.isEmpty()) {
        for (const QString &line : std::as_const(table))
            call.answer(line.toLatin1());
        return true;
    }
    if (call.modem.locked() || !setTableLine(table, call.argument))
        return call.refuse();
    (call.modem.*store)(table);
    return true;
}

bool runRoute(CommandCall &call)
{
    return runTable(call, call.modem.routes(), &Modem::setRoutes);
}

bool runAppend(CommandCall &call)
{
    return runTable(call, call.modem.appends(), &Modem::setAppends);
}

bool runHours(CommandCall &call)
{
    call.answer("HOURS    = " + QByteArray::number(qint64(std::floor(call.modem.hoursRun()))));
    return true;
}

bool runCopyright(CommandCall &call)
{
    call.answer("Varnel Q40 Series Wireless Data Modem Firmware");
    call.answer("Copyright (c) 1994-2002 Varnel Inc.  All rights reserved.");
    return true;
}

} // namespace

const QList<CommandDef> &unitCommands()
{
    static const QList<CommandDef> commands{
        {"FACTDEFT", 2, &runFactoryDefault},
        {"SAVE", 2, &runSave},
        {"LATCH", 3, &runLatch},
        {"RESET", 3, &runReset},
        {"HELP", 2, &runHelp},
        {"ROUTE", 3, &runRoute},
        {"APPEND", 3, &runAppend},
        {"HOURS", 3, &runHours},
        {"COPYRIGHT", 3, &runCopyright},
    };
    return commands;
}

} // namespace sim
