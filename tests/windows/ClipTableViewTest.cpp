#include "Norvane/ClipCellView.h"
#include "Norvane/ClipViews.h"

#include "Norvane/ClipIcons.h"
#include "Platform/memory/MemoryPlatform.h"

#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

namespace {

struct ClipTableViewTest : ::testing::Test {
    std::unique_ptr<Platform> platform = makeMemoryPlatform();
    ClipIcons icons{*platform->desktopEntries};
    ClipListModel model;
    ClipTableView view{model, icons, nullptr};

    // Every third clip is an image, which is higher.
    void list(int rows)
    {
        ClipList clips;
        for (int i = 0; i < rows; ++i) {
            auto clip = std::make_shared<Clip>();
            clip->id = i;
            clip->kind = i % 3 == 2 ? ClipKind::image : ClipKind::text;
            clip->text = QString::number(i);
            clips.push_back(clip);
        }
        model.setResults(clips);
        view.resize(400, 300);
        view.show();
    }

    QRect rect(int row) { return view.visualRect(model.index(row)); }
};

} // namespace

TEST_F(ClipTableViewTest, RowsOfTwoHeightsFollowEachOther)
{
    list(7);
    for (int row = 0; row < 7; ++row) {
        EXPECT_EQ(rect(row).height(),
                  ClipCellView::rowHeight(row % 3 == 2 ? ClipKind::image : ClipKind::text));
        const int above = row > 0 ? rect(row - 1).bottom() + 1 : 0;
        EXPECT_EQ(rect(row).top(), above + 2) << row;
        EXPECT_EQ(view.indexAt(rect(row).center()).row(), row);
    }
    EXPECT_FALSE(view.indexAt({10, rect(6).bottom() + 20}).isValid());
    EXPECT_FALSE(view.indexAt({10, -1}).isValid());
}

TEST_F(ClipTableViewTest, SelectingARowBringsAllOfItIntoView)
{
    list(100000);
    for (const int row : {99999, 0, 50000, 50001, 49990, 99998}) {
        view.selectRow(row);
        EXPECT_EQ(view.selectedRow(), row);
        EXPECT_GE(rect(row).top(), 0) << row;
        EXPECT_LE(rect(row).bottom(), view.viewport()->height()) << row;
    }
    view.selectRow(1 << 30);
    EXPECT_EQ(view.selectedRow(), 99999);
    view.selectRow(-5);
    EXPECT_EQ(view.selectedRow(), 0);
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
    chosen = -1;
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, {10, rect(6).bottom() + 20});
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, {10, rect(6).bottom() + 20});
    EXPECT_EQ(chosen, -1);
    QTest::mouseClick(view.viewport(), Qt::RightButton, {}, rect(4).center());
    EXPECT_EQ(view.selectedRow(), 4);
}
