#pragma once

#include <QRect>
#include <functional>

class QWidget;

// Shows one window above all others, with the keyboard, while the program in front stays as it is. Main
// thread.
class PanelSurface {
public:
    virtual ~PanelSurface() = default;

    // Makes the widget the panel: sets its window flags. Once, before it is first shown; the widget outlives
    // this. Where it ends up with Qt::WA_TranslucentBackground and no mask, it has to draw its own rounded
    // corners and leave what lies beyond them untouched; with a mask they are cut.
    virtual void adopt(QWidget *panel) = 0;

    // Places (Qt's logical coordinates, y down), shows and raises the panel and gives it the keyboard. What
    // had the keyboard is remembered. The panel's focus widget is the caller's to choose before this.
    virtual void present(const QRect &geometry) = 0;

    // Hides the panel and gives the keyboard back to what had it. Nothing when it is not shown.
    virtual void dismiss() = 0;

    [[nodiscard]] virtual bool isPresented() const = 0;

    // The panel ought to close: a click outside our windows, the keyboard taken away, the program in front
    // gone. Not called while a menu or dialog of the panel is open.
    std::function<void()> onDismissRequest;
};
