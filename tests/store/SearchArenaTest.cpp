#include "Norvane/store/SearchArena.h"

#include "Vesmo/Text.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>
#include <map>
#include <set>

TEST(SearchArena, FindsWhatIsThereThroughAnyAddingAndDiscarding)
{
    QRandomGenerator random(21);
    std::map<quint32, SearchArena::Place> places;
    std::map<quint32, QString> texts;
    SearchArena arena([&](quint32 record, SearchArena::Place place) { places[record] = place; });
    qsizetype live = 0;
    for (int round = 0; round < 400; ++round) {
        FoldedKeys block;
        for (int i = random.bounded(12); i > 0; --i) {
            const quint32 record = random.bounded(500u);
            if (texts.contains(record))
                continue;
            const QString text =
                QStringLiteral("word%1 ").arg(random.bounded(50)) + QString(random.bounded(9000), u'.');
            texts[record] = text;
            live += text.size() + 2;
            appendKey(block, {record, 0, text, {}});
        }
        arena.add(std::move(block), [](const FoldedKeys::Key &) { return true; });
        while (texts.size() > 300 || (!texts.empty() && random.bounded(3) == 0)) {
            const auto doomed = std::next(texts.begin(), random.bounded(static_cast<int>(texts.size())));
            live -= doomed->second.size() + 2;
            const auto place = places.extract(doomed->first).mapped();
            arena.discard(place);
            texts.erase(doomed);
        }
        std::set<quint32> expected;
        const QString word = QStringLiteral("WORD%1").arg(random.bounded(50));
        for (const auto &[record, text] : texts) {
            if (text.contains(word, Qt::CaseInsensitive))
                expected.insert(record);
        }
        std::set<quint32> found;
        arena.search(foldedKey(word), [&](quint32 record) { EXPECT_TRUE(found.insert(record).second); });
        ASSERT_EQ(found, expected) << round;
        ASSERT_LE(arena.size(), 2 * live + 1);
    }
    for (const auto &[record, text] : texts)
        EXPECT_TRUE(arena.key(places[record]).startsWith(foldedKey(text)));
}
