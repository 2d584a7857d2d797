#include "Norvane/store/ClipSearch.h"

#include "Vesmo/Localisation.h"
#include "tests/store/ScratchHistory.h"

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QTest>
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
    return phrase.join(random.bounded(2) == 0 ? QStringLiteral(" ") : QString());
}

CapturedClip randomCapture(QRandomGenerator &random)
{
    auto capture = ScratchHistory::textCapture(randomPhrase(random, random.bounded(1, 12)));
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

QStringList textsOf(const ClipList &clips)
{
    QStringList texts;
    for (const auto &clip : clips)
        texts.append(clip->text);
    return texts;
}

void changeSomething(ScratchHistory &history, QRandomGenerator &random)
{
    ClipStore &store = *history.store;
    const auto &clips = store.clips();
    const auto some = clips.empty() ? nullptr : clips[random.bounded(static_cast<quint32>(clips.size()))];
    switch (some ? random.bounded(8) : 0) {
    case 0:
    case 1:
        history.add(randomCapture(random));
        break;
    case 2:
        store.moveToTop(some);
        break;
    case 3:
        store.remove(some);
        break;
    case 4:
        store.setRecognizedText(randomPhrase(random, 4), some);
        break;
    case 5:
        store.replaceContent(some, randomPhrase(random, 6), {});
        break;
    case 6:
        store.setPinned(some, random.bounded(2) == 0);
        break;
    case 7:
        QCoreApplication::processEvents(); // keys from the worker, or not yet
        break;
    }
}

} // namespace

TEST(ClipSearch, QueriesAreCutAtWhiteSpaceOfEveryKind)
{
    EXPECT_EQ(queryWords(QStringLiteral(" Perché\t\u00A0il\u3000\u2028caffè\n")),
              (QStringList{QStringLiteral("Perché"), QStringLiteral("il"), QStringLiteral("caffè")}));
    EXPECT_TRUE(queryWords(QStringLiteral(" \u2003 ")).isEmpty());
    EXPECT_TRUE(queryWords(QString()).isEmpty());
}

TEST(ClipSearch, EveryWordMustBeFoundInTextOrApplication)
{
    Clip clip;
    clip.text = QStringLiteral("Perché il caffè è buono, 1.240 euro");
    clip.appName = QStringLiteral("Prova Test");
    const struct {
        const char *query;
        bool found;
    } cases[] = {{"", true},
                 {"perche", true},
                 {"CAFFE perche", true},
                 {"perche te", true},
                 {"perche tè!", false},
                 {"test", true},
                 {"1240", false},
                 {"1.240", true},
                 {"imm", false},
                 {"euroProva", false},
                 {"buono, caffe Test", true}};
    for (const auto &[query, found] : cases)
        EXPECT_EQ(matches(clip, queryWords(QString::fromUtf8(query))), found) << query;
}

TEST(ClipSearch, ImagesAreFoundByTheirNameAndTheirRecognisedText)
{
    Clip image;
    image.kind = ClipKind::image;
    image.text = QStringLiteral("never searched");
    EXPECT_TRUE(matches(image, {QStringLiteral("imm")}));
    EXPECT_TRUE(matches(image, {QStringLiteral("IMMAGINE")}));
    EXPECT_FALSE(matches(image, {QStringLiteral("immagini")}));
    EXPECT_FALSE(matches(image, {QStringLiteral("never")}));
    image.recognizedText = QStringLiteral("Totale FATTURA");
    EXPECT_TRUE(matches(image, {QStringLiteral("fattura"), QStringLiteral("TOT"), QStringLiteral("imm")}));
    EXPECT_FALSE(matches(image, {QStringLiteral("fattura"), QStringLiteral("nulla")}));
}

TEST(ClipSearch, FiltersByKindAndPin)
{
    const bool expected[clipFilterCount][4] = {{true, true, true, true},
                                               {true, true, false, false},
                                               {false, false, true, false},
                                               {false, false, false, true},
                                               {false, false, false, false}};
    for (int filter = 0; filter < clipFilterCount; ++filter) {
        for (int kind = 0; kind < 4; ++kind) {
            Clip clip;
            clip.kind = static_cast<ClipKind>(kind);
            EXPECT_EQ(passes(static_cast<ClipFilter>(filter), clip), expected[filter][kind])
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
        ASSERT_EQ(textsOf(search.results(filter, typed)),
                  textsOf(byPredicates(*history.store, filter, typed)))
            << round << " " << qPrintable(typed);
    }
}

// Narrowing the last answer must not miss what only the longer word finds.
TEST(ClipSearch, ALongerWordFindsAllThatItFindsAlone)
{
    ScratchHistory history;
    history.add(QStringLiteral("cafe\u0301"));
    history.add(QStringLiteral("कु"));
    history.add(QStringLiteral("\u0301"));
    history.add(ScratchHistory::imageCapture("png"));
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
            found = search->results(ClipFilter::all, QStringLiteral("due"));
    });
    search = std::make_unique<ClipSearch>(*history.store); // connected after the listener
    const auto clip = history.add(QStringLiteral("uno due"));
    EXPECT_EQ(found, ClipList{clip});
    history.store->replaceContent(clip, QStringLiteral("tre"), {});
    EXPECT_TRUE(found.empty());
    history.store->replaceContent(clip, QStringLiteral("DUE"), {});
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
            EXPECT_EQ(search.results(ClipFilter::all, QStringLiteral("e")).size(), 4u);
        }
    }
}
