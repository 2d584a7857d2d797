#include "Platform/linux/x11/X11Workspace.h"

#include "Platform/memory/MemoryPlatform.h"
#include "tests/platform/desktop/DesktopHarness.h"

#include <QApplication>
#include <QPushButton>
#include <gtest/gtest.h>

namespace {

class FrontApplications : public ::testing::Test {
protected:
    bool waitForFront(const std::optional<QString> &wanted)
    {
        return QTest::qWaitFor(
            [&] {
                const auto front = workspace.frontmostApplication();
                return front ? front->bundleIdentifier == wanted : !wanted;
            },
            5000);
    }

    X11Workspace workspace{std::make_shared<MemoryDesktopEntries>()};
};

const QString neighbourClass = QStringLiteral("DesktopNeighbour");

} // namespace

TEST_F(FrontApplications, IsTheOneWithTheActiveWindowAndNobodyOnAnEmptyDesktop)
{
    {
        Neighbour neighbour;
        EXPECT_TRUE(waitForFront(neighbourClass));
        EXPECT_EQ(workspace.rememberedWindow(), neighbour.window);
        EXPECT_FALSE(workspace.isThisApplicationActive());
    }
    EXPECT_TRUE(waitForFront(std::nullopt));
    EXPECT_FALSE(workspace.isThisApplicationActive());
}

TEST_F(FrontApplications, IsUsWithAManagedWindowOfOurs)
{
    Neighbour neighbour;
    ASSERT_TRUE(waitForFront(neighbourClass));
    QWidget settings;
    settings.show();
    settings.activateWindow();
    EXPECT_TRUE(waitForFront(QStringLiteral("com.norvane.app")));
    EXPECT_TRUE(workspace.isThisApplicationActive());
}

TEST_F(FrontApplications, IsNeverAnUnmanagedWindow)
{
    Neighbour neighbour;
    ASSERT_TRUE(waitForFront(neighbourClass));
    QWidget unmanaged(nullptr, Qt::Tool | Qt::BypassWindowManagerHint | Qt::FramelessWindowHint);
    unmanaged.show();
    unmanaged.activateWindow();
    Hand hand;
    ASSERT_TRUE(QTest::qWaitFor([&] { return hand.focus() == unmanaged.winId(); }, 3000));
    EXPECT_TRUE(waitForFront(neighbourClass));
    EXPECT_FALSE(workspace.isThisApplicationActive());
}

TEST_F(FrontApplications, IsNeverADock)
{
    Neighbour neighbour;
    ASSERT_TRUE(waitForFront(neighbourClass));
    Hand hand;
    QWidget dock;
    hand.makeDock(dock);
    dock.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dock));
    hand.setFocus(static_cast<quint32>(dock.winId()));
    ASSERT_TRUE(QTest::qWaitFor([&] { return hand.focus() == dock.winId(); }, 3000));
    EXPECT_TRUE(waitForFront(neighbourClass));
}

TEST_F(FrontApplications, BeepFlashesTheWindowConcernedForAMoment)
{
    QWidget window;
    auto *button = new QPushButton(&window);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    workspace.beep(button);
    auto *flash = window.findChild<QWidget *>(QStringLiteral("windowFlash"));
    ASSERT_NE(flash, nullptr);
    EXPECT_EQ(flash->geometry(), window.rect());
    workspace.beep(button);
    EXPECT_EQ(window.findChildren<QWidget *>(QStringLiteral("windowFlash")).size(), 1);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return window.findChild<QWidget *>(QStringLiteral("windowFlash")) == nullptr; }, 2000));
    workspace.beep(nullptr);
}
