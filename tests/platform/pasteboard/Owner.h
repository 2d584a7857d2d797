#pragma once

#include "tests/platform/pasteboard/X11Client.h"

#include <QByteArrayList>
#include <optional>

// Copies on command, and misbehaves on command.
class Owner : public LiveClient {
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
        int format = 8;
        QByteArray notified = {}; // the target that the answer names; empty: the one that was asked for
    };

    // In the order in which they are listed; an offer of TARGETS stands for the list itself.
    Owner &offer(const QByteArray &target, Form form);
    Owner &offer(const QByteArray &target, const QByteArray &bytes) { return offer(target, Form{bytes}); }
    void forgetOffers() { forms.clear(); }

    void letGo();
    void destroyWindow();
    // Asks the clipboard manager to keep these targets, or all; what it answered.
    bool save(const QByteArrayList &targets = {});
    void notifyAgain(); // of the last answer
    void comeBack();    // from hanging: answers what was asked meanwhile
    [[nodiscard]] bool wasAskedFor(const QByteArray &target) const { return asked.contains(target); }

    bool hangs = false;                    // answers nothing for now
    std::function<void()> beforeAnswering; // of anything but TARGETS
    std::function<void(const QByteArray &target)> afterAnswering;
    QByteArrayList asked;
    int incrementalEnds = 0;

private:
    struct Sending {
        SelectionRequest request;
        Form form;
        qsizetype sent = 0;
    };

    void handle(const xcb_generic_event_t &event) override;
    void answer(const SelectionRequest &request);
    [[nodiscard]] bool put(const SelectionRequest &request, const QByteArray &target, const Form *form);
    void sendChunk(const xcb_property_notify_event_t &event);

    std::vector<std::pair<QByteArray, Form>> forms;
    std::vector<Sending> sendings;
    std::vector<SelectionRequest> unanswered;
    xcb_selection_notify_event_t lastNotify{};
    std::optional<xcb_atom_t> saved; // the property of the manager's answer
};
