// norvane-recognize: decodes images and reads their text for the program that started it, over the socket
// that it was given as descriptor 3. Whatever an image does to it, only that image is lost.

#include "Platform/linux/tesseract/RecognitionServer.h"

#include <QCoreApplication>
#include <QImageReader>
#include <cstdio>
#include <sys/socket.h>

namespace {

constexpr int givenSocket = 3;
constexpr int wrongUsage = 2;
constexpr int imageMegabytes = 256; // decoded, as the toolkit counts

bool isConnected(int descriptor)
{
    sockaddr peer{};
    socklen_t length = sizeof peer;
    return ::getpeername(descriptor, &peer, &length) == 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (!isConnected(givenSocket)) {
        std::fputs("norvane-recognize is started by norvane\n", stderr);
        return wrongUsage;
    }
    humble();
    endWith(givenSocket);
    const QCoreApplication application(argc, argv); // finds the plug-ins that decode
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {}); // they talk much
    QImageReader::setAllocationLimit(imageMegabytes);
    return RecognitionServer(givenSocket).run();
}
