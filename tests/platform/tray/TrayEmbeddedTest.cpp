// The status item in a real tray that embeds windows, driven by pointer and keys as a user does.

#include "Platform/linux/tray/TrayMenu.h"
#include "tests/desktop/Keyboard.h"
#include "tests/platform/tray/TrayStage.h"

#include <QApplication>
#include <QProcess>
#include <QScreen>
#include <QSystemTrayIcon>

using namespace Qt::StringLiterals;

namespace {

constexpr quint8 mainButton = 1, menuButton = 3;

class TrayEmbeddedTest : public TrayStage {
public:
    ~TrayEmbeddedTest() override { stopTray(); }

protected:
    bool startTray()
    {
        tray.start(u"trayer"_s, {u"--edge"_s, u"bottom"_s, u"--align"_s, u"right"_s});
        return tray.waitForStarted();
    }

    void stopTray()
    {
        tray.terminate();
        tray.waitForFinished();
    }

    // The icon's place on the screen, once it has one.
    QPoint iconCentre()
    {
        const auto inTray = [this] {
            const QRect place = item.geometry();
            return place.width() > 8 && QGuiApplication::primaryScreen()->geometry().contains(place) &&
                   place.top() > 0;
        };
        EXPECT_TRUE(QTest::qWaitFor(inTray, patience));
        return item.geometry().center();
    }

    // Far enough from the last click not to be its double click.
    const QPoint aside{8, 0};

    QMenu *openMenu()
    {
        const auto isOpen = [] { return qobject_cast<TrayMenu *>(QApplication::activePopupWidget()); };
        EXPECT_TRUE(QTest::qWaitFor(isOpen, patience));
        return isOpen();
    }

    bool menuCloses()
    {
        return QTest::qWaitFor([] { return !QApplication::activePopupWidget(); }, patience);
    }

    Desktop desktop;
    Keyboard keyboard{desktop};
    QProcess tray;
};

} // namespace

TEST_F(TrayEmbeddedTest, AnswersThePointerInATrayThatCameLaterAndCameBack)
{
    rows = {row(u"a_b & c__d"_s, u"2"_s), separator(), row(u"Esci da Norvane"_s, u"q"_s)};
    item.show();
    EXPECT_FALSE(item.isAvailable());
    for (const int round : {1, 2}) {
        ASSERT_TRUE(startTray());
        ASSERT_TRUE(becomesAvailable());
        keyboard.click(iconCentre(), 1, mainButton);
        EXPECT_TRUE(QTest::qWaitFor([&] { return activations == round; }, patience));
        keyboard.click(iconCentre() + aside, 1, menuButton);
        QMenu *menu = openMenu();
        ASSERT_TRUE(menu && QTest::qWaitForWindowExposed(menu));
        EXPECT_EQ(menu->actions().front()->text(), u"a_b && c__d"_s);
        keyboard.press(round == 1 ? u"2"_s : u"q"_s);
        EXPECT_TRUE(menuCloses());
        EXPECT_EQ(chosen.size(), round);
        stopTray();
        EXPECT_TRUE(becomesAvailable(false));
    }
    EXPECT_EQ(chosen, QStringList({u"a_b & c__d"_s, u"Esci da Norvane"_s}));
}

TEST_F(TrayEmbeddedTest, TheSameMenuOpensWithoutATrayAboveAPoint)
{
    rows = {row(u"uno"_s, u"1"_s), row(u"due"_s, u"2"_s), separator(), row(u"Esci da Norvane"_s, u"q"_s)};
    item.show();
    const QPoint corner(700, 600);
    item.popUpMenu(corner);
    QMenu *menu = openMenu();
    ASSERT_TRUE(menu);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(menu));
    EXPECT_EQ(menu->geometry().bottomRight() + QPoint(1, 1), corner);
    QTest::keyClick(menu, Qt::Key_2, Qt::ControlModifier);
    EXPECT_TRUE(chosen.isEmpty()) << "a bare digit, nothing else";
    QTest::keyClick(menu, Qt::Key_2);
    EXPECT_EQ(chosen, QStringList{u"due"_s});
    EXPECT_TRUE(menuCloses());
}
