#include "FlashProgress.h"

#include "Golden.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QTest>

// The progress form as the update drives it, and the terminal's part through the hooks.
class FlashProgressTest : public QObject
{
    Q_OBJECT
private slots:
    void showsTheUploadAndGoesAway()
    {
        QStringList terminal;
        FlashScreen screen({[&](const QString &title) { terminal << title; },
                            [&] { terminal << QStringLiteral("normal"); },
                            [&] { terminal << QStringLiteral("clear"); }},
                           nullptr);
        screen.showProgress();
        QVERIFY(matchesGolden(describeWindow(*screen.form()),
                              QStringLiteral(VARNEL_GOLDEN "/FlashProgress.txt")));
        screen.setStage(QStringLiteral("Uploading Block"));
        screen.setBlocksVisible(true);
        screen.setMaximum(8189);
        screen.setTotal(2);
        screen.setBlock(2);
        screen.setValue(8192);
        FlashProgress &form = *screen.form();
        QCOMPARE(form.lblUpload->text() + u' ' + form.lblBlock->text() + u' ' + form.lblOf->text() + u' ' +
                     form.lblTotal->text(),
                 QStringLiteral("Uploading Block 2 of 2"));
        QVERIFY(form.isVisible() && form.lblTotal->isVisible());
        // Neither Escape nor the close button stops an update, and nothing else takes input meanwhile.
        QTest::keyClick(&form, Qt::Key_Escape);
        QVERIFY(!form.close() && form.isVisible() && QApplication::activeModalWidget() == &form);
        // The last block may run past the end of the file; the bar stops at full.
        QCOMPARE(form.pbFlash->value(), 8189);
        screen.setBlocksVisible(false);
        QVERIFY(!form.lblBlock->isVisible() && !form.lblOf->isVisible());
        screen.setMaximum(100);
        QCOMPARE(form.pbFlash->value(), 0);
        screen.setTitle(QStringLiteral("COM1: Flash Mode"));
        screen.restoreTitle();
        screen.clearScreen();
        QCOMPARE(terminal.join(u'|'), QStringLiteral("COM1: Flash Mode|normal|clear"));
        screen.unloadProgress();
        QVERIFY(!screen.form());
    }
};

QTEST_MAIN(FlashProgressTest)
#include "FlashProgressTest.moc"
