#pragma once

#include "app/status_bar_controller.h"
#include "service/quota_service.h"

#include <functional>
#include <memory>

namespace brimwatch::platform {
class ApplicationPresence;
}

namespace brimwatch::app {

/// Brings the program up once its event loop runs, and holds what it brought up: one service and
/// one controller.
class AppDelegate {
public:
    using MakeQuotaService = std::function<std::unique_ptr<service::QuotaService>()>;
    using MakeStatusBarController
        = std::function<std::unique_ptr<StatusBarController>(service::QuotaService &)>;

    /// `presence` outlives the delegate.
    AppDelegate(platform::ApplicationPresence &presence, MakeQuotaService makeQuotaService,
        MakeStatusBarController makeStatusBarController);

    /// First the policy, so that nothing shows where it should not; then the service, then the
    /// controller that observes it.
    void applicationDidFinishLaunching();

    /// Null until launching has finished.
    service::QuotaService *quotaService() const { return m_quotaService.get(); }
    StatusBarController *statusBarController() const { return m_statusBarController.get(); }

private:
    platform::ApplicationPresence &m_presence;
    MakeQuotaService m_makeQuotaService;
    MakeStatusBarController m_makeStatusBarController;
    // The controller observes the service: it goes first.
    std::unique_ptr<service::QuotaService> m_quotaService;
    std::unique_ptr<StatusBarController> m_statusBarController;
};

} // namespace brimwatch::app
