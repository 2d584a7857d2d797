#include "Norvane/ClipIcons.h"

#include "Platform/DesktopEntries.h"

#include <QFile>
#include <QIcon>
#include <QMimeDatabase>
#include <QPainter>

namespace {

QString cacheKey(const QString &what, int size, qreal scale, const QColor &color = {})
{
    return what + u'\n' + QString::number(size) + u'@' + QString::number(scale) + color.name(QColor::HexArgb);
}

QPixmap themeIcon(const QString &name, int size, qreal scale)
{
    const QIcon icon = name.startsWith(u'/') ? QIcon(name) : QIcon::fromTheme(name);
    return icon.pixmap(QSize(size, size), scale);
}

// The theme's icon for a file by its name alone: looking at the file itself could wait for a dead network
// share.
QString mimeIconName(const QString &path)
{
    if (path.endsWith(u'/'))
        return QStringLiteral("folder");
    static const QMimeDatabase database;
    const auto type = database.mimeTypeForFile(path, QMimeDatabase::MatchExtension);
    if (type.isDefault() && !path.section(u'/', -1).contains(u'.'))
        return QStringLiteral("folder");
    return QIcon::hasThemeIcon(type.iconName()) ? type.iconName() : type.genericIconName();
}

QString kindSymbol(ClipKind kind)
{
    switch (kind) {
    case ClipKind::richText:
        return QStringLiteral("textformat");
    case ClipKind::image:
        return QStringLiteral("photo");
    case ClipKind::files:
        return QStringLiteral("doc");
    case ClipKind::text:
        break;
    }
    return QStringLiteral("text-alignleft");
}

} // namespace

ClipIcons::ClipIcons(const DesktopEntries &applicationEntries) : entries(applicationEntries)
{
    drawing.setSingleShot(true);
    drawing.setInterval(0);
    connect(&drawing, &QTimer::timeout, this, &ClipIcons::drawNext);
}

QPixmap ClipIcons::symbol(const QString &name, int size, const QColor &color, qreal scale)
{
    const QString key = cacheKey(name, size, scale, color);
    const auto cached = cache.constFind(key);
    if (cached != cache.constEnd())
        return *cached;
    QPixmap pixmap =
        QIcon(QStringLiteral(":/icons/") + name + QStringLiteral(".svg")).pixmap(QSize(size, size), scale);
    if (!pixmap.isNull()) {
        QPainter painter(&pixmap);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(pixmap.rect(), color);
    }
    cache.insert(key, pixmap);
    return pixmap;
}

QPixmap ClipIcons::kindIcon(const Clip &clip, int size, const QColor &color, qreal scale)
{
    const int symbolSize = size * 17 / 32;
    if (clip.kind == ClipKind::image && !clip.thumbnail().isNull()) {
        const QString key = cacheKey(QStringLiteral("clip ") + QString::number(clip.id), size, scale);
        const auto cached = cache.constFind(key);
        if (cached != cache.constEnd())
            return *cached;
        QPixmap pixmap = QPixmap::fromImage(clip.thumbnail().scaled(
            QSize(size, size) * scale, Qt::KeepAspectRatio, Qt::SmoothTransformation));
        pixmap.setDevicePixelRatio(scale);
        cache.insert(key, pixmap);
        return pixmap;
    }
    if (clip.kind == ClipKind::files) {
        const auto paths = filePaths(clip.text);
        QPixmap icon = paths.empty() ? QPixmap() : fileIcon(paths.front().toString(), size, scale);
        if (!icon.isNull())
            return icon;
    }
    return symbol(kindSymbol(clip.kind), symbolSize, color, scale);
}

QPixmap ClipIcons::appIcon(const std::optional<QString> &bundleIdentifier, int size, qreal scale)
{
    if (!bundleIdentifier || bundleIdentifier->isEmpty())
        return {};
    const QString key = cacheKey(QStringLiteral("application ") + *bundleIdentifier, size, scale);
    const auto cached = cache.constFind(key);
    if (cached != cache.constEnd())
        return *cached;
    request(key, [this, identifier = *bundleIdentifier, size, scale] {
        const auto name = entries.iconName(identifier);
        return name && !name->isEmpty() ? themeIcon(*name, size, scale) : QPixmap();
    });
    return {};
}

QPixmap ClipIcons::fileIcon(const QString &path, int size, qreal scale)
{
    const QString suffix = path.section(u'/', -1);
    const QString key = cacheKey(QStringLiteral("file ") + suffix, size, scale);
    const auto cached = cache.constFind(key);
    if (cached != cache.constEnd())
        return *cached;
    request(key, [path, size, scale] { return themeIcon(mimeIconName(path), size, scale); });
    return {};
}

void ClipIcons::request(const QString &key, std::function<QPixmap()> draw)
{
    const auto sameKey = [&key](const Request &request) { return request.key == key; };
    if (std::any_of(requests.begin(), requests.end(), sameKey))
        return;
    requests.push_back({key, std::move(draw)});
    if (!drawing.isActive())
        drawing.start();
}

void ClipIcons::drawNext()
{
    if (requests.empty())
        return;
    const Request next = std::move(requests.front());
    requests.erase(requests.begin());
    const QPixmap drawn = next.draw();
    cache.insert(next.key, drawn);
    if (!requests.empty())
        drawing.start(); // one an event-loop turn, so that keys are answered in between
    if (!drawn.isNull())
        Q_EMIT iconsChanged();
}
