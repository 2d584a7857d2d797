#include "Norvane/FilterControl.h"

#include "Norvane/FilterAccessibility.h"
#include "Norvane/Palette.h"

#include <QMouseEvent>
#include <QPainter>

using Metrics::scaled;

namespace {

constexpr qreal controlHeight = 26, labelPadding = 10, controlRadius = 7, segmentRadius = 5, segmentInset = 2;

} // namespace

FilterControl::FilterControl(const QStringList &segmentLabels, QWidget *parent)
    : QWidget(parent), labels(segmentLabels)
{
    setFont(Metrics::font(12));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::NoFocus);
    FilterAccessibility::install();
}

void FilterControl::setSelectedSegment(int segment)
{
    if (selectedSegment_ == segment)
        return;
    selectedSegment_ = segment;
    update();
    FilterAccessibility::announceSelection(*this);
}

void FilterControl::choose(int segment)
{
    if (segment == selectedSegment_)
        return;
    setSelectedSegment(segment);
    Q_EMIT segmentChosen(segment);
}

QSize FilterControl::sizeHint() const
{
    int width = 0;
    for (const auto &label : labels)
        width += fontMetrics().horizontalAdvance(label) + 2 * scaled(labelPadding);
    return {width, scaled(controlHeight)};
}

QRect FilterControl::segmentRect(int segment) const
{
    int left = 0;
    for (int i = 0; i < segment; ++i)
        left += fontMetrics().horizontalAdvance(labels[i]) + 2 * scaled(labelPadding);
    return {left, 0, fontMetrics().horizontalAdvance(labels[segment]) + 2 * scaled(labelPadding), height()};
}

void FilterControl::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Palette::field(palette()));
    painter.drawRoundedRect(rect(), scaled(controlRadius), scaled(controlRadius));
    for (int i = 0; i < labels.size(); ++i) {
        const QRect segment = segmentRect(i);
        const bool selected = i == selectedSegment_;
        if (selected) {
            const int inset = scaled(segmentInset);
            painter.setPen(Qt::NoPen);
            painter.setBrush(Palette::accent(palette()));
            painter.drawRoundedRect(segment.adjusted(inset, inset, -inset, -inset), scaled(segmentRadius),
                                    scaled(segmentRadius));
        }
        painter.setPen(selected ? Palette::onAccent(palette()) : Palette::label(palette()));
        painter.drawText(segment, Qt::AlignCenter, labels[i]);
    }
}

void FilterControl::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    for (int i = 0; i < labels.size(); ++i) {
        if (segmentRect(i).contains(event->position().toPoint())) {
            choose(i);
            return;
        }
    }
}
