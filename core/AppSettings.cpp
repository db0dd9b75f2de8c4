#include "AppSettings.h"

#include "IniFile.h"

#include <QFileInfo>

namespace {

const QString kApplication = QStringLiteral("Application");
const QString kButtonAssignments = QStringLiteral("Button Assignments");
const QString kDownloadDirectory = QStringLiteral("Download Directory");
const QString kUploadDirectory = QStringLiteral("Upload Directory");
const QString kZmodemOptions = QStringLiteral("Zmodem Options");
const QString kTransferOptions = QStringLiteral("Transfer Options");
const QString kAutoZModem = QStringLiteral("Auto ZModem");
const QString kHideIntro = QStringLiteral("Hide Intro");
const QString kHideDiag = QStringLiteral("Hide Diag");
const QString kRepeaterSetup = QStringLiteral("Repeater Setup");

constexpr int kDirectoryBuffer = 256;
constexpr int kBooleanBuffer = 10;
constexpr int kButtonKeysBuffer = 256;
constexpr int kButtonValueBuffer = 256;

// Directories are kept in upper case with a closing backslash, whatever the file or the default held.
QString directoryText(const QString &text)
{
    QString directory = text.toUpper();
    if (!directory.endsWith(u'\\'))
        directory += u'\\';
    return directory;
}

QString readDirectory(const IniFile &ini, const QString &key)
{
    const QString programDirectory = QFileInfo(programFilePath()).absolutePath();
    return directoryText(ini.getString(kApplication, key, programDirectory, kDirectoryBuffer));
}

bool readBoolean(const IniFile &ini, const QString &key)
{
    return iniBool(ini.getString(kApplication, key, iniBoolText(false), kBooleanBuffer));
}

void loadButtons(const IniFile &ini, AppSettings &settings)
{
    for (const QString &key : ini.keys(kButtonAssignments, kButtonKeysBuffer)) {
        const qsizetype dash = key.indexOf(u'-');
        if (dash < 0)
            continue;
        const int index = iniNumber(QStringView(key).left(dash)) - 1;
        if (index < 0 || index >= int(settings.buttons.size()))
            continue;
        ButtonAssignment &button = settings.buttons[index];
        QStringView caption = QStringView(key).mid(dash + 1);
        while (caption.startsWith(u' '))
            caption = caption.mid(1);
        button.caption = caption.toString();
        button.tag =
            buttonTagFromValue(ini.getString(kButtonAssignments, key, QString(), kButtonValueBuffer));
    }
}

} // namespace

QString buttonValueText(const QString &tag)
{
    for (qsizetype i = 0; i < tag.size(); ++i) {
        if (tag.at(i) == u'\r' || tag.at(i) == u'~')
            return tag.left(i) + u'~';
    }
    return tag;
}

QString buttonTagFromValue(const QString &value)
{
    const qsizetype tilde = value.indexOf(u'~');
    return tilde < 0 ? value : value.left(tilde) + u'\r';
}

void LoadAppSettings(const IniFile &ini, AppSettings &settings)
{
    settings.downloadDirectory = readDirectory(ini, kDownloadDirectory);
    settings.uploadDirectory = readDirectory(ini, kUploadDirectory);
    settings.zmodemOptions = ini.getInt(kApplication, kZmodemOptions, 0);
    settings.transferOptions = ini.getInt(kApplication, kTransferOptions, 0);
    // Auto ZModem is deliberately not read: the control's switch starts from its own default every run.
    settings.hideIntro = readBoolean(ini, kHideIntro);
    settings.hideDiag = readBoolean(ini, kHideDiag);
    settings.repeaterSetup = readBoolean(ini, kRepeaterSetup);
    loadButtons(ini, settings);
}

void SaveAppSettings(IniFile &ini, const AppSettings &settings)
{
    QList<IniEntry> entries{
        {kApplication, kDownloadDirectory, settings.downloadDirectory},
        {kApplication, kUploadDirectory, settings.uploadDirectory},
        {kApplication, kZmodemOptions, QString::number(settings.zmodemOptions)},
        {kApplication, kTransferOptions, QString::number(settings.transferOptions)},
        {kApplication, kAutoZModem, iniBoolText(settings.autoZModem)},
        {kApplication, kHideIntro, iniBoolText(settings.hideIntro)},
        {kApplication, kHideDiag, iniBoolText(settings.hideDiag)},
        {kApplication, kRepeaterSetup, iniBoolText(settings.repeaterSetup)},
    };
    // An emptied button writes nothing, so its old key stays in the file and comes back at the next load;
    // keys leave the file only by hand.
    for (size_t i = 0; i < settings.buttons.size(); ++i) {
        const ButtonAssignment &button = settings.buttons[i];
        if (!button.tag.isEmpty())
            entries.append({kButtonAssignments,
                            QString::number(i + 1) + QStringLiteral(" - ") + button.caption,
                            buttonValueText(button.tag)});
    }
    // One change of the file for the whole save.
    ini.writeStrings(entries);
}
