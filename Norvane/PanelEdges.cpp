#include "Norvane/PanelEdges.h"

#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QWindow>
#include <algorithm>

namespace {

constexpr int cornerReach = 3; // bands: a corner is easier to hit than the square of its edges

Qt::CursorShape cursorFor(Qt::Edges edges)
{
    const bool left = edges.testFlag(Qt::LeftEdge), right = edges.testFlag(Qt::RightEdge);
    const bool top = edges.testFlag(Qt::TopEdge), bottom = edges.testFlag(Qt::BottomEdge);
    if ((left && top) || (right && bottom))
        return Qt::SizeFDiagCursor;
    if ((right && top) || (left && bottom))
        return Qt::SizeBDiagCursor;
    return left || right ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

} // namespace

PanelEdges::PanelEdges(QWidget *given) : QObject(given), panel(given)
{
    panel->installEventFilter(this);
}

QRect PanelEdges::resized(const QRect &from, Qt::Edges edges, QPoint by, QSize minimum)
{
    QRect to = from;
    if (edges.testFlag(Qt::LeftEdge))
        to.setLeft(std::min(from.left() + by.x(), from.right() - minimum.width() + 1));
    if (edges.testFlag(Qt::RightEdge))
        to.setRight(std::max(from.right() + by.x(), from.left() + minimum.width() - 1));
    if (edges.testFlag(Qt::TopEdge))
        to.setTop(std::min(from.top() + by.y(), from.bottom() - minimum.height() + 1));
    if (edges.testFlag(Qt::BottomEdge))
        to.setBottom(std::max(from.bottom() + by.y(), from.top() + minimum.height() - 1));
    return to;
}

// The mouse is watched at the native window, before any view has it: there all moves pass, with no view
// tracking the mouse.
bool PanelEdges::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == panel) {
        if (event->type() == QEvent::Show)
            panel->windowHandle()->installEventFilter(this); // anew is no second time
        if (event->type() == QEvent::Hide)
            end();
        return false;
    }
    if (watched != panel->windowHandle())
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return press(*static_cast<QMouseEvent *>(event));
    case QEvent::MouseMove:
        return move(*static_cast<QMouseEvent *>(event));
    case QEvent::MouseButtonRelease:
        if (!dragging || static_cast<QMouseEvent *>(event)->button() != Qt::LeftButton)
            return dragging;
        end();
        return true;
    case QEvent::Leave:
        if (!dragging)
            showCursor({});
        return false;
    default:
        return false;
    }
}

bool PanelEdges::press(const QMouseEvent &event)
{
    if (dragging)
        return true;
    if (event.button() != Qt::LeftButton || QApplication::activePopupWidget() != nullptr)
        return false;
    const QPoint where = event.position().toPoint();
    const Qt::Edges edges = edgesAt(where);
    if (!edges && !isBackground(where))
        return false;
    dragging = true;
    dragged = edges;
    pressedAt = event.globalPosition().toPoint();
    pressedFrame = panel->geometry();
    return true;
}

bool PanelEdges::move(const QMouseEvent &event)
{
    if (dragging && !event.buttons().testFlag(Qt::LeftButton))
        end(); // the release went elsewhere, as when a grab of another program came in between
    if (dragging) {
        const QPoint by = event.globalPosition().toPoint() - pressedAt;
        if (dragged)
            panel->setGeometry(resized(pressedFrame, dragged, by, panel->minimumSize()));
        else
            panel->move(pressedFrame.topLeft() + by);
        return true;
    }
    if (event.buttons() != Qt::NoButton || QApplication::activePopupWidget() != nullptr)
        return false; // a selection or the divider is being dragged
    const Qt::Edges edges = edgesAt(event.position().toPoint());
    showCursor(edges);
    return bool(edges);
}

Qt::Edges PanelEdges::edgesAt(QPoint where) const
{
    const QRect area = panel->rect();
    if (!area.contains(where))
        return {};
    const int left = where.x(), right = area.right() - where.x();
    const int top = where.y(), bottom = area.bottom() - where.y();
    if (std::min({left, right, top, bottom}) >= band)
        return {};
    constexpr int reach = cornerReach * band;
    Qt::Edges edges;
    const bool besideX = std::min(left, right) < band, besideY = std::min(top, bottom) < band;
    if (left < (besideY ? reach : band))
        edges |= Qt::LeftEdge;
    else if (right < (besideY ? reach : band))
        edges |= Qt::RightEdge;
    if (top < (besideX ? reach : band))
        edges |= Qt::TopEdge;
    else if (bottom < (besideX ? reach : band))
        edges |= Qt::BottomEdge;
    return edges;
}

bool PanelEdges::isBackground(QPoint where) const
{
    const QWidget *hit = panel->childAt(where);
    if (hit == nullptr)
        return panel->rect().contains(where);
    const auto *label = qobject_cast<const QLabel *>(hit);
    return label != nullptr && !label->textInteractionFlags().testFlag(Qt::TextSelectableByMouse);
}

// For the whole application while the pointer is there: the views go on thinking that they have it.
void PanelEdges::showCursor(Qt::Edges edges)
{
    if (edges == pointed)
        return;
    if (!pointed)
        QGuiApplication::setOverrideCursor(cursorFor(edges));
    else if (edges)
        QGuiApplication::changeOverrideCursor(cursorFor(edges));
    else
        QGuiApplication::restoreOverrideCursor();
    pointed = edges;
}

void PanelEdges::end()
{
    dragging = false;
    dragged = {};
    showCursor({});
}
