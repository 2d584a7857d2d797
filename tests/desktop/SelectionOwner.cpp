#include "tests/desktop/SelectionOwner.h"

#include <cstdlib>
#include <memory>
#include <sys/socket.h>

SelectionOwner::~SelectionOwner()
{
    ::shutdown(xcb_get_file_descriptor(xcb), SHUT_RDWR); // which ends the thread's wait
    if (thread.joinable())
        thread.join();
}

xcb_window_t SelectionOwner::makeWindow(QSize size) const
{
    const auto made = xcb_generate_id(xcb);
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, made, server.screen().root, 300, 200,
                      static_cast<uint16_t>(size.width()), static_cast<uint16_t>(size.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, server.screen().root_visual, XCB_CW_BACK_PIXEL,
                      &server.screen().white_pixel);
    return made;
}

void SelectionOwner::showWindow(const QByteArray &instance, const QByteArray &className,
                                const QByteArray &title)
{
    const auto shown = makeWindow({320, 120});
    const auto set = [&](xcb_atom_t property, const QByteArray &bytes) {
        xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, shown, property, XCB_ATOM_STRING, 8,
                            static_cast<uint32_t>(bytes.size()), bytes.constData());
    };
    set(XCB_ATOM_WM_CLASS, instance + '\0' + className + '\0');
    set(XCB_ATOM_WM_NAME, title);
    xcb_map_window(xcb, shown);
    xcb_flush(xcb);
}

bool SelectionOwner::claim()
{
    xcb_set_selection_owner(xcb, window, server.atom("CLIPBOARD"), XCB_CURRENT_TIME);
    const bool taken = server.selectionOwner("CLIPBOARD") == window;
    thread = std::thread([this] { serve(); });
    return taken;
}

QByteArrayList SelectionOwner::requested() const
{
    const std::lock_guard lock(mutex);
    return asked;
}

void SelectionOwner::serve()
{
    while (auto *event = xcb_wait_for_event(xcb)) {
        const auto type = event->response_type & 0x7f;
        if (type == XCB_SELECTION_REQUEST)
            answer(*reinterpret_cast<xcb_selection_request_event_t *>(event));
        else if (type == XCB_SELECTION_CLEAR)
            over = true;
        std::free(event);
    }
}

void SelectionOwner::answer(const xcb_selection_request_event_t &request)
{
    const auto target = nameOf(request.target);
    {
        const std::lock_guard lock(mutex);
        asked.push_back(target);
    }
    const auto property = request.property == XCB_ATOM_NONE ? request.target : request.property;
    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = fill(request, property, target) ? property : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    xcb_send_event(xcb, 0, request.requestor, 0, reinterpret_cast<const char *>(&notice));
    xcb_flush(xcb);
}

bool SelectionOwner::fill(const xcb_selection_request_event_t &request, xcb_atom_t property,
                          const QByteArray &target)
{
    std::vector<xcb_atom_t> offered{request.target}; // TARGETS, where that is asked for
    for (const auto &[type, bytes] : content) {
        offered.push_back(server.atom(type));
        if (type == target) {
            xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, request.requestor, property, request.target, 8,
                                static_cast<uint32_t>(bytes.size()), bytes.constData());
            return true;
        }
    }
    if (target == "TARGETS")
        xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, request.requestor, property, XCB_ATOM_ATOM, 32,
                            static_cast<uint32_t>(offered.size()), offered.data());
    return target == "TARGETS";
}

QByteArray SelectionOwner::nameOf(xcb_atom_t atom) const
{
    const std::unique_ptr<xcb_get_atom_name_reply_t, void (*)(void *)> reply(
        xcb_get_atom_name_reply(xcb, xcb_get_atom_name(xcb, atom), nullptr), std::free);
    return reply ? QByteArray(xcb_get_atom_name_name(reply.get()), xcb_get_atom_name_name_length(reply.get()))
                 : QByteArray();
}
