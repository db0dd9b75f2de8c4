#pragma once

#include <QString>
#include <functional>
#include <optional>

class CommControl;
class IniFile;
class Prompts;

// The serial line of a control between runs: the section "Port_" and the control's tag, with the keys
// "Comm Port", "Settings", "DTREnable", "RTSEnable" and "Handshaking".
QString portSection(const CommControl &control);

// What the port dialog hands over on OK.
struct PortChoice
{
    int commPort = 1;
    QString settings; // "9600,N,8,1"
    bool dtr = true;
    bool rts = true;
    int handshaking = 0; // bit 0 software, 2 and above hardware
};

// Applies the saved section to the control. The port is closed for the time being; the keys are read
// in order and each is applied at once, as a statement of its own: a value the control refuses shows
// the standard box and the next key is read. The first key that is missing means the setup is not
// complete: then askUser runs (the port dialog as on a first run) and the port is left as it leaves it.
// Otherwise a port that was open is opened again.
void LoadPortSettings(CommControl &control, const IniFile &ini, Prompts &prompts,
                      const std::function<void()> &askUser);

// The port dialog's OK: puts the choice on the control and writes the line keys, then re-opens the
// port on the chosen number. The number is written only once the port opens; a failure to open
// returns its text, for the dialog to show before it asks again.
std::optional<QString> acceptPortChoice(CommControl &control, IniFile &ini, Prompts &prompts,
                                        const PortChoice &choice);
