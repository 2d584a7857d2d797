#pragma once

#include "Platform/linux/x11/ModifierMap.h"
#include "Platform/linux/x11/XcbConnection.h"

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

// A passive grab of one key on the root window, and the thread that answers its events. Its operations may be
// called from any thread; they wait for the X server only.
//
// The grab is synchronous for the keyboard: from the press on, the server keeps all keys back until release()
// or for 250 ms at most. After that it is asked for one event at a time, so that the first other key typed
// while the hot key is still held can be given back to the program that has the focus, and the grab ends.
class KeyGrab {
public:
    // `pressed` runs on the grab's thread, once a press.
    KeyGrab(std::unique_ptr<XcbConnection> server, std::function<void()> pressed);
    ~KeyGrab();
    KeyGrab(const KeyGrab &) = delete;
    KeyGrab &operator=(const KeyGrab &) = delete;

    // Grabs the key with exactly these modifiers (Platform/KeyCodes.h) and any state of Caps Lock and Num
    // Lock, instead of the key grabbed before. 0, or the X error code, or -1 when the keyboard has no such
    // key.
    [[nodiscard]] int take(quint32 serverKeyCode, quint64 modifiers);
    void drop();

    // The server time of a press since the last release(), end() or drop().
    [[nodiscard]] std::optional<quint32> unansweredPress() const;

    // Lets held-back keys go on to what has the focus.
    void release();

    // Ends the grab of a key that is still down, and lets held-back keys go. Then its release may go to
    // somebody else.
    void end();

    // Whether this key of the server, with this state of the modifiers, is the grabbed one.
    [[nodiscard]] bool isOn(quint32 serverKeyCode, quint32 state) const;

private:
    using Clock = std::chrono::steady_clock;
    struct Key {
        xcb_keycode_t code = 0;
        quint64 modifiers = 0;
    };

    void run();
    void handleEvents();
    void handle(const xcb_generic_event_t &event);
    void handlePress(const xcb_key_press_event_t &press);
    void handleRelease(const xcb_key_release_event_t &released);
    void handleDeadlines();
    [[nodiscard]] int pollTimeout() const;
    [[nodiscard]] int grabVariants(const Key &wanted);
    void ungrabVariants();
    void grabAgain();
    void awaitServer() const;
    void allow(uint8_t mode);
    [[nodiscard]] bool isDown() const;
    void wake() const;
    void selectKeyboardChanges();
    [[nodiscard]] bool isModifier(xcb_keycode_t code) const;

    const std::unique_ptr<XcbConnection> connection;
    const std::function<void()> onPressed;
    const int wakeUp; // eventfd
    uint8_t xkbFirstEvent = 0;

    mutable std::mutex mutex; // guards all below
    std::optional<Key> key;
    ModifierMap modifierMap;
    std::vector<quint16> grabbedMasks;
    std::optional<Clock::time_point> letGoAt; // the keyboard is held back until then
    std::optional<Clock::time_point> rereadMapAt;
    std::optional<Clock::time_point> lookForReleaseAt; // that somebody else may get
    std::optional<quint32> pressTime;
    quint32 releaseTime = 0;
    bool held = false;
    bool stopping = false;

    std::thread thread;
};
