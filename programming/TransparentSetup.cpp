#include "TransparentSetup.h"

#include "RemoteProgramming.h"
#include "RepeaterRoute.h"
#include "TextRules.h"

namespace {
bool inRange(const QString &text, double low, double high)
{
    const double value = numericValue(text);
    return value >= low && value <= high;
}

SetupProgram refused(const QString &text, QStringList lines = {})
{
    return {std::move(lines), text};
}
} // namespace

SetupProgram autoConnectProgram(const AddressAnswers &answers)
{
    if (answers.connected.isEmpty())
        return refused(QStringLiteral("You Must Type In An Varnel Address"));
    if (!inRange(answers.connected, 1, 254))
        return refused(QStringLiteral("Your Address Must Be Between 1 and 254"));
    const double destination = roundHalfEven(numericValue(answers.destination));
    if (destination == 0)
        return refused(kNoDestinationText);
    // The broadcast address is a destination like any other here.
    if (destination < 1 || destination > 255)
        return refused(QStringLiteral("Your Destination Address Must Be Between 1 and 255"));
    const RepeaterWalk walk = walkRepeaters(answers.repeaters, numberText(destination));
    if (!walk.faultText.isEmpty())
        return {{}, walk.faultText, walk.clearFields};
    return {{QStringLiteral("ADD ") + answers.connected, QStringLiteral("SETC ") + walk.route,
             QStringLiteral("XSF OFF"), QStringLiteral("TERMC ON"), QStringLiteral("TERMT 10"),
             QStringLiteral("TRANS ON")},
            {}};
}

SetupProgram customProgram(const CustomAnswers &answers)
{
    QStringList lines;
    if (answers.address.isEmpty())
        return refused(QStringLiteral("You Must Input an Address For The Connected Varnel!"));
    if (!inRange(answers.address, 1, 254))
        return refused(QStringLiteral("Your address must be between 1-254!"));
    lines << QStringLiteral("ADD ") + answers.address;
    if (answers.setconnect.isEmpty())
        return refused(QStringLiteral("You Must Input a Setconnect Address For The Varnel!"), lines);
    lines << QStringLiteral("SETC ") + answers.setconnect;
    if (answers.terminationTimer == QLatin1String("ON")) {
        lines << QStringLiteral("TERMC ON");
        if (answers.termTime.isEmpty())
            return refused(QStringLiteral("You Must Enter A Value for the Termination Time in Milliseconds."),
                           lines);
        if (!inRange(answers.termTime, 10, 65535))
            return refused(QStringLiteral("Your Termination Time Must Be Between 10-65535 Milliseconds"),
                           lines);
        lines << QStringLiteral("TERMT ") + answers.termTime;
    }
    // The modem's own defaults, 2000 and 13, need no line.
    if (answers.packetLength != QLatin1String("2000")) {
        if (!inRange(answers.packetLength, 1, 2000))
            return refused(QStringLiteral("Your Packet Length must be between 1-2000."), lines);
        lines << QStringLiteral("PACKLENG ") + answers.packetLength;
    }
    if (answers.sendCharacter != QLatin1String("13")) {
        if (!inRange(answers.sendCharacter, 0, 255))
            return refused(QStringLiteral("Your Send Packet Character must be between 0-255."), lines);
        lines << QStringLiteral("SENDPACK ") + answers.sendCharacter;
    }
    const QStringList flowLines[] = {{QStringLiteral("XSF ON")},
                                     {QStringLiteral("XSF OFF"), QStringLiteral("XHF ON")},
                                     {QStringLiteral("XSF OFF"), QStringLiteral("XHF OFF")}};
    if (answers.flow >= 0)
        lines << flowLines[answers.flow];
    // The first two boxes switch a feature on; the other five are on in the modem and switch it off.
    const char *const checkLines[] = {"DTR ON",   "DISACK ON",  "AUTOLF OFF", "ECHO OFF",
                                      "EDIT OFF", "PROMPT OFF", "TYPSYS OFF"};
    for (size_t i = 0; i < answers.checks.size(); ++i)
        if (answers.checks[i] == (i < 2))
            lines << QLatin1String(checkLines[i]);
    lines << QStringLiteral("TRANS ON");
    return {lines, {}};
}

QStringList radioIpProgram()
{
    return {QStringLiteral("TERMT 2000"), QStringLiteral("AUTOLF OFF"), QStringLiteral("ECHO OFF"),
            QStringLiteral("EDIT OFF"), QStringLiteral("SCA ON")};
}
