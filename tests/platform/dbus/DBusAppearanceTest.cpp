#include "Platform/linux/dbus/DBusAppearance.h"

#include "tests/support/SettingsPortal.h"
#include "tests/support/Variable.h"

#include <QElapsedTimer>
#include <QTest>
#include <gtest/gtest.h>
#include <vector>

namespace {

using Manner = SettingsPortal::Manner;
using Schemes = std::vector<ColorScheme>;

class AppearanceTest : public ::testing::Test {
protected:
    void listen()
    {
        appearance = std::make_unique<DBusAppearance>();
        appearance->onChange = [this] { told.push_back(appearance->colorScheme()); };
    }

    bool settlesAt(ColorScheme scheme)
    {
        return QTest::qWaitFor([&] { return appearance->colorScheme() == scheme; }, 3000);
    }

    std::unique_ptr<DBusAppearance> appearance;
    Schemes told;
};

TEST_F(AppearanceTest, AsksAtStartAndFollowsLater)
{
    SettingsPortal portal(1);
    ASSERT_TRUE(portal.isOnTheBus());
    listen();
    EXPECT_EQ(appearance->colorScheme(), ColorScheme::noPreference) << "nobody waited for the answer";
    EXPECT_TRUE(settlesAt(ColorScheme::dark));
    portal.change(2);
    EXPECT_TRUE(settlesAt(ColorScheme::light));
    portal.change(2);
    portal.changeOther("org.freedesktop.appearance", "contrast", 1U);
    portal.changeOther("org.gnome.desktop.interface", "color-scheme", "prefer-dark");
    portal.changeOther("org.freedesktop.appearance", "color-scheme", "dark");
    portal.change(1);
    EXPECT_TRUE(settlesAt(ColorScheme::dark));
    portal.change(7); // without a meaning
    EXPECT_TRUE(settlesAt(ColorScheme::noPreference));
    EXPECT_EQ(told,
              (Schemes{ColorScheme::dark, ColorScheme::light, ColorScheme::dark, ColorScheme::noPreference}));
}

TEST_F(AppearanceTest, APortalThatStartsLaterIsAskedThen)
{
    listen();
    SettingsPortal portal(1);
    EXPECT_TRUE(settlesAt(ColorScheme::dark));
}

class PoorPortal : public AppearanceTest, public ::testing::WithParamInterface<Manner> {};

TEST_P(PoorPortal, IsNoPreferenceUntilItTellsOfAChange)
{
    QElapsedTimer elapsed;
    SettingsPortal portal(1, GetParam());
    elapsed.start();
    listen();
    EXPECT_LT(elapsed.elapsed(), 2000) << "waited for the portal";
    ASSERT_TRUE(QTest::qWaitFor([&] { return portal.questions() > 0; }, 3000));
    portal.change(2);
    EXPECT_TRUE(settlesAt(ColorScheme::light));
    EXPECT_EQ(told, Schemes{ColorScheme::light});
}

INSTANTIATE_TEST_SUITE_P(Manners, PoorPortal,
                         ::testing::Values(Manner::silent, Manner::failing, Manner::nonsense));

TEST_F(AppearanceTest, WithoutABusThereIsNoPreference)
{
    for (const char *elsewhere : {"disabled:", "unix:path=/nonexistent/bus", "autolaunch:"}) {
        const Variable address("DBUS_SESSION_BUS_ADDRESS", elsewhere);
        listen();
        EXPECT_EQ(appearance->colorScheme(), ColorScheme::noPreference) << elsewhere;
    }
    SettingsPortal portal(2);
    listen();
    EXPECT_TRUE(settlesAt(ColorScheme::light)) << "a bus that did not answer is not every bus";
}

} // namespace
