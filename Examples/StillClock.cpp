// Loaded before other libraries, lets the time of day stand still, so that pictures show the same time in
// each run. Timers go on: they use the monotonic clock.

#include <ctime>

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr time_t still = 1'772'703'660; // 2026-03-05 09:41:00 UTC

} // namespace

// The names in the system's headers are reserved.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)

extern "C" [[gnu::visibility("default")]] int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    if (clock != CLOCK_REALTIME && clock != CLOCK_REALTIME_COARSE)
        return int(syscall(SYS_clock_gettime, clock, time));
    *time = {still, 0};
    return 0;
}

extern "C" [[gnu::visibility("default")]] int gettimeofday(timeval *time, void * /*zone*/) noexcept
{
    *time = {still, 0};
    return 0;
}

extern "C" [[gnu::visibility("default")]] time_t time(time_t *result) noexcept
{
    if (result)
        *result = still;
    return still;
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
