#pragma once

#include "platform/login_item.h"
#include "service/launch_at_login.h"

namespace brimwatch::service {

/// Registers the program with the system as one to start at login, and publishes what the system
/// says of that. Its changes are the only thing that the program logs unasked, in the category
/// "LaunchAtLogin".
///
/// The state is read at construction, after each attempt to change it, and by refresh(); a change
/// that the user makes elsewhere is seen with the next of these. What is read is announced also
/// when it is what was known: a switch that was moved in vain goes back by it.
class LaunchAtLoginService final : public LaunchAtLogin {
    Q_OBJECT
    Q_PROPERTY(bool isEnabled READ isEnabled WRITE setEnabled NOTIFY changed FINAL)
    Q_PROPERTY(bool requiresApproval READ requiresApproval NOTIFY changed FINAL)

public:
    /// The login item outlives the service.
    explicit LaunchAtLoginService(platform::LoginItem &loginItem, QObject *parent = nullptr);

    /// Registered, whether or not the user still has to approve it.
    bool isEnabled() const override { return m_isEnabled; }
    /// Registered, and switched off in the system's settings until the user approves it there.
    bool requiresApproval() const override { return m_requiresApproval; }

    /// Reads the system's state.
    Q_INVOKABLE void refresh() override;
    /// Registers or unregisters, unless that is done already. A failure is logged and goes no
    /// further; the state is what the system says afterwards. If the user's approval is missing
    /// then, the system's settings open.
    void setEnabled(bool enabled) override;
    /// Shows the system's list of what it starts at login.
    Q_INVOKABLE void openSystemSettings() override;

private:
    void publishRequiresApproval(bool requiresApproval);
    void publishIsEnabled(bool isEnabled);

    platform::LoginItem &m_loginItem;
    bool m_isEnabled = false;
    bool m_requiresApproval = false;
};

} // namespace brimwatch::service
