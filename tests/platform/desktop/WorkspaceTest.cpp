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

TEST_F(FrontApplications, IsNeverAnUnmanagedWindowNorADock)
{
    Neighbour neighbour;
    ASSERT_TRUE(waitForFront(neighbourClass));
    Hand hand;
    QWidget unmanaged(nullptr, Qt::Tool | Qt::BypassWindowManagerHint | Qt::FramelessWindowHint), dock;
    hand.makeDock(dock);
    for (QWidget *window : {&unmanaged, &dock}) {
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
        hand.setFocus(static_cast<quint32>(window->winId()));
        ASSERT_TRUE(QTest::qWaitFor([&] { return hand.focus() == window->winId(); }, 3000));
        EXPECT_TRUE(waitForFront(neighbourClass));
        EXPECT_FALSE(workspace.isThisApplicationActive());
        window->hide();
        hand.setFocus(neighbour.window);
    }
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
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return window.findChild<QWidget *>(QStringLiteral("windowFlash")) == nullptr; }, 2000));
    workspace.beep(nullptr);
}
