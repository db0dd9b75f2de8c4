#include "PortSection.h"

#include "AppError.h"
#include "CommControl.h"
#include "IniFile.h"

#include <array>

namespace {
const QString kCommPort = QStringLiteral("Comm Port");
const QString kSettings = QStringLiteral("Settings");
const QString kDtr = QStringLiteral("DTREnable");
const QString kRts = QStringLiteral("RTSEnable");
const QString kHandshaking = QStringLiteral("Handshaking");
} // namespace

QString portSection(const CommControl &control)
{
    return QStringLiteral("Port_") + control.Tag();
}

void LoadPortSettings(CommControl &control, const IniFile &ini, Prompts &prompts,
                      const std::function<void()> &askUser)
{
    bool wasOpen = control.PortOpen();
    if (wasOpen && !attempt(prompts, [&] { control.setPortOpen(false); }))
        wasOpen = false;
    const QString section = portSection(control);
    // Each key in turn, read and applied; the boolean keys are read whole so that "True" reads back.
    const std::array<std::pair<QString, std::function<void()>>, 5> keys{{
        {kCommPort, [&] { control.setCommPort(ini.getInt(section, kCommPort, 0)); }},
        {kSettings, [&] { control.setSettings(ini.getString(section, kSettings, {}, 20).trimmed()); }},
        {kDtr, [&] { control.setDTREnable(iniBool(ini.getString(section, kDtr, {}, 6))); }},
        {kRts, [&] { control.setRTSEnable(iniBool(ini.getString(section, kRts, {}, 6))); }},
        {kHandshaking, [&] { control.setHandshaking(ini.getInt(section, kHandshaking, 0)); }},
    }};
    for (const auto &[key, apply] : keys) {
        if (!ini.hasKey(section, key)) {
            askUser();
            return;
        }
        attempt(prompts, apply);
    }
    if (wasOpen)
        attempt(prompts, [&] { control.setPortOpen(true); });
}

std::optional<QString> acceptPortChoice(CommControl &control, IniFile &ini, Prompts &prompts,
                                        const PortChoice &choice)
{
    const QString section = portSection(control);
    attempt(prompts, [&] {
        control.setInputLen(0);
        control.setInterval(55);
        control.setSettings(choice.settings);
        control.setDTREnable(choice.dtr);
        control.setRTSEnable(choice.rts);
        control.setHandshaking(choice.handshaking);
    });
    ini.writeString(section, kSettings, choice.settings);
    ini.writeString(section, kDtr, iniBoolText(choice.dtr));
    ini.writeString(section, kRts, iniBoolText(choice.rts));
    ini.writeString(section, kHandshaking, QString::number(choice.handshaking));
    try {
        if (control.PortOpen())
            control.setPortOpen(false);
        control.setCommPort(choice.commPort);
        control.setPortOpen(true);
    } catch (const AppError &error) {
        return error.description;
    }
    ini.writeString(section, kCommPort, QString::number(choice.commPort));
    return std::nullopt;
}
