#pragma once

#include "tests/programs/Trip.h"

#include <vector>

// Programs that start at once and are there wherever the tests run.
[[nodiscard]] std::vector<Trip> lightTrips();

// Programs that take their time, a suite of their own.
[[nodiscard]] std::vector<Trip> heavyTrips();

// Those that are pasted from the clipboard after their program has ended.
[[nodiscard]] std::vector<Trip> lightClipboardTrips();
[[nodiscard]] std::vector<Trip> heavyClipboardTrips();
