#pragma once

#include "Platform/DesktopEntries.h"
#include "Platform/Workspace.h"
#include "Platform/linux/x11/RememberedWindow.h"

#include <QRect>
#include <memory>
#include <optional>

// Who is in front, from the window manager's properties or, without one, from the input focus. Without an X
// server nobody is.
class X11Workspace : public Workspace {
public:
    explicit X11Workspace(std::shared_ptr<const DesktopEntries> entries);
    ~X11Workspace() override;

    std::optional<FrontApplication> frontmostApplication() const override;
    bool isThisApplicationActive() const override;
    void beep(QWidget *concerned) override;

    // The window that frontmostApplication() speaks of; XCB_WINDOW_NONE on an empty desktop.
    [[nodiscard]] quint32 rememberedWindow() const;

    // Where the content of that window lies on the whole desktop, in the server's pixels; absent when there
    // is none.
    [[nodiscard]] std::optional<QRect> rememberedArea() const;

    // Null without an X server.
    [[nodiscard]] RememberedWindow *remembered() const { return front.get(); }

private:
    std::shared_ptr<const DesktopEntries> desktopEntries;
    std::unique_ptr<RememberedWindow> front;
    mutable WindowIdentity lastAsked;
    mutable FrontApplication lastAnswer; // looking up an entry costs more than a keystroke has
};
