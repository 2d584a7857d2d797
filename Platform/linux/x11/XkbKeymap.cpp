#include "Platform/linux/x11/XkbKeymap.h"

#include "Platform/linux/x11/XcbXkb.h"

#include <xkbcommon/xkbcommon-x11.h>

std::unique_ptr<XkbKeymap> XkbKeymap::load(XcbConnection &connection)
{
    if (xkb_x11_setup_xkb_extension(connection.raw(), XKB_X11_MIN_MAJOR_XKB_VERSION,
                                    XKB_X11_MIN_MINOR_XKB_VERSION, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
                                    nullptr, nullptr, nullptr, nullptr) == 0)
        return nullptr;
    const std::unique_ptr<xkb_context, Unref> context(xkb_context_new(
        static_cast<xkb_context_flags>(XKB_CONTEXT_NO_DEFAULT_INCLUDES | XKB_CONTEXT_NO_ENVIRONMENT_NAMES)));
    const int32_t device = xkb_x11_get_core_keyboard_device_id(connection.raw());
    if (!context || device < 0)
        return nullptr;
    xkb_keymap *loaded =
        xkb_x11_keymap_new_from_device(context.get(), connection.raw(), device, XKB_KEYMAP_COMPILE_NO_FLAGS);
    return loaded == nullptr ? nullptr : std::unique_ptr<XkbKeymap>(new XkbKeymap(loaded));
}

quint32 XkbKeymap::groupCount() const
{
    return xkb_keymap_num_layouts(map.get());
}

xkb_keysym_t XkbKeymap::symbol(quint32 serverKeyCode, quint32 group, quint32 level) const
{
    const xkb_keysym_t *symbols = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(map.get(), serverKeyCode, group, level, &symbols);
    return count == 1 ? symbols[0] : static_cast<xkb_keysym_t>(XKB_KEY_NoSymbol);
}

std::optional<xcb_keycode_t> XkbKeymap::keyWith(xkb_keysym_t wanted, quint32 group) const
{
    const xkb_keycode_t last = std::min<xkb_keycode_t>(xkb_keymap_max_keycode(map.get()), 255);
    for (xkb_keycode_t code = xkb_keymap_min_keycode(map.get()); code <= last; ++code) {
        if (symbol(code, group) == wanted)
            return static_cast<xcb_keycode_t>(code);
    }
    return std::nullopt;
}

quint32 currentXkbGroup(XcbConnection &connection)
{
    if (connection.extension(xcb_xkb_id) == nullptr)
        return 0;
    const XcbReply<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(
        connection.raw(), xcb_xkb_get_state(connection.raw(), XCB_XKB_ID_USE_CORE_KBD), nullptr));
    return state ? state->group : 0;
}
