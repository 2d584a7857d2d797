#pragma once

#include "tests/platform/pasteboard/X11Client.h"

#include <QByteArrayList>
#include <map>
#include <optional>

// Pastes on command.
class Requestor : public LiveClient {
public:
    struct Answer {
        QByteArray bytes;
        QByteArray type;
        int format = 0;
        bool incremental = false;
        qsizetype largestChunk = 0;
    };
    // Absent when it was refused. Fails the test when there is no answer.
    std::optional<Answer> convert(const QByteArray &target, const QByteArray &selection = "CLIPBOARD",
                                  xcb_timestamp_t time = XCB_CURRENT_TIME);
    QByteArray text(const QByteArray &selection = "CLIPBOARD");
    QByteArrayList targets(const QByteArray &selection = "CLIPBOARD");

    // The parts, for transfers that go wrong.
    void ask(const QByteArray &target, const QByteArray &property, const QByteArray &selection = "CLIPBOARD",
             xcb_timestamp_t time = XCB_CURRENT_TIME);
    bool awaitNotify();
    Answer take(const QByteArray &property);
    Answer finish(const QByteArray &property); // takes the chunks of a transfer whose header was taken

    xcb_selection_notify_event_t answered{};

private:
    void handle(const xcb_generic_event_t &event) override;

    int notifies = 0;
    std::map<xcb_atom_t, int> newValues;
};
