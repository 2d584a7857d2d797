#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What one desktop entry file says of its application. Texts are UTF-8, escapes resolved. Any thread.
struct DesktopEntryFile {
    std::string name; // in the best of the languages asked for
    std::string icon;
    std::string startupWMClass;
    std::string executable; // file name of the program that Exec starts
    bool noDisplay = false;
    bool hidden = false; // as if the file, and those of the same name behind it, were not there
};

// The locale names to look for, best first ("it_IT@euro" gives it_IT@euro, it_IT, it@euro, it). `locales` is
// a list with colons, as LANGUAGE has it; encodings are ignored.
[[nodiscard]] std::vector<std::string> localeVariants(std::string_view locales);

// Absent when it is no application's entry, or no desktop entry file at all.
[[nodiscard]] std::optional<DesktopEntryFile> parseDesktopEntry(std::string_view file,
                                                                const std::vector<std::string> &locales);

// The file name of the program that a command line of Exec starts; of "env A=b program", the program's.
[[nodiscard]] std::string executableOf(std::string_view commandLine);
