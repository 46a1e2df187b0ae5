#include "core/clock.h"

#include <QTimeZone>
#include <QTimer>

#include <algorithm>
#include <limits>

namespace brimwatch {
namespace {

class EventLoopTimer final : public RepeatingTimer {
public:
    EventLoopTimer(std::chrono::milliseconds interval, const std::function<void()> &action)
    {
        m_timer.setTimerType(Qt::CoarseTimer);
        m_timer.setInterval(interval);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, action);
        m_timer.start();
    }

    std::chrono::milliseconds interval() const override
    {
        return std::chrono::milliseconds(m_timer.interval());
    }

private:
    QTimer m_timer;
};

} // namespace

QDateTime inZoneOf(const QDateTime &other, const QDateTime &moment)
{
    switch (other.timeSpec()) {
    case Qt::LocalTime:
        return moment.toLocalTime();
    case Qt::UTC:
        return moment.toUTC();
    case Qt::OffsetFromUTC:
        return moment.toOffsetFromUtc(other.offsetFromUtc());
    case Qt::TimeZone:
        break;
    }
    return moment.toTimeZone(other.timeZone());
}

QDateTime SystemClock::now() const
{
    return QDateTime::currentDateTime();
}

std::unique_ptr<RepeatingTimer> SystemClock::every(
    std::chrono::duration<double> period, std::function<void()> action)
{
    // QTimer counts milliseconds in an int.
    constexpr double longest = std::numeric_limits<int>::max();
    const double milliseconds = std::clamp(period.count() * 1000.0, 1.0, longest);
    return std::make_unique<EventLoopTimer>(
        std::chrono::milliseconds(static_cast<int>(milliseconds)), action);
}

} // namespace brimwatch
