#pragma once

#include <string>

namespace brimwatch::platform {

enum class NativeLogLevel { Debug, Info, Error, Fault };

/// One line in the system's log, under the program's identifier and that category. Any thread.
void writeSystemLog(NativeLogLevel level, const std::string &category, const std::string &text);

} // namespace brimwatch::platform
