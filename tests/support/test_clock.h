#pragma once

#include "core/clock.h"

#include <QDateTime>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

namespace brimwatch::test {

/// A clock that the test sets; its timers fire while it advances, in the order of their times.
class TestClock final : public Clock {
public:
    explicit TestClock(QDateTime now);
    ~TestClock() override;

    QDateTime now() const override { return m_now; }
    std::unique_ptr<RepeatingTimer> every(
        std::chrono::duration<double> period, std::function<void()> action) override;

    void advance(std::chrono::milliseconds by);
    /// The user sets the clock: the timers go on as they were.
    void setNow(const QDateTime &now);

    /// Where the start and the end of each timer is written down, if anywhere: "timer 60" and "end
    /// of timer 60".
    QStringList *log = nullptr;

    /// The periods of the timers that run, in the order in which they were started.
    std::vector<std::chrono::milliseconds> periods() const;

private:
    class Timer;
    QDateTime m_now;
    std::vector<Timer *> m_timers;
};

} // namespace brimwatch::test
