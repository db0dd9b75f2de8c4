#include "PortClaim.h"

#include "CommControl.h"

PortClaim::PortClaim(CommControl &comm, Then then) : m_comm(&comm), m_found(comm.AutoProcess()), m_then(then)
{
    takeForProgram(comm);
}

PortClaim::~PortClaim()
{
    release();
}

void PortClaim::release()
{
    if (!m_comm)
        return;
    CommControl &comm = *m_comm;
    m_comm = nullptr;
    comm.setAutoProcess(m_then == Then::Terminal ? CommControl::kAutoProcessTerminal : m_found);
}

void PortClaim::keep()
{
    m_comm = nullptr;
}

void PortClaim::takeForProgram(CommControl &comm)
{
    comm.setAutoProcess(CommControl::kAutoProcessProgram);
}

void PortClaim::giveToTerminal(CommControl &comm)
{
    comm.setAutoProcess(CommControl::kAutoProcessTerminal);
}
