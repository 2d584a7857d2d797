#pragma once

#include "Platform/RecognitionService.h"
#include "Platform/linux/tesseract/LanguageData.h"

#include <QHash>
#include <QSet>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>

class RecognitionProcess;
namespace RecognitionProtocol {
struct ReadAnswer;
}

// Reads images in a process of its own, which is started when it is needed and goes when it is not: a crash,
// an endless loop or a gigabyte of memory costs one image, never the program.
//
// Language data that does not load is left out as long as its file stays the same. After a few crashes in a
// row, or when the process cannot be started, nothing can be read for a while: supportedLanguages is empty.
class ProcessRecognition : public RecognitionService {
public:
    struct Settings {
        QString program = defaultProgram();
        QString dataFolder = defaultDataFolder();
        std::chrono::milliseconds cpuPerImage{20'000}; // of a processor
        std::chrono::milliseconds rest{60'000};        // after crashes in a row
    };
    explicit ProcessRecognition(Settings settings);
    ~ProcessRecognition() override;

    [[nodiscard]] QStringList supportedLanguages() override;
    [[nodiscard]] std::optional<RecognizedImage>
    recognize(const QByteArray &image, const QStringList &languages, QString *error) override;
    void cancel() override { isCancelled = true; }

    // The recognition process's own program file: beside this one, or where it is installed.
    [[nodiscard]] static QString defaultProgram();

private:
    [[nodiscard]] std::vector<DataLanguage> usableLanguages();
    [[nodiscard]] QStringList codesFor(const QStringList &languages);
    [[nodiscard]] std::optional<RecognitionProtocol::ReadAnswer>
    read(const QByteArray &image, const QStringList &languages, QString &reason);
    [[nodiscard]] bool startProcess();
    [[nodiscard]] bool load(const QStringList &codes);
    [[nodiscard]] bool isProven(const QString &code);
    [[nodiscard]] bool loadInto(const QStringList &codes);
    void leaveOut(const QString &code);
    void restAfter(const QString &reason);
    void countCrash();
    [[nodiscard]] QString fileMark(const QString &code) const;

    const Settings settings;
    std::atomic<bool> isCancelled = false;

    std::mutex turn; // one recognition after the other; guards what follows
    std::unique_ptr<RecognitionProcess> process;
    QStringList loaded;   // codes, by the process that runs
    QSet<QString> proven; // marks of files that were loaded alone
    int crashes = 0;      // in a row

    std::mutex knowledge;  // guards what follows
    QSet<QString> leftOut; // marks of files that cannot be loaded
    std::chrono::steady_clock::time_point restingUntil, listedUntil;
    std::vector<DataLanguage> listed; // what the data folder held when it was looked at
};
