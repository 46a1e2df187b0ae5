#pragma once

#include <optional>
#include <string>

namespace brimwatch::platform {

/// What the program's bundle and the system say of themselves, UTF-8. Absent: nothing, or nothing
/// that is text.
struct NativeInformation {
    std::optional<std::string> version; ///< "0.1.0"
    std::optional<std::string> build; ///< "12"
    std::string systemVersion; ///< As the system words it: "Version 13.6 (Build 22G120)".
};

NativeInformation nativeInformation();

} // namespace brimwatch::platform
