#include "Platform/linux/xdg/DesktopEntryFile.h"

#include <algorithm>

namespace {

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Cuts the next piece off the front of the text.
std::string_view takeUntil(std::string_view &text, char separator)
{
    const auto end = text.find(separator);
    const auto piece = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return piece;
}

std::string unescaped(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (size_t index = 0; index < text.size(); ++index) {
        if (text[index] != '\\' || index + 1 == text.size()) {
            result += text[index];
            continue;
        }
        switch (const char next = text[++index]) {
        case 's':
            result += ' ';
            break;
        case 'n':
            result += '\n';
            break;
        case 't':
            result += '\t';
            break;
        case 'r':
            result += '\r';
            break;
        case '\\':
            result += '\\';
            break;
        default:
            result += '\\';
            result += next;
        }
    }
    return result;
}

// The first word of a command line, quotes resolved; the rest stays in `text`.
std::string takeWord(std::string_view &text)
{
    text = trimmed(text);
    std::string word;
    bool quoted = false;
    size_t index = 0;
    for (; index < text.size(); ++index) {
        const char character = text[index];
        if (character == '"')
            quoted = !quoted;
        else if (character == '\\' && quoted && index + 1 < text.size())
            word += text[++index];
        else if (!quoted && (character == ' ' || character == '\t'))
            break;
        else
            word += character;
    }
    text = text.substr(index);
    return word;
}

// Fills an entry from the keys of its group, in the order of the file.
class EntryReader {
public:
    explicit EntryReader(const std::vector<std::string> &wantedLocales)
        : locales(wantedLocales), nameRank(wantedLocales.size() + 1)
    {
    }

    void read(std::string_view key, std::string_view value)
    {
        if (key == "Type")
            isApplication = value == "Application";
        else if (key == "Name")
            readName({}, value);
        else if (key.starts_with("Name[") && key.ends_with(']'))
            readName(key.substr(5, key.size() - 6), value);
        else if (key == "Icon")
            entry.icon = unescaped(value);
        else if (key == "StartupWMClass")
            entry.startupWMClass = unescaped(value);
        else if (key == "Exec")
            entry.executable = executableOf(unescaped(value));
        else if (key == "NoDisplay")
            entry.noDisplay = value == "true";
        else if (key == "Hidden")
            entry.hidden = value == "true";
    }

    [[nodiscard]] std::optional<DesktopEntryFile> finished() const
    {
        if (entry.hidden)
            return entry; // it needs nothing else to shadow others
        return isApplication && !entry.name.empty() ? std::optional(entry) : std::nullopt;
    }

private:
    // The rank of a language is its place in the list; the name without a language comes after all of them.
    void readName(std::string_view language, std::string_view value)
    {
        const auto rank = static_cast<size_t>(std::ranges::find(locales, language) - locales.begin());
        if (rank >= nameRank || (rank == locales.size() && !language.empty()))
            return;
        nameRank = rank;
        entry.name = unescaped(value);
    }

    const std::vector<std::string> &locales;
    size_t nameRank;
    DesktopEntryFile entry;
    bool isApplication = false;
};

} // namespace

std::vector<std::string> localeVariants(std::string_view locales)
{
    std::vector<std::string> variants;
    const auto add = [&variants](std::string name) {
        if (!name.empty() && std::ranges::find(variants, name) == variants.end())
            variants.push_back(std::move(name));
    };
    while (!locales.empty()) {
        std::string_view locale = takeUntil(locales, ':');
        std::string_view modifier;
        if (const auto at = locale.find('@'); at != std::string_view::npos) {
            modifier = locale.substr(at);
            locale = locale.substr(0, at);
        }
        locale = locale.substr(0, locale.find('.'));
        const auto language = locale.substr(0, locale.find('_'));
        if (language.empty() || language == "C" || language == "POSIX")
            continue;
        for (const auto base : {locale, language}) {
            add(std::string(base) + std::string(modifier));
            add(std::string(base));
        }
    }
    return variants;
}

std::optional<DesktopEntryFile> parseDesktopEntry(std::string_view file,
                                                  const std::vector<std::string> &locales)
{
    if (file.find('\0') != std::string_view::npos)
        return std::nullopt;
    EntryReader reader(locales);
    bool isOurs = false;
    while (!file.empty()) {
        const auto line = trimmed(takeUntil(file, '\n'));
        if (line.empty() || line.front() == '#')
            continue;
        if (line.front() == '[') {
            if (isOurs)
                break; // actions and the like, which say nothing of windows
            isOurs = line == "[Desktop Entry]";
            continue;
        }
        const auto equals = line.find('=');
        if (isOurs && equals != std::string_view::npos)
            reader.read(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
    }
    return reader.finished();
}

std::string executableOf(std::string_view commandLine)
{
    std::string word = takeWord(commandLine);
    const auto fileName = [](const std::string &path) { return path.substr(path.find_last_of('/') + 1); };
    if (fileName(word) == "env") {
        do {
            word = takeWord(commandLine);
        } while (!word.empty() && (word.front() == '-' || word.find('=') != std::string::npos));
    }
    return fileName(word);
}
