#pragma once

#include <optional>

namespace brimwatch::app {

/// Answers what was asked on the command line. Absent when nothing was: the program goes on. Else
/// its exit status: 0 after
/// --version and --help, 2 after anything that it does not know.
std::optional<int> answerCommandLine(int argc, const char *const *argv);

} // namespace brimwatch::app
