#pragma once

#include <QSize>

class UserDefaults;

// The panel's size from one opening to the next. A screen too small for it gets a smaller panel, and the size
// remembered is then that one; the size that was wanted is kept beside it, for the next screen that has the
// room, until the user gives the panel another. Main thread.
class RememberedSize {
public:
    explicit RememberedSize(UserDefaults &defaults);

    // Of a new panel.
    [[nodiscard]] QSize initial() const { return placed; }

    // What to place a panel of this size as.
    [[nodiscard]] QSize wanted(QSize current) const { return current == placed ? full : current; }

    // It was placed as `size` and came out as `result`.
    void setPlaced(QSize size, QSize result);

    // When it closes.
    void store(QSize current);

private:
    UserDefaults &defaults;
    QSize placed; // as it is while the user does not resize it
    QSize full;   // with room enough
};
