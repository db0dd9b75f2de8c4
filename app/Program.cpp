#include "Program.h"

#include "MainMenu.h"
#include "PortMap.h"
#include "frmSplash.h"

#include <QSerialPortInfo>

namespace {
QStringList systemSerialPorts()
{
    QStringList locations;
    for (const QSerialPortInfo &info : QSerialPortInfo::availablePorts())
        locations << info.systemLocation();
    return orderSystemPorts(locations);
}
} // namespace

Program::Program(const QString &settingsFile)
    : m_ini(settingsFile),
      m_comm1([this](int port) { return devicePathForPort(m_ini, port, systemSerialPorts); }),
      m_session(m_comm1, m_time, m_prompts)
{}

Program::~Program() = default;

MainMenu &Program::mainMenu()
{
    if (!m_mainMenu)
        m_mainMenu = std::make_unique<MainMenu>(m_session, m_ini);
    return *m_mainMenu;
}

void Program::start()
{
    auto *splash = new frmSplash;
    QObject::connect(splash, &frmSplash::shownOnScreen, splash, [this] { mainMenu().prepareTerminal(); });
    QObject::connect(splash, &frmSplash::finished, splash, [this] {
        mainMenu().Load();
        mainMenu().show();
    });
    splash->show();
}
