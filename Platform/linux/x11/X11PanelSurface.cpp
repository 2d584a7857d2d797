#include "Platform/linux/x11/X11PanelSurface.h"

#include "Platform/Log.h"
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
constexpr int ownPressArrives = 15; // from the X server by way of Qt

// Everything that Qt has sent has been carried out when this returns.
void awaitQtRequests()
{
    const auto *native = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (native == nullptr)
        return;
    xcb_connection_t *connection = native->connection();
    const XcbReply<xcb_get_input_focus_reply_t> done(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

// Qt names windows after the executable and the application; the panel's name must not depend on either.
void setWindowClass(const XcbConnection &connection, xcb_window_t window)
{
    constexpr char name[] = "norvane\0Norvane";
    xcb_change_property(connection.raw(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING,
                        8, sizeof name, name);
    connection.flush();
}

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

X11PanelSurface::X11PanelSurface(X11HotKeys &keys, X11Workspace &desktop) : hotKeys(keys), workspace(desktop)
{
    clicks.onPress = [this](const std::vector<quint32> &windows, quint32 time) {
        whenPressed(windows, time);
    };
    RememberedWindow *front = workspace.remembered();
    if (front == nullptr)
        return;
    focus = std::make_unique<PanelFocus>(front->server());
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
    panel->setWindowFlags(Qt::FramelessWindowHint | Qt::Tool | Qt::BypassWindowManagerHint |
                          Qt::WindowStaysOnTopHint);
    shape.adopt(panel);
    panel->winId(); // made now, so that the first press finds it ready
    if (RememberedWindow *front = workspace.remembered()) {
        awaitQtRequests();
        setWindowClass(front->server(), nativeWindow());
    }
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
    if (!presented && focus) {
        static_cast<void>(workspace.rememberedWindow()); // while no panel is in the way
        focus->remember(nativeWindow());
    }
    panel->setGeometry(geometry);
    shape.update();
    showAndTakeKeyboard();
    if (!presented) {
        presented = true;
        focusUnnoticed = true;
        qApp->installEventFilter(this);
        qApp->installNativeEventFilter(this);
        clicks.start();
    }
    // Qt keeps the focus where it was for a while after the panel lost it, and misses a return within that
    // time.
    if (!panel->isActiveWindow())
        QApplication::setActiveWindow(panel);
    if (QWidget *receiver = panel->focusWidget())
        receiver->setFocus(Qt::ActiveWindowFocusReason);
}

void X11PanelSurface::showAndTakeKeyboard()
{
    panel->show();
    panel->raise();
    awaitQtRequests();
    const std::optional<quint32> pressed = hotKeys.lastPressTime();
    const bool taken = focus && (focus->take(nativeWindow(), pressed.value_or(XCB_CURRENT_TIME)) ||
                                 focus->take(nativeWindow(), XCB_CURRENT_TIME));
    if (taken || !focus)
        hotKeys.releaseKeyboard();
    else
        takeKeyboardByGrab();
}

void X11PanelSurface::takeKeyboardByGrab()
{
    logLine(QStringLiteral("Norvane: the panel was refused the keyboard focus and grabs the keyboard"));
    hotKeys.endGrab(); // one grab excludes the other
    grabbing = true;
    panel->windowHandle()->setKeyboardGrabEnabled(true);
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
        if (grabbing && panel)
            panel->windowHandle()->setKeyboardGrabEnabled(false);
        grabbing = false;
        if (focus && panel)
            focus->giveBack(nativeWindow(), time);
        if (panel) {
            panel->hide();
            awaitQtRequests();
        }
    }
    hotKeys.releaseKeyboard();
}

// The server says that the panel has the focus once more when the grab of the hot key ends.
bool X11PanelSurface::nativeEventFilter(const QByteArray &type, void *message, qintptr *)
{
    if (type != "xcb_generic_event_t")
        return false;
    const auto &event = *static_cast<const xcb_focus_in_event_t *>(message);
    const int kind = event.response_type & 0x7f;
    if ((kind != XCB_FOCUS_IN && kind != XCB_FOCUS_OUT) || !panel || event.event != nativeWindow())
        return false;
    // A switcher of windows grabs the keyboard: Qt takes the panel for inactive at that, while it still has
    // the focus, and has nothing to tell when the focus then goes.
    if (kind == XCB_FOCUS_OUT && event.mode != XCB_NOTIFY_MODE_GRAB)
        QTimer::singleShot(0, this, &X11PanelSurface::whenDeactivated);
    if (kind != XCB_FOCUS_IN || !focusUnnoticed || event.mode != XCB_NOTIFY_MODE_UNGRAB)
        return false;
    focusUnnoticed = false;
    if (presented && focus && !hasOpenChild())
        focus->repeat(nativeWindow());
    return false;
}

bool X11PanelSurface::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick)
        ownPressTime = static_cast<quint32>(static_cast<QMouseEvent *>(event)->timestamp());
    auto *window = qobject_cast<QWidget *>(watched);
    if (window == nullptr || !window->isWindow() || !panel)
        return false;
    if (window == panel) {
        if (event->type() == QEvent::Resize)
            shape.update();
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

// Qt tells of windows and focus before it has put everything in its place, so these look a moment later.

void X11PanelSurface::whenChildClosed()
{
    if (!presented || !panel || hasOpenChild())
        return;
    if (grabbing)
        panel->windowHandle()->setKeyboardGrabEnabled(true);
    else
        retakeFocus();
}

void X11PanelSurface::retakeFocus()
{
    if (!focus || focusWindow(workspace.remembered()->server()) == nativeWindow())
        return;
    if (!focus->take(nativeWindow(), XCB_CURRENT_TIME)) {
        QTimer::singleShot(retakeAgain, this, &X11PanelSurface::whenDeactivated);
        return;
    }
    if (!panel->isActiveWindow())
        QApplication::setActiveWindow(panel);
}

void X11PanelSurface::whenDeactivated()
{
    if (!presented || !panel || grabbing || hasOpenChild())
        return;
    if (focus && focusWindow(workspace.remembered()->server()) == nativeWindow())
        return;
    if (childClosed.isValid() && childClosed.elapsed() < childEnds)
        retakeFocus(); // the window manager gave it to the program in front when a dialog of the panel ended
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
