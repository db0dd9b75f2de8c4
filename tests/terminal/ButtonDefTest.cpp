#include "ButtonDef.h"
#include "Golden.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>
#include <memory>

namespace {

struct Buttons
{
    QWidget form;
    ButtonRow row{};

    Buttons()
    {
        for (size_t i = 0; i < row.size(); ++i)
            row[i] = new TagButton(&form);
    }
    TagButton &operator[](size_t i) { return *row[i]; }
};

} // namespace

class ButtonDefTest : public QObject
{
    Q_OBJECT
private slots:
    void listAndLabels()
    {
        Buttons b;
        b[2].setText(QStringLiteral("Squelch"));
        ButtonDef dialog(b.row);
        QVERIFY(matchesGolden(describeWindow(dialog), QStringLiteral(VARNEL_GOLDEN "/ButtonDef.txt")));
        QStringList entries;
        for (int i = 0; i < dialog.BtnNo->count(); ++i)
            entries << dialog.BtnNo->item(i)->text();
        QCOMPARE(entries.join(u'|'),
                 QStringLiteral(" 1 - | 2 - | 3 - Squelch| 4 - | 5 - | 6 - | 7 - | 8 - | 9 - | 10 - "));
        QCOMPARE(dialog.BtnNo->currentRow(), 0);
    }

    void selectingShowsTheButton()
    {
        Buttons b;
        b[0].Tag = QStringLiteral("model");
        b[4].setText(QStringLiteral("Save"));
        b[4].Tag = QStringLiteral("squelch 30\r:save");
        ButtonDef dialog(b.row, 4);
        QCOMPARE(dialog.BtnNo->currentRow(), 4);
        QCOMPARE(dialog.BtnCap->text(), QStringLiteral("Save"));
        QCOMPARE(dialog.BtnText->text(), QStringLiteral("squelch 30"));
        QVERIFY(dialog.AddCr->isChecked());
        QVERIFY(b[4].isDefault());

        dialog.BtnNo->setCurrentRow(0);
        QCOMPARE(dialog.BtnText->text(), QStringLiteral("model"));
        QVERIFY(!dialog.AddCr->isChecked());
        QVERIFY(b[0].isDefault());
        QVERIFY(!b[4].isDefault());

        // A fresh button defaults to a whole line.
        dialog.BtnNo->setCurrentRow(7);
        QCOMPARE(dialog.BtnText->text(), QString());
        QVERIFY(dialog.AddCr->isChecked());

        // No selection empties the fields.
        dialog.BtnNo->setCurrentRow(-1);
        QCOMPARE(dialog.BtnCap->text(), QString());
        QCOMPARE(dialog.BtnText->text(), QString());

        // An out-of-range start falls back to the first button.
        ButtonDef other(b.row, 12);
        QCOMPARE(other.BtnNo->currentRow(), 0);
    }

    void captionFollowsTyping()
    {
        Buttons b;
        ButtonDef dialog(b.row, 2);
        dialog.show();
        dialog.BtnCap->setFocus();
        QTest::keyClicks(dialog.BtnCap, QStringLiteral("Sq"));
        QCOMPARE(b[2].text(), QStringLiteral("Sq"));
        // The list entry changes when the field is left, keeping the selection.
        QCOMPARE(dialog.BtnNo->item(2)->text(), QStringLiteral(" 3 - "));
        emit dialog.BtnCap->editingFinished();
        QCOMPARE(dialog.BtnNo->item(2)->text(), QStringLiteral(" 3 - Sq"));
        QCOMPARE(dialog.BtnNo->currentRow(), 2);
        QCOMPARE(b[3].text(), QString());
    }

    void textFollowsTyping()
    {
        Buttons b;
        ButtonDef dialog(b.row, 1);
        QTest::keyClicks(dialog.BtnText, QStringLiteral("rssi"));
        QCOMPARE(b[1].Tag, QStringLiteral("rssi\r"));
        dialog.AddCr->click();
        QCOMPARE(b[1].Tag, QStringLiteral("rssi"));
        QTest::keyClicks(dialog.BtnText, QStringLiteral("2"));
        QCOMPARE(b[1].Tag, QStringLiteral("rssi2"));
        dialog.AddCr->click();
        QCOMPARE(b[1].Tag, QStringLiteral("rssi2\r"));
    }

    void addCrEdges()
    {
        Buttons b;
        ButtonDef dialog(b.row, 5);
        QVERIFY(dialog.AddCr->isChecked());
        // The tick of an empty button only shows the default; clearing and ticking it stores a bare line end.
        dialog.AddCr->click();
        QCOMPARE(b[5].Tag, QString());
        dialog.AddCr->click();
        QCOMPARE(b[5].Tag, QStringLiteral("\r"));

        // Clearing it cuts everything from the first carriage return on.
        b[6].Tag = QStringLiteral("abc\rdef\r");
        dialog.BtnNo->setCurrentRow(6);
        dialog.AddCr->click();
        QCOMPARE(b[6].Tag, QStringLiteral("abc"));
        // Ticking adds one only where none is.
        dialog.AddCr->click();
        dialog.AddCr->click();
        dialog.AddCr->click();
        QCOMPARE(b[6].Tag, QStringLiteral("abc\r"));
    }

    void carriageReturnWithinTheText()
    {
        Buttons b;
        ButtonDef dialog(b.row, 0);
        emit dialog.BtnText->textEdited(QStringLiteral("ab\rcd"));
        QCOMPARE(b[0].Tag, QStringLiteral("ab\rcd\r"));
        dialog.BtnNo->setCurrentRow(1);
        dialog.BtnNo->setCurrentRow(0);
        QCOMPARE(dialog.BtnText->text(), QStringLiteral("ab"));
        QCOMPARE(b[0].Tag, QStringLiteral("ab\rcd\r"));
    }

    void quitRemovesTheMarks()
    {
        Buttons b;
        auto dialog = std::make_unique<ButtonDef>(b.row, 3);
        dialog->show();
        QVERIFY(b[3].isDefault());
        dialog->Quit->click();
        QVERIFY(!dialog->isVisible());
        QCOMPARE(dialog->result(), int(QDialog::Accepted));
        for (TagButton *button : b.row)
            QVERIFY(!button->isDefault());
    }
};

QTEST_MAIN(ButtonDefTest)
#include "ButtonDefTest.moc"
