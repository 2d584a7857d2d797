#pragma once

#include "Platform/linux/x11/PanelFocus.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QRect>
#include <QWidget>
#include <memory>

class RememberedWindow;
class X11HotKeys;
class X11Workspace;

// Which way to the keyboard (see PanelKeyboard) is tried first.
enum class PanelKind : quint8 {
    automatic, // the first, and the last under a Wayland compositor, which gives the keyboard to no other
               // kind
    grabbing,
    managed,
};

// How the panel comes on screen, gets the keyboard and gives it back. Main thread.
//
// There are three ways, each for where the one before it fails:
// - focus: an unmanaged window that takes the input focus, so that the program in front stays as it is;
// - grab: the same window, which gets all keys by a grab. Where the focus is refused, or is taken back at
//   once;
// - managed: a window that the window manager keeps above the others and makes the active one, and that asks
//   it to activate the remembered window when it closes. Where the grab is refused too.
class PanelKeyboard {
public:
    PanelKeyboard(X11HotKeys &keys, X11Workspace &desktop, PanelKind wanted);

    // Sets the window flags and makes the native window.
    void adopt(QWidget *widget);

    // Keeps what has the keyboard, while the panel is not on screen.
    void remember();

    // Shows the panel and gets it the keyboard. A window manager may take a moment for that.
    void show(const QRect &geometry);

    // Gives the keyboard back and hides the panel. `clickTime`: the server's time of a click elsewhere that
    // closes the panel, which moves the keyboard by itself; else 0.
    void hide(quint32 clickTime);

    // Keys go to the panel, or are about to.
    [[nodiscard]] bool isHeld() const;

    // Gets the keyboard again after a menu or dialog of the panel. False when it was refused.
    [[nodiscard]] bool retake();

    // The keyboard went back at once to where it came from, as if refused: takes the next way. False when
    // that is not what happened, or no way is left.
    [[nodiscard]] bool insist();

    // The server says that the panel has got the focus; `mode` of that event. Not to be repeated (see
    // PanelFocus) while a child of the panel is open.
    void noticeFocus(quint8 mode, bool mayRepeat);

    // Somebody grabs the keyboard while the panel has it: what follows is what the user does with other keys,
    // such as those that switch windows.
    void noticeGrab() { undisturbed = false; }

    // The panel is somewhere else than it was, or of another size. Undone while it opens: then it was the
    // window manager that knew a better place.
    void noticeGeometry();

    // All keys come here, the hot key too, which no longer reaches its own grab.
    [[nodiscard]] bool isGrabbing() const { return way == Way::grab; }

private:
    enum class Way : quint8 { focus, grab, managed };

    void setManaged(bool managed);
    void showUnmanaged();
    [[nodiscard]] bool takeFocus();
    [[nodiscard]] bool takeByGrab();
    [[nodiscard]] bool becomeManaged();
    void showManaged();
    [[nodiscard]] bool hasFocus() const;
    [[nodiscard]] quint32 nativeWindow() const;

    X11HotKeys &hotKeys;
    X11Workspace &workspace;
    RememberedWindow *const front;     // null without an X server
    const PanelKind kind;              // not automatic under a Wayland compositor
    std::unique_ptr<PanelFocus> focus; // null without an X server
    QPointer<QWidget> panel;
    QRect place;
    QElapsedTimer shown;
    int correctionsLeft = 0; // of the window manager's place
    Way way = Way::focus;
    bool undisturbed = false;    // since it opened
    bool focusUnnoticed = false; // by others: it moved during the hot key's grab
    bool awaited = false;        // the window manager has not yet given the focus
};
