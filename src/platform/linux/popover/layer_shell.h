#pragma once

#include "platform/linux/popover/layer_place.h"

#include <QObject>
#include <QSize>
#include <QTimer>

class QScreen;
class QWindow;
struct wl_proxy;

namespace brimwatch::platform {

/// The layer surface of one window: what makes it an overlay of the compositor's instead of an
/// ordinary window, whenever it is shown. The toolkit draws the window and brings its input.
///
/// It takes an application on the wayland platform, and leaveWindowsWithoutRoles() before.
class LayerSurface final : public QObject {
    Q_OBJECT

public:
    /// Whether the application is on a compositor that has a layer shell.
    static bool isOffered();
    /// The window outlives it.
    explicit LayerSurface(QWindow &window);
    ~LayerSurface() override;
    LayerSurface(const LayerSurface &) = delete;
    LayerSurface &operator=(const LayerSurface &) = delete;
    LayerSurface(LayerSurface &&) = delete;
    LayerSurface &operator=(LayerSurface &&) = delete;

    /// Shows the window there. False when the compositor has no layer shell or does not answer: the
    /// window is left hidden. A null screen leaves the choice to the compositor.
    bool show(QScreen *screen, const LayerPlace &place);
    /// Takes the window off the screen at once, also while it handles an event. The toolkit hears
    /// of it a little later, and then emits gone(): its thread that is told of the frames shown
    /// does not notice when a window ends meanwhile (crashes of Qt 6.4 in handleFrameCallback).
    void hide();

Q_SIGNALS:
    /// The compositor took the surface away: its output is gone, or it locked the screen.
    void closed();
    /// The window is hidden for the toolkit too: what it was drawn on may go.
    void gone();

private:
    struct Listener;

    bool takeRole(QScreen *screen, const LayerPlace &place);
    void giveRoleBack();
    void finishHiding();
    void hideAtOnce();

    QWindow &m_window;
    wl_proxy *m_surface = nullptr; ///< While it is on the screen.
    QSize m_configured;
    bool m_isConfigured = false;
    QTimer m_leaving; ///< Runs while it is hidden but for the toolkit.
};

/// Whether the compositor that the environment names offers the layer shell. Needs no application
/// object; connects for the time of the question.
bool compositorHasLayerShell();

/// Has the toolkit give windows with Qt::BypassWindowManagerHint no role of their own on Wayland.
/// Before the application object is made.
void leaveWindowsWithoutRoles();

} // namespace brimwatch::platform
