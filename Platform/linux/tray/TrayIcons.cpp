#include "Platform/linux/tray/TrayIcons.h"

#include <QCoreApplication>

namespace {

QString iconName(bool paused)
{
    return paused ? QStringLiteral("com.norvane.app-paused-symbolic")
                  : QStringLiteral("com.norvane.app-symbolic");
}

// A program that was not installed has its icons beside it.
void addIconsBeside()
{
    const QString beside = QCoreApplication::applicationDirPath() + QStringLiteral("/share/icons");
    const QStringList paths = QIcon::themeSearchPaths();
    if (!paths.contains(beside))
        QIcon::setThemeSearchPaths(paths + QStringList(beside));
}

} // namespace

QIcon namedStatusIcon(bool paused)
{
    addIconsBeside();
    return QIcon::fromTheme(iconName(paused), drawnStatusIcon(paused));
}

QIcon drawnStatusIcon(bool paused)
{
    return QIcon(QStringLiteral(":/icons/") + iconName(paused) + QStringLiteral(".svg"));
}
