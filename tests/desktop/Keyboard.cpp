#include "tests/desktop/Keyboard.h"

#include <QStringList>
#include <array>
#include <cstdlib>
#include <memory>
#include <poll.h>
#include <vector>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon.h>

namespace {

// The names that stand on a keyboard, where X calls the key differently.
constexpr std::array<std::pair<const char *, xcb_keysym_t>, 8> keyNames{{
    {"ctrl", XKB_KEY_Control_L},
    {"alt", XKB_KEY_Alt_L},
    {"shift", XKB_KEY_Shift_L},
    {"super", XKB_KEY_Super_L},
    {"enter", XKB_KEY_Return},
    {"esc", XKB_KEY_Escape},
    {"pagedown", XKB_KEY_Next},
    {"pageup", XKB_KEY_Prior},
}};

xcb_keysym_t symbolOfCharacter(char32_t character)
{
    return character == U'\n' ? static_cast<xcb_keysym_t>(XKB_KEY_Return) : xkb_utf32_to_keysym(character);
}

xcb_keysym_t symbolOfName(const QString &name)
{
    if (name.size() == 1)
        return symbolOfCharacter(name.toLower().at(0).unicode());
    const auto wanted = name.toLower().toLatin1();
    for (const auto &[known, symbol] : keyNames)
        if (wanted == known)
            return symbol;
    return xkb_keysym_from_name(wanted.constData(), XKB_KEYSYM_CASE_INSENSITIVE);
}

struct Stroke {
    xcb_keycode_t key = 0;
    bool shifted = false;
};

// The server's layout as it is now.
class Layout {
public:
    explicit Layout(xcb_connection_t *xcb)
        : setup(xcb_get_setup(xcb)), symbols(xcb_key_symbols_alloc(xcb), xcb_key_symbols_free)
    {
    }

    [[nodiscard]] std::optional<Stroke> strokeFor(xcb_keysym_t symbol) const
    {
        for (int level = 0; level < 2; ++level)
            for (int code = setup->min_keycode; code <= setup->max_keycode; ++code) {
                const auto key = static_cast<xcb_keycode_t>(code);
                if (xcb_key_symbols_get_keysym(symbols.get(), key, level) == symbol)
                    return Stroke{key, level == 1};
            }
        return std::nullopt;
    }

private:
    const xcb_setup_t *setup;
    std::unique_ptr<xcb_key_symbols_t, void (*)(xcb_key_symbols_t *)> symbols;
};

} // namespace

void Keyboard::fake(uint8_t event, uint8_t detail) const
{
    xcb_test_fake_input(desktop.connection(), event, detail, XCB_CURRENT_TIME, desktop.screen().root, 0, 0,
                        0);
}

// Waits until the server has taken all that was sent.
void Keyboard::finish() const
{
    std::free(
        xcb_get_input_focus_reply(desktop.connection(), xcb_get_input_focus(desktop.connection()), nullptr));
}

bool Keyboard::press(const QString &chord, Desktop::Milliseconds held) const
{
    const Layout layout(desktop.connection());
    std::vector<xcb_keycode_t> keys;
    for (const auto &name : chord.split(u'+')) {
        const auto stroke = layout.strokeFor(symbolOfName(name));
        if (!stroke)
            return false;
        keys.push_back(stroke->key);
    }
    for (const auto key : keys)
        fake(XCB_KEY_PRESS, key);
    xcb_flush(desktop.connection());
    if (held.count() > 0)
        poll(nullptr, 0, static_cast<int>(held.count())); // a finger, not a wait for something
    for (auto key = keys.rbegin(); key != keys.rend(); ++key)
        fake(XCB_KEY_RELEASE, *key);
    finish();
    return true;
}

bool Keyboard::type(const QString &text) const
{
    const Layout layout(desktop.connection());
    std::vector<Stroke> strokes;
    for (const auto character : text.toUcs4()) {
        const auto stroke = layout.strokeFor(symbolOfCharacter(character));
        if (!stroke)
            return false;
        strokes.push_back(*stroke);
    }
    const auto shift = layout.strokeFor(XKB_KEY_Shift_L);
    for (const auto &stroke : strokes) {
        if (stroke.shifted && shift)
            fake(XCB_KEY_PRESS, shift->key);
        fake(XCB_KEY_PRESS, stroke.key);
        fake(XCB_KEY_RELEASE, stroke.key);
        if (stroke.shifted && shift)
            fake(XCB_KEY_RELEASE, shift->key);
    }
    finish();
    return true;
}

void Keyboard::point(QPoint where) const
{
    xcb_test_fake_input(desktop.connection(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, desktop.screen().root,
                        static_cast<int16_t>(where.x()), static_cast<int16_t>(where.y()), 0);
    finish();
}

void Keyboard::click(QPoint where, int times, uint8_t button) const
{
    point(where);
    for (int i = 0; i < times; ++i) {
        fake(XCB_BUTTON_PRESS, button);
        fake(XCB_BUTTON_RELEASE, button);
    }
    finish();
}

void Keyboard::drag(QPoint from, QPoint to) const
{
    constexpr int steps = 4;
    point(from);
    fake(XCB_BUTTON_PRESS, 1);
    for (int step = 1; step <= steps; ++step)
        point(from + (to - from) * step / steps);
    fake(XCB_BUTTON_RELEASE, 1);
    finish();
}
