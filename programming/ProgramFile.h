#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// A command program file (.nvc): the command lines as text, each followed by a carriage return and
// a line feed, and one more line end after the last, so that the file ends in a blank line.

// The lines of a file's text, in order: every line that is not empty, unchanged (a line of blanks
// stays). A carriage return, a line feed, or the two together end a line.
QStringList programLinesFromText(const QByteArray &text);
// The text of a file holding these lines.
QByteArray programFileText(const QStringList &lines);

// The filter of a file dialog as the program writes it ("Text (*.txt)|*.txt|All (*.*)|*.*|"),
// turned into the form the dialog takes ("Text (*.txt);;All (*.*)").
QString fileDialogFilter(const QString &barSeparated);

// Opening a program file gives the error numbers of AppErrors (core/AppError.h); Open tells the user
// about four of them.

// The error number for a failed opening: the system's error code, and whether the folder the
// name points into exists (a missing file and a missing folder give the same code).
int openErrorNumber(int osError, bool folderExists);
// What Open shows for an error number; empty for the numbers it passes over in silence.
QString openErrorMessage(int number);
// Whether Open offers its file dialog again after the error: for a name that leads nowhere.
bool openErrorAsksAgain(int number);

struct ProgramFileContents
{
    int errorNumber = 0; // 0 when the file opened
    QStringList lines;
};

// Opens and reads a program file whole. A failure to open gives its error number and no lines;
// a failure while reading keeps what was read before it.
ProgramFileContents readProgramFile(const QString &path);

// Writes the lines as a program file, replacing the file only once the whole text is safely
// written: a failure leaves an existing file as it was. Throws AppError on failure.
void writeProgramFile(const QString &path, const QStringList &lines);
