#pragma once

#include "Platform/Screens.h"
#include "Platform/linux/x11/XcbConnection.h"

// Qt's screens, and what the desktop's docks leave of them.
class X11Screens : public Screens {
public:
    X11Screens();
    ~X11Screens() override;

    std::vector<ScreenArea> screens() const override;
    QPointF pointer() const override;

private:
    std::unique_ptr<XcbConnection> connection; // null without an X server
};
