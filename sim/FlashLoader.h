#pragma once

#include <QByteArray>

namespace sim {

class Modem;

// The flash loader at "FLASH:". It takes an image in blocks of 4096 bytes: SOH starts the first,
// the loader answers ENQ when it has programmed a block, STX starts the next one, EOT ends the
// upload and commits the image. "R" goes back to the system, if there is one.
class FlashLoader
{
public:
    FlashLoader(Modem &modem, bool hasSystem) : m_modem(modem), m_hasSystem(hasSystem) {}

    bool hasSystem() const { return m_hasSystem; }
    // The unit is in its loader and shows its prompt.
    void enter();
    void take(char c);
    // The flash cell under this block (counted from 1) is worn out: programming it fails, and the
    // loader answers with its prompt instead of ENQ, the upload abandoned.
    void refuseBlock(int block) { m_refusedBlock = block; }

private:
    void prompt();
    void commit();

    enum class State { Prompt, Receiving, Programming, Between };

    Modem &m_modem;
    bool m_hasSystem;
    State m_state = State::Prompt;
    QByteArray m_image;
    QByteArray m_block;
    int m_blocks = 0;
    int m_refusedBlock = 0;
};

} // namespace sim
