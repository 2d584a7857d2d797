#pragma once

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>
#include <xcb/xcb.h>

// A client of the X server that can send whatever it likes, and that may wait: it runs in a process of its
// own. Ends the process when the server goes.
class HostileProgram {
public:
    using Event = std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>;

    HostileProgram();
    ~HostileProgram();
    HostileProgram(const HostileProgram &) = delete;
    HostileProgram &operator=(const HostileProgram &) = delete;

    [[nodiscard]] xcb_window_t window() const { return ownWindow; }
    [[nodiscard]] xcb_window_t root() const;
    [[nodiscard]] xcb_atom_t atom(const std::string &name);
    [[nodiscard]] std::string atoms(const std::vector<std::string> &names); // as bytes
    [[nodiscard]] static std::string bytesOf(const std::vector<uint32_t> &units);

    [[nodiscard]] Event next();
    void flush();
    void sync();
    void watch(xcb_window_t other); // its properties

    void actedOnce(bool now); // says so, the first time that it is true
    [[noreturn]] void actAndDie();

    // As an owner.
    void claim();
    void put(const xcb_selection_request_event_t &request, const std::string &type, uint8_t format,
             const std::string &bytes);
    void notify(const xcb_selection_request_event_t &request);
    void refuse(xcb_selection_request_event_t request);
    xcb_selection_request_event_t lastRequest{};
    int chunks = 0; // or whatever the fault counts

    // As a requestor.
    void ask(const std::string &target, const std::string &property);
    void awaitNotifications(int count);
    void takeProperty(const std::string &property); // and deletes it
    void setOwnProperty(const std::string &property, const std::string &type, const std::string &bytes);

    [[nodiscard]] xcb_window_t ownerOfClipboard();
    void forgeRequest(xcb_window_t victim, xcb_window_t requestor, xcb_atom_t property);
    void forgeClear(xcb_window_t victim);
    void forgeOwnerChange(xcb_window_t victim);

private:
    template <typename Sent>
    void send(xcb_window_t to, const Sent &event);

    xcb_connection_t *connection;
    xcb_window_t ownWindow;
    std::map<std::string, xcb_atom_t> known;
    bool acted = false;
};
