#pragma once

#include <QObject>
#include <QPoint>
#include <QRect>

class QMouseEvent;
class QWidget;

// Moves a panel by its background and resizes it at its edges and corners: no window manager does that for an
// unmanaged window. Owned by the panel, which must be a window. Main thread.
//
// The edges take the mouse in a band along the border, over whatever lies there; the panel's minimum size is
// kept. Background is what no child covers, and labels.
class PanelEdges : public QObject {
public:
    explicit PanelEdges(QWidget *panel);

    static constexpr int band = 6; // points, from the border inwards

    // What a rectangle becomes when these edges of it are dragged; the opposite ones stay, and `minimum` is
    // kept.
    [[nodiscard]] static QRect resized(const QRect &from, Qt::Edges edges, QPoint by, QSize minimum);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] Qt::Edges edgesAt(QPoint where) const;
    [[nodiscard]] bool isBackground(QPoint where) const;
    [[nodiscard]] bool press(const QMouseEvent &event);
    [[nodiscard]] bool move(const QMouseEvent &event);
    void showCursor(Qt::Edges edges);
    void end();

    QWidget *panel;
    Qt::Edges dragged; // none while the whole panel is moved
    bool dragging = false;
    Qt::Edges pointed; // the cursor tells of them
    QPoint pressedAt;  // of the screen
    QRect pressedFrame;
};
