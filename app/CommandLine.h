#pragma once

#include <QString>
#include <QStringList>

// What the program's command line asks for.
struct CommandLine
{
    enum class Action { Run, Help, Version, Error };

    Action action = Action::Run;
    // The settings file to use instead of the usual one, with its full path; empty for the usual one.
    QString settingsFile;
    // What Help and Version print on standard output, and Error on standard error.
    QString text;
    // Options the program does not know. They may be Qt's own (-platform, -style), which only the
    // application object takes off the line.
    QStringList unknownOptions;
};

// Reads the arguments, the program's own name first. Help and version win over mistakes elsewhere
// on the line, since the user asked for them.
CommandLine parseCommandLine(const QStringList &arguments);

// Prints the text where it belongs and gives the exit code: 0 for help and version, 1 for a mistake.
int answerCommandLine(const CommandLine &line);
