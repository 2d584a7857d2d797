#include "Platform/linux/tray/TrayIcons.h"

#include <QCoreApplication>
#include <QPainter>
#include <array>

namespace {

constexpr std::array sizes = {16, 22, 24, 32, 48, 64}; // pixels; what panels ask for

QString iconName(bool paused)
{
    return paused ? QStringLiteral("com.norvane.app-paused-symbolic")
                  : QStringLiteral("com.norvane.app-symbolic");
}

QPixmap glyph(const QIcon &source, int size, const QColor &color)
{
    QPixmap pixmap = source.pixmap(size, size);
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), color);
    return pixmap;
}

// Light with a dark rim: an embedded icon is not told what it lies on.
QPixmap rimmed(const QIcon &source, int size)
{
    QPixmap result(size, size);
    result.fill(Qt::transparent);
    const int rim = qMax(1, size / 22);
    const int inner = size - 2 * rim;
    const QPixmap dark = glyph(source, inner, QColor(40, 40, 40, 150));
    const QPixmap light = glyph(source, inner, QColor(245, 245, 245));
    QPainter painter(&result);
    for (const int x : {-rim, 0, rim}) {
        for (const int y : {-rim, 0, rim}) {
            if (x != 0 || y != 0)
                painter.drawPixmap(rim + x, rim + y, dark);
        }
    }
    painter.drawPixmap(rim, rim, light);
    return result;
}

// The program that was not installed has its icons beside it.
void addIconsBeside()
{
    const QString beside = QCoreApplication::applicationDirPath() + QStringLiteral("/share/icons");
    QStringList paths = QIcon::themeSearchPaths();
    if (!paths.contains(beside))
        QIcon::setThemeSearchPaths(paths << beside);
}

} // namespace

QIcon namedStatusIcon(bool paused)
{
    addIconsBeside();
    return QIcon::fromTheme(iconName(paused), drawnStatusIcon(paused));
}

QIcon drawnStatusIcon(bool paused)
{
    const QIcon source(QStringLiteral(":/icons/") + iconName(paused) + QStringLiteral(".svg"));
    QIcon icon;
    for (const int size : sizes)
        icon.addPixmap(rimmed(source, size));
    return icon;
}
