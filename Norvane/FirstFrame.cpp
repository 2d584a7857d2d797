#include "Norvane/FirstFrame.h"

#include "Norvane/ClipViews.h"

#include <QPaintEvent>
#include <QPainter>

namespace {

constexpr int paintedAfresh = 50; // milliseconds after the first frame, which is on the screen by then

} // namespace

FirstFrame::FirstFrame(QWidget *window, QWidget *field, ClipTableView *rows)
    : panel(window), searchField(field), list(rows)
{
    panel->installEventFilter(this);
    afresh.setSingleShot(true);
    afresh.setInterval(paintedAfresh);
    connect(&afresh, &QTimer::timeout, panel, qOverload<>(&QWidget::update));
}

void FirstFrame::paint()
{
    if (panel->isVisible() || !laidOut)
        return;
    for (QWidget *view : panel->findChildren<QWidget *>()) {
        if (!view->isWindow())
            view->installEventFilter(this); // anew is no second time
    }
    phase = Phase::painting;
    picture = QPixmap(panel->size() * panel->devicePixelRatioF());
    picture.setDevicePixelRatio(panel->devicePixelRatioF());
    picture.fill(Qt::transparent);
    panel->render(&picture, {}, {}, QWidget::DrawChildren);
    details = list->visibleDetails();
    phase = Phase::waiting;
}

void FirstFrame::discard()
{
    phase = Phase::finished;
    picture = {};
}

bool FirstFrame::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Paint:
        if (watched == panel && phase == Phase::finished && isWhole(*static_cast<QPaintEvent *>(event)))
            afresh.stop(); // the toolkit mostly does it by itself, when the window becomes active
        return replacePaint(watched);
    case QEvent::Show:
        laidOut = true;
        return false;
    case QEvent::PaletteChange:
    case QEvent::FontChange:
    case QEvent::StyleChange:
    case QEvent::EnabledChange:
        if (phase == Phase::waiting)
            discard();
        return false;
    default:
        return false;
    }
}

// True: nothing is left to be painted there.
bool FirstFrame::replacePaint(QObject *watched)
{
    if (phase == Phase::painting)
        return watched == searchField;
    if (phase == Phase::waiting && watched == panel && panel->isVisible()) {
        if (!fits()) {
            discard();
            return false;
        }
        phase = Phase::showing;
        QMetaObject::invokeMethod(this, &FirstFrame::finish, Qt::QueuedConnection);
    }
    if (phase != Phase::showing)
        return false;
    if (watched == panel) {
        QPainter painter(panel);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawPixmap(0, 0, picture);
    } else if (watched == list->viewport()) {
        list->paintChangedRows(details);
    }
    return watched != searchField;
}

bool FirstFrame::isWhole(const QPaintEvent &event) const
{
    return event.region() == panel->rect();
}

bool FirstFrame::fits() const
{
    return picture.devicePixelRatio() == panel->devicePixelRatioF() &&
           picture.size() == panel->size() * panel->devicePixelRatioF();
}

void FirstFrame::finish()
{
    discard();
    afresh.start();
}
