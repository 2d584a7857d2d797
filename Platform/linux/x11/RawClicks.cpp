#include "Platform/linux/x11/RawClicks.h"

#include "Platform/Log.h"

#include <xcb/xinput.h>

namespace {

constexpr int deepestWindow = 64;
constexpr uint32_t firstWheelButton = 4, lastWheelButton = 7;

} // namespace

RawClicks::RawClicks() : connection(XcbConnection::open())
{
    if (!connection)
        return;
    const auto *data = connection->extension(xcb_input_id);
    const XcbReply<xcb_input_xi_query_version_reply_t> version(
        data == nullptr
            ? nullptr
            : xcb_input_xi_query_version_reply(connection->raw(),
                                               xcb_input_xi_query_version(connection->raw(), 2, 2), nullptr));
    if (!version || version->major_version < 2 ||
        (version->major_version == 2 && version->minor_version < 2)) {
        logLine(
            QStringLiteral("Norvane: no XInput 2.2; a click outside the panel is noticed by its focus only"));
        connection.reset();
        return;
    }
    extension = data->major_opcode;
    connection->dispatch([this](const xcb_generic_event_t &event) { handle(event); });
}

RawClicks::~RawClicks() = default;

void RawClicks::start()
{
    started = true;
    select(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS);
}

void RawClicks::stop()
{
    started = false;
    select(0);
}

void RawClicks::select(uint32_t events) const
{
    if (!connection)
        return;
    const struct {
        xcb_input_event_mask_t head;
        uint32_t mask;
    } selection = {{XCB_INPUT_DEVICE_ALL_MASTER, 1}, events};
    // Awaited: a click right behind this must not be missed.
    const XcbReply<xcb_generic_error_t> refused(xcb_request_check(
        connection->raw(),
        xcb_input_xi_select_events_checked(connection->raw(), connection->root(), 1, &selection.head)));
}

void RawClicks::handle(const xcb_generic_event_t &event) const
{
    if ((event.response_type & 0x7f) != XCB_GE_GENERIC)
        return;
    const auto &raw = reinterpret_cast<const xcb_input_raw_button_press_event_t &>(event);
    if (!started || raw.extension != extension || raw.event_type != XCB_INPUT_RAW_BUTTON_PRESS ||
        (raw.detail >= firstWheelButton && raw.detail <= lastWheelButton))
        return;
    if (onPress)
        onPress(windowsUnderPointer(), raw.time);
}

// A raw event says nothing of places, so the server is asked; it knows shapes and stacking better than we do.
std::vector<quint32> RawClicks::windowsUnderPointer() const
{
    std::vector<quint32> windows;
    xcb_window_t at = connection->root();
    for (int depth = 0; depth < deepestWindow && at != XCB_WINDOW_NONE; ++depth) {
        const XcbReply<xcb_query_pointer_reply_t> pointer(
            xcb_query_pointer_reply(connection->raw(), xcb_query_pointer(connection->raw(), at), nullptr));
        at = pointer ? pointer->child : xcb_window_t(XCB_WINDOW_NONE);
        if (at != XCB_WINDOW_NONE)
            windows.push_back(at);
    }
    return windows;
}
