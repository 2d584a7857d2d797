#pragma once

#include "tests/platform/pasteboard/X11Client.h"

#include <QByteArrayList>
#include <optional>
#include <vector>

// Copies on command, and misbehaves on command.
class Owner : public X11Client {
public:
    struct Form {
        QByteArray bytes;
        enum class Manner {
            whole,
            incremental,
            refuse,
            ignore,
            noType,
            stallAfterHeader,
            dieAfterHeader
        } manner{};
        qsizetype chunk = 65536;
        quint32 announced = 0;
        QByteArray type = {}; // empty: the target's name
        quint8 format = 8;
        QByteArray notified = {}; // the target that the answer names; empty: the one that was asked for
    };

    ~Owner() override { die(); }

    // In the order in which they are listed.
    Owner &offer(const QByteArray &target, Form form);
    Owner &offer(const QByteArray &target, const QByteArray &bytes) { return offer(target, Form{bytes}); }
    void forgetOffers() { forms.clear(); }

    void claim(const QByteArray &selection = "CLIPBOARD");
    void letGo();
    void destroyWindow();
    // Asks the clipboard manager to keep these targets, or all; what it answered.
    bool save(const QByteArrayList &targets = {});
    void notifyAgain(); // of the last answer
    void comeBack();    // from hanging: answers what was asked meanwhile
    [[nodiscard]] bool wasAskedFor(const QByteArray &target) const { return asked.contains(target); }

    bool listsTargets = true;
    bool hangs = false;                    // answers nothing for now
    std::function<void()> beforeAnswering; // of anything but TARGETS
    std::function<void(const QByteArray &target)> afterAnswering;
    QByteArrayList asked;
    int chunksSent = 0;
    int incrementalEnds = 0;

private:
    struct Sending {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        QByteArray bytes;
        qsizetype chunk;
        qsizetype sent = 0;
    };

    void handle(const xcb_generic_event_t &event) override;
    void answer(const xcb_selection_request_event_t &request);
    [[nodiscard]] bool put(const xcb_selection_request_event_t &request, const QByteArray &target);
    void sendChunk(const xcb_property_notify_event_t &event);

    std::vector<std::pair<QByteArray, Form>> forms;
    std::vector<Sending> sendings;
    std::vector<xcb_selection_request_event_t> unanswered;
    xcb_selection_notify_event_t lastNotify{};
    std::optional<xcb_atom_t> saved; // the property of the manager's answer
};
