#include "tests/platform/pasteboard/PasteboardTest.h"

#include "Platform/linux/x11/WindowProperties.h"

#include <unistd.h>

// Which application was in front, with the window manager's word and without it.

namespace {

// A window as programs have them.
class Program : public X11Client {
public:
    explicit Program(const QByteArray &wmClass)
    {
        setBytes("WM_CLASS", wmClass.toLower() + '\0' + wmClass + '\0');
        xcb_map_window(connection, ownWindow);
        sync();
    }
    ~Program() override { die(); }

    void setBytes(const QByteArray &property, const QByteArray &value)
    {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, ownWindow, atom(property), XCB_ATOM_STRING, 8,
                            static_cast<uint32_t>(value.size()), value.constData());
        sync();
    }

    void setPid(quint32 pid)
    {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, ownWindow, atom("_NET_WM_PID"),
                            XCB_ATOM_CARDINAL, 32, 1, &pid);
        sync();
    }

    void becomeOverrideRedirect()
    {
        const uint32_t yes = 1;
        xcb_change_window_attributes(connection, ownWindow, XCB_CW_OVERRIDE_REDIRECT, &yes);
        sync();
    }

    void takeFocus()
    {
        xcb_set_input_focus(connection, XCB_INPUT_FOCUS_POINTER_ROOT, ownWindow, XCB_CURRENT_TIME);
        sync();
    }

    // In the window manager's place.
    void nameActive(xcb_window_t window)
    {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, root(), atom("_NET_ACTIVE_WINDOW"),
                            XCB_ATOM_WINDOW, 32, 1, &window);
        sync();
    }

    void forgetActive()
    {
        xcb_delete_property(connection, root(), atom("_NET_ACTIVE_WINDOW"));
        sync();
    }

private:
    void handle(const xcb_generic_event_t &) override {}
};

class FrontWindowTest : public PasteboardTest {
public:
    ~FrontWindowTest() override { front.forgetActive(); }

protected:
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
    Program front{"Front"};
};

} // namespace

TEST_F(FrontWindowTest, TheActiveWindowIsInFront)
{
    front.nameActive(front.window());
    EXPECT_EQ(frontAfterCopy(), QStringLiteral("Front"));
}

TEST_F(FrontWindowTest, WithoutAWindowManagerTheFocusDecides)
{
    front.takeFocus();
    EXPECT_EQ(frontAfterCopy(), QStringLiteral("Front"));
}

TEST_F(FrontWindowTest, WhilePanelOrNothingIsActiveTheLastWindowStaysInFront)
{
    Program panel("Norvane");
    panel.becomeOverrideRedirect();
    front.nameActive(front.window());
    settle(); // window managers leave more than an instant between the two
    front.nameActive(XCB_WINDOW_NONE);
    panel.takeFocus();
    EXPECT_EQ(frontAfterCopy(), QStringLiteral("Front"));
    front.nameActive(panel.window());
    EXPECT_EQ(frontAfterCopy(), QStringLiteral("Front"));
}

TEST_F(FrontWindowTest, OurOwnWindowsAreOurs)
{
    front.setPid(static_cast<quint32>(getpid()));
    front.nameActive(front.window());
    EXPECT_EQ(frontAfterCopy(), QStringLiteral("com.norvane.app"));
}

TEST_F(FrontWindowTest, WindowsThatAreGoneAreNoApplication)
{
    front.nameActive(0x7fffff);
    EXPECT_EQ(frontAfterCopy(), QStringLiteral("none"));
}

TEST_F(FrontWindowTest, IdentityIsReadAsFarAsItIsSaid)
{
    front.setBytes("_GTK_APPLICATION_ID", "org.example.Front");
    front.setPid(static_cast<quint32>(getpid()));
    const WindowIdentity identity = readWindowIdentity(front.raw(), front.window());
    EXPECT_EQ(identity.instanceName, QStringLiteral("front"));
    EXPECT_EQ(identity.className, QStringLiteral("Front"));
    EXPECT_EQ(identity.gtkApplicationID, QStringLiteral("org.example.Front"));
    EXPECT_EQ(identity.pid, getpid());
    EXPECT_EQ(identity.executable, QStringLiteral("pasteboardTest"));

    front.setBytes("WM_CLIENT_MACHINE", "elsewhere"); // its process ids are not ours
    EXPECT_EQ(readWindowIdentity(front.raw(), front.window()).pid, 0);
    EXPECT_EQ(readWindowIdentity(front.raw(), 0x7fffff).className, QString());
}
