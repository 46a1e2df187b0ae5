#include "platform/linux/popover/layer_shell.h"

#include <QGuiApplication>
#include <qpa/qplatformnativeinterface.h>

#include <wayland-client.h>
#include <wlr-layer-shell-unstable-v1-client.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace brimwatch::platform {

namespace {

constexpr std::uint32_t newestVersion = 4; // Of the interface description that we have.

/// The layer shell as a compositor announces it.
struct Announcement {
    bool isThere = false;
    std::uint32_t name = 0;
    std::uint32_t version = 0;

    static void add(void *data, wl_registry * /*registry*/, std::uint32_t name,
        const char *interface, std::uint32_t version)
    {
        if (std::strcmp(interface, zwlr_layer_shell_v1_interface.name) == 0)
            *static_cast<Announcement *>(data)
                = {.isThere = true, .name = name, .version = version};
    }
    static void remove(void * /*data*/, wl_registry * /*registry*/, std::uint32_t /*name*/) { }
};
constexpr wl_registry_listener registryListener{
    .global = Announcement::add, .global_remove = Announcement::remove};

wl_display *displayOfQt()
{
    if (QGuiApplication::platformName() != QLatin1StringView("wayland"))
        return nullptr;
    return static_cast<wl_display *>(
        QGuiApplication::platformNativeInterface()->nativeResourceForIntegration("wl_display"));
}

/// The registry of the display, its events in that queue.
wl_registry *registryIn(wl_event_queue *queue, wl_display *display)
{
    auto *wrapper = static_cast<wl_display *>(wl_proxy_create_wrapper(display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy *>(wrapper), queue);
    wl_registry *registry = wl_display_get_registry(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    return registry;
}

} // namespace

Compositor findCompositor()
{
    wl_display *display = wl_display_connect(nullptr);
    if (display == nullptr)
        return Compositor::None;
    Announcement announcement;
    wl_registry *registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &registryListener, &announcement);
    const bool hasAnswered = wl_display_roundtrip(display) >= 0;
    wl_registry_destroy(registry);
    wl_display_disconnect(display);
    if (!hasAnswered)
        return Compositor::None;
    return announcement.isThere ? Compositor::WithLayerShell : Compositor::WithoutLayerShell;
}

void LayerShell::DestroyQueue::operator()(wl_event_queue *queue) const
{
    wl_event_queue_destroy(queue);
}

std::unique_ptr<LayerShell> LayerShell::bind()
{
    wl_display *display = displayOfQt();
    if (display == nullptr)
        return nullptr;
    Queue queue(wl_display_create_queue(display));
    wl_registry *registry = registryIn(queue.get(), display);
    Announcement announcement;
    wl_registry_add_listener(registry, &registryListener, &announcement);
    wl_display_roundtrip_queue(display, queue.get());
    void *shell = nullptr;
    if (announcement.isThere)
        shell = wl_registry_bind(registry, announcement.name, &zwlr_layer_shell_v1_interface,
            std::min(announcement.version, newestVersion));
    wl_registry_destroy(registry);
    if (shell == nullptr)
        return nullptr;
    return std::unique_ptr<LayerShell>(
        new LayerShell(display, std::move(queue), static_cast<zwlr_layer_shell_v1 *>(shell)));
}

LayerShell::LayerShell(wl_display *display, Queue queue, zwlr_layer_shell_v1 *shell)
    : m_display(display)
    , m_queue(std::move(queue))
    , m_shell(shell)
{
}

LayerShell::~LayerShell()
{
    if (zwlr_layer_shell_v1_get_version(m_shell) >= ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION)
        zwlr_layer_shell_v1_destroy(m_shell);
    else
        wl_proxy_destroy(reinterpret_cast<wl_proxy *>(m_shell));
}

zwlr_layer_surface_v1 *LayerShell::makeOverlay(wl_surface *surface, wl_output *output) const
{
    return zwlr_layer_shell_v1_get_layer_surface(
        m_shell, surface, output, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "brimwatch");
}

void LayerShell::leaveToQt(zwlr_layer_surface_v1 *surface)
{
    wl_proxy_set_queue(reinterpret_cast<wl_proxy *>(surface), nullptr);
}

bool LayerShell::roundTrip() const
{
    return wl_display_roundtrip_queue(m_display, m_queue.get()) >= 0;
}

void LayerShell::flush() const
{
    wl_display_flush(m_display);
}

} // namespace brimwatch::platform
