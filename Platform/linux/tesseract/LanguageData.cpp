#include "Platform/linux/tesseract/LanguageData.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QtEndian>
#include <algorithm>
#include <array>

namespace {

const QString suffix = QStringLiteral(".traineddata");

struct Name {
    const char *code;
    const char *identifiers; // separated by spaces
};

// Codes that are no language code with a fixed meaning. Every other one is ISO 639-2.
constexpr std::array names{
    Name{"chi_sim", "zh-Hans zh-CN zh-SG zh"},
    Name{"chi_tra", "zh-Hant zh-TW zh-HK zh-MO"},
    Name{"nor", "nb nn no"},
    Name{"srp", "sr sr-Cyrl"},
    Name{"srp_latn", "sr-Latn"},
    Name{"aze_cyrl", "az-Cyrl"},
    Name{"uzb_cyrl", "uz-Cyrl"},
    Name{"kmr", "ku"},
    Name{"fil", "fil tl"},
};

// The parts of a data file by their number in its table.
constexpr int networkPart = 17, networkCharactersPart = 21, networkCodesPart = 22;
constexpr int mostParts = 64;

} // namespace

QString defaultDataFolder()
{
    const QString set = qEnvironmentVariable("TESSDATA_PREFIX");
    return set.isEmpty() ? QStringLiteral("/usr/share/tesseract-ocr/5/tessdata") : set;
}

QStringList identifiersOf(const QString &code)
{
    for (const auto &name : names) {
        if (code == QLatin1StringView(name.code))
            return QString::fromLatin1(name.identifiers).split(u' ');
    }
    const bool isPlain =
        code.size() == 3 && std::ranges::all_of(code, [](QChar c) { return c >= u'a' && c <= u'z'; });
    if (!isPlain || code == u"osd" || code == u"equ")
        return {};
    const QString shorter = QLocale::languageToCode(QLocale::codeToLanguage(code));
    return {shorter.isEmpty() ? code : shorter};
}

bool isLanguageData(const QByteArray &start, qint64 fileSize)
{
    constexpr qsizetype countSize = 4;
    constexpr qsizetype offsetSize = 8;
    if (start.size() < countSize)
        return false;
    const auto parts = qFromLittleEndian<qint32>(start.constData());
    const qsizetype tableEnd = countSize + parts * offsetSize;
    if (parts <= networkCodesPart || parts > mostParts || start.size() < tableEnd)
        return false;
    qint64 last = tableEnd;
    for (int part = 0; part < parts; ++part) {
        const auto offset = qFromLittleEndian<qint64>(start.constData() + countSize + part * offsetSize);
        const bool isAbsent = offset == -1;
        const bool isNeeded =
            part == networkPart || part == networkCharactersPart || part == networkCodesPart;
        if (isAbsent ? isNeeded : offset < last || offset >= fileSize)
            return false;
        if (!isAbsent)
            last = offset;
    }
    return true;
}

std::vector<DataLanguage> languagesIn(const QString &folder)
{
    constexpr qsizetype tableLimit = 4 + 8 * mostParts;
    std::vector<DataLanguage> found;
    for (const auto &entry : QDir(folder).entryInfoList({u'*' + suffix}, QDir::Files, QDir::Name)) {
        const QString code = entry.fileName().chopped(suffix.size());
        const QStringList identifiers = identifiersOf(code);
        QFile file(entry.filePath());
        if (identifiers.isEmpty() || !file.open(QIODevice::ReadOnly) ||
            !isLanguageData(file.read(tableLimit), file.size()))
            continue;
        for (const auto &identifier : identifiers)
            found.push_back({identifier, code});
    }
    return found;
}
