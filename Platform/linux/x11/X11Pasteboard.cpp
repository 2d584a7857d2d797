#include "Platform/linux/x11/X11Pasteboard.h"

#include "Platform/linux/x11/PasteboardThread.h"
#include "Platform/linux/x11/ServedContent.h"

#include <QSocketNotifier>
#include <QTimer>

namespace {

using namespace std::chrono_literals;

// The thread keeps to shorter limits; these hold should it be kept from answering at all.
constexpr auto textLimit = 1s;
constexpr auto settledLimit = 6s;

} // namespace

std::unique_ptr<X11Pasteboard> X11Pasteboard::create(std::shared_ptr<const DesktopEntries> entries)
{
    auto thread = PasteboardThread::start(std::move(entries));
    return thread ? std::unique_ptr<X11Pasteboard>(new X11Pasteboard(std::move(thread))) : nullptr;
}

X11Pasteboard::X11Pasteboard(std::unique_ptr<PasteboardThread> started)
    : thread(std::move(started)),
      notifier(std::make_unique<QSocketNotifier>(thread->reportDescriptor(), QSocketNotifier::Read))
{
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] { takeReports(); });
    // Not before the owner of this object had its chance to set the policy.
    QTimer::singleShot(0, notifier.get(), [this] { begin(); });
}

X11Pasteboard::~X11Pasteboard() = default;

void X11Pasteboard::begin()
{
    if (!std::exchange(begun, true))
        thread->begin();
}

qint64 X11Pasteboard::write(std::vector<PasteboardItem> items)
{
    begin();
    for (PasteboardItem &item : items)
        std::erase_if(item.representations, [](const auto &each) { return !each.data; });
    std::erase_if(items, [](const PasteboardItem &item) { return item.representations.empty(); });
    PasteboardSnapshot next{
        published->changeCount + 1, std::move(items),
        FrontApplication{QStringView(ownBundleIdentifier).toString(), QStringLiteral("Norvane")}};
    published = std::make_shared<const PasteboardSnapshot>(std::move(next));
    thread->write(++writes, published);
    return published->changeCount;
}

void X11Pasteboard::setPolicy(const PasteboardPolicy &policy)
{
    thread->setPolicy(policy);
}

void X11Pasteboard::ownPrimary()
{
    thread->ownPrimary(published);
}

void X11Pasteboard::whenSettled(std::function<void()> callback)
{
    begin();
    const quint64 number = ++lastNumber;
    settledCallbacks.emplace(number, std::move(callback));
    thread->whenIdle(number);
    takeReports();
    if (ended)
        finishEverything();
    else if (settledCallbacks.contains(number))
        QTimer::singleShot(settledLimit, notifier.get(), [this, number] { finishSettled(number); });
}

void X11Pasteboard::readText(std::function<void(const QString &)> callback)
{
    begin();
    const quint64 number = ++lastNumber;
    textCallbacks.emplace(number, std::move(callback));
    thread->readText(number);
    takeReports();
    if (ended)
        finishEverything();
    else if (textCallbacks.contains(number))
        QTimer::singleShot(textLimit, notifier.get(), [this, number] { finishText(number, QString()); });
}

void X11Pasteboard::takeReports()
{
    for (auto &report : thread->takeReports()) {
        if (auto *copy = std::get_if<ForeignCopy>(&report)) {
            if (copy->writesSeen != writes)
                continue; // copied before our last write
            PasteboardSnapshot next{published->changeCount + copy->changes, std::move(copy->items),
                                    std::move(copy->frontApplication)};
            published = std::make_shared<const PasteboardSnapshot>(std::move(next));
        } else if (const auto *answer = std::get_if<PasteboardThread::TextAnswer>(&report)) {
            finishText(answer->number, answer->text ? QString::fromUtf8(*answer->text) : publishedText());
        } else if (const auto *idle = std::get_if<PasteboardThread::Idle>(&report)) {
            finishSettled(idle->number);
        } else {
            ended = true;
            finishEverything();
        }
    }
}

QString X11Pasteboard::publishedText() const
{
    return QString::fromUtf8(joinedText(published->items).value_or(QByteArray()));
}

void X11Pasteboard::finishText(quint64 number, const QString &text)
{
    if (auto found = textCallbacks.extract(number))
        found.mapped()(text);
}

void X11Pasteboard::finishSettled(quint64 number)
{
    if (auto found = settledCallbacks.extract(number))
        found.mapped()();
}

void X11Pasteboard::finishEverything()
{
    while (!textCallbacks.empty())
        finishText(textCallbacks.begin()->first, publishedText());
    while (!settledCallbacks.empty())
        finishSettled(settledCallbacks.begin()->first);
}
