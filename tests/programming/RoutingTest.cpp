#include "Routing.h"

#include "Golden.h"
#include "WizardSteps.h"

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

const wizard::Case kCases[] = {
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
} // namespace

class RoutingTest : public QObject
{
    Q_OBJECT
private slots:
    void cases_data() { addRows(kCases); }
    void cases()
    {
        const wizard::Case &c = fetchRow(kCases);
        wizard::run(c, [](ModemSession &session, ProgrammingMenu &menu) {
            (new Routing(
                 session, [&menu](const QString &line) { menu.AddCommand(line); }, &menu))
                ->show();
        });
    }

    void screens()
    {
        SessionRig rig(CommControl::kAutoProcessProgram);
        Routing routing(rig.session, {}, nullptr);
        QVERIFY(matchesGolden(describeWindow(routing), QStringLiteral(VARNEL_GOLDEN "/Routing.txt")));
        RoutingExamp examp(nullptr);
        QVERIFY(matchesGolden(describeWindow(examp), QStringLiteral(VARNEL_GOLDEN "/RoutingExamp.txt")));
        RoutingExample example(nullptr);
        QVERIFY(matchesGolden(describeWindow(example), QStringLiteral(VARNEL_GOLDEN "/RoutingExample.txt")));
    }
};

QTEST_MAIN(RoutingTest)
#include "RoutingTest.moc"
