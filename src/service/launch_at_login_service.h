#pragma once

#include "platform/login_item.h"

#include <QObject>

namespace brimwatch::service {

/// Registers the program with the system as one to start at login, and publishes the system's
/// answer. Its changes are logged by default, in the category "LaunchAtLogin".
///
/// The state is read at construction, after each attempt to change it, and by refresh(); a change
/// that the user makes elsewhere is seen with the next of these. Each reading is announced, even of
/// an unchanged state, so that a switch goes back after a failed attempt.
class LaunchAtLoginService : public QObject {
    Q_OBJECT

public:
    /// The login item outlives the service.
    explicit LaunchAtLoginService(platform::LoginItem &loginItem, QObject *parent = nullptr);

    /// Registered, whether or not the user still has to approve it.
    bool isEnabled() const { return m_isEnabled; }
    /// Registered, but switched off in the system's settings until the user approves it there.
    bool requiresApproval() const { return m_requiresApproval; }

    /// Reads the system's state.
    void refresh();
    /// Registers or unregisters, unless that is done already. A failure is only logged, and the
    /// state is read again afterwards. If the user has to approve then, the system's settings open.
    void setEnabled(bool enabled);
    /// Opens the system's list of what it starts at login.
    void openSystemSettings();

Q_SIGNALS:
    /// Just before isEnabled or requiresApproval changes.
    void objectWillChange();
    /// Just after.
    void changed();

private:
    void publish(bool LaunchAtLoginService::*member, bool value);

    platform::LoginItem &m_loginItem;
    bool m_isEnabled = false;
    bool m_requiresApproval = false;
};

} // namespace brimwatch::service
