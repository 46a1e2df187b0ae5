#pragma once

#include <QString>

#include <optional>

namespace brimwatch::platform {

/// The program's version and the system that it runs on.
struct AppInformation {
    std::optional<QString> version = {}; ///< "0.1.0"; absent when unknown.
    std::optional<QString> build = {}; ///< The build number; absent without one.
    QString systemVersion; ///< The operating system and its version, in one line.
};

} // namespace brimwatch::platform
