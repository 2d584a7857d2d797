#include "Platform/linux/tesseract/ProcessRecognition.h"

#include "Platform/Log.h"
#include "Platform/linux/tesseract/RecognitionProcess.h"
#include "Platform/linux/tesseract/RecognitionProtocol.h"

#include <QDateTime>
#include <QFileInfo>
#include <algorithm>

using RecognitionProtocol::Outcome;
using RecognitionProtocol::ReadAnswer;
using End = RecognitionProcess::End;
using Clock = std::chrono::steady_clock;

namespace {

constexpr qsizetype mostLanguages = 3; // at once: each costs time on every image
constexpr int crashesBeforeRest = 3;

// Several questions come with each image. No longer, since data may grow in place: a copy or a download.
constexpr std::chrono::seconds listingLife(1);

} // namespace

ProcessRecognition::ProcessRecognition(Settings given) : settings(std::move(given)) {}

ProcessRecognition::~ProcessRecognition() = default;

QString ProcessRecognition::defaultProgram()
{
    const QString folder = QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).path();
    const QString beside = folder + QStringLiteral("/norvane-recognize");
    const QString installed = folder + QStringLiteral("/../libexec/norvane/norvane-recognize");
    return QFileInfo::exists(beside) ? beside : installed;
}

QStringList ProcessRecognition::supportedLanguages()
{
    QStringList identifiers;
    for (const auto &language : usableLanguages())
        identifiers << language.identifier;
    return identifiers;
}

std::vector<DataLanguage> ProcessRecognition::usableLanguages()
{
    const std::lock_guard lock(knowledge);
    const auto now = Clock::now();
    if (isCancelled || now < restingUntil || !QFileInfo(settings.program).isExecutable())
        return {};
    if (now >= listedUntil) {
        listed = languagesIn(settings.dataFolder);
        listedUntil = now + listingLife;
    }
    auto languages = listed;
    std::erase_if(languages,
                  [this](const DataLanguage &language) { return leftOut.contains(fileMark(language.code)); });
    return languages;
}

// The codes to load, the main one first; without a match what there is, English rather than another.
QStringList ProcessRecognition::codesFor(const QStringList &languages)
{
    const auto usable = usableLanguages();
    QStringList codes;
    for (const auto &identifier : languages) {
        const auto found = std::ranges::find(usable, identifier, &DataLanguage::identifier);
        if (found != usable.end() && !codes.contains(found->code) && codes.size() < mostLanguages)
            codes << found->code;
    }
    if (codes.isEmpty() && !usable.empty()) {
        const auto english = std::ranges::find(usable, QStringLiteral("eng"), &DataLanguage::code);
        codes << (english != usable.end() ? english->code : usable.front().code);
    }
    return codes;
}

std::optional<RecognizedImage> ProcessRecognition::recognize(const QByteArray &image,
                                                             const QStringList &languages, QString *error)
{
    const std::lock_guard lock(turn);
    QString reason;
    auto answer =
        image.size() <= RecognitionProtocol::longestImage ? read(image, languages, reason) : std::nullopt;
    if (answer && answer->outcome == Outcome::expired)
        reason = QStringLiteral("it took too long");
    else if (answer && answer->outcome == Outcome::failed)
        reason = QStringLiteral("the engine gave up");
    if (error)
        *error = isCancelled ? QString() : reason;
    if (isCancelled || !answer || answer->outcome != Outcome::read)
        return std::nullopt;
    return std::move(answer->image);
}

std::optional<ReadAnswer> ProcessRecognition::read(const QByteArray &image, const QStringList &languages,
                                                   QString &reason)
{
    for (int attempt = 0; attempt < 2; ++attempt) {
        QStringList codes = codesFor(languages);
        while (!codes.isEmpty() && !load(codes))
            codes = codesFor(languages);
        if (codes.isEmpty()) {
            reason = QStringLiteral("no language can be read");
            return std::nullopt;
        }
        if (auto answer = process->read(image, settings.cpuPerImage)) {
            crashes = 0;
            return answer;
        }
        if (process->end() != End::byItself) // else it had been idle for too long: a new one is asked
            break;
    }
    reason = process->endText();
    if (process->end() == End::crash)
        countCrash();
    process.reset();
    return std::nullopt;
}

bool ProcessRecognition::startProcess()
{
    if (process && process->end() == End::none)
        return true;
    loaded.clear();
    process = RecognitionProcess::start(settings.program, isCancelled);
    if (!process && !isCancelled)
        restAfter(QStringLiteral("the recognition process does not start"));
    return process != nullptr;
}

// Whether exactly these languages are loaded now. When not, some of them or all are usable no longer.
bool ProcessRecognition::load(const QStringList &codes)
{
    for (const auto &code : codes) {
        if (!isProven(code))
            return false;
    }
    if (process && process->end() == End::none && loaded == codes)
        return true;
    if (loadInto(codes))
        return true;
    if (!isCancelled)
        restAfter(QStringLiteral("languages load one by one but not together"));
    return false;
}

// Each language is loaded alone once: the engine silently goes on without one among several, and data that is
// damaged inside ends the process.
bool ProcessRecognition::isProven(const QString &code)
{
    const QString mark = fileMark(code);
    if (proven.contains(mark))
        return true;
    // A process that dies may have been the kernel's choice; data that is damaged ends the next one too.
    if (!loadInto({code}) && !(process && process->end() == End::crash && loadInto({code}))) {
        if (process && process->end() == End::tooLong) // a busy machine is not the file's fault
            restAfter(QStringLiteral("the language data took too long to load"));
        else if (process && !isCancelled)
            leaveOut(code);
        return false;
    }
    proven.insert(mark);
    return true;
}

bool ProcessRecognition::loadInto(const QStringList &codes)
{
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (!startProcess())
            return false;
        loaded.clear();
        const auto answer = process->load(settings.dataFolder, codes);
        if (answer) {
            if (*answer)
                loaded = codes;
            return *answer;
        }
        if (process->end() != End::byItself) // it had been idle for too long: a new one is asked
            return false;
    }
    return false;
}

void ProcessRecognition::leaveOut(const QString &code)
{
    logLine(QStringLiteral("Norvane: the language data \"%1\" cannot be loaded").arg(code));
    const std::lock_guard lock(knowledge);
    leftOut.insert(fileMark(code));
}

void ProcessRecognition::countCrash()
{
    if (++crashes < crashesBeforeRest)
        return;
    crashes = 0;
    restAfter(QStringLiteral("the recognition process crashed several times"));
}

void ProcessRecognition::restAfter(const QString &reason)
{
    logLine(QStringLiteral("Norvane: %1; images are not read for %2 s")
                .arg(reason)
                .arg(std::chrono::duration_cast<std::chrono::seconds>(settings.rest).count()));
    const std::lock_guard lock(knowledge);
    restingUntil = Clock::now() + settings.rest;
}

// Tells a file from one that took its place.
QString ProcessRecognition::fileMark(const QString &code) const
{
    const QFileInfo file(settings.dataFolder + u'/' + code + QStringLiteral(".traineddata"));
    return QStringLiteral("%1 %2 %3").arg(code).arg(file.size()).arg(file.lastModified().toMSecsSinceEpoch());
}
