#include "app/command_line.h"
#include "app/no_panel_notice.h"
#include "app/program.h"
#include "app/replacement.h"
#include "app/toolkit_setup.h"
#include "core/clock.h"
#include "platform/linux/appearance/desktop_appearance.h"
#include "platform/linux/bus/bus_service.h"
#include "platform/linux/bus/single_instance.h"
#include "platform/linux/desktop/application_icon.h"
#include "platform/linux/desktop/autostart_login_item.h"
#include "platform/linux/desktop/desktop_notifier.h"
#include "platform/linux/desktop/desktop_opener.h"
#include "platform/linux/desktop/qt_application_presence.h"
#include "platform/linux/desktop/qt_pasteboard.h"
#include "platform/linux/desktop/resume_watch.h"
#include "platform/linux/linux_app_information.h"
#include "platform/linux/popover/layer_popover.h"
#include "platform/linux/popover/window_popover.h"
#include "platform/linux/popover/x11_popover.h"
#include "platform/linux/symbols/svg_symbols.h"
#include "platform/linux/tray/label_painter.h"
#include "platform/linux/tray/panel_status_item.h"
#include "platform/linux/x11/kwin_panels.h"
#include "platform/linux/x11/work_area.h"
#include "platform/linux/x11/x_connection.h"
#include "platform/linux/x11/xsettings.h"
#include "service/settings.h"

#include <QDBusConnection>
#include <QGuiApplication>
#include <QScreen>
#include <QStandardPaths>

#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

using namespace brimwatch;
using namespace Qt::Literals::StringLiterals;

namespace {

// As large as servers show it, at twice the resolution.
constexpr int notificationIconSide = 96;

bool onX11()
{
    return QGuiApplication::platformName() == "xcb"_L1;
}

/// The views of an upgraded program are not for us: the first click is the time to go on as it.
platform::PopoverContentFactory unlessReplaced(platform::PopoverContentFactory factory)
{
    return [factory = std::move(factory)]() -> std::unique_ptr<platform::PopoverContent> {
        if (!app::programWasReplaced(QCoreApplication::applicationFilePath()))
            return factory();
        // Whoever asked has an answer first.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [] { QCoreApplication::exit(app::replacementStatus); },
            Qt::QueuedConnection);
        return nullptr;
    };
}

/// The popover of this session. The connection outlives it.
std::unique_ptr<platform::Popover> makePopover(
    platform::PopoverContentFactory views, platform::XConnection &xConnection)
{
    auto factory = unlessReplaced(std::move(views));
    if (platform::LayerSurface::isOffered())
        return std::make_unique<platform::LayerPopover>(
            std::move(factory), [&xConnection](const QSize &desktop) {
                return platform::kwinPanels(desktop, xConnection);
            });
    // Compositors put everything together.
    const auto always = [] { return true; };
    if (!onX11())
        return std::make_unique<platform::WindowPopover>(std::move(factory),
            platform::WindowSurroundings{
                .workArea = [](const QScreen &screen) { return screen.availableGeometry(); },
                .isComposited = always});
    platform::WindowSurroundings surroundings{.workArea
        = [&xConnection](const QScreen &screen) { return platform::workArea(screen, xConnection); },
        .isComposited = [&xConnection] { return platform::isComposited(xConnection); }};
    if (!qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
        return std::make_unique<platform::X11Popover>(std::move(factory), std::move(surroundings));
    surroundings.isComposited = always;
    return std::make_unique<platform::XwaylandPopover>(std::move(factory), std::move(surroundings));
}

/// What Linux desktops bring, and the program on it.
class LinuxProgram {
public:
    LinuxProgram(QDBusConnection bus, platform::RemoteControl &remoteControl)
        : m_remoteControl(remoteControl)
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
        , m_labelPainter(m_symbols)
        , m_notifier(m_bus,
              {.name = u"Brimwatch"_s,
                  .identifier = QStringLiteral(BRIMWATCH_IDENTIFIER),
                  .icon = [] { return platform::applicationIcon(notificationIconSide); }},
              platform::DesktopNotifier::Timeouts())
        , m_program({.settings = m_settings,
              .appearance = m_appearance,
              .presence = m_presence,
              .loginItem = m_loginItem,
              .notifier = m_notifier,
              .opener = m_opener,
              .pasteboard = m_pasteboard,
              .symbols = m_symbols,
              .information = platform::linuxAppInformation(),
              .makeStatusItem = [this] { return makeStatusItem(); },
              .makePopover =
                  [this](platform::PopoverContentFactory views) {
                      return makePopover(std::move(views), m_xConnection);
                  },
              .remoteControl = &m_remoteControl})
    {
    }

    void launch()
    {
        m_program.launch();
        if (app::takesOverOpening())
            Q_EMIT m_remoteControl.showRequested();
        // The system bus is of no use to the item: it can wait until that is on its way.
        QMetaObject::invokeMethod(&m_notifier, [this] { watchForResume(); }, Qt::QueuedConnection);
    }

private:
    std::unique_ptr<platform::StatusItem> makeStatusItem()
    {
        auto item = std::make_unique<platform::PanelStatusItem>(
            m_xConnection, m_bus, m_labelPainter, m_appearance);
        m_noPanelNotice.emplace(m_clock, m_notifier, qEnvironmentVariable("XDG_RUNTIME_DIR"),
            platform::currentDesktops());
        QObject::connect(item.get(), &platform::PanelStatusItem::registered, &*m_noPanelNotice,
            &app::NoPanelNotice::panelCame);
        return item;
    }

    /// What was shown before a night in suspend is old.
    void watchForResume()
    {
        m_resumeWatch.emplace(QDBusConnection::systemBus());
        QObject::connect(&*m_resumeWatch, &platform::ResumeWatch::resumed, &*m_resumeWatch,
            [this] { m_program.refresh(); });
    }

    platform::RemoteControl &m_remoteControl;
    SystemClock m_clock;
    service::SettingsStore m_settings;
    QDBusConnection m_bus;
    platform::XConnection m_xConnection;
    platform::XSettings m_xSettings;
    platform::DesktopAppearance m_appearance;
    platform::DesktopOpener m_opener;
    platform::AutostartLoginItem m_loginItem;
    platform::SvgSymbols m_symbols;
    platform::LabelPainter m_labelPainter;
    platform::DesktopNotifier m_notifier;
    platform::QtPasteboard m_pasteboard;
    platform::QtApplicationPresence m_presence;
    std::optional<app::NoPanelNotice> m_noPanelNotice;
    app::Program m_program;
    std::optional<platform::ResumeWatch> m_resumeWatch;
};

/// What a second start says as it ends, and its exit status.
int endSecondStart(platform::SingleInstance::Outcome outcome)
{
    using Outcome = platform::SingleInstance::Outcome;
    switch (outcome) {
    case Outcome::OtherSilent:
        std::fputs("brimwatch: already running, but it does not answer\n", stderr);
        return 1;
    case Outcome::OtherLocked:
        std::fputs("brimwatch: already running; there is no session bus over which to ask it to "
                   "open its popover\n",
            stderr);
        return 0;
    case Outcome::OtherShown:
    case Outcome::First:
        break;
    }
    std::fputs("brimwatch: already running; its popover is open now\n", stderr);
    return 0;
}

/// Until the program ends; sets the path of the program.
int run(int argc, char **argv, QString &path)
{
    const auto application = app::makeApplication(argc, argv);
    path = QCoreApplication::applicationFilePath();
    const auto bus = QDBusConnection::sessionBus();
    // On the bus before the name is ours, so that nobody finds the name without it.
    platform::BusService busService(bus, QCoreApplication::applicationVersion());
    platform::SingleInstance singleInstance(bus, qEnvironmentVariable("XDG_RUNTIME_DIR"));
    std::optional<LinuxProgram> program;
    QObject::connect(&singleInstance, &platform::SingleInstance::decided, application.get(),
        [&](platform::SingleInstance::Outcome outcome) {
            if (outcome != platform::SingleInstance::Outcome::First) {
                QCoreApplication::exit(endSecondStart(outcome));
                return;
            }
            program.emplace(bus, busService);
            program->launch();
        });
    singleInstance.claim();
    return QGuiApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    if (const auto answered = app::answerCommandLine(argc, argv))
        return *answered;
    if (!app::displayIsThere())
        return 1;
    QString path;
    const int status = run(argc, argv, path);
    if (status != app::replacementStatus)
        return status;
    app::continueAs(path);
    std::fputs("brimwatch: was upgraded while it ran, and cannot start the new program\n", stderr);
    return 1;
}
