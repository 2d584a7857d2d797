#include "Platform/linux/x11/GatheredBytes.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr qsizetype mebibyte = 1024LL * 1024;
constexpr qsizetype worthHugePages = 4 * mebibyte; // two of them
constexpr qint64 slowCopy = 2'000'000;             // ns a mebibyte, which takes a tenth of that
constexpr qint64 maxLost = 10'000'000;             // ns

// Of this thread: that another one has its turn makes no copy slow.
qint64 processorTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return time.tv_sec * 1'000'000'000 + time.tv_nsec;
}

} // namespace

void GatheredBytes::expect(qsizetype size)
{
    bytes.reserve(size);
    if (hugePages && size >= worthHugePages)
        advise(MADV_HUGEPAGE);
}

void GatheredBytes::append(QByteArrayView chunk)
{
    const qsizetype before = bytes.size();
    const qsizetype after = before + chunk.size();
    if (after > bytes.capacity())
        expect(std::max(after, 2 * before)); // QByteArray::append would move all of it to a new place
    const qint64 start = processorTime();
    bytes.resize(after);
    std::memcpy(bytes.data() + before, chunk.data(), static_cast<size_t>(chunk.size()));
    // A huge page may have to be freed of others first, or be fetched from a virtual machine's host, which
    // takes far longer than it saves. After some of those, small pages do for the rest.
    const qint64 spent = processorTime() - start;
    lost += spent > slowCopy * (1 + chunk.size() / mebibyte) ? spent : 0;
    if (hugePages && lost > maxLost) {
        hugePages = false;
        advise(MADV_NOHUGEPAGE);
    }
}

// Says it of all pages that the bytes touch: what is one piece for the system can grow without being copied.
void GatheredBytes::advise(int advice)
{
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t before = reinterpret_cast<size_t>(bytes.constData()) % page;
    const size_t length = before + static_cast<size_t>(bytes.capacity());
    madvise(bytes.data() - before, (length + page - 1) / page * page, advice);
}

QByteArray GatheredBytes::take()
{
    if (bytes.capacity() - bytes.size() > bytes.size() / 4)
        bytes.squeeze();
    return std::exchange(bytes, {});
}
