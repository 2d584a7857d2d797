#include "Norvane/Theme.h"

#include "Norvane/Palette.h"
#include "Platform/Appearance.h"

#include <QApplication>
#include <array>

namespace {

struct Shade {
    QPalette::ColorRole role;
    QRgb colour;
    QRgb disabled;
};

constexpr QRgb text = 0xffe8e8e8, faintText = 0xff858585;

// Every role, so that nothing light shines through. Shades of one neutral grey: the content has the colours.
// Disabled light is the ground of menus, or their disabled rows would have a second, paler outline.
constexpr std::array<Shade, 21> darkShades{{
    {QPalette::Window, 0xff2b2b2d, 0xff2b2b2d},
    {QPalette::WindowText, text, faintText},
    {QPalette::Base, 0xff1f1f21, 0xff2b2b2d},
    {QPalette::AlternateBase, 0xff262628, 0xff262628},
    {QPalette::Text, text, faintText},
    {QPalette::PlaceholderText, 0xffa4a4a6, faintText},
    {QPalette::Button, 0xff3a3a3d, 0xff333335},
    {QPalette::ButtonText, text, faintText},
    {QPalette::BrightText, 0xffffffff, 0xffffffff},
    {QPalette::ToolTipBase, 0xff3a3a3d, 0xff3a3a3d},
    {QPalette::ToolTipText, text, text},
    {QPalette::Light, 0xff57575b, 0xff1f1f21},
    {QPalette::Midlight, 0xff48484c, 0xff48484c},
    {QPalette::Mid, 0xff242426, 0xff242426},
    {QPalette::Dark, 0xff1a1a1c, 0xff1a1a1c},
    {QPalette::Shadow, 0xff0c0c0d, 0xff0c0c0d},
    {QPalette::Highlight, 0xff2a6fb4, 0xff4a4a4d},
    {QPalette::HighlightedText, 0xffffffff, 0xffb4b4b4},
    {QPalette::Link, 0xff6cb0f0, faintText},
    {QPalette::LinkVisited, 0xffb497e8, faintText},
    {QPalette::NoRole, 0xff2b2b2d, 0xff2b2b2d},
}};

} // namespace

Theme::Theme(Appearance &given) : appearance(given)
{
    appearance.onChange = [this] { apply(); };
    apply();
}

Theme::~Theme()
{
    appearance.onChange = nullptr;
}

QPalette Theme::darkPalette()
{
    QPalette palette;
    for (const auto &[role, colour, disabled] : darkShades) {
        palette.setColor(QPalette::Active, role, QColor(colour));
        palette.setColor(QPalette::Inactive, role, QColor(colour));
        palette.setColor(QPalette::Disabled, role, QColor(disabled));
    }
    return palette;
}

void Theme::apply()
{
    QApplication::setPalette(QPalette()); // the desktop's
    if (appearance.colorScheme() == ColorScheme::dark && !Palette::isDark(QApplication::palette()))
        QApplication::setPalette(darkPalette());
}
