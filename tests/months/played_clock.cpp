// Stands between the program and the C library, for all libraries of the process: LD_PRELOAD names
// it. It says how late it is, and ends each wait when that time has come.
#include "months/played_clock.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/select.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>

namespace {

using brimwatch::test::PlayedClock;

constexpr std::int64_t second = 1'000'000'000;
// How soon a wait notices that the test has moved the clock.
constexpr std::int64_t slice = 2'000'000;

const PlayedClock *played()
{
    static const PlayedClock *const clock = []() -> const PlayedClock * {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the first call comes before there are threads.
        const char *path = std::getenv("BRIMWATCH_PLAYED_CLOCK");
        const int file = path != nullptr ? ::open(path, O_RDONLY | O_CLOEXEC) : -1;
        if (file < 0)
            std::abort();
        void *const memory = ::mmap(nullptr, sizeof(PlayedClock), PROT_READ, MAP_SHARED, file, 0);
        ::close(file);
        if (memory == MAP_FAILED)
            std::abort();
        return static_cast<const PlayedClock *>(memory);
    }();
    return clock;
}

std::int64_t toNumber(const timespec &time)
{
    return time.tv_sec * second + time.tv_nsec;
}

timespec toTime(std::int64_t number)
{
    return {.tv_sec = number / second, .tv_nsec = number % second};
}

std::int64_t systemTime(clockid_t clock)
{
    timespec time{};
    ::syscall(SYS_clock_gettime, clock, &time);
    return toNumber(time);
}

/// What is added to that clock; nothing to those of processor time.
std::int64_t added(clockid_t clock)
{
    switch (clock) {
    case CLOCK_REALTIME:
    case CLOCK_REALTIME_COARSE:
    case CLOCK_BOOTTIME:
        return played()->awake + played()->asleep;
    case CLOCK_MONOTONIC:
    case CLOCK_MONOTONIC_COARSE:
    case CLOCK_MONOTONIC_RAW:
        return played()->awake;
    default:
        return 0;
    }
}

std::int64_t now(clockid_t clock)
{
    return systemTime(clock) + added(clock);
}

int waitFor(pollfd *files, nfds_t count, std::int64_t wait, const sigset_t *signals)
{
    constexpr std::size_t signalsSize = 8; // Of the kernel's set.
    if (wait < 0)
        return static_cast<int>(::syscall(SYS_ppoll, files, count, nullptr, signals, signalsSize));
    const std::int64_t end = now(CLOCK_MONOTONIC) + wait;
    for (;;) {
        const std::int64_t left = end - now(CLOCK_MONOTONIC);
        timespec time = toTime(std::clamp<std::int64_t>(left, 0, slice));
        const auto ready
            = static_cast<int>(::syscall(SYS_ppoll, files, count, &time, signals, signalsSize));
        if (ready != 0 || left <= slice)
            return ready;
    }
}

} // namespace

#pragma GCC visibility push(default)
extern "C" {

int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    if (const auto failed = ::syscall(SYS_clock_gettime, clock, time); failed != 0)
        return static_cast<int>(failed);
    *time = toTime(toNumber(*time) + added(clock));
    return 0;
}

int gettimeofday(timeval *time, void * /*zone*/) noexcept
{
    const timespec fine = toTime(now(CLOCK_REALTIME));
    *time = {.tv_sec = fine.tv_sec, .tv_usec = fine.tv_nsec / 1000};
    return 0;
}

time_t time(time_t *result) noexcept
{
    const time_t seconds = now(CLOCK_REALTIME) / second;
    if (result != nullptr)
        *result = seconds;
    return seconds;
}

int poll(pollfd *files, nfds_t count, int milliseconds)
{
    return waitFor(files, count, milliseconds < 0 ? -1 : milliseconds * (second / 1000), nullptr);
}

int ppoll(pollfd *files, nfds_t count, const timespec *wait, const sigset_t *signals)
{
    return waitFor(files, count, wait == nullptr ? -1 : toNumber(*wait), signals);
}
}
#pragma GCC visibility pop
