#include "WidgetPrompts.h"

#include <QApplication>
#include <QFileDialog>
#include <QFontDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

namespace {
struct ButtonSet
{
    QList<QMessageBox::StandardButton> buttons;
    QList<MsgAnswer> answers;
};

ButtonSet buttonsFor(MsgButtons buttons)
{
    using B = QMessageBox;
    switch (buttons) {
    case MsgButtons::OkOnly:
        return {{B::Ok}, {MsgAnswer::Ok}};
    case MsgButtons::OkCancel:
        return {{B::Ok, B::Cancel}, {MsgAnswer::Ok, MsgAnswer::Cancel}};
    case MsgButtons::AbortRetryIgnore:
        return {{B::Abort, B::Retry, B::Ignore}, {MsgAnswer::Abort, MsgAnswer::Retry, MsgAnswer::Ignore}};
    case MsgButtons::YesNoCancel:
        return {{B::Yes, B::No, B::Cancel}, {MsgAnswer::Yes, MsgAnswer::No, MsgAnswer::Cancel}};
    case MsgButtons::YesNo:
        return {{B::Yes, B::No}, {MsgAnswer::Yes, MsgAnswer::No}};
    case MsgButtons::RetryCancel:
        return {{B::Retry, B::Cancel}, {MsgAnswer::Retry, MsgAnswer::Cancel}};
    }
    return {{B::Ok}, {MsgAnswer::Ok}};
}

QMessageBox::Icon iconFor(MsgIcon icon)
{
    switch (icon) {
    case MsgIcon::Critical:
        return QMessageBox::Critical;
    case MsgIcon::Question:
        return QMessageBox::Question;
    case MsgIcon::Exclamation:
        return QMessageBox::Warning;
    case MsgIcon::Information:
        return QMessageBox::Information;
    case MsgIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

// The boxes' text uses carriage returns between lines.
QString displayText(const QString &text)
{
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return shown;
}
} // namespace

MsgAnswer WidgetPrompts::MsgBox(const MsgBoxRequest &request)
{
    QMessageBox box(QApplication::activeWindow());
    box.setIcon(iconFor(request.icon));
    box.setText(displayText(request.text));
    // A box has no title unless one is given.
    box.setWindowTitle(request.title.isEmpty() ? QStringLiteral(" ") : request.title);
    const ButtonSet set = buttonsFor(request.buttons);
    for (int i = 0; i < set.buttons.size(); ++i) {
        QPushButton *button = box.addButton(set.buttons[i]);
        if (i == request.defaultButton - 1)
            box.setDefaultButton(button);
    }
    box.exec();
    const int index =
        set.buttons.indexOf(QMessageBox::StandardButton(box.standardButton(box.clickedButton())));
    if (index >= 0)
        return set.answers[index];
    // Closing the box answers its cancelling button, or the only one.
    if (set.answers.contains(MsgAnswer::Cancel))
        return MsgAnswer::Cancel;
    return set.answers.last();
}

std::optional<QString> WidgetPrompts::InputBox(const InputBoxRequest &request)
{
    bool ok = false;
    const QString text =
        QInputDialog::getText(QApplication::activeWindow(), request.title, displayText(request.prompt),
                              QLineEdit::Normal, request.defaultText, &ok);
    if (!ok)
        return std::nullopt;
    return text;
}

QString WidgetPrompts::FileDialog(const FileDialogRequest &request)
{
    QFileDialog dialog(QApplication::activeWindow(), request.title, request.directory, request.filter);
    dialog.setAcceptMode(request.kind == FileDialogRequest::Kind::Save ? QFileDialog::AcceptSave
                                                                       : QFileDialog::AcceptOpen);
    dialog.setFileMode(request.kind == FileDialogRequest::Kind::Save ? QFileDialog::AnyFile
                                                                     : QFileDialog::ExistingFile);
    if (!request.overwritePrompt)
        dialog.setOption(QFileDialog::DontConfirmOverwrite);
    const QStringList filters = request.filter.split(QStringLiteral(";;"));
    if (request.filterIndex >= 0 && request.filterIndex < filters.size())
        dialog.selectNameFilter(filters[request.filterIndex]);
    if (!request.fileName.isEmpty())
        dialog.selectFile(request.fileName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().first();
}

std::optional<FontChoice> WidgetPrompts::FontDialog(const FontChoice &initial, const QString &title)
{
    QFont start(initial.family);
    if (initial.pointSize > 0)
        start.setPointSizeF(initial.pointSize);
    start.setBold(initial.bold);
    start.setItalic(initial.italic);
    bool ok = false;
    const QFont font = QFontDialog::getFont(&ok, start, QApplication::activeWindow(), title);
    if (!ok)
        return std::nullopt;
    return FontChoice{font.family(), font.pointSizeF(), font.bold(), font.italic()};
}

void WidgetPrompts::Beep()
{
    QApplication::beep();
}

void WidgetPrompts::setBusy(bool busy)
{
    if (!busy) {
        while (QApplication::overrideCursor())
            QApplication::restoreOverrideCursor();
    } else if (QApplication::overrideCursor()) {
        QApplication::changeOverrideCursor(Qt::WaitCursor);
    } else {
        QApplication::setOverrideCursor(Qt::WaitCursor);
    }
}
