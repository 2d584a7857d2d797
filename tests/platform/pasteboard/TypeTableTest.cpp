#include "Platform/linux/x11/TypeTable.h"

#include <gtest/gtest.h>

namespace {

using Names = std::vector<QByteArray>;

// What is asked for, in the order in which it is asked; alternatives are joined by "|".
Names asked(const Names &targets)
{
    Names names;
    for (const ReadRequest &request : planFor(targets).requests) {
        QByteArray name;
        for (const ReadCandidate &candidate : request.candidates)
            name += (name.isEmpty() ? "" : "|") + candidate.target;
        names.push_back(name);
    }
    return names;
}

const QByteArray embedSource =
    "application/x-openoffice-embed-source-xml;windows_formatname=\"Star Embed Source (XML)\"";
// As long as a document deep in folders makes it.
const QByteArray descriptor =
    "application/x-openoffice-objectdescriptor-xml;displayname=\"file:///" + QByteArray(1000, 'd') + "\"";

} // namespace

TEST(TypeTableTest, OwnersOfEveryKindAreAskedForWhatTheyAreGoodFor)
{
    struct Case {
        const char *owner;
        Names targets;
        Names expected;
    };
    const Case cases[] = {
        {"xclip", {"TARGETS", "UTF8_STRING"}, {"UTF8_STRING"}},
        {"xsel",
         {"TIMESTAMP", "MULTIPLE", "TARGETS", "DELETE", "INCR", "TEXT", "UTF8_STRING", "STRING"},
         {"UTF8_STRING|STRING|TEXT"}},
        {"xterm", {"COMPOUND_TEXT", "STRING", "LENGTH", "HOSTNAME", "USER", "CLASS", "OWNER_OS"}, {"STRING"}},
        {"GTK",
         {"SAVE_TARGETS", "GTK_TEXT_BUFFER_CONTENTS", "application/x-gtk-text-buffer-rich-text",
          "UTF8_STRING", "text/plain;charset=utf-8", "text/plain"},
         {"UTF8_STRING|text/plain;charset=utf-8|text/plain"}},
        {"Qt picture",
         {"application/x-qt-image", "image/png", "image/bmp", "PIXMAP", "BITMAP", "image/jpeg"},
         {"image/png|image/jpeg|image/bmp|application/x-qt-image"}},
        {"GIMP",
         {"image/x-xcf", "image/bmp", "image/png", "image/x-icon", "image/tiff"},
         {"image/png|image/tiff|image/bmp|image/x-icon", "image/x-xcf"}},
        {"Writer",
         {embedSource, "text/rtf", "text/richtext", "text/html", "text/plain;charset=utf-16",
          "application/x-openoffice-link;windows_formatname=\"Link\"", descriptor, "UTF8_STRING",
          "application/x-openoffice-bitmap;windows_formatname=\"Bitmap\"",
          "application/x-libreoffice-internal-id-4711"},
         {"UTF8_STRING|text/plain;charset=utf-16", "text/html", "text/rtf|text/richtext", embedSource,
          descriptor}},
        {"Chromium",
         {"chromium/x-source-url", "text/html", "STRING", "UTF8_STRING"},
         {"UTF8_STRING|STRING", "text/html", "chromium/x-source-url"}},
        {"pcmanfm",
         {"text/uri-list", "x-special/gnome-copied-files", "application/x-kde-cutselection"},
         {"text/uri-list", "x-special/gnome-copied-files|application/x-kde-cutselection"}},
        {"twice", {"text/html", "text/html"}, {"text/html"}},
        {"animation",
         {"image/gif", "image/png", "image/svg+xml"},
         {"image/gif", "image/png", "image/svg+xml"}},
    };
    for (const Case &each : cases)
        EXPECT_EQ(asked(each.targets), each.expected) << each.owner;
}

TEST(TypeTableTest, WhatChangesItsOwnerIsNeverConverted)
{
    for (const char *name :
         {"DELETE", "INSERT_SELECTION", "INSERT_PROPERTY", "SAVE_TARGETS", "MULTIPLE", "TARGETS", "INCR",
          "TIMESTAMP", "GTK_TEXT_BUFFER_CONTENTS",
          "application/x-openoffice-link;windows_formatname=\"Link\"",
          "application/x-libreoffice-internal-id-1", "HOSTNAME", "ATOM", "_VT_SELECTION", ""})
        EXPECT_TRUE(isNeverConverted(name)) << name;
    EXPECT_TRUE(isNeverConverted("x/" + QByteArray(maxTargetNameLength, 'a')));
    EXPECT_TRUE(isNeverConverted(descriptor + QByteArray(maxDescriptorLength, 'd')));
    EXPECT_TRUE(isNeverConverted("text/\xFF"));
    for (const char *name : {"UTF8_STRING", "STRING", "TEXT", "text/plain", "chromium/x-source-url"})
        EXPECT_FALSE(isNeverConverted(name)) << name;
}

TEST(TypeTableTest, CharsetsAreFoundInAnyCase)
{
    EXPECT_EQ(charsetOf("text/plain;charset=utf-8"), QByteArray("utf-8"));
    EXPECT_EQ(charsetOf("text/plain; Charset=\"UTF-8\""), QByteArray("utf-8"));
    EXPECT_EQ(charsetOf("text/plain"), std::nullopt);
    EXPECT_EQ(charsetOf("text/html;charset=utf-8"), std::nullopt);
}

TEST(TypeTableTest, TypesGoOutUnderTheTargetsTheyCameFrom)
{
    const std::pair<QByteArray, Names> cases[] = {
        {"public.rtf", {"text/rtf", "application/rtf", "text/richtext"}},
        {"public.heic", {"image/heic"}},
        {"com.compuserve.gif", {"image/gif"}},
        {"image/x-xcf", {"image/x-xcf"}},
        {descriptor, {descriptor}},
        {"DELETE", {}},
        {"TARGETS", {}},
        {"x-special/gnome-copied-files", {}},
    };
    for (const auto &[type, targets] : cases)
        EXPECT_EQ(targetsOf(QString::fromUtf8(type)), targets) << type.constData();
}
