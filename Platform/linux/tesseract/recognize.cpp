// norvane-recognize: decodes images and reads their text for the program that started it, over the socket
// that it was given as descriptor 3. Whatever an image does to it, only that image is lost.
//
// norvane-recognize --explain FILE FOLDER, for developers: writes what each stage of the reading makes of an
// image.

#include "Platform/linux/tesseract/Explain.h"
#include "Platform/linux/tesseract/LanguageData.h"
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

// Italian and English, as far as they are there: what a developer sees is then the same everywhere.
int explainFile(const QString &file, const QString &folder)
{
    QImageReader source(file);
    source.setAutoTransform(true);
    const auto reader = PageReader::open(defaultDataFolder(), {QStringLiteral("ita"), QStringLiteral("eng")});
    return reader && explain(*reader, source.read(), folder) ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 4 && qstrcmp(argv[1], "--explain") == 0) {
        const QCoreApplication application(argc, argv);
        return explainFile(QCoreApplication::arguments().at(2), QCoreApplication::arguments().at(3));
    }
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
