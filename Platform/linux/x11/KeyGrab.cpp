#include "Platform/linux/x11/KeyGrab.h"

#include "Platform/Log.h"
#include "Platform/linux/x11/XcbXkb.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds longestHold(250);
constexpr std::chrono::milliseconds nextTry(1000);
constexpr std::chrono::milliseconds nextLook(20);    // shorter than a finger needs to press again
constexpr std::chrono::milliseconds mapSettles(200); // one layout change comes as several events

} // namespace

KeyGrab::KeyGrab(std::unique_ptr<XcbConnection> server, std::function<void()> pressed)
    : connection(std::move(server)), onPressed(std::move(pressed)),
      wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    selectKeyboardChanges();
    modifierMap = readModifierMap(connection->raw());
    thread = std::thread([this] { run(); });
}

KeyGrab::~KeyGrab()
{
    {
        const std::lock_guard lock(mutex);
        stopping = true;
    }
    wake();
    thread.join();
    close(wakeUp);
}

void KeyGrab::selectKeyboardChanges()
{
    const auto *xkb = connection->extension(xcb_xkb_id);
    const XcbReply<xcb_xkb_use_extension_reply_t> usable(
        xkb == nullptr ? nullptr
                       : xcb_xkb_use_extension_reply(
                             connection->raw(), xcb_xkb_use_extension(connection->raw(), 1, 0), nullptr));
    if (!usable || usable->supported == 0) {
        logLine(QStringLiteral("Norvane: no XKB extension; auto-repeat is told by its times"));
        return;
    }
    xkbFirstEvent = xkb->first_event;
    constexpr uint32_t detectable = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    xcb_discard_reply(connection->raw(), xcb_xkb_per_client_flags(connection->raw(), XCB_XKB_ID_USE_CORE_KBD,
                                                                  detectable, detectable, 0, 0, 0)
                                             .sequence);
    constexpr uint16_t events = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr uint16_t parts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    xcb_xkb_select_events(connection->raw(), XCB_XKB_ID_USE_CORE_KBD, events, 0, events, parts, parts,
                          nullptr);
    connection->flush();
}

int KeyGrab::take(quint32 serverKeyCode, quint64 modifiers)
{
    const auto &setup = connection->setup();
    const std::lock_guard lock(mutex);
    ungrabVariants();
    key.reset();
    if (serverKeyCode < setup.min_keycode || serverKeyCode > setup.max_keycode)
        return -1;
    const Key wanted{static_cast<xcb_keycode_t>(serverKeyCode), modifiers};
    modifierMap = readModifierMap(connection->raw());
    const int error = grabVariants(wanted);
    if (error == 0)
        key = wanted;
    wake(); // events that came with the replies lie in xcb's queue now
    return error;
}

void KeyGrab::drop()
{
    const std::lock_guard lock(mutex);
    ungrabVariants();
    key.reset();
    pressTime.reset();
    awaitServer();
    wake();
}

// Grabs all variants or none. With the mutex held.
int KeyGrab::grabVariants(const Key &wanted)
{
    const std::optional<quint16> mask = modifierMap.mask(wanted.modifiers);
    if (!mask)
        return -1;
    std::vector<quint16> masks;
    constexpr quint16 capsLock = XCB_MOD_MASK_LOCK;
    const auto bothLocks = static_cast<quint16>(capsLock | modifierMap.numLock);
    for (const quint16 locks : {quint16(0), capsLock, modifierMap.numLock, bothLocks}) {
        const auto variant = static_cast<quint16>(*mask | locks);
        if (std::find(masks.begin(), masks.end(), variant) == masks.end())
            masks.push_back(variant);
    }
    std::vector<xcb_void_cookie_t> cookies;
    cookies.reserve(masks.size());
    for (const quint16 variant : masks) {
        cookies.push_back(xcb_grab_key_checked(connection->raw(), 0, connection->root(), variant, wanted.code,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_SYNC));
    }
    int error = 0;
    for (size_t i = 0; i < masks.size(); ++i) {
        const XcbReply<xcb_generic_error_t> refused(xcb_request_check(connection->raw(), cookies[i]));
        if (refused)
            error = refused->error_code;
        else
            grabbedMasks.push_back(masks[i]);
    }
    if (error == 0 && xcb_connection_has_error(connection->raw()) != 0)
        error = -1;
    key = wanted;
    if (error != 0) {
        ungrabVariants();
        key.reset();
        awaitServer();
    }
    return error;
}

// With the mutex held.
void KeyGrab::ungrabVariants()
{
    for (const quint16 variant : grabbedMasks)
        xcb_ungrab_key(connection->raw(), key->code, connection->root(), variant);
    grabbedMasks.clear();
    if (held || letGoAt)
        allow(XCB_ALLOW_ASYNC_KEYBOARD);
    held = false;
    letGoAt.reset();
    connection->flush();
}

std::optional<quint32> KeyGrab::unansweredPress() const
{
    const std::lock_guard lock(mutex);
    return pressTime;
}

void KeyGrab::release()
{
    const std::lock_guard lock(mutex);
    pressTime.reset();
    letGoAt.reset();
    allow(held ? XCB_ALLOW_SYNC_KEYBOARD : XCB_ALLOW_ASYNC_KEYBOARD);
}

void KeyGrab::end()
{
    const std::lock_guard lock(mutex);
    pressTime.reset();
    letGoAt.reset();
    if (held)
        lookForReleaseAt = Clock::now() + nextLook;
    xcb_ungrab_keyboard(connection->raw(), XCB_CURRENT_TIME);
    awaitServer();
    wake();
}

bool KeyGrab::isOn(quint32 serverKeyCode, quint32 state) const
{
    const std::lock_guard lock(mutex);
    const auto wanted = key ? modifierMap.mask(key->modifiers) : std::nullopt;
    constexpr quint32 modifiers = 0xff;
    const quint32 locks = XCB_MOD_MASK_LOCK | modifierMap.numLock;
    return wanted && key->code == serverKeyCode && (state & modifiers & ~locks) == *wanted;
}

// With the mutex held.
bool KeyGrab::isDown() const
{
    constexpr int bitsOfOne = 8;
    const XcbReply<xcb_query_keymap_reply_t> keys(
        xcb_query_keymap_reply(connection->raw(), xcb_query_keymap(connection->raw()), nullptr));
    return keys && key && (keys->keys[key->code / bitsOfOne] >> key->code % bitsOfOne & 1) != 0;
}

// So that a grab is gone for everybody when the caller hears of it.
void KeyGrab::awaitServer() const
{
    const XcbReply<xcb_get_input_focus_reply_t> done(
        xcb_get_input_focus_reply(connection->raw(), xcb_get_input_focus(connection->raw()), nullptr));
}

void KeyGrab::allow(uint8_t mode)
{
    xcb_allow_events(connection->raw(), mode, XCB_CURRENT_TIME);
    connection->flush();
}

void KeyGrab::wake() const
{
    const uint64_t one = 1;
    [[maybe_unused]] const auto written = write(wakeUp, &one, sizeof one);
}

void KeyGrab::run()
{
    std::array<pollfd, 2> files = {pollfd{xcb_get_file_descriptor(connection->raw()), POLLIN, 0},
                                   pollfd{wakeUp, POLLIN, 0}};
    for (;;) {
        if (poll(files.data(), files.size(), pollTimeout()) < 0 && errno != EINTR)
            return;
        uint64_t count = 0;
        [[maybe_unused]] const auto taken = read(wakeUp, &count, sizeof count);
        handleEvents();
        handleDeadlines();
        const std::lock_guard lock(mutex);
        if (stopping || xcb_connection_has_error(connection->raw()) != 0)
            return;
    }
}

void KeyGrab::handleEvents()
{
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection->raw())})
        handle(*event);
}

// Milliseconds to the next deadline; -1 when there is none.
int KeyGrab::pollTimeout() const
{
    const std::lock_guard lock(mutex);
    std::optional<Clock::time_point> next = letGoAt;
    for (const auto &deadline : {rereadMapAt, lookForReleaseAt}) {
        if (deadline && (!next || *deadline < *next))
            next = deadline;
    }
    if (!next)
        return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*next - Clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
}

void KeyGrab::handleDeadlines()
{
    const std::lock_guard lock(mutex);
    const auto now = Clock::now();
    if (letGoAt && *letGoAt <= now) {
        letGoAt.reset();
        allow(XCB_ALLOW_SYNC_KEYBOARD);
    }
    if (lookForReleaseAt && *lookForReleaseAt <= now) {
        held = held && isDown();
        lookForReleaseAt = held ? std::optional(now + nextLook) : std::nullopt;
        wake();
    }
    if (!rereadMapAt || *rereadMapAt > now)
        return;
    rereadMapAt.reset();
    const ModifierMap current = readModifierMap(connection->raw());
    const bool moved = current.numLock != modifierMap.numLock ||
                       (key && current.mask(key->modifiers) != modifierMap.mask(key->modifiers));
    modifierMap = current;
    if (key && (moved || grabbedMasks.empty()))
        grabAgain();
    wake();
}

// With the mutex held. A key that is refused now stays wanted: who holds it may let go.
void KeyGrab::grabAgain()
{
    const Key wanted = *key;
    const bool hadIt = !grabbedMasks.empty();
    ungrabVariants();
    if (grabVariants(wanted) == 0)
        return;
    key = wanted;
    rereadMapAt = Clock::now() + nextTry;
    if (hadIt)
        logLine(QStringLiteral("Norvane: the hot key was lost when the keyboard changed"));
}

void KeyGrab::handle(const xcb_generic_event_t &event)
{
    const uint8_t type = event.response_type & 0x7f;
    if (type == XCB_KEY_PRESS) {
        handlePress(reinterpret_cast<const xcb_key_press_event_t &>(event));
    } else if (type == XCB_KEY_RELEASE) {
        handleRelease(reinterpret_cast<const xcb_key_release_event_t &>(event));
    } else if (type == XCB_MAPPING_NOTIFY || (xkbFirstEvent != 0 && type == xkbFirstEvent)) {
        const std::lock_guard lock(mutex);
        if (!rereadMapAt)
            rereadMapAt = Clock::now() + mapSettles;
    }
}

void KeyGrab::handlePress(const xcb_key_press_event_t &press)
{
    {
        const std::lock_guard lock(mutex);
        if (!key || press.detail != key->code) {
            // Another key while the hot key is down: it belongs to what has the focus. That ends the grab,
            // and with it the auto-repeat of the hot key.
            const bool ours = key && isModifier(press.detail);
            held = held && ours;
            allow(ours ? XCB_ALLOW_SYNC_KEYBOARD : XCB_ALLOW_REPLAY_KEYBOARD);
            return;
        }
        // Without detectable auto-repeat a repeat is a release and a press at the same time.
        const bool repeat = held || (xkbFirstEvent == 0 && press.time == releaseTime);
        held = true;
        if (repeat) {
            allow(XCB_ALLOW_SYNC_KEYBOARD);
            return;
        }
        pressTime = press.time;
        letGoAt = Clock::now() + longestHold;
    }
    onPressed();
}

void KeyGrab::handleRelease(const xcb_key_release_event_t &released)
{
    const std::lock_guard lock(mutex);
    if (!key || released.detail == key->code) {
        held = false;
        releaseTime = released.time;
        allow(XCB_ALLOW_ASYNC_KEYBOARD);
        return;
    }
    allow(XCB_ALLOW_SYNC_KEYBOARD);
}

// With the mutex held.
bool KeyGrab::isModifier(xcb_keycode_t code) const
{
    return std::any_of(modifierMap.keys.begin(), modifierMap.keys.end(), [code](const auto &keys) {
        return std::find(keys.begin(), keys.end(), code) != keys.end();
    });
}
