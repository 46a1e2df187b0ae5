#include "app/toolkit_setup.h"

#include "platform/linux/popover/layer_shell.h"
#include "platform/linux/popover/layer_surface.h"
#include "platform/linux/popover/popup_accessibility.h"

#include <QByteArray>

#include <xcb/xcb.h>

#include <array>
#include <cstdio>

namespace brimwatch::app {

using namespace Qt::Literals::StringLiterals;

namespace {

bool xServerAnswers()
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers;
}

/// Takes variables out of the environment for as long as it lives.
class Hidden {
public:
    Hidden()
    {
        for (std::size_t i = 0; i < names.size(); ++i) {
            m_values[i] = qgetenv(names[i]);
            qunsetenv(names[i]);
        }
    }
    ~Hidden()
    {
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (!m_values[i].isNull())
                qputenv(names[i], m_values[i]);
        }
    }
    Hidden(const Hidden &) = delete;
    Hidden &operator=(const Hidden &) = delete;
    Hidden(Hidden &&) = delete;
    Hidden &operator=(Hidden &&) = delete;

private:
    static constexpr std::array names{"XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "KDE_FULL_SESSION",
        "GNOME_DESKTOP_SESSION_ID", "QT_QPA_PLATFORMTHEME"};
    std::array<QByteArray, names.size()> m_values;
};

} // namespace

bool displayIsThere()
{
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM")
        || qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
        return true;
    if (!qEnvironmentVariableIsSet("DISPLAY")) {
        std::fputs("brimwatch: no display: neither DISPLAY nor WAYLAND_DISPLAY is set\n", stderr);
        return false;
    }
    if (!xServerAnswers()) {
        std::fprintf(stderr, "brimwatch: no X server answers on display '%s'\n",
            qgetenv("DISPLAY").constData());
        return false;
    }
    return true;
}

std::unique_ptr<QGuiApplication> makeApplication(int &argc, char **argv)
{
    // The popover must stand where we say, which only X11 lets it, Xwayland included, or a
    // compositor with a layer shell. Where neither does, the compositor's own way is better than
    // none.
    const bool usersChoice = qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
    const bool onWayland = qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    if (onWayland && !usersChoice && platform::compositorHasLayerShell()) {
        qputenv("QT_QPA_PLATFORM", "wayland;xcb");
        platform::leaveBypassingWindowsWithoutRole();
    } else if (!usersChoice && qEnvironmentVariableIsSet("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", onWayland ? "xcb;wayland" : "xcb");
    }
    platform::showPopupsToScreenReaders();
    QCoreApplication::setApplicationName(u"brimwatch"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(BRIMWATCH_VERSION));
    QGuiApplication::setApplicationDisplayName(u"Brimwatch"_s);
    QGuiApplication::setDesktopFileName(QStringLiteral(BRIMWATCH_IDENTIFIER));

    // The toolkit chooses its theme plugin by these; on GNOME that is GTK, 10 MiB and 25 ms for
    // looks that we read ourselves. Programs that we start see them again.
    const Hidden hidden;
    auto application = std::make_unique<QGuiApplication>(argc, argv);
    // Nor is our choice that of the programs that we start.
    if (!usersChoice)
        qunsetenv("QT_QPA_PLATFORM");
    return application;
}

} // namespace brimwatch::app
