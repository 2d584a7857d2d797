#include "Platform/linux/x11/PanelShadow.h"

#include "Platform/linux/x11/ShadowPicture.h"
#include "Platform/linux/x11/WindowProperties.h"
#include "Platform/linux/x11/XcbConnection.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <xcb/shape.h>
#include <xcb/xcb.h>

namespace {

constexpr uint8_t translucentDepth = 32;

// Qt's own connection, so that the shadow comes in order with what Qt does to the panel; null without X11.
xcb_connection_t *qtConnection()
{
    const auto *native = qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return native ? native->connection() : nullptr;
}

// The screen that the window is on; null when the server does not say.
const xcb_screen_t *screenOf(xcb_connection_t *connection, xcb_window_t window)
{
    const XcbReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; geometry && screens.rem > 0; xcb_screen_next(&screens)) {
        if (screens.data->root == geometry->root)
            return screens.data;
    }
    return nullptr;
}

xcb_visualid_t translucentVisual(const xcb_screen_t *screen)
{
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem > 0; xcb_depth_next(&depth)) {
        if (depth.data->depth != translucentDepth)
            continue;
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual))
            if (visual.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR)
                return visual.data->visual_id;
    }
    return 0;
}

// Some compositors draw shadows of their own where they are set to, round and under the panel's.
void refuseForeignShadow(xcb_connection_t *connection, xcb_window_t window)
{
    constexpr uint32_t none = 0;
    if (const xcb_atom_t atom = internAtom(connection, "_COMPTON_SHADOW"); atom != XCB_ATOM_NONE)
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom, XCB_ATOM_CARDINAL, 32, 1, &none);
}

// Line by line as many as one request holds.
void put(xcb_connection_t *connection, const QImage &image, xcb_drawable_t target, xcb_gcontext_t context,
         int y)
{
    constexpr uint32_t head = 64; // bytes, more than a request without its picture has
    const auto lineBytes = static_cast<uint32_t>(image.bytesPerLine());
    const uint32_t room = 4 * xcb_get_maximum_request_length(connection) - head;
    const int most = std::max(1, static_cast<int>(room / lineBytes));
    for (int line = 0; line < image.height(); line += most) {
        const int count = std::min(most, image.height() - line);
        xcb_put_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, target, context,
                      static_cast<uint16_t>(image.width()), static_cast<uint16_t>(count), 0,
                      static_cast<int16_t>(y + line), 0, translucentDepth,
                      static_cast<uint32_t>(count) * lineBytes, image.constScanLine(line));
    }
}

} // namespace

PanelShadow::~PanelShadow()
{
    xcb_connection_t *connection = qtConnection();
    if (window == XCB_WINDOW_NONE || !connection)
        return;
    xcb_destroy_window(connection, window);
    xcb_flush(connection);
}

void PanelShadow::adopt(QWidget *widget, double cornerRadius)
{
    panel = widget;
    radius = cornerRadius;
    panel->installEventFilter(this);
}

void PanelShadow::setUnderCompositor(bool is)
{
    underCompositor = is;
    follow();
}

bool PanelShadow::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ZOrderChange: // also each time that it is shown, after the panel has come to the top
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::PaletteChange:
    case QEvent::Hide:
        follow();
        break;
    default:
        break;
    }
    return false;
}

void PanelShadow::follow()
{
    if (!panel || !panel->isVisible() || !underCompositor ||
        !panel->windowFlags().testFlag(Qt::BypassWindowManagerHint)) {
        hide();
        return;
    }
    const double scale = panel->devicePixelRatioF();
    const QPoint origin = panel->screen()->geometry().topLeft(); // the same in points and in pixels
    show({((panel->pos() - origin) * scale) + origin, (QSizeF(panel->size()) * scale).toSize()});
}

void PanelShadow::show(const QRect &panelPixels)
{
    xcb_connection_t *connection = qtConnection();
    if (!connection)
        return;
    if (window == XCB_WINDOW_NONE)
        makeWindow(connection);
    const bool dark = panel->palette().color(QPalette::Window).lightness() < 128;
    const Look look{panelPixels.size(), panel->devicePixelRatioF(), dark};
    if (window == XCB_WINDOW_NONE)
        return;
    if (look != painted)
        paint(connection, look);
    if (painted != look) {
        hide();
        return;
    }
    const QRect place = panelPixels.adjusted(-margin, -margin, margin, margin);
    const uint32_t values[] = {static_cast<uint32_t>(place.x()),      static_cast<uint32_t>(place.y()),
                               static_cast<uint32_t>(place.width()),  static_cast<uint32_t>(place.height()),
                               static_cast<uint32_t>(panel->winId()), XCB_STACK_MODE_BELOW};
    xcb_configure_window(connection, window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT | XCB_CONFIG_WINDOW_SIBLING |
                             XCB_CONFIG_WINDOW_STACK_MODE,
                         values);
    if (!shown)
        xcb_map_window(connection, window);
    shown = true;
    xcb_flush(connection);
}

void PanelShadow::hide()
{
    if (!shown)
        return;
    shown = false;
    if (xcb_connection_t *connection = qtConnection()) {
        xcb_unmap_window(connection, window);
        xcb_flush(connection);
    }
}

void PanelShadow::makeWindow(xcb_connection_t *connection)
{
    const xcb_screen_t *screen = screenOf(connection, static_cast<xcb_window_t>(panel->winId()));
    const xcb_visualid_t visual = screen ? translucentVisual(screen) : 0;
    if (visual == 0)
        return;
    const xcb_colormap_t colours = xcb_generate_id(connection);
    xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, colours, screen->root, visual);
    window = xcb_generate_id(connection);
    const uint32_t values[] = {0, 1, colours}; // no border, unmanaged
    xcb_create_window(connection, translucentDepth, window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP, values);
    xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED, window,
                         0, 0, 0, nullptr);
    refuseForeignShadow(connection, window);
    refuseForeignShadow(connection, static_cast<xcb_window_t>(panel->winId()));
}

// As the window's background: the server shows it without asking again.
void PanelShadow::paint(xcb_connection_t *connection, const Look &look)
{
    const ShadowPicture picture = ShadowPicture::make(look.size, radius, look.scale, look.dark);
    if (picture.line.isNull())
        return;
    const auto width = static_cast<uint16_t>(picture.top.width());
    const auto height = static_cast<uint16_t>(look.size.height() + 2 * picture.margin);
    const xcb_pixmap_t line = xcb_generate_id(connection), whole = xcb_generate_id(connection);
    xcb_create_pixmap(connection, translucentDepth, line, window, width, 1);
    xcb_create_pixmap(connection, translucentDepth, whole, window, width, height);
    const xcb_gcontext_t context = xcb_generate_id(connection);
    xcb_create_gc(connection, context, line, 0, nullptr);
    put(connection, picture.line, line, context, 0);
    const uint32_t tiled[] = {XCB_FILL_STYLE_TILED, line};
    xcb_change_gc(connection, context, XCB_GC_FILL_STYLE | XCB_GC_TILE, tiled);
    const xcb_rectangle_t everything{0, 0, width, height};
    xcb_poly_fill_rectangle(connection, whole, context, 1, &everything);
    put(connection, picture.top, whole, context, 0);
    put(connection, picture.bottom, whole, context, height - picture.bottom.height());
    xcb_change_window_attributes(connection, window, XCB_CW_BACK_PIXMAP, &whole);
    xcb_clear_area(connection, 0, window, 0, 0, 0, 0);
    xcb_free_gc(connection, context);
    xcb_free_pixmap(connection, line);
    xcb_free_pixmap(connection, whole);
    painted = look;
    margin = picture.margin;
}
