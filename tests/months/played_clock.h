#pragma once

#include <atomic>
#include <cstdint>

namespace brimwatch::test {

/// What a program with the played clock adds to the clocks of the system. It stands in the file
/// that BRIMWATCH_PLAYED_CLOCK names, which the program and the test both map.
///
/// Time goes on as fast as it does, so that what waits for an answer waits as long as ever; the
/// test skips over the time in which nothing happens.
struct PlayedClock {
    std::atomic<std::int64_t> awake; ///< Nanoseconds that the machine ran: all clocks.
    std::atomic<std::int64_t> asleep; ///< Nanoseconds of suspend: the time of day alone.
};

static_assert(std::atomic<std::int64_t>::is_always_lock_free, "two processes share it");

} // namespace brimwatch::test
