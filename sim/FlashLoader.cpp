#include "FlashLoader.h"

#include "CommandTable.h"
#include "GroundTruth.h"
#include "Modem.h"
#include "TimeSource.h"

#include <QRegularExpression>

namespace sim {

namespace {

using namespace std::chrono_literals;

constexpr char kSoh = 1;
constexpr char kStx = 2;
constexpr char kEot = 4;
constexpr char kEnq = 5;
constexpr int kBlockSize = 4096;
constexpr auto kBlockProgramTime = 180ms;
constexpr auto kImageCommitTime = 600ms;

// The loader is entered from the prompt of the unit at the cable, once the line is done.
bool runFlash(CommandCall &call)
{
    if (call.overAir)
        return call.refuse();
    call.reply.prompt = false;
    FlashLoader *loader = &call.modem.loader();
    call.reply.then = [loader] { loader->enter(); };
    return false;
}

} // namespace

const QList<CommandDef> &loaderCommands()
{
    static const QList<CommandDef> commands{{"FLASH", 3, &runFlash}};
    return commands;
}

void FlashLoader::enter()
{
    m_modem.setMode(Modem::Mode::Loader);
    m_modem.console().clear();
    prompt();
}

void FlashLoader::prompt()
{
    m_state = State::Prompt;
    m_modem.send("\r\nFLASH:");
}

void FlashLoader::take(char c)
{
    switch (m_state) {
    case State::Prompt:
        if (c == '\r' || c == kCtrlC) {
            prompt();
        } else if (c == 'r' || c == 'R') {
            if (m_hasSystem)
                m_modem.after(kRestartTime, [this] { m_modem.restart(true); });
            else
                prompt();
        } else if (c == kSoh) {
            // The old system is erased before the first block lands: from here the unit has none.
            m_hasSystem = false;
            m_image.clear();
            m_block.clear();
            m_blocks = 0;
            m_state = State::Receiving;
        }
        return;
    case State::Receiving:
        m_block.append(c);
        if (m_block.size() == kBlockSize) {
            m_image += m_block;
            m_block.clear();
            ++m_blocks;
            m_state = State::Programming;
            m_modem.afterUnlessInterrupted(kBlockProgramTime, [this] {
                if (m_modem.mode() != Modem::Mode::Loader)
                    return;
                if (m_blocks == m_refusedBlock)
                    return prompt();
                m_state = State::Between;
                m_modem.send(QByteArray(1, kEnq));
            });
        }
        return;
    case State::Programming:
        return; // bytes sent before the ENQ are lost
    case State::Between:
        if (c == kStx)
            m_state = State::Receiving;
        else if (c == kEot)
            commit();
        else if (c == kCtrlC || c == '\r')
            prompt();
        return;
    }
}

void FlashLoader::commit()
{
    static const QRegularExpression versionMark(QStringLiteral("VERSION\\s*=?\\s*(\\d+\\.\\d+)"),
                                                QRegularExpression::CaseInsensitiveOption);
    const auto match = versionMark.match(QString::fromLatin1(m_image));
    const QString version = match.hasMatch() ? match.captured(1) : m_modem.firmwareVersion();
    m_hasSystem = true;
    if (GroundTruth *truth = m_modem.truth())
        truth->images.append(
            {m_modem.time().elapsedMs(), m_modem.address(), m_blocks, m_image, true, version});
    m_modem.installSystem(version);
    m_image.clear();
    m_modem.after(kImageCommitTime, [this] { m_modem.restart(true); });
}

} // namespace sim
