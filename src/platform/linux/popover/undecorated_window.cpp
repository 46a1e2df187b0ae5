#include "platform/linux/popover/undecorated_window.h"

#include <QByteArray>
#include <QWindow>

namespace brimwatch::platform {

void showUndecorated(QWindow &window)
{
    // The toolkit reads this variable but then, and programs that we start do not see it.
    constexpr const char *undecorated = "QT_WAYLAND_DISABLE_WINDOWDECORATION";
    const bool usersChoice = qEnvironmentVariableIsSet(undecorated);
    if (!usersChoice)
        qputenv(undecorated, "1");
    window.show();
    if (!usersChoice)
        qunsetenv(undecorated);
}

} // namespace brimwatch::platform
