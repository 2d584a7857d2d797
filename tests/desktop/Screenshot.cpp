#include "tests/desktop/Screenshot.h"

#include <cstdlib>
#include <memory>

QImage screenshot(const Desktop &desktop, QRect part)
{
    const auto &screen = desktop.screen();
    const QRect whole(0, 0, screen.width_in_pixels, screen.height_in_pixels);
    const QRect seen = part.isEmpty() ? whole : part.intersected(whole);
    if (seen.isEmpty())
        return {};
    const auto cookie =
        xcb_get_image(desktop.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen.root,
                      static_cast<int16_t>(seen.x()), static_cast<int16_t>(seen.y()),
                      static_cast<uint16_t>(seen.width()), static_cast<uint16_t>(seen.height()), ~0U);
    const std::unique_ptr<xcb_get_image_reply_t, void (*)(void *)> reply(
        xcb_get_image_reply(desktop.connection(), cookie, nullptr), std::free);
    if (!reply || xcb_get_image_data_length(reply.get()) < seen.width() * seen.height() * 4)
        return {};
    const auto *pixels = xcb_get_image_data(reply.get());
    return QImage(pixels, seen.width(), seen.height(), qsizetype{4} * seen.width(), QImage::Format_RGB32)
        .copy();
}

int lightnessAt(const Desktop &desktop, QPoint place)
{
    const QImage seen = screenshot(desktop, QRect(place, QSize(1, 1)));
    return seen.isNull() ? -1 : qGray(seen.pixel(0, 0));
}

QImage steadyScreenshot(const Desktop &desktop, QRect part)
{
    QImage last = screenshot(desktop, part);
    const auto seemsSteady = [&] {
        const QImage before = last;
        desktop.waitFor([] { return false; }, Desktop::Milliseconds(60));
        last = screenshot(desktop, part);
        return last == before;
    };
    desktop.waitFor(seemsSteady, Desktop::Milliseconds(1000));
    return last;
}
