#pragma once

#include "Norvane/ClipListModel.h"

#include <QListView>
#include <functional>

class ClipIcons;

// The list of clips. Rows of two heights are found by sums made once a result, so that 100,000 rows cost no
// more than the few on screen. Main thread.
class ClipTableView : public QListView {
    Q_OBJECT

public:
    ClipTableView(ClipListModel &model, ClipIcons &icons, QWidget *parent);

    // Offered each key first; false leaves it to the list's own keys.
    std::function<bool(QKeyEvent *)> onKey;
    std::function<void(int row)> onDoubleClick;

    [[nodiscard]] int selectedRow() const; // -1 when none
    void selectRow(int row);

    // The second lines of the rows on screen.
    [[nodiscard]] QStringList visibleDetails() const;

    // Within a paint event of the viewport that shows rows with these details already: paints those over that
    // have others.
    void paintChangedRows(const QStringList &paintedDetails);

    [[nodiscard]] QRect visualRect(const QModelIndex &index) const override;
    [[nodiscard]] QModelIndex indexAt(const QPoint &point) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint) override;
    void doItemsLayout() override;
    void reset() override;
    void keyboardSearch(const QString &) override {}

protected:
    [[nodiscard]] int verticalOffset() const override;
    [[nodiscard]] int horizontalOffset() const override { return 0; }
    [[nodiscard]] QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags flags) override;
    [[nodiscard]] QRegion visualRegionForSelection(const QItemSelection &selection) const override;
    void selectionChanged(const QItemSelection &selected, const QItemSelection &deselected) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    void updateGeometries() override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    [[nodiscard]] int rowAt(int y) const; // contents coordinates; -1 outside
    void measureRows();
    [[nodiscard]] int firstRowBelow(int y) const; // of the viewport
    void paintRow(QPainter *painter, QStyleOptionViewItem *option, int row) const;

    ClipListModel &clips;
    std::vector<int> rowTops{0}; // one more than rows: the last is the height of all
    int textRowHeight = 0;       // that they were measured with
    int doubleClickedRow = -1;
};
