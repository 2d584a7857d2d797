#include "Platform/linux/x11/X11KeyboardLayout.h"

#include "Platform/KeyCodes.h"
#include "Platform/Log.h"
#include "Platform/linux/x11/XcbXkb.h"

#include <algorithm>
#include <array>

namespace {

constexpr quint32 serverOffset = 8; // an X key code is the evdev code + 8

struct Accent {
    xkb_keysym_t symbol;
    char16_t character;
};

// What a dead key types when it is followed by a space, where that is a character of its own.
constexpr std::array accents = {
    Accent{XKB_KEY_dead_grave, u'`'},         Accent{XKB_KEY_dead_acute, u'´'},
    Accent{XKB_KEY_dead_circumflex, u'^'},    Accent{XKB_KEY_dead_tilde, u'~'},
    Accent{XKB_KEY_dead_macron, u'¯'},        Accent{XKB_KEY_dead_breve, u'˘'},
    Accent{XKB_KEY_dead_abovedot, u'˙'},      Accent{XKB_KEY_dead_diaeresis, u'¨'},
    Accent{XKB_KEY_dead_abovering, u'˚'},     Accent{XKB_KEY_dead_doubleacute, u'˝'},
    Accent{XKB_KEY_dead_caron, u'ˇ'},         Accent{XKB_KEY_dead_cedilla, u'¸'},
    Accent{XKB_KEY_dead_ogonek, u'˛'},        Accent{XKB_KEY_dead_iota, u'ͺ'},
    Accent{XKB_KEY_dead_voiced_sound, u'゛'}, Accent{XKB_KEY_dead_semivoiced_sound, u'゜'},
    Accent{XKB_KEY_dead_stroke, u'/'},        Accent{XKB_KEY_dead_greek, u'µ'},
    Accent{XKB_KEY_dead_currency, u'¤'},      Accent{XKB_KEY_dead_invertedbreve, u'\u0311'},
    Accent{XKB_KEY_dead_belowdot, u'\u0323'}, Accent{XKB_KEY_dead_hook, u'\u0309'},
    Accent{XKB_KEY_dead_horn, u'\u031b'},     Accent{XKB_KEY_dead_belowcomma, u'\u0326'},
};

bool isControl(quint32 codePoint)
{
    return codePoint < 0x20 || (codePoint >= 0x7f && codePoint < 0xa0);
}

// A keypad key whose symbol moves the cursor types its digit once Num Lock is on, which it is for most
// people.
bool isKeypadMotion(xkb_keysym_t symbol)
{
    return symbol >= XKB_KEY_KP_Home && symbol <= XKB_KEY_KP_Delete;
}

} // namespace

X11KeyboardLayout::X11KeyboardLayout() : connection(XcbConnection::open())
{
    if (!connection)
        return;
    if (connection->extension(xcb_xkb_id) == nullptr) {
        logLine(QStringLiteral("Norvane: no XKB extension; keys are named by their codes"));
        return;
    }
    keymap = XkbKeymap::load(*connection);
    followChanges();
    group = currentXkbGroup(*connection);
    connection->dispatch([this](const xcb_generic_event_t &event) { handle(event); });
}

X11KeyboardLayout::~X11KeyboardLayout() = default;

void X11KeyboardLayout::followChanges()
{
    constexpr uint16_t mapChanges = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr uint16_t mapParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS;
    xcb_xkb_select_events(connection->raw(), XCB_XKB_ID_USE_CORE_KBD, mapChanges, 0, mapChanges, mapParts,
                          mapParts, nullptr);
    xcb_xkb_select_events_details_t details{};
    details.affectState = XCB_XKB_STATE_PART_GROUP_STATE;
    details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
    xcb_xkb_select_events_aux(connection->raw(), XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0,
                              0, 0, 0, &details);
}

void X11KeyboardLayout::handle(const xcb_generic_event_t &event)
{
    const auto *xkb = connection->extension(xcb_xkb_id);
    if ((event.response_type & 0x7f) != xkb->first_event)
        return;
    switch (event.pad0) { // every XKB event has its own type here
    case XCB_XKB_NEW_KEYBOARD_NOTIFY:
    case XCB_XKB_MAP_NOTIFY:
        keymap.reset();
        group = currentXkbGroup(*connection);
        break;
    case XCB_XKB_STATE_NOTIFY:
        group = reinterpret_cast<const xcb_xkb_state_notify_event_t &>(event).group;
        break;
    default:
        break;
    }
}

xkb_keysym_t X11KeyboardLayout::typedSymbol(quint32 keyCode) const
{
    const quint32 evdev = evdevCode(keyCode);
    if (!connection || evdev == 0)
        return XKB_KEY_NoSymbol;
    if (!keymap)
        keymap = XkbKeymap::load(*connection);
    if (!keymap)
        return XKB_KEY_NoSymbol;
    const xkb_keysym_t symbol = keymap->symbol(evdev + serverOffset, group);
    if (!isKeypadMotion(symbol))
        return symbol;
    const xkb_keysym_t digit = keymap->symbol(evdev + serverOffset, group, 1);
    return digit == XKB_KEY_NoSymbol ? symbol : digit;
}

std::optional<QString> X11KeyboardLayout::layoutCharacter(quint32 keyCode) const
{
    const xkb_keysym_t symbol = typedSymbol(keyCode);
    const auto accent = std::find_if(accents.begin(), accents.end(),
                                     [symbol](const Accent &each) { return each.symbol == symbol; });
    if (accent != accents.end())
        return QString(QChar(accent->character));
    const char32_t codePoint = xkb_keysym_to_utf32(symbol);
    if (codePoint == 0 || isControl(codePoint))
        return std::nullopt;
    return QString::fromUcs4(&codePoint, 1);
}

std::optional<QString> X11KeyboardLayout::symbolName(quint32 keyCode) const
{
    const xkb_keysym_t symbol = typedSymbol(keyCode);
    std::array<char, 64> name{};
    if (symbol == XKB_KEY_NoSymbol || xkb_keysym_get_name(symbol, name.data(), name.size()) <= 0)
        return std::nullopt;
    return QString::fromLatin1(name.data());
}
