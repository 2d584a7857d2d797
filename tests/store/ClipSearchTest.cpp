#include "Norvane/store/ClipSearch.h"

#include "tests/store/ScratchHistory.h"

#include <QCoreApplication>
#include <QRandomGenerator>
#include <gtest/gtest.h>

namespace {

const QStringList vocabulary = {"Perché", "il",   "caffè", "è",       "buono", "imm",      "immagine",
                                "Straße", "ØRE",  "🇮🇹🇫🇷",  "e\u0301", "한글",  "がく",     "कु",
                                "İl",     "ab",   "abc",   "\u0301",  "1.240", "no\u0640", "\r\n",
                                "x\0y",   "日本", "ë",     "ΣΊΣΥΦΟΣ"};

QString randomPhrase(QRandomGenerator &random, int words)
{
    QStringList phrase;
    for (int i = 0; i < words; ++i)
        phrase.append(vocabulary[random.bounded(static_cast<int>(vocabulary.size()))]);
    return phrase.join(random.bounded(2) == 0 ? " " : "");
}

CapturedClip randomCapture(QRandomGenerator &random)
{
    auto capture = textCapture(randomPhrase(random, random.bounded(1, 12)));
    capture.kind = static_cast<ClipKind>(random.bounded(4));
    if (capture.kind == ClipKind::image)
        capture.text.clear();
    if (random.bounded(2) == 0)
        capture.appName = randomPhrase(random, 1);
    return capture;
}

ClipList byPredicates(const ClipStore &store, ClipFilter filter, const QString &query)
{
    ClipList found;
    for (const auto &clip : store.clips()) {
        if (passes(filter, *clip) && matches(*clip, queryWords(query)))
            found.push_back(clip);
    }
    return found;
}

void changeSomething(ScratchHistory &history, QRandomGenerator &random)
{
    ClipStore &store = *history.store;
    const auto &clips = store.clips();
    const auto some = clips.empty() ? nullptr : clips[random.bounded(static_cast<quint32>(clips.size()))];
    switch (some ? random.bounded(8) : 7) {
    case 0:
        return store.moveToTop(some);
    case 1:
        return store.remove(some);
    case 2:
        return store.setRecognizedText(randomPhrase(random, 4), some);
    case 3:
        return store.replaceContent(some, randomPhrase(random, 6), {});
    case 4:
        return store.setPinned(some, random.bounded(2) == 0);
    case 5:
        return QCoreApplication::processEvents(); // keys from the worker, or not yet
    default:
        history.add(randomCapture(random));
    }
}

} // namespace

TEST(ClipSearch, QueriesAreCutAtWhiteSpaceOfEveryKind)
{
    EXPECT_EQ(queryWords(" Perché\t\u00A0il\u3000\u2028caffè\n"), (QStringList{"Perché", "il", "caffè"}));
    EXPECT_TRUE(queryWords(" \u2003 ").isEmpty());
}

TEST(ClipSearch, EveryWordMustBeFoundInTextOrApplicationAndOfAnImageInItsNameOrWhatWasRead)
{
    Clip text, image, readImage;
    text.text = "Perché il caffè è buono, 1.240 euro";
    text.appName = "Prova Test";
    image.kind = readImage.kind = ClipKind::image;
    image.text = "never searched";
    readImage.recognizedText = "Totale FATTURA";
    const struct {
        const Clip &clip;
        const char *query;
        bool found;
    } cases[] = {{text, "", true},
                 {text, "perche", true},
                 {text, "CAFFE perche", true},
                 {text, "perche te", true},
                 {text, "perche tè!", false},
                 {text, "test", true},
                 {text, "1240", false},
                 {text, "1.240", true},
                 {text, "imm", false},
                 {text, "euroProva", false},
                 {text, "buono, caffe Test", true},
                 {image, "imm", true},
                 {image, "IMMAGINE", true},
                 {image, "immagini", false},
                 {image, "never", false},
                 {readImage, "fattura TOT imm", true},
                 {readImage, "fattura nulla", false}};
    for (const auto &[clip, query, found] : cases)
        EXPECT_EQ(matches(clip, queryWords(query)), found) << query;
}

TEST(ClipSearch, FiltersByKindAndPin)
{
    const char *const kindsOfFilter[clipFilterCount] = {"0123", "01", "2", "3", ""};
    for (int filter = 0; filter < clipFilterCount; ++filter) {
        for (int kind = 0; kind < 4; ++kind) {
            Clip clip;
            clip.kind = static_cast<ClipKind>(kind);
            EXPECT_EQ(passes(static_cast<ClipFilter>(filter), clip),
                      QString(kindsOfFilter[filter]).contains(QString::number(kind)))
                << filter << kind;
            clip.pinned = true;
            EXPECT_TRUE(passes(ClipFilter::pinned, clip));
        }
    }
}

TEST(ClipSearch, AnswersAsThePredicatesDoThroughRandomChangesAndQueries)
{
    QRandomGenerator random(31);
    ScratchHistory history;
    for (int i = 0; i < 60; ++i)
        history.add(randomCapture(random));
    ClipSearch search(*history.store);
    QString query;
    for (int round = 0; round < 3000; ++round) {
        if (random.bounded(4) == 0)
            changeSomething(history, random);
        if (random.bounded(3) == 0)
            query = randomPhrase(random, random.bounded(1, 3));
        // A query typed letter by letter, now and then taken back.
        const QString typed = query.left(random.bounded(static_cast<int>(query.size()) + 1));
        const auto filter =
            static_cast<ClipFilter>(random.bounded(3) == 0 ? random.bounded(clipFilterCount) : 0);
        ASSERT_EQ(search.results(filter, typed), byPredicates(*history.store, filter, typed))
            << round << " " << qPrintable(typed);
    }
}

// Narrowing the last answer must not miss what only the longer word finds.
TEST(ClipSearch, ALongerWordFindsAllThatItFindsAlone)
{
    ScratchHistory history;
    for (const char *text : {"cafe\u0301", "कु", "\u0301"})
        history.add(text);
    history.add(imageCapture("png"));
    ClipSearch search(*history.store);
    const QStringList steps[] = {{"ím", "imm"}, {"\u0301", "\u0301a"}, {"か", "が"},
                                 {"क", "कु"},    {"e", "e\u0301"},      {"i", "im", "imm", "immx"}};
    for (const auto &typed : steps) {
        for (const QString &query : typed)
            EXPECT_EQ(search.results(ClipFilter::all, query),
                      byPredicates(*history.store, ClipFilter::all, query))
                << qPrintable(query);
    }
}

TEST(ClipSearch, AListenerThatAsksAtOnceGetsTheNewState)
{
    ScratchHistory history;
    ClipList found;
    std::unique_ptr<ClipSearch> search;
    QObject::connect(history.store.get(), &ClipStore::ClipStoreDidChange, history.store.get(), [&] {
        if (search)
            found = search->results(ClipFilter::all, "due");
    });
    search = std::make_unique<ClipSearch>(*history.store); // connected after the listener
    const auto clip = history.add("uno due");
    EXPECT_EQ(found, ClipList{clip});
    history.store->replaceContent(clip, "tre", {});
    EXPECT_TRUE(found.empty());
    history.store->replaceContent(clip, "DUE", {});
    history.store->remove(clip);
    EXPECT_TRUE(found.empty());
}

TEST(ClipSearch, EndsWhileKeysAreBeingMade)
{
    ScratchHistory history;
    for (int i = 0; i < 40; ++i)
        history.add(QString(150000, QChar(u'è' + i)));
    for (int round = 0; round < 5; ++round) {
        ClipSearch search(*history.store);
        if (round % 2 == 1) {
            EXPECT_EQ(search.results(ClipFilter::all, "e").size(), 4u);
        }
    }
}
