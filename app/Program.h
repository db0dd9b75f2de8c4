#pragma once

#include "IniFile.h"
#include "ModemSession.h"
#include "SerialCommControl.h"
#include "TimeSource.h"
#include "WidgetPrompts.h"

#include <QString>
#include <memory>

class MainMenu;

// The composition root: every concrete part of the running program (settings file, clock, boxes,
// port, session, screens), built and wired in one place. start() shows the splash before anything
// else is built; the main menu and the hidden terminal are built while it shows, and loaded and
// shown when it ends.
class Program
{
public:
    explicit Program(const QString &settingsFile);
    ~Program();
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    void start();

private:
    MainMenu &mainMenu();

    IniFile m_ini;
    RealTime m_time;
    WidgetPrompts m_prompts;
    SerialCommControl m_comm1;
    ModemSession m_session;
    std::unique_ptr<MainMenu> m_mainMenu;
};
