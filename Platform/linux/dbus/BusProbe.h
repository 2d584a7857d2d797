#pragma once

#include <QString>

// Where the session's bus is said to be; empty when there is none. Never left to libdbus, which would start
// one.
[[nodiscard]] QString sessionBusAddress();

// Whether the bus at an address (as in DBUS_SESSION_BUS_ADDRESS) is alive: it answers the first line of the
// handshake within `limit` milliseconds.
//
// Asked before connecting, which has no time limit and, once begun at a bus that hangs, would not even let
// the process end. An address that is no Unix socket's is taken for alive.
[[nodiscard]] bool busAnswers(const QString &address, int limit);
