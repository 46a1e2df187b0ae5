#include "app/program.h"

#include "app/views_library.h"
#include "platform/application_presence.h"
#include "platform/notifier.h"
#include "platform/remote_control.h"
#include "platform/symbols.h"
#include "service/quota_service.h"

#include <utility>

namespace brimwatch::app {

Program::Program(Desktop desktop)
    : m_desktop(std::move(desktop))
    , m_home(qEnvironmentVariable("HOME"))
    , m_discovery(m_home)
    , m_fetchClient(m_discovery, m_clock)
    , m_launchAtLogin(m_desktop.loginItem)
    , m_alerts(m_clock, m_desktop.settings, m_desktop.notifier)
    , m_delegate(
          m_desktop.presence, [this] { return makeQuotaService(); },
          [this](service::QuotaService &service) { return makeController(service); })
{
}

void Program::refresh()
{
    if (auto *service = m_delegate.quotaService())
        service->refresh();
}

std::unique_ptr<service::QuotaService> Program::makeQuotaService()
{
    return std::make_unique<service::QuotaService>(
        service::QuotaService::Dependencies{.clock = m_clock,
            .fetching = m_fetchClient,
            .settings = m_desktop.settings,
            .alerts = &m_alerts,
            .launchAtLogin = &m_launchAtLogin});
}

std::unique_ptr<StatusBarController> Program::makeController(service::QuotaService &quotaService)
{
    m_diagnostics.emplace(quotaService, m_desktop.information, m_home);
    auto factory = viewsFromLibrary({.quotaService = quotaService,
        .appearance = m_desktop.appearance,
        .symbols = m_desktop.symbols,
        .opener = m_desktop.opener,
        .pasteboard = m_desktop.pasteboard,
        .launchAtLogin = m_launchAtLogin,
        .diagnostics = *m_diagnostics,
        .terminate = [this] { m_desktop.presence.terminate(); },
        .close = [this] { closePopover(); }});
    auto statusItem = m_desktop.makeStatusItem();
    auto popover = m_desktop.makePopover(std::move(factory));
    m_popover = popover.get();
    auto controller = std::make_unique<StatusBarController>(
        StatusBarController::Dependencies{.quotaService = quotaService,
            .clock = m_clock,
            .statusItem = std::move(statusItem),
            .popover = std::move(popover),
            .symbolExists = [this](const QString &name) { return m_desktop.symbols.has(name); }});
    QObject::connect(controller.get(), &StatusBarController::quitRequested, controller.get(),
        [this] { m_desktop.presence.terminate(); });
    QObject::connect(&m_desktop.notifier, &platform::Notifier::activated, controller.get(),
        &StatusBarController::showPopover);
    if (m_desktop.remoteControl != nullptr) {
        obey(*controller);
        m_remoteAccess.emplace(quotaService, *m_diagnostics, *m_desktop.remoteControl, m_home);
    }
    return controller;
}

/// Does for other programs what they ask.
void Program::obey(StatusBarController &controller)
{
    using platform::RemoteControl;
    const auto *remote = m_desktop.remoteControl;
    QObject::connect(
        remote, &RemoteControl::showRequested, &controller, &StatusBarController::showPopover);
    QObject::connect(remote, &RemoteControl::showSettingsRequested, &controller,
        &StatusBarController::showSettings);
    // Not the controller's own toggle: that one is a click's, and needs an item.
    QObject::connect(remote, &RemoteControl::toggleRequested, &controller, [this, &controller] {
        if (m_popover->isShown())
            m_popover->performClose();
        else
            controller.showPopover();
    });
    QObject::connect(remote, &RemoteControl::quitRequested, &controller,
        [this] { m_desktop.presence.terminate(); });
}

void Program::closePopover()
{
    if (m_popover != nullptr)
        m_popover->performClose();
}

} // namespace brimwatch::app
