// What a screen reader is told of the panel, over the accessibility bus.
#include "tests/desktop/StageTest.h"

#include <QTest>

namespace {

class ScreenReader : public StageTest {
protected:
    // An open panel over three texts.
    void SetUp() override
    {
        stage.start();
        for (const char *text : {"first copy", "second copy", "third copy"})
            stage.copy(text);
        stage.openPanel();
        stage.awaitListed(3, "at first"); // the accessibility bus starts when the first program asks for it
    }

    void TearDown() override { stage.quit(); }

    // Every part that can be seen.
    [[nodiscard]] std::vector<Accessible> shown() const
    {
        std::vector<Accessible> parts;
        const auto collect = [&](const Accessible &part) {
            if (part.is(Accessible::State::showing))
                parts.push_back(part);
            return false;
        };
        static_cast<void>(Accessible::application(stage.norvane().pid()).value().find(collect));
        return parts;
    }

    [[nodiscard]] std::vector<Accessible> tabs() const { return stage.awaitPart("page tab list").children(); }
    [[nodiscard]] std::vector<Accessible> rows() const { return stage.awaitPart("list").children(); }

    static QStringList selectedOf(const std::vector<Accessible> &objects)
    {
        QStringList names;
        for (const auto &each : objects) {
            if (each.is(Accessible::State::selected))
                names << each.name();
        }
        return names;
    }
};

TEST_F(ScreenReader, HearsWhatEveryControlIs)
{
    const QStringList spoken{"text",          "list",        "list item", "page tab",
                             "page tab list", "push button", "label",     "graphic"};
    QString heard;
    for (const auto &part : shown()) {
        const QString role = part.role(), name = part.name();
        EXPECT_TRUE(!spoken.contains(role) || !name.isEmpty()) << "a nameless " << role.toStdString();
        heard += role + ": " + name + "\n";
    }
    for (const char *control :
         {"text: Search the clipboard", "page tab list: Filter", "list: History", "text: Preview",
          "label: 3 items", "label: ⏎ paste", "label: Text · 10 characters", "push button: Menu"})
        EXPECT_TRUE(heard.contains(control)) << control << " is missing in\n" << heard.toStdString();
    EXPECT_EQ(stage.awaitPart("text", "Preview").text(), "third copy");
}

TEST_F(ScreenReader, HearsTheRowsAndWhichIsSelectedAfterDown)
{
    ASSERT_EQ(rows().size(), 3U);
    EXPECT_EQ(rows()[0].name(), "third copy");
    EXPECT_TRUE(rows()[0].description().contains("10 characters")) << rows()[0].description().toStdString();
    EXPECT_EQ(selectedOf(rows()), QStringList("third copy"));
    const SelectionEvents events;
    for (const char *next : {"second copy", "first copy"}) {
        const auto before = events.selected().size();
        stage.press("Down");
        ASSERT_TRUE(QTest::qWaitFor([&] { return events.selected().size() > before; })) << next;
        EXPECT_EQ(events.selected().back().name(), next);
        EXPECT_EQ(events.selected().back().role(), "list item");
        EXPECT_EQ(selectedOf(rows()), QStringList(next));
    }
}

TEST_F(ScreenReader, ChoosesAFilterByPressingIt)
{
    QStringList names;
    for (const auto &tab : tabs()) {
        names << tab.name();
        EXPECT_EQ(tab.role(), "page tab");
        EXPECT_FALSE(tab.extents().isEmpty());
    }
    EXPECT_EQ(names, (QStringList{"All", "Text", "Images", "Files", "Pinned"}));
    EXPECT_EQ(selectedOf(tabs()), QStringList("All"));
    const SelectionEvents events;
    ASSERT_TRUE(tabs()[2].press());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !events.selected().empty(); }));
    EXPECT_EQ(events.selected().front(), tabs()[2]);
    EXPECT_EQ(selectedOf(tabs()), QStringList("Images"));
    stage.awaitListed(0, "images");
    stage.press("Tab");
    stage.await([&] { return selectedOf(tabs()) == QStringList("Files"); },
                "Tab did not choose the next filter");
}

} // namespace
