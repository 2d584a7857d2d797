#include "Platform/linux/x11/PanelKeyboard.h"

#include "Platform/Log.h"
#include "Platform/linux/x11/ManagerRequests.h"
#include "Platform/linux/x11/RememberedWindow.h"
#include "Platform/linux/x11/WindowProperties.h"
#include "Platform/linux/x11/X11HotKeys.h"
#include "Platform/linux/x11/X11Workspace.h"

#include <QGuiApplication>
#include <QWindow>

namespace {

constexpr qint64 atOnce = 500; // milliseconds after opening
constexpr int mostCorrections = 3;

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

} // namespace

PanelKeyboard::PanelKeyboard(X11HotKeys &keys, X11Workspace &desktop, PanelKind wanted)
    : hotKeys(keys), workspace(desktop), front(desktop.remembered()),
      kind(front != nullptr && front->isUnderWayland() ? PanelKind::managed : wanted)
{
    if (front != nullptr)
        focus = std::make_unique<PanelFocus>(front->server());
}

void PanelKeyboard::adopt(QWidget *widget)
{
    panel = widget;
    Qt::WindowFlags flags = Qt::FramelessWindowHint | Qt::Tool | Qt::WindowStaysOnTopHint;
    flags.setFlag(Qt::BypassWindowManagerHint, kind != PanelKind::managed);
    panel->setWindowFlags(flags);
    panel->winId(); // made now, so that the first press finds it ready
    if (front == nullptr)
        return;
    awaitQtRequests();
    setWindowClass(front->server(), nativeWindow());
    markAsPanel(front->server().raw(), nativeWindow());
}

void PanelKeyboard::remember()
{
    if (!focus)
        return;
    static_cast<void>(workspace.rememberedWindow()); // while no panel is in the way
    focus->remember(nativeWindow());
}

void PanelKeyboard::show(const QRect &geometry)
{
    place = geometry;
    focusUnnoticed = true;
    undisturbed = true;
    shown.start();
    if (way == Way::managed ||
        (kind == PanelKind::managed && front != nullptr && hasWindowManager(front->server())))
        showManaged();
    else
        showUnmanaged();
}

void PanelKeyboard::showUnmanaged()
{
    panel->show();
    panel->raise();
    awaitQtRequests();
    if (!focus || way == Way::grab) {
        hotKeys.releaseKeyboard();
        return;
    }
    if (takeFocus() || !takeByGrab())
        hotKeys.releaseKeyboard();
}

bool PanelKeyboard::takeFocus()
{
    const quint32 pressed = hotKeys.lastPressTime().value_or(XCB_CURRENT_TIME);
    return kind != PanelKind::grabbing &&
           (focus->take(nativeWindow(), pressed) || focus->take(nativeWindow(), XCB_CURRENT_TIME));
}

bool PanelKeyboard::takeByGrab()
{
    logLine(QStringLiteral("Norvane: the panel was refused the keyboard focus and grabs the keyboard"));
    hotKeys.endGrab(); // one grab excludes the other
    if (!panel->windowHandle()->setKeyboardGrabEnabled(true))
        return becomeManaged();
    way = Way::grab;
    return true;
}

bool PanelKeyboard::becomeManaged()
{
    const bool possible = hasWindowManager(front->server());
    logLine(possible ? QStringLiteral("Norvane: the panel was refused the keyboard grab too and asks the "
                                      "window manager for the keyboard")
                     : QStringLiteral("Norvane: the panel was refused the keyboard grab too and stays "
                                      "without the keyboard"));
    if (!possible)
        return false;
    panel->hide();
    setManaged(true);
    showManaged();
    return true;
}

// The same native window: what it is made for is read when it comes on screen the next time.
void PanelKeyboard::setManaged(bool managed)
{
    Qt::WindowFlags flags = panel->windowFlags();
    flags.setFlag(Qt::BypassWindowManagerHint, !managed);
    panel->overrideWindowFlags(flags);
    panel->windowHandle()->setFlags(flags);
}

void PanelKeyboard::showManaged()
{
    way = Way::managed;
    correctionsLeft = mostCorrections;
    const bool isFirst = !panel->isVisible();
    awaited = awaited || isFirst;
    if (isFirst) {
        panel->setGeometry(place);
        keepAboveUnlisted(front->server(), nativeWindow());
    }
    panel->show();
    panel->raise();
    awaitQtRequests();
    askToActivate(front->server(), nativeWindow(), serverTime());
    if (hasFocus())
        hotKeys.releaseKeyboard();
}

void PanelKeyboard::noticeFocus(quint8 mode, bool mayRepeat)
{
    if (way == Way::managed) {
        awaited = false;
        hotKeys.releaseKeyboard();
    } else if (focusUnnoticed && mode == XCB_NOTIFY_MODE_UNGRAB) {
        // The server says it once more when the grab of the hot key ends.
        focusUnnoticed = false;
        if (mayRepeat && way == Way::focus)
            focus->repeat(nativeWindow());
    }
}

void PanelKeyboard::noticeGeometry()
{
    if (way != Way::managed || panel->geometry() == place || shown.elapsed() > atOnce || correctionsLeft <= 0)
        return;
    --correctionsLeft; // it may insist
    panel->setGeometry(place);
}

void PanelKeyboard::hide(quint32 clickTime)
{
    focusUnnoticed = false;
    awaited = false;
    if (way == Way::grab)
        panel->windowHandle()->setKeyboardGrabEnabled(false);
    if (way != Way::managed && focus) {
        focus->giveBack(nativeWindow(), clickTime); // Qt moves the focus too, when a menu closes
    } else if (way == Way::managed && clickTime == XCB_CURRENT_TIME && hasFocus()) {
        if (const quint32 window = workspace.rememberedWindow(); window != XCB_WINDOW_NONE)
            askToActivate(front->server(), window, serverTime());
    }
    panel->hide();
    awaitQtRequests();
    if (way == Way::managed && kind != PanelKind::managed)
        setManaged(false);
    way = Way::focus;
}

bool PanelKeyboard::isHeld() const
{
    return way == Way::grab || awaited || hasFocus();
}

bool PanelKeyboard::retake()
{
    if (way == Way::grab)
        return panel->windowHandle()->setKeyboardGrabEnabled(true);
    if (!focus || hasFocus())
        return true;
    // What a window manager calls active already it does not give the focus again.
    const bool isActive = activeWindow(front->server().raw(), front->server().root()) == nativeWindow();
    if (way == Way::managed && !isActive) {
        askToActivate(front->server(), nativeWindow(), serverTime());
        return true;
    }
    return focus->take(nativeWindow(), XCB_CURRENT_TIME);
}

bool PanelKeyboard::insist()
{
    if (way != Way::focus || !focus || !undisturbed || shown.elapsed() > atOnce || !focus->isBack())
        return false;
    return takeByGrab();
}

bool PanelKeyboard::hasFocus() const
{
    return front != nullptr && focusWindow(front->server()) == nativeWindow();
}

quint32 PanelKeyboard::nativeWindow() const
{
    return static_cast<quint32>(panel->winId());
}
