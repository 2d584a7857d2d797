#include "Platform/linux/dbus/AtSpiTree.h"

#include <QHash>
#include <algorithm>

namespace AtSpiTree {

namespace {

constexpr size_t longestWalk = 150; // objects; a program without a search (Qt) has 3 to 16 on the way
constexpr int deepestObject = 64;

using Objects = std::vector<AtSpiObject>;

// Absent when the program has no search (GTK 4, Qt).
std::optional<Objects> matches(const AtSpiInquiry &inquiry, const AtSpiObject &root)
{
    AtSpiMatchRule rule;
    rule.states = {1 << AtSpi::stateFocused, 0};
    constexpr uint canonicalOrder = 1;
    constexpr int all = 0;
    const auto answer =
        inquiry.ask({root,
                     AtSpi::collection,
                     QStringLiteral("GetMatches"),
                     {QVariant::fromValue(rule), QVariant(canonicalOrder), QVariant(all), QVariant(true)}});
    const auto found = AtSpiInquiry::read<QList<AtSpiObject>>(answer, "a(so)");
    return found ? std::optional(Objects(found->begin(), found->end())) : std::nullopt;
}

// From the list that a program keeps for screen readers. Absent when it keeps none (GTK 3, Qt).
std::optional<Objects> cached(const AtSpiInquiry &inquiry, const AtSpiObject &root)
{
    const auto answer = inquiry.ask(
        {{root.bus, QDBusObjectPath("/org/a11y/atspi/cache")}, AtSpi::cache, QStringLiteral("GetItems")});
    const auto items = AtSpiInquiry::read<QList<AtSpiCacheItem>>(answer, "a((so)(so)(so)iiassusau)");
    if (!items || items->isEmpty())
        return std::nullopt;
    QHash<QString, QString> parents;
    for (const AtSpiCacheItem &item : *items)
        parents.insert(item.object.path.path(), item.parent.path.path());
    const auto depth = [&parents](const AtSpiObject &object) {
        QString path = object.path.path();
        int steps = 0;
        while (steps < deepestObject && parents.contains(path)) {
            path = parents.value(path);
            ++steps;
        }
        return steps;
    };
    Objects focused;
    for (const AtSpiCacheItem &item : *items) {
        if (AtSpi::hasState(item.states, AtSpi::stateFocused))
            focused.push_back(item.object);
    }
    std::ranges::stable_sort(focused, {}, depth);
    return focused;
}

AtSpiObject parentOf(const AtSpiInquiry &inquiry, const AtSpiObject &object)
{
    const auto parent = AtSpiInquiry::readProperty<QDBusArgument>(
        inquiry.ask(AtSpiInquiry::propertyQuestion(object, AtSpi::accessible, QStringLiteral("Parent"))));
    return parent && parent->currentSignature() == u"(so)" ? qdbus_cast<AtSpiObject>(*parent) : AtSpiObject();
}

struct Seen {
    QList<uint> states;
    QList<AtSpiObject> children;
};

std::vector<Seen> look(const AtSpiInquiry &inquiry, const Objects &objects)
{
    std::vector<AtSpiInquiry::Question> questions;
    questions.reserve(objects.size() * 2);
    for (const AtSpiObject &object : objects) {
        questions.push_back({object, AtSpi::accessible, QStringLiteral("GetState")});
        questions.push_back({object, AtSpi::accessible, QStringLiteral("GetChildren")});
    }
    const auto answers = inquiry.ask(questions);
    std::vector<Seen> seen(objects.size());
    for (size_t index = 0; index < objects.size(); ++index) {
        seen[index] = {AtSpiInquiry::read<QList<uint>>(answers[2 * index], "au").value_or(QList<uint>()),
                       AtSpiInquiry::read<QList<AtSpiObject>>(answers[2 * index + 1], "a(so)")
                           .value_or(QList<AtSpiObject>())};
    }
    return seen;
}

Objects walk(const AtSpiInquiry &inquiry, const AtSpiObject &root)
{
    Objects focused;
    Objects level = activeWindows(inquiry, root);
    if (level.empty())
        level = inquiry.childrenOf(root);
    for (size_t walked = 0; !level.empty() && walked < longestWalk && !inquiry.isOver();) {
        level.resize(std::min(level.size(), longestWalk - walked));
        walked += level.size();
        const auto seen = look(inquiry, level);
        Objects next;
        for (size_t index = 0; index < level.size(); ++index) {
            if (!AtSpi::hasState(seen[index].states, AtSpi::stateShowing))
                continue;
            if (AtSpi::hasState(seen[index].states, AtSpi::stateFocused))
                focused.push_back(level[index]);
            std::ranges::copy_if(seen[index].children, std::back_inserter(next),
                                 [](const AtSpiObject &child) { return !child.isNull(); });
        }
        level = std::move(next);
    }
    return focused;
}

} // namespace

Objects focusedObjects(const AtSpiInquiry &inquiry, const AtSpiObject &root)
{
    if (auto found = matches(inquiry, root))
        return *found;
    if (auto found = cached(inquiry, root))
        return *found;
    return walk(inquiry, root);
}

Objects activeWindows(const AtSpiInquiry &inquiry, const AtSpiObject &root)
{
    Objects windows = inquiry.childrenOf(root);
    std::vector<AtSpiInquiry::Question> questions;
    for (const AtSpiObject &window : windows)
        questions.push_back({window, AtSpi::accessible, QStringLiteral("GetState")});
    const auto answers = inquiry.ask(questions);
    Objects active;
    for (size_t index = 0; index < windows.size(); ++index) {
        const auto states = AtSpiInquiry::read<QList<uint>>(answers[index], "au");
        if (states && AtSpi::hasState(*states, AtSpi::stateActive))
            active.push_back(windows[index]);
    }
    return active;
}

AtSpiObject windowOf(const AtSpiInquiry &inquiry, const AtSpiObject &object, const AtSpiObject &root)
{
    const Objects windows = inquiry.childrenOf(root);
    if (windows.size() == 1)
        return windows.front();
    AtSpiObject at = object;
    for (int depth = 0; depth < deepestObject && !inquiry.isOver(); ++depth) {
        if (std::ranges::find(windows, at) != windows.end())
            return at;
        at = parentOf(inquiry, at);
        if (at.isNull())
            break;
    }
    return {};
}

} // namespace AtSpiTree
