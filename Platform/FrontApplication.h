#pragma once

#include <QString>
#include <optional>

// The application a user would say is in front. `bundleIdentifier` is its desktop entry's file name without
// ".desktop", or a well-known identifier (see DesktopEntries); absent for a program without a desktop entry
// and without a window class. `localizedName` is what the desktop shows for it.
struct FrontApplication {
    std::optional<QString> bundleIdentifier;
    std::optional<QString> localizedName;

    bool operator==(const FrontApplication &) const = default;
};

// Our own identifier: desktop entry, bus name, icon.
inline constexpr char16_t ownBundleIdentifier[] = u"com.norvane.app";
