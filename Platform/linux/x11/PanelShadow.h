#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSize>
#include <QWidget>
#include <xcb/xcb.h>

// The panel's drop shadow: a window of its own right beneath the panel, so that the panel's geometry stays
// what is seen of it. It takes no clicks: those go to what lies behind. Main thread.
//
// Follows a panel that the window manager leaves alone (Qt::BypassWindowManagerHint) wherever it is moved,
// while there is a compositor; a managed panel gets none. Painted once for each size and kept in the server.
class PanelShadow : public QObject {
public:
    PanelShadow() = default;
    ~PanelShadow() override;

    // `radius`: of the panel's corners, in points.
    void adopt(QWidget *panel, double radius);

    // To be called when a compositor comes or goes.
    void setUnderCompositor(bool is);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Look {
        QSize size; // of the panel, in pixels
        double scale = 0;
        bool dark = false;

        bool operator==(const Look &) const = default;
    };

    void follow();
    void show(const QRect &panelPixels);
    void hide();
    void makeWindow(xcb_connection_t *connection);
    void paint(xcb_connection_t *connection, const Look &look);

    QPointer<QWidget> panel;
    double radius = 0;
    bool underCompositor = false;
    bool shown = false;
    xcb_window_t window = XCB_WINDOW_NONE;
    Look painted;
    int margin = 0; // pixels
};
