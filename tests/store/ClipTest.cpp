#include "tests/store/ScratchHistory.h"

#include <gtest/gtest.h>

TEST(Clip, LongTextIsShortInTheListAndWholeWhereItsFormatHasIt)
{
    ScratchHistory history;
    const QString longText = QString("0123456789").repeated(30000);
    const struct {
        const char *what;
        QString text, type;
        QByteArray data;
        qsizetype whole;
    } cases[] = {
        {"long", longText, plainText, longText.toUtf8(), 300000},
        {"short: no format is read", QString(199999, u'a'), plainText, "something else", 199999},
        {"not UTF-8", QString(250000, u'b'), plainText, QByteArray(250000, '\xE8'), 200000},
        {"cut in a euro sign", QString(250000, u'c'), plainText, QByteArray(250000, 'c') + "\xE2\x82",
         200000},
        {"no plain text", QString(250000, u'd'), "public.rtf", QByteArray(250000, 'd'), 200000},
    };
    for (const auto &each : cases) {
        SCOPED_TRACE(each.what);
        auto capture = textCapture(each.text);
        capture.formats = {{0, each.type, each.data}};
        history.add(capture);
        for (const bool again : {false, true}) {
            if (again)
                history.reopen();
            const auto clip = history.store->clips().front();
            EXPECT_EQ(clip->text, each.text.left(200000));
            EXPECT_TRUE(clip->fullText(*history.store) == each.text.left(each.whole));
            EXPECT_TRUE(dataOfType(history.store->formats(*clip), each.type) == each.data);
        }
    }
}

TEST(Clip, TextIsShortenedAtACharacterNotInOne)
{
    const QString family = "👨‍👩‍👧";
    EXPECT_EQ(shortenedText(family.repeated(200001)).size(), family.size() * 200000);
}

TEST(Clip, AnImageHasTheTextThatWasRecognised)
{
    ScratchHistory history;
    const auto clip = history.add(imageCapture("png"));
    EXPECT_EQ(clip->fullText(*history.store), std::nullopt);
    history.store->setRecognizedText("Totale 12,40", clip);
    EXPECT_EQ(clip->fullText(*history.store), QString("Totale 12,40"));
}
