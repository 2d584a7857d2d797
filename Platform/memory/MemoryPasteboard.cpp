#include "Platform/memory/MemoryPasteboard.h"

#include <QTimer>
#include <algorithm>
#include <utility>

namespace {

bool isPicture(const QString &type)
{
    using namespace PasteboardType;
    return type == png || type == tiff || type == jpeg || type == heic || type == gif ||
           type.startsWith(u"image/");
}

bool offers(const std::vector<PasteboardItem> &items, QStringView type)
{
    return std::ranges::any_of(items, [type](const PasteboardItem &item) {
        return std::ranges::any_of(item.representations,
                                   [type](const auto &each) { return each.type == type; });
    });
}

// An empty text and nothing else: how programs empty the pasteboard.
bool isEmptied(const std::vector<PasteboardItem> &items)
{
    const auto empty = [](const PasteboardItem &item) {
        return std::ranges::all_of(item.representations,
                                   [](const auto &each) { return each.data && each.data->isEmpty(); });
    };
    return offers(items, PasteboardType::plainText) && std::ranges::all_of(items, empty);
}

// The order in which bytes are worth fetching; what an exceeded budget drops comes last.
int valueRank(const QString &type)
{
    using namespace PasteboardType;
    static const QStringList order{QString::fromUtf16(fileURL), QString::fromUtf16(plainText),
                                   QString::fromUtf16(html), QString::fromUtf16(rtf),
                                   QString::fromUtf16(png)};
    const auto rank = order.indexOf(type);
    return static_cast<int>(rank < 0 ? order.size() : rank);
}

QString joinedText(const std::vector<PasteboardItem> &items)
{
    QStringList texts;
    for (const auto &item : items) {
        if (const auto bytes = item.data(PasteboardType::plainText))
            texts.append(QString::fromUtf8(*bytes));
    }
    return texts.join(u'\n');
}

} // namespace

MemoryPasteboard::MemoryPasteboard(qint64 initialCount, std::vector<PasteboardItem> contents)
    : count(initialCount), foreign{std::move(contents), {}}
{
    auto snapshot = std::make_shared<PasteboardSnapshot>();
    snapshot->changeCount = count;
    snapshot->items = foreign.items;
    published = std::move(snapshot);
}

qint64 MemoryPasteboard::changeCount() const
{
    return count;
}

std::shared_ptr<const PasteboardSnapshot> MemoryPasteboard::snapshot() const
{
    return published;
}

qint64 MemoryPasteboard::write(std::vector<PasteboardItem> items)
{
    for (auto &item : items)
        std::erase_if(item.representations, [](const auto &each) { return !each.data; });
    std::erase_if(items, [](const PasteboardItem &item) { return item.representations.empty(); });
    pending.reset(); // a read that began before this write is out of date
    publish(std::move(items), frontApplication);
    const qint64 written = count;
    ownerIsForeign = claimRefused;
    if (claimRefused)
        QTimer::singleShot(0, &context, [this] { publishForeign(foreign); });
    return written;
}

void MemoryPasteboard::setPolicy(const PasteboardPolicy &policy)
{
    policy_ = policy;
}

void MemoryPasteboard::whenSettled(std::function<void()> callback)
{
    if (isReading)
        settledCallbacks.push_back(std::move(callback));
    else
        callback();
}

void MemoryPasteboard::readText(std::function<void(const QString &)> callback)
{
    QString text;
    if (!ownerIsForeign)
        text = joinedText(published->items);
    else if (!ownerHung)
        text = joinedText(foreign.items);
    QTimer::singleShot(0, &context, [text, callback = std::move(callback)] { callback(text); });
}

void MemoryPasteboard::copy(std::vector<PasteboardItem> items, std::optional<FrontApplication> application)
{
    foreign = {std::move(items), std::move(application)};
    ownerIsForeign = true;
    if (isReading)
        pending = foreign;
    else
        publishForeign(foreign);
}

void MemoryPasteboard::copyText(const QString &text, std::optional<FrontApplication> application)
{
    copy({{{{QString::fromUtf16(PasteboardType::plainText), text.toUtf8()}}}}, std::move(application));
}

void MemoryPasteboard::clear(std::optional<FrontApplication> application)
{
    copy({}, std::move(application));
}

void MemoryPasteboard::beginRead()
{
    isReading = true;
}

void MemoryPasteboard::finishRead()
{
    isReading = false;
    if (const auto copy = std::exchange(pending, {}))
        publishForeign(*copy);
    for (const auto &callback : std::exchange(settledCallbacks, {}))
        callback();
}

void MemoryPasteboard::setFrontApplication(std::optional<FrontApplication> application)
{
    frontApplication = std::move(application);
}

void MemoryPasteboard::refuseType(const QString &type)
{
    refusedTypes.insert(type);
}

void MemoryPasteboard::setOwnerHung(bool hung)
{
    ownerHung = hung;
}

void MemoryPasteboard::setClaimRefused(bool refused)
{
    claimRefused = refused;
}

const PasteboardPolicy &MemoryPasteboard::policy() const
{
    return policy_;
}

void MemoryPasteboard::publish(std::vector<PasteboardItem> items,
                               const std::optional<FrontApplication> &application)
{
    auto snapshot = std::make_shared<PasteboardSnapshot>();
    snapshot->changeCount = ++count;
    snapshot->items = std::move(items);
    snapshot->frontApplication = application;
    published = std::move(snapshot);
}

void MemoryPasteboard::publishForeign(const Copy &copy)
{
    publish(fetched(copy), copy.frontApplication);
}

std::vector<PasteboardItem> MemoryPasteboard::fetched(const Copy &copy) const
{
    auto items = copy.items;
    if (isEmptied(items))
        return {};
    const bool hasText = offers(items, PasteboardType::plainText);
    const bool hasFiles = offers(items, PasteboardType::fileURL);
    const bool ignored = copy.frontApplication && copy.frontApplication->bundleIdentifier &&
                         policy_.ignoredApplications.contains(*copy.frontApplication->bundleIdentifier);
    const bool nothing = policy_.paused || ignored || ownerHung || offers(items, PasteboardType::concealed);
    const auto forbidden = [&](const QString &type) {
        if (nothing || refusedTypes.contains(type))
            return true;
        if (hasFiles && !policy_.files && type != PasteboardType::fileURL)
            return true;
        return !policy_.images && !hasText && isPicture(type);
    };

    std::vector<PasteboardRepresentation *> byValue;
    for (auto &item : items) {
        for (auto &each : item.representations)
            byValue.push_back(&each);
    }
    std::ranges::stable_sort(byValue, {}, [](const auto *each) { return valueRank(each->type); });
    qint64 left = policy_.byteBudget;
    for (auto *each : byValue) {
        if (each->data && (forbidden(each->type) || each->data->size() > left))
            each->data.reset();
        if (each->data)
            left -= each->data->size();
    }
    return items;
}
