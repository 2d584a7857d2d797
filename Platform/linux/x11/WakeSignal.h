#pragma once

// Wakes whoever waits for a file descriptor to become readable. Any thread.
class WakeSignal {
public:
    WakeSignal();
    ~WakeSignal();
    WakeSignal(const WakeSignal &) = delete;
    WakeSignal &operator=(const WakeSignal &) = delete;

    void set();
    void clear();
    [[nodiscard]] int fileDescriptor() const { return descriptor; }

private:
    int descriptor;
};
