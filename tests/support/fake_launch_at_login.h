#pragma once

#include "service/launch_at_login.h"

namespace brimwatch::test {

/// A system that starts us at login as it is told, or does not.
class FakeLaunchAtLogin : public service::LaunchAtLogin {
public:
    bool enabled = false;
    bool approval = false;
    bool refuses = false;
    int refreshed = 0;
    int settingsOpened = 0;

    bool isEnabled() const override { return enabled; }
    bool requiresApproval() const override { return approval; }
    void setEnabled(bool wanted) override { become(refuses ? enabled : wanted, approval); }
    void refresh() override { ++refreshed; }
    void openSystemSettings() override { ++settingsOpened; }

    /// The system says something else now.
    void become(bool nowEnabled, bool nowRequiresApproval)
    {
        Q_EMIT objectWillChange();
        enabled = nowEnabled;
        approval = nowRequiresApproval;
        Q_EMIT changed();
    }
};

} // namespace brimwatch::test
