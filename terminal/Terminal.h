#pragma once

#include "AppSettings.h"

#include <QMainWindow>

class CommControl;
class IniFile;
class ModemSession;

// The terminal form: the carrier of the serial control Comm1 and of the one millisecond timer
// through which every screen talks to the modem, whether or not the window is visible. It is
// loaded hidden at start and lives until the program ends.
class Terminal : public QMainWindow
{
    Q_OBJECT
public:
    Terminal(ModemSession &session, IniFile &ini, QWidget *parent = nullptr);
    ~Terminal() override;

    CommControl &Comm1() const;
    ModemSession &session() const { return m_session; }
    IniFile &ini() const { return m_ini; }

    // The application settings, kept here where the other screens read and set them.
    AppSettings Settings;

    // Reads the settings, applies the port section (asking on a first run), sets the title, opens the port.
    void Load();
    // Closes the port and saves the application settings; the program ends after it.
    void Unload();

    // The title doubles as the port read-out: "COM1:9600,N,8,1".
    void setPortTitle();

signals:
    void unloaded();

private:
    ModemSession &m_session;
    IniFile &m_ini;
    bool m_loaded = false;
};
