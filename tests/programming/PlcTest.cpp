#include "Plc.h"

#include "Golden.h"
#include "WizardSteps.h"

namespace {
std::string maker(const char *listText)
{
    return std::string("ProgrammingMenu.mnuplc | PLC.cmbPLC=") + listText + " | PLC.cmdContinue | ";
}
// A remote, connected 5, destination 7, and the protocol to pick.
std::string remote(const char *listText, const char *protocol)
{
    return maker(listText) +
           "PLCDescript.optPLCMast(1) | PLCDescript.txtAdd=5 | PLCDescript.txtDes=7 | "
           "PLCDescript.cboProtocol=" +
           protocol + " | ";
}
const std::string kModbus = remote("Modicon/Modbus", "RTU");
const char *const kSame =
    "!Your Repeater Address Must Be Different From the Connected and Destination Addresses";

const wizard::Case kCases[] = {
    {"Siemens takes the address form",
     "ProgrammingMenu.mnuplc | PLC.cmbPLC=Siemens | PLC.lblPLCframe==Configure the Varnel to work with "
     "SIEMENS "
     "hardware. | PLC.cmdContinue | SetAddress.==SIEMENS Programming | SetAddress.txtConnectedAdd=5 | "
     "SetAddress.txtDestinationAdd=12 | SetAddress.cmdoksetadd",
     "", "ADD 5 | SETC 12 | XSF OFF | TERMC ON | TERMT 10 | TRANS ON", ""},
    {"Allen Bradley master",
     maker("Allen Bradley") +
         "PLCDescript.==Allen Bradley Programming | PLCDescript.lblproduct== WELCOME TO ALLEN BRADLEY | "
         "PLCDescript.frmAdd==<hidden> | PLCDescript.optPLCMast(0) | PLCDescript.txtDes==<hidden> | "
         "PLCDescript.cboError== | PLCDescript.txtAdd=5 | PLCDescript.txtDes=5 | "
         "PLCDescript.cboProtocol=Full Duplex | "
         "PLCDescript.cboError=CRC | PLCDescript.cmdCL",
     "", "ADD 5 | PLC_MAST ON | A_BCTRL FULL_CRC | DISACK ON", ""},
    {"Allen Bradley DF1",
     remote("Allen Bradley", "DF1 Radio Modem") + "PLCDescript.cboError=BCC | PLCDescript.cmdCL", "",
     "ADD 5 | SETC 7 | A_BCTRL FULL_BCC | DISACK OFF", ""},
    {"Allen Bradley half duplex",
     remote("Allen Bradley", "Half Duplex") + "PLCDescript.cboError=CRC | PLCDescript.cmdCL", "",
     "ADD 5 | SETC 7 | A_BCTRL HALF_CRC | DISACK ON", ""},
    {"Allen Bradley without error detection", remote("Allen Bradley", "Full Duplex") + "PLCDescript.cmdCL",
     "!You Must Select the Type of Error Detection.", "", "PLCDescript"},
    {"Modbus through a repeater", kModbus + "PLCDescript.txtRep(0)=9 | PLCDescript.cmdCL", "",
     "ADD 5 | SETC 9,7 | MODCTRL RTU", ""},
    {"Modbus ASCII through three",
     remote("Modicon/Modbus", "ASCII") +
         "PLCDescript.txtRep(0)=1 | PLCDescript.txtRep(1)=2 | PLCDescript.txtRep(2)=254 | "
         "PLCDescript.txtDes=07 | PLCDescript.cmdCL",
     "", "ADD 5 | SETC 1,2,254,07 | MODCTRL ASCII", ""},
    {"GE RTU", remote("General Electric", "RTU") + "PLCDescript.cmdCL", "", "ADD 5 | SETC 7 | MODCTRL RTU",
     ""},
    {"GE SNP-X", remote("General Electric", "SNP-X") + "PLCDescript.cmdCL", "",
     "ADD 5 | SETC 7 | GE_CTRL SNP", ""},
    {"GE CCM", remote("General Electric", "CCM") + "PLCDescript.cmdCL", "", "ADD 5 | SETC 7 | GE_CTRL CCM",
     ""},
    {"Opto-22", remote("Opto-22", "ASCII") + "PLCDescript.cmdCL", "", "ADD 5 | SETC 7 | OPTO22 ON", ""},
    {"Johnson Controls", remote("Johnson Controls/Metasys", "METASYS") + "PLCDescript.cmdCL", "",
     "ADD 5 | SETC 7 | OPTO22 ON", ""},
    {"PLC Direct", remote("PLC Direct (Koyo)", "Direct Net") + "PLCDescript.cmdCL", "",
     "ADD 5 | SETC 7 | GE_CTRL CCM", ""},
    {"Cutler-Hammer", remote("Cutler-Hammer", "D32LT PLC (User Defined)") + "PLCDescript.cmdCL", "",
     "ADD 5 | SETC 7 | CUTLER ON", ""},
    {"DNP",
     remote("DNP", "DNP") + "PLCDescript.==DNP Protocol Programming | PLCDescript.cboError==<hidden> | "
                            "PLCDescript.cmdCL",
     "", "ADD 5 | SETC 7 | DNP ON", ""},
    {"Square D remote", remote("Square D", "Sy-Max") + "PLCDescript.cmdCL", "", "ADD 5 | SETC 7 | SQDCTRL ON",
     ""},
    {"Square D master, empty fence",
     maker("Square D") +
         "PLCDescript.optPLCMast(0) | SquareD.txtFence= | SquareD.Command1 | PLCDescript.optRep(0) | "
         "PLCDescript.txtAdd=5 | PLCDescript.cboProtocol=Sy-Max | PLCDescript.cmdCL",
     "", "SQDADD 1 | ADD 5 | PLC_MAST ON | SQDCTRL ON", ""},
    {"Square D fence as typed",
     maker("Square D") + "PLCDescript.optPLCMast(0) | SquareD.txtFence=10 | SquareD.Command1", "",
     "SQDADD 10", "PLCDescript"},
    {"a master's repeaters are its routes",
     maker("Modicon/Modbus") + "PLCDescript.optPLCMast(0) | PLCDescript.optRep(0) | Routing.txtAdd(0)=7 | "
                               "Routing.cmdNext | Routing.cmdExit | PLCDescript.txtAdd=5 | "
                               "PLCDescript.cboProtocol=RTU | PLCDescript.cmdCL",
     "*Your Routing Information Has Been Added To The Command List",
     "ROUTE 1, | APPEND 1,1,7,7 | ADD 5 | PLC_MAST ON | MODCTRL RTU", ""},
    {"repeaters hidden and shown",
     kModbus +
         "PLCDescript.optRep(1) | PLCDescript.txtRep(2)==<hidden> | PLCDescript.cmdExample==<hidden> | "
         "PLCDescript.lblRoute==<hidden> | PLCDescript.optRep(0) | PLCDescript.lblRep(2)==3rd Repeater | "
         "PLCDescript.cmdExample",
     "", "", "PLCDescript | RoutingExample"},
    {"destination shown again",
     maker("Allen Bradley") + "PLCDescript.optPLCMast(0) | PLCDescript.optPLCMast(1) | "
                              "PLCDescript.lblDes==Destination Varnel/PLC Address:",
     "", "", "PLCDescript"},
    {"no connected address", kModbus + "PLCDescript.txtAdd= | PLCDescript.cmdCL",
     "!You Must Type In An Address For The Connected Varnel", "", "PLCDescript"},
    {"connected address 255", kModbus + "PLCDescript.txtAdd=255 | PLCDescript.cmdCL",
     "!Your Address Must Be Between 1 and 254", "", "PLCDescript"},
    {"connected address 0", kModbus + "PLCDescript.txtAdd=0 | PLCDescript.cmdCL",
     "!Your Address Must Be Between 1 and 254", "", "PLCDescript"},
    {"destination same as connected",
     kModbus +
         "PLCDescript.txtDes=5 | PLCDescript.txtRep(0)=9 | PLCDescript.cmdCL | PLCDescript.txtRep(0)==9",
     "!Your Destation and Connected Address Must Be Different", "", "PLCDescript"},
    {"no destination", kModbus + "PLCDescript.txtDes=0 | PLCDescript.cmdCL",
     "!You Must Type In An Address For The Destination Varnel/PLC", "", "PLCDescript"},
    {"destination 255", kModbus + "PLCDescript.txtDes=255 | PLCDescript.cmdCL",
     "!Your Destination Address Must Be Between 1 and 254", "", "PLCDescript"},
    {"destination below 1", kModbus + "PLCDescript.txtDes=-1 | PLCDescript.cmdCL",
     "!Your Destination Address Must Be Between 1 and 254", "", "PLCDescript"},
    {"repeater same as connected", kModbus + "PLCDescript.txtRep(0)=5 | PLCDescript.cmdCL", kSame, "",
     "PLCDescript"},
    {"repeater same as destination",
     kModbus + "PLCDescript.txtRep(0)=9 | PLCDescript.txtRep(1)=7 | PLCDescript.cmdCL", kSame, "",
     "PLCDescript"},
    {"a gap among the repeaters",
     kModbus + "PLCDescript.txtRep(2)=9 | PLCDescript.cmdCL | PLCDescript.txtRep(2)==",
     "!Please Fill In Repeaters From First to Third", "", "PLCDescript"},
    {"a repeater out of range", kModbus + "PLCDescript.txtRep(0)=255 | PLCDescript.cmdCL",
     "!Your Repeater Addresses Must Be Between 1 and 254", "", "PLCDescript"},
    {"no protocol", maker("Opto-22") + "PLCDescript.optPLCMast(0) | PLCDescript.txtAdd=5 | PLCDescript.cmdCL",
     "!You Must Select the PLC Protocol Used.", "", "PLCDescript"},
    {"step form cancelled", kModbus + "PLCDescript.cmdcancel8", "", "", ""},
    {"no manufacturer chosen", "ProgrammingMenu.mnuplc | PLC.cmdContinue", "", "", ""},
    {"the list describes a manufacturer",
     "ProgrammingMenu.mnuplc | PLC.cmbPLC=Allen Bradley | PLC.lblPLCframe==The Varnel modem supports the "
     "Allen "
     "Bradley communications protocol.   This allows the Allen Bradley user to READ and WRITE memory from "
     "one device "
     "to another through two or more Varnel modems. | PLC.cmdexitplc",
     "", "", ""},
    {"the old list offered and cleared",
     "ProgrammingMenu.mnuradioip | " + maker("PLC not listed") +
         "SetAddress.==PLC Programming | SetAddress.txtConnectedAdd=5 | SetAddress.txtDestinationAdd=12 | "
         "SetAddress.cmdoksetadd",
     "*The software commands necessary to operate with Radio/IP software have been added to the Command "
     "List^Radio/IP Configuration | ?Do You Wish to Save The Current Command List?",
     "ADD 5 | SETC 12 | XSF OFF | TERMC ON | TERMT 10 | TRANS ON", ""},
};
} // namespace

class PlcTest : public QObject
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
        PLC plc(rig.session, {}, nullptr);
        QVERIFY(matchesGolden(describeWindow(plc), QStringLiteral(VARNEL_GOLDEN "/PLC.txt")));
        rig.session.ProgMode = QStringLiteral("AB");
        PLCDescript steps(rig.session, {}, nullptr);
        QVERIFY(matchesGolden(describeWindow(steps), QStringLiteral(VARNEL_GOLDEN "/PLCDescript.txt")));
        SquareD fence({}, nullptr);
        QVERIFY(matchesGolden(describeWindow(fence), QStringLiteral(VARNEL_GOLDEN "/SquareD.txt")));
    }
};

QTEST_MAIN(PlcTest)
#include "PlcTest.moc"
