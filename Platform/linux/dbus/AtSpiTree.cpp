#include "Platform/linux/dbus/AtSpiTree.h"

#include <QHash>
#include <algorithm>

namespace AtSpiTree {

namespace {

constexpr size_t longestWalk = 150; // objects; a program without a search (Qt) has 3 to 16 on the way
constexpr int deepestObject = 64;
constexpr std::chrono::milliseconds surveyLimit(30); // for an answer, when every program is asked

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

std::vector<AtSpiInquiry::Question> toEach(const Objects &objects, const QString &method)
{
    std::vector<AtSpiInquiry::Question> questions;
    questions.reserve(objects.size());
    for (const AtSpiObject &object : objects)
        questions.push_back({object, AtSpi::accessible, method});
    return questions;
}

std::vector<QList<uint>> read(const std::vector<QDBusMessage> &stateAnswers)
{
    std::vector<QList<uint>> states;
    states.reserve(stateAnswers.size());
    for (const QDBusMessage &answer : stateAnswers)
        states.push_back(AtSpiInquiry::read<QList<uint>>(answer, "au").value_or(QList<uint>()));
    return states;
}

std::vector<QList<uint>> statesOf(const AtSpiInquiry &inquiry, const Objects &objects)
{
    return read(inquiry.ask(toEach(objects, QStringLiteral("GetState"))));
}

void appendChildren(const QDBusMessage &answer, Objects &children)
{
    const auto some = AtSpiInquiry::read<QList<AtSpiObject>>(answer, "a(so)").value_or(QList<AtSpiObject>());
    std::ranges::copy_if(some, std::back_inserter(children),
                         [](const AtSpiObject &child) { return !child.isNull(); });
}

Objects childrenOf(const AtSpiInquiry &inquiry, const Objects &objects)
{
    Objects children;
    for (const QDBusMessage &answer : inquiry.ask(toEach(objects, QStringLiteral("GetChildren"))))
        appendChildren(answer, children);
    return children;
}

Objects activeWindows(const AtSpiInquiry &inquiry, const AtSpiObject &root)
{
    const Objects windows = inquiry.childrenOf(root);
    const auto states = statesOf(inquiry, windows);
    Objects active;
    for (size_t index = 0; index < windows.size(); ++index) {
        if (AtSpi::hasState(states[index], AtSpi::stateActive))
            active.push_back(windows[index]);
    }
    return active;
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
        const auto states = statesOf(inquiry, level);
        Objects parents;
        for (size_t index = 0; index < level.size(); ++index) {
            if (!AtSpi::hasState(states[index], AtSpi::stateShowing))
                continue;
            if (AtSpi::hasState(states[index], AtSpi::stateFocused))
                focused.push_back(level[index]);
            if (!AtSpi::hasState(states[index], AtSpi::stateManagesDescendants))
                parents.push_back(level[index]);
        }
        level = childrenOf(inquiry, parents);
    }
    return focused;
}

} // namespace

bool canSearch(const AtSpiInquiry &inquiry, const AtSpiObject &root)
{
    const auto name = AtSpiInquiry::readProperty<QString>(
        inquiry.ask(AtSpiInquiry::propertyQuestion(root, AtSpi::accessible, QStringLiteral("Name"))));
    return name && name != QLatin1String("soffice"); // LibreOffice is slow to answer when it works
}

Objects focusedObjects(const AtSpiInquiry &inquiry, const AtSpiObject &root, bool search)
{
    if (!search)
        return walk(inquiry, root);
    if (auto found = matches(inquiry, root))
        return *found;
    if (auto found = cached(inquiry, root))
        return *found;
    return walk(inquiry, root);
}

Objects activePrograms(const AtSpiInquiry &inquiry, const Objects &roots)
{
    Objects windows, owners; // each window's program
    const auto answers = inquiry.ask(toEach(roots, QStringLiteral("GetChildren")), surveyLimit);
    for (size_t index = 0; index < roots.size(); ++index) {
        appendChildren(answers[index], windows);
        owners.resize(windows.size(), roots[index]);
    }
    const auto states = read(inquiry.ask(toEach(windows, QStringLiteral("GetState")), surveyLimit));
    Objects active;
    for (size_t index = 0; index < windows.size(); ++index) {
        const bool isKnown = !active.empty() && active.back() == owners[index];
        if (!isKnown && AtSpi::hasState(states[index], AtSpi::stateActive))
            active.push_back(owners[index]);
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
