#pragma once

#include <QStringView>

#include <chrono>

namespace brimwatch::forecast {

/// What differs between the two windows that are forecast. The numbers are those of a study with
/// simulated users, `./test forecast` measures what they achieve.
struct WindowKind {
    std::chrono::seconds length;
    std::chrono::seconds recent; ///< The time that the recent rate is taken from.
    std::chrono::seconds change; ///< In which the recent rate goes over into the sustained one.
    double priorWeight; ///< Of earlier windows beside this one, as a share of the length.
    double spread; ///< Of the use that is expected, relative to its mean.
    double spreadWithOwnHours;
    bool usersStop; ///< Who paused for a while often does not come back in this window.
    bool hasOwnHours; ///< It is long enough to know the hours of the week in which the user works.
    double warnAbove; ///< RunsOut begins when the smoothed chance is above this.
    double takeBackAt; ///< RunsOut ends when the smoothed chance falls to this.
    std::chrono::seconds steadying; ///< The time constant of that smoothing.
};

/// The kind of a window as the daemon names it, "5h" or "weekly"; null for any other.
const WindowKind *windowKind(QStringView window);

} // namespace brimwatch::forecast
