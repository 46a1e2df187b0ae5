#pragma once

#include "core/result.h"

#include <QString>

namespace brimwatch::platform {

/// Whether the system starts this program at login. The user may change that in the system's
/// settings at any time: it is asked each time and never kept.
class LoginItem {
public:
    enum class Status {
        notRegistered, ///< Nothing starts us.
        enabled, ///< The next login starts us.
        requiresApproval, ///< Registered, and switched off by the user in the system's settings.
        notFound, ///< The system has no place where we could be registered.
    };

    LoginItem() = default;
    virtual ~LoginItem() = default;
    Q_DISABLE_COPY_MOVE(LoginItem)

    virtual Status status() const = 0;
    /// Makes the system start this program at each login. Success does not mean that the user has
    /// approved it: see status(). The error is a sentence.
    virtual Result<void, QString> registerItem() = 0;
    /// The opposite; not being registered is no error.
    virtual Result<void, QString> unregisterItem() = 0;
    /// Shows the user where the system keeps its list. Fails silently.
    virtual void openSystemSettings() = 0;
};

} // namespace brimwatch::platform
