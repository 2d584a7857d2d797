#include "Platform/linux/x11/X11Screens.h"

#include "Platform/linux/x11/WindowProperties.h"

#include <QCursor>
#include <QGuiApplication>
#include <QMargins>
#include <QScreen>
#include <algorithm>
#include <array>

namespace {

constexpr quint32 mostWindows = 4096;

// A strip along one edge of the whole desktop that a dock keeps for itself, in the server's pixels.
struct Strut {
    Qt::Edge edge;
    QRect strip;
};

// _NET_WM_STRUT_PARTIAL: widths at the left, right, top and bottom edge, then where each begins and ends.
std::vector<Strut> strutsOf(const std::vector<quint32> &values, QSize desktop)
{
    std::vector<Strut> struts;
    const auto value = [&values](size_t index) { return static_cast<int>(std::min(values[index], 65535U)); };
    const auto add = [&struts](Qt::Edge edge, const QRect &strip) {
        if (!strip.isEmpty())
            struts.push_back({edge, strip});
    };
    const auto span = [&value](size_t index) { return value(index + 1) - value(index) + 1; };
    add(Qt::LeftEdge, QRect(0, value(4), value(0), span(4)));
    add(Qt::RightEdge, QRect(desktop.width() - value(1), value(6), value(1), span(6)));
    add(Qt::TopEdge, QRect(value(8), 0, span(8), value(2)));
    add(Qt::BottomEdge, QRect(value(10), desktop.height() - value(3), span(10), value(3)));
    return struts;
}

QSize desktopSize(XcbConnection &connection)
{
    const XcbReply<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(
        connection.raw(), xcb_get_geometry(connection.raw(), connection.root()), nullptr));
    return root ? QSize(root->width, root->height) : QSize();
}

std::vector<Strut> readStruts(XcbConnection &connection)
{
    std::vector<Strut> struts;
    const QSize desktop = desktopSize(connection);
    const auto windows = readUnits(connection.raw(), connection.root(), connection.atom("_NET_CLIENT_LIST"),
                                   XCB_ATOM_WINDOW, mostWindows);
    const xcb_atom_t partial = connection.atom("_NET_WM_STRUT_PARTIAL");
    std::vector<xcb_get_property_cookie_t> cookies;
    cookies.reserve(windows.size());
    for (const xcb_window_t window : windows)
        cookies.push_back(xcb_get_property(connection.raw(), 0, window, partial, XCB_ATOM_CARDINAL, 0, 12));
    for (const auto cookie : cookies) {
        const XcbReply<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection.raw(), cookie, nullptr));
        if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) != 12 * 4)
            continue;
        const auto *first = static_cast<const quint32 *>(xcb_get_property_value(reply.get()));
        const auto found = strutsOf(std::vector<quint32>(first, first + 12), desktop);
        struts.insert(struts.end(), found.begin(), found.end());
    }
    return struts;
}

// Cuts a strut off a screen. A strut is measured from the edge of the whole desktop, so on its way to an
// inner screen it covers the outer one: what would take half a screen is not meant for it.
void cut(QRect &visible, const QRect &screen, const Strut &strut)
{
    const QRect taken = screen & strut.strip;
    const bool sideways = strut.edge == Qt::LeftEdge || strut.edge == Qt::RightEdge;
    if (taken.isEmpty() ||
        (sideways ? taken.width() * 2 > screen.width() : taken.height() * 2 > screen.height()))
        return;
    switch (strut.edge) {
    case Qt::LeftEdge:
        visible.setLeft(std::max(visible.left(), taken.right() + 1));
        break;
    case Qt::RightEdge:
        visible.setRight(std::min(visible.right(), taken.left() - 1));
        break;
    case Qt::TopEdge:
        visible.setTop(std::max(visible.top(), taken.bottom() + 1));
        break;
    case Qt::BottomEdge:
        visible.setBottom(std::min(visible.bottom(), taken.top() - 1));
        break;
    }
}

// Qt keeps a screen's origin in the server's pixels and scales its size.
ScreenArea areaOf(const QScreen &screen, const std::vector<Strut> &struts)
{
    const QRectF frame = screen.geometry();
    const double scale = screen.devicePixelRatio();
    const QRect native(screen.geometry().topLeft(), (frame.size() * scale).toSize());
    QRect visible = native;
    for (const Strut &strut : struts)
        cut(visible, native, strut);
    if (visible == native && QGuiApplication::screens().size() == 1)
        return {frame, screen.availableGeometry()};
    return {frame, QRectF(frame.topLeft() + QPointF(visible.topLeft() - native.topLeft()) / scale,
                          QSizeF(visible.size()) / scale)};
}

} // namespace

X11Screens::X11Screens() : connection(XcbConnection::open()) {}

X11Screens::~X11Screens() = default;

std::vector<ScreenArea> X11Screens::screens() const
{
    const auto struts = connection ? readStruts(*connection) : std::vector<Strut>();
    std::vector<ScreenArea> areas;
    for (const QScreen *screen : QGuiApplication::screens()) // Qt lists the primary one first
        areas.push_back(areaOf(*screen, struts));
    return areas;
}

QPointF X11Screens::pointer() const
{
    return QCursor::pos();
}
