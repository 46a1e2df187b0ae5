#include "app/app_delegate.h"
#include "app/command_line.h"
#include "app/views_library.h"
#include "core/clock.h"
#include "discovery/daemon_discovery_service.h"
#include "platform/macos/mac_appearance.h"
#include "platform/macos/mac_application_presence.h"
#include "platform/macos/mac_information.h"
#include "platform/macos/mac_log.h"
#include "platform/macos/mac_login_item.h"
#include "platform/macos/mac_notifier.h"
#include "platform/macos/mac_opener.h"
#include "platform/macos/mac_pasteboard.h"
#include "platform/macos/mac_popover.h"
#include "platform/macos/mac_status_item.h"
#include "platform/macos/mac_symbols.h"
#include "service/diagnostics.h"
#include "service/launch_at_login_service.h"
#include "service/low_quota_alerts.h"
#include "service/quota_fetch_client.h"
#include "service/settings.h"

#include <QGuiApplication>
#include <QPointer>

#include <optional>

using namespace brimwatch;
using namespace Qt::Literals::StringLiterals;

namespace {

/// Everything that lives as long as the program, put together in the order in which one stands on
/// the other.
class Program {
public:
    Program()
        : m_settings(
              service::SettingsStore::UserDefaults{.domain = QStringLiteral(BRIMWATCH_IDENTIFIER)})
        , m_discovery(qEnvironmentVariable("HOME"))
        , m_fetchClient(m_discovery, m_clock)
        , m_launchAtLogin(m_loginItem)
        , m_alerts(m_clock, m_settings, m_notifier)
        , m_delegate(
              m_presence, [this] { return makeQuotaService(); },
              [this](service::QuotaService &service) { return makeController(service); })
    {
    }

    void launchWhenLaunched()
    {
        m_presence.whenLaunched([this] { m_delegate.applicationDidFinishLaunching(); });
    }

private:
    std::unique_ptr<service::QuotaService> makeQuotaService()
    {
        return std::make_unique<service::QuotaService>(
            service::QuotaService::Dependencies{.clock = m_clock,
                .fetching = m_fetchClient,
                .settings = m_settings,
                .alerts = &m_alerts,
                .launchAtLogin = &m_launchAtLogin});
    }

    std::unique_ptr<app::StatusBarController> makeController(service::QuotaService &quotaService)
    {
        m_diagnostics.emplace(
            quotaService, platform::macAppInformation(), qEnvironmentVariable("HOME"));
        auto factory = app::viewsFromLibrary({.quotaService = quotaService,
            .appearance = m_appearance,
            .symbols = m_symbols,
            .opener = m_opener,
            .pasteboard = m_pasteboard,
            .launchAtLogin = m_launchAtLogin,
            .diagnostics = *m_diagnostics,
            .terminate = [this] { m_presence.terminate(); },
            .close = [this] { closePopover(); }});
        auto statusItem = std::make_unique<platform::MacStatusItem>();
        // The controller lets the popover go before the item.
        auto popover = std::make_unique<platform::MacPopover>(
            std::move(factory), [item = statusItem.get()] { return item->button(); });
        m_popover = popover.get();
        auto controller = std::make_unique<app::StatusBarController>(
            app::StatusBarController::Dependencies{.quotaService = quotaService,
                .clock = m_clock,
                .statusItem = std::move(statusItem),
                .popover = std::move(popover),
                .symbolExists = [this](const QString &name) { return m_symbols.has(name); }});
        QObject::connect(&m_notifier, &platform::Notifier::activated, controller.get(),
            &app::StatusBarController::showPopover);
        return controller;
    }

    void closePopover()
    {
        if (m_popover != nullptr)
            m_popover->performClose();
    }

    SystemClock m_clock;
    service::SettingsStore m_settings;
    discovery::DaemonDiscoveryService m_discovery;
    service::QuotaFetchClient m_fetchClient;
    platform::MacAppearance m_appearance;
    platform::MacOpener m_opener;
    platform::MacLoginItem m_loginItem;
    service::LaunchAtLoginService m_launchAtLogin;
    platform::MacSymbols m_symbols;
    platform::MacNotifier m_notifier;
    service::LowQuotaAlerts m_alerts;
    platform::MacPasteboard m_pasteboard;
    std::optional<service::Diagnostics> m_diagnostics;
    platform::MacApplicationPresence m_presence;
    QPointer<platform::Popover> m_popover;
    app::AppDelegate m_delegate;
};

} // namespace

int main(int argc, char **argv)
{
    if (const auto answered = app::answerCommandLine(argc, argv))
        return *answered;
    platform::logToTheSystem();
    QCoreApplication::setApplicationName(u"Brimwatch"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(BRIMWATCH_VERSION));
    const QGuiApplication application(argc, argv);
    Program program;
    program.launchWhenLaunched();
    return QGuiApplication::exec();
}
