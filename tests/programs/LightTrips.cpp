#include "tests/programs/Editors.h"
#include "tests/programs/FileManagers.h"
#include "tests/programs/Trips.h"

std::vector<Trip> lightTrips()
{
    return {
        {QStringLiteral("plain text"),
         xterm(),
         textOf("chestnut of \xc3\xa8 and \xe2\x82\xac\n"),
         0,
         QStringLiteral("chestnut"),
         {},
         savesTheSame(),
         &mousepad(),
         savesTheSame()},
        {QStringLiteral("plain text"),
         mousepad(),
         textOf(fruitLines("pear")),
         0,
         QStringLiteral("pear"),
         {},
         savesTheSame(),
         &xterm(),
         savesTheSame()},
        {QStringLiteral("files"),
         pcmanfm(),
         makeFiles,
         3,
         QStringLiteral("apples"),
         {},
         holdsTheFiles(),
         nullptr,
         {}},
        {QStringLiteral("files, cut"),
         cutting(pcmanfm()),
         makeFiles,
         3,
         QStringLiteral("apples"),
         {},
         holdsTheFiles(),
         nullptr,
         {}},
        {QStringLiteral("plain text"),
         featherpad(),
         textOf(fruitLines("medlar")),
         0,
         QStringLiteral("medlar"),
         {},
         savesTheSame(),
         &mousepad(),
         savesTheSame()},
    };
}

std::vector<Trip> lightClipboardTrips()
{
    const auto plain = QStringLiteral("plain text");
    return {
        {plain,
         mousepad(),
         textOf(fruitLines("bilberry")),
         0,
         QStringLiteral("bilberry"),
         {},
         {},
         &featherpad(),
         savesTheSame()},
        {plain,
         featherpad(),
         textOf(fruitLines("cloudberry")),
         0,
         QStringLiteral("cloudberry"),
         {},
         {},
         &mousepad(),
         savesTheSame()},
    };
}
