#pragma once

#include <QtGlobal>
#include <atomic>
#include <memory>

// Tells the newest of an object's requests to a worker from those that it overtook, and from all of them once
// the object is gone. Requests are made on the owner's thread.
class NewestRequest {
public:
    NewestRequest() = default;
    ~NewestRequest() { ++*count; }
    NewestRequest(const NewestRequest &) = delete;
    NewestRequest &operator=(const NewestRequest &) = delete;

    // Makes a request. The result says on any thread whether it still is the newest; on the owner's thread
    // that lasts until the owner does something else.
    [[nodiscard]] auto next()
    {
        return [count = count, number = ++*count] { return *count == number; };
    }

    // Leaves no request the newest.
    void drop() { ++*count; }

private:
    const std::shared_ptr<std::atomic<quint64>> count = std::make_shared<std::atomic<quint64>>(0);
};
