#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <span>

// The modem's command language as the programming menu teaches it: for every entry, the dialog
// that opens, its texts, and the command it adds to the list or runs on the connected modem.
// Prefixes keep their own capitalisation: the modem matches abbreviations and nothing here
// normalises them.

enum class CommandDialog {
    Setting, // TF: ON or OFF after a prefix
    Demo,    // Demoform: runs a command on the connected modem and shows the answer
    Input,   // an input box: a number (or any text) after a prefix
};

struct CommandEntry
{
    const char *entry = nullptr; // the menu entry that opens it; none for keys no entry selects
    CommandDialog dialog = CommandDialog::Setting;
    const char *key = nullptr;      // ProgMode key of TF and Demoform
    const char *title = nullptr;    // window title, or input box title
    const char *question = nullptr; // TF frame caption, input box prompt, Demo's address question
    const char *command = nullptr;  // prefix with its blank, whole line, or demonstration command
    const char *factoryDefault = nullptr;
    const char *syntax = nullptr;           // the closing line(s) of the help text
    const char *help = nullptr;             // what the command does
    const char *preset = nullptr;           // TF's preset option ("ON", "OFF"), or the input box's preset
    bool sameEitherWay = false;             // TF adds the command alone, whichever option is chosen
    bool (*passes)(double value) = nullptr; // input box test of the numeric value; none: any text
    const char *boxTitle = nullptr;         // refusal box of an input box, address box of a Demo
    const char *refusal = nullptr;          // text of the refusal box
};

std::span<const CommandEntry> commandEntries();
// The entry of a ProgMode key (TF and Demoform), or of a menu entry name; null when none.
const CommandEntry *commandByKey(const QString &key);
const CommandEntry *commandByEntry(const QString &entry);

// The help text as the dialogs show it: what the command does, its factory default, its syntax.
QString commandDescription(const CommandEntry &entry);
// The line TF adds for the chosen option.
QString settingLine(const CommandEntry &entry, bool on);
// The line an input box adds for a non-empty answer, or nothing when the entry's test refuses it.
// The answer goes in as typed. A number too large to read throws AppError.
std::optional<QString> inputLine(const CommandEntry &entry, const QString &answer);
// What Demo sends: the fixed command, or the prefix and the address the user gave.
QString demoCommand(const CommandEntry &entry, const QString &address = {});
// Whether Demo asks for an address first, and whether it has anything to run at all.
bool demoAsksAddress(const CommandEntry &entry);
bool demoRuns(const CommandEntry &entry);

// The termination timer's two lines, or none when the time is out of 10 to 65535.
QStringList termTimeLines(const QString &onOff, const QString &time);
// The security line for a non-empty answer, or nothing when the value is not over 0. The value is
// rounded to a 16-bit integer: beyond it the conversion throws Overflow.
std::optional<QString> securityLine(const QString &answer);
