#pragma once

#include "cli/status.h"

namespace brimwatch::cli {

/// What brimwatchctl says to scripts when it ends; brimwatchctl(1) promises the numbers.
enum class ExitStatus {
    Success = 0,
    Critical = 1, ///< The lowest bucket of the label is critical.
    Offline = 2, ///< No program and no daemon answered, or the command failed.
    WrongUsage = 3,
};

ExitStatus exitStatusOf(const Status &status);

} // namespace brimwatch::cli
