// SPDX-License-Identifier: Apache-2.0
// A library to preload (LD_PRELOAD) that gives a process a system clock of its own: the real one, plus as
// many seconds as the 32-bit number in the file named by STEPPED_CLOCK says at the moment. Writing another
// number there steps the clock, as settimeofday() does for a whole machine. Other clocks are left alone.

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>

namespace {

using Offset = std::atomic<std::int32_t>;
static_assert(Offset::is_always_lock_free && sizeof(Offset) == sizeof(std::int32_t));

constexpr long nanoseconds_in_second = 1'000'000'000;

const Offset* map_offset()
{
    const char* const file = std::getenv("STEPPED_CLOCK");
    const int descriptor = file == nullptr ? -1 : ::open(file, O_RDONLY | O_CLOEXEC);
    void* const page =
        descriptor < 0 ? MAP_FAILED : ::mmap(nullptr, sizeof(Offset), PROT_READ, MAP_SHARED, descriptor, 0);
    if (page == MAP_FAILED) {
        std::perror("stepped_clock: cannot map the file that STEPPED_CLOCK names");
        std::_Exit(2);
    }
    ::close(descriptor);
    return static_cast<const Offset*>(page);
}

std::int32_t offset_seconds()
{
    static const Offset* const offset = map_offset();
    return offset->load();
}

int real_clock_gettime(clockid_t clock, timespec* time)
{
    using Function = int (*)(clockid_t, timespec*);
    static const auto function = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "clock_gettime"));
    return function(clock, time);
}

timespec stepped_time()
{
    timespec time{};
    real_clock_gettime(CLOCK_REALTIME, &time);
    time.tv_sec += offset_seconds();
    return time;
}

/// A deadline of the steady clock, so many nanoseconds from now.
timespec steady_deadline(std::int64_t nanoseconds)
{
    timespec time{};
    real_clock_gettime(CLOCK_MONOTONIC, &time);
    nanoseconds += time.tv_nsec;
    time.tv_sec += static_cast<time_t>(nanoseconds / nanoseconds_in_second);
    time.tv_nsec = static_cast<long>(nanoseconds % nanoseconds_in_second);
    return time;
}

std::int64_t nanoseconds_until(const timespec& deadline)
{
    const timespec now = stepped_time();
    return (static_cast<std::int64_t>(deadline.tv_sec) - now.tv_sec) * nanoseconds_in_second +
           deadline.tv_nsec - now.tv_nsec;
}

/// Shared by conditions whose addresses are alike, which then wake up without a reason now and then.
std::atomic<unsigned>& signals_of(const pthread_cond_t* condition)
{
    static std::array<std::atomic<unsigned>, 4096> signals;
    return signals[std::hash<const void*>()(condition) / alignof(std::max_align_t) % signals.size()];
}

using ConditionFunction = int (*)(pthread_cond_t*);

ConditionFunction real_condition_function(const char* name)
{
    return reinterpret_cast<ConditionFunction>(::dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const int result = real_clock_gettime(clock, time);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        time->tv_sec += offset_seconds();
    return result;
}

int gettimeofday(timeval* __restrict time, void* __restrict /*zone*/) noexcept
{
    const timespec now = stepped_time();
    time->tv_sec = now.tv_sec;
    time->tv_usec = static_cast<suseconds_t>(now.tv_nsec / 1000);
    return 0;
}

time_t time(time_t* result) noexcept
{
    const time_t now = stepped_time().tv_sec;
    if (result != nullptr)
        *result = now;
    return now;
}

/// The kernel looks at such a wait anew when its clock is stepped. Here the wait is cut into short ones;
/// between two of them a signal would be lost, so signals are counted.
int pthread_cond_timedwait(pthread_cond_t* __restrict condition, pthread_mutex_t* __restrict mutex,
                           const timespec* __restrict deadline)
{
    constexpr std::int64_t longest = nanoseconds_in_second / 20;
    const std::atomic<unsigned>& signals = signals_of(condition);
    const unsigned signals_before = signals;
    while (true) {
        const std::int64_t due = nanoseconds_until(*deadline);
        const timespec until = steady_deadline(std::clamp<std::int64_t>(due, 0, longest));
        const int result = ::pthread_cond_clockwait(condition, mutex, CLOCK_MONOTONIC, &until);
        if (result != ETIMEDOUT || due <= 0)
            return result;
        if (signals != signals_before)
            return 0;
    }
}

int pthread_cond_signal(pthread_cond_t* condition) noexcept
{
    static const ConditionFunction function = real_condition_function("pthread_cond_signal");
    ++signals_of(condition);
    return function(condition);
}

int pthread_cond_broadcast(pthread_cond_t* condition) noexcept
{
    static const ConditionFunction function = real_condition_function("pthread_cond_broadcast");
    ++signals_of(condition);
    return function(condition);
}

} // extern "C"
