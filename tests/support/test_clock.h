#pragma once

#include "core/clock.h"

#include <QDateTime>

#include <functional>
#include <memory>
#include <vector>

namespace brimwatch::test {

/// A clock whose hands the test turns; its timers fire while they turn, in the order of their
/// times.
class TestClock final : public Clock {
public:
    explicit TestClock(QDateTime now);
    ~TestClock() override;

    QDateTime now() const override { return m_now; }
    std::unique_ptr<RepeatingTimer> every(
        std::chrono::duration<double> period, std::function<void()> action) override;

    void advance(std::chrono::milliseconds by);
    void setNow(const QDateTime &now) { m_now = now; }

    /// The periods of the timers that run, in the order in which they were started.
    std::vector<std::chrono::milliseconds> periods() const;

private:
    class Timer;
    QDateTime m_now;
    std::vector<Timer *> m_timers;
};

} // namespace brimwatch::test
