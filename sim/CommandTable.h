#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <chrono>
#include <functional>

namespace sim {

class Modem;

// What a line of commands gives back: the text, the time the unit takes before it answers, whether
// the prompt follows, and what happens once the answer is out.
struct Reply
{
    QByteArray text;
    std::chrono::milliseconds delay{0};
    bool prompt = true;
    std::function<void()> then;
};

// One command of a line as its handler sees it.
struct CommandCall
{
    Modem &modem;
    QString name;     // the full command name the typed word stands for
    QString argument; // what follows the first blank, trimmed
    bool overAir;     // brought by a remote programming link
    Reply &reply;

    // One line of the answer, ended the way the unit ends its lines at this moment.
    void answer(const QByteArray &text);
    // The unit refuses the command; the rest of the line is not run.
    bool refuse();
};

// Runs one command; returns false when the rest of the line must not run.
using CommandHandler = bool (*)(CommandCall &call);

struct CommandDef
{
    const char *name; // full name, in capitals
    int minLength;    // the shortest abbreviation the interpreter takes
    CommandHandler run;
};

// The families of commands, each in the file of the part of the unit it works on.
const QList<CommandDef> &settingCommands();    // Parameters.cpp: one for every setting
const QList<CommandDef> &unitCommands();       // UnitCommands.cpp: the copies, restart, tables, listing
const QList<CommandDef> &instrumentCommands(); // Instruments.cpp: meter, data quality, transmitter, port
const QList<CommandDef> &linkCommands();       // Links.cpp: connect, converse, remote programming
const QList<CommandDef> &loaderCommands();     // FlashLoader.cpp

// Every command the interpreter knows; the abbreviation matcher reads the same table.
const QList<CommandDef> &commandTable();

// The interpreter takes a command by its full name or by any abbreviation at least as long as the
// command's shortest form. A word that only starts a longer name is ambiguous.
enum class Match { Found, Ambiguous, Invalid };
Match matchCommand(const QString &word, const CommandDef **found);

// Runs the ":"-separated commands of a line in turn; a refused one stops the rest.
Reply runCommandLine(Modem &modem, const QString &line, bool overAir, std::chrono::milliseconds thinkTime);

} // namespace sim
