#include "Platform/linux/x11/X11Workspace.h"

#include "Platform/Log.h"
#include "Platform/linux/x11/WindowFlash.h"

#include <QApplication>

X11Workspace::X11Workspace(std::shared_ptr<const DesktopEntries> entries) : desktopEntries(std::move(entries))
{
    if (auto connection = XcbConnection::open())
        front = std::make_unique<RememberedWindow>(std::move(connection));
    else
        logLine(QStringLiteral("Norvane: no X server to ask for the window in front"));
}

X11Workspace::~X11Workspace() = default;

std::optional<FrontApplication> X11Workspace::frontmostApplication() const
{
    if (rememberedWindow() == XCB_WINDOW_NONE)
        return std::nullopt;
    const WindowIdentity &identity = front->identity();
    if (identity.pid == QCoreApplication::applicationPid())
        return FrontApplication{QStringView(ownBundleIdentifier).toString(),
                                QGuiApplication::applicationDisplayName()};
    if (identity != lastAsked) {
        lastAsked = identity;
        lastAnswer = desktopEntries->application(identity);
    }
    return lastAnswer;
}

bool X11Workspace::isThisApplicationActive() const
{
    return rememberedWindow() != XCB_WINDOW_NONE &&
           front->identity().pid == QCoreApplication::applicationPid();
}

void X11Workspace::beep(QWidget *concerned)
{
    QApplication::beep();
    if (concerned != nullptr)
        WindowFlash::flash(concerned->window());
}

quint32 X11Workspace::rememberedWindow() const
{
    return front ? front->window() : xcb_window_t(XCB_WINDOW_NONE);
}

std::optional<QRect> X11Workspace::rememberedArea() const
{
    const quint32 window = rememberedWindow();
    if (window == XCB_WINDOW_NONE)
        return std::nullopt;
    const XcbConnection &server = front->server();
    const auto geometryAsked = xcb_get_geometry(server.raw(), window);
    const auto originAsked = xcb_translate_coordinates(server.raw(), window, server.root(), 0, 0);
    const XcbReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(server.raw(), geometryAsked, nullptr));
    const XcbReply<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(server.raw(), originAsked, nullptr));
    if (!geometry || !origin)
        return std::nullopt;
    return QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height);
}
