#pragma once

#include "platform/linux/popover/layer_place.h"

#include <QObject>
#include <QSize>
#include <QTimer>

#include <cstdint>

class QScreen;
class QWindow;
struct zwlr_layer_surface_v1;

namespace brimwatch::platform {

class LayerShell;

/// The layer surface of one window: what makes it an overlay of the compositor's instead of an
/// ordinary window, whenever it is shown. Qt draws the window and brings its input.
///
/// Needs leaveBypassingWindowsWithoutRole() before the application object is made.
class LayerSurface final : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    LayerSurface(const LayerShell &shell, QWindow &window);
    ~LayerSurface() override;

    /// Shows the window there. False when the compositor does not answer: the window is left
    /// hidden. A null screen leaves the choice to the compositor.
    bool show(QScreen *screen, const LayerPlace &place);
    /// Takes the window off the screen at once, also while it handles an event. Qt is told a little
    /// later, and then gone() is emitted: Qt's thread that receives frame callbacks does not notice
    /// when a window is destroyed meanwhile (Qt 6.4 crashes in handleFrameCallback).
    void hide();

Q_SIGNALS:
    /// The compositor took the surface away: its output is gone, or it locked the screen.
    void closed();
    /// The window is hidden for Qt too: what it was drawn on may be freed.
    void gone();

private:
    static void configured(void *data, zwlr_layer_surface_v1 *surface, std::uint32_t serial,
        std::uint32_t width, std::uint32_t height);
    static void closedByCompositor(void *data, zwlr_layer_surface_v1 *surface);

    bool takeRole(QScreen *screen, const LayerPlace &place);
    void requestPlace(const LayerPlace &place);
    void giveRoleBack();
    void finishHiding();
    void hideFromQt();

    const LayerShell &m_shell;
    QWindow &m_window;
    zwlr_layer_surface_v1 *m_surface = nullptr; ///< While it is on the screen.
    QSize m_configured;
    bool m_isConfigured = false;
    QTimer m_leaving; ///< Runs while the window is off the screen, but not hidden for Qt.
};

/// Has Qt's wayland platform give no role of their own to windows with Qt::BypassWindowManagerHint.
/// Before the application object is made.
void leaveBypassingWindowsWithoutRole();

} // namespace brimwatch::platform
