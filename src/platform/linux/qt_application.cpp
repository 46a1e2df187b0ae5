#include "platform/linux/qt_application.h"

#include "platform/linux/popover/layer_surface.h"
#include "platform/linux/popover/popup_accessibility.h"
#include "platform/linux/session.h"

#include <QByteArray>

#include <array>
#include <cstdio>

namespace brimwatch::platform {

namespace {

constexpr const char *platformVariable = "QT_QPA_PLATFORM";

/// Takes the variables by which Qt chooses its theme plugin out of the environment for as long as
/// it lives.
class ScopedUnsetEnvironment {
public:
    ScopedUnsetEnvironment()
    {
        for (std::size_t i = 0; i < names.size(); ++i) {
            m_values[i] = qgetenv(names[i]);
            qunsetenv(names[i]);
        }
    }
    ~ScopedUnsetEnvironment()
    {
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (!m_values[i].isNull())
                qputenv(names[i], m_values[i]);
        }
    }
    Q_DISABLE_COPY_MOVE(ScopedUnsetEnvironment)

private:
    static constexpr std::array names{"XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "KDE_FULL_SESSION",
        "GNOME_DESKTOP_SESSION_ID", "QT_QPA_PLATFORMTHEME"};
    std::array<QByteArray, names.size()> m_values;
};

} // namespace

bool isDisplayThere(const SessionEnvironment &environment)
{
    if (environment.isDisplayThere())
        return true;
    const auto isAllowed = [&environment](const char *plugin) {
        return !environment.chosenPlatform || environment.chosenPlatform->contains(plugin);
    };
    const QByteArray x11 = isAllowed("xcb") ? qgetenv("DISPLAY") : QByteArray();
    const QByteArray wayland = isAllowed("wayland") ? qgetenv("WAYLAND_DISPLAY") : QByteArray();
    if (!x11.isEmpty() && !wayland.isEmpty())
        std::fprintf(stderr,
            "brimwatch: no X server answers on display '%s', and no compositor on '%s'\n",
            x11.constData(), wayland.constData());
    else if (!x11.isEmpty())
        std::fprintf(stderr, "brimwatch: no X server answers on display '%s'\n", x11.constData());
    else if (!wayland.isEmpty())
        std::fprintf(stderr, "brimwatch: no compositor answers on Wayland display '%s'\n",
            wayland.constData());
    else if (environment.chosenPlatform)
        std::fprintf(stderr, "brimwatch: no display for QT_QPA_PLATFORM '%s'\n",
            environment.chosenPlatform->constData());
    else
        std::fputs("brimwatch: no display: neither DISPLAY nor WAYLAND_DISPLAY is set\n", stderr);
    return false;
}

std::unique_ptr<QGuiApplication> makeApplication(
    const SessionEnvironment &environment, int &argc, char **argv)
{
    const QByteArray plugins = environment.platformPlugins();
    if (!plugins.isEmpty())
        qputenv(platformVariable, plugins);
    if (environment.hasLayerShell)
        leaveBypassingWindowsWithoutRole();
    showPopupsToScreenReaders();

    // On GNOME the theme plugin is GTK's, which takes 10 MiB and 25 ms for settings that we read
    // ourselves. Programs that we start see these variables again.
    const ScopedUnsetEnvironment noTheme;
    auto application = std::make_unique<QGuiApplication>(argc, argv);
    // Programs that we start choose their own platform.
    if (!plugins.isEmpty())
        qunsetenv(platformVariable);
    return application;
}

} // namespace brimwatch::platform
