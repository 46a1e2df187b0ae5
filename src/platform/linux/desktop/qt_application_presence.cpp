#include "platform/linux/desktop/qt_application_presence.h"

#include <QGuiApplication>
#include <QWindow>

namespace brimwatch::platform {

void QtApplicationPresence::becomeAccessory()
{
    // The popover is a window that comes and goes; the program does not end with it.
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

void QtApplicationPresence::closeWindows()
{
    const auto windows = QGuiApplication::topLevelWindows();
    for (QWindow *window : windows) {
        window->hide();
        window->close();
    }
}

void QtApplicationPresence::terminate()
{
    QCoreApplication::quit();
}

} // namespace brimwatch::platform
