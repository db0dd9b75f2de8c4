#include "TermKeys.h"

namespace {

constexpr int kAutoProcessProgram = 0;
constexpr int kAutoProcessTerminal = 3;
constexpr int kBackspace = 8;
constexpr int kEsc = 27;
constexpr char kDel = '\x7f';

// Insert and Delete with Shift or Ctrl work on the selection and the clipboard; the keyboard copies
// leave the selection's last character behind, which the caller takes care of.
KeyRoute::Edit editOf(int key, Qt::KeyboardModifiers modifiers, bool hasSelection)
{
    const bool withShift = modifiers & Qt::ShiftModifier;
    if (key == Qt::Key_Insert && withShift)
        return KeyRoute::Edit::Paste;
    if (key == Qt::Key_Insert && (modifiers & Qt::ControlModifier))
        return hasSelection ? KeyRoute::Edit::Copy : KeyRoute::Edit::None;
    if (key == Qt::Key_Delete && hasSelection)
        return withShift ? KeyRoute::Edit::CopyAndUnselect : KeyRoute::Edit::Unselect;
    return KeyRoute::Edit::None;
}

} // namespace

int keyAscii(int key, Qt::KeyboardModifiers modifiers, const QString &text)
{
    switch (key) {
    case Qt::Key_Backspace:
        return kBackspace;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return 9;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return 13;
    case Qt::Key_Escape:
        return kEsc;
    default:
        break;
    }
    if ((modifiers & Qt::ControlModifier) && !(modifiers & Qt::AltModifier)) {
        if (key >= Qt::Key_A && key <= Qt::Key_Z)
            return key - Qt::Key_A + 1;
        switch (key) {
        case Qt::Key_At:
        case Qt::Key_Space:
            return 0;
        case Qt::Key_BracketLeft:
            return kEsc;
        case Qt::Key_Backslash:
            return 28;
        case Qt::Key_BracketRight:
            return 29;
        case Qt::Key_AsciiCircum:
            return 30;
        case Qt::Key_Underscore:
            return 31;
        default:
            return -1;
        }
    }
    if (text.size() == 1) {
        const char16_t ch = text.at(0).unicode();
        if (ch >= 0x20 && ch <= 0xFF && ch != 0x7F && !(ch >= 0x80 && ch < 0xA0))
            return ch;
    }
    return -1;
}

KeyRoute routeKey(const TypedKey &typed, const KeyContext &context)
{
    KeyRoute route;
    const int ascii = keyAscii(typed.key, typed.modifiers, typed.text);
    if (typed.place == TypedKey::Place::Form) {
        // A key typed while a button has the focus goes to the screen, and to the modem if the port
        // is open, whatever the mode.
        route.passOn = ascii < 0;
        route.focusScreen = ascii >= 0;
        if (ascii >= 0 && context.portOpen)
            route.send = QByteArray(1, char(ascii));
        return route;
    }
    if ((typed.modifiers & Qt::ShiftModifier) &&
        (typed.key == Qt::Key_PageUp || typed.key == Qt::Key_PageDown)) {
        route.edit = typed.key == Qt::Key_PageUp ? KeyRoute::Edit::PageUp : KeyRoute::Edit::PageDown;
        return route;
    }
    route.edit = editOf(typed.key, typed.modifiers, context.hasSelection);
    route.escPressed = ascii == kEsc;
    if (context.autoProcess == kAutoProcessTerminal) {
        if (ascii == kBackspace)
            route.send = QByteArray(1, context.backspace == 1 ? kDel : char(kBackspace));
        else if (ascii >= 0)
            route.send = QByteArray(1, char(ascii));
        else
            route.send = context.emulationBytes;
        route.echo = context.echo && !route.send.isEmpty();
        route.followCursor = !route.send.isEmpty();
    } else if (context.autoProcess == kAutoProcessProgram && ascii >= 0) {
        route.send = QByteArray(1, char(ascii));
    }
    return route;
}
