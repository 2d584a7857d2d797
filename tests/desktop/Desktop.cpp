#include "tests/desktop/Desktop.h"

#include <QList>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <poll.h>

namespace {

struct Free {
    void operator()(void *memory) const { std::free(memory); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

constexpr std::chrono::milliseconds lookAgain{10};
constexpr std::chrono::milliseconds byItself{300}; // a window manager activates what has just been opened

using Clock = std::chrono::steady_clock;

Owned<xcb_get_window_attributes_reply_t> attributesOf(xcb_connection_t *xcb, xcb_window_t window)
{
    return Owned<xcb_get_window_attributes_reply_t>(
        xcb_get_window_attributes_reply(xcb, xcb_get_window_attributes(xcb, window), nullptr));
}

} // namespace

Desktop::Desktop()
{
    int number = 0;
    xcb = xcb_connect(nullptr, &number);
    if (xcb_connection_has_error(xcb)) {
        std::fputs("There is no X server: run this through tests/support/private-desktop\n", stderr);
        std::exit(2);
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(xcb));
    while (number-- > 0)
        xcb_screen_next(&screens);
    shown = screens.data;
    const uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(xcb, shown->root, XCB_CW_EVENT_MASK, &events);
    xcb_flush(xcb);
}

Desktop::~Desktop()
{
    xcb_disconnect(xcb);
}

xcb_atom_t Desktop::atom(const QByteArray &name) const
{
    const auto cookie = xcb_intern_atom(xcb, 0, static_cast<uint16_t>(name.size()), name.constData());
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(xcb, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

bool Desktop::waitFor(const std::function<bool()> &condition, Milliseconds bound) const
{
    const auto end = Clock::now() + bound;
    for (;;) {
        drainEvents();
        if (condition())
            return true;
        if (Clock::now() >= end)
            return false;
        pollfd server{xcb_get_file_descriptor(xcb), POLLIN, 0};
        poll(&server, 1, static_cast<int>(lookAgain.count()));
    }
}

bool Desktop::staysFalse(const std::function<bool()> &condition, Milliseconds span) const
{
    return !waitFor(condition, span);
}

void Desktop::drainEvents() const
{
    while (Owned<xcb_generic_event_t> event{xcb_poll_for_event(xcb)}) {
    }
}

std::optional<xcb_window_t> Desktop::findWindow(const WindowMatch &match) const
{
    std::vector<xcb_window_t> found;
    collect(shown->root, match.depth, found);
    for (auto window = found.rbegin(); window != found.rend(); ++window)
        if (matches(*window, match))
            return *window;
    return std::nullopt;
}

std::optional<xcb_window_t> Desktop::awaitWindow(const WindowMatch &match, Milliseconds bound) const
{
    std::optional<xcb_window_t> window;
    waitFor([&] { return (window = findWindow(match)).has_value(); }, bound);
    return window;
}

void Desktop::collect(xcb_window_t parent, int depth, std::vector<xcb_window_t> &found) const
{
    const Owned<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(xcb, xcb_query_tree(xcb, parent), nullptr));
    if (!tree)
        return;
    const auto *children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        found.push_back(children[i]);
        if (depth > 1)
            collect(children[i], depth - 1, found);
    }
}

bool Desktop::matches(xcb_window_t window, const WindowMatch &match) const
{
    if (!match.className.isEmpty() && className(window) != match.className)
        return false;
    if (!match.title.isEmpty() && !title(window).contains(match.title))
        return false;
    const auto attributes = attributesOf(xcb, window);
    if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return false;
    if (match.overrideRedirect && *match.overrideRedirect != bool(attributes->override_redirect))
        return false;
    return match.minimumWidth == 0 || geometry(window).width() >= match.minimumWidth;
}

bool Desktop::activate(xcb_window_t window) const
{
    if (!hasWindowManager()) {
        xcb_set_input_focus(xcb, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
        return waitFor([&] { return hasKeyboard(window); });
    }
    const auto isActive = [&] { return activeWindow() == window && hasKeyboard(window); };
    // A new window becomes active by itself. Asking as well would make it so a second time, at any moment
    // later.
    if (waitFor(isActive, byItself))
        return true;
    askManager(window, "_NET_ACTIVE_WINDOW", {2});
    return waitFor(isActive);
}

void Desktop::askManager(xcb_window_t window, const QByteArray &type,
                         const std::array<uint32_t, 4> &data) const
{
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(type);
    std::copy(data.begin(), data.end(), message.data.data32);
    xcb_send_event(xcb, 0, shown->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&message));
    xcb_flush(xcb);
}

void Desktop::place(xcb_window_t window, QPoint where, QSize size) const
{
    const int32_t values[] = {where.x(), where.y(), size.width(), size.height()};
    const int both = XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y;
    const int all = both | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
    xcb_configure_window(xcb, window, static_cast<uint16_t>(size.isEmpty() ? both : all), values);
    xcb_flush(xcb);
}

bool Desktop::hasKeyboard(xcb_window_t window) const
{
    const Owned<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
    auto at = focus ? focus->focus : static_cast<xcb_window_t>(XCB_NONE);
    while (at > XCB_INPUT_FOCUS_POINTER_ROOT && at != shown->root) {
        if (at == window)
            return true;
        const Owned<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(xcb, xcb_query_tree(xcb, at), nullptr));
        if (!tree)
            return false;
        at = tree->parent;
    }
    return false;
}

bool Desktop::isViewable(xcb_window_t window) const
{
    const auto attributes = attributesOf(xcb, window);
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

QRect Desktop::geometry(xcb_window_t window) const
{
    const auto size = xcb_get_geometry(xcb, window);
    const auto origin = xcb_translate_coordinates(xcb, window, shown->root, 0, 0);
    const Owned<xcb_get_geometry_reply_t> sized(xcb_get_geometry_reply(xcb, size, nullptr));
    const Owned<xcb_translate_coordinates_reply_t> placed(
        xcb_translate_coordinates_reply(xcb, origin, nullptr));
    if (!sized || !placed)
        return {};
    return {placed->dst_x, placed->dst_y, sized->width, sized->height};
}

QByteArray Desktop::property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const
{
    const Owned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(xcb, xcb_get_property(xcb, 0, window, name, type, 0, 4096), nullptr));
    if (!reply)
        return {};
    return {static_cast<const char *>(xcb_get_property_value(reply.get())),
            xcb_get_property_value_length(reply.get())};
}

QString Desktop::title(xcb_window_t window) const
{
    const auto modern = property(window, atom("_NET_WM_NAME"), atom("UTF8_STRING"));
    if (!modern.isEmpty())
        return QString::fromUtf8(modern);
    return QString::fromLatin1(property(window, XCB_ATOM_WM_NAME, XCB_ATOM_ANY));
}

QString Desktop::className(xcb_window_t window) const
{
    const auto both = property(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING).split('\0');
    return both.size() > 1 ? QString::fromLatin1(both[1]) : QString();
}

bool Desktop::hasWindowManager() const
{
    return !property(shown->root, atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW).isEmpty();
}

xcb_window_t Desktop::activeWindow() const
{
    const auto bytes = property(shown->root, atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW);
    xcb_window_t window = XCB_NONE;
    if (bytes.size() >= int(sizeof window))
        memcpy(&window, bytes.constData(), sizeof window);
    return window;
}

xcb_window_t Desktop::selectionOwner(const QByteArray &selection) const
{
    const Owned<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(xcb, xcb_get_selection_owner(xcb, atom(selection)), nullptr));
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_NONE);
}

bool Desktop::awaitNewOwner(xcb_window_t before) const
{
    return waitFor([&] {
        const auto now = selectionOwner("CLIPBOARD");
        return now != XCB_NONE && now != before;
    });
}

void Desktop::paintBackground(quint32 rgb) const
{
    xcb_change_window_attributes(xcb, shown->root, XCB_CW_BACK_PIXEL, &rgb);
    xcb_clear_area(xcb, 0, shown->root, 0, 0, 0, 0);
    xcb_flush(xcb);
}
