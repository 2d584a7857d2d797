#pragma once

#include "Platform/Pasteboard.h"
#include "Platform/linux/x11/ClipboardWatch.h"
#include "Platform/linux/x11/SelectionServer.h"
#include "Platform/linux/x11/WakeSignal.h"

#include <atomic>
#include <future>
#include <mutex>
#include <thread>
#include <variant>

// The thread that speaks with the X server for the clipboard. Every public operation is for the main thread
// and only leaves a note; what comes of it is reported back, in order, behind a file descriptor.
//
// The operations that say "briefly" wait until the thread has dealt with the note: a matter of the X server's
// answers, never of another program's, and of 20 ms at most.
class PasteboardThread {
public:
    // Null, with a line in the log, when there is no usable X server.
    static std::unique_ptr<PasteboardThread> start(std::shared_ptr<const DesktopEntries> entries);
    ~PasteboardThread();
    PasteboardThread(const PasteboardThread &) = delete;
    PasteboardThread &operator=(const PasteboardThread &) = delete;

    struct TextAnswer {
        quint64 number = 0;
        std::optional<QByteArray> text; // nullopt: it is in what was published last
    };
    struct Idle {
        quint64 number = 0;
    };
    struct Ended {}; // the X server is gone; nothing will follow
    using Report = std::variant<ForeignCopy, TextAnswer, Idle, Ended>;

    // Becomes readable when reports wait. Copies that were not taken in time are one report.
    [[nodiscard]] int reportDescriptor() const { return reportSignal.fileDescriptor(); }
    [[nodiscard]] std::vector<Report> takeReports();

    void setPolicy(const PasteboardPolicy &policy);
    // Reads what is on the clipboard already.
    void begin();
    // Claims the clipboard for our write of this number.
    void write(qint64 number, std::shared_ptr<const PasteboardSnapshot> content);
    // Claims PRIMARY for the text of a content, if it has any. Briefly.
    void ownPrimary(std::shared_ptr<const PasteboardSnapshot> content);
    // Reports a TextAnswer within 0.9 s. Briefly.
    void readText(quint64 number);
    // Reports Idle once nothing is being read. Briefly.
    void whenIdle(quint64 number);

private:
    using Task = std::function<void()>;

    PasteboardThread(std::unique_ptr<PasteboardConnection> connection,
                     std::shared_ptr<const DesktopEntries> entries);

    bool post(Task task);
    void postBriefly(Task task);
    void report(Report report);

    // On the thread.
    void run();
    void applyPolicy();
    void runTasks();
    bool handleEvents(int limit);
    void handle(const xcb_generic_event_t &event, TimePoint now);
    void handleRequest(const xcb_selection_request_event_t &request, TimePoint now);
    void handleProperty(const xcb_property_notify_event_t &event, TimePoint now);
    void catchUp();
    void claimClipboard(qint64 number, const PasteboardSnapshot &content);
    void claimPrimary(const PasteboardSnapshot &content);
    void waitForWork();
    void end();

    WakeSignal wakeSignal; // before whatever still signals when it is destroyed
    WakeSignal reportSignal;
    std::unique_ptr<PasteboardConnection> x;
    SelectionServer server;
    ClipboardWatch watch;

    std::mutex mutex; // of what follows
    std::vector<Task> tasks;
    std::optional<PasteboardPolicy> newPolicy;
    std::vector<Report> reports;
    bool ended = false;

    std::atomic<bool> stopping = false;
    std::promise<void> finished;
    std::thread thread;
};
