#include "tests/platform/pasteboard/X11Client.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>
#include <cstdlib>
#include <cstring>

namespace {

using Event = std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>;

template <typename T>
const T &as(const xcb_generic_event_t &event)
{
    return reinterpret_cast<const T &>(event);
}

} // namespace

bool await(const std::function<bool()> &condition, int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    QTimer tick; // what a client received while it waited for an answer wakes nobody
    tick.start(5);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

X11Client::X11Client() : connection(xcb_connect(nullptr, nullptr)), ownWindow(xcb_generate_id(connection))
{
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, ownWindow, root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    sync();
    notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection), QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] { pump(); });
}

X11Client::~X11Client()
{
    die();
}

void X11Client::die()
{
    notifier.reset();
    if (connection)
        xcb_disconnect(std::exchange(connection, nullptr));
}

xcb_window_t X11Client::root() const
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

xcb_atom_t X11Client::atom(const QByteArray &name)
{
    xcb_atom_t &known = atoms[name];
    if (known == XCB_ATOM_NONE) {
        const auto cookie =
            xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.constData());
        auto *reply = xcb_intern_atom_reply(connection, cookie, nullptr);
        known = reply->atom;
        std::free(reply);
    }
    return known;
}

QByteArray X11Client::name(xcb_atom_t atom)
{
    auto *reply = xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, atom), nullptr);
    if (!reply)
        return {};
    const QByteArray name(xcb_get_atom_name_name(reply), xcb_get_atom_name_name_length(reply));
    std::free(reply);
    return name;
}

void X11Client::sync()
{
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

xcb_timestamp_t X11Client::serverTime()
{
    const xcb_atom_t time = atom("TEST_TIME");
    xcb_change_property(connection, XCB_PROP_MODE_APPEND, ownWindow, time, XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(connection);
    while (Event event{xcb_wait_for_event(connection), &std::free}) { // the server always answers
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY &&
            as<xcb_property_notify_event_t>(*event).atom == time)
            return as<xcb_property_notify_event_t>(*event).time;
        handle(*event);
    }
    return 0;
}

void X11Client::pump()
{
    while (connection) {
        const Event event(xcb_poll_for_event(connection), &std::free);
        if (!event)
            break;
        handle(*event);
    }
    if (connection)
        xcb_flush(connection);
}

Owner &Owner::offer(const QByteArray &target, Form form)
{
    forms.emplace_back(target, std::move(form));
    return *this;
}

void Owner::claim(const QByteArray &selection)
{
    xcb_set_selection_owner(connection, ownWindow, atom(selection), XCB_CURRENT_TIME);
    sync();
    pump();
}

void Owner::letGo()
{
    xcb_set_selection_owner(connection, XCB_WINDOW_NONE, atom("CLIPBOARD"), XCB_CURRENT_TIME);
    sync();
}

void Owner::destroyWindow()
{
    xcb_destroy_window(connection, ownWindow);
    sync();
}

bool Owner::save(const QByteArrayList &targets)
{
    std::vector<xcb_atom_t> list;
    for (const QByteArray &each : targets)
        list.push_back(atom(each));
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, ownWindow, atom("TEST_SAVED"), XCB_ATOM_ATOM, 32,
                        static_cast<uint32_t>(list.size()), list.data());
    saved.reset();
    xcb_convert_selection(connection, ownWindow, atom("CLIPBOARD_MANAGER"), atom("SAVE_TARGETS"),
                          atom("TEST_SAVED"), XCB_CURRENT_TIME);
    xcb_flush(connection);
    const auto answered = [this] {
        pump();
        return saved.has_value();
    };
    EXPECT_TRUE(await(answered));
    return saved.value_or(XCB_ATOM_NONE) != XCB_ATOM_NONE;
}

void Owner::notifyAgain()
{
    xcb_send_event(connection, 0, lastNotify.requestor, 0, reinterpret_cast<const char *>(&lastNotify));
    sync();
}

void Owner::comeBack()
{
    hangs = false;
    for (const auto &request : std::exchange(unanswered, {}))
        answer(request);
    pump();
}

void Owner::handle(const xcb_generic_event_t &event)
{
    const auto type = event.response_type & 0x7f;
    if (type == XCB_SELECTION_REQUEST)
        answer(as<xcb_selection_request_event_t>(event));
    else if (type == XCB_SELECTION_NOTIFY)
        saved = as<xcb_selection_notify_event_t>(event).property;
    else if (type == XCB_PROPERTY_NOTIFY &&
             as<xcb_property_notify_event_t>(event).state == XCB_PROPERTY_DELETE)
        sendChunk(as<xcb_property_notify_event_t>(event));
}

void Owner::answer(const xcb_selection_request_event_t &request)
{
    const QByteArray target = name(request.target);
    asked.push_back(target);
    if (target != "TARGETS" && beforeAnswering)
        std::exchange(beforeAnswering, nullptr)();
    if (hangs) {
        unanswered.push_back(request);
        return;
    }
    const auto form =
        std::find_if(forms.begin(), forms.end(), [&](const auto &each) { return each.first == target; });
    if (form != forms.end() && form->second.manner == Form::Manner::ignore)
        return;
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    const bool renamed = form != forms.end() && !form->second.notified.isEmpty();
    notify.target = renamed ? atom(form->second.notified) : request.target;
    notify.property = put(request, target) ? request.property : xcb_atom_t(XCB_ATOM_NONE);
    xcb_send_event(connection, 0, request.requestor, 0, reinterpret_cast<const char *>(&notify));
    xcb_flush(connection);
    lastNotify = notify;
    if (afterAnswering)
        afterAnswering(target);
    if (form != forms.end() && form->second.manner == Form::Manner::dieAfterHeader)
        die();
}

bool Owner::put(const xcb_selection_request_event_t &request, const QByteArray &target)
{
    if (target == "TARGETS" && listsTargets) {
        std::vector<xcb_atom_t> list = {atom("TIMESTAMP"), atom("TARGETS"), atom("MULTIPLE")};
        for (const auto &each : forms)
            list.push_back(atom(each.first));
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                            XCB_ATOM_ATOM, 32, static_cast<uint32_t>(list.size()), list.data());
        return true;
    }
    const auto found =
        std::find_if(forms.begin(), forms.end(), [&](const auto &each) { return each.first == target; });
    if (found == forms.end() || found->second.manner == Form::Manner::refuse)
        return false;
    const Form &form = found->second;
    if (form.manner == Form::Manner::noType)
        return true; // claims to have answered
    const xcb_atom_t type = form.type.isEmpty() ? request.target : atom(form.type);
    if (form.manner == Form::Manner::whole) {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property, type,
                            form.format, static_cast<uint32_t>(form.bytes.size() / (form.format / 8)),
                            form.bytes.constData());
        return true;
    }
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection, request.requestor, XCB_CW_EVENT_MASK, &events);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property, atom("INCR"),
                        32, 1, &form.announced);
    if (form.manner == Form::Manner::incremental)
        sendings.push_back({request.requestor, request.property, type, form.bytes, form.chunk});
    return true;
}

void Owner::sendChunk(const xcb_property_notify_event_t &event)
{
    const auto found = std::find_if(sendings.begin(), sendings.end(), [&](const Sending &each) {
        return each.requestor == event.window && each.property == event.atom;
    });
    if (found == sendings.end())
        return;
    const qsizetype length = std::min(found->chunk, found->bytes.size() - found->sent);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, found->requestor, found->property, found->type, 8,
                        static_cast<uint32_t>(length), found->bytes.constData() + found->sent);
    xcb_flush(connection);
    found->sent += length;
    ++chunksSent;
    if (length > 0)
        return;
    ++incrementalEnds;
    sendings.erase(found);
}

void Requestor::handle(const xcb_generic_event_t &event)
{
    const auto type = event.response_type & 0x7f;
    if (type == XCB_SELECTION_NOTIFY) {
        notify = as<xcb_selection_notify_event_t>(event);
        ++notifies;
    } else if (type == XCB_PROPERTY_NOTIFY &&
               as<xcb_property_notify_event_t>(event).state == XCB_PROPERTY_NEW_VALUE) {
        ++newValues[as<xcb_property_notify_event_t>(event).atom];
    }
}

void Requestor::ask(const QByteArray &target, const QByteArray &property, const QByteArray &selection,
                    xcb_timestamp_t time)
{
    xcb_convert_selection(connection, ownWindow, atom(selection), atom(target),
                          property.isEmpty() ? xcb_atom_t(XCB_ATOM_NONE) : atom(property), time);
    xcb_flush(connection);
}

bool Requestor::awaitNotify()
{
    const bool came = await(
        [this] {
            pump();
            return notifies > 0;
        },
        5000);
    notifies = 0;
    return came;
}

Requestor::Answer Requestor::take(const QByteArray &property)
{
    newValues[atom(property)] = 0;
    const auto cookie =
        xcb_get_property(connection, 1, ownWindow, atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, 0x0fffffff);
    auto *reply = xcb_get_property_reply(connection, cookie, nullptr);
    const qsizetype length = xcb_get_property_value_length(reply);
    Answer answer{
        {static_cast<const char *>(xcb_get_property_value(reply)), length}, name(reply->type), reply->format};
    std::free(reply);
    answer.incremental = answer.type == "INCR";
    answer.largestChunk = length;
    return answer;
}

Requestor::Answer Requestor::finish(const QByteArray &property)
{
    Answer whole;
    whole.incremental = true;
    while (true) {
        const bool came = await(
            [&] {
                pump();
                return newValues[atom(property)] > 0;
            },
            5000);
        if (!came) {
            ADD_FAILURE() << "The transfer stopped after " << whole.bytes.size() << " bytes";
            return whole;
        }
        const Answer chunk = take(property);
        if (chunk.bytes.isEmpty())
            return whole;
        whole.bytes += chunk.bytes;
        whole.type = chunk.type;
        whole.format = chunk.format;
        whole.largestChunk = std::max(whole.largestChunk, chunk.bytes.size());
    }
}

std::optional<Requestor::Answer> Requestor::convert(const QByteArray &target, const QByteArray &selection,
                                                    xcb_timestamp_t time, bool withProperty)
{
    const QByteArray property = withProperty ? "TEST_ANSWER" : target;
    ask(target, withProperty ? property : QByteArray(), selection, time);
    if (!awaitNotify()) {
        ADD_FAILURE() << "No answer to " << target.constData();
        return std::nullopt;
    }
    if (notify.property == XCB_ATOM_NONE)
        return std::nullopt;
    EXPECT_EQ(notify.property, atom(property));
    const Answer answer = take(property);
    return answer.incremental ? finish(property) : answer;
}

QByteArray Requestor::text(const QByteArray &selection)
{
    const auto answer = convert("UTF8_STRING", selection);
    return answer ? answer->bytes : QByteArray();
}

QByteArrayList Requestor::targets(const QByteArray &selection)
{
    const auto answer = convert("TARGETS", selection);
    QByteArrayList names;
    for (qsizetype i = 0; answer && i + 4 <= answer->bytes.size(); i += 4) {
        xcb_atom_t each = 0;
        std::memcpy(&each, answer->bytes.constData() + i, 4);
        names.push_back(name(each));
    }
    return names;
}

PasteboardTest::PasteboardTest() : pasteboard(nullptr)
{
    Owner clearer;
    clearer.letGo();
    pasteboard = X11Pasteboard::create(std::make_shared<ClassNames>());
    if (!pasteboard) {
        ADD_FAILURE() << "no X server";
        std::abort();
    }
    settle();
}

void PasteboardTest::settle()
{
    bool settled = false;
    pasteboard->whenSettled([&] { settled = true; });
    EXPECT_TRUE(await([&] { return settled; }, 7000));
}

bool PasteboardTest::awaitChange(qint64 from, int milliseconds)
{
    return await([&] { return pasteboard->changeCount() != from; }, milliseconds);
}

std::optional<QByteArray> PasteboardTest::bytes(QStringView type) const
{
    return items().empty() ? std::nullopt : items().front().data(type);
}

QStringList PasteboardTest::types() const
{
    QStringList names;
    if (!items().empty()) {
        for (const auto &each : items().front().representations)
            names.push_back(each.type);
    }
    return names;
}

QString PasteboardTest::readText()
{
    std::optional<QString> text;
    pasteboard->readText([&](const QString &read) { text = read; });
    EXPECT_TRUE(await([&] { return text.has_value(); }, 1500));
    return text.value_or(QString());
}

QByteArray pattern(qsizetype size)
{
    QByteArray data(size, Qt::Uninitialized);
    quint32 state = 2463534242u;
    for (char &byte : data) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<char>('!' + (state >> 24) % 90);
    }
    return data;
}
