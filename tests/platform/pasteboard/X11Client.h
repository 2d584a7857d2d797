#pragma once

#include "Platform/DesktopEntries.h"
#include "Platform/linux/x11/X11Pasteboard.h"

#include <QByteArray>
#include <QSocketNotifier>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <xcb/xcb.h>

// Runs the event loop until the condition holds; false when it does not in time.
bool await(const std::function<bool()> &condition, int milliseconds = 5000);

// Another program on the X server: a connection and a window of its own, run by the test's event loop.
class X11Client {
public:
    X11Client();
    virtual ~X11Client();

    [[nodiscard]] xcb_atom_t atom(const QByteArray &name);
    [[nodiscard]] QByteArray name(xcb_atom_t atom);
    [[nodiscard]] xcb_window_t window() const { return ownWindow; }
    [[nodiscard]] xcb_window_t root() const;
    [[nodiscard]] xcb_connection_t *raw() const { return connection; }
    [[nodiscard]] xcb_timestamp_t serverTime();

    void sync(); // until the server has dealt with all that was asked
    void die();  // closes the connection as it is

protected:
    virtual void handle(const xcb_generic_event_t &event) = 0;
    void pump();

    xcb_connection_t *connection;
    xcb_window_t ownWindow;

private:
    std::unique_ptr<QSocketNotifier> notifier;
    std::map<QByteArray, xcb_atom_t> atoms;
};

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

// Pastes on command.
class Requestor : public X11Client {
public:
    ~Requestor() override { die(); }

    struct Answer {
        QByteArray bytes;
        QByteArray type;
        int format = 0;
        bool incremental = false;
        qsizetype largestChunk = 0;
    };
    // Absent when it was refused. Fails the test when there is no answer.
    std::optional<Answer> convert(const QByteArray &target, const QByteArray &selection = "CLIPBOARD",
                                  xcb_timestamp_t time = XCB_CURRENT_TIME, bool withProperty = true);
    QByteArray text(const QByteArray &selection = "CLIPBOARD");
    QByteArrayList targets(const QByteArray &selection = "CLIPBOARD");

    // The parts, for transfers that go wrong.
    void ask(const QByteArray &target, const QByteArray &property, const QByteArray &selection = "CLIPBOARD",
             xcb_timestamp_t time = XCB_CURRENT_TIME);
    bool awaitNotify();
    Answer take(const QByteArray &property);
    Answer finish(const QByteArray &property); // takes the chunks of a transfer whose header was taken

    xcb_selection_notify_event_t notify{};
    int notifies = 0;

private:
    void handle(const xcb_generic_event_t &event) override;

    std::map<xcb_atom_t, int> newValues;
};

// Every window's class is its application.
class ClassNames final : public DesktopEntries {
public:
    [[nodiscard]] FrontApplication application(const WindowIdentity &window) const override
    {
        return {window.className, window.instanceName};
    }
    [[nodiscard]] std::optional<QString> iconName(const QString &) const override { return std::nullopt; }
};

// A pasteboard on the test's X server, with nothing on the clipboard at first.
class PasteboardTest : public ::testing::Test {
protected:
    PasteboardTest();

    // The default policy but for one field.
    template <typename Value>
    void setPolicy(Value PasteboardPolicy::*field, std::type_identity_t<Value> value)
    {
        PasteboardPolicy policy;
        policy.*field = std::move(value);
        pasteboard->setPolicy(policy);
    }

    // Waits for the reads under way, or the one that `change` starts.
    void settle();
    bool awaitChange(qint64 from, int milliseconds = 3000);
    [[nodiscard]] const std::vector<PasteboardItem> &items() const { return pasteboard->snapshot()->items; }
    [[nodiscard]] std::optional<QByteArray> bytes(QStringView type) const;
    [[nodiscard]] QStringList types() const; // of the first item
    [[nodiscard]] QString readText();

    std::unique_ptr<X11Pasteboard> pasteboard;
};

// Data that shows where it is wrong.
QByteArray pattern(qsizetype size);

inline PasteboardItem textItem(const QByteArray &text)
{
    return {{{QStringView(PasteboardType::plainText).toString(), text}}};
}
