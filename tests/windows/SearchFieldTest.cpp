#include "Norvane/SearchField.h"

#include "Norvane/ClipIcons.h"
#include "Platform/memory/MemoryPlatform.h"

#include <QClipboard>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct SearchFieldTest : ::testing::Test {
    std::unique_ptr<Platform> platform = makeMemoryPlatform();
    MemoryPasteboard &pasteboard = static_cast<MemoryPasteboard &>(*platform->pasteboard);
    ClipIcons icons{*platform->desktopEntries};
    SearchField field{pasteboard, icons, nullptr};

    void show()
    {
        field.show();
        field.setFocus();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&field));
    }
    QByteArray copied() { return pasteboard.snapshot()->items.at(0).data(PasteboardType::plainText).value(); }
};

} // namespace

TEST_F(SearchFieldTest, CutAndCopyWriteOurPasteboard)
{
    show();
    field.setText(u"caffè nero"_s);
    field.setSelection(0, 5);
    QTest::keyClick(&field, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(copied(), "caffè");
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_Delete, Qt::ShiftModifier);
    EXPECT_EQ(copied(), "caffè nero");
    EXPECT_TRUE(field.text().isEmpty());
    EXPECT_NE(QGuiApplication::clipboard()->text(), u"caffè nero"_s) << "Qt's clipboard stays out of it";
}

TEST_F(SearchFieldTest, PasteInsertsOneLineAtTheCaret)
{
    show();
    pasteboard.copyText(u"uno\r\ndue"_s);
    field.setText(u"[]"_s);
    field.setCursorPosition(1);
    QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return field.text() == u"[uno due]"_s; }))
        << field.text().toStdString();
    QTest::keyClick(&field, Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return field.text() == u"[uno dueuno due]"_s; }));
}

TEST_F(SearchFieldTest, DeletingALineLeavesEveryClipboardAlone)
{
    show();
    pasteboard.copyText(u"copied"_s);
    QGuiApplication::clipboard()->setText(u"theirs"_s);
    field.setText(u"uno due"_s);
    field.setCursorPosition(3);
    QTest::keyClick(&field, Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(field.text(), u"uno"_s);
    QTest::keyClick(&field, Qt::Key_U, Qt::ControlModifier);
    EXPECT_EQ(field.text(), QString());
    QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(field.text(), u"uno"_s);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"theirs"_s);
    EXPECT_EQ(copied(), "copied");
}

TEST_F(SearchFieldTest, SelectingWithTheMouseLeavesThePrimarySelectionAlone)
{
    show();
    QGuiApplication::clipboard()->setText(u"theirs"_s, QClipboard::Selection);
    field.setText(u"uno due"_s);
    const QPoint from = field.rect().center();
    QTest::mousePress(&field, Qt::LeftButton, {}, {field.width() - 2, from.y()});
    QTest::mouseMove(&field, {2, from.y()});
    QTest::mouseRelease(&field, Qt::LeftButton, {}, {2, from.y()});
    EXPECT_TRUE(field.hasSelectedText());
    EXPECT_EQ(QGuiApplication::clipboard()->text(QClipboard::Selection), u"theirs"_s);
}

TEST_F(SearchFieldTest, AHungOwnerChangesNothing)
{
    show();
    pasteboard.setOwnerHung(true);
    pasteboard.copyText(u"mai"_s);
    QTest::keyClick(&field, Qt::Key_V, Qt::ControlModifier);
    QTest::keyClicks(&field, u"scrivo"_s);
    EXPECT_EQ(field.text(), u"scrivo"_s);
}
