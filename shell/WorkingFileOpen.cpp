#include "WorkingFileOpen.h"

#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUrl>

QStringList opticalMountPoints(const QString &mountsTable)
{
    QStringList roots;
    static const QRegularExpression opticalDevice(QStringLiteral("^/dev/(sr\\d+|cdrom\\d*|scd\\d+)$"));
    for (const QString &line : mountsTable.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QStringList fields = line.split(QLatin1Char(' '));
        if (fields.size() < 3)
            continue;
        const bool optical = opticalDevice.match(fields[0]).hasMatch() ||
                             fields[2] == QLatin1String("iso9660") || fields[2] == QLatin1String("udf");
        if (!optical)
            continue;
        // The mounts table writes blanks in a path as \040.
        QString root = fields[1];
        root.replace(QStringLiteral("\\040"), QStringLiteral(" "));
        roots << (root.endsWith(QLatin1Char('/')) ? root : root + QLatin1Char('/'));
    }
    return roots;
}

void FindCdDrive(QString &rootPath)
{
    QFile mounts(QStringLiteral("/proc/self/mounts"));
    if (!mounts.open(QIODevice::ReadOnly))
        return;
    const QStringList roots = opticalMountPoints(QString::fromLocal8Bit(mounts.readAll()));
    if (!roots.isEmpty())
        rootPath = roots.first();
}

std::function<bool(const QString &)> &desktopOpener()
{
    static std::function<bool(const QString &)> opener = [](const QString &fileName) {
        return QDesktopServices::openUrl(QUrl::fromLocalFile(fileName));
    };
    return opener;
}

bool OpenWithAssociation(const QString &fileName)
{
    if (QFileInfo(fileName).suffix().isEmpty())
        return false;
    return desktopOpener()(fileName);
}

QString productInformationMessage(const QString &cdRoot)
{
    const QString file = cdRoot + QStringLiteral("1_default.html");
    // With no disc the name stands alone and is not found either.
    if (cdRoot.isEmpty() || !QFileInfo(file).isFile())
        return QStringLiteral("You Must Have The Varnel Utility CD In Your CD Drive");
    if (!OpenWithAssociation(file))
        return QStringLiteral("You Must The Varnel Resource Disk In Your CD Drive");
    return {};
}
