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

QString PortSection(const CommControl &control)
{
    return QStringLiteral("Port_") + control.Tag();
}

void LoadPortSettings(CommControl &control, const IniFile &ini, Prompts &prompts,
                      const std::function<void()> &askUser)
{
    bool wasOpen = control.PortOpen();
    if (wasOpen && !Attempt(prompts, [&] { control.setPortOpen(false); }))
        wasOpen = false;
    const QString section = PortSection(control);
    // Each key in turn, read and applied; the boolean keys are read whole so that "True" reads back.
    const std::array<std::pair<QString, std::function<void()>>, 5> keys{{
        {kCommPort, [&] { control.setCommPort(ini.GetInt(section, kCommPort, 0)); }},
        {kSettings, [&] { control.setSettings(ini.GetString(section, kSettings, {}, 20).trimmed()); }},
        {kDtr, [&] { control.setDTREnable(IniBool(ini.GetString(section, kDtr, {}, 6))); }},
        {kRts, [&] { control.setRTSEnable(IniBool(ini.GetString(section, kRts, {}, 6))); }},
        {kHandshaking, [&] { control.setHandshaking(ini.GetInt(section, kHandshaking, 0)); }},
    }};
    for (const auto &[key, apply] : keys) {
        if (!ini.HasKey(section, key)) {
            askUser();
            return;
        }
        Attempt(prompts, apply);
    }
    if (wasOpen)
        Attempt(prompts, [&] { control.setPortOpen(true); });
}

std::optional<QString> AcceptPortChoice(CommControl &control, IniFile &ini, Prompts &prompts,
                                        const PortChoice &choice)
{
    const QString section = PortSection(control);
    Attempt(prompts, [&] {
        control.setInputLen(0);
        control.setInterval(55);
        control.setSettings(choice.settings);
        control.setDTREnable(choice.dtr);
        control.setRTSEnable(choice.rts);
        control.setHandshaking(choice.handshaking);
    });
    ini.WriteString(section, kSettings, choice.settings);
    ini.WriteString(section, kDtr, IniBoolText(choice.dtr));
    ini.WriteString(section, kRts, IniBoolText(choice.rts));
    ini.WriteString(section, kHandshaking, QString::number(choice.handshaking));
    try {
        if (control.PortOpen())
            control.setPortOpen(false);
        control.setCommPort(choice.commPort);
        control.setPortOpen(true);
    } catch (const AppError &error) {
        return error.description;
    }
    ini.WriteString(section, kCommPort, QString::number(choice.commPort));
    return std::nullopt;
}
