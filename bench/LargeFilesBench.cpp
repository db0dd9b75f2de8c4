// How the program copes with large files and a flood on the line. Prints, against the targets:
// - the start (Terminal's load: settings, port section, port opened) and the exit (Terminal's unload,
//   which saves the settings) with a settings file of 5 MB, whose own keys stand at its end behind
//   a long section of another layer;
// - opening a program file of 10 MB into the command list: wall time and the memory it took;
// - 100 MB arriving at AutoProcess 0 with no dialogue reading: memory before and after.

#include "IniFile.h"
#include "ModemSession.h"
#include "ProgrammingMenu.h"
#include "ScriptedPrompts.h"
#include "SessionRig.h"
#include "Terminal.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>
#include <unistd.h>

namespace {

constexpr qint64 kSettingsBytes = 5 * 1024 * 1024;
constexpr qint64 kProgramBytes = 10 * 1024 * 1024;
constexpr qint64 kBurstBytes = 100 * 1024 * 1024;

long currentRssKb()
{
    QFile status(QStringLiteral("/proc/self/statm"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    return status.readAll().split(' ').value(1).toLong() * (::sysconf(_SC_PAGESIZE) / 1024);
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

void verdict(const char *what, double measured, double limit, const char *unit)
{
    std::printf("%-44s %10.3f %s  (target < %g %s) %s\n", what, measured, unit, limit, unit,
                measured < limit ? "ok" : "MISSED");
}

void settingsFile(const QString &path)
{
    QByteArray text("[Phone Book]\r\n");
    for (int i = 0; text.size() < kSettingsBytes; ++i)
        text +=
            "Entry " + QByteArray::number(i) + "=Site " + QByteArray::number(i) + ",555-0100,9600,N,8,1\r\n";
    text +=
        "[Application]\r\nHide Intro=True\r\nHide Diag=False\r\n[Button Assignments]\r\n1 - Model=model~\r\n"
        "[Port_Phone]\r\nComm Port=1\r\nSettings=9600,N,8,1\r\nDTREnable=True\r\nRTSEnable=True\r\n"
        "Handshaking=0\r\n";
    writeFile(path, text);
}

void startAndExit(const QString &dir)
{
    const QString path = dir + QStringLiteral("/VarnelUtil.INI");
    settingsFile(path);
    SessionRig rig(CommControl::kAutoProcessTerminal);
    rig.port.setPortOpen(false);
    IniFile ini(path);
    QElapsedTimer wall;
    wall.start();
    {
        Terminal terminal(rig.session, ini);
        terminal.Load();
        verdict("start with a 5 MB settings file", double(wall.elapsed()) / 1000, 1, "s");
        wall.restart();
        terminal.Unload();
        verdict("exit with a 5 MB settings file", double(wall.elapsed()) / 1000, 1, "s");
    }
}

void openProgram(const QString &dir)
{
    const QString path = dir + QStringLiteral("/big.nvc");
    QByteArray text;
    for (int i = 0; text.size() < kProgramBytes; ++i)
        text += "Sel/N1 " + QByteArray::number(i % 4096) + ":Sel/A1 " + QByteArray::number(i % 128) + "\r\n";
    writeFile(path, text + "\r\n");
    SessionRig rig(CommControl::kAutoProcessTerminal);
    ProgrammingMenu menu(rig.session);
    rig.prompts.expectFileDialog(path);
    const long before = currentRssKb();
    QElapsedTimer wall;
    wall.start();
    menu.openProgramFile();
    verdict("open a 10 MB program file", double(wall.elapsed()) / 1000, 2, "s");
    verdict("memory it took, in sizes of the file",
            double(currentRssKb() - before) * 1024 / double(text.size()), 10, "x");
}

void burst()
{
    SessionRig rig(CommControl::kAutoProcessProgram);
    const QByteArray piece(64 * 1024, 'x');
    const long before = currentRssKb();
    for (qint64 sent = 0; sent < kBurstBytes; sent += piece.size())
        rig.port.feed(piece);
    verdict("memory after 100 MB nobody read", double(currentRssKb() - before) / 1024, 1, "MB");
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir dir;
    startAndExit(dir.path());
    openProgram(dir.path());
    burst();
    return 0;
}
