#pragma once

#include "Platform/linux/x11/XcbConnection.h"

#include <QtGlobal>

#include <memory>
#include <optional>
#include <xkbcommon/xkbcommon.h>

// The server's keymap as it was when loaded. Groups are the layouts among which the user switches; one out of
// a key's range is brought into it as the server does. Key codes here are the server's.
class XkbKeymap {
public:
    // A handful of round trips, some milliseconds. Null without the XKB extension.
    [[nodiscard]] static std::unique_ptr<XkbKeymap> load(XcbConnection &connection);

    [[nodiscard]] quint32 groupCount() const;

    // The symbol of a key at a shift level of a group, no modifiers being level 0. XKB_KEY_NoSymbol if it has
    // none, or several at once.
    [[nodiscard]] xkb_keysym_t symbol(quint32 serverKeyCode, quint32 group, quint32 level = 0) const;

    // The lowest key that has the symbol at level 0 of the group.
    [[nodiscard]] std::optional<xcb_keycode_t> keyWith(xkb_keysym_t symbol, quint32 group) const;

private:
    struct Unref {
        void operator()(xkb_keymap *map) const { xkb_keymap_unref(map); }
        void operator()(xkb_context *map) const { xkb_context_unref(map); }
    };
    explicit XkbKeymap(xkb_keymap *loaded) : map(loaded) {}

    std::unique_ptr<xkb_keymap, Unref> map;
};

// The group in force on the core keyboard. One round trip; 0 without the extension.
[[nodiscard]] quint32 currentXkbGroup(XcbConnection &connection);
