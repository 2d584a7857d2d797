#pragma once

#include <QString>

// Whether the bus at an address (as in DBUS_SESSION_BUS_ADDRESS) is alive: it answers the first line of the
// handshake within `limit` milliseconds.
//
// Asked before connecting, which has no time limit and, once begun at a bus that hangs, would not even let
// the process end. An address that is no Unix socket's is taken for alive.
[[nodiscard]] bool busAnswers(const QString &address, int limit);
