#include "Norvane/StatusMenu.h"

#include "Vesmo/Localisation.h"
#include "Vesmo/Text.h"

#include <QBuffer>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr size_t firstClip = 2; // after the panel's row and a separator

ClipPointer textClip(const QString &text, bool pinned = false)
{
    auto clip = std::make_shared<Clip>();
    clip->text = text;
    clip->pinned = pinned;
    return clip;
}

ClipPointer imageClip(QSize thumbnail, std::optional<QString> recognized = {}, bool pinned = false)
{
    auto clip = textClip({}, pinned);
    clip->kind = ClipKind::image;
    clip->pixelSize = {560, 200};
    clip->recognizedText = std::move(recognized);
    if (!thumbnail.isEmpty()) {
        QImage image(thumbnail, QImage::Format_RGB32);
        image.fill(Qt::red);
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        clip->thumbData = buffer.data();
    }
    return clip;
}

ClipList texts(int count)
{
    ClipList clips;
    for (int i = 1; i <= count; ++i)
        clips.push_back(textClip(u"testo %1"_s.arg(i)));
    return clips;
}

class StatusMenuTest : public ::testing::Test {
protected:
    StatusMenuTest()
    {
        loadTranslations(u"it"_s);
        actions.showPopup = [this] { done << u"show"_s; };
        actions.togglePause = [this] { done << u"pause"_s; };
        actions.confirmClear = [this] { done << u"clear"_s; };
        actions.quit = [this] { done << u"quit"_s; };
        actions.paste = [this](const ClipPointer &clip, PasteMode mode) {
            pasted = clip;
            pastedMode = mode;
        };
    }

    std::vector<ClosureMenuItem> menu(const ClipList &clips, bool paused = false)
    {
        return statusMenuItems(clips, paused, u"Ctrl+Alt+V"_s, actions);
    }

    StatusMenuActions actions;
    QStringList done;
    ClipPointer pasted;
    PasteMode pastedMode = PasteMode::copy;
};

QStringList titles(const std::vector<ClosureMenuItem> &items)
{
    QStringList result;
    for (const auto &item : items)
        result << (item.separator ? u"—"_s : item.title);
    return result;
}

} // namespace

TEST_F(StatusMenuTest, AnEmptyHistorySaysSoBetweenTheCommands)
{
    const auto items = menu({});
    EXPECT_EQ(titles(items),
              QStringList({u"Mostra la cronologia   Ctrl+Alt+V"_s, u"—"_s, u"Ancora niente: copia qualcosa"_s,
                           u"—"_s, u"Metti in pausa la registrazione"_s, u"Svuota la cronologia…"_s, u"—"_s,
                           u"Esci da Norvane"_s}));
    EXPECT_FALSE(items[firstClip].enabled);
    EXPECT_EQ(items[0].toolTip, u"Ctrl+Alt+V"_s);
    EXPECT_EQ(items.back().key, u"q"_s);
    for (const auto &item : items)
        item.run();
    EXPECT_EQ(done, QStringList({u"show"_s, u"pause"_s, u"clear"_s, u"quit"_s}));
    EXPECT_EQ(titles(menu({}, true)).at(4), u"Riprendi la registrazione"_s);
}

TEST_F(StatusMenuTest, ListsTheTenNewestAndNumbersNine)
{
    const ClipList clips = texts(25);
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

TEST_F(StatusMenuTest, TitlesAreOneLineOfSixtyCharacters)
{
    const QString family = u"👨‍👩‍👧"_s; // one character of several code points
    struct Case {
        QString text;
        QString title;
    };
    const std::vector<Case> cases = {
        {QString(60, u'x'), QString(60, u'x')},
        {QString(61, u'x'), QString(60, u'x') + u'…'},
        {QString(5000, u'x'), QString(60, u'x') + u'…'},
        {family.repeated(60), family.repeated(60)},
        {family.repeated(61), family.repeated(60) + u'…'},
        {u"a\n\nb"_s, u"a ⏎ b"_s},
        {u"a\r\nb\n"_s, u"a ⏎ b"_s},
        {u"\n\n  primo"_s, u"primo"_s},
        {u"<b>a_b & c</b>"_s, u"<b>a_b & c</b>"_s},
        {u""_s, u""_s},
    };
    for (const auto &c : cases)
        EXPECT_EQ(menu({textClip(c.text)})[firstClip].title, c.title) << c.text.left(70).toStdString();
}

TEST_F(StatusMenuTest, PicturesAreThumbnailsElseThePin)
{
    auto broken = imageClip({});
    broken->thumbData = "no picture";
    broken->pinned = true;
    struct Case {
        ClipPointer clip;
        bool image;
        bool pin;
    };
    const std::vector<Case> cases = {
        {textClip(u"a"_s), false, false},   {textClip(u"a"_s, true), false, true},
        {imageClip({64, 64}), true, false}, {imageClip({64, 64}, {}, true), true, false},
        {imageClip({}), false, false},      {broken, false, true},
    };
    for (const auto &c : cases) {
        const auto item = menu({c.clip})[firstClip];
        EXPECT_EQ(!item.image.isNull(), c.image);
        EXPECT_EQ(!item.symbol.isEmpty(), c.pin);
    }
}

TEST_F(StatusMenuTest, ThumbnailsFitAndAreCentred)
{
    struct Case {
        QSize thumbnail;
        QRect painted;
    };
    const std::vector<Case> cases = {
        {{56, 40}, {0, 0, 28, 20}}, {{100, 10}, {0, 9, 28, 2}}, {{1000, 1}, {0, 9, 28, 1}},
        {{40, 80}, {9, 0, 10, 20}}, {{7, 5}, {0, 0, 28, 20}},
    };
    for (const auto &c : cases) {
        const QImage image = menu({imageClip(c.thumbnail)})[firstClip].image;
        ASSERT_EQ(image.deviceIndependentSize(), QSizeF(28, 20));
        QRect painted;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (qAlpha(image.pixel(x, y)) > 0)
                    painted |= QRect(x, y, 1, 1);
            }
        }
        EXPECT_EQ(painted, c.painted) << c.thumbnail.width() << "×" << c.thumbnail.height();
    }
}

TEST_F(StatusMenuTest, ToolTipsBeginTheTextOrWhatWasRead)
{
    const auto toolTip = [this](const ClipPointer &clip) { return menu({clip})[firstClip].toolTip; };
    EXPECT_EQ(toolTip(textClip(u"a\nb"_s)), u"a\nb"_s);
    EXPECT_EQ(toolTip(textClip(QString(700, u'x'))), QString(500, u'x'));
    EXPECT_EQ(toolTip(imageClip({})), QString());
    EXPECT_EQ(toolTip(imageClip({}, u"Fattura 12"_s)), u"Fattura 12"_s);
}
