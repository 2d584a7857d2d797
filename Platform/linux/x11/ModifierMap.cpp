#include "Platform/linux/x11/ModifierMap.h"

#include "Platform/KeyCodes.h"

#include <array>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace {

constexpr int modifierCount = 8;

std::vector<std::vector<xcb_keycode_t>> readModifierKeys(xcb_connection_t *connection)
{
    std::vector<std::vector<xcb_keycode_t>> keys(modifierCount);
    const XcbReply<xcb_get_modifier_mapping_reply_t> reply(
        xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr));
    if (!reply)
        return keys;
    const xcb_keycode_t *codes = xcb_get_modifier_mapping_keycodes(reply.get());
    const int perModifier = reply->keycodes_per_modifier;
    for (int i = 0; i < modifierCount * perModifier; ++i) {
        if (codes[i] != 0)
            keys[static_cast<size_t>(i / perModifier)].push_back(codes[i]);
    }
    return keys;
}

// The modifier that one of these symbols' keys sets.
quint16 modifierOf(const ModifierMap &map, const std::array<xcb_keysym_t, 2> &wanted,
                   const xcb_keysym_t *symbols, int perKey, xcb_keycode_t firstKey)
{
    for (size_t modifier = 0; modifier < map.keys.size(); ++modifier) {
        for (const xcb_keycode_t key : map.keys[modifier]) {
            const xcb_keysym_t *first = symbols + static_cast<ptrdiff_t>(key - firstKey) * perKey;
            for (int i = 0; i < perKey; ++i) {
                if (first[i] == wanted[0] || first[i] == wanted[1])
                    return static_cast<quint16>(1U << modifier);
            }
        }
    }
    return 0;
}

} // namespace

ModifierMap readModifierMap(xcb_connection_t *connection)
{
    ModifierMap map;
    map.keys = readModifierKeys(connection);
    const xcb_keycode_t firstKey = xcb_get_setup(connection)->min_keycode;
    const int keyCount = xcb_get_setup(connection)->max_keycode - firstKey + 1;
    const XcbReply<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
        connection, xcb_get_keyboard_mapping(connection, firstKey, static_cast<uint8_t>(keyCount)), nullptr));
    if (!mapping)
        return map;
    const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    const int perKey = mapping->keysyms_per_keycode;
    if (perKey == 0 || xcb_get_keyboard_mapping_keysyms_length(mapping.get()) < keyCount * perKey)
        return map;
    map.alt = modifierOf(map, {XKB_KEY_Alt_L, XKB_KEY_Alt_R}, symbols, perKey, firstKey);
    map.super = modifierOf(map, {XKB_KEY_Super_L, XKB_KEY_Super_R}, symbols, perKey, firstKey);
    map.numLock = modifierOf(map, {XKB_KEY_Num_Lock, XKB_KEY_Num_Lock}, symbols, perKey, firstKey);
    return map;
}

std::optional<quint16> ModifierMap::mask(quint64 modifiers) const
{
    quint16 mask = 0;
    if ((modifiers & ModifierFlag::shift) != 0)
        mask |= XCB_MOD_MASK_SHIFT;
    if ((modifiers & ModifierFlag::command) != 0)
        mask |= XCB_MOD_MASK_CONTROL;
    if ((modifiers & ModifierFlag::option) != 0) {
        if (alt == 0)
            return std::nullopt;
        mask |= alt;
    }
    if ((modifiers & ModifierFlag::control) != 0) {
        if (super == 0)
            return std::nullopt;
        mask |= super;
    }
    return mask;
}
