#include "tests/desktop/SelectionOwner.h"

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <thread>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>

namespace {

struct Free {
    void operator()(void *memory) const { std::free(memory); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

} // namespace

struct SelectionOwner::State {
    explicit State(Content offered);
    ~State();

    xcb_atom_t atom(const QByteArray &name);
    QByteArray name(xcb_atom_t atom);
    xcb_window_t makeWindow(uint16_t width, uint16_t height);
    xcb_timestamp_t serverTime();
    void serve();
    void answer(const xcb_selection_request_event_t &request);
    bool fill(const xcb_selection_request_event_t &request, xcb_atom_t property, const QByteArray &target);

    Content content;
    xcb_connection_t *xcb = nullptr;
    xcb_screen_t *screen = nullptr;
    xcb_window_t window = XCB_NONE;
    xcb_atom_t clipboard = XCB_NONE;
    int wake = eventfd(0, EFD_CLOEXEC);
    std::atomic<bool> over = false;
    std::mutex mutex;
    QList<QByteArray> asked;
    std::thread thread;
};

SelectionOwner::State::State(Content offered) : content(std::move(offered))
{
    xcb = xcb_connect(nullptr, nullptr);
    screen = xcb_setup_roots_iterator(xcb_get_setup(xcb)).data;
    clipboard = atom("CLIPBOARD");
    window = makeWindow(1, 1);
}

SelectionOwner::State::~State()
{
    const uint64_t one = 1;
    if (thread.joinable() && write(wake, &one, sizeof one) == sizeof one)
        thread.join();
    close(wake);
    xcb_disconnect(xcb);
}

xcb_atom_t SelectionOwner::State::atom(const QByteArray &text)
{
    const auto cookie = xcb_intern_atom(xcb, 0, static_cast<uint16_t>(text.size()), text.constData());
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(xcb, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

QByteArray SelectionOwner::State::name(xcb_atom_t known)
{
    const Owned<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(xcb, xcb_get_atom_name(xcb, known), nullptr));
    return reply ? QByteArray(xcb_get_atom_name_name(reply.get()), xcb_get_atom_name_name_length(reply.get()))
                 : QByteArray();
}

xcb_window_t SelectionOwner::State::makeWindow(uint16_t width, uint16_t height)
{
    const auto made = xcb_generate_id(xcb);
    const uint32_t values[] = {screen->white_pixel, XCB_EVENT_MASK_PROPERTY_CHANGE};
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, made, screen->root, 300, 200, width, height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    return made;
}

// The time of a property change of ours: claims need the server's clock. Before the thread runs only.
xcb_timestamp_t SelectionOwner::State::serverTime()
{
    xcb_change_property(xcb, XCB_PROP_MODE_APPEND, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(xcb);
    while (Owned<xcb_generic_event_t> event{xcb_wait_for_event(xcb)})
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY)
            return reinterpret_cast<xcb_property_notify_event_t *>(event.get())->time;
    return XCB_CURRENT_TIME;
}

void SelectionOwner::State::serve()
{
    for (;;) {
        while (Owned<xcb_generic_event_t> event{xcb_poll_for_event(xcb)}) {
            const auto type = event->response_type & 0x7f;
            if (type == XCB_SELECTION_REQUEST)
                answer(*reinterpret_cast<xcb_selection_request_event_t *>(event.get()));
            else if (type == XCB_SELECTION_CLEAR)
                over = true;
        }
        pollfd sources[] = {{xcb_get_file_descriptor(xcb), POLLIN, 0}, {wake, POLLIN, 0}};
        if (poll(sources, 2, -1) < 0 || sources[1].revents || xcb_connection_has_error(xcb))
            return;
    }
}

void SelectionOwner::State::answer(const xcb_selection_request_event_t &request)
{
    const auto target = name(request.target);
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

bool SelectionOwner::State::fill(const xcb_selection_request_event_t &request, xcb_atom_t property,
                                 const QByteArray &target)
{
    if (target == "TARGETS") {
        std::vector<xcb_atom_t> offered{request.target};
        for (const auto &[type, bytes] : content)
            offered.push_back(atom(type));
        xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, request.requestor, property, XCB_ATOM_ATOM, 32,
                            static_cast<uint32_t>(offered.size()), offered.data());
        return true;
    }
    for (const auto &[type, bytes] : content) {
        if (type != target)
            continue;
        xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, request.requestor, property, request.target, 8,
                            static_cast<uint32_t>(bytes.size()), bytes.constData());
        return true;
    }
    return false;
}

SelectionOwner::SelectionOwner(Content content) : state(std::make_unique<State>(std::move(content))) {}

SelectionOwner::~SelectionOwner() = default;

void SelectionOwner::showWindow(const QByteArray &instance, const QByteArray &className,
                                const QByteArray &title)
{
    const auto shown = state->makeWindow(320, 120);
    const QByteArray both = instance + '\0' + className + '\0';
    const auto set = [&](xcb_atom_t property, const QByteArray &bytes) {
        xcb_change_property(state->xcb, XCB_PROP_MODE_REPLACE, shown, property, XCB_ATOM_STRING, 8,
                            static_cast<uint32_t>(bytes.size()), bytes.constData());
    };
    set(XCB_ATOM_WM_CLASS, both);
    set(XCB_ATOM_WM_NAME, title);
    xcb_map_window(state->xcb, shown);
    xcb_flush(state->xcb);
}

bool SelectionOwner::claim()
{
    xcb_set_selection_owner(state->xcb, state->window, state->clipboard, state->serverTime());
    const Owned<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        state->xcb, xcb_get_selection_owner(state->xcb, state->clipboard), nullptr));
    state->thread = std::thread([this] { state->serve(); });
    return reply && reply->owner == state->window;
}

QList<QByteArray> SelectionOwner::requested() const
{
    const std::lock_guard lock(state->mutex);
    return state->asked;
}

bool SelectionOwner::lost() const
{
    return state->over;
}
