#pragma once

#include "Platform/linux/x11/XcbConnection.h"

#include <QtGlobal>

// What is asked of the window manager, which answers when it gets to it, in its own way or not at all. Main
// thread; these wait for the X server only.

[[nodiscard]] bool hasWindowManager(XcbConnection &connection);

// Wants the window active: on screen, with the keyboard. The request counts as the user's, made at this time
// of the server; managers refuse one that is older than what the user did last.
void askToActivate(XcbConnection &connection, xcb_window_t window, quint32 time);

// Wants a window that is not on screen above the others and in no list of windows once it is shown.
void keepAboveUnlisted(XcbConnection &connection, xcb_window_t window);

// The server's time now; 0, which stands for it in requests, without a server.
[[nodiscard]] quint32 serverTime();
