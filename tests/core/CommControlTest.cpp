#include "MemoryCommControl.h"

#include <QTest>

// What the control keeps of what arrives, whichever device is behind it.
class CommControlTest : public QObject
{
    Q_OBJECT
private slots:
    void burstNobodyReadsIsBounded()
    {
        MemoryCommControl comm;
        comm.setPortOpen(true);
        comm.setAutoProcess(CommControl::kAutoProcessProgram);
        // A hundred megabytes while no dialogue reads, then the modem's prompt.
        const QByteArray piece(1 << 20, 'x');
        for (int i = 0; i < 100; ++i) {
            comm.feed(piece);
            QCOMPARE(comm.InBufferCount(), CommControl::kInBufferLimit);
        }
        comm.feed("\r\nCMD:");
        QCOMPARE(comm.Input(), QByteArray(CommControl::kInBufferLimit - 6, 'x') + "\r\nCMD:");
    }
};

QTEST_GUILESS_MAIN(CommControlTest)
#include "CommControlTest.moc"
