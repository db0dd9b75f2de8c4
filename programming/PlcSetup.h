#pragma once

#include "TransparentSetup.h"

#include <QStringList>
#include <array>

// The programs for a modem attached to a programmable controller. The manufacturer's key, kept in
// ProgMode while the wizard is open, picks the form that asks the questions and the lines made.

enum class PlcForm { SetAddress, PLCDescript };

// A row of the manufacturer list: its text, its key, the form it leads to, and its description.
struct PlcMaker
{
    const char *listText;
    const char *key;
    PlcForm next;
    QString description;
};
const std::array<PlcMaker, 19> &plcMakers();

// The address form's title and instructions while ProgMode holds a key that leads there; nothing
// for the transparent programs, which keep the form's own words.
struct AddressFormText
{
    QString title;
    QString text;
};
std::optional<AddressFormText> plcAddressFormText(const QString &key);

// What the step form shows for a key: its title, its welcome, the protocols and, for Allen Bradley
// alone, the kinds of error detection.
struct PlcStepForm
{
    const char *key;
    QString title;
    QString welcome;
    QStringList protocols;
    QStringList errorChecks;
};
const PlcStepForm *plcStepForm(const QString &key);

// The step form's answers. A master reads the destination from each packet: it has no destination
// and no route of its own.
struct PlcAnswers
{
    bool master = false;
    QString connected;
    QString destination;
    std::array<QString, 3> repeaters;
    QString protocol;
    QString errorCheck;
};
// The controller program; nothing is made when an answer is refused.
SetupProgram plcProgram(const QString &key, const PlcAnswers &answers);

// The Square D address fence line; an empty fence is 1.
QString squareDFenceLine(const QString &fence);
