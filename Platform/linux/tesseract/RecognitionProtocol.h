#pragma once

#include "Platform/RecognitionService.h"

// What the program and its recognition process tell each other, a frame each:
//
//     process: Hello                 once, when it is ready
//     program: LoadRequest           process: LoadAnswer
//     program: ReadRequest, image    process: ReadAnswer
//
// Decoding trusts nothing: absent for bytes that are not exactly one sound message of this kind.
namespace RecognitionProtocol {

inline constexpr qsizetype longestImage = qsizetype{512} << 20; // bytes
inline constexpr qsizetype longestAnswer = qsizetype{16} << 20;

struct Hello {
    bool operator==(const Hello &) const = default;
};

struct LoadRequest {
    QString dataFolder;
    QStringList codes; // Tesseract's, main language first

    bool operator==(const LoadRequest &) const = default;
};

struct LoadAnswer {
    bool isLoaded = false;

    bool operator==(const LoadAnswer &) const = default;
};

struct ReadRequest {
    qint64 cpuMilliseconds = 0; // that the image may take

    bool operator==(const ReadRequest &) const = default;
};

enum class Outcome : quint8 {
    read,
    unreadable, // no image, or a damaged one
    expired,    // took too long
    failed,     // the engine gave up
};

struct ReadAnswer {
    Outcome outcome = Outcome::failed;
    RecognizedImage image;
};

[[nodiscard]] QByteArray encoded(const Hello &hello);
[[nodiscard]] QByteArray encoded(const LoadRequest &request);
[[nodiscard]] QByteArray encoded(const LoadAnswer &answer);
[[nodiscard]] QByteArray encoded(const ReadRequest &request);
[[nodiscard]] QByteArray encoded(const ReadAnswer &answer);

template <typename Message>
[[nodiscard]] std::optional<Message> decoded(const QByteArray &frame);

} // namespace RecognitionProtocol
