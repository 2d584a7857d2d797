// What a screen reader is told of the panel, over the accessibility bus.
#include "tests/desktop/Stage.h"

#include <QCoreApplication>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class ScreenReader : public testing::Test {
protected:
    // An open panel over three texts.
    void SetUp() override
    {
        ASSERT_TRUE(output.isValid());
        try {
            stage.start();
            for (const char *text : {"first copy", "second copy", "third copy"})
                stage.copy(text);
            stage.openPanel();
            // The accessibility bus starts when the first program asks for it.
            require(stage.desktop.waitFor(
                        [&] { return Accessible::application(stage.norvane().pid()).has_value(); }),
                    QStringLiteral("not on the accessibility bus"));
            stage.awaitListed(3, QStringLiteral("at first"));
        } catch (const StepFailure &failure) {
            FAIL() << failure.why.toStdString();
        }
    }

    [[nodiscard]] Accessible program() const
    {
        return Accessible::application(stage.norvane().pid()).value();
    }

    [[nodiscard]] std::optional<Accessible> find(const char *role, const QString &name = {}) const
    {
        return program().find([&](const Accessible &part) {
            return part.role() == QLatin1String(role) && part.is(Accessible::State::showing) &&
                   (name.isEmpty() || part.name().contains(name));
        });
    }

    [[nodiscard]] std::vector<Accessible> tabs() const { return find("page tab list").value().children(); }
    [[nodiscard]] std::vector<Accessible> rows() const { return find("list").value().children(); }

    static QStringList selectedOf(const std::vector<Accessible> &objects)
    {
        QStringList names;
        for (const auto &each : objects) {
            if (each.is(Accessible::State::selected))
                names << each.name();
        }
        return names;
    }

    QTemporaryDir output;
    Stage stage{QStringLiteral(NORVANE_PROGRAM), QDir(output.path())};
};

TEST_F(ScreenReader, HearsWhatEveryControlIs)
{
    struct Control {
        const char *role, *name;
    };
    for (const auto &[role, name] :
         {Control{"text", "Search the clipboard"}, Control{"page tab list", "Filter"},
          Control{"list", "History"}, Control{"text", "Preview"}, Control{"label", "3 items"},
          Control{"label", "paste"}, Control{"label", "10 characters"}, Control{"push button", "Menu"}})
        EXPECT_TRUE(find(role, QString::fromLatin1(name))) << role << " \"" << name << "\" is missing in\n"
                                                           << program().tree().toStdString();
    const QStringList spoken{"text",          "list",        "list item", "page tab",
                             "page tab list", "push button", "label",     "graphic"};
    for (const auto &part : program().all([&](const Accessible &each) {
             return spoken.contains(each.role()) && each.is(Accessible::State::showing);
         }))
        EXPECT_FALSE(part.name().isEmpty()) << "a nameless " << part.role().toStdString();
    EXPECT_EQ(find("text", QStringLiteral("Preview")).value().text(), "third copy");
}

TEST_F(ScreenReader, HearsTheRowsAndWhichIsSelectedAfterDown)
{
    ASSERT_EQ(rows().size(), 3U);
    EXPECT_EQ(rows()[0].name(), "third copy");
    EXPECT_TRUE(rows()[0].description().contains(QStringLiteral("10 characters")))
        << rows()[0].description().toStdString();
    EXPECT_EQ(selectedOf(rows()), QStringList{"third copy"});
    const SelectionEvents events;
    for (const char *next : {"second copy", "first copy"}) {
        const auto before = events.selected().size();
        ASSERT_TRUE(stage.keyboard.press(QStringLiteral("Down")));
        ASSERT_TRUE(QTest::qWaitFor([&] { return events.selected().size() > before; })) << next;
        EXPECT_EQ(events.selected().back().name(), QLatin1String(next));
        EXPECT_EQ(events.selected().back().role(), "list item");
        EXPECT_EQ(selectedOf(rows()), QStringList{QLatin1String(next)});
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
    EXPECT_EQ(selectedOf(tabs()), QStringList{"All"});
    const SelectionEvents events;
    ASSERT_TRUE(tabs()[2].press());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !events.selected().empty(); }));
    EXPECT_EQ(events.selected().front(), tabs()[2]);
    EXPECT_EQ(selectedOf(tabs()), QStringList{"Images"});
    EXPECT_TRUE(QTest::qWaitFor([&] { return rows().empty(); }));
    ASSERT_TRUE(stage.keyboard.press(QStringLiteral("Tab")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return selectedOf(tabs()) == QStringList{"Files"}; }));
}

} // namespace
