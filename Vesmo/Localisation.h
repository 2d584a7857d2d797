#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>
#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>

// Every text that the user sees is written as an Italian phrase, which is also the key of its translation:
//
//     L("Svuota")                              a plain phrase
//     L("%@ di %@", shown, stored)             a phrase with values
//     L("Annulla##undo")                       a phrase told apart from another use of the same word
//
// A key that is known only when the program runs: localizedString(key).
//
// The tables are those of the program's resources (:/i18n); a phrase without a translation shows itself,
// without what follows a "##". The language is chosen once, on first use. Any thread; no application object
// is needed.

// A key and the texts that take the place of its "%@", in order.
class LocalizedText {
public:
    class Interpolation;

    explicit LocalizedText(QString key) : key_(std::move(key)) {} // a plain phrase; its "%" are just that
    explicit LocalizedText(Interpolation interpolation);

    [[nodiscard]] const QString &key() const { return key_; }
    [[nodiscard]] const QStringList &arguments() const { return arguments_; }

    bool operator==(const LocalizedText &) const = default;

private:
    friend class Interpolation;
    LocalizedText(QString key, QStringList arguments) : key_(std::move(key)), arguments_(std::move(arguments))
    {
    }

    QString key_;
    QStringList arguments_;
};

// The ordinary text of a value: 500 is "500", true is "true", 2.0 is "2.0", bytes are UTF-8.
[[nodiscard]] QString textOf(bool value);
[[nodiscard]] QString textOf(double value);
template <typename Value>
[[nodiscard]] QString textOf(const Value &value)
{
    if constexpr (std::convertible_to<const Value &, std::string_view> && std::is_class_v<Value> &&
                  !std::convertible_to<const Value &, QString>) {
        const std::string_view bytes(value);
        return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    } else if constexpr (std::same_as<Value, QStringView>) {
        return value.toString();
    } else if constexpr (std::convertible_to<const Value &, QString>) {
        return QString(value);
    } else if constexpr (std::same_as<Value, char16_t>) {
        return QString(QChar(value));
    } else if constexpr (std::same_as<Value, char>) {
        return QString(QChar::fromLatin1(value));
    } else if constexpr (std::is_floating_point_v<Value>) {
        return textOf(static_cast<double>(value));
    } else {
        return QString::number(value);
    }
}

// Builds a LocalizedText piece by piece, where literal text and values come from somewhere else than one
// phrase.
class LocalizedText::Interpolation {
public:
    explicit Interpolation(qsizetype literalCapacity = 0, qsizetype interpolationCount = 0);

    void appendLiteral(QStringView literal); // its "%" are doubled in the key
    template <typename Value>
    void appendInterpolation(const Value &value)
    {
        key_ += u"%@";
        arguments_.append(textOf(value));
    }

    [[nodiscard]] const QString &key() const { return key_; }
    [[nodiscard]] const QStringList &arguments() const { return arguments_; }

private:
    friend class LocalizedText;
    QString key_;
    QStringList arguments_;
};

// A phrase of the source. With values, the compiler counts: as many "%@" as values, and every other "%"
// doubled.
template <typename... Values>
class PhraseKey {
public:
    template <size_t size>
    consteval PhraseKey(const char (&phrase)[size]) : text(phrase, size - 1) // NOLINT: meant to convert
    {
        if (!isFormatted(text, sizeof...(Values)))
            throw "A phrase needs one %@ a value, and %% for a percent sign when it has values";
    }

    [[nodiscard]] QString toString() const
    {
        return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    }

    static constexpr bool isFormatted(std::string_view phrase, size_t values)
    {
        size_t placeholders = 0;
        for (size_t index = 0; index < phrase.size(); ++index) {
            if (phrase[index] != '%')
                continue;
            const char next = index + 1 < phrase.size() ? phrase[index + 1] : '\0';
            if (next == '@')
                ++placeholders;
            else if (values > 0 && next != '%')
                return false;
            if (values > 0)
                ++index;
        }
        return placeholders == values;
    }

private:
    std::string_view text;
};

[[nodiscard]] QString L(const LocalizedText &text);

template <typename... Values>
[[nodiscard]] QString L(PhraseKey<std::type_identity_t<Values>...> phrase, const Values &...values);

// The translation of a plain key, known only at run time.
[[nodiscard]] QString localizedString(const QString &key);

// The text of a phrase whose translation is `format`: each "%@" is the next argument, "%%" is "%". What has
// no argument stays as it is; an argument is never searched for placeholders.
[[nodiscard]] QString formatted(const QString &format, const QStringList &arguments);

// The language of the interface.
namespace AppLanguage {

// Two letters ("it", "en"). Without tables it is "it"; where none of the user's languages has one, "en".
[[nodiscard]] QString code();
[[nodiscard]] bool isItalian();

// For dates, times and numbers: the user's own regional settings where they are in the interface's language.
[[nodiscard]] QLocale locale();

// The rules behind them. `carried` are the codes of the tables, `preferred` the user's languages as
// QLocale::uiLanguages gives them, `current` the user's regional settings.
[[nodiscard]] QString choose(const QStringList &carried, const QStringList &preferred);
[[nodiscard]] QLocale localeFor(const QString &code, const QLocale &current);

} // namespace AppLanguage

// For tests: the table of this language ("it", "en"; anything else: none, so that phrases show themselves),
// and AppLanguage with it.
void loadTranslations(const QString &languageCode);

template <typename... Values>
QString L(PhraseKey<std::type_identity_t<Values>...> phrase, const Values &...values)
{
    if constexpr (sizeof...(Values) == 0)
        return localizedString(phrase.toString());
    else
        return formatted(localizedString(phrase.toString()), {textOf(values)...});
}
