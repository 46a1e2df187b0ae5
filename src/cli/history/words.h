#pragma once

#include "cli/history/usage.h"

#include <QDateTime>
#include <QString>

namespace brimwatch::cli {

// What the history says in words, for terminals, pictures and pages.

/// What a bucket is called: its id as one line.
QString nameOf(const BucketUsage &usage);

/// "five hours" or "week"; empty when the window is not known.
QString windowName(const BucketUsage &usage);

/// The moment in the time zone of `now`.
QDateTime momentOf(std::chrono::sys_seconds time, const QDateTime &now);
/// "Nov 17, 2026 at 9:00 AM", as the user's locale has it.
QString momentText(std::chrono::sys_seconds time, const QDateTime &now);
/// A share as a whole percentage: "45%" for 0.45.
QString percentOf(double share);

/// "34% used, resets in 2h 3m, evenly used it would be 59%" of the window under way; "used up, full
/// again in 2h 3m".
QString courseWords(const WindowUsage &window, const QDateTime &now);

/// "60% used", "100% used, ran out 2h 3m before the reset".
QString windowWords(const WindowUsage &window);
/// "ran out 2h 3m before the reset"; empty where it did not.
QString ranOutWords(const WindowUsage &window);

/// "most is used on Mondays from 9:00 to 10:00"; empty where nothing was used.
QString hoursWords(const BucketUsage &usage);

/// The hour of the week as forecast::hourOfWeek counts: `day` is 1 for Monday to 7.
std::size_t hourIndex(int day, int hour);

} // namespace brimwatch::cli
