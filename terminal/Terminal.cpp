#include "Terminal.h"

#include "AppError.h"
#include "CommControl.h"
#include "IniFile.h"
#include "MWPort.h"
#include "ModemSession.h"

Terminal::Terminal(ModemSession &session, IniFile &ini, QWidget *parent)
    : QMainWindow(parent), m_session(session), m_ini(ini)
{
    setObjectName(QStringLiteral("Terminal"));
}

Terminal::~Terminal() = default;

CommControl &Terminal::Comm1() const
{
    return m_session.Comm1();
}

void Terminal::Load()
{
    LoadAppSettings(m_ini, Settings);
    MWPort port(m_session, m_ini, this);
    port.LoadPortSettings(Comm1());
    setPortTitle();
    Attempt(m_session.prompts(), [&] {
        if (!Comm1().PortOpen())
            Comm1().setPortOpen(true);
    });
    if (m_session.IrDongleActive)
        m_session.InitIrDongle();
    m_loaded = true;
}

void Terminal::Unload()
{
    if (!m_loaded)
        return;
    m_loaded = false;
    IgnoreErrors([&] {
        if (Comm1().PortOpen())
            Comm1().setPortOpen(false);
    });
    SaveAppSettings(m_ini, Settings);
    emit unloaded();
}

void Terminal::setPortTitle()
{
    setWindowTitle(QStringLiteral("COM%1:%2").arg(Comm1().CommPort()).arg(Comm1().Settings().toUpper()));
}
