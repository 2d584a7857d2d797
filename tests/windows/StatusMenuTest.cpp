#include "Norvane/StatusMenu.h"

#include "tests/support/Captures.h"

#include <gtest/gtest.h>

namespace {

constexpr size_t firstClip = 2; // after the panel's row and a separator

ClipPointer textClip(const QString &text, bool pinned = false)
{
    auto clip = std::make_shared<Clip>();
    clip->text = text;
    clip->pinned = pinned;
    return clip;
}

ClipPointer imageClip(std::optional<QByteArray> thumbnail, bool pinned = false,
                      std::optional<QString> read = {})
{
    auto clip = textClip({}, pinned);
    clip->kind = ClipKind::image;
    clip->pixelSize = {560, 200};
    clip->recognizedText = std::move(read);
    clip->thumbData = std::move(thumbnail);
    return clip;
}

class StatusMenuTest : public ::testing::Test {
protected:
    StatusMenuTest()
    {
        actions.showPopup = [this] { done << "show"; };
        actions.togglePause = [this] { done << "pause"; };
        actions.confirmClear = [this] { done << "clear"; };
        actions.quit = [this] { done << "quit"; };
        actions.paste = [this](const ClipPointer &clip, PasteMode mode) {
            pasted = clip;
            pastedMode = mode;
        };
    }

    std::vector<ClosureMenuItem> menu(const ClipList &clips, bool paused = false)
    {
        return statusMenuItems(clips, paused, "Ctrl+Alt+V", actions);
    }
    ClosureMenuItem rowOf(const ClipPointer &clip) { return menu({clip})[firstClip]; }

    StatusMenuActions actions;
    QStringList done;
    ClipPointer pasted;
    PasteMode pastedMode = PasteMode::copy;
};

} // namespace

TEST_F(StatusMenuTest, AnEmptyHistorySaysSoBetweenTheCommands)
{
    const auto items = menu({});
    QStringList titles;
    for (const auto &item : items) {
        titles << (item.separator ? "—" : item.title);
        item.run();
    }
    EXPECT_EQ(titles, QStringList({"Mostra la cronologia   Ctrl+Alt+V", "—", "Ancora niente: copia qualcosa",
                                   "—", "Metti in pausa la registrazione", "Svuota la cronologia…", "—",
                                   "Esci da Norvane"}));
    EXPECT_EQ(done, QStringList({"show", "pause", "clear", "quit"}));
    EXPECT_FALSE(items[firstClip].enabled);
    EXPECT_EQ(items[0].toolTip, "Ctrl+Alt+V");
    EXPECT_EQ(items.back().key, "q");
    EXPECT_EQ(menu({}, true)[4].title, "Riprendi la registrazione");
}

TEST_F(StatusMenuTest, ListsTheTenNewestAndNumbersNine)
{
    ClipList clips;
    for (int i = 0; i < 25; ++i)
        clips.push_back(textClip(QString("testo %1").arg(i)));
    const auto items = menu(clips);
    ASSERT_EQ(items.size(), firstClip + 10 + 5);
    for (size_t i = 0; i < 10; ++i) {
        const auto &item = items[firstClip + i];
        EXPECT_EQ(item.title, clips[i]->text);
        EXPECT_EQ(item.key, i < 9 ? QString::number(i + 1) : QString());
        EXPECT_TRUE(item.enabled);
        item.run();
        EXPECT_EQ(pasted, clips[i]);
        EXPECT_EQ(pastedMode, PasteMode::paste);
    }
    EXPECT_TRUE(items[firstClip + 10].separator);
}

TEST_F(StatusMenuTest, TitlesHaveSixtyCharactersToolTipsFiveHundred)
{
    EXPECT_EQ(rowOf(textClip("<b>a_b & c</b>\nx")).title, "<b>a_b & c</b> ⏎ x");
    EXPECT_EQ(rowOf(textClip(QString(60, u'x'))).title, QString(60, u'x'));
    EXPECT_EQ(rowOf(textClip(QString(61, u'x'))).title, QString(60, u'x') + "…");
    EXPECT_EQ(rowOf(textClip("a\nb")).toolTip, "a\nb");
    EXPECT_EQ(rowOf(textClip(QString(700, u'x'))).toolTip, QString(500, u'x'));
    EXPECT_EQ(rowOf(imageClip({})).toolTip, "");
    EXPECT_EQ(rowOf(imageClip({}, false, "Fattura 12")).toolTip, "Fattura 12");
}

TEST_F(StatusMenuTest, PicturesAreThumbnailsElseThePin)
{
    const QByteArray png = encoded(filledImage(64, 64, Qt::red));
    const struct {
        ClipPointer clip;
        bool image, pin;
    } cases[] = {
        {textClip("a"), false, false}, {textClip("a", true), false, true},
        {imageClip(png), true, false}, {imageClip(png, true), true, false},
        {imageClip({}), false, false}, {imageClip("broken", true), false, true},
    };
    for (const auto &each : cases) {
        EXPECT_EQ(!rowOf(each.clip).image.isNull(), each.image);
        EXPECT_EQ(!rowOf(each.clip).symbol.isEmpty(), each.pin);
    }
}

TEST_F(StatusMenuTest, ThumbnailsFitAndAreCentred)
{
    const std::pair<QSize, QRect> cases[] = {
        {{56, 40}, {0, 0, 28, 20}}, {{100, 10}, {0, 9, 28, 2}}, {{1000, 1}, {0, 9, 28, 1}},
        {{40, 80}, {9, 0, 10, 20}}, {{7, 5}, {0, 0, 28, 20}},
    };
    for (const auto &[size, place] : cases) {
        const QImage image =
            rowOf(imageClip(encoded(filledImage(size.width(), size.height(), Qt::red)))).image;
        ASSERT_EQ(image.deviceIndependentSize(), QSizeF(28, 20));
        QRect painted;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (qAlpha(image.pixel(x, y)) > 0)
                    painted |= QRect(x, y, 1, 1);
            }
        }
        EXPECT_EQ(painted, place) << size.width() << "×" << size.height();
    }
}
