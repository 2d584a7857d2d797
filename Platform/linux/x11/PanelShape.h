#pragma once

#include "Platform/linux/x11/CompositorWatch.h"
#include "Platform/linux/x11/PanelShadow.h"

#include <QPointer>
#include <QSize>
#include <QWidget>

// The panel's rounded corners and its shadow. Under a compositor the window is translucent and the panel
// itself draws them, smooth, and a shadow lies around it; without one the window is cut line by line, since a
// translucent window's corners would be black. Clicks beyond the curve go to what lies behind in both cases.
// Main thread.
class PanelShape {
public:
    PanelShape();

    // Before the widget has a native window: one can not become translucent later.
    void adopt(QWidget *widget);

    // To be called whenever the panel is shown and whenever its size changes.
    void update();

private:
    void setShape(quint8 kind, const QRegion &region) const; // in pixels

    CompositorWatch compositor;
    PanelShadow shadow;
    QPointer<QWidget> panel;
    QSize shapedSize; // in pixels; invalid: not yet
    bool smooth = false;
};
