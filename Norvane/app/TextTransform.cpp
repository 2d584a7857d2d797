#include "Norvane/app/TextTransform.h"

#include "Vesmo/Localisation.h"
#include "Vesmo/Text.h"

#include <QStringDecoder>
#include <utility>

namespace {

constexpr std::array<QStringView, TextTransforms::allCases.size()> rawValues = {
    u"upper",        u"lower", u"capitalized", u"sentence", u"trimLines", u"singleLine", u"removeEmptyLines",
    u"camel",        u"snake", u"kebab",       u"quoted",   u"urlEncode", u"urlDecode",  u"base64Encode",
    u"base64Decode",
};

constexpr char upperHex[] = "0123456789ABCDEF";
constexpr char lowerHex[] = "0123456789abcdef";

// Letter case.

QString capitalized(const QString &text)
{
    QString result;
    result.reserve(text.size());
    const QStringView view(text);
    for (qsizetype start = 0; start < text.size();) {
        qsizetype end = start;
        while (end < text.size() && !text[end].isSpace())
            ++end;
        if (end > start)
            result += capitalizedWord(view.sliced(start, end - start));
        for (start = end; start < text.size() && text[start].isSpace(); ++start)
            result += text[start];
    }
    return result;
}

QString sentence(const QString &text)
{
    const QString lower = lowercased(text);
    qsizetype position = 0;
    for (ClusterReader reader(lower); !reader.atEnd();) {
        const QStringView cluster = reader.next();
        if (isLetter(cluster))
            return QStringView(lower).first(position) + uppercased(cluster) +
                   QStringView(lower).sliced(position + cluster.size());
        position += cluster.size();
    }
    return lower;
}

// Lines.

// The lines, ended by LF or CR LF, as `convert` makes them; those without a conversion are dropped.
template <typename Convert>
QString convertedLines(const QString &text, QChar separator, const Convert &convert)
{
    QString result;
    result.reserve(text.size());
    bool first = true;
    const QStringView view(text);
    for (qsizetype start = 0, end = 0; end >= 0; start = end + 1) {
        end = view.indexOf(u'\n', start);
        QStringView line = end < 0 ? view.sliced(start) : view.sliced(start, end - start);
        if (end >= 0 && line.endsWith(u'\r'))
            line.chop(1);
        const std::optional<QStringView> converted = convert(line);
        if (!converted)
            continue;
        if (!std::exchange(first, false))
            result += separator;
        result += *converted;
    }
    return result;
}

std::optional<QStringView> trimmed(QStringView line)
{
    return withoutOuterSpaces(line);
}

std::optional<QStringView> trimmedIfAnyIsLeft(QStringView line)
{
    const QStringView left = withoutOuterSpaces(line);
    return left.isEmpty() ? std::nullopt : std::optional(left);
}

std::optional<QStringView> wholeIfAnyIsLeft(QStringView line)
{
    return trimmedIfAnyIsLeft(line) ? std::optional(line) : std::nullopt;
}

// Identifiers.

// Words end at what is neither letter nor number, and between a lower and an upper case letter.
template <typename Visit>
void forEachWord(const QString &text, const Visit &visit)
{
    qsizetype start = 0; // of the current word
    qsizetype position = 0;
    bool afterLowercase = false;
    const auto endWord = [&] {
        if (position > start)
            visit(QStringView(text).sliced(start, position - start));
    };
    for (ClusterReader reader(text); !reader.atEnd();) {
        const QStringView cluster = reader.next();
        if (!isLetter(cluster) && !isNumber(cluster)) {
            endWord();
            start = position + cluster.size();
        } else if (afterLowercase && isUppercase(cluster)) {
            endWord();
            start = position;
        }
        afterLowercase = isLowercase(cluster);
        position += cluster.size();
    }
    endWord();
}

QString camel(const QString &text)
{
    QString result;
    result.reserve(text.size());
    forEachWord(text, [&](QStringView word) {
        result += result.isEmpty() ? lowercased(word) : capitalizedWord(word);
    });
    return result.isEmpty() ? text : result;
}

QString lowerWords(const QString &text, QChar separator)
{
    QString result;
    result.reserve(text.size());
    forEachWord(text, [&](QStringView word) {
        if (!result.isEmpty())
            result += separator;
        result += lowercased(word);
    });
    return result;
}

// Encodings.

void appendEscaped(QString &result, char16_t unit)
{
    constexpr std::u16string_view escaped = u"\"\\\b\f\n\r\t", letters = u"\"\\bfnrt";
    if (const size_t index = escaped.find(unit); index != std::u16string_view::npos) {
        result += u'\\';
        result += QChar(letters[index]);
    } else if (unit < 0x20) {
        result +=
            QLatin1String("\\u00") + QLatin1Char(lowerHex[unit >> 4]) + QLatin1Char(lowerHex[unit & 15]);
    } else {
        result += QChar(unit);
    }
}

QString quoted(const QString &text)
{
    QString result;
    result.reserve(text.size() + text.size() / 16 + 2);
    result += u'"';
    if (text.isValidUtf16()) {
        for (const QChar unit : text)
            appendEscaped(result, unit.unicode());
    } else {
        result += text;
    }
    result += u'"';
    return result;
}

constexpr bool isPlainInUrl(char byte)
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') ||
           std::string_view("!$'()*,-.:;@_~").find(byte) != std::string_view::npos;
}

QString urlEncoded(const QString &text)
{
    if (!text.isValidUtf16())
        return text;
    const QByteArray bytes = text.toUtf8();
    QByteArray result;
    result.reserve(bytes.size());
    for (const char byte : bytes) {
        if (isPlainInUrl(byte)) {
            result += byte;
        } else {
            result += '%';
            result += upperHex[static_cast<uchar>(byte) >> 4];
            result += upperHex[static_cast<uchar>(byte) & 15];
        }
    }
    return QString::fromLatin1(result);
}

// A byte order mark is a character like any other. Absent when the bytes are no UTF-8.
std::optional<QString> textFromUtf8(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

int hexValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Absent when a percent sign stands before anything but two hexadecimal digits.
std::optional<QByteArray> percentDecoded(const QByteArray &bytes)
{
    QByteArray result;
    result.reserve(bytes.size());
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != '%') {
            result += bytes[i] == '+' ? ' ' : bytes[i];
            continue;
        }
        if (i + 2 >= bytes.size())
            return std::nullopt;
        const int high = hexValue(bytes[i + 1]), low = hexValue(bytes[i + 2]);
        if (high < 0 || low < 0)
            return std::nullopt;
        result += static_cast<char>(high << 4 | low);
        i += 2;
    }
    return result;
}

QString urlDecoded(const QString &text)
{
    if (!text.isValidUtf16())
        return text;
    const auto bytes = percentDecoded(text.toUtf8());
    return bytes ? textFromUtf8(*bytes).value_or(text) : text;
}

QString base64Encoded(const QString &text)
{
    return text.isValidUtf16() ? QString::fromLatin1(text.toUtf8().toBase64()) : text;
}

QString base64Decoded(const QString &text)
{
    QByteArray digits;
    digits.reserve(text.size() + 3);
    for (const QChar unit : text) {
        if (unit.isSpace())
            continue;
        if (unit.unicode() >= 0x80)
            return text;
        digits += static_cast<char>(unit.unicode());
    }
    digits.append((4 - digits.size() % 4) % 4, '=');
    const auto decoded =
        QByteArray::fromBase64Encoding(std::move(digits), QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? textFromUtf8(*decoded).value_or(text) : text;
}

} // namespace

QString rawValue(TextTransform transform)
{
    return rawValues[static_cast<size_t>(transform)].toString();
}

std::optional<TextTransform> textTransform(QStringView rawValue)
{
    for (const TextTransform transform : TextTransforms::allCases) {
        if (rawValues[static_cast<size_t>(transform)] == rawValue)
            return transform;
    }
    return std::nullopt;
}

QString title(TextTransform transform)
{
    switch (transform) {
    case TextTransform::upper:
        return L("MAIUSCOLO");
    case TextTransform::lower:
        return L("minuscolo");
    case TextTransform::capitalized:
        return L("Iniziali Maiuscole");
    case TextTransform::sentence:
        return L("Frase con maiuscola iniziale");
    case TextTransform::trimLines:
        return L("Togli spazi a inizio e fine riga");
    case TextTransform::singleLine:
        return L("Tutto su una riga");
    case TextTransform::removeEmptyLines:
        return L("Togli le righe vuote");
    case TextTransform::camel:
        return L("camelCase");
    case TextTransform::snake:
        return L("snake_case");
    case TextTransform::kebab:
        return L("kebab-case");
    case TextTransform::quoted:
        return L("Tra virgolette (stringa JSON)");
    case TextTransform::urlEncode:
        return L("Codifica URL");
    case TextTransform::urlDecode:
        return L("Decodifica URL");
    case TextTransform::base64Encode:
        return L("Codifica Base64");
    case TextTransform::base64Decode:
        return L("Decodifica Base64");
    }
    return {};
}

QString apply(TextTransform transform, const QString &text)
{
    switch (transform) {
    case TextTransform::upper:
        return uppercased(text);
    case TextTransform::lower:
        return lowercased(text);
    case TextTransform::capitalized:
        return capitalized(text);
    case TextTransform::sentence:
        return sentence(text);
    case TextTransform::trimLines:
        return convertedLines(text, u'\n', trimmed);
    case TextTransform::singleLine:
        return convertedLines(text, u' ', trimmedIfAnyIsLeft);
    case TextTransform::removeEmptyLines:
        return convertedLines(text, u'\n', wholeIfAnyIsLeft);
    case TextTransform::camel:
        return camel(text);
    case TextTransform::snake:
        return lowerWords(text, u'_');
    case TextTransform::kebab:
        return lowerWords(text, u'-');
    case TextTransform::quoted:
        return quoted(text);
    case TextTransform::urlEncode:
        return urlEncoded(text);
    case TextTransform::urlDecode:
        return urlDecoded(text);
    case TextTransform::base64Encode:
        return base64Encoded(text);
    case TextTransform::base64Decode:
        return base64Decoded(text);
    }
    return text;
}
