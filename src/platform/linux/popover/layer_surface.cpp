#include "platform/linux/popover/layer_surface.h"

#include "platform/linux/popover/layer_shell.h"
#include "platform/linux/popover/undecorated_window.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>

#include <wayland-client.h>
#include <wlr-layer-shell-unstable-v1-client.h>

#include <chrono>
#include <thread>

namespace brimwatch::platform {

namespace {

static_assert(std::uint32_t{LayerPlace::Top} == ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP
    && std::uint32_t{LayerPlace::Bottom} == ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM
    && std::uint32_t{LayerPlace::Left} == ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT
    && std::uint32_t{LayerPlace::Right} == ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT);

/// How long Qt's thread has for the callbacks of the frames that were shown before a window is
/// hidden; it needs far less.
constexpr std::chrono::milliseconds leavingTime{250};
/// The same where the window is to be shown again, or is destroyed: nothing else runs meanwhile.
constexpr std::chrono::milliseconds shortestLeavingTime{10};

} // namespace

LayerSurface::LayerSurface(const LayerShell &shell, QWindow &window)
    : m_shell(shell)
    , m_window(window)
{
    m_leaving.setSingleShot(true);
    m_leaving.setInterval(leavingTime);
    connect(&m_leaving, &QTimer::timeout, this, &LayerSurface::hideFromQt);
}

LayerSurface::~LayerSurface()
{
    hide();
    finishHiding();
}

bool LayerSurface::show(QScreen *screen, const LayerPlace &place)
{
    finishHiding();
    m_window.setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    if (screen != nullptr)
        m_window.setScreen(screen);
    // Qt makes a new wl_surface each time that the window is shown, as it must: one that has had a
    // role cannot be given it again. Nothing is drawn on it before control returns to the event
    // loop.
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
    auto *native = QGuiApplication::platformNativeInterface();
    auto *surface
        = static_cast<wl_surface *>(native->nativeResourceForWindow("surface", &m_window));
    if (surface == nullptr)
        return false;
    auto *output = screen == nullptr
        ? nullptr
        : static_cast<wl_output *>(native->nativeResourceForScreen("output", screen));
    m_surface = m_shell.makeOverlay(surface, output);
    if (m_surface == nullptr)
        return false;
    m_configured = {};
    m_isConfigured = false;
    static constexpr zwlr_layer_surface_v1_listener listener{
        .configure = configured, .closed = closedByCompositor};
    zwlr_layer_surface_v1_add_listener(m_surface, &listener, this);
    requestPlace(place);
    wl_surface_commit(surface);

    // One round trip brings the size; some compositors need a second one to choose it.
    constexpr int mostRoundTrips = 3;
    for (int i = 0; i < mostRoundTrips && !m_isConfigured; ++i) {
        if (!m_shell.roundTrip())
            break;
    }
    LayerShell::leaveToQt(m_surface);
    return m_isConfigured;
}

void LayerSurface::requestPlace(const LayerPlace &place)
{
    const QSize size = place.size.expandedTo(QSize(0, 0));
    zwlr_layer_surface_v1_set_size(m_surface, static_cast<std::uint32_t>(size.width()),
        static_cast<std::uint32_t>(size.height()));
    zwlr_layer_surface_v1_set_anchor(m_surface, place.edges);
    zwlr_layer_surface_v1_set_exclusive_zone(m_surface, place.coversPanels ? -1 : 0);
    zwlr_layer_surface_v1_set_margin(m_surface, place.margins.top(), place.margins.right(),
        place.margins.bottom(), place.margins.left());
    zwlr_layer_surface_v1_set_keyboard_interactivity(m_surface,
        place.takesKeyboard ? ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE
                            : ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE);
}

void LayerSurface::configured(void *data, zwlr_layer_surface_v1 *surface, std::uint32_t serial,
    std::uint32_t width, std::uint32_t height)
{
    auto *self = static_cast<LayerSurface *>(data);
    self->m_configured = {static_cast<int>(width), static_cast<int>(height)};
    self->m_isConfigured = true;
    zwlr_layer_surface_v1_ack_configure(surface, serial);
}

void LayerSurface::closedByCompositor(void *data, zwlr_layer_surface_v1 *surface)
{
    auto *self = static_cast<LayerSurface *>(data);
    // Queued: the receiver destroys the surface, whose event this is. By then another one may be
    // shown.
    const auto announce = [self, surface] {
        if (self->m_surface == surface)
            Q_EMIT self->closed();
    };
    QMetaObject::invokeMethod(self, announce, Qt::QueuedConnection);
}

void LayerSurface::giveRoleBack()
{
    if (m_surface == nullptr)
        return;
    zwlr_layer_surface_v1_destroy(m_surface);
    m_surface = nullptr;
    m_shell.flush();
}

void LayerSurface::hide()
{
    if (m_surface == nullptr)
        return;
    // The role is given back before Qt destroys the wl_surface as it hides the window: sway (seen
    // with 1.7) can crash when an output goes that has a layer without a surface.
    giveRoleBack();
    m_leaving.start();
}

/// Hides the window for Qt without waiting for the timer.
void LayerSurface::finishHiding()
{
    if (!m_leaving.isActive())
        return;
    // No further frame is shown: the last callbacks have arrived after the round trip, and soon
    // Qt's thread has handled them.
    m_shell.roundTrip();
    std::this_thread::sleep_for(shortestLeavingTime);
    m_leaving.stop();
    hideFromQt();
}

void LayerSurface::hideFromQt()
{
    m_window.hide();
    Q_EMIT gone();
}

void leaveBypassingWindowsWithoutRole()
{
    // Qt reads the variable at each frame, so it stays set. Programs that we start inherit it; it
    // concerns only those on Qt that have such windows too.
    qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
}

} // namespace brimwatch::platform
