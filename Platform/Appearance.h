#pragma once

#include <functional>

enum class ColorScheme { noPreference, dark, light };

// Whether the user likes dark or light windows. Main thread.
//
// No operation waits for the desktop: it is asked at start, and until it has answered there is no preference.
class Appearance {
public:
    virtual ~Appearance() = default;

    [[nodiscard]] virtual ColorScheme colorScheme() const = 0;

    std::function<void()> onChange; // colorScheme() has changed
};
