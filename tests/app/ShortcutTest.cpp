#include "Norvane/app/Shortcut.h"

#include "Platform/memory/MemoryPlatform.h"
#include "Vesmo/Localisation.h"

#include <gtest/gtest.h>

namespace {

using namespace ModifierFlag;
using Layout = MemoryKeyboardLayout::Layout;

// A layout whose every key types this and is called that; null for nothing.
class OneKeyLayout : public KeyboardLayout {
public:
    OneKeyLayout(const char *keyText, const char *keyName) : text(keyText), name(keyName) {}

    [[nodiscard]] std::optional<QString> layoutCharacter(quint32) const override { return optional(text); }
    [[nodiscard]] std::optional<QString> symbolName(quint32) const override { return optional(name); }

private:
    static std::optional<QString> optional(const char *utf8)
    {
        return utf8 ? std::optional(QString(utf8)) : std::nullopt;
    }

    const char *text, *name;
};

TEST(ShortcutTest, IsShownAsSymbolsOrSpelledOutAsTheLanguageHasThem)
{
    const MemoryKeyboardLayout us;
    const struct {
        const char *language;
        Shortcut shortcut;
        QString text;
    } cases[] = {
        {"none", {}, "⌥⌘V"},
        {"none", {0, control | shift | command}, "⌃⇧⌘A"},
        {"none", {0, command | shift | option | control}, "⌃⌥⇧⌘A"},
        {"none", {96, 0}, "F5"},
        {"none", {79, option}, "⌥F18"},
        {"none", {49, command}, "⌘Spazio"},
        {"none", {51, 0x10000 | 0x800000}, "⌫"}, // other bits of a stored mask mean nothing
        {"none", {121, shift}, "⇧⇟"},
        {"none", {10, 0}, "#10"},
        {"en", {}, "Ctrl+Alt+V"},
        {"en", {49, all}, "Super+Ctrl+Alt+Shift+Space"},
        {"it", {117, shift | control}, "Super+Maiusc+Canc"},
    };
    for (const auto &[language, shortcut, text] : cases) {
        loadTranslations(language);
        EXPECT_EQ(displayString(shortcut, us), text) << text.toStdString();
    }
}

TEST(ShortcutTest, AKeyWithoutANameOfItsOwnIsNamedByTheLayout)
{
    loadTranslations("none");
    EXPECT_EQ(keyName(9, MemoryKeyboardLayout(Layout::dvorak)), "K");
    EXPECT_EQ(keyName(33, MemoryKeyboardLayout(Layout::italian)), "È");
    EXPECT_EQ(keyName(12, OneKeyLayout("ß", nullptr)), "SS");
    EXPECT_EQ(keyName(76, OneKeyLayout("\r", nullptr)), "#76"); // nothing that could be shown
    EXPECT_EQ(keyName(50, OneKeyLayout(nullptr, "Menu")), "#50");
    EXPECT_EQ(keyName(256 + 127, OneKeyLayout(nullptr, "Menu")), "Menu");
    EXPECT_EQ(keyName(256 + 127, OneKeyLayout(nullptr, nullptr)), "#383");
    EXPECT_EQ(keyName(36, OneKeyLayout("x", "y")), "↩");
}

TEST(ShortcutTest, TheKeyThatTypesACharacterIsTheLowestOfItsLayout)
{
    const MemoryKeyboardLayout us, dvorak(Layout::dvorak), italian(Layout::italian);
    EXPECT_EQ(keyCodeFor("v", us), 9);
    EXPECT_EQ(keyCodeFor("v", dvorak), 47);
    EXPECT_EQ(keyCodeFor("è", italian), 33);
    EXPECT_EQ(keyCodeFor("è", us), std::nullopt);
    EXPECT_EQ(keyCodeFor("v", OneKeyLayout("V", nullptr)), 0); // compared in lower case
}

TEST(ShortcutTest, JsonIsReadStrictlyAndWrittenSoThatItComesBack)
{
    for (const quint64 modifiers : {quint64(0), quint64(1572864), all, (quint64(1) << 62) + 1}) {
        const Shortcut shortcut{4294967295U, modifiers};
        EXPECT_EQ(decodeShortcut(encodeShortcut(shortcut)), shortcut) << modifiers;
    }
    EXPECT_EQ(decodeShortcut(" {\"modifiers\": 1572864, \"keyCode\": 9.0, \"more\": []}"), Shortcut());
    EXPECT_EQ(decodeShortcut("{\"keyCode\":9,\"modifiers\":9223372036854775808}"),
              (Shortcut{9, quint64(1) << 63}));
    for (const char *json : {"", "garbage", "[9, 1572864]", "{\"keyCode\":9}", "{\"modifiers\":0}",
                             "{\"keyCode\":9,\"modifiers\":0", "{\"keyCode\":-1,\"modifiers\":0}",
                             "{\"keyCode\":4294967296,\"modifiers\":0}", "{\"keyCode\":9,\"modifiers\":1.5}",
                             "{\"keyCode\":\"9\",\"modifiers\":0}", "{\"keyCode\":9,\"modifiers\":null}",
                             "{\"keyCode\":9,\"modifiers\":18446744073709551616}"})
        EXPECT_EQ(decodeShortcut(json), std::nullopt) << json;
}

} // namespace
