#include "platform/linux/layer_shell.h"

#include "platform/linux/undecorated_window.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>

#include <wayland-client.h>

#include <algorithm>
#include <cstring>

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
    static void onClosed(void *data, wl_proxy * /*proxy*/)
    {
        auto *surface = static_cast<LayerSurface *>(data);
        QMetaObject::invokeMethod(surface, &LayerSurface::closed, Qt::QueuedConnection);
    }
};

LayerSurface::LayerSurface(QWindow &window)
    : m_window(window)
{
}

bool LayerSurface::isOffered()
{
    return boundShell() != nullptr;
}

std::unique_ptr<LayerSurface> LayerSurface::show(
    QWindow &window, QScreen *screen, const LayerPlace &place)
{
    wl_proxy *shell = boundShell();
    if (shell == nullptr)
        return nullptr;
    window.setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    if (screen != nullptr)
        window.setScreen(screen);
    window.create();
    auto *native = QGuiApplication::platformNativeInterface();
    auto *surface = static_cast<wl_surface *>(native->nativeResourceForWindow("surface", &window));
    auto *output = screen == nullptr
        ? nullptr
        : static_cast<wl_output *>(native->nativeResourceForScreen("output", screen));
    if (surface == nullptr)
        return nullptr;

    std::unique_ptr<LayerSurface> layer(new LayerSurface(window));
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the library's only way
    layer->m_surface = wl_proxy_marshal_flags(shell, GetLayerSurface, &surfaceInterface,
        wl_proxy_get_version(shell), 0, nullptr, surface, output, overlayLayer, "brimwatch");
    if (layer->m_surface == nullptr)
        return nullptr;
    static Listener listener{.configure = Listener::onConfigure, .closed = Listener::onClosed};
    wl_proxy_add_listener(layer->m_surface, reinterpret_cast<void (**)()>(&listener), layer.get());
    const QSize size = place.size.expandedTo(QSize(0, 0));
    request(layer->m_surface, SetSize, static_cast<std::uint32_t>(size.width()),
        static_cast<std::uint32_t>(size.height()));
    request(layer->m_surface, SetAnchor, place.edges);
    request(layer->m_surface, SetExclusiveZone, place.coversPanels ? -1 : 0);
    request(layer->m_surface, SetMargin, place.margins.top(), place.margins.right(),
        place.margins.bottom(), place.margins.left());
    request(
        layer->m_surface, SetKeyboardInteractivity, place.takesKeyboard ? exclusiveKeyboard : 0U);
    wl_surface_commit(surface);

    // One round trip brings the size; a compositor may take a second one to make it up.
    constexpr int mostRounds = 3;
    for (int round = 0; round < mostRounds && !layer->m_isConfigured; ++round) {
        if (wl_display_roundtrip_queue(toolkitsDisplay(), ownQueue()) < 0)
            break;
    }
    if (!layer->m_isConfigured)
        return nullptr;
    // From now on the toolkit brings what comes for it.
    wl_proxy_set_queue(layer->m_surface, nullptr);
    if (!layer->m_configured.isEmpty())
        window.resize(layer->m_configured);
    showUndecorated(window);
    return layer;
}

void LayerSurface::hide()
{
    // First, as a role goes before its surface. Hiding ends the surface, and sway (seen with 1.7)
    // can crash when an output goes with a layer whose surface is gone.
    if (m_surface != nullptr)
        wl_proxy_marshal_flags(
            m_surface, Destroy, nullptr, wl_proxy_get_version(m_surface), WL_MARSHAL_FLAG_DESTROY);
    m_surface = nullptr;
    m_window.hide();
}

LayerSurface::~LayerSurface()
{
    hide();
    // A surface that has had a role cannot take it again.
    m_window.destroy();
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
