#include "MWTerm.h"
#include "Terminal.h"
#include "TerminalFixture.h"
#include "TerminalScreen.h"
#include "TerminalSettings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <climits>

namespace {

const QString kSection = QStringLiteral("Terminal_Phone");

QString key(const IniFile &ini, const char *name)
{
    return ini.getString(kSection, QString::fromLatin1(name), QStringLiteral("<missing>"));
}

// The loaded terminal with a few lines on its screen.
struct Window
{
    TerminalRig rig;
    Terminal window{rig.session, rig.ini};
    explicit Window(const QByteArray &moreSettings = {}) : rig(moreSettings)
    {
        window.Load();
        rig.port.feed("first\r\nsecond\r\n" + QByteArray(60, 'w') + "\r\n\r\n\r\n");
    }
    TerminalScreen &screen() { return *window.Comm1Screen; }
};

} // namespace

class MWTermTest : public QObject
{
    Q_OBJECT
private slots:
    void scrollLimit_data();
    void scrollLimit();
    void fontSizeValue_data();
    void fontSizeValue();
    void dialogShowsTheControl();
    void okPassesToTheControlAndTheKeys();
    void cancelDropsTheChanges();
    void fontDialog();
    void changesAreTriedOnTheSample();
    void sectionIsNotReadAtStart();
    void loadTerminalSettingsReadsTheSection();
    void loadWithoutEmulationOpensTheDialog();
    void controlWithoutPortIsReported();
};

void MWTermTest::scrollLimit_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("limit");
    QTest::newRow("80") << 80 << 26843545;
    QTest::newRow("132") << 132 << 16268815;
    QTest::newRow("40") << 40 << 53687091;
    QTest::newRow("2") << 2 << 1073741824;
    QTest::newRow("1") << 1 << INT_MAX;
    QTest::newRow("0") << 0 << INT_MAX;
}

void MWTermTest::scrollLimit()
{
    QFETCH(int, columns);
    QFETCH(int, limit);
    QCOMPARE(ScrollLimit(columns), limit);
}

void MWTermTest::fontSizeValue_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("size");
    QTest::newRow("default") << QStringLiteral("9.1") << 9.1;
    QTest::newRow("whole") << QStringLiteral("12") << 12.0;
    QTest::newRow("unit behind") << QStringLiteral(" 10.5pt") << 10.5;
    QTest::newRow("fraction only") << QStringLiteral(".5") << 0.5;
    QTest::newRow("no number") << QStringLiteral("large") << 0.0;
    QTest::newRow("empty") << QString() << 0.0;
}

void MWTermTest::fontSizeValue()
{
    QFETCH(QString, text);
    QFETCH(double, size);
    QCOMPARE(FontSizeValue(text), size);
}

void MWTermTest::dialogShowsTheControl()
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
        QCOMPARE(d->windowTitle(), QStringLiteral("Terminal Emulation Settings"));
        QCOMPARE(d->cmdFont->text(), QStringLiteral("Select Fo&nt"));
        QStringList emulations, filters;
        for (int i = 0; i < d->cbEmulation->count(); ++i)
            emulations << d->cbEmulation->itemText(i);
        for (int i = 0; i < d->cbScreenFilter->count(); ++i)
            filters << d->cbScreenFilter->itemText(i);
        QCOMPARE(emulations, QStringList({QStringLiteral("TTY"), QStringLiteral("VT-100")}));
        QCOMPARE(filters, QStringList({QStringLiteral("Color"), QStringLiteral("Gray Scale"),
                                       QStringLiteral("Monochrome")}));
        QCOMPARE(d->cboForeColor->count(), 16);
        QCOMPARE(d->cbEmulation->currentText(), QStringLiteral("TTY"));
        QCOMPARE(d->cbScreenFilter->currentText(), QStringLiteral("Gray Scale"));
        QCOMPARE(d->cboForeColor->currentIndex(), 14);
        QCOMPARE(d->cboBackColor->currentIndex(), 0);
        QCOMPARE(d->txtRows->value(), 25);
        QCOMPARE(d->txtColumns->value(), 80);
        QCOMPARE(d->txtScrollRows->value(), 409);
        QCOMPARE(d->cboCursorType->currentIndex(), 1);
        QCOMPARE(d->cboBackspace->currentIndex(), 1);
        QVERIFY(d->chkEcho->isChecked());
        checked = true;
        d->cmdCancel->click();
    });
    MWTerm dialog(w.rig.session, w.rig.ini);
    QVERIFY(!dialog.SetTerminalSettings(w.screen()));
    QVERIFY(checked);
}

void MWTermTest::okPassesToTheControlAndTheKeys()
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
    QCOMPARE(s.Emulation(), 1);
    QCOMPARE(s.ColorFilter(), 2);
    QCOMPARE(s.ForeColor(), 10);
    QCOMPARE(s.BackColor(), 0);
    QCOMPARE(s.Rows(), 30);
    QCOMPARE(s.Columns(), 40);
    QCOMPARE(s.ScrollRows(), 1000);
    QCOMPARE(s.CursorType(), 1);
    QCOMPARE(s.Backspace(), 1);
    QVERIFY(s.Echo());

    // The text stays on the screen through the change of size, without its trailing empty lines.
    QCOMPARE(s.rowText(0), QStringLiteral("first"));
    QCOMPARE(s.rowText(1), QStringLiteral("second"));
    QCOMPARE(s.rowText(2), QString(40, u'w'));
    QCOMPARE(s.rowText(3), QString(20, u'w'));
    QCOMPARE(s.rowText(4), QString());
    QCOMPARE(s.CursorRow(), 4);
    QCOMPARE(s.CursorCol(), 21);

    const IniFile &ini = w.rig.ini;
    QCOMPARE(key(ini, "Emulation"), QStringLiteral("1"));
    QCOMPARE(key(ini, "Backspace"), QStringLiteral("1"));
    QCOMPARE(key(ini, "Echo(Duplex)"), QStringLiteral("True"));
    QCOMPARE(key(ini, "ForeColor"), QStringLiteral("10"));
    QCOMPARE(key(ini, "BackColor"), QStringLiteral("0"));
    QCOMPARE(key(ini, "ScreenFilter"), QStringLiteral("2"));
    QCOMPARE(key(ini, "Rows"), QStringLiteral("30"));
    QCOMPARE(key(ini, "Columns"), QStringLiteral("40"));
    QCOMPARE(key(ini, "ScrollRows"), QStringLiteral("1000"));
    QCOMPARE(key(ini, "FontName"), s.font().family());
    QCOMPARE(key(ini, "Fontsize"), QStringLiteral("9"));
    QCOMPARE(key(ini, "FontBold"), QStringLiteral("False"));
    QCOMPARE(key(ini, "FontItalic"), QStringLiteral("False"));
    QCOMPARE(key(ini, "CursorType"), QStringLiteral("1"));
}

void MWTermTest::cancelDropsTheChanges()
{
    Window w;
    const TermSettings before = TermSettingsOf(w.screen());
    whenModal([](QWidget *dialog) {
        auto *d = qobject_cast<MWTerm *>(dialog);
        d->txtColumns->setValue(20);
        d->cboForeColor->setCurrentIndex(3);
        d->cmdCancel->click();
    });
    MWTerm dialog(w.rig.session, w.rig.ini);
    QVERIFY(!dialog.SetTerminalSettings(w.screen()));
    QVERIFY(TermSettingsOf(w.screen()) == before);
    QVERIFY(!w.rig.ini.hasKey(kSection, QStringLiteral("Emulation")));
    QCOMPARE(w.screen().rowText(2), QString(60, u'w'));
}

void MWTermTest::fontDialog()
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

void MWTermTest::changesAreTriedOnTheSample()
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

void MWTermTest::sectionIsNotReadAtStart()
{
    Window w(
        "[Terminal_Phone]\r\nEmulation=1\r\nRows=30\r\nColumns=40\r\nForeColor=2\r\nEcho(Duplex)=True\r\n");
    TerminalScreen &s = w.screen();
    QCOMPARE(s.Emulation(), 2);
    QCOMPARE(s.Rows(), 25);
    QCOMPARE(s.Columns(), 80);
    QCOMPARE(s.ForeColor(), 15);
    QCOMPARE(s.BackColor(), 1);
    QVERIFY(!s.Echo());
    QVERIFY(w.rig.prompts.verify());
}

void MWTermTest::loadTerminalSettingsReadsTheSection()
{
    Window w(
        "[Terminal_Phone]\r\nEmulation=1\r\nBackspace=1\r\nEcho(Duplex)=-1\r\nForeColor=14\r\nBackColor=0\r\n"
        "ScreenFilter=2\r\nRows=20\r\nColumns=40\r\nScrollRows=99\r\nFontName=Nowhere "
        "Sans\r\nFontsize=11.5\r\n"
        "FontBold=True\r\nFontItalic=1\r\nCursorType=1\r\n");
    w.rig.port.setAutoProcess(CommControl::kAutoProcessProgram);
    w.rig.port.setRThreshold(1);
    MWTerm dialog(w.rig.session, w.rig.ini);
    dialog.LoadTerminalSettings(w.screen());
    TerminalScreen &s = w.screen();
    QCOMPARE(s.Emulation(), 1);
    QCOMPARE(s.Backspace(), 1);
    QVERIFY(s.Echo());
    QCOMPARE(s.ForeColor(), 14);
    QCOMPARE(s.BackColor(), 0);
    QCOMPARE(s.ColorFilter(), 0); // ScreenFilter is written, never read back
    QCOMPARE(s.Rows(), 20);
    QCOMPARE(s.Columns(), 40);
    QCOMPARE(s.ScrollRows(), 99);
    QCOMPARE(s.font().family(), QStringLiteral("Nowhere Sans"));
    QCOMPARE(s.font().pointSizeF(), 11.5);
    QVERIFY(s.font().bold());
    QVERIFY(!s.font().italic()); // "1" is not true
    QCOMPARE(s.CursorType(), 1);
    QVERIFY(s.AutoSize());
    QCOMPARE(s.AutoScroll(), 4);
    QCOMPARE(w.rig.port.RThreshold(), 0);
    QCOMPARE(w.rig.port.AutoProcess(), 3);
    QCOMPARE(s.rowText(0), QStringLiteral("first"));
    QCOMPARE(s.rowText(2), QString(40, u'w'));
    QCOMPARE(s.rowText(4), QString());

    // A missing ScrollRows takes the limit for the width.
    Window wide("[Terminal_Phone]\r\nEmulation=2\r\nColumns=132\r\n");
    MWTerm(wide.rig.session, wide.rig.ini).LoadTerminalSettings(wide.screen());
    QCOMPARE(wide.screen().ScrollRows(), ScrollLimit(132));
    QCOMPARE(wide.screen().Columns(), 132);
    QCOMPARE(wide.screen().font().pointSizeF(), 9.1);
}

void MWTermTest::loadWithoutEmulationOpensTheDialog()
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

void MWTermTest::controlWithoutPortIsReported()
{
    TerminalRig rig;
    TerminalScreen loose;
    const QString box =
        QStringLiteral("The following error has occured in the application:\r438 = Object doesn't "
                       "support this property or method\rPress OK to attempt to fix problem.\rIf "
                       "problem remains, please exit program and report error to VNL.");
    rig.prompts.expectMsgBox(box).withIcon(MsgIcon::Critical);
    rig.prompts.expectMsgBox(box).withIcon(MsgIcon::Critical);
    MWTerm dialog(rig.session, rig.ini);
    QVERIFY(!dialog.SetTerminalSettings(loose));
    dialog.LoadTerminalSettings(loose);
    QVERIFY(rig.prompts.verify());
    QVERIFY(!rig.ini.hasKey(kSection, QStringLiteral("Emulation")));
}

QTEST_MAIN(MWTermTest)
#include "MWTermTest.moc"
