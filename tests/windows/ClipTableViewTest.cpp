#include "Norvane/ClipCellView.h"
#include "Norvane/ClipIcons.h"
#include "Norvane/ClipViews.h"

#include "Platform/memory/MemoryPlatform.h"

#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

namespace {

struct ClipTableViewTest : ::testing::Test {
    // Every third clip is an image, which is higher.
    static ClipKind kindOf(int row) { return row % 3 == 2 ? ClipKind::image : ClipKind::text; }

    void list(int rows)
    {
        ClipList clips;
        for (int row = 0; row < rows; ++row) {
            clips.push_back(std::make_shared<Clip>());
            clips.back()->id = row;
            clips.back()->kind = kindOf(row);
            clips.back()->text = QString::number(row);
        }
        model.setResults(clips);
        view.resize(400, 300);
        view.show();
    }

    QRect rect(int row) { return view.visualRect(model.index(row)); }

    std::unique_ptr<Platform> platform = makeMemoryPlatform();
    ClipIcons icons{*platform->desktopEntries};
    ClipListModel model;
    ClipTableView view{model, icons, nullptr};
};

} // namespace

TEST_F(ClipTableViewTest, RowsOfTwoHeightsFollowEachOther)
{
    list(7);
    for (int row = 0; row < 7; ++row) {
        EXPECT_EQ(rect(row).height(), ClipCellView::rowHeight(kindOf(row)));
        EXPECT_EQ(rect(row).top(), (row > 0 ? rect(row - 1).bottom() + 1 : 0) + 2) << row;
        EXPECT_EQ(view.indexAt(rect(row).center()).row(), row);
    }
    EXPECT_FALSE(view.indexAt({10, rect(6).bottom() + 20}).isValid());
    EXPECT_FALSE(view.indexAt({10, -1}).isValid());
}

TEST_F(ClipTableViewTest, SelectingARowBringsAllOfItIntoView)
{
    list(100000);
    const std::pair<int, int> selections[] = {{99999, 99999},   {0, 0},         {50000, 50000},
                                              {50001, 50001},   {49990, 49990}, {99998, 99998},
                                              {1 << 30, 99999}, {-5, 0}};
    for (const auto &[wanted, row] : selections) {
        view.selectRow(wanted);
        EXPECT_EQ(view.selectedRow(), row);
        EXPECT_GE(rect(row).top(), 0) << row;
        EXPECT_LE(rect(row).bottom(), view.viewport()->height()) << row;
    }
}

TEST_F(ClipTableViewTest, AShorterListIsNotScrolledPastItsEnd)
{
    list(500);
    view.selectRow(499);
    list(3);
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
    EXPECT_GE(rect(0).top(), 0);
    EXPECT_EQ(view.selectedRow(), -1);
}

TEST_F(ClipTableViewTest, DoubleClickChoosesWhenTheButtonIsLetGo)
{
    list(7);
    int chosen = -1;
    view.onDoubleClick = [&chosen](int row) { chosen = row; };
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, rect(2).center());
    EXPECT_EQ(view.selectedRow(), 2);
    EXPECT_EQ(chosen, -1);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, rect(2).center());
    EXPECT_EQ(chosen, -1) << "the button is still down";
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, rect(2).center());
    EXPECT_EQ(chosen, 2);
    const QPoint below(10, rect(6).bottom() + 20);
    chosen = -1;
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, below);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, below);
    EXPECT_EQ(chosen, -1);
    QTest::mouseClick(view.viewport(), Qt::RightButton, {}, rect(4).center());
    EXPECT_EQ(view.selectedRow(), 4);
}
