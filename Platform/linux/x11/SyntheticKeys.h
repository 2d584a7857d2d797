#pragma once

#include "Platform/linux/x11/ModifierMap.h"
#include "Platform/linux/x11/PasteStroke.h"
#include "Platform/linux/x11/XkbKeymap.h"

#include <QTimer>
#include <optional>
#include <vector>

// Types key strokes through XTEST, whatever the user holds down and whatever layout is in force. Main thread;
// waits for the X server only.
class SyntheticKeys {
public:
    explicit SyntheticKeys(XcbConnection &server);
    ~SyntheticKeys();
    SyntheticKeys(const SyntheticKeys &) = delete;
    SyntheticKeys &operator=(const SyntheticKeys &) = delete;

    // The server has XTEST.
    [[nodiscard]] bool available() const { return usable; }

    // Types the stroke into what has the focus. Other modifiers that are down are let go and not pressed
    // again: the press would look to the program like one by the user. A symbol that no key of any group
    // types lies on a spare key for 100 ms.
    void type(const KeyStroke &stroke);

private:
    struct Place {
        xcb_keycode_t key = 0;
        std::optional<quint32> group; // to be locked for the stroke
    };

    [[nodiscard]] std::optional<Place> place(xkb_keysym_t symbol, const XkbKeymap *keymap);
    [[nodiscard]] std::optional<xcb_keycode_t> borrowSpareKey(xkb_keysym_t symbol);
    void giveSpareKeyBack();
    [[nodiscard]] std::vector<xcb_keycode_t> otherModifiersDown(const KeyStroke &stroke) const;
    void sendStroke(const Place &where, const KeyStroke &stroke, const XkbKeymap *keymap);
    void fake(uint8_t type, xcb_keycode_t key);
    void lockGroup(quint32 group);

    XcbConnection &connection;
    bool usable = false;
    std::optional<xcb_keycode_t> spareKey;
    QTimer spareKeyBack;
};
