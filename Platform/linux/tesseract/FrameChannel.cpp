#include "Platform/linux/tesseract/FrameChannel.h"

#include <QtEndian>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int askEvery = 50; // milliseconds
constexpr qsizetype lengthSize = 4;

bool isTransient(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace

FrameChannel::FrameChannel(int connectedSocket) : socket(connectedSocket) {}

FrameChannel::~FrameChannel()
{
    ::close(socket);
}

bool FrameChannel::waitFor(short events, const Question &mayGoOn) const
{
    while (mayGoOn()) {
        pollfd watched{socket, events, 0};
        const int ready = ::poll(&watched, 1, askEvery);
        if (ready > 0)
            return true; // an end that is gone shows in what follows
        if (ready < 0 && errno != EINTR)
            return false;
    }
    return false;
}

bool FrameChannel::sendAll(const char *bytes, qsizetype length, const Question &mayGoOn) const
{
    while (length > 0) {
        const auto sent = ::send(socket, bytes, static_cast<size_t>(length), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && !(isTransient(errno) && waitFor(POLLOUT, mayGoOn)))
            return false;
        if (sent > 0) {
            bytes += sent;
            length -= sent;
        }
    }
    return true;
}

bool FrameChannel::receiveAll(char *bytes, qsizetype length, const Question &mayGoOn) const
{
    while (length > 0) {
        const auto received = ::recv(socket, bytes, static_cast<size_t>(length), MSG_DONTWAIT);
        if (received == 0 || (received < 0 && !(isTransient(errno) && waitFor(POLLIN, mayGoOn))))
            return false;
        if (received > 0) {
            bytes += received;
            length -= received;
        }
    }
    return true;
}

bool FrameChannel::send(const QByteArray &frame, const Question &mayGoOn) const
{
    char length[lengthSize];
    qToLittleEndian(static_cast<quint32>(frame.size()), length);
    return sendAll(length, lengthSize, mayGoOn) && sendAll(frame.constData(), frame.size(), mayGoOn);
}

std::optional<QByteArray> FrameChannel::receive(qsizetype longest, const Question &mayGoOn) const
{
    char lengthBytes[lengthSize];
    if (!receiveAll(lengthBytes, lengthSize, mayGoOn))
        return std::nullopt;
    const qsizetype length = qFromLittleEndian<quint32>(lengthBytes);
    if (length > longest)
        return std::nullopt;
    QByteArray frame(length, Qt::Uninitialized);
    if (!receiveAll(frame.data(), length, mayGoOn))
        return std::nullopt;
    return frame;
}
