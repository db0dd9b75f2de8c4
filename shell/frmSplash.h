#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;

// The start-up box: shows for half a second, then hands over to the main menu.
class frmSplash : public QWidget
{
    Q_OBJECT
public:
    explicit frmSplash(QWidget *parent = nullptr);

    QLabel *lblCompanyProduct;
    QLabel *lblProductName;
    QLabel *lblPlatform;
    QLabel *lblVersion;
    QLabel *lblCopyright;
    QTimer Timer1;

signals:
    // The splash was painted on the screen: what the main menu needs can be built meanwhile.
    void shownOnScreen();
    // Timer1 fired: time to show the main menu; the splash closes itself after.
    void finished();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_painted = false;
};
