#include "platform/linux/session.h"

#include "platform/linux/popover/layer_popover.h"
#include "platform/linux/popover/layer_shell.h"
#include "platform/linux/popover/plasma_panels.h"
#include "platform/linux/popover/window_popover.h"
#include "platform/linux/popover/x11_popover.h"
#include "platform/linux/x11/kwin_panels.h"
#include "platform/linux/x11/work_area.h"
#include "platform/linux/x11/x_connection.h"

#include <QGuiApplication>
#include <QScreen>

#include <xcb/xcb.h>

#include <algorithm>
#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

bool xServerAnswers()
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers;
}

/// ":0.0" and ":0" are screens of one display.
QString x11Display()
{
    char *host = nullptr;
    int display = 0;
    int screen = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen) == 0)
        return {};
    const XcbPointer<char> owner(host);
    return QString::fromLocal8Bit(host) + u':' + QString::number(display);
}

QString waylandDisplay()
{
    return qEnvironmentVariable("WAYLAND_DISPLAY");
}

bool alwaysComposited()
{
    return true;
}

/// The room of panels that the compositor lets layers cover, at the edges of the desktop.
QMargins plasmaPanels(const QSize &desktop, XConnection &x)
{
    switch (plasmaVersion()) {
    case PlasmaVersion::Plasma5:
        return kwinPanels(desktop, x);
    case PlasmaVersion::Plasma6:
        return gapOfFloatingPanels();
    case PlasmaVersion::None:
        break;
    }
    return {};
}

} // namespace

SessionEnvironment SessionEnvironment::read()
{
    SessionEnvironment environment;
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        environment.chosenPlatform = qgetenv("QT_QPA_PLATFORM");
    const auto compositor
        = qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? Compositor::None : findCompositor();
    environment.hasWayland = compositor != Compositor::None;
    environment.hasLayerShell
        = environment.mayUseWayland() && compositor == Compositor::WithLayerShell;
    environment.hasX11 = !qEnvironmentVariableIsEmpty("DISPLAY")
        && (environment.hasLayerShell || xServerAnswers());
    return environment;
}

bool SessionEnvironment::mayUseWayland() const
{
    return hasWayland && (!chosenPlatform || chosenPlatform->startsWith("wayland"));
}

bool SessionEnvironment::isDisplayThere() const
{
    if (!chosenPlatform)
        return hasX11 || hasWayland;
    const auto plugins = chosenPlatform->split(';');
    return std::ranges::any_of(plugins, [this](const QByteArray &plugin) {
        if (plugin.startsWith("wayland"))
            return hasWayland;
        return plugin.startsWith("xcb") ? hasX11 : true;
    });
}

QByteArray SessionEnvironment::platformPlugins() const
{
    if (chosenPlatform)
        return {};
    // The popover has its place only where the program chooses it, which X11 allows, Xwayland
    // included, or through a layer shell.
    if (hasLayerShell)
        return "wayland;xcb";
    if (hasX11)
        return hasWayland ? "xcb;wayland" : "xcb";
    if (hasWayland)
        return "wayland";
    return {};
}

SessionKind sessionKind(
    const SessionEnvironment &environment, const QString &platformPlugin, bool isLayerShellBound)
{
    if (isLayerShellBound)
        return SessionKind::LayerShell;
    if (platformPlugin != "xcb"_L1)
        return SessionKind::PlainWindow;
    return environment.hasWayland ? SessionKind::Xwayland : SessionKind::X11;
}

Session::Session(const SessionEnvironment &environment)
    : m_layerShell(environment.hasLayerShell ? LayerShell::bind() : nullptr)
    , m_kind(sessionKind(environment, QGuiApplication::platformName(), m_layerShell != nullptr))
{
}

Session::~Session() = default;

TextScaling Session::textScaling() const
{
    switch (m_kind) {
    case SessionKind::X11:
    case SessionKind::Xwayland:
        return TextScaling::Qt;
    case SessionKind::LayerShell:
    case SessionKind::PlainWindow:
        break;
    }
    return TextScaling::Brimwatch;
}

QString Session::display() const
{
    const bool isX11 = m_kind == SessionKind::X11 || m_kind == SessionKind::Xwayland
        || waylandDisplay().isEmpty();
    return isX11 ? x11Display() : waylandDisplay();
}

bool Session::isOnDisplay(const QString &display)
{
    return !display.isEmpty() && (display == x11Display() || display == waylandDisplay());
}

std::unique_ptr<Popover> Session::makePopover(PopoverContentFactory factory, XConnection &x) const
{
    const auto areaOnX11 = [&x](const QScreen &screen) { return workArea(screen, x); };
    const auto areaForQt = [](const QScreen &screen) { return screen.availableGeometry(); };
    switch (m_kind) {
    case SessionKind::X11:
        return std::make_unique<X11Popover>(std::move(factory),
            WindowSurroundings{
                .workArea = areaOnX11, .isComposited = [&x] { return isComposited(x); }});
    case SessionKind::Xwayland:
        return std::make_unique<XwaylandPopover>(std::move(factory),
            WindowSurroundings{.workArea = areaOnX11, .isComposited = alwaysComposited});
    case SessionKind::LayerShell:
        return std::make_unique<LayerPopover>(*m_layerShell, std::move(factory),
            [&x](const QSize &desktop) { return plasmaPanels(desktop, x); });
    case SessionKind::PlainWindow:
        break;
    }
    return std::make_unique<WindowPopover>(std::move(factory),
        WindowSurroundings{.workArea = areaForQt, .isComposited = alwaysComposited});
}

} // namespace brimwatch::platform
