#include "frmAbout.h"

#include "Named.h"
#include "Prompts.h"

#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

QString appTitle()
{
    return QStringLiteral("Varnel Utility");
}

QString appVersionText()
{
    return QStringLiteral("3.0.0");
}

bool startSystemInformation()
{
    // The desktops' own system information tools, most specific first.
    for (const char *tool : {"gnome-system-monitor", "ksysguard", "plasma-systemmonitor", "xfce4-taskmanager",
                             "hardinfo", "mate-system-monitor"}) {
        const QString path = QStandardPaths::findExecutable(QString::fromLatin1(tool));
        if (!path.isEmpty() && QProcess::startDetached(path, {}))
            return true;
    }
    return false;
}

frmAbout::frmAbout(Prompts &prompts, QWidget *parent) : QDialog(parent), m_prompts(prompts)
{
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About ") + appTitle());
    auto *layout = new QVBoxLayout(this);
    auto label = [&](const char *name, const QString &text) {
        auto *l = named<QLabel>(name, text, this);
        l->setWordWrap(true);
        layout->addWidget(l);
        return l;
    };
    lblTitle = label("lblTitle", appTitle());
    lblVersion = label("lblVersion", QStringLiteral("Version ") + appVersionText());
    lblDescription =
        label("lblDescription", QStringLiteral("This program can be used for programming and testing the "
                                               "Varnel Model Q40 Series of Wireless Modems."));
    lblDisclaimer =
        label("lblDisclaimer",
              QStringLiteral("Warning: this program is protected by copyright law. Unauthorized "
                             "reproduction or distribution of it, or any part of it, is prohibited."));
    auto *row = new QHBoxLayout;
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdSysInfo = new QPushButton(QStringLiteral("&System Info..."), this);
    cmdSysInfo->setObjectName(QStringLiteral("cmdSysInfo"));
    row->addWidget(cmdOK);
    row->addWidget(cmdSysInfo);
    layout->addLayout(row);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdSysInfo, &QPushButton::clicked, this, &frmAbout::cmdSysInfo_Click);
}

void frmAbout::cmdSysInfo_Click()
{
    if (!startSystemInformation())
        m_prompts.MsgBox(QStringLiteral("System Information Is Unavailable At This Time"));
}
