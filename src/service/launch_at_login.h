#pragma once

#include <QObject>

namespace brimwatch::service {

/// Whether the system starts us at login.
class LaunchAtLogin : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~LaunchAtLogin() override;

    /// Registered, whether or not the user still has to approve.
    virtual bool isEnabled() const = 0;
    /// Registered, but the user has to approve in the system's settings.
    virtual bool requiresApproval() const = 0;
    virtual void setEnabled(bool enabled) = 0;
    /// Asks the system anew.
    virtual void refresh() = 0;
    /// Opens the system's settings of what starts at login.
    virtual void openSystemSettings() = 0;

Q_SIGNALS:
    /// Just before isEnabled changes.
    void objectWillChange();
    /// Just after.
    void changed();
};

} // namespace brimwatch::service
