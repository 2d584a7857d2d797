#pragma once

#include "Platform/RecognitionService.h"

#include <QHash>
#include <condition_variable>
#include <mutex>

// Reads the texts that it was told. Any thread.
class MemoryRecognition : public RecognitionService {
public:
    [[nodiscard]] QStringList supportedLanguages() override;
    [[nodiscard]] std::optional<RecognizedImage>
    recognize(const QByteArray &image, const QStringList &languages, QString *error) override;
    void cancel() override;

    // What stands in an image; one that was never told is no image.
    void setFragments(const QByteArray &image, const RecognizedImage &fragments);
    void setText(const QByteArray &image, const QString &text);
    void setFailure(const QString &error); // of every recognition from now on; empty: none
    void setLanguages(const QStringList &identifiers);

    // Recognitions that begin from now on wait for release.
    void hold();
    void release();

    // The images that were asked for, in order, and the languages of the last.
    [[nodiscard]] std::vector<QByteArray> asked() const;
    [[nodiscard]] QStringList lastLanguages() const;

private:
    mutable std::mutex mutex; // guards what follows
    std::condition_variable changed;
    QStringList supported{QStringLiteral("en"), QStringLiteral("it")};
    QHash<QByteArray, RecognizedImage> images;
    QString failure;
    std::vector<QByteArray> requests;
    QStringList languagesOfLast;
    bool isHeld = false;
    bool isCancelled = false;
};
