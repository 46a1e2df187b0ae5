#include "forecast/own_hours.h"

#include "forecast/kept_numbers.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace brimwatch::forecast {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using std::chrono::duration;
using std::chrono::hours;

namespace {

constexpr std::chrono::hours week{hoursOfWeek};

/// Calls `visit(hour, share)` for each hour of the week between two moments, with the share of that
/// hour which lies between them.
template <typename Visit> void visitHours(LocalTime from, LocalTime to, Visit visit)
{
    for (auto begin = from; begin < to;) {
        const auto end = std::min<LocalTime>(to, std::chrono::floor<hours>(begin) + 1h);
        visit(hourOfWeek(begin), duration<double>(end - begin) / 1h);
        begin = end;
    }
}

} // namespace

int hourOfWeek(LocalTime time)
{
    const auto hour = std::chrono::floor<hours>(time.time_since_epoch()).count() % hoursOfWeek;
    return static_cast<int>(hour < 0 ? hour + hoursOfWeek : hour);
}

void addUse(HoursOfWeek &sums, LocalTime from, LocalTime to, double used)
{
    // A longer gap than a week is none of a window; it must not take longer either.
    from = std::max<LocalTime>(from, to - week);
    const double perHour = used / (duration<double>(to - from) / 1h);
    visitHours(from, to, [&](int hour, double share) {
        sums.at(static_cast<std::size_t>(hour)) += perHour * share;
    });
}

void OwnHours::endWindow(LocalTime from, LocalTime to)
{
    from = std::max<LocalTime>(from, to - 2 * week);
    HoursOfWeek covered{};
    visitHours(from, to,
        [&](int hour, double share) { covered.at(static_cast<std::size_t>(hour)) += share; });
    const double fade = std::exp2(-1.0 / 3.0);
    for (std::size_t i = 0; i < hoursOfWeek; ++i) {
        m_use.at(i) = m_use.at(i) * fade + m_window.at(i);
        m_weight.at(i) = m_weight.at(i) * fade + covered.at(i);
    }
    m_weeks += std::max(0.0, duration<double>(to - from) / week);
    m_window.fill(0);
    smooth();
}

void OwnHours::smooth()
{
    constexpr std::size_t hoursOfDay = 24;
    HoursOfWeek mean{};
    std::array<double, hoursOfDay> meanOfDay{};
    for (std::size_t i = 0; i < hoursOfWeek; ++i) {
        mean.at(i) = m_weight.at(i) > 0 ? m_use.at(i) / m_weight.at(i) : 0.0;
        meanOfDay.at(i % hoursOfDay) += mean.at(i) / 7;
    }
    const double meanOfAll = std::accumulate(mean.begin(), mean.end(), 0.0) / hoursOfWeek;
    const double weight = std::accumulate(m_weight.begin(), m_weight.end(), 0.0) / hoursOfWeek;
    // A short history says more about the hour of the day than about the hour of the week.
    const double trust = weight / (weight + 1.5);
    for (std::size_t i = 0; i < hoursOfWeek; ++i) {
        const double smoothed = 0.25 * mean.at((i + hoursOfWeek - 1) % hoursOfWeek)
            + 0.5 * mean.at(i) + 0.25 * mean.at((i + 1) % hoursOfWeek);
        const double lean = 0.7 * meanOfDay.at(i % hoursOfDay) + 0.3 * meanOfAll;
        m_means.at(i) = trust * smoothed + (1 - trust) * lean;
        m_sums.at(i + 1) = m_sums.at(i) + m_means.at(i);
    }
}

double OwnHours::useUpTo(LocalTime time) const
{
    const auto since = time.time_since_epoch();
    const auto weeks = std::chrono::floor<duration<std::int64_t, std::ratio<604800>>>(since);
    const auto hour = static_cast<std::size_t>(hourOfWeek(time));
    const double part = duration<double>(since - std::chrono::floor<hours>(since)) / 1h;
    return static_cast<double>(weeks.count()) * m_sums.back() + m_sums.at(hour)
        + m_means.at(hour) * part;
}

double OwnHours::use(LocalTime from, LocalTime to) const
{
    return useUpTo(to) - useUpTo(from);
}

QJsonObject OwnHours::toJson() const
{
    return {{u"window"_s, keptNumbers(m_window)}, {u"use"_s, keptNumbers(m_use)},
        {u"weight"_s, keptNumbers(m_weight)}, {u"weeks"_s, m_weeks}};
}

std::optional<OwnHours> OwnHours::fromJson(const QJsonObject &json)
{
    OwnHours read;
    const auto weeks = keptNumber(json, "weeks"_L1, 0, longestKept);
    if (!weeks || !readNumbers(json, "window"_L1, 0, 1e3, read.m_window)
        || !readNumbers(json, "use"_L1, 0, 1e3, read.m_use)
        || !readNumbers(json, "weight"_L1, 0, 1e3, read.m_weight))
        return std::nullopt;
    read.m_weeks = *weeks;
    read.smooth();
    return read;
}

} // namespace brimwatch::forecast
