#include "Platform/linux/x11/PasteboardThread.h"

#include "Platform/Log.h"
#include "Platform/linux/x11/WindowProperties.h"

#include <algorithm>
#include <poll.h>
#include <sys/socket.h>

namespace {

constexpr std::chrono::milliseconds briefly(20);
constexpr std::chrono::milliseconds textLimit(900);
constexpr std::chrono::milliseconds farewell(500);
constexpr int eventsInOneGo = 256; // then the notes of the main thread have their turn
constexpr int eventsToCatchUp = 8192;
constexpr quint32 maxSavedTargets = 1024;

template <typename Event>
const Event &as(const xcb_generic_event_t &event)
{
    return reinterpret_cast<const Event &>(event);
}

} // namespace

std::unique_ptr<PasteboardThread> PasteboardThread::start(std::shared_ptr<const DesktopEntries> entries)
{
    auto connection = PasteboardConnection::open();
    if (!connection)
        return nullptr;
    return std::unique_ptr<PasteboardThread>(new PasteboardThread(std::move(connection), std::move(entries)));
}

PasteboardThread::PasteboardThread(std::unique_ptr<PasteboardConnection> connection,
                                   std::shared_ptr<const DesktopEntries> entries)
    : x(std::move(connection)), server(*x),
      watch(*x, std::move(entries),
            {[this](ForeignCopy copy) { report(std::move(copy)); },
             [this](auto selection, const auto &claim, const auto &targets) {
                 server.offer(selection, claim, targets);
             },
             [this] { wakeSignal.set(); }})
{
    thread = std::thread([this] { run(); });
}

PasteboardThread::~PasteboardThread()
{
    auto over = finished.get_future();
    stopping = true;
    wakeSignal.set();
    if (over.wait_for(farewell) == std::future_status::timeout)
        shutdown(x->fileDescriptor(), SHUT_RDWR); // the X server hangs
    thread.join();
}

bool PasteboardThread::post(Task task)
{
    {
        const std::lock_guard lock(mutex);
        if (ended)
            return false;
        tasks.push_back(std::move(task));
    }
    wakeSignal.set();
    return true;
}

void PasteboardThread::postBriefly(Task task)
{
    const auto dealtWith = std::make_shared<std::promise<void>>();
    const auto future = dealtWith->get_future();
    const bool posted = post([task = std::move(task), dealtWith] {
        task();
        dealtWith->set_value();
    });
    if (posted)
        future.wait_for(briefly);
}

void PasteboardThread::report(Report report)
{
    {
        const std::lock_guard lock(mutex);
        const auto *copy = std::get_if<ForeignCopy>(&report);
        auto *last = reports.empty() ? nullptr : std::get_if<ForeignCopy>(&reports.back());
        if (copy && last && copy->writesSeen == last->writesSeen) {
            const qint64 changes = last->changes + copy->changes;
            reports.back() = std::move(report);
            std::get<ForeignCopy>(reports.back()).changes = changes;
        } else {
            reports.push_back(std::move(report));
        }
    }
    reportSignal.set();
}

std::vector<PasteboardThread::Report> PasteboardThread::takeReports()
{
    reportSignal.clear();
    const std::lock_guard lock(mutex);
    return std::exchange(reports, {});
}

void PasteboardThread::setPolicy(const PasteboardPolicy &policy)
{
    {
        const std::lock_guard lock(mutex);
        newPolicy = policy;
    }
    wakeSignal.set();
}

void PasteboardThread::begin()
{
    post([this] { watch.begin(); });
}

void PasteboardThread::write(qint64 number, std::shared_ptr<const PasteboardSnapshot> content)
{
    post([this, number, content = std::move(content)] { claimClipboard(number, *content); });
}

void PasteboardThread::ownPrimary(std::shared_ptr<const PasteboardSnapshot> content)
{
    postBriefly([this, content = std::move(content)] { claimPrimary(*content); });
}

void PasteboardThread::readText(quint64 number)
{
    postBriefly([this, number] {
        const TimePoint limit = Clock::now() + textLimit;
        catchUp();
        watch.readText([this, number](auto text) { report(TextAnswer{number, std::move(text)}); }, limit);
        watch.advance(Clock::now());
    });
}

void PasteboardThread::whenIdle(quint64 number)
{
    postBriefly([this, number] {
        catchUp();
        watch.whenIdle([this, number] { report(Idle{number}); });
    });
}

void PasteboardThread::run()
{
    while (!stopping && !x->isGone()) {
        runTasks();
        const bool more = handleEvents(eventsInOneGo);
        runTasks(); // a copy is read by the policy that was set before it was made
        const TimePoint now = Clock::now();
        server.advance(now);
        watch.advance(now);
        if (!x->flushedIntoEvents() && !more)
            waitForWork();
    }
    end();
}

// Before each change of the owner too: a copy made after the policy was set must not be read by the one
// before it, though the event may be here before the task.
void PasteboardThread::applyPolicy()
{
    std::optional<PasteboardPolicy> policy;
    {
        const std::lock_guard lock(mutex);
        policy.swap(newPolicy);
    }
    if (policy)
        watch.setPolicy(*policy);
}

void PasteboardThread::runTasks()
{
    applyPolicy();
    std::vector<Task> taken;
    {
        const std::lock_guard lock(mutex);
        taken.swap(tasks);
    }
    for (const Task &task : taken)
        task();
}

// True when there may be more events.
bool PasteboardThread::handleEvents(int limit)
{
    for (int i = 0; i < limit; ++i) {
        const XEvent event = x->nextEvent();
        if (!event)
            return false;
        handle(*event, Clock::now());
    }
    return true;
}

// Whatever the X server knows of now is dealt with when this returns.
void PasteboardThread::catchUp()
{
    x->synchronize();
    handleEvents(eventsToCatchUp);
    watch.advance(Clock::now());
}

void PasteboardThread::handle(const xcb_generic_event_t &event, TimePoint now)
{
    // Programs answer each other by events of their own making; all others come from the server, or are
    // forged.
    if ((event.response_type & 0x80) != 0 && (event.response_type & 0x7f) != XCB_SELECTION_NOTIFY)
        return;
    if (x->isOwnerChange(event)) {
        applyPolicy();
        watch.handleOwnerChange(as<xcb_xfixes_selection_notify_event_t>(event), sequenceOf(event), now);
        return;
    }
    switch (event.response_type & 0x7f) {
    case 0: // an error: of all that we ask, only what goes to a window that is gone can fail
        server.forget(as<xcb_generic_error_t>(event).resource_id);
        break;
    case XCB_SELECTION_REQUEST:
        handleRequest(as<xcb_selection_request_event_t>(event), now);
        break;
    case XCB_SELECTION_CLEAR:
        server.handleClear(event);
        break;
    case XCB_SELECTION_NOTIFY:
        watch.handleAnswer(as<xcb_selection_notify_event_t>(event), now);
        break;
    case XCB_PROPERTY_NOTIFY:
        handleProperty(as<xcb_property_notify_event_t>(event), now);
        break;
    case XCB_DESTROY_NOTIFY:
        server.forget(as<xcb_destroy_notify_event_t>(event).window);
        break;
    default:
        break;
    }
}

void PasteboardThread::handleRequest(const xcb_selection_request_event_t &request, TimePoint now)
{
    if (request.selection != x->atoms().clipboardManager || request.target != x->atoms().saveTargets) {
        for (const xcb_atom_t target : server.handleRequest(request, now)) {
            if (request.selection == x->atoms().clipboard)
                watch.noticeServed(target, now);
        }
        return;
    }
    const auto wanted =
        request.property == XCB_ATOM_NONE
            ? std::vector<quint32>()
            : readUnits(x->raw(), request.requestor, request.property, XCB_ATOM_ATOM, maxSavedTargets);
    watch.save(
        request.requestor, atomNames(x->raw(), wanted),
        [this, request](bool kept) { server.answerSave(request, kept); }, now);
}

void PasteboardThread::handleProperty(const xcb_property_notify_event_t &event, TimePoint now)
{
    if (event.window == x->window())
        watch.handleProperty(event, now);
    if (event.window == x->root() && event.atom == x->atoms().activeWindow)
        watch.handleActiveWindow();
    server.handleProperty(event, now); // a requestor's, which may be any window
}

void PasteboardThread::claimClipboard(qint64 number, const PasteboardSnapshot &content)
{
    const auto claim = x->claim(x->atoms().clipboard);
    if (claim.result == PasteboardConnection::Claim::Result::confirmed) {
        auto targets = servedTargets(content.items);
        watch.knownTypes().apply(targets);
        server.offer(x->atoms().clipboard, claim, targets);
    } else {
        server.withdraw(x->atoms().clipboard);
    }
    watch.noticeClaim(claim, number);
}

void PasteboardThread::claimPrimary(const PasteboardSnapshot &content)
{
    const auto targets = servedTexts(content.items);
    if (targets.empty())
        return;
    const auto claim = x->claim(XCB_ATOM_PRIMARY);
    if (claim.result == PasteboardConnection::Claim::Result::confirmed)
        server.offer(XCB_ATOM_PRIMARY, claim, targets);
}

void PasteboardThread::waitForWork()
{
    const TimePoint due = std::min(server.deadline(), watch.deadline());
    int timeout = -1;
    if (due != TimePoint::max()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now()).count();
        timeout = static_cast<int>(std::clamp<qint64>(left, 0, 60'000));
    }
    pollfd sources[] = {{x->fileDescriptor(), POLLIN, 0}, {wakeSignal.fileDescriptor(), POLLIN, 0}};
    poll(sources, 2, timeout);
    wakeSignal.clear();
}

void PasteboardThread::end()
{
    if (!stopping)
        logLine(QStringLiteral("The X server is gone: the clipboard is no longer followed."));
    report(Ended());
    {
        const std::lock_guard lock(mutex);
        ended = true;
        tasks.clear();
    }
    finished.set_value();
}
