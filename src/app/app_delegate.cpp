#include "app/app_delegate.h"

#include "app/state_description.h"
#include "platform/application_presence.h"
#include "platform/notifier.h"
#include "platform/remote_control.h"
#include "platform/symbols.h"
#include "views/views_library.h"

#include <utility>

namespace brimwatch::app {

AppDelegate::AppDelegate(
    service::SettingsStore &settings, platform::Desktop desktop, MakeViews makeViews)
    : m_desktop(std::move(desktop))
    , m_settings(settings)
    , m_makeViews(std::move(makeViews))
    , m_home(qEnvironmentVariable("HOME"))
    , m_discovery(m_home)
    , m_fetchClient(m_discovery, m_clock)
    , m_launchAtLogin(m_desktop.loginItem)
    , m_alerts(m_clock, m_settings, m_desktop.notifier,
          [this](const QString &text) { return redacted(text); })
    , m_forecastAlerts(
          m_settings, m_desktop.notifier, [this](const QString &text) { return redacted(text); })
    , m_forecasts(m_settings, forecast::historyFolder(),
          [this](const QString &text) { return redacted(text); })
{
}

void AppDelegate::applicationDidFinishLaunching()
{
    m_desktop.presence.becomeAccessory();
    m_desktop.presence.closeWindows();
    m_quotaService = makeQuotaService();
    m_diagnostics.emplace(*m_quotaService, m_desktop.information, m_home);
    m_statusBarController = makeStatusBarController();
    if (m_desktop.remoteControl != nullptr)
        connectRemoteControl();
    // What was shown before the suspend is old.
    if (m_desktop.whenResumed)
        m_desktop.whenResumed([service = QPointer(m_quotaService.get())] {
            if (service != nullptr)
                service->refresh();
        });
}

std::unique_ptr<service::QuotaService> AppDelegate::makeQuotaService()
{
    return std::make_unique<service::QuotaService>(
        service::QuotaService::Dependencies{.clock = m_clock,
            .fetching = m_fetchClient,
            .settings = m_settings,
            .alerts = &m_alerts,
            .launchAtLogin = &m_launchAtLogin,
            .forecasts = &m_forecasts,
            .forecastAlerts = &m_forecastAlerts});
}

std::unique_ptr<StatusBarController> AppDelegate::makeStatusBarController()
{
    auto views = m_makeViews({.quotaService = *m_quotaService,
        .appearance = m_desktop.appearance,
        .symbols = m_desktop.symbols,
        .opener = m_desktop.opener,
        .pasteboard = m_desktop.pasteboard,
        .launchAtLogin = m_launchAtLogin,
        .diagnostics = *m_diagnostics,
        .terminate = [this] { m_desktop.presence.terminate(); },
        .close = [this] { closePopover(); }});
    auto statusItem = m_desktop.makeStatusItem();
    auto popover = m_desktop.makePopover(std::move(views));
    m_popover = popover.get();
    auto controller = std::make_unique<StatusBarController>(
        StatusBarController::Dependencies{.quotaService = *m_quotaService,
            .clock = m_clock,
            .statusItem = std::move(statusItem),
            .popover = std::move(popover),
            .symbolExists = [this](const QString &name) { return m_desktop.symbols.has(name); },
            .home = m_home});
    QObject::connect(controller.get(), &StatusBarController::quitRequested, controller.get(),
        [this] { m_desktop.presence.terminate(); });
    QObject::connect(&m_desktop.notifier, &platform::Notifier::activated, controller.get(),
        &StatusBarController::showPopover);
    return controller;
}

/// Lets other programs see the state, and does what they ask.
void AppDelegate::connectRemoteControl()
{
    using platform::RemoteControl;
    auto *remote = m_desktop.remoteControl;
    auto *controller = m_statusBarController.get();
    QObject::connect(
        remote, &RemoteControl::showRequested, controller, &StatusBarController::showPopover);
    QObject::connect(remote, &RemoteControl::showSettingsRequested, controller,
        &StatusBarController::showSettings);
    // Deliberate: not togglePopover(), which answers a click on the item and needs one.
    QObject::connect(remote, &RemoteControl::toggleRequested, controller, [this, controller] {
        if (m_popover->isShown())
            m_popover->performClose();
        else
            controller->showPopover();
    });
    QObject::connect(remote, &RemoteControl::quitRequested, controller,
        [this] { m_desktop.presence.terminate(); });
    m_remoteAccess.emplace(*m_quotaService, *m_diagnostics, *remote, m_home);
}

QString AppDelegate::redacted(const QString &text) const
{
    // Alerts come after the first refresh, when the service is there.
    constexpr qsizetype longest = 1000;
    return redactorFor(*m_quotaService, m_home).line(text, longest);
}

void AppDelegate::closePopover()
{
    if (m_popover != nullptr)
        m_popover->performClose();
}

} // namespace brimwatch::app
