#include "platform/linux/popover/undecorated_window.h"

#include <QByteArray>
#include <QWindow>

namespace brimwatch::platform {

void showUndecorated(QWindow &window)
{
    // Qt reads the variable while it shows the window; programs that we start must not inherit it.
    constexpr const char *undecorated = "QT_WAYLAND_DISABLE_WINDOWDECORATION";
    const bool usersChoice = qEnvironmentVariableIsSet(undecorated);
    if (!usersChoice)
        qputenv(undecorated, "1");
    window.show();
    if (!usersChoice)
        qunsetenv(undecorated);
}

} // namespace brimwatch::platform
