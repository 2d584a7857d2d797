#include "Norvane/store/Clip.h"

#include "Norvane/store/ClipStore.h"
#include "Norvane/store/StoredFormats.h"
#include "Vesmo/Localisation.h"
#include "Vesmo/Text.h"

#include <QCryptographicHash>
#include <QStringDecoder>
#include <algorithm>
#include <numeric>

std::optional<ClipKind> clipKind(qint64 rawValue)
{
    if (rawValue < static_cast<int>(ClipKind::text) || rawValue > static_cast<int>(ClipKind::files))
        return std::nullopt;
    return static_cast<ClipKind>(rawValue);
}

QString title(ClipKind kind)
{
    switch (kind) {
    case ClipKind::text:
        return L("Testo");
    case ClipKind::richText:
        return L("Testo formattato");
    case ClipKind::image:
        return L("Immagine");
    case ClipKind::files:
        return L("File##files");
    }
    return {};
}

std::vector<QStringView> filePaths(QStringView text)
{
    std::vector<QStringView> paths;
    for (const QStringView line : text.tokenize(u'\n', Qt::SkipEmptyParts)) {
        const bool goesOn = !paths.empty() && paths.back().startsWith(u'/') && !line.startsWith(u'/');
        if (goesOn)
            paths.back() = QStringView(paths.back().begin(), line.end());
        else
            paths.push_back(line);
    }
    return paths;
}

std::optional<QByteArray> dataOfType(const std::vector<ClipFormat> &formats, QStringView type)
{
    const auto found = std::find_if(formats.begin(), formats.end(),
                                    [type](const auto &format) { return format.type == type; });
    return found == formats.end() ? std::nullopt : std::optional(found->data);
}

std::optional<QByteArray> imageDataOf(const std::vector<ClipFormat> &formats)
{
    for (const auto type : imageTypes) {
        if (auto data = dataOfType(formats, type))
            return data;
    }
    return std::nullopt;
}

QString wholeText(const StoredFormats &formats, const QString &shortened)
{
    static constexpr std::u16string_view plainText[] = {u"public.utf8-plain-text"};
    const auto data = formats.first(plainText);
    if (!data)
        return shortened;
    // Stateless: a sequence that is cut off at the end is an error, not the beginning of more.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString whole = decoder(*data);
    return decoder.hasError() ? shortened : whole;
}

qint64 totalSize(const std::vector<ClipFormat> &formats)
{
    return std::accumulate(formats.begin(), formats.end(), qint64{0},
                           [](qint64 sum, const ClipFormat &format) { return sum + format.data.size(); });
}

QString contentHash(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

QString contentHash(const QString &text)
{
    return contentHash(text.toUtf8());
}

QString shortenedText(const QString &text)
{
    return text.left(lengthOfClusters(text, maxStoredTextLength));
}

std::optional<QString> Clip::fullText(const ClipStore &store) const
{
    if (kind == ClipKind::image)
        return recognizedText;
    return mayBeShortened() ? wholeText(store.stored(*this), text) : text;
}

bool Clip::mayBeShortened() const
{
    // Fewer units than characters allowed: it was not shortened.
    return kind != ClipKind::image && text.size() >= maxStoredTextLength;
}

std::optional<QByteArray> Clip::imageData(const ClipStore &store) const
{
    return store.stored(*this).first(imageTypes);
}

const QImage &Clip::thumbnail() const
{
    if (!decodedThumbnail)
        decodedThumbnail = thumbData ? QImage::fromData(*thumbData) : QImage();
    return *decodedThumbnail;
}
