#include "MWTerm.h"
#include "Golden.h"
#include "Terminal.h"
#include "TerminalFixture.h"
#include "TerminalScreen.h"
#include "TerminalSettings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

namespace {

const QString kSection = QStringLiteral("Terminal_Phone");

QString key(const IniFile &ini, const char *name)
{
    return ini.getString(kSection, QString::fromLatin1(name), QStringLiteral("<missing>"));
}

// The terminal members of a screen in one line.
QString describe(const TerminalScreen &s)
{
    return QStringLiteral(
               "emu %1 bs %2 echo %3 fg %4 bg %5 filter %6 rows %7 cols %8 scroll %9 cursor %10 font %11")
        .arg(s.Emulation())
        .arg(s.Backspace())
        .arg(int(s.Echo()))
        .arg(s.ForeColor())
        .arg(s.BackColor())
        .arg(s.ColorFilter())
        .arg(s.Rows())
        .arg(s.Columns())
        .arg(s.ScrollRows())
        .arg(s.CursorType())
        .arg(s.font().pointSizeF());
}

// The loaded terminal with a few lines on its screen.
struct Window : LoadedTerminal
{
    explicit Window(const QByteArray &moreSettings = {}) : LoadedTerminal(moreSettings)
    {
        rig.port.feed("first\r\nsecond\r\n" + QByteArray(60, 'w') + "\r\n\r\n\r\n");
    }
};

} // namespace

class MWTermTest : public QObject
{
    Q_OBJECT
private slots:
    void dialogShowsTheControl()
    {
        Window w;
        w.screen().setEmulation(1);
        w.screen().setForeColor(14);
        w.screen().setBackColor(0);
        w.screen().setColorFilter(1);
        w.screen().setCursorType(1);
        w.screen().setBackspace(1);
        w.screen().setEcho(true);
        bool checked = false;
        whenModal([&](QWidget *dialog) {
            auto *d = qobject_cast<MWTerm *>(dialog);
            QVERIFY(matchesGolden(describeWindow(*d), QStringLiteral(VARNEL_GOLDEN "/MWTerm.txt")));
            QStringList shown;
            for (const QComboBox *list : {d->cbEmulation, d->cbScreenFilter, d->cboForeColor, d->cboBackColor,
                                          d->cboCursorType, d->cboBackspace})
                shown << list->currentText();
            for (const QSpinBox *field : {d->txtRows, d->txtColumns, d->txtScrollRows})
                shown << field->text();
            QCOMPARE(shown.join(u','),
                     QStringLiteral("TTY,Gray Scale,Yellow,Black,Block,Delete (127),25,80,409"));
            QVERIFY(d->chkEcho->isChecked());
            checked = true;
            d->cmdCancel->click();
        });
        MWTerm dialog(w.rig.session, w.rig.ini);
        QVERIFY(!dialog.SetTerminalSettings(w.screen()));
        QVERIFY(checked);
    }

    void okPassesToTheControlAndTheKeys()
    {
        Window w;
        whenModal([](QWidget *dialog) {
            auto *d = qobject_cast<MWTerm *>(dialog);
            d->cbEmulation->setCurrentIndex(0);
            d->cbScreenFilter->setCurrentIndex(2);
            d->cboForeColor->setCurrentIndex(10);
            d->cboBackColor->setCurrentIndex(0);
            d->txtRows->setValue(30);
            d->txtColumns->setValue(40);
            d->txtScrollRows->setValue(1000);
            d->cboCursorType->setCurrentIndex(1);
            d->cboBackspace->setCurrentIndex(1);
            d->chkEcho->setChecked(true);
            d->cmdOK->click();
        });
        MWTerm dialog(w.rig.session, w.rig.ini);
        QVERIFY(dialog.SetTerminalSettings(w.screen()));
        TerminalScreen &s = w.screen();
        QCOMPARE(describe(s),
                 QStringLiteral(
                     "emu 1 bs 1 echo 1 fg 10 bg 0 filter 2 rows 30 cols 40 scroll 1000 cursor 1 font 9"));
        QCOMPARE(key(w.rig.ini, "ScreenFilter") + key(w.rig.ini, "ScrollRows"), QStringLiteral("21000"));
    }

    void cancelDropsTheChanges()
    {
        Window w;
        const TermSettings before = w.screen().settings();
        whenModal([](QWidget *dialog) {
            auto *d = qobject_cast<MWTerm *>(dialog);
            d->txtColumns->setValue(20);
            d->cboForeColor->setCurrentIndex(3);
            d->cmdCancel->click();
        });
        MWTerm dialog(w.rig.session, w.rig.ini);
        QVERIFY(!dialog.SetTerminalSettings(w.screen()));
        QVERIFY(w.screen().settings() == before);
        QVERIFY(!w.rig.ini.hasKey(kSection, QStringLiteral("Emulation")));
        QCOMPARE(w.screen().rowText(2), QString(60, u'w'));
    }

    void fontDialog()
    {
        Window w;
        w.rig.prompts.expectFontDialog(FontChoice{w.screen().font().family(), 12.5, true, true});
        w.rig.prompts.expectFontDialog(std::nullopt);
        whenModal([](QWidget *dialog) {
            auto *d = qobject_cast<MWTerm *>(dialog);
            d->cmdFont->click();
            d->cmdFont->click(); // cancelled: the first choice stands
            d->cmdOK->click();
        });
        MWTerm dialog(w.rig.session, w.rig.ini);
        QVERIFY(dialog.SetTerminalSettings(w.screen()));
        QVERIFY(w.rig.prompts.verify());
        QCOMPARE(w.screen().font().pointSizeF(), 12.5);
        QVERIFY(w.screen().font().bold());
        QCOMPARE(key(w.rig.ini, "Fontsize"), QStringLiteral("12.5"));
        QCOMPARE(key(w.rig.ini, "FontBold"), QStringLiteral("True"));
        QCOMPARE(key(w.rig.ini, "FontItalic"), QStringLiteral("True"));
    }

    void changesAreTriedOnTheSample()
    {
        Window w;
        whenModal([&](QWidget *dialog) {
            auto *d = qobject_cast<MWTerm *>(dialog);
            TerminalScreen *sample = d->CommSample;
            QCOMPARE(sample->rowText(0), QStringLiteral("CMD:model"));
            d->cboBackColor->setCurrentIndex(4);
            d->cbScreenFilter->setCurrentIndex(1);
            QCOMPARE(sample->BackColor(), 4);
            QCOMPARE(sample->ColorFilter(), 1);
            // The TTY emulation shows the sample's sequences as text.
            d->cbEmulation->setCurrentIndex(0);
            QVERIFY(sample->rowText(2).contains(QStringLiteral("[1mbold")));
            QCOMPARE(w.screen().BackColor(), 1);
            d->cmdCancel->click();
        });
        MWTerm dialog(w.rig.session, w.rig.ini);
        dialog.SetTerminalSettings(w.screen());
        QCOMPARE(w.screen().BackColor(), 1);
    }

    void sectionIsNotReadAtStart()
    {
        Window w("[Terminal_Phone]\r\nEmulation=1\r\nRows=30\r\nColumns=40\r\nForeColor=2\r\nEcho(Duplex)="
                 "True\r\n");
        QCOMPARE(describe(w.screen()),
                 QStringLiteral(
                     "emu 2 bs 0 echo 0 fg 15 bg 1 filter 0 rows 25 cols 80 scroll 409 cursor 0 font 9"));
        QVERIFY(w.rig.prompts.verify());
    }

    void loadTerminalSettingsReadsTheSection()
    {
        Window w(
            "[Terminal_Phone]\r\nEmulation=1\r\nBackspace=1\r\nEcho(Duplex)=-1\r\nForeColor=14\r\n"
            "BackColor=0\r\nScreenFilter=2\r\nRows=20\r\nColumns=40\r\nScrollRows=99\r\n"
            "FontName=Nowhere Sans\r\nFontsize=11.5\r\nFontBold=True\r\nFontItalic=1\r\nCursorType=1\r\n");
        w.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
        w.rig.port.setRThreshold(1);
        MWTerm dialog(w.rig.session, w.rig.ini);
        dialog.LoadTerminalSettings(w.screen());
        TerminalScreen &s = w.screen();
        // ScreenFilter is written, never read back.
        QCOMPARE(describe(s),
                 QStringLiteral(
                     "emu 1 bs 1 echo 1 fg 14 bg 0 filter 0 rows 20 cols 40 scroll 99 cursor 1 font 11.5"));
        QCOMPARE(s.font().family(), QStringLiteral("Nowhere Sans"));
        QVERIFY(s.font().bold() && !s.font().italic());
        QVERIFY(s.AutoSize());
        QCOMPARE(s.AutoScroll(), 4);
        QCOMPARE(w.rig.port.RThreshold(), 0);
        QCOMPARE(w.rig.port.AutoProcess(), 3);
        QCOMPARE(s.rowText(2), QString(40, u'w'));
    }

    void loadWithoutEmulationOpensTheDialog()
    {
        Window w("[Terminal_Phone]\r\nEmulation=0\r\nRows=20\r\n");
        w.screen().setEmulation(1);
        int shown = 0;
        whenModal([&](QWidget *dialog) {
            ++shown;
            auto *d = qobject_cast<MWTerm *>(dialog);
            QCOMPARE(d->cbEmulation->currentText(), QStringLiteral("VT-100"));
            d->cmdOK->click();
        });
        MWTerm dialog(w.rig.session, w.rig.ini);
        dialog.LoadTerminalSettings(w.screen());
        QCOMPARE(shown, 1);
        QCOMPARE(w.screen().Rows(), 25); // the other keys are not read on this way
        QCOMPARE(key(w.rig.ini, "Emulation"), QStringLiteral("2"));
    }

    void controlWithoutPortIsReported()
    {
        TerminalRig rig;
        TerminalScreen loose;
        const QString box = errorBox("438 = Object doesn't support this property or method");
        rig.prompts.expectMsgBox(box).withIcon(MsgIcon::Critical);
        rig.prompts.expectMsgBox(box).withIcon(MsgIcon::Critical);
        MWTerm dialog(rig.session, rig.ini);
        QVERIFY(!dialog.SetTerminalSettings(loose));
        dialog.LoadTerminalSettings(loose);
        QVERIFY(rig.prompts.verify());
        QVERIFY(!rig.ini.hasKey(kSection, QStringLiteral("Emulation")));
    }
};

QTEST_MAIN(MWTermTest)
#include "MWTermTest.moc"
