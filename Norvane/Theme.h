#pragma once

class Appearance;
class QPalette;

// Dresses every window in dark or light as the desktop says, from now on until it is destroyed. Main thread.
//
// Dark is a palette of our own, unless the desktop's is dark already; everything else is the desktop's
// palette as it comes. Windows that are open change at once.
class Theme {
public:
    // The appearance outlives this.
    explicit Theme(Appearance &appearance);
    ~Theme();
    Theme(const Theme &) = delete;
    Theme &operator=(const Theme &) = delete;

    [[nodiscard]] static QPalette darkPalette();

private:
    void apply();

    Appearance &appearance;
};
