#pragma once

#include "Prompts.h"

class QWidget;

// The prompts of the running program: Qt's message boxes and dialogs, modal over the active window.
class WidgetPrompts : public Prompts
{
public:
    MsgAnswer MsgBox(const MsgBoxRequest &request) override;
    std::optional<QString> InputBox(const InputBoxRequest &request) override;
    QString FileDialog(const FileDialogRequest &request) override;
    std::optional<FontChoice> FontDialog(const FontChoice &initial, const QString &title) override;
    void Beep() override;
    void setBusy(bool busy) override;
    using Prompts::InputBox;
    using Prompts::MsgBox;
};
