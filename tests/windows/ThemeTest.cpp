#include "Norvane/Theme.h"

#include "Norvane/ClipIcons.h"
#include "Norvane/Palette.h"
#include "Norvane/SearchField.h"
#include "Norvane/SlimScrollBar.h"
#include "tests/windows/MemoryDesktop.h"

#include <QApplication>
#include <QScrollArea>

namespace {

struct ThemeTest : MemoryDesktop {
    ~ThemeTest() override { QApplication::setPalette(QPalette()); }
};

TEST_F(ThemeTest, AFieldTakesTheNewColoursBeforeAndAfterItIsShown)
{
    const Theme theme(appearance);
    ClipIcons icons{*platform->desktopEntries};
    QWidget window;
    SearchField field(pasteboard, icons, &window);
    for (const auto scheme : {ColorScheme::dark, ColorScheme::light, ColorScheme::dark}) {
        appearance.setColorScheme(scheme);
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
    const Theme theme(appearance);
    QScrollArea area;
    area.setVerticalScrollBar(new SlimScrollBar(&area));
    area.setWidget(new QWidget);
    area.widget()->resize(100, 1000);
    area.resize(200, 200);
    area.show();
    QScrollBar &bar = *area.verticalScrollBar();
    for (const auto scheme : {ColorScheme::dark, ColorScheme::light, ColorScheme::dark}) {
        appearance.setColorScheme(scheme);
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

// On grounds as desktops have them, some of which leave too little room between text and ground.
TEST(Contrast, EveryTextCanBeReadOnItsGround)
{
    const struct {
        const char *name;
        QRgb window, text, highlight, highlighted;
    } grounds[] = {
        {"fusion", 0xffefefef, 0xff000000, 0xff308cc6, 0xffffffff},
        {"our dark", 0xff2b2b2d, 0xffe8e8e8, 0xff2a6fb4, 0xffffffff},
        {"dark grey", 0xff323232, 0xffffffff, 0xff308cc6, 0xffffffff},
        {"soft light", 0xfffafafb, 0xff4a4a4a, 0xfff0c040, 0xff202020},
        {"pale highlight", 0xfff6f5f4, 0xff2e3436, 0xff99c1f1, 0xffffffff},
        {"blue dark", 0xff0b1e3a, 0xffbfd4ff, 0xff1d99f3, 0xff000000},
    };
    for (const auto &[name, window, text, highlight, highlighted] : grounds) {
        SCOPED_TRACE(name);
        QPalette palette;
        palette.setColor(QPalette::Window, QColor(window));
        palette.setColor(QPalette::WindowText, QColor(text));
        palette.setColor(QPalette::Highlight, QColor(highlight));
        palette.setColor(QPalette::HighlightedText, QColor(highlighted));
        const QColor ground(window), accent = Palette::accent(palette), field = Palette::field(palette);
        EXPECT_GE(Palette::contrast(Palette::secondary(palette), ground), 4.5);
        EXPECT_GE(Palette::contrast(Palette::secondary(palette), field), 4.5);
        EXPECT_GE(Palette::contrast(Palette::label(palette), field), 4.5);
        EXPECT_GE(Palette::contrast(Palette::onAccent(palette), accent), 4.5);
        EXPECT_GE(Palette::contrast(Palette::secondaryOnAccent(palette), accent), 4.5);
        EXPECT_GE(Palette::contrast(Palette::orange(palette), ground), 3.0);
        EXPECT_NE(Palette::separator(palette), ground);
    }
}

TEST(Contrast, IsThatOfTheStandard)
{
    EXPECT_NEAR(Palette::contrast(Qt::black, Qt::white), 21, 0.001);
    EXPECT_NEAR(Palette::contrast(Qt::white, Qt::white), 1, 0.001);
    EXPECT_NEAR(Palette::contrast(QColor(0x77, 0x77, 0x77), Qt::white), 4.48, 0.005); // the known near miss
}

} // namespace
