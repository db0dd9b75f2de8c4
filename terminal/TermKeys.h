#pragma once

#include <QByteArray>
#include <QString>
#include <Qt>

// The key's character code as the terminal's key-press event reports it: 8 for Backspace, 13 for
// Enter, 27 for Esc, 9 for Tab, 1 to 26 for Ctrl and a letter, the Latin-1 code of a typed
// character; -1 for keys without one (cursor keys, function keys, Insert, Delete).
int keyAscii(int key, Qt::KeyboardModifiers modifiers, const QString &text);

// A key as typed, and where: on the terminal screen, or on the form while a button has the focus.
struct TypedKey
{
    enum class Place { Screen, Form };
    Place place = Place::Screen;
    int key = 0;
    Qt::KeyboardModifiers modifiers;
    QString text;
};

// What the key meets: the port's mode and state, and the screen's settings for keys.
struct KeyContext
{
    int autoProcess = 3;
    bool portOpen = true;
    // 1: Backspace sends DEL (127); otherwise Ctrl-H (8).
    int backspace = 0;
    bool echo = false;
    bool hasSelection = false;
    // What the emulation sends for the key by itself (a cursor key), empty for other keys.
    QByteArray emulationBytes;
};

// Where a typed key goes. The terminal control sends keys itself at AutoProcess 3, translated and
// echoed as the screen is set; at 0 the form writes each character code as it is. The editing keys
// work on the selection and the clipboard at either mode.
struct KeyRoute
{
    enum class Edit { None, Paste, Copy, CopyAndUnselect, Unselect, PageUp, PageDown };
    QByteArray send;
    // The bytes sent are also shown on the screen.
    bool echo = false;
    // The view goes back to the cursor.
    bool followCursor = false;
    bool escPressed = false;
    bool focusScreen = false;
    Edit edit = Edit::None;
    // The key is not the terminal's: the window's own handling (shortcuts, focus) takes it.
    bool passOn = false;
};

KeyRoute routeKey(const TypedKey &typed, const KeyContext &context);
