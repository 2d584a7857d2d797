// The panel on the stage, by its keys and by what it tells a screen reader.
#include "tests/desktop/Stage.h"

#include <QRegularExpression>

std::optional<xcb_window_t> Stage::panel() const
{
    return desktop.findWindow({"Norvane", {}, !managedPanel, 400});
}

xcb_window_t Stage::awaitPanel() const
{
    std::optional<xcb_window_t> window;
    await([&] { return (window = panel()).has_value(); }, "no panel opened");
    await([&] { return desktop.hasKeyboard(*window); }, "the panel opened without the keyboard");
    return *window;
}

void Stage::awaitNoPanel() const
{
    await([&] { return !panel(); }, "the panel stayed open");
}

void Stage::hotKey(Milliseconds held) const
{
    press("Ctrl+Alt+V", held);
}

void Stage::press(const QString &chord, Milliseconds held) const
{
    require(keyboard.press(chord, held), "the layout lacks a key of " + chord);
}

void Stage::type(const QString &text) const
{
    require(keyboard.type(text), "the layout lacks a letter of " + text);
}

xcb_window_t Stage::openPanel() const
{
    require(!panel(), "a panel was open already");
    hotKey();
    return awaitPanel();
}

void Stage::closePanel() const
{
    for (int presses = 0; presses < 3 && panel(); ++presses) {
        keyboard.press("Esc");
        desktop.waitFor([&] { return !panel(); }, Milliseconds(1000));
    }
}

void Stage::typeAhead(const QString &text, const Target &front) const
{
    for (int attempts = 3; attempts > 0; --attempts) {
        const QByteArray before = front.content();
        hotKey(Milliseconds(0)); // let go at once
        type(text);
        awaitPanel();
        QString seen;
        const bool arrived =
            desktop.waitFor([&] { return (seen = searchText()) == text; }, Milliseconds(3000));
        if (arrived && front.content() == before)
            return;
        require(attempts > 1, "the search field holds \"" + seen + "\", the program in front \"" +
                                  QString(front.content()) + "\"");
        closePanel();
    }
}

void Stage::choose(const QString &words, const QString &chord) const
{
    openPanel();
    type(words);
    press(chord);
}

std::optional<Accessible> Stage::part(const std::function<bool(const Accessible &)> &test) const
{
    const auto application = Accessible::application(running->pid());
    return application ? application->find(test) : std::nullopt;
}

std::optional<Accessible> Stage::searchField() const
{
    return part(
        [](const Accessible &each) { return each.role() == "text" && each.is(Accessible::State::editable); });
}

QString Stage::searchText() const
{
    const auto field = searchField();
    return field ? field->text() : QString();
}

QString Stage::searchName() const
{
    const auto field = searchField();
    return field ? field->name() : QString();
}

bool Stage::searchHasFocus() const
{
    const auto field = searchField();
    return field && field->is(Accessible::State::focused);
}

void Stage::awaitSearch(const QString &text) const
{
    QString seen;
    const bool there = desktop.waitFor([&] { return (seen = searchText()) == text; });
    require(there, "the search field holds \"" + seen + "\", not \"" + text + "\"");
}

QStringList Stage::listed() const
{
    std::optional<Accessible> list;
    const auto isList = [](const Accessible &each) { return each.role() == "list"; };
    await([&] { return (list = part(isList)).has_value(); }, "the panel has no list for a screen reader");
    QStringList names;
    for (const auto &item : list->children())
        if (item.role() == "list item")
            names << item.name();
    return names;
}

QString Stage::countText() const
{
    static const QRegularExpression count("^\\d+\\b");
    const auto label = part(
        [](const Accessible &each) { return each.role() == "label" && count.match(each.name()).hasMatch(); });
    return label ? label->name() : QString();
}

Accessible Stage::awaitPart(const QString &role, const QString &name) const
{
    std::optional<Accessible> found;
    const auto isIt = [&](const Accessible &each) {
        return each.role() == role && each.is(Accessible::State::showing) &&
               (name.isEmpty() || each.name() == name);
    };
    await([&] { return (found = part(isIt)).has_value(); }, "there is no " + role + " \"" + name + "\"");
    return *found;
}

void Stage::awaitListed(qsizetype count, const QString &when) const
{
    qsizetype seen = 0;
    const bool right = desktop.waitFor([&] { return (seen = listed().size()) == count; });
    require(right, QString("%1: %2 rows listed, %3 expected").arg(when).arg(seen).arg(count));
}
