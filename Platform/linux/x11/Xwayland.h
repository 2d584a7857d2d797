#pragma once

#include <xcb/xcb.h>

// Whether this X server shows its windows through a Wayland compositor. There the compositor gives the
// keyboard to managed windows only, programs that do not speak X11 may be in front, and then
// _NET_ACTIVE_WINDOW names nothing. A few round trips.
[[nodiscard]] bool isXwayland(xcb_connection_t *connection, xcb_window_t root);
