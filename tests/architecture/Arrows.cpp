#include "tests/architecture/Arrows.h"

#include <QRegularExpression>
#include <algorithm>
#include <array>
#include <optional>

namespace {

using namespace Qt::StringLiterals;

struct Room {
    const char *name;
    const char *mayName; // rooms, separated by spaces; a room may always name itself, "*" is every room
};

// The longest name that a path begins with is its room; a folder that no line names has to find its place
// here.
constexpr std::array rooms{
    Room{"Platform", ""},
    Room{"Platform/memory", "Platform"},
    Room{"Platform/linux/*", "Platform"}, // each folder a room of its own
    Room{"Platform/linux/compose", "Platform Platform/linux/*"},
    Room{"Vesmo", "Platform"},
    Room{"Norvane/store", "Vesmo Platform"},
    Room{"Norvane/app", "Norvane/store Vesmo Platform"},
    Room{"Norvane/capture", "Norvane/store Norvane/app Vesmo Platform"},
    Room{"Norvane/paste", "Norvane/store Norvane/app Norvane/capture Vesmo Platform"},
    Room{"Norvane", "Norvane/store Norvane/app Norvane/capture Norvane/paste Vesmo Platform"},
    Room{"Norvane/main.cpp", "Norvane Norvane/store Norvane/app Norvane/capture Norvane/paste Vesmo Platform "
                             "Platform/linux/compose Platform/memory resources"},
    Room{"resources", ""},
    Room{"tests", "*"},
    Room{"bench", "*"},
};

struct Word {
    const char *pattern; // a regular expression for one line of code
    const char *places;  // rooms and folders that it may stand in, separated by spaces
    const char *instead;
};

constexpr std::array words{
    Word{R"(<Qt?DBus|\bQDBus\w+)", "Platform/linux tests bench", "D-Bus stays below Platform/linux"},
    Word{R"(<(xcb|X11|xkbcommon)/|\bxcb_\w+|\bxkb_\w+)", "Platform/linux tests bench",
         "X11 stays below Platform/linux"},
    Word{R"(\bQX11\w+|\bQNativeInterface\b)", "Platform/linux tests bench", "X11 stays below Platform/linux"},
    Word{R"(<(tesseract|leptonica)/)", "Platform/linux tests bench", "Tesseract stays below Platform/linux"},
    Word{R"(<(QNetwork|QtNetwork|QTcpS|QLocalS|curl/)[^>]*>)", "Platform/linux tests bench",
         "the network stays below Platform/linux"},
    Word{R"(\bQClipboard\b|\bQ\w*Application::clipboard\b|\bqApp->clipboard\b)", "tests",
         "it waits for other programs; use Platform/Pasteboard.h"},
    Word{R"(\b\w*(Linux|Memory)Platform\b)", "Platform/linux Platform/memory Norvane/main.cpp tests bench",
         "only Norvane/main.cpp names a concrete platform"},
};

bool isBelow(const QString &path, const QString &folder)
{
    return path == folder || path.startsWith(folder + u'/');
}

// The windows and the abstract services lie beside the folders of other rooms: only their files are theirs.
bool holds(const QString &room, const QString &path)
{
    if (room == u"Norvane" || room == u"Platform")
        return path.section(u'/', 0, -2) == room;
    if (room.endsWith(u"/*"))
        return path.startsWith(room.chopped(1)) && path.count(u'/') > room.count(u'/');
    return isBelow(path, room);
}

struct Place {
    QString room; // its name: that of the folder where the table has one line for many
    QStringList mayName;
};

std::optional<Place> findPlace(const QString &path)
{
    std::optional<Place> best;
    for (const Room &room : rooms) {
        const QString name = QLatin1String(room.name);
        if (!holds(name, path))
            continue;
        const QString own = name.endsWith(u"/*") ? path.section(u'/', 0, name.count(u'/')) : name;
        if (!best || own.size() >= best->room.size())
            best = Place{own, QString::fromLatin1(room.mayName).split(u' ', Qt::SkipEmptyParts)};
    }
    return best;
}

bool mayName(const Place &place, const QString &room)
{
    return room == place.room ||
           std::any_of(place.mayName.begin(), place.mayName.end(), [&](const QString &allowed) {
               return allowed == u"*" || allowed == room ||
                      (allowed.endsWith(u"/*") && room.startsWith(allowed.chopped(1)));
           });
}

// What an include of `target` in a file of `place` breaks, or nothing.
QString includeFault(const Place &place, const QString &target)
{
    static const QRegularExpression generated(u"(^|/)(moc_\\w+\\.cpp|\\w+\\.moc|ui_\\w+\\.h)$"_s);
    if (generated.match(target).hasMatch())
        return {};
    const auto other = findPlace(target);
    if (!other)
        return u"\"%1\" is in no room: name it from the root of the sources"_s.arg(target);
    if (mayName(place, other->room))
        return {};
    return u"%1 may not name %2 (\"%3\")"_s.arg(place.room, other->room, target);
}

bool startsWithOurs(const QString &target)
{
    static const QStringList ours{u"Norvane"_s, u"Vesmo"_s, u"Platform"_s,
                                  u"tests"_s,   u"bench"_s, u"resources"_s};
    return ours.contains(target.section(u'/', 0, 0)) && target.contains(u'/');
}

// The first word of the table that the line holds where it may not.
QString wordFault(const QString &path, const QString &line)
{
    for (const Word &word : words) {
        const QStringList places = QString::fromLatin1(word.places).split(u' ');
        if (std::any_of(places.begin(), places.end(),
                        [&](const QString &place) { return isBelow(path, place); }))
            continue;
        const QRegularExpression search(QLatin1String(word.pattern));
        if (const auto match = search.match(line); match.hasMatch())
            return u"\"%1\": %2"_s.arg(match.captured(), QLatin1String(word.instead));
    }
    return {};
}

// The text with every comment blanked out; lines, literals and everything else stay in place.
QString withoutComments(const QString &text)
{
    // Literals first, so that "//" in one begins no comment; a lone ' in a number (1'000) is none.
    static const QRegularExpression token(u"R\"([^()\\\\\\s]{0,16})\\(.*?\\)\\1\"|\"(?:\\\\.|[^\"\\\\\\n])*"
                                          u"\"|(?<![0-9a-fA-F])'(?:\\\\.|[^'\\\\\\n])+'"
                                          u"|//[^\\n]*|/\\*.*?(?:\\*/|$)"_s,
                                          QRegularExpression::DotMatchesEverythingOption);
    QString result = text;
    for (auto matches = token.globalMatch(text); matches.hasNext();) {
        const auto match = matches.next();
        if (!match.capturedView().startsWith(u'/'))
            continue;
        for (qsizetype i = match.capturedStart(); i < match.capturedEnd(); ++i) {
            if (result[i] != u'\n')
                result[i] = u' ';
        }
    }
    return result;
}

} // namespace

QStringList faultsOf(const QString &path, const QString &text)
{
    static const QRegularExpression include(u"^\\s*#\\s*include\\b\\s*(?:\"([^\"]*)\"|<([^>]*)>|(.*))"_s);
    const auto place = findPlace(path);
    if (!place)
        return {u"%1: in no room; give its folder a line in tests/architecture/Arrows.cpp"_s.arg(path)};

    QStringList faults;
    const QStringList lines = withoutComments(text).split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const auto report = [&](const QString &fault) {
            if (!fault.isEmpty())
                faults << u"%1:%2: %3"_s.arg(path, QString::number(i + 1), fault);
        };
        report(wordFault(path, lines[i]));
        const auto match = include.match(lines[i]);
        if (!match.hasMatch())
            continue;
        if (!match.captured(3).isEmpty())
            report(u"an include that is computed cannot be checked"_s);
        else if (!match.captured(1).isEmpty() || startsWithOurs(match.captured(2)))
            report(includeFault(*place, match.captured(1) + match.captured(2)));
    }
    return faults;
}
