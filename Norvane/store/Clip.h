#pragma once

#include <QByteArray>
#include <QImage>
#include <QSizeF>
#include <QString>
#include <QStringView>
#include <memory>
#include <optional>
#include <vector>

class ClipStore;
class StoredFormats;

// Characters (grapheme clusters) kept in a clip's text and recognised text.
inline constexpr qsizetype maxStoredTextLength = 200000;

// Image types in the order in which one is chosen among several.
inline constexpr std::u16string_view imageTypes[] = {
    u"public.png", u"public.tiff", u"public.jpeg", u"public.heic", u"com.compuserve.gif",
};

enum class ClipKind : int { text = 0, richText = 1, image = 2, files = 3 };

// Absent for any number that is no kind.
[[nodiscard]] std::optional<ClipKind> clipKind(qint64 rawValue);

// The kind's name for the user.
[[nodiscard]] QString title(ClipKind kind);

// One kept representation of one pasteboard item: index of the item from 0, type, bytes as the pasteboard
// gave them.
struct ClipFormat {
    qint64 item = 0;
    QString type;
    QByteArray data;

    bool operator==(const ClipFormat &) const = default;
};

// The bytes of the first format of this type.
[[nodiscard]] std::optional<QByteArray> dataOfType(const std::vector<ClipFormat> &formats, QStringView type);

// The bytes of the first format of the first of imageTypes that has one.
[[nodiscard]] std::optional<QByteArray> imageDataOf(const std::vector<ClipFormat> &formats);

// The whole text of a clip whose `text` may be shortened; that text where no other is readable.
[[nodiscard]] QString wholeText(const StoredFormats &formats, const QString &shortened);

// The sum of the lengths in bytes.
[[nodiscard]] qint64 totalSize(const std::vector<ClipFormat> &formats);

// SHA-256 as 64 lower-case hexadecimal digits. A string is hashed by its UTF-8 bytes.
[[nodiscard]] QString contentHash(const QByteArray &bytes);
[[nodiscard]] QString contentHash(const QString &text);

// At most maxStoredTextLength characters of a text.
[[nodiscard]] QString shortenedText(const QString &text);

// What one capture gives and the store takes.
struct CapturedClip {
    ClipKind kind = ClipKind::text;
    QString text; // whole: the joined texts, the joined file paths, empty for an image
    QString hash;
    std::vector<ClipFormat> formats;
    std::optional<QString> appID;
    std::optional<QString> appName;
    QSizeF pixelSize{0, 0};
    std::optional<QByteArray> thumbnail; // PNG

    bool operator==(const CapturedClip &) const = default;
};

// One entry of the history. Identity matters: store and views share the object and compare pointers. Main
// thread.
class Clip {
public:
    qint64 id = 0;
    ClipKind kind = ClipKind::text;
    QString text; // shortened; the joined paths of files; empty for an image
    QString hash;
    double created = 0; // seconds since 2001-01-01 00:00:00 UTC
    std::optional<QString> appID;
    std::optional<QString> appName;
    bool pinned = false;
    qint64 size = 0; // bytes of all formats
    QSizeF pixelSize{0, 0};
    std::optional<QByteArray> thumbData;
    std::optional<QString> recognizedText; // of an image: absent until read, empty when nothing was found
    qint64 revision = 0;                   // grows when content or recognised text is replaced; not stored

    // The whole text, read from the stored formats where `text` was shortened; of an image its recognised
    // text.
    [[nodiscard]] std::optional<QString> fullText(const ClipStore &store) const;

    // Whether `text` may be less than the whole text.
    [[nodiscard]] bool mayBeShortened() const;

    // The image representation to show, paste and recognise.
    [[nodiscard]] std::optional<QByteArray> imageData(const ClipStore &store) const;

    // Decoded from thumbData at the first call and kept, a failure (a null image) included.
    [[nodiscard]] const QImage &thumbnail() const;

private:
    mutable std::optional<QImage> decodedThumbnail;
};

// The paths in the text of a files clip, one a line. All are absolute, so a line that does not begin like one
// goes on a path whose name has a line break.
[[nodiscard]] std::vector<QStringView> filePaths(QStringView text);

using ClipPointer = std::shared_ptr<Clip>;
using ClipList = std::vector<ClipPointer>;
