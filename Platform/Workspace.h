#pragma once

#include "Platform/FrontApplication.h"

class QWidget;

// The desktop around us: who is in front. Main thread.
class Workspace {
public:
    virtual ~Workspace() = default;

    // The application of the last active window that is not our panel and not a dock. Our managed windows
    // (settings, editor, dialogs) count, with our own identifier. Absent on an empty desktop.
    [[nodiscard]] virtual std::optional<FrontApplication> frontmostApplication() const = 0;

    // The last active window is one of our managed windows.
    [[nodiscard]] virtual bool isThisApplicationActive() const = 0;

    // The bell, and a short flash of the window concerned (may be null).
    virtual void beep(QWidget *concerned) = 0;
};
