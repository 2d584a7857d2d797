#pragma once

#include "Platform/PanelSurface.h"
#include "Platform/linux/x11/PanelKeyboard.h"
#include "Platform/linux/x11/PanelShape.h"
#include "Platform/linux/x11/RawClicks.h"

#include <QAbstractNativeEventFilter>
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QWidget>
#include <optional>

class QKeyEvent;
class X11HotKeys;
class X11Workspace;

// The panel as a window that the window manager leaves alone, so that the program in front stays as it is,
// wherever that does: PanelKeyboard says where not and what then. It has the keyboard while it is open and
// gives it back.
//
// A dialog that is to open over the panel must be its child and carry Qt::BypassWindowManagerHint, or it lies
// beneath; it gets the keyboard here, and the panel gets it back when the dialog closes.
class X11PanelSurface : public QObject, public PanelSurface, private QAbstractNativeEventFilter {
public:
    X11PanelSurface(X11HotKeys &keys, X11Workspace &desktop, PanelKind kind = PanelKind::automatic);
    ~X11PanelSurface() override;

    void adopt(QWidget *widget) override;
    void present(const QRect &geometry) override;
    void dismiss() override;
    bool isPresented() const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool nativeEventFilter(const QByteArray &type, void *message, qintptr *result) override;
    void activate();
    void retakeKeyboard();
    void whenChildClosed();
    void whenDeactivated();
    void whenPressed(const std::vector<quint32> &windows, quint32 time);
    void requestDismiss(quint32 time = 0);
    [[nodiscard]] bool isHotKey(const QKeyEvent &press) const;
    [[nodiscard]] bool hasOpenChild() const;
    [[nodiscard]] quint32 nativeWindow() const;

    X11HotKeys &hotKeys;
    X11Workspace &workspace;
    QPointer<QWidget> panel;
    PanelShape shape;
    RawClicks clicks;
    PanelKeyboard keyboard;
    std::optional<quint32> dismissTime;  // of the click that closes the panel
    std::optional<quint32> ownPressTime; // the server's time of the last press in a window of ours
    QElapsedTimer childClosed;
    bool presented = false;
};
