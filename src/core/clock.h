#pragma once

#include <QDateTime>

#include <chrono>
#include <functional>
#include <memory>

namespace brimwatch {

/// A timer that goes on until it is destroyed.
class RepeatingTimer {
public:
    RepeatingTimer() = default;
    virtual ~RepeatingTimer() = default;
    RepeatingTimer(const RepeatingTimer &) = delete;
    RepeatingTimer &operator=(const RepeatingTimer &) = delete;
    RepeatingTimer(RepeatingTimer &&) = delete;
    RepeatingTimer &operator=(RepeatingTimer &&) = delete;

    /// The period in force, which may be shorter than the one asked for: see Clock::every.
    virtual std::chrono::milliseconds interval() const = 0;
};

/// The time, and what happens as it passes. Everything that needs either is given a clock, so that
/// a test can turn its hands.
class Clock {
public:
    Clock() = default;
    virtual ~Clock() = default;
    Clock(const Clock &) = delete;
    Clock &operator=(const Clock &) = delete;
    Clock(Clock &&) = delete;
    Clock &operator=(Clock &&) = delete;

    /// Now, in the user's time zone: what "today" means follows from it.
    virtual QDateTime now() const = 0;

    /// Runs `action` on this thread's event loop, the first time one period from now. Periods
    /// longer than a timer can hold (about 24 days) count as that long.
    virtual std::unique_ptr<RepeatingTimer> every(
        std::chrono::duration<double> period, std::function<void()> action)
        = 0;
};

/// The system's time and the event loop's timers. The timers are coarse: they may come up to 5 %
/// early or late, which lets the system wake up once for several programs.
class SystemClock final : public Clock {
public:
    QDateTime now() const override;
    std::unique_ptr<RepeatingTimer> every(
        std::chrono::duration<double> period, std::function<void()> action) override;
};

} // namespace brimwatch
