#pragma once

#include "Platform/Accessibility.h"

#include <QObject>
#include <QRect>
#include <QThread>
#include <QTimer>
#include <atomic>
#include <memory>

class CaretWorker;

// The window in front as its server has it.
struct CaretWindow {
    qint64 pid = 0; // of its program; 0 when it does not say
    QRect area;     // its content, in the server's pixels on the whole desktop
};

// Carets over AT-SPI, the accessibility bus, asked on a thread of its own: other programs and the bus itself
// may be slow or hang, and setting up the connection has no time limit. It is there while carets are wanted;
// without a bus no caret is available.
class AtSpiCaret : public QObject, public Accessibility {
public:
    // `frontWindow` is asked on the main thread, at each request; absent on an empty desktop.
    explicit AtSpiCaret(std::function<std::optional<CaretWindow>()> frontWindow);
    ~AtSpiCaret() override;

    bool caretAvailable() const override { return shared->connected; }
    void setCaretWanted(bool wanted) override;
    void requestCaretRect(std::function<void(std::optional<QRectF>)> callback) override;
    void cancel() override;

private:
    // What both threads see.
    struct Shared {
        std::atomic<bool> connected{false};
        std::atomic<int> current{0}; // number of the request that is waited for
    };
    friend class CaretWorker;

    void learnFocus();
    void answer(int number, const std::optional<QRectF> &caret);

    std::function<std::optional<CaretWindow>()> frontWindow;
    std::function<void(std::optional<QRectF>)> pending;
    std::shared_ptr<Shared> shared = std::make_shared<Shared>();
    bool isWanted = false;
    QTimer watchdog;
    QThread thread;
    CaretWorker *worker; // ends with the thread
};
