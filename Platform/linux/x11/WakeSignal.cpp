#include "Platform/linux/x11/WakeSignal.h"

#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

WakeSignal::WakeSignal() : descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

WakeSignal::~WakeSignal()
{
    close(descriptor);
}

void WakeSignal::set()
{
    const uint64_t one = 1;
    [[maybe_unused]] const auto written =
        write(descriptor, &one, sizeof one); // fails only when it is set already
}

void WakeSignal::clear()
{
    uint64_t count = 0;
    [[maybe_unused]] const auto taken = read(descriptor, &count, sizeof count);
}
