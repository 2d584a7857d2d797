#include "Norvane/PreviewPane.h"

#include "Norvane/ClipTitles.h"
#include "Norvane/Palette.h"
#include "Norvane/app/Preferences.h"
#include "Norvane/capture/Thumbnail.h"
#include "Norvane/store/ClipStore.h"
#include "Vesmo/Localisation.h"
#include "Vesmo/Text.h"

#include <QCoreApplication>
#include <QLabel>
#include <QTextLayout>
#include <QThreadPool>

using Metrics::scaled;

namespace {

constexpr qsizetype charactersShown = 50000;
constexpr qsizetype unitsShown = 16 * charactersShown; // some texts are one character with endless marks
constexpr qint64 largeImage = 1'000'000;               // pixels: above, decoding takes longer than a frame
constexpr qint64 largeFile = 1 << 20;                  // bytes: above, reading takes longer than 3 ms
constexpr qreal imageInset = 8, imageTextGap = 6, infoGap = 6, infoInset = 10, infoBottom = 4,
                imageShare = 0.55;
constexpr int infoLines = 3;      // at most
constexpr int longestSide = 4096; // of a decoded preview, pixels

bool isLarge(const Clip &clip)
{
    return clip.pixelSize.width() * clip.pixelSize.height() > largeImage || clip.pixelSize.isEmpty() ||
           clip.size > largeFile;
}

QString lineCountText(const QString &text)
{
    const qsizetype lines = text.count(u'\n') + 1;
    return lines == 1 ? L("1 riga") : L("%@ righe", lines);
}

QString fileCountText(const QString &text)
{
    const auto count = filePaths(text).size();
    return count == 1 ? L("1 file") : L("%@ file", count);
}

// A text broken into so many lines at most, the last one ending in an ellipsis where there would be more.
QString elidedLines(const QString &text, const QFont &font, int width, int lines)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    QStringList broken;
    while (broken.size() < lines) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width);
        const QString rest = text.mid(line.textStart());
        broken << (broken.size() + 1 < lines ? rest.left(line.textLength()).trimmed()
                                             : QFontMetrics(font).elidedText(rest, Qt::ElideRight, width));
    }
    layout.endLayout();
    return broken.join(u'\n');
}

// One path a line.
QString pathLines(const QString &text)
{
    QStringList lines;
    for (const QStringView path : filePaths(text))
        lines << path.toString().replace(u'\n', u'⏎');
    return lines.join(u'\n');
}

} // namespace

PreviewPane::PreviewPane(Pasteboard &pasteboard, const Preferences &preferences, QWidget *parent)
    : QWidget(parent), prefs(preferences), textView(new PreviewText(pasteboard, this)),
      imageView(new PreviewImage(this)), infoLabel(new QLabel(this))
{
    infoLabel->setFont(Metrics::font(11));
    infoLabel->setTextFormat(Qt::PlainText);
    infoLabel->setWordWrap(true);
    infoLabel->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    applyColours();
    arrange(Arrangement::nothing);
}

PreviewPane::~PreviewPane() = default;

QString PreviewPane::information() const
{
    return info;
}

void PreviewPane::show(const ClipPointer &clip, ClipStore &store)
{
    if (!clip) {
        shownClip.reset();
        shownRevision = 0;
        pictures.drop();
        info.clear();
        arrange(Arrangement::nothing);
        return;
    }
    const bool isImage = clip->kind == ClipKind::image;
    const bool isSameClip = clip == shownClip.lock();
    const bool promises = isImage && readsImages && prefs.recognizeText();
    if (isSameClip && clip->revision == shownRevision && promises == promisesText)
        return;
    shownClip = clip;
    shownRevision = clip->revision;
    promisesText = promises;
    if (!isSameClip) {
        pictures.drop();
        if (isImage)
            loadImage(*clip, store); // no revision changes it
    }
    QStringList parts{title(clip->kind)};
    parts += isImage ? showImage(*clip) : showText(*clip);
    if (clip->appName)
        parts << L("da %@", *clip->appName);
    parts << dateText(clip->created);
    info = parts.join(QStringLiteral(" · "));
    placeViews();
}

QStringList PreviewPane::showImage(const Clip &clip)
{
    QStringList parts{L("%@×%@ px", static_cast<qint64>(clip.pixelSize.width()),
                        static_cast<qint64>(clip.pixelSize.height())),
                      byteCountText(clip.size)};
    pixelSize = clip.pixelSize;
    if (clip.recognizedText && !clip.recognizedText->isEmpty()) {
        textView->showText(*clip.recognizedText, Metrics::font(12.5), scaled(96));
        arrange(Arrangement::imageAndText);
        parts << L("testo riconosciuto");
        return parts;
    }
    arrange(Arrangement::imageOnly);
    if (!clip.recognizedText && promisesText)
        parts << L("lettura del testo…");
    return parts;
}

void PreviewPane::loadImage(const Clip &clip, ClipStore &store)
{
    imageView->setImage(clip.thumbnail());
    if (!isLarge(clip)) {
        const auto bytes = clip.imageData(store);
        if (const QImage image = bytes ? decodedPicture(*bytes, longestSide) : QImage(); !image.isNull())
            imageView->setImage(image);
        return;
    }
    store.read(clip,
               [this, isNewest = pictures.next()](const StoredFormats &formats) -> std::function<void()> {
                   const auto bytes = isNewest() ? formats.first(imageTypes) : std::nullopt;
                   if (!bytes)
                       return {};
                   return [this, isNewest, bytes] {
                       if (isNewest())
                           decode(*bytes, isNewest);
                   };
               });
}

// Not where it was read: a choice may wait there.
void PreviewPane::decode(const QByteArray &bytes, const std::function<bool()> &isNewest)
{
    QThreadPool::globalInstance()->start([this, bytes, isNewest, room = imageView->room()] {
        const QImage image = isNewest() ? decodedPicture(bytes, longestSide) : QImage();
        if (image.isNull())
            return;
        const QImage fitted = PreviewImage::fitted(image, room);
        QMetaObject::invokeMethod(qApp, [this, image, fitted, isNewest] {
            if (!isNewest())
                return;
            imageView->setImage(image, fitted);
            Q_EMIT pictureArrived();
        });
    });
}

QStringList PreviewPane::showText(const Clip &clip)
{
    const QString text = clip.kind == ClipKind::files ? pathLines(clip.text) : clip.text;
    const qsizetype shown = lengthOfClusters(QStringView(text).left(unitsShown), charactersShown);
    QFont font = Metrics::font(12);
    font.setFamilies({QStringLiteral("monospace")});
    font.setStyleHint(QFont::Monospace);
    textView->showText(text.left(shown), font, 0);
    arrange(Arrangement::textOnly);
    if (clip.kind == ClipKind::files)
        return {fileCountText(clip.text)};
    return {L("%@ caratteri", clusterCount(clip.text)), lineCountText(clip.text)};
}

void PreviewPane::arrange(Arrangement chosen)
{
    arrangement = chosen;
    textView->setVisible(chosen == Arrangement::textOnly || chosen == Arrangement::imageAndText);
    imageView->setVisible(chosen == Arrangement::imageOnly || chosen == Arrangement::imageAndText);
    placeViews();
}

void PreviewPane::placeViews()
{
    const int infoWidth = std::max(0, width() - 2 * scaled(infoInset));
    infoLabel->setText(elidedLines(info, infoLabel->font(), infoWidth, infoLines));
    infoLabel->setAccessibleName(info);
    const int infoHeight = infoLabel->heightForWidth(infoWidth);
    const int infoTop = height() - scaled(infoBottom) - infoHeight;
    infoLabel->setGeometry(scaled(infoInset), infoTop, infoWidth, infoHeight);

    const int inset = scaled(imageInset);
    const int imageWidth = std::max(0, width() - 2 * inset);
    const int textBottom = infoTop - scaled(infoGap);
    if (arrangement == Arrangement::imageOnly) {
        imageView->setGeometry(inset, inset, imageWidth, std::max(0, infoTop - 2 * inset));
    } else if (arrangement == Arrangement::imageAndText) {
        int imageHeight = static_cast<int>(imageShare * height());
        if (!pixelSize.isEmpty())
            imageHeight =
                qRound(std::min<qreal>(imageHeight, imageWidth * pixelSize.height() / pixelSize.width()));
        imageView->setGeometry(inset, inset, imageWidth, imageHeight);
        const int textTop = inset + imageHeight + scaled(imageTextGap);
        textView->setGeometry(0, textTop, width(), std::max(0, textBottom - textTop));
    } else {
        textView->setGeometry(0, 0, width(), std::max(0, textBottom));
    }
}

void PreviewPane::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeViews();
}

void PreviewPane::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        applyColours();
    QWidget::changeEvent(event);
}

void PreviewPane::applyColours()
{
    QPalette colours;
    colours.setColor(QPalette::WindowText, Palette::secondary(palette()));
    infoLabel->setPalette(colours);
}
