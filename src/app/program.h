#pragma once

#include "app/app_delegate.h"
#include "app/remote_access.h"
#include "core/clock.h"
#include "discovery/daemon_discovery_service.h"
#include "platform/app_information.h"
#include "platform/popover.h"
#include "platform/popover_content.h"
#include "platform/status_item.h"
#include "service/diagnostics.h"
#include "service/launch_at_login_service.h"
#include "service/low_quota_alerts.h"
#include "service/quota_fetch_client.h"
#include "service/settings.h"

#include <QPointer>

#include <functional>
#include <memory>
#include <optional>

namespace brimwatch::platform {
class Appearance;
class ApplicationPresence;
class LoginItem;
class Notifier;
class Opener;
class Pasteboard;
class RemoteControl;
class SymbolSource;
} // namespace brimwatch::platform

namespace brimwatch::app {

/// What a desktop brings to the program.
struct Desktop {
    service::SettingsStore &settings;
    platform::Appearance &appearance;
    platform::ApplicationPresence &presence;
    platform::LoginItem &loginItem;
    platform::Notifier &notifier;
    platform::Opener &opener;
    platform::Pasteboard &pasteboard;
    const platform::SymbolSource &symbols;
    platform::AppInformation information;
    std::function<std::unique_ptr<platform::StatusItem>()> makeStatusItem;
    /// Called once the item is made, and let go before it.
    std::function<std::unique_ptr<platform::Popover>(platform::PopoverContentFactory)> makePopover;
    /// Over which other programs ask; null where they cannot.
    platform::RemoteControl *remoteControl = nullptr;
};

/// The program, the same on every desktop: everything that lives as long as it, put together in the
/// order in which one stands on the other.
class Program {
public:
    /// What `desktop` refers to outlives the program.
    explicit Program(Desktop desktop);

    /// To be called once the event loop runs, or is about to.
    void launch() { m_delegate.applicationDidFinishLaunching(); }

    /// Asks the daemon now, unless that is under way.
    void refresh();

private:
    std::unique_ptr<service::QuotaService> makeQuotaService();
    std::unique_ptr<StatusBarController> makeController(service::QuotaService &quotaService);
    void obey(StatusBarController &controller);
    void closePopover();

    Desktop m_desktop;
    QString m_home;
    SystemClock m_clock;
    discovery::DaemonDiscoveryService m_discovery;
    service::QuotaFetchClient m_fetchClient;
    service::LaunchAtLoginService m_launchAtLogin;
    service::LowQuotaAlerts m_alerts;
    std::optional<service::Diagnostics> m_diagnostics;
    QPointer<platform::Popover> m_popover;
    AppDelegate m_delegate;
    std::optional<RemoteAccess> m_remoteAccess; // Observes the delegate's service.
};

} // namespace brimwatch::app
