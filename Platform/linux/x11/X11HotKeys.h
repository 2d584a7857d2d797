#pragma once

#include "Platform/HotKeys.h"

#include <memory>
#include <optional>

class KeyGrab;

// The hot key as a passive key grab on the root window, on a connection and a thread of its own.
//
// The grab holds the keyboard still from the press on, so that keys typed right behind it wait for the panel;
// the thread lets it go after 250 ms whatever the main thread does.
class X11HotKeys : public HotKeys {
public:
    // Never null; without an X server every registration is refused.
    [[nodiscard]] static std::unique_ptr<X11HotKeys> create();
    ~X11HotKeys() override;

    int registerHotKey(quint32 keyCode, quint64 modifiers) override;
    void unregisterHotKey() override;

    // The server time of a press that still holds the keyboard or that nobody has answered yet.
    [[nodiscard]] std::optional<quint32> lastPressTime() const;

    // Answers the last press: held-back keys go on to what has the focus now. Harmless at any time.
    void releaseKeyboard();

    // As releaseKeyboard, and ends the grab of a hot key that is still held down, so that another client can
    // grab the keyboard when this returns. Who does gets the hot key's events too.
    void endGrab();

    // Whether a key of the server with its modifier state is the registered hot key; and then onPress is set.
    [[nodiscard]] bool isHotKey(quint32 serverKeyCode, quint32 state) const;

private:
    class Receiver;
    X11HotKeys();

    std::unique_ptr<Receiver> receiver;
    std::unique_ptr<KeyGrab> grab; // null without an X server
    bool registered = false;
};
