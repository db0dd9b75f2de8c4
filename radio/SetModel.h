#pragma once

#include <QList>
#include <QWidget>

class ModemSession;
class QButtonGroup;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

// "Calculate Frequency Latches": the latches of a frequency for a unit chosen by model and case
// style, without any modem. DisplayLatches shows the result.
class SetModel : public QWidget
{
    Q_OBJECT
public:
    explicit SetModel(ModemSession &session, QWidget *parent = nullptr);

    QList<QRadioButton *> optModel;
    QLineEdit *MaskBoxtxt;
    QPushButton *cmdOK;
    QPushButton *cmdCancel;

    void cmdOK_Click();

private:
    ModemSession &m_session;
    QButtonGroup *m_choice;
};

class DisplayLatches : public QWidget
{
    Q_OBJECT
public:
    DisplayLatches(const QString &title, const QString &n1, const QString &a1, const QString &n2,
                   QWidget *parent = nullptr);
};
