#include "platform/macos/mac_application_presence.h"

#include <QGuiApplication>

namespace brimwatch::platform {

void keepQtFromActivating()
{
    // Read when the platform's plugin is made, and once more, with a value, after launching.
    qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1");
}

void MacApplicationPresence::becomeAccessory()
{
    m_native.becomeAccessory();
    // To Qt the popover is a window; the program does not end when it closes.
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

} // namespace brimwatch::platform
