#pragma once

#include "Norvane/ClipListModel.h"

#include <QCache>
#include <QStaticText>
#include <QStyledItemDelegate>

class ClipIcons;

// Draws one row of the list: number, icon, title, application and detail, pin. Main thread.
class ClipCellView : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr qreal rowInset = 6; // points beside a row

    ClipCellView(ClipIcons &icons, const ClipListModel &model, QObject *parent);

    // 48 points for an image, 44 for every other kind.
    [[nodiscard]] static int rowHeight(ClipKind kind);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    void drawText(QPainter *painter, const QRect &frame, const QString &text, const QFont &font) const;

    ClipIcons &icons;
    const ClipListModel &model;
    mutable QCache<QString, QStaticText> lines{400}; // by text, width and size of the font
};
