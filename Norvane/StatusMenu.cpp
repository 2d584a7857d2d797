#include "Norvane/StatusMenu.h"

#include "Norvane/ClipTitles.h"
#include "Vesmo/Localisation.h"
#include "Vesmo/Text.h"

#include <QGuiApplication>
#include <QPainter>

namespace {

constexpr size_t recentClips = 10;
constexpr size_t digits = 9;
constexpr qsizetype titleLimit = 120; // characters asked for
constexpr qsizetype titleLength = 60; // characters shown
constexpr qsizetype toolTipLength = 500;
constexpr QSize imageSize(28, 20); // logical pixels

ClosureMenuItem row(const QString &title, std::function<void()> handler, const QString &key = {})
{
    ClosureMenuItem item;
    item.title = title;
    item.key = key;
    item.handler = std::move(handler);
    return item;
}

ClosureMenuItem separator()
{
    ClosureMenuItem item;
    item.separator = true;
    return item;
}

QString beginning(const QString &text, qsizetype characters)
{
    return text.left(lengthOfClusters(text, characters));
}

QString menuTitle(const Clip &clip)
{
    const QString title = titleText(clip, titleLimit);
    const QString shown = beginning(title, titleLength);
    return shown.size() < title.size() ? shown + u'…' : title;
}

// The thumbnail, fitted and centred.
QImage menuImage(const Clip &clip)
{
    if (clip.kind != ClipKind::image || clip.thumbnail().isNull())
        return {};
    const qreal scale = qGuiApp->devicePixelRatio();
    const QSize pixels = (QSizeF(imageSize) * scale).toSize();
    const QImage &thumbnail = clip.thumbnail();
    const QSize size = thumbnail.size().scaled(pixels, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    const QImage fitted = thumbnail.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const QPoint corner((pixels.width() - size.width()) / 2, (pixels.height() - size.height()) / 2);
    QPainter(&image).drawImage(corner, fitted);
    image.setDevicePixelRatio(scale);
    return image;
}

ClosureMenuItem clipRow(const ClipPointer &clip, size_t position, const StatusMenuActions &actions)
{
    auto item = row(
        menuTitle(*clip), [paste = actions.paste, clip] { paste(clip, PasteMode::paste); },
        position < digits ? QString::number(position + 1) : QString());
    item.image = menuImage(*clip);
    if (item.image.isNull() && clip->pinned)
        item.symbol = QStringLiteral(":/icons/pin-fill.svg");
    const QString text =
        clip->kind == ClipKind::image ? clip->recognizedText.value_or(QString()) : clip->text;
    item.toolTip = beginning(text, toolTipLength);
    return item;
}

} // namespace

std::vector<ClosureMenuItem> statusMenuItems(const ClipList &clips, bool paused, const QString &shortcut,
                                             const StatusMenuActions &actions)
{
    std::vector<ClosureMenuItem> items;
    items.push_back(row(L("Mostra la cronologia   %@", shortcut), actions.showPopup));
    items.back().toolTip = shortcut;
    items.push_back(separator());
    for (size_t i = 0; i < clips.size() && i < recentClips; ++i)
        items.push_back(clipRow(clips[i], i, actions));
    if (clips.empty()) {
        items.push_back(row(L("Ancora niente: copia qualcosa"), {}));
        items.back().enabled = false;
    }
    items.push_back(separator());
    items.push_back(row(paused ? L("Riprendi la registrazione") : L("Metti in pausa la registrazione"),
                        actions.togglePause));
    items.push_back(row(L("Svuota la cronologia…"), actions.confirmClear));
    items.push_back(separator());
    items.push_back(row(L("Esci da Norvane"), actions.quit, QStringLiteral("q")));
    return items;
}
