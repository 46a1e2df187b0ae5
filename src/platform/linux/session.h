#pragma once

#include "platform/linux/appearance/desktop_appearance.h"
#include "platform/popover_content.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

namespace brimwatch::platform {

class LayerShell;
class Popover;
class XConnection;

/// What the environment says of the session before there is an application object.
struct SessionEnvironment {
    /// An X server answers at DISPLAY. On a compositor with a layer shell it is enough that DISPLAY
    /// is set: connecting might start Xwayland.
    bool hasX11 = false;
    bool hasWayland = false; ///< A compositor answers at WAYLAND_DISPLAY.
    /// QT_QPA_PLATFORM, by which users choose Qt's platform plugin; absent where they do not.
    std::optional<QByteArray> chosenPlatform;
    /// Whether the compositor has a layer shell; false where none could be used.
    bool hasLayerShell = false;

    /// Connects to the compositor and the X server for the time of the question, where there are
    /// any. An empty variable is as good as none.
    static SessionEnvironment read();

    /// Whether Qt may load its wayland plugin: unless the user has chosen another one.
    bool mayUseWayland() const;
    /// Whether there is a display for one of the platform plugins that may be loaded. True of
    /// plugins that we do not know.
    bool isDisplayThere() const;

    /// The platform plugins that Qt is to try, as QT_QPA_PLATFORM lists them. Empty where the user
    /// or Qt chooses.
    QByteArray platformPlugins() const;
};

/// What places the popover's window, and what closes it.
enum class SessionKind : std::uint8_t {
    X11, ///< The program: a popup that grabs the pointer.
    Xwayland, ///< The program, through the X server of a Wayland compositor.
    LayerShell, ///< The compositor, which shows overlays.
    PlainWindow, ///< The compositor or Qt, as they place any window.
};

/// The kind, by the platform plugin that Qt has loaded (QGuiApplication::platformName()) and
/// whether a layer shell is bound on it.
SessionKind sessionKind(
    const SessionEnvironment &environment, const QString &platformPlugin, bool isLayerShellBound);

/// The user's session as the running program has it: the only place that knows its kind.
///
/// Needs the application object, and ends before it. What it makes ends before it too.
class Session {
public:
    explicit Session(const SessionEnvironment &environment);
    ~Session();
    Q_DISABLE_COPY_MOVE(Session)

    TextScaling textScaling() const;
    std::unique_ptr<Popover> makePopover(PopoverContentFactory factory, XConnection &x) const;
    /// The display on which the popover opens: that of DISPLAY without a screen, or of
    /// WAYLAND_DISPLAY.
    QString display() const;
    /// Whether the environment names that display. It may name one of each kind.
    static bool isOnDisplay(const QString &display);

    /// The session bus; not connected where there is none.
    static QDBusConnection bus() { return QDBusConnection::sessionBus(); }
    /// The user's folder for what lives as long as the session; empty where there is none.
    static QString runtimeFolder() { return qEnvironmentVariable("XDG_RUNTIME_DIR"); }

private:
    std::unique_ptr<LayerShell> m_layerShell;
    SessionKind m_kind;
};

} // namespace brimwatch::platform
