#include "Platform/linux/x11/CopiedItems.h"

#include <gtest/gtest.h>

namespace {

using Status = ReadOutcome::Status;

ReadOutcome got(const QByteArray &bytes, size_t candidate = 0)
{
    return {Status::fetched, candidate, bytes};
}

PasteboardRepresentation form(const char16_t *type, std::optional<QByteArray> data)
{
    return {QStringView(type).toString(), std::move(data)};
}

} // namespace

TEST(CopiedItemsTest, AddressesThatAreNoFilesKeepTheirList)
{
    const ReadPlan plan = planFor({"text/uri-list"});
    const auto links = itemsFrom(plan, {got("https://example.org/\r\n")});
    EXPECT_EQ(links, std::vector{PasteboardItem{{form(u"text/uri-list", "https://example.org/\r\n")}}});

    const auto mixed = itemsFrom(plan, {got("file:///a\r\nsmb://host/b\r\n")});
    ASSERT_EQ(mixed.size(), 1u);
    EXPECT_EQ(mixed.front().data(u"public.file-url"), QByteArray("file:///a"));
    EXPECT_EQ(mixed.front().data(u"text/uri-list"), QByteArray("file:///a\r\nsmb://host/b\r\n"));
}

TEST(CopiedItemsTest, TextsAreDecodedByTheirTargets)
{
    const ReadPlan plan = planFor({"UTF8_STRING", "text/plain;charset=utf-16", "STRING"});
    const ReadRequest &text = plan.requests.front();
    ASSERT_EQ(text.candidates.size(), 3u);
    EXPECT_EQ(storedBytes(text, text.candidates[0], "\xE8"), QByteArray("\xE8"));
    EXPECT_EQ(storedBytes(text, text.candidates[1], "\xE8"), QByteArray("\xC3\xA8"));
    EXPECT_EQ(storedBytes(text, text.candidates[2], QByteArray("\xE8\0", 2)), QByteArray("\xC3\xA8"));
}

TEST(CopiedItemsTest, OnlyALonelyPictureOfAnUnknownKindIsReencoded)
{
    const auto reencoded = [](std::vector<PasteboardRepresentation> forms) {
        return pictureToReencode({PasteboardItem{std::move(forms)}});
    };
    EXPECT_EQ(reencoded({form(u"image/webp", "w")}), QByteArray("w"));
    EXPECT_EQ(reencoded({form(u"public.html", "<img>"), form(u"image/bmp", "b")}), QByteArray("b"));
    EXPECT_EQ(reencoded({form(u"public.utf8-plain-text", " \n"), form(u"image/bmp", "b")}), QByteArray("b"));
    EXPECT_EQ(reencoded({form(u"public.utf8-plain-text", "t"), form(u"image/bmp", "b")}), std::nullopt);
    EXPECT_EQ(reencoded({form(u"public.jpeg", "j"), form(u"image/bmp", "b")}), std::nullopt);
    EXPECT_EQ(reencoded({form(u"image/svg+xml", "<svg/>")}), std::nullopt);
    EXPECT_EQ(reencoded({form(u"image/bmp", std::nullopt)}), std::nullopt);
}
