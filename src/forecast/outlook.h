#pragma once

#include <chrono>
#include <optional>

namespace brimwatch::forecast {

/// Whether a quota lasts until its reset.
enum class Verdict {
    Silent, ///< Too early to tell, or nothing is known of the window.
    Lasts,
    Close, ///< It may run out.
    RunsOut, ///< It is likely to run out before the reset.
    UsedUp, ///< Nothing is left: a fact, and no forecast.
};

/// The forecast for the rest of a window, made from one reading of its bucket.
struct Outlook {
    Verdict verdict = Verdict::Silent;
    std::optional<double> chance = {}; ///< Of running out before the reset; absent where silent.
    /// When it will have run out; present with RunsOut alone, and never after the reset.
    std::optional<std::chrono::sys_seconds> runOut = {};
    bool isFirstWarning = false; ///< RunsOut is said for the first time in this window.

    bool operator==(const Outlook &) const = default;
};

} // namespace brimwatch::forecast
