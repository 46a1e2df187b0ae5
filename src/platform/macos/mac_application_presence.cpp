#include "platform/macos/mac_application_presence.h"

#include <QGuiApplication>

namespace brimwatch::platform {

void MacApplicationPresence::becomeAccessory()
{
    m_native.becomeAccessory();
    // To Qt the popover is a window; the program does not end when it closes.
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

} // namespace brimwatch::platform
