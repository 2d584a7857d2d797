#include "tests/platform/pasteboard/Owner.h"

#include <gtest/gtest.h>

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
