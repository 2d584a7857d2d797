#include "Norvane/SearchField.h"

#include "Norvane/ClipIcons.h"
#include "Platform/memory/MemoryPlatform.h"

#include <QClipboard>
#include <QTest>
#include <gtest/gtest.h>

namespace {

struct SearchFieldTest : ::testing::Test {
    std::unique_ptr<Platform> platform = makeMemoryPlatform();
    MemoryPasteboard &pasteboard = static_cast<MemoryPasteboard &>(*platform->pasteboard);
    ClipIcons icons{*platform->desktopEntries};
    SearchField field{pasteboard, icons, nullptr};

    void SetUp() override
    {
        field.show();
        field.setFocus();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&field));
    }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        QTest::keyClick(&field, key, modifiers);
    }
    QByteArray copied() { return pasteboard.snapshot()->items.at(0).data(PasteboardType::plainText).value(); }
};

} // namespace

TEST_F(SearchFieldTest, CutAndCopyWriteOurPasteboard)
{
    field.setText("caffè nero");
    field.setSelection(0, 5);
    key(Qt::Key_C);
    EXPECT_EQ(copied(), "caffè");
    key(Qt::Key_A);
    key(Qt::Key_Delete, Qt::ShiftModifier);
    EXPECT_EQ(copied(), "caffè nero");
    EXPECT_TRUE(field.text().isEmpty());
    EXPECT_NE(QGuiApplication::clipboard()->text(), "caffè nero") << "Qt's clipboard stays out of it";
}

TEST_F(SearchFieldTest, PasteInsertsOneLineAtTheCaret)
{
    pasteboard.copyText("uno\r\ndue");
    field.setText("[]");
    field.setCursorPosition(1);
    key(Qt::Key_V);
    EXPECT_TRUE(QTest::qWaitFor([&] { return field.text() == "[uno due]"; })) << field.text().toStdString();
    key(Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return field.text() == "[uno dueuno due]"; }));
}

TEST_F(SearchFieldTest, DeletingALineLeavesEveryClipboardAlone)
{
    pasteboard.copyText("copied");
    QGuiApplication::clipboard()->setText("theirs");
    field.setText("uno due");
    field.setCursorPosition(3);
    key(Qt::Key_K);
    EXPECT_EQ(field.text(), "uno");
    key(Qt::Key_U);
    EXPECT_EQ(field.text(), QString());
    key(Qt::Key_Z);
    EXPECT_EQ(field.text(), "uno");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "theirs");
    EXPECT_EQ(copied(), "copied");
}

TEST_F(SearchFieldTest, SelectingWithTheMouseLeavesThePrimarySelectionAlone)
{
    QGuiApplication::clipboard()->setText("theirs", QClipboard::Selection);
    field.setText("uno due");
    const QPoint from = field.rect().center();
    QTest::mousePress(&field, Qt::LeftButton, {}, {field.width() - 2, from.y()});
    QTest::mouseMove(&field, {2, from.y()});
    QTest::mouseRelease(&field, Qt::LeftButton, {}, {2, from.y()});
    EXPECT_TRUE(field.hasSelectedText());
    EXPECT_EQ(QGuiApplication::clipboard()->text(QClipboard::Selection), "theirs");
}

TEST_F(SearchFieldTest, AHungOwnerChangesNothing)
{
    pasteboard.setOwnerHung(true);
    pasteboard.copyText("mai");
    key(Qt::Key_V);
    QTest::keyClicks(&field, "scrivo");
    EXPECT_EQ(field.text(), "scrivo");
}
