#pragma once

#include "app/remote_access.h"
#include "app/status_bar_controller.h"
#include "core/clock.h"
#include "discovery/daemon_discovery_service.h"
#include "platform/desktop.h"
#include "service/diagnostics.h"
#include "service/forecast_alerts.h"
#include "service/launch_at_login_service.h"
#include "service/low_quota_alerts.h"
#include "service/quota_fetch_client.h"
#include "service/quota_forecasts.h"
#include "service/quota_service.h"

#include <QPointer>

#include <functional>
#include <memory>
#include <optional>

namespace brimwatch::service {
class SettingsStore;
}
namespace brimwatch::views {
struct PopoverDependencies;
}

namespace brimwatch::app {

/// The program, the same on every desktop: makes what lives as long as it, above all one service
/// and one controller.
class AppDelegate {
public:
    using MakeViews
        = std::function<platform::PopoverContentFactory(const views::PopoverDependencies &)>;

    /// The settings, and what `desktop` refers to, outlive the delegate.
    AppDelegate(service::SettingsStore &settings, platform::Desktop desktop, MakeViews makeViews);

    /// To be called once the event loop runs, or is about to. First the policy, so that nothing
    /// shows where it should not; then the service, then the controller that observes it.
    void applicationDidFinishLaunching();

    /// Null until launching has finished.
    service::QuotaService *quotaService() const { return m_quotaService.get(); }
    StatusBarController *statusBarController() const { return m_statusBarController.get(); }

private:
    std::unique_ptr<service::QuotaService> makeQuotaService();
    std::unique_ptr<StatusBarController> makeStatusBarController();
    void connectRemoteControl();
    void closePopover();
    QString redacted(const QString &text) const;

    platform::Desktop m_desktop;
    service::SettingsStore &m_settings;
    MakeViews m_makeViews;
    QString m_home;
    SystemClock m_clock;
    discovery::DaemonDiscoveryService m_discovery;
    service::QuotaFetchClient m_fetchClient;
    service::LaunchAtLoginService m_launchAtLogin;
    service::LowQuotaAlerts m_alerts;
    service::ForecastAlerts m_forecastAlerts;
    service::QuotaForecasts m_forecasts;
    // Each observes those above it.
    std::unique_ptr<service::QuotaService> m_quotaService;
    std::optional<service::Diagnostics> m_diagnostics;
    QPointer<platform::Popover> m_popover;
    std::unique_ptr<StatusBarController> m_statusBarController;
    std::optional<RemoteAccess> m_remoteAccess;
};

} // namespace brimwatch::app
