#include "Norvane/Theme.h"

#include "Norvane/ClipIcons.h"
#include "Norvane/Palette.h"
#include "Norvane/SearchField.h"
#include "Norvane/SlimScrollBar.h"
#include "Platform/memory/MemoryPlatform.h"

#include <QApplication>
#include <QScrollArea>
#include <gtest/gtest.h>

namespace {

struct ThemeTest : ::testing::Test {
    std::unique_ptr<Platform> platform = makeMemoryPlatform();
    MemoryAppearance &desktop = static_cast<MemoryAppearance &>(*platform->appearance);

    ~ThemeTest() override { QApplication::setPalette(QPalette()); }

    static bool isDark() { return Palette::isDark(QApplication::palette()); }
};

TEST_F(ThemeTest, FollowsTheDesktopAndGoesBackToItsPalette)
{
    const QPalette before = QApplication::palette();
    ASSERT_FALSE(isDark());
    desktop.setColorScheme(ColorScheme::dark);
    {
        const Theme theme(desktop);
        EXPECT_TRUE(isDark()) << "at start";
        for (const auto scheme : {ColorScheme::light, ColorScheme::noPreference}) {
            desktop.setColorScheme(scheme);
            for (const auto role : {QPalette::Window, QPalette::Text, QPalette::Highlight, QPalette::Button})
                EXPECT_EQ(QApplication::palette().color(role), before.color(role));
            desktop.setColorScheme(ColorScheme::dark);
            EXPECT_TRUE(isDark());
        }
    }
    desktop.setColorScheme(ColorScheme::light); // nobody listens any more
}

TEST_F(ThemeTest, AFieldTakesTheNewColoursBeforeAndAfterItIsShown)
{
    const Theme theme(desktop);
    ClipIcons icons{*platform->desktopEntries};
    QWidget window;
    SearchField field(*platform->pasteboard, icons, &window);
    for (const auto scheme : {ColorScheme::dark, ColorScheme::light, ColorScheme::dark}) {
        desktop.setColorScheme(scheme);
        window.show();
        QCoreApplication::processEvents(); // widgets are told from the event loop
        const QPalette &colours = field.palette();
        EXPECT_EQ(Palette::isDark(colours), scheme == ColorScheme::dark);
        EXPECT_GE(Palette::contrast(colours.color(QPalette::Text), Palette::field(colours)), 4.5);
        EXPECT_GE(Palette::contrast(colours.color(QPalette::PlaceholderText), Palette::field(colours)), 4.5);
        EXPECT_EQ(colours.color(QPalette::PlaceholderText), Palette::secondary(colours));
        EXPECT_EQ(colours.color(QPalette::Base), QColor(Qt::transparent));
    }
}

TEST_F(ThemeTest, AScrollBarTakesTheNewColours)
{
    const Theme theme(desktop);
    QScrollArea area;
    area.setVerticalScrollBar(new SlimScrollBar(&area));
    area.setWidget(new QWidget);
    area.widget()->resize(100, 1000);
    area.resize(200, 200);
    area.show();
    QScrollBar &bar = *area.verticalScrollBar();
    for (const auto scheme : {ColorScheme::dark, ColorScheme::light, ColorScheme::dark}) {
        desktop.setColorScheme(scheme);
        QCoreApplication::processEvents();
        const QPalette colours = QApplication::palette();
        QImage painted(bar.size(), QImage::Format_RGB32);
        painted.fill(colours.color(QPalette::Window));
        bar.render(&painted, {}, {}, QWidget::DrawChildren);
        EXPECT_GE(Palette::contrast(painted.pixelColor(5, 20), colours.color(QPalette::Window)), 1.8)
            << "the handle cannot be told from the ground";
    }
}

TEST_F(ThemeTest, DarkLeavesNothingLight)
{
    const QPalette dark = Theme::darkPalette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (const auto role : {QPalette::Window, QPalette::Base, QPalette::AlternateBase, QPalette::Button,
                                QPalette::ToolTipBase, QPalette::Light, QPalette::Midlight, QPalette::Mid})
            EXPECT_LT(dark.color(group, role).lightness(), 100) << group << ' ' << role;
    }
    for (int role = 0; role < QPalette::NColorRoles; ++role) {
        const auto each = static_cast<QPalette::ColorRole>(role);
        EXPECT_TRUE(each == QPalette::NoRole || dark.isBrushSet(QPalette::Active, each)) << role;
    }
    const auto pairs = {
        std::pair{QPalette::WindowText, QPalette::Window}, {QPalette::Text, QPalette::Base},
        {QPalette::ButtonText, QPalette::Button},          {QPalette::ToolTipText, QPalette::ToolTipBase},
        {QPalette::HighlightedText, QPalette::Highlight},  {QPalette::Link, QPalette::Base},
        {QPalette::PlaceholderText, QPalette::Base},       {QPalette::LinkVisited, QPalette::Base}};
    for (const auto &[text, ground] : pairs)
        EXPECT_GE(Palette::contrast(dark.color(text), dark.color(ground)), 4.5) << text;
}

// Grounds as desktops have them, some of which leave too little room between text and ground.
struct Ground {
    const char *name;
    QRgb window, text, highlight, highlighted;
};

class ContrastTest : public ::testing::TestWithParam<Ground> {};

TEST_P(ContrastTest, EveryTextCanBeReadOnItsGround)
{
    const auto &[name, window, text, highlight, highlighted] = GetParam();
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(window));
    palette.setColor(QPalette::WindowText, QColor(text));
    palette.setColor(QPalette::Highlight, QColor(highlight));
    palette.setColor(QPalette::HighlightedText, QColor(highlighted));
    const QColor ground(window), accent = Palette::accent(palette);
    EXPECT_GE(Palette::contrast(Palette::secondary(palette), ground), 4.5) << name;
    EXPECT_GE(Palette::contrast(Palette::secondary(palette), Palette::field(palette)), 4.5) << name;
    EXPECT_GE(Palette::contrast(Palette::label(palette), Palette::field(palette)), 4.5) << name;
    EXPECT_GE(Palette::contrast(Palette::onAccent(palette), accent), 4.5) << name;
    EXPECT_GE(Palette::contrast(Palette::secondaryOnAccent(palette), accent), 4.5) << name;
    EXPECT_GE(Palette::contrast(Palette::orange(palette), ground), 3.0) << name;
    EXPECT_NE(Palette::separator(palette), ground) << name;
}

INSTANTIATE_TEST_SUITE_P(
    Grounds, ContrastTest,
    ::testing::Values(Ground{"fusion", 0xffefefef, 0xff000000, 0xff308cc6, 0xffffffff},
                      Ground{"our dark", 0xff2b2b2d, 0xffe8e8e8, 0xff2a6fb4, 0xffffffff},
                      Ground{"dark grey", 0xff323232, 0xffffffff, 0xff308cc6, 0xffffffff},
                      Ground{"soft light", 0xfffafafb, 0xff4a4a4a, 0xfff0c040, 0xff202020},
                      Ground{"pale highlight", 0xfff6f5f4, 0xff2e3436, 0xff99c1f1, 0xffffffff},
                      Ground{"blue dark", 0xff0b1e3a, 0xffbfd4ff, 0xff1d99f3, 0xff000000}));

TEST(Contrast, IsThatOfTheStandard)
{
    EXPECT_NEAR(Palette::contrast(Qt::black, Qt::white), 21, 0.001);
    EXPECT_NEAR(Palette::contrast(Qt::white, Qt::white), 1, 0.001);
    EXPECT_NEAR(Palette::contrast(QColor(0x77, 0x77, 0x77), Qt::white), 4.48, 0.005); // the known near miss
}

} // namespace
