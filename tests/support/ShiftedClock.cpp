// SPDX-License-Identifier: GPL-3.0-or-later

// A clock that somebody has set, loaded into a program before the C library: while "clock-back" is
// in the folder PLINTHAR_TEST_TOOLS, it is a year ago. The clocks that nobody can set go on.

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr time_t year = 365 * 24 * 60 * 60;

bool isSetBack()
{
    const char *const folder = std::getenv("PLINTHAR_TEST_TOOLS");
    char path[4096];
    if (!folder || std::strlen(folder) + sizeof "/clock-back" > sizeof path)
        return false;
    std::strcpy(path, folder);
    std::strcat(path, "/clock-back");
    return ::access(path, F_OK) == 0;
}

} // namespace

extern "C" int clock_gettime(clockid_t clock, timespec *now) noexcept
{
    const auto result = ::syscall(SYS_clock_gettime, clock, now);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE) && isSetBack())
        now->tv_sec -= year;
    return static_cast<int>(result);
}

extern "C" int gettimeofday(timeval *now, void *) noexcept
{
    timespec exact = {};
    const int result = clock_gettime(CLOCK_REALTIME, &exact);
    now->tv_sec = exact.tv_sec;
    now->tv_usec = exact.tv_nsec / 1000;
    return result;
}

extern "C" time_t time(time_t *now) noexcept
{
    timespec exact = {};
    (void)clock_gettime(CLOCK_REALTIME, &exact);
    if (now)
        *now = exact.tv_sec;
    return exact.tv_sec;
}
