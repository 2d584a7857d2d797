#include "Norvane/ClipTitles.h"

#include "Norvane/store/ClipStore.h"
#include "Vesmo/Localisation.h"
#include "Vesmo/Text.h"

#include <QDateTime>
#include <QLocale>
#include <QStringList>
#include <array>
#include <unicode/datefmt.h>
#include <unicode/reldatefmt.h>

namespace {

constexpr double justNow = 45; // seconds
constexpr size_t namesShown = 4;

bool isLineBreak(QChar c)
{
    return (c >= u'\n' && c <= u'\r') || c == u'\u0085' || c == u'\u2028' || c == u'\u2029';
}

// A character may have any number of marks, and the toolkit takes seconds to draw many: no writing needs as
// many units as this.
QStringView withoutEndlessMarks(QStringView text, qsizetype characters)
{
    constexpr qsizetype unitsPerCharacter = 16;
    const QStringView start = text.left(characters * unitsPerCharacter);
    return start.size() < text.size() && start.back().isHighSurrogate() ? start.chopped(1) : start;
}

// The beginning of a text without leading white space, its tabs widened.
QString head(QStringView text, qsizetype limit)
{
    qsizetype start = 0;
    while (start < text.size() && text[start].isSpace())
        ++start;
    const QStringView rest = withoutEndlessMarks(text.mid(start), limit);
    return rest.left(lengthOfClusters(rest, limit)).toString().replace(u'\t', QStringLiteral("  "));
}

QString joinedLines(const QString &text)
{
    QStringList lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !isLineBreak(text[i]))
            continue;
        if (i > start)
            lines << text.mid(start, i - start);
        start = i + 1;
    }
    return lines.join(QStringLiteral(" ⏎ "));
}

QString fileNames(const QString &text)
{
    const auto paths = filePaths(text);
    QStringList names;
    for (size_t i = 0; i < paths.size() && i < namesShown; ++i) {
        const QStringView path = paths[i];
        const QStringView trimmed = path.endsWith(u'/') && path.size() > 1 ? path.chopped(1) : path;
        const QStringView name = trimmed.mid(trimmed.lastIndexOf(u'/') + 1);
        names << (name.isEmpty() ? trimmed : name).toString();
    }
    if (paths.size() == 1)
        return names.first();
    return L("%@ file: ", paths.size()) + names.join(QStringLiteral(", "));
}

QString imageMeasures(const Clip &clip)
{
    return L("Immagine %@×%@", static_cast<qint64>(clip.pixelSize.width()),
             static_cast<qint64>(clip.pixelSize.height()));
}

bool hasRecognizedText(const Clip &clip)
{
    return clip.recognizedText && !clip.recognizedText->isEmpty();
}

QString rawTitle(const Clip &clip, qsizetype maxLength)
{
    switch (clip.kind) {
    case ClipKind::files:
        return fileNames(clip.text);
    case ClipKind::image:
        return hasRecognizedText(clip) ? head(*clip.recognizedText, 2 * maxLength) : imageMeasures(clip);
    case ClipKind::text:
    case ClipKind::richText:
        break;
    }
    return head(clip.text, 2 * maxLength);
}

icu::Locale icuLocale()
{
    return {AppLanguage::locale().name().toLatin1().constData()};
}

const icu::RelativeDateTimeFormatter *relativeFormatter()
{
    static const auto formatter = [] {
        UErrorCode status = U_ZERO_ERROR;
        auto made = std::make_unique<icu::RelativeDateTimeFormatter>(icuLocale(), nullptr, UDAT_STYLE_SHORT,
                                                                     UDISPCTX_CAPITALIZATION_NONE, status);
        return U_SUCCESS(status) ? std::move(made) : nullptr;
    }();
    return formatter.get();
}

// It is given local times as if they were Greenwich's: the time zone is the toolkit's, which follows its
// changes.
const icu::DateFormat *dateFormatter()
{
    static const auto formatter = [] {
        std::unique_ptr<icu::DateFormat> made(icu::DateFormat::createDateTimeInstance(
            icu::DateFormat::kMedium, icu::DateFormat::kShort, icuLocale()));
        if (made)
            made->setTimeZone(*icu::TimeZone::getGMT());
        return made;
    }();
    return formatter.get();
}

} // namespace

QString titleText(const Clip &clip, qsizetype maxLength)
{
    const QString raw = rawTitle(clip, maxLength);
    QString title = joinedLines(withoutEndlessMarks(raw, 2 * maxLength).toString());
    const qsizetype length = lengthOfClusters(title, maxLength);
    if (length < title.size())
        title = title.left(length) + u'…';
    return title;
}

QString detailText(const Clip &clip)
{
    QStringList parts;
    if (clip.appName)
        parts << *clip.appName;
    parts << relativeTime(clip.created);
    if (clip.kind == ClipKind::text || clip.kind == ClipKind::richText)
        parts << L("%@ caratteri", clusterCount(clip.text));
    else if (clip.kind == ClipKind::image && hasRecognizedText(clip))
        parts << imageMeasures(clip);
    else
        parts << byteCountText(clip.size);
    return parts.join(QStringLiteral(" · "));
}

QString relativeTime(double date)
{
    const double passed = secondsSinceReferenceDate() - date;
    const auto *formatter = relativeFormatter();
    if (passed < justNow || !formatter)
        return L("adesso");

    struct Unit {
        double seconds;
        URelativeDateTimeUnit unit;
    };
    static constexpr std::array units = {
        Unit{365.0 * 86400, UDAT_REL_UNIT_YEAR}, Unit{30.0 * 86400, UDAT_REL_UNIT_MONTH},
        Unit{7.0 * 86400, UDAT_REL_UNIT_WEEK},   Unit{86400, UDAT_REL_UNIT_DAY},
        Unit{3600, UDAT_REL_UNIT_HOUR},          Unit{60, UDAT_REL_UNIT_MINUTE},
        Unit{1, UDAT_REL_UNIT_SECOND},
    };
    const auto &largest = *std::find_if(units.begin(), units.end() - 1,
                                        [passed](const Unit &unit) { return passed >= unit.seconds; });
    icu::UnicodeString text;
    UErrorCode status = U_ZERO_ERROR;
    formatter->formatNumeric(-std::floor(passed / largest.seconds), largest.unit, text, status);
    if (U_FAILURE(status))
        return L("adesso");
    return QString::fromUtf16(text.getBuffer(), text.length());
}

QString dateText(double date)
{
    const auto reference = QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    const QDateTime local = reference.addMSecs(qRound64(date * 1000)).toLocalTime();
    const auto *formatter = dateFormatter();
    if (!formatter)
        return AppLanguage::locale().toString(local, QLocale::ShortFormat);
    icu::UnicodeString text;
    formatter->format(static_cast<UDate>(local.toMSecsSinceEpoch() + local.offsetFromUtc() * 1000LL), text);
    return QString::fromUtf16(text.getBuffer(), text.length());
}

QString byteCountText(qint64 bytes)
{
    if (bytes == 1)
        return L("1 byte");
    if (bytes < 1000)
        return L("%@ byte", bytes);
    static constexpr std::array unitNames = {"kB", "MB", "GB", "TB", "PB"};
    double value = static_cast<double>(bytes) / 1000;
    size_t unit = 0;
    // 999,950 bytes are 1.0 MB, not 1,000 kB: the step up is taken where rounding would reach it.
    while (value >= 999.5 && unit + 1 < unitNames.size()) {
        value /= 1000;
        ++unit;
    }
    const int decimals = unit == 0 ? 0 : unit == 1 ? 1 : 2;
    return AppLanguage::locale().toString(value, 'f', decimals) + u' ' + QLatin1StringView(unitNames[unit]);
}
