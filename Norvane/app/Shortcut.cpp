#include "Norvane/app/Shortcut.h"

#include "Vesmo/Localisation.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <array>
#include <utility>

namespace {

// Keys that have a name of their own, whatever the layout. The names are keys of the translation tables.
constexpr std::array<std::pair<quint32, const char16_t *>, 32> keyNames{{
    {36, u"↩"},    {48, u"⇥"},    {49, u"Spazio"}, {51, u"⌫"},    {117, u"⌦"},   {53, u"⎋"},    {123, u"←"},
    {124, u"→"},   {126, u"↑"},   {125, u"↓"},     {115, u"↖"},   {119, u"↘"},   {116, u"⇞"},   {121, u"⇟"},
    {122, u"F1"},  {120, u"F2"},  {99, u"F3"},     {118, u"F4"},  {96, u"F5"},   {97, u"F6"},   {98, u"F7"},
    {100, u"F8"},  {101, u"F9"},  {109, u"F10"},   {103, u"F11"}, {111, u"F12"}, {105, u"F13"}, {107, u"F14"},
    {113, u"F15"}, {106, u"F16"}, {64, u"F17"},    {79, u"F18"},
}};

constexpr std::array<std::pair<quint64, char16_t>, 4> modifierSymbols{{
    {ModifierFlag::control, u'⌃'},
    {ModifierFlag::option, u'⌥'},
    {ModifierFlag::shift, u'⇧'},
    {ModifierFlag::command, u'⌘'},
}};

bool isPrintable(const QString &text)
{
    return !text.isEmpty() &&
           std::ranges::all_of(text.toUcs4(), [](uint each) { return QChar::isPrint(each); });
}

std::optional<quint64> wholeNumber(const QJsonValue &value)
{
    constexpr double beyondSigned = 9223372036854775808.0, beyondUnsigned = 18446744073709551616.0;
    if (const qint64 number = value.toInteger(-1); number >= 0)
        return static_cast<quint64>(number);
    // Above the signed range the parser only has a double.
    if (const double number = value.toDouble(-1); number >= beyondSigned && number < beyondUnsigned)
        return static_cast<quint64>(number);
    return std::nullopt;
}

} // namespace

QString displayString(const Shortcut &shortcut, const KeyboardLayout &layout)
{
    QString prefix;
    for (const auto &[flag, symbol] : modifierSymbols) {
        if (shortcut.modifiers & flag)
            prefix += QChar(symbol);
    }
    // As one key, because a desktop that spells the modifiers out joins them in an order of its own.
    if (!prefix.isEmpty())
        prefix = localizedString(prefix);
    return prefix + keyName(shortcut.keyCode, layout);
}

QString keyName(quint32 keyCode, const KeyboardLayout &layout)
{
    const auto named = std::ranges::find(keyNames, keyCode, &std::pair<quint32, const char16_t *>::first);
    if (named != keyNames.end())
        return localizedString(QString::fromUtf16(named->second));
    if (const auto character = layout.layoutCharacter(keyCode); character && isPrintable(*character))
        return character->toUpper();
    if (keyCode >= KeyCode::firstUnnumbered) {
        if (const auto name = layout.symbolName(keyCode); name && !name->isEmpty())
            return *name;
    }
    return QStringLiteral("#%1").arg(keyCode);
}

std::optional<quint16> keyCodeFor(const QString &character, const KeyboardLayout &layout)
{
    for (quint16 keyCode = 0; keyCode < 128; ++keyCode) {
        const auto typed = layout.layoutCharacter(keyCode);
        if (typed && typed->toLower() == character)
            return keyCode;
    }
    return std::nullopt;
}

QByteArray encodeShortcut(const Shortcut &shortcut)
{
    // By hand: QJsonValue holds no unsigned 64-bit integers.
    return "{\"keyCode\":" + QByteArray::number(shortcut.keyCode) +
           ",\"modifiers\":" + QByteArray::number(shortcut.modifiers) + '}';
}

std::optional<Shortcut> decodeShortcut(const QByteArray &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const auto keyCode = wholeNumber(object.value(u"keyCode"));
    const auto modifiers = wholeNumber(object.value(u"modifiers"));
    if (!keyCode || !modifiers || *keyCode > std::numeric_limits<quint32>::max())
        return std::nullopt;
    return Shortcut{static_cast<quint32>(*keyCode), *modifiers};
}
