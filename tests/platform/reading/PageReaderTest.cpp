#include "Platform/linux/tesseract/PageReader.h"

#include <QPainter>
#include <QRandomGenerator>
#include <algorithm>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString dataFolder = u"/usr/share/tesseract-ocr/5/tessdata"_s;
const auto never = [] { return false; };

QImage drawn(QSize size, const QColor &paper, const QColor &ink, int pixels, const QString &text,
             const QPoint &at)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(paper);
    QPainter painter(&image);
    QFont font(u"DejaVu Sans"_s);
    font.setPixelSize(pixels);
    painter.setFont(font);
    painter.setPen(ink);
    painter.drawText(QRect(at, size), Qt::AlignLeft | Qt::AlignTop, text);
    return image;
}

class Reading : public testing::Test {
protected:
    static void SetUpTestSuite() { reader = PageReader::open(dataFolder, {u"ita"_s, u"eng"_s}); }
    static void TearDownTestSuite() { reader.reset(); }
    void SetUp() override { ASSERT_TRUE(reader); }

    static QString textOf(const QImage &image)
    {
        const auto fragments = reader->read(image, never);
        if (!fragments)
            return u"FAILED"_s;
        QStringList texts;
        for (const RecognizedFragment &fragment : *fragments) {
            EXPECT_TRUE(QRectF(-0.01, -0.01, 1.02, 1.02).contains(fragment.box));
            if (fragment.confidence >= 0.3F)
                texts << fragment.text;
        }
        return texts.join(u'|');
    }

    static inline std::unique_ptr<PageReader> reader;
};

TEST_F(Reading, TextIsReadWhateverItsSizeAndColours)
{
    const QString two = u"Perché è già tardi\nThe last train left"_s;
    const QString read = u"Perché è già tardi|The last train left"_s;
    const QSize size(420, 120);
    EXPECT_EQ(textOf(drawn(size, Qt::white, Qt::black, 12, two, {9, 9})), read);
    EXPECT_EQ(textOf(drawn(size, "#282a36", "#f8f8f2", 11, two, {9, 9})), read);
    EXPECT_EQ(textOf(drawn(size, "#1a73e8", Qt::white, 14, two, {9, 9})), read);
    EXPECT_EQ(textOf(drawn({1000, 300}, "#fdf6e3", "#586e75", 80, two, {9, 9})), read);
    EXPECT_EQ(textOf(drawn({52, 16}, Qt::white, Qt::black, 12, u"Salva"_s, {2, 0})), u"Salva"_s);
    QImage turned =
        drawn(size, Qt::transparent, Qt::black, 13, two, {9, 9}).convertToFormat(QImage::Format_ARGB32);
    turned.setAlphaChannel(drawn(size, Qt::black, Qt::white, 13, two, {9, 9}));
    EXPECT_EQ(textOf(turned), read) << "transparent paper is white";
}

TEST_F(Reading, PicturesWithoutTextGiveNothing)
{
    QRandomGenerator random(7);
    QImage noise(400, 300, QImage::Format_RGB32);
    for (int y = 0; y < noise.height(); ++y) {
        for (int x = 0; x < noise.width(); ++x)
            noise.setPixel(x, y, random.generate());
    }
    EXPECT_EQ(textOf(noise), QString());
    for (const QSize size : {QSize(1, 1), QSize(2, 3), QSize(3, 400), QSize(40000, 2), QSize(640, 480)}) {
        QImage blank(size, QImage::Format_RGB32);
        blank.fill(QColor(10, 90, 60));
        EXPECT_EQ(textOf(blank), QString()) << size.width() << 'x' << size.height();
    }
    EXPECT_EQ(textOf(QImage()), QString());
}

TEST_F(Reading, EndsWithoutAResultOnceTheTimeIsOver)
{
    const QImage image =
        drawn({600, 400}, Qt::white, Qt::black, 14, QString(u"una riga di testo\n"_s).repeated(20), {9, 9});
    for (const int allowed : {0, 1, 4}) {
        int asked = 0;
        EXPECT_FALSE(reader->read(image, [&] { return ++asked > allowed; }));
    }
    EXPECT_FALSE(textOf(image).isEmpty()) << "and reads the next one";
}

TEST(OpeningAPageReader, NeedsOneLanguageThatCanBeLoaded)
{
    EXPECT_FALSE(PageReader::open(dataFolder, {}));
    EXPECT_FALSE(PageReader::open(dataFolder, {u"xyz"_s}));
    EXPECT_FALSE(PageReader::open(u"/nowhere"_s, {u"ita"_s}));
    EXPECT_TRUE(PageReader::open(dataFolder, {u"ita"_s, u"xyz"_s}));
}

} // namespace
