#include "tests/platform/pasteboard/PasteboardTest.h"

#include "Platform/linux/x11/WindowProperties.h"

#include <unistd.h>

// Which application was in front, with the window manager's word and without it.

namespace {

class FrontWindowTest : public PasteboardTest {
public:
    ~FrontWindowTest() override
    {
        xcb_delete_property(front.raw(), front.root(), front.atom("_NET_ACTIVE_WINDOW"));
        front.sync();
    }

protected:
    FrontWindowTest() { front.put("WM_CLASS", "STRING", 8, QByteArray("front\0Front\0", 12)); }

    void setPid() { front.put("_NET_WM_PID", "CARDINAL", 32, bytesOf({static_cast<quint32>(getpid())})); }

    // In the window manager's place.
    void nameActive(xcb_window_t window)
    {
        front.X11Client::put(front.root(), front.atom("_NET_ACTIVE_WINDOW"), "WINDOW", 32, bytesOf({window}));
        front.sync();
    }

    QString frontAfterCopy()
    {
        const qint64 before = pasteboard->changeCount();
        owner.claim();
        EXPECT_TRUE(awaitChange(before));
        const auto application = pasteboard->snapshot()->frontApplication;
        return application ? application->bundleIdentifier.value_or(QStringLiteral("nameless"))
                           : QStringLiteral("none");
    }

    Owner owner;
    X11Client front;
};

} // namespace

TEST_F(FrontWindowTest, TheWindowManagersWordAndWithoutOneTheFocusDecides)
{
    front.beInFront("Front");
    EXPECT_EQ(frontAfterCopy(), QStringLiteral("Front"));
    X11Client other;
    other.beInFront("Other");
    nameActive(front.window());
    EXPECT_EQ(frontAfterCopy(), QStringLiteral("Front"));
    nameActive(0x7fffff); // a window that is gone
    EXPECT_EQ(frontAfterCopy(), QStringLiteral("none"));
    setPid(); // our own are ours
    nameActive(front.window());
    EXPECT_EQ(frontAfterCopy(), QStringLiteral("com.norvane.app"));
}

TEST_F(FrontWindowTest, WhilePanelOrNothingIsActiveTheLastWindowStaysInFront)
{
    X11Client panel;
    const uint32_t yes = 1;
    xcb_change_window_attributes(panel.raw(), panel.window(), XCB_CW_OVERRIDE_REDIRECT, &yes);
    nameActive(front.window());
    settle(); // window managers leave more than an instant between the two
    nameActive(XCB_WINDOW_NONE);
    panel.beInFront("Norvane");
    EXPECT_EQ(frontAfterCopy(), QStringLiteral("Front"));
    nameActive(panel.window());
    EXPECT_EQ(frontAfterCopy(), QStringLiteral("Front"));
}

TEST_F(FrontWindowTest, IdentityIsReadAsFarAsItIsSaid)
{
    front.put("_GTK_APPLICATION_ID", "STRING", 8, "org.example.Front");
    setPid();
    const WindowIdentity identity = readWindowIdentity(front.raw(), front.window());
    EXPECT_EQ(identity.instanceName, QStringLiteral("front"));
    EXPECT_EQ(identity.className, QStringLiteral("Front"));
    EXPECT_EQ(identity.gtkApplicationID, QStringLiteral("org.example.Front"));
    EXPECT_EQ(identity.pid, getpid());
    EXPECT_EQ(identity.executable, QStringLiteral("pasteboardTest"));

    front.put("WM_CLIENT_MACHINE", "STRING", 8, "elsewhere"); // its process ids are not ours
    EXPECT_EQ(readWindowIdentity(front.raw(), front.window()).pid, 0);
    EXPECT_EQ(readWindowIdentity(front.raw(), 0x7fffff).className, QString());
}
