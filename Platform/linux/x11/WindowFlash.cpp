#include "Platform/linux/x11/WindowFlash.h"

#include <QPainter>

namespace {

constexpr int duration = 120; // milliseconds
constexpr int lineWidth = 3;  // points
constexpr double radius = 12; // points, the panel's corners

} // namespace

void WindowFlash::flash(QWidget *window)
{
    if (!window->isVisible())
        return;
    auto *flash = dynamic_cast<WindowFlash *>(
        window->findChild<QWidget *>(QStringLiteral("windowFlash"), Qt::FindDirectChildrenOnly));
    if (flash == nullptr)
        flash = new WindowFlash(window);
    flash->setGeometry(window->rect());
    flash->raise();
    flash->show();
    flash->end.start(duration);
}

WindowFlash::WindowFlash(QWidget *window) : QWidget(window)
{
    setObjectName(QStringLiteral("windowFlash"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    end.setSingleShot(true);
    connect(&end, &QTimer::timeout, this, &QObject::deleteLater);
}

void WindowFlash::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Highlight), lineWidth));
    constexpr double inset = lineWidth / 2.0;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
}
