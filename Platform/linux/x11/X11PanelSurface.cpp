#include "Platform/linux/x11/X11PanelSurface.h"

#include "Platform/linux/x11/RememberedWindow.h"
#include "Platform/linux/x11/X11HotKeys.h"
#include "Platform/linux/x11/X11Workspace.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTimer>
#include <QWindow>
#include <algorithm>

namespace {

// Milliseconds.
constexpr int sameClick = 100; // between a menu's closing and the raw event of the click that closed it
constexpr int childEnds = 300; // while which the focus wanders after a dialog of the panel has ended
constexpr int retakeAgain = 20;
constexpr int focusSettles = 20;    // some window managers pass it on in two steps
constexpr int ownPressArrives = 15; // from the X server by way of Qt

bool isOurs(quint32 window)
{
    const auto windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(),
                       [window](const QWindow *each) { return each->handle() && each->winId() == window; });
}

// Server times are milliseconds that start again every 49.7 days, and compare only within half of that.
bool isLater(quint32 time, quint32 than)
{
    return static_cast<qint32>(time - than) > 0;
}

// A window that was opened by the panel: QWidget::isAncestorOf ends at windows.
bool isChildOf(const QWidget *window, const QWidget *panel)
{
    if (window->windowType() == Qt::ToolTip)
        return false;
    const QObject *parent = window->parent();
    while (parent != nullptr && parent != panel)
        parent = parent->parent();
    return parent != nullptr;
}

} // namespace

X11PanelSurface::X11PanelSurface(X11HotKeys &keys, X11Workspace &desktop, PanelKind kind)
    : hotKeys(keys), workspace(desktop), keyboard(keys, desktop, kind)
{
    clicks.onPress = [this](const std::vector<quint32> &windows, quint32 time) {
        whenPressed(windows, time);
    };
    RememberedWindow *front = workspace.remembered();
    if (front == nullptr)
        return;
    const auto close = [this] {
        if (presented && !hasOpenChild())
            requestDismiss();
    };
    front->onChange = close;
    front->onGone = close;
}

X11PanelSurface::~X11PanelSurface()
{
    if (RememberedWindow *front = workspace.remembered()) {
        front->onChange = nullptr;
        front->onGone = nullptr;
    }
}

void X11PanelSurface::adopt(QWidget *widget)
{
    panel = widget;
    shape.adopt(panel);
    keyboard.adopt(panel);
}

bool X11PanelSurface::isPresented() const
{
    return presented;
}

void X11PanelSurface::present(const QRect &geometry)
{
    if (!panel) {
        hotKeys.releaseKeyboard();
        return;
    }
    dismissTime.reset();
    if (!presented)
        keyboard.remember();
    panel->setGeometry(geometry);
    shape.update();
    keyboard.show(geometry);
    if (!presented) {
        presented = true;
        qApp->installEventFilter(this);
        qApp->installNativeEventFilter(this);
        clicks.start();
    }
    activate();
    if (QWidget *receiver = panel->focusWidget())
        receiver->setFocus(Qt::ActiveWindowFocusReason);
}

// Qt keeps the focus where it was for a while after the panel lost it, and misses a return within that time.
void X11PanelSurface::activate()
{
    if (!panel->isActiveWindow())
        QApplication::setActiveWindow(panel);
}

void X11PanelSurface::dismiss()
{
    const quint32 time = dismissTime.value_or(XCB_CURRENT_TIME);
    dismissTime.reset();
    if (presented) {
        presented = false;
        qApp->removeEventFilter(this);
        qApp->removeNativeEventFilter(this);
        clicks.stop();
        if (panel)
            keyboard.hide(time);
    }
    hotKeys.releaseKeyboard();
}

// Qt waits with its own word of a lost focus, and has none when the focus came and went in one moment.
bool X11PanelSurface::nativeEventFilter(const QByteArray &type, void *message, qintptr *)
{
    if (type != "xcb_generic_event_t")
        return false;
    const auto &event = *static_cast<const xcb_focus_in_event_t *>(message);
    const int kind = event.response_type & 0x7f;
    if ((kind != XCB_FOCUS_IN && kind != XCB_FOCUS_OUT) || !presented || !panel ||
        event.event != nativeWindow())
        return false;
    if (kind == XCB_FOCUS_IN) {
        keyboard.noticeFocus(event.mode, !hasOpenChild());
        QTimer::singleShot(0, this, [this] {
            if (presented && panel && keyboard.isHeld() && !hasOpenChild())
                activate();
        });
    } else if (event.mode == XCB_NOTIFY_MODE_GRAB) {
        keyboard.noticeGrab();
    } else if (event.mode == XCB_NOTIFY_MODE_NORMAL || event.mode == XCB_NOTIFY_MODE_WHILE_GRABBED) {
        QTimer::singleShot(focusSettles, this, &X11PanelSurface::whenDeactivated);
    }
    return false;
}

bool X11PanelSurface::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick)
        ownPressTime = static_cast<quint32>(static_cast<QMouseEvent *>(event)->timestamp());
    if (event->type() == QEvent::KeyPress && keyboard.isGrabbing() &&
        isHotKey(*static_cast<QKeyEvent *>(event))) {
        hotKeys.onPress();
        return true;
    }
    auto *window = qobject_cast<QWidget *>(watched);
    if (window == nullptr || !window->isWindow() || !panel)
        return false;
    if (window == panel) {
        if (event->type() == QEvent::Resize)
            shape.update();
        if (event->type() == QEvent::Resize || event->type() == QEvent::Move)
            keyboard.noticeGeometry();
        if (event->type() == QEvent::WindowDeactivate)
            QTimer::singleShot(0, this, &X11PanelSurface::whenDeactivated);
        return false;
    }
    const bool isMenu = window->windowType() == Qt::Popup;
    if (!presented || (!isMenu && !isChildOf(window, panel)))
        return false;
    // Menus have the keyboard by a grab; an unmanaged dialog must be given it.
    if (event->type() == QEvent::Show && !isMenu &&
        window->windowFlags().testFlag(Qt::BypassWindowManagerHint))
        QTimer::singleShot(0, window, [window] { window->activateWindow(); });
    if (event->type() == QEvent::Hide) {
        childClosed.start();
        QTimer::singleShot(0, this, &X11PanelSurface::whenChildClosed);
    }
    return false;
}

bool X11PanelSurface::isHotKey(const QKeyEvent &press) const
{
    return !press.isAutoRepeat() && hotKeys.isHotKey(press.nativeScanCode(), press.nativeModifiers());
}

// Qt tells of windows and focus before it has put everything in its place, so these look a moment later.

void X11PanelSurface::whenChildClosed()
{
    if (!presented || !panel || hasOpenChild())
        return;
    retakeKeyboard();
}

void X11PanelSurface::retakeKeyboard()
{
    if (!keyboard.retake())
        QTimer::singleShot(retakeAgain, this, &X11PanelSurface::whenDeactivated);
    else if (keyboard.isHeld())
        activate();
}

void X11PanelSurface::whenDeactivated()
{
    if (!presented || !panel || hasOpenChild() || keyboard.isHeld())
        return;
    if (childClosed.isValid() && childClosed.elapsed() < childEnds)
        retakeKeyboard(); // the window manager gave it to the program in front when a dialog of the panel
                          // ended
    else if (keyboard.insist())
        activate();
    else
        requestDismiss();
}

void X11PanelSurface::whenPressed(const std::vector<quint32> &windows, quint32 time)
{
    if (!presented || hasOpenChild() || (childClosed.isValid() && childClosed.elapsed() < sameClick))
        return; // the press closed a menu, and that was all it was for
    if (std::any_of(windows.begin(), windows.end(), isOurs))
        return;
    // The pointer may have left us since the press; then Qt has the press too, or is about to.
    QTimer::singleShot(ownPressArrives, this, [this, time] {
        if (presented && (!ownPressTime || isLater(time, *ownPressTime)))
            requestDismiss(time - 1); // so that a move of the focus by this very click is newer than ours
    });
}

void X11PanelSurface::requestDismiss(quint32 time)
{
    dismissTime = time;
    if (onDismissRequest)
        onDismissRequest();
}

bool X11PanelSurface::hasOpenChild() const
{
    if (QApplication::activePopupWidget() != nullptr)
        return true;
    const auto windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(),
                       [this](const QWidget *each) { return each->isVisible() && isChildOf(each, panel); });
}

quint32 X11PanelSurface::nativeWindow() const
{
    return static_cast<quint32>(panel->winId());
}
