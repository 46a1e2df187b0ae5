#include "support/test_clock.h"

#include <algorithm>
#include <utility>

namespace brimwatch::test {

class TestClock::Timer final : public RepeatingTimer {
public:
    Timer(TestClock &clock, std::chrono::milliseconds interval, std::function<void()> action)
        : m_clock(clock)
        , m_interval(interval)
        , m_action(std::move(action))
        , m_next(clock.now().addMSecs(interval.count()))
    {
        note(QString());
    }
    ~Timer() override
    {
        std::erase(m_clock.m_timers, this);
        note(QStringLiteral("end of "));
    }
    Q_DISABLE_COPY_MOVE(Timer)

    std::chrono::milliseconds interval() const override { return m_interval; }
    const QDateTime &next() const { return m_next; }
    void move(std::chrono::milliseconds by) { m_next = m_next.addMSecs(by.count()); }

    void fire()
    {
        m_next = m_next.addMSecs(m_interval.count());
        // A copy: the action may replace this timer.
        const auto action = m_action;
        action();
    }

private:
    void note(const QString &event) const
    {
        const auto seconds = std::chrono::duration<double>(m_interval).count();
        if (m_clock.log != nullptr)
            m_clock.log->append(event + QStringLiteral("timer ") + QString::number(seconds));
    }

    TestClock &m_clock;
    std::chrono::milliseconds m_interval;
    std::function<void()> m_action;
    QDateTime m_next;
};

TestClock::TestClock(QDateTime now)
    : m_now(std::move(now))
{
}

TestClock::~TestClock() = default;

std::unique_ptr<RepeatingTimer> TestClock::every(
    std::chrono::duration<double> period, std::function<void()> action)
{
    auto timer = std::make_unique<Timer>(
        *this, std::chrono::duration_cast<std::chrono::milliseconds>(period), std::move(action));
    m_timers.push_back(timer.get());
    return timer;
}

void TestClock::advance(std::chrono::milliseconds by)
{
    const QDateTime end = m_now.addMSecs(by.count());
    for (;;) {
        const auto due = std::min_element(m_timers.begin(), m_timers.end(),
            [](const Timer *a, const Timer *b) { return a->next() < b->next(); });
        if (due == m_timers.end() || (*due)->next() > end)
            break;
        m_now = (*due)->next();
        (*due)->fire();
    }
    m_now = end;
}

void TestClock::setNow(const QDateTime &now)
{
    const std::chrono::milliseconds by(m_now.msecsTo(now));
    m_now = now;
    for (Timer *timer : m_timers)
        timer->move(by);
}

std::vector<std::chrono::milliseconds> TestClock::periods() const
{
    std::vector<std::chrono::milliseconds> periods;
    periods.reserve(m_timers.size());
    for (const Timer *timer : m_timers)
        periods.push_back(timer->interval());
    return periods;
}

} // namespace brimwatch::test
