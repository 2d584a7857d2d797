#include "Norvane/ClipCellView.h"

#include "Norvane/ClipIcons.h"
#include "Norvane/ClipTitles.h"
#include "Norvane/Palette.h"

#include <QPainter>
#include <QPainterPath>

using Metrics::scaled;

namespace {

// Where the parts of a row stand, in points.
constexpr qreal indexLeading = 2, indexWidth = 16, iconGap = 4, iconSize = 32, titleGap = 9, textTop = 5,
                textBottom = 5, pinTrailing = 8, pinTop = 7, pinWidth = 12, titlePinGap = 6, appIconSize = 13,
                detailGap = 4, detailTrailing = 8, iconRadius = 4, selectionRadius = 7;

void drawIcon(QPainter *painter, const QRect &frame, const QPixmap &icon, bool rounded)
{
    if (icon.isNull())
        return;
    const QSizeF size = icon.deviceIndependentSize();
    const QRectF target(frame.center().x() + 0.5 - size.width() / 2,
                        frame.center().y() + 0.5 - size.height() / 2, size.width(), size.height());
    painter->save();
    if (rounded) {
        QPainterPath path;
        path.addRoundedRect(target, scaled(iconRadius), scaled(iconRadius));
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setClipPath(path);
    }
    painter->drawPixmap(target.toRect(), icon);
    painter->restore();
}

} // namespace

// One line, cut to its frame. Shaping text is most of what a row costs, and the same rows are painted at
// every opening, so the glyphs are kept.
void ClipCellView::drawText(QPainter *painter, const QRect &frame, const QString &text,
                            const QFont &font) const
{
    const QString key = QString::number(frame.width()) + u'@' + QString::number(font.pointSizeF()) + u'@' +
                        QString::number(font.pixelSize()) + u' ' + text;
    if (!lines.contains(key)) {
        auto made =
            std::make_unique<QStaticText>(QFontMetrics(font).elidedText(text, Qt::ElideRight, frame.width()));
        made->setTextFormat(Qt::PlainText);
        QTextOption option;
        option.setWrapMode(QTextOption::NoWrap);
        made->setTextOption(option);
        made->prepare(painter->transform(), font);
        lines.insert(key, made.release());
    }
    const QStaticText *line = lines.object(key);
    painter->setFont(font);
    painter->drawStaticText(QPointF(frame.left(), frame.top() + (frame.height() - line->size().height()) / 2),
                            *line);
}

ClipCellView::ClipCellView(ClipIcons &clipIcons, const ClipListModel &listModel, QObject *parent)
    : QStyledItemDelegate(parent), icons(clipIcons), model(listModel)
{
}

int ClipCellView::rowHeight(ClipKind kind)
{
    return scaled(kind == ClipKind::image ? 48 : 44);
}

QSize ClipCellView::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const ClipPointer clip = model.clipAt(index.row());
    return {option.rect.width(), rowHeight(clip ? clip->kind : ClipKind::text)};
}

void ClipCellView::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    const ClipPointer clip = model.clipAt(index.row());
    if (!clip)
        return;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const QColor label = selected ? Palette::onAccent(option.palette) : Palette::label(option.palette);
    const QColor secondary =
        selected ? Palette::secondaryOnAccent(option.palette) : Palette::secondary(option.palette);
    const qreal scale = painter->device()->devicePixelRatioF();
    const QRect row = option.rect.adjusted(scaled(rowInset), 0, -scaled(rowInset), 0);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (selected) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(Palette::accent(option.palette));
        painter->drawRoundedRect(row, scaled(selectionRadius), scaled(selectionRadius));
    }

    const QRect number(row.left() + scaled(indexLeading), row.top(), scaled(indexWidth), row.height());
    if (index.row() < 9) {
        painter->setFont(Metrics::font(11));
        painter->setPen(secondary);
        painter->drawText(number, Qt::AlignCenter, QString::number(index.row() + 1));
    }

    const int side = scaled(iconSize);
    const QRect icon(number.right() + 1 + scaled(iconGap), row.top() + (row.height() - side) / 2, side, side);
    drawIcon(painter, icon, icons.kindIcon(*clip, side, secondary, scale), clip->kind == ClipKind::image);

    const int pinSpace = clip->pinned ? scaled(pinWidth + titlePinGap) : 0;
    const int textLeft = icon.right() + 1 + scaled(titleGap);
    const QFont titleFont = Metrics::font(13);
    const QFont detailFont = Metrics::font(11);
    const QRect titleFrame(textLeft, row.top() + scaled(textTop),
                           row.right() - scaled(pinTrailing) - pinSpace - textLeft,
                           QFontMetrics(titleFont).height());
    painter->setPen(label);
    drawText(painter, titleFrame, titleText(*clip, listTitleLength), titleFont);

    const int detailHeight = QFontMetrics(detailFont).height();
    QRect detailFrame(textLeft, row.bottom() + 1 - scaled(textBottom) - detailHeight,
                      row.right() - scaled(detailTrailing) - textLeft, detailHeight);
    const int appSide = scaled(appIconSize);
    const QPixmap appIcon = icons.appIcon(clip->appID, appSide, scale);
    if (!appIcon.isNull()) {
        drawIcon(painter, {detailFrame.left(), detailFrame.center().y() - appSide / 2, appSide, appSide},
                 appIcon, false);
        detailFrame.setLeft(detailFrame.left() + appSide + scaled(detailGap));
    }
    painter->setPen(secondary);
    drawText(painter, detailFrame, detailText(*clip), detailFont);

    if (clip->pinned) {
        const int pinSide = scaled(pinWidth);
        const QRect pin(row.right() + 1 - scaled(pinTrailing) - pinSide, row.top() + scaled(pinTop), pinSide,
                        pinSide);
        drawIcon(painter, pin,
                 icons.symbol(QStringLiteral("pin-fill"), pinSide,
                              selected ? label : Palette::orange(option.palette), scale),
                 false);
    }
    painter->restore();
}
