#pragma once

#include "Platform/linux/x11/XcbConnection.h"

#include <QtGlobal>
#include <functional>
#include <memory>
#include <vector>

// Presses of pointer buttons anywhere on the screen, without taking them from whom they are for (XInput 2.2
// raw events, which arrive while somebody grabs the pointer too). Silent where the server has no XInput 2.2.
// Main thread.
class RawClicks {
public:
    RawClicks();
    ~RawClicks();

    void start();
    void stop();

    // The window under the pointer and its ancestors, outermost first, and the server's time of the press.
    // The wheel is no press.
    std::function<void(const std::vector<quint32> &windows, quint32 time)> onPress;

private:
    void select(uint32_t events) const;
    void handle(const xcb_generic_event_t &event) const;
    [[nodiscard]] std::vector<quint32> windowsUnderPointer() const;

    std::unique_ptr<XcbConnection> connection; // null without XInput 2.2
    uint8_t extension = 0;
    bool started = false;
};
