// SPDX-License-Identifier: Apache-2.0
// To be preloaded: the system clock of the process is late, by 18 hours or by SECONDS_SET_BACK. Its steady
// clock is not touched.

#include <dlfcn.h>
#include <stdlib.h>
#include <sys/time.h>
#include <time.h>

namespace {

time_t delay()
{
    const char* const seconds = ::getenv("SECONDS_SET_BACK");
    return seconds == nullptr ? 18 * 60 * 60 : ::atol(seconds);
}

} // namespace

extern "C" {

int clock_gettime(clockid_t clock, struct timespec* time) noexcept
{
    using Function = int (*)(clockid_t, struct timespec*);
    static const auto genuine = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "clock_gettime"));
    const int result = genuine(clock, time);
    if (clock == CLOCK_REALTIME && result == 0)
        time->tv_sec -= delay();
    return result;
}

time_t time(time_t* result) noexcept
{
    struct timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    if (result != nullptr)
        *result = now.tv_sec;
    return now.tv_sec;
}

int gettimeofday(struct timeval* now, void* /*zone*/) noexcept
{
    struct timespec time = {};
    const int result = clock_gettime(CLOCK_REALTIME, &time);
    now->tv_sec = time.tv_sec;
    now->tv_usec = time.tv_nsec / 1000;
    return result;
}

} // extern "C"
