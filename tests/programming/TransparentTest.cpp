#include "Transparent.h"

#include "Golden.h"
#include "SetAddress.h"
#include "WizardSteps.h"

namespace {
const std::string kAuto = "ProgrammingMenu.mnutrans | Transparent.opttrans(0) | Transparent.cmdOKtrans | "
                          "SetAddress.txtConnectedAdd=5 | SetAddress.txtDestinationAdd=12 | ";
const std::string kCustom = "ProgrammingMenu.mnutrans | Transparent.opttrans(2) | Transparent.cmdOKtrans | "
                            "Custom.txtadd5=5 | Custom.txtsetc=12 | ";
// The five boxes that stand checked in the modem anyway.
const std::string kModemDefaults =
    "Custom.Check1(2) | Custom.Check1(3) | Custom.Check1(4) | Custom.Check1(5) | "
    "Custom.Check1(6) | ";
const char *const kSixLines = "ADD 5 | SETC 12 | XSF OFF | TERMC ON | TERMT 10 | TRANS ON";
const char *const kOffLines = "AUTOLF OFF | ECHO OFF | EDIT OFF | PROMPT OFF | TYPSYS OFF | TRANS ON";
const char *const kRadioIp =
    "*The software commands necessary to operate with Radio/IP software have been added to "
    "the Command List^Radio/IP Configuration";

const wizard::Case kCases[] = {
    {"auto connect", kAuto + "SetAddress.==Auto Connect Transparent | SetAddress.cmdoksetadd", "", kSixLines,
     ""},
    {"auto connect through repeaters",
     kAuto + "SetAddress.txtRep(0)=40 | SetAddress.txtRep(1)=41 | SetAddress.cmdoksetadd", "",
     "ADD 5 | SETC 40,41,12 | XSF OFF | TERMC ON | TERMT 10 | TRANS ON", ""},
    {"global",
     "ProgrammingMenu.mnutrans | Transparent.opttrans(1) | Transparent.cmdOKtrans | "
     "SetAddress.==Auto Connect Transparent Global | SetAddress.txtDestinationAdd==255 | "
     "SetAddress.txtConnectedAdd=254 | SetAddress.txtRep(0)=1 | SetAddress.cmdoksetadd",
     "", "ADD 254 | SETC 1,255 | XSF OFF | TERMC ON | TERMT 10 | TRANS ON", ""},
    {"the destination as a whole number",
     kAuto + "SetAddress.txtDestinationAdd=12.5 | SetAddress.cmdoksetadd", "", kSixLines, ""},
    {"destination 1", kAuto + "SetAddress.txtDestinationAdd=1 | SetAddress.cmdoksetadd", "",
     "ADD 5 | SETC 1 | XSF OFF | TERMC ON | TERMT 10 | TRANS ON", ""},
    {"broadcast as destination", kAuto + "SetAddress.txtDestinationAdd=255 | SetAddress.cmdoksetadd", "",
     "ADD 5 | SETC 255 | XSF OFF | TERMC ON | TERMT 10 | TRANS ON", ""},
    {"the old list offered and cleared", "ProgrammingMenu.mnuradioip | " + kAuto + "SetAddress.cmdoksetadd",
     std::string(kRadioIp) + " | ?Do You Wish to Save The Current Command List?", kSixLines, ""},
    {"no connected address", kAuto + "SetAddress.txtConnectedAdd= | SetAddress.cmdoksetadd",
     "!You Must Type In An Varnel Address", "", "SetAddress"},
    {"connected address 0", kAuto + "SetAddress.txtConnectedAdd=0 | SetAddress.cmdoksetadd",
     "!Your Address Must Be Between 1 and 254", "", "SetAddress"},
    {"connected address 255", kAuto + "SetAddress.txtConnectedAdd=255 | SetAddress.cmdoksetadd",
     "!Your Address Must Be Between 1 and 254", "", "SetAddress"},
    {"no destination", kAuto + "SetAddress.txtDestinationAdd=0.4 | SetAddress.cmdoksetadd",
     "!You Must Type In A Destination Address", "", "SetAddress"},
    {"destination 256", kAuto + "SetAddress.txtDestinationAdd=256 | SetAddress.cmdoksetadd",
     "!Your Destination Address Must Be Between 1 and 255", "", "SetAddress"},
    {"destination below 1", kAuto + "SetAddress.txtDestinationAdd=-3 | SetAddress.cmdoksetadd",
     "!Your Destination Address Must Be Between 1 and 255", "", "SetAddress"},
    {"a gap among the repeaters",
     kAuto + "SetAddress.txtRep(1)=40 | SetAddress.cmdoksetadd | SetAddress.txtRep(1)==",
     "!Please Fill In Repeaters From First to Third", "", "SetAddress"},
    {"a repeater out of range",
     kAuto + "SetAddress.txtRep(0)=255 | SetAddress.cmdoksetadd | SetAddress.txtRep(0)==255",
     "!Your Repeater Addresses Must Be Between 1 and 254", "", "SetAddress"},
    {"address form cancelled", kAuto + "SetAddress.cmdcancel2", "", "", ""},
    {"no choice", "ProgrammingMenu.mnutrans | Transparent.cmdOKtrans",
     "-Please Select Type of Transparent Programming", "", "Transparent"},
    {"chooser cancelled", "ProgrammingMenu.mnutrans | Transparent.opttrans(0) | Transparent.cmdtranscancel",
     "", "", ""},
    {"a choice describes itself",
     "ProgrammingMenu.mnutrans | Transparent.opttrans(2) | Transparent.lblDescription==This mode allows the "
     "user "
     "to design his/her own transparent setup parameters.",
     "", "", "Transparent"},
    {"custom with the modem's defaults",
     kCustom + kModemDefaults + "Custom.==Custom Program | Custom.cmdadding", "",
     "ADD 5 | SETC 12 | TRANS ON", ""},
    {"custom with nothing checked", kCustom + "Custom.cmdadding", "",
     std::string("ADD 5 | SETC 12 | ") + kOffLines, ""},
    {"custom with everything",
     kCustom + kModemDefaults +
         "Custom.txtsetc=100,50 | Custom.cboTermc=ON | Custom.txttermt=65535 | Custom.txtpacket=1 | "
         "Custom.txtchrs=0 | Custom.optFlow(1) | Custom.Check1(0) | Custom.Check1(1) | Custom.cmdadding",
     "",
     "ADD 5 | SETC 100,50 | TERMC ON | TERMT 65535 | PACKLENG 1 | SENDPACK 0 | XSF OFF | XHF ON | DTR ON | "
     "DISACK ON | TRANS ON",
     ""},
    {"custom, software flow and the lower edges",
     kCustom + kModemDefaults +
         "Custom.cboTermc=ON | Custom.txttermt=10 | Custom.txtpacket=2000.0 | Custom.txtchrs=255 | "
         "Custom.optFlow(0) | Custom.cmdadding",
     "", "ADD 5 | SETC 12 | TERMC ON | TERMT 10 | PACKLENG 2000.0 | SENDPACK 255 | XSF ON | TRANS ON", ""},
    {"custom, flow disabled", kCustom + kModemDefaults + "Custom.optFlow(2) | Custom.cmdadding", "",
     "ADD 5 | SETC 12 | XSF OFF | XHF OFF | TRANS ON", ""},
    {"custom, no address", kCustom + "Custom.txtadd5= | Custom.cmdadding",
     "!You Must Input an Address For The Connected Varnel!", "", "Custom"},
    {"custom, address 255", kCustom + "Custom.txtadd5=255 | Custom.cmdadding",
     "!Your address must be between 1-254!", "", "Custom"},
    {"custom, address 0", kCustom + "Custom.txtadd5=0 | Custom.cmdadding",
     "!Your address must be between 1-254!", "", "Custom"},
    {"custom, no set-connect", kCustom + "Custom.txtsetc= | Custom.cmdadding",
     "!You Must Input a Setconnect Address For The Varnel!", "ADD 5", "Custom"},
    {"custom, time too short, then again",
     kCustom + "Custom.cboTermc=ON | Custom.txttermt=5 | Custom.cmdadding | Custom.txttermt=10 | " +
         kModemDefaults + "Custom.cmdadding",
     "!Your Termination Time Must Be Between 10-65535 Milliseconds",
     "ADD 5 | SETC 12 | TERMC ON | ADD 5 | SETC 12 | TERMC ON | TERMT 10 | TRANS ON", ""},
    {"custom, time too long", kCustom + "Custom.cboTermc=ON | Custom.txttermt=65536 | Custom.cmdadding",
     "!Your Termination Time Must Be Between 10-65535 Milliseconds", "ADD 5 | SETC 12 | TERMC ON", "Custom"},
    {"custom, no time", kCustom + "Custom.cboTermc=ON | Custom.txttermt= | Custom.cmdadding",
     "!You Must Enter A Value for the Termination Time in Milliseconds.", "ADD 5 | SETC 12 | TERMC ON",
     "Custom"},
    {"custom, timer off ignores the time", kCustom + kModemDefaults + "Custom.txttermt= | Custom.cmdadding",
     "", "ADD 5 | SETC 12 | TRANS ON", ""},
    {"custom, packet too long", kCustom + "Custom.txtpacket=2001 | Custom.cmdadding",
     "!Your Packet Length must be between 1-2000.", "ADD 5 | SETC 12", "Custom"},
    {"custom, packet empty", kCustom + "Custom.txtpacket= | Custom.cmdadding",
     "!Your Packet Length must be between 1-2000.", "ADD 5 | SETC 12", "Custom"},
    {"custom, send character too high", kCustom + "Custom.txtchrs=256 | Custom.cmdadding",
     "!Your Send Packet Character must be between 0-255.", "ADD 5 | SETC 12", "Custom"},
    {"custom, send character below 0", kCustom + "Custom.txtchrs=-1 | Custom.cmdadding",
     "!Your Send Packet Character must be between 0-255.", "ADD 5 | SETC 12", "Custom"},
    {"custom cancelled", kCustom + "Custom.cmdcustomcanc", "", "", ""},
    {"custom help follows the focus",
     kCustom +
         "Custom.cboTermc> | Custom.lblDes==When ON, the Varnel sends a packet after the termination timer "
         "has "
         "run out with no new character.  The value can be from 10 to 255 ms. | Custom.txttermt> | "
         "Custom.lblDes==The time without a new character after which the packet is sent.  The value can be "
         "from 10 to 65535 ms.",
     "", "", "Custom"},
    {"radio/IP twice", "ProgrammingMenu.mnuradioip | ProgrammingMenu.mnuradioip",
     std::string(kRadioIp) + " | " + kRadioIp,
     "TERMT 2000 | AUTOLF OFF | ECHO OFF | EDIT OFF | SCA ON | TERMT 2000 | AUTOLF OFF | ECHO OFF | EDIT OFF "
     "| "
     "SCA ON",
     ""},
};
} // namespace

class TransparentTest : public QObject
{
    Q_OBJECT
private slots:
    void cases_data() { addRows(kCases); }
    void cases()
    {
        const wizard::Case &c = fetchRow(kCases);
        wizard::run(c);
    }

    void screens()
    {
        SessionRig rig(CommControl::kAutoProcessProgram);
        Transparent chooser(rig.session, {}, nullptr);
        QVERIFY(matchesGolden(describeWindow(chooser), QStringLiteral(VARNEL_GOLDEN "/Transparent.txt")));
        Custom custom(rig.session, {}, nullptr);
        QVERIFY(matchesGolden(describeWindow(custom), QStringLiteral(VARNEL_GOLDEN "/Custom.txt")));
        rig.session.ProgMode = QStringLiteral("Autoglobal");
        SetAddress address(rig.session, {}, nullptr);
        QVERIFY(matchesGolden(describeWindow(address), QStringLiteral(VARNEL_GOLDEN "/SetAddress.txt")));
    }
};

QTEST_MAIN(TransparentTest)
#include "TransparentTest.moc"
