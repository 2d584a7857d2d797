#pragma once

#include <QByteArray>
#include <functional>
#include <optional>

// Frames over a stream socket: four bytes of length, little-endian, then the bytes. Owns the socket. One
// thread.
//
// Each operation waits for the other end and asks `mayGoOn` several times a second; it gives up when the
// answer is no, or when the other end is gone.
class FrameChannel {
public:
    using Question = std::function<bool()>;

    explicit FrameChannel(int connectedSocket);
    ~FrameChannel();
    FrameChannel(const FrameChannel &) = delete;
    FrameChannel &operator=(const FrameChannel &) = delete;

    [[nodiscard]] bool send(const QByteArray &frame, const Question &mayGoOn) const;

    // Absent too for a frame that says to be longer than `longest` bytes.
    [[nodiscard]] std::optional<QByteArray> receive(qsizetype longest, const Question &mayGoOn) const;

private:
    [[nodiscard]] bool waitFor(short events, const Question &mayGoOn) const;
    [[nodiscard]] bool sendAll(const char *bytes, qsizetype length, const Question &mayGoOn) const;
    [[nodiscard]] bool receiveAll(char *bytes, qsizetype length, const Question &mayGoOn) const;

    const int socket;
};
