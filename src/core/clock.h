#pragma once

#include <QDateTime>

#include <chrono>
#include <functional>
#include <memory>

namespace brimwatch {

/// The same moment in the time zone of `other`.
QDateTime inZoneOf(const QDateTime &other, const QDateTime &moment);

/// A timer that runs until it is destroyed.
class RepeatingTimer {
public:
    RepeatingTimer() = default;
    virtual ~RepeatingTimer() = default;
    Q_DISABLE_COPY_MOVE(RepeatingTimer)

    /// The period, which may be shorter than the requested one: see Clock::every.
    virtual std::chrono::milliseconds interval() const = 0;
};

/// The current time, and timers. Everything that needs either is given a clock, so that a test can
/// set it.
class Clock {
public:
    Clock() = default;
    virtual ~Clock() = default;
    Q_DISABLE_COPY_MOVE(Clock)

    /// The current time in the user's time zone, which defines what "today" is.
    virtual QDateTime now() const = 0;

    /// Runs `action` on this thread's event loop once per period, first one period from now. A
    /// period longer than a timer can hold is shortened to that, about 24 days.
    virtual std::unique_ptr<RepeatingTimer> every(
        std::chrono::duration<double> period, std::function<void()> action)
        = 0;
};

/// The system's time and the event loop's timers. The timers are coarse: they may fire up to 5 %
/// early or late, so that the system can wake up once for several programs.
class SystemClock final : public Clock {
public:
    QDateTime now() const override;
    std::unique_ptr<RepeatingTimer> every(
        std::chrono::duration<double> period, std::function<void()> action) override;
};

} // namespace brimwatch
