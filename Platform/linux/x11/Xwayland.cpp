#include "Platform/linux/x11/Xwayland.h"

#include "Platform/linux/x11/XcbConnection.h"

#include <string_view>
#include <xcb/randr.h>

namespace {

// Since 2023 the server says it by an extension.
bool hasExtension(xcb_connection_t *connection)
{
    constexpr std::string_view name = "XWAYLAND";
    const XcbReply<xcb_query_extension_reply_t> answer(xcb_query_extension_reply(
        connection, xcb_query_extension(connection, name.size(), name.data()), nullptr));
    return answer && answer->present != 0;
}

bool isOutputOfXwayland(xcb_connection_t *connection, xcb_randr_output_t output, xcb_timestamp_t time)
{
    const XcbReply<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
        connection, xcb_randr_get_output_info(connection, output, time), nullptr));
    if (!info)
        return false;
    const std::string_view name(reinterpret_cast<const char *>(xcb_randr_get_output_info_name(info.get())),
                                static_cast<size_t>(xcb_randr_get_output_info_name_length(info.get())));
    return name.substr(0, 8) == "XWAYLAND";
}

} // namespace

bool isXwayland(xcb_connection_t *connection, xcb_window_t root)
{
    if (hasExtension(connection))
        return true;
    const xcb_query_extension_reply_t *randr = xcb_get_extension_data(connection, &xcb_randr_id);
    if (randr == nullptr || randr->present == 0)
        return false;
    // Older ones name their screens so.
    const XcbReply<xcb_randr_get_screen_resources_current_reply_t> screens(
        xcb_randr_get_screen_resources_current_reply(
            connection, xcb_randr_get_screen_resources_current(connection, root), nullptr));
    if (!screens)
        return false;
    const auto *outputs = xcb_randr_get_screen_resources_current_outputs(screens.get());
    for (uint16_t i = 0; i < screens->num_outputs; ++i) {
        if (isOutputOfXwayland(connection, outputs[i], screens->config_timestamp))
            return true;
    }
    return false;
}
