#pragma once

#include <QJsonObject>

#include <array>
#include <chrono>
#include <optional>

namespace brimwatch::forecast {

constexpr int hoursOfWeek = 168;
using HoursOfWeek = std::array<double, hoursOfWeek>;

/// A time on the user's clock: 9:00 is the hour in which the user begins to work, in any zone.
using LocalTime = std::chrono::local_seconds;

/// 0 to 167, counted from Thursday 0:00, the day on which the epoch began.
int hourOfWeek(LocalTime time);

/// Adds what was used between two moments, spread evenly over the hours between. Nothing when the
/// second is not later; of more than a week the last one counts.
void addUse(HoursOfWeek &sums, LocalTime from, LocalTime to, double used);

/// What the user's mean week uses in each of its hours, learned window by window. A week's weight
/// halves in three weeks.
class OwnHours {
public:
    /// Something of the window under way was used between two moments.
    void addUse(LocalTime from, LocalTime to, double used)
    {
        forecast::addUse(m_window, from, to, used);
    }
    /// The window under way is over, and becomes history for the time that it covered.
    void endWindow(LocalTime from, LocalTime to);

    /// Whether there is history enough.
    bool areKnown() const { return m_weeks >= 1.9; }
    /// What the mean week uses between two moments, as a share of the quota.
    double use(LocalTime from, LocalTime to) const;
    /// The mean use of each hour, smoothed.
    const HoursOfWeek &means() const { return m_means; }

    QJsonObject toJson() const;
    /// Absent when the object is not what toJson() writes.
    static std::optional<OwnHours> fromJson(const QJsonObject &json);

private:
    void smooth();
    double useUpTo(LocalTime time) const;

    HoursOfWeek m_window{}; ///< Used in the window under way.
    HoursOfWeek m_use{}; ///< Used in earlier windows; older ones count less.
    HoursOfWeek m_weight{}; ///< How often each hour was observed, weighted like m_use.
    double m_weeks = 0; ///< Covered so far.
    // Derived from those above.
    HoursOfWeek m_means{};
    std::array<double, hoursOfWeek + 1> m_sums{}; ///< Of the means before each hour.
};

} // namespace brimwatch::forecast
