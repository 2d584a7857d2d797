#include "Vesmo/TextRecognizer.h"

#include "Platform/memory/MemoryRecognition.h"

#include <QTest>
#include <array>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using TextRecognizer::Piece;

namespace {

Piece piece(const QString &text, double x, double y, double width, double height)
{
    return {text, QRectF(x, y, width, height)};
}

TEST(TextRecognizer, LayoutReadsLikeTheImage)
{
    struct Case {
        std::vector<Piece> pieces;
        const char16_t *text;
    };
    for (const auto &[pieces, text] : {
             Case{{}, u""},
             Case{{piece(u"solo"_s, 3, 3, 10, 10)}, u"solo"},
             // Columns, a line that follows, one that stands apart, words in another order.
             Case{{piece(u"D"_s, 0, 0, 100, 20), piece(u"B"_s, 300, 102, 80, 16),
                   piece(u"C"_s, 0, 70, 100, 20), piece(u"A"_s, 0, 100, 100, 20),
                   piece(u"mondo"_s, 160, 0, 50, 20), piece(u"ciao"_s, 105, -2, 50, 20)},
                  u"A\tB\nC\n\nD ciao mondo"},
             // Two lines far apart: their gap is the usual one.
             Case{{piece(u"su"_s, 0, 500, 50, 10), piece(u"giù"_s, 0, 0, 50, 10)}, u"su\ngiù"},
             // A gap of just 1.5 heights is a space.
             Case{{piece(u"a"_s, 0, 0, 10, 10), piece(u"b"_s, 25, 0, 10, 10), piece(u"c"_s, 50.1, 0, 10, 10)},
                  u"a b\tc"},
             // The first piece of a line stays its reference, its edges included; lines that overlap.
             Case{{piece(u"1"_s, 0, 10, 10, 10), piece(u"2"_s, 20, 5, 10, 10), piece(u"3"_s, 40, 0, 10, 10)},
                  u"1 2\n3"},
             // The same place: as they came.
             Case{{piece(u"x"_s, 0, 0, 0, 10), piece(u"y"_s, 0, 0, 0, 10)}, u"x y"},
         })
        EXPECT_EQ(TextRecognizer::layout(pieces), QString::fromUtf16(text));
}

TEST(TextRecognizer, LanguagesAreTheSupportedOnesNearestToThePreferred)
{
    const QStringList supported{u"en-US"_s, u"fr-FR"_s, u"it-IT"_s, u"pt-BR"_s, u"zh-Hans"_s, u"zh-Hant"_s};
    struct Case {
        QStringList preferred;
        QStringList supported;
        QStringList chosen;
    };
    for (const auto &[preferred, offered, chosen] : {
             Case{{u"it-IT"_s, u"en-GB"_s}, supported, {u"it-IT"_s, u"en-US"_s}},
             Case{{u"pt-PT"_s}, supported, {u"pt-BR"_s, u"en-US"_s}},
             Case{{u"zh-Hant-TW"_s}, supported, {u"zh-Hant"_s, u"en-US"_s}},
             Case{{u"zh-CN"_s}, supported, {u"zh-Hans"_s, u"en-US"_s}},
             Case{{u"el-GR"_s}, supported, {u"en-US"_s}},
             Case{{u"it-Latn-CH"_s, u"it"_s}, supported, {u"it-IT"_s, u"en-US"_s}},
             Case{{u"en-US"_s, u"it"_s}, {u"en"_s, u"it"_s, u"ita"_s}, {u"en"_s, u"it"_s}},
             Case{{u"C"_s, u""_s}, {u"de"_s}, {}},
             Case{{u"it"_s}, {}, {}},
         })
        EXPECT_EQ(TextRecognizer::languages(preferred, offered), chosen);
}

TEST(TextRecognizer, WeakAndBlankFragmentsAreDroppedAndBoxesAreOfTheUprightImage)
{
    MemoryRecognition service;
    service.setFragments("photo", {{200, 100},
                                   {{u" \tdestra "_s, 1, QRectF(0.3, 0.5, 0.1, 0.1)},
                                    {u"weak"_s, 0.29F, QRectF(0, 0, 1, 0.1)},
                                    {u" \t "_s, 1, QRectF(0, 0.9, 1, 0.1)},
                                    {u"sinistra"_s, 0.3F, QRectF(0, 0.5, 0.2, 0.1)}}});
    EXPECT_EQ(TextRecognizer::text(QByteArray("photo"), service), u"sinistra\tdestra"); // 20 pixels, 10 high
    EXPECT_EQ(service.lastLanguages().back(), u"en");
    EXPECT_EQ(TextRecognizer::text(QByteArray("no image"), service), std::nullopt);
}

// Red above green on the left, blue on the right, as they lie in the file for each orientation.
TEST(TextRecognizer, ADecodedImageIsTurnedUpright)
{
    QImage upright(3, 2, QImage::Format_RGB32);
    constexpr std::array<QRgb, 6> pixels{0xffff0000, 0xff0000ff, 0xffffffff,
                                         0xff00ff00, 0xff000000, 0xff777777};
    for (int i = 0; i < 6; ++i)
        upright.setPixel(i % 3, i / 3, pixels[static_cast<size_t>(i)]);
    const auto turned = [](const QImage &image, int degrees) {
        return image.transformed(QTransform().rotate(degrees));
    };
    const QImage transposed = turned(upright, 90).mirrored(true, false);
    const QImage transversed = turned(upright, 90).mirrored(false, true);
    const std::array<QImage, 10> stored{upright,
                                        upright,
                                        upright.mirrored(true, false),
                                        turned(upright, 180),
                                        upright.mirrored(false, true),
                                        transposed,
                                        turned(upright, 270),
                                        transversed,
                                        turned(upright, 90),
                                        upright};
    for (int orientation = 0; orientation < 10; ++orientation) {
        MemoryRecognition service;
        (void)TextRecognizer::text(stored[static_cast<size_t>(orientation)], orientation, service);
        const QImage asked = QImage::fromData(service.asked().at(0)).convertToFormat(QImage::Format_RGB32);
        EXPECT_EQ(asked, upright) << orientation;
    }
}

TEST(TextRecognizer, WarmingUpReadsABlankImageOnce)
{
    const auto service = std::make_shared<MemoryRecognition>();
    TextRecognizer::warmUp(0.01, service);
    EXPECT_TRUE(QTest::qWaitFor([&] { return service.use_count() == 1 && !service->asked().empty(); }));
    ASSERT_EQ(service->asked().size(), 1);
    EXPECT_EQ(QImage::fromData(service->asked().front()).size(), QSize(64, 32));
}

} // namespace
