// A program that misbehaves on the clipboard in one way that its argument names; --owners and --requestors
// list the ways. Says "acted" on standard output when its fault has had its effect, and goes on until it is
// killed.

#include "tests/platform/pasteboard/HostileProgram.h"

#include <cstdio>
#include <cstring>
#include <functional>
#include <poll.h>

namespace {

using Request = SelectionRequest;

constexpr qsizetype mebibyte = 1048576;

// Owners. Each takes the clipboard; `onRequest` deals with a question, `onDelete` with a chunk that was
// taken.
struct OwnerFault {
    const char *name;
    std::function<void(HostileProgram &, const Request &)> onRequest;
    std::function<void(HostileProgram &)> onDelete;
};

void listText(HostileProgram &program, const Request &request)
{
    program.put(request, "ATOM", 32, program.atoms({"TARGETS", "UTF8_STRING", "text/html"}));
    program.notify(request);
}

// The list is told as it should be; what follows is not.
auto atContent(std::function<void(HostileProgram &, const Request &)> fault)
{
    return [fault = std::move(fault)](HostileProgram &program, const Request &request) {
        if (request.target == program.atom("TARGETS"))
            listText(program, request);
        else
            fault(program, request);
    };
}

void startChunks(HostileProgram &program, const Request &request, uint32_t announced)
{
    program.watch(request.requestor);
    program.put(request, "INCR", 32, bytesOf({announced}));
    program.notify(request);
}

auto chunksOf(qsizetype size, int actedAfter, int dieAfter = 0)
{
    return [=, sent = 0](HostileProgram &program) mutable {
        if (dieAfter > 0 && ++sent > dieAfter)
            program.actAndDie();
        program.put(program.lastRequest, "UTF8_STRING", 8, QByteArray(size, 'x'));
        program.actedOnce(++program.chunks >= actedAfter);
    };
}

void startLongText(HostileProgram &program, const Request &request)
{
    startChunks(program, request, 0);
}

void claimOften(HostileProgram &program, const Request &)
{
    for (; program.chunks < 1000; ++program.chunks) {
        program.claim();
        poll(nullptr, 0, 1);
    }
    program.actedOnce(true);
}

void sendUnaskedNotifications(HostileProgram &program, const Request &request)
{
    if (program.chunks++ > 0)
        return; // once, or they would answer what others are asked as well
    for (int i = 0; i < 20000; ++i) {
        Request unasked = request;
        unasked.property = program.atom("_NORVANE_ANSWER_" + QByteArray::number(i % 64));
        if (i < 200)
            program.put(unasked, "UTF8_STRING", 8, QByteArray(65536, 'x'));
        program.notify(unasked);
    }
    program.actedOnce(true);
}

void fillTheWindow(HostileProgram &program, const Request &request)
{
    for (int i = 0; i < 500; ++i) {
        Request odd = request;
        odd.property = program.atom("HOSTILE_" + QByteArray::number(i));
        program.put(odd, "STRING", 8, QByteArray(65536, 'x'));
    }
    program.actedOnce(true);
}

void listNames(HostileProgram &program, const Request &request)
{
    QByteArrayList names;
    names.reserve(1024);
    for (int i = 0; i < 1024; ++i)
        names.push_back(QByteArray(65500, 'n') + QByteArray::number(i)); // the longest that the protocol has
    program.put(request, "ATOM", 32, program.atoms(names));
    program.notify(request);
    program.actedOnce(true);
}

void listAMillion(HostileProgram &program, const Request &request)
{
    std::vector<uint32_t> targets(1000000);
    for (uint32_t i = 0; i < targets.size(); ++i)
        targets[i] = i + 1; // some are names, most are not
    program.put(request, "ATOM", 32, bytesOf(targets));
    program.notify(request);
    program.actedOnce(true);
}

void offerFarTooMuch(HostileProgram &program, const Request &request)
{
    if (request.target == program.atom("TARGETS")) {
        QByteArrayList names;
        names.reserve(20);
        for (int i = 0; i < 20; ++i)
            names.push_back("application/x-" + QByteArray::number(i));
        program.put(request, "ATOM", 32, program.atoms(names));
    } else {
        program.put(request, "STRING", 8, QByteArray((++program.chunks % 2 ? 7 : 15) * mebibyte, 'x'));
    }
    program.notify(request);
    program.actedOnce(program.chunks >= 10);
}

void listSomethingElseEachTime(HostileProgram &program, const Request &request)
{
    if (request.target == program.atom("TARGETS")) {
        const QByteArray number = QByteArray::number(program.chunks++);
        program.put(request, "ATOM", 32,
                    program.atoms({"UTF8_STRING", "application/x-" + number, "text/html"}));
        program.notify(request);
    } else { // claims anew in the middle of the read, and no longer has what it listed
        program.notify(request, false);
        program.actedOnce(program.chunks > 20);
        if (program.chunks <= 20)
            program.claim();
    }
}

void answerWithWrongTypes(HostileProgram &program, const Request &request)
{
    if (request.target == program.atom("TARGETS"))
        program.put(request, "STRING", 8, "seven b");
    else if (request.target == program.atom("UTF8_STRING"))
        program.put(request, "INTEGER", 32, QByteArray(12, '\xff'));
    else
        program.put(request, "INCR", 8, ""); // a header without a number
    program.notify(request);
    program.actedOnce(request.target != program.atom("TARGETS"));
}

void answerWithoutEnd(HostileProgram &program, const Request &request)
{
    startChunks(program, request, 0);
    for (int i = 0; i < 1000; ++i)
        program.put(request, "UTF8_STRING", 8, "");
    program.actedOnce(true);
}

void actSilently(HostileProgram &program, const Request &)
{
    program.actedOnce(true);
}

void actAndDie(HostileProgram &program, const Request &)
{
    program.actAndDie();
}

const std::vector<OwnerFault> &ownerFaults()
{
    static const std::vector<OwnerFault> faults = {
        {"hangs-at-list", actSilently, {}},
        {"hangs-at-content", atContent(actSilently), {}},
        {"hangs-after-header",
         atContent([](auto &program, auto &request) {
             startChunks(program, request, 100);
             program.actedOnce(true);
         }),
         {}},
        {"hangs-after-chunk", atContent(startLongText),
         [](auto &program) {
             if (program.chunks++ == 0)
                 program.put(program.lastRequest, "UTF8_STRING", 8, QByteArray(1000, 'x'));
             program.actedOnce(true);
         }},
        {"dies-at-list", actAndDie, {}},
        {"dies-at-content", atContent(actAndDie), {}},
        {"dies-after-header",
         atContent([](auto &program, auto &request) {
             startLongText(program, request);
             program.actAndDie();
         }),
         {}},
        {"dies-after-chunks", atContent(startLongText), chunksOf(mebibyte, 0, 3)},
        {"endless-chunks", atContent(startLongText), chunksOf(mebibyte, 100)},
        {"endless-bytes", atContent(startLongText), chunksOf(1, 2000)},
        {"empty-chunks", atContent(answerWithoutEnd), {}},
        {"announces-4-gib",
         atContent([](auto &program, auto &request) { startChunks(program, request, ~0U); }),
         chunksOf(100, 1)},
        {"wrong-types", answerWithWrongTypes, {}},
        {"million-targets", listAMillion, {}},
        {"endless-names", listNames, {}},
        {"far-too-much", offerFarTooMuch, {}},
        {"changing-list", listSomethingElseEachTime, {}},
        {"fills-our-window", fillTheWindow, {}},
        {"unasked-notifications", sendUnaskedNotifications, {}},
        {"storm-of-claims", claimOften, {}},
    };
    return faults;
}

[[noreturn]] void own(HostileProgram &program, const OwnerFault &fault)
{
    program.claim();
    auto onDelete = fault.onDelete;
    while (true) {
        const auto event = program.next();
        const auto type = event->response_type & 0x7f;
        if (type == XCB_SELECTION_REQUEST) {
            program.lastRequest = as<Request>(*event);
            fault.onRequest(program, program.lastRequest);
        } else if (type == XCB_PROPERTY_NOTIFY && onDelete) {
            const auto &notify = as<xcb_property_notify_event_t>(*event);
            if (notify.state == XCB_PROPERTY_DELETE && notify.atom == program.lastRequest.property)
                onDelete(program);
        }
    }
}

// Requestors. Each wants something of whoever owns the clipboard.
struct RequestorFault {
    const char *name;
    std::function<void(HostileProgram &)> act;
};

void askManyTimes(HostileProgram &program, const QByteArray &target, int times, int properties)
{
    for (int i = 0; i < times; ++i)
        program.ask(target, "HOSTILE_" + QByteArray::number(i % properties));
    program.awaitNotifications(times);
    program.actedOnce(true);
}

void askAndDie(HostileProgram &program, int chunks)
{
    program.watch(program.window());
    program.ask("UTF8_STRING", "HOSTILE");
    program.awaitNotifications(1);
    for (int i = 0; i <= chunks; ++i)
        program.takeProperty("HOSTILE");
    program.actAndDie();
}

void askForManyPairs(HostileProgram &program)
{
    std::vector<uint32_t> pairs(200000, program.atom("UTF8_STRING"));
    for (size_t i = 1; i < pairs.size(); i += 2)
        pairs[i] = program.atom("HOSTILE_" + QByteArray::number(i % 64));
    program.put("HOSTILE", "ATOM_PAIR", 32, bytesOf(pairs));
    program.ask("MULTIPLE", "HOSTILE");
    program.awaitNotifications(1);
    program.actedOnce(true);
}

// Events that only the server may send, as if from it.
void forgeEvents(HostileProgram &program)
{
    const xcb_window_t victim = program.holderOf("CLIPBOARD");
    for (int i = 0; i < 200; ++i) {
        const xcb_atom_t property = program.atom("_NORVANE_ANSWER_" + QByteArray::number(i % 64));
        for (const xcb_window_t requestor : {victim, program.root(), xcb_window_t(0x12345)})
            program.forgeRequest(victim, requestor, property);
        program.forgeClear(victim);
        program.forgeOwnerChange(victim);
    }
    program.sync();
    program.actedOnce(true);
}

const std::vector<RequestorFault> &requestorFaults()
{
    static const std::vector<RequestorFault> faults = {
        {"never-deletes", [](auto &program) { askManyTimes(program, "UTF8_STRING", 2000, 2000); }},
        {"never-deletes-latin1", [](auto &program) { askManyTimes(program, "STRING", 2000, 2000); }},
        {"reuses-its-property", [](auto &program) { askManyTimes(program, "UTF8_STRING", 3000, 1); }},
        {"dies-after-header", [](auto &program) { askAndDie(program, -1); }},
        {"dies-after-chunk", [](auto &program) { askAndDie(program, 1); }},
        {"many-pairs", askForManyPairs},
        {"forges-events", forgeEvents},
        {"never-reads",
         [](auto &program) {
             for (int i = 0; i < 20000; ++i)
                 program.ask("TARGETS", "HOSTILE");
             xcb_flush(program.raw());
             program.actedOnce(true);
         }},
    };
    return faults;
}

template <typename Faults>
int list(const Faults &faults)
{
    for (const auto &each : faults)
        std::puts(each.name);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const std::string role = argc > 1 ? argv[1] : "", name = argc > 2 ? argv[2] : "";
    if (role == "--owners")
        return list(ownerFaults());
    if (role == "--requestors")
        return list(requestorFaults());
    HostileProgram program;
    for (const OwnerFault &each : ownerFaults()) {
        if (role == "owner" && name == each.name)
            own(program, each);
    }
    for (const RequestorFault &each : requestorFaults()) {
        if (role == "requestor" && name == each.name) {
            each.act(program);
            poll(nullptr, 0, -1); // keeps its window and properties as they are
        }
    }
    std::fprintf(stderr, "No such fault: %s %s\n", role.c_str(), name.c_str());
    return 2;
}
