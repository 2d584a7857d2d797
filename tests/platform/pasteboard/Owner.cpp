#include "tests/platform/pasteboard/Owner.h"

#include <gtest/gtest.h>

using Manner = Owner::Form::Manner;

Owner &Owner::offer(const QByteArray &target, Form form)
{
    forms.emplace_back(target, std::move(form));
    return *this;
}

void Owner::letGo()
{
    xcb_set_selection_owner(raw(), XCB_WINDOW_NONE, atom("CLIPBOARD"), XCB_CURRENT_TIME);
    sync();
}

void Owner::destroyWindow()
{
    xcb_destroy_window(raw(), ownWindow);
    sync();
}

bool Owner::save(const QByteArrayList &targets)
{
    std::vector<quint32> list;
    for (const QByteArray &each : targets)
        list.push_back(atom(each));
    X11Client::put("TEST_SAVED", "ATOM", 32, bytesOf(list));
    saved.reset();
    xcb_convert_selection(raw(), ownWindow, atom("CLIPBOARD_MANAGER"), atom("SAVE_TARGETS"),
                          atom("TEST_SAVED"), XCB_CURRENT_TIME);
    sync();
    EXPECT_TRUE(await([this] { return saved.has_value(); }));
    return saved.value_or(XCB_ATOM_NONE) != XCB_ATOM_NONE;
}

void Owner::notifyAgain()
{
    send(lastNotify.requestor, lastNotify);
    sync();
}

void Owner::comeBack()
{
    hangs = false;
    for (const auto &request : std::exchange(unanswered, {}))
        answer(request);
}

void Owner::handle(const xcb_generic_event_t &event)
{
    const auto type = event.response_type & 0x7f;
    if (type == XCB_SELECTION_REQUEST)
        answer(as<SelectionRequest>(event));
    else if (type == XCB_SELECTION_NOTIFY)
        saved = as<xcb_selection_notify_event_t>(event).property;
    else if (type == XCB_PROPERTY_NOTIFY &&
             as<xcb_property_notify_event_t>(event).state == XCB_PROPERTY_DELETE)
        sendChunk(as<xcb_property_notify_event_t>(event));
}

void Owner::answer(const SelectionRequest &request)
{
    const QByteArray target = name(request.target);
    asked.push_back(target);
    if (target != "TARGETS" && beforeAnswering)
        std::exchange(beforeAnswering, nullptr)();
    if (hangs) {
        unanswered.push_back(request);
        return;
    }
    const auto found =
        std::find_if(forms.begin(), forms.end(), [&](const auto &each) { return each.first == target; });
    const Form *form = found == forms.end() ? nullptr : &found->second;
    if (form && form->manner == Manner::ignore)
        return;
    const bool renamed = form && !form->notified.isEmpty();
    lastNotify = notify(request, put(request, target, form), renamed ? atom(form->notified) : request.target);
    if (afterAnswering)
        afterAnswering(target);
    if (form && form->manner == Manner::dieAfterHeader)
        die();
}

bool Owner::put(const SelectionRequest &request, const QByteArray &target, const Form *form)
{
    if (!form && target == "TARGETS") {
        std::vector<quint32> list = {atom("TIMESTAMP"), atom("TARGETS"), atom("MULTIPLE")};
        for (const auto &each : forms)
            list.push_back(atom(each.first));
        X11Client::put(request, "ATOM", 32, bytesOf(list));
    }
    if (!form || form->manner == Manner::refuse)
        return target == "TARGETS" && !form;
    if (form->manner == Manner::noType)
        return true; // claims to have answered
    if (form->manner == Manner::whole) {
        X11Client::put(request, form->type.isEmpty() ? target : form->type, form->format, form->bytes);
        return true;
    }
    watch(request.requestor);
    X11Client::put(request, "INCR", 32, bytesOf({form->announced}));
    if (form->manner == Manner::incremental)
        sendings.push_back({request, *form});
    return true;
}

void Owner::sendChunk(const xcb_property_notify_event_t &event)
{
    const auto found = std::find_if(sendings.begin(), sendings.end(), [&](const Sending &each) {
        return each.request.requestor == event.window && each.request.property == event.atom;
    });
    if (found == sendings.end())
        return;
    auto &[request, form, sent] = *found;
    const QByteArray chunk = form.bytes.mid(sent, form.chunk);
    X11Client::put(request, form.type.isEmpty() ? name(request.target) : form.type, 8, chunk);
    server->flush();
    sent += chunk.size();
    if (chunk.isEmpty()) {
        ++incrementalEnds;
        sendings.erase(found);
    }
}
