#include "RemoteAddress.h"

#include "BusyPointer.h"
#include "CommControl.h"
#include "ModemSession.h"
#include "Named.h"
#include "Prompts.h"
#include "RemoteProgramming.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

RemoteAddress::RemoteAddress(ModemSession &session, QWidget *parent)
    : QWidget(parent, Qt::Window), m_session(session)
{
    setObjectName(QStringLiteral("RemoteAddress"));
    setWindowTitle(QStringLiteral("Remote Programming"));
    setAttribute(Qt::WA_DeleteOnClose);

    auto *grid = new QGridLayout(this);
    grid->addWidget(named<QLabel>("lblheading", QStringLiteral(" REMOTE ADDRESS  "), this), 0, 0, 1, 2,
                    Qt::AlignHCenter);
    grid->addWidget(named<QLabel>("lblheading2", QStringLiteral("AND REPEATERS"), this), 1, 0, 1, 2,
                    Qt::AlignHCenter);
    txtaddrss = named<QLineEdit>("txtaddrss", this);
    grid->addWidget(named<QLabel>("lbladdrss", QStringLiteral("Specify the destination address:"), this), 2,
                    0);
    grid->addWidget(txtaddrss, 2, 1);
    const QString captions[] = {QStringLiteral("Specify the first repeater address:"),
                                QStringLiteral("Specify the second repeater address:"),
                                QStringLiteral("Specify the third repeater address:")};
    for (int i = 0; i < 3; ++i) {
        txtRep[size_t(i)] = named<QLineEdit>(QStringLiteral("txtRep(%1)").arg(i), this);
        grid->addWidget(named<QLabel>(QStringLiteral("lblRep(%1)").arg(i), captions[i], this), 3 + i, 0);
        grid->addWidget(txtRep[size_t(i)], 3 + i, 1);
    }
    lblcaution = named<QLabel>("lblcaution", QStringLiteral("Leave Repeaters Empty If Not Needed"), this);
    grid->addWidget(lblcaution, 6, 0, 1, 2);
    cmdaddOK2 = named<QPushButton>("cmdaddOK2", QStringLiteral("Find Remote"), this);
    cmdaddCancel = named<QPushButton>("cmdaddCancel", QStringLiteral("Cancel"), this);
    grid->addWidget(cmdaddOK2, 7, 0);
    grid->addWidget(cmdaddCancel, 7, 1);

    connect(cmdaddOK2, &QPushButton::clicked, this, &RemoteAddress::cmdaddOK2_Click);
    // Cancel leaves the connected modem as it was prepared and the mode word as it stands.
    connect(cmdaddCancel, &QPushButton::clicked, this, &QWidget::close);
}

void RemoteAddress::cmdaddOK2_Click()
{
    Prompts &prompts = m_session.prompts();
    BusyPointer busy(prompts);
    m_session.Comm1().Input();
    const RemoteRouteCheck check =
        checkRemoteRoute(txtaddrss->text(), {txtRep[0]->text(), txtRep[1]->text(), txtRep[2]->text()});
    if (!check.faultText.isEmpty()) {
        prompts.MsgBox(check.faultText, MsgButtons::OkOnly, MsgIcon::Exclamation);
        if (check.clearRepeaters)
            for (QLineEdit *field : txtRep)
                field->clear();
        if (check.noDestination && focusOpener)
            focusOpener();
        return;
    }
    if (!LinkToRemote(m_session, check.route)) {
        prompts.MsgBox(QStringLiteral("Failed to Link to That Address"), MsgButtons::OkOnly,
                       MsgIcon::Critical, QStringLiteral("Remote Program Failure"));
        if (failed)
            failed();
        close();
        return;
    }
    // A download runs with the form out of sight; a read keeps it on the screen.
    if (m_session.ProgMode == kRemoteSaveMode)
        hide();
    if (linked)
        linked();
    close();
}

void RemoteAddress::closeEvent(QCloseEvent *event)
{
    m_session.prompts().setBusy(false);
    event->accept();
}
