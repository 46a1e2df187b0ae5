#pragma once

#include <QString>

#include <optional>

namespace brimwatch::platform {

/// What the program can say of itself and of the system that it runs on.
struct AppInformation {
    std::optional<QString> version = {}; ///< "0.1.0"; absent: not known.
    std::optional<QString> build = {}; ///< The build's number; absent: it has none.
    QString systemVersion; ///< The operating system and its version, in one line.
};

} // namespace brimwatch::platform
