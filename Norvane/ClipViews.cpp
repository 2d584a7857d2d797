#include "Norvane/ClipViews.h"

#include "Norvane/ClipCellView.h"
#include "Norvane/ClipIcons.h"
#include "Norvane/ClipTitles.h"
#include "Norvane/Palette.h"
#include "Norvane/SlimScrollBar.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

using Metrics::scaled;

namespace {

constexpr int rowSpacing = 2;
constexpr int pageRows = 8;

} // namespace

ClipTableView::ClipTableView(ClipListModel &model, ClipIcons &icons, QWidget *parent)
    : QListView(parent), clips(model)
{
    setModel(&model);
    setItemDelegate(new ClipCellView(icons, model, this));
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    setVerticalScrollBar(new SlimScrollBar(this));
    connect(&icons, &ClipIcons::iconsChanged, viewport(), qOverload<>(&QWidget::update));
}

int ClipTableView::selectedRow() const
{
    const auto rows = selectionModel()->selectedIndexes();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void ClipTableView::selectRow(int row)
{
    const int count = clips.rowCount();
    if (count == 0)
        return;
    const QModelIndex index = clips.index(std::clamp(row, 0, count - 1));
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    scrollTo(index, EnsureVisible);
}

// The list view's own would look for the row in a layout that it was spared.
void ClipTableView::selectionChanged(const QItemSelection &selected, const QItemSelection &deselected)
{
    QAbstractItemView::selectionChanged(selected, deselected); // NOLINT(bugprone-parent-virtual-call)
    if (QAccessible::isActive() && !selected.isEmpty()) {
        QAccessibleEvent event(this, QAccessible::Selection);
        event.setChild(selected.first().top());
        QAccessible::updateAccessibility(&event);
    }
}

void ClipTableView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QAbstractItemView::currentChanged(current, previous); // NOLINT(bugprone-parent-virtual-call)
    if (QAccessible::isActive() && current.isValid() && hasFocus()) {
        QAccessibleEvent event(this, QAccessible::Focus);
        event.setChild(current.row());
        QAccessible::updateAccessibility(&event);
    }
}

// Looks at every clip, which takes a millisecond at 100,000.
void ClipTableView::measureRows()
{
    rowTops.resize(static_cast<size_t>(clips.rowCount()) + 1);
    textRowHeight = ClipCellView::rowHeight(ClipKind::text);
    const int textHeight = textRowHeight + rowSpacing;
    const int imageHeight = ClipCellView::rowHeight(ClipKind::image) + rowSpacing;
    int top = rowSpacing;
    size_t row = 0;
    for (const auto &clip : clips.results()) {
        rowTops[row++] = top;
        top += clip->kind == ClipKind::image ? imageHeight : textHeight;
    }
    rowTops[row] = top;
}

int ClipTableView::rowAt(int y) const
{
    if (y < rowTops.front() || y >= rowTops.back())
        return -1;
    const auto after = std::upper_bound(rowTops.begin(), rowTops.end(), y);
    return static_cast<int>(after - rowTops.begin()) - 1;
}

QRect ClipTableView::visualRect(const QModelIndex &index) const
{
    const auto row = static_cast<size_t>(index.row());
    if (!index.isValid() || row + 1 >= rowTops.size())
        return {};
    return {0, rowTops[row] - verticalOffset(), viewport()->width(),
            rowTops[row + 1] - rowTops[row] - rowSpacing};
}

QModelIndex ClipTableView::indexAt(const QPoint &point) const
{
    return clips.index(rowAt(point.y() + verticalOffset()));
}

void ClipTableView::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    const QRect rect = visualRect(index);
    if (!rect.isValid())
        return;
    const int height = viewport()->height();
    QScrollBar *bar = verticalScrollBar();
    if (hint == PositionAtTop || rect.top() < rowSpacing)
        bar->setValue(bar->value() + rect.top() - rowSpacing);
    else if (hint == PositionAtBottom || rect.bottom() + rowSpacing >= height)
        bar->setValue(bar->value() + rect.bottom() + 1 + rowSpacing - height);
    else if (hint == PositionAtCenter)
        bar->setValue(bar->value() + rect.center().y() - height / 2);
}

// Comes after every reset too, and whenever the view is shown or its font changes.
void ClipTableView::doItemsLayout()
{
    if (textRowHeight != ClipCellView::rowHeight(ClipKind::text))
        measureRows();
    setState(NoState);
    updateGeometries();
    viewport()->update();
}

void ClipTableView::reset()
{
    QAbstractItemView::reset(); // NOLINT(bugprone-parent-virtual-call): the list view would lay out every row
    measureRows();
    updateGeometries();
    verticalScrollBar()->setValue(0);
}

int ClipTableView::verticalOffset() const
{
    return verticalScrollBar()->value();
}

QModelIndex ClipTableView::moveCursor(CursorAction action, Qt::KeyboardModifiers)
{
    const int row = currentIndex().row();
    const int last = clips.rowCount() - 1;
    int target = row; // NOLINT(clang-analyzer-deadcode.DeadStores): for an action that is none of these
    switch (action) {
    case MoveUp:
    case MovePrevious:
    case MoveLeft:
        target = row - 1;
        break;
    case MoveDown:
    case MoveNext:
    case MoveRight:
        target = row + 1;
        break;
    case MovePageUp:
        target = row - pageRows;
        break;
    case MovePageDown:
        target = row + pageRows;
        break;
    case MoveHome:
        target = 0;
        break;
    case MoveEnd:
        target = last;
        break;
    }
    return last < 0 ? QModelIndex() : clips.index(std::clamp(target, 0, last));
}

void ClipTableView::setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags flags)
{
    const QModelIndex index = indexAt(rect.bottomRight()); // where the pointer is
    if (index.isValid())
        selectionModel()->select(index, flags);
}

QRegion ClipTableView::visualRegionForSelection(const QItemSelection &selection) const
{
    QRegion region;
    for (const auto &range : selection) {
        const QRect top = visualRect(range.topLeft());
        const QRect bottom = visualRect(range.bottomRight());
        region += top.united(bottom) & viewport()->rect();
    }
    return region;
}

void ClipTableView::updateGeometries()
{
    const int height = viewport()->height();
    verticalScrollBar()->setRange(0, std::max(0, rowTops.back() - height));
    verticalScrollBar()->setPageStep(height);
    verticalScrollBar()->setSingleStep(ClipCellView::rowHeight(ClipKind::text) / 2);
    QAbstractItemView::updateGeometries(); // NOLINT(bugprone-parent-virtual-call): the list view would lay
                                           // out every row
}

int ClipTableView::firstRowBelow(int y) const
{
    return std::max(0, rowAt(std::max(y + verticalOffset(), rowTops.front())));
}

void ClipTableView::paintRow(QPainter *painter, QStyleOptionViewItem *option, int row) const
{
    const QModelIndex index = clips.index(row);
    option->rect = visualRect(index);
    option->state.setFlag(QStyle::State_Selected, selectionModel()->isSelected(index));
    itemDelegate()->paint(painter, *option, index);
}

void ClipTableView::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const QRect dirty = event->rect();
    for (int row = firstRowBelow(dirty.top()); row < clips.rowCount(); ++row) {
        if (visualRect(clips.index(row)).top() > dirty.bottom())
            break;
        paintRow(&painter, &option, row);
    }
}

QStringList ClipTableView::visibleDetails() const
{
    QStringList details;
    for (int row = firstRowBelow(0); row < clips.rowCount(); ++row) {
        if (visualRect(clips.index(row)).top() >= viewport()->height())
            break;
        details << detailText(*clips.clipAt(row));
    }
    return details;
}

void ClipTableView::paintChangedRows(const QStringList &paintedDetails)
{
    const QStringList details = visibleDetails();
    if (details == paintedDetails)
        return;
    QPainter painter(viewport());
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    const int first = firstRowBelow(0);
    const int inset = scaled(ClipCellView::rowInset);
    for (qsizetype i = 0; i < details.size(); ++i) {
        if (details[i] == paintedDetails.value(i))
            continue;
        const int row = first + static_cast<int>(i);
        // Not to the sides, where the panel's outline is.
        painter.fillRect(visualRect(clips.index(row)).adjusted(inset, 0, -inset, 0),
                         palette().color(QPalette::Active, QPalette::Window));
        paintRow(&painter, &option, row);
    }
}

void ClipTableView::resizeEvent(QResizeEvent *event)
{
    // The list view would lay out every row.
    QAbstractItemView::resizeEvent(event); // NOLINT(bugprone-parent-virtual-call)
    updateGeometries();
}

void ClipTableView::keyPressEvent(QKeyEvent *event)
{
    if (onKey && onKey(event)) {
        event->accept();
        return;
    }
    QListView::keyPressEvent(event);
}

void ClipTableView::mouseDoubleClickEvent(QMouseEvent *event)
{
    // The choice is made when the button is let go: closing with the button down would give the release to
    // the program below.
    if (event->button() == Qt::LeftButton)
        doubleClickedRow = indexAt(event->position().toPoint()).row();
}

void ClipTableView::mouseReleaseEvent(QMouseEvent *event)
{
    QListView::mouseReleaseEvent(event);
    if (event->button() != Qt::LeftButton || doubleClickedRow < 0)
        return;
    const int row = std::exchange(doubleClickedRow, -1);
    if (onDoubleClick)
        onDoubleClick(row);
}
