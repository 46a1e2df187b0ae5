#include "platform/linux/popover/layer_shell.h"

#include "platform/linux/popover/undecorated_window.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>

#include <wayland-client.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

namespace brimwatch::platform {

namespace {

// The protocol's tables (wlr-layer-shell-unstable-v1, version 4), as far as we speak it. The layout
// is libwayland's, which wants plain arrays.
// NOLINTBEGIN(cppcoreguidelines-avoid-c-arrays,cppcoreguidelines-interfaces-global-init,modernize-use-designated-initializers)
extern const wl_interface surfaceInterface;

const wl_interface *const noTypes[] = {nullptr, nullptr, nullptr, nullptr};
const wl_interface *const getSurfaceTypes[]
    = {&surfaceInterface, &wl_surface_interface, &wl_output_interface, nullptr, nullptr};

constexpr const char *shellName = "zwlr_layer_shell_v1";
constexpr std::uint32_t shellVersion = 4;

// libwayland's tables are not const all the way down.
const wl_interface **typesOf(const wl_interface *const *types)
{
    return const_cast<const wl_interface **>(
        types); // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

const wl_message shellRequests[] = {
    {"get_layer_surface", "no?ous", typesOf(getSurfaceTypes)}, {"destroy", "3", typesOf(noTypes)}};
const wl_interface shellInterface = {shellName, shellVersion, 2, shellRequests, 0, nullptr};

const wl_message surfaceRequests[] = {{"set_size", "uu", typesOf(noTypes)},
    {"set_anchor", "u", typesOf(noTypes)}, {"set_exclusive_zone", "i", typesOf(noTypes)},
    {"set_margin", "iiii", typesOf(noTypes)}, {"set_keyboard_interactivity", "u", typesOf(noTypes)},
    {"get_popup", "o", typesOf(noTypes)}, {"ack_configure", "u", typesOf(noTypes)},
    {"destroy", "", typesOf(noTypes)}, {"set_layer", "2u", typesOf(noTypes)}};
const wl_message surfaceEvents[]
    = {{"configure", "uuu", typesOf(noTypes)}, {"closed", "", typesOf(noTypes)}};
const wl_interface surfaceInterface
    = {"zwlr_layer_surface_v1", shellVersion, 9, surfaceRequests, 2, surfaceEvents};
// NOLINTEND(cppcoreguidelines-avoid-c-arrays,cppcoreguidelines-interfaces-global-init,modernize-use-designated-initializers)

enum ShellRequest : std::uint32_t { GetLayerSurface = 0 };
enum SurfaceRequest : std::uint32_t {
    SetSize = 0,
    SetAnchor = 1,
    SetExclusiveZone = 2,
    SetMargin = 3,
    SetKeyboardInteractivity = 4,
    AckConfigure = 6,
    Destroy = 7,
};
constexpr std::uint32_t overlayLayer = 3;
constexpr std::uint32_t exclusiveKeyboard = 1;

/// How long the toolkit's thread has to be done with the frames that were shown before a window
/// went, which takes it far less.
constexpr std::chrono::milliseconds leavingTime{250};
/// The same where the window is to be shown again, or ends: all the while nothing else goes on.
constexpr std::chrono::milliseconds shortestLeavingTime{10};

/// Looks for the layer shell among what the compositor announces.
struct Search {
    wl_proxy *shell = nullptr; ///< Bound to the registry's queue.

    static void found(void *data, wl_registry *registry, std::uint32_t name, const char *interface,
        std::uint32_t version)
    {
        auto *search = static_cast<Search *>(data);
        if (search->shell == nullptr && std::strcmp(interface, shellName) == 0)
            search->shell = static_cast<wl_proxy *>(
                wl_registry_bind(registry, name, &shellInterface, std::min(version, shellVersion)));
    }
    static void removed(void * /*data*/, wl_registry * /*registry*/, std::uint32_t /*name*/) { }
};
constexpr wl_registry_listener searchListener{
    .global = Search::found, .global_remove = Search::removed};

wl_display *toolkitsDisplay()
{
    if (QGuiApplication::platformName() != QLatin1StringView("wayland"))
        return nullptr;
    return static_cast<wl_display *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForIntegration("wl_display"));
}

/// What comes for our surfaces waits in a queue of its own while we wait for it: nothing of the
/// toolkit's runs meanwhile.
wl_event_queue *ownQueue()
{
    static wl_event_queue *const queue = wl_display_create_queue(toolkitsDisplay());
    return queue;
}

wl_proxy *bindShell()
{
    wl_display *display = toolkitsDisplay();
    if (display == nullptr)
        return nullptr;
    auto *wrapper = static_cast<wl_proxy *>(wl_proxy_create_wrapper(display));
    wl_proxy_set_queue(wrapper, ownQueue());
    wl_registry *registry = wl_display_get_registry(reinterpret_cast<wl_display *>(wrapper));
    wl_proxy_wrapper_destroy(wrapper);
    Search search;
    wl_registry_add_listener(registry, &searchListener, &search);
    wl_display_roundtrip_queue(display, ownQueue());
    wl_registry_destroy(registry);
    return search.shell;
}

/// Bound once; null without one.
wl_proxy *boundShell()
{
    static wl_proxy *const shell = bindShell();
    return shell;
}

template <typename... Arguments>
void request(wl_proxy *proxy, SurfaceRequest opcode, Arguments... arguments)
{
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the library's only way
    wl_proxy_marshal_flags(proxy, opcode, nullptr, wl_proxy_get_version(proxy), 0, arguments...);
}

} // namespace

struct LayerSurface::Listener {
    void (*configure)(void *, wl_proxy *, std::uint32_t, std::uint32_t, std::uint32_t);
    void (*closed)(void *, wl_proxy *);

    static void onConfigure(void *data, wl_proxy *proxy, std::uint32_t serial, std::uint32_t width,
        std::uint32_t height)
    {
        auto *surface = static_cast<LayerSurface *>(data);
        surface->m_configured = {static_cast<int>(width), static_cast<int>(height)};
        surface->m_isConfigured = true;
        request(proxy, AckConfigure, serial);
    }
    static void onClosed(void *data, wl_proxy *proxy)
    {
        auto *surface = static_cast<LayerSurface *>(data);
        // Not from within: it ends the proxy. By then another one may be shown.
        const auto tell = [surface, proxy] {
            if (surface->m_surface == proxy)
                Q_EMIT surface->closed();
        };
        QMetaObject::invokeMethod(surface, tell, Qt::QueuedConnection);
    }
};

LayerSurface::LayerSurface(QWindow &window)
    : m_window(window)
{
    m_leaving.setSingleShot(true);
    m_leaving.setInterval(leavingTime);
    connect(&m_leaving, &QTimer::timeout, this, &LayerSurface::hideAtOnce);
}

LayerSurface::~LayerSurface()
{
    hide();
    finishHiding();
}

bool LayerSurface::isOffered()
{
    return boundShell() != nullptr;
}

bool LayerSurface::show(QScreen *screen, const LayerPlace &place)
{
    finishHiding();
    m_window.setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    if (screen != nullptr)
        m_window.setScreen(screen);
    // Each time it shows it has a new surface, as one that has had a role takes it no second time.
    // Nothing is drawn on it before the event loop goes on.
    showUndecorated(m_window);
    if (!takeRole(screen, place)) {
        giveRoleBack();
        m_window.hide();
        return false;
    }
    if (!m_configured.isEmpty())
        m_window.resize(m_configured);
    return true;
}

bool LayerSurface::takeRole(QScreen *screen, const LayerPlace &place)
{
    wl_proxy *shell = boundShell();
    auto *native = QGuiApplication::platformNativeInterface();
    auto *surface
        = static_cast<wl_surface *>(native->nativeResourceForWindow("surface", &m_window));
    if (shell == nullptr || surface == nullptr)
        return false;
    auto *output = screen == nullptr
        ? nullptr
        : static_cast<wl_output *>(native->nativeResourceForScreen("output", screen));
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the library's only way
    m_surface = wl_proxy_marshal_flags(shell, GetLayerSurface, &surfaceInterface,
        wl_proxy_get_version(shell), 0, nullptr, surface, output, overlayLayer, "brimwatch");
    if (m_surface == nullptr)
        return false;
    m_configured = {};
    m_isConfigured = false;
    static Listener listener{.configure = Listener::onConfigure, .closed = Listener::onClosed};
    wl_proxy_add_listener(m_surface, reinterpret_cast<void (**)()>(&listener), this);
    const QSize size = place.size.expandedTo(QSize(0, 0));
    request(m_surface, SetSize, static_cast<std::uint32_t>(size.width()),
        static_cast<std::uint32_t>(size.height()));
    request(m_surface, SetAnchor, place.edges);
    request(m_surface, SetExclusiveZone, place.coversPanels ? -1 : 0);
    request(m_surface, SetMargin, place.margins.top(), place.margins.right(),
        place.margins.bottom(), place.margins.left());
    request(m_surface, SetKeyboardInteractivity, place.takesKeyboard ? exclusiveKeyboard : 0U);
    wl_surface_commit(surface);

    // One round trip brings the size; a compositor may take a second one to make it up.
    constexpr int mostRounds = 3;
    for (int round = 0; round < mostRounds && !m_isConfigured; ++round) {
        if (wl_display_roundtrip_queue(toolkitsDisplay(), ownQueue()) < 0)
            break;
    }
    // From now on the toolkit brings what comes for it.
    wl_proxy_set_queue(m_surface, nullptr);
    return m_isConfigured;
}

void LayerSurface::giveRoleBack()
{
    if (m_surface == nullptr)
        return;
    wl_proxy_marshal_flags(
        m_surface, Destroy, nullptr, wl_proxy_get_version(m_surface), WL_MARSHAL_FLAG_DESTROY);
    m_surface = nullptr;
    wl_display_flush(toolkitsDisplay());
}

void LayerSurface::hide()
{
    if (m_surface == nullptr)
        return;
    // A role goes before its surface. Hiding for the toolkit ends the surface, and sway (seen with
    // 1.7) can crash when an output goes with a layer whose surface is gone.
    giveRoleBack();
    m_leaving.start();
}

/// For who cannot wait.
void LayerSurface::finishHiding()
{
    if (!m_leaving.isActive())
        return;
    // No frame is shown any more: what was told of them is here after the round trip, and soon with
    // the toolkit's thread.
    wl_display_roundtrip_queue(toolkitsDisplay(), ownQueue());
    std::this_thread::sleep_for(shortestLeavingTime);
    m_leaving.stop();
    hideAtOnce();
}

void LayerSurface::hideAtOnce()
{
    m_window.hide();
    Q_EMIT gone();
}

bool compositorHasLayerShell()
{
    wl_display *display = wl_display_connect(nullptr);
    if (display == nullptr)
        return false;
    Search search;
    wl_registry *registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &searchListener, &search);
    wl_display_roundtrip(display);
    const bool found = search.shell != nullptr;
    if (search.shell != nullptr)
        wl_proxy_destroy(search.shell);
    wl_registry_destroy(registry);
    wl_display_disconnect(display);
    return found;
}

void leaveWindowsWithoutRoles()
{
    // Asked again at each frame, so it stays. Other programs of the toolkit that we start and that
    // have such windows too would see it.
    qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
}

} // namespace brimwatch::platform
