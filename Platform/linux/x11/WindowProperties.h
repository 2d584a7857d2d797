#pragma once

#include "Platform/WindowIdentity.h"

#include <QByteArray>
#include <optional>
#include <span>
#include <vector>
#include <xcb/xcb.h>

// Atoms and properties of foreign windows, read with bounds. Every function asks the X server and waits for
// its answer, never for another program; a window that is gone meanwhile reads as one that says nothing. Any
// thread that may use the connection.

// The atoms of these names in their order, asked for in one round trip; XCB_ATOM_NONE where the server fails.
[[nodiscard]] std::vector<xcb_atom_t> internAtoms(xcb_connection_t *connection,
                                                  std::span<const QByteArray> names);
[[nodiscard]] xcb_atom_t internAtom(xcb_connection_t *connection, const QByteArray &name);

// The names of these atoms in their order; empty where there is no such atom, or a name of more than 4 KiB.
[[nodiscard]] std::vector<QByteArray> atomNames(xcb_connection_t *connection,
                                                std::span<const xcb_atom_t> atoms);

struct WindowProperty {
    xcb_atom_t type = XCB_ATOM_NONE;
    quint8 format = 0; // bits of one unit: 8, 16 or 32
    QByteArray bytes;  // units in the machine's byte order
    quint32 left = 0;  // bytes that did not fit `maxBytes`
};

// The first `maxBytes` (rounded up to four) of a property of any type. Absent when the window has no such
// property.
[[nodiscard]] std::optional<WindowProperty> readProperty(xcb_connection_t *connection, xcb_window_t window,
                                                         xcb_atom_t property, quint32 maxBytes);

// The 32-bit units of a property of this type; empty when it is missing or of another kind.
[[nodiscard]] std::vector<quint32> readUnits(xcb_connection_t *connection, xcb_window_t window,
                                             xcb_atom_t property, xcb_atom_t type, quint32 maxUnits);

// What a window says of its program. The process id counts only where the window belongs to this machine.
[[nodiscard]] WindowIdentity readWindowIdentity(xcb_connection_t *connection, xcb_window_t window);

// Whether the window manager leaves this window alone (menus, our panel).
[[nodiscard]] bool isOverrideRedirect(xcb_connection_t *connection, xcb_window_t window);

// What the window manager calls the active window. Absent when there is no such property (no window manager);
// XCB_WINDOW_NONE when no window is active.
[[nodiscard]] std::optional<xcb_window_t> activeWindow(xcb_connection_t *connection, xcb_window_t root);

// The window with the input focus or its first ancestor that has a WM_CLASS. XCB_WINDOW_NONE when there is
// none.
[[nodiscard]] xcb_window_t focusedTopLevel(xcb_connection_t *connection);
