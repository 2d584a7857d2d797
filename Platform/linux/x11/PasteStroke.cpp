#include "Platform/linux/x11/PasteStroke.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr PasteStroke ordinary{{true, false, XKB_KEY_v}, false};
constexpr PasteStroke terminal{{true, true, XKB_KEY_v}, false};
constexpr PasteStroke oldTerminal{{false, true, XKB_KEY_Insert}, true};
constexpr PasteStroke emacs{{true, false, XKB_KEY_y}, false};

struct Exception {
    std::string_view className; // second string of WM_CLASS, lower case
    PasteStroke stroke;
};

// Programs in which Ctrl+V is a character or a command of its own.
constexpr std::array exceptions = {
    Exception{"xterm", oldTerminal},
    Exception{"uxterm", oldTerminal},
    Exception{"urxvt", oldTerminal},
    Exception{"rxvt", oldTerminal},
    Exception{"emacs", emacs},
    Exception{"alacritty", terminal},
    Exception{"com.mitchellh.ghostty", terminal},
    Exception{"com.raggesilver.blackbox", terminal},
    Exception{"cool-retro-term", terminal},
    Exception{"deepin-terminal", terminal},
    Exception{"foot", terminal},
    Exception{"gnome-terminal", terminal},
    Exception{"gnome-terminal-server", terminal},
    Exception{"guake", terminal},
    Exception{"kgx", terminal},
    Exception{"kitty", terminal},
    Exception{"konsole", terminal},
    Exception{"lxterminal", terminal},
    Exception{"mate-terminal", terminal},
    Exception{"org.gnome.console", terminal},
    Exception{"org.gnome.ptyxis", terminal},
    Exception{"org.gnome.terminal", terminal},
    Exception{"org.wezfurlong.wezterm", terminal},
    Exception{"ptyxis", terminal},
    Exception{"qterminal", terminal},
    Exception{"sakura", terminal},
    Exception{"st-256color", terminal},
    Exception{"terminator", terminal},
    Exception{"terminology", terminal},
    Exception{"tilda", terminal},
    Exception{"tilix", terminal},
    Exception{"xfce4-terminal", terminal},
    Exception{"yakuake", terminal},
};

} // namespace

PasteStroke pasteStroke(const WindowIdentity &identity)
{
    const std::string name = identity.className.toLower().toStdString();
    const auto found = std::find_if(exceptions.begin(), exceptions.end(),
                                    [&name](const Exception &each) { return each.className == name; });
    return found == exceptions.end() ? ordinary : found->stroke;
}
