#include "platform/macos/mac_application_presence.h"

#include <QGuiApplication>

namespace brimwatch::platform {

void MacApplicationPresence::becomeAccessory()
{
    m_native.becomeAccessory();
    // The popover is a window to the toolkit; the program does not end with it.
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

} // namespace brimwatch::platform
