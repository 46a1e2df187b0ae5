#pragma once

#include "forecast/history.h"
#include "forecast/own_hours.h"
#include "forecast/window_kind.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace brimwatch::cli {

/// What was used in one window of a bucket.
struct WindowUsage {
    struct Point {
        std::chrono::sys_seconds time;
        double used = 0;
    };

    std::chrono::sys_seconds start; ///< When it began, as far as the resets tell.
    std::chrono::sys_seconds reset;
    double peak = 0; ///< The most that was used, 0 to 1.
    std::optional<std::chrono::sys_seconds> ranOut = {}; ///< When all was used.
    /// From the window's start to the last row, by time; between two points it is a straight line.
    /// Empty for all windows but the last.
    std::vector<Point> course = {};
};

/// How often the forecasts of one bucket, or of several, were right.
struct ForecastScore {
    struct Tenth {
        std::int64_t chances = 0;
        double said = 0; ///< The sum of the chances.
        std::int64_t ranOut = 0; ///< Chances that were said in windows that ran out.
    };

    int windows = 0; ///< Windows with a forecast that were followed to their end.
    int ranOut = 0;
    int warnedInTime = 0; ///< Of those that ran out.
    int warnedInVain = 0; ///< Of those that lasted.
    double squares = 0; ///< The sum of the windows' mean of (chance - outcome)².
    std::array<Tenth, 10> tenths = {};

    void add(const ForecastScore &other);
};

/// What the history tells of a bucket.
struct BucketUsage {
    QString id;
    /// "5h" or "weekly"; empty when the history does not tell, and there is nothing else then.
    QString window;
    QList<WindowUsage> windows = {}; ///< The last ones in which something was used, newest last.
    bool isUnderWay = false; ///< The last of them has not been reset yet.
    /// Used in each hour of the week, as forecast::hourOfWeek counts.
    forecast::HoursOfWeek hours = {};
    ForecastScore score = {};
};

/// So many windows are kept beside the one under way.
inline constexpr qsizetype mostWindowsBefore = 8;
/// Of windows that ended longer ago there are too few rows to score their forecasts.
inline constexpr std::chrono::hours scored = forecast::History::keptInFull;

/// When a warning still is of use: so long before it runs out.
std::chrono::seconds inTime(const forecast::WindowKind &kind);

/// Reads the history, with the forecasts that could be made from what had been seen until then.
/// Days and hours are those of the time zone of `now`. Buckets come in the order of their ids.
QList<BucketUsage> usageOf(const forecast::History &history, const QDateTime &now);

/// What was used at a moment: between two rows a straight line, after the last one as there.
double usedAt(const WindowUsage &window, std::chrono::sys_seconds time);

/// How much of the window has gone, 0 to 1: what would be used if all was used evenly.
double goneOf(const WindowUsage &window, const QDateTime &now);

} // namespace brimwatch::cli
