#pragma once

#include "Platform/linux/tesseract/FrameChannel.h"

#include <memory>

class PageReader;
namespace RecognitionProtocol {
struct LoadRequest;
struct ReadRequest;
struct ReadAnswer;
} // namespace RecognitionProtocol

// The recognition process's side: decodes and reads what one program sends, until that program goes or has
// sent nothing for a minute.
class RecognitionServer {
public:
    // Serves on a connected socket and owns it.
    explicit RecognitionServer(int socket);
    ~RecognitionServer();

    // The exit status: 0, whatever the end.
    int run();

private:
    [[nodiscard]] bool answer(const QByteArray &frame);
    [[nodiscard]] bool load(const RecognitionProtocol::LoadRequest &request);
    [[nodiscard]] RecognitionProtocol::ReadAnswer read(const RecognitionProtocol::ReadRequest &request,
                                                       const QByteArray &image) const;

    FrameChannel channel;
    std::unique_ptr<PageReader> reader;
};

// Makes this process the humblest of the machine: last in line for processor and disk, first to go when
// memory ends, without core file and with at most 1.5 GB of memory.
void humble();

// Ends the process when the other end of the socket goes, whatever this one is doing then.
void endWith(int socket);
