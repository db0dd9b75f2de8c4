#include "FlashUpdate.h"

#include "AppError.h"
#include "CommControl.h"
#include "ModemParams.h"
#include "ModemSession.h"
#include "PortClaim.h"
#include "Prompts.h"
#include "TextRules.h"
#include "TimeSource.h"

#include <QFile>
#include <QFileInfo>

using namespace std::chrono_literals;

namespace {
constexpr char kSoh = 1;
constexpr char kStx = 2;
constexpr char kEot = 4;
constexpr char kEnq = 5;
constexpr qint64 kBlockSize = 4096;
// The bar follows the upload without repainting more than twenty times a second.
constexpr auto kBarInterval = 50ms;

const QString kDongleText = QStringLiteral("Flash Update Not Available Through Dongle!");

QByteArray latin1(const QString &text)
{
    return text.toLatin1();
}

// The image as the user chose it, byte for byte; it may have gone or turned unreadable since.
QByteArray readImage(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        if (!QFileInfo::exists(fileName))
            throw AppError{AppErrors::FileNotFound, QStringLiteral("File not found")};
        throw AppError{AppErrors::PathFileAccess, QStringLiteral("Path/File access error")};
    }
    return file.readAll();
}

// A block that runs past the end of the image: each missing byte is an error, and the byte before
// it goes out again in its place.
AppError pastTheEnd()
{
    return {9, QStringLiteral("Subscript out of range")};
}
} // namespace

QList<ReprogramLine> reprogramLines(const FlashParameters &p)
{
    return {
        {latin1(QStringLiteral("model ") + p.model + QStringLiteral(":option ") + p.option +
                QStringLiteral(":add ") + p.address + QStringLiteral(":setc ") + p.setcon),
         20, 500},
        {latin1(QStringLiteral("sel/a1 ") + p.a1 + QStringLiteral(":sel/n1 ") + p.n1 +
                QStringLiteral(":sel/n2 ") + p.n2 + QStringLiteral(":squelch ") + p.squelch),
         30, 500},
        {latin1(QStringLiteral("s/n ") + p.serial + QStringLiteral(":asquelch ") + p.asquelch +
                QStringLiteral(":rflow ") + p.rflow + QStringLiteral(":comrate ") + p.comrate),
         40, 500},
        {latin1(QStringLiteral("rxmark ") + p.rxmark + QStringLiteral(":rfp ") + p.rfpower), 45, 500},
        {latin1(QStringLiteral("datarate ") + p.datarate + QStringLiteral(":rxd ") + p.rxdata +
                QStringLiteral(":txf ") + p.txflag + QStringLiteral(":txe ") + p.txend +
                QStringLiteral(":frack ") + p.frack),
         -1, 500},
        {QByteArrayLiteral("save"), 50, 2000},
        {QByteArrayLiteral("save 2"), 75, 2000},
    };
}

int flashBlockCount(qint64 length)
{
    return int(roundHalfEven(double(length) / double(kBlockSize)));
}

UpdateLimit::UpdateLimit(const TimeSource &time, std::chrono::milliseconds interval)
    : m_time(time), m_intervalMs(interval.count())
{}

bool UpdateLimit::due()
{
    const qint64 now = m_time.elapsedMs();
    if (m_lastMs >= 0 && now - m_lastMs < m_intervalMs)
        return false;
    m_lastMs = now;
    return true;
}

FlashUpdate::FlashUpdate(ModemSession &session, FlashView &view) : m_session(session), m_view(view) {}

bool FlashUpdate::output(const QByteArray &bytes)
{
    return attempt(m_session.prompts(), [&] { m_session.Comm1().Output(bytes); });
}

void FlashUpdate::backToTerminal()
{
    m_view.restoreTitle();
    m_session.Comm1().setRThreshold(1);
    PortClaim::giveToTerminal(m_session.Comm1());
}

void FlashUpdate::mnuFlash()
{
    Prompts &prompts = m_session.prompts();
    CommControl &comm = m_session.Comm1();
    if (m_session.IrDongleActive) {
        prompts.MsgBox(kDongleText);
        return;
    }
    PortClaim claim(comm, PortClaim::Then::Terminal);
    prompts.setBusy(true);
    bool noOperatingSystem = false;
    if (!findModem(noOperatingSystem)) {
        prompts.setBusy(false);
        return;
    }
    if (!noOperatingSystem)
        gatherParameters();

    FileDialogRequest request;
    request.kind = FileDialogRequest::Kind::Open;
    request.filter = QStringLiteral("Varnel Flash File (*.hex)");
    const QString fileName = prompts.FileDialog(request);
    if (fileName.isEmpty()) {
        m_view.unloadProgress();
        prompts.setBusy(false);
        return;
    }

    PortClaim::takeForProgram(comm);
    comm.setRThreshold(0);
    m_view.setTitle(QStringLiteral("COM%1: Flash Mode").arg(comm.CommPort()));
    m_view.showProgress();
    output(QByteArrayLiteral("\r"));
    if (!m_session.WaitForReply("FLASH:", 1000)) {
        // The word goes out at the modem's own rate; the loader answers at its fixed one.
        output(QByteArrayLiteral("flash\r"));
        m_session.WaitForReply("FLASH:", 1000);
    }
    const QString userSettings = comm.Settings();
    comm.setSettings(QStringLiteral("19200,N,8,1"));
    LoadFlash(fileName);
    comm.setSettings(userSettings);

    // The new system prints its banner on the restart; a port lost in the upload has been told.
    ignoreErrors([&] { comm.Output(QByteArrayLiteral("\r")); });
    const bool restarted = m_session.WaitForReply("Unit Address", 2000);
    if (restarted && !noOperatingSystem) {
        reprogram();
    } else {
        backToTerminal();
        if (restarted)
            prompts.setBusy(false);
        else
            ignoreErrors([&] { comm.Output(QByteArrayLiteral("\r")); });
    }
    m_view.unloadProgress();
}

bool FlashUpdate::findModem(bool &noOperatingSystem)
{
    Prompts &prompts = m_session.prompts();
    output(QByteArrayLiteral("\r"));
    if (m_session.WaitForReply("FLASH:", 1000)) {
        // Waiting in its loader: "r" starts the system, if there is one.
        output(QByteArrayLiteral("r"));
        if (!m_session.WaitForReply("CMD:", 3000)) {
            prompts.MsgBox(
                QStringLiteral("Varnel operating system can not be found.  Unable to save any modem "
                               "parameters. You will have to reconfigure the address, frequency and "
                               "squelch after the flash utility."));
            noOperatingSystem = true;
            return true;
        }
    }
    if (!m_session.EnterCommandMode())
        return false;
    // The search for the prompt may have brought up the adaptor.
    if (m_session.IrDongleActive) {
        prompts.MsgBox(kDongleText);
        return false;
    }
    return true;
}

void FlashUpdate::gatherParameters()
{
    FlashParameters &p = m_parameters;
    m_view.showProgress();
    m_view.setStage(QStringLiteral("Gathering Modem Information"));
    m_view.setMaximum(100);
    m_view.setValue(10);
    ReadModelInfo(m_session, p.model, p.version, p.option);
    m_view.setValue(25);
    ReadConfiguration(m_session, p.address, p.setcon, p.asquelch, p.rflow, p.rxmark, p.comrate, p.rfpower);
    m_view.setValue(50);
    double a1 = 0, n1 = 0, n2 = 0, squelch = 0;
    ReadLatches(m_session, a1, n1, n2, squelch);
    p.a1 = numberText(a1);
    p.n1 = numberText(n1);
    p.n2 = numberText(n2);
    p.squelch = numberText(squelch);
    m_view.setValue(75);
    ReadRadioTiming(m_session, p.datarate, p.rxdata, p.txflag, p.txend, p.frack);
    ReadSerialNumber(m_session, p.serial);
    m_view.setValue(100);
    m_session.prompts().setBusy(false);
}

void FlashUpdate::LoadFlash(const QString &fileName)
{
    Prompts &prompts = m_session.prompts();
    CommControl &comm = m_session.Comm1();
    prompts.setBusy(true);
    PortClaim::takeForProgram(comm);
    comm.setRThreshold(0);
    m_view.setStage(QStringLiteral("Uploading Block"));
    m_view.setBlocksVisible(true);
    QByteArray image;
    attempt(prompts, [&] { image = readImage(fileName); });
    const int blocks = flashBlockCount(image.size());

    output(QByteArrayLiteral("\r"));
    if (!m_session.WaitForReply("FLASH:", 3000)) {
        output(QByteArrayLiteral("flash\r"));
        m_session.WaitForBytes(30);
        if (!comm.Input().contains("FLASH:")) {
            prompts.MsgBox(
                QStringLiteral("Can not enter flash mode!\rIf your Varnel has two switches, set both to OFF "
                               "position and reset modem.\rIf you Varnel has 8 switches, place switches "
                               "1,2,3 & 8 to OFF position and reset Varnel"),
                MsgButtons::OkOnly, MsgIcon::Critical);
            prompts.setBusy(false);
            comm.setRThreshold(1);
            PortClaim::giveToTerminal(comm);
            return;
        }
    }

    m_view.showProgress();
    m_view.setMaximum(image.size());
    m_view.setTotal(blocks);
    output(QByteArray(1, kSoh));
    UpdateLimit bar(m_session.time(), kBarInterval);
    char byte = 0;
    for (int n = 1; n <= blocks; ++n) {
        m_view.setBlock(n);
        QByteArray block;
        block.reserve(kBlockSize);
        for (qint64 i = (n - 1) * kBlockSize; i < n * kBlockSize; ++i) {
            if (i < image.size())
                byte = image.at(i);
            else
                ShowAppError(prompts, pastTheEnd());
            block.append(byte);
        }
        if (bar.due() || n == blocks)
            m_view.setValue(n * kBlockSize);
        // The block goes out in file order as one piece: the port's own buffer is the only brake.
        output(block);
        if (!m_session.WaitForReply(QByteArray(1, kEnq), 8000)) {
            prompts.MsgBox(QStringLiteral("Failure During Flash Download.  Reset Modem and Try Again."));
            prompts.setBusy(false);
            comm.setRThreshold(1);
            PortClaim::giveToTerminal(comm);
            m_view.unloadProgress();
            return;
        }
        output(QByteArray(1, n == blocks ? kEot : kStx));
    }
    prompts.setBusy(false);
}

void FlashUpdate::reprogram()
{
    m_session.prompts().setBusy(true);
    m_view.setStage(QStringLiteral("Reprogramming Varnel"));
    m_view.setBlocksVisible(false);
    m_view.setMaximum(100);
    // Several settings share a line; the replies are awaited and not looked at.
    for (const ReprogramLine &line : reprogramLines(m_parameters)) {
        output(line.text + '\r');
        if (line.progress >= 0)
            m_view.setValue(line.progress);
        m_session.WaitForReply("CMD:", line.waitMs);
    }
    m_view.clearScreen();
    m_view.setValue(100);
    output(QByteArrayLiteral("reset\r"));
    backToTerminal();
    m_session.prompts().setBusy(false);
}
