// The status item in a real tray that embeds windows, driven by pointer and keys as a user does.

#include "Platform/linux/tray/TrayMenu.h"
#include "Platform/linux/tray/TrayStatusItem.h"
#include "tests/platform/tray/MenuRows.h"

#include <QApplication>
#include <QProcess>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QTest>
#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 10000; // milliseconds
constexpr quint8 mainButton = 1, menuButton = 3;
constexpr quint8 keyCode2 = 11, keyCodeQ = 24; // X key codes of the private server's layout

xcb_connection_t *server()
{
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

void send(quint8 type, quint8 detail, const QPoint &where = {})
{
    xcb_test_fake_input(server(), type, detail, XCB_CURRENT_TIME, XCB_NONE, static_cast<qint16>(where.x()),
                        static_cast<qint16>(where.y()), 0);
    xcb_flush(server());
}

void click(const QPoint &where, quint8 button)
{
    send(XCB_MOTION_NOTIFY, 0, where);
    send(XCB_BUTTON_PRESS, button);
    send(XCB_BUTTON_RELEASE, button);
}

void pressKey(quint8 keyCode)
{
    send(XCB_KEY_PRESS, keyCode);
    send(XCB_KEY_RELEASE, keyCode);
}

void shoot(const QString &name)
{
    if (const QString folder = qEnvironmentVariable("NORVANE_SHOTS"); !folder.isEmpty())
        QGuiApplication::primaryScreen()->grabWindow().save(u"%1/%2.png"_s.arg(folder, name));
}

class TrayEmbeddedTest : public ::testing::Test, protected MenuRows {
public:
    ~TrayEmbeddedTest() override { stopTray(); }

protected:
    TrayEmbeddedTest()
    {
        item.menuContents = [this] { return rows; };
        item.onActivate = [this] { ++activations; };
    }

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

    bool becomesAvailable(bool available = true)
    {
        return QTest::qWaitFor([&] { return item.isAvailable() == available; }, patience);
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

    TrayStatusItem item{[](const QString &name) {
        return std::optional(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name));
    }};
    QProcess tray;
    std::vector<ClosureMenuItem> rows;
    int activations = 0;
};

} // namespace

TEST_F(TrayEmbeddedTest, AnswersPointerAndKeysInATrayThatCameLater)
{
    auto picture = row(u"Immagine 560×200"_s, u"1"_s);
    picture.image = QImage(28, 20, QImage::Format_ARGB32_Premultiplied);
    picture.image.fill(Qt::darkCyan);
    auto pinned = row(u"a_b & c__d"_s, u"2"_s);
    pinned.symbol = u":/icons/pin-fill.svg"_s;
    rows = {row(u"Mostra la cronologia   Ctrl+Alt+V"_s),
            separator(),
            picture,
            pinned,
            separator(),
            row(u"Esci da Norvane"_s, u"q"_s)};
    item.show();
    EXPECT_FALSE(item.isAvailable());
    ASSERT_TRUE(startTray());
    ASSERT_TRUE(becomesAvailable());

    const QPoint centre = iconCentre();
    click(centre, mainButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return activations == 1; }, patience));

    click(centre, menuButton);
    QMenu *menu = openMenu();
    ASSERT_TRUE(menu);
    EXPECT_EQ(menu->actions().at(3)->text(), u"a_b && c__d"_s);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(menu));
    shoot(u"tray-menu"_s);
    pressKey(keyCode2);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !chosen.isEmpty(); }, patience));
    EXPECT_EQ(chosen, QStringList{u"a_b & c__d"_s});
    EXPECT_TRUE(menuCloses());

    item.setPaused(true);
    click(iconCentre() + aside, menuButton);
    menu = openMenu();
    ASSERT_TRUE(menu);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(menu));
    shoot(u"tray-paused"_s);
    pressKey(keyCodeQ);
    EXPECT_TRUE(menuCloses());
    EXPECT_EQ(chosen.last(), u"Esci da Norvane"_s);

    stopTray();
    EXPECT_TRUE(becomesAvailable(false));
    ASSERT_TRUE(startTray());
    EXPECT_TRUE(becomesAvailable());
    click(iconCentre(), mainButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return activations == 2; }, patience));
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
