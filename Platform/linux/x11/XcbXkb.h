#pragma once

// <xcb/xkb.h> names a field with a keyword of C++.
#define explicit explicit_ // NOLINT(cppcoreguidelines-macro-usage)
#include <xcb/xkb.h>
#undef explicit
