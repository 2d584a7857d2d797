#include "Platform/linux/x11/WindowProperties.h"

#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

template <typename Reply>
struct FreeReply {
    void operator()(Reply *reply) const { std::free(reply); }
};
template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, FreeReply<Reply>>;

// Takes the answer of `request` and swallows its error, which only ever says that the window is gone.
template <typename Reply, typename Cookie>
ReplyPointer<Reply> take(xcb_connection_t *connection,
                         Reply *(*reply)(xcb_connection_t *, Cookie, xcb_generic_error_t **), Cookie cookie)
{
    xcb_generic_error_t *error = nullptr;
    ReplyPointer<Reply> answer(reply(connection, cookie, &error));
    std::free(error);
    return answer;
}

constexpr quint32 maxNameBytes = 1024; // WM_CLASS, an application id, a host name
constexpr int maxAncestors = 64;
constexpr size_t atomBatch = 64;
constexpr int maxAtomNameBytes = 4096; // LibreOffice's hold the path of the document

QString decoded(const QByteArray &bytes)
{
    const QString text = QString::fromUtf8(bytes);
    return text.contains(QChar::ReplacementCharacter) ? QString::fromLatin1(bytes) : text;
}

QByteArray readName(xcb_connection_t *connection, xcb_window_t window, xcb_atom_t property)
{
    const auto value = readProperty(connection, window, property, maxNameBytes);
    return value && value->format == 8 ? value->bytes : QByteArray();
}

bool belongsToThisMachine(xcb_connection_t *connection, xcb_window_t window)
{
    QByteArray machine = readName(connection, window, XCB_ATOM_WM_CLIENT_MACHINE);
    machine.truncate(qstrnlen(machine.constData(), static_cast<size_t>(machine.size())));
    return machine.isEmpty() || decoded(machine) == QSysInfo::machineHostName();
}

xcb_window_t parentOf(xcb_connection_t *connection, xcb_window_t window)
{
    const auto tree = take(connection, xcb_query_tree_reply, xcb_query_tree(connection, window));
    return tree ? tree->parent : xcb_window_t(XCB_WINDOW_NONE);
}

} // namespace

std::vector<xcb_atom_t> internAtoms(xcb_connection_t *connection, std::span<const QByteArray> names)
{
    std::vector<xcb_intern_atom_cookie_t> cookies;
    for (const QByteArray &name : names)
        cookies.push_back(
            xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.constData()));
    std::vector<xcb_atom_t> atoms;
    for (const auto cookie : cookies) {
        const auto reply = take(connection, xcb_intern_atom_reply, cookie);
        atoms.push_back(reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE));
    }
    return atoms;
}

xcb_atom_t internAtom(xcb_connection_t *connection, const QByteArray &name)
{
    return internAtoms(connection, std::span(&name, 1)).front();
}

std::vector<QByteArray> atomNames(xcb_connection_t *connection, std::span<const xcb_atom_t> atoms)
{
    std::vector<QByteArray> names;
    // All answers to one batch are in memory at once, and a name may have 64 KiB.
    for (size_t start = 0; start < atoms.size(); start += atomBatch) {
        std::vector<xcb_get_atom_name_cookie_t> cookies;
        for (const xcb_atom_t atom : atoms.subspan(start, std::min(atomBatch, atoms.size() - start)))
            cookies.push_back(xcb_get_atom_name(connection, atom));
        for (const auto cookie : cookies) {
            const auto reply = take(connection, xcb_get_atom_name_reply, cookie);
            const int length = reply ? xcb_get_atom_name_name_length(reply.get()) : 0;
            const bool named = length > 0 && length <= maxAtomNameBytes;
            names.push_back(named ? QByteArray(xcb_get_atom_name_name(reply.get()), length) : QByteArray());
        }
    }
    return names;
}

std::optional<WindowProperty> readProperty(xcb_connection_t *connection, xcb_window_t window,
                                           xcb_atom_t property, quint32 maxBytes)
{
    const auto reply = take(connection, xcb_get_property_reply,
                            xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                                             maxBytes / 4 + (maxBytes % 4 != 0)));
    if (!reply || reply->type == XCB_ATOM_NONE)
        return std::nullopt;
    const auto *bytes = static_cast<const char *>(xcb_get_property_value(reply.get()));
    return WindowProperty{reply->type, reply->format,
                          QByteArray(bytes, xcb_get_property_value_length(reply.get())), reply->bytes_after};
}

std::vector<quint32> readUnits(xcb_connection_t *connection, xcb_window_t window, xcb_atom_t property,
                               xcb_atom_t type, quint32 maxUnits)
{
    const auto value = readProperty(connection, window, property, maxUnits * 4);
    if (!value || value->type != type || value->format != 32)
        return {};
    std::vector<quint32> units(static_cast<size_t>(value->bytes.size()) / 4);
    if (!units.empty())
        std::memcpy(units.data(), value->bytes.constData(), units.size() * 4);
    return units;
}

WindowIdentity readWindowIdentity(xcb_connection_t *connection, xcb_window_t window)
{
    WindowIdentity identity;
    if (window == XCB_WINDOW_NONE)
        return identity;
    identity.window = window;

    const QList<QByteArray> names = readName(connection, window, XCB_ATOM_WM_CLASS).split('\0');
    identity.instanceName = decoded(names.value(0));
    identity.className = decoded(names.value(1));

    static const QByteArray others[] = {"_GTK_APPLICATION_ID", "_NET_WM_PID"};
    const auto atoms = internAtoms(connection, others);
    identity.gtkApplicationID = decoded(readName(connection, window, atoms[0]));
    const auto pid = readUnits(connection, window, atoms[1], XCB_ATOM_CARDINAL, 1);
    if (!pid.empty() && pid.front() > 0 && belongsToThisMachine(connection, window)) {
        identity.pid = pid.front();
        const QString link = QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(identity.pid));
        identity.executable = QFileInfo(link).fileName();
    }
    return identity;
}

bool isOverrideRedirect(xcb_connection_t *connection, xcb_window_t window)
{
    const auto attributes =
        take(connection, xcb_get_window_attributes_reply, xcb_get_window_attributes(connection, window));
    return attributes && attributes->override_redirect;
}

std::optional<xcb_window_t> activeWindow(xcb_connection_t *connection, xcb_window_t root)
{
    const xcb_atom_t property = internAtom(connection, "_NET_ACTIVE_WINDOW");
    const auto windows = readUnits(connection, root, property, XCB_ATOM_WINDOW, 1);
    return windows.empty() ? std::nullopt : std::optional<xcb_window_t>(windows.front());
}

xcb_window_t focusedTopLevel(xcb_connection_t *connection)
{
    const auto focus = take(connection, xcb_get_input_focus_reply, xcb_get_input_focus(connection));
    if (!focus || focus->focus <= XCB_INPUT_FOCUS_FOLLOW_KEYBOARD) // none, or wherever the pointer is
        return XCB_WINDOW_NONE;
    xcb_window_t window = focus->focus;
    for (int depth = 0; depth < maxAncestors && window != XCB_WINDOW_NONE; ++depth) {
        if (!readName(connection, window, XCB_ATOM_WM_CLASS).isEmpty())
            return window;
        window = parentOf(connection, window);
    }
    return XCB_WINDOW_NONE;
}
