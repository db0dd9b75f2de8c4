#include "CommandVocabulary.h"

#include "TextRules.h"

namespace {
using enum CommandDialog;

// The termination timer takes milliseconds in the range the modem's 16-bit counter allows.
constexpr double kTermTimeLow = 10;
constexpr double kTermTimeHigh = 65535;

const CommandEntry kEntries[] = {
    // ON/OFF settings.
    {.entry = "mnubc",
     .dialog = Setting,
     .key = "GlobalBroadcast",
     .title = "Enable Global Transmissions",
     .question = "Do You Need To Transmit Globally",
     .command = "SETC 255",
     .syntax = "Syntax:  SETC 255",
     .help = "Global transmission makes the Varnel transmit to all modems within radio range: the connect "
             "address 255 reaches every unit.",
     .preset = "OFF",
     .sameEitherWay = true},
    {.entry = "mnuMIadv",
     .key = "MULTI",
     .title = "Multiple ID",
     .question = "Please Select Multiple ID",
     .command = "MULTI ",
     .syntax = "Syntax:  MULTID [ON/OFF]",
     .help = "With Multi-ID on, data in CONVERSE MODE can go to different remote Varnels: the address "
             "routing is placed before the data packet.",
     .preset = "OFF"},
    {.entry = "mnuautolfadv",
     .key = "AU",
     .title = "Auto Line Feed",
     .question = "Please Select Auto Line Feed Setting",
     .command = "AU ",
     .factoryDefault = "Factory Default+ ON.",
     .syntax = "Syntax:  AUtolf [ON/OFF]",
     .help = "With Auto Line Feed on, the Varnel sends a line feed after every carriage return it sends "
             "to the terminal.",
     .preset = "ON"},
    {.entry = "mnuenDTRadv",
     .key = "DTR",
     .title = "DTR Setting",
     .question = "Please Select DTR Setting",
     .command = "DTR ",
     .factoryDefault = "Factory Default= OFF",
     .syntax = "Syntax:  DTR_enab [ON/OFF]",
     .help = "With DTR enabled, the Varnel monitors RS-232 DTR (pin 20) for a connected terminal and "
             "takes no RF data unless DTR is high.",
     .preset = "OFF"},
    {.entry = "mnuechoadv",
     .key = "ECHO",
     .title = "Echo Setting",
     .question = "Please Select Echo Setting",
     .command = "ECHO ",
     .factoryDefault = "Factory Defalut= ON",
     .syntax = "Syntax:  ECHO [ON/OFF]",
     .help = "With Echo on, the Varnel sends every character typed in COMMAND MODE back to the terminal.",
     .preset = "ON"},
    {.entry = "mnumcadv",
     .key = "MO",
     .title = "Mode Control",
     .question = "Please Select The Method of Mode Control",
     .command = "MODECONT ",
     .factoryDefault = "Factory Default= OFF]",
     .syntax = "Syntax:  MODEContr [ON/OFF]",
     .help = "ON selects hardware control: pin 19 of the RS-232C connector, low for COMMAND and high for "
             "CONVERSE. OFF selects software control by an ASCII character.",
     .preset = "OFF"},
    {.entry = "mnuxhflow",
     .key = "XHFLOW",
     .title = "Hardware Flow Control",
     .question = "Please Select Hardware Flow Control",
     .command = "XHFLOW ",
     .factoryDefault = "Factory default = OFF. ",
     .syntax = "Syntax: XHFlow [ON/OFF]",
     .help = "With hardware flow control on, the Varnel paces the data of its RS-232 port by RTS and CTS.",
     .preset = "OFF"},
    {.entry = "mnuxsflow",
     .key = "XSFLOW",
     .title = "Software Flow Control",
     .question = "Please Select Software Flow Control",
     .command = "XSFLOW ",
     .factoryDefault = "Factory default = ON.",
     .syntax = "Syntax:  XSFlow [ON/OFF]",
     .help = "With software flow control on, the Varnel paces the data of its RS-232 port by the XON and "
             "XOFF characters.",
     .preset = "ON"},
    {.entry = "mnuconvadv",
     .key = "Edit",
     .title = "Edit Command",
     .question = "Please Select Edit Function",
     .command = "EDIT ",
     .syntax = "Syntax:  EDit [ON/OFF]",
     .help = "With editing on, the characters typed in CONVERSE MODE can be corrected with backspace "
             "before the packet is sent.",
     .preset = "ON"},
    {.entry = "mnuadvmess",
     .key = "MESS",
     .title = "Message Format",
     .question = "Please Select Message Format",
     .command = "MESS ",
     .factoryDefault = "Factory default = OFF.",
     .syntax = "Syntax: MESSForm [ON/OFF]",
     .help = "With the message format on, every received packet is shown with the address it came from.",
     .preset = "OFF"},
    {.key = "EM",
     .title = "Communication Error Messages",
     .question = "Please Select Communication Error Messages",
     .command = "TYPERR ",
     .help = "With communication error messages on, the Varnel reports failed transmissions in words.",
     .preset = "OFF"},
    {.key = "SE",
     .title = "System Error Messages",
     .question = "Please Select System Error Messages",
     .command = "TYPSYS ",
     .help = "With system error messages on, the Varnel reports refused commands in words.",
     .preset = "ON"},

    // Demonstrations on the connected modem.
    {.entry = "mnucommmode",
     .dialog = Demo,
     .key = "Command",
     .title = "Command Mode",
     .command = "fa",
     .help = "COMMAND MODE is the default mode after power-up or reset: the Varnel takes its commands from "
             "the RS-232 port and answers with the CMD: prompt."},
    {.entry = "mnuconv",
     .dialog = Demo,
     .key = "CONV",
     .title = "Converse Mode",
     .command = "conv",
     .help = "CONVERSE MODE is the mode in which data passes between Varnels. It needs a valid set "
             "connect address."},
    {.entry = "mnuremoteprog",
     .dialog = Demo,
     .key = "remoteprog",
     .title = "Remote Programming",
     .question =
         "Please input the address of the Varnel (with repeaters - if any) you wish to remote program",
     .command = "prog ",
     .syntax = "Syntax:  PROGRAM [r1,][r2,][r3,]da",
     .help = "Remote programming reaches a distant Varnel over the air, through up to three repeaters, and "
             "takes its commands as if it were connected.",
     .boxTitle = "Remote Programming"},
    {.entry = "mnudigi",
     .dialog = Demo,
     .key = "Digi",
     .title = "Digi-Repeating",
     .help = "The Digi-Repeater relays a packet through at most three Varnels on its way to the "
             "destination."},
    {.entry = "mnuconnect",
     .dialog = Demo,
     .key = "CONN",
     .title = "Connect Command",
     .question = "Please input the address of the Varnel (with repeaters - if any) you wish to connect.",
     .command = "Conn ",
     .syntax = "Syntax:  CONNect[r1,][r2,][r3,] da\nExample:  CONN 78.",
     .help = "CONNECT links the Varnel to a remote one, through up to three repeaters, and enters "
             "CONVERSE MODE.",
     .boxTitle = "Establish Connection"},
    {.entry = "mnudisc",
     .dialog = Demo,
     .key = "DISC",
     .title = "Disconnect Command",
     .command = "disc",
     .syntax = "Example:  DISCON",
     .help = "DISCONNECT ends the link to the remote Varnel."},
    {.entry = "mnuFA",
     .dialog = Demo,
     .key = "FA",
     .title = "Factory Default Command",
     .command = "fa",
     .syntax = "Syntax:  FActdeft",
     .help = "FACTORY DEFAULT restores every setting of the Varnel to its value from the factory."},
    {.entry = "mnuxmiter",
     .dialog = Demo,
     .key = "Radio",
     .title = "Turn On Varnel Transmitter",
     .command = "RADIO ON",
     .syntax = "Syntax: RADIO ON/OFF",
     .help = "The radio transmitter command cycles the transmitter on and off, for tuning and antenna "
             "testing."},
    {.entry = "mnureset",
     .dialog = Demo,
     .key = "reset",
     .title = "Reset",
     .command = "RESET",
     .syntax = "Example: RESet",
     .help = "RESET restarts the Varnel as at power-up, from its saved settings."},
    {.entry = "mnusa",
     .dialog = Demo,
     .key = "SA",
     .title = "Save",
     .command = "SAVE",
     .syntax = "Syntax:  SAve.",
     .help = "SAVE keeps the present settings in the Varnel's permanent memory."},
    {.entry = "mnuModelNumber2",
     .dialog = Demo,
     .key = "Model",
     .title = "Model",
     .command = "model",
     .syntax = "Syntax:  MODEL",
     .help = "MODEL gives the model number of the Varnel."},
    {.entry = "mnuserial",
     .dialog = Demo,
     .key = "S/N",
     .title = "Serial Number",
     .command = "S/N",
     .syntax = "Syntax:  S/N.",
     .help = "S/N gives the serial number of the Varnel."},
    {.entry = "mnusoftvers",
     .dialog = Demo,
     .key = "Version",
     .title = "Firmware Version",
     .command = "VER",
     .syntax = "Syntax:  VERsion",
     .help = "VERSION gives the version of the Varnel's firmware."},
    {.entry = "mnuxmitstats",
     .dialog = Demo,
     .key = "Txstatus",
     .title = "Transmission Status",
     .command = "TXSTAT",
     .syntax = "Syntax: TXSTAT",
     .help = "TXSTAT prints the total number of RF transmissions and retransmissions."},

    // Numbers (and one route) typed into input boxes.
    {.entry = "mnuSetAddress",
     .dialog = Input,
     .title = "Unit Address",
     .question = "This command defines the unit address for the Varnel. Addresses 1-254 are useable for unit "
                 "address.\rThe syntax is ADDress [1-254] ",
     .command = "ADD ",
     .passes = [](double x) { return x >= 1 && x <= 254; },
     .refusal = "Your Address Is Out of Range"},
    {.entry = "mnusetconn",
     .dialog = Input,
     .title = "Setconnect Address",
     .question = "This command defines the destination address for the Varnel to perform a connect using "
                 "Auto Connect feature. The syntax is SETCon [r1,][r2,][r3,]da \rr1 = repeater 1\rr2 = "
                 "repeater2\rr3 = repeater 3 and \rda = destination address. ",
     .command = "SETC "},
    {.entry = "mnucommmodeadv",
     .dialog = Input,
     .title = "Command Mode Character",
     .question = "This command specifics the value (in decimal) of an ACSCII charater used to return the "
                 "Varnel to COMMAND MODE.\r\rFactory Default = 13 ($03 Hex) or CTRL-C",
     .command = "COMMand ",
     .passes = [](double x) { return x >= 0 && x <= 255; },
     .boxTitle = "Invalid Character",
     .refusal = "ERROR:  Invalid Character. The command character must be between 0 and 255."},
    // The test admits 1 to 254 while the refusal names 0 and 255.
    {.entry = "mnuadvnetID",
     .dialog = Input,
     .title = "Network Identification Code",
     .question = "This command sets the network identification code: Varnels talk only to units with the "
                 "same code.\r\rFactory Default = 37",
     .command = "NET ",
     .preset = "37",
     .passes = [](double x) { return x > 0 && x < 255; },
     .boxTitle = "Invalid Network ID",
     .refusal = "ERROR:  Invalid ID entry.  Please enter a valid time.  The Network ID must be between 0 and "
                "255."},
    {.entry = "mnusendpackadv",
     .dialog = Input,
     .title = "SENDPACK command",
     .question = "This command specifies the ASCII character used to initiate the transmission of a data "
                 "packet.\rFactory default is <CR>.\rEnter the value between 1 and 254 to identify when to "
                 "send the packet.",
     .command = "SENDPACK ",
     .passes = [](double x) { return x > 0 && x <= 254; },
     .boxTitle = "SENDPACK value error",
     .refusal = "ERROR: The SENDPACK value must be between 1 and 254."},
    {.entry = "mnucbdadv",
     .dialog = Input,
     .title = "Carrier Busy Delay",
     .question = "This command defines the carrier busy delay in milliseconds. A value of 0 will disable the "
                 "carrier busy delay.\r\rFactory Default = 1",
     .command = "CARBSY ",
     .passes = [](double x) { return x >= 0 && x <= 255; },
     .boxTitle = "Invalid Delay Time",
     .refusal = "ERROR:  Invalid Delay. The carrier busy delay must be between 0 and 255."},
    {.entry = "mnupacketl",
     .dialog = Input,
     .title = "Packet Length",
     .question = "This command defines the length of the data packet in bytes.\rEnter the Packet Length "
                 "desired: ",
     .command = "PACKL ",
     .preset = "2000",
     .passes = [](double x) { return x >= 1 && x <= 2000; },
     .boxTitle = "Invalid Packet Length",
     .refusal = "ERROR:  Invalid Packet Length. The packet length must be between 1 and 2000."},
    {.entry = "mnuretries",
     .dialog = Input,
     .title = "Number of retries",
     .question = "This is the number specifying the number of retries or retransmission of frames that are "
                 "not acknowledged.\rThe Factory default = 6\r\rEnter the number of retries.",
     .command = "RETRY ",
     .passes = [](double x) { return x >= 0 && x <= 255; },
     .boxTitle = "Invalid Retry Number",
     .refusal = "ERROR:  Invalid Number of Retries.  The Retries must be between 0 and 255."},
};

const CommandEntry *find(const QString &name, const char *CommandEntry::*field)
{
    for (const CommandEntry &e : kEntries)
        if (e.*field && name == QLatin1String(e.*field))
            return &e;
    return nullptr;
}
} // namespace

std::span<const CommandEntry> commandEntries()
{
    return kEntries;
}

const CommandEntry *commandByKey(const QString &key)
{
    return find(key, &CommandEntry::key);
}

const CommandEntry *commandByEntry(const QString &entry)
{
    return find(entry, &CommandEntry::entry);
}

QString commandDescription(const CommandEntry &entry)
{
    QStringList parts{QLatin1String(entry.help)};
    for (const char *line : {entry.factoryDefault, entry.syntax})
        if (line)
            parts << QLatin1String(line);
    return parts.join(QStringLiteral("\n\n"));
}

QString settingLine(const CommandEntry &entry, bool on)
{
    const QString command = QLatin1String(entry.command);
    if (entry.sameEitherWay)
        return command;
    return command + (on ? QStringLiteral("ON") : QStringLiteral("OFF"));
}

std::optional<QString> inputLine(const CommandEntry &entry, const QString &answer)
{
    if (entry.passes && !entry.passes(numericValue(answer)))
        return std::nullopt;
    return QLatin1String(entry.command) + answer;
}

QString demoCommand(const CommandEntry &entry, const QString &address)
{
    return QLatin1String(entry.command) + address;
}

bool demoAsksAddress(const CommandEntry &entry)
{
    return entry.question != nullptr;
}

bool demoRuns(const CommandEntry &entry)
{
    return entry.command != nullptr;
}

QStringList termTimeLines(const QString &onOff, const QString &time)
{
    const double ms = numericValue(time);
    if (ms < kTermTimeLow || ms > kTermTimeHigh)
        return {};
    return {QStringLiteral("Termc ") + onOff, QStringLiteral("Termt ") + time};
}

std::optional<QString> securityLine(const QString &answer)
{
    const qint16 value = roundToInteger(numericValue(answer));
    if (value <= 0)
        return std::nullopt;
    return QStringLiteral("SECURITY ") + QString::number(value);
}
