#include "IniFile.h"
#include "MainMenu.h"
#include "ModemSession.h"
#include "PortMap.h"
#include "SerialCommControl.h"
#include "TimeSource.h"
#include "WidgetPrompts.h"
#include "frmSplash.h"

#include <QApplication>
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

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Varnel Utility"));

    IniFile ini(GetIniFileName());
    RealTime time;
    WidgetPrompts prompts;
    SerialCommControl comm1([&ini](int port) { return devicePathForPort(ini, port, systemSerialPorts()); });
    ModemSession session(comm1, time, prompts);
    MainMenu mainMenu(session, ini);

    auto *splash = new frmSplash;
    QObject::connect(splash, &frmSplash::finished, &mainMenu, [&] {
        mainMenu.Load();
        mainMenu.show();
    });
    splash->show();
    return app.exec();
}
