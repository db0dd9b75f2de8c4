#include "Parameters.h"

#include "CommandTable.h"
#include "Modem.h"

namespace sim {

namespace {

constexpr int kAny = 0x7fffffff;
// Reading stops once the value passes this: no setting comes near it.
constexpr long long kNumberLimit = 100000000000LL;

// Reads or sets one setting of the working copy.
bool runSetting(CommandCall &call)
{
    Modem &modem = call.modem;
    const ParameterDef &def = *findParameter(call.name);
    // Units of the old case set their rate by switches only: they have no rate command.
    if (call.name == QLatin1String("COMRATE") && modem.profile().switches == 8)
        return call.refuse();
    const bool security = call.name == QLatin1String("SECURITY");
    if (call.argument.isEmpty()) {
        // The security value itself is never shown: it is the key that unlocks the unit.
        QString value =
            call.name == QLatin1String("VERSION") ? modem.firmwareVersion() : modem.value(call.name);
        if (security)
            value = modem.locked() ? QStringLiteral("ON") : QStringLiteral("OFF");
        call.answer(valueLine(def, value));
        return true;
    }
    const auto value = normaliseValue(def, call.argument);
    if (!def.writable || !value || (modem.locked() && !security))
        return call.refuse();
    if (security && modem.locked()) {
        // Only the value that locked the unit unlocks it.
        if (*value != modem.value(call.name))
            return call.refuse();
        modem.setWorking(call.name, QStringLiteral("0"));
        return true;
    }
    modem.setWorking(call.name, *value);
    return true;
}

} // namespace

const QList<ParameterDef> &parameterDefs()
{
    using K = ValueKind;
    static const QList<ParameterDef> defs{
        {"MODEL", 5, "MODEL", K::Text, 0, 0, true, false},
        {"OPTION", 3, "OPTION", K::Number, 0, 255, true, false},
        {"S/N", 3, "S/N", K::Number, 0, 65535, true, false},
        {"VERSION", 3, "VERSION", K::Text, 0, 0, false, false},
        {"ADDRESS", 3, "ADDRESS", K::Number, 1, 254},
        {"NETWORK", 3, "NETWORK", K::Number, 1, 254},
        {"SETCONNECT", 4, "SETCON", K::Text},
        {"SEL/A1", 6, "A1", K::Number, 0, kAny, true, true, true},
        {"SEL/N1", 6, "N1", K::Number, 0, kAny, true, true, true},
        {"SEL/N2", 6, "N2", K::Number, 0, kAny, true, true, true},
        {"SQUELCH", 2, "SQUELCH", K::Number, 0, 255},
        {"ASQUELCH", 3, "ASQUELCH", K::Number, 0, 255},
        {"RFLOW", 3, "RFLOW", K::OnOff},
        {"RXMARK", 3, "RXMARK", K::Number, 0, 255},
        {"RFPOWER", 3, "RFPOWER", K::Number, 0, 1},
        {"COMRATE", 4, "COMRATE", K::Number, 0, 127},
        {"DATARATE", 3, "DATARATE", K::Number, 0, 255},
        {"RFWAIT", 3, "RFWAIT", K::Number, 0, 255},
        {"RXDATA", 3, "RXDATA", K::Number, 0, 255},
        {"RXEND", 3, "RXEND", K::Number, 0, 255},
        {"TXFLAG", 3, "TXFLAG", K::Number, 0, 255},
        {"TXEND", 3, "TXEND", K::Number, 0, 255},
        {"FRACK", 3, "FRACK", K::Number, 0, 255},
        {"RETRY", 3, "RETRY", K::Number, 0, 255},
        {"CARBSY", 3, "CARBSY", K::Number, 0, 255},
        {"PACKLEN", 4, "PACKLEN", K::Number, 1, 2000},
        {"SENDPACK", 4, "SENDPACK", K::Number, 1, 254},
        {"COMMAND", 4, "COMMAND", K::Number, 0, 255},
        {"TERMC", 5, "TERMC", K::OnOff},
        {"TERMTIME", 5, "TERMTIME", K::Number, 10, 65535},
        {"AUTOLF", 2, "AUTOLF", K::OnOff},
        {"ECHO", 2, "ECHO", K::OnOff},
        {"EDIT", 2, "EDIT", K::OnOff},
        {"DTR_ENAB", 3, "DTR_ENAB", K::OnOff},
        {"MODECONTR", 5, "MODECONTR", K::OnOff},
        {"MESSFORM", 4, "MESSFORM", K::OnOff},
        {"MULTID", 5, "MULTID", K::OnOff},
        {"XHFLOW", 3, "XHFLOW", K::OnOff},
        {"XSFLOW", 3, "XSFLOW", K::OnOff},
        {"TYPERR", 5, "TYPERR", K::OnOff},
        {"TYPSYS", 4, "TYPSYS", K::OnOff},
        {"SECURITY", 3, "SECURITY", K::Number, 0, 32767, true, false},
    };
    return defs;
}

const QList<CommandDef> &settingCommands()
{
    static const QList<CommandDef> commands = [] {
        QList<CommandDef> list;
        for (const ParameterDef &def : parameterDefs())
            list.append({def.command, def.minLength, &runSetting});
        return list;
    }();
    return commands;
}

const ParameterDef *findParameter(const QString &command)
{
    for (const ParameterDef &def : parameterDefs())
        if (command.compare(QLatin1String(def.command), Qt::CaseInsensitive) == 0)
            return &def;
    return nullptr;
}

QByteArray valueLine(const ParameterDef &def, const QString &value)
{
    const int valueColumn = def.shortLabel ? 7 : 11;
    QByteArray line(def.label);
    // "= " stands just in front of the value; a long label still gets one blank before it.
    const int pad = std::max(1, valueColumn - 2 - int(line.size()));
    line += QByteArray(pad, ' ');
    line += "= ";
    line += value.toLatin1();
    return line;
}

std::optional<long long> leadingNumber(const QString &text)
{
    const QString t = text.trimmed();
    const bool negative = t.startsWith(QLatin1Char('-'));
    const bool hasSign = negative || t.startsWith(QLatin1Char('+'));
    long long value = 0;
    int digits = 0;
    for (const QChar c : QStringView(t).mid(hasSign ? 1 : 0)) {
        if (!c.isDigit() || value >= kNumberLimit)
            break;
        value = value * 10 + c.digitValue();
        ++digits;
    }
    if (digits == 0)
        return std::nullopt;
    return negative ? -value : value;
}

std::optional<QString> normaliseValue(const ParameterDef &def, const QString &typed)
{
    const QString t = typed.trimmed();
    switch (def.kind) {
    case ValueKind::Number: {
        const std::optional<long long> v = leadingNumber(t);
        if (!v || *v < def.low || (def.high != 0 && *v > def.high))
            return std::nullopt;
        return QString::number(*v);
    }
    case ValueKind::OnOff: {
        const QString u = t.toUpper();
        if (u == QLatin1String("ON") || u == QLatin1String("OFF"))
            return u;
        return std::nullopt;
    }
    case ValueKind::Text:
        if (t.isEmpty())
            return std::nullopt;
        return t.toUpper();
    }
    return std::nullopt;
}

} // namespace sim
