#include "Plc.h"
#include "Routing.h"
#include "Transparent.h"

#include "CommandListBox.h"
#include "Golden.h"
#include "ProgrammingMenu.h"
#include "SessionRig.h"
#include "SetAddress.h"
#include "Tables.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>

// The set-up forms driven as a table writes it. A step names a control of an open window as
// "Form.control": alone it clicks the control, "Form.control=text" types into a field or picks a
// list item, "Form.control==text" checks what the control shows, "Form.control>" gives it the
// focus; a menu entry is triggered, and "Form." stands for the window. "Nx" repeats the steps after
// it N times. Boxes are written with their icon in front: "!" exclamation, "*" information, "-"
// none, "?" a Yes/No question answered No; and a title after a "^".
namespace wizard {
inline QWidget *window(const QString &name)
{
    for (QWidget *w : QApplication::topLevelWidgets())
        if (w->isVisible() && w->objectName() == name)
            return w;
    return nullptr;
}

// A control of the window itself, not of a window it opened; the window for an empty name.
inline QWidget *control(QWidget *parent, const QString &name)
{
    if (name.isEmpty())
        return parent;
    for (QObject *child : parent->children()) {
        auto *w = qobject_cast<QWidget *>(child);
        if (!w || w->isWindow())
            continue;
        if (w->objectName() == name)
            return w;
        if (QWidget *found = control(w, name))
            return found;
    }
    return nullptr;
}

// What the user reads on a control, the title of a window, or that the control is out of sight.
inline QString shownText(const QWidget *w)
{
    if (!w->isVisible())
        return QStringLiteral("<hidden>");
    if (w->isWindow())
        return w->windowTitle();
    if (const auto *combo = qobject_cast<const QComboBox *>(w))
        return combo->currentText();
    return w->property("text").toString();
}

inline void step(const QString &step)
{
    const bool check = step.contains(QStringLiteral("=="));
    const QString target = step.section(u'=', 0, 0);
    const QString value = step.section(u'=', check ? 2 : 1);
    QWidget *form = window(target.section(u'.', 0, 0));
    QVERIFY2(form, qPrintable(step));
    const QString name = target.section(u'.', 1);
    if (auto *entry = form->findChild<QAction *>(name)) {
        entry->trigger();
        return;
    }
    QWidget *w = control(form, name.chopped(name.endsWith(u'>') ? 1 : 0));
    QVERIFY2(w, qPrintable(step));
    if (name.endsWith(u'>')) {
        QFocusEvent focus(QEvent::FocusIn);
        QApplication::sendEvent(w, &focus);
    } else if (check)
        QCOMPARE(shownText(w), value);
    else if (auto *edit = qobject_cast<QLineEdit *>(w); edit && step.contains(u'='))
        edit->setText(value);
    else if (auto *combo = qobject_cast<QComboBox *>(w); combo && step.contains(u'='))
        combo->setCurrentIndex(combo->findText(value));
    else if (auto *button = qobject_cast<QAbstractButton *>(w))
        button->click();
    else
        QFAIL(qPrintable(QStringLiteral("Cannot do ") + step));
}

inline void steps(const char *list)
{
    const QStringList all = items(list);
    for (qsizetype i = 0; i < all.size(); ++i) {
        const QRegularExpressionMatch repeat = QRegularExpression(QStringLiteral("^(\\d+)x$")).match(all[i]);
        if (!repeat.hasMatch()) {
            step(all[i]);
        } else {
            for (int n = repeat.captured(1).toInt(); n > 0; --n)
                for (qsizetype j = i + 1; j < all.size(); ++j)
                    step(all[j]);
            return;
        }
        if (QTest::currentTestFailed())
            return;
    }
}

inline void expectBoxes(ScriptedPrompts &prompts, const char *list)
{
    for (const QString &box : items(list)) {
        const bool question = box.startsWith(u'?');
        const MsgIcon icon = box.startsWith(u'!')   ? MsgIcon::Exclamation
                             : box.startsWith(u'*') ? MsgIcon::Information
                             : question             ? MsgIcon::Question
                                                    : MsgIcon::None;
        auto &expected =
            prompts.expectMsgBox(box.mid(1).section(u'^', 0, 0), question ? MsgAnswer::No : MsgAnswer::Ok)
                .withIcon(icon);
        expected.withTitle(box.section(u'^', 1))
            .withButtons(question ? MsgButtons::YesNo : MsgButtons::OkOnly);
    }
}

// The visible windows but the one named, by name, in order.
inline QString openWindows(const QString &except)
{
    QStringList names;
    for (const QWidget *w : QApplication::topLevelWidgets())
        if (w->isVisible() && w->objectName() != except)
            names << w->objectName();
    names.sort();
    return names.join(QStringLiteral(" | "));
}

// The list's lines against the table's: all of them, or "#N" and the last ones of N lines.
inline void compareLines(const QStringList &lines, const char *expected)
{
    QStringList tail = items(expected);
    qsizetype count = tail.size();
    if (!tail.isEmpty() && tail.first().startsWith(u'#'))
        count = tail.takeFirst().mid(1).toInt();
    QCOMPARE(lines.size(), count);
    QCOMPARE(lines.mid(count - tail.size()), tail);
}

// A case from the programming screen: the steps, the boxes in turn, the command list after, and the
// windows left open besides the programming screen.
struct Case
{
    const char *name;
    std::string steps;
    std::string boxes;
    std::string lines;
    const char *open;
};

// Runs a case with the form that opens(session, screen) opened first: the boxes are expected, the
// steps done, then the list and the windows left open are compared.
template <typename Opener> void run(const Case &c, Opener &&opens)
{
    SessionRig rig(CommControl::kAutoProcessProgram);
    ProgrammingMenu menu(rig.session);
    menu.show();
    opens(rig.session, menu);
    expectBoxes(rig.prompts, c.boxes.c_str());
    steps(c.steps.c_str());
    QVERIFY(rig.prompts.verify());
    compareLines(menu.cmboedit().lines(), c.lines.c_str());
    QCOMPARE(openWindows(menu.objectName()), QLatin1String(c.open));
}
inline void run(const Case &c)
{
    run(c, [](ModemSession &, ProgrammingMenu &) {});
}
} // namespace wizard

namespace {
const char *const kOneRow = "Routing.txtAdd(0)=7 | Routing.cmdNext";
const char *const kFourRows = "Routing.txtAdd(0)=1 | Routing.txtAdd(1)=2 | Routing.txtAdd(2)=3 | "
                              "Routing.txtAdd(3)=4 | Routing.cmdNext";
const char *const kGap = "!Please Fill In Repeaters From First to Third";
const char *const kAddressRange = "!All Addresses Must Be Between 1 and 254";
const char *const kSecond = "!Your Second Address In A Group Must Be Greater than the First Address";
const char *const kNoAddress = "-You must supply at least one Varnel address per route";
const char *const kMore = "*The Address Groups Have Been Added To Your Command List.";
const char *const kDone = "*Your Routing Information Has Been Added To The Command List";

const wizard::Case kRoutingCases[] = {
    {"a group", "Routing.txtRep(0)=5 | Routing.txtAdd(0)=25 | Routing.txtAdd(4)=28 | Routing.cmdNext", "",
     "ROUTE 1,5, | APPEND 1,1,25,28,*", "Routing"},
    {"a checked group, then the form is empty",
     "Routing.txtRep(0)=5 | Routing.txtAdd(0)=25 | Routing.txtAdd(4)=28 | Routing.chkGroup(0) | "
     "Routing.cmdNext "
     "| Routing.lblRoute==Route 2 | Routing.txtRep(0)== | Routing.txtAdd(4)== | Routing.chkGroup(0)==",
     "", "ROUTE 1,5, | APPEND 1,1,25,28", "Routing"},
    {"three repeaters, rows passed over",
     "Routing.txtRep(0)=3 | Routing.txtRep(1)=20 | Routing.txtRep(2)=40 | Routing.txtAdd(0)=50 | "
     "Routing.txtAdd(4)=53 | Routing.txtAdd(3)=35 | Routing.cmdNext",
     "", "ROUTE 1,3,20,40, | APPEND 1,1,50,53,* | APPEND 2,1,35,35", "Routing"},
    {"the second route counts on",
     "Routing.txtRep(0)=5 | Routing.txtAdd(0)=25 | Routing.cmdNext | Routing.txtAdd(0)=30 | Routing.cmdNext",
     "", "ROUTE 1,5, | APPEND 1,1,25,25 | ROUTE 2, | APPEND 2,2,30,30", "Routing"},
    {"more keeps the route",
     "Routing.txtRep(0)=5 | Routing.txtAdd(0)=25 | Routing.cmdMore | Routing.lblRoute==Route 1 | "
     "Routing.txtRep(0)== | Routing.txtRep(0)=5 | Routing.txtAdd(0)=26 | Routing.cmdNext",
     kMore, "APPEND 1,1,25,25 | ROUTE 1,5, | APPEND 2,1,26,26", "Routing"},
    {"second equal to the first", "Routing.txtAdd(0)=25 | Routing.txtAdd(4)=25 | Routing.cmdNext", kSecond,
     "ROUTE 1,", "Routing"},
    {"second below the first", "Routing.txtAdd(0)=25 | Routing.txtAdd(4)=9 | Routing.cmdMore", kSecond, "",
     "Routing"},
    {"second out of range", "Routing.txtAdd(0)=25 | Routing.txtAdd(4)=255 | Routing.cmdNext", kAddressRange,
     "ROUTE 1,", "Routing"},
    {"first out of range", "Routing.txtAdd(0)=0 | Routing.cmdNext", kAddressRange, "ROUTE 1,", "Routing"},
    {"edges of the range",
     "Routing.txtRep(0)=254 | Routing.txtAdd(0)=1 | Routing.txtAdd(4)=254 | Routing.txtAdd(1)=254 | "
     "Routing.cmdNext",
     "", "ROUTE 1,254, | APPEND 1,1,1,254,* | APPEND 2,1,254,254", "Routing"},
    {"a failed row 2, then the retry",
     "Routing.txtRep(0)=5 | Routing.txtAdd(0)=25 | Routing.txtAdd(1)=300 | Routing.cmdNext | "
     "Routing.lblRoute==Route 1 | Routing.txtAdd(1)=30 | Routing.cmdNext | Routing.lblRoute==Route 2",
     kAddressRange, "ROUTE 1,5, | APPEND 1,1,25,25 | ROUTE 1,5, | APPEND 2,1,25,25 | APPEND 3,1,30,30",
     "Routing"},
    {"a gap empties the repeaters",
     "Routing.txtRep(1)=5 | Routing.txtAdd(0)=25 | Routing.cmdNext | "
     "Routing.txtRep(1)== | Routing.txtAdd(0)==25",
     kGap, "", "Routing"},
    {"a repeater out of range stays",
     "Routing.txtRep(0)=255 | Routing.txtAdd(0)=25 | Routing.cmdMore | Routing.txtRep(0)==255",
     "!Your Repeater Addresses Must Be Between 1 and 254", "", "Routing"},
    {"no address", "Routing.txtRep(0)=5 | Routing.txtAdd(4)=25 | Routing.cmdNext", kNoAddress, "", "Routing"},
    {"the 16th route", "16x | " + std::string(kOneRow), "!The Maximum Number of Routes Have Been Entered.",
     "#30 | ROUTE 15, | APPEND 15,15,7,7", "Routing"},
    {"the 16th group", "5x | " + std::string(kFourRows),
     "!The Maximum Number of Append Route Address Groups Has Been Reached.  Please Review Your Addresses For "
     "Possible Grouping",
     "#20 | ROUTE 4, | APPEND 13,4,1,1 | APPEND 14,4,2,2 | APPEND 15,4,3,3 | APPEND 16,4,4,4", "Routing"},
    {"done with a route in progress", "Routing.txtRep(0)=5 | Routing.txtAdd(0)=25 | Routing.cmdExit", kDone,
     "ROUTE 1,5, | APPEND 1,1,25,25", ""},
    {"done with a route and no address", "Routing.txtRep(0)=5 | Routing.cmdExit",
     std::string(kNoAddress) + " | " + kDone, "", ""},
    {"done without a first repeater", "Routing.txtAdd(0)=25 | Routing.cmdExit", kDone, "", ""},
    {"the examples go round",
     "Routing.cmdExample | RoutingExamp.lblRoute==Route 1 | RoutingExamp.txtRep(0)==5 | "
     "RoutingExamp.txtAdd(1)==28 | RoutingExamp.cmdNext | RoutingExamp.cmdNext | RoutingExamp.cmdNext | "
     "RoutingExamp.lblRoute==Route 4 | RoutingExamp.txtRep(2)==40 | RoutingExamp.txtAdd(2)==35 | "
     "RoutingExamp.cmdNext | RoutingExamp.lblRoute==Route 1 | RoutingExamp.txtRep(1)== | "
     "RoutingExamp.txtAdd(2)== | RoutingExamp.Command2",
     "", "", "Routing"},
};

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

const wizard::Case kTransparentCases[] = {
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

const wizard::Case kPlcCases[] = {
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

class SetupWizardsTest : public QObject
{
    Q_OBJECT
private slots:
    void routing_data() { addRows(kRoutingCases); }
    void routing()
    {
        const wizard::Case &c = fetchRow(kRoutingCases);
        wizard::run(c, [](ModemSession &session, ProgrammingMenu &menu) {
            (new Routing(
                 session, [&menu](const QString &line) { menu.AddCommand(line); }, &menu))
                ->show();
        });
    }

    void routingScreens()
    {
        SessionRig rig(CommControl::kAutoProcessProgram);
        Routing routing(rig.session, {}, nullptr);
        QVERIFY(matchesGolden(describeWindow(routing), QStringLiteral(VARNEL_GOLDEN "/Routing.txt")));
        RoutingExamp examp(nullptr);
        QVERIFY(matchesGolden(describeWindow(examp), QStringLiteral(VARNEL_GOLDEN "/RoutingExamp.txt")));
        RoutingExample example(nullptr);
        QVERIFY(matchesGolden(describeWindow(example), QStringLiteral(VARNEL_GOLDEN "/RoutingExample.txt")));
    }

    void transparent_data() { addRows(kTransparentCases); }
    void transparent()
    {
        const wizard::Case &c = fetchRow(kTransparentCases);
        wizard::run(c);
    }

    void transparentScreens()
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

    void plc_data() { addRows(kPlcCases); }
    void plc()
    {
        const wizard::Case &c = fetchRow(kPlcCases);
        wizard::run(c);
    }

    void plcScreens()
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

QTEST_MAIN(SetupWizardsTest)
#include "SetupWizardsTest.moc"
