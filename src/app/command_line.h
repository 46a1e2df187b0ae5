#pragma once

#include "app/exit_status.h"

#include <optional>

namespace brimwatch::app {

/// Answers what the command line asks: --version and --help, and a usage error for all that it does
/// not know. Absent where it asks nothing, and the program is to run.
std::optional<ExitStatus> answerCommandLine(int argc, const char *const *argv);

} // namespace brimwatch::app
