#include "Platform/linux/dbus/BusProbe.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QStringList>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

struct SocketAddress {
    sockaddr_un address{};
    socklen_t size = 0;
};

// Of the first address in the list; absent when that is not a Unix socket that fits.
std::optional<SocketAddress> socketAddress(const QString &busAddress)
{
    const QString first = busAddress.section(u';', 0, 0);
    if (!first.startsWith(u"unix:"))
        return std::nullopt;
    SocketAddress result;
    result.address.sun_family = AF_UNIX;
    for (const QString &option : first.mid(5).split(u',')) {
        const QString key = option.section(u'=', 0, 0);
        if (key != u"path" && key != u"abstract")
            continue;
        QByteArray name = QByteArray::fromPercentEncoding(option.section(u'=', 1).toUtf8());
        if (key == u"abstract")
            name.prepend('\0');
        if (static_cast<size_t>(name.size()) >= sizeof(result.address.sun_path))
            return std::nullopt;
        std::memcpy(result.address.sun_path, name.constData(), static_cast<size_t>(name.size()));
        const auto terminator = key == u"path" ? 1 : 0;
        result.size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path)) +
                      static_cast<socklen_t>(name.size() + terminator);
        return result;
    }
    return std::nullopt;
}

bool handshakeBegins(int descriptor, int limit)
{
    const QByteArray user = QByteArray::number(::getuid()).toHex();
    const QByteArray greeting = QByteArray(1, '\0') + "AUTH EXTERNAL " + user + "\r\n";
    if (::send(descriptor, greeting.constData(), static_cast<size_t>(greeting.size()), MSG_NOSIGNAL) < 0)
        return false;
    const QDeadlineTimer deadline(limit);
    pollfd waiting{descriptor, POLLIN, 0};
    while (::poll(&waiting, 1, static_cast<int>(deadline.remainingTime())) < 0) {
        if (errno != EINTR)
            return false;
    }
    char answer = 0;
    return (waiting.revents & POLLIN) && ::recv(descriptor, &answer, 1, MSG_DONTWAIT) == 1;
}

} // namespace

QString sessionBusAddress()
{
    const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (address.startsWith(u"autolaunch:") || address.startsWith(u"disabled:"))
        return {};
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!address.isEmpty() || runtimeFolder.isEmpty())
        return address;
    const QString socket = runtimeFolder + QStringLiteral("/bus");
    if (!QFileInfo::exists(socket))
        return {};
    return QStringLiteral("unix:path=") + QString::fromLatin1(socket.toUtf8().toPercentEncoding("/"));
}

bool busAnswers(const QString &address, int limit)
{
    const auto place = socketAddress(address);
    if (!place)
        return true;
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return false;
    // A bus that many programs call at once, as at login, lets a caller wait.
    const timeval patience{limit / 1000, limit % 1000 * 1000L};
    ::setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    const bool connected =
        ::connect(descriptor, reinterpret_cast<const sockaddr *>(&place->address), place->size) == 0;
    const bool alive = connected && handshakeBegins(descriptor, limit);
    ::close(descriptor);
    return alive;
}
