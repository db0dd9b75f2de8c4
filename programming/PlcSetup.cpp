#include "PlcSetup.h"

#include "RepeaterRoute.h"
#include "TextRules.h"

namespace {
const PlcMaker kMakers[] = {
    {"Acromag", "Acromag", PlcForm::SetAddress,
     QStringLiteral("Configure the Varnel to work with Acromag products.")},
    {"Allen Bradley", "AB", PlcForm::PLCDescript,
     QStringLiteral("The Varnel modem supports the Allen Bradley communications protocol.   ") +
         QStringLiteral(
             "This allows the Allen Bradley user to READ and WRITE memory from one device to another ") +
         QStringLiteral("through two or more Varnel modems.")},
    {"Barrington", "Barrington", PlcForm::SetAddress,
     QStringLiteral("Configure the Varnel to work with Barrington ProStar and LanStar products. ")},
    {"Cutler-Hammer", "Cutler", PlcForm::PLCDescript,
     QStringLiteral("Configure the Varnel to work with Cutler-Hammer D32LT PLC protocol products. ")},
    {"DNP", "DNP", PlcForm::PLCDescript,
     QStringLiteral("Configure the Varnel to work with DNP protocol enabled devices. ")},
    {"Foxboro", "Foxboro", PlcForm::SetAddress,
     QStringLiteral("Configure the Varnel to work with Foxboro Intelligence Automation products.")},
    {"General Electric", "GE", PlcForm::PLCDescript,
     QStringLiteral("Configure the Varnel to work with GE Fanuc PLCs.") +
         QStringLiteral("CCM, SNP, SNP-X, ") + QStringLiteral("and Modbus RTU protocols are supported.")},
    {"Johnson Controls/Metasys", "Johnson", PlcForm::PLCDescript,
     QStringLiteral("Configure the Varnel to work with JOHNSON CONTROLS and Metasys hardware.")},
    {"Modicon/Modbus", "Modicon", PlcForm::PLCDescript,
     QStringLiteral("Configure the Varnel to work with Modbus Protocol PLCs.") +
         QStringLiteral("Modbus RTU and ASCII protocols are supported.")},
    {"Omron", "Omron", PlcForm::SetAddress,
     QStringLiteral("Configure the Varnel to work with Omron PLCs Host Link Protocol.")},
    {"Opto-22", "Opto22", PlcForm::PLCDescript,
     QStringLiteral("Configure the Varnel to work with Opto-22 hardware.")},
    {"Phoenix Contact", "Phoenix", PlcForm::SetAddress,
     QStringLiteral("Configure the Varnel to work with PHOENIX CONTACT Interbus-R family ") +
         QStringLiteral("of intelligent controllers.")},
    {"PLC Direct (Koyo)", "PLCDirect", PlcForm::PLCDescript,
     QStringLiteral("Configure the Varnel to work with PLC Direct (Koyo) 405, 305, and 205 family ")},
    {"Siemens", "Siemens", PlcForm::SetAddress,
     QStringLiteral("Configure the Varnel to work with SIEMENS hardware.")},
    {"Square D", "SquareD", PlcForm::PLCDescript,
     QStringLiteral("Configure the Varnel to work with SY/MAX and Power Logic products.")},
    {"Turnbull", "Turnbull", PlcForm::SetAddress,
     QStringLiteral("Configure the Varnel to work with the Turnbull Control Systems ") +
         QStringLiteral("Limited (TCS) SYSTEM 6000.")},
    {"Texas Instruments", "Texas", PlcForm::SetAddress,
     QStringLiteral("Configure the Varnel to work with TEXAS INSTRUMENTS PLCs. ")},
    {"Toshiba", "Toshiba", PlcForm::SetAddress,
     QStringLiteral("Configure the Varnel to work with TOSHIBA PLCs.")},
    {"PLC not listed", "PLCNot", PlcForm::SetAddress,
     QStringLiteral("If your device is not listed use this section to configure the Varnel.")},
};
const std::array<PlcMaker, 19> kMakerList = std::to_array(kMakers);

// The address form's words for each key that leads there: its title, the protocol and the equipment.
const char *const kAddressForms[][3] = {
    {"Acromag", "Acromag Programming", "the Acromag communications protocol"},
    {"Barrington", "Barrington Programming", "the Barrington communications protocol"},
    {"Foxboro", "Foxboro Programming", "the Foxboro communications protocol"},
    {"Omron", "Omron Programming", "the Omron Host Link communications protocol"},
    {"Phoenix", "Phoenix Contact Programming", "the Interbus-R communications protocol of PHOENIX CONTACT"},
    {"Siemens", "SIEMENS Programming", "the SIEMENS 3964R communications protocol"},
    {"Turnbull", "Turnbull Programming", "the Turnbull Control Systems (TCS) communications protocol"},
    {"Texas", "Texas Instruments Programming", "the TEXAS INSTRUMENTS communications protocol"},
    {"Toshiba", "Toshiba Programming", "the TOSHIBA communications protocol"},
    {"PLCNot", "PLC Programming", "the communications protocol of your device"},
};

const PlcStepForm kStepForms[] = {
    {"AB",
     QStringLiteral("Allen Bradley Programming"),
     QStringLiteral(" WELCOME TO ALLEN BRADLEY"),
     {QStringLiteral("DF1 Radio Modem"), QStringLiteral("Full Duplex"), QStringLiteral("Half Duplex")},
     {QStringLiteral("BCC"), QStringLiteral("CRC")}},
    {"GE",
     QStringLiteral("GE Fanuc Programming"),
     QStringLiteral("WELCOME TO GE FANUC"),
     {QStringLiteral("CCM"), QStringLiteral("RTU"), QStringLiteral("SNP"), QStringLiteral("SNP-X")},
     {}},
    {"Modicon",
     QStringLiteral("Modicon & Modbus Protocol Programming"),
     QStringLiteral("WELCOME TO MODICON AND MODBUS PROTOCOL"),
     {QStringLiteral("RTU"), QStringLiteral("ASCII")},
     {}},
    {"Opto22",
     QStringLiteral("Opto-22 Protocol Programming"),
     QStringLiteral("WELCOME TO OPTO-22"),
     {QStringLiteral("ASCII")},
     {}},
    {"Johnson",
     QStringLiteral("Johnson Controls Protocol Programming"),
     QStringLiteral("WELCOME TO JOHNSON CONTROLS/METASYS"),
     {QStringLiteral("METASYS")},
     {}},
    {"PLCDirect",
     QStringLiteral("PLC Direct(Koyo) Programming"),
     QStringLiteral("WELCOME TO AUTOMATION DIRECT/PLC DIRECT (KOYO)"),
     {QStringLiteral("K-Sequence"), QStringLiteral("Direct Net")},
     {}},
    {"SquareD",
     QStringLiteral("Square-D Programming"),
     QStringLiteral("WELCOME TO SQUARE D"),
     {QStringLiteral("Sy-Max")},
     {}},
    {"Cutler",
     QStringLiteral("Cutler-Hammer Protocol Programming"),
     QStringLiteral("WELCOME TO CUTLER-HAMMER"),
     {QStringLiteral("D32LT PLC (User Defined)")},
     {}},
    {"DNP",
     QStringLiteral("DNP Protocol Programming"),
     QStringLiteral("WELCOME TO DNP PROTOCOL"),
     {QStringLiteral("DNP")},
     {}},
};

bool isAddress(const QString &text)
{
    const double value = numericValue(text);
    return value >= 1 && value <= 254;
}

// The controller's own lines. GE's SNP-X goes out as SNP, Johnson Controls shares the Opto-22
// command, and PLC Direct runs on GE's CCM whichever of its protocols is chosen.
QStringList protocolLines(const QString &key, const QString &protocol, const QString &errorCheck)
{
    if (key == u"AB") {
        const bool half = protocol == u"Half Duplex";
        return {(half ? QStringLiteral("A_BCTRL HALF_") : QStringLiteral("A_BCTRL FULL_")) + errorCheck,
                protocol == u"DF1 Radio Modem" ? QStringLiteral("DISACK OFF") : QStringLiteral("DISACK ON")};
    }
    if (key == u"GE")
        return {protocol == u"RTU"     ? QStringLiteral("MODCTRL RTU")
                : protocol == u"SNP-X" ? QStringLiteral("GE_CTRL SNP")
                                       : QStringLiteral("GE_CTRL ") + protocol};
    if (key == u"Modicon")
        return {QStringLiteral("MODCTRL ") + protocol};
    const char *const fixed[][2] = {{"Opto22", "OPTO22 ON"},      {"Johnson", "OPTO22 ON"},
                                    {"PLCDirect", "GE_CTRL CCM"}, {"SquareD", "SQDCTRL ON"},
                                    {"Cutler", "CUTLER ON"},      {"DNP", "DNP ON"}};
    for (const auto &[maker, line] : fixed)
        if (key == QLatin1String(maker))
            return {QLatin1String(line)};
    return {};
}
} // namespace

const std::array<PlcMaker, 19> &plcMakers()
{
    return kMakerList;
}

std::optional<AddressFormText> plcAddressFormText(const QString &key)
{
    for (const auto &[maker, title, protocol] : kAddressForms)
        if (key == QLatin1String(maker))
            return AddressFormText{
                QLatin1String(title),
                QStringLiteral(
                    "The Varnel modem supports %1.  This allows the user to READ or WRITE memory or "
                    "memory blocks from one device to another through two or more Varnel modems.  "
                    "The following steps will configure your Varnel modems for this equipment.")
                    .arg(QLatin1String(protocol))};
    return std::nullopt;
}

const PlcStepForm *plcStepForm(const QString &key)
{
    for (const PlcStepForm &form : kStepForms)
        if (key == QLatin1String(form.key))
            return &form;
    return nullptr;
}

SetupProgram plcProgram(const QString &key, const PlcAnswers &answers)
{
    const auto refused = [](const QString &text, bool clear = false) {
        return SetupProgram{{}, text, clear};
    };
    if (answers.connected.isEmpty())
        return refused(QStringLiteral("You Must Type In An Address For The Connected Varnel"));
    if (!isAddress(answers.connected))
        return refused(QStringLiteral("Your Address Must Be Between 1 and 254"));
    QString route;
    if (!answers.master) {
        if (answers.destination == answers.connected)
            return refused(QStringLiteral("Your Destation and Connected Address Must Be Different"));
        if (numericValue(answers.destination) == 0)
            return refused(QStringLiteral("You Must Type In An Address For The Destination Varnel/PLC"));
        if (!isAddress(answers.destination))
            return refused(QStringLiteral("Your Destination Address Must Be Between 1 and 254"));
        const RepeaterWalk walk =
            walkRepeaters(answers.repeaters, answers.destination,
                          {numericValue(answers.connected), numericValue(answers.destination)},
                          QStringLiteral("Your Repeater Address Must Be Different From the Connected and "
                                         "Destination Addresses"));
        if (!walk.faultText.isEmpty())
            return refused(walk.faultText, walk.clearFields);
        route = walk.route;
    }
    if (answers.protocol.isEmpty())
        return refused(QStringLiteral("You Must Select the PLC Protocol Used."));
    if (key == u"AB" && answers.errorCheck.isEmpty())
        return refused(QStringLiteral("You Must Select the Type of Error Detection."));
    QStringList lines{QStringLiteral("ADD ") + answers.connected};
    if (!route.isEmpty())
        lines << QStringLiteral("SETC ") + route;
    if (answers.master)
        lines << QStringLiteral("PLC_MAST ON");
    return {lines + protocolLines(key, answers.protocol, answers.errorCheck), {}};
}

QString squareDFenceLine(const QString &fence)
{
    return QStringLiteral("SQDADD ") + (fence.isEmpty() ? QStringLiteral("1") : fence);
}
