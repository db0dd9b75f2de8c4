#pragma once

#include "SetupProgram.h"

#include <array>

// The transparent programs, in which the modem carries serial data without knowing the protocol of
// the device behind it. They are made from the answers of the set-up forms and only appended to the
// command list; no modem is asked anything.

// ProgMode while the address form is open for one of the two auto-connect programs.
inline const QString kAutoconnMode = QStringLiteral("Autoconn");
inline const QString kAutoglobalMode = QStringLiteral("Autoglobal");
// The destination of the global program: every modem hears it.
inline const QString kGlobalDestination = QStringLiteral("255");

// The address form: the connected modem, the destination and up to three repeaters in front of it.
struct AddressAnswers
{
    QString connected;
    QString destination;
    std::array<QString, 3> repeaters;
};
// The auto-connect program; nothing is made when an answer is refused.
SetupProgram autoConnectProgram(const AddressAnswers &answers);

// The custom form.
struct CustomAnswers
{
    QString address;
    QString setconnect;
    QString terminationTimer; // "OFF" or "ON"
    QString termTime;
    QString sendCharacter;
    QString packetLength;
    int flow = -1; // software, hardware, disabled; -1 when none was chosen
    // DTR/CD, DISACK, auto line feed, echo, edit, prompt, typsyste
    std::array<bool, 7> checks{};
};
// The custom program; the lines made before a refused answer stand.
SetupProgram customProgram(const CustomAnswers &answers);

// The fixed lines for the Radio/IP host software.
QStringList radioIpProgram();
