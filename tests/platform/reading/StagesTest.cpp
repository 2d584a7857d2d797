#include "Platform/linux/tesseract/ConfidenceScale.h"
#include "Platform/linux/tesseract/Fragments.h"
#include "Platform/linux/tesseract/IconRemover.h"
#include "Platform/linux/tesseract/LineEraser.h"
#include "Platform/linux/tesseract/Overlays.h"
#include "Platform/linux/tesseract/PagePictures.h"
#include "Platform/linux/tesseract/PictureKind.h"
#include "Platform/linux/tesseract/SurfaceNormalizer.h"
#include "Platform/linux/tesseract/TextBlocks.h"

#include <QPainter>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

namespace {

// A normalised picture of black boxes on white.
GreyPicture inked(QSize size, const std::vector<PixelBox> &boxes)
{
    GreyPicture picture(size.width(), size.height(), 255);
    for (const PixelBox &box : boxes) {
        for (int y = box.top; y < box.bottom(); ++y)
            std::fill_n(picture.row(y).begin() + box.left, box.width, std::uint8_t{0});
    }
    return picture;
}

// So many letters of 6 by 10 pixels, 8 apart.
std::vector<PixelBox> word(int left, int top, int letters)
{
    std::vector<PixelBox> boxes;
    boxes.reserve(static_cast<size_t>(letters));
    for (int i = 0; i < letters; ++i)
        boxes.push_back({left + 8 * i, top, 6, 10});
    return boxes;
}

std::vector<PixelBox> together(std::initializer_list<std::vector<PixelBox>> parts)
{
    std::vector<PixelBox> all;
    for (const auto &part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

struct Column {
    PixelBox box;
    std::size_t lines;
    bool operator==(const Column &) const = default;
};

std::vector<Column> columnsOf(const std::vector<PixelBox> &ink)
{
    BlobMap map = findBlobs(inked({400, 200}, ink));
    std::vector<TextLine> lines = findLines(map);
    removeIcons(map, lines);
    attachSmallParts(map, lines);
    std::vector<Column> columns;
    for (const TextBlock &block : findBlocks(map, lines))
        columns.push_back({block.box, block.lines.size()});
    return columns;
}

TEST(SurfaceNormalizer, TextOfAnyThemeComesOutDarkAndTheEdgesOfButtonsVanish)
{
    QImage image(200, 100, QImage::Format_RGB32);
    image.fill(QColor(40, 42, 54));
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(26, 115, 232));
    painter.drawRect(QRectF(50.5, 20.5, 100, 60)); // an edge that mixes both colours
    painter.fillRect(QRect(98, 40, 3, 16), Qt::white);
    painter.fillRect(QRect(20, 40, 3, 16), QColor(230, 230, 230));
    painter.end();
    const ColorPicture picture = colorPicture(image);
    const GreyPicture normal = normalizeSurfaces(picture, findSurfaces(picture));
    EXPECT_GT(normal.row(10)[10], 250);
    EXPECT_GT(normal.row(50)[50], 245) << "the button's left edge";
    EXPECT_GT(normal.row(70)[120], 250);
    EXPECT_LT(normal.row(48)[99], 160) << "white on blue";
    EXPECT_LT(normal.row(48)[21], 120) << "light on dark";
}

TEST(SurfaceNormalizer, StrokesOfLargeHeadingsAreNoSurfaces)
{
    QImage image(400, 200, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    for (const int left : {40, 130}) { // twice an H with strokes 14 thick
        painter.fillRect(left, 40, 14, 90, Qt::black);
        painter.fillRect(left + 50, 40, 14, 90, Qt::black);
        painter.fillRect(left, 78, 64, 14, Qt::black);
    }
    painter.fillRect(260, 40, 100, 90, QColor(26, 115, 232)); // a panel
    painter.end();
    const Surfaces surfaces = findSurfaces(colorPicture(image));
    EXPECT_EQ(surfaces.marks.row(60)[47], 0);
    EXPECT_EQ(surfaces.marks.row(60)[300], 1);
    EXPECT_EQ(surfaces.marks.row(10)[10], 1);
}

TEST(SurfaceNormalizer, LowLabelsAndPanelsAroundPicturesAreSurfaces)
{
    QImage image(500, 300, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.fillRect(QRect(20, 20, 60, 14), QColor("#d73a4a"));
    for (int x = 27; x < 73; x += 6)
        painter.fillRect(QRect(x, 23, 2, 8), Qt::white);
    for (const int left : {20, 260}) {
        painter.fillRect(QRect(left, 60, 220, 200), QColor("#eeeeee"));
        for (int y = 68; y < 190; y += 2) // as uneven as a photograph
            for (int x = left + 8; x < left + 212; x += 2)
                painter.fillRect(QRect(x, y, 2, 2), QColor((x * 7) % 255, (y * 13) % 255, (x * y) % 255));
    }
    painter.end();
    const Surfaces surfaces = findSurfaces(colorPicture(image));
    EXPECT_EQ(surfaces.marks.row(26)[23], 1);
    EXPECT_EQ(surfaces.marks.row(26)[27], 0);
    EXPECT_EQ(surfaces.marks.row(230)[100], 1);
    EXPECT_EQ(surfaces.marks.row(230)[400], 1);
}

TEST(LineEraser, RulesGoAndLettersThatCrossThemStay)
{
    const PixelBox rule{10, 60, 120, 2};
    const PixelBox side{10, 10, 2, 51};
    GreyPicture picture = inked({200, 100}, together({{rule, side}, word(40, 52, 3), word(40, 20, 5)}));
    eraseLines(picture);
    EXPECT_EQ(picture.row(60)[100], 255);
    EXPECT_EQ(picture.row(30)[10], 255);
    EXPECT_EQ(picture.row(61)[42], 0) << "below the rule the letter goes on";
    EXPECT_EQ(picture.row(25)[42], 0);
}

TEST(LineEraser, RulesPartTheCellsBesideThemAndFramesAreNoLetters)
{
    std::vector<PixelBox> table = together({word(20, 20, 3), word(54, 20, 3)});
    table.push_back({46, 4, 1, 60}); // between the two, which stand near each other
    table.push_back({4, 4, 100, 1});
    // A button whose corners are left where the rules between them go.
    for (const PixelBox &part :
         {PixelBox{150, 80, 60, 2}, {150, 106, 60, 2}, {148, 82, 2, 24}, {210, 82, 2, 24}})
        table.push_back(part);
    const std::vector<PixelBox> label = word(162, 90, 4);
    table.insert(table.end(), label.begin(), label.end());
    GreyPicture picture = inked({240, 120}, table);
    GreyPicture erased = eraseLines(picture);
    BlobMap map = findBlobs(picture);
    findFrameParts(std::move(erased), map);
    std::vector<PixelBox> found;
    for (const TextLine &line : findLines(map))
        found.push_back(line.box);
    EXPECT_THAT(found, testing::UnorderedElementsAre(PixelBox{20, 20, 22, 10}, PixelBox{54, 20, 22, 10},
                                                     PixelBox{162, 90, 30, 10}));
}

TEST(Overlays, WritingOnAPhotographIsFoundByItsColour)
{
    QImage image(320, 240, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(60 + (x * 7 + y * 3) % 30, 40 + (x * y) % 20, 30 + (x + y * 11) % 25));
    }
    EXPECT_TRUE(findOverlays(colorPicture(image)).empty());
    for (const PixelBox &letter : together({word(100, 100, 12), word(100, 120, 12)})) {
        for (int y = letter.top; y < letter.bottom(); ++y)
            image.setPixel(letter.left, y, qRgb(255, 235, 59));
    }
    const std::vector<Overlay> overlays = findOverlays(colorPicture(image));
    ASSERT_EQ(overlays.size(), 1U);
    const PixelBox &box = overlays.front().box;
    EXPECT_EQ(overlays.front().picture.row(105 - box.top)[static_cast<std::size_t>(108 - box.left)], 0);
    EXPECT_EQ(overlays.front().picture.row(105 - box.top)[static_cast<std::size_t>(104 - box.left)], 255);
}

TEST(TextBlocks, ColumnsAreFoundAndIconsAreNot)
{
    EXPECT_THAT(columnsOf(together({word(10, 10, 8), word(10, 28, 6)})),
                ElementsAre(Column{{10, 10, 62, 28}, 2}));
    EXPECT_EQ(
        columnsOf(together({word(10, 10, 8), word(200, 13, 8), word(10, 28, 6), word(200, 31, 7)})).size(),
        2U);
    EXPECT_EQ(columnsOf(together({word(10, 10, 8), word(10, 90, 6)})).size(), 2U) << "far below";
    // A comma, a dot above and a dash beside belong to their line.
    EXPECT_THAT(columnsOf(together(
                    {word(10, 10, 5), {{50, 18, 2, 4}, {20, 5, 2, 2}, {60, 14, 6, 2}}, word(72, 10, 3)})),
                ElementsAre(Column{{10, 5, 84, 17}, 1}));
    // A filled square before the text, and a frame around it.
    EXPECT_THAT(columnsOf(together({{{10, 6, 18, 18}}, word(40, 10, 5)})),
                ElementsAre(Column{{40, 10, 38, 10}, 1}));
    EXPECT_THAT(columnsOf({}), ElementsAre());
}

TEST(Fragments, WideGapsSplitALineAndBoxesCountFromBelow)
{
    const auto at = [](const QString &text, double left, double width) {
        return EngineWord{text, 99, QRectF(left, 20, width, 10), {}};
    };
    const EngineLine line{{}, {at(u"una"_s, 10, 30), at(u"riga"_s, 45, 30), at(u"9,50"_s, 120, 40)}, 0};
    const auto fragments = makeFragments({line}, QSize(200, 100));
    ASSERT_EQ(fragments.size(), 2U);
    EXPECT_EQ(fragments[0].text, u"una riga"_s);
    EXPECT_EQ(fragments[1].text, u"9,50"_s);
    EXPECT_NEAR(fragments[0].box.left(), 0.05, 1e-9);
    EXPECT_NEAR(fragments[0].box.top(), 0.7, 1e-9);
    EXPECT_NEAR(fragments[0].box.height(), 0.1, 1e-9);
}

TEST(ConfidenceScale, WhatIsMoreLikelyWrongStaysBelowTheCut)
{
    struct {
        QString text;
        double certainty;
        bool isAlone;
        bool passes;
    } const cases[] = {{u"parola"_s, 99, false, true},  {u"parola"_s, 96, false, false},
                       {u"parola"_s, 97.5, true, true}, {u"parola"_s, -5, false, false},
                       {u"Q"_s, 98.5, false, true},     {u"Q"_s, 98.5, true, false},
                       {u"12"_s, 98.5, true, true},     {u"=-"_s, 98.5, false, true},
                       {u"=-"_s, 99, true, false},      {u"}"_s, 97.5, false, false}};
    for (const auto &one : cases)
        EXPECT_EQ(confidenceOf(one.text, one.certainty, one.isAlone) >= 0.3F, one.passes)
            << one.text.toStdString() << one.certainty;
    EXPECT_FLOAT_EQ(confidenceOf(u"parola"_s, 100, false), 1);
    EXPECT_GE(confidenceOf(u"parola"_s, -5, false), 0);
}

} // namespace
