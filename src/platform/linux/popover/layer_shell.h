#pragma once

#include <QtGlobal>

#include <cstdint>
#include <memory>

struct wl_display;
struct wl_event_queue;
struct wl_output;
struct wl_surface;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;

namespace brimwatch::platform {

/// What answers at the Wayland display that the environment names.
enum class Compositor : std::uint8_t { None, WithoutLayerShell, WithLayerShell };

/// Needs no application object; connects for the time of the question.
Compositor findCompositor();

/// The layer shell of the compositor, on the connection of Qt's wayland platform.
///
/// What comes for its surfaces waits in a queue of its own until roundTrip() or, once a surface has
/// been left to Qt, in Qt's: while we wait for ours, nothing of Qt's runs.
class LayerShell final {
public:
    /// Null where the application is on another platform, or the compositor has no layer shell. It
    /// ends before the application object does.
    static std::unique_ptr<LayerShell> bind();
    ~LayerShell();
    Q_DISABLE_COPY_MOVE(LayerShell)

    /// Makes the surface an overlay of that output, or of the one that the compositor chooses when
    /// `output` is null. Its events come with roundTrip(), until leaveToQt(). Null when it cannot.
    zwlr_layer_surface_v1 *makeOverlay(wl_surface *surface, wl_output *output) const;
    /// From now on Qt's event loop brings the surface's events.
    static void leaveToQt(zwlr_layer_surface_v1 *surface);
    /// Waits until the compositor has done what it was asked for, and brings the events of our
    /// queue. False when the connection has broken.
    bool roundTrip() const;
    void flush() const;

private:
    struct DestroyQueue {
        void operator()(wl_event_queue *queue) const;
    };
    using Queue = std::unique_ptr<wl_event_queue, DestroyQueue>;

    LayerShell(wl_display *display, Queue queue, zwlr_layer_shell_v1 *shell);

    wl_display *m_display; ///< Qt's.
    Queue m_queue;
    zwlr_layer_shell_v1 *m_shell;
};

} // namespace brimwatch::platform
