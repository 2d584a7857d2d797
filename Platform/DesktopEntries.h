#pragma once

#include "Platform/FrontApplication.h"
#include "Platform/WindowIdentity.h"

// The installed applications, as their desktop entries describe them. Any thread.
//
// Password stores carry well-known identifiers instead of their entry's name, so that one default list of
// ignored applications means this desktop's stores too: Seahorse and KWalletManager are
// "com.apple.keychainaccess"; KeePassXC, Secrets, Bitwarden and 1Password are "com.apple.Passwords".
class DesktopEntries {
public:
    virtual ~DesktopEntries() = default;

    // The application that a window belongs to. Without a desktop entry the window's class stands in for both
    // identifier and name; both are absent when the window says nothing at all.
    [[nodiscard]] virtual FrontApplication application(const WindowIdentity &window) const = 0;

    // The Icon of an application's entry: a theme name or an absolute path. Absent when it is not installed.
    [[nodiscard]] virtual std::optional<QString> iconName(const QString &bundleIdentifier) const = 0;
};
