#include "tests/programs/Browsers.h"
#include "tests/programs/Editors.h"
#include "tests/programs/FileManagers.h"
#include "tests/programs/Office.h"
#include "tests/programs/Pictures.h"
#include "tests/programs/Trips.h"

namespace {

const QString plain = QStringLiteral("plain text");
const QString styled = QStringLiteral("styled text");
const QString image = QStringLiteral("image");

const QByteArray html = " with <b>bold</b> and <a href=\"https://example.org/\">a link</a>, \xc3\xa8 "
                        "\xe2\x82\xac \xf0\x9f\x8d\x90";
const QString boldHtml = QStringLiteral("<b(\\s[^>]*)?>(<[^>]*>|\\s)*bold");

} // namespace

std::vector<Trip> heavyTrips()
{
    const Proof sameRich = copiesTheSame("text/html");
    // Writer drops what is bold in Chromium's HTML, which is the very HTML that Chromium copied.
    const Proof inWriter = copiesMarked(
        "text/html", {QStringLiteral("href=\"https://example.org/\""), QStringLiteral("loquat")});
    return {
        {QStringLiteral("files"),
         thunar(),
         makeFiles,
         3,
         QStringLiteral("apples"),
         {},
         holdsTheFiles(),
         &pcmanfm(),
         holdsTheFiles()},
        {QStringLiteral("files, cut"),
         cutting(thunar()),
         makeFiles,
         3,
         QStringLiteral("apples"),
         {},
         holdsTheFiles(),
         &pcmanfm(),
         holdsTheFiles()},
        {styled,
         writer(),
         styledDocument(QStringLiteral("quince")),
         1,
         QStringLiteral("quince"),
         {"text/html"},
         all({copiesTheSame("text/html", htmlBody),
              savesMarked({QStringLiteral("<text:h [^>]*>quince<"), QStringLiteral("name=\"Table\"")})}),
         &chromium(),
         copiesMarked("text/html", {boldHtml, QStringLiteral("<table"), QStringLiteral("<h1")})},
        {QStringLiteral("cells"),
         calc(),
         sheet(QStringLiteral("damson")),
         1,
         QStringLiteral("damson"),
         {"UTF8_STRING"},
         all({copiesTheSame("UTF8_STRING"),
              savesMarked({QStringLiteral("formula=\"of:=\\[.B1\\][+]\\[.B2\\]"),
                           QStringLiteral("=\"ce1\"[^>]*>\\s*<[^>]*font-weight=\"bold")})}),
         &writer(),
         copiesMarked("text/html",
                      {QStringLiteral("<table"), QStringLiteral("damson"), QStringLiteral("12[.]5")})},
        {plain,
         chromium(),
         plainField("sorb \xc3\xa8 \xf0\x9f\x8d\x90\nsecond line"),
         0,
         QStringLiteral("sorb"),
         {"UTF8_STRING"},
         copiesTheSame("UTF8_STRING"),
         &mousepad(),
         savesMarked({QStringLiteral("^sorb \xe8 \U0001f350\nsecond line$")})},
        {styled,
         chromium(),
         page("loquat" + html),
         1,
         QStringLiteral("loquat"),
         {"text/html"},
         sameRich,
         &writer(),
         inWriter},
        {image,
         copyingThePicture(chromium()),
         picturePage(pictureBytes(3)),
         2,
         {},
         {"image/png"},
         showsThePicture(),
         &gimp(),
         copiesTheSame("image/png", pixels),
         &chromium()},
        {styled,
         firefox(),
         page("mulberry" + html),
         1,
         QStringLiteral("mulberry"),
         {"text/html"},
         sameRich,
         &chromium(),
         copiesMarked("text/html", {boldHtml})},
        {image,
         copyingThePicture(firefox()),
         picturePage(pictureBytes(3)),
         2,
         {},
         {"image/png"},
         showsThePicture(),
         &gimp(),
         copiesTheSame("image/png", pixels),
         &firefox()},
        {image,
         gimp(),
         picture(5),
         2,
         {},
         {"image/png"},
         copiesTheSame("image/png", pixels),
         &chromium(),
         showsThePicture()},
        {plain,
         emacs(),
         textOf(fruitLines("rowan")),
         0,
         QStringLiteral("rowan"),
         {},
         savesTheSame(),
         &mousepad(),
         savesTheSame()},
    };
}

std::vector<Trip> heavyClipboardTrips()
{
    return {
        {QStringLiteral("files"),
         cutting(pcmanfm()),
         makeFiles,
         3,
         QStringLiteral("apples"),
         {},
         {},
         &thunar(),
         getsTheFiles()},
        {QStringLiteral("files"),
         cutting(thunar()),
         makeFiles,
         3,
         QStringLiteral("apples"),
         {},
         {},
         &pcmanfm(),
         getsTheFiles()},
        {image,
         copyingThePicture(chromium()),
         picturePage(pictureBytes(3)),
         2,
         {},
         {"image/png"},
         {},
         &gimp(),
         copiesTheSame("image/png", pixels)},
    };
}
