#pragma once

#include <optional>
#include <string>

namespace brimwatch::platform {

/// The program as one that the system starts at login. The system owns the answer: it is asked each
/// time and never kept. Main thread only.
class NativeLoginItem {
public:
    enum class Status { NotRegistered, Enabled, RequiresApproval, NotFound };

    Status status() const;
    /// What went wrong, for people, UTF-8; absent when nothing did.
    std::optional<std::string> registerItem();
    std::optional<std::string> unregisterItem();
    /// Shows the page of the system's settings with the login items.
    void openSystemSettings();
};

} // namespace brimwatch::platform
