#include "TermKeys.h"
#include "Tables.h"

namespace {

constexpr auto S = TypedKey::Place::Screen;
constexpr auto F = TypedKey::Place::Form;
constexpr Qt::KeyboardModifiers kNone;
constexpr Qt::KeyboardModifiers kShift = Qt::ShiftModifier;
constexpr Qt::KeyboardModifiers kCtrl = Qt::ControlModifier;

struct AsciiCase
{
    const char *name;
    int key;
    Qt::KeyboardModifiers modifiers;
    const char16_t *text;
    int ascii;
};

const AsciiCase kAsciiCases[] = {
    {"letter", Qt::Key_A, kNone, u"a", 97},
    {"shifted", Qt::Key_A, kShift, u"A", 65},
    {"backspace", Qt::Key_Backspace, kNone, u"\b", 8},
    {"enter", Qt::Key_Return, kNone, u"\r", 13},
    {"keypad enter", Qt::Key_Enter, kNone, u"", 13},
    {"escape", Qt::Key_Escape, kNone, u"\x1b", 27},
    {"tab", Qt::Key_Tab, kNone, u"\t", 9},
    {"back tab", Qt::Key_Backtab, kShift, u"", 9},
    {"ctrl-a", Qt::Key_A, kCtrl, u"", 1},
    {"ctrl-z", Qt::Key_Z, kCtrl, u"", 26},
    {"ctrl-space", Qt::Key_Space, kCtrl, u"", 0},
    {"ctrl-@", Qt::Key_At, kCtrl, u"", 0},
    {"ctrl-[", Qt::Key_BracketLeft, kCtrl, u"", 27},
    {"ctrl-backslash", Qt::Key_Backslash, kCtrl, u"", 28},
    {"ctrl-]", Qt::Key_BracketRight, kCtrl, u"", 29},
    {"ctrl-^", Qt::Key_AsciiCircum, kCtrl, u"", 30},
    {"ctrl-_", Qt::Key_Underscore, kCtrl, u"", 31},
    {"ctrl-1", Qt::Key_1, kCtrl, u"", -1},
    {"ctrl-alt-a", Qt::Key_A, kCtrl | Qt::AltModifier, u"a", 97},
    {"blank", Qt::Key_Space, kNone, u" ", 32},
    {"tilde", Qt::Key_AsciiTilde, kNone, u"~", 126},
    {"latin-1", Qt::Key_Eacute, kNone, u"\u00e9", 0xE9},
    {"y diaeresis", Qt::Key_ydiaeresis, kNone, u"\u00ff", 0xFF},
    {"nbsp", Qt::Key_nobreakspace, kNone, u"\u00a0", 0xA0},
    {"c1 control", Qt::Key_unknown, kNone, u"\u009f", -1},
    {"control text", Qt::Key_unknown, kNone, u"\x1f", -1},
    {"beyond latin-1", Qt::Key_unknown, kNone, u"\u20ac", -1},
    {"two characters", Qt::Key_unknown, kNone, u"ab", -1},
    {"delete", Qt::Key_Delete, kNone, u"\x7f", -1},
    {"insert", Qt::Key_Insert, kShift, u"", -1},
    {"function", Qt::Key_F4, kNone, u"", -1},
    {"cursor", Qt::Key_Left, kNone, u"", -1},
};

// Context words: "closed" port, "echo", "del" for Backspace as DEL, "sel" for a selection, "arrow"
// for a key the emulation sends by itself as ESC [ A. The route is read back in the same words.
struct RouteCase
{
    const char *name;
    TypedKey::Place place;
    int key;
    Qt::KeyboardModifiers modifiers;
    const char16_t *text;
    int autoProcess;
    const char *context;
    const char *route;
};

const RouteCase kRouteCases[] = {
    {"typed at 3", S, Qt::Key_A, kNone, u"a", 3, "", "send 61 follow"},
    {"typed with echo", S, Qt::Key_A, kNone, u"a", 3, "echo", "send 61 echo follow"},
    {"backspace as ctrl-h", S, Qt::Key_Backspace, kNone, u"\b", 3, "", "send 08 follow"},
    {"backspace as del", S, Qt::Key_Backspace, kNone, u"\b", 3, "del echo", "send 7f echo follow"},
    {"cursor key at 3", S, Qt::Key_Up, kNone, u"", 3, "arrow", "send 1b5b41 follow"},
    {"key without bytes", S, Qt::Key_F12, kNone, u"", 3, "echo", ""},
    {"escape at 3", S, Qt::Key_Escape, kNone, u"\x1b", 3, "", "send 1b follow esc"},
    {"closed port at 3", S, Qt::Key_X, kNone, u"x", 3, "closed echo", "send 78 echo follow"},
    {"typed at 0", S, Qt::Key_A, kNone, u"a", 0, "echo", "send 61"},
    {"backspace at 0", S, Qt::Key_Backspace, kNone, u"\b", 0, "del", "send 08"},
    {"cursor key at 0", S, Qt::Key_Up, kNone, u"", 0, "arrow", ""},
    {"escape at 0", S, Qt::Key_Escape, kNone, u"\x1b", 0, "", "send 1b esc"},
    {"nul at 0", S, Qt::Key_Space, kCtrl, u"", 0, "", "send 00"},
    {"other mode", S, Qt::Key_A, kNone, u"a", 1, "", ""},
    {"paste", S, Qt::Key_Insert, kShift, u"", 3, "", "paste"},
    {"paste with ctrl", S, Qt::Key_Insert, kShift | kCtrl, u"", 0, "sel", "paste"},
    {"copy", S, Qt::Key_Insert, kCtrl, u"", 3, "sel", "copy"},
    {"copy without selection", S, Qt::Key_Insert, kCtrl, u"", 3, "", ""},
    {"cut", S, Qt::Key_Delete, kShift, u"", 3, "sel", "copy unselect"},
    {"delete", S, Qt::Key_Delete, kNone, u"\x7f", 3, "sel", "unselect"},
    {"delete with ctrl", S, Qt::Key_Delete, kCtrl, u"", 0, "sel", "unselect"},
    {"delete without selection", S, Qt::Key_Delete, kShift, u"", 3, "", ""},
    {"page up", S, Qt::Key_PageUp, kShift, u"", 3, "arrow", "page up"},
    {"page down", S, Qt::Key_PageDown, kShift, u"", 0, "", "page down"},
    {"page key alone", S, Qt::Key_PageUp, kNone, u"", 3, "arrow", "send 1b5b41 follow"},
    {"on the form", F, Qt::Key_Z, kNone, u"z", 0, "echo", "send 7a focus"},
    {"on the form at 3", F, Qt::Key_Escape, kNone, u"\x1b", 3, "", "send 1b focus"},
    {"on the form, closed", F, Qt::Key_Z, kNone, u"z", 3, "closed", "focus"},
    {"on the form, no code", F, Qt::Key_Up, kNone, u"", 3, "arrow", "pass"},
};

QString describe(const KeyRoute &route)
{
    static const char *const kEdits[] = {"",         "paste",   "copy",     "copy unselect",
                                         "unselect", "page up", "page down"};
    QStringList words;
    if (!route.send.isEmpty())
        words << QStringLiteral("send ") + QString::fromLatin1(route.send.toHex());
    if (route.echo)
        words << QStringLiteral("echo");
    if (route.followCursor)
        words << QStringLiteral("follow");
    if (route.escPressed)
        words << QStringLiteral("esc");
    if (route.focusScreen)
        words << QStringLiteral("focus");
    if (route.passOn)
        words << QStringLiteral("pass");
    if (route.edit != KeyRoute::Edit::None)
        words << QString::fromLatin1(kEdits[int(route.edit)]);
    return words.join(u' ');
}

} // namespace

class TermKeysTest : public QObject
{
    Q_OBJECT
private slots:
    void keyAsciiCodes_data() { addRows(kAsciiCases); }
    void keyAsciiCodes()
    {
        const AsciiCase &c = fetchRow(kAsciiCases);
        QCOMPARE(keyAscii(c.key, c.modifiers, QString::fromUtf16(c.text)), c.ascii);
    }

    void routes_data() { addRows(kRouteCases); }
    void routes()
    {
        const RouteCase &c = fetchRow(kRouteCases);
        const QStringList words = QString::fromLatin1(c.context).split(u' ');
        KeyContext context;
        context.autoProcess = c.autoProcess;
        context.portOpen = !words.contains(QStringLiteral("closed"));
        context.backspace = words.contains(QStringLiteral("del")) ? 1 : 0;
        context.echo = words.contains(QStringLiteral("echo"));
        context.hasSelection = words.contains(QStringLiteral("sel"));
        context.emulationBytes = words.contains(QStringLiteral("arrow")) ? "\x1b[A" : "";
        const KeyRoute route = routeKey({c.place, c.key, c.modifiers, QString::fromUtf16(c.text)}, context);
        QCOMPARE(describe(route), QString::fromLatin1(c.route));
    }
};

QTEST_GUILESS_MAIN(TermKeysTest)
#include "TermKeysTest.moc"
