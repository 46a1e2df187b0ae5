#pragma once

namespace brimwatch::app {

/// The exit status of the program, as its manual page (docs/man/brimwatch.1) says.
enum class ExitStatus {
    Success = 0,
    Failure = 1, ///< No display, or another Brimwatch that does not answer. Also a failed upgrade,
                 ///< and an output that cannot be written.
    UsageError = 2,
};

} // namespace brimwatch::app
