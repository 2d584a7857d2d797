#pragma once

#include "Platform/DesktopEntries.h"
#include "Platform/Pasteboard.h"

#include <map>

class PasteboardThread;
class QSocketNotifier;

// The CLIPBOARD selection of X11 as the general pasteboard. Main thread.
//
// X11 has no pasteboard: the program that copied holds the bytes. A thread of this class watches who owns the
// selection, reads a new owner's content at once, and serves what is written here. The published snapshot and
// its count live on the main thread, so that reading and writing them never waits.
//
// Own writes carry this program as their front application.
class X11Pasteboard final : public Pasteboard {
public:
    // Null, with a line in the log, when there is no X server or it lacks XFixes. `entries` must not be null;
    // it is asked from the thread.
    static std::unique_ptr<X11Pasteboard> create(std::shared_ptr<const DesktopEntries> entries);
    ~X11Pasteboard() override;

    [[nodiscard]] qint64 changeCount() const override { return published->changeCount; }
    [[nodiscard]] std::shared_ptr<const PasteboardSnapshot> snapshot() const override { return published; }
    qint64 write(std::vector<PasteboardItem> items) override;
    void setPolicy(const PasteboardPolicy &policy) override;
    void whenSettled(std::function<void()> callback) override;
    void readText(std::function<void(const QString &)> callback) override;

    // Makes PRIMARY ours too, with the text of the present snapshot: some terminals paste that one. Nothing
    // happens when there is no text. Confirmed by the X server when this returns, or given up waiting for
    // after 20 ms.
    void ownPrimary();

private:
    explicit X11Pasteboard(std::unique_ptr<PasteboardThread> started);

    void begin();
    void takeReports();
    void finishText(quint64 number, const QString &text);
    void finishSettled(quint64 number);
    void finishEverything();
    [[nodiscard]] QString publishedText() const;

    std::unique_ptr<PasteboardThread> thread;
    std::unique_ptr<QSocketNotifier> notifier;
    std::shared_ptr<const PasteboardSnapshot> published = std::make_shared<const PasteboardSnapshot>();
    qint64 writes = 0;
    bool begun = false;
    bool ended = false;
    quint64 lastNumber = 0;
    std::map<quint64, std::function<void(const QString &)>> textCallbacks;
    std::map<quint64, std::function<void()>> settledCallbacks;
};
