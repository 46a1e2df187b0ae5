#pragma once

namespace brimwatch::app {

/// The exit status of the program.
enum class ExitStatus {
    Success = 0,
    Failure = 1, ///< No display, or another Brimwatch that does not answer.
    UsageError = 2,
};

} // namespace brimwatch::app
