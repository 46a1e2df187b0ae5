#pragma once

#include "forecast/outlook.h"
#include "forecast/own_hours.h"
#include "forecast/window_kind.h"

#include <QJsonObject>

#include <algorithm>
#include <chrono>
#include <deque>
#include <optional>

namespace brimwatch::forecast {

/// What one refresh tells of a bucket.
struct Reading {
    std::chrono::sys_seconds time;
    double left = 1; ///< 0 to 1; values outside count as the ends.
    std::chrono::sys_seconds reset;
    /// Of the user's clock from UTC, east is positive. It tells the hours of the week.
    std::chrono::seconds utcOffset{0};

    double used() const { return 1 - std::clamp(left, 0.0, 1.0); }
};

/// Follows one bucket reading by reading and tells whether it runs out before its reset: how the
/// use so far goes on, how the user's weeks went before, and how likely it is that the user has
/// stopped. It knows the past alone, needs no clock, and its memory is bounded.
class BucketForecast {
public:
    /// `kind` outlives the forecast.
    explicit BucketForecast(const WindowKind &kind);

    /// Takes the next reading. One that is older than the last, because the clock was set back, is
    /// taken too. Silent while less than 3 % of the window has passed or less than 2 % is used, and
    /// when the reset has passed or is further off than the window is long.
    Outlook see(const Reading &reading);

    /// Whether this reading begins a window: it is the first, the reset has moved by more than it
    /// jitters, or the provider has filled up.
    bool beginsWindow(const Reading &reading) const;
    /// When the window under way began; absent before the first reading. While nothing is used it
    /// moves along with the clock.
    std::optional<std::chrono::sys_seconds> windowStart() const;
    /// The time of the last reading; absent before the first.
    std::optional<std::chrono::sys_seconds> lastReading() const;
    const OwnHours &ownHours() const { return m_ownHours; }

    /// What has to be kept so that a forecast made from it goes on as this one.
    QJsonObject toJson() const;
    /// Absent when the object is not what toJson() writes.
    static std::optional<BucketForecast> fromJson(const WindowKind &kind, const QJsonObject &json);

private:
    using Time = std::chrono::sys_seconds;
    using Seconds = std::chrono::duration<double>;

    struct Sample {
        Time time;
        double used = 0;
    };

    /// The window under way.
    struct Window {
        Time start;
        Time reset;
        double used = 0; ///< At the last reading.
        Time lastReading;
        Time notBefore; ///< The last reading of the window before: this one began later.
        std::optional<Time> lastRise = {}; ///< When more had been used than before, last.
        std::optional<Time> ranOut = {};
        /// The use that the recent rate is taken from, the newest last; never empty. Neighbors are
        /// as far apart as `sampleGap`, and of a flat stretch there are the two ends.
        std::deque<Sample> samples;
        double steadied = 0; ///< The chance, steadied.
        std::optional<Time> judged = {}; ///< The last reading with a chance.
        bool isWarned = false; ///< RunsOut holds.
        bool wasWarned = false; ///< RunsOut was said at some time.
    };

    /// What is expected, from the last reading on. Rates are shares of the quota per second.
    struct Expectation {
        double sustained = 0;
        double recent = 0;
        /// How this week compares with the user's own weeks; absent where those are not known.
        std::optional<double> scale = {};
    };

    LocalTime local(Time time) const;
    void follow(const Reading &reading);
    void endWindow(Time now);
    void addSample(Sample sample);
    double usedAt(Time time) const;
    Expectation expect(Time now) const;
    double furtherUse(const Expectation &expectation, Time now, Seconds ahead) const;
    double chance(const Expectation &expectation, Time now) const;
    double chanceOfGoingOn(const Expectation &expectation, Time now) const;
    Verdict judge(Time now, double chance);
    Time runOut(const Expectation &expectation, Time now) const;

    const WindowKind *m_kind;
    std::chrono::seconds m_utcOffset{0}; ///< Of the last reading.
    std::optional<Window> m_window; ///< Absent before the first reading.
    std::deque<double> m_finalUses; ///< Of the last windows, the newest last.
    double m_smallestRise = 1; ///< Ever seen between two readings.
    OwnHours m_ownHours;
};

} // namespace brimwatch::forecast
