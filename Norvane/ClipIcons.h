#pragma once

#include "Norvane/store/Clip.h"

#include <QColor>
#include <QHash>
#include <QObject>
#include <QPixmap>
#include <QTimer>
#include <functional>
#include <vector>

class DesktopEntries;

// The pictures of the list, cached. Main thread.
//
// Application and file icons are found and drawn after the row that wants them was painted: the first icon of
// a theme costs more than a frame. Until then there is a null pixmap, and `iconsChanged` follows.
class ClipIcons : public QObject {
    Q_OBJECT

public:
    explicit ClipIcons(const DesktopEntries &entries);

    // One of our own symbols (a file name in resources/icons) in one colour; `size` in logical pixels.
    [[nodiscard]] QPixmap symbol(const QString &name, int size, const QColor &color, qreal scale);

    // What stands for the clip's content, at most `size` logical pixels on both sides.
    [[nodiscard]] QPixmap kindIcon(const Clip &clip, int size, const QColor &color, qreal scale);

    // Null when there is no identifier, the application is not installed, or its icon is not drawn yet.
    [[nodiscard]] QPixmap appIcon(const std::optional<QString> &bundleIdentifier, int size, qreal scale);

Q_SIGNALS:
    void iconsChanged();

private:
    [[nodiscard]] QPixmap fileIcon(const QString &path, int size, qreal scale);
    void request(const QString &key, std::function<QPixmap()> draw);
    void drawNext();

    struct Request {
        QString key;
        std::function<QPixmap()> draw;
    };

    const DesktopEntries &entries;
    QHash<QString, QPixmap> cache;
    std::vector<Request> requests;
    QTimer drawing;
};
