#include "app/app_delegate.h"
#include "app/command_line.h"
#include "app/no_panel_notice.h"
#include "app/remote_access.h"
#include "app/toolkit_setup.h"
#include "app/views_library.h"
#include "core/clock.h"
#include "discovery/daemon_discovery_service.h"
#include "platform/linux/application_icon.h"
#include "platform/linux/autostart_login_item.h"
#include "platform/linux/bus_service.h"
#include "platform/linux/desktop_appearance.h"
#include "platform/linux/desktop_notifier.h"
#include "platform/linux/desktop_opener.h"
#include "platform/linux/kwin_panels.h"
#include "platform/linux/label_painter.h"
#include "platform/linux/layer_popover.h"
#include "platform/linux/linux_app_information.h"
#include "platform/linux/only_instance.h"
#include "platform/linux/panel_status_item.h"
#include "platform/linux/qt_application_presence.h"
#include "platform/linux/qt_pasteboard.h"
#include "platform/linux/symbols/svg_symbols.h"
#include "platform/linux/window_popover.h"
#include "platform/linux/x11_popover.h"
#include "platform/linux/x_connection.h"
#include "platform/linux/xsettings.h"
#include "service/diagnostics.h"
#include "service/launch_at_login_service.h"
#include "service/low_quota_alerts.h"
#include "service/quota_fetch_client.h"
#include "service/settings.h"

#include <QDBusConnection>
#include <QGuiApplication>
#include <QPointer>
#include <QStandardPaths>

#include <cstdio>
#include <optional>
#include <utility>

using namespace brimwatch;
using namespace Qt::Literals::StringLiterals;

namespace {

// As large as servers show it, at twice the resolution.
constexpr int notificationIconSide = 96;

/// Everything that lives as long as the program, put together in the order in which one stands on
/// the other.
class Program {
public:
    Program(QDBusConnection bus, platform::RemoteControl &remoteControl)
        : m_remoteControl(remoteControl)
        , m_discovery(qEnvironmentVariable("HOME"))
        , m_fetchClient(m_discovery, m_clock)
        , m_bus(std::move(bus))
        , m_xSettings(m_xConnection)
        , m_appearance(m_bus, m_xConnection.isValid() ? &m_xSettings : nullptr,
              QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
              onX11() ? platform::TextScaling::Toolkits : platform::TextScaling::Ours)
        , m_loginItem({.configHome
                          = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
                          .program = QCoreApplication::applicationFilePath(),
                          .currentDesktops = platform::currentDesktops()},
              m_opener)
        , m_launchAtLogin(m_loginItem)
        , m_labelPainter(m_symbols)
        , m_notifier(m_bus,
              {.name = u"Brimwatch"_s,
                  .identifier = QStringLiteral(BRIMWATCH_IDENTIFIER),
                  .icon
                  = [this] { return platform::applicationIcon(m_symbols, notificationIconSide); }},
              platform::DesktopNotifier::Patience())
        , m_alerts(m_clock, m_settings, m_notifier)
        , m_delegate(
              m_presence, [this] { return makeQuotaService(); },
              [this](service::QuotaService &service) { return makeController(service); })
    {
    }

    void launch() { m_delegate.applicationDidFinishLaunching(); }

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
            quotaService, platform::linuxAppInformation(), qEnvironmentVariable("HOME"));
        auto factory = app::viewsFromLibrary({.quotaService = quotaService,
            .appearance = m_appearance,
            .symbols = m_symbols,
            .opener = m_opener,
            .pasteboard = m_pasteboard,
            .launchAtLogin = m_launchAtLogin,
            .diagnostics = *m_diagnostics,
            .terminate = [this] { m_presence.terminate(); },
            .close = [this] { closePopover(); }});
        auto popover = makePopover(std::move(factory));
        m_popover = popover.get();
        auto statusItem = std::make_unique<platform::PanelStatusItem>(
            m_xConnection, m_bus, m_labelPainter, m_appearance);
        m_noPanelNotice.emplace(m_clock, m_notifier, qEnvironmentVariable("XDG_RUNTIME_DIR"),
            platform::currentDesktops());
        QObject::connect(statusItem.get(), &platform::PanelStatusItem::registered,
            &*m_noPanelNotice, &app::NoPanelNotice::panelCame);
        auto controller = std::make_unique<app::StatusBarController>(
            app::StatusBarController::Dependencies{.quotaService = quotaService,
                .clock = m_clock,
                .statusItem = std::move(statusItem),
                .popover = std::move(popover),
                .symbolExists = [this](const QString &name) { return m_symbols.has(name); }});
        QObject::connect(controller.get(), &app::StatusBarController::quitRequested,
            controller.get(), [this] { m_presence.terminate(); });
        QObject::connect(&m_notifier, &platform::Notifier::activated, controller.get(),
            &app::StatusBarController::showPopover);
        obey(*controller);
        m_remoteAccess.emplace(
            quotaService, *m_diagnostics, m_remoteControl, qEnvironmentVariable("HOME"));
        return controller;
    }

    static bool onX11() { return QGuiApplication::platformName() == "xcb"_L1; }

    std::unique_ptr<platform::Popover> makePopover(platform::PopoverContentFactory factory)
    {
        if (platform::LayerSurface::isOffered())
            return std::make_unique<platform::LayerPopover>(
                std::move(factory), [this](const QSize &desktop) {
                    return platform::kwinPanels(desktop, m_xConnection);
                });
        if (!onX11())
            return std::make_unique<platform::WindowPopover>(std::move(factory));
        if (qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
            return std::make_unique<platform::XwaylandPopover>(std::move(factory));
        return std::make_unique<platform::X11Popover>(std::move(factory));
    }

    void closePopover()
    {
        if (m_popover != nullptr)
            m_popover->performClose();
    }

    /// Does for other programs what they ask.
    void obey(app::StatusBarController &controller)
    {
        using platform::RemoteControl;
        QObject::connect(&m_remoteControl, &RemoteControl::showRequested, &controller,
            &app::StatusBarController::showPopover);
        QObject::connect(&m_remoteControl, &RemoteControl::showSettingsRequested, &controller,
            &app::StatusBarController::showSettings);
        // Not the controller's own toggle: that one is a click's, and needs an item.
        QObject::connect(
            &m_remoteControl, &RemoteControl::toggleRequested, &controller, [this, &controller] {
                if (m_popover->isShown())
                    m_popover->performClose();
                else
                    controller.showPopover();
            });
        QObject::connect(&m_remoteControl, &RemoteControl::quitRequested, &controller,
            [this] { m_presence.terminate(); });
    }

    platform::RemoteControl &m_remoteControl;
    SystemClock m_clock;
    service::SettingsStore m_settings;
    discovery::DaemonDiscoveryService m_discovery;
    service::QuotaFetchClient m_fetchClient;
    QDBusConnection m_bus;
    platform::XConnection m_xConnection;
    platform::XSettings m_xSettings;
    platform::DesktopAppearance m_appearance;
    platform::DesktopOpener m_opener;
    platform::AutostartLoginItem m_loginItem;
    service::LaunchAtLoginService m_launchAtLogin;
    platform::SvgSymbols m_symbols;
    platform::LabelPainter m_labelPainter;
    platform::DesktopNotifier m_notifier;
    service::LowQuotaAlerts m_alerts;
    std::optional<app::NoPanelNotice> m_noPanelNotice;
    platform::QtPasteboard m_pasteboard;
    std::optional<service::Diagnostics> m_diagnostics;
    platform::QtApplicationPresence m_presence;
    QPointer<platform::Popover> m_popover;
    app::AppDelegate m_delegate;
    std::optional<app::RemoteAccess> m_remoteAccess; // Observes the delegate's service.
};

/// What a second start says as it ends, and its exit status.
int endSecondStart(platform::OnlyInstance::Standing standing)
{
    using Standing = platform::OnlyInstance::Standing;
    switch (standing) {
    case Standing::OtherSilent:
        std::fputs("brimwatch: already running, but it does not answer\n", stderr);
        return 1;
    case Standing::OtherLocked:
        std::fputs("brimwatch: already running; there is no session bus over which to ask it to "
                   "open its popover\n",
            stderr);
        return 0;
    case Standing::OtherShown:
    case Standing::First:
        break;
    }
    std::fputs("brimwatch: already running; its popover is open now\n", stderr);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (const auto answered = app::answerCommandLine(argc, argv))
        return *answered;
    if (!app::displayIsThere())
        return 1;
    const auto application = app::makeApplication(argc, argv);
    const auto bus = QDBusConnection::sessionBus();
    // On the bus before the name is ours, so that nobody finds the name without it.
    platform::BusService busService(bus, QCoreApplication::applicationVersion());
    platform::OnlyInstance onlyInstance(bus, qEnvironmentVariable("XDG_RUNTIME_DIR"));
    std::optional<Program> program;
    QObject::connect(&onlyInstance, &platform::OnlyInstance::decided, application.get(),
        [&](platform::OnlyInstance::Standing standing) {
            if (standing != platform::OnlyInstance::Standing::First) {
                QCoreApplication::exit(endSecondStart(standing));
                return;
            }
            program.emplace(bus, busService);
            program->launch();
        });
    onlyInstance.claim();
    return QGuiApplication::exec();
}
