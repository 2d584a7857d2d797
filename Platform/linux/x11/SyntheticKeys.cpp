#include "Platform/linux/x11/SyntheticKeys.h"

#include "Platform/Log.h"
#include "Platform/linux/x11/XcbXkb.h"

#include <algorithm>
#include <array>
#include <xcb/xtest.h>

namespace {

// Where a PC keyboard has these keys, for a server that does not tell.
constexpr xcb_keycode_t usualControl = 37, usualShift = 50, usualV = 55, usualInsert = 118, usualY = 29;
constexpr int spareKeyLoan = 100; // milliseconds

xcb_keycode_t usualKey(xkb_keysym_t symbol)
{
    return symbol == XKB_KEY_Insert ? usualInsert : symbol == XKB_KEY_y ? usualY : usualV;
}

xcb_keycode_t modifierKey(const XkbKeymap *keymap, xkb_keysym_t symbol, xcb_keycode_t usual)
{
    return keymap == nullptr ? usual : keymap->keyWith(symbol, 0).value_or(usual);
}

} // namespace

SyntheticKeys::SyntheticKeys(XcbConnection &server) : connection(server)
{
    usable = connection.extension(xcb_test_id) != nullptr;
    if (!usable)
        logLine(QStringLiteral("Norvane: no XTEST extension; nothing can be typed for the user"));
    spareKeyBack.setSingleShot(true);
    QObject::connect(&spareKeyBack, &QTimer::timeout, &spareKeyBack, [this] { giveSpareKeyBack(); });
}

SyntheticKeys::~SyntheticKeys()
{
    giveSpareKeyBack();
}

void SyntheticKeys::type(const KeyStroke &stroke)
{
    if (!usable)
        return;
    const auto keymap = XkbKeymap::load(connection);
    const std::optional<Place> where = place(stroke.symbol, keymap.get());
    if (!where) {
        logLine(QStringLiteral("Norvane: no key types the paste letter, and none is spare"));
        return;
    }
    sendStroke(*where, stroke, keymap.get());
    connection.flush();
}

std::optional<SyntheticKeys::Place> SyntheticKeys::place(xkb_keysym_t symbol, const XkbKeymap *keymap)
{
    if (keymap == nullptr)
        return Place{usualKey(symbol), std::nullopt};
    const quint32 current = currentXkbGroup(connection);
    if (const auto key = keymap->keyWith(symbol, current)) {
        if (key == spareKey)
            spareKeyBack.start(spareKeyLoan); // a loan that is still running must outlast this stroke too
        return Place{*key, std::nullopt};
    }
    for (quint32 group = 0; group < keymap->groupCount(); ++group) {
        if (const auto key = keymap->keyWith(symbol, group))
            return Place{*key, group};
    }
    if (const auto key = borrowSpareKey(symbol))
        return Place{*key, std::nullopt};
    return std::nullopt;
}

std::optional<xcb_keycode_t> SyntheticKeys::borrowSpareKey(xkb_keysym_t symbol)
{
    giveSpareKeyBack();
    const int first = connection.setup().min_keycode;
    const int count = connection.setup().max_keycode - first + 1;
    const XcbReply<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        connection.raw(),
        xcb_get_keyboard_mapping(connection.raw(), static_cast<xcb_keycode_t>(first),
                                 static_cast<uint8_t>(count)),
        nullptr));
    if (!mapping ||
        xcb_get_keyboard_mapping_keysyms_length(mapping.get()) < count * mapping->keysyms_per_keycode)
        return std::nullopt;
    const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    const int perKey = mapping->keysyms_per_keycode;
    for (int i = count - 1; i >= 0; --i) {
        const xcb_keysym_t *own = symbols + static_cast<ptrdiff_t>(i) * perKey;
        if (std::any_of(own, own + perKey, [](xcb_keysym_t each) { return each != XKB_KEY_NoSymbol; }))
            continue;
        spareKey = static_cast<xcb_keycode_t>(first + i);
        const std::array<xcb_keysym_t, 2> lent = {symbol, xkb_keysym_to_upper(symbol)};
        xcb_change_keyboard_mapping(connection.raw(), 1, *spareKey, lent.size(), lent.data());
        spareKeyBack.start(spareKeyLoan);
        return spareKey;
    }
    return std::nullopt;
}

void SyntheticKeys::giveSpareKeyBack()
{
    if (!spareKey)
        return;
    const std::array<xcb_keysym_t, 2> nothing = {XKB_KEY_NoSymbol, XKB_KEY_NoSymbol};
    xcb_change_keyboard_mapping(connection.raw(), 1, *spareKey, nothing.size(), nothing.data());
    connection.flush();
    spareKey.reset();
    spareKeyBack.stop();
}

// All that has to be known is asked first, so that the stroke reaches the server in one piece: others move
// modifiers too, a compositor whenever it moves the focus.
void SyntheticKeys::sendStroke(const Place &where, const KeyStroke &stroke, const XkbKeymap *keymap)
{
    const xcb_keycode_t control = modifierKey(keymap, XKB_KEY_Control_L, usualControl);
    const xcb_keycode_t shift = modifierKey(keymap, XKB_KEY_Shift_L, usualShift);
    const std::vector<xcb_keycode_t> inTheWay = otherModifiersDown(stroke);
    XcbReply<xcb_xkb_get_state_reply_t> before;
    if (where.group)
        before.reset(xcb_xkb_get_state_reply(
            connection.raw(), xcb_xkb_get_state(connection.raw(), XCB_XKB_ID_USE_CORE_KBD), nullptr));

    // The stroke's own modifiers go down before the user's go up: a lone Alt tap would open a menu.
    if (stroke.control)
        fake(XCB_KEY_PRESS, control);
    if (stroke.shift)
        fake(XCB_KEY_PRESS, shift);
    for (const xcb_keycode_t key : inTheWay)
        fake(XCB_KEY_RELEASE, key);
    if (where.group) {
        const int others = before ? before->baseGroup + before->latchedGroup : 0;
        const int groups = std::max<int>(static_cast<int>(keymap->groupCount()), 1);
        lockGroup(
            static_cast<quint32>(((static_cast<int>(*where.group) - others) % groups + groups) % groups));
    }
    fake(XCB_KEY_PRESS, where.key);
    fake(XCB_KEY_RELEASE, where.key);
    if (stroke.shift)
        fake(XCB_KEY_RELEASE, shift);
    if (stroke.control)
        fake(XCB_KEY_RELEASE, control);
    if (before)
        lockGroup(before->lockedGroup);
}

// Modifier keys that are down and do not belong to the stroke.
std::vector<xcb_keycode_t> SyntheticKeys::otherModifiersDown(const KeyStroke &stroke) const
{
    std::vector<xcb_keycode_t> found;
    const ModifierMap map = readModifierMap(connection.raw());
    const XcbReply<xcb_query_keymap_reply_t> down(
        xcb_query_keymap_reply(connection.raw(), xcb_query_keymap(connection.raw()), nullptr));
    if (!down)
        return found;
    for (size_t modifier = 0; modifier < map.keys.size(); ++modifier) {
        const unsigned bit = 1U << modifier;
        const bool wanted =
            (bit == XCB_MOD_MASK_SHIFT && stroke.shift) || (bit == XCB_MOD_MASK_CONTROL && stroke.control);
        if (wanted || bit == XCB_MOD_MASK_LOCK || bit == map.numLock)
            continue;
        for (const xcb_keycode_t key : map.keys[modifier]) {
            if ((down->keys[key / 8] >> (key % 8) & 1) != 0)
                found.push_back(key);
        }
    }
    return found;
}

void SyntheticKeys::fake(uint8_t type, xcb_keycode_t key)
{
    xcb_test_fake_input(connection.raw(), type, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

void SyntheticKeys::lockGroup(quint32 group)
{
    xcb_xkb_latch_lock_state(connection.raw(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, static_cast<uint8_t>(group),
                             0, 0, 0);
}
